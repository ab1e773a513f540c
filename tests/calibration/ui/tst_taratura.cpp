// Calibration end to end: the main frame and its menu worked by keyboard, the simulated ECU
// wired to the program's port, the simulator's time driven by the test and the fitter's
// pedal worked through the simulator's commands.
#include "EcuSimulata.h"
#include "RicevitoreComandi.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/IniTaratura.h"
#include "calibration/ui/PagineStriscia.h"
#include "calibration/ui/RegistroTaratura.h"
#include "calibration/ui/T_Giri.h"
#include "calibration/ui/T_Parametri.h"
#include "pages/ui/CampoDato.h"
#include "shell/ui/AiutoUi.h"
#include "support/PortaEcu.h"
#include "variables/Formato.h"

#include <QComboBox>
#include <QLabel>
#include <QRadioButton>

using namespace kv;
using namespace kv::sim;

namespace {

QByteArray comando(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QByteArray scrittura(quint16 indirizzo, quint16 valore, int byte = 2)
{
    return 'W' + ByteBE(indirizzo, 2) + char(byte) + ByteBE(valore, byte);
}

// The parameter page's opening read, in its order.
const QByteArrayList LetturaParametri = {comando("5200B802"), comando("52C16201"), comando("52010801"),
                                         comando("52010901"), comando("52C16401"), comando("52C16602")};

// What the parameter page keeps in the ECU on the way out: emulation value, TPS kind and
// self-adaptation to RAM and EEPROM, the two times to EEPROM.
QByteArrayList scrittureParametri(int valore, int tipo, int auto_, int disabilitazione, int anomalia)
{
    return {scrittura(0x015C, quint16(valore), 1),
            scrittura(0xC162, quint16(valore), 1),
            scrittura(0x0108, quint16(tipo), 1),
            scrittura(0xC108, quint16(tipo), 1),
            scrittura(0x0109, quint16(auto_), 1),
            scrittura(0xC109, quint16(auto_), 1),
            scrittura(0xC164, quint16(disabilitazione), 1),
            scrittura(0xC166, quint16(anomalia))};
}

} // namespace

class TstTaratura : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    Catalogo catalogo;
    std::unique_ptr<EcuSimulata> ecu;
    TemporizzatoreManuale *req = nullptr;
    PortaEcu *porta = nullptr;
    Lingua lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> p;
    std::unique_ptr<Korvantine> frame;
    SequenzaTaratura *sequenza = nullptr;
    std::unique_ptr<aiuto::Risponditore> risponditore;
    QByteArrayList ricevuti; // the commands the ECU took, as data

    // Simulated time on by ms, a frame every 40 ms; reale lets the clock run alongside, for
    // the pauses the pages make between steps.
    void scorri(int ms, bool reale = false)
    {
        for (int t = 0; t < ms; t += 40) {
            ecu->avanzaTempo(40);
            if (reale)
                QTest::qWait(40);
            QCoreApplication::processEvents();
            QCoreApplication::processEvents();
        }
    }
    template <typename T = QWidget>
    T *pagina()
    {
        return qobject_cast<T *>(frame->paginaAttiva());
    }
    QString testo(const QString &sezione, const char *chiave)
    {
        return p->lingua.LeggiTesto(sezione, QLatin1String(chiave));
    }
    QString sul(QWidget *w, const char *nome) { return w->findChild<QLabel *>(QLatin1String(nome))->text(); }
    void tasto(int k, Qt::KeyboardModifiers m = Qt::NoModifier)
    {
        QWidget *w = QApplication::focusWidget();
        QVERIFY(w);
        QTest::keyClick(w, Qt::Key(k), m);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(
            QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
    }

    void init()
    {
        OpzioniEcu o = OpzioniManuali();
        o.operatoreManuale = true;
        ecu = std::make_unique<EcuSimulata>(o);
        // A tenth of the true scale: the ECU reads 85 RPM at idle.
        ImpostaVoceEcu(*ecu, catalogo, Par::CostanteGiri, 500);
        auto r = std::make_unique<TemporizzatoreManuale>();
        req = r.get();
        auto pe = std::make_unique<PortaEcu>(*ecu);
        porta = pe.get();
        lingua = Lingua(cartella.path());
        p = std::make_unique<Programma>(
            cartella.path(), lingua, std::move(pe), std::move(r), std::make_unique<TemporizzatoreManuale>(),
            std::make_unique<TemporizzatoreManuale>(), std::make_unique<TemporizzatoreManuale>());
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->canali.InizializzaCanali(p->lingua.Cerca());
        frame = std::make_unique<Korvantine>(*p);
        sequenza = &RegistraPagineTaratura(*frame);
        frame->avvia();
        QApplication::setActiveWindow(frame.get());
        risponditore = std::make_unique<aiuto::Risponditore>(0);
        scorri(400);
        QVERIFY(!p->linea.ecu().EcuDaIdentificare);
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this,
                [this](const QByteArray &f) { ricevuti.append(RicevitoreComandi::datiDi(f)); });
    }

