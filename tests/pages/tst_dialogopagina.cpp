// The dialogue of a tuning page against the simulated ECU wired straight to the port:
// opening reads of every plan, conversions, cross limits, TPS presence and lock, saves in
// every page's order, refusals by the ECU and time-outs. Time-outs fire by hand.

#include "support/PortaEcu.h"

#include "link/Frame.h"
#include "pages/DialogoPagina.h"
#include "pages/VistaPagina.h"
#include "shell/Programma.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
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
    void mostraSegnalazione(const QString &testo) override { segnalazioni.append(testo); }
    void mostraZonaLavoro(const QString &testo) override { zone.append(testo); }
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
};

// The shown value of a 10-bit reading: on 0..255, rounded to a whole number.
double scala(int grezzo)
{
    return std::round(grezzo * 255.0 / 1023.0);
}

// The head of every 'W' frame the program wrote, in order: letter, address, byte count.
QByteArrayList scritture(const QByteArrayList &frame)
{
    QByteArrayList w;
    for (const QByteArray &f : frame)
        if (f.mid(4, 1) == "W")
            w.append(f.mid(4, 4));
    return w;
}

QByteArray scrittura(qint32 indirizzo, int byte)
{
    return 'W' + ParolaInByte(quint32(indirizzo)) + char(byte);
}

DescrizionePagina descrizione(int primo, bool assistenza = true)
{
    for (const DescrizionePagina &d :
         {DescrizioneMinimo(), DescrizioneNormale(), DescrizionePienoCarico(), DescrizioneCutOff(),
          DescrizionePompata(assistenza), DescrizioneLavoro(), DescrizioneStechio(),
          DescrizioneInibizionePC(), DescrizioneRientroCO()})
        if (d.primoStato == primo)
            return d;
    return {};
}

} // namespace

