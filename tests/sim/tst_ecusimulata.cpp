// The simulated ECU driven directly: bytes in, frames out, time moved by hand.

#include "ComandiOperatore.h"
#include "EcuSimulata.h"
#include "FileS19.h"
#include "RigaComando.h"

#include "link/Frame.h"
#include "link/StatoEcu.h"
#include "programming/ImmagineS19.h"
#include "support/FileDiProva.h"
#include "support/PortaEcu.h"
#include "support/S19DiProva.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <set>

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

// Fields of a 'd' payload.
struct Dati
{
    explicit Dati(const QByteArray &p)
    {
        const auto b = [&p](int i) { return int(quint8(p.at(i))); };
        stato = b(1), giri = b(2) << 8 | b(3), tps = b(4) << 8 | b(5), lambda = b(6) << 8 | b(7);
        actpos = b(8), ricmag = b(9), zona = b(10), pompata = b(11);
        tiptps = b(12), tipalim = b(13), tipolambda = b(14);
    }
    int stato, giri, tps, lambda, actpos, ricmag, zona, pompata, tiptps, tipalim, tipolambda;
};

const QByteArray Fine = QByteArray::fromHex("4101"); // 'A' 1 ends a single calibration step

// An ECU, everything it sends (bytes, frames, noise), and the tester's side of the commands.
struct Banco
{
    explicit Banco(const OpzioniEcu &o = OpzioniManuali()) : ecu(o)
    {
        QObject::connect(&ecu, &EcuSimulata::datiInviati, &ecu,
                         [this](const QByteArray &b) { grezzi.append(b); });
        QObject::connect(&ecu, &EcuSimulata::frameInviato, &ecu,
                         [this](const QByteArray &f) { frame.append(leggiFrame(f)); });
        QObject::connect(&ecu, &EcuSimulata::rumoreInviato, &ecu,
                         [this](const QByteArray &b) { rumore += b.size(); });
    }

    void svuota()
    {
        frame.clear();
        grezzi.clear();
        rumore = 0;
    }
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
    int ee(int par) { return cella(cat.Parametri[par].IndirizzoEE, cat.Parametri[par].Dimensione); }
    QByteArray scrittura(int par, int valore, bool eeprom = false) const
    {
        const Parametro &p = cat.Parametri[par];
        return ComandoScrittura(quint32(eeprom ? p.IndirizzoEE : p.IndirizzoRAM),
                                ByteBE(valore, p.Dimensione));
    }
    // The status bytes of the stream with repeats folded: 255 255 0 0 255 gives 255 0 255.
    QList<int> stati() const
    {
        QList<int> s;
        for (const FrameLetto &f : flusso())
            if (s.isEmpty() || s.last() != Dati(f.payload).stato)
                s.append(Dati(f.payload).stato);
        return s;
    }

    Catalogo cat;
    EcuSimulata ecu;
    QList<FrameLetto> frame;
    QByteArray grezzi;
    qsizetype rumore = 0;
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

    // Whether the boot values pass the program's checks is met by the tuning pages, which save
    // what they read; here, that the ECU boots with RAM loaded from EEPROM.
    void ramCaricataDallaEeprom()
    {
        Banco b;
        for (int i = 0; i < Par::Numero; ++i) {
            const Parametro &p = b.cat.Parametri[i];
            if (p.IndirizzoRAM >= 0 && p.IndirizzoEE >= 0)
                QVERIFY2(b.ram(i) == b.ee(i), qPrintable(QString::number(i)));
        }
        QCOMPARE(b.ram(Par::ScalaLambda), 0);
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
        OpzioniEcu o = OpzioniManuali();
        o.tipoSonda = 1;
        Banco b(o);
        b.scorri(36000);
        QList<Dati> dati;
        for (const FrameLetto &f : b.flusso()) {
            QVERIFY(f.checksumOk && f.payload.size() == 15);
            dati.append(Dati(f.payload));
        }
        QCOMPARE(dati.size(), 900);
        // Each field where the tester reads it, over a whole drive cycle: the probe swings
        // lean and rich, the pedal pumps, petrol gives way to gas.
        const auto insieme = [&](int Dati::*campo) {
            std::set<int> s;
            for (const Dati &d : std::as_const(dati))
                s.insert(d.*campo);
            return s;
        };
        QCOMPARE(insieme(&Dati::stato), std::set<int>{0});
        QCOMPARE(insieme(&Dati::ricmag), (std::set<int>{0, 85, 255}));
        QCOMPARE(insieme(&Dati::pompata), (std::set<int>{0, 1}));
        QCOMPARE(insieme(&Dati::tipalim), (std::set<int>{0, 1}));
        QCOMPARE(dati.first().tipalim, 0); // petrol while warming up
        QCOMPARE(insieme(&Dati::tipolambda), std::set<int>{1});
        // A type 1 probe is sent on 0..255.
        QVERIFY(*insieme(&Dati::lambda).rbegin() <= 255
                && *insieme(&Dati::lambda).rbegin() > 580 * 255 / 1023);
        QVERIFY(insieme(&Dati::actpos).size() > 20); // the stepper hunts

        // TIPTPS is the RAM cell, read as it is now.
        QCOMPARE(b.esito(ComandoScrittura(quint32(b.cat.Parametri[Par::TipoTps].IndirizzoRAM), "\x07")),
                 0xFF);
        b.ecu.avanzaTempo(40);
        QCOMPARE(Dati(b.flusso().value(0).payload).tiptps, 7);
    }

