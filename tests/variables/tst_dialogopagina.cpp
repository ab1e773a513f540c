// The dialogue of a tuning page against the simulated ECU wired straight to the port:
// opening reads of every plan, conversions, cross limits, TPS presence and lock, saves in
// every page's order, refusals by the ECU and time-outs. Time-outs fire by hand.

#include "PortaEcu.h"

#include "link/Frame.h"
#include "shell/Programma.h"
#include "variables/DialogoPagina.h"
#include "variables/PianiLettura.h"
#include "variables/VistaPagina.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

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
        abilitata = a;
        if (!a)
            ++disabilitazioni;
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

struct Scrittura
{
    quint16 indirizzo;
    QByteArray valore;
};

// The 'W' frames among what the program wrote, in order.
QList<Scrittura> scritture(const QByteArrayList &frame)
{
    QList<Scrittura> w;
    for (const QByteArray &f : frame) {
        const QByteArray dati = f.mid(4, f.size() - 6);
        if (dati.startsWith('W'))
            w.append({quint16(quint8(dati.at(1)) << 8 | quint8(dati.at(2))), dati.mid(4)});
    }
    return w;
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
    QString testo(const char *sezione, const char *chiave) { return p->lingua.LeggiTesto(sezione, chiave); }

    // Replies come back through the event loop; nothing here waits on a clock.
    bool attendi()
    {
        QDeadlineTimer scadenza(3000);
        while (p->motore.StatoDialogo != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents();
        return p->motore.StatoDialogo == -1;
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

    void impostaMinimo(int scalaLambda = 0)
    {
        const Catalogo &c = cat();
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriEntrataMinimo, 900);
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriUscitaMinimo, 1300);
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriUscitaCutOff, 1700);
        ImpostaVoceEcu(*ecu, c, Par::SogliaTpsEntrataMinimo, 100);
        ImpostaVoceEcu(*ecu, c, Par::SogliaTpsUscitaMinimo, 160);
        ImpostaVoceEcu(*ecu, c, Par::TpsTaratoMassimo, 1000);
        ImpostaVoceEcu(*ecu, c, Par::TpsTaratoMinimo, 50);
        ImpostaVoceEcu(*ecu, c, Par::ScalaLambda, scalaLambda);
        ImpostaVoceEcu(*ecu, c, Par::SogliaLambdaMagroMinimo, 300);
        ImpostaVoceEcu(*ecu, c, Par::SogliaLambdaRiccoMinimo, 700);
        ImpostaVoceEcu(*ecu, c, Par::FrequenzaControlloMinimo, 100);
        ImpostaVoceEcu(*ecu, c, Par::PassiControlloMinimo, 7);
    }

    int ram(int parametro) { return CellaEcu(*ecu, cat(), parametro, false); }
    int eeprom(int parametro) { return CellaEcu(*ecu, cat(), parametro, true); }

