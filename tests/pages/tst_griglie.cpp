// The grids of the tuning pages without widgets: where things are on the lambda map, the
// rules of its cells against the values the simulated ECU sends, the engine's zone, and what
// the two lists of the full-load page leave on view.

#include "support/ProgrammaSimulato.h"

#include "pages/DialogoPagina.h"
#include "pages/GriglieMessaPunto.h"
#include "pages/VistaPagina.h"

#include <QTest>

#include <cmath>

using namespace kv;
using M = ModelloGriglia;

namespace {

// The page as far as a grid needs one: every value read goes to the grid.
struct VistaGriglia : VistaPagina
{
    void mostraValore(int parametro, double) override
    {
        if (griglia)
            griglia->mostraValore(parametro);
    }
    void mostraSuggerimento(int, const QString &) override {}
    void nascondiRigheTps() override {}
    void bloccaCampoTps(int) override {}
    void mostraSegnalazione(const QString &) override {}
    void mostraZonaLavoro(const QString &) override {}
    void abilitaPagina(bool) override {}
    void uscitaEmergenza() override {}
    void chiudiPagina() override {}

    ModelloGriglia *griglia = nullptr;
};

} // namespace

class TstGriglie : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    VistaGriglia vista;
    std::unique_ptr<DialogoPagina> dialogo;
    std::unique_ptr<ModelloGriglia> mappa;

    void creaMappa()
    {
        dialogo = std::make_unique<DialogoPagina>(*DescrizioneDi(IdPagina::MP_Normale), p->catalogo, p->linea,
                                                  p->menu.ModoAssistenza(), p->lingua, vista);
        mappa = std::make_unique<ModelloMappaLambda>(*dialogo, p->catalogo);
        vista.griglia = mappa.get();
    }

    // The normal page read from the simulated ECU, its map on the model.
    bool apriMappa()
    {
        if (!mappa)
            creaMappa();
        return dialogo->avviaLettura() && attendi();
    }

    QString cella(int r, int c) { return mappa->index(r, c).data().toString(); }
    bool errata(int r, int c) { return mappa->index(r, c).data(M::RuoloErrata).toBool(); }
    double corrente(int parametro) { return p->catalogo.Valori[static_cast<size_t>(parametro)].Corrente; }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }
    void init() { avvia(); }
    void cleanup()
    {
        vista.griglia = nullptr;
        mappa.reset();
        dialogo.reset();
        chiudi();
    }

    void mapPlaces_data()
    {
        QTest::addColumn<int>("riga");
        QTest::addColumn<int>("colonna");
        QTest::addColumn<int>("zona");
        QTest::addColumn<int>("puntoTps");
        QTest::addColumn<bool>("modificabile");
        // Lean below rich, the lowest TPS zone at the bottom, eight RPM zones of five.
        QTest::newRow("bottom left, lean") << 11 << 2 << 0 << 0 << true;
        QTest::newRow("bottom left, rich") << 10 << 2 << 0 << 0 << true;
        QTest::newRow("top left, rich") << 2 << 2 << 4 << -1 << true;
        QTest::newRow("top right, rich") << 2 << 9 << 39 << -1 << true;
        QTest::newRow("bottom right, lean") << 11 << 9 << 35 << 0 << true;
        QTest::newRow("middle") << 6 << 5 << 17 << 2 << true;
        // Breakpoints: column 0 from row 4 down, row 1 from column 2 to 8.
        QTest::newRow("highest TPS breakpoint") << 5 << 0 << -1 << 3 << true;
        QTest::newRow("its other row") << 4 << 0 << -1 << 3 << true;
        QTest::newRow("no breakpoint above it") << 3 << 0 << -1 << -1 << false;
        QTest::newRow("nor at row 2") << 2 << 0 << -1 << -1 << false;
        QTest::newRow("first RPM breakpoint") << 1 << 2 << -1 << -1 << true;
        QTest::newRow("past the last RPM breakpoint") << 1 << 9 << -1 << -1 << false;
        QTest::newRow("corner") << 1 << 0 << -1 << -1 << false;
        QTest::newRow("header row") << 0 << 5 << -1 << -1 << false;
        QTest::newRow("range column") << 7 << 1 << -1 << 2 << false;
    }

    void mapPlaces()
    {
        QFETCH(int, riga);
        QFETCH(int, colonna);
        QFETCH(int, zona);
        QFETCH(int, puntoTps);
        QFETCH(bool, modificabile);
        QCOMPARE(MappaLambda::zona(riga, colonna), zona);
        QCOMPARE(MappaLambda::puntoTps(riga), puntoTps);
        QCOMPARE(MappaLambda::modificabile(riga, colonna), modificabile);
        if (riga == 1)
            QCOMPARE(MappaLambda::puntoGiri(colonna), colonna >= 2 && colonna <= 8 ? colonna - 2 : -1);
        // The row count is the grid's: two more rows shift every breakpoint down by one zone.
        if (puntoTps >= 0)
            QCOMPARE(MappaLambda::puntoTps(riga + 2, MappaLambda::Righe + 2), puntoTps);
    }

    void theMapShowsWhatTheEcuHoldsWhereItBelongs()
    {
        QVERIFY(apriMappa());
        for (int r = 0; r < MappaLambda::Righe; ++r)
            for (int c = 0; c < MappaLambda::Colonne; ++c)
                QVERIFY2(bool(mappa->flags(mappa->index(r, c)) & Qt::ItemIsEditable)
                             == MappaLambda::modificabile(r, c),
                         qPrintable(QString("%1,%2").arg(r).arg(c)));
        const auto scalato = [this](int parametro) {
            return QString::number(std::lround(ram(parametro) * 255.0 / 1023.0));
        };
        QCOMPARE(cella(10, 3), scalato(Par::SogliaRiccoMappa + 5));
        QCOMPARE(cella(11, 3), scalato(Par::SogliaMagroMappa + 5));
        QCOMPARE(cella(1, 8), QString::number(ram(Par::AsseGiriMappa + 6)));
        QCOMPARE(cella(0, 9), "> " + QString::number(ram(Par::AsseGiriMappa + 6)));
        QCOMPARE(cella(5, 0), scalato(Par::AsseTpsMappa + 3));
        QCOMPARE(cella(3, 1), "> " + scalato(Par::AsseTpsMappa + 3));
        QCOMPARE(cella(10, 1), QString());
    }

    void scaleFlagDecidesWhatACellShows_data()
    {
        QTest::addColumn<int>("scala");
        QTest::addColumn<QString>("mostrato");
        QTest::newRow("scaled") << 0 << "50";
        QTest::newRow("raw") << 1 << "200";
    }

    void scaleFlagDecidesWhatACellShows()
    {
        QFETCH(int, scala);
        QFETCH(QString, mostrato);
        voce(Par::ScalaLambda, scala);
        voce(Par::SogliaMagroMappa + 12, 200);
        QVERIFY(apriMappa());
        QCOMPARE(cella(MappaLambda::rigaMagro(2), 4), mostrato);
    }

    void leanAboveRichMarksThePairUntilPutRight()
    {
        QVERIFY(apriMappa());
        const int c = 4; // zone 10 + t
        const int ricco = int(corrente(Par::SogliaRiccoMappa + 12));
        const QModelIndex magro = mappa->index(MappaLambda::rigaMagro(2), c);
        const M::Esito esito = mappa->modifica(magro, QString::number(ricco + 1));
        QVERIFY(!esito.valido);
        QCOMPARE(esito.errata, magro);
        QCOMPARE(corrente(Par::SogliaMagroMappa + 12), ricco + 1.0);
        QVERIFY(errata(MappaLambda::rigaMagro(2), c) && errata(MappaLambda::rigaRicco(2), c));
        QVERIFY(!errata(MappaLambda::rigaMagro(1), c));
        QCOMPARE(mappa->controlla(), magro);

        // Not a number: nothing changes.
        QVERIFY(mappa->modifica(magro, "-").valido);
        QCOMPARE(corrente(Par::SogliaMagroMappa + 12), ricco + 1.0);

        QVERIFY(mappa->modifica(magro, QString::number(ricco - 1)).valido);
        QVERIFY(!errata(MappaLambda::rigaMagro(2), c) && !errata(MappaLambda::rigaRicco(2), c));
        QVERIFY(!mappa->controlla().isValid());
    }

    void aBreakpointEditMovesItsRange()
    {
        QVERIFY(apriMappa());
        QVERIFY(mappa->modifica(mappa->index(4, 0), "201").valido);
        QCOMPARE(corrente(Par::AsseTpsMappa + 3), 201.0);
        QCOMPARE(cella(2, 1), QString("> 201"));
        QVERIFY(!mappa->modifica(mappa->index(1, 5), "20000").valido); // RPM axis tops at 10000
    }

    void liveMarkerFollowsTheEngine_data()
    {
        QTest::addColumn<int>("scartoGiri"); // from the RPM breakpoint named below
        QTest::addColumn<int>("puntoGiri");
        QTest::addColumn<int>("scartoTps");
        QTest::addColumn<int>("puntoTps");
        QTest::addColumn<int>("colonna");
        QTest::addColumn<int>("zonaTps");
        // A zone starts above its breakpoint: on it, the engine is still in the zone below.
        QTest::newRow("on the first breakpoints") << 0 << 0 << 0 << 0 << 2 << 0;
        QTest::newRow("just above them") << 1 << 0 << 1 << 0 << 3 << 1;
        QTest::newRow("above everything") << 500 << 6 << 20 << 3 << 9 << 4;
        QTest::newRow("in the middle") << -1 << 3 << -1 << 2 << 5 << 2;
    }

    void liveMarkerFollowsTheEngine()
    {
        QFETCH(int, scartoGiri);
        QFETCH(int, puntoGiri);
        QFETCH(int, scartoTps);
        QFETCH(int, puntoTps);
        QFETCH(int, colonna);
        QFETCH(int, zonaTps);
        // Nothing until the axes are known.
        creaMappa();
        mappa->impostaPuntoVivo(2000, 100);
        for (int r = 0; r < MappaLambda::Righe; ++r)
            QVERIFY(!mappa->index(r, 2).data(M::RuoloViva).toBool());
        QVERIFY(apriMappa());
        const QString prima = cella(6, 5);
        mappa->impostaPuntoVivo(corrente(Par::AsseGiriMappa + puntoGiri) + scartoGiri,
                                corrente(Par::AsseTpsMappa + puntoTps) + scartoTps);
        QList<QPoint> vive;
        for (int r = 0; r < MappaLambda::Righe; ++r)
            for (int c = 0; c < MappaLambda::Colonne; ++c)
                if (mappa->index(r, c).data(M::RuoloViva).toBool())
                    vive << QPoint(c, r);
        QCOMPARE(vive, (QList<QPoint>{{colonna, MappaLambda::rigaRicco(zonaTps)},
                                      {colonna, MappaLambda::rigaMagro(zonaTps)}}));
        QCOMPARE(cella(6, 5), prima);
    }

    void fullLoadListsDecideWhatShows_data()
    {
        QTest::addColumn<int>("tipoPC");
        QTest::addColumn<int>("pcConf");
        QTest::addColumn<bool>("tps");
        QTest::addColumn<bool>("atteso");
        QTest::addColumn<QString>("visibile"); // thresholds TPS, lambda; grid, its TPS and position columns
        QTest::newRow("position by zone, TPS thresholds") << 0 << 1 << true << true << "T-G-P";
        QTest::newRow("position and TPS by zone") << 0 << 0 << true << true << "--GTP";
        QTest::newRow("closed loop on thresholds: no grid") << 1 << 1 << true << true << "TL---";
        QTest::newRow("closed loop, TPS by zone") << 2 << 0 << true << true << "-LGT-";
        QTest::newRow("no TPS: the zone column alone") << 2 << 0 << false << true << "-LG--";
        QTest::newRow("no TPS hides its thresholds") << 1 << 1 << false << true << "-L---";
        QTest::newRow("a list not read yet") << -1 << 0 << true << false << "";
        QTest::newRow("an unknown entry mode") << 0 << 2 << true << false << "";
        QTest::newRow("an unknown type") << 3 << 1 << true << false << "";
    }

    void fullLoadListsDecideWhatShows()
    {
        QFETCH(int, tipoPC);
        QFETCH(int, pcConf);
        QFETCH(bool, tps);
        QFETCH(bool, atteso);
        QFETCH(QString, visibile);
        const auto a = AspettoPerListe(tipoPC, pcConf, tps);
        QCOMPARE(a.has_value(), atteso);
        if (!a)
            return;
        const QString visto = QString(a->soglieTps ? "T" : "-") + (a->soglieLambda ? "L" : "-")
                              + (a->griglia ? "G" : "-") + (a->griglia && a->colonnaTps ? "T" : "-")
                              + (a->griglia && a->colonnaPosizione ? "P" : "-");
        QCOMPARE(visto, visibile);
    }

    void fullLoadMarkerTakesTheRpmZone()
    {
        dialogo = std::make_unique<DialogoPagina>(*DescrizioneDi(IdPagina::MP_PienoCarico), p->catalogo,
                                                  p->linea, p->menu.ModoAssistenza(), p->lingua, vista);
        ModelloGrigliaRTS rts(*dialogo, p->catalogo);
        vista.griglia = &rts;
        QVERIFY(dialogo->avviaLettura() && attendi());
        for (auto [giri, riga] :
             {std::pair{corrente(Par::GiriRTS), 1}, {corrente(Par::GiriRTS + 6) + 1, 8}}) {
            rts.impostaPuntoVivo(giri, 0);
            for (int c = 0; c < ModelloGrigliaRTS::Colonne; ++c)
                QVERIFY(rts.index(riga, c).data(M::RuoloViva).toBool());
        }
        QVERIFY(!rts.index(1, 0).data(M::RuoloViva).toBool());
        vista.griglia = nullptr;
    }
};

QTEST_GUILESS_MAIN(TstGriglie)
#include "tst_griglie.moc"
