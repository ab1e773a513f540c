// The parameter catalogue: what must hold for every entry of its table, the conversions
// by code, and how the cross limits follow page and occasion.

#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QSet>
#include <QTest>

#include <cmath>
#include <tuple>

using namespace kv;

class TestCatalogo : public QObject
{
    Q_OBJECT

    Catalogo m_cat;

    Parametro &par(int i) { return m_cat.Parametri[static_cast<size_t>(i)]; }
    double &letto(int i) { return m_cat.Valori[static_cast<size_t>(i)].Letto; }

private slots:
    void init() { m_cat.InizializzaParametri(); }

    void everyEntryFitsItsMemoryAreaAlone()
    {
        QHash<qint32, int> occupati;
        for (int i = 0; i < Par::Numero; ++i) {
            const Parametro &p = par(i);
            const QByteArray dove = QByteArray::number(i);
            QVERIFY2(p.Dimensione == 1 || p.Dimensione == 2, dove);
            for (auto [indirizzo, da, a] :
                 {std::tuple{p.IndirizzoRAM, 0x0090, 0x01FD}, {p.IndirizzoEE, 0xC104, 0xC2FF}}) {
                if (indirizzo == -1)
                    continue;
                QVERIFY2(indirizzo >= da && indirizzo + p.Dimensione - 1 <= a, dove);
                for (qint32 b = indirizzo; b < indirizzo + p.Dimensione; ++b) {
                    QVERIFY2(!occupati.contains(b), dove + " and " + QByteArray::number(occupati.value(b)));
                    occupati.insert(b, i);
                }
            }
        }
    }

    void everyRunTimeLimitHasASource()
    {
        // A limit left at -1 by the table that no row fills could never pass the check.
        QSet<QPair<int, int>> coperti;
        for (const LimiteIncrociato &r : TabellaLimitiIncrociati()) {
            QVERIFY(Catalogo::indiceValido(r.bersaglio) && Catalogo::indiceValido(r.sorgente));
            coperti.insert({r.bersaglio, int(r.lato)});
        }
        for (int i = 0; i < Par::Numero; ++i) {
            const QByteArray dove = QByteArray::number(i);
            QVERIFY2(par(i).Min != -1 || coperti.contains({i, int(Lato::Min)}), dove);
            QVERIFY2(par(i).Max != -1 || coperti.contains({i, int(Lato::Max)}), dove);
            QVERIFY2(par(i).Min == -1 || par(i).Max == -1 || par(i).Min < par(i).Max, dove);
        }
    }

