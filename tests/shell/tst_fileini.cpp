#include "shell/FileIni.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

QByteArray leggiByte(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

void scriviByte(const QString &percorso, const QByteArray &byte)
{
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(byte), byte.size());
}

} // namespace

class TestFileIni : public QObject
{
    Q_OBJECT

private slots:
    void letturaSenzaRiguardoAlleMaiuscole();
    void predefinitoQuandoManca();
    void valoriParticolari();
    void virgolette();
    void commentiERighePrimaDelleSezioni();
    void primaOccorrenzaVince();
    void fineRigaCrLfELf();
    void scritturaCambiaSoloLaChiave();
    void scritturaChiaveMancante();
    void scritturaSezioneMancante();
    void scritturaFileMancante();
    void scritturaSenzaFineRigaFinale();
    void codifiche_data();
    void codifiche();
    void scritturaMantieneLaCodifica_data();
    void scritturaMantieneLaCodifica();
    void rifiutaCioCheIlFileNonPuoTenere();
    void nonSovrascriveCioCheNonHaLetto();
    void byteQualsiasi();
    void fileGrandeInTempoLineare();
};

void TestFileIni::letturaSenzaRiguardoAlleMaiuscole()
{
    const FileIni ini = FileIni::daByte("[Seriale]\r\n  PORTA \t=  COM3 \t\r\nBaudRate=9600\r\n");
    QCOMPARE(ini.valore("SERIALE", "porta"), QString("COM3"));
    QCOMPARE(ini.valore("seriale", "BAUDRATE"), QString("9600"));
    QCOMPARE(ini.valore(" Seriale ", "Baudrate"), QString("9600"));
    QCOMPARE(ini.sezioni(), QStringList{"Seriale"});
    QCOMPARE(ini.chiavi("SERIALE"), (QStringList{"PORTA", "BaudRate"}));

    // Accented names fold too.
    const FileIni accenti = FileIni::daByte("[Sezione \xC8]\nChiave \xE8=1\n");
    QCOMPARE(accenti.valore(QString::fromUtf8("SEZIONE è"), QString::fromUtf8("CHIAVE È")),
             QString("1"));
}

void TestFileIni::predefinitoQuandoManca()
{
    const FileIni ini = FileIni::daByte("[A]\nx=1\nvuota=\n");
    QCOMPARE(ini.valore("B", "x", "def"), QString("def"));
    QCOMPARE(ini.valore("A", "y", "def"), QString("def"));
    QVERIFY(ini.valore("A", "y").isEmpty());
    // A key that is there with nothing after '=' is empty, not the default.
    QCOMPARE(ini.valore("A", "vuota", "def"), QString());
    QVERIFY(ini.contiene("a", "VUOTA"));
    QVERIFY(!ini.contiene("a", "y"));

    QTemporaryDir dir;
    QCOMPARE(FileIni::leggi(dir.filePath("NONCE.INI"), "A", "x", "def"), QString("def"));
    QCOMPARE(FileIni::leggi(dir.path(), "A", "x", "def"), QString("def"));  // a folder
    scriviByte(dir.filePath("K.INI"), "");
    QCOMPARE(FileIni::leggi(dir.filePath("K.INI"), "A", "x", "def"), QString("def"));
}

void TestFileIni::valoriParticolari()
{
    const FileIni ini = FileIni::daByte("[A]\n"
                                        "formula = a=b=c\n"
                                        "punto=a;b\n"
                                        "ZONA.99=Sconosciuta\n"
                                        " spazi = uno  due \n"
                                        "  = senza chiave\n"
                                        "riga senza uguale\n");
    QCOMPARE(ini.valore("A", "formula"), QString("a=b=c"));
    QCOMPARE(ini.valore("A", "punto"), QString("a;b"));
    QCOMPARE(ini.valore("A", "zona.99"), QString("Sconosciuta"));
    QCOMPARE(ini.valore("A", "spazi"), QString("uno  due"));
    QCOMPARE(ini.chiavi("A"), (QStringList{"formula", "punto", "ZONA.99", "spazi"}));
}

