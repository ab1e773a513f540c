#include "support/ProgrammaFinto.h"

#include <QSignalSpy>
#include <QTest>

using namespace kv;

namespace {

// The calibration as the stream calls it: each call with its status, the speed of the record
// it was handed and EcuInMarcia as it stood then.
class TaraturaSpia : public GestoreTaratura
{
public:
    explicit TaraturaSpia(const StatoEcu &s) : m_s(s) {}
    bool sequenzaInCorso() const override { return sequenza; }
    void marciaNormale(const RecordDati &r) override
    {
        chiamate << QStringLiteral("normal %1 rpm %2 running %3")
                        .arg(r.Valore[1])
                        .arg(r.Valore[2])
                        .arg(m_s.EcuInMarcia);
    }
    void statoTaratura(int stato, bool inSequenza, const RecordDati &r) override
    {
        chiamate << QStringLiteral("%1 %2 rpm %3 running %4")
                        .arg(inSequenza ? "sequence" : "single")
                        .arg(stato)
                        .arg(r.Valore[2])
                        .arg(m_s.EcuInMarcia);
    }
    QStringList chiamate;
    bool sequenza = false;

private:
    const StatoEcu &m_s;
};

} // namespace

class TstIdentificazione : public QObject, ProgrammaFinto
{
    Q_OBJECT

private slots:
    void init() { creaProgramma(); }

    void firstLiveFrameAsksForVersionAndTheFourCells()
    {
        QSignalSpy frame(&p->linea.identificazione(), &Identificazione::frameAbilitato);
        arriva(datiLive(0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(111));
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame("V")});
        QCOMPARE(req->interval(), 5000);
        QVERIFY(!dati->isEnabled()); // no watchdog during identification
        QCOMPARE(frame.size(), 1);
        QCOMPARE(frame.at(0).at(0).toBool(), false);

