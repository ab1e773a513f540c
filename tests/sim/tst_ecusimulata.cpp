// The simulated ECU driven directly: bytes in, frames out, time moved by hand.

#include "EcuSimulata.h"

#include "link/Frame.h"
#include "programming/ImmagineS19.h"
#include "support/FileDiProva.h"
#include "support/PortaEcu.h"
#include "support/S19DiProva.h"

#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace kv;
using namespace kv::sim;

namespace {

struct FrameLetto
{
    QByteArray payload; // reply letter first
    bool checksumOk = false;
    char lettera() const { return payload.isEmpty() ? '\0' : payload.at(0); }
};

// A frame as the ECU put it on the line, read apart from the simulator's own code:
// addresses F1 3A, length and ETX, or an empty payload; then the checksum.
FrameLetto leggiFrame(const QByteArray &f)
{
    const qsizetype n = f.size();
    if (n < 6 || f.at(0) != 0x02 || (quint8(f.at(1)) & 0x7F) != n || quint8(f.at(2)) != 0xF1
        || quint8(f.at(3)) != 0x3A || f.at(n - 1) != 0x03)
        return {};
    quint8 somma = 0;
    for (qsizetype i = 1; i <= n - 3; ++i)
        somma = quint8(somma + quint8(f.at(i)));
    return {f.mid(4, n - 6), somma == quint8(f.at(n - 2))};
}

QByteArray ComandoLettura(quint32 indirizzo, int conteggio)
{
    return CreaFrame(QByteArray(1, 'R') + ParolaInByte(indirizzo) + char(conteggio));
}

QByteArray ComandoScrittura(quint32 indirizzo, const QByteArray &valori)
{
    return CreaFrame(QByteArray(1, 'W') + ParolaInByte(indirizzo) + char(valori.size()) + valori);
}

// An ECU, the frames it sends, and the tester's side of the commands.
struct Banco
{
    explicit Banco(const OpzioniEcu &o = OpzioniManuali()) : ecu(o)
    {
        QObject::connect(&ecu, &EcuSimulata::frameInviato, &ecu,
                         [this](const QByteArray &f) { frame.append(leggiFrame(f)); });
    }

    void svuota() { frame.clear(); }
    void scorri(int ms)
    {
        for (int t = 0; t < ms; t += 40)
            ecu.avanzaTempo(40);
    }
    // The frames of one letter; with 0, the replies.
    QList<FrameLetto> flusso(char lettera = 'd') const
    {
        QList<FrameLetto> r;
        for (const FrameLetto &f : frame)
            if (lettera ? f.lettera() == lettera : f.lettera() != 'd' && f.lettera() != 'g')
                r.append(f);
        return r;
    }
    QList<FrameLetto> risposte() const { return flusso(0); }
    // The payload of the one reply to frame; empty unless exactly one came, whole.
    QByteArray risposta(const QByteArray &comando)
    {
        svuota();
        ecu.riceviDati(comando);
        const auto r = risposte();
        return r.size() == 1 && r[0].checksumOk ? r[0].payload : QByteArray();
    }
    int esito(const QByteArray &comando)
    {
        const QByteArray e = risposta(comando);
        return e.size() == 2 && e.at(0) == 'e' ? quint8(e.at(1)) : -1;
    }
    void esiti(const QList<std::pair<QByteArray, int>> &attesi)
    {
        for (const auto &[comando, codice] : attesi)
            QVERIFY2(esito(comando) == codice, comando.toHex().constData());
    }
    // A cell read with an 'R' frame; -1 on a bad reply.
    int cella(qint32 indirizzo, int dimensione)
    {
        const QByteArray v = risposta(ComandoLettura(quint32(indirizzo), dimensione));
        return v.size() == 1 + dimensione && v.at(0) == 'r' ? int(NumeroBE(v.mid(1))) : -1;
    }
    int ram(int par) { return cella(cat.Parametri[par].IndirizzoRAM, cat.Parametri[par].Dimensione); }
    QByteArray scrittura(int par, int valore, bool eeprom = false) const
    {
        const Parametro &p = cat.Parametri[par];
        return ComandoScrittura(quint32(eeprom ? p.IndirizzoEE : p.IndirizzoRAM),
                                ByteBE(valore, p.Dimensione));
    }
    Catalogo cat;
    EcuSimulata ecu;
    QList<FrameLetto> frame;
};

} // namespace

class TestEcuSimulata : public QObject
{
    Q_OBJECT

private slots:
    void versione()
    {
        OpzioniEcu o = OpzioniManuali();
        o.versione.veicolo = "PANDA 1.2";
        o.versione.codice = "KV-0123456789-XYZ"; // longer than its 14 places
        o.versione.datoB = "B7";
        Banco b(o);
        QCOMPARE(b.risposta(CreaFrame("V")),
                 "vPANDA 1.2 " + o.versione.data + "KV-0123456789-" + o.versione.datoA + "B7  ");
        // The identification the programming tool carries over lives at its fixed places.
        QCOMPARE(b.ecu.leggiMemoria(0xC040, 14), QByteArray("KV-0123456789-"));
        QCOMPARE(b.ecu.leggiMemoria(0xC058, 4), QByteArray("B7  "));
        QCOMPARE(b.esito(CreaFrame("VX")), int(ErroreEcu::LunghezzaErrata));
    }

