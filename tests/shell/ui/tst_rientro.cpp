// A modal box runs its own event loop while the serial stream goes on. These cases check that
// a page closed under its own box outlives the handler that opened it, that frames arriving
// meanwhile are handled once and in order, and that no handler runs twice into a page.
#include "AiutoUi.h"

#include "link/DatiLive.h"
#include "monitoring/Canali.h"
#include "shell/ui/Comunicazione.h"

using aiuto::Ambiente;
using aiuto::datiLive;

namespace {

class PortaContata : public PortaFinta
{
public:
    bool apri(const ImpostazioniPorta &impostazioni) override
    {
        ++aperture;
        return riesce && PortaFinta::apri(impostazioni);
    }
    int aperture = 0;
    bool riesce = true;
};

struct Esito
{
    bool tornato = false;
    bool viva = false;
    bool aperta = true;
    int risposta = -1;
};

// A tuning page whose handler asks a question and then goes on with the answer.
class PaginaConDomanda : public QWidget
{
public:
    PaginaConDomanda(Korvantine &frame, Esito &esito)
        : m_frame(frame)
        , m_esito(esito)
    {
    }

    void chiedi()
    {
        Esito &esito = m_esito;
        QPointer<PaginaConDomanda> io(this);
        esito.risposta = m_frame.MostraMsg(QStringLiteral("Store the changes?"), 36, QStringLiteral("t"));
        esito.tornato = true;
        esito.viva = !io.isNull();
        if (!esito.viva)
            return;
        esito.aperta = m_frame.paginaAperta(this);
        if (esito.aperta)
            m_frame.ChiudiPagina(this);
    }

private:
    Korvantine &m_frame;
    Esito &m_esito;
};

// Notes the status byte of each live frame; on the status it is told, it asks a question from
// inside the frame handler.
class Ascoltatore : public AscoltatoreDati
{
public:
    Ascoltatore(Korvantine &frame, int statoDomanda)
        : m_frame(frame)
        , m_statoDomanda(statoDomanda)
    {
    }
    void frameNormale(const RecordDati &r) override { nota(r); }
    void frameStato(const RecordDati &r) override { nota(r); }

    QList<int> stati;

private:
    void nota(const RecordDati &r)
    {
        const int stato = static_cast<int>(r.Valore[1]);
        stati << stato;
        if (stato == m_statoDomanda)
            m_frame.MostraMsg(QStringLiteral("Calibration finished"), 64, QStringLiteral("t"));
    }

    Korvantine &m_frame;
    int m_statoDomanda;
};

} // namespace

class TstRientro : public QObject
{
    Q_OBJECT

private slots:
    void laPaginaChiusaSottoIlSuoBoxSopravviveAlGestore()
    {
        Ambiente a;
        a.identifica();
        a.arriva(datiLive(0));
        Esito esito;
        a.frame->registraPagina(IdPagina::MP_Minimo,
                                [&](Korvantine &f) { return new PaginaConDomanda(f, esito); });
        QPointer<PaginaConDomanda> pagina =
            static_cast<PaginaConDomanda *>(a.frame->apriPagina(IdPagina::MP_Minimo));
        QVERIFY(pagina);

        // The ECU goes silent while the question is on screen; the answer would be Yes.
        aiuto::Risponditore r(0);
        bool chiusaMaViva = false;
        r.durante = [&](MsgBox1 *) {
            QVERIFY(a.dati->scatta());
            // Long enough for the frame's clean-up to come round while the box still runs.
            QTest::qWait(120);
            chiusaMaViva = pagina && !pagina->isVisible() && a.menu();
        };
        pagina->chiedi();
        QVERIFY(chiusaMaViva);
        QVERIFY(esito.tornato);
        QVERIFY(esito.viva);
        QVERIFY(!esito.aperta);
        // The page went with its box: as if closed without a button.
        QCOMPARE(esito.risposta, 99);
        QVERIFY(a.menu());
        QTRY_VERIFY(!pagina);
    }

