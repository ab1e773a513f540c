// The calibration's logic without widgets: the handshake of state 121, the status byte
// moving the strip pages, and the ECU leaving calibration by itself. Frames come from a
// scripted port; the main frame is a stand-in that keeps one page and answers boxes.
#include "base/Lingua.h"
#include "calibration/SequenzaTaratura.h"
#include "calibration/TaraturaStriscia.h"
#include "calibration/TelaioTaratura.h"
#include "shell/Programma.h"
#include "support/ProgrammaFinto.h"
#include "variables/Conversioni.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

using namespace kv;

namespace {

// One live frame: status, TPS and lambda raw (0..1023), stepper, probe type.
QByteArray frameDati(quint8 stato, int tps = 100, int lambda = 500, int motorino = 90, int sonda = 0)
{
    QByteArray p("d");
    p += char(stato);
    p += ByteBE(800, 2);
    p += ByteBE(tps, 2);
    p += ByteBE(lambda, 2);
    p += char(motorino);
    p += QByteArray::fromHex("0102000102");
    p += char(sonda);
    return p;
}

struct VistaFinta : VistaStriscia
{
    // The keys of what the page is asked to show.
    void mostraTitolo(const Messaggio &t) override { titolo = t.chiave; }
    void mostraIstruzione(const Messaggio &t) override { istruzione = t.chiave; }
    void mostraSegnalazione1(const Messaggio &t) override { segnalazione1 = t.chiave; }
    void abilitaPagina(bool a) override { abilitata = a; }
    void uscitaEmergenza() override { emergenza = true; }
    void mostraDato(int i, const QString &t) override { dato[static_cast<size_t>(i)] = t; }
    void impostaAsseX(double, double) override {}
    void aggiungiPunto(int traccia, double, double) override { ++punti[static_cast<size_t>(traccia)]; }
    void impostaCursore(int, double, double) override { ++mosseCursore; }
    void mostraCursore(int) override {}
    void selezionaSonda(int i) override { sonda = i; }
    void disattivaSonda(int i) override { inattive.insert(i); }

    QString titolo, istruzione, segnalazione1;
    std::array<QString, 4> dato;
    std::array<int, 2> punti{};
    int mosseCursore = 0;
    int sonda = -1;
    QSet<int> inattive;
    bool abilitata = true;
    bool emergenza = false;
};

// The main frame as far as calibration sees it: the warning page and the strip pages open,
// the others are not in this build.
struct TelaioFinto : TelaioTaratura
{
    bool apriPagina(IdPagina id) override
    {
        if (id != IdPagina::IniTaratura && id != IdPagina::T_TPS && id != IdPagina::T_TPS_Single
            && id != IdPagina::T_Lambda && id != IdPagina::T_Lambda_Single)
            return false;
        chiudi();
        aperta = id;
        aperture.append(id);
        if (id == IdPagina::IniTaratura)
            return true;
        vista = std::make_unique<VistaFinta>();
        pagina = std::make_unique<TaraturaStriscia>(*sequenza, id, *vista);
        pagina->carica();
        return true;
    }
    void chiudiPagina(IdPagina id, bool prosegui) override
    {
        if (aperta != id)
            return;
        chiudi();
        if (prosegui)
            sequenza->prosegui();
    }
    void ChiudiPagineTaratura() override
    {
        chiudi();
        sequenza->terminata();
    }
    IdPagina paginaTaratura() const override { return aperta; }
    void abilitaFrame(bool a) override { frameAbilitato = a; }
    void abilitaMenu(bool a) override { menuAbilitato = a; }
    int MostraMsg(const Messaggio &testo, int) override
    {
        messaggi.append(testo.chiave);
        return risposta;
    }

    void chiudi()
    {
        // A page may close itself from its own handler: it is kept until the test ends.
        if (pagina) {
            pagina->chiusa();
            chiuse.push_back(std::move(pagina));
            vecchieViste.push_back(std::move(vista));
        }
        aperta = IdPagina::Nessuna;
    }