class TstDialogoPagina : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    std::unique_ptr<Programma> p;
    PortaEcu *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    VistaFinta vista;
    std::unique_ptr<DialogoPagina> dialogo;

    Catalogo &cat() { return p->catalogo; }
    ValoreParametro &val(int parametro) { return p->catalogo.Valori[static_cast<size_t>(parametro)]; }
    Parametro &par(int parametro) { return p->catalogo.Parametri[static_cast<size_t>(parametro)]; }
    QString testo(const char *sezione, const QString &chiave)
    {
        return p->lingua.LeggiTesto(sezione, chiave);
    }
    int ram(int parametro) { return CellaEcu(*ecu, cat(), parametro, false); }
    int eeprom(int parametro) { return CellaEcu(*ecu, cat(), parametro, true); }
    void voce(int parametro, int grezzo) { ImpostaVoceEcu(*ecu, cat(), parametro, grezzo); }

    // Replies come back through the event loop; nothing here waits on a clock.
    bool attendi()
    {
        QDeadlineTimer scadenza(3000);
        while (p->motore.StatoDialogo() != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents();
        return p->motore.StatoDialogo() == -1;
    }

    void crea(const DescrizionePagina &d)
    {
        dialogo = std::make_unique<DialogoPagina>(d, p->catalogo, p->motore, p->stato, p->lingua, vista);
    }

    bool apri(const DescrizionePagina &d)
    {
        crea(d);
        return dialogo->avviaLettura() && attendi();
    }

    // The idle page's entries and the entries its limits come from.
    void impostaMinimo()
    {
        using namespace Par;
        for (auto [v, grezzo] : {std::pair{SogliaGiriEntrataMinimo, 900},
                                 {SogliaGiriUscitaMinimo, 1300},
                                 {SogliaGiriUscitaCutOff, 1700},
                                 {SogliaTpsEntrataMinimo, 100},
                                 {SogliaTpsUscitaMinimo, 160},
                                 {TpsTaratoMassimo, 1000},
                                 {TpsTaratoMinimo, 50},
                                 {ScalaLambda, 0},
                                 {SogliaLambdaMagroMinimo, 300},
                                 {SogliaLambdaRiccoMinimo, 700},
                                 {FrequenzaControlloMinimo, 100},
                                 {PassiControlloMinimo, 7}})
            voce(v, grezzo);
    }

    bool apriMinimo()
    {
        impostaMinimo();
        return apri(DescrizioneMinimo());
    }

private slots:
    void initTestCase()
    {
        QVERIFY(cartella.isValid());
        QVERIFY(
            QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
    }

    void init()
    {
        ecu = std::make_unique<EcuSimulata>(OpzioniManuali());
        auto pe = std::make_unique<PortaEcu>(*ecu);
        auto r = std::make_unique<TemporizzatoreManuale>();
        porta = pe.get();
        req = r.get();
        p = std::make_unique<Programma>(cartella.path(), std::move(pe), std::move(r),
                                        std::make_unique<TemporizzatoreManuale>());
        p->stato.EcuDaIdentificare = false;
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        vista = VistaFinta{};
    }

    void cleanup()
    {
        dialogo.reset();
        p.reset();
        ecu.reset();
    }

    void idleReadFillsValuesLimitsAndTheZoneLine()
    {
        p->stato.DatiAttuali[0].Valore[Canale::MZonAct] = 3;
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
        for (int primo : {1, 11, 21, 31, 51}) {
            init();
            voce(Par::TpsTaratoMassimo, massimo);
            voce(Par::TpsTaratoMinimo, minimo);
            val(Par::TpsTaratoMassimo).Letto = 77;
            QVERIFY(apri(descrizione(primo)));
            // The normal page reads the low point for the limit alone, and keeps the high
            // point an earlier page read.
            const bool atteso = presente || primo == 11;
            QVERIFY2(p->stato.TpsPresente == atteso, qPrintable(QString::number(primo)));
            QCOMPARE(vista.righeTpsNascoste, !atteso);
            QCOMPARE(val(Par::TpsTaratoMassimo).Letto, primo == 11 ? 77.0 : scala(massimo));
            // The low point, read last on every page, is the idle exit's floor.
            QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, scala(minimo));
            cleanup();
        }
    }

    void autoAdaptiveTpsLocksTheThresholds()
    {
        // Never read is not 0: nothing locked.
        QVERIFY(apri(DescrizioneMinimo()));
        QVERIFY(vista.bloccati.isEmpty());
        // The work-zone page locks the thresholds of the other pages it carries too.
        val(Par::TpsAutoadattante).Letto = 0;
        QVERIFY(apri(DescrizioneLavoro()));
        QCOMPARE(vista.bloccati, (QSet<int>{Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo,
                                            Par::SogliaTpsEntrataPC, Par::SogliaTpsUscitaPC,
                                            Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff}));
    }

    void normalPageDecodesItsBlocks()
    {
        for (int i = 0; i < Par::ElementiAsseTps; ++i)
            voce(Par::AsseTpsMappa + i, 100 + 300 * i);
        for (int i = 0; i < Par::ElementiAsseGiri; ++i)
            voce(Par::AsseGiriMappa + i, 1000 + 300 * i);
        for (int i = 0; i < Par::CelleMappa; ++i) {
            voce(Par::SogliaMagroMappa + i, 300 + i);
            voce(Par::SogliaRiccoMappa + i, 800 - 3 * i);
        }
        voce(Par::PrimaFrequenzaNormale, 49);
        QVERIFY(apri(DescrizioneNormale()));

        for (int i = 0; i < Par::ElementiAsseTps; ++i)
            QCOMPARE(vista.valori.value(Par::AsseTpsMappa + i), scala(100 + 300 * i));
        for (int i = 0; i < Par::ElementiAsseGiri; ++i)
            QCOMPARE(vista.valori.value(Par::AsseGiriMappa + i), 1000.0 + 300 * i);
        // Each cell bounds its own partner only.
        for (int i = 0; i < Par::CelleMappa; ++i) {
            const double magro = scala(300 + i);
            const double ricco = scala(800 - 3 * i);
            QCOMPARE(val(Par::SogliaMagroMappa + i).Letto, magro);
            QCOMPARE(val(Par::SogliaRiccoMappa + i).Letto, ricco);
            QCOMPARE(par(Par::SogliaRiccoMappa + i).Min, magro);
            QCOMPARE(par(Par::SogliaMagroMappa + i).Max, ricco);
        }
        QCOMPARE(vista.valori.value(Par::PrimaFrequenzaNormale), 1000 / (49 * 1.024));
    }

    void fullLoadGridAndItsChain()
    {
        for (int i = 0; i < Par::ElementiGiriRTS; ++i)
            voce(Par::GiriRTS + i, 1200 + 400 * i);
        for (int i = 0; i < Par::ElementiTpsRTS; ++i)
            voce(Par::TpsRTS + i, 120 * i);
        // The block takes eight bytes in a row from the first position's address.
        QByteArray posizioni;
        for (int i = 0; i < Par::ElementiPosizioneRTS; ++i)
            posizioni += char(50 + i);
        ecu->scriviMemoria(quint32(par(Par::PosizioneRTS).IndirizzoEE), posizioni);
        QVERIFY(apri(DescrizionePienoCarico()));

        for (int i = 0; i < Par::ElementiGiriRTS; ++i) {
            QCOMPARE(val(Par::GiriRTS + i).Letto, 1200.0 + 400 * i);
            QCOMPARE(par(Par::GiriRTS + i).Min, i == 0 ? 400.0 : 1200.0 + 400 * (i - 1));
            QCOMPARE(par(Par::GiriRTS + i).Max, i == 6 ? 10000.0 : 1200.0 + 400 * (i + 1));
        }
        for (int i = 0; i < Par::ElementiTpsRTS; ++i)
            QCOMPARE(val(Par::TpsRTS + i).Letto, scala(120 * i));
        for (int i = 0; i < Par::ElementiPosizioneRTS; ++i)
            QCOMPARE(val(Par::PosizioneRTS + i).Letto, 50.0 + i);
    }

    void pumpPageSignsAndBreakpoints()
    {
        const int percentuali[] = {0x85, 0x05, 0x80, 0x00, 0xB2};
        for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
            voce(Par::PercentualePompata + i, percentuali[i]);
        for (int i = 0; i < Par::ElementiGiriPompata; ++i)
            voce(Par::GiriPompata + i, 1500 + 1000 * i);
        QVERIFY(apri(DescrizionePompata(true)));
        const double attese[] = {-5, 5, 0, 0, -50};
        for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
            QCOMPARE(val(Par::PercentualePompata + i).Letto, attese[i]);
        QCOMPARE(par(Par::GiriPompata).Min, 0.0);
        QCOMPARE(par(Par::GiriPompata + 1).Min, 1500.0);
        QCOMPARE(par(Par::GiriPompata + 2).Max, 4500.0);
        // The last breakpoint cannot rise above what it opened with.
        QCOMPARE(par(Par::GiriPompata + 3).Max, 4500.0);
    }

    void workZonePageTakesLimitsFromElsewhere()
    {
        impostaMinimo();
        voce(Par::SogliaLambdaRiccoPC, 640);
        QVERIFY(apri(DescrizioneLavoro()));
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1700.0);
        for (int v : {Par::SogliaTpsEntrataMinimo, Par::SogliaTpsEntrataCutOff, Par::SogliaTpsEntrataPC,
                      Par::TpsTaratoMassimo})
            QCOMPARE(par(v).Max, scala(1000));
        QCOMPARE(par(Par::SogliaGiriEntrataCutOff).Min, 1300.0);
        QCOMPARE(par(Par::SogliaTpsEntrataPC).Min, scala(160));
        QCOMPARE(par(Par::SogliaLambdaRiccoPC).Min, scala(640));
        QCOMPARE(par(Par::SogliaLambdaRiccoMinimo).Min, scala(700));
        QCOMPARE(val(Par::SogliaGiriUscitaCutOff).Letto, -1.0);
        QCOMPARE(val(Par::SogliaLambdaMagroMinimo).Letto, scala(300));
    }

    void smallPagesReadTheirHomes()
    {
        ImpostaCellaEcu(*ecu, cat(), Par::InizioInibizionePC, true, 1234);
        ImpostaCellaEcu(*ecu, cat(), Par::DurataInibizionePC, true, 4321);
        QVERIFY(apri(DescrizioneInibizionePC()));
        QCOMPARE(vista.valori.value(Par::InizioInibizionePC), 1234.0);
        QCOMPARE(vista.valori.value(Par::DurataInibizionePC), 4321.0);
        QVERIFY(vista.zone.isEmpty()); // no work-zone box on the small pages
        voce(Par::CampioniMagro, 9);
        QVERIFY(apri(DescrizioneStechio()));
        QCOMPARE(vista.valori.value(Par::CampioniMagro), 9.0);
    }

    void closedPortSendsNothing()
    {
        p->catalogo.registraLettura(Par::SogliaGiriEntrataMinimo, 1000);
        porta->chiudi();
        crea(DescrizioneMinimo());
        QVERIFY(!dialogo->avviaLettura());
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(val(Par::SogliaGiriEntrataMinimo).Letto, -1.0);
        QCOMPARE(vista.disabilitazioni, 0);
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
    }

    void everyPageReadsAndWritesInItsOrder_data()
    {
        QTest::addColumn<int>("primo");
        QTest::addColumn<bool>("assistenza");
        QTest::addColumn<int>("letture");
        QTest::addColumn<int>("soloRam");
        QTest::addColumn<int>("conEeprom");
        QTest::newRow("idle") << 1 << false << 12 << 8 << 16;
        // Eight fields and the 91 elements of axes and map.
        QTest::newRow("normal") << 11 << false << 17 << 99 << 198;
        QTest::newRow("full load") << 21 << false << 16 << 16 << 48;
        QTest::newRow("cut-off") << 31 << false << 9 << 6 << 12;
        QTest::newRow("pump, normal mode") << 41 << false << 12 << 9 << 18;
        QTest::newRow("pump, service mode") << 41 << true << 12 << 12 << 24;
        QTest::newRow("work zones") << 51 << false << 29 << 26 << 52;
        QTest::newRow("stoichiometric") << 181 << false << 3 << 3 << 6;
        QTest::newRow("inhibition") << 191 << false << 2 << 0 << 2;
        QTest::newRow("return from cut-off") << 201 << false << 1 << 1 << 2;
    }

    void everyPageReadsAndWritesInItsOrder()
    {
        QFETCH(int, primo);
        QFETCH(bool, assistenza);
        QFETCH(int, letture);
        QFETCH(int, soloRam);
        QFETCH(int, conEeprom);
        const DescrizionePagina d = descrizione(primo, assistenza);
        QVERIFY(apri(d));
        QCOMPARE(porta->scritti.size(), letture);
        // The simulator boots with coherent values: every limit that follows another entry,
        // read or edited, must hold them, or the fitter could not save a page he never
        // touched. Only the work-zone page leaves the limits of its hidden partners unset.
        for (int v : d.voci)
            dialogo->valoreModificato(v, val(v).Letto);
        QSet<int> bersagli;
        for (const LimiteIncrociato &r : TabellaLimitiIncrociati())
            bersagli.insert(r.bersaglio);
        const bool libero = primo == 51;
        for (int v : d.voci) {
            const double x = val(v).Letto;
            const Parametro &q = par(v);
            const bool dentro = (q.Min == -1 ? libero : x >= q.Min) && (q.Max == -1 ? libero : x <= q.Max);
            if (bersagli.contains(v))
                QVERIFY2(dentro,
                         qPrintable(QString("%1: %2 in %3 - %4").arg(v).arg(x).arg(q.Min).arg(q.Max)));
        }

        QByteArrayList ram, tutte;
        for (int v : d.voci) {
            const Parametro &q = par(v);
            if (q.IndirizzoRAM >= 0) {
                ram << scrittura(q.IndirizzoRAM, q.Dimensione);
                tutte << ram.last();
            }
            if (q.IndirizzoEE >= 0)
                tutte << scrittura(q.IndirizzoEE, q.Dimensione);
        }
        QCOMPARE(ram.size(), soloRam);
        QCOMPARE(tutte.size(), conEeprom);

        porta->scritti.clear();
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(scritture(porta->scritti), ram);
        // Usable again, also after a save with nothing for the RAM to take.
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.chiusure, 0);

        porta->scritti.clear();
        dialogo->RispostaEsci(DialogoPagina::RispostaSi);
        QVERIFY(attendi());
        QCOMPARE(scritture(porta->scritti), tutte);
        QCOMPARE(vista.chiusure, 1);
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
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
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
        QTest::newRow("known fault") << 5 << "05H "
                                     << "ERR_05";
        QTest::newRow("unknown fault") << 9 << "09H "
                                       << "ERR_99";
        QTest::newRow("zero") << 0 << "00H "
                              << "ERR_99";
    }

    void refusalStopsTheSaveWhereItHappened()
    {
        QFETCH(int, codice);
        QFETCH(QString, prefisso);
        QFETCH(QString, chiave);
        QVERIFY(apriMinimo());
        for (int v : DescrizioneMinimo().voci)
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
        crea(DescrizioneMinimo());
        QVERIFY(dialogo->avviaLettura());
        emit porta->arrivati(CreaFrame(QByteArray("e\x03", 2), 0));
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
        QVERIFY(vista.emergenza);
        QVERIFY(vista.abilitata);
        QVERIFY(vista.segnalazioni.last().startsWith("03H "));
    }

    void timeOutsByState_data()
    {
        QTest::addColumn<int>("stato");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<bool>("emergenza");
        QTest::newRow("opening read") << 1 << "SEGNALAZIONE_2" << true;
        QTest::newRow("save") << 2 << "SEGNALAZIONE_5" << false;
        QTest::newRow("save and leave") << 3 << "SEGNALAZIONE_5" << true;
        QTest::newRow("small page, save") << 182 << "SEGNALAZIONE_2" << false;
    }

    void timeOutsByState()
    {
        QFETCH(int, stato);
        QFETCH(QString, chiave);
        QFETCH(bool, emergenza);
        impostaMinimo();
        if (stato == 1)
            ecu->impostaStallo(true);
        crea(stato > 100 ? DescrizioneStechio() : DescrizioneMinimo());
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
        QCOMPARE(p->motore.StatoDialogo(), qint16(stato));
        QVERIFY(!vista.abilitata);
        QVERIFY(req->scatta());
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.segnalazioni.last(), testo("SEGNALAZIONI", chiave));
        QCOMPARE(vista.emergenza, emergenza);
        QCOMPARE(vista.chiusure, 0);

        // A reply that comes too late finds the link free and changes nothing.
        const auto valori = vista.valori;
        emit porta->arrivati(CreaFrame(QByteArray("r\x03\x84", 3), 0));
        emit porta->arrivati(CreaFrame(QByteArray("e\xFF", 2), 0));
        QCOMPARE(vista.valori, valori);
        QCOMPARE(vista.chiusure, 0);
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
        crea(DescrizioneMinimo());
        QCOMPARE(TestoNumerico(testo), numerico);
        QCOMPARE(dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, testo), valido);
    }
};

QTEST_GUILESS_MAIN(TstDialogoPagina)
#include "tst_dialogopagina.moc"
