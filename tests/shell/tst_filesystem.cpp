#include "shell/FileSystem.h"
#include "shell/IstanzaUnica.h"
#include "shell/PercorsoApp.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

namespace {

void scrivi(const QString &percorso, const QByteArray &byte)
{
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(byte), byte.size());
}

QByteArray leggi(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QStringList contenuto(const QString &cartella)
{
    return QDir(cartella).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                                    QDir::Name);
}

} // namespace

class TestFileSystem : public QObject
{
    Q_OBJECT

private slots:
    void creaCartella();
    void esisteFile();
    void esisteFileConJolly();
    void trovaFile();
    void attesaSecondi();
    void attesaOltreMezzanotte();
    void percorsoApp();
    void seminaLingue();
    void lingueDistribuite();
    void istanzaUnica();
    void istanzaUnicaLockAbbandonato();
};

void TestFileSystem::creaCartella()
{
    QTemporaryDir dir;
    const QString lpg = dir.path() + "/MAPPATURE/LPG/";
    QCOMPARE(CreaCartella(lpg), qint16(-1));
    QVERIFY(QFileInfo(dir.path() + "/MAPPATURE").isDir());
    QVERIFY(QFileInfo(dir.path() + "/MAPPATURE/LPG").isDir());
    QCOMPARE(CreaCartella(lpg), qint16(-1));
    QCOMPARE(CreaCartella(" " + dir.path() + "/DATI "), qint16(-1));
    QVERIFY(QFileInfo(dir.path() + "/DATI").isDir());

    scrivi(dir.filePath("FILE"), "x");
    QCOMPARE(CreaCartella(dir.path() + "/FILE/SOTTO/"), qint16(0));
    QCOMPARE(CreaCartella(dir.path() + "/FILE/"), qint16(0));
    QCOMPARE(CreaCartella(""), qint16(0));
    QCOMPARE(CreaCartella("/"), qint16(-1));
}

void TestFileSystem::esisteFile()
{
    QTemporaryDir dir;
    QVERIFY(QDir(dir.path()).mkdir("SOFTWARE"));
    scrivi(dir.filePath("MAPPA.TMP"), "x");
    QCOMPARE(EsisteFile(dir.filePath("MAPPA.TMP"), 0), qint16(-1));
    QCOMPARE(EsisteFile(dir.filePath("MAPPA.TMP"), 16), qint16(0));
    QCOMPARE(EsisteFile(dir.filePath("SOFTWARE"), 16), qint16(-1));
    QCOMPARE(EsisteFile(dir.filePath("SOFTWARE"), 0), qint16(0));
    QCOMPARE(EsisteFile(dir.filePath("SOFTWARE/"), 16), qint16(-1));
    QCOMPARE(EsisteFile(dir.filePath("MANCA"), 0), qint16(0));
    QCOMPARE(EsisteFile(dir.filePath("MANCA"), 16), qint16(0));
    QCOMPARE(EsisteFile(dir.filePath("MANCA/MAPPA.TMP"), 0), qint16(0));
    QCOMPARE(EsisteFile("", 0), qint16(0));
    // Names are found whatever their case, as on the system the files come from.
    QCOMPARE(EsisteFile(dir.filePath("mappa.tmp"), 0), qint16(-1));
    QCOMPARE(EsisteFile(dir.filePath("Software"), 16), qint16(-1));
}

void TestFileSystem::esisteFileConJolly()
{
    QTemporaryDir dir;
    const QString modello = dir.path() + "/MODELLO";
    QVERIFY(QDir().mkpath(modello));
    QCOMPARE(EsisteFile(modello + "/*.LKV", 0), qint16(0));
    scrivi(modello + "/mappa1.lkv", "x");
    QCOMPARE(EsisteFile(modello + "/*.LKV", 0), qint16(-1));
    QCOMPARE(EsisteFile(modello + "/MAPPA?.LKV", 0), qint16(-1));
    QCOMPARE(EsisteFile(modello + "/MAPPA??.LKV", 0), qint16(0));
    QCOMPARE(EsisteFile(modello + "/*.S19", 0), qint16(0));
    QCOMPARE(EsisteFile(modello + "/*.LKV", 16), qint16(0));
    // A folder search for "*." lists the folder's own "." entry, so it always finds
    // something in an existing folder, and nothing in a missing one.
    QCOMPARE(EsisteFile(modello + "/*.", 16), qint16(-1));
    QCOMPARE(EsisteFile(dir.path() + "/MANCA/*.", 16), qint16(0));
    // "*." asks for names without extension.
    QCOMPARE(EsisteFile(modello + "/*.", 0), qint16(0));
    scrivi(modello + "/LEGGIMI", "x");
    QCOMPARE(EsisteFile(modello + "/*.", 0), qint16(-1));
}

