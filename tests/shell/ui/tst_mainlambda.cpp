// The main frame and its menu, driven by frames from a scripted ECU: what the menu offers in
// each state of the ECU, the keys, the way out, the page registry and the message strip.
#include "AiutoUi.h"

#include "shell/Menu.h"

#include <QSignalSpy>

using aiuto::Ambiente;
using aiuto::datiLive;

namespace {

QString abilitate(MainLambda *m)
{
    QString s;
    for (int i = 0; i < Menu::NumeroOpzioni; ++i) {
        if (!m->opzione(i)->isHidden())
            s += m->opzione(i)->isEnabled() ? u'1' : u'0';
    }
    return s;
}

QString funzioni(MainLambda *m)
{
    QString s;
    for (int i = 0; i < Menu::NumeroFunzioni; ++i)
        s += m->funzione(i)->isEnabled() ? u'1' : u'0';
    return s;
}

bool boxVisibile(MainLambda *m)
{
    auto *box = m->findChild<QWidget *>(QStringLiteral("BoxMenu"));
    return box && !box->isHidden() && box->isEnabled();
}

// A page for the tests: it counts its lives.
class PaginaProva : public QWidget
{
public:
    explicit PaginaProva(int *vive)
        : m_vive(vive)
    {
        ++*m_vive;
        setWindowTitle(QStringLiteral("Test page"));
    }
    ~PaginaProva() override { --*m_vive; }

private:
    int *m_vive;
};

} // namespace

class TstMainLambda : public QObject
{
    Q_OBJECT

private slots:
    void menuDiUnaEcuNormale()
    {
        Ambiente a;
        a.identifica();
        QCOMPARE(a.stato().EcuDaIdentificare, qint16(0));
        MainLambda *m = a.menu();
        QVERIFY(m);
        QCOMPARE(funzioni(m), QStringLiteral("11111"));
        QCOMPARE(m->funzione(0)->text(), a.testo("MainLambda", "FUNZIONE.0"));
        QCOMPARE(a.frame->windowTitle(), a.testo("KORVANTINE", "CAPTION"));
        QVERIFY(!boxVisibile(m));

        QTest::keyClick(m, Qt::Key_F3);
        QCOMPARE(a.stato().FunzioneScelta, qint16(2));
        QVERIFY(boxVisibile(m));
        QVERIFY(m->funzione(2)->isChecked());
        QCOMPARE(abilitate(m), QStringLiteral("11"));
        QCOMPARE(m->opzione(1)->text(), a.testo("MainLambda", "MESSAPUNTO0.1"));

        QTest::keyClick(m, Qt::Key_F5);
        QCOMPARE(a.stato().FunzioneScelta, qint16(4));
        QVERIFY(!m->funzione(2)->isChecked());
        QCOMPARE(abilitate(m), QStringLiteral("11111111111"));
    }

