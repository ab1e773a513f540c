// The program's real port code against the simulated ECU on a pseudo-terminal.
#include "EcuSimulata.h"
#include "base/Lingua.h"
#include "link/PortaSeriale.h"
#include "shell/Programma.h"
#include "variables/Conversioni.h"

#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;
using namespace kv::sim;

namespace {

bool checksumValido(const QByteArray &frame)
{
    const auto l = frame.size();
    return l >= 6 && SommaByte(frame.mid(1, l - 3)) == quint8(frame.at(l - 2));
}

struct Inviato
{
    QByteArray payload;
    CampioneMotore campione;
};

// The program's serial port, counting every write it is asked for while it is closed.
class PortaSpia : public PortaSeriale
{
public:
    bool scrivi(const QByteArray &bytes) override
    {
        if (!PortOpen())
            ++scrittureSuPortaChiusa;
        return PortaSeriale::scrivi(bytes);
    }
    int scrittureSuPortaChiusa = 0;
};

// Collects every decoded live record, as a page would see it.
class Raccoglitore : public AscoltatoreDati
{
public:
    void frameNormale(const RecordDati &r) override { record.append(r); }
    void frameStato(const RecordDati &r) override { record.append(r); }
    QList<RecordDati> record;
};

} // namespace

class TstCollegamento : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    Lingua lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> p;
    QList<Inviato> inviati;
    int richiesteVersione = 0;

    void avvia(OpzioniEcu opzioni = {}, const std::function<void(EcuSimulata &)> &prima = {})
    {
        p.reset();
        ecu = std::make_unique<EcuSimulata>(opzioni);
        if (prima)
            prima(*ecu);
        QVERIFY2(ecu->apriPty(), qPrintable(ecu->erroreLinea()));
        inviati.clear();
        richiesteVersione = 0;
        connect(ecu.get(), &EcuSimulata::frameInviato, this, [this](const QByteArray &f) {
            if (f.size() > 6 && f.at(4) == 'd' && checksumValido(f))
                inviati.append({f.mid(4, f.size() - 6), ecu->ultimoCampione()});
        });
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [this](const QByteArray &f) {
            if (f.size() > 4 && f.at(4) == 'V')
                ++richiesteVersione;
        });

        lingua = Lingua(cartella.path());
        p = std::make_unique<Programma>(cartella.path(), lingua, std::make_unique<PortaSeriale>(),
                                        std::make_unique<TemporizzatoreQt>(),
                                        std::make_unique<TemporizzatoreQt>());
        p->seriale.VelocitaCom = 38400;
        p->dispositivoForzato = ecu->percorsoDispositivo();
        QVERIFY(p->ApriPorta());
        ecu->avvia();
    }

