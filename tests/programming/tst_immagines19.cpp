// The S19 image: what the block file holds after PreparaFileSW and ConvertiS19, against an
// image worked out here byte by byte from the lines given.

#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"

#include "link/StatoEcu.h"
#include "support/FileDiProva.h"
#include "support/S19DiProva.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

QByteArray serie(int da, int n)
{
    QByteArray b;
    for (int i = 0; i < n; ++i)
        b.append(char(da + i));
    return b;
}

using Scritture = QList<std::pair<int, QByteArray>>;

// The identification the ECU gave, as the image must carry it.
const QByteArray Codice = "KV2\xC0"
                          "BC12345678";
const QByteArray DatoA = "LPG-SEQ-02";
const QByteArray DatoB = "R2  ";

} // namespace

class TestImmagineS19 : public QObject
{
    Q_OBJECT

private slots:
    void conversione_data()
    {
        QTest::addColumn<QByteArray>("s19");
        QTest::addColumn<bool>("riuscita");
        QTest::addColumn<Scritture>("attese"); // over an image of 0xFF

        const QByteArray id = Codice + DatoA + DatoB;
        QTest::newRow("empty file") << QByteArray() << true << Scritture{};
        QTest::newRow("32 bytes at 0xC040: identification over the first 28")
            << "S00600004844521B\r\n" + RigaS1(0xC040, serie(0, 32)) + "\r\nS9030000FC\r\n"
            << true << Scritture{{0xC040, id}, {0xC05C, serie(28, 4)}};
        QTest::newRow("16 bytes at 0xC040 fail: the second string runs past the end")
            << RigaS1(0xC000, QByteArray(16, '\x11')) + "\n" + RigaS1(0xC040, serie(0, 16)) + "\n"
                   + RigaS1(0xC100, "\x22")
            << false << Scritture{{0xC000, QByteArray(16, '\x11')}};
        // Reaching 0xC04D is enough for the end of the second string to be written: the
        // limit b - (i - 1) falls as i grows.
        QTest::newRow("14 bytes at 0xC040 fail as well")
            << RigaS1(0xC040, serie(0, 14)) << false << Scritture{};
        QTest::newRow("16 bytes at 0xC050 fail: the first string starts before the line")
            << RigaS1(0xC050, serie(0, 16)) << false << Scritture{};
        QTest::newRow("4 bytes at 0xC048 hold neither end: no identification")
            << RigaS1(0xC048, "\xAA\xBB\xCC\xDD") << true << Scritture{{0xC048, "\xAA\xBB\xCC\xDD"}};
        QTest::newRow("lines split at 0xC000 and 0xF6FF")
            << RigaS1(0xBFFE, "\x01\x02\x03\x04") + "\r" + RigaS1(0xF6FE, "\x05\x06\x07\x08") + "\r" << true
            << Scritture{{0xC000, "\x03\x04"}, {0xF6FE, "\x05\x06"}};
        QTest::newRow("S2 and S3 are not understood")
            << QByteArray("S2080000C000112233BB\r\nS30900000C000445566AA\r\n") << true << Scritture{};
        QTest::newRow("a later line wins") << RigaS1(0xC100, "\x01\x02\x03") + "\n" + RigaS1(0xC101, "\x09")
                                           << true << Scritture{{0xC100, "\x01\x09\x03"}};
        QTest::newRow("count and checksum are never read")
            << QByteArray("S1FFC1004142FF\nS1") << true << Scritture{{0xC100, "\x41\x42"}};
        // One character left over goes into the first half of the next byte's pair.
        QTest::newRow("odd data text")
            << QByteArray("S105C100ABC99") << true << Scritture{{0xC100, "\xAB\xCF"}};
    }

