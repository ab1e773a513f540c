// A map file is 8 records of 128 hexadecimal characters and CR LF; anything else is refused
// whole, naming the first bad record.

#include "programming/ControlloMappa.h"

#include <QTest>

using namespace kv;
using E = EsitoMappa::Errore;

class TstControlloMappa : public QObject
{
    Q_OBJECT

    static QByteArray riga(char c = 'F') { return QByteArray(128, c) + "\r\n"; }
    static QByteArray mappa(char c = 'F') { return riga(c).repeated(8); }

private slots:
    void controllo_data()
    {
        QTest::addColumn<QByteArray>("contenuto");
        QTest::addColumn<int>("errore");
        QTest::addColumn<int>("record");
        QTest::addColumn<int>("colonna");
        QByteArray nonEsa = mappa();
        nonEsa[130 * 2 + 5] = 'G'; // record 3, column 6
        QByteArray soloLf = mappa();
        soloLf[130 * 4 + 128] = '\n'; // record 5 ends LF LF
        QByteArray minuscole = mappa('a');
        QTest::newRow("a whole map") << mappa() << int(E::Nessuno) << 0 << 0;
        QTest::newRow("lower case is still hexadecimal") << minuscole << int(E::Nessuno) << 0 << 0;
        QTest::newRow("empty") << QByteArray() << int(E::Corto) << 1 << 0;
        QTest::newRow("100 bytes") << QByteArray(100, 'F') << int(E::Corto) << 1 << 0;
        QTest::newRow("7 records") << riga().repeated(7) << int(E::Corto) << 8 << 0;
        QTest::newRow("last CR LF missing") << mappa().chopped(2) << int(E::Corto) << 8 << 0;
        QTest::newRow("a ninth record") << riga().repeated(9) << int(E::Lungo) << 0 << 0;
        QTest::newRow("one byte more") << mappa() + "\n" << int(E::Lungo) << 0 << 0;
        QTest::newRow("non-hex inside") << nonEsa << int(E::NonEsadecimale) << 3 << 6;
        QTest::newRow("LF only") << soloLf << int(E::FineRiga) << 5 << 0;
        QTest::newRow("text file") << QByteArray("hello\r\n") << int(E::NonEsadecimale) << 1 << 1;
    }
    void controllo()
    {
        QFETCH(QByteArray, contenuto);
        QFETCH(int, errore);
        const EsitoMappa e = ControllaMappa(contenuto);
        QCOMPARE(int(e.errore), errore);
        QTEST(e.record, "record");
        QTEST(e.colonna, "colonna");
        QCOMPARE(e.immagine.size(), e.ok() ? 512 : 0);
    }

    void immagine()
    {
        // Record n holds 0xC100 + 64 * (n - 1) onward, two digits a byte in rising address.
        QByteArray file;
        for (int n = 0; n < 8; ++n)
            file += QByteArray(64, char(n)).toHex().toUpper() + "\r\n";
        const EsitoMappa e = ControllaMappa(file);
        QVERIFY(e.ok());
        QCOMPARE(e.immagine.at(0), char(0));
        QCOMPARE(e.immagine.at(64 * 7 + 63), char(7));
        QCOMPARE(LeggiMappa(QStringLiteral("/nonexistent/x.LKV")).errore, E::Illeggibile);
    }
};

QTEST_APPLESS_MAIN(TstControlloMappa)
#include "tst_controllomappa.moc"
