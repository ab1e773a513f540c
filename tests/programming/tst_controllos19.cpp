// An S19 file is sent only when it is S-records throughout, each with its count, digits and
// checksum right, with data for 0xC000..0xF6FF and its end record last; anything else is
// refused whole, naming the first bad line.

#include "programming/ControlloS19.h"

#include "support/S19DiProva.h"

#include <QTest>

using namespace kv;
using E = EsitoS19::Errore;

class TstControlloS19 : public QObject
{
    Q_OBJECT

private slots:
    void controllo_data()
    {
        QTest::addColumn<QByteArray>("testo");
        QTest::addColumn<int>("errore");
        QTest::addColumn<int>("riga");
        // A release as the maker's tools write it: header, 440 lines of data, end: 442 lines.
        const QByteArray intero = S19Completo(ImmagineDiProva());
        const QByteArrayList righe = intero.split('\n');
        const auto conRiga = [&](int n, const QByteArray &riga) {
            QByteArrayList r = righe;
            r[n - 1] = riga + '\r';
            return r.join('\n');
        };
        QByteArray casuale(40 * 1024, '\0');
        for (int i = 0; i < casuale.size(); ++i)
            casuale[i] = char((i * 2654435761u) >> 13);
        casuale[0] = '\x9C';
        QByteArray somma = RigaS1(0xC020, QByteArray(32, '\x5A'));
        somma.back() = somma.back() == '0' ? '1' : '0';
        QByteArray zz = RigaS1(0xC0A0, QByteArray(32, '\x33'));
        zz.replace(20, 4, "ZZGG");
        const QByteArray fine = "S903C0003C";

        QTest::newRow("a whole release") << intero << int(E::Nessuno) << 0;
        QTest::newRow("LF ends and blank lines")
            << QByteArray(intero).replace("\r\n", "\n\n \t\n") << int(E::Nessuno) << 0;
        QTest::newRow("40 KB of random bytes") << casuale << int(E::NonRecord) << 1;
        QTest::newRow("cut after 200 of 442 lines") << righe.mid(0, 200).join('\n') + '\n'
                                                    << int(E::FineMancante) << 200;
        QTest::newRow("a wrong checksum") << conRiga(3, somma) << int(E::Somma) << 3;
        QTest::newRow("ZZGG in the data") << conRiga(7, zz) << int(E::NonEsadecimale) << 7;
        QTest::newRow("a count one short")
            << conRiga(9, "S122" + righe[8].mid(4, 70)) << int(E::Lunghezza) << 9;
        QTest::newRow("a line cut short") << conRiga(9, righe[8].left(40)) << int(E::Lunghezza) << 9;
        QTest::newRow("an S2 record") << conRiga(2, "S2080000C000112233BB") << int(E::Tipo) << 2;
        QTest::newRow("lower-case s1") << conRiga(2, righe[1].toLower()) << int(E::NonRecord) << 2;
        QTest::newRow("a leading blank") << conRiga(5, ' ' + righe[4]) << int(E::NonRecord) << 5;
        QTest::newRow("a record after the end") << intero + RigaS1(0xC000, "\x01") << int(E::DopoFine) << 443;
        QTest::newRow("an S5 that counts 3 records")
            << RigaS1(0xC000, "\x01") + "\nS5030003F9\n" + fine << int(E::Conteggio) << 2;
        QTest::newRow("an S5 that agrees")
            << RigaS1(0xC000, "\x01") + "\nS5030001FB\n" + fine << int(E::Nessuno) << 0;
        QTest::newRow("data only below 0xC000")
            << RigaS1(0xBF00, QByteArray(32, '\x01')) + '\n' + fine << int(E::NessunDato) << 0;
        QTest::newRow("data only from 0xF700")
            << RigaS1(0xF700, "\x01") + '\n' + fine << int(E::NessunDato) << 0;
        QTest::newRow("one byte at 0xF6FF") << RigaS1(0xF6FF, "\x01") + '\n' + fine << int(E::Nessuno) << 0;
        QTest::newRow("empty") << QByteArray() << int(E::NessunDato) << 0;
    }

    void controllo()
    {
        QFETCH(QByteArray, testo);
        QFETCH(int, errore);
        const EsitoS19 e = ControllaS19(testo);
        QCOMPARE(int(e.errore), errore);
        QTEST(e.riga, "riga");
    }
};

QTEST_APPLESS_MAIN(TstControlloS19)
#include "tst_controllos19.moc"
