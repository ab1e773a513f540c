// The chart window's arithmetic and its choice of charts, without a widget: the scale
// rounding, the scroll jumps and the window scale, the ring that fills a new chart at once,
// the slots kept in the settings (with their gap behaviour) and the layout table.

#include "support/FileDiProva.h"

#include "base/FileIni.h"
#include "base/Lingua.h"
#include "monitoring/ModelloGrafici.h"
#include "monitoring/ScalaGrafici.h"

#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

RecordDati campione(double giri, double tps = 0)
{
    RecordDati r;
    r.Valore[2] = giri;
    r.Valore[3] = tps;
    return r;
}

} // namespace

class TstGrafici : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    Lingua lingua;
    TabellaCanali canali;
    std::unique_ptr<ModelloGrafici> m;

    QString ini() const { return cartella.filePath("KORVANTINE.INI"); }
    QString slotSalvato(int n) const
    {
        return FileIni::leggi(ini(), "GRAFICI", "Grafico_" + QString::number(n), "?");
    }
    QList<int> canaliInSlot() const
    {
        QList<int> v;
        for (const SlotGrafico &s : m->slot)
            v << s.Canale;
        return v;
    }

private slots:
    void init()
    {
        QFile::remove(ini());
        canali.InizializzaCanali(lingua.Cerca());
        m = std::make_unique<ModelloGrafici>(canali, ini());
        m->carica();
    }

    void scaleRounding_data()
    {
        QTest::addColumn<double>("min");
        QTest::addColumn<double>("max");
        QTest::addColumn<int>("margine");
        QTest::addColumn<int>("passo");
        QTest::addColumn<int>("minAsse");
        QTest::addColumn<int>("maxAsse");
        QTest::newRow("a single value of 100") << 100.0 << 100.0 << 2 << 10 << 96 << 106;
        // 15 / 10 + 1 = 2.5 intervals: ties go to the even 2, not up to 3.
        QTest::newRow("a tie rounds to even") << 0.0 << 15.0 << 0 << 10 << -2 << 18;
        QTest::newRow("3.5 intervals go up to 4") << 0.0 << 25.0 << 0 << 10 << -7 << 33;
        QTest::newRow("engine speed 800..3000") << 800.0 << 3000.0 << 2 << 10 << 751 << 3051;
        QTest::newRow("a step of 0 counts as 1") << 5.0 << 5.0 << 2 << 0 << 5 << 6;
    }

    void scaleRounding()
    {
        QFETCH(double, min);
        QFETCH(double, max);
        QFETCH(int, margine);
        QFETCH(int, passo);
        QFETCH(int, minAsse);
        QFETCH(int, maxAsse);
        qint32 basso = 0, alto = 0;
        ScalaCanale(min, max, margine, passo, basso, alto);
        QCOMPARE(basso, minAsse);
        QCOMPARE(alto, maxAsse);
    }

    // The chart window's jumps are met by the ticks below; the calibration strips move by a
    // fixed 40, whatever their width.
    void stripsJumpByAFixedForty()
    {
        double da = 0, a = 150;
        QVERIFY(!SaltoFisso(150, 40, da, a));
        QVERIFY(SaltoFisso(151, 40, da, a));
        QCOMPARE(QList<double>({da, a}), QList<double>({40, 190}));
    }

    void ticksScrollAndRescaleFromWhatIsOnShow()
    {
        QVERIFY(m->RidisegnoGrafici(2));
        // At sample 0 the scale comes from the one value.
        auto a = m->tick(campione(100));
        QVERIFY(a[0].punto && a[0].asseY && !a[0].asseX);
        QCOMPARE(a[0].nuovo, QPointF(0, 100));
        QCOMPARE(QList<int>({canali.Canali[2].MinAsse, canali.Canali[2].MaxAsse}), QList<int>({96, 106}));
        QVERIFY(!a[1].punto); // free slots do nothing

        for (int n = 1; n <= 200; ++n) {
            a = m->tick(campione(n < 30 ? 100 : 3000));
            QVERIFY(!a[0].asseX);
        }
        QCOMPARE(QList<int>({canali.Canali[2].MinAsse, canali.Canali[2].MaxAsse}), QList<int>({36, 3066}));
        // Sample 201 moves the window to 40..240, where only 3000 lies.
        a = m->tick(campione(3000));
        QVERIFY(a[0].asseX && a[0].asseY);
        QCOMPARE(QList<int>({canali.Canali[0].MinAsse, canali.Canali[0].MaxAsse}), QList<int>({40, 240}));
        QCOMPARE(QList<int>({canali.Canali[2].MinAsse, canali.Canali[2].MaxAsse}), QList<int>({2996, 3006}));
        QCOMPARE(a[0].nuovo, QPointF(201, 3000));
        // Drawn now: the next tick touches no axis.
        a = m->tick(campione(3000));
        QVERIFY(!a[0].asseX && !a[0].asseY);
    }

    void aChartAddedMidRunFillsAtOnce()
    {
        for (int n = 0; n < 260; ++n)
            m->tick(campione(1000 + n, n % 7));
        QVERIFY(m->RidisegnoGrafici(3));
        const std::vector<QPointF> punti = m->RidisegnoTraccia(0);
        // The window is 40..240 after the first jump and 80..280 after the second.
        QCOMPARE(int(punti.size()), 259 - 80 + 1);
        QCOMPARE(punti.front(), QPointF(80, 80 % 7));
        QCOMPARE(punti.back(), QPointF(259, 259 % 7));
    }

    void frozenChartsStandAndStartOverAtZero()
    {
        QVERIFY(m->RidisegnoGrafici(2));
        for (int n = 0; n < 10; ++n)
            m->tick(campione(n));
        m->Blocca();
        QVERIFY(!m->tick(campione(5))[0].punto);
        QCOMPARE(m->anello.ContaGrafici, 9.0);
        m->Sblocca();
        QCOMPARE(m->anello.IndiceGrafici, qint16(-1));
        QCOMPARE(m->tick(campione(5))[0].nuovo, QPointF(0, 5));
    }

    void frozenChartsScrollOverWhatTheyHold()
    {
        QVERIFY(m->RidisegnoGrafici(2));
        for (int n = 0; n < 260; ++n)
            m->tick(campione(1000 + n));
        QVERIFY(!m->scorri(-10)); // only frozen charts move
        m->Blocca();
        const Canale &tempo = canali.Canali[0];
        const auto finestra = [&] { return QList<int>({tempo.MinAsse, tempo.MaxAsse}); };
        // Back from 80..280 as far as the oldest sample held, the width kept.
        QVERIFY(m->scorri(-50));
        QCOMPARE(finestra(), QList<int>({30, 230}));
        QVERIFY(m->scorri(-1000));
        QCOMPARE(finestra(), QList<int>({0, 200}));
        QVERIFY(!m->scorri(-1));
        QCOMPARE(m->RidisegnoTraccia(0).front(), QPointF(0, 1000));
        QCOMPARE(int(m->RidisegnoTraccia(0).size()), 201);
        QCOMPARE(QList<double>({canali.Canali[2].MinMisurato, canali.Canali[2].MaxMisurato}),
                 QList<double>({1000, 1200}));
        // And forward no further than where they were frozen.
        QVERIFY(m->scorriAlBordo(1));
        QCOMPARE(finestra(), QList<int>({80, 280}));
        QCOMPARE(m->RidisegnoTraccia(0).back(), QPointF(259, 1259));
    }

    void slotsInTheSettings()
    {
        QVERIFY(m->RidisegnoGrafici(3));
        QVERIFY(m->RidisegnoGrafici(4));
        QCOMPARE(QStringList({slotSalvato(1), slotSalvato(2)}), QStringList({"3", "4"}));
        QVERIFY(m->RidisegnoGrafici(3)); // removed: its slot is freed and saved free
        QCOMPARE(QStringList({slotSalvato(1), slotSalvato(2)}), QStringList({"-1", "4"}));
        QCOMPARE(m->posizioneSlot(1), 0);

        // The state channels are refused, and so is a fifth chart.
        for (int c : {1, 7, 10})
            QVERIFY(!m->RidisegnoGrafici(c));
        for (int c : {2, 5, 6})
            QVERIFY(m->RidisegnoGrafici(c));
        QVERIFY(!m->RidisegnoGrafici(8));
        QCOMPARE(canaliInSlot(), QList<int>({2, 4, 5, 6}));
        QCOMPARE(slotSalvato(3), QString("5"));
    }

    void aSavedSlotAfterAGapFlipFlops()
    {
        scrivi(ini(), "[GRAFICI]\r\nGrafico_1=-1\r\nGrafico_2=4\r\nGrafico_3=10\r\nGrafico_4=x\r\n");
        // Load 1: the chart moves to the first slot and is written there; its old key stays.
        m->carica();
        QCOMPARE(canaliInSlot(), QList<int>({4, -1, -1, -1}));
        QCOMPARE(QStringList({slotSalvato(1), slotSalvato(2), slotSalvato(3)}),
                 QStringList({"4", "4", "10"}));
        // Load 2: the second key removes what the first added, and clears the first key.
        m->carica();
        QCOMPARE(canaliInSlot(), QList<int>({-1, -1, -1, -1}));
        QCOMPARE(QStringList({slotSalvato(1), slotSalvato(2)}), QStringList({"-1", "4"}));
        // Load 3: as load 1.
        m->carica();
        QCOMPARE(canaliInSlot(), QList<int>({4, -1, -1, -1}));
    }

    void unfreezingLetsAChannelStandTwice()
    {
        QVERIFY(m->RidisegnoGrafici(2));
        m->Blocca();
        m->Sblocca();
        QVERIFY(m->RidisegnoGrafici(2));
        QCOMPARE(canaliInSlot(), QList<int>({2, 2, -1, -1}));
        QCOMPARE(m->slot[1].RigaDati, qint16(0));
        // Both charts rescale together.
        const auto a = m->tick(campione(500));
        QVERIFY(a[0].asseY && a[1].asseY);
    }

    void layoutByNumberOfCharts_data()
    {
        QTest::addColumn<int>("inUso");
        QTest::addColumn<int>("k");
        QTest::addColumn<int>("slot");
        QTest::addColumn<QList<int>>("rettangolo"); // left, top, width, height
        // W 1000, panel top 0 and height 600.
        QTest::newRow("one fills the area") << 1 << 0 << 2 << QList<int>{180, 0, 817, 600};
        QTest::newRow("two stack: the second") << 2 << 1 << 3 << QList<int>{180, 303, 817, 297};
        QTest::newRow("three: its own quadrant") << 3 << 2 << 3 << QList<int>{590, 303, 408, 297};
        QTest::newRow("four: slot 1 bottom left") << 4 << 1 << 1 << QList<int>{180, 303, 408, 297};
    }

    void layoutByNumberOfCharts()
    {
        QFETCH(int, inUso);
        QFETCH(int, k);
        QFETCH(int, slot);
        QFETCH(QList<int>, rettangolo);
        const PosGrafico p = RettangoloGrafico(CalcolaPosGrafico(1000, 0, 600), inUso, k, slot);
        QCOMPARE(QList<int>({p.Sinistra, p.Alto, p.Larghezza, p.Altezza}), rettangolo);
        QCOMPARE(LarghezzaBoxDati(1000), 170);
    }
};

QTEST_APPLESS_MAIN(TstGrafici)
#include "tst_grafici.moc"