    void conversione()
    {
        QFETCH(QByteArray, s19);
        QFETCH(bool, riuscita);
        QFETCH(Scritture, attese);
        QTemporaryDir dir;
        StatoEcu stato;
        stato.InfCodice = QString::fromLatin1(Codice);
        stato.InfDatoA = QString::fromLatin1(DatoA);
        stato.InfDatoB = QStringLiteral("R2"); // short: padded with blanks
        const QString fileS19 = dir.filePath(QStringLiteral("KV2.S19"));
        scrivi(fileS19, s19);
        const QString fileSW = PercorsoFileSW(dir.path());

        QVERIFY(PreparaFileSW(fileSW));
        QCOMPARE(leggi(fileSW), (QByteArray(128, 'F') + "\r\n").repeated(220));
        QCOMPARE(ConvertiS19(fileS19, fileSW, stato), riuscita);

        QByteArray immagine(0xF700 - 0xC000, '\xFF');
        for (const auto &[indirizzo, byte] : attese)
            immagine.replace(indirizzo - 0xC000, byte.size(), byte);
        QByteArray testo;
        for (int n = 1; n <= 220; ++n) {
            const QByteArray blocco = immagine.mid((n - 1) * 64, 64);
            testo += blocco.toHex().toUpper() + "\r\n";
            QVERIFY2(LeggiBloccoSW(dir.path(), n) == blocco, qPrintable(QString::number(n)));
        }
        QCOMPARE(leggi(fileSW), testo);
        QVERIFY(LeggiBloccoSW(dir.path(), 221).isEmpty());
    }

    void fileMancantiOAltrui()
    {
        QTemporaryDir dir;
        const StatoEcu stato;
        const QString fileSW = dir.filePath(QStringLiteral("FILESW.TXT"));
        const QString fileS19 = dir.filePath(QStringLiteral("KV2.S19"));
        scrivi(fileS19, RigaS1(0xC100, "\x01"));
        QVERIFY(!ConvertiS19(fileS19, fileSW, stato)); // no block file yet
        QVERIFY(!QFile::exists(fileSW));
        QVERIFY(PreparaFileSW(fileSW));
        QVERIFY(!ConvertiS19(dir.filePath(QStringLiteral("NONE.S19")), fileSW, stato));
        QCOMPARE(leggi(fileSW), FileSWVuoto());

        // A link in the place of FILESW.TXT is not written through.
        const QString altrove = dir.filePath(QStringLiteral("altrove.txt"));
        scrivi(altrove, "keep");
        QVERIFY(QFile::remove(fileSW) && QFile::link(altrove, fileSW));
        QVERIFY(!PreparaFileSW(fileSW));
        QVERIFY(!ConvertiS19(fileS19, fileSW, stato));
        QCOMPARE(leggi(altrove), QByteArray("keep"));
    }

    void fileBlocchi()
    {
        QTemporaryDir dir;
        const QString mappa = dir.filePath(QStringLiteral("MAPPA.LKV"));
        for (int n = 0; n < 8; ++n)
            QVERIFY(AggiungiRecord(mappa, QByteArray(64, char(n * 0x11))));
        QByteArray testo = leggi(mappa);
        QCOMPARE(testo.size(), 1040);
        QCOMPARE(testo.left(130), QByteArray(128, '0') + "\r\n");
        QCOMPARE(testo.mid(7 * 130, 4), QByteArray("7777"));
        // Characters that are no upper-case pair: "&H" and what stands there.
        testo.replace(130, 8, "abZZ1ZZ1");
        testo.chop(1); // 1,039 bytes: 7.99 blocks, and block 8 is still read whole
        scrivi(mappa, testo);
        QCOMPARE(LeggiBloccoMappa(mappa, 2).left(5), QByteArray("\xAB\x00\x01\x00\x11", 5));
        QCOMPARE(NumeroBlocchi(mappa), 1039.0 / 130);
        QCOMPARE(LeggiBloccoMappa(mappa, 8), QByteArray(64, '\x77'));
        QVERIFY(LeggiBloccoMappa(mappa, 9).isEmpty());
        QVERIFY(LeggiBloccoMappa(mappa, 0).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestImmagineS19)
#include "tst_immagines19.moc"
