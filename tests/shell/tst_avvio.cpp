#include "EcuSimulata.h"
#include "link/PortaSeriale.h"
#include "shell/Avvio.h"
#include "shell/FileIni.h"
#include "shell/IstanzaUnica.h"
#include "shell/PercorsoApp.h"
#include "shell/Programma.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

std::unique_ptr<Programma> nuovoProgramma(const QString &cartella)
{
    return std::make_unique<Programma>(cartella, std::make_unique<PortaSeriale>(),
                                       std::make_unique<TemporizzatoreQt>(),
                                       std::make_unique<TemporizzatoreQt>());
}

void scrivi(const QString &percorso, const QByteArray &testo)
{
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(testo);
}

} // namespace

class TstAvvio : public QObject
{
    Q_OBJECT

private slots:
    void firstStartInAnEmptyFolderMakesItsTreeAndSpeaks()
    {
        QTemporaryDir dir;
        const QString home = dir.filePath("KV");
        IstanzaUnica istanza(home);
        QCOMPARE(Avvio::preparaCartella(home, istanza), Avvio::Esito::Prosegui);
        QCOMPARE(SeminaLingue(home, {QStringLiteral(KV_SOURCE_DIR "/lang")}), 2);
        FileIni::scrivi(PercorsoIni(home), "SERIALE", "Porta", "/dev/korvantine-no-such-port");

        auto p = nuovoProgramma(home);
        QSignalSpy fallita(p.get(), &Programma::portaNonAperta);
        Avvio::esegui(*p);

        for (const char *c : {"MAPPATURE/LPG", "MAPPATURE/CNG", "SOFTWARE", "DATI"})
            QVERIFY2(QDir(home + "/" + c).exists(), c);
        QCOMPARE(p->lingua.LinguaCorrente, QString("ENGLISH"));
        QCOMPARE(fallita.size(), 1);
        QVERIFY(!fallita.at(0).at(0).toString().trimmed().isEmpty());
        QVERIFY(!fallita.at(0).at(1).toString().trimmed().isEmpty());
        QVERIFY(!p->porta.PortOpen());
        // The program goes on without a link, with its tables built.
        QCOMPARE(p->catalogo.Valori[Par::SogliaGiriEntrataMinimo].Formato, QString("#0"));
        QCOMPARE(p->canali.TitoloCanale(2).isEmpty(), false);
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(-1));
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
    }

    void leftoversOfTheLastRunAreRemovedAndTheSettingsKept()
    {
        QTemporaryDir dir;
        const QString home = dir.path();
        scrivi(home + "/MESSAGGI.TXT", "02873AF1560803\r\n");
        scrivi(home + "/MAPPA.TMP", "x");
        const QByteArray ini = "; workshop PC\r\n[SERIALE]\r\nPorta=/dev/korvantine-no-such-port\r\nBaudRate=57600\r\n";
        scrivi(PercorsoIni(home), ini);
        IstanzaUnica istanza(home);
        QCOMPARE(Avvio::preparaCartella(home, istanza), Avvio::Esito::Prosegui);
        auto p = nuovoProgramma(home);
        Avvio::esegui(*p);
        QVERIFY(!QFile::exists(home + "/MESSAGGI.TXT"));
        QVERIFY(!QFile::exists(home + "/MAPPA.TMP"));
        QCOMPARE(p->seriale.VelocitaCom, 9600);
        QFile f(PercorsoIni(home));
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), ini); // nothing written back until the user saves
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
        QFile f(home + "/MESSAGGI.TXT");
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("LOG OF THE FIRST\r\n"));
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
        auto p = nuovoProgramma(home);
        QSignalSpy fallita(p.get(), &Programma::portaNonAperta);
        Avvio::esegui(*p);
        QCOMPARE(fallita.size(), 0);
        QVERIFY(p->porta.PortOpen());
        QCOMPARE(p->seriale.VelocitaCom, 38400);
        ecu.avvia();
        QTRY_COMPARE_WITH_TIMEOUT(p->stato.EcuDaIdentificare, qint16(0), 3000);
        p.reset();

        QFile log(home + "/MESSAGGI.TXT");
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QList<QByteArray> righe = log.readAll().split('\n');
        QVERIFY(righe.contains("02873AF1560803\r")); // the version request, as sent
        for (const QByteArray &r : righe) {
            if (r.isEmpty() || r == "\r")
                continue; // the end of a dialogue logs an empty line
            QVERIFY2(r.endsWith('\r'), r.constData());
            const QByteArray hex = r.chopped(1);
            QCOMPARE(hex, hex.toUpper());
            QVERIFY2(hex.startsWith("02") && hex.endsWith("03"), hex.constData());
        }
    }
};

QTEST_GUILESS_MAIN(TstAvvio)
#include "tst_avvio.moc"
