// Calibration end to end: the main frame and its menu worked by keyboard, the simulated ECU
// wired to the program's port, the simulator's time driven by the test and the fitter's
// pedal worked through the simulator's commands.
#include "EcuSimulata.h"
#include "RicevitoreComandi.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/IniTaratura.h"
#include "calibration/ui/PagineStriscia.h"
#include "calibration/ui/RegistroTaratura.h"
#include "calibration/ui/T_Giri.h"
#include "shell/ui/AiutoUi.h"
#include "support/PortaEcu.h"
#include "variables/Formato.h"

#include <QLabel>
#include <QRadioButton>

using namespace kv;
using namespace kv::sim;

namespace {

QByteArray comando(const char *hex)
{
    return QByteArray::fromHex(hex);
}

QByteArray scrittura(quint16 indirizzo, quint16 valore)
{
    return 'W' + ByteBE(indirizzo, 2) + char(2) + ByteBE(valore, 2);
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
    std::unique_ptr<Programma> p;
    std::unique_ptr<Korvantine> frame;
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
        p = std::make_unique<Programma>(
            cartella.path(), std::move(pe), std::move(r), std::make_unique<TemporizzatoreManuale>(),
            std::make_unique<TemporizzatoreManuale>(), std::make_unique<TemporizzatoreManuale>());
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->canali.InizializzaCanali(p->lingua);
        frame = std::make_unique<Korvantine>(*p);
        RegistraPagineTaratura(*frame);
        frame->avvia();
        QApplication::setActiveWindow(frame.get());
        risponditore = std::make_unique<aiuto::Risponditore>(0);
        scorri(400);
        QVERIFY(!p->stato.EcuDaIdentificare);
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
        StatoProgramma &s = p->stato;
        tasto(Qt::Key_F4);
        tasto(Qt::Key_F5, Qt::ShiftModifier);
        auto *avviso = qobject_cast<IniTaratura *>(frame->paginaSopra());
        QVERIFY(avviso);
        QCOMPARE(avviso->windowTitle(), SequenzaTaratura::ComponiPasso(testo("IniTaratura", "CAPTION"), 1));
        QApplication::setActiveWindow(avviso);
        QTest::keyClick(avviso, Qt::Key_F2);
        QCOMPARE(ricevuti, QByteArrayList{comando("4102")});
        QVERIFY(!frame->paginaSopra());

        // The ECU at its entry point: the RPM page, waiting for the engine, then its reading.
        scorri(200);
        QApplication::setActiveWindow(frame.get());
        auto *giri = pagina<T_Giri>();
        QVERIFY(giri);
        QCOMPARE(giri->windowTitle(), SequenzaTaratura::ComponiPasso(testo("T_Giri", "CAPTION.1"), 2));
        QCOMPARE(sul(giri, "Segnalazione"), testo("T_Giri", "SEGNALAZIONE.0"));
        scorri(2500);
        QCOMPARE(sul(giri, "Segnalazione"), testo("T_Giri", "SEGNALAZIONE.1"));
        QCOMPARE(s.PassoTaratura, 2);
        QVERIFY(giri->GiriTeo()->hasFocus());
        QCOMPARE(giri->GiriTeo()->text(), sul(giri, "GiriReali")); // it follows the reading
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

        // Lambda, then the parameters, which this build does not have yet.
        auto *lambda = pagina<PaginaStriscia>();
        QVERIFY(lambda && lambda->objectName() == "T_Lambda");
        QCOMPARE(lambda->windowTitle(), SequenzaTaratura::ComponiPasso(testo("T_Lambda", "CAPTION.1"), 4));
        QCOMPARE(sul(lambda, "Msg_Lambda"), testo("T_Lambda", "MSG_LAMBDA.0"));
        QVERIFY(lambda->sonda(0)->isChecked() && !lambda->sonda(1)->isEnabled());
        scorri(Taratura::LambdaSweepMs);
        QCOMPARE(s.TaraturaInCorso, FaseTaratura::Lambda);
        scorri(2500, true);
        QVERIFY(frame->menu());
        QCOMPARE(s.TaraturaInCorso, FaseTaratura::Nessuna);
        QCOMPARE(risponditore->visti.size(), 1);
        QVERIFY(risponditore->visti[0].testo.endsWith(testo("KORVANTINE", "NON_DISPONIBILE")));

        const QByteArrayList attesi = {
            comando("4102"),         comando("4100"),         comando("52010502"),
            scrittura(0x0105, 1000), scrittura(0x00A0, 1100), scrittura(0x00A2, 1200),
            scrittura(0x0098, 2000), scrittura(0x009A, 1800), scrittura(0x00AC, 2000),
            scrittura(0x00AE, 1800), comando("4101")};
        QCOMPARE(ricevuti, attesi);
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
        QCOMPARE(p->motore.StatoDialogo(), qint16(primoStato));
        QCOMPARE(p->TimeOutReq.interval(), 5000);
        scorri(400);
        QWidget *w = frame->paginaAttiva();
        QVERIFY(w && w->objectName() == sezione);
        QCOMPARE(w->windowTitle(), testo(sezione, "CAPTION.0"));
        QCOMPARE(ricevuti, apertura);
        QCOMPARE(int(p->stato.TaraturaInCorso), 2 + voce);

        // The stream goes on under the closing word: the ECU is seen back in normal running.
        bool inMarciaSottoBox = false;
        risponditore->durante = [&](MsgBox1 *) {
            scorri(80);
            inMarciaSottoBox = p->stato.EcuInMarcia;
        };
        QVERIFY(!p->stato.EcuInMarcia);
        tasto(Qt::Key_Escape);
        QCOMPARE(p->motore.StatoDialogo(), qint16(statoUscita));
        QCOMPARE(p->TimeOutReq.interval(), 30000);
        QVERIFY(!w->isEnabled());
        scorri(80);
        QCOMPARE(inMarciaSottoBox, domanda);
        QVERIFY(frame->menu());
        QCOMPARE(ricevuti, apertura + QByteArrayList{comando("4101")});
        QCOMPARE(p->stato.TaraturaInCorso, FaseTaratura::Nessuna);
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
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
        QCOMPARE(ricevuti.size(), 3); // 'A' 3, the read, the one write refused
    }

    void leavingTpsClosesEverythingWithoutTheEcu()
    {
        StatoProgramma &s = p->stato;
        ecu->impostaStallo(true);
        porta->scritti.clear();
        s.TaraturaCompleta = true;
        s.TaraturaInCorso = FaseTaratura::Tps;
        s.PassoTaratura = 0;
        frame->AvviaTaratura(FaseTaratura::Tps);
        QVERIFY(pagina<PaginaStriscia>());
        tasto(Qt::Key_Escape);
        QCOMPARE(risponditore->visti.size(), 1);
        QCOMPARE(risponditore->visti[0].testo, testo("SEGNALAZIONI", "SEGNALAZIONE_54"));
        QVERIFY(frame->menu());
        QCOMPARE(s.TaraturaInCorso, FaseTaratura::Nessuna);
        QCOMPARE(p->motore.StatoDialogo(), qint16(SequenzaTaratura::StatoIngresso));
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame(comando("4102"))});
        QVERIFY(!frame->menu()->isEnabled());
        QVERIFY(req->scatta());
        QCOMPARE(p->motore.StatoDialogo(), qint16(-1));
        QVERIFY(frame->menu()->isEnabled());
    }
};

QTEST_MAIN(TstTaratura)
#include "tst_taratura.moc"