void TestFileIni::virgolette()
{
    const FileIni ini = FileIni::daByte("[A]\n"
                                        "q=\"  dentro  \"\n"
                                        "vuote=\"\"\n"
                                        "sola=\"\n"
                                        "mezza=\"aperta\n"
                                        "interne=a \"b\" c\n"
                                        "apostrofo='E' cos\xEC'\n");
    QCOMPARE(ini.valore("A", "q"), QString("  dentro  "));
    QCOMPARE(ini.valore("A", "vuote"), QString());
    QCOMPARE(ini.valore("A", "sola"), QString("\""));
    QCOMPARE(ini.valore("A", "mezza"), QString("\"aperta"));
    QCOMPARE(ini.valore("A", "interne"), QString("a \"b\" c"));
    // Apostrophes stand for accents in Italian texts: they are never taken as quotes.
    QCOMPARE(ini.valore("A", "apostrofo"), QString::fromUtf8("'E' così'"));
}

void TestFileIni::commentiERighePrimaDelleSezioni()
{
    const FileIni ini = FileIni::daByte("orfana=1\n"
                                        "; [FINTA]\n"
                                        "[A]\n"
                                        "; x=commento\n"
                                        "   ;y=commento\n"
                                        "x=vero\n");
    QCOMPARE(ini.valore("A", "x"), QString("vero"));
    QVERIFY(!ini.contiene("A", "; x"));
    QVERIFY(!ini.contiene("A", "y"));
    QVERIFY(!ini.contiene("A", ";y"));
    QCOMPARE(ini.sezioni(), QStringList{"A"});
    QCOMPARE(ini.valore("", "orfana", "no"), QString("no"));
}

void TestFileIni::primaOccorrenzaVince()
{
    const FileIni ini = FileIni::daByte("[A]\nx=1\nX=2\n[B]\ny=3\n[a]\nx=4\nz=5\n");
    QCOMPARE(ini.valore("A", "x"), QString("1"));
    QVERIFY(!ini.contiene("A", "z"));
    QCOMPARE(ini.sezioni(), (QStringList{"A", "B"}));
}

void TestFileIni::fineRigaCrLfELf()
{
    const FileIni crlf = FileIni::daByte("[A]\r\nx=1\r\ny = due \r\n");
    const FileIni lf = FileIni::daByte("[A]\nx=1\ny = due \n");
    const FileIni cr = FileIni::daByte("[A]\nx=1\r\r\n");
    QVERIFY(crlf.fineRigaCrLf());
    QVERIFY(!lf.fineRigaCrLf());
    for (const FileIni *ini : {&crlf, &lf}) {
        QCOMPARE(ini->valore("A", "x"), QString("1"));
        QCOMPARE(ini->valore("A", "y"), QString("due"));
    }
    QCOMPARE(cr.valore("A", "x"), QString("1"));
}

void TestFileIni::scritturaCambiaSoloLaChiave()
{
    const QByteArray prima = "; Korvantine\r\n"
                             "\r\n"
                             "[IMPOSTAZIONI]\r\n"
                             "Lingua=ITALIANO\r\n"
                             "\r\n"
                             "[SERIALE]  ; porta\r\n"
                             "Porta = COM1   \r\n"
                             ";BaudRate=4800\r\n"
                             "BaudRate=9600\r\n"
                             "\r\n"
                             "[GRAFICI]\r\n"
                             "Grafico_1=2\r\n";
    FileIni ini = FileIni::daByte(prima);
    QVERIFY(ini.imposta("SERIALE", "Baudrate", "19200"));
    QVERIFY(ini.imposta("seriale", "PORTA", "COM3"));
    QByteArray atteso = prima;
    atteso.replace("BaudRate=9600", "BaudRate=19200");
    atteso.replace("Porta = COM1   ", "Porta = COM3");
    QCOMPARE(ini.byte(), atteso);
    QCOMPARE(ini.valore("SERIALE", "baudrate"), QString("19200"));

    // The same through the file, which gets nothing else.
    QTemporaryDir dir;
    const QString percorso = dir.filePath("KORVANTINE.INI");
    scriviByte(percorso, prima);
    QVERIFY(FileIni::scrivi(percorso, "IMPOSTAZIONI", "Lingua", "ENGLISH"));
    atteso = prima;
    atteso.replace("Lingua=ITALIANO", "Lingua=ENGLISH");
    QCOMPARE(leggiByte(percorso), atteso);
    QCOMPARE(FileIni::leggi(percorso, "impostazioni", "LINGUA"), QString("ENGLISH"));
}

