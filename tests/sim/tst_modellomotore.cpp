// The engine model and the working zone, without any line. What the engine does over a
// drive cycle shows in the stream and is met in the simulated ECU's tests.

#include "ModelloMotore.h"
#include "ZonaLavoro.h"

#include <QTest>

using namespace kv;
using namespace kv::sim;

class TestModelloMotore : public QObject
{
    Q_OBJECT

private slots:
    void zonaConIsteresi_data()
    {
        QTest::addColumn<int>("zonaIniziale");
        QTest::addColumn<int>("giri");
        QTest::addColumn<int>("tps");
        QTest::addColumn<int>("zonaAttesa");
        // Default thresholds: RPM idle 1100/1200, cut-off 2000/1800, full load 2000/1800;
        // TPS idle 80/100, cut-off 80/110, full load 850/800.
        const auto riga = [](const char *nome, int da, int giri, int tps, int a) {
            QTest::newRow(nome) << da << giri << tps << a;
        };
        riga("idle stays between entry and exit", Zona::Minimo, 1150, 90, Zona::Minimo);
        riga("idle left above exit rpm", Zona::Minimo, 1201, 60, Zona::Normale);
        riga("idle left above exit tps", Zona::Minimo, 900, 101, Zona::Normale);
        riga("normal not idle between thresholds", Zona::Normale, 1150, 60, Zona::Normale);
        riga("normal to idle", Zona::Normale, 1099, 79, Zona::Minimo);
        riga("normal to cut-off", Zona::Normale, 2001, 79, Zona::CutOff);
        riga("no cut-off with throttle open", Zona::Normale, 3000, 80, Zona::Normale);
        riga("cut-off holds above exit", Zona::CutOff, 1900, 100, Zona::CutOff);
        riga("cut-off left below exit rpm", Zona::CutOff, 1799, 60, Zona::Rientro);
        riga("cut-off left on throttle", Zona::CutOff, 2500, 111, Zona::Rientro);
        riga("normal to full load", Zona::Normale, 2001, 851, Zona::PienoCarico);
        riga("full load holds in hysteresis", Zona::PienoCarico, 1900, 820, Zona::PienoCarico);
        riga("full load left on throttle", Zona::PienoCarico, 3000, 799, Zona::Normale);
        riga("full load released at speed goes to cut-off", Zona::PienoCarico, 3000, 60, Zona::CutOff);
    }

    void zonaConIsteresi()
    {
        QFETCH(int, zonaIniziale);
        QFETCH(int, giri);
        QFETCH(int, tps);
        QFETCH(int, zonaAttesa);
        const SoglieMotore s;
        ZonaLavoro z;
        // Drive the zone to where the row starts from.
        if (zonaIniziale != Zona::Minimo)
            z.aggiorna(1500, 300, s, 40);
        if (zonaIniziale == Zona::CutOff || zonaIniziale == Zona::PienoCarico)
            z.aggiorna(2500, zonaIniziale == Zona::CutOff ? 60 : 900, s, 40);
        QCOMPARE(z.zona(), zonaIniziale);
        QCOMPARE(z.aggiorna(giri, tps, s, 40), zonaAttesa);
    }

    void rientroDura()
    {
        const SoglieMotore s;
        ZonaLavoro z;
        z.aggiorna(1500, 300, s, 40);
        z.aggiorna(2500, 60, s, 40);
        QCOMPARE(z.aggiorna(1700, 60, s, 40), int(Zona::Rientro));
        // Still in return even at idle speed, until its time is up.
        int t = 0;
        while (z.aggiorna(1000, 60, s, 100) == Zona::Rientro)
            t += 100;
        QCOMPARE(t, ZonaLavoro::DurataRientroMs - 100);
        QCOMPARE(z.zona(), int(Zona::Minimo));
    }

    void giriMisuratiInScala()
    {
        SoglieMotore meta;
        meta.costanteGiri = ModelloMotore::ScalaVeraGiri / 2;
        ModelloMotore a(3), b(3);
        int ga = 0, gb = 0;
        for (int i = 0; i < 100; ++i) {
            ga = a.passo(40, SoglieMotore(), ModoMotore::Minimo).giri;
            gb = b.passo(40, meta, ModoMotore::Minimo).giri;
        }
        QVERIFY(ga > 800 && ga < 900);
        QVERIFY(qAbs(gb * 2 - ga) <= 2);
    }
};

QTEST_GUILESS_MAIN(TestModelloMotore)
#include "tst_modellomotore.moc"
