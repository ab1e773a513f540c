#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <QTest>

#include <cmath>
#include <limits>

class TestConversioni : public QObject
{
    Q_OBJECT

private slots:
    void byteBE_data();
    void byteBE();
    void numeroBE();
    void scale();
    void frequenzaPeriodo();
    void segnoModulo();
    void interpola();
    void valNumero_data();
    void valNumero();
    void formattaNumero_data();
    void formattaNumero();
    void formatoEValNumeroSiRileggono();
};

void TestConversioni::byteBE_data()
{
    QTest::addColumn<double>("valore");
    QTest::addColumn<int>("n");
    QTest::addColumn<QByteArray>("atteso");

    QTest::newRow("1023 in due byte") << 1023.0 << 2 << QByteArray::fromHex("03FF");
    QTest::newRow("70000 tiene i 16 bit bassi") << 70000.0 << 2 << QByteArray::fromHex("1170");
    QTest::newRow("256 in un byte si perde") << 256.0 << 1 << QByteArray::fromHex("00");
    QTest::newRow("zero") << 0.0 << 2 << QByteArray::fromHex("0000");
    QTest::newRow("-1 da periodo fallito") << -1.0 << 2 << QByteArray::fromHex("FFFF");
    QTest::newRow("frazione arrotondata") << 48.828125 << 2 << QByteArray::fromHex("0031");
    QTest::newRow("frazione sopra 255 non trabocca") << 255.7 << 1 << QByteArray::fromHex("FF");
    QTest::newRow("nessun byte") << 5.0 << 0 << QByteArray();
    QTest::newRow("non numero") << std::numeric_limits<double>::quiet_NaN() << 2
                                << QByteArray::fromHex("0000");
}

void TestConversioni::byteBE()
{
    QFETCH(double, valore);
    QFETCH(int, n);
    QFETCH(QByteArray, atteso);
    QCOMPARE(ByteBE(valore, n), atteso);
}

void TestConversioni::numeroBE()
{
    QCOMPARE(NumeroBE(QByteArray()), 0.0);
    QCOMPARE(NumeroBE(QByteArray::fromHex("03FF")), 1023.0);
    QCOMPARE(NumeroBE(QByteArray::fromHex("FFFFFFFF")), 4294967295.0);
    for (double v : {0.0, 1.0, 255.0, 256.0, 4660.0, 65535.0})
        QCOMPARE(NumeroBE(ByteBE(v, 2)), v);
}

void TestConversioni::scale()
{
    QCOMPARE(Scala1023(1023), 255.0);
    QCOMPARE(Scala255(255), 1023.0);
    QCOMPARE(Scala1023(0), 0.0);
    // Not rounded: the fraction is the caller's to keep or drop.
    QVERIFY(Scala1023(2) > 0.49 && Scala1023(2) < 0.5);
    QVERIFY(std::fabs(Scala255(Scala1023(700)) - 700) < 1e-9);
}

void TestConversioni::frequenzaPeriodo()
{
    QCOMPARE(FrequenzaPeriodo(0), -1.0);
    QCOMPARE(FrequenzaPeriodo(std::numeric_limits<double>::quiet_NaN()), -1.0);
    QCOMPARE(FrequenzaPeriodo(std::numeric_limits<double>::denorm_min()), -1.0);
    QVERIFY(std::fabs(FrequenzaPeriodo(48) - 1000.0 / 49.152) < 1e-12);
    // The same formula serves both ways.
    QVERIFY(std::fabs(FrequenzaPeriodo(FrequenzaPeriodo(20)) - 20) < 1e-12);
}

void TestConversioni::segnoModulo()
{
    QCOMPARE(SegnoModulo(0x85), -5.0);
    QCOMPARE(SegnoModulo(0x05), 5.0);
    QCOMPARE(SegnoModulo(0x80), 0.0);
    QCOMPARE(SegnoModulo(0xFF), -127.0);
    QCOMPARE(SegnoModulo(0x7F), 127.0);

    QCOMPARE(CodificaSegnoModulo(-50), double(0xB2));
    QCOMPARE(CodificaSegnoModulo(50), double(0x32));
    QCOMPARE(CodificaSegnoModulo(0), 0.0);
    for (int v = -50; v <= 50; ++v)
        QCOMPARE(SegnoModulo(CodificaSegnoModulo(v)), double(v));
}

void TestConversioni::interpola()
{
    QCOMPARE(Interpola(5, 10, 0, 10, 0), 5.0);
    QCOMPARE(Interpola(0, 210, 2370, 255, 0), 2370.0);
    QCOMPARE(Interpola(255, 210, 2370, 255, 0), 210.0);
    QCOMPARE(Interpola(3, 10, 0, 7, 7), -1.0);
    QCOMPARE(Interpola(std::numeric_limits<double>::infinity(), 10, 0, 10, 0), -1.0);
}