private slots:
    void initTestCase()
    {
        QVERIFY(cartella.isValid());
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
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
        p->catalogo.InizializzaParametri();
        p->IniDialogo();
        p->IniCollegamento();
        p->stato.EcuDaIdentificare = 0;
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        vista = VistaFinta{};
    }

    void cleanup()
    {
        dialogo.reset();
        p.reset();
        ecu.reset();
    }

    void idlePageReadsTwelveFramesAndFillsItsFields()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        QCOMPARE(porta->scritti.size(), 12);
        QCOMPARE(porta->scritti.first(), CreaFrame(QByteArray("R\x00\xA0\x02", 4)));
        QCOMPARE(porta->scritti.last(), CreaFrame(QByteArray("R\xC1\x10\x02", 4)));

        const QMap<int, double> atteso = {
            {Par::SogliaGiriEntrataMinimo, 900}, {Par::SogliaGiriUscitaMinimo, 1300},
            {Par::SogliaTpsEntrataMinimo, scala(100)}, {Par::SogliaTpsUscitaMinimo, scala(160)},
            {Par::SogliaLambdaMagroMinimo, scala(300)}, {Par::SogliaLambdaRiccoMinimo, scala(700)},
            {Par::FrequenzaControlloMinimo, 1000 / (100 * 1.024)}, {Par::PassiControlloMinimo, 7}};
        QCOMPARE(vista.valori, atteso);
        for (auto it = atteso.begin(); it != atteso.end(); ++it) {
            QCOMPARE(val(it.key()).Letto, it.value());
            QCOMPARE(val(it.key()).Corrente, it.value());
            QCOMPARE(val(it.key()).Memorizzato, it.value());
        }
        // The period keeps its fraction; only the field rounds it.
        QCOMPARE(val(Par::FrequenzaControlloMinimo).Letto, 9.765625);

        QCOMPARE(vista.disabilitazioni, 1);
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.segnalazioni.first(), testo("SEGNALAZIONI", "SEGNALAZIONE_1"));
        QVERIFY(!vista.segnalazioni.first().isEmpty());
        QCOMPARE(vista.segnalazioni.last(), QString());
        QCOMPARE(p->motore.PassoDialogo, qint16(-1));
        QCOMPARE(p->stato.TpsPresente, qint16(-1));
        QVERIFY(!vista.righeTpsNascoste);
        QVERIFY(vista.bloccati.isEmpty());
        QVERIFY(!vista.emergenza);
    }

    void idleReadSetsTheCrossLimits()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Min, 400.0);
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1300.0);
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Min, 900.0);
        QCOMPARE(par(Par::SogliaGiriUscitaMinimo).Max, 1700.0);
        QCOMPARE(par(Par::SogliaTpsEntrataMinimo).Min, 0.0);
        QCOMPARE(par(Par::SogliaTpsEntrataMinimo).Max, scala(160));
        // The low calibration point, read last, replaces the entry threshold as the exit's floor.
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, scala(50));
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Max, scala(1000));
        QCOMPARE(par(Par::SogliaLambdaMagroMinimo).Max, scala(700));
        QCOMPARE(par(Par::SogliaLambdaRiccoMinimo).Min, scala(300));

        QCOMPARE(vista.suggerimenti.value(Par::SogliaGiriUscitaMinimo), QString("900 - 1700"));
        QCOMPARE(vista.suggerimenti.value(Par::SogliaTpsUscitaMinimo), QString("12 - 249"));
        QCOMPARE(vista.suggerimenti.value(Par::SogliaTpsEntrataMinimo), QString("0 - 40"));
        QCOMPARE(vista.suggerimenti.value(Par::FrequenzaControlloMinimo), QString("0 - 20"));

        // Limit-only rows leave their entry unread, except the high TPS point.
        QCOMPARE(val(Par::SogliaGiriUscitaCutOff).Letto, -1.0);
        QCOMPARE(val(Par::TpsTaratoMassimo).Letto, scala(1000));
        QVERIFY(!vista.valori.contains(Par::SogliaGiriUscitaCutOff));
    }

    void editedFieldMovesItsPartnersLimit()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        vista.suggerimenti.clear();
        dialogo->valoreModificato(Par::SogliaTpsEntrataMinimo, 30);
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, 30.0);
        QCOMPARE(vista.suggerimenti, (QMap<int, QString>{{Par::SogliaTpsUscitaMinimo, "30 - 249"}}));
        dialogo->valoreModificato(Par::SogliaLambdaRiccoMinimo, 160);
        QCOMPARE(par(Par::SogliaLambdaMagroMinimo).Max, 160.0);
        vista.suggerimenti.clear();
        dialogo->valoreModificato(Par::FrequenzaControlloMinimo, 5);
        dialogo->valoreModificato(Par::PassiControlloMinimo, 5);
        QVERIFY(vista.suggerimenti.isEmpty());
    }

    void lambdaScaleDecidesBothWays_data()
    {
        QTest::addColumn<int>("flag");
        QTest::addColumn<double>("mostrato");
        QTest::addColumn<int>("riscritto");
        // Scaled thresholds come back one off after the round trip through 0..255.
        QTest::newRow("scaled") << 0 << 50.0 << 201;
        QTest::newRow("raw") << 7 << 200.0 << 200;
    }

    void lambdaScaleDecidesBothWays()
    {
        QFETCH(int, flag);
        QFETCH(double, mostrato);
        QFETCH(int, riscritto);
        impostaMinimo(flag);
        ImpostaVoceEcu(*ecu, cat(), Par::SogliaLambdaRiccoMinimo, 200);
        QVERIFY(apri(DescrizioneMinimo()));
        QCOMPARE(val(Par::ScalaLambda).Letto, flag ? 255.0 : 0.0);
        QCOMPARE(vista.valori.value(Par::SogliaLambdaRiccoMinimo), mostrato);
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaLambdaRiccoMinimo), riscritto);
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
        for (const DescrizionePagina &d : {DescrizioneMinimo(), DescrizioneCutOff(), DescrizioneNormale()}) {
            init();
            ImpostaVoceEcu(*ecu, cat(), Par::TpsTaratoMassimo, massimo);
            ImpostaVoceEcu(*ecu, cat(), Par::TpsTaratoMinimo, minimo);
            QVERIFY(apri(d));
            // The normal page reads the low point for the limit alone.
            const bool atteso = presente || d.primoStato == 11;
            QCOMPARE(p->stato.TpsPresente, qint16(atteso ? -1 : 0));
            QCOMPARE(vista.righeTpsNascoste, !atteso);
            cleanup();
        }
    }

    void normalPageKeepsTheHighPointOfAnEarlierPage()
    {
        ImpostaVoceEcu(*ecu, cat(), Par::TpsTaratoMassimo, 1023);
        ImpostaVoceEcu(*ecu, cat(), Par::TpsTaratoMinimo, 1023);
        val(Par::TpsTaratoMassimo).Letto = 77;
        QVERIFY(apri(DescrizioneNormale()));
        QCOMPARE(porta->scritti.size(), 17);
        QCOMPARE(val(Par::TpsTaratoMassimo).Letto, 77.0);
        QCOMPARE(par(Par::SogliaTpsUscitaMinimo).Min, 255.0);
    }

    void autoAdaptiveTpsLocksTheThresholds_data()
    {
        QTest::addColumn<double>("autoadattante");
        QTest::addColumn<int>("primo");
        QTest::addColumn<QList<int>>("bloccati");
        const QList<int> minimo = {Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo};
        QTest::newRow("idle, adaptive") << 0.0 << 1 << minimo;
        QTest::newRow("idle, fixed") << 255.0 << 1 << QList<int>{};
        QTest::newRow("idle, never read") << -1.0 << 1 << QList<int>{};
        QTest::newRow("cut-off") << 0.0 << 31
                                 << QList<int>{Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff};
        QTest::newRow("full load") << 0.0 << 21 << QList<int>{Par::SogliaTpsEntrataPC, Par::SogliaTpsUscitaPC};
        QTest::newRow("work zones, partners too")
            << 0.0 << 51
            << QList<int>{Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo, Par::SogliaTpsEntrataPC,
                          Par::SogliaTpsUscitaPC, Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff};
        QTest::newRow("pump page has none") << 0.0 << 41 << QList<int>{};
    }

    void autoAdaptiveTpsLocksTheThresholds()
    {
        QFETCH(double, autoadattante);
        QFETCH(int, primo);
        QFETCH(QList<int>, bloccati);
        val(Par::TpsAutoadattante).Letto = autoadattante;
        const DescrizionePagina d = primo == 1 ? DescrizioneMinimo() : primo == 31 ? DescrizioneCutOff()
                                  : primo == 21 ? DescrizionePienoCarico() : primo == 51 ? DescrizioneLavoro()
                                  : DescrizionePompata(true);
        QVERIFY(apri(d));
        QCOMPARE(vista.bloccati, QSet<int>(bloccati.begin(), bloccati.end()));
    }

    void normalPageDecodesItsBlocks()
    {
        const Catalogo &c = cat();
        const int asseTps[] = {100, 400, 700, 1000};
        for (int i = 0; i < Par::ElementiAsseTps; ++i)
            ImpostaVoceEcu(*ecu, c, Par::AsseTpsMappa + i, asseTps[i]);
        for (int i = 0; i < Par::ElementiAsseGiri; ++i)
            ImpostaVoceEcu(*ecu, c, Par::AsseGiriMappa + i, 1000 + 300 * i);
        for (int i = 0; i < Par::CelleMappa; ++i) {
            ImpostaVoceEcu(*ecu, c, Par::SogliaMagroMappa + i, 300 + i);
            ImpostaVoceEcu(*ecu, c, Par::SogliaRiccoMappa + i, 800 - 3 * i);
        }
        ImpostaVoceEcu(*ecu, c, Par::TipoNOR, 1);
        ImpostaVoceEcu(*ecu, c, Par::PrimaFrequenzaNormale, 49);
        QVERIFY(apri(DescrizioneNormale()));

        for (int i = 0; i < Par::ElementiAsseTps; ++i)
            QCOMPARE(vista.valori.value(Par::AsseTpsMappa + i), scala(asseTps[i]));
        for (int i = 0; i < Par::ElementiAsseGiri; ++i)
            QCOMPARE(vista.valori.value(Par::AsseGiriMappa + i), 1000.0 + 300 * i);
        for (int i = 0; i < Par::CelleMappa; ++i) {
            const double magro = scala(300 + i);
            const double ricco = scala(800 - 3 * i);
            QCOMPARE(val(Par::SogliaMagroMappa + i).Letto, magro);
            QCOMPARE(val(Par::SogliaRiccoMappa + i).Letto, ricco);
            QCOMPARE(par(Par::SogliaRiccoMappa + i).Min, magro);
            QCOMPARE(par(Par::SogliaMagroMappa + i).Max, ricco);
        }
        QCOMPARE(vista.valori.value(Par::TipoNOR), 1.0);
        QCOMPARE(vista.valori.value(Par::PrimaFrequenzaNormale), 1000 / (49 * 1.024));
    }

    void fullLoadGridAndItsChain()
    {
        const Catalogo &c = cat();
        for (int i = 0; i < Par::ElementiGiriRTS; ++i)
            ImpostaVoceEcu(*ecu, c, Par::GiriRTS + i, 1200 + 400 * i);
        for (int i = 0; i < Par::ElementiTpsRTS; ++i)
            ImpostaVoceEcu(*ecu, c, Par::TpsRTS + i, 120 * i);
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
        const Catalogo &c = cat();
        const int percentuali[] = {0x85, 0x05, 0x80, 0x00, 0xB2};
        for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
            ImpostaVoceEcu(*ecu, c, Par::PercentualePompata + i, percentuali[i]);
        for (int i = 0; i < Par::ElementiGiriPompata; ++i)
            ImpostaVoceEcu(*ecu, c, Par::GiriPompata + i, 1500 + 1000 * i);
        QVERIFY(apri(DescrizionePompata(true)));
        const double attese[] = {-5, 5, 0, 0, -50};
        for (int i = 0; i < Par::ElementiPercentualePompata; ++i)
            QCOMPARE(val(Par::PercentualePompata + i).Letto, attese[i]);
        QCOMPARE(par(Par::GiriPompata).Min, 0.0);
        QCOMPARE(par(Par::GiriPompata).Max, 2500.0);
        QCOMPARE(par(Par::GiriPompata + 1).Min, 1500.0);
        QCOMPARE(par(Par::GiriPompata + 2).Max, 4500.0);
        // The last breakpoint cannot rise above what it opened with.
        QCOMPARE(par(Par::GiriPompata + 3).Min, 3500.0);
        QCOMPARE(par(Par::GiriPompata + 3).Max, 4500.0);

        // Back again: the sign goes into bit 7.
        porta->scritti.clear();
        val(Par::PercentualePompata).Corrente = -50;
        val(Par::PercentualePompata + 1).Corrente = 50;
        dialogo->Applica();
        QVERIFY(attendi());
        const QList<Scrittura> w = scritture(porta->scritti);
        QCOMPARE(w.size(), 12);
        QCOMPARE(w.at(4).valore, QByteArray("\xB2"));
        QCOMPARE(w.at(5).valore, QByteArray("\x32"));
        QCOMPARE(ram(Par::PercentualePompata), 0xB2);
    }

    void workZonePageTakesLimitsFromElsewhere()
    {
        impostaMinimo();
        ImpostaVoceEcu(*ecu, cat(), Par::SogliaLambdaRiccoPC, 640);
        QVERIFY(apri(DescrizioneLavoro()));
        QCOMPARE(porta->scritti.size(), 29);
        QCOMPARE(par(Par::SogliaGiriEntrataMinimo).Max, 1700.0);
        for (int voce : {Par::SogliaTpsEntrataMinimo, Par::SogliaTpsEntrataCutOff, Par::SogliaTpsEntrataPC,
                         Par::TpsTaratoMassimo})
            QCOMPARE(par(voce).Max, scala(1000));
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
        p->stato.DatiAttuali[0].Valore[7] = 2;
        QVERIFY(apri(DescrizioneInibizionePC()));
        QCOMPARE(vista.valori.value(Par::InizioInibizionePC), 1234.0);
        QCOMPARE(vista.valori.value(Par::DurataInibizionePC), 4321.0);
        QVERIFY(vista.zone.isEmpty()); // no work-zone box on the small pages
        cleanup();
        init();
        ImpostaVoceEcu(*ecu, cat(), Par::CampioniMagro, 9);
        QVERIFY(apri(DescrizioneStechio()));
        QCOMPARE(porta->scritti.size(), 3);
        QCOMPARE(vista.valori.value(Par::CampioniMagro), 9.0);
    }

    void workZoneLineOnEveryReply_data()
    {
        QTest::addColumn<double>("zona");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("full load") << 3.0 << "ZONA.3";
        QTest::newRow("none") << 0.0 << "ZONA.99";
        QTest::newRow("above five") << 6.0 << "ZONA.99";
    }

    void workZoneLineOnEveryReply()
    {
        QFETCH(double, zona);
        QFETCH(QString, chiave);
        p->stato.DatiAttuali[0].Valore[7] = zona;
        QVERIFY(apri(DescrizioneMinimo()));
        QCOMPARE(vista.zone.size(), 12);
        const QString atteso = p->lingua.LeggiTesto("ZONE", chiave);
        QVERIFY(!atteso.isEmpty());
        QCOMPARE(vista.zone.last(), atteso);
    }

    void closedPortSendsNothing()
    {
        p->catalogo.registraLettura(Par::SogliaGiriEntrataMinimo, 1000);
        porta->chiudi();
        crea(DescrizioneMinimo());
        QVERIFY(!dialogo->avviaLettura());
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(val(Par::SogliaGiriEntrataMinimo).Letto, -1.0);
        QCOMPARE(val(Par::ScalaLambda).Letto, -1.0);
        QCOMPARE(vista.disabilitazioni, 0);
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
    }

    void everyPageWritesInItsOrder_data()
    {
        QTest::addColumn<int>("primo");
        QTest::addColumn<bool>("assistenza");
        QTest::addColumn<int>("soloRam");
        QTest::addColumn<int>("conEeprom");
        QTest::newRow("idle") << 1 << false << 8 << 16;
        // Eight fields and the 91 elements of axes and map.
        QTest::newRow("normal") << 11 << false << 99 << 198;
        QTest::newRow("full load") << 21 << false << 16 << 48;
        QTest::newRow("cut-off") << 31 << false << 6 << 12;
        QTest::newRow("pump, normal mode") << 41 << false << 9 << 18;
        QTest::newRow("pump, service mode") << 41 << true << 12 << 24;
        QTest::newRow("work zones") << 51 << false << 26 << 52;
        QTest::newRow("stoichiometric") << 181 << false << 3 << 6;
        QTest::newRow("inhibition") << 191 << false << 0 << 2;
        QTest::newRow("return from cut-off") << 201 << false << 1 << 2;
    }

    void everyPageWritesInItsOrder()
    {
        QFETCH(int, primo);
        QFETCH(bool, assistenza);
        QFETCH(int, soloRam);
        QFETCH(int, conEeprom);
        DescrizionePagina d;
        switch (primo) {
        case 1: d = DescrizioneMinimo(); break;
        case 11: d = DescrizioneNormale(); break;
        case 21: d = DescrizionePienoCarico(); break;
        case 31: d = DescrizioneCutOff(); break;
        case 41: d = DescrizionePompata(assistenza); break;
        case 51: d = DescrizioneLavoro(); break;
        case 181: d = DescrizioneStechio(); break;
        case 191: d = DescrizioneInibizionePC(); break;
        default: d = DescrizioneRientroCO(); break;
        }
        crea(d);
        for (int v : d.voci)
            val(v).Corrente = par(v).Min > 0 ? par(v).Min : 1;

        dialogo->Applica();
        QVERIFY(attendi());
        QList<Scrittura> w = scritture(porta->scritti);
        QCOMPARE(w.size(), soloRam);
        int k = 0;
        for (int v : d.voci) {
            if (par(v).IndirizzoRAM < 0)
                continue;
            QCOMPARE(w.at(k).indirizzo, quint16(par(v).IndirizzoRAM));
            QCOMPARE(w.at(k).valore.size(), int(par(v).Dimensione));
            ++k;
        }
        // Nothing the RAM can take: the save ends at once and the page stays usable.
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.chiusure, 0);

        porta->scritti.clear();
        dialogo->RispostaEsci(DialogoPagina::RispostaSi);
        QVERIFY(attendi());
        w = scritture(porta->scritti);
        QCOMPARE(w.size(), conEeprom);
        k = 0;
        for (int v : d.voci) {
            if (par(v).IndirizzoRAM >= 0)
                QCOMPARE(w.at(k++).indirizzo, quint16(par(v).IndirizzoRAM));
            if (par(v).IndirizzoEE >= 0)
                QCOMPARE(w.at(k++).indirizzo, quint16(par(v).IndirizzoEE));
        }
        QCOMPARE(vista.chiusure, 1);
    }

    void applyReachesRamOnlyAndLeavingDecidesEeprom_data()
    {
        QTest::addColumn<int>("risposta");
        QTest::addColumn<int>("ramDopo");
        QTest::addColumn<int>("eepromDopo");
        QTest::addColumn<int>("chiusure");
        QTest::newRow("yes") << DialogoPagina::RispostaSi << 1000 << 1000 << 1;
        QTest::newRow("no") << DialogoPagina::RispostaNo << 900 << 900 << 1;
        QTest::newRow("cancel") << 2 << 1000 << 900 << 0;
    }

    void applyReachesRamOnlyAndLeavingDecidesEeprom()
    {
        QFETCH(int, risposta);
        QFETCH(int, ramDopo);
        QFETCH(int, eepromDopo);
        QFETCH(int, chiusure);
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1000);
        dialogo->Applica();
        QCOMPARE(p->motore.StatoDialogo, qint16(2));
        QVERIFY(!vista.abilitata);
        QCOMPARE(vista.segnalazioni.last(), testo("SEGNALAZIONI", "SEGNALAZIONE_4"));
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), 900);
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.chiusure, 0);

        QVERIFY(dialogo->Esci());
        const qsizetype prima = porta->scritti.size();
        dialogo->RispostaEsci(risposta);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), ramDopo);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), eepromDopo);
        QCOMPARE(vista.chiusure, chiusure);
        if (risposta == 2)
            QCOMPARE(porta->scritti.size(), prima);
    }

    void leavingUnchangedClosesWithoutAFrame()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        porta->scritti.clear();
        QVERIFY(!dialogo->Esci());
        QCOMPARE(vista.chiusure, 1);
        QVERIFY(porta->scritti.isEmpty());
    }

    void periodTakenFromItsFieldCountsAsAChange()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        // What Applica takes from a field showing "10".
        dialogo->impostaCorrente(Par::FrequenzaControlloMinimo, 10);
        QVERIFY(dialogo->ControlloCambiamenti());
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::FrequenzaControlloMinimo), 98); // 1000 / (10 * 1.024), rounded
        QVERIFY(dialogo->Esci());
    }

    void periodZeroWritesTheFailureValue()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        porta->scritti.clear();
        dialogo->impostaCorrente(Par::FrequenzaControlloMinimo, 0);
        dialogo->Applica();
        QVERIFY(attendi());
        const QList<Scrittura> w = scritture(porta->scritti);
        QCOMPARE(w.at(6).indirizzo, quint16(0x012D));
        QCOMPARE(w.at(6).valore, QByteArray("\xFF\xFF"));
    }

    void restoreGoesBackToTheSnapshotOrTheOpeningValues()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        dialogo->impostaCorrente(Par::SogliaGiriEntrataMinimo, 1000);
        dialogo->Ripristina();
        QVERIFY(attendi());
        QCOMPARE(val(Par::SogliaGiriEntrataMinimo).Corrente, 900.0);
        QCOMPARE(vista.valori.value(Par::SogliaGiriEntrataMinimo), 900.0);
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
        QTest::newRow("known fault") << 5 << "05H " << "ERR_05";
        QTest::newRow("unknown fault") << 9 << "09H " << "ERR_99";
        QTest::newRow("zero") << 0 << "00H " << "ERR_99";
    }

    void refusalStopsTheSaveWhereItHappened()
    {
        QFETCH(int, codice);
        QFETCH(QString, prefisso);
        QFETCH(QString, chiave);
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        for (int v : DescrizioneMinimo().voci)
            dialogo->impostaCorrente(v, val(v).Letto + 1);
        ecu->impostaErroreScrittura(quint32(par(Par::SogliaTpsEntrataMinimo).IndirizzoRAM), quint8(codice));
        porta->scritti.clear();
        dialogo->Applica();
        QVERIFY(attendi());
        QCOMPARE(porta->scritti.size(), 3);
        const QString messaggio = p->lingua.LeggiTesto("ERRORI", chiave);
        QVERIFY(!messaggio.isEmpty());
        QCOMPARE(vista.segnalazioni.last(), prefisso + messaggio);
        QVERIFY(vista.abilitata);
        QVERIFY(!vista.emergenza);
        QVERIFY(!req->isEnabled());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 901);
        QCOMPARE(ram(Par::SogliaGiriUscitaMinimo), 1301);
        QCOMPARE(ram(Par::SogliaTpsUscitaMinimo), 160);
        QCOMPARE(ram(Par::PassiControlloMinimo), 7);

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
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
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
        const bool piccola = stato > 100;
        impostaMinimo();
        if (stato == 1)
            ecu->impostaStallo(true);
        crea(piccola ? DescrizioneStechio() : DescrizioneMinimo());
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
        QCOMPARE(p->motore.StatoDialogo, qint16(stato));
        QVERIFY(!vista.abilitata);
        QVERIFY(req->scatta());
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
        QVERIFY(vista.abilitata);
        QCOMPARE(vista.segnalazioni.last(), p->lingua.LeggiTesto("SEGNALAZIONI", chiave));
        QCOMPARE(vista.emergenza, emergenza);
        QCOMPARE(vista.chiusure, 0);

        // A reply that comes too late finds the link free and changes nothing.
        const auto valori = vista.valori;
        emit porta->arrivati(CreaFrame(QByteArray("r\x03\x84", 3), 0));
        emit porta->arrivati(CreaFrame(QByteArray("e\xFF", 2), 0));
        QCOMPARE(vista.valori, valori);
        QCOMPARE(vista.chiusure, 0);
    }

    void fieldTextsThatCount_data()
    {
        QTest::addColumn<QString>("testo");
        QTest::addColumn<bool>("numerico");
        QTest::newRow("digits") << "1200" << true;
        QTest::newRow("padded") << "   25" << true;
        QTest::newRow("negative") << "-5" << true;
        QTest::newRow("comma") << "2,5" << true;
        QTest::newRow("point") << "2.5" << true;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("blanks") << "   " << false;
        QTest::newRow("sign alone") << "-" << false;
        QTest::newRow("sign after") << "5-" << false;
        QTest::newRow("letters") << "12a" << false;
    }

    void fieldTextsThatCount()
    {
        QFETCH(QString, testo);
        QFETCH(bool, numerico);
        QCOMPARE(TestoNumerico(testo), numerico);
    }

    void limitsIncludeBothEnds()
    {
        impostaMinimo();
        QVERIFY(apri(DescrizioneMinimo()));
        QVERIFY(dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, "400"));
        QVERIFY(dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, "1300"));
        QVERIFY(!dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, "399"));
        QVERIFY(!dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, "1301"));
        QVERIFY(!dialogo->valoreValido(Par::SogliaGiriEntrataMinimo, ""));
        QVERIFY(dialogo->valoreValido(Par::FrequenzaControlloMinimo, "0"));
        QVERIFY(!dialogo->valoreValido(Par::PassiControlloMinimo, "-1"));
    }
};

QTEST_GUILESS_MAIN(TstDialogoPagina)
#include "tst_dialogopagina.moc"