private slots:
    void cleanup()
    {
        p.reset();
        ecu.reset();
    }

    void identifiesTheEcuAndFollowsItsStream()
    {
        StringheVersione v;
        v.codice = "KVTEST-123456 ";
        OpzioniEcu o;
        o.versione = v;
        o.tipoSonda = 0;
        avvia(o);
        QTRY_COMPARE_WITH_TIMEOUT(p->linea.ecu().EcuDaIdentificare, false, 3000);
        QCOMPARE(p->linea.ecu().InfCodice, QString("KVTEST-123456 "));
        QCOMPARE(p->linea.ecu().InfVeicolo, QString::fromLatin1(v.veicolo));
        QCOMPARE(p->linea.ecu().InfDatoA, QString::fromLatin1(v.datoA));
        QCOMPARE(p->linea.ecu().InfDatoB, QString::fromLatin1(v.datoB));
        QCOMPARE(p->linea.ecu().TpsPresente, true);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));

        Raccoglitore r;
        p->linea.datiLive().aggiungiAscoltatore(&r);
        QTRY_VERIFY_WITH_TIMEOUT(r.record.size() >= 10, 3000);
        p->linea.datiLive().rimuoviAscoltatore(&r);

        // Each decoded record is a frame the ECU sent, in order, with nothing lost.
        const auto corrisponde = [](const RecordDati &d, const QByteArray &bytes) {
            const auto u8 = [&](int pos) { return double(quint8(bytes.at(pos - 1))); };
            const auto u16 = [&](int pos) { return u8(pos) * 256 + u8(pos + 1); };
            return d.Valore[Canale::FlagPa] == u8(2) && d.Valore[Canale::Giri] == u16(3)
                   && d.Valore[Canale::Tps] == Scala1023(u16(5))
                   && d.Valore[Canale::Lambda] == Scala1023(u16(7)) && d.Valore[Canale::ActPos] == u8(9)
                   && d.Valore[Canale::RicMag] == u8(10) && d.Valore[Canale::MZonAct] == u8(11)
                   && d.Valore[Canale::Pompata] == u8(12) && d.Valore[Canale::TipTps] == u8(13)
                   && d.Valore[Canale::TipAlim] == u8(14) && d.Valore[Canale::TipoLambda] == 0;
        };
        qsizetype i = 0;
        while (i < inviati.size() && !corrisponde(r.record[0], inviati[i].payload))
            ++i;
        QVERIFY(i + r.record.size() <= inviati.size());
        for (const RecordDati &d : r.record) {
            const Inviato &s = inviati[i++];
            QVERIFY(corrisponde(d, s.payload));
            // And the bytes are the engine the simulator was running.
            QCOMPARE(d.Valore[Canale::Giri], double(s.campione.giri));
            QCOMPARE(d.Valore[Canale::MZonAct], double(s.campione.zona));
        }
    }

    void aPulledLineComesBackByItself()
    {
        // The ECU behind a fixed path, as an adapter that comes back under the same name.
        const QString collegamento = cartella.filePath(QStringLiteral("ecu"));
        ecu = std::make_unique<EcuSimulata>();
        QVERIFY2(ecu->apriPty(collegamento), qPrintable(ecu->erroreLinea()));
        richiesteVersione = 0;
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [this](const QByteArray &f) {
            if (f.size() > 4 && f.at(4) == 'V')
                ++richiesteVersione;
        });
        auto spia = std::make_unique<PortaSpia>();
        PortaSpia *porta = spia.get();
        auto ra = std::make_unique<TemporizzatoreManuale>();
        TemporizzatoreManuale *riapertura = ra.get();
        lingua = Lingua(cartella.path());
        p = std::make_unique<Programma>(
            cartella.path(), lingua, std::move(spia), std::make_unique<TemporizzatoreQt>(),
            std::make_unique<TemporizzatoreQt>(), std::move(ra), std::make_unique<TemporizzatoreManuale>());
        p->dispositivoForzato = collegamento;
        QVERIFY(p->ApriPorta());
        ecu->avvia();
        QTRY_COMPARE_WITH_TIMEOUT(p->linea.ecu().EcuDaIdentificare, false, 3000);
        QTRY_VERIFY_WITH_TIMEOUT(p->linea.TimeOutDati().isEnabled(), 2000);

        // Pulled: closed, said, and the ECU forgotten at once rather than two seconds later.
        QSignalSpy persa(&p->linea.sorveglianza(), &SorveglianzaLinea::persa);
        ecu->riaggancia();
        QTRY_COMPARE_WITH_TIMEOUT(persa.size(), 1, 3000);
        QCOMPARE(p->linea.sorveglianza().stato(), SorveglianzaLinea::Stato::Persa);
        QVERIFY(!p->linea.porta().PortOpen());
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, true);
        QVERIFY(!QFileInfo(collegamento).isSymLink());
        QVERIFY(riapertura->scatta()); // nothing to open yet
        QCOMPARE(p->linea.sorveglianza().stato(), SorveglianzaLinea::Stato::Persa);
        QTest::qWait(300);

        // Plugged in again: a new device under the same path, opened at the next try.
        QVERIFY(ecu->riapriLinea());
        QVERIFY(riapertura->scatta());
        QCOMPARE(p->linea.sorveglianza().stato(), SorveglianzaLinea::Stato::Aperta);
        QTRY_COMPARE_WITH_TIMEOUT(p->linea.ecu().EcuDaIdentificare, false, 3000);
        QCOMPARE(richiesteVersione, 2);
        QCOMPARE(persa.size(), 1);
        QCOMPARE(porta->scrittureSuPortaChiusa, 0);
    }

    void noiseAndBadChecksumsLoseOnlyTheFramesTheyHit()
    {
        OpzioniEcu o;
        o.frameAlSecondo = 40;
        avvia(o);
        QTRY_COMPARE_WITH_TIMEOUT(p->linea.ecu().EcuDaIdentificare, false, 3000);

        int ricevuti = 0;
        connect(&p->linea, &SessioneLinea::segnalazione, this, [&](const QString &hex) {
            if (hex.startsWith(QLatin1String("64")))
                ++ricevuti;
        });
        const qsizetype primo = inviati.size();
        int corrotti = 0;
        connect(ecu.get(), &EcuSimulata::frameInviato, this, [&](const QByteArray &f) {
            if (f.size() > 6 && f.at(4) == 'd' && !checksumValido(f))
                ++corrotti;
        });
        ecu->corrompiOgniNFrame(4);
        ecu->impostaRumore(3, 8, false);
        QTest::qWait(2000);
        ecu->corrompiOgniNFrame(0);
        ecu->impostaRumore(0);
        QTest::qWait(200);
        ecu->impostaStallo(true);
        QTest::qWait(200);
        const qsizetype buoni = inviati.size() - primo;
        QVERIFY(corrotti > 5);
        // A good frame right behind a bad one waits for the next arrival, so the very last
        // one may still be in the buffer.
        QVERIFY2(ricevuti == buoni || ricevuti == buoni - 1,
                 qPrintable(QStringLiteral("%1 of %2").arg(ricevuti).arg(buoni)));
    }
};

QTEST_GUILESS_MAIN(TstCollegamento)
#include "tst_collegamento.moc"