void TestConversioni::valNumero_data()
{
    QTest::addColumn<QString>("testo");
    QTest::addColumn<double>("atteso");

    QTest::newRow("virgola") << "12,5" << 12.5;
    QTest::newRow("solo la prima virgola") << "12,5,3" << 12.5;
    QTest::newRow("blank, segno, coda") << " -3.5abc" << -3.5;
    QTest::newRow("tab in testa") << "\t 8" << 8.0;
    QTest::newRow("piu") << "+7" << 7.0;
    QTest::newRow("punto e virgola insieme") << "1.5,2" << 1.5;
    QTest::newRow("secondo punto") << "3.4.5" << 3.4;
    QTest::newRow("punto finale") << "12." << 12.0;
    QTest::newRow("punto iniziale") << ",5" << 0.5;
    QTest::newRow("esponente") << "1,5e2" << 150.0;
    QTest::newRow("esponente monco") << "2e" << 2.0;
    QTest::newRow("blank in mezzo") << "1 2" << 1.0;
    QTest::newRow("testo") << "abc" << 0.0;
    QTest::newRow("vuoto") << "" << 0.0;
    QTest::newRow("solo segno") << "-" << 0.0;
    QTest::newRow("solo punto") << "." << 0.0;
    QTest::newRow("troppo grande") << "1e999" << 0.0;
    QTest::newRow("cifre non latine") << QString::fromUtf8("\u0663") << 0.0;
}

void TestConversioni::valNumero()
{
    QFETCH(QString, testo);
    QFETCH(double, atteso);
    QCOMPARE(ValNumero(testo), atteso);
}

void TestConversioni::formattaNumero_data()
{
    QTest::addColumn<double>("valore");
    QTest::addColumn<QString>("mask");
    QTest::addColumn<QString>("atteso");

    QTest::newRow("mezzo in su") << 2.5 << "#0" << "3";
    QTest::newRow("mezzo negativo") << -2.5 << "#0" << "-3";
    QTest::newRow("sotto mezzo") << 0.4 << "#0" << "0";
    QTest::newRow("zero senza segno") << -0.4 << "#0" << "0";
    QTest::newRow("riporto") << 99.5 << "#0" << "100";
    QTest::newRow("grande") << 1e6 << "#0" << "1000000";
    QTest::newRow("un decimale") << 0.05 << "0.0" << "0.1";
    QTest::newRow("decimale come si legge") << 2.675 << "#0.00" << "2.68";
    QTest::newRow("riporto nei decimali") << 9.995 << "#0.00" << "10.00";
    QTest::newRow("zeri obbligati") << 1.2 << "#0.00" << "1.20";
    QTest::newRow("decimali facoltativi") << 1.2 << "#0.##" << "1.2";
    QTest::newRow("decimali facoltativi a zero") << 3.0 << "#0.##" << "3";
    QTest::newRow("cifre intere minime") << 5.0 << "00" << "05";
    QTest::newRow("senza maschera intero") << 12.0 << "" << "12";
    QTest::newRow("senza maschera frazione") << 12.5 << "" << "12.5";
    QTest::newRow("senza maschera negativo") << -0.25 << "" << "-0.25";
    QTest::newRow("senza maschera zero negativo") << -0.0 << "" << "0";
    QTest::newRow("senza maschera niente esponente") << 1e20 << "" << "100000000000000000000";
    QTest::newRow("non numero") << std::numeric_limits<double>::quiet_NaN() << "#0" << "";
    QTest::newRow("infinito") << std::numeric_limits<double>::infinity() << "" << "";
}

void TestConversioni::formattaNumero()
{
    QFETCH(double, valore);
    QFETCH(QString, mask);
    QFETCH(QString, atteso);
    QCOMPARE(FormattaNumero(valore, mask), atteso);
}

void TestConversioni::formatoEValNumeroSiRileggono()
{
    // What the program writes into a field it must read back as the same number,
    // whatever the locale of the machine.
    QLocale::setDefault(QLocale(QLocale::Italian, QLocale::Italy));
    for (int grezzo = 0; grezzo <= 1023; ++grezzo) {
        const double mostrato = Scala1023(grezzo);
        const double intero = ValNumero(FormattaNumero(mostrato, QStringLiteral("#0")));
        QCOMPARE(intero, std::floor(mostrato + 0.5));
        const double decimo = ValNumero(FormattaNumero(mostrato, QStringLiteral("0.0")));
        QVERIFY(std::fabs(decimo - mostrato) <= 0.05 + 1e-9);
        QCOMPARE(FormattaNumero(decimo, QStringLiteral("0.0")),
                 FormattaNumero(mostrato, QStringLiteral("0.0")));
    }
    QLocale::setDefault(QLocale::c());
}

QTEST_APPLESS_MAIN(TestConversioni)
#include "tst_conversioni.moc"
