// Every tuning page on screen against the simulated ECU wired straight to the port: what
// it reads and shows, what Applica and Esci write, in its order; then the lambda map by
// keyboard and the pages as the main window's menu opens them.

#include "base/Lingua.h"
#include "support/ProgrammaSimulato.h"

#include "link/Frame.h"
#include "pages/DialogoPagina.h"
#include "pages/GriglieMessaPunto.h"
#include "pages/ui/CampoDato.h"
#include "pages/ui/GrigliaMessaPunto.h"
#include "pages/ui/MP_Normale.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "shell/Menu.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

using namespace kv;

namespace {

// Letter, address and byte count of every 'W' frame the program wrote, in order.
QByteArrayList scritture(const QByteArrayList &frame)
{
    QByteArrayList w;
    for (const QByteArray &f : frame)
        if (f.mid(4, 1) == "W")
            w.append(f.mid(4, 4));
    return w;
}

} // namespace

class TstPagine : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<TelaioMessaPunto> pagina;
    int risposta = 6; // to the question at Esci

    void apri(IdPagina id)
    {
        pagina.reset(CreaPaginaMessaPunto(ContestoDi(*p), id));
        QVERIFY(pagina);
        pagina->impostaDomanda([this](const QString &, int, const QString &) { return risposta; });
        pagina->resize(1000, 700);
        pagina->show();
        QVERIFY(QTest::qWaitForWindowExposed(pagina.get()));
        pagina->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(pagina.get()));
        pagina->carica();
        QVERIFY(attendi());
    }

    // Keys as the fitter types them: to whatever has the focus.
    static void premi(Qt::Key tasto) { QTest::keyClick(QApplication::focusWidget(), tasto); }
    static void scrivi(const char *testo)
    {
        for (const char *c = testo; *c; ++c)
            QTest::keyClick(QApplication::focusWidget(), *c);
    }

    // What the page must show for an entry, worked out from the ECU's own bytes.
    QString atteso(const DescrizionePagina &d, int v)
    {
        bool eeprom = false;
        for (const RigaLettura &riga : d.piano)
            for (int letta : VociRiga(riga))
                if (letta == v)
                    eeprom = riga.eeprom;
        const double mostrato = p->catalogo.daGrezzo(v, eeprom ? this->eeprom(v) : ram(v));
        const RigaPagina *r = d.riga(v);
        if (r && r->binaria)
            return QString::number(mostrato != 0);
        return r && !r->lista.isEmpty() ? QString::number(mostrato) : p->catalogo.formatta(v, mostrato);
    }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }
    void init()
    {
        avvia();
        risposta = 6;
    }
    void cleanup()
    {
        pagina.reset();
        chiudi();
    }

    // Counts per page, and for the small pages the addresses Esci writes, in order, as the
    // address table gives them: RAM then EEPROM for each entry.
    void everyPageReadsShowsAndWritesInItsOrder_data()
    {
        QTest::addColumn<IdPagina>("id");
        QTest::addColumn<bool>("assistenza");
        QTest::addColumn<int>("letture");
        QTest::addColumn<int>("soloRam");
        QTest::addColumn<int>("conEeprom");
        QTest::addColumn<QList<int>>("indirizzi");
        QTest::newRow("idle") << IdPagina::MP_Minimo << false << 12 << 8 << 16 << QList<int>{};
        // Eight fields, then 4 + 7 breakpoints and 40 lean and 40 rich cells.
        QTest::newRow("normal") << IdPagina::MP_Normale << false << 17 << 99 << 198 << QList<int>{};
        // The TPS and position grid is EEPROM only: Applica leaves it alone.
        QTest::newRow("full load") << IdPagina::MP_PienoCarico << false << 16 << 16 << 48 << QList<int>{};
        QTest::newRow("cut-off") << IdPagina::MP_CutOff << false << 9 << 6 << 12 << QList<int>{};
        QTest::newRow("pump, normal mode") << IdPagina::MP_Pompata << false << 12 << 9 << 18 << QList<int>{};
        QTest::newRow("pump, service mode") << IdPagina::MP_Pompata << true << 12 << 12 << 24 << QList<int>{};
        QTest::newRow("work zones") << IdPagina::MP_Lavoro << false << 29 << 26 << 52 << QList<int>{};
        QTest::newRow("stoichiometric") << IdPagina::MP_Stechio << false << 3 << 3 << 6
                                        << QList<int>{0x0101, 0xC105, 0x0102, 0xC104, 0x0103, 0xC106};
        // No RAM copies: Applica sends nothing at all.
        QTest::newRow("inhibition") << IdPagina::MP_InibizPC << false << 2 << 0 << 2
                                    << QList<int>{0xC150, 0xC152};
        QTest::newRow("return from cut-off")
            << IdPagina::MP_RientroCO << false << 1 << 1 << 2 << QList<int>{0x0129, 0xC140};
        QTest::newRow("throttle sensor") << IdPagina::MP_TPS << false << 2 << 2 << 4 << QList<int>{};
    }

    void everyPageReadsShowsAndWritesInItsOrder()
    {
        QFETCH(IdPagina, id);
        QFETCH(bool, assistenza);
        QFETCH(int, letture);
        QFETCH(int, soloRam);
        QFETCH(int, conEeprom);
        QFETCH(QList<int>, indirizzi);
        p->menu.impostaAssistenza(assistenza);
        const DescrizionePagina &d = *DescrizioneDi(id);
        apri(id);
        QCOMPARE(porta->scritti.size(), letture);
        for (const QByteArray &f : std::as_const(porta->scritti))
            QCOMPARE(f.at(4), 'R');
        for (int v : d.voci) {
            // The work-zone page shows the main value of each pair; the other it works out.
            const bool derivato = std::any_of(d.derivati.begin(), d.derivati.end(),
                                              [v](const Derivato &x) { return x.bersaglio == v; });
            if (!derivato)
                QVERIFY2(
                    pagina->testoMostrato(v) == atteso(d, v),
                    qPrintable(QString("%1: %2, not %3").arg(v).arg(pagina->testoMostrato(v), atteso(d, v))));
        }

        // The simulator's values pass every check: the page saves what it never touched.
        porta->scritti.clear();
        QTest::keyClick(pagina.get(), Qt::Key_F2);
        QVERIFY(attendi());
        const QByteArrayList ram = scritture(porta->scritti);
        QCOMPARE(ram.size(), soloRam);
        for (const QByteArray &w : ram)
            QVERIFY2(quint8(w.at(1)) < 0xC0, w.toHex().constData()); // RAM only
        QVERIFY(pagina->isEnabled());

        // Something to keep, so that Esc asks; Yes writes each entry to RAM, then EEPROM.
        p->catalogo.Valori[static_cast<size_t>(d.voci.front())].Letto += 1;
        QSignalSpy chiusa(pagina.get(), &TelaioMessaPunto::chiusa);
        porta->scritti.clear();
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QVERIFY(attendi());
        const QByteArrayList tutte = scritture(porta->scritti);
        QCOMPARE(tutte.size(), conEeprom);
        for (qsizetype i = 0; i < indirizzi.size(); ++i)
            QCOMPARE(tutte.value(i).mid(1, 2), ParolaInByte(quint32(indirizzi[i])));
        QCOMPARE(chiusa.size(), 1);
    }

    void lambdaMapByKeyboard()
    {
        apri(IdPagina::MP_Normale);
        auto *normale = static_cast<MP_Normale *>(pagina.get());
        GrigliaMessaPunto *mappa = normale->MappaLambda();
        QVERIFY(mappa->isVisible());
        ModelloGriglia *m = mappa->modello();
        // Tab from the last field shown into the grid: on its first breakpoint.
        normale->DatoNormale(4)->setFocus();
        QTRY_VERIFY(normale->DatoNormale(4)->hasFocus());
        premi(Qt::Key_Tab);
        QVERIFY(mappa->hasFocus());
        QCOMPARE(mappa->currentIndex(), m->index(1, 2));
        mappa->setCurrentIndex(m->index(11, 2));
        // Up to the rich row of the lowest zone, right to the third RPM zone: zone 10's rich cell.
        premi(Qt::Key_Up);
        premi(Qt::Key_Right);
        premi(Qt::Key_Right);
        QCOMPARE(mappa->currentIndex(), m->index(10, 4));
        const int ricco = Par::SogliaRiccoMappa + 10;

        // A digit opens the field with that digit in it; an arrow keeps the value and moves.
        scrivi("1");
        QVERIFY(mappa->campoAperto() && mappa->campoAperto()->hasFocus());
        QCOMPARE(mappa->campoAperto()->text(), QString("1"));
        scrivi("70");
        premi(Qt::Key_Down);
        QCOMPARE(m->testoDi(ricco), QString("170"));
        QVERIFY(!mappa->inModifica() && mappa->hasFocus());
        QCOMPARE(mappa->currentIndex(), m->index(11, 4));

        // The lean cell above the rich one: both red, the message, the grid stays, no save.
        scrivi("180");
        premi(Qt::Key_Return);
        auto *segnalazione = pagina->findChild<QLabel *>("Segnalazione");
        QCOMPARE(segnalazione->text(), testo("SEGNALAZIONI", "SEGNALAZIONE_59"));
        QVERIFY(m->index(11, 4).data(ModelloGriglia::RuoloErrata).toBool());
        QTRY_COMPARE(mappa->currentIndex(), m->index(11, 4));
        porta->scritti.clear();
        premi(Qt::Key_F2);
        QVERIFY(porta->scritti.isEmpty());

        // Put right, Enter goes on to the next cell as Tab would; F2 writes the cells to RAM.
        scrivi("160");
        premi(Qt::Key_Return);
        QCOMPARE(segnalazione->text(), QString());
        QCOMPARE(mappa->currentIndex(), m->index(11, 5));
        premi(Qt::Key_F2);
        QVERIFY(attendi());
        QCOMPARE(this->ram(ricco), 682); // 170 on 0..1023
        QCOMPARE(this->ram(Par::SogliaMagroMappa + 10), 642);

        // Esc in an open field is the page's: No puts back what was read, and the page goes.
        risposta = 7;
        QSignalSpy chiusa(pagina.get(), &TelaioMessaPunto::chiusa);
        scrivi("1");
        premi(Qt::Key_Escape);
        QVERIFY(attendi());
        QCOMPARE(chiusa.size(), 1);
    }

    void fullLoadTpsRowsComeBackWhenTheReadFindsATps()
    {
        // A page before found no TPS; this one's read finds one, with its thresholds in force.
        p->linea.ecuDiProva().TpsPresente = false;
        voce(Par::PcConf, 1);
        apri(IdPagina::MP_PienoCarico);
        QVERIFY(p->linea.ecu().TpsPresente);
        QVERIFY(pagina->campo(2)->isVisible() && pagina->campo(3)->isVisible());
    }

    void thresholdsInForceHideTheMapYetSendIt()
    {
        voce(Par::TipoNOR, 1);
        apri(IdPagina::MP_Normale);
        auto *normale = static_cast<MP_Normale *>(pagina.get());
        QVERIFY(!normale->MappaLambda()->isVisible());
        QVERIFY(normale->DatoNormale(5)->isVisible() && normale->DatoNormale(6)->isVisible());
        porta->scritti.clear();
        pagina->Applica();
        QVERIFY(attendi());
        QCOMPARE(scritture(porta->scritti).size(), 99);
        // And back to the map.
        pagina->lista(MP_Normale::RigaTipoNOR)->setCurrentIndex(0);
        QVERIFY(normale->MappaLambda()->isVisible() && !normale->DatoNormale(5)->isVisible());
    }

    void theEnginesZoneShowsOnTheMap()
    {
        apri(IdPagina::MP_Normale);
        ModelloGriglia *m = static_cast<MP_Normale *>(pagina.get())->MappaLambda()->modello();
        QSignalSpy nuovi(&p->linea.datiLive(), &DatiLive::nuovoRecord);
        for (int i = 0; i < 3; ++i) {
            nuovi.clear();
            ecu->avanzaTempo(3000);
            QTRY_VERIFY(!nuovi.isEmpty());
            int vive = 0;
            for (int riga = 0; riga < MappaLambda::Righe; ++riga)
                for (int c = 0; c < MappaLambda::Colonne; ++c)
                    vive += m->index(riga, c).data(ModelloGriglia::RuoloViva).toBool();
            QCOMPARE(vive, 2); // where: the grid's own test
        }
    }

    void everyTuningEntryOfTheMenuOpensItsPage_data()
    {
        QTest::addColumn<bool>("assistenza");
        QTest::newRow("normal mode") << false;
        QTest::newRow("service mode") << true;
    }

    void everyTuningEntryOfTheMenuOpensItsPage()
    {
        QFETCH(bool, assistenza);
        p->menu.impostaAssistenza(assistenza);
        p->linea.ecuDiProva().EcuNormale = true;
        p->linea.ecuDiProva().EcuInMarcia = true;
        p->linea.ecuDiProva().TpsPresente = true;
        Korvantine finestra(*p);
        RegistraPagineMessaPunto(finestra);
        finestra.avvia();
        QApplication::setActiveWindow(&finestra);
        const std::vector<Menu::Voce> voci =
            Menu::Opzioni(2, p->linea.ecu(), p->menu.ModoAssistenza(),
                          [this](const QString &k) { return p->lingua.LeggiTesto("MainLambda", k); });
        int aperte = 0;
        for (int i = 0; i < Menu::NumeroOpzioni; ++i) {
            const Menu::Voce &v = voci[static_cast<size_t>(i)];
            // The compare page works on the archive, not on the line: its unit tests it.
            if (!v.abilitata || !PaginaMessaPunto(v.pagina))
                continue;
            finestra.menu()->ScegliFunzione(2);
            QTest::keyClick(finestra.menu(), Qt::Key(Qt::Key_F1 + i), Qt::ShiftModifier);
            QVERIFY(attendi());
            QCOMPARE(finestra.idPaginaAttiva(), v.pagina);
            QVERIFY2(finestra.paginaAttiva()->isEnabled(), qPrintable(v.caption));
            // Read, the page has the keys at once.
            QVERIFY2(finestra.paginaAttiva()->isAncestorOf(QApplication::focusWidget()),
                     qPrintable(v.caption));
            QTest::keyClick(finestra.paginaAttiva(), Qt::Key_Escape);
            QTRY_VERIFY(finestra.menu());
            ++aperte;
        }
        QCOMPARE(aperte, assistenza ? 9 : 2);
    }
};

QTEST_MAIN(TstPagine)
#include "tst_pagine.moc"
