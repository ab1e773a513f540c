// The recording ring: 41 records filled in turn, numbered by a count that survives clearing.

#include "monitoring/AnelloRegistrazione.h"

#include <QTest>

using namespace kv;

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
    void fillsInTurnAndStartsAgainAtZero()
    {
        AnelloRegistrazione a;
        for (int n = 0; n <= 40; ++n) {
            QCOMPARE(a.aggiungi(campione(1000 * n)), n == 40); // full on the last slot
            QCOMPARE(a.IndiceRegistrazione, qint16(n));
            QCOMPARE(a.BufferRegistrazione[n].Progressivo, n); // the ring's number, not the sample's
        }
        // Only the channels of the stream, 1 to 11, are taken.
        const RecordDati &r = a.BufferRegistrazione[3];
        for (int c = 0; c < NumeroCanali; ++c)
            QCOMPARE(r.Valore[c], c >= Canale::FlagPa && c <= Canale::TipoLambda ? 3000.0 + c : 0.0);

        QVERIFY(!a.aggiungi(campione(100)));
        QCOMPARE(a.IndiceRegistrazione, qint16(0));
        QCOMPARE(a.BufferRegistrazione[0].Progressivo, 41);
        QCOMPARE(a.BufferRegistrazione[0].Valore[Canale::Giri], 102.0);
        QCOMPARE(a.BufferRegistrazione[1].Progressivo, 1);
    }

    void clearingKeepsTheCount()
    {
        AnelloRegistrazione a;
        for (int n = 0; n < 5; ++n)
            a.aggiungi(campione(n));
        a.azzera();
        QCOMPARE(a.IndiceRegistrazione, qint16(-1));
        for (const RecordDati &r : a.BufferRegistrazione)
            QCOMPARE(r.Progressivo, -1);
        // Numbers go on after a pause, so a recording shows the gap.
        a.aggiungi(campione(0));
        QCOMPARE(a.IndiceRegistrazione, qint16(0));
        QCOMPARE(a.BufferRegistrazione[0].Progressivo, 5);

        // A run past 2^31 samples wraps the number round instead of failing.
        a.ContaRegistrazione = 2147483646.0;
        a.aggiungi(campione(0));
        QCOMPARE(a.BufferRegistrazione[1].Progressivo, 2147483647);
        a.aggiungi(campione(0));
        QCOMPARE(a.BufferRegistrazione[2].Progressivo, std::numeric_limits<qint32>::min());
    }
};

QTEST_APPLESS_MAIN(TestAnelloRegistrazione)
#include "tst_anelloregistrazione.moc"