    void unaPaginaChiusaDuranteUnAvvisoAspettaLaFineDelBox()
    {
        Ambiente a;
        a.identifica();
        a.arriva(datiLive(0));
        int vive = 0;
        struct Contata : QWidget
        {
            int &n;
            explicit Contata(int &c) : n(c) { ++n; }
            ~Contata() override { --n; }
        };
        a.frame->registraPagina(IdPagina::MP_CutOff, [&](Korvantine &) { return new Contata(vive); });
        QVERIFY(a.frame->apriPagina(IdPagina::MP_CutOff));
        aiuto::Risponditore r(0);
        int viveNelBox = -1;
        r.durante = [&](MsgBox1 *) {
            QVERIFY(a.dati->scatta());
            QTest::qWait(120);
            viveNelBox = vive;
        };
        // A message of the frame's own, not of the page.
        a.frame->avvisa(QStringLiteral("Port lost"), QStringLiteral("t"), 16);
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(viveNelBox, 1);
        QVERIFY(a.menu());
        QTRY_COMPARE(vive, 0);
    }

    void iFrameArrivatiDuranteIlBoxDiUnGestoreVengonoDopoInOrdine()
    {
        Ambiente a;
        a.identifica();
        Ascoltatore ascolto(*a.frame, 29);
        a.programma->datiLive.aggiungiAscoltatore(&ascolto);
        aiuto::Risponditore r(0);
        QList<int> nelBox;
        r.durante = [&](MsgBox1 *) {
            a.arriva(datiLive(1));
            a.arriva(datiLive(0));
            a.arriva(datiLive(2));
            nelBox = ascolto.stati;
        };
        a.arriva(datiLive(29));
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(nelBox, QList<int>{29});
        QCOMPARE(ascolto.stati, (QList<int>{29, 1, 0, 2}));
        QCOMPARE(a.stato().EcuInMarcia, qint16(0));
        a.programma->datiLive.rimuoviAscoltatore(&ascolto);
    }

    void iFrameDuranteUnBoxDellUtenteSonoGestitiUnaVolta()
    {
        Ambiente a;
        a.identifica();
        Ascoltatore ascolto(*a.frame, -1);
        a.programma->datiLive.aggiungiAscoltatore(&ascolto);
        MainLambda *m = a.menu();
        aiuto::Risponditore r(1); // No to the way out
        bool grigiaNelBox = false;
        r.durante = [&](MsgBox1 *) {
            a.arriva(datiLive(5));
            grigiaNelBox = !m->funzione(2)->isEnabled();
            a.arriva(datiLive(0));
        };
        QTest::keyClick(m, Qt::Key_Escape);
        QCOMPARE(r.visti.size(), 1);
        QVERIFY(grigiaNelBox);
        QCOMPARE(ascolto.stati, (QList<int>{5, 0}));
        QVERIFY(m->funzione(2)->isEnabled());
        QCOMPARE(a.menu(), m);
        QTest::qWait(20);
        QCOMPARE(ascolto.stati, (QList<int>{5, 0}));
        a.programma->datiLive.rimuoviAscoltatore(&ascolto);
    }

    void unSecondoClicDuranteIlCaricamentoNonApreUnaSecondaPagina()
    {
        Ambiente a;
        a.identifica();
        int fatte = 0;
        a.frame->registraPagina(IdPagina::MP_Lavoro, [&](Korvantine &f) -> QWidget * {
            ++fatte;
            // A page whose load asks something first.
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

    void unSalvataggioNonRientraNelSuoBox()
    {
        auto porta = std::make_unique<PortaContata>();
        porta->riesce = false;
        PortaContata *p = porta.get();
        Ambiente a(std::move(porta));
        a.frame->registraPagina(IdPagina::Comunicazione,
                                [](Korvantine &f) { return new Comunicazione(f, {}); });
        auto *pagina = qobject_cast<Comunicazione *>(a.frame->apriPagina(IdPagina::Comunicazione));
        QVERIFY(pagina);
        aiuto::Risponditore r(0);
        // F2 again while the port's failure is on screen.
        r.durante = [&](MsgBox1 *) { pagina->Salva(); };
        pagina->Salva();
        QCOMPARE(p->aperture, 1);
        QCOMPARE(r.visti.size(), 1);
        QVERIFY(a.menu());
    }

    void ilMenuSottoUnBoxRestaSpento()
    {
        Ambiente a;
        a.identifica();
        a.arriva(datiLive(0));
        QVERIFY(a.frame->apriPagina(IdPagina::Password));
        MainLambda *m = a.menu();
        QVERIFY(!m->isEnabled());
        // The watchdog refreshes the menu; the access box still holds it.
        QVERIFY(a.dati->scatta());
        QVERIFY(!m->isEnabled());
        a.arriva(datiLive(5));
        QVERIFY(!m->isEnabled());
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Password);
    }
};

QTEST_MAIN(TstRientro)
#include "tst_rientro.moc"
