#include "base/FileSystem.h"
#include "base/IstanzaUnica.h"
#include "base/PercorsoApp.h"

#include "support/FileDiProva.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace kv;

namespace {

QStringList contenuto(const QString &cartella)
{
    return QDir(cartella).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

struct Ricerca
{
    const char *percorso;
    int attributi;
    qint16 atteso;
};

} // namespace

class TestFileSystem : public QObject
{
    Q_OBJECT

private slots:
    void makeFolderMakesEveryLevelAndFailsSilently()
    {
        QTemporaryDir dir;
        QCOMPARE(CreaCartella(dir.path() + "/MAPPATURE/LPG/"), qint16(-1));
        QCOMPARE(CreaCartella(" " + dir.path() + "/DATI "), qint16(-1));
        QVERIFY(QFileInfo(dir.path() + "/MAPPATURE/LPG").isDir() && QFileInfo(dir.path() + "/DATI").isDir());
        scrivi(dir.filePath("FILE"), "x");
        for (const QString &impossibile : {dir.path() + "/FILE/SOTTO/", dir.path() + "/FILE/", QString()})
            QCOMPARE(CreaCartella(impossibile), qint16(0));
        QCOMPARE(CreaCartella("/"), qint16(-1));
    }

    void fileSearchAsTheDirectorySearchDoesIt()
    {
        QTemporaryDir dir;
        for (const char *c : {"SOFTWARE", "MODELLO", "VUOTA", "ALTRO"})
            QVERIFY(QDir(dir.path()).mkdir(c));
        scrivi(dir.filePath("MAPPA.TMP"), "x");
        scrivi(dir.filePath("MODELLO/mappa1.lkv"), "x");
        scrivi(dir.filePath("ALTRO/LEGGIMI"), "x");
        // Names are found whatever their case, as on the system the files come from. A folder
        // search for "*." finds the folder's own "." entry; for files it asks for names
        // without extension.
        const Ricerca ricerche[] = {{"MAPPA.TMP", 0, -1},          {"MAPPA.TMP", 16, 0},
                                    {"SOFTWARE", 16, -1},          {"SOFTWARE", 0, 0},
                                    {"SOFTWARE/", 16, -1},         {"MANCA", 0, 0},
                                    {"MANCA/MAPPA.TMP", 0, 0},     {"mappa.tmp", 0, -1},
                                    {"Software", 16, -1},          {"VUOTA/*.LKV", 0, 0},
                                    {"MODELLO/*.LKV", 0, -1},      {"MODELLO/MAPPA?.LKV", 0, -1},
                                    {"MODELLO/MAPPA??.LKV", 0, 0}, {"MODELLO/*.LKV", 16, 0},
                                    {"VUOTA/*.", 16, -1},          {"MANCA/*.", 16, 0},
                                    {"MODELLO/*.", 0, 0},          {"ALTRO/*.", 0, -1}};
        for (const Ricerca &r : ricerche)
            QVERIFY2(EsisteFile(dir.filePath(r.percorso), r.attributi) == r.atteso, r.percorso);
        QCOMPARE(EsisteFile("", 0), qint16(0));
    }

    void waitingSecondsAndOverMidnight()
    {
        QElapsedTimer orologio;
        orologio.start();
        AttesaSecondi(0.25);
        QVERIFY(orologio.elapsed() >= 240 && orologio.elapsed() < 5000);
        orologio.restart();
        AttesaSecondi(0);
        AttesaSecondi(-3);
        AttesaSecondi(qQNaN());
        QVERIFY(orologio.elapsed() < 100);

        // A clock 300 ms before midnight that moves 100 ms per reading.
        int ora = 86400 * 1000 - 300;
        int letture = 0;
        AttesaSecondi(1.0, [&] {
            ++letture;
            const int adesso = ora;
            ora = (ora + 100) % (86400 * 1000);
            return adesso;
        });
        // One reading to start, then ten steps of 100 ms: the wrap costs nothing.
        QCOMPARE(letture, 11);
    }

    void appFolderResolvesWithoutMakingAnything()
    {
        QTemporaryDir dir;
        const QString eseguibile = dir.path() + "/bin";
        const QString utente = dir.path() + "/utente/Korvantine";
        QVERIFY(QDir().mkpath(eseguibile));
        QCOMPARE(RisolviPercorsoApp("  /srv/officina/ ", eseguibile, utente), QString("/srv/officina"));
        QCOMPARE(RisolviPercorsoApp("/", eseguibile, utente), QString(""));
        // An empty program folder is an installed one: the files go to the user's folder.
        QCOMPARE(RisolviPercorsoApp("  ", eseguibile + "/", utente + "/"), utente);
        QVERIFY(!QFile::exists(utente));
        scrivi(eseguibile + "/italiano.lng", "x");
        QCOMPARE(RisolviPercorsoApp("", eseguibile + "/", utente), eseguibile);
        QVERIFY(QFile::remove(eseguibile + "/italiano.lng"));
        scrivi(eseguibile + "/KORVANTINE.INI", "x");
        QCOMPARE(RisolviPercorsoApp("", eseguibile, utente), eseguibile);
        QCOMPARE(RisolviPercorsoApp("", dir.path() + "/manca", utente), utente);
        QCOMPARE(RisolviPercorsoApp("", dir.path() + "/manca", ""), dir.path() + "/manca");
    }

