#include "base/Lingua.h"

#include "support/FileDiProva.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

// A language file whose caption names the file, so a test can tell which one was read.
QByteArray lingua(const QString &nome)
{
    return "; prova\r\n[KORVANTINE]\r\nCAPTION=" + nome.toUtf8() + "\r\n";
}

} // namespace

class TestLingua : public QObject
{
    Q_OBJECT

private slots:
    void languageFileFallbackOrder_data()
    {
        QTest::addColumn<QString>("nomeIni");
        QTest::addColumn<QByteArray>("scelta");
        QTest::addColumn<QStringList>("file");
        QTest::addColumn<QString>("attesa");
        QTest::addColumn<QString>("caption");
        const auto riga = [](const char *nome, const char *ini, const char *scelta, const QStringList &file,
                             const char *attesa, const char *caption) {
            QTest::newRow(nome) << ini << QByteArray(scelta) << file << attesa << caption;
        };
        riga("chosen", "KORVANTINE.INI", "Lingua=ITALIANO", {"ITALIANO.LNG", "ENGLISH.LNG"}, "ITALIANO",
             "ITALIANO.LNG");
        riga("chosen one gone: English", "KORVANTINE.INI", "Lingua=FRANCAIS", {"ALBANESE.LNG", "ENGLISH.LNG"},
             "ENGLISH", "ENGLISH.LNG");
        riga("no INI: English", "", "", {"ALBANESE.LNG", "ENGLISH.LNG"}, "ENGLISH", "ENGLISH.LNG");
        // Only files ending in .LNG, in any case, count; a folder is no language.
        riga("no English: first by name", "KORVANTINE.INI", "Lingua=FRANCAIS",
             {"TEDESCO.LNG", "SPAGNOLO.lng", "ROMENO.TXT", "ARABO.LNG/"}, "SPAGNOLO", "SPAGNOLO.lng");
        riga("none at all", "KORVANTINE.INI", "Lingua=ENGLISH", {}, "ITALIANO", "");
        riga("lower-case English", "", "", {"english.lng"}, "ENGLISH", "english.lng");
        riga("lower-case names", "korvantine.ini", "lingua=Italiano", {"italiano.LNG", "ENGLISH.LNG"},
             "Italiano", "italiano.LNG");
    }