    void reinitialisingRestoresTheStartState()
    {
        par(Par::SogliaGiriUscitaMinimo).Min = 900;
        m_cat.registraLettura(Par::TipoPC, 2);
        m_cat.Valori[Par::TipoPC].Formato = QStringLiteral("0.0");
        m_cat.registraLettura(-1, 5); // ignored, not a crash
        m_cat.azzeraValori(Par::Numero);
        m_cat.InizializzaParametri();
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Min, -1.0);
        for (int i = 0; i < Par::Numero; ++i) {
            const ValoreParametro &v = m_cat.Valori[static_cast<size_t>(i)];
            QVERIFY2(v.Letto == -1 && v.Corrente == -1 && v.Memorizzato == -1, QByteArray::number(i));
            // Nr 6 has always been shown without a mask.
            QCOMPARE(v.Formato, i == Par::SogliaGiriUscitaPC ? QString() : QStringLiteral("#0"));
        }
    }

    void analogueValuesShowWholeAndComeBackStable()
    {
        const double mezzoPasso = Scala255(0.5);
        for (int grezzo = 0; grezzo <= 1023; ++grezzo) {
            const double mostrato = m_cat.daGrezzo(Par::AsseTpsMappa, grezzo);
            QCOMPARE(mostrato, std::floor(Scala1023(grezzo) + 0.5));
            const double riscritto = m_cat.aGrezzo(Par::AsseTpsMappa, mostrato);
            QVERIFY(std::fabs(riscritto - grezzo) <= mezzoPasso + 1e-9);
            QCOMPARE(m_cat.daGrezzo(Par::AsseTpsMappa, NumeroBE(ByteBE(riscritto, 2))), mostrato);
        }
        // Off the scale: clamped to the ten bits the ECU has.
        QCOMPARE(m_cat.aGrezzo(Par::SogliaTpsEntrataPC, 300), 1023.0);
        QCOMPARE(m_cat.aGrezzo(Par::SogliaTpsEntrataPC, -5), 0.0);
        // The entry's mask decides the rounding.
        m_cat.Valori[Par::IncrementoTps].Formato = QStringLiteral("0.0");
        QCOMPARE(m_cat.daGrezzo(Par::IncrementoTps, 2), 0.5);
    }

    void lambdaThresholdsFollowTheScaleFlag()
    {
        // Only a flag read as 0 asks for scaling; not read yet counts as raw.
        QCOMPARE(m_cat.daGrezzo(Par::SogliaLambdaMagroPC, 200), 200.0);
        letto(Par::ScalaLambda) = m_cat.daGrezzo(Par::ScalaLambda, 7);
        QCOMPARE(letto(Par::ScalaLambda), 255.0);
        QCOMPARE(m_cat.daGrezzo(Par::SogliaMagroMappa + 7, 200), 200.0);
        QCOMPARE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 300), 300.0); // raw: no clamp

        letto(Par::ScalaLambda) = m_cat.daGrezzo(Par::ScalaLambda, 0);
        QCOMPARE(letto(Par::ScalaLambda), 0.0);
        QCOMPARE(m_cat.daGrezzo(Par::SogliaRiccoMappa + 39, 200), 50.0);
        // Scaled, 200 comes back one off after the round trip through 0..255.
        QCOMPARE(NumeroBE(ByteBE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 50), 2)), 201.0);
        QCOMPARE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 300), 1023.0);
    }

    void periodSignAndOutOfTableConversions()
    {
        const double frequenza = m_cat.daGrezzo(Par::PrimaFrequenzaNormale, 48);
        QCOMPARE(frequenza, FrequenzaPeriodo(48)); // fraction kept
        QVERIFY(std::fabs(m_cat.aGrezzo(Par::PrimaFrequenzaNormale, frequenza) - 48) < 1e-9);
        QCOMPARE(m_cat.daGrezzo(Par::PercentualePompata, 0x85), -5.0);
        QCOMPARE(m_cat.aGrezzo(Par::PercentualePompata + 4, -50), double(0xB2));
        QCOMPARE(m_cat.aGrezzo(Par::PercentualePompata + 4, 50), double(0x32));
        QCOMPARE(m_cat.daGrezzo(-1, 7), 7.0);
        QCOMPARE(m_cat.aGrezzo(Par::Numero, 7), 7.0);
    }

    void rangeHintsFollowTheMask()
    {
        QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaGiriUscitaMinimo), QStringLiteral("-1 - -1"));
        par(Par::SogliaTpsEntrataPC).Min = 12.6;
        QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaTpsEntrataPC), QStringLiteral("13 - 255"));
        par(Par::SogliaGiriUscitaPC).Max = 5000.5;
        QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaGiriUscitaPC), QStringLiteral("400 - 5000.5"));
        QCOMPARE(m_cat.suggerimentoIntervallo(Par::Numero), QString());
    }

    void limitsFollowThePageAndTheOccasion()
    {
        // The idle exit bounds the idle entry on the idle page, the cut-off exit on the cut-off
        // page; neither page touches the other's limit.
        QCOMPARE(m_cat.aggiornaLimiti(Par::SogliaGiriUscitaMinimo, 1200, Pagina::Minimo, Occasione::Lettura),
                 QList<int>{Par::SogliaGiriEntrataMinimo});
        QCOMPARE(par(Par::SogliaGiriUscitaCutOff).Min, -1.0);
        m_cat.InizializzaParametri();
        QCOMPARE(m_cat.aggiornaLimiti(Par::SogliaGiriUscitaMinimo, 1200, Pagina::CutOff, Occasione::Modifica),
                 QList<int>{Par::SogliaGiriUscitaCutOff});
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, -1.0);
        QVERIFY(
            m_cat.aggiornaLimiti(Par::PassiControlloMinimo, 7, Pagina::Minimo, Occasione::Lettura).isEmpty());
        QVERIFY(m_cat.aggiornaLimiti(-1, 5, Pagina::Minimo, Occasione::Lettura).isEmpty());

        // The low TPS point bounds the idle exit when read on any page, and never by an edit.
        for (Pagina p :
             {Pagina::Minimo, Pagina::Normale, Pagina::PienoCarico, Pagina::CutOff, Pagina::Lavoro}) {
            m_cat.InizializzaParametri();
            m_cat.aggiornaLimiti(Par::SogliaTpsEntrataMinimo, 20, Pagina::Minimo, Occasione::Lettura);
            QCOMPARE(m_cat.aggiornaLimiti(Par::TpsTaratoMinimo, 12, p, Occasione::Lettura),
                     QList<int>{Par::SogliaTpsUscitaMinimo});
            QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, 12.0);
        }
        QVERIFY(m_cat.aggiornaLimiti(Par::TpsTaratoMinimo, 9, Pagina::Minimo, Occasione::Modifica).isEmpty());
        // The fitter leaving the idle entry puts it back in charge of the floor.
        m_cat.aggiornaLimiti(Par::SogliaTpsEntrataMinimo, 30, Pagina::Minimo, Occasione::Modifica);
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, 30.0);
    }

    void pumpBreakpointEditsMoveOnlyTheNeighbours()
    {
        for (int i = 0; i < Par::ElementiGiriPompata; ++i)
            m_cat.aggiornaLimiti(Par::GiriPompata + i, 1000.0 * (i + 1), Pagina::Pompata, Occasione::Lettura);
        // The last breakpoint keeps the cap it opened with.
        QCOMPARE(m_cat.aggiornaLimiti(Par::GiriPompata + 3, 4500, Pagina::Pompata, Occasione::Modifica),
                 QList<int>{Par::GiriPompata + 2});
        QCOMPARE(par(Par::GiriPompata + 2).Max, 4500.0);
        QCOMPARE(par(Par::GiriPompata + 3).Max, 4000.0);
        m_cat.aggiornaLimiti(Par::GiriPompata, 800, Pagina::Pompata, Occasione::Modifica);
        QCOMPARE(par(Par::GiriPompata + 1).Min, 800.0);
        QCOMPARE(par(Par::GiriPompata).Min, 0.0);
    }
};

QTEST_APPLESS_MAIN(TestCatalogo)
#include "tst_catalogo.moc"
