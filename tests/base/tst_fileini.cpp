#include "base/FileIni.h"

#include "support/FileDiProva.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

const QString Predefinito = QStringLiteral("def");

// The settings file as a workshop PC has it: comments, blank lines, odd spacing.
const QByteArray Completo = "; Korvantine\r\n\r\n[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n\r\n"
                            "[SERIALE]  ; porta\r\nPorta = COM1   \r\n;BaudRate=4800\r\n"
                            "BaudRate=9600\r\n\r\n[GRAFICI]\r\nGrafico_1=2\r\n";

QByteArray cambiato(QByteArray byte, const char *prima, const char *dopo)
{
    return byte.replace(prima, dopo);
}

} // namespace

class TestFileIni : public QObject
{
    Q_OBJECT

private slots:
    void readsLikeTheProfileApi_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("sezione");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<QString>("valore");
        const auto riga = [](const char *nome, const QByteArray &file, const char *s, const char *k,
                             const QString &v) {
            QTest::newRow(nome) << file << QString::fromUtf8(s) << QString::fromUtf8(k) << v;
        };
        riga("case and blanks", "[Seriale]\r\n  PORTA \t=  COM3 \t\r\n", " seriale ", "porta", "COM3");
        riga("accented names fold", "[Sezione \xC8]\nChiave \xE8=1\n", "SEZIONE è", "CHIAVE È", "1");
        riga("missing section", "[A]\nx=1\n", "B", "x", Predefinito);
        riga("missing key", "[A]\nx=1\n", "A", "y", Predefinito);
        riga("empty value is no default", "[A]\nvuota=\n", "a", "VUOTA", "");
        riga("'=' in the value", "[A]\nformula = a=b=c\n", "A", "formula", "a=b=c");
        riga("';' in the value", "[A]\npunto=a;b\n", "A", "punto", "a;b");
        riga("inner blanks kept", "[A]\n spazi = uno  due \n", "A", "spazi", "uno  due");
        riga("one pair of quotes dropped", "[A]\nq=\"  dentro  \"\n", "A", "q", "  dentro  ");
        riga("empty quotes", "[A]\nq=\"\"\n", "A", "q", "");
        riga("lone quote", "[A]\nq=\"\n", "A", "q", "\"");
        riga("unclosed quote", "[A]\nq=\"aperta\n", "A", "q", "\"aperta");
        riga("inner quotes", "[A]\nq=a \"b\" c\n", "A", "q", "a \"b\" c");
        // Apostrophes stand for accents in Italian texts: never taken as quotes.
        riga("apostrophes", "[A]\nq='E' cos\xEC'\n", "A", "q", QString::fromUtf8("'E' così'"));
        riga("commented key", "[A]\n   ;y=commento\n", "A", ";y", Predefinito);
        riga("commented section", "[A]\n; [B]\nx=1\n", "A", "x", "1");
        riga("line before any section", "orfana=1\n[A]\n", "", "orfana", Predefinito);
        riga("first key wins", "[A]\nx=1\nX=2\n", "A", "x", "1");
        riga("a repeated section is ignored", "[A]\nx=1\n[a]\nz=5\n", "A", "z", Predefinito);
        riga("CR LF", "[A]\r\nx = due \r\n", "A", "x", "due");
        riga("stray CR", "[A]\nx=1\r\r\n", "A", "x", "1");
        riga("NUL is a character", QByteArray("[A]\nk=a\0b\n", 10), "A", "k", QString::fromLatin1("a\0b", 3));
    }

    void readsLikeTheProfileApi()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, sezione);
        QFETCH(QString, chiave);
        QFETCH(QString, valore);
        const FileIni ini = FileIni::daByte(file);
        QCOMPARE(ini.valore(sezione, chiave, Predefinito), valore);
        QCOMPARE(ini.contiene(sezione, chiave), valore != Predefinito);
    }

    void listsNamesAsFirstSpeltInFileOrder()
    {
        const FileIni ini =
            FileIni::daByte("orfana=1\n[Seriale]\nPORTA=1\n  = senza chiave\nriga senza uguale\n"
                            "; x=1\nBaudRate=2\nporta=3\n[B]\n[seriale]\nz=1\n");
        QCOMPARE(ini.sezioni(), (QStringList{"Seriale", "B"}));
        QCOMPARE(ini.chiavi("SERIALE"), (QStringList{"PORTA", "BaudRate"}));
        QVERIFY(FileIni::daByte("[A]\r\nx=1\r\n").fineRigaCrLf());
        QVERIFY(!FileIni::daByte("[A]\nx=1\r\n").fineRigaCrLf());
    }

    void writeChangesOnlyWhatItMust_data()
    {
        QTest::addColumn<QByteArray>("prima");
        QTest::addColumn<QString>("sezione");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<QByteArray>("dopo");
        const auto riga = [](const char *nome, const QByteArray &prima, const char *sezione,
                             const char *chiave, const QByteArray &dopo) {
            QTest::newRow(nome) << prima << QString(sezione) << QString(chiave) << dopo;
        };
        riga("value of a key", Completo, "SERIALE", "Baudrate",
             cambiato(Completo, "BaudRate=9600", "BaudRate=v"));
        riga("trailing blanks go", Completo, "seriale", "PORTA",
             cambiato(Completo, "Porta = COM1   ", "Porta = v"));
        // After the section's last full line: the blank lines and the comment of B stay with B.
        riga("new key", "[A]\r\nx=1\r\n; nota\r\n\r\n; la B\r\n[B]\r\ny=2\r\n", "a", "k",
             "[A]\r\nx=1\r\nk=v\r\n; nota\r\n\r\n; la B\r\n[B]\r\ny=2\r\n");
        riga("header-only section", "[A]\n\n[B]\n", "A", "k", "[A]\nk=v\n\n[B]\n");
        riga("new section, LF", "[A]\nx=1\n", "B", "k", "[A]\nx=1\n\n[B]\nk=v\n");
        riga("new section after a blank", "[A]\r\nx=1\r\n\r\n", "B", "k", "[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n");
        riga("empty file", QByteArray(), "B", "k", "[B]\r\nk=v\r\n");
        riga("no final end, key", "[A]\nx=1", "A", "x", "[A]\nx=v");
        riga("no final end, new key", "[A]\nx=1", "A", "k", "[A]\nx=1\nk=v");
        riga("no final end, new section", "[A]\nx=1", "B", "k", "[A]\nx=1\n\n[B]\nk=v\n");
    }

    void writeChangesOnlyWhatItMust()
    {
        QFETCH(QByteArray, prima);
        QFETCH(QString, sezione);
        QFETCH(QString, chiave);
        QFETCH(QByteArray, dopo);
        FileIni ini = FileIni::daByte(prima);
        QVERIFY(ini.imposta(sezione, chiave, "v"));
        QCOMPARE(ini.byte(), dopo);
        QCOMPARE(ini.valore(sezione.toLower(), chiave.toUpper()), QString("v"));
    }

    void refusesWhatTheFileCannotHold()
    {
        const QByteArray prima = "[A]\nx=1\n";
        FileIni ini = FileIni::daByte(prima);
        const QList<QStringList> rifiutati = {{"A", "x", "due\nrighe"}, {"A", "x", "cr\r"}, {"A", "", "v"},
                                              {"A", " x", "v"},         {"A", "a=b", "v"},  {"A", ";x", "v"},
                                              {"A", "[x", "v"},         {"", "x", "v"},     {"A]", "x", "v"},
                                              {"A\nB", "x", "v"}};
        for (const QStringList &r : rifiutati)
            QVERIFY2(!ini.imposta(r[0], r[1], r[2]), qPrintable(r.join(u'|')));
        QCOMPARE(ini.byte(), prima);
    }

    void encodingIsFoundAndKeptOnWrite_data()
    {
        QTest::addColumn<QByteArray>("prima");
        QTest::addColumn<FileIni::Codifica>("codifica");
        QTest::addColumn<QString>("x");
        QTest::addColumn<QByteArray>("aggiunta");
        const QString testo = QString::fromUtf8("città 90° €");
        const QByteArray utf8 = testo.toUtf8();
        const QByteArray w1252 = "k=\xE8 \x80\r\n";
        QTest::newRow("windows-1252") << QByteArray("[A]\r\nx=citt\xE0 90\xB0 \x80\r\n")
                                      << FileIni::Codifica::Windows1252 << testo << w1252;
        QTest::newRow("plain ascii") << QByteArray("[A]\r\nx=1\r\n") << FileIni::Codifica::Windows1252 << "1"
                                     << w1252;
        QTest::newRow("utf-8") << "[A]\nx=" + utf8 + "\n"
                               << FileIni::Codifica::Utf8 << testo << QByteArray("k=\xC3\xA8 \xE2\x82\xAC\n");
        QTest::newRow("utf-8 with bom")
            << "\xEF\xBB\xBF[A]\r\nx=" + utf8 + "\r\n"
            << FileIni::Codifica::Utf8ConBom << testo << QByteArray("k=\xC3\xA8 \xE2\x82\xAC\r\n");
    }

    void encodingIsFoundAndKeptOnWrite()
    {
        QFETCH(QByteArray, prima);
        QFETCH(FileIni::Codifica, codifica);
        QFETCH(QString, x);
        QFETCH(QByteArray, aggiunta);
        FileIni ini = FileIni::daByte(prima);
        QCOMPARE(ini.codifica(), codifica);
        QCOMPARE(ini.sezioni(), QStringList{"A"}); // the BOM is no part of the name
        QCOMPARE(ini.valore("A", "x"), x);
        QVERIFY(ini.imposta("A", "k", QString::fromUtf8("è €")));
        QCOMPARE(ini.byte(), prima + aggiunta);
        QCOMPARE(ini.codifica(), codifica);
        // What Windows-1252 cannot hold becomes '?' there, and only there.
        QVERIFY(ini.imposta("A", "k", QString::fromUtf8("Ω")));
        QCOMPARE(ini.valore("A", "k"),
                 codifica == FileIni::Codifica::Windows1252 ? QString("?") : QString::fromUtf8("Ω"));
    }

    void fileWritesNeverReplaceWhatWasNotRead()
    {
        QTemporaryDir dir;
        const QString percorso = dir.filePath("KORVANTINE.INI");
        QVERIFY(FileIni::scrivi(percorso, "IMPOSTAZIONI", "Lingua", "ITALIANO"));
        QCOMPARE(leggi(percorso), QByteArray("[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n"));
        scrivi(percorso, Completo);
        QVERIFY(FileIni::scrivi(percorso, "impostazioni", "LINGUA", "ENGLISH"));
        QCOMPARE(leggi(percorso), cambiato(Completo, "Lingua=ITALIANO", "Lingua=ENGLISH"));
        QCOMPARE(FileIni::leggi(percorso, "Impostazioni", "lingua"), QString("ENGLISH"));

        QVERIFY(!FileIni::scrivi(dir.filePath("MANCA/K.INI"), "A", "b", "c"));
        QVERIFY(!QFile::exists(dir.filePath("MANCA")));
        FileIni::StatoLettura stato;
        FileIni::daFile(dir.filePath("NO.INI"), &stato);
        QCOMPARE(stato, FileIni::StatoLettura::Assente);
        QCOMPARE(FileIni::leggi(dir.filePath("NO.INI"), "A", "x", "def"), QString("def"));
        // A folder where the file should be: neither read nor replaced.
        const QString cartella = dir.filePath("CARTELLA.INI");
        QVERIFY(QDir().mkdir(cartella));
        FileIni::daFile(cartella, &stato);
        QCOMPARE(stato, FileIni::StatoLettura::Errore);
        QCOMPARE(FileIni::leggi(cartella, "A", "x", "def"), QString("def"));
        QVERIFY(!FileIni::scrivi(cartella, "A", "x", "1"));
        QVERIFY(QFileInfo(cartella).isDir());
    }

    void anyBytesGiveNamesThatLookUpAgain()
    {
        const QList<QByteArray> campioni = {
            QByteArray(),
            QByteArray("\0\0\0", 3),
            QByteArray("[\n]\n=\n[]\n=\n[=]\n;=\n\r\r\r\n\n"),
            QByteArray("[A\0B]\nk\0=v\0w\n", 13),
            QByteArray("\xEF\xBB"),
            QByteArray("\xEF\xBB\xBF"),
            QByteArray("[A]\nk=\xC3"),
            QByteArray("[A]\nk=\xF4\x90\x80\x80\n"),
            QByteArray("[\xA0S\xA0]\n\xA0k\xA0=v\n\xA0=w\n"), // no-break spaces round names
            QByteArray(100000, '['),
            QByteArray(100000, '='),
            QByteArray(100000, '\n')};
        for (const QByteArray &byte : campioni) {
            FileIni ini = FileIni::daByte(byte);
            for (const QString &s : ini.sezioni()) {
                for (const QString &k : ini.chiavi(s))
                    QVERIFY(ini.contiene(s, k));
            }
            if (ini.imposta("S", "k", "v"))
                QCOMPARE(FileIni::daByte(ini.byte()).valore("S", "k"), QString("v"));
        }
    }
};

QTEST_GUILESS_MAIN(TestFileIni)
#include "tst_fileini.moc"