    void languageFileFallbackOrder()
    {
        QFETCH(QString, nomeIni);
        QFETCH(QByteArray, scelta);
        QFETCH(QStringList, file);
        QFETCH(QString, attesa);
        QFETCH(QString, caption);
        QTemporaryDir dir;
        const QByteArray ini = "[IMPOSTAZIONI]\r\n" + scelta + "\r\n";
        if (!nomeIni.isEmpty())
            scrivi(dir.filePath(nomeIni), ini);
        for (const QString &nome : file) {
            if (nome.endsWith(u'/'))
                QVERIFY(QDir(dir.path()).mkdir(nome));
            else
                scrivi(dir.filePath(nome), lingua(nome));
        }
        Lingua l(dir.path());
        l.LeggiImpLingua();
        QCOMPARE(l.LinguaCorrente.toUpper(), attesa.toUpper());
        QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), caption);
        // The INI file is neither corrected nor made.
        if (nomeIni.isEmpty())
            QVERIFY(!QFile::exists(dir.filePath("KORVANTINE.INI")));
        else
            QCOMPARE(leggi(dir.filePath(nomeIni)), ini);
    }

    void lookUpIsCaseBlindAndFollowsTheFileAndTheLanguage()
    {
        QTemporaryDir dir;
        const QString app = dir.filePath("app");
        QVERIFY(QDir().mkdir(app));
        const QString file = app + "/ENGLISH.LNG";
        scrivi(file, "[a]\r\nK =  one \r\n");
        scrivi(app + "/ITALIANO.LNG", "[A]\r\nk=uno\r\n");
        scrivi(dir.filePath("ITALIANO.LNG"), "[A]\r\nk=fuori\r\n");
        Lingua l(app);
        l.LinguaCorrente = "ENGLISH";
        QCOMPARE(l.LeggiTesto("A", "k"), QString("one"));
        QCOMPARE(l.LeggiTesto("a", "K"), QString("one")); // a key in another case is found
        QCOMPARE(l.LeggiTesto("A", "k", ".TXT"), QString());
        scrivi(file, "[A]\r\nk=three\r\n"); // another size
        QCOMPARE(l.LeggiTesto("A", "k"), QString("three"));
        // Same size: only the time of change tells.
        const QDateTime prima = QFileInfo(file).lastModified();
        scrivi(file, "[A]\r\nk=other\r\n");
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadWrite));
        QVERIFY(f.setFileTime(prima.addSecs(5), QFileDevice::FileModificationTime));
        f.close();
        QCOMPARE(l.LeggiTesto("A", "k"), QString("other"));

        l.LinguaCorrente = "ITALIANO";
        QCOMPARE(l.LeggiTesto("A", "k"), QString("uno"));
        l.LinguaCorrente = "../ITALIANO";
        QCOMPARE(l.LeggiTesto("A", "k"), QString());
        l.LinguaCorrente = "ENGLISH";
        QVERIFY(QFile::remove(file));
        QCOMPARE(l.LeggiTesto("A", "k"), QString());
    }

    // A home made by an older build, against the files shipped with this one.
    void keysMissingAtHomeComeFromTheShippedFile_data()
    {
        QTest::addColumn<QString>("lingua");
        QTest::addColumn<QString>("sezione");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<QString>("atteso");
        QTest::newRow("reworded at home") << "ENGLISH"
                                          << "A"
                                          << "vecchia"
                                          << "mine";
        QTest::newRow("emptied at home") << "ENGLISH"
                                         << "A"
                                         << "nascosta"
                                         << "";
        QTest::newRow("new key") << "ENGLISH"
                                 << "a"
                                 << "NUOVA"
                                 << "new";
        QTest::newRow("new section") << "ENGLISH"
                                     << "B"
                                     << "k"
                                     << "b";
        QTest::newRow("in neither") << "ENGLISH"
                                    << "A"
                                    << "nessuna"
                                    << "";
        QTest::newRow("same language only") << "ITALIANO"
                                            << "B"
                                            << "k"
                                            << "";
        QTest::newRow("a language of the fitter's") << "FRANCAIS"
                                                    << "A"
                                                    << "nuova"
                                                    << "";
    }

    void keysMissingAtHomeComeFromTheShippedFile()
    {
        QFETCH(QString, lingua);
        QFETCH(QString, sezione);
        QFETCH(QString, chiave);
        QFETCH(QString, atteso);
        QTemporaryDir dir;
        const QString casa = dir.filePath("casa");
        const QString nuova = dir.filePath("nuova");
        const QString vuota = dir.filePath("vuota");
        for (const QString &c : {casa, nuova, vuota})
            QVERIFY(QDir().mkdir(c));
        scrivi(casa + "/ENGLISH.LNG", "[A]\r\nvecchia=mine\r\nnascosta=\r\n");
        scrivi(casa + "/ITALIANO.LNG", "[A]\r\nvecchia=mia\r\n");
        scrivi(casa + "/FRANCAIS.LNG", "[A]\r\nvecchia=la mienne\r\n");
        scrivi(nuova + "/english.lng",
               "[A]\r\nvecchia=shipped\r\nnascosta=shown\r\nnuova=new\r\n[B]\r\nk=b\r\n");
        Lingua l(casa);
        l.impostaCartelleDistribuite({vuota, nuova});
        l.LinguaCorrente = lingua;
        QCOMPARE(l.LeggiTesto(sezione, chiave), atteso);
        // The home's file is read, never written.
        QCOMPARE(leggi(casa + "/ENGLISH.LNG"), QByteArray("[A]\r\nvecchia=mine\r\nnascosta=\r\n"));
    }

    // A message of the logic as the windows word it.
    void messagesAreLookedUpAndFilledIn_data()
    {
        QTest::addColumn<Messaggio>("messaggio");
        QTest::addColumn<QString>("atteso");
        const auto m = [](const char *chiave) { return Messaggio("S", chiave); };
        QTest::newRow("as it stands") << m("SOLO") << " one  ";
        QTest::newRow("trimmed") << m("SOLO").ritaglia() << "one";
        Messaggio uno = m("CONTA").ritaglia().con("XXX", "1");
        uno.chiavePreferita = "CONTA.1";
        QTest::newRow("a count of one") << uno << "one file";
        uno.chiavePreferita = "MANCA.1";
        QTest::newRow("no word for one") << uno << "1 files";
        QTest::newRow("a message in a place")
            << m("NIDO").con("XXX", "a.LKV").con("YYY", m("REC").con("XXX", "4"))
            << "Passed over a.LKV: record 4";
        QTest::newRow("joined by a space")
            << m("REC").con("XXX", "2").poi(Letterale("of 8"), " ") << "record 2 of 8";
        QTest::newRow("nothing to join") << m("REC").poi(m("MANCA"), " ") << "record XXX";
    }

    void messagesAreLookedUpAndFilledIn()
    {
        QFETCH(Messaggio, messaggio);
        QFETCH(QString, atteso);
        QTemporaryDir dir;
        scrivi(dir.filePath("ENGLISH.LNG"),
               "[S]\r\nSOLO=\" one  \"\r\nCONTA=XXX files\r\nCONTA.1=\" one file\"\r\n"
               "NIDO=Passed over XXX: YYY\r\nREC=record XXX\r\n");
        Lingua l(dir.path());
        l.LinguaCorrente = "ENGLISH";
        QCOMPARE(l.testo(messaggio), atteso);
    }
};

QTEST_GUILESS_MAIN(TestLingua)
#include "tst_lingua.moc"
