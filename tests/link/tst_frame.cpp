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

    void versionRequestIsTheKnownSevenBytes()
    {
        QCOMPARE(CreaFrame("V"), hex("02873AF1560803"));
        QCOMPARE(SommaByte(hex("873AF156")), quint8(0x08));
    }

    void framesFromTheEcuHaveTheAddressesReversed()
    {
        const QByteArray f = daEcu("e\xFF");
        QCOMPARE(f.size(), 8);
        QCOMPARE(quint8(f.at(1)), quint8(0x88));
        QCOMPARE(quint8(f.at(2)), quint8(0xF1));
        QCOMPARE(quint8(f.at(3)), quint8(0x3A));
        QCOMPARE(quint8(f.at(6)), SommaByte(f.mid(1, 5)));
    }

    void wordsAreHighByteFirst()
    {
        QCOMPARE(ParolaInByte(0xC112), hex("C112"));
        QCOMPARE(ParolaInByte(0x0090), hex("0090"));
    }

    void queueGivesFramesInOrderAndDropsLeadingNoise()
    {
        QByteArray coda = "xx" + CreaFrame("V") + CreaFrame(QByteArray("R\xC1\x12\x02", 4));
        FrameUscita a = InviaProssimo(coda);
        QCOMPARE(a.Valido, qint16(-1));
        QCOMPARE(a.Byte, CreaFrame("V"));
        FrameUscita b = InviaProssimo(coda);
        QCOMPARE(b.Byte, CreaFrame(QByteArray("R\xC1\x12\x02", 4)));
        FrameUscita c = InviaProssimo(coda);
        QCOMPARE(c.Valido, qint16(0));
        QVERIFY(c.Byte.isEmpty());
        QVERIFY(coda.isEmpty());
    }

    void twoFramesInOneArrivalAreBothDispatchedInOrder()
    {
        r->ricevi(daEcu("v123") + daEcu("r\x01"));
        QCOMPARE(ricevuti, (QByteArrayList{"v123", "r\x01"}));
        QCOMPARE(r->inAttesa(), 0);
    }

    void noiseBeforeAFrameIsDropped()
    {
        r->ricevi(hex("FFEE00") + daEcu("g"));
        QCOMPARE(ricevuti, QByteArrayList{"g"});
    }

    void noiseWithoutStxWaitsForTheNextStx()
    {
        r->ricevi(hex("FFEE00"));
        QCOMPARE(r->inAttesa(), 3);
        r->ricevi(daEcu("g"));
        QCOMPARE(ricevuti, QByteArrayList{"g"});
        QCOMPARE(r->inAttesa(), 0);
    }

    void wrongAddressesLoseTheWholeBuffer()
    {
        r->ricevi(hex("0288AABB") + daEcu("g"));
        QVERIFY(ricevuti.isEmpty());
        QCOMPARE(r->inAttesa(), 0);
    }

    void aFrameInTwoHalvesWaitsForTheSecond()
    {
        const QByteArray f = daEcu("r\x12\x34");
        r->ricevi(f.left(5));
        QVERIFY(ricevuti.isEmpty());
        r->ricevi(f.mid(5));
        QCOMPARE(ricevuti, QByteArrayList{"r\x12\x34"});
    }

    void badChecksumHoldsBackTheGoodFrameUntilTheNextArrival()
    {
        QByteArray cattivo = daEcu("r\x01");
        cattivo[cattivo.size() - 2] = char(cattivo.at(cattivo.size() - 2) + 1);
        r->ricevi(cattivo + daEcu("g"));
        QVERIFY(ricevuti.isEmpty());
        r->ricevi({});
        QCOMPARE(ricevuti, QByteArrayList{"g"});
    }

    void wrongEndByteDropsExactlyLenBytes()
    {
        QByteArray f = daEcu("r\x01\x02");
        f[f.size() - 1] = 0x55;
        const QByteArray resto = hex("AABB");
        r->ricevi(f + resto);
        QVERIFY(ricevuti.isEmpty());
        QCOMPARE(r->BufferRx(), resto);
    }

    void lenBelowSixIsDroppedLikeABadEnd()
    {
        // LEN 2: two bytes go, the rest waits for the next arrival.
        r->ricevi(hex("0282F13A") + daEcu("g"));
        QVERIFY(ricevuti.isEmpty());
        r->ricevi({});
        QCOMPARE(ricevuti, QByteArrayList{"g"});

        init();
        // LEN 0 must not stall the receiver on the same bytes forever.
        r->ricevi(hex("0280F13A"));
        r->ricevi(daEcu("g"));
        r->ricevi({});
        QVERIFY(ricevuti.contains("g"));
    }

    void emptyPayloadIsNotDispatchedButShown()
    {
        QByteArray shown = "unset";
        r->impostaSegnalazione([&](const QByteArray &h) { shown = h; });
        r->ricevi(daEcu({}));
        QVERIFY(ricevuti.isEmpty());
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
        QFile f(registro.percorso());
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), "02873AF1560803\r\n" + HexFrame(daEcu("e\xFF")) + "\r\n");
    }

    void emptyQueueLogsAnEmptyLine()
    {
        QTemporaryDir dir;
        RegistroFrame registro(dir.filePath("MESSAGGI.TXT"));
        QByteArray coda = "noise";
        QCOMPARE(InviaProssimo(coda, &registro).Valido, qint16(0));
        QCOMPARE(coda, QByteArray("noise"));
        QFile f(registro.percorso());
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("\r\n"));
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
