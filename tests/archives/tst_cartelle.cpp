// The folder helpers never reach outside the root they are given, nor through a link.

#include "archives/Cartelle.h"

#include "support/FileDiProva.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace kv;

class TestCartelle : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        // app/ is the root; fuori/ lies beside it, and a link inside app points at it.
        QVERIFY(QDir().mkpath(p("app/TEMP/sotto")) && QDir().mkpath(p("fuori/cartella")));
        scrivi(p("fuori/segreto.txt"), "outside");
        scrivi(p("fuori/cartella/dentro.txt"), "outside too");
        QVERIFY(QFile::link(p("fuori"), p("app/TEMP/via")));
        QVERIFY(QFile::link(p("fuori/segreto.txt"), p("app/TEMP/file-via")));
    }

    void dentroRadice_data()
    {
        QTest::addColumn<QString>("percorso");
        QTest::addColumn<bool>("dentro");
        QTest::newRow("the root") << "app" << true;
        QTest::newRow("below, not yet made") << "app/TEMP/nuova/x" << true;
        QTest::newRow("dot-dot out") << "app/TEMP/../../fuori" << false;
        QTest::newRow("dot-dot that stays") << "app/TEMP/../TEMP/sotto" << true;
        QTest::newRow("beside, same prefix") << "app2" << false;
        QTest::newRow("through a link") << "app/TEMP/via/cartella" << false;
        QTest::newRow("a link itself") << "app/TEMP/file-via" << false;
        QTest::newRow("absolute elsewhere") << "/etc" << false;
    }

    void dentroRadice()
    {
        QFETCH(QString, percorso);
        QFETCH(bool, dentro);
        const QString assoluto = percorso.startsWith(u'/') ? percorso : p(percorso);
        QCOMPARE(DentroRadice(assoluto, p("app")), dentro);
    }

    void cancellaSenzaUscire()
    {
        scrivi(p("app/TEMP/sotto/bloccato.txt"), "x");
        QVERIFY(QFile::setPermissions(p("app/TEMP/sotto/bloccato.txt"), QFile::ReadOwner));
        QVERIFY(QFile::setPermissions(p("app/TEMP/sotto"), QFile::ReadOwner | QFile::ExeOwner));

        // Outside its root nothing is touched.
        QVERIFY(!CancellaCartella(p("app/TEMP"), p("app/MAPPATURE")));
        QVERIFY(!CancellaCartella(p("app/TEMP/via"), p("app")));
        QVERIFY(QFileInfo::exists(p("app/TEMP/sotto/bloccato.txt")));

        QVERIFY(CancellaCartella(p("app/TEMP"), p("app")));
        QVERIFY(!QFileInfo::exists(p("app/TEMP")));
        QCOMPARE(leggi(p("fuori/segreto.txt")), QByteArray("outside"));
        QCOMPARE(leggi(p("fuori/cartella/dentro.txt")), QByteArray("outside too"));
        QVERIFY(CancellaCartella(p("app/TEMP"), p("app"))); // gone already: no failure
    }

    void copiaSopraSenzaUscire()
    {
        // The source, on a medium: a file, a folder, and links that lead off it.
        QVERIFY(QDir().mkpath(p("medium/FILES19")));
        scrivi(p("medium/SOFTRIPR.MDB"), "catalogue");
        scrivi(p("medium/FILES19/KV2.S19"), "new release");
        QVERIFY(QFile::link(p("fuori/segreto.txt"), p("medium/FILES19/rubato.S19")));
        QVERIFY(QFile::link(p("fuori"), p("medium/tutto")));
        // The destination: the folder under another case, an old read-only copy, and a link
        // where the catalogue goes.
        QVERIFY(QDir().mkpath(p("app/TEMP/FileS19")));
        scrivi(p("app/TEMP/FileS19/KV2.S19"), "old release");
        QVERIFY(QFile::setPermissions(p("app/TEMP/FileS19/KV2.S19"), QFile::ReadOwner));
        QVERIFY(QFile::link(p("fuori/segreto.txt"), p("app/TEMP/SOFTRIPR.MDB")));

        QVERIFY(!CopiaCartella(p("medium"), p("fuori"), p("app")));
        QVERIFY(!CopiaCartella(p("medium"), p("app/TEMP/via"), p("app")));
        QVERIFY(CopiaCartella(p("medium"), p("app/TEMP"), p("app")));

        QCOMPARE(leggi(p("app/TEMP/FileS19/KV2.S19")), QByteArray("new release"));
        QVERIFY(!QFileInfo::exists(p("app/TEMP/FILES19")));
        QVERIFY(!QFileInfo(p("app/TEMP/SOFTRIPR.MDB")).isSymLink());
        QCOMPARE(leggi(p("app/TEMP/SOFTRIPR.MDB")), QByteArray("catalogue"));
        QVERIFY(!QFileInfo::exists(p("app/TEMP/FileS19/rubato.S19")));
        QVERIFY(!QFileInfo::exists(p("app/TEMP/tutto")));
        QCOMPARE(leggi(p("fuori/segreto.txt")), QByteArray("outside"));
        QVERIFY(CopiaCartella(p("nessuna"), p("app/TEMP"), p("app"))); // a missing source copies nothing
    }

    void solaLetturaEMarchi()
    {
        QVERIFY(QDir().mkpath(p("app/MARK")));
        scrivi(p("app/MARK/FIAT.BMP"), "logo");
        scrivi(p("app/MARK/citroen.bmp"), "logo");
        scrivi(p("app/MARK/leggimi.txt"), "text");
        QVERIFY(QFile::setPermissions(p("app/MARK/FIAT.BMP"), QFile::ReadOwner | QFile::ReadOther));
        QVERIFY(QFile::setPermissions(p("fuori/segreto.txt"), QFile::ReadOwner));

        QVERIFY(ToglieSolaLettura(p("app/MARK/FIAT.BMP"), p("app")));
        QCOMPARE(QFile::permissions(p("app/MARK/FIAT.BMP")) & (QFile::WriteOwner | QFile::ReadOther),
                 QFile::WriteOwner | QFile::ReadOther);
        QVERIFY(!ToglieSolaLettura(p("app/TEMP/file-via"), p("app")));
        QVERIFY(!(QFile::permissions(p("fuori/segreto.txt")) & QFile::WriteOwner));

        QCOMPARE(CaricoMarchi(p("app")).keys(), QStringList({"CITROEN", "FIAT"}));
        QVERIFY(CaricoMarchi(p("fuori")).isEmpty());
    }

private:
    QString p(const QString &relativo) const { return m_dir->filePath(relativo); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestCartelle)
#include "tst_cartelle.moc"