    void zonaSegueLaRam()
    {
        Banco b;
        // A zone once entered holds until its exit threshold is crossed, so a change shows
        // fully from the cycle after the one it was made in.
        const auto zoneDiUnCiclo = [&] {
            b.scorri(36000);
            b.svuota();
            b.scorri(36000);
            std::set<int> zone;
            for (const FrameLetto &f : b.flusso())
                zone.insert(Dati(f.payload).zona);
            return zone;
        };
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{1, 2, 3, 4, 5}));
        // The stored copy is not what the firmware runs on.
        QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriEntrataCutOff, 9000, true)), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{1, 2, 3, 4, 5}));
        // Cut-off beyond any speed the engine reaches, idle entry below it: no cut-off, no return, no idle.
        QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriEntrataCutOff, 9000)), 0xFF);
        QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriEntrataMinimo, 400)), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{2, 3}));
        // Full load needs more throttle than there is.
        QCOMPARE(b.esito(b.scrittura(Par::SogliaTpsEntrataPC, 1000)), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{2}));
    }

    void taraturaGuidata()
    {
        Banco b;
        const quint32 celleTps = quint32(b.cat.Parametri[Par::TpsTaratoMinimo].IndirizzoEE);
        // Both cells, side by side, erased: whatever is found afterwards was learnt.
        b.ecu.scriviMemoria(celleTps, QByteArray::fromHex("03FF03FF"));

        b.risposta(CreaFrame(QByteArray::fromHex("4102")));
        QVERIFY(b.risposte().isEmpty()); // answered only through the stream
        b.scorri(400);
        QCOMPARE(b.stati(), QList<int>{255});

        QCOMPARE(b.esito(CreaFrame(QByteArray::fromHex("4100"))), 0xFF);
        b.scorri(4000);
        QCOMPARE(b.stati(), (QList<int>{239, 234}));
        QCOMPARE(b.esito(CreaFrame(Fine)), 0xFF);
        b.scorri(40000);
        QCOMPARE(b.stati(), (QList<int>{223, 221, 220, 219, 207, 206, 204, 0}));
        int tpsAl221 = -1, massimo219 = -1;
        for (const FrameLetto &f : b.flusso()) {
            const Dati d(f.payload);
            tpsAl221 = d.stato == 221 && tpsAl221 < 0 ? d.tps : tpsAl221;
            massimo219 = d.stato == 219 ? qMax(massimo219, d.tps) : massimo219;
        }
        const int appresoMin = int(NumeroBE(b.ecu.leggiMemoria(celleTps, 2)));
        const int appresoMax = int(NumeroBE(b.ecu.leggiMemoria(celleTps + 2, 2)));
        QVERIFY2(qAbs(appresoMin - tpsAl221) <= 3,
                 qPrintable(QStringLiteral("%1 %2").arg(appresoMin).arg(tpsAl221)));
        QCOMPARE(appresoMax, massimo219);
        QVERIFY(appresoMax > 900);

        // The entry point left waiting gives up by itself.
        b.risposta(CreaFrame(QByteArray::fromHex("4102")));
        b.scorri(Taratura::IngressoMs + 1000);
        QCOMPARE(b.stati(), (QList<int>{255, 0}));
    }

    void pedaleDelTecnico()
    {
        OpzioniEcu o = OpzioniManuali();
        o.operatoreManuale = true;
        Banco b(o);
        QCOMPARE(b.esito(CreaFrame(QByteArray::fromHex("4104"))), 0xFF);
        b.scorri(6000);
        QCOMPARE(b.stati(), (QList<int>{222, 223})); // nobody has said the pedal is released
        QCOMPARE(EseguiComandoOperatore(b.ecu, " Pedal  REST "), QStringLiteral("pedal released"));
        b.svuota();
        b.scorri(6000);
        QCOMPARE(b.stati(), (QList<int>{223, 221, 220})); // and nobody presses it
        QVERIFY(EseguiComandoOperatore(b.ecu, "status").startsWith("status 220, rev counter "));
        EseguiComandoOperatore(b.ecu, "pedal full");
        b.svuota();
        b.scorri(8000);
        QCOMPARE(b.stati(), (QList<int>{219, 218}));
        QVERIFY(Dati(b.flusso().constLast().payload).tps > 900);

        QCOMPARE(Dati(b.flusso().constLast().payload).tipolambda, 0);
        EseguiComandoOperatore(b.ecu, "probe 1");
        b.svuota();
        b.scorri(40);
        QCOMPARE(Dati(b.flusso().constLast().payload).tipolambda, 1);
        QVERIFY(EseguiComandoOperatore(b.ecu, "pedal half").startsWith("unknown command"));
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

    void frameInArrivo()
    {
        Banco b;
        // One byte at a time, after noise.
        b.ecu.riceviDati(QByteArray::fromHex("FF0055"));
        for (char c : CreaFrame("V"))
            b.ecu.riceviDati(QByteArray(1, c));
        QCOMPARE(b.risposte().size(), 1);

        // A bad checksum is ignored; the good frame right behind it is answered.
        QByteArray guasto = CreaFrame("V");
        guasto[guasto.size() - 2] = char(guasto.at(guasto.size() - 2) + 1);
        QCOMPARE(b.risposta(guasto + ComandoLettura(0xC040, 2)).left(1), QByteArray("r"));
        // A frame in the ECU's own address order is not a command.
        b.risposta(CreaFrame("V", 0));
        QVERIFY(b.risposte().isEmpty());
        // A length byte below the frame's minimum costs only its STX.
        QCOMPARE(b.risposta(QByteArray::fromHex("0281") + CreaFrame("V")).left(1), QByteArray("v"));
    }

    void cadenzaDellaLinea()
    {
        OpzioniEcu o = OpzioniManuali();
        o.cadenzaReale = true;
        o.baud = 9600;
        Banco b(o);
        // 120 bytes read: a frame of 127 bytes, 132 ms at 960 bytes a second.
        QElapsedTimer orologio;
        orologio.start();
        b.ecu.riceviDati(ComandoLettura(0xC100, 120));
        QVERIFY(b.grezzi.size() < 127);
        QTRY_COMPARE_WITH_TIMEOUT(b.grezzi.size(), 127, 2000);
        QVERIFY2(orologio.elapsed() >= 120, qPrintable(QString::number(orologio.elapsed())));

        // A reply waits behind the stream frame already on its way; a sample that finds the
        // line busy is skipped.
        b.svuota();
        b.ecu.avanzaTempo(40);
        b.ecu.riceviDati(CreaFrame("V"));
        b.ecu.avanzaTempo(40);
        QTRY_COMPARE_WITH_TIMEOUT(b.frame.size(), 2, 2000);
        QCOMPARE(b.frame[0].lettera(), 'd');
        QCOMPARE(b.frame[1].lettera(), 'v');
        QTest::qWait(100);
        QCOMPARE(b.frame.size(), 2);
    }

    void propriaVersioneComeS19()
    {
        // The demo's release: the simulator's own software with a newer vehicle text, written
        // as S-records that the tool turns back into the very same image.
        StringheVersione v;
        v.veicolo = "KV-SIM R2 ";
        const QByteArray immagine = ImmagineSoftware(v);
        QCOMPARE(immagine.size(), MappaMemoria::DimensioneSoftware);
        QCOMPARE(immagine.mid(MappaMemoria::Veicolo - 0xC000, 10), v.veicolo);
        const QByteArray testo = TestoS19(immagine, 0xC000);
        const QList<QByteArray> righe = testo.split('\n');
        QCOMPARE(righe.at(1), RigaS1(0xC000, immagine.left(32)) + '\r'); // count and checksum right

        QTemporaryDir dir;
        StatoEcu stato;
        stato.InfCodice = QString::fromLatin1(v.codice);
        stato.InfDatoA = QString::fromLatin1(v.datoA);
        stato.InfDatoB = QString::fromLatin1(v.datoB);
        scrivi(dir.filePath(QStringLiteral("R2.S19")), testo);
        QVERIFY(PreparaFileSW(PercorsoFileSW(dir.path())));
        QVERIFY(ConvertiS19(dir.filePath(QStringLiteral("R2.S19")), PercorsoFileSW(dir.path()), stato));
        QByteArray letta;
        for (int n = 1; n <= 220; ++n)
            letta += LeggiBloccoSW(dir.path(), n);
        QCOMPARE(letta, immagine);
    }

    void memoriaSuFile()
    {
        QTemporaryDir cartella;
        OpzioniEcu o = OpzioniManuali();
        o.fileMemoria = cartella.filePath(QStringLiteral("ecu.bin"));
        {
            Banco b(o);
            QVERIFY(b.ecu.erroreMemoria().isEmpty());
            QCOMPARE(leggi(o.fileMemoria).size(), qsizetype(MappaMemoria::DimensioneSoftware));
            QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriUscitaMinimo, 1234, true)), 0xFF);
            QCOMPARE(b.esito(b.scrittura(Par::SogliaGiriEntrataMinimo, 555)), 0xFF);
        }
        {
            // A flash cut short is kept too, though the file is written only once it goes quiet.
            Banco b(o);
            QCOMPARE(b.esito(CreaFrame("I")), 0xFF);
            QCOMPARE(b.esito(ComandoScrittura(0xF600, QByteArray(64, '\x3C'))), 0xFF);
        }
        QCOMPARE(leggi(o.fileMemoria).mid(0xF600 - 0xC000, 64), QByteArray(64, '\x3C'));
        o.versione.veicolo = "ALTRO";
        Banco b(o);
        QCOMPARE(b.ee(Par::SogliaGiriUscitaMinimo), 1234);
        QCOMPARE(b.ram(Par::SogliaGiriUscitaMinimo), 1234);  // booted from the kept EEPROM
        QVERIFY(b.ram(Par::SogliaGiriEntrataMinimo) != 555); // RAM is not kept
        QCOMPARE(b.ecu.leggiMemoria(MappaMemoria::Veicolo, 6), QByteArray("KV-SIM")); // the file's image wins

        // Something else under that name is never overwritten.
        o.fileMemoria = cartella.filePath(QStringLiteral("appunti.txt"));
        scrivi(o.fileMemoria, "not an ECU");
        Banco altro(o);
        QVERIFY(altro.ecu.erroreMemoria().contains(o.fileMemoria));
        QCOMPARE(altro.esito(altro.scrittura(Par::SogliaGiriUscitaMinimo, 1300, true)), 0xFF);
        QCOMPARE(leggi(o.fileMemoria), QByteArray("not an ECU"));
    }

    void opzioniDaRigaDiComando()
    {
        const auto interpreta = [](const QStringList &argomenti, ImpostazioniProgramma &imp,
                                   QString &errore) {
            QCommandLineParser parser;
            PreparaRigaComando(parser);
            if (!parser.parse(QStringList{QStringLiteral("korvantine-ecu")} + argomenti)) {
                errore = parser.errorText();
                return false;
            }
            return InterpretaRigaComando(parser, imp, errore);
        };
        // The options that take some reading: a set of speeds, pairs, hexadecimal, seconds.
        ImpostazioniProgramma imp;
        QString errore;
        QVERIFY2(interpreta({"--baud", "19200", "--write-error", "0xC110:7", "--write-error", "160",
                             "--noise", "4:12", "--stall", "2.5:1", "--hang-up", "30", "--code", "ABC"},
                            imp, errore),
                 qPrintable(errore));
        const Guasti &g = imp.ecu.guasti;
        QCOMPARE(QList<int>({imp.ecu.baud, g.erroriScrittura.value(0xC110), g.erroriScrittura.value(160),
                             g.rumoreOgniNFrame, g.lunghezzaRumore, imp.stalloDopoMs, imp.durataStalloMs,
                             imp.riagganciaDopoMs}),
                 QList<int>({19200, 7, ErroreEcu::ScritturaFallita, 4, 12, 2500, 1000, 30000}));
        QVERIFY(imp.versioneData && imp.ecu.versione.codice == "ABC");
        QVERIFY2(interpreta({"--fail-block", "150:7", "--drop-block", "100:2.5"}, imp, errore),
                 qPrintable(errore));
        QCOMPARE(QList<int>({g.bloccoGuasto, g.codiceBloccoGuasto, g.cadutaAlBlocco, g.durataCadutaMs}),
                 QList<int>({150, 7, 100, 2500}));

        const QList<QStringList> sbagliate = {{"--baud", "1200"},
                                              {"--rate", "0"},
                                              {"--noise", "3:0"},
                                              {"--stall", "soon"},
                                              {"--write-error", "C110"}, // hexadecimal wants its 0x
                                              {"--write-error", "0xC110:255"},
                                              {"--fail-block", "0"},
                                              {"--drop-block", "3:later"},
                                              {"--device", "/dev/ttyS0", "--link", "/tmp/ecu"}};
        for (const QStringList &a : sbagliate) {
            ImpostazioniProgramma altra;
            errore.clear();
            QVERIFY2(!interpreta(a, altra, errore) && errore.contains(a.first()), qPrintable(a.join(' ')));
        }
    }
};

QTEST_GUILESS_MAIN(TestEcuSimulata)
#include "tst_ecusimulata.moc"
