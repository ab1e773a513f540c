#include "monitoring/AnelloRegistrazione.h"

#include <QTest>

namespace {

RecordDati campione(double base)
{
    RecordDati r;
    for (int c = 0; c < NumeroCanali; ++c)
        r.Valore[c] = base + c;
    r.Progressivo = 9999;
    return r;
}

} // namespace

class TestAnelloRegistrazione : public QObject
{
    Q_OBJECT

private slots:
    void vuoto();
    void riempimentoEGiro();
    void copiaSoloICanaliDelFlusso();
    void azzeraTieneIlConteggio();
    void conteggioEnorme();
};

void TestAnelloRegistrazione::vuoto()
{
    AnelloRegistrazione a;
    QCOMPARE(a.IndiceRegistrazione, qint16(-1));
    QCOMPARE(a.ContaRegistrazione, -1.0);
    QCOMPARE(int(a.BufferRegistrazione.size()), 41);
    for (const RecordDati &r : a.BufferRegistrazione)
        QCOMPARE(r.Progressivo, -1);
}

void TestAnelloRegistrazione::riempimentoEGiro()
{
    AnelloRegistrazione a;
    for (int n = 0; n <= 40; ++n) {
        const bool pieno = a.aggiungi(campione(n));
        QCOMPARE(pieno, n == 40);
        QCOMPARE(a.IndiceRegistrazione, qint16(n));
        QCOMPARE(a.BufferRegistrazione[n].Progressivo, n);
    }
    QCOMPARE(a.ContaRegistrazione, 40.0);

    // Past the upper bound the ring starts again at 0, overwriting the oldest sample.
    QVERIFY(!a.aggiungi(campione(100)));
    QCOMPARE(a.IndiceRegistrazione, qint16(0));
    QCOMPARE(a.BufferRegistrazione[0].Progressivo, 41);
    QCOMPARE(a.BufferRegistrazione[0].Valore[2], 102.0);
    QCOMPARE(a.BufferRegistrazione[1].Progressivo, 1);

    for (int n = 1; n < 40; ++n)
        QVERIFY(!a.aggiungi(campione(0)));
    QVERIFY(a.aggiungi(campione(0)));
    QCOMPARE(a.BufferRegistrazione[40].Progressivo, 81);
}

void TestAnelloRegistrazione::copiaSoloICanaliDelFlusso()
{
    AnelloRegistrazione a;
    a.aggiungi(campione(1000));
    const RecordDati &r = a.BufferRegistrazione[0];
    QCOMPARE(r.Progressivo, 0); // the ring's own number, not the sample's
    QCOMPARE(r.Valore[0], 0.0);
    for (int c = 1; c <= 11; ++c)
        QCOMPARE(r.Valore[c], 1000.0 + c);
    for (int c = 12; c < NumeroCanali; ++c)
        QCOMPARE(r.Valore[c], 0.0);
}

void TestAnelloRegistrazione::azzeraTieneIlConteggio()
{
    AnelloRegistrazione a;
    for (int n = 0; n < 5; ++n)
        a.aggiungi(campione(n));
    a.azzera();
    QCOMPARE(a.IndiceRegistrazione, qint16(-1));
    for (const RecordDati &r : a.BufferRegistrazione)
        QCOMPARE(r.Progressivo, -1);
    QCOMPARE(a.ContaRegistrazione, 4.0);

    // Numbers go on after a pause, so a recording shows the gap.
    a.aggiungi(campione(0));
    QCOMPARE(a.IndiceRegistrazione, qint16(0));
    QCOMPARE(a.BufferRegistrazione[0].Progressivo, 5);
}

void TestAnelloRegistrazione::conteggioEnorme()
{
    AnelloRegistrazione a;
    a.ContaRegistrazione = 2147483646.0;
    a.aggiungi(campione(0));
    QCOMPARE(a.BufferRegistrazione[0].Progressivo, 2147483647);
    a.aggiungi(campione(0));
    QCOMPARE(a.ContaRegistrazione, 2147483648.0);
    QCOMPARE(a.BufferRegistrazione[1].Progressivo, std::numeric_limits<qint32>::min());
}

QTEST_APPLESS_MAIN(TestAnelloRegistrazione)
#include "tst_anelloregistrazione.moc"
