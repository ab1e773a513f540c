// korvantine-cli against the simulated ECU on a pseudo-terminal: each command puts on the line
// what the program puts there for the same job; the exit statuses a script relies on; the
// port never shared, and free again once a command is killed.

#include "EcuSimulata.h"
#include "FileS19.h"
#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/MappaDiProva.h"
#include "support/VistaMappeMuta.h"

#include "link/PortaSeriale.h"
#include "programming/DialogoMappe.h"
#include "programming/DialogoProgSW.h"
#include "shell/Programma.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;
using namespace kv::sim;

namespace {

enum class Lavoro {
    Nessuno, // identification alone
    LetturaMappa,
    ScritturaMappa,
    Flash
};

// A simulated ECU streaming on a pseudo-terminal, with every frame it hears kept.
struct Ecu
{
    EcuSimulata ecu{OpzioniEcu{}};
    QByteArrayList uditi;
    explicit Ecu(const std::function<void(EcuSimulata &)> &guasto = {})
    {
        QObject::connect(&ecu, &EcuSimulata::frameRicevuto, [this](const QByteArray &f) { uditi << f; });
        if (guasto)
            guasto(ecu);
        if (ecu.apriPty())
            ecu.avvia();
    }
    QString porta() const { return ecu.percorsoDispositivo(); }
};

struct VistaProgSWProva : VistaProgSW
{
    void mostraSegnalazione(const Messaggio &) override {}
    void abilitaPagina(bool) override {}
    void mostraBarra(bool) override {}
    void impostaBarra(int) override {}
    void mostraMsg(const Messaggio &, int, const Messaggio &) override {}
    bool chiedi(const Messaggio &, const Messaggio &) override { return true; }
};

} // namespace

class TstCliLinea : public QObject
{
    Q_OBJECT

    QTemporaryDir d;
    QString home() const { return d.filePath("home"); }
    QString file(const char *nome) const { return d.filePath(QString::fromLatin1(nome)); }