void TestFileIni::scritturaChiaveMancante()
{
    FileIni ini = FileIni::daByte("[A]\r\n"
                                  "x=1\r\n"
                                  "; nota su x\r\n"
                                  "\r\n"
                                  "\r\n"
                                  "; la sezione B\r\n"
                                  "[B]\r\n"
                                  "y=2\r\n");
    QVERIFY(ini.imposta("a", "Nuova", "valore è"));
    QCOMPARE(ini.byte(), QByteArray("[A]\r\n"
                                    "x=1\r\n"
                                    "Nuova=valore \xE8\r\n"
                                    "; nota su x\r\n"
                                    "\r\n"
                                    "\r\n"
                                    "; la sezione B\r\n"
                                    "[B]\r\n"
                                    "y=2\r\n"));
    QCOMPARE(ini.valore("A", "NUOVA"), QString::fromUtf8("valore è"));

    FileIni soloTestata = FileIni::daByte("[A]\n\n[B]\n");
    QVERIFY(soloTestata.imposta("B", "k", "v"));
    QVERIFY(soloTestata.imposta("A", "k", "w"));
    QCOMPARE(soloTestata.byte(), QByteArray("[A]\nk=w\n\n[B]\nk=v\n"));
}

void TestFileIni::scritturaSezioneMancante()
{
    FileIni lf = FileIni::daByte("[A]\nx=1\n");
    QVERIFY(lf.imposta("MEMORIZZAZIONE", "FileMemor", "/tmp/a.ACQ"));
    QCOMPARE(lf.byte(), QByteArray("[A]\nx=1\n\n[MEMORIZZAZIONE]\nFileMemor=/tmp/a.ACQ\n"));

    FileIni giaVuota = FileIni::daByte("[A]\r\nx=1\r\n\r\n");
    QVERIFY(giaVuota.imposta("B", "k", "v"));
    QCOMPARE(giaVuota.byte(), QByteArray("[A]\r\nx=1\r\n\r\n[B]\r\nk=v\r\n"));
    QCOMPARE(giaVuota.valore("b", "K"), QString("v"));
}

void TestFileIni::scritturaFileMancante()
{
    QTemporaryDir dir;
    const QString percorso = dir.filePath("KORVANTINE.INI");
    QVERIFY(FileIni::scrivi(percorso, "IMPOSTAZIONI", "Lingua", "ITALIANO"));
    QCOMPARE(leggiByte(percorso), QByteArray("[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n"));
    QVERIFY(FileIni::scrivi(percorso, "SERIALE", "Porta", "COM2"));
    QCOMPARE(leggiByte(percorso),
             QByteArray("[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n\r\n[SERIALE]\r\nPorta=COM2\r\n"));

    QVERIFY(!FileIni::scrivi(dir.filePath("MANCA/KORVANTINE.INI"), "A", "b", "c"));
    QVERIFY(!QFile::exists(dir.filePath("MANCA")));
}