    void unFrameGChiudeIlMenuAlProssimoAggiornamento()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F3);
        a.arriva("g\x01");
        QCOMPARE(a.stato().EcuNormale, qint16(0));
        // Nothing changes until the menu is next rebuilt.
        QVERIFY(boxVisibile(m));
        a.frame->AggiornaMenu();
        QVERIFY(!boxVisibile(m));
        QCOMPARE(a.stato().FunzioneScelta, qint16(-1));
        QCOMPARE(funzioni(m), QStringLiteral("10001"));
        QTest::keyClick(m, Qt::Key_F2);
        QCOMPARE(a.stato().FunzioneScelta, qint16(-1));
        QTest::keyClick(m, Qt::Key_F5);
        QCOMPARE(abilitate(m), QStringLiteral("01101100000"));
    }

    void unaEcuInTaraturaSpegneLaMessaAPunto()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F3);
        a.arriva(datiLive(219));
        QCOMPARE(a.stato().EcuInMarcia, qint16(0));
        QCOMPARE(funzioni(m), QStringLiteral("11011"));
        QVERIFY(!boxVisibile(m));
        QCOMPARE(a.stato().FunzioneScelta, qint16(-1));
        QTest::keyClick(m, Qt::Key_F4);
        QCOMPARE(abilitate(m), QStringLiteral("00001"));

        a.arriva(datiLive(0));
        QCOMPARE(funzioni(m), QStringLiteral("11111"));
        // The calibration function stays chosen, now with all its entries.
        QCOMPARE(a.stato().FunzioneScelta, qint16(3));
        QCOMPARE(abilitate(m), QStringLiteral("11111"));
    }

    void senzaTpsLaPompataEGrigia()
    {
        Ambiente a;
        a.identifica(1023, 1023);
        QCOMPARE(a.stato().TpsPresente, qint16(0));
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F3);
        QCOMPARE(abilitate(m), QStringLiteral("10"));
        QVERIFY(!m->opzione(1)->isHidden());
        a.stato().ModoAssistenza = 1;
        m->ScegliFunzione(2);
        QCOMPARE(abilitate(m), QStringLiteral("111101111"));
    }

    void identificazioneAttesaEStriscia()
    {
        Ambiente a;
        auto *area = a.frame->findChild<QWidget *>(QStringLiteral("AreaPagine"));
        auto *hex = a.frame->findChild<QLabel *>(QStringLiteral("Segnalazione"));
        auto *stato = a.frame->findChild<QLabel *>(QStringLiteral("Segnalazione1"));
        QVERIFY(area && hex && stato);
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.1")));

        a.arriva(datiLive(0));
        // Identification holds the link: wait cursor, frame disabled.
        QVERIFY(QApplication::overrideCursor());
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        QVERIFY(!area->isEnabled());
        QCOMPARE(hex->text(), QString::fromLatin1(HexFrame(datiLive(0))));
        a.arriva(aiuto::versione());
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.2")));
        a.arriva("r" + aiuto::parola(900));
        a.arriva("r" + aiuto::parola(60));
        a.arriva(QByteArray("r") + char(1));
        a.arriva(QByteArray("r") + char(0));
        QVERIFY(!QApplication::overrideCursor());
        QVERIFY(area->isEnabled());
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.3")));
        QCOMPARE(hex->text(), QStringLiteral("7200"));

        a.porta->chiudi();
        a.frame->aggiornaStatoCollegamento();
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.0")));
    }

    void tastiConShift()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F5);
        // Without a twelfth entry Shift+F12 does nothing.
        QTest::keyClick(m, Qt::Key_F12, Qt::ShiftModifier);
        QCOMPARE(a.frame->paginaAttiva(), m);
        // Shift+F9: the ninth entry, the port page.
        QTest::keyClick(m, Qt::Key_F9, Qt::ShiftModifier);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::Comunicazione);
        QVERIFY(!a.frame->menu());
        QCOMPARE(a.frame->windowTitle(), a.testo("Comunicazione", "CAPTION"));
    }

    void shiftConIlBoxChiusoNonApreNulla()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F5);
        QTest::keyClick(m, Qt::Key_Escape);
        QVERIFY(!boxVisibile(m));
        QCOMPARE(a.stato().FunzioneScelta, qint16(-1));
        QTest::keyClick(m, Qt::Key_F9, Qt::ShiftModifier);
        QCOMPARE(a.frame->paginaAttiva(), m);
    }

    void escSulMenuChiedePrima()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        QSignalSpy uscita(a.frame.get(), &Korvantine::uscita);
        aiuto::Risponditore r(1); // No
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_50"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_1"));
        QCOMPARE(r.visti[0].tasti, (QStringList{a.testo("TASTI", "SI"), a.testo("TASTI", "NO")}));
        // No is the safe default.
        QCOMPARE(r.visti[0].fuoco, a.testo("TASTI", "NO"));
        QCOMPARE(uscita.count(), 0);
        QVERIFY(a.frame->isVisible());

        r.rispondi(-1);
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(uscita.count(), 0);

        r.rispondi(0); // Yes
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(r.visti.size(), 3);
        QCOMPARE(uscita.count(), 1);
        QVERIFY(!a.frame->isVisible());
    }

    void uscitaEIlBoxDiChiusura()
    {
        Ambiente a;
        QSignalSpy uscita(a.frame.get(), &Korvantine::uscita);
        // The close box is refused...
        QVERIFY(!a.frame->close());
        QVERIFY(a.frame->isVisible());
        QCOMPARE(uscita.count(), 0);
        // ...the exit button is not.
        auto *esci = a.menu()->findChild<QPushButton *>(QStringLiteral("Uscita"));
        QCOMPARE(esci->text(), a.testo("MainLambda", "USCITA"));
        esci->click();
        QCOMPARE(uscita.count(), 1);
        QVERIFY(!a.frame->isVisible());
    }

    void pagineNonCostruiteNonApronoNulla()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QVERIFY(!a.frame->paginaRegistrata(IdPagina::ProgSW));
        QTest::keyClick(m, Qt::Key_F1);
        QVERIFY(m->opzione(0)->isEnabled());
        m->opzione(0)->click();
        QCOMPARE(a.frame->paginaAttiva(), m);
        QVERIFY(m->isEnabled());
        // The sequence has no driver yet: its entry leaves the flags alone.
        QTest::keyClick(m, Qt::Key_F4);
        m->opzione(4)->click();
        QCOMPARE(a.stato().TaraturaInCorso, qint16(-1));
        QCOMPARE(a.frame->paginaAttiva(), m);
    }

    void registroDellePagine()
    {
        Ambiente a;
        a.identifica();
        int vive = 0;
        int fatte = 0;
        a.frame->registraPagina(IdPagina::MP_Minimo, [&](Korvantine &) {
            ++fatte;
            return new PaginaProva(&vive);
        });
        QVERIFY(a.frame->paginaRegistrata(IdPagina::MP_Minimo));
        a.stato().ModoAssistenza = 1;
        MainLambda *m = a.menu();
        QPointer<MainLambda> vecchio(m);
        QTest::keyClick(m, Qt::Key_F3);
        QTest::keyClick(m, Qt::Key_F1, Qt::ShiftModifier);
        QCOMPARE(fatte, 1);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::MP_Minimo);
        QWidget *pagina = a.frame->paginaAttiva();
        QVERIFY(pagina->isVisible());
        QCOMPARE(a.frame->windowTitle(), QStringLiteral("Test page"));
        pagina->setWindowTitle(QStringLiteral("Renamed"));
        QCOMPARE(a.frame->windowTitle(), QStringLiteral("Renamed"));
        QTRY_VERIFY(!vecchio);

        // Back to the menu as the fitter left it.
        a.frame->ChiudiPagina(pagina);
        QVERIFY(!pagina->isVisible());
        MainLambda *nuovo = a.menu();
        QVERIFY(nuovo);
        QCOMPARE(a.stato().FunzioneScelta, qint16(2));
        QVERIFY(boxVisibile(nuovo));
        QCOMPARE(a.frame->windowTitle(), a.testo("KORVANTINE", "CAPTION"));
        QTRY_COMPARE(vive, 0);
        // Closing it again, or the menu, does nothing.
        a.frame->ChiudiPagina(nuovo);
        QCOMPARE(a.menu(), nuovo);

        // A factory may decline: nothing changes.
        a.frame->registraPagina(IdPagina::MP_Normale, [](Korvantine &) { return nullptr; });
        QVERIFY(!a.frame->apriPagina(IdPagina::MP_Normale));
        QCOMPARE(a.menu(), nuovo);
    }

    void ilWatchdogRiportaAlMenu()
    {
        Ambiente a;
        a.identifica();
        int vive = 0;
        a.frame->registraPagina(IdPagina::MP_Lavoro, [&](Korvantine &) { return new PaginaProva(&vive); });
        a.frame->registraPagina(IdPagina::Strumenti, [&](Korvantine &) { return new PaginaProva(&vive); });
        a.arriva(datiLive(0));
        QVERIFY(a.dati->isEnabled());

        // A live-data page stays...
        QVERIFY(a.frame->apriPagina(IdPagina::Strumenti));
        QVERIFY(a.dati->scatta());
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::Strumenti);
        QCOMPARE(a.stato().EcuDaIdentificare, qint16(-1));

        // ...a tuning page goes, without a word.
        a.identifica();
        a.arriva(datiLive(0));
        aiuto::Risponditore r;
        QVERIFY(a.frame->apriPagina(IdPagina::MP_Lavoro));
        QVERIFY(a.dati->scatta());
        QVERIFY(a.menu());
        QVERIFY(r.visti.isEmpty());
        QTRY_COMPARE(vive, 0);
    }

    void ilWatchdogChiudeLaTaratura()
    {
        Ambiente a;
        a.identifica();
        int vive = 0;
        a.frame->registraPagina(IdPagina::T_Giri_Single, [&](Korvantine &) { return new PaginaProva(&vive); });
        a.arriva(datiLive(234));
        QVERIFY(a.frame->apriPagina(IdPagina::T_Giri_Single));
        a.stato().TaraturaInCorso = 2;
        a.stato().PassoTaratura = 1;
        QVERIFY(a.dati->scatta());
        QVERIFY(a.menu());
        QCOMPARE(a.stato().TaraturaInCorso, qint16(-1));
        QCOMPARE(a.stato().PassoTaratura, qint16(-1));
        QCOMPARE(a.stato().TaraturaCompleta, qint16(0));
        QTRY_COMPARE(vive, 0);
    }

    void laSequenzaSiAvviaDalMenu()
    {
        Ambiente a;
        a.identifica();
        QList<int> passi;
        a.frame->impostaAvviaTaratura([&](int passo) { passi << passo; });
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F4);
        QTest::keyClick(m, Qt::Key_F5, Qt::ShiftModifier);
        QCOMPARE(passi, QList<int>{0});
        QCOMPARE(a.stato().TaraturaInCorso, qint16(0));
        QCOMPARE(a.stato().PassoTaratura, qint16(0));

        // A page that hands over to the sequence: the next step, with the menu only if none opens.
        int vive = 0;
        a.frame->registraPagina(IdPagina::T_Giri, [&](Korvantine &) { return new PaginaProva(&vive); });
        QWidget *giri = a.frame->apriPagina(IdPagina::T_Giri);
        a.stato().TaraturaInCorso = 3;
        a.frame->ChiudiPagina(giri, -1);
        QCOMPARE(passi, (QList<int>{0, 3}));
        QVERIFY(a.menu());
    }

    void coloriDelleVoci()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F5);
        VoceOpzione *prima = m->opzione(0);
        VoceOpzione *seconda = m->opzione(1);
        // The mouse over an entry gives it the focus, and the red.
        QTest::mouseMove(seconda);
        QTRY_VERIFY(seconda->hasFocus());
        QCOMPARE(seconda->coloreTesto(), QColor(0xFF, 0, 0));
        QCOMPARE(prima->coloreTesto(), QColor(0xC0, 0xC0, 0xC0));
        prima->setFocus();
        QCOMPARE(prima->coloreTesto(), QColor(0xFF, 0, 0));
        QCOMPARE(seconda->coloreTesto(), QColor(0xC0, 0xC0, 0xC0));
    }

    void unMessaggioPrimaDellaFinestraAspetta()
    {
        Ambiente a({}, false);
        aiuto::Risponditore r;
        emit a.programma->portaNonAperta(a.testo("SEGNALAZIONI", "SEGNALAZIONE_3"),
                                         a.testo("SEGNALAZIONI", "TITOLO_2"));
        QTest::qWait(20);
        QVERIFY(r.visti.isEmpty());
        a.avviaFrame();
        QTRY_COMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_3"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_2"));
        // Once the frame is up, a message shows at once.
        emit a.programma->portaNonAperta(QStringLiteral("again"), QStringLiteral("t"));
        QCOMPARE(r.visti.size(), 2);
    }
};

QTEST_MAIN(TstMainLambda)
#include "tst_mainlambda.moc"
