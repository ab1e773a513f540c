#include "link/Frame.h"
#include "link/RegistroFrame.h"
#include "link/Ricevitore.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

QByteArray daEcu(const QByteArray &dati)
{
    return CreaFrame(dati, 0);
}

QByteArray hex(const char *testo)
{
    return QByteArray::fromHex(testo);
}

} // namespace

class TstFrame : public QObject
{
    Q_OBJECT

    QByteArrayList ricevuti;
    Ricevitore *r = nullptr;

private slots:
    void init()
    {
        ricevuti.clear();
        delete r;
        r = new Ricevitore;
        r->impostaGestore([this](const QByteArray &p) { ricevuti.append(p); });
    }
    void cleanupTestCase() { delete r; }

    void framesOnTheWire()
    {
        QCOMPARE(CreaFrame("V"), hex("02873AF1560803"));
        // From the ECU the addresses are the other way round.
        QCOMPARE(daEcu("e\xFF"), hex("0288F13A65FF") + char(SommaByte(hex("88F13A65FF"))) + '\x03');
        // The queue gives its frames in order, past any noise before them.
        QByteArray coda = "xx" + CreaFrame("V") + CreaFrame(QByteArray("R\xC1\x12\x02", 4));
        QCOMPARE(InviaProssimo(coda).Byte, CreaFrame("V"));
        const FrameUscita b = InviaProssimo(coda);
        QCOMPARE(b.Valido, qint16(-1));
        QCOMPARE(b.Byte, CreaFrame(QByteArray("R\xC1\x12\x02", 4)));
        const FrameUscita c = InviaProssimo(coda);
        QVERIFY(c.Valido == 0 && c.Byte.isEmpty() && coda.isEmpty());
    }

    void receiverPassesOnWholeGoodFramesOnly_data()
    {
        QTest::addColumn<QByteArrayList>("arrivi");
        QTest::addColumn<QList<int>>("dopoOgni"); // payloads handed on after each arrival, -1 any
        QTest::addColumn<QByteArrayList>("attesi");
        QTest::addColumn<QByteArray>("resto"); // left in the buffer at the end
        const QByteArray g = daEcu("g");
        const QByteArray meta = daEcu("r\x12\x34");
        QByteArray cattivo = daEcu("r\x01");
        cattivo[cattivo.size() - 2] = char(cattivo.at(cattivo.size() - 2) + 1);
        QByteArray fineErrata = daEcu("r\x01\x02");
        fineErrata[fineErrata.size() - 1] = 0x55;
        using L = QByteArrayList;
        const auto riga = [](const char *nome, const L &arrivi, const QList<int> &dopo, const L &attesi,
                             const QByteArray &resto = {}) {
            QTest::newRow(nome) << arrivi << dopo << attesi << resto;
        };
        riga("two frames in one arrival", {daEcu("v123") + daEcu("r\x01")}, {2}, {"v123", "r\x01"});
        riga("noise before a frame", {hex("FFEE00") + g}, {1}, {"g"});
        riga("noise waits for the next STX", {hex("FFEE00"), g}, {0, 1}, {"g"});
        riga("wrong addresses lose the whole buffer", {hex("0288AABB") + g}, {0}, {});
        riga("a frame in two halves", {meta.left(5), meta.mid(5)}, {0, 1}, {"r\x12\x34"});
        riga("a bad checksum holds the next frame until the next arrival", {cattivo + g, {}}, {0, 1}, {"g"});
        riga("a wrong end byte drops exactly LEN bytes", {fineErrata + hex("AABB")}, {0}, {}, hex("AABB"));
        riga("LEN 2 drops two bytes like a bad end", {hex("0282F13A") + g, {}}, {0, 1}, {"g"});
        // LEN 0 must not stall the receiver on the same bytes forever.
        riga("LEN 0", {hex("0280F13A"), g, {}}, {0, -1, 1}, {"g"});
        riga("an empty payload is not handed on", {daEcu({})}, {0}, {});
    }

    void receiverPassesOnWholeGoodFramesOnly()
    {
        QFETCH(QByteArrayList, arrivi);
        QFETCH(QList<int>, dopoOgni);
        QFETCH(QByteArrayList, attesi);
        QFETCH(QByteArray, resto);
        for (qsizetype i = 0; i < arrivi.size(); ++i) {
            r->ricevi(arrivi[i]);
            QVERIFY(dopoOgni[i] < 0 || ricevuti.size() == dopoOgni[i]);
        }
        QCOMPARE(ricevuti, attesi);
        QCOMPARE(r->BufferRx(), resto);
    }

    void theStripShowsEveryGoodPayloadEvenEmpty()
    {
        QByteArray shown = "unset";
        r->impostaSegnalazione([&](const QByteArray &h) { shown = h; });
        r->ricevi(daEcu({}));
        QCOMPARE(shown, QByteArray());
        r->ricevi(daEcu(QByteArray("d\x00\x0A", 3)));
        QCOMPARE(shown, QByteArray("64000A"));
    }

    void handlerThatReceivesMoreBytesDoesNotRunTwice()
    {
        // As when a modal box spins the event loop inside a handler.
        int profondita = 0, massima = 0;
        r->impostaGestore([&](const QByteArray &p) {
            ++profondita;
            massima = qMax(massima, profondita);
            ricevuti.append(p);
            if (p == "r\x01")
                r->ricevi(daEcu("r\x02"));
            --profondita;
        });
        r->ricevi(daEcu("r\x01") + daEcu("r\x03"));
        QCOMPARE(massima, 1);
        QCOMPARE(ricevuti, (QByteArrayList{"r\x01", "r\x03", "r\x02"}));
    }

    void logHasOneUpperCaseHexLinePerFrame()
    {
        QTemporaryDir dir;
        RegistroFrame registro(dir.filePath("MESSAGGI.TXT"));
        Ricevitore rr(&registro);
        QByteArray coda = CreaFrame("V");
        InviaProssimo(coda, &registro);
        rr.ricevi(daEcu("e\xFF"));
        // An empty queue logs an empty line and leaves what it holds.
        coda = "noise";
        QCOMPARE(InviaProssimo(coda, &registro).Valido, qint16(0));
        QCOMPARE(coda, QByteArray("noise"));
        QFile f(registro.percorso());
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), "02873AF1560803\r\n" + HexFrame(daEcu("e\xFF")) + "\r\n\r\n");
    }

    void largeBacklogIsServedCompletely()
    {
        QByteArray flusso;
        for (int i = 0; i < 20000; ++i) {
            flusso += daEcu(QByteArray("d") + QByteArray(14, char(i & 0x7F)));
            if (i % 7 == 0)
                flusso += hex("FFFE");
        }
        // Delivered in awkward slices, as a real port does.
        for (qsizetype i = 0; i < flusso.size(); i += 97)
            r->ricevi(flusso.mid(i, 97));
        r->ricevi({});
        QCOMPARE(ricevuti.size(), 20000);
        QCOMPARE(ricevuti.last().at(1), char(19999 & 0x7F));
    }
};

QTEST_GUILESS_MAIN(TstFrame)
#include "tst_frame.moc"