void TestFileIni::scritturaSenzaFineRigaFinale()
{
    FileIni ini = FileIni::daByte("[A]\nx=1");
    QVERIFY(ini.imposta("A", "k", "v"));
    QCOMPARE(ini.byte(), QByteArray("[A]\nx=1\nk=v"));
    QVERIFY(ini.imposta("A", "k", "w"));
    QCOMPARE(ini.byte(), QByteArray("[A]\nx=1\nk=w"));
    QVERIFY(ini.imposta("B", "y", "2"));
    QCOMPARE(ini.byte(), QByteArray("[A]\nx=1\nk=w\n\n[B]\ny=2\n"));
}

void TestFileIni::codifiche_data()
{
    QTest::addColumn<QByteArray>("byte");
    QTest::addColumn<FileIni::Codifica>("codifica");
    const QString testo = QString::fromUtf8("Modalita' entrata è 90° €");
    QTest::newRow("windows-1252")
        << (QByteArray("[A]\r\nk=") + "Modalita' entrata \xE8 90\xB0 \x80" + "\r\n")
        << FileIni::Codifica::Windows1252;
    QTest::newRow("utf-8 con bom") << (QByteArray("\xEF\xBB\xBF[A]\r\nk=") + testo.toUtf8() + "\r\n")
                                   << FileIni::Codifica::Utf8ConBom;
    QTest::newRow("utf-8 senza bom") << (QByteArray("[A]\nk=") + testo.toUtf8() + "\n")
                                     << FileIni::Codifica::Utf8;
}

void TestFileIni::codifiche()
{
    QFETCH(QByteArray, byte);
    QFETCH(FileIni::Codifica, codifica);
    const FileIni ini = FileIni::daByte(byte);
    QCOMPARE(ini.codifica(), codifica);
    QCOMPARE(ini.valore("A", "k"), QString::fromUtf8("Modalita' entrata è 90° €"));
    // The BOM is no part of the first section's name.
    QCOMPARE(ini.sezioni(), QStringList{"A"});
}

void TestFileIni::scritturaMantieneLaCodifica_data()
{
    QTest::addColumn<QByteArray>("prima");
    QTest::addColumn<QByteArray>("dopo");
    QTest::newRow("windows-1252") << QByteArray("[A]\r\nx=citt\xE0\r\n")
                                  << QByteArray("[A]\r\nx=citt\xE0\r\nk=\xE8 \x80\r\n");
    QTest::newRow("solo ascii") << QByteArray("[A]\r\nx=1\r\n")
                                << QByteArray("[A]\r\nx=1\r\nk=\xE8 \x80\r\n");
    QTest::newRow("utf-8") << QByteArray("[A]\nx=citt\xC3\xA0\n")
                           << QByteArray("[A]\nx=citt\xC3\xA0\nk=\xC3\xA8 \xE2\x82\xAC\n");
    QTest::newRow("bom") << QByteArray("\xEF\xBB\xBF[A]\r\n")
                         << QByteArray("\xEF\xBB\xBF[A]\r\nk=\xC3\xA8 \xE2\x82\xAC\r\n");
}

void TestFileIni::scritturaMantieneLaCodifica()
{
    QFETCH(QByteArray, prima);
    QFETCH(QByteArray, dopo);
    FileIni ini = FileIni::daByte(prima);
    const FileIni::Codifica codifica = ini.codifica();
    QVERIFY(ini.imposta("A", "k", QString::fromUtf8("è €")));
    QCOMPARE(ini.byte(), dopo);
    QCOMPARE(ini.codifica(), codifica);
    QCOMPARE(FileIni::daByte(ini.byte()).valore("A", "k"), QString::fromUtf8("è €"));

    // A character Windows-1252 cannot hold becomes '?' there, and only there.
    FileIni altro = FileIni::daByte(prima);
    QVERIFY(altro.imposta("A", "k", QString::fromUtf8("Ω")));
    QCOMPARE(altro.valore("A", "k"),
             codifica == FileIni::Codifica::Windows1252 ? QString("?") : QString::fromUtf8("Ω"));
}

