// The main frame and its menu, driven by frames from a scripted ECU: what the menu offers as
// the ECU's state changes, the keys, the way out, the page registry and the message strip.
#include "AiutoUi.h"

#include "shell/Menu.h"

#include <QSignalSpy>

using namespace kv;

using aiuto::Ambiente;

namespace {

// '1' or '0' for each visible entry, or for each function.
QString abilitate(MainLambda *m, bool voci = true)
{
    QString s;
    for (int i = 0; i < (voci ? Menu::NumeroOpzioni : Menu::NumeroFunzioni); ++i) {
        QWidget *w = voci ? static_cast<QWidget *>(m->opzione(i)) : m->funzione(i);
        if (!w->isHidden())
            s += w->isEnabled() ? u'1' : u'0';
    }
    return s;
}

bool boxVisibile(MainLambda *m)
{
    auto *box = m->findChild<QWidget *>(QStringLiteral("BoxMenu"));
    return box && !box->isHidden() && box->isEnabled();
}

} // namespace

// The calibration as the frame drives it: what was asked of it, in order.
struct TaraturaFinta : Korvantine::Taratura
{
    void avvia(FaseTaratura passo) override { chiamate << QStringLiteral("step %1").arg(int(passo)); }
    void avviaSequenza() override { chiamate << QStringLiteral("sequence"); }
    void prosegui() override { chiamate << QStringLiteral("on"); }
    bool inCorso() const override { return inCorsa; }
    void terminata() override { chiamate << QStringLiteral("end"); }
    QStringList chiamate;
    bool inCorsa = false;
};

class TstMainLambda : public QObject
{
    Q_OBJECT

private slots:
    void functionKeysChooseAndShiftKeysOpen()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        QCOMPARE(abilitate(m, false), QStringLiteral("11111"));
        QCOMPARE(m->funzione(0)->text(), a.testo("MainLambda", "FUNZIONE.0"));
        QCOMPARE(a.frame->windowTitle(), a.testo("KORVANTINE", "CAPTION"));
        QVERIFY(!boxVisibile(m));
        QTest::keyClick(m, Qt::Key_F3);
        QCOMPARE(a.statoMenu().FunzioneScelta(), Funzione::MessaPunto);
        QVERIFY(boxVisibile(m) && m->funzione(2)->isChecked());
        QCOMPARE(QApplication::focusWidget(), m->opzione(0)); // the keys go into the box
        QCOMPARE(abilitate(m), QStringLiteral("1111"));
        QCOMPARE(m->opzione(1)->text(), a.testo("MainLambda", "MESSAPUNTO0.1"));
        QTest::keyClick(m, Qt::Key_F5);
        QVERIFY(!m->funzione(2)->isChecked());
        QCOMPARE(abilitate(m), QStringLiteral("111111111111"));

