#include "shell/Lingua.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

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

QByteArray lingua(const char *nome)
{
    return QByteArray("; prova\r\n[KORVANTINE]\r\nCAPTION=") + nome + "\r\n";
}

} // namespace

class TestLingua : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void linguaScelta();
    void linguaCancellataRipiegaSuInglese();
    void senzaIniValeInglese();
    void senzaIngleseIlPrimoFileLng();
    void nessunFileLng();
    void copiaMinuscolaFunziona();
    void chiaveInAltroCaso();
    void cambioDelFileSulDisco();
    void cambioDiLingua();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString percorso(const QString &nome) const { return m_dir->filePath(nome); }
};

void TestLingua::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void TestLingua::linguaScelta()
{
    scrivi(percorso("KORVANTINE.INI"), "[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n");
    scrivi(percorso("ITALIANO.LNG"), lingua("Italiano"));
    scrivi(percorso("ENGLISH.LNG"), lingua("English"));
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("ITALIANO"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("Italiano"));
}

void TestLingua::linguaCancellataRipiegaSuInglese()
{
    const QByteArray ini = "[IMPOSTAZIONI]\r\nLingua=FRANCAIS\r\n";
    scrivi(percorso("KORVANTINE.INI"), ini);
    scrivi(percorso("ENGLISH.LNG"), lingua("English"));
    scrivi(percorso("ALBANESE.LNG"), lingua("Shqip"));
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("ENGLISH"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("English"));
    // The INI file is not corrected.
    QCOMPARE(leggi(percorso("KORVANTINE.INI")), ini);
}

void TestLingua::senzaIniValeInglese()
{
    scrivi(percorso("ALBANESE.LNG"), lingua("Shqip"));
    scrivi(percorso("ENGLISH.LNG"), lingua("English"));
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("ENGLISH"));
    QVERIFY(!QFile::exists(percorso("KORVANTINE.INI")));
}

void TestLingua::senzaIngleseIlPrimoFileLng()
{
    scrivi(percorso("KORVANTINE.INI"), "[IMPOSTAZIONI]\r\nLingua=FRANCAIS\r\n");
    scrivi(percorso("TEDESCO.LNG"), lingua("Deutsch"));
    scrivi(percorso("SPAGNOLO.lng"), lingua("Espanol"));
    scrivi(percorso("ROMENO.TXT"), lingua("no"));
    QVERIFY(QDir(m_dir->path()).mkdir("ARABO.LNG"));  // a folder is no language
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("SPAGNOLO"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("Espanol"));
}

void TestLingua::nessunFileLng()
{
    scrivi(percorso("KORVANTINE.INI"), "[IMPOSTAZIONI]\r\nLingua=ENGLISH\r\n");
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("ITALIANO"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString());
}

void TestLingua::copiaMinuscolaFunziona()
{
    scrivi(percorso("english.lng"), lingua("lower"));
    Lingua l(m_dir->path());
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente.toUpper(), QString("ENGLISH"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("lower"));

    scrivi(percorso("korvantine.ini"), "[impostazioni]\r\nlingua=Italiano\r\n");
    scrivi(percorso("italiano.LNG"), lingua("minuscolo"));
    l.LeggiImpLingua();
    QCOMPARE(l.LinguaCorrente, QString("Italiano"));
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("minuscolo"));
}

void TestLingua::chiaveInAltroCaso()
{
    scrivi(percorso("ENGLISH.LNG"), "[Segnalazioni]\r\nSegnalazione_3= Port not available \r\n");
    Lingua l(m_dir->path());
    l.LinguaCorrente = "ENGLISH";
    QCOMPARE(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3"), QString("Port not available"));
    QCOMPARE(l.LeggiTesto("segnalazioni", "segnalazione_3"), QString("Port not available"));
    QCOMPARE(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_4"), QString());
    QCOMPARE(l.LeggiTesto("ALTRO", "SEGNALAZIONE_3"), QString());
    QCOMPARE(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3", ".TXT"), QString());
}

void TestLingua::cambioDelFileSulDisco()
{
    const QString file = percorso("ENGLISH.LNG");
    scrivi(file, "[A]\r\nk=one\r\n");
    Lingua l(m_dir->path());
    l.LinguaCorrente = "ENGLISH";
    QCOMPARE(l.LeggiTesto("A", "k"), QString("one"));

    scrivi(file, "[A]\r\nk=three\r\n");  // another size
    QCOMPARE(l.LeggiTesto("A", "k"), QString("three"));

    // Same size: only the time of change tells.
    const QDateTime prima = QFileInfo(file).lastModified();
    scrivi(file, "[A]\r\nk=other\r\n");
    QFile f(file);
    QVERIFY(f.open(QIODevice::ReadWrite));
    QVERIFY(f.setFileTime(prima.addSecs(5), QFileDevice::FileModificationTime));
    f.close();
    QCOMPARE(l.LeggiTesto("A", "k"), QString("other"));

    QVERIFY(QFile::remove(file));
    QCOMPARE(l.LeggiTesto("A", "k"), QString());
}

void TestLingua::cambioDiLingua()
{
    scrivi(percorso("ENGLISH.LNG"), lingua("English"));
    scrivi(percorso("ITALIANO.LNG"), lingua("Italiano"));
    Lingua l(m_dir->path());
    l.LinguaCorrente = "ENGLISH";
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("English"));
    l.LinguaCorrente = "ITALIANO";
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString("Italiano"));
    l.LinguaCorrente = "../ITALIANO";
    QCOMPARE(l.LeggiTesto("KORVANTINE", "CAPTION"), QString());
}

QTEST_GUILESS_MAIN(TestLingua)
#include "tst_lingua.moc"
