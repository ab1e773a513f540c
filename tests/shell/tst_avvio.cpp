#include "EcuSimulata.h"
#include "base/FileIni.h"
#include "base/IstanzaUnica.h"
#include "base/Lingua.h"
#include "base/PercorsoApp.h"
#include "link/PortaSeriale.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "support/FileDiProva.h"
#include "support/SolaLettura.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <grp.h>
#include <unistd.h>

using namespace kv;
using namespace kv::sim;

namespace {

std::unique_ptr<Programma> nuovoProgramma(const QString &cartella, Lingua &lingua)
{
    lingua = Lingua(cartella);
    return std::make_unique<Programma>(cartella, lingua, std::make_unique<PortaSeriale>(),
                                       std::make_unique<TemporizzatoreQt>(),
                                       std::make_unique<TemporizzatoreQt>());
}

// As the program starts: the language chosen first, its names handed to the start-up.
void esegui(Programma &p)
{
    p.lingua.LeggiImpLingua();
    Avvio::esegui(p, p.lingua.Cerca());
}

} // namespace

class TstAvvio : public QObject
{
    Q_OBJECT
    Lingua lingua;

private slots:
    void firstStartInAnEmptyFolderThenASecondRemovesTheLeftovers()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath("KV");
        auto istanza = std::make_unique<IstanzaUnica>(home);
        QCOMPARE(Avvio::preparaCartella(home, *istanza), Avvio::Esito::Prosegui);
        QCOMPARE(SeminaLingue(home, {QStringLiteral(KV_SOURCE_DIR "/lang")}), 2);
        FileIni::scrivi(PercorsoIni(home), "SERIALE", "Porta", "/dev/korvantine-no-such-port");
        auto p = nuovoProgramma(home, lingua);
        QSignalSpy fallita(p.get(), &Programma::portaNonAperta);
        esegui(*p);
        for (const char *c : {"MAPPATURE/LPG", "MAPPATURE/CNG", "SOFTWARE", "DATI"})
            QVERIFY2(QDir(home + "/" + c).exists(), c);
        QCOMPARE(p->lingua.LinguaCorrente, QString("ENGLISH"));
        // The program goes on without a link, its channel names read in the chosen language.
        QVERIFY(!p->canali.TitoloCanale(2).isEmpty());
        QVERIFY(!p->linea.porta().PortOpen());
        QCOMPARE(fallita.size(), 1);
        p.reset();
        istanza.reset();

        scrivi(home + "/MESSAGGI.TXT", "02873AF1560803\r\n");
        scrivi(home + "/MAPPA.TMP", "x");
        scrivi(home + "/KVMAPPA.TMP", QByteArray(128, 'F') + "\r\n"); // a map read a crash cut short
        const QByteArray ini =
            "; workshop PC\r\n[SERIALE]\r\nPorta=/dev/korvantine-no-such-port\r\nBaudRate=57600\r\n";
        scrivi(PercorsoIni(home), ini);
        istanza = std::make_unique<IstanzaUnica>(home);
        QCOMPARE(Avvio::preparaCartella(home, *istanza), Avvio::Esito::Prosegui);
        p = nuovoProgramma(home, lingua);
        esegui(*p);
        QVERIFY(!QFile::exists(home + "/MESSAGGI.TXT"));
        QVERIFY(!QFile::exists(home + "/MAPPA.TMP"));
        QVERIFY(!QFile::exists(home + "/KVMAPPA.TMP"));
        QCOMPARE(p->seriale.VelocitaCom, 9600);
        QCOMPARE(leggi(PercorsoIni(home)), ini); // nothing written back until the user saves
    }

    void secondInstanceTouchesNothing()
    {
        QTemporaryDir dir;
        const QString home = dir.path();
        IstanzaUnica prima(home);
        QCOMPARE(Avvio::preparaCartella(home, prima), Avvio::Esito::Prosegui);
        scrivi(home + "/MESSAGGI.TXT", "LOG OF THE FIRST\r\n");
        IstanzaUnica seconda(home);
        QCOMPARE(Avvio::preparaCartella(home, seconda), Avvio::Esito::AltraIstanza);
        QCOMPARE(leggi(home + "/MESSAGGI.TXT"), QByteArray("LOG OF THE FIRST\r\n"));
        QVERIFY(!QDir(home + "/DATI").exists());
    }

    void portGivenByPathOpensAndTheFrameLogFollowsTheLine()
    {
        OpzioniEcu opzioni;
        EcuSimulata ecu(opzioni);
        QVERIFY(ecu.apriPty());
        QTemporaryDir dir;
        const QString home = dir.path();
        FileIni::scrivi(PercorsoIni(home), "SERIALE", "Porta", ecu.percorsoDispositivo());
        FileIni::scrivi(PercorsoIni(home), "SERIALE", "BaudRate", "38400");
        IstanzaUnica istanza(home);
        QCOMPARE(Avvio::preparaCartella(home, istanza), Avvio::Esito::Prosegui);
        auto p = nuovoProgramma(home, lingua);
        QSignalSpy fallita(p.get(), &Programma::portaNonAperta);
        esegui(*p);
        QCOMPARE(fallita.size(), 0);
        QVERIFY(p->linea.porta().PortOpen());
        QCOMPARE(p->seriale.VelocitaCom, 38400);
        ecu.avvia();
        QTRY_COMPARE_WITH_TIMEOUT(p->linea.ecu().EcuDaIdentificare, false, 3000);
        p.reset();
        // The version request, as sent, in the log of the folder the program was started in.
        QVERIFY(leggi(home + "/MESSAGGI.TXT").split('\n').contains("02873AF1560803\r"));
    }

    void aPortRefusedForLackOfPermissionNamesTheGroupToJoin()
    {
        const group *dialout = getgrnam("dialout");
        if (!dialout)
            QSKIP("no dialout group here");
        EcuSimulata ecu{OpzioniEcu{}};
        QVERIFY(ecu.apriPty());
        const QString dispositivo = ecu.percorsoDispositivo();
        QCOMPARE(chown(QFile::encodeName(dispositivo).constData(), uid_t(-1), dialout->gr_gid), 0);
        QTemporaryDir dir;
        QVERIFY(SeminaLingue(dir.path(), {QStringLiteral(KV_SOURCE_DIR "/lang")}) > 0);
        auto p = nuovoProgramma(dir.path(), lingua);
        p->lingua.LeggiImpLingua();
        p->dispositivoForzato = dispositivo;
        QSignalSpy fallita(p.get(), &Programma::portaNonAperta);
        {
            // Owner and group may use it, and this process is neither.
            SolaLettura vietato(dispositivo, QFile::ReadGroup | QFile::WriteGroup);
            QVERIFY(!p->ApriPorta());
        }
        QCOMPARE(fallita.size(), 1);
        QCOMPARE(fallita.at(0).at(1).toString(), QStringLiteral("dialout"));
        // Any other failure says nothing of groups.
        p->dispositivoForzato = dir.filePath("no-such-port");
        QVERIFY(!p->ApriPorta());
        QVERIFY(fallita.at(1).at(1).toString().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TstAvvio)
#include "tst_avvio.moc"