    void seedingLanguagesNeverReplacesTheUsersFiles()
    {
        QTemporaryDir dir;
        const QString a = dir.path() + "/a", b = dir.path() + "/b", utente = dir.path() + "/utente/K";
        const QString altro = dir.path() + "/altro";
        QVERIFY(QDir().mkpath(a) && QDir().mkpath(b) && QDir().mkpath(altro));
        scrivi(a + "/ENGLISH.LNG", "da a");
        scrivi(a + "/ITALIANO.LNG", "da a");
        scrivi(a + "/LEGGIMI.TXT", "no");
        scrivi(b + "/ENGLISH.LNG", "da b");
        scrivi(b + "/francais.lng", "da b");
        QFile::setPermissions(a + "/ITALIANO.LNG", QFile::ReadOwner | QFile::ReadGroup);
        QCOMPARE(SeminaLingue(utente, {dir.path() + "/manca", a, b}), 3);
        QCOMPARE(contenuto(utente), (QStringList{"ENGLISH.LNG", "ITALIANO.LNG", "francais.lng"}));
        QCOMPARE(leggi(utente + "/ENGLISH.LNG"), QByteArray("da a"));
        QVERIFY(QFileInfo(utente + "/ITALIANO.LNG").permissions() & QFile::WriteOwner);

        // A changed file stays, a deleted one is not brought back, a lower-case one counts.
        scrivi(utente + "/ENGLISH.LNG", "mio");
        QVERIFY(QFile::remove(utente + "/ITALIANO.LNG"));
        QCOMPARE(SeminaLingue(utente, {a, b}), 0);
        QCOMPARE(leggi(utente + "/ENGLISH.LNG"), QByteArray("mio"));
        QVERIFY(!QFile::exists(utente + "/ITALIANO.LNG"));
        scrivi(altro + "/english.lng", "mio");
        QCOMPARE(SeminaLingue(altro, {a}), 0);
        scrivi(dir.filePath("FILE"), "x");
        QCOMPARE(SeminaLingue(dir.filePath("FILE/K"), {a}), -1);

        // The source tree's own files seed a fresh folder with both shipped languages.
        const QStringList spedite = CartelleLingueDistribuite("/opt/korvantine/bin");
        QCOMPARE(spedite.value(0), QString("/opt/korvantine/share/korvantine/lang"));
        QVERIFY(SeminaLingue(dir.path() + "/k", spedite) >= 2);
        QVERIFY(QFile::exists(dir.path() + "/k/ENGLISH.LNG")
                && QFile::exists(dir.path() + "/k/ITALIANO.LNG"));
    }

    void aSecondInstanceIsRefusedAndTouchesNothing()
    {
        QTemporaryDir dir;
        const QString app = dir.path() + "/app";
        IstanzaUnica prima(app);
        QCOMPARE(prima.acquisisci(), IstanzaUnica::Esito::Acquisita);
        QVERIFY(QFile::exists(app + "/KORVANTINE.LCK"));
        scrivi(app + "/MESSAGGI.TXT", "log della prima");
        const QStringList visto = contenuto(app);
        const QByteArray lock = leggi(app + "/KORVANTINE.LCK");
        {
            IstanzaUnica seconda(app);
            QCOMPARE(seconda.acquisisci(), IstanzaUnica::Esito::AltraIstanza);
            QVERIFY(!seconda.attiva());
        }
        QCOMPARE(contenuto(app), visto);
        QCOMPARE(leggi(app + "/KORVANTINE.LCK"), lock);
        QCOMPARE(leggi(app + "/MESSAGGI.TXT"), QByteArray("log della prima"));
        prima.rilascia();
        scrivi(dir.filePath("FILE"), "x");
        QCOMPARE(IstanzaUnica(dir.filePath("FILE/app")).acquisisci(), IstanzaUnica::Esito::Errore);
        // A lock left by a process that is gone (PID past any real one) on this machine.
        scrivi(app + "/KORVANTINE.LCK", "2147483000\n" + QCoreApplication::applicationName().toUtf8() + "\n"
                                            + QSysInfo::machineHostName().toUtf8() + "\n");
        IstanzaUnica dopoCrash(app);
        QCOMPARE(dopoCrash.acquisisci(), IstanzaUnica::Esito::Acquisita);
        QVERIFY(leggi(app + "/KORVANTINE.LCK").startsWith(QByteArray::number(getpid()) + "\n"));
    }
};

QTEST_GUILESS_MAIN(TestFileSystem)
#include "tst_filesystem.moc"
