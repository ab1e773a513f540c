// A modal box runs its own event loop while the serial stream goes on. These cases check that
// a page closed under its own box outlives the handler that opened it, that frames arriving
// meanwhile are handled once and in order, and that no handler runs twice into a page.
#include "AiutoUi.h"

#include "link/DatiLive.h"
#include "monitoring/Canali.h"
#include "shell/ui/Comunicazione.h"

using namespace kv;

using aiuto::Ambiente;

namespace {

// Notes the status byte of each live frame; on the status it is told, it asks a question from
// inside the frame handler.
class Ascoltatore : public AscoltatoreDati
{
public:
    Ascoltatore(Ambiente &a, int statoDomanda) : m_a(a), m_statoDomanda(statoDomanda)
    {
        m_a.programma->linea.datiLive().aggiungiAscoltatore(this);
    }
    ~Ascoltatore() override { m_a.programma->linea.datiLive().rimuoviAscoltatore(this); }
    void frameNormale(const RecordDati &r) override { nota(r); }
    void frameStato(const RecordDati &r) override { nota(r); }

    QList<int> stati;

private:
    void nota(const RecordDati &r)
    {
        stati << static_cast<int>(r.Valore[Canale::FlagPa]);
        if (stati.last() == m_statoDomanda)
            m_a.frame->MostraMsg(QStringLiteral("Calibration finished"), 64, QStringLiteral("t"));
    }

    Ambiente &m_a;
    int m_statoDomanda;
};

} // namespace

class TstRientro : public QObject
{
    Q_OBJECT

private slots:
    void aPageClosedUnderABoxOutlivesTheHandlerThatOpenedIt_data()
    {
        QTest::addColumn<bool>("dellaPagina");
        QTest::newRow("the page's own question") << true;
        QTest::newRow("a message of the frame's own") << false;
    }

    void aPageClosedUnderABoxOutlivesTheHandlerThatOpenedIt()
    {
        QFETCH(bool, dellaPagina);
        Ambiente a;
        a.arriva(datiLive(0));
        int vive = 0;
        a.registraContata(IdPagina::MP_Minimo, vive);
        QPointer<QWidget> pagina = a.frame->apriPagina(IdPagina::MP_Minimo);
        QVERIFY(pagina);
        // The ECU goes silent while the box is on screen; the answer would be the first button.
        aiuto::Risponditore r(0);
        bool chiusaMaViva = false;
        r.durante = [&](MsgBox1 *) {
            QVERIFY(a.dati->scatta());
            // Long enough for the frame's clean-up to come round while the box still runs.
            QTest::qWait(120);
            chiusaMaViva = vive == 1 && pagina && !pagina->isVisible() && a.menu();
        };
        // A page's own box goes with the page: as if closed without a button.
        if (dellaPagina)
            QCOMPARE(a.frame->MostraMsg(QStringLiteral("Store the changes?"), 36, QStringLiteral("t")), 99);
        else
            a.frame->avvisa(QStringLiteral("Port lost"), QStringLiteral("t"), 16);
        QCOMPARE(r.visti.size(), 1);
        QVERIFY(chiusaMaViva);
        QVERIFY(pagina && !a.frame->paginaAperta(pagina));
        QTRY_COMPARE(vive, 0);
    }

    void framesDuringAHandlersBoxComeAfterItInOrder()
    {
        Ambiente a;
        Ascoltatore ascolto(a, 29);
        aiuto::Risponditore r(0);
        QList<int> nelBox;
        r.durante = [&](MsgBox1 *) {
            for (int s : {1, 0, 2})
                a.arriva(datiLive(quint8(s)));
            nelBox = ascolto.stati;
        };
        a.arriva(datiLive(29));
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(nelBox, QList<int>{29});
        QCOMPARE(ascolto.stati, (QList<int>{29, 1, 0, 2}));
        QCOMPARE(a.ecu().EcuInMarcia, false);
    }

    void framesDuringAUsersBoxAreHandledOnceAtOnce()
    {
        Ambiente a;
        Ascoltatore ascolto(a, -1);
        MainLambda *m = a.menu();
        aiuto::Risponditore r(1); // No to the way out
        bool grigiaNelBox = false;
        r.durante = [&](MsgBox1 *) {
            a.arriva(datiLive(5));
            grigiaNelBox = !m->funzione(2)->isEnabled();
            a.arriva(datiLive(0));
        };
        QTest::keyClick(m, Qt::Key_Escape);
        QVERIFY(grigiaNelBox);
        QVERIFY(m->funzione(2)->isEnabled());
        QTest::qWait(20);
        QCOMPARE(ascolto.stati, (QList<int>{5, 0}));
        QCOMPARE(a.menu(), m);
    }

    void aSecondClickWhileAPageLoadsOpensNoSecondPage()
    {
        Ambiente a;
        int fatte = 0;
        a.frame->registraPagina(IdPagina::MP_Lavoro, [&](Korvantine &f) -> QWidget * {
            ++fatte;
            f.MostraMsg(QStringLiteral("Read the values from the ECU?"), 4, QStringLiteral("t"));
            return new QWidget;
        });
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F3);
        aiuto::Risponditore r(0);
        r.durante = [&](MsgBox1 *) { m->opzione(0)->click(); };
        m->opzione(0)->click();
        QCOMPARE(fatte, 1);
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::MP_Lavoro);
    }

    void aSaveDoesNotRunAgainUnderItsOwnBox()
    {
        Ambiente a(false);
        a.porta->riesce = false;
        a.frame->registraPagina(IdPagina::Comunicazione,
                                [](Korvantine &f) { return NuovaComunicazione(f, {}); });
        auto *pagina = qobject_cast<Comunicazione *>(a.frame->apriPagina(IdPagina::Comunicazione));
        QVERIFY(pagina);
        aiuto::Risponditore r(0);
        r.durante = [&](MsgBox1 *) { pagina->Salva(); }; // F2 again while the failure shows
        pagina->Salva();
        QCOMPARE(a.porta->aperture, 1);
        QCOMPARE(r.visti.size(), 1);
        QVERIFY(a.menu());
    }

    void theMenuUnderABoxStaysOff()
    {
        Ambiente a;
        a.arriva(datiLive(0));
        QVERIFY(a.frame->apriPagina(IdPagina::Password));
        MainLambda *m = a.menu();
        QVERIFY(!m->isEnabled());
        // The watchdog and a status change refresh the menu; the access box still holds it.
        QVERIFY(a.dati->scatta());
        a.arriva(datiLive(5));
        QVERIFY(!m->isEnabled());
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Password);
    }
};

QTEST_MAIN(TstRientro)
#include "tst_rientro.moc"
