// The dialogue of a tuning page against the simulated ECU wired straight to the port:
// opening reads of every plan, conversions, cross limits, TPS presence and lock, saves in
// every page's order, refusals by the ECU and time-outs. Time-outs fire by hand.

#include "base/Lingua.h"
#include "support/FrameDiProva.h"
#include "support/ProgrammaSimulato.h"

#include "link/Frame.h"
#include "pages/DialogoPagina.h"
#include "pages/VistaPagina.h"

#include <QSet>
#include <QTest>

#include <cmath>

using namespace kv;
using namespace kv::sim;

namespace {

struct VistaFinta : VistaPagina
{
    void mostraValore(int parametro, double valore) override { valori[parametro] = valore; }
    void mostraSuggerimento(int parametro, const QString &testo) override { suggerimenti[parametro] = testo; }
    void nascondiRigheTps() override { righeTpsNascoste = true; }
    void bloccaCampoTps(int parametro) override { bloccati.insert(parametro); }
    void mostraSegnalazione(const Messaggio &m) override { segnalazioni.append(lingua->testo(m)); }
    void mostraZonaLavoro(const Messaggio &m) override { zone.append(lingua->testo(m)); }
    void abilitaPagina(bool a) override
    {
        disabilitazioni += a ? 0 : 1;
        abilitata = a;
    }
    void uscitaEmergenza() override { emergenza = true; }
    void chiudiPagina() override { ++chiusure; }

    QMap<int, double> valori;
    QMap<int, QString> suggerimenti;
    bool righeTpsNascoste = false;
    QSet<int> bloccati;
    QStringList segnalazioni;
    QStringList zone;
    bool abilitata = true;
    int disabilitazioni = 0;
    bool emergenza = false;
    int chiusure = 0;
    const Lingua *lingua = nullptr;
};

// The shown value of a 10-bit reading: on 0..255, rounded to a whole number.
double scala(int grezzo)
{
    return std::round(grezzo * 255.0 / 1023.0);
}

} // namespace

