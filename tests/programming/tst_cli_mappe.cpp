// korvantine-cli show-map and diff as a script meets them: every entry of a map as the pages
// show it, in text or JSON, only what differs between two, and exit status 4 with the reason
// for a file that is no map (every reason is the map check's own test's).

#include "support/FileDiProva.h"
#include "support/MappaDiProva.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

struct Esito
{
    int uscita = -1;
    QByteArray out;
    QString err;
};

Esito esegui(const QStringList &argomenti)
{
    QProcess p;
    p.start(QStringLiteral(KV_CLI), argomenti);
    p.waitForFinished(30000);
    return {p.exitCode(), p.readAllStandardOutput(), QString::fromUtf8(p.readAllStandardError())};
}

} // namespace

class TstCliMappe : public QObject
{
    Q_OBJECT

    QTemporaryDir d;
    QString file(const char *nome) const { return d.filePath(QString::fromLatin1(nome)); }

private slots:
    void initTestCase()
    {
        QByteArray mappa(512, '\0');
        mappa.replace(0x28, 2, QByteArray::fromHex("044C")); // SogliaGiriEntrataMinimo, 1100
        mappa.replace(0x36, 2, QByteArray::fromHex("00C8")); // SogliaLambdaRiccoMinimo, raw 200
        scrivi(file("A.LKV"), comeFile(mappa));
        scrivi(file("B.LKV"), comeFile(mappa.replace(0x28, 2, QByteArray::fromHex("0514"))));
        scrivi(file("corta.LKV"), comeFile(mappa).left(7 * 130 + 20));
    }

    void showMapPrintsEveryEntry()
    {
        Esito e = esegui({"show-map", file("A.LKV"), "--json"});
        QCOMPARE(e.uscita, 0);
        const QJsonObject voci = QJsonDocument::fromJson(e.out).object().value("parameters").toObject();
        QCOMPARE(voci.size(), 171);
        QCOMPARE(voci.value("SogliaGiriEntrataMinimo").toDouble(), 1100.0);
        QCOMPARE(voci.value("SogliaLambdaRiccoMinimo").toDouble(), 50.0); // rule A unless told
        QVERIFY(voci.contains("SogliaRiccoMappa(39)"));
        e = esegui({"show-map", file("A.LKV"), "--scala-lambda", "1"});
        QCOMPARE(e.out.count('\n'), 171);
        QVERIFY(QRegularExpression("^SogliaLambdaRiccoMinimo +200$", QRegularExpression::MultilineOption)
                    .match(QString::fromLatin1(e.out))
                    .hasMatch());
    }

    void diffPrintsOnlyWhatDiffers()
    {
        Esito e = esegui({"diff", file("A.LKV"), file("B.LKV"), "--json"});
        QCOMPARE(e.uscita, 0);
        QCOMPARE(e.out, QByteArray("{\"differences\": {\"SogliaGiriEntrataMinimo\": [1100, 1300]}}\n"));
        e = esegui({"diff", file("A.LKV"), file("A.LKV"), "--quiet"});
        QCOMPARE(e.uscita, 0);
        QVERIFY(e.out.isEmpty() && e.err.isEmpty());
    }

    void aFileThatIsNoMapExitsWith4_data()
    {
        QTest::addColumn<QString>("nome");
        QTest::addColumn<QString>("motivo");
        QTest::newRow("cut short") << "corta.LKV"
                                   << "record 8 is missing or cut short";
        QTest::newRow("missing") << "none.LKV"
                                 << "cannot be read";
    }

    void aFileThatIsNoMapExitsWith4()
    {
        QFETCH(QString, nome);
        QFETCH(QString, motivo);
        for (const QStringList &comando : {QStringList{"show-map", d.filePath(nome)},
                                           QStringList{"diff", file("A.LKV"), d.filePath(nome), "--json"}}) {
            const Esito e = esegui(comando);
            QCOMPARE(e.uscita, 4);
            QVERIFY(e.out.isEmpty());
            QVERIFY2(e.err.contains(d.filePath(nome) + " is not a map: ") && e.err.contains(motivo),
                     qPrintable(e.err));
        }
    }
};

QTEST_GUILESS_MAIN(TstCliMappe)
#include "tst_cli_mappe.moc"