void TestFileSystem::trovaFile()
{
    QTemporaryDir dir;
    scrivi(dir.filePath("english.lng"), "x");
    QCOMPARE(TrovaFile(dir.path(), "ENGLISH.LNG"), dir.filePath("english.lng"));
    QCOMPARE(TrovaFile(dir.path(), "english.lng"), dir.filePath("english.lng"));
    QVERIFY(TrovaFile(dir.path(), "ITALIANO.LNG").isEmpty());
    QCOMPARE(PercorsoFile(dir.path(), "ITALIANO.LNG"), dir.filePath("ITALIANO.LNG"));
    scrivi(dir.filePath("ENGLISH.LNG"), "y");
    QCOMPARE(TrovaFile(dir.path(), "ENGLISH.LNG"), dir.filePath("ENGLISH.LNG"));
    QVERIFY(TrovaFile(dir.path() + "/MANCA", "ENGLISH.LNG").isEmpty());
    QVERIFY(TrovaFile(dir.path(), "").isEmpty());
}

void TestFileSystem::attesaSecondi()
{
    QElapsedTimer orologio;
    orologio.start();
    AttesaSecondi(0.25);
    QVERIFY(orologio.elapsed() >= 240);
    QVERIFY(orologio.elapsed() < 5000);

    orologio.restart();
    AttesaSecondi(0);
    AttesaSecondi(-3);
    AttesaSecondi(qQNaN());
    QVERIFY(orologio.elapsed() < 100);
}

void TestFileSystem::attesaOltreMezzanotte()
{
    // A clock that starts 300 ms before midnight and moves 100 ms per reading.
    int ora = 86400 * 1000 - 300;
    int letture = 0;
    auto orologio = [&] {
        ++letture;
        const int adesso = ora;
        ora = (ora + 100) % (86400 * 1000);
        return adesso;
    };
    AttesaSecondi(1.0, orologio);
    // One reading to start, then ten steps of 100 ms: the wrap costs nothing.
    QCOMPARE(letture, 11);
    QCOMPARE(ora, 800);
}

void TestFileSystem::percorsoApp()
{
    QTemporaryDir dir;
    const QString eseguibile = dir.path() + "/bin";
    const QString utente = dir.path() + "/utente/Korvantine";
    QVERIFY(QDir().mkpath(eseguibile));

    QCOMPARE(RisolviPercorsoApp("  /srv/officina/ ", eseguibile, utente), QString("/srv/officina"));
    QCOMPARE(RisolviPercorsoApp("/", eseguibile, utente), QString(""));
    // An empty program folder is an installed one: the files go to the user's folder.
    QCOMPARE(RisolviPercorsoApp("", eseguibile, utente), utente);
    QCOMPARE(RisolviPercorsoApp("  ", eseguibile + "/", utente + "/"), utente);
    QVERIFY(!QFile::exists(utente));  // resolving makes nothing

    scrivi(eseguibile + "/italiano.lng", "x");
    QCOMPARE(RisolviPercorsoApp("", eseguibile + "/", utente), eseguibile);
    QVERIFY(QFile::remove(eseguibile + "/italiano.lng"));
    scrivi(eseguibile + "/KORVANTINE.INI", "x");
    QCOMPARE(RisolviPercorsoApp("", eseguibile, utente), eseguibile);

    QCOMPARE(RisolviPercorsoApp("", dir.path() + "/manca", utente), utente);
    QCOMPARE(RisolviPercorsoApp("", dir.path() + "/manca", ""), dir.path() + "/manca");

    QCOMPARE(PulisciPercorso(" /a/b// "), QString("/a/b/"));
    QVERIFY(CartellaDatiUtente().endsWith("/Korvantine"));
}

