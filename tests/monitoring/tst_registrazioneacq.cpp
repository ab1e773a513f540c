// A recording read back: what the recorder wrote of the simulated ECU's stream, the lines a
// crash or a broken write leaves behind, the CSV export, and a stretch's statistics and
// pixel columns across a pause.

#include "support/ProgrammaSimulato.h"

#include "monitoring/EsportaCsv.h"
#include "monitoring/RegistrazioneAcq.h"

#include <QBuffer>
#include <QTest>

#include <cmath>

using namespace kv;
using namespace kv::sim;

using R = AnelloRegistrazione;
using E = RegistrazioneAcq::Esito;

namespace {

RegistrazioneAcq::Esito leggiTesto(const QByteArray &testo, RegistrazioneAcq &r)
{
    QBuffer b;
    b.setData(testo);
    b.open(QIODevice::ReadOnly);
    return r.leggi(b, testo.size());
}

// A sample line as the recorder writes it: number n, engine speed g, the rest from n.
QByteArray riga(qint32 n, double g)
{
    RecordDati d;
    d.Progressivo = n;
    for (int c : CanaliRegistrati)
        d.Valore[std::size_t(c)] = n % 7 + c;
    d.Valore[Canale::Giri] = g;
    return R::rigaCampione(d).toLatin1() + "\r\n";
}

const QByteArray Intestazione =
    "Samples;Engine speed;Throttle (TPS);Lambda probe;Stepper position;Mixture, rich;"
    "Working zone;Acceleration pump;TPS type;Fuel;Lambda probe type;ECU status\r\n";
const QByteArray Unita = "n;RPM;units;units;steps;;;;;;;\r\n";

} // namespace

