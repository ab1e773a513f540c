// The recorder on the real receive path: the simulated ECU's 'd' frames go through the
// program's port, receiver and decoder into the ring, and the .ACQ file must hold exactly
// the samples sent, with the ring's history first, gaps where paused, appends without new
// headings, and nothing lost of what was written when a write fails.

#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/SolaLettura.h"

#include "base/FileIni.h"

#include <QDir>
#include <QTest>

#include <sys/resource.h>

#include <cmath>
#include <csignal>

using namespace kv;
using namespace kv::sim;

using R = AnelloRegistrazione;

class TstRegistrazione : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    QList<RecordDati> inviati; // what each 'd' frame the ECU sent carries
    QString file;

    R &r() { return p->anello; }

    // The line of sample number n, from the frame sent as the i-th.
    QByteArray riga(int numero, int i) const
    {
        const RecordDati &d = inviati.at(i);
        QByteArray s = QByteArray::number(numero).rightJustified(8, ' ');
        for (int c : {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 1})
            s += ';' + QByteArray::number(qlonglong(std::llround(d.Valore[c]))).rightJustified(8, ' ');
        return s + "\r\n";
    }

    QByteArray intestazione() const
    {
        QStringList nomi, unita;
        for (int c : {0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 1}) {
            nomi << p->canali.Canali[c].Nome.trimmed();
            unita << p->canali.Canali[c].UM.trimmed();
        }
        return (nomi.join(';') + "\r\n" + unita.join(';') + "\r\n").toLatin1();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(preparaCartella());
        QVERIFY(QDir().mkpath(cartella.filePath("DATI/FIAT/PUNTO")));
        file = cartella.filePath("DATI/FIAT/PUNTO/PROVA.ACQ");
    }

    void init()
    {
        QFile::remove(file);
        inviati.clear();
        avvia();
        connect(ecu.get(), &EcuSimulata::frameInviato, this, [this](const QByteArray &f) {
            if (f.size() > 6 && f.at(4) == 'd') {
                RecordDati d;
                DatiLive::decodifica(f.mid(4, f.size() - 6), d);
                inviati.append(d);
            }
        });
        // As a monitor window opens.
        p->anello.RegistrazioneAttiva = true;
        QVERIFY(r().impostaFileRegistrazione(file));
    }

    void cleanup() { chiudi(); }

    void theFileHoldsWhatTheEcuSent()
    {
        // Nothing in the ring yet: not even the headings are written.
        QCOMPARE(r().Inizio(), R::Esito::Fatto);
        QVERIFY(!QFile::exists(file));
        QCOMPARE(r().Fine(), R::Esito::Fatto);

        QVERIFY(frame(10)); // the history before the key
        QCOMPARE(r().Inizio(), R::Esito::Fatto);
        QByteArray atteso = intestazione();
        for (int i = 0; i < 10; ++i)
            atteso += riga(i, i);
        QCOMPARE(leggi(file), atteso);

        // A full ring is written as one batch, once in 41 frames.
        QVERIFY(frame(40));
        QCOMPARE(leggi(file), atteso);
        QVERIFY(frame(1));
        for (int i = 10; i <= 50; ++i)
            atteso += riga(i, i);
        QCOMPARE(leggi(file), atteso);

        QVERIFY(frame(9));
        QCOMPARE(r().Pausa(), R::Esito::Fatto);
        QCOMPARE(r().Pausa(), R::Esito::Ignorato);
        for (int i = 51; i <= 59; ++i)
            atteso += riga(i, i);
        QVERIFY(frame(20)); // sampled while paused: dropped
        QCOMPARE(r().Inizio(), R::Esito::Fatto);
        QVERIFY(frame(5));
        QCOMPARE(r().Fine(), R::Esito::Fatto);
        for (int i = 80; i <= 84; ++i)
            atteso += riga(i, i);
        QCOMPARE(leggi(file), atteso);

        // Started again without a new card: appended, no headings, numbers from 0 again.
        QVERIFY(frame(3));
        QCOMPARE(r().Inizio(), R::Esito::Fatto);
        QCOMPARE(r().Inizio(), R::Esito::SenzaFile); // already recording
        QCOMPARE(r().Fine(), R::Esito::Fatto);
        for (int i = 0; i < 3; ++i)
            atteso += riga(i, 85 + i);
        QCOMPARE(leggi(file), atteso);

        // Without a file there is nothing to start.
        QVERIFY(r().impostaFileRegistrazione(QString()));
        QCOMPARE(r().Inizio(), R::Esito::SenzaFile);
        QCOMPARE(r().StatoRegistrazione, qint16(R::Fermo));
    }

    void aFailedWriteStopsAndKeepsWhatWasWritten_data()
    {
        QTest::addColumn<bool>("solaLettura");
        QTest::newRow("file made read-only") << true;
        QTest::newRow("disk full") << false;
    }

    void aFailedWriteStopsAndKeepsWhatWasWritten()
    {
        QFETCH(bool, solaLettura);
        QVERIFY(frame(5));
        QCOMPARE(r().Inizio(), R::Esito::Fatto);
        const QByteArray scritto = leggi(file);
        QVERIFY(scritto.size() > 100);
        {
            std::unique_ptr<SolaLettura> protetto;
            rlimit prima{};
            getrlimit(RLIMIT_FSIZE, &prima);
            const auto vecchioSegnale = std::signal(SIGXFSZ, SIG_IGN);
            if (solaLettura) {
                protetto = std::make_unique<SolaLettura>(file);
            } else {
                // Room for a hundred bytes more: the batch breaks off in its first line.
                rlimit stretto = prima;
                stretto.rlim_cur = rlim_t(scritto.size() + 100);
                QCOMPARE(setrlimit(RLIMIT_FSIZE, &stretto), 0);
            }
            const bool arrivati = frame(41);
            setrlimit(RLIMIT_FSIZE, &prima);
            std::signal(SIGXFSZ, vecchioSegnale);
            QVERIFY(arrivati);
        }
        QCOMPARE(r().StatoRegistrazione, qint16(R::Fermo));
        const auto errore = r().prendiErrore();
        QVERIFY(errore);
        QCOMPARE(errore->tipo, R::Errore::Tipo::Scrittura);
        QCOMPARE(errore->file, file);
        QVERIFY(!r().prendiErrore()); // told once
        QCOMPARE(leggi(file), scritto);
        // Stopped: the stream goes on and the file stays as it was.
        QVERIFY(frame(41));
        QCOMPARE(leggi(file), scritto);
    }

    void onlyFilesInsideTheProgramsFolder()
    {
        QTemporaryDir fuori;
        QVERIFY(!r().impostaFileRegistrazione(fuori.filePath("X.ACQ")));
        QVERIFY(r().FileRegistrazione.isEmpty());
        QVERIFY(!r().impostaFileRegistrazione(cartella.filePath("DATI/../../X.ACQ")));
        QVERIFY(QFile::link(fuori.filePath("X.ACQ"), cartella.filePath("DATI/LINK.ACQ")));
        QVERIFY(!r().impostaFileRegistrazione(cartella.filePath("DATI/LINK.ACQ")));
        QVERIFY(QFile::link(fuori.path(), cartella.filePath("DATI/FUORI")));
        QVERIFY(!r().impostaFileRegistrazione(cartella.filePath("DATI/FUORI/X.ACQ")));

        // The stored name: tried, kept when missing, refused when it leads outside.
        const auto memorizzato = [&](const QString &nome) {
            QVERIFY(FileIni::scrivi(p->percorsoIni(), "MEMORIZZAZIONE", "FileMemor", nome));
        };
        memorizzato(" " + file + " ");
        QCOMPARE(r().LeggiFileRegistrazione(), file);
        memorizzato(cartella.filePath("DATI/FUORI/X.ACQ"));
        QCOMPARE(r().LeggiFileRegistrazione(), QString());
        memorizzato(cartella.filePath("DATI"));
        QCOMPARE(r().LeggiFileRegistrazione(), QString());
    }
};

QTEST_MAIN(TstRegistrazione)
#include "tst_registrazione.moc"