    void cleanup()
    {
        risponditore.reset();
        frame.reset();
        p.reset();
        ecu.reset();
        ricevuti.clear();
    }

    void wholeSequenceByKeyboard()
    {
        const SequenzaTaratura &s = *sequenza;
        tasto(Qt::Key_F4);
        tasto(Qt::Key_F5, Qt::ShiftModifier);
        auto *avviso = qobject_cast<IniTaratura *>(frame->paginaSopra());
        QVERIFY(avviso);
        QCOMPARE(avviso->windowTitle(),
                 p->lingua.testo(SequenzaTaratura::ComponiPasso({"IniTaratura", "CAPTION"}, 1)));
        QApplication::setActiveWindow(avviso);
        QTest::keyClick(avviso, Qt::Key_F2);
        QCOMPARE(ricevuti, QByteArrayList{comando("4102")});
        QVERIFY(!frame->paginaSopra());

        // The ECU at its entry point: the RPM page, waiting for the engine, then its reading.
        scorri(200);
        QApplication::setActiveWindow(frame.get());
        auto *giri = pagina<T_Giri>();
        QVERIFY(giri);
        QCOMPARE(giri->windowTitle(),
                 p->lingua.testo(SequenzaTaratura::ComponiPasso({"T_Giri", "CAPTION.1"}, 2)));
        QCOMPARE(sul(giri, "Segnalazione"), testo("T_Giri", "SEGNALAZIONE.0"));
        scorri(2500);
        QCOMPARE(sul(giri, "Segnalazione"), testo("T_Giri", "SEGNALAZIONE.1"));
        QCOMPARE(s.PassoTaratura(), qint16(2));
        QVERIFY(giri->GiriTeo()->hasFocus());
        QCOMPARE(giri->GiriTeo()->text(), sul(giri, "GiriReali")); // it follows the reading
        // Confirmed as it stands, the ECU would be calibrated against itself: refused.
        tasto(Qt::Key_F2);
        QCOMPARE(sul(giri, "Segnalazione1"), testo("T_Giri", "SEGNALAZIONE.2"));
        // The first digit replaces the followed reading; the field then keeps digits only.
        QTest::keyClicks(giri->GiriTeo(), "99.,x");
        scorri(80);
        QCOMPARE(giri->GiriTeo()->text(), QStringLiteral("99"));
        // Twice the reading, confirmed before another frame comes: the coefficient doubles.
        const double letti = ValNumero(sul(giri, "GiriReali"));
        QVERIFY(letti > 50 && letti < 120);
        tasto(Qt::Key_Space);
        QTest::keyClicks(giri->GiriTeo(), QString::number(2 * letti));
        tasto(Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("Conferma"));
        tasto(Qt::Key_F2);
        scorri(200);
        QCOMPARE(sul(giri, "Segnalazione1"), testo("SEGNALAZIONI", "SEGNALAZIONE_55"));
        QCOMPARE(CellaEcu(*ecu, catalogo, Par::CostanteGiri, false), 1000);
        QCOMPARE(CellaEcu(*ecu, catalogo, Par::SogliaGiriUscitaPC, false), 1800);
        QCOMPARE(QApplication::focusWidget()->objectName(), QStringLiteral("AvantiTar"));
        tasto(Qt::Key_PageUp);
        scorri(120);

        // Throttle: at rest, then pressed fully, as the ECU asks.
        auto *tps = pagina<PaginaStriscia>();
        QVERIFY(tps && tps->objectName() == "T_TPS");
        QCOMPARE(sul(tps, "Msg_TPS"), testo("T_TPS", "MSG_TPS.0"));
        ecu->impostaPedale(false);
        scorri(2400);
        QCOMPARE(sul(tps, "Msg_TPS"), testo("T_TPS", "MSG_TPS.1"));
        QVERIFY(tps->logica().cursoreVisibile(0) && !tps->logica().cursoreVisibile(1));
        ecu->impostaPedale(true);
        scorri(5000);
        QVERIFY(tps->logica().yCursore(1) > 200 && tps->logica().yCursore(0) < 30);
        QCOMPARE(sul(tps, "DatiTarTPS_3"), FormattaNumero(tps->logica().yCursore(1), "#0"));
        ecu->impostaPedale(false);
        scorri(2500, true);

        // Lambda, then the parameters.
        auto *lambda = pagina<PaginaStriscia>();
        QVERIFY(lambda && lambda->objectName() == "T_Lambda");
        QCOMPARE(lambda->windowTitle(),
                 p->lingua.testo(SequenzaTaratura::ComponiPasso({"T_Lambda", "CAPTION.1"}, 4)));
        QCOMPARE(sul(lambda, "Msg_Lambda"), testo("T_Lambda", "MSG_LAMBDA.0"));
        QVERIFY(lambda->sonda(0)->isChecked() && !lambda->sonda(1)->isEnabled());
        scorri(Taratura::LambdaSweepMs);
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::Lambda);
        scorri(2500, true);
        auto *parametri = pagina<T_Parametri>();
        QVERIFY(parametri);
        QCOMPARE(parametri->windowTitle(),
                 p->lingua.testo(SequenzaTaratura::ComponiPasso({"T_Parametri", "CAPTION.1"}, 5)));
        scorri(200);
        // 512 of 1023 on a range of 80, the ECU's -5 (0x85), from 10: 45.
        QCOMPARE(parametri->D_Parametri(0)->text().trimmed(), QStringLiteral("45"));
        QVERIFY(parametri->D_Parametri(0)->hasFocus());
        tasto(Qt::Key_Space);
        QTest::keyClicks(QApplication::focusWidget(), "60");
        tasto(Qt::Key_Tab);
        tasto(Qt::Key_Down); // the other TPS kind
        QCOMPARE(parametri->TipoTps()->currentIndex(), 1);
        // Esc ends the calibration; the closing word comes while the frames go out.
        tasto(Qt::Key_Escape);
        scorri(200);
        QVERIFY(frame->menu() && frame->menu()->isAncestorOf(QApplication::focusWidget()));
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::Nessuna);
        QVERIFY(!s.TaraturaCompleta());
        QCOMPARE(risponditore->visti.size(), 1);
        QCOMPARE(risponditore->visti[0].testo, testo("SEGNALAZIONI", "SEGNALAZIONE_56"));

        const QByteArrayList attesi =
            QByteArrayList{comando("4102"),         comando("4100"),         comando("52010502"),
                           scrittura(0x0105, 1000), scrittura(0x00A0, 1100), scrittura(0x00A2, 1200),
                           scrittura(0x0098, 2000), scrittura(0x009A, 1800), scrittura(0x00AC, 2000),
                           scrittura(0x00AE, 1800), comando("4101")}
            + LetturaParametri
            // 60 less 50.04: 10 to the ECU; the TPS kind as 255.
            + scrittureParametri(10, 0xFF, 0xFF, 30, 600);
        QCOMPARE(ricevuti, attesi);
        QCOMPARE(CellaEcu(*ecu, catalogo, Par::ValoreEmulazione, true), 10);
    }

    void parametersAlone_data()
    {
        QTest::addColumn<int>("base");
        QTest::addColumn<int>("valore");    // raw, sign and magnitude
        QTest::addColumn<int>("tipo");      // TipoTps, raw
        QTest::addColumn<QString>("letta"); // the percentage shown
        QTest::addColumn<QString>("nuova"); // typed over it; empty: a time changed instead
        QTest::addColumn<int>("scritto");   // the emulation value that goes back
        QTest::newRow("as the simulator has it") << 512 << 0x85 << 0 << "45" << QString() << 0x85;
        QTest::newRow("nothing at all") << 0 << 0 << 0 << "10" << QString() << 0x00;
        QTest::newRow("minus nought") << 0 << 0x80 << 0 << "10" << QString() << 0x00;
        QTest::newRow("nought on a high base") << 1023 << 0 << 0 << "90"
                                               << "0" << 0xDA; // -90
        QTest::newRow("any TPS kind but 0") << 512 << 0x85 << 7 << "45" << QString() << 0x85;
    }

    void parametersAlone()
    {
        QFETCH(int, base);
        QFETCH(int, valore);
        QFETCH(int, tipo);
        QFETCH(QString, letta);
        QFETCH(QString, nuova);
        QFETCH(int, scritto);
        ImpostaVoceEcu(*ecu, catalogo, Par::BaseEmulazione, base);
        ImpostaVoceEcu(*ecu, catalogo, Par::ValoreEmulazione, valore);
        ImpostaVoceEcu(*ecu, catalogo, Par::TipoTps, tipo);
        tasto(Qt::Key_F4);
        tasto(Qt::Key_F4, Qt::ShiftModifier);
        scorri(400);
        auto *w = pagina<T_Parametri>();
        QVERIFY(w);
        QCOMPARE(w->windowTitle(), testo("T_Parametri", "CAPTION.0"));
        QVERIFY(w->findChild<QPushButton *>("EsciTar")->isHidden());
        QCOMPARE(ricevuti, LetturaParametri);
        QCOMPARE(w->D_Parametri(0)->text().trimmed(), letta);
        QCOMPARE(w->TipoTps()->currentIndex(), tipo != 0 ? 1 : 0);
        auto *applica = w->findChild<QPushButton *>("Applica");
        QVERIFY(!applica->isEnabled());

        // F2 tries what changed in RAM; a time has no RAM copy and waits for the way out.
        if (nuova.isEmpty())
            w->D_Parametri(1)->setFocus();
        tasto(Qt::Key_Space);
        QTest::keyClicks(QApplication::focusWidget(), nuova.isEmpty() ? QString("40") : nuova);
        QVERIFY(applica->isEnabled());
        ricevuti.clear();
        tasto(Qt::Key_F2);
        scorri(200);
        const int tpsKind = tipo != 0 ? 0xFF : 0;
        QCOMPARE(ricevuti,
                 (QByteArrayList{scrittura(0x015C, quint16(scritto), 1),
                                 scrittura(0x0108, quint16(tpsKind), 1), scrittura(0x0109, 0xFF, 1)}));
        QVERIFY(!applica->isEnabled() && w->findChild<QPushButton *>("Memorizza")->isEnabled());

        // Esc asks; Yes keeps it all, the time with it.
        ricevuti.clear();
        tasto(Qt::Key_Escape);
        scorri(200);
        const int tempo = nuova.isEmpty() ? 40 : 30;
        QCOMPARE(ricevuti, scrittureParametri(scritto, tpsKind, 0xFF, tempo, 600));
        QCOMPARE(risponditore->visti.size(), 1);
        QCOMPARE(risponditore->visti[0].testo, testo("SEGNALAZIONI", "SEGNALAZIONE_6"));
        QVERIFY(frame->menu());
    }

    void parametersStepLeftByEsciTar_data()
    {
        QTest::addColumn<QString>("digitato"); // over the percentage; empty: left as read
        QTest::addColumn<int>("tastoBox");     // pressed in the box that comes
        QTest::addColumn<bool>("rifiuto");     // the ECU refuses the TPS kind
        QTest::addColumn<QString>("parola");   // the box's
        QTest::addColumn<int>("scritture");    // frames that went out
        QTest::addColumn<bool>("resta");
        QTest::newRow("bad value, mend it") << "150" << 0 << false << "SEGNALAZIONE_57" << 0 << true;
        QTest::newRow("bad value, leave") << "150" << 1 << false << "SEGNALAZIONE_57" << 0 << false;
        QTest::newRow("write refused") << QString() << 0 << true << "SEGNALAZIONE_56" << 3 << true;
    }

    void parametersStepLeftByEsciTar()
    {
        QFETCH(QString, digitato);
        QFETCH(int, tastoBox);
        QFETCH(bool, rifiuto);
        QFETCH(QString, parola);
        QFETCH(int, scritture);
        QFETCH(bool, resta);
        const SequenzaTaratura &s = *sequenza;
        if (rifiuto)
            ecu->impostaErroreScrittura(0x0108, ErroreEcu::ScritturaFallita);
        risponditore->rispondi(tastoBox);
        sequenza->entraInSequenza(FaseTaratura::Parametri);
        frame->AvviaTaratura(FaseTaratura::Parametri);
        scorri(400);
        auto *w = pagina<T_Parametri>();
        QVERIFY(w && w->isEnabled());
        if (!digitato.isEmpty()) {
            tasto(Qt::Key_Space);
            QTest::keyClicks(QApplication::focusWidget(), digitato);
        }
        ricevuti.clear();
        tasto(Qt::Key_Escape);
        scorri(200);
        QCOMPARE(risponditore->visti.size(), 1);
        QVERIFY(risponditore->visti[0].testo.endsWith(p->lingua.LeggiTesto("SEGNALAZIONI", parola)));
        QCOMPARE(ricevuti.size(), scritture);
        // Mended or refused, the page stays with the step; left, the calibration is over.
        QCOMPARE(pagina<T_Parametri>() == w, resta);
        QCOMPARE(s.TaraturaInCorso(), resta ? FaseTaratura::Parametri : FaseTaratura::Nessuna);
        if (rifiuto)
            QCOMPARE(sul(w, "Segnalazione"), "05H " + testo("ERRORI", "ERR_05"));
        else if (resta)
            QVERIFY(w->D_Parametri(0)->hasFocus() && w->D_Parametri(0)->errato());
    }

    void parametersReadWithoutAnswer()
    {
        const SequenzaTaratura &s = *sequenza;
        ecu->impostaStallo(true);
        sequenza->entraInSequenza(FaseTaratura::Parametri);
        frame->AvviaTaratura(FaseTaratura::Parametri);
        auto *w = pagina<T_Parametri>();
        QVERIFY(w && req->scatta());
        QCOMPARE(sul(w, "Segnalazione"), testo("SEGNALAZIONI", "SEGNALAZIONE_2"));
        // Esci_Out alone: Esc leaves without a word to the ECU, and the calibration is over.
        QVERIFY(w->findChild<QPushButton *>("EsciTar")->isHidden());
        tasto(Qt::Key_Escape);
        QVERIFY(frame->menu());
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::Nessuna);
        QVERIFY(risponditore->visti.isEmpty());
    }

    void singlePagesLeaveWithA1_data()
    {
        QTest::addColumn<int>("voce");
        QTest::addColumn<QString>("sezione");
        QTest::addColumn<QByteArrayList>("apertura");
        QTest::addColumn<int>("primoStato");
        QTest::addColumn<int>("statoUscita");
        QTest::addColumn<bool>("domanda"); // the closing word after the ECU's answer
        QTest::newRow("rpm") << 0 << "T_Giri_Single" << QByteArrayList{comando("4103"), comando("52010502")}
                             << 331 << 334 << false;
        QTest::newRow("tps") << 1 << "T_TPS_Single" << QByteArrayList{comando("4104")} << 341 << 342 << true;
        QTest::newRow("lambda") << 2 << "T_Lambda_Single" << QByteArrayList{comando("4105")} << 351 << 352
                                << true;
    }

    void singlePagesLeaveWithA1()
    {
        QFETCH(int, voce);
        QFETCH(QString, sezione);
        QFETCH(QByteArrayList, apertura);
        QFETCH(int, primoStato);
        QFETCH(int, statoUscita);
        QFETCH(bool, domanda);
        tasto(Qt::Key_F4);
        tasto(Qt::Key_F1 + voce, Qt::ShiftModifier);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(primoStato));
        QCOMPARE(p->linea.TimeOutReq().interval(), 5000);
        scorri(400);
        QWidget *w = frame->paginaAttiva();
        QVERIFY(w && w->objectName() == sezione);
        QCOMPARE(w->windowTitle(), testo(sezione, "CAPTION.0"));
        QCOMPARE(ricevuti, apertura);
        QCOMPARE(int(sequenza->TaraturaInCorso()), 2 + voce);

        // The stream goes on under the closing word: the ECU is seen back in normal running.
        bool inMarciaSottoBox = false;
        risponditore->durante = [&](MsgBox1 *) {
            scorri(80);
            inMarciaSottoBox = p->linea.ecu().EcuInMarcia;
        };
        QVERIFY(!p->linea.ecu().EcuInMarcia);
        tasto(Qt::Key_Escape);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(statoUscita));
        QCOMPARE(p->linea.TimeOutReq().interval(), 30000);
        QVERIFY(!w->isEnabled());
        scorri(80);
        QCOMPARE(inMarciaSottoBox, domanda);
        QVERIFY(frame->menu());
        QCOMPARE(ricevuti, apertura + QByteArrayList{comando("4101")});
        QCOMPARE(sequenza->TaraturaInCorso(), FaseTaratura::Nessuna);
        QCOMPARE(risponditore->visti.size(), domanda ? 1 : 0);
        if (domanda)
            QCOMPARE(risponditore->visti[0].testo, testo("SEGNALAZIONI", "SEGNALAZIONE_56"));
    }

    void singlePageWithoutAnswerLeavesOnlyEsci()
    {
        tasto(Qt::Key_F4);
        ecu->impostaStallo(true);
        porta->scritti.clear();
        tasto(Qt::Key_F2, Qt::ShiftModifier);
        QVERIFY(req->scatta());
        QWidget *w = frame->paginaAttiva();
        QCOMPARE(sul(w, "Segnalazione1"), testo("SEGNALAZIONI", "SEGNALAZIONE_2"));
        QVERIFY(w->isEnabled());
        QVERIFY(w->findChild<QPushButton *>("EsciTar")->isHidden());
        // Esc now leaves without a word to the ECU, once the fitter has read the warning.
        tasto(Qt::Key_Escape);
        QVERIFY(frame->menu());
        // A stalled ECU hears nothing: what went out is on the port.
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame(comando("4104"))});
    }

    void refusedWriteIsShownOnThePage()
    {
        ecu->impostaErroreScrittura(0x0105, ErroreEcu::ScritturaFallita);
        tasto(Qt::Key_F4);
        tasto(Qt::Key_F1, Qt::ShiftModifier);
        scorri(3000);
        auto *giri = pagina<T_Giri>();
        QVERIFY(giri && giri->GiriTeo()->hasFocus());
        tasto(Qt::Key_Space);
        QTest::keyClicks(giri->GiriTeo(), "900");
        tasto(Qt::Key_F2);
        scorri(80);
        QCOMPARE(sul(giri, "Segnalazione1"), "05H " + testo("ERRORI", "ERR_05"));
        QVERIFY(giri->isEnabled());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QCOMPARE(ricevuti.size(), 3); // 'A' 3, the read, the one write refused
    }

    void leavingTpsClosesEverythingWithoutTheEcu()
    {
        const SequenzaTaratura &s = *sequenza;
        ecu->impostaStallo(true);
        porta->scritti.clear();
        sequenza->entraInSequenza(FaseTaratura::Tps);
        frame->AvviaTaratura(FaseTaratura::Tps);
        QVERIFY(pagina<PaginaStriscia>());
        tasto(Qt::Key_Escape);
        QCOMPARE(risponditore->visti.size(), 1);
        QCOMPARE(risponditore->visti[0].testo, testo("SEGNALAZIONI", "SEGNALAZIONE_54"));
        QVERIFY(frame->menu());
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::Nessuna);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(SequenzaTaratura::StatoIngresso));
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame(comando("4102"))});
        QVERIFY(!frame->menu()->isEnabled());
        QVERIFY(req->scatta());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(frame->menu()->isEnabled());
    }
};

QTEST_MAIN(TstTaratura)
#include "tst_taratura.moc"