    void letturaEScrittura()
    {
        Banco b;
        // Bytes the ECU does not have read as FF, past the end of RAM too.
        QCOMPARE(b.risposta(ComandoLettura(0x0000, 4)), QByteArray::fromHex("72FFFFFFFF"));
        QCOMPARE(b.risposta(ComandoLettura(0x01FC, 4)), 'r' + b.ecu.leggiMemoria(0x01FC, 2) + "\xFF\xFF");
        QCOMPARE(b.risposta(ComandoLettura(0xC100, 120)).size(), 121);
        // Reads and writes of RAM, EEPROM and the map area are met by the tuning and map pages.
        // The application writes neither its own software nor outside RAM; counts must fit.
        const QByteArray codice = b.ecu.leggiMemoria(0xC000, 4);
        b.esiti({{ComandoScrittura(0xC000, "\x01\x02\x03\x04"), ErroreEcu::IndirizzoNonValido},
                 {ComandoScrittura(0x01FC, "\x01\x02\x03"), ErroreEcu::IndirizzoNonValido},
                 {ComandoScrittura(0x0000, "\x01"), ErroreEcu::IndirizzoNonValido},
                 {ComandoLettura(0x0090, 121), ErroreEcu::LunghezzaErrata},
                 {CreaFrame(QByteArray::fromHex("5700A00301")), ErroreEcu::LunghezzaErrata},
                 {CreaFrame(QByteArray::fromHex("5700A000")), ErroreEcu::LunghezzaErrata},
                 {CreaFrame("A"), ErroreEcu::LunghezzaErrata},
                 {CreaFrame(QByteArray::fromHex("4109")), ErroreEcu::CodiceTaraturaErrato},
                 {CreaFrame("Z"), ErroreEcu::ComandoSconosciuto},
                 {CreaFrame("F"), ErroreEcu::ComandoNonAmmesso}});
        QCOMPARE(b.ecu.leggiMemoria(0xC000, 4), codice);
    }

    void flussoDati()
    {
        Banco b;
        b.scorri(36000);
        // One frame every 40 ms: the tests step the ECU on by one frame at a time.
        const QList<FrameLetto> flusso = b.flusso();
        for (const FrameLetto &f : flusso)
            QVERIFY(f.checksumOk && f.payload.size() == 15);
        QCOMPARE(flusso.size(), 900);
    }
    void programmazione()
    {
        Banco b;
        QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriEntrataMinimo, 777)), 0xFF);
        QCOMPARE(b.esito(CreaFrame("I")), 0xFF);
        QCOMPARE(b.ecu.modo(), EcuSimulata::Modo::Programmazione);
        b.svuota();
        b.scorri(1000);
        QVERIFY(b.frame.isEmpty()); // the stream has stopped

        const QByteArray blocco = QByteArray::fromHex("0123456789ABCDEF").repeated(8);
        b.esiti({{ComandoLettura(0xC000, 4), ErroreEcu::ComandoNonAmmesso},
                 {CreaFrame("V"), ErroreEcu::ComandoNonAmmesso},
                 {ComandoScrittura(0xC000, blocco), ErroreEcu::Fatto},
                 {ComandoScrittura(0xF6C0, blocco), ErroreEcu::Fatto},
                 {ComandoScrittura(0xF6E0, blocco), ErroreEcu::IndirizzoNonValido},
                 {ComandoScrittura(0x0090, "\x01"), ErroreEcu::IndirizzoNonValido},
                 // The new image brings a new stored idle threshold.
                 {b.scrittura(Par::SogliaGiriEntrataMinimo, 1020, true), ErroreEcu::Fatto}});
        QCOMPARE(b.ecu.leggiMemoria(0xC000, 64), blocco);
        QCOMPARE(b.ecu.leggiMemoria(0xF6C0, 64), blocco);

        b.svuota();
        b.ecu.riceviDati(CreaFrame("F"));
        b.ecu.avanzaTempo(40);
        QCOMPARE(b.frame.size(), 2);
        QCOMPARE(b.frame[0].payload, QByteArray::fromHex("65FF"));
        QCOMPARE(b.frame[1].lettera(), 'd');
        QCOMPARE(b.ecu.modo(), EcuSimulata::Modo::Applicazione);
        // The restarted application loads RAM from EEPROM: the try-out value is gone.
        QCOMPARE(b.ram(Par::SogliaGiriEntrataMinimo), 1020);
    }

    void senzaApplicazione()
    {
        OpzioniEcu o = OpzioniManuali();
        o.applicazionePresente = false;
        Banco b(o);
        b.scorri(1000);
        QVERIFY(b.flusso('g').size() >= 3);
        QCOMPARE(b.frame.size(), b.flusso('g').size());
        for (const FrameLetto &f : std::as_const(b.frame))
            QVERIFY(f.checksumOk && f.payload.size() >= 2);

        b.esiti({{ComandoLettura(0xC040, 14), ErroreEcu::ComandoNonAmmesso},
                 {CreaFrame("V"), ErroreEcu::ComandoNonAmmesso},
                 {ComandoScrittura(0xC000, "\x01"), ErroreEcu::ComandoNonAmmesso},
                 {CreaFrame("I"), ErroreEcu::Fatto},
                 {CreaFrame("F"), ErroreEcu::Fatto}});
        b.svuota();
        b.scorri(400);
        QCOMPARE(b.frame.size(), 10);
        QCOMPARE(b.flusso('d').size(), 10);
    }
};

QTEST_GUILESS_MAIN(TestEcuSimulata)
#include "tst_ecusimulata.moc"