void TestFileSystem::seminaLingue()
{
    QTemporaryDir dir;
    const QString a = dir.path() + "/a";
    const QString b = dir.path() + "/b";
    QVERIFY(QDir().mkpath(a));
    QVERIFY(QDir().mkpath(b));
    scrivi(a + "/ENGLISH.LNG", "da a");
    scrivi(a + "/ITALIANO.LNG", "da a");
    scrivi(a + "/LEGGIMI.TXT", "no");
    scrivi(b + "/ENGLISH.LNG", "da b");
    scrivi(b + "/francais.lng", "da b");
    QFile::setPermissions(a + "/ITALIANO.LNG", QFile::ReadOwner | QFile::ReadGroup);

    const QString utente = dir.path() + "/utente/Korvantine";
    QCOMPARE(SeminaLingue(utente, {dir.path() + "/manca", a, b}), 3);
    QCOMPARE(contenuto(utente), (QStringList{"ENGLISH.LNG", "ITALIANO.LNG", "francais.lng"}));
    QCOMPARE(leggi(utente + "/ENGLISH.LNG"), QByteArray("da a"));
    QVERIFY(QFileInfo(utente + "/ITALIANO.LNG").permissions() & QFile::WriteOwner);

    // The user's own files are never replaced, and a deleted one is not brought back.
    scrivi(utente + "/ENGLISH.LNG", "mio");
    QVERIFY(QFile::remove(utente + "/ITALIANO.LNG"));
    QCOMPARE(SeminaLingue(utente, {a, b}), 0);
    QCOMPARE(leggi(utente + "/ENGLISH.LNG"), QByteArray("mio"));
    QVERIFY(!QFile::exists(utente + "/ITALIANO.LNG"));

    const QString altro = dir.path() + "/altro";
    QVERIFY(QDir().mkpath(altro));
    scrivi(altro + "/english.lng", "mio");
    QCOMPARE(SeminaLingue(altro, {a}), 0);
    QCOMPARE(contenuto(altro), QStringList{"english.lng"});

    scrivi(dir.filePath("FILE"), "x");
    QCOMPARE(SeminaLingue(dir.filePath("FILE/Korvantine"), {a}), -1);
}

void TestFileSystem::lingueDistribuite()
{
    const QStringList cartelle = CartelleLingueDistribuite("/opt/korvantine/bin");
    QCOMPARE(cartelle.value(0), QString("/opt/korvantine/share/korvantine/lang"));
    // The source tree's own files seed a fresh folder with both shipped languages.
    QTemporaryDir dir;
    QVERIFY(SeminaLingue(dir.path() + "/k", cartelle) >= 2);
    QVERIFY(QFile::exists(dir.path() + "/k/ENGLISH.LNG"));
    QVERIFY(QFile::exists(dir.path() + "/k/ITALIANO.LNG"));
}

void TestFileSystem::istanzaUnica()
{
    QTemporaryDir dir;
    const QString app = dir.path() + "/app";
    IstanzaUnica prima(app);
    QCOMPARE(prima.acquisisci(), IstanzaUnica::Esito::Acquisita);
    QVERIFY(prima.attiva());
    QVERIFY(QFile::exists(app + "/KORVANTINE.LCK"));
    QCOMPARE(prima.percorsoLock(), app + "/KORVANTINE.LCK");
    scrivi(app + "/MESSAGGI.TXT", "log della prima");

    const QStringList visto = contenuto(app);
    const QByteArray lock = leggi(app + "/KORVANTINE.LCK");
    {
        IstanzaUnica seconda(app);
        QCOMPARE(seconda.acquisisci(), IstanzaUnica::Esito::AltraIstanza);
        QVERIFY(!seconda.attiva());
    }
    // The refused one has touched nothing, not even the lock.
    QCOMPARE(contenuto(app), visto);
    QCOMPARE(leggi(app + "/KORVANTINE.LCK"), lock);
    QCOMPARE(leggi(app + "/MESSAGGI.TXT"), QByteArray("log della prima"));

    prima.rilascia();
    QVERIFY(!prima.attiva());
    IstanzaUnica terza(app);
    QCOMPARE(terza.acquisisci(), IstanzaUnica::Esito::Acquisita);

    scrivi(dir.filePath("FILE"), "x");
    IstanzaUnica impossibile(dir.filePath("FILE/app"));
    QCOMPARE(impossibile.acquisisci(), IstanzaUnica::Esito::Errore);
}

void TestFileSystem::istanzaUnicaLockAbbandonato()
{
    QTemporaryDir dir;
    // A lock left by a process that is gone (PID past any real one) on this machine.
    scrivi(dir.filePath("KORVANTINE.LCK"),
           "2147483000\n" + QCoreApplication::applicationName().toUtf8() + "\n"
               + QSysInfo::machineHostName().toUtf8() + "\n");
    IstanzaUnica istanza(dir.path());
    QCOMPARE(istanza.acquisisci(), IstanzaUnica::Esito::Acquisita);
    QVERIFY(leggi(dir.filePath("KORVANTINE.LCK")).startsWith(QByteArray::number(getpid()) + "\n"));
}

QTEST_GUILESS_MAIN(TestFileSystem)
#include "tst_filesystem.moc"
