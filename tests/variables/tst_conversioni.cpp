// The number helpers at their edges: bytes, scales, period, sign, interpolation, and the
// text of numbers both ways.

#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace kv;

namespace {
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinito = std::numeric_limits<double>::infinity();
} // namespace

class TestConversioni : public QObject
{
    Q_OBJECT

private slots:
    void byteBE_data()
    {
        QTest::addColumn<double>("valore");
        QTest::addColumn<int>("n");
        QTest::addColumn<QByteArray>("atteso");
        QTest::newRow("70000 keeps its low 16 bits") << 70000.0 << 2 << QByteArray::fromHex("1170");
        QTest::newRow("-1 of a failed period") << -1.0 << 2 << QByteArray::fromHex("FFFF");
        QTest::newRow("fraction rounded") << 48.828125 << 2 << QByteArray::fromHex("0031");
        QTest::newRow("fraction above 255 does not carry") << 255.7 << 1 << QByteArray::fromHex("FF");
        QTest::newRow("not a number") << NaN << 2 << QByteArray::fromHex("0000");
    }

    void byteBE()
    {
        QFETCH(double, valore);
        QFETCH(int, n);
        QFETCH(QByteArray, atteso);
        QCOMPARE(ByteBE(valore, n), atteso);
    }

    void helpersAtTheirEdges()
    {
        QCOMPARE(NumeroBE(QByteArray()), 0.0);
        QCOMPARE(NumeroBE(QByteArray::fromHex("FFFFFFFF")), 4294967295.0);
        for (double v : {0.0, 255.0, 256.0, 4660.0, 65535.0})
            QCOMPARE(NumeroBE(ByteBE(v, 2)), v);

        QCOMPARE(Scala1023(1023), 255.0);
        // Not rounded: the fraction is the caller's to keep or drop.
        QVERIFY(Scala1023(2) > 0.49 && Scala1023(2) < 0.5);
        QVERIFY(std::fabs(Scala255(Scala1023(700)) - 700) < 1e-9);

        QCOMPARE(FrequenzaPeriodo(0), -1.0);
        QCOMPARE(FrequenzaPeriodo(NaN), -1.0);
        QCOMPARE(FrequenzaPeriodo(std::numeric_limits<double>::denorm_min()), -1.0);
        QVERIFY(std::fabs(FrequenzaPeriodo(48) - 1000.0 / 49.152) < 1e-12);
        QVERIFY(std::fabs(FrequenzaPeriodo(FrequenzaPeriodo(20)) - 20) < 1e-12);

        QCOMPARE(SegnoModulo(0x85), -5.0);
        QCOMPARE(SegnoModulo(0x80), 0.0);
        QCOMPARE(SegnoModulo(0x7F), 127.0);
        for (int v = -50; v <= 50; ++v)
            QCOMPARE(SegnoModulo(CodificaSegnoModulo(v)), double(v));

        QCOMPARE(Interpola(0, 210, 2370, 255, 0), 2370.0);
        QCOMPARE(Interpola(255, 210, 2370, 255, 0), 210.0);
        QCOMPARE(Interpola(3, 10, 0, 7, 7), -1.0);
        QCOMPARE(Interpola(Infinito, 10, 0, 10, 0), -1.0);
    }

    void valNumero_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<double>("atteso");
        QTest::newRow("comma") << "12,5" << 12.5;
        QTest::newRow("only the first comma") << "12,5,3" << 12.5;
        QTest::newRow("blanks, sign, tail") << " -3.5abc" << -3.5;
        QTest::newRow("plus") << "+7" << 7.0;
        QTest::newRow("second point") << "3.4.5" << 3.4;
        QTest::newRow("trailing point") << "12." << 12.0;
        QTest::newRow("leading comma") << ",5" << 0.5;
        QTest::newRow("exponent") << "1,5e2" << 150.0;
        QTest::newRow("exponent cut short") << "2e" << 2.0;
        QTest::newRow("blank inside") << "1 2" << 1.0;
        QTest::newRow("text") << "abc" << 0.0;
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("sign alone") << "-" << 0.0;
        QTest::newRow("point alone") << "." << 0.0;
        QTest::newRow("too large") << "1e999" << 0.0;
        QTest::newRow("non-Latin digits") << QString::fromUtf8("\u0663") << 0.0;
    }

    void valNumero()
    {
        QFETCH(QString, testo);
        QFETCH(double, atteso);
        QCOMPARE(ValNumero(testo), atteso);
    }

    void formattaNumero_data()
    {
        QTest::addColumn<double>("valore");
        QTest::addColumn<QString>("mask");
        QTest::addColumn<QString>("atteso");
        const auto riga = [](const char *nome, double v, const char *mask, const char *atteso) {
            QTest::newRow(nome) << v << QString(mask) << QString(atteso);
        };
        riga("half up", 2.5, "#0", "3");
        riga("half away from zero", -2.5, "#0", "-3");
        riga("zero carries no sign", -0.4, "#0", "0");
        riga("large, no exponent", 1e6, "#0", "1000000");
        riga("decimal as written", 2.675, "#0.00", "2.68");
        riga("carry in the decimals", 9.995, "#0.00", "10.00");
        riga("forced zeros", 1.2, "#0.00", "1.20");
        riga("optional decimals", 1.2, "#0.##", "1.2");
        riga("optional decimals at zero", 3.0, "#0.##", "3");
        riga("minimum whole digits", 5.0, "00", "05");
        riga("no mask, fraction", 12.5, "", "12.5");
        riga("no mask, negative zero", -0.0, "", "0");
        riga("no mask, no exponent", 1e20, "", "100000000000000000000");
        riga("not a number", NaN, "#0", "");
        riga("infinity", Infinito, "", "");
    }

    void formattaNumero()
    {
        QFETCH(double, valore);
        QFETCH(QString, mask);
        QFETCH(QString, atteso);
        QCOMPARE(FormattaNumero(valore, mask), atteso);
    }

    void numbersIgnoreTheLocale()
    {
        // What the program writes into a field it reads back the same on every machine.
        QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
        const QString testo = FormattaNumero(1234.5, QStringLiteral("#0.0"));
        const double numero = ValNumero(QStringLiteral("1.234"));
        QLocale::setDefault(QLocale::c());
        QCOMPARE(testo, QStringLiteral("1234.5"));
        QCOMPARE(numero, 1.234);
    }
};

QTEST_APPLESS_MAIN(TestConversioni)
#include "tst_conversioni.moc"