class TstRegistrazioneAcq : public QObject, ProgrammaSimulato
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }
    void cleanup() { chiudi(); }

    void readsBackWhatTheRecorderWrote()
    {
        avvia();
        QList<RecordDati> inviati;
        connect(ecu.get(), &EcuSimulata::frameInviato, this, [&](const QByteArray &f) {
            if (f.size() > 6 && f.at(4) == 'd') {
                inviati.append(RecordDati{});
                DatiLive::decodifica(f.mid(4, f.size() - 6), inviati.last());
            }
        });
        p->anello.RegistrazioneAttiva = true;
        const QString file = cartella.filePath("PROVA.ACQ");
        QVERIFY(p->anello.impostaFileRegistrazione(file));
        // History, a pause, then a second recording on the same file counting from 0.
        QVERIFY(frame(5));
        QCOMPARE(p->anello.Inizio(), R::Esito::Fatto);
        QVERIFY(frame(50));
        QCOMPARE(p->anello.Pausa(), R::Esito::Fatto);
        QVERIFY(frame(10));
        QCOMPARE(p->anello.Inizio(), R::Esito::Fatto);
        QVERIFY(frame(20));
        QCOMPARE(p->anello.Fine(), R::Esito::Fatto);
        QVERIFY(frame(3));
        QCOMPARE(p->anello.Inizio(), R::Esito::Fatto);
        QVERIFY(frame(2));
        QCOMPARE(p->anello.Fine(), R::Esito::Fatto);

        QList<std::pair<qint32, int>> attesi; // sample number, frame sent
        for (int i = 0; i < 85; ++i)
            if (i < 55 || i >= 65)
                attesi.append({i, i});
        for (int k = 0; k < 5; ++k)
            attesi.append({k, 85 + k});

        RegistrazioneAcq r;
        QCOMPARE(r.leggi(file), E::Letta);
        QCOMPARE(r.righeScartate(), 0);
        QCOMPARE(r.nomi().at(1), p->canali.Canali[Canale::Giri].Nome.trimmed());
        QCOMPARE(r.campioni(), attesi.size());
        for (qsizetype j = 0; j < r.campioni(); ++j) {
            const auto [numero, i] = attesi.at(j);
            QCOMPARE(r.progressivo(j), numero);
            for (int c : CanaliRegistrati)
                QCOMPARE(r.valore(c, j), double(std::llround(inviati.at(i).Valore[std::size_t(c)])));
            // A gap after the pause and where the numbers start again; the axis rises all along.
            QCOMPARE(r.segue(j), j > 0 && j != 55 && j != 75);
            if (j > 0)
                QVERIFY(r.posizione(j) > r.posizione(j - 1));
        }
    }

    void skipsAndCountsWhatCannotBeRead_data()
    {
        QTest::addColumn<QByteArray>("testo");
        QTest::addColumn<E>("esito");
        QTest::addColumn<int>("campioni");
        QTest::addColumn<int>("scartate");
        QTest::addColumn<bool>("unita");
        const QByteArray a = riga(0, 800), b = riga(1, 900), c = riga(2, 1000), d = riga(3, 1100);
        QTest::newRow("whole") << Intestazione + Unita + a + b + c << E::Letta << 3 << 0 << true;
        QTest::newRow("last line cut short")
            << Intestazione + Unita + a + b + c.left(50) << E::Letta << 2 << 1 << true;
        QTest::newRow("malformed line")
            << Intestazione + Unita + a + "       1;  abc;\r\n" + b << E::Letta << 2 << 1 << true;
        QTest::newRow("broken write appended to")
            << Intestazione + Unita + a + b.left(40) + c + d << E::Letta << 2 << 1 << true;
        QTest::newRow("no line of units") << Intestazione + a + b << E::Letta << 2 << 0 << false;
        QTest::newRow("a letter") << QByteArray("Dear customer,\r\nthe car is ready.\r\n")
                                  << E::NonRegistrazione << 0 << 0 << false;
        QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << E::NonRegistrazione << 0
                                << 0 << false;
        QTest::newRow("commas") << QByteArray(a).replace(';', ',').repeated(3) << E::NonRegistrazione << 0
                                << 0 << false;
    }

    void skipsAndCountsWhatCannotBeRead()
    {
        QFETCH(QByteArray, testo);
        QFETCH(E, esito);
        RegistrazioneAcq r;
        QCOMPARE(leggiTesto(testo, r), esito);
        QTEST(int(r.campioni()), "campioni");
        QTEST(r.righeScartate(), "scartate");
        QTEST(!r.unita().isEmpty(), "unita");
    }

    void csvOfAKnownFile()
    {
        RegistrazioneAcq r;
        QCOMPARE(leggiTesto(
                     Intestazione + Unita
                         + "       7;     850;      12;     512;      64;      85;       1;       0;       1;"
                           "       1;       0;       0\r\n"
                           "       8;    -900;   12.50;    1023;      65;     255;       2;       1;       1;"
                           "       1;       1;     255\r\n",
                     r),
                 E::Letta);
        QBuffer csv;
        csv.open(QIODevice::WriteOnly);
        // The file's own names stand: the channel table is not asked.
        QVERIFY(ScriviCsv(r, TabellaCanali{}, 1, 2, csv));
        QCOMPARE(csv.data(),
                 QByteArray("Samples [n],Engine speed [RPM],Throttle (TPS) [units],Lambda probe [units],"
                            "Stepper position [steps],\"Mixture, rich\",Working zone,Acceleration pump,"
                            "TPS type,Fuel,Lambda probe type,ECU status\r\n"
                            "8,-900,12.5,1023,65,255,2,1,1,1,1,255\r\n"));
    }

    void statisticsAndColumnsAcrossAPause()
    {
        // Samples 0..99 and, after a pause, 150..249; engine speed ten times the place in the file.
        QByteArray testo = Intestazione + Unita;
        for (int i = 0; i < 200; ++i)
            testo += riga(i < 100 ? i : i + 50, 10 * i);
        RegistrazioneAcq r;
        QCOMPARE(leggiTesto(testo, r), E::Letta);
        const RegistrazioneAcq::Statistiche s = r.statistiche(Canale::Giri, 10, 150);
        QCOMPARE(s.campioni, 140);
        QCOMPARE(s.minimo, 100.0);
        QCOMPARE(s.massimo, 1490.0);
        QCOMPARE(s.media, 795.0);

        std::vector<RegistrazioneAcq::ColonnaPixel> colonne;
        r.decima(Canale::Giri, 0, 250, 5, colonne);
        const QList<std::array<float, 2>> estremi = {
            {0, 490}, {500, 990}, {0, 0}, {1000, 1490}, {1500, 1990}};
        for (int k = 0; k < 5; ++k) {
            QCOMPARE(colonne[std::size_t(k)].vuota, k == 2);
            QCOMPARE(colonne[std::size_t(k)].unita, k == 1 || k == 4);
            if (k != 2)
                QCOMPARE((std::array{colonne[std::size_t(k)].minimo, colonne[std::size_t(k)].massimo}),
                         estremi.at(k));
        }
    }
};

QTEST_MAIN(TstRegistrazioneAcq)
#include "tst_registrazioneacq.moc"