    struct Esito
    {
        int uscita = -1;
        QString err;
    };
    // The command runs while this thread serves the simulator.
    Esito cli(QStringList argomenti, const QString &porta, QProcess *processo = nullptr)
    {
        QProcess locale;
        QProcess &p = processo ? *processo : locale;
        p.start(QStringLiteral(KV_CLI), argomenti << "--port" << porta << "--baud"
                                                  << "38400"
                                                  << "--home" << home());
        if (processo)
            return {};
        (void)QTest::qWaitFor([&] { return p.state() == QProcess::NotRunning; }, 30000);
        return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1,
                QString::fromUtf8(p.readAllStandardError())};
    }

    // The same job done by the program's own objects, on its own port and timers.
    QByteArrayList programma(Lavoro lavoro)
    {
        Ecu e;
        Lingua lingua(d.filePath("programma"));
        Programma p(d.filePath("programma"), lingua, std::make_unique<PortaSeriale>(),
                    std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
        p.lingua.PercorsoApp = home();
        p.lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p.seriale.VelocitaCom = 38400;
        p.dispositivoForzato = e.porta();
        const auto libero = [&] { return p.linea.motore().StatoDialogo() == -1; };
        if (!p.ApriPorta()
            || !QTest::qWaitFor([&] { return !p.linea.ecu().EcuDaIdentificare && libero(); }, 5000))
            return {};
        VistaMappeMuta vm;
        VistaProgSWProva vs;
        LetturaMappe lettura(p.linea, p.PercorsoApp, p.catalogo, vm);
        ScritturaMappe scrittura(p.linea, p.PercorsoApp, vm);
        DialogoProgSW flash(p.linea, p.PercorsoApp, vs);
        const ChiaveMappa chiave{"LPG", "Make", "Model", "BASE"};
        switch (lavoro) {
        case Lavoro::Nessuno:
            break;
        case Lavoro::LetturaMappa:
            lettura.Leggi(chiave, {});
            break;
        case Lavoro::ScritturaMappa:
            scrivi(PercorsoFileMappa(p.PercorsoApp, chiave).file, leggi(file("BASE.LKV")));
            scrittura.ProgrammaMappa(chiave, true);
            break;
        case Lavoro::Flash:
            scrivi(CartellaFileS19(p.PercorsoApp) + "/R2.S19", RilascioDemo());
            flash.scegli("R2");
            flash.avviaProgrammazione();
            break;
        }
        return QTest::qWaitFor(libero, 20000) ? e.uditi : QByteArrayList{"not finished"};
    }

private slots:
    void initTestCase()
    {
        QVERIFY(QDir().mkpath(home()) && QDir().mkpath(d.filePath("programma")));
        QVERIFY(QFile::copy(KV_SOURCE_DIR "/lang/ENGLISH.LNG", home() + "/ENGLISH.LNG"));
        QByteArray mappa(512, '\0');
        for (int i = 0; i < mappa.size(); ++i)
            mappa[i] = char(i * 7);
        scrivi(file("BASE.LKV"), comeFile(mappa));
        scrivi(file("CUT.LKV"), comeFile(mappa).left(5 * 130 + 60));
        scrivi(file("R2.S19"), RilascioDemo());
        QByteArray s19 = RilascioDemo();
        const qsizetype riga3 = s19.indexOf('\n', s19.indexOf('\n') + 1) + 1;
        s19[riga3 + 20] = s19[riga3 + 20] == '0' ? '1' : '0'; // the checksum no longer holds
        scrivi(file("BAD.S19"), s19);
    }

    void eachCommandPutsTheProgramsBytesOnTheLine_data()
    {
        QTest::addColumn<QStringList>("comando");
        QTest::addColumn<Lavoro>("lavoro");
        QTest::newRow("identify") << QStringList{"identify"} << Lavoro::Nessuno;
        QTest::newRow("record") << QStringList{"record", "--seconds", "0.5", file("R.ACQ")}
                                << Lavoro::Nessuno;
        QTest::newRow("read-map") << QStringList{"read-map", file("OUT.LKV")} << Lavoro::LetturaMappa;
        QTest::newRow("read-map --archive")
            << QStringList{"read-map", "--archive", "LPG/Make/Model/BASE"} << Lavoro::LetturaMappa;
        QTest::newRow("write-map --verify")
            << QStringList{"write-map", file("BASE.LKV"), "--verify"} << Lavoro::ScritturaMappa;
        QTest::newRow("flash") << QStringList{"flash", file("R2.S19")} << Lavoro::Flash;
    }

    void eachCommandPutsTheProgramsBytesOnTheLine()
    {
        QFETCH(QStringList, comando);
        QFETCH(Lavoro, lavoro);
        Ecu e;
        const Esito esito = cli(comando, e.porta());
        QVERIFY2(esito.uscita == 0, qPrintable(esito.err));
        QByteArrayList attesi = programma(lavoro);
        QVERIFY(attesi.size() > 1);
        // After 'F' the program identifies the restarted ECU whenever its stream comes back;
        // the command has ended by then.
        if (lavoro == Lavoro::Flash)
            attesi = attesi.mid(0, e.uditi.size());
        QCOMPARE(e.uditi, attesi);
        QCOMPARE(e.uditi.last().mid(4, 1), lavoro == Lavoro::Flash ? "F" : e.uditi.last().mid(4, 1));
        if (comando.first() == "read-map") // the same map, filed the same
            QCOMPARE(
                leggi(comando.size() == 2 ? comando.last() : home() + "/MAPPATURE/LPG/Make/Model/BASE.LKV"),
                leggi(d.filePath("programma/MAPPATURE/LPG/Make/Model/BASE.LKV")));
    }

    void exitStatuses_data()
    {
        QTest::addColumn<QStringList>("comando");
        QTest::addColumn<std::function<void(EcuSimulata &)>>("guasto");
        QTest::addColumn<int>("uscita");
        QTest::addColumn<QString>("motivo");
        const std::function<void(EcuSimulata &)> nessuno;
        // Identification takes five replies; the sixth is the first block's.
        QTest::newRow("time-out") << QStringList{"write-map", file("BASE.LKV")}
                                  << std::function([](EcuSimulata &e) { e.scartaOgniNRisposte(6); }) << 2
                                  << "does not answer";
        QTest::newRow("refusal") << QStringList{"write-map", file("BASE.LKV")}
                                 << std::function([](EcuSimulata &e) { e.impostaErroreScrittura(0xC100); })
                                 << 3 << "05H Request refused by the ECU";
        QTest::newRow("bad map") << QStringList{"write-map", file("CUT.LKV")} << nessuno << 4 << "Record 6 ";
        QTest::newRow("bad S19") << QStringList{"flash", file("BAD.S19")} << nessuno << 4 << "Line 3 ";
        QTest::newRow("busy port") << QStringList{"identify"} << nessuno << 5
                                   << "is in use by another program";
    }

    void exitStatuses()
    {
        QFETCH(QStringList, comando);
        QFETCH(std::function<void(EcuSimulata &)>, guasto);
        QFETCH(int, uscita);
        QFETCH(QString, motivo);
        Ecu e(guasto);
        PortaSeriale programma;
        if (uscita == 5)
            QVERIFY(programma.apri({e.porta(), 38400}));
        const Esito esito = cli(comando, e.porta());
        QCOMPARE(esito.uscita, uscita);
        QVERIFY2(esito.err.contains(motivo), qPrintable(esito.err));
        if (uscita == 4) // nothing of a bad file reaches the line
            QVERIFY(e.uditi.isEmpty());
    }

    void aKilledCommandLeavesThePortFree()
    {
        Ecu e;
        QProcess registrazione;
        cli({"record", "--seconds", "60", file("K.ACQ")}, e.porta(), &registrazione);
        QVERIFY(QTest::qWaitFor([&] { return registrazione.readAllStandardError().contains("recording"); },
                                10000));
        // The program refuses the port the command holds, and says why.
        PortaSeriale programma;
        QVERIFY(!programma.apri({e.porta(), 38400}));
        QVERIFY(programma.occupata());
        registrazione.kill();
        QVERIFY(registrazione.waitForFinished(5000));
        QVERIFY(programma.apri({e.porta(), 38400}));
    }
};

QTEST_GUILESS_MAIN(TstCliLinea)
#include "tst_cli_linea.moc"