        arriva(rispostaVersione());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(112));
        QCOMPARE(porta->scritti.last(), CreaFrame(QByteArray("R\xC1\x12\x02", 4)));
        const StatoEcu &s = p->linea.ecu();
        QCOMPARE(QStringList({s.InfVeicolo, s.InfData, s.InfCodice, s.InfDatoA, s.InfDatoB}),
                 QStringList({"VEICOLO-01", "2026-11-01", "KV-CODE-000042", "DATO-A-123", "B-77"}));

        arriva("r" + parola(900));
        QCOMPARE(porta->scritti.last(), CreaFrame(QByteArray("R\xC1\x10\x02", 4)));
        arriva("r" + parola(60));
        QCOMPARE(porta->scritti.last(), CreaFrame(QByteArray("R\x01\x08\x01", 4)));
        arriva(QByteArray("r\x07"));
        QCOMPARE(porta->scritti.last(), CreaFrame(QByteArray("R\x01\x09\x01", 4)));
        arriva(QByteArray("r\x00", 2));
        QCOMPARE(porta->scritti.size(), 5);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, false);
        QCOMPARE(p->linea.ecu().TpsPresente, true);
        QCOMPARE(p->linea.ecu().TipoTpsPresente, true);
        QCOMPARE(p->linea.ecu().TpsAutoPresente, false);
        QCOMPARE(frame.last().at(0).toBool(), true);
        // The calibration points went through the scale and the mask into the limits.
        QCOMPARE(p->catalogo.Parametri[Par::TpsTaratoMassimo].Max, 224.0);
        QCOMPARE(p->catalogo.Parametri[Par::TpsTaratoMinimo].Min, 15.0);
    }

    void tpsPresenceNeedsBothCellsErased()
    {
        identifica(1023, 1023);
        QCOMPARE(p->linea.ecu().TpsPresente, false);
        init();
        identifica(1023, 60);
        QCOMPARE(p->linea.ecu().TpsPresente, true);
    }

    void liveFramesAreDecodedOnceTheEcuIsKnown()
    {
        identifica();
        QSignalSpy nuovi(&p->linea.datiLive(), &DatiLive::nuovoRecord);
        arriva(datiLive(0, 2500, 1023, 1023, 3, 0));
        const RecordDati &r = p->linea.datiLive().ultimoRecord();
        QCOMPARE(r.Valore[Canale::Giri], 2500.0);
        QCOMPARE(r.Valore[Canale::Tps], 255.0);
        QCOMPARE(r.Valore[Canale::Lambda], 255.0); // scaled when the probe type is 0
        QCOMPARE(r.Valore[Canale::MZonAct], 3.0);
        QCOMPARE(r.Valore[Canale::TipAlim], 2.0);
        QCOMPARE(r.Valore[Canale::TipoLambda], 0.0);
        QCOMPARE(nuovi.size(), 1);
        QVERIFY(dati->isEnabled());

        arriva(datiLive(0, 2500, 512, 700, 3, 5));
        QCOMPARE(r.Valore[Canale::TipoLambda], 1.0);
        QCOMPARE(r.Valore[Canale::Lambda], 700.0); // raw for a probe of type 1
        QCOMPARE(r.Valore[Canale::Tps], 512.0 * 255.0 / 1023.0);
    }

    void liveFrameDuringAnotherDialogueDoesNotStartIdentification()
    {
        p->linea.motore().accoda("V");
        QVERIFY(p->linea.motore().avvia(1, 5000));
        arriva(datiLive(0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(1));
        QCOMPARE(porta->scritti.size(), 1);
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, true);
    }

    void timeOutDuringIdentificationRetriesOnTheNextLiveFrame()
    {
        arriva(datiLive(0));
        QSignalSpy frame(&p->linea.identificazione(), &Identificazione::frameAbilitato);
        QVERIFY(req->scatta());
        QCOMPARE(frame.size(), 1);
        QCOMPARE(frame.at(0).at(0).toBool(), true);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, true);
        arriva(rispostaVersione()); // too late: dropped
        QCOMPARE(porta->scritti.size(), 1);
        arriva(datiLive(0));
        QCOMPARE(porta->scritti.size(), 2);
        QCOMPARE(porta->scritti.last(), CreaFrame("V"));
    }

    void watchdogMakesTheEcuUnknownAgain()
    {
        identifica();
        QSignalSpy persa(&p->linea.datiLive(), &DatiLive::ecuPersa);
        arriva(datiLive(5, 0, 0, 0, 1, 0));
        QCOMPARE(p->linea.ecu().EcuInMarcia, false);
        QVERIFY(dati->scatta());
        QCOMPARE(persa.size(), 1);
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, true);
        QCOMPARE(p->linea.ecu().EcuNormale, true);
        QCOMPARE(p->linea.ecu().EcuInMarcia, true);
        QVERIFY(!dati->isEnabled());
        arriva(datiLive(0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(111));
    }

    // A flash puts the ECU in its boot loader, which answers but sends no live frames: only
    // such a dialogue holds the watchdog back. A tuning page's does not.
    void theWatchdogWaitsOnlyForADialogueWithoutStream_data()
    {
        QTest::addColumn<bool>("tornaNelDialogo");
        QTest::addColumn<bool>("tornaDopo");
        QTest::addColumn<int>("perse");
        QTest::addColumn<int>("statoDopo");
        QTest::newRow("back after it: identified anew") << false << true << 0 << 111;
        QTest::newRow("back under it: identified anew once free") << true << true << 0 << 111;
        QTest::newRow("silent after it: lost") << false << false << 1 << -1;
    }

    void theWatchdogWaitsOnlyForADialogueWithoutStream()
    {
        QFETCH(bool, tornaNelDialogo);
        QFETCH(bool, tornaDopo);
        QFETCH(int, perse);
        QFETCH(int, statoDopo);
        identifica();
        arriva(datiLive(0, 800, 100, 500, 1, 0));
        QSignalSpy persa(&p->linea.datiLive(), &DatiLive::ecuPersa);
        // A tuning page's store: two seconds of silence lose the ECU at once.
        p->linea.motore().svuotaCoda();
        p->linea.motore().accoda("W");
        QVERIFY(p->linea.motore().avvia(2, 5000));
        QVERIFY(dati->scatta());
        QCOMPARE(persa.size(), 1);
        p->linea.motore().abbandona();
        identifica();
        arriva(datiLive(0, 800, 100, 500, 1, 0));
        persa.clear();

        struct Flash : GestoreStati
        {
            void risposta(char, int, const QByteArray &) override {}
            void scadenza(int) override {}
            char rispostaAttesa(int) const override { return 'e'; }
            bool senzaFlusso(int) const override { return true; }
        } flash;
        p->linea.motore().registra(151, &flash);
        p->linea.motore().svuotaCoda();
        p->linea.motore().accoda("I");
        QVERIFY(p->linea.motore().avvia(151, 3000));
        QVERIFY(dati->scatta());
        QVERIFY(dati->scatta());
        QCOMPARE(persa.size(), 0);
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, false);
        if (tornaNelDialogo)
            arriva(datiLive(0, 800, 100, 500, 1, 0));
        p->linea.motore().abbandona();
        if (tornaDopo)
            arriva(datiLive(0, 800, 100, 500, 1, 0));
        else
            QVERIFY(dati->scatta());
        QCOMPARE(persa.size(), perse);
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(statoDopo));
        p->linea.motore().rimuovi(&flash);
    }

    void statusOtherThanZeroLeavesRunningAndDropsTheRunningFunction()
    {
        identifica();
        QSignalSpy marcia(&p->linea.datiLive(), &DatiLive::inMarciaCambiata);
        p->menu.scegli(Funzione::MessaPunto);
        arriva(datiLive(1));
        QCOMPARE(marcia.size(), 1);
        QCOMPARE(p->menu.FunzioneScelta(), Funzione::Nessuna);
        arriva(datiLive(1));
        QCOMPARE(marcia.size(), 1); // only on a change
        arriva(datiLive(0));
        QCOMPARE(marcia.size(), 2);
        QCOMPARE(p->linea.ecu().EcuInMarcia, true);
    }

    void signOfLifeWithoutApplication()
    {
        identifica();
        arriva(datiLive(0));
        QVERIFY(dati->isEnabled());
        arriva("g");
        QCOMPARE(p->linea.ecu().EcuNormale, false);
        QVERIFY(!dati->isEnabled()); // a stream of 'g' never ends in a time-out
        QCOMPARE(p->linea.ecu().EcuDaIdentificare, false);
    }

    void calibrationIsCalledAtItsPlaceInEachFrame_data()
    {
        QTest::addColumn<bool>("identificata");
        QTest::addColumn<bool>("sequenza");
        QTest::addColumn<QList<int>>("stati");
        QTest::addColumn<QStringList>("attese");
        QTest::newRow("the ECU opens the RPM page by itself")
            << true << false << QList<int>{0, 234}
            << QStringList{"normal 0 rpm 1000 running 1", "single 234 rpm 1001 running 0"};
        QTest::newRow("back to normal running ends a single calibration")
            << true << false << QList<int>{219, 218, 0}
            << QStringList{"single 219 rpm 1000 running 0", "single 218 rpm 1001 running 0",
                           "normal 0 rpm 1002 running 0"};
        QTest::newRow("a sequence hears every status but 0")
            << true << true << QList<int>{255, 239, 0, 234}
            << QStringList{"sequence 255 rpm 1000 running 0", "sequence 239 rpm 1001 running 0",
                           "sequence 234 rpm 1003 running 0"};
        QTest::newRow("nothing while the ECU is being identified")
            << false << false << QList<int>{234, 0} << QStringList{};
    }

    void calibrationIsCalledAtItsPlaceInEachFrame()
    {
        QFETCH(bool, identificata);
        QFETCH(bool, sequenza);
        QFETCH(QList<int>, stati);
        QFETCH(QStringList, attese);
        if (identificata)
            identifica();
        TaraturaSpia spia(p->linea.ecu());
        p->linea.datiLive().impostaGestoreTaratura(&spia);
        spia.sequenza = sequenza;
        for (int i = 0; i < stati.size(); ++i)
            arriva(datiLive(quint8(stati[i]), quint16(1000 + i)));
        QCOMPARE(spia.chiamate, attese);
        p->linea.datiLive().impostaGestoreTaratura(nullptr);
        arriva(datiLive(234));
        QCOMPARE(spia.chiamate.size(), attese.size());
    }

    void recordingRingTakesEachFrameWhileActive()
    {
        identifica();
        p->anello.azzera();
        p->anello.RegistrazioneAttiva = true;
        for (int i = 0; i < 3; ++i)
            arriva(datiLive(0, quint16(1000 + i)));
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(2));
        QCOMPARE(p->anello.BufferRegistrazione[2].Valore[Canale::Giri], 1002.0);
    }
};

QTEST_GUILESS_MAIN(TstIdentificazione)
#include "tst_identificazione.moc"
