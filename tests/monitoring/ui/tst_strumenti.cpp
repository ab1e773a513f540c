// The instruments panel: its 13 set-point reads against the simulated ECU wired straight
// to the port, the display tick on records put in by hand, and the panel on screen.

#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"

#include "monitoring/ModelloStrumenti.h"
#include "monitoring/ui/BarraStrumento.h"
#include "monitoring/ui/Contagiri.h"
#include "monitoring/ui/ImmaginiMotorino.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "pages/LetturaStrumenti.h"
#include "pages/PannelloLive.h"

#include <QLabel>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <tuple>

using namespace kv;
using namespace kv::sim;

using M = ModelloStrumenti;

class TstStrumenti : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<M> modello;
    std::unique_ptr<LetturaStrumenti> lettura;

    // A live record as the 'd' decoder leaves it, handed to the model.
    static void record(M &m, double giri, double tps, double lambda, double passi, double zona, double pompa,
                       double alim, double sonda = 0)
    {
        RecordDati r;
        auto &v = r.Valore;
        std::tie(v[Canale::FlagPa], v[Canale::Giri], v[Canale::Tps], v[Canale::Lambda], v[Canale::ActPos],
                 v[Canale::MZonAct], v[Canale::Pompata], v[Canale::TipAlim], v[Canale::TipoLambda]) =
            std::tuple(0.0, giri, tps, lambda, passi, zona, pompa, alim, sonda);
        m.ricevi(r);
    }
    void record(double giri, double tps, double lambda, double passi, double zona, double pompa, double alim,
                double sonda = 0)
    {
        record(*modello, giri, tps, lambda, passi, zona, pompa, alim, sonda);
    }

    // Loaded and read, so the record last shown is all -1.
    bool pronto()
    {
        modello->azzera();
        return lettura->carica() && attendi();
    }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }

    void init()
    {
        avvia();
        using namespace Par;
        for (auto [v, grezzo] : {std::pair{SogliaGiriEntrataMinimo, 1100},
                                 {SogliaGiriEntrataCutOff, 2000},
                                 {SogliaGiriEntrataPC, 2600},
                                 {SogliaTpsEntrataMinimo, 80},
                                 {SogliaTpsEntrataCutOff, 90},
                                 {SogliaTpsEntrataPC, 850},
                                 {PassiControlloMinimo, 3},
                                 {PassiControlloNormale, 20},
                                 {PosizioneMotorinoNormale, 120},
                                 {ScalaLambda, 0},
                                 {SogliaLambdaRiccoMinimo, 600},
                                 {SogliaLambdaRiccoNormale, 580},
                                 {SogliaLambdaRiccoPC, 640}})
            voce(v, grezzo);
        modello = std::make_unique<M>(p->catalogo, p->canali);
        lettura = std::make_unique<LetturaStrumenti>(p->linea.motore(), p->catalogo, p->anello);
    }

    void cleanup()
    {
        lettura.reset();
        modello.reset();
        chiudi();
    }

    void thirteenReadsFillTheSetPoints()
    {
        p->anello.RegistrazioneAttiva = false;
        p->anello.IndiceRegistrazione = 7;
        QSignalSpy fine(lettura.get(), &LetturaStrumenti::letturaFinita);
        QVERIFY(lettura->carica());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(LetturaStrumenti::Stato));
        QVERIFY(attendi());
        QCOMPARE(fine.size(), 1);
        QCOMPARE(fine.at(0).at(0).toBool(), true);
        QCOMPARE(p->anello.RegistrazioneAttiva, true);
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(-1));

        QCOMPARE(porta->scritti.size(), 13);

        const auto scala = [](int g) { return std::round(g * 255.0 / 1023.0); };
        QCOMPARE(modello->valore(M::GiriPienoCarico), 2600.0);
        QCOMPARE(modello->testoValore(M::TpsCutOff), QString::number(scala(90)));
        QCOMPARE(modello->scalaLambda(), 0.0);
        QCOMPARE(*modello->marcatore(M::MarcaTpsPienoCarico), scala(850) / 255);
        QCOMPARE(*modello->marcatore(M::MarcaLambdaNormale), scala(580) / 255);
        QCOMPARE(*modello->marcatore(M::LineaReset), 120.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiNormSopra), 140.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiMinSotto), 117.0 / 255);
    }

    void nothingShownUntilRead()
    {
        porta->chiudi();
        QVERIFY(!lettura->carica());
        QVERIFY(porta->scritti.isEmpty());

        porta->apri({});
        ecu->impostaStallo(true);
        QSignalSpy fine(lettura.get(), &LetturaStrumenti::letturaFinita);
        QVERIFY(lettura->carica());
        for (int m = 0; m < M::Marcatori; ++m)
            QVERIFY(!modello->marcatore(M::Marcatore(m)));
        QVERIFY(modello->testoValore(M::GiriMinimo).isEmpty());
        QVERIFY(req->scatta());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QCOMPARE(fine.size(), 1);
        QCOMPARE(fine.at(0).at(0).toBool(), false);
    }

    void firstRecordShowsEverythingThenOnlyChanges()
    {
        QVERIFY(pronto());
        QVERIFY(!modello->tick().qualcosa()); // nothing new yet
        record(2500, 40, 120, 90, 2, 0, 1);
        M::Cambiamenti c = modello->tick();
        QVERIFY(c.giri && c.tps && c.lambda && c.motorino && c.alimentazione && c.pompata && c.zona);
        QVERIFY(!modello->tick().qualcosa()); // shown once
        const M::Quadro &q = modello->quadro();
        QCOMPARE(q.giri, QString("2500"));
        QCOMPARE(q.lancettaGiri, 2.5);
        QCOMPARE(q.barraTps, 40.0);
        QCOMPARE(q.lambda, QString("120"));
        QCOMPARE(q.posizioneMotorino, 90.0 / 255);
        QCOMPARE(q.zona, 2.0);

        record(2600, 40, 120, 90, 2, 0, 1);
        c = modello->tick();
        QVERIFY(c.giri);
        QVERIFY(!c.tps && !c.lambda && !c.motorino && !c.alimentazione && !c.pompata && !c.zona);
        QCOMPARE(modello->mostrato().Valore[Canale::Giri], 2600.0);

        // Off its scale a pointer stays where it was while the number goes on; the top of a
        // scale is still on it.
        record(9500, 255, 300, 90, 2, 0, 1);
        modello->tick();
        QCOMPARE(q.giri, QString("9500"));
        QCOMPARE(q.lancettaGiri, 2.6);
        QCOMPARE(q.barraTps, 255.0);
        QCOMPARE(q.lambda, QString("300"));
        QCOMPARE(q.barraLambda, 120.0);
        record(8000, 255, 300, 90, 2, 0, 1);
        modello->tick();
        QCOMPARE(q.lancettaGiri, 8.0);
    }

    void barsTakeTheChannelRanges_data()
    {
        QTest::addColumn<double>("tipoSonda");
        QTest::addColumn<double>("lambda");
        QTest::addColumn<double>("massimo");     // of the lambda bar's scale
        QTest::addColumn<double>("barraLambda"); // after the record; 120 before it
        QTest::newRow("type 0: the scaled lambda's 0..255") << 0.0 << 255.0 << 255.0 << 255.0;
        QTest::newRow("type 0 beyond 255 stays") << 0.0 << 300.0 << 255.0 << 120.0;
        QTest::newRow("type 1: raw lambda up to 5000") << 1.0 << 5000.0 << 5000.0 << 5000.0;
        QTest::newRow("type 1 beyond its channel's range stays") << 1.0 << 5001.0 << 5000.0 << 120.0;
    }

    void barsTakeTheChannelRanges()
    {
        QFETCH(double, tipoSonda);
        QFETCH(double, lambda);
        QFETCH(double, massimo);
        QFETCH(double, barraLambda);
        QVERIFY(pronto());
        record(2500, 40, 120, 90, 2, 0, 1);
        modello->tick();
        record(2500, 255, lambda, 90, 2, 0, 1, tipoSonda);
        QVERIFY(modello->tick().lambda);
        QCOMPARE(modello->quadro().barraLambda, barraLambda);
        QCOMPARE(modello->quadro().barraTps, 255.0);
        QCOMPARE(modello->scalaBarra(3), (M::Scala{0, 255}));
        QCOMPARE(modello->scalaBarra(4), (M::Scala{0, massimo}));
        // The set points stand on the bar's scale.
        QCOMPARE(*modello->marcatore(M::MarcaLambdaNormale), std::round(580 * 255.0 / 1023.0) / massimo);
    }

    void stateTexts_data()
    {
        QTest::addColumn<double>("zona");
        QTest::addColumn<double>("pompa");
        QTest::addColumn<double>("alimentazione");
        QTest::addColumn<QStringList>("chiavi"); // zone, pump, supply
        QTest::addColumn<quint32>("colore");
        QTest::newRow("no zone, pump at rest, petrol")
            << 0.0 << 0.0 << 0.0 << QStringList{"ZONA.99", "POMPATA.0", "TIPO.0"} << quint32(0x0000FF);
        QTest::newRow("zone 5, pumping, gas")
            << 5.0 << 3.0 << 1.0 << QStringList{"ZONA.5", "POMPATA.99", "TIPO.1"} << quint32(0x00FF00);
        QTest::newRow("zone above five, no third supply")
            << 6.0 << 1.0 << 2.0 << QStringList{"ZONA.99", "POMPATA.99", "TIPO.99"} << quint32(0x00FFFF);
    }

    void stateTexts()
    {
        QFETCH(double, zona);
        QFETCH(double, pompa);
        QFETCH(double, alimentazione);
        QFETCH(QStringList, chiavi);
        QFETCH(quint32, colore);
        QVERIFY(pronto());
        record(800, 10, 10, 10, zona, pompa, alimentazione);
        QVERIFY(modello->tick().alimentazione);
        const M::Quadro &q = modello->quadro();
        QCOMPARE(QStringList({p->lingua.testo(NomeZona(q.zona)), q.chiavePompata, q.chiaveAlimentazione}),
                 QStringList({testo("ZONE", chiavi[0]), chiavi[1], chiavi[2]}));
        QCOMPARE(q.coloreAlimentazione, colore);
    }

    void panelOnScreen()
    {
        lettura.reset();
        const QString file = cartella.filePath("PROVA.ACQ");
        scrivi(p->percorsoIni(), "[MEMORIZZAZIONE]\r\nFileMemor= " + file.toLocal8Bit() + " \r\n");
        Strumenti s(ContestoMonitorDi(*p));
        s.resize(1100, 600);
        s.show();
        QVERIFY(QTest::qWaitForWindowExposed(&s));
        QSignalSpy chiusa(&s, &Strumenti::chiusa);
        s.carica();
        QVERIFY(!s.findChild<QWidget *>("Cruscotto")->isVisible()); // until the set points are in
        QVERIFY(attendi());
        QVERIFY(s.findChild<QWidget *>("Cruscotto")->isVisible());
        QCOMPARE(s.findChild<QLabel *>("LabRegistro")->text(),
                 testo("STRUMENTI", "LABREGISTRO.0") + " " + file);
        auto *tps = s.findChild<BarraStrumento *>("Dato_TPS");
        QCOMPARE(*tps->marcatore(2), std::round(850 * 255.0 / 1023.0) / 255);
        QCOMPARE(*s.findChild<ScalaMotorino *>("MotorinoZ")->reset(), 120.0 / 255);

        QSignalSpy nuovi(&p->linea.datiLive(), &DatiLive::nuovoRecord);
        ecu->avanzaTempo(40);
        QTRY_VERIFY(!nuovi.isEmpty());
        const RecordDati r = p->linea.datiLive().ultimoRecord();
        s.VisDati();
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_2")->text(),
                 QString::number(std::lround(r.Valore[Canale::Giri])));
        QCOMPARE(s.findChild<Contagiri *>("Dato_Giri")->valore(), r.Valore[Canale::Giri] / 1000);
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_3")->text(),
                 QString::number(std::lround(r.Valore[Canale::ActPos])));

        record(s.modello(), 9000, 30, 40, 50, 3, 0, 2);
        s.VisDati();
        QCOMPARE(s.findChild<Contagiri *>("Dato_Giri")->valore(), r.Valore[Canale::Giri] / 1000);
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_2")->text(), QString("9000"));
        auto *alim = s.findChild<QLabel *>("StatoAlim");
        QCOMPARE(alim->text(), testo("ALIMENTAZIONE", "TIPO.99"));
        QCOMPARE(alim->palette().color(QPalette::Window), QColor(255, 255, 0));
        QCOMPARE(s.findChild<QLabel *>("ZonaLavoro")->text(), testo("ZONE", "ZONA.3"));
        // A probe of type 1: the lambda bar takes its raw range, and its set points follow.
        auto *lambda = s.findChild<BarraStrumento *>("Dato_Lambda");
        QCOMPARE(lambda->massimo(), 255.0);
        record(s.modello(), 9000, 30, 4000, 50, 3, 0, 2, 1);
        s.VisDati();
        QCOMPARE(lambda->massimo(), 5000.0);
        QCOMPARE(lambda->valore(), 4000.0);
        QCOMPARE(*lambda->marcatore(1), std::round(580 * 255.0 / 1023.0) / 5000);

        // Closing stops the recording and empties the ring.
        p->anello.IndiceRegistrazione = 5;
        QTest::keyClick(&s, Qt::Key_Escape);
        QCOMPARE(chiusa.size(), 1);
        QCOMPARE(p->anello.RegistrazioneAttiva, false);
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(-1));
    }
};

QTEST_MAIN(TstStrumenti)
#include "tst_strumenti.moc"
