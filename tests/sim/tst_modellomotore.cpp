// The engine model and the working zone, without any line.

#include "ModelloMotore.h"
#include "ZonaLavoro.h"

#include <QTest>

#include <set>

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
        QTest::newRow("idle stays between entry and exit") << int(Zona::Minimo) << 1150 << 90 << int(Zona::Minimo);
        QTest::newRow("idle left above exit rpm") << int(Zona::Minimo) << 1201 << 60 << int(Zona::Normale);
        QTest::newRow("idle left above exit tps") << int(Zona::Minimo) << 900 << 101 << int(Zona::Normale);
        QTest::newRow("normal not idle between thresholds") << int(Zona::Normale) << 1150 << 60 << int(Zona::Normale);
        QTest::newRow("normal to idle") << int(Zona::Normale) << 1099 << 79 << int(Zona::Minimo);
        QTest::newRow("normal to cut-off") << int(Zona::Normale) << 2001 << 79 << int(Zona::CutOff);
        QTest::newRow("no cut-off with throttle open") << int(Zona::Normale) << 3000 << 80 << int(Zona::Normale);
        QTest::newRow("cut-off holds above exit") << int(Zona::CutOff) << 1900 << 100 << int(Zona::CutOff);
        QTest::newRow("cut-off left below exit rpm") << int(Zona::CutOff) << 1799 << 60 << int(Zona::Rientro);
        QTest::newRow("cut-off left on throttle") << int(Zona::CutOff) << 2500 << 111 << int(Zona::Rientro);
        QTest::newRow("normal to full load") << int(Zona::Normale) << 2001 << 851 << int(Zona::PienoCarico);
        QTest::newRow("full load holds in hysteresis") << int(Zona::PienoCarico) << 1900 << 820 << int(Zona::PienoCarico);
        QTest::newRow("full load left on throttle") << int(Zona::PienoCarico) << 3000 << 799 << int(Zona::Normale);
        QTest::newRow("full load released at speed goes to cut-off") << int(Zona::PienoCarico) << 3000 << 60 << int(Zona::CutOff);
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
        switch (zonaIniziale) {
        case Zona::Normale:
            z.aggiorna(1500, 300, s, 40);
            break;
        case Zona::CutOff:
            z.aggiorna(1500, 300, s, 40);
            z.aggiorna(2500, 60, s, 40);
            break;
        case Zona::PienoCarico:
            z.aggiorna(1500, 300, s, 40);
            z.aggiorna(2500, 900, s, 40);
            break;
        default:
            break;
        }
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

    void cicloInOrdine()
    {
        SoglieMotore s;
        s.costanteGiri = 4600;
        ModelloMotore m(7);
        QList<int> zone;
        for (int t = 0; t < m.durataCicloMs(); t += 40) {
            const int z = m.passo(40, s, ModoMotore::Ciclo).zona;
            if (zone.isEmpty() || zone.last() != z)
                zone.append(z);
        }
        // Releasing the pedal from full load crosses part throttle before the fuel cut.
        QCOMPARE(zone, (QList<int>{Zona::Minimo, Zona::Normale, Zona::PienoCarico, Zona::Normale,
                                   Zona::CutOff, Zona::Rientro, Zona::Normale, Zona::Minimo}));
    }

    void giriMisuratiInScala()
    {
        SoglieMotore giusta;
        SoglieMotore meta;
        meta.costanteGiri = ModelloMotore::ScalaVeraGiri / 2;
        ModelloMotore a(3);
        ModelloMotore b(3);
        for (int i = 0; i < 100; ++i) {
            a.passo(40, giusta, ModoMotore::Minimo);
            b.passo(40, meta, ModoMotore::Minimo);
        }
        const int ga = a.passo(40, giusta, ModoMotore::Minimo).giri;
        const int gb = b.passo(40, meta, ModoMotore::Minimo).giri;
        QVERIFY(ga > 800 && ga < 900);
        QVERIFY(qAbs(gb * 2 - ga) <= 2);
    }

    void motorinoSegueLaSonda()
    {
        // Idle loop switched off: the stepper stands, the probe sits on one side.
        SoglieMotore ferma;
        ferma.passiMinimo = 0;
        ModelloMotore m(5);
        std::set<int> posizioni;
        for (int t = 0; t < 5000; t += 40) {
            const CampioneMotore c = m.passo(40, ferma, ModoMotore::Minimo);
            if (t > 1000)
                posizioni.insert(c.actpos);
        }
        QCOMPARE(posizioni.size(), size_t(1));

        // Loop on: the stepper hunts and the probe swings across both thresholds.
        const SoglieMotore s;
        std::set<int> ricmag;
        int lambdaMin = 1023, lambdaMax = 0;
        posizioni.clear();
        for (int t = 0; t < 5000; t += 40) {
            const CampioneMotore c = m.passo(40, s, ModoMotore::Minimo);
            QCOMPARE(c.zona, int(Zona::Minimo));
            posizioni.insert(c.actpos);
            ricmag.insert(c.ricmag);
            lambdaMin = qMin(lambdaMin, c.lambda);
            lambdaMax = qMax(lambdaMax, c.lambda);
        }
        QVERIFY(posizioni.size() > 3);
        QVERIFY(lambdaMin < s.lambdaMagroMinimo && lambdaMax > s.lambdaRiccoMinimo);
        QVERIFY(ricmag.count(0) && ricmag.count(255));
    }

    void posizioniFisseFuoriAnello()
    {
        SoglieMotore s;
        s.resetPC = 170;
        s.posizioneCutOff = 25;
        ModelloMotore m(11);
        bool vistoPC = false, vistoCO = false;
        int inZona = 0, zonaPrima = -1;
        for (int t = 0; t < m.durataCicloMs(); t += 40) {
            const CampioneMotore c = m.passo(40, s, ModoMotore::Ciclo);
            inZona = c.zona == zonaPrima ? inZona + 40 : 0;
            zonaPrima = c.zona;
            // A second after entering, the stepper has been driven to the zone's position.
            if (inZona >= 1000 && c.zona == Zona::PienoCarico) {
                QCOMPARE(c.actpos, 170);
                vistoPC = true;
            }
            if (inZona >= 1000 && c.zona == Zona::CutOff) {
                QCOMPARE(c.actpos, 25);
                QVERIFY(c.lambda < 100); // no fuel: the probe reads lean
                vistoCO = true;
            }
        }
        QVERIFY(vistoPC && vistoCO);
    }

    void motoreSpento()
    {
        const SoglieMotore s;
        ModelloMotore m(2);
        CampioneMotore c;
        for (int t = 0; t < 3000; t += 40)
            c = m.passo(40, s, ModoMotore::Spento);
        QCOMPARE(c.giri, 0);
        QCOMPARE(c.tipalim, 0);
        // After a start, petrol until warm, then gas.
        int primoGas = -1;
        for (int t = 0; t < 8000 && primoGas < 0; t += 40) {
            if (m.passo(40, s, ModoMotore::Minimo).tipalim == 1)
                primoGas = t;
        }
        QVERIFY(primoGas > 3000 && primoGas < 6000);
    }

    void pompataSullAccelerazione()
    {
        SoglieMotore s;
        ModelloMotore m(4);
        for (int t = 0; t < 3000; t += 40)
            QCOMPARE(m.passo(40, s, ModoMotore::Minimo).pompata, 0);
        int durata = 0;
        for (int t = 0; t < 2000; t += 40)
            durata += m.passo(40, s, ModoMotore::PedalePremuto).pompata * 40;
        QVERIFY(durata >= s.tempoIncrementoTps);
        // A threshold no pedal can beat: no pump.
        s.incrementoTps = 1023;
        ModelloMotore n(4);
        for (int t = 0; t < 3000; t += 40)
            n.passo(40, s, ModoMotore::Minimo);
        for (int t = 0; t < 2000; t += 40)
            QCOMPARE(n.passo(40, s, ModoMotore::PedalePremuto).pompata, 0);
    }
};

QTEST_GUILESS_MAIN(TestModelloMotore)
#include "tst_modellomotore.moc"