void TestFileIni::rifiutaCioCheIlFileNonPuoTenere()
{
    const QByteArray prima = "[A]\nx=1\n";
    FileIni ini = FileIni::daByte(prima);
    QVERIFY(!ini.imposta("A", "x", "due\nrighe"));
    QVERIFY(!ini.imposta("A", "x", "cr\r"));
    QVERIFY(!ini.imposta("A", "", "v"));
    QVERIFY(!ini.imposta("A", " x", "v"));
    QVERIFY(!ini.imposta("A", "a=b", "v"));
    QVERIFY(!ini.imposta("A", ";x", "v"));
    QVERIFY(!ini.imposta("A", "[x", "v"));
    QVERIFY(!ini.imposta("", "x", "v"));
    QVERIFY(!ini.imposta("A]", "x", "v"));
    QVERIFY(!ini.imposta("A\nB", "x", "v"));
    QCOMPARE(ini.byte(), prima);
}

void TestFileIni::nonSovrascriveCioCheNonHaLetto()
{
    QTemporaryDir dir;
    // A folder where the file should be: neither read nor replaced.
    const QString cartella = dir.filePath("KORVANTINE.INI");
    QVERIFY(QDir().mkdir(cartella));
    FileIni::StatoLettura stato;
    FileIni::daFile(cartella, &stato);
    QCOMPARE(stato, FileIni::StatoLettura::Errore);
    QVERIFY(!FileIni::scrivi(cartella, "A", "x", "1"));
    QVERIFY(QFileInfo(cartella).isDir());

    FileIni::daFile(dir.filePath("NO.INI"), &stato);
    QCOMPARE(stato, FileIni::StatoLettura::Assente);
}

void TestFileIni::byteQualsiasi()
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
        QByteArray("[\xA0S\xA0]\n\xA0k\xA0=v\n\xA0=w\n"),  // no-break spaces round names
        QByteArray(100000, '['),
        QByteArray(100000, '='),
        QByteArray(100000, '\n'),
    };
    for (const QByteArray &byte : campioni) {
        FileIni ini = FileIni::daByte(byte);
        for (const QString &s : ini.sezioni()) {
            for (const QString &k : ini.chiavi(s)) {
                // Every name the file lists can be looked up again.
                QVERIFY(ini.contiene(s, k));
                ini.valore(s, k);
            }
        }
        if (ini.imposta("S", "k", "v"))
            QCOMPARE(FileIni::daByte(ini.byte()).valore("S", "k"), QString("v"));
    }
    // NUL bytes are just characters.
    const FileIni nul = FileIni::daByte(QByteArray("[A]\nk=a\0b\n", 10));
    QCOMPARE(nul.valore("A", "k"), QString::fromLatin1("a\0b", 3));
}

void TestFileIni::fileGrandeInTempoLineare()
{
    QByteArray grande = "[A]\n";
    for (int i = 0; i < 200000; ++i)
        grande += "chiave" + QByteArray::number(i) + "=valore" + QByteArray::number(i) + "\n";
    grande += "[B]\nk=" + QByteArray(8 * 1024 * 1024, 'x');  // one huge line, no line end
    QElapsedTimer orologio;
    orologio.start();
    FileIni ini = FileIni::daByte(grande);
    QCOMPARE(ini.valore("A", "CHIAVE199999"), QString("valore199999"));
    QCOMPARE(ini.valore("B", "k").size(), 8 * 1024 * 1024);
    QVERIFY(ini.imposta("A", "chiave5", "nuovo"));
    QCOMPARE(ini.valore("A", "chiave5"), QString("nuovo"));
    // Quadratic work over 200000 lines would take minutes.
    QVERIFY2(orologio.elapsed() < 20000, qPrintable(QString::number(orologio.elapsed())));
}

QTEST_GUILESS_MAIN(TestFileIni)
#include "tst_fileini.moc"