    SequenzaTaratura *sequenza = nullptr;
    IdPagina aperta = IdPagina::Nessuna;
    QList<IdPagina> aperture;
    std::unique_ptr<VistaFinta> vista;
    std::unique_ptr<TaraturaStriscia> pagina;
    std::vector<std::unique_ptr<TaraturaStriscia>> chiuse;
    std::vector<std::unique_ptr<VistaFinta>> vecchieViste;
    QStringList messaggi;
    int risposta = 1;
    bool frameAbilitato = true;
    bool menuAbilitato = true;
};

} // namespace

class TstSequenzaTaratura : public QObject, ProgrammaFinto
{
    Q_OBJECT

    std::unique_ptr<TelaioFinto> telaio;
    std::unique_ptr<SequenzaTaratura> sequenza;

    // One frame, and whatever it leaves for after its handler (the boxes).
    void arriva(const QByteArray &payload)
    {
        porta->arriva(CreaFrame(payload, 0));
        QCoreApplication::processEvents();
    }
    QString testo(const char *sezione, const char *chiave) { return p->lingua.LeggiTesto(sezione, chiave); }
    TaraturaStriscia *pagina() { return telaio->pagina.get(); }

    // The page opened as its way in opens it: in the sequence, or as a single page.
    void apri(IdPagina id)
    {
        const bool singola = id == IdPagina::T_TPS_Single || id == IdPagina::T_Lambda_Single;
        if (singola) {
            QVERIFY(telaio->apriPagina(id));
            QCOMPARE(porta->scritti.constLast(),
                     CreaFrame(QByteArray(1, 'A') + char(pagina()->codiceApertura())));
            QCOMPARE(p->linea.motore().StatoDialogo(), qint16(pagina()->primoStato()));
            arriva("e\xFF");
        } else {
            sequenza->entraInSequenza(id == IdPagina::T_TPS ? FaseTaratura::Tps : FaseTaratura::Lambda);
            sequenza->prosegui();
        }
        QCOMPARE(telaio->aperta, id);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(
            QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
    }

    void init()
    {
        creaProgramma();
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->canali.InizializzaCanali(p->lingua.Cerca());
        p->linea.ecuDiProva().EcuDaIdentificare = false;
        telaio = std::make_unique<TelaioFinto>();
        sequenza = std::make_unique<SequenzaTaratura>(p->linea, p->catalogo, p->canali, *telaio);
        telaio->sequenza = sequenza.get();
    }

    void cleanup()
    {
        telaio->chiudi();
        sequenza.reset();
        telaio.reset();
        p.reset();
    }

    void captionStep()
    {
        const Messaggio m =
            SequenzaTaratura::ComponiPasso({QStringLiteral("IniTaratura"), QStringLiteral("CAPTION")}, 3);
        QCOMPARE(p->lingua.testo(m), QStringLiteral("Calibration - step 3 of 5: before you start"));
    }

    void handshakeOnlyInState121()
    {
        const SequenzaTaratura &s = *sequenza;
        sequenza->avviaSequenza();
        QVERIFY(s.AttesaIniTaratura());
        // The ECU still in normal running is no news while the warning page is up.
        arriva(frameDati(0));
        QVERIFY(telaio->messaggi.isEmpty());
        sequenza->TastoOK();
        QCOMPARE(porta->scritti.constLast(), CreaFrame(QByteArray("A\x02", 2)));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(121));
        QCOMPARE(p->linea.TimeOutReq().interval(), 2000);
        QVERIFY(!telaio->frameAbilitato);

        // No answer: the menu comes back, and the step stays at 1.
        QVERIFY(req->scatta());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(telaio->frameAbilitato && telaio->menuAbilitato);
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::AttesaEcu);
        QVERIFY(s.AttesaIniTaratura()); // cleared by Cancel on the warning page alone
        // A 255 now, outside state 121, changes nothing.
        const qsizetype scritti = porta->scritti.size();
        arriva(frameDati(255));
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::AttesaEcu);
        QVERIFY(!s.TaraturaCompleta());
        QCOMPARE(porta->scritti.size(), scritti);
        QCOMPARE(telaio->aperture, QList<IdPagina>{IdPagina::IniTaratura});

        // Again, answered: the first step's page (absent here) is asked for.
        sequenza->TastoOK();
        arriva(frameDati(0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(121));
        arriva(frameDati(255));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(!req->isEnabled());
        QVERIFY(telaio->frameAbilitato);
        QCOMPARE(telaio->messaggi.size(), 1); // T_Giri is not in this build
        QCOMPARE(s.TaraturaInCorso(), FaseTaratura::Nessuna);
        QVERIFY(s.AttesaIniTaratura());

        // The 'A' 2 of a calibration left ends only itself.
        sequenza->inviaUscita();
        arriva(frameDati(255));
        QVERIFY(!s.TaraturaCompleta());
        QCOMPARE(telaio->messaggi.size(), 1);
    }

    void statusMovesTheStrip_data()
    {
        QTest::addColumn<IdPagina>("id");
        QTest::addColumn<QList<int>>("stati");
        QTest::addColumn<QList<int>>("tps"); // raw, one a frame
        QTest::addColumn<bool>("aperta");
        QTest::addColumn<QString>("istruzione");
        QTest::addColumn<int>("mosse");       // of the cursors
        QTest::addColumn<QString>("massimo"); // DatiTarTPS(3)
        const QString msg0 = "MSG_TPS.0", msg1 = "MSG_TPS.1";
        QTest::newRow("tps: in order") << IdPagina::T_TPS << QList<int>{223, 221, 221, 220, 219, 219}
                                       << QList<int>{60, 61, 70, 500, 900, 1000} << true << msg1 << 3
                                       << QString::number(std::lround(Scala1023(1000)));
        QTest::newRow("tps: the maximum only rises")
            << IdPagina::T_TPS << QList<int>{219, 219, 219} << QList<int>{900, 800, 900} << true << QString()
            << 1 << QString::number(std::lround(Scala1023(900)));
        QTest::newRow("tps single: 221 and 220 on every frame")
            << IdPagina::T_TPS_Single << QList<int>{222, 221, 221, 220, 220} << QList<int>{60, 60, 60, 60, 60}
            << true << msg1 << 2 << QString();
        QTest::newRow("tps single: both ends learnt, then 218")
            << IdPagina::T_TPS_Single << QList<int>{221, 220, 219, 218} << QList<int>{60, 60, 900, 60} << true
            << "MSG_TPS.2" << 2 << QString::number(std::lround(Scala1023(900)));
        QTest::newRow("tps: both ends learnt")
            << IdPagina::T_TPS << QList<int>{219, 207} << QList<int>{900, 60} << true << "MSG_TPS.2" << 1
            << QString::number(std::lround(Scala1023(900)));
        QTest::newRow("tps single: 218 does nothing")
            << IdPagina::T_TPS_Single << QList<int>{218, 218} << QList<int>{60, 60} << true << QString() << 0
            << QString();
        QTest::newRow("tps single: out of range ignored")
            << IdPagina::T_TPS_Single << QList<int>{207, 224, 223} << QList<int>{60, 60, 60} << true << msg0
            << 0 << QString();
        QTest::newRow("tps: 222 in range, nothing")
            << IdPagina::T_TPS << QList<int>{222} << QList<int>{60} << true << QString() << 0 << QString();
        QTest::newRow("tps: 205 closes") << IdPagina::T_TPS << QList<int>{223, 205} << QList<int>{60, 60}
                                         << false << msg0 << 0 << QString();
        QTest::newRow("lambda: 205, 207 nothing")
            << IdPagina::T_Lambda << QList<int>{206, 205, 207} << QList<int>{0, 0, 0} << true
            << "MSG_LAMBDA.0" << 0 << QString();
        QTest::newRow("lambda: 203 closes")
            << IdPagina::T_Lambda << QList<int>{203} << QList<int>{0} << false << QString() << 0 << QString();
        QTest::newRow("lambda: 29 closes")
            << IdPagina::T_Lambda << QList<int>{29} << QList<int>{0} << false << QString() << 0 << QString();
    }

    void statusMovesTheStrip()
    {
        QFETCH(IdPagina, id);
        QFETCH(QList<int>, stati);
        QFETCH(QList<int>, tps);
        QFETCH(bool, aperta);
        QFETCH(QString, istruzione);
        QFETCH(int, mosse);
        QFETCH(QString, massimo);
        apri(id);
        VistaFinta &v = *telaio->vista;
        for (int i = 0; i < stati.size(); ++i)
            arriva(frameDati(quint8(stati[i]), tps[i]));
        QCOMPARE(telaio->aperta != IdPagina::Nessuna, aperta);
        const QString sezione = QString::fromLatin1(id == IdPagina::T_TPS          ? "T_TPS"
                                                    : id == IdPagina::T_TPS_Single ? "T_TPS_Single"
                                                                                   : "T_Lambda");
        QCOMPARE(v.istruzione, istruzione);
        QCOMPARE(v.mosseCursore, mosse);
        QCOMPARE(v.dato[3], massimo);
        QCOMPARE(v.punti[0], int(stati.size()));
        QVERIFY(telaio->messaggi.isEmpty());
    }

    void stripJumpsByFortyOnceFull()
    {
        apri(IdPagina::T_TPS_Single);
        // The first frame is sample 0: the window 0..200 holds 201 of them.
        for (int i = 0; i <= int(TaraturaStriscia::LarghezzaFinestra); ++i)
            arriva(frameDati(218));
        QCOMPARE(pagina()->minimoX(), 0.0);
        arriva(frameDati(218));
        QCOMPARE(pagina()->minimoX(), 40.0);
        QCOMPARE(pagina()->massimoX(), 240.0);
    }

    void probeOptionsGoInactiveForGood()
    {
        apri(IdPagina::T_Lambda_Single);
        VistaFinta &v = *telaio->vista;
        arriva(frameDati(206, 0, 500, 90, 0));
        QCOMPARE(v.sonda, 0);
        arriva(frameDati(206, 0, 500, 90, 1));
        QCOMPARE(v.sonda, 1);
        QCOMPARE(v.inattive, (QSet<int>{0, 1}));
        QCOMPARE(v.punti, (std::array<int, 2>{2, 2}));
        QCOMPARE(v.dato[1], QStringLiteral("500")); // a probe of type 1 is read raw
    }

    void singleLambdaAsksAtItsEndUntilOk()
    {
        apri(IdPagina::T_Lambda_Single);
        telaio->risposta = 99;
        arriva(frameDati(204));
        arriva(frameDati(29));
        QCOMPARE(telaio->messaggi, QStringList(2, "SEGNALAZIONE_58"));
        QCOMPARE(telaio->aperta, IdPagina::T_Lambda_Single);
        telaio->risposta = 1;
        arriva(frameDati(29));
        QCOMPARE(telaio->aperta, IdPagina::Nessuna);
        QCOMPARE(sequenza->TaraturaInCorso(), FaseTaratura::Nessuna);
    }

    void ecuBackInNormalRunning_data()
    {
        QTest::addColumn<FaseTaratura>("fase");
        QTest::addColumn<bool>("libero");
        QTest::addColumn<QString>("chiave"); // empty: no word, the page stays
        QTest::newRow("single page") << FaseTaratura::Tps << true << "SEGNALAZIONE_60";
        QTest::newRow("other step") << FaseTaratura::AttesaEcu << true << "SEGNALAZIONE_56";
        QTest::newRow("exchange under way") << FaseTaratura::Tps << false << QString();
    }

    void ecuBackInNormalRunning()
    {
        QFETCH(FaseTaratura, fase);
        QFETCH(bool, libero);
        QFETCH(QString, chiave);
        QVERIFY(telaio->apriPagina(IdPagina::T_TPS_Single));
        if (libero)
            arriva("e\xFF");
        sequenza->entraInFase(fase);
        arriva(frameDati(0));
        QCOMPARE(telaio->messaggi, chiave.isEmpty() ? QStringList() : QStringList{chiave});
        QCOMPARE(telaio->aperta == IdPagina::Nessuna, !chiave.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TstSequenzaTaratura)
#include "tst_sequenzataratura.moc"
