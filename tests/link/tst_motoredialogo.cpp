#include "link/MotoreDialogo.h"
#include "link/Temporizzatore.h"
#include "support/PortaFinta.h"

#include <QTest>

using namespace kv;

namespace {

// Reads everything queued, then frees the link: the pattern of every page, whose first
// state reads and whose next two write.
class Proprietario : public GestoreStati
{
public:
    explicit Proprietario(MotoreDialogo &m) : motore(m) {}

    char rispostaAttesa(int stato) const override
    {
        const int passo = (stato - 1) % 10;
        return stato == 111 ? 'v' : stato >= 100 ? 0 : passo == 0 ? 'r' : passo <= 2 ? 'e' : 0;
    }

    void risposta(char lettera, int stato, const QByteArray &payload) override
    {
        risposte.append(QByteArray(1, lettera) + QByteArray::number(stato) + ":" + payload.mid(1).toHex());
        if (lettera == 'e' && static_cast<quint8>(payload.at(1)) != 0xFF)
            return;
        (void)motore.prosegui();
    }
    void scadenza(int stato) override { scadenze.append(stato); }

    MotoreDialogo &motore;
    QByteArrayList risposte;
    QList<int> scadenze;
};

QByteArray daEcu(const QByteArray &dati)
{
    return CreaFrame(dati, 0).mid(4).chopped(2);
}

} // namespace

class TstMotoreDialogo : public QObject
{
    Q_OBJECT

    PortaFinta *porta = nullptr;
    TemporizzatoreManuale *timer = nullptr;
    MotoreDialogo *motore = nullptr;
    Proprietario *pagina = nullptr;

    void treLetture()
    {
        motore->svuotaCoda();
        for (char c : {'\x01', '\x02', '\x03'})
            motore->accoda(QByteArray("R\x00", 2) + c + '\x01');
        QVERIFY(motore->avvia(1, MotoreDialogo::IntervalloLettura));
    }

private slots:
    void init()
    {
        delete pagina;
        delete motore;
        delete timer;
        delete porta;
        porta = new PortaFinta;
        timer = new TemporizzatoreManuale;
        motore = new MotoreDialogo(*porta, *timer);
        pagina = new Proprietario(*motore);
        motore->registra(1, pagina);
    }

    void closedPortStartsNothing()
    {
        porta->chiudi();
        motore->accoda("V");
        QVERIFY(!motore->avvia(1, 5000));
        QCOMPARE(motore->StatoDialogo(), qint16(-1));
        QVERIFY(porta->scritti.isEmpty());
        QVERIFY(!timer->isEnabled());
    }

    void dialogueRunsFrameByFrameAndFreesTheLink()
    {
        treLetture();
        QCOMPARE(motore->StatoDialogo(), qint16(1));
        QCOMPARE(timer->interval(), 5000);
        QVERIFY(timer->isEnabled());
        QCOMPARE(porta->scritti.size(), 1);

        motore->instrada(daEcu("r\x0A"));
        QCOMPARE(porta->scritti.size(), 2);
        QCOMPARE(motore->PassoDialogo(), qint16(1));
        motore->instrada(daEcu("r\x0B"));
        motore->instrada(daEcu("r\x0C"));
        QCOMPARE(porta->scritti.size(), 3);
        QCOMPARE(motore->StatoDialogo(), qint16(-1));
        QCOMPARE(pagina->risposte, (QByteArrayList{"r1:0a", "r1:0b", "r1:0c"}));
    }

    // What ends a read dialogue other than its last reply, and what does not: T is the
    // time-out firing, anything else a reply.
    void repliesOutOfTurnAndTimeOuts_data()
    {
        QTest::addColumn<QByteArrayList>("eventi");
        QTest::addColumn<QByteArrayList>("risposte");
        QTest::addColumn<bool>("scaduta");
        QTest::addColumn<int>("stato");
        QTest::newRow("a time-out frees the link, no retry")
            << QByteArrayList{"T"} << QByteArrayList{} << true << -1;
        QTest::newRow("a late reply after it changes nothing")
            << QByteArrayList{"T", daEcu("r\x0A")} << QByteArrayList{} << true << -1;
        QTest::newRow("a reply of the wrong kind is dropped")
            << QByteArrayList{daEcu("e\xFF"), daEcu("v1234")} << QByteArrayList{} << false << 1;
        QTest::newRow("a fault code ends it in any state")
            << QByteArrayList{daEcu("e\x05")} << QByteArrayList{"e1:05"} << false << -1;
    }

    void repliesOutOfTurnAndTimeOuts()
    {
        QFETCH(QByteArrayList, eventi);
        QFETCH(QByteArrayList, risposte);
        QFETCH(bool, scaduta);
        QFETCH(int, stato);
        treLetture();
        for (const QByteArray &e : eventi) {
            if (e == "T")
                QVERIFY(timer->scatta());
            else
                motore->instrada(e);
        }
        QCOMPARE(pagina->risposte, risposte);
        QCOMPARE(pagina->scadenze, scaduta ? QList<int>{1} : QList<int>{});
        QCOMPARE(motore->StatoDialogo(), qint16(stato));
        QCOMPARE(timer->isEnabled(), stato != -1);
        QCOMPARE(porta->scritti.size(), 1);
        QCOMPARE(motore->CodaTx().isEmpty(), false); // the rest of the queue is never sent
    }

    void failedWriteBecomesAShortTimeOut()
    {
        treLetture();
        porta->rifiutaScritture = true;
        motore->instrada(daEcu("r\x0A"));
        QCOMPARE(motore->StatoDialogo(), qint16(1));
        QCOMPARE(timer->interval(), MotoreDialogo::IntervalloTrappola);
        QVERIFY(timer->isEnabled());
        timer->scatta();
        QCOMPARE(pagina->scadenze, QList<int>{1});
        QCOMPARE(motore->StatoDialogo(), qint16(-1));

        // The same at the very first frame of a dialogue.
        porta->rifiutaScritture = true;
        treLetture();
        QCOMPARE(timer->interval(), MotoreDialogo::IntervalloTrappola);
        QVERIFY(timer->isEnabled());
    }

    void liveFramesDoNotTouchTheReplyTimer()
    {
        int dati = 0;
        motore->impostaGestoreDati([&](const QByteArray &) { ++dati; });
        treLetture();
        timer->setInterval(1234);
        for (int i = 0; i < 5; ++i)
            motore->instrada(daEcu(QByteArray("d") + QByteArray(14, '\0')));
        QCOMPARE(dati, 5);
        QVERIFY(timer->isEnabled());
        QCOMPARE(timer->interval(), 1234);
        QCOMPARE(motore->StatoDialogo(), qint16(1));
    }

    void unknownStateTimeOutOnlyFreesTheLink()
    {
        motore->accoda("V");
        QVERIFY(motore->avvia(399, 5000));
        timer->scatta();
        QVERIFY(pagina->scadenze.isEmpty());
        QCOMPARE(motore->StatoDialogo(), qint16(-1));
    }

    void ownersAreFoundByTheirGroupOfTen()
    {
        Proprietario altro(*motore);
        motore->registra(111, &altro);
        motore->accoda("V");
        QVERIFY(motore->avvia(111, 5000));
        motore->instrada(daEcu("v123"));
        QCOMPARE(altro.risposte, QByteArrayList{"v111:313233"});
        QVERIFY(pagina->risposte.isEmpty());
        motore->rimuovi(&altro);
    }
};

QTEST_GUILESS_MAIN(TstMotoreDialogo)
#include "tst_motoredialogo.moc"