class TstDialogoPagina : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    VistaFinta vista;
    std::unique_ptr<DialogoPagina> dialogo;

    Catalogo &cat() { return p->catalogo; }
    ValoreParametro &val(int parametro) { return p->catalogo.Valori[static_cast<size_t>(parametro)]; }
    Parametro &par(int parametro) { return p->catalogo.Parametri[static_cast<size_t>(parametro)]; }
    static const DescrizionePagina &descrizione(IdPagina id) { return *DescrizioneDi(id); }

    void crea(const DescrizionePagina &d)
    {
        vista.lingua = &p->lingua;
        dialogo = std::make_unique<DialogoPagina>(d, p->catalogo, p->linea, p->menu.ModoAssistenza(), vista);
    }

    bool apri(const DescrizionePagina &d)
    {
        crea(d);
        return dialogo->avviaLettura() && attendi();
    }

    bool apriMinimo()
    {
        vociMinimo();
        return apri(descrizione(IdPagina::MP_Minimo));
    }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }

    void init()
    {
        avvia();
        vista = VistaFinta{};
    }

    void cleanup()
    {
        dialogo.reset();
        chiudi();
    }

    void idleReadFillsValuesLimitsAndTheZoneLine()
    {
        p->linea.datiLive().RispostaDati(datiLive(0, 800, 100, 500, 3));
        QVERIFY(apriMinimo());
        QCOMPARE(vista.valori.size(), 8);
        QCOMPARE(vista.valori.value(Par::SogliaLambdaRiccoMinimo), scala(700));
        // The period keeps its fraction; only the field rounds it.
        QCOMPARE(vista.valori.value(Par::FrequenzaControlloMinimo), 9.765625);
        QCOMPARE(vista.disabilitazioni, 1);
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.segnalazioni, QStringList({testo("SEGNALAZIONI", "SEGNALAZIONE_1"), QString()}));
        QCOMPARE(vista.zone.size(), 12);
        QCOMPARE(vista.zone.last(), testo("ZONE", "ZONA.3"));

        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1300.0);
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Min, 900.0);
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Max, 1700.0);
        QCOMPARE(par(Par::SogliaTpsEntrataMinimo).Max, scala(160));
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Max, scala(1000));
        QCOMPARE(par(Par::SogliaLambdaMagroMinimo).Max, scala(700));
        QCOMPARE(par(Par::SogliaLambdaRiccoMinimo).Min, scala(300));
        QCOMPARE(vista.suggerimenti.value(Par::SogliaTpsUscitaMinimo), QString("12 - 249"));
        QCOMPARE(vista.suggerimenti.value(Par::SogliaTpsEntrataMinimo), QString("0 - 40"));
        // Limit-only rows leave their entry unread, except the high TPS point.
        QCOMPARE(val(Par::SogliaGiriUscitaCutOff).Letto, -1.0);
        QCOMPARE(val(Par::TpsTaratoMassimo).Letto, scala(1000));
        QVERIFY(!vista.valori.contains(Par::SogliaGiriUscitaCutOff));
    }

    void tpsPresenceNeedsBothPointsAtTheTop_data()
    {
        QTest::addColumn<int>("massimo");
        QTest::addColumn<int>("minimo");
        QTest::addColumn<bool>("presente");
        QTest::newRow("both erased") << 1023 << 1023 << false;
        QTest::newRow("high only") << 1023 << 60 << true;
        QTest::newRow("low only") << 900 << 1023 << true;
    }

    void tpsPresenceNeedsBothPointsAtTheTop()
    {
        QFETCH(int, massimo);
        QFETCH(int, minimo);
        QFETCH(bool, presente);
        for (IdPagina id : {IdPagina::MP_Minimo, IdPagina::MP_Normale, IdPagina::MP_PienoCarico,
                            IdPagina::MP_CutOff, IdPagina::MP_Lavoro}) {
            init();
            voce(Par::TpsTaratoMassimo, massimo);
            voce(Par::TpsTaratoMinimo, minimo);
            val(Par::TpsTaratoMassimo).Letto = 77;
            QVERIFY(apri(descrizione(id)));
            // The normal page reads the low point for the limit alone, and keeps the high
            // point an earlier page read.
            const bool normale = id == IdPagina::MP_Normale;
            const bool atteso = presente || normale;
            QVERIFY2(p->linea.ecu().TpsPresente == atteso, qPrintable(descrizione(id).sezione));
            QCOMPARE(vista.righeTpsNascoste, !atteso);
            QCOMPARE(val(Par::TpsTaratoMassimo).Letto, normale ? 77.0 : scala(massimo));
            // The low point, read last on every page, is the idle exit's floor.
            QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, scala(minimo));
            cleanup();
        }
    }

    void autoAdaptiveTpsLocksTheThresholds()
    {
        // Never read is not 0: nothing locked.
        QVERIFY(apri(descrizione(IdPagina::MP_Minimo)));
        QVERIFY(vista.bloccati.isEmpty());
        // The work-zone page locks the thresholds of the other pages it carries too.
        val(Par::TpsAutoadattante).Letto = 0;
        QVERIFY(apri(descrizione(IdPagina::MP_Lavoro)));
        QCOMPARE(vista.bloccati, (QSet<int>{Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo,
                                            Par::SogliaTpsEntrataPC, Par::SogliaTpsUscitaPC,
                                            Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff}));
    }

    // What each page shows after its opening read is met for every page on screen; here, the
    // limits the values read set on their partners.
    void normalPageCellsBoundTheirOwnPartnerOnly()
    {
        for (int i = 0; i < Par::CelleMappa; ++i) {
            voce(Par::SogliaMagroMappa + i, 300 + i);
            voce(Par::SogliaRiccoMappa + i, 800 - 3 * i);
        }
        QVERIFY(apri(descrizione(IdPagina::MP_Normale)));
        for (int i = 0; i < Par::CelleMappa; ++i) {
            QCOMPARE(par(Par::SogliaRiccoMappa + i).Min, scala(300 + i));
            QCOMPARE(par(Par::SogliaMagroMappa + i).Max, scala(800 - 3 * i));
        }
    }

    void fullLoadAndPumpBreakpointsChain()
    {
        for (int i = 0; i < Par::ElementiGiriRTS; ++i)
            voce(Par::GiriRTS + i, 1200 + 400 * i);
        QVERIFY(apri(descrizione(IdPagina::MP_PienoCarico)));
        for (int i = 0; i < Par::ElementiGiriRTS; ++i) {
            QCOMPARE(par(Par::GiriRTS + i).Min, i == 0 ? 400.0 : 1200.0 + 400 * (i - 1));
            QCOMPARE(par(Par::GiriRTS + i).Max, i == 6 ? 10000.0 : 1200.0 + 400 * (i + 1));
        }
        for (int i = 0; i < Par::ElementiGiriPompata; ++i)
            voce(Par::GiriPompata + i, 1500 + 1000 * i);
        QVERIFY(apri(descrizione(IdPagina::MP_Pompata)));
        QCOMPARE(par(Par::GiriPompata).Min, 0.0);
        QCOMPARE(par(Par::GiriPompata + 1).Min, 1500.0);
        QCOMPARE(par(Par::GiriPompata + 2).Max, 4500.0);
        // The last breakpoint cannot rise above what it opened with.
        QCOMPARE(par(Par::GiriPompata + 3).Max, 4500.0);
    }

    void workZonePageTakesLimitsFromElsewhere()
    {
        vociMinimo();
        voce(Par::SogliaLambdaRiccoPC, 640);
        QVERIFY(apri(descrizione(IdPagina::MP_Lavoro)));
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1700.0);
        for (int v : {Par::SogliaTpsEntrataMinimo, Par::SogliaTpsEntrataCutOff, Par::SogliaTpsEntrataPC,
                      Par::TpsTaratoMassimo})
            QCOMPARE(par(v).Max, scala(1000));
        QCOMPARE(par(Par::SogliaGiriEntrataCutOff).Min, 1300.0);
        QCOMPARE(par(Par::SogliaTpsEntrataPC).Min, scala(160));
        QCOMPARE(par(Par::SogliaLambdaRiccoPC).Min, scala(640));
        QCOMPARE(par(Par::SogliaLambdaRiccoMinimo).Min, scala(700));
        QCOMPARE(val(Par::SogliaGiriUscitaCutOff).Letto, -1.0);
    }

    void closedPortSendsNothing()
    {
        p->catalogo.registraLettura(Par::SogliaGiriEntrataMinimo, 1000);
        porta->chiudi();
        crea(descrizione(IdPagina::MP_Minimo));
        QVERIFY(!dialogo->avviaLettura());
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(val(Par::SogliaGiriEntrataMinimo).Letto, -1.0);
        QCOMPARE(vista.disabilitazioni, 0);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
    }

    void workZonePartnersFollowPastTheirLimits_data()
    {
        QTest::addColumn<int>("mostrato");
        QTest::addColumn<double>("valore");
        QTest::addColumn<int>("partner");
        QTest::addColumn<int>("grezzo"); // what the partner's RAM cell gets
        QTest::newRow("cut-off exit below the idle exit")
            << int(Par::SogliaGiriEntrataCutOff) << 450.0 << int(Par::SogliaGiriUscitaCutOff) << 250;
        QTest::newRow("idle TPS exit past the top")
            << int(Par::SogliaTpsEntrataMinimo) << 255.0 << int(Par::SogliaTpsUscitaMinimo) << 1023;
        QTest::newRow("full-load TPS exit below 0")
            << int(Par::SogliaTpsEntrataPC) << 0.0 << int(Par::SogliaTpsUscitaPC) << 0;
        QTest::newRow("lean below 0")
            << int(Par::SogliaLambdaRiccoNormale) << 0.0 << int(Par::SogliaLambdaMagroNormale) << 0;
        QTest::newRow("idle RPM exit")
            << int(Par::SogliaGiriEntrataMinimo) << 10000.0 << int(Par::SogliaGiriUscitaMinimo) << 10100;
    }

    void workZonePartnersFollowPastTheirLimits()
    {
        QFETCH(int, mostrato);
        QFETCH(double, valore);
        QFETCH(int, partner);
        QFETCH(int, grezzo);
        QVERIFY(apri(descrizione(IdPagina::MP_Lavoro)));
        dialogo->impostaCorrente(mostrato, valore);
        dialogo->Applica();
        QVERIFY(attendi());
        QVERIFY(!vista.emergenza && vista.abilitata);
        QCOMPARE(ram(partner), grezzo);
    }

    void workZoneResetGrowsAtEveryApply()
    {
        voce(Par::ResetPC, 150);
        QVERIFY(apri(descrizione(IdPagina::MP_Lavoro)));
        for (int atteso : {165, 182}) { // 181.5 on the second
            dialogo->Applica();
            QVERIFY(attendi());
            QCOMPARE(ram(Par::ResetPC), atteso);
        }
        dialogo->Ripristina();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::ResetPC), 150);
    }

    void leavingAsksOnlyAfterAChange()
    {
        QVERIFY(apriMinimo());
        porta->scritti.clear();
        QVERIFY(!dialogo->Esci());
        QCOMPARE(vista.chiusure, 1);
        QVERIFY(porta->scritti.isEmpty());

        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1000);
        QVERIFY(dialogo->Esci());
        QCOMPARE(vista.chiusure, 1);
        dialogo->RispostaEsci(2); // cancel: the page stays and nothing is sent
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(vista.chiusure, 1);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
    }

    void periodFieldCountsAsAChangeAndZeroFails()
    {
        QVERIFY(apriMinimo());
        // What Applica takes from a field showing "10", against 9.765625 read.
        dialogo->impostaCorrente(Par::FrequenzaControlloMinimo, 10);
        QVERIFY(dialogo->ControlloCambiamenti());
        dialogo->Applica();
        QCOMPARE(vista.segnalazioni.last(), testo("SEGNALAZIONI", "SEGNALAZIONE_4"));
        QVERIFY(attendi());
        QCOMPARE(ram(Par::FrequenzaControlloMinimo), 98); // 1000 / (10 * 1.024), rounded
        QVERIFY(dialogo->Esci());

        dialogo->impostaCorrente(Par::FrequenzaControlloMinimo, 0);
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::FrequenzaControlloMinimo), 0xFFFF);
    }

    void restoreGoesBackToTheSnapshotOrTheOpeningValues()
    {
        QVERIFY(apriMinimo());
        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1000);
        dialogo->Ripristina();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 900);

        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1050);
        dialogo->impostaCorrente(Par::SogliaGiriUscitaMinimo, 1400);
        dialogo->Memorizza();
        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1100);
        dialogo->Ripristina();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1050);
        QCOMPARE(ram(Par::SogliaGiriUscitaMinimo), 1400);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), 900);
        // The limits follow the values put back.
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Min, 1050.0);
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1400.0);
    }

    void refusalStopsTheSaveWhereItHappened_data()
    {
        QTest::addColumn<int>("codice");
        QTest::addColumn<QString>("prefisso");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("known fault") << 5 << QString("05H ") << QString("ERR_05");
        QTest::newRow("unknown fault") << 9 << QString("09H ") << QString("ERR_99");
        QTest::newRow("zero") << 0 << QString("00H ") << QString("ERR_99");
    }

    void refusalStopsTheSaveWhereItHappened()
    {
        QFETCH(int, codice);
        QFETCH(QString, prefisso);
        QFETCH(QString, chiave);
        QVERIFY(apriMinimo());
        for (int v : descrizione(IdPagina::MP_Minimo).voci)
            dialogo->impostaCorrente(v, val(v).Letto + 1);
        ecu->impostaErroreScrittura(quint32(par(Par::SogliaTpsEntrataMinimo).IndirizzoRAM), quint8(codice));
        porta->scritti.clear();
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(porta->scritti.size(), 3);
        QCOMPARE(vista.segnalazioni.last(), prefisso + testo("ERRORI", chiave));
        QVERIFY(vista.abilitata);
        QVERIFY(!vista.emergenza);
        QVERIFY(!req->isEnabled());
        QCOMPARE(ram(Par::SogliaGiriUscitaMinimo), 1301);
        QCOMPARE(ram(Par::SogliaTpsUscitaMinimo), 160);

        // Leaving fails the same way: the page stays open and Esci can be pressed again.
        dialogo->RispostaEsci(DialogoPagina::RispostaSi);
        QVERIFY(attendi());
        QCOMPARE(vista.chiusure, 0);
        QVERIFY(!vista.emergenza);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), 901);
        QCOMPARE(eeprom(Par::SogliaTpsEntrataMinimo), 100);
    }

    void refusedReadLeavesOnlyTheEmergencyExit()
    {
        ecu->impostaStallo(true);
        crea(descrizione(IdPagina::MP_Minimo));
        QVERIFY(dialogo->avviaLettura());
        emit porta->arrivati(CreaFrame(QByteArray("e\x03", 2), 0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(vista.emergenza);
        QVERIFY(vista.abilitata);
        QVERIFY(vista.segnalazioni.last().startsWith("03H "));
    }

    void timeOutsByState_data()
    {
        QTest::addColumn<int>("stato");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<bool>("emergenza");
        QTest::addColumn<bool>("soloLettura"); // Esci_Out after a failed read alone
        QTest::newRow("opening read") << 1 << "SEGNALAZIONE_2" << true << false;
        QTest::newRow("save") << 2 << "SEGNALAZIONE_5" << false << false;
        QTest::newRow("save and leave") << 3 << "SEGNALAZIONE_5" << true << false;
        QTest::newRow("small page, save") << 182 << "SEGNALAZIONE_2" << false << false;
        QTest::newRow("parameter page, save and leave") << 183 << "SEGNALAZIONE_2" << false << true;
    }

    void timeOutsByState()
    {
        QFETCH(int, stato);
        QFETCH(QString, chiave);
        QFETCH(bool, emergenza);
        QFETCH(bool, soloLettura);
        vociMinimo();
        if (stato == 1)
            ecu->impostaStallo(true);
        DescrizionePagina d =
            stato > 100 ? descrizione(IdPagina::MP_Stechio) : descrizione(IdPagina::MP_Minimo);
        if (soloLettura)
            d.scadenza = Scadenza::LetturaEmergenza;
        crea(d);
        QVERIFY(dialogo->avviaLettura());
        if (stato != 1) {
            QVERIFY(attendi());
            ecu->impostaStallo(true);
            dialogo->impostaCorrente(dialogo->descrizione().voci.front(), 1000);
            if (stato % 10 == 2)
                dialogo->Applica();
            else
                dialogo->RispostaEsci(DialogoPagina::RispostaSi);
        }
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(stato));
        QVERIFY(!vista.abilitata);
        QVERIFY(req->scatta());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.segnalazioni.last(), testo("SEGNALAZIONI", chiave));
        QCOMPARE(vista.emergenza, emergenza);
        QCOMPARE(vista.chiusure, 0);
        if (stato > 100)
            QVERIFY(vista.zone.isEmpty()); // no work-zone box on the small pages

        // A reply that comes too late finds the link free and changes nothing.
        const auto valori = vista.valori;
        emit porta->arrivati(CreaFrame(QByteArray("r\x03\x84", 3), 0));
        emit porta->arrivati(CreaFrame(QByteArray("e\xFF", 2), 0));
        QCOMPARE(vista.valori, valori);
        QCOMPARE(vista.chiusure, 0);
    }

    void throttlePageSendsTheListIndex()
    {
        voce(Par::TipoTps, 0xFF); // as the parameter page writes it
        QVERIFY(apri(descrizione(IdPagina::MP_TPS)));
        dialogo->impostaCorrente(Par::TipoTps, 1);
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::TipoTps), 0x01);
    }

    void aPageSharingAnotherPagesGroupStaysSilent()
    {
        DescrizionePagina d = descrizione(IdPagina::MP_Stechio);
        d.scadenza = Scadenza::Muta;
        d.gruppoCondiviso = true;
        ecu->impostaStallo(true);
        crea(d);
        QVERIFY(dialogo->avviaLettura());
        QVERIFY(req->scatta());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(!vista.abilitata && !vista.emergenza);
        QCOMPARE(vista.segnalazioni.size(), 1); // "reading", and nothing after
    }

    void fieldTextsThatPassTheCheck_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<bool>("numerico");
        QTest::addColumn<bool>("valido");
        // The idle entry between its table floor of 400 and a partner read as 1300.
        QTest::newRow("floor") << "400" << true << true;
        QTest::newRow("ceiling") << "1300" << true << true;
        QTest::newRow("below") << "399" << true << false;
        QTest::newRow("above") << "1301" << true << false;
        QTest::newRow("padded") << "  1200 " << true << true;
        QTest::newRow("comma just above") << "1300,4" << true << false;
        QTest::newRow("empty") << "" << false << false;
        QTest::newRow("sign alone") << "-" << false << false;
        QTest::newRow("sign after") << "500-" << false << false;
        QTest::newRow("letters") << "500a" << false << false;
    }

    void fieldTextsThatPassTheCheck()
    {
        QFETCH(QString, testo);
        QFETCH(bool, numerico);
        QFETCH(bool, valido);
        par(Par::SogliaGiriEntrataMinimo).Max = 1300;
        crea(descrizione(IdPagina::MP_Minimo));
        QCOMPARE(TestoNumerico(testo), numerico);
        QCOMPARE(dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, testo), valido);
    }
};

QTEST_GUILESS_MAIN(TstDialogoPagina)
#include "tst_dialogopagina.moc"