        // Esc hides the box and keeps the function; Shift keys then open nothing.
        QTest::keyClick(m, Qt::Key_Escape);
        QVERIFY(!boxVisibile(m));
        QCOMPARE(a.statoMenu().FunzioneScelta(), Funzione::Utilita);
        QVERIFY(m->funzione(4)->isChecked());
        QTest::keyClick(m, Qt::Key_F9, Qt::ShiftModifier);
        QCOMPARE(a.frame->paginaAttiva(), m);
        QTest::keyClick(m, Qt::Key_F2);
        QVERIFY(boxVisibile(m));
        QTest::keyClick(m, Qt::Key_F12, Qt::ShiftModifier); // live data has no twelfth entry
        QCOMPARE(a.frame->paginaAttiva(), m);
        QTest::keyClick(m, Qt::Key_F5);
        QTest::keyClick(m, Qt::Key_F9, Qt::ShiftModifier);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::Comunicazione);
        QVERIFY(!a.frame->menu());
        QCOMPARE(a.frame->windowTitle(), a.testo("Comunicazione", "CAPTION"));
    }

    void identificationHoldsTheFrameAndTheStripFollows()
    {
        Ambiente a(false);
        auto *area = a.frame->findChild<QWidget *>(QStringLiteral("AreaPagine"));
        auto *hex = a.frame->findChild<QLabel *>(QStringLiteral("Segnalazione"));
        auto *stato = a.frame->findChild<QLabel *>(QStringLiteral("StatoCollegamento"));
        QVERIFY(area && hex && stato);
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.1")));
        a.arriva(datiLive(0));
        QVERIFY(QApplication::overrideCursor());
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        QVERIFY(!area->isEnabled());
        QCOMPARE(hex->text(), QString::fromLatin1(HexFrame(datiLive(0))));
        a.arriva(rispostaVersione());
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.2")));
        for (const QByteArray &r :
             {"r" + parola(900), "r" + parola(60), QByteArray("r\x01"), QByteArray("r\x00", 2)})
            a.arriva(r);
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(area->isEnabled());
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.3")));
        QCOMPARE(hex->text(), QStringLiteral("7200"));
    }

    void escOnTheMenuAsksFirstAndTheCloseBoxIsRefused()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        QSignalSpy uscita(a.frame.get(), &Korvantine::uscita);
        QVERIFY(!a.frame->close());
        aiuto::Risponditore r(1); // No
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_50"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_1"));
        QCOMPARE(r.visti[0].tasti, (QStringList{a.testo("TASTI", "SI"), a.testo("TASTI", "NO")}));
        QCOMPARE(r.visti[0].fuoco, a.testo("TASTI", "NO")); // No is the safe default
        r.rispondi(-1);
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(uscita.count(), 0);
        QVERIFY(a.frame->isVisible());
        r.rispondi(0); // Yes
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(uscita.count(), 1);
        QVERIFY(!a.frame->isVisible());
    }

    void entriesWithoutAPageSaySo()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        aiuto::Risponditore r;
        QVERIFY(!a.frame->paginaRegistrata(IdPagina::ProgSW));
        QTest::keyClick(m, Qt::Key_F1);
        m->opzione(0)->click();
        QCOMPARE(a.frame->paginaAttiva(), m);
        QVERIFY(m->isEnabled());
        // The sequence has no driver yet: its entry leaves the flags alone.
        QTest::keyClick(m, Qt::Key_F4);
        m->opzione(4)->click();
        QCOMPARE(a.frame->paginaAttiva(), m);
        QCOMPARE(r.visti.size(), 2);
        const char *voci[] = {"PROGRAMMAZIONE.0", "TARATURA.4"};
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(r.visti[i].testo,
                     a.testo("MainLambda", voci[i]) + "\n\n" + a.testo("KORVANTINE", "NON_DISPONIBILE"));
            QCOMPARE(r.visti[i].titolo, a.testo("SEGNALAZIONI", "TITOLO_1"));
        }
        // A factory may decline: nothing changes.
        a.frame->registraPagina(IdPagina::MP_Normale, [](Korvantine &) { return nullptr; });
        QVERIFY(!a.frame->apriPagina(IdPagina::MP_Normale));
        QCOMPARE(a.menu(), m);
        // Once its unit registers the page, the entry opens it.
        int vive = 0;
        a.registraContata(IdPagina::ProgSW, vive);
        QTest::keyClick(m, Qt::Key_F1);
        m->opzione(0)->click();
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::ProgSW);
        QCOMPARE(r.visti.size(), 2);
    }

    void aPageReplacesTheMenuAndGivesItBackAsLeft()
    {
        Ambiente a;
        int vive = 0;
        a.registraContata(IdPagina::MP_Minimo, vive);
        a.statoMenu().impostaAssistenza(true);
        QPointer<MainLambda> vecchio(a.menu());
        QTest::keyClick(vecchio, Qt::Key_F3);
        QTest::keyClick(vecchio, Qt::Key_F1, Qt::ShiftModifier);
        QCOMPARE(vive, 1);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::MP_Minimo);
        QWidget *pagina = a.frame->paginaAttiva();
        QVERIFY(pagina->isVisible());
        QCOMPARE(a.frame->windowTitle(), QStringLiteral("Test page"));
        pagina->setWindowTitle(QStringLiteral("Renamed"));
        QCOMPARE(a.frame->windowTitle(), QStringLiteral("Renamed"));
        QTRY_VERIFY(!vecchio);

        a.frame->ChiudiPagina(pagina);
        QVERIFY(!pagina->isVisible());
        MainLambda *nuovo = a.menu();
        QVERIFY(nuovo);
        QCOMPARE(a.statoMenu().FunzioneScelta(), Funzione::MessaPunto);
        QVERIFY(boxVisibile(nuovo));
        // The keys are back on the entry that opened the page; an entry that merely comes up
        // under the pointer does not take them, one the mouse moves over does.
        QCOMPARE(QApplication::focusWidget(), nuovo->opzione(0));
        QEnterEvent sotto(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
        QApplication::sendEvent(nuovo->opzione(3), &sotto);
        QCOMPARE(QApplication::focusWidget(), nuovo->opzione(0));
        QTest::mouseMove(nuovo->opzione(2));
        QCOMPARE(QApplication::focusWidget(), nuovo->opzione(2));
        QCOMPARE(a.frame->windowTitle(), a.testo("KORVANTINE", "CAPTION"));
        QTRY_COMPARE(vive, 0);
        a.frame->ChiudiPagina(nuovo); // closing the menu does nothing
        QCOMPARE(a.menu(), nuovo);
    }

    void theWatchdogTakesTuningAndCalibrationPagesOnly()
    {
        Ambiente a;
        int vive = 0;
        for (IdPagina id : {IdPagina::MP_Lavoro, IdPagina::Strumenti, IdPagina::T_Giri_Single})
            a.registraContata(id, vive);
        a.arriva(datiLive(0));
        QVERIFY(a.frame->apriPagina(IdPagina::Strumenti));
        QVERIFY(a.dati->scatta());
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::Strumenti);
        QCOMPARE(a.ecu().EcuDaIdentificare, true);

        // A tuning page goes, without a word.
        a.identifica();
        a.arriva(datiLive(0));
        aiuto::Risponditore r;
        QVERIFY(a.frame->apriPagina(IdPagina::MP_Lavoro));
        QVERIFY(a.dati->scatta());
        QVERIFY(a.menu());
        QVERIFY(r.visti.isEmpty());
        QTRY_COMPARE(vive, 0);

        // A calibration page goes, and the sequence with it.
        a.identifica();
        a.arriva(datiLive(234));
        TaraturaFinta taratura;
        a.frame->impostaTaratura(&taratura);
        QVERIFY(a.frame->apriPagina(IdPagina::T_Giri_Single));
        taratura.inCorsa = true;
        QVERIFY(a.dati->scatta());
        QVERIFY(a.menu());
        QCOMPARE(taratura.chiamate, QStringList{"end"});
        QTRY_COMPARE(vive, 0);
        a.frame->impostaTaratura(nullptr);
    }

    void theSequenceStartsFromTheMenuAndGoesOnFromItsPages()
    {
        Ambiente a;
        TaraturaFinta taratura;
        a.frame->impostaTaratura(&taratura);
        QTest::keyClick(a.menu(), Qt::Key_F4);
        QTest::keyClick(a.menu(), Qt::Key_F5, Qt::ShiftModifier);
        QCOMPARE(taratura.chiamate, QStringList{"sequence"});
        // The next step, with the menu only if none opens.
        int vive = 0;
        a.registraContata(IdPagina::T_Giri, vive);
        QWidget *giri = a.frame->apriPagina(IdPagina::T_Giri);
        a.frame->ChiudiPagina(giri, -1);
        QCOMPARE(taratura.chiamate, (QStringList{"sequence", "on"}));
        QVERIFY(a.menu());
        a.frame->impostaTaratura(nullptr);
    }

    // Keys travel as the window system sends them: to the window with the focus, and in it
    // to the widget with the focus. No click first.
    void keysDriveTheMenuWithoutAClick()
    {
        Ambiente a(false);
        int vive = 0;
        a.registraContata(IdPagina::MP_Minimo, vive);
        const auto premi = [](Qt::Key tasto, Qt::KeyboardModifiers m = Qt::NoModifier) {
            QWindow *w = QGuiApplication::focusWindow();
            QVERIFY(w);
            QTest::keyClick(w, tasto, m);
        };
        const auto scrivi = [&](const char *parola) {
            for (const char *c = parola; *c; ++c)
                QTest::keyClick(QGuiApplication::focusWindow(), *c);
        };
        // The ECU turns up once the frame is on screen: identification holds the frame.
        a.identifica();
        premi(Qt::Key_F5);
        QVERIFY(boxVisibile(a.menu()));
        QCOMPARE(a.statoMenu().FunzioneScelta(), Funzione::Utilita);

        // A wrong word, its message, and back on the menu.
        aiuto::Risponditore r;
        premi(Qt::Key_F11, Qt::ShiftModifier);
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Password);
        QTRY_VERIFY(QGuiApplication::focusWindow() == a.frame->paginaSopra()->windowHandle());
        scrivi("peat");
        premi(Qt::Key_Return); // on to the OK key
        premi(Qt::Key_Return);
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_22"));
        QVERIFY(!a.frame->paginaSopra());
        QTRY_VERIFY(QGuiApplication::focusWindow() == a.frame->windowHandle());
        premi(Qt::Key_F1, Qt::ShiftModifier);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::VisInf);
        premi(Qt::Key_Escape);
        QVERIFY(a.menu());

        // The fitter's way to the idle page, keys only.
        premi(Qt::Key_F5);
        premi(Qt::Key_F11, Qt::ShiftModifier);
        QTRY_VERIFY(QGuiApplication::focusWindow() == a.frame->paginaSopra()->windowHandle());
        scrivi("torba");
        premi(Qt::Key_Return);
        premi(Qt::Key_Return);
        QCOMPARE(a.statoMenu().ModoAssistenza(), true);
        QTRY_VERIFY(QGuiApplication::focusWindow() == a.frame->windowHandle());
        premi(Qt::Key_F3);
        premi(Qt::Key_F1, Qt::ShiftModifier);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::MP_Minimo);
        QCOMPARE(r.visti.size(), 1);
    }

    void theStripSaysWhatIsWrongWithTheLine()
    {
        Ambiente a(false);
        a.programma->dispositivoForzato = QStringLiteral("/dev/ttyUSB1");
        QVERIFY(a.programma->ApriPorta());
        auto *stato = a.frame->findChild<QLabel *>(QStringLiteral("StatoCollegamento"));
        const QString attesa = a.testo("KORVANTINE", "COLLEGAMENTO.1");
        QVERIFY(stato->text().startsWith(attesa));

        // Five seconds of nothing like an ECU: said in words that name port and speed.
        QVERIFY(a.silenzio->scatta());
        QString muta = a.testo("KORVANTINE", "COLLEGAMENTO.6");
        muta.replace("XXX", "/dev/ttyUSB1").replace("YYY", QString::number(a.programma->seriale.VelocitaCom));
        QCOMPARE(stato->text(), muta);
        QVERIFY(muta.contains("/dev/ttyUSB1") && !muta.contains("XXX"));
        a.arriva("g\x01");
        QVERIFY(stato->text() != muta);

        // Pulled out, then back at the next try.
        a.porta->perdi();
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.5")));
        QVERIFY(stato->text().contains("/dev/ttyUSB1"));
        QVERIFY(a.riapertura->scatta());
        QCOMPARE(a.porta->ultime.dispositivo, QStringLiteral("/dev/ttyUSB1"));
        QVERIFY2(stato->text().startsWith(attesa), qPrintable(stato->text())); // the ECU is unknown again
    }

    void aMessageBeforeTheFrameWaitsForIt()
    {
        Ambiente a(false, false);
        aiuto::Risponditore r;
        emit a.programma->portaNonAperta({}, {});
        QTest::qWait(20);
        QVERIFY(r.visti.isEmpty());
        a.avviaFrame();
        QTRY_COMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_3"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_2"));
        emit a.programma->portaNonAperta({}, {});
        QCOMPARE(r.visti.size(), 2); // once the frame is up, at once
    }
};

QTEST_MAIN(TstMainLambda)
#include "tst_mainlambda.moc"
