// The chart window on screen, fed by the simulated ECU through the program's port: four
// charts picked by keyboard, their curves growing a segment at a time, a recording whose
// file is chosen by the card and then made read-only, started again in a new file, and Esc.

#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/SolaLettura.h"

#include "base/FileIni.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/GraficoStriscia.h"
#include "monitoring/ui/RegistroStrumenti.h"

#include <QAction>
#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using namespace kv;

class TstFinestraGrafici : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<Grafici> g;
    QStringList messaggi;
    int risposta = 1;

    // One live frame through the port, then the display tick (unless the page's own timer
    // has just run it).
    bool frame()
    {
        if (!ProgrammaSimulato::frame())
            return false;
        g->VisDati();
        return true;
    }

    void tasto(Qt::Key k) { QTest::keyClick(QApplication::focusWidget(), k); }

    void apri()
    {
        g = std::make_unique<Grafici>(ContestoMonitorDi(*p));
        g->barra().impostaMessaggio([this](const QString &t, int, const QString &) {
            messaggi << t;
            return risposta;
        });
        g->resize(1024, 700);
        g->show();
        QVERIFY(QTest::qWaitForWindowActive(g.get()));
        g->carica();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(preparaCartella());
        QVERIFY(QDir().mkpath(cartella.filePath("DATI/A/B")));
    }

    void init()
    {
        messaggi.clear();
        avvia();
        QFile::remove(p->percorsoIni());
    }

    void cleanup()
    {
        g.reset();
        chiudi();
    }

    void fourChartsByKeyboardThenEscCloses()
    {
        apri();
        QCOMPARE(g->windowTitle(), testo("GRAFICI", "CAPTION") + " - [" + testo("GRAFICI", "LABREGISTRO.1")
                                       + " " + testo("REGISTRAZIONE", "STATOREG.0") + "]");
        QCOMPARE(QApplication::focusWidget(), g->riga(0));
        // Engine speed, throttle, lambda, stepper; the fifth is refused.
        tasto(Qt::Key_Space);
        for (Qt::Key k : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Enter, Qt::Key_Space}) {
            tasto(Qt::Key_Down);
            tasto(k);
        }
        for (int s = 0; s < 4; ++s) {
            QVERIFY(g->grafico(s)->isVisible());
            QCOMPARE(g->grafico(s)->titolo(GraficoStriscia::AsseY), p->canali.TitoloCanale(2 + s));
        }
        QCOMPARE(g->riga(4)->coloreGrafico(), std::nullopt);
        QCOMPARE(g->riga(1)->coloreGrafico(), Grafici::coloreSlot(1));
        // Four charts take the quadrants, the second below the first.
        QCOMPARE(g->grafico(0)->x(), g->grafico(1)->x());
        QVERIFY(g->grafico(1)->y() > g->grafico(0)->y() + g->grafico(0)->height() / 2);
        QVERIFY(g->grafico(2)->x() > g->grafico(0)->x() + g->grafico(0)->width() / 2);

        // Each sample adds a segment; the whole chart is drawn again only when its scale moves.
        QVERIFY(frame());
        QApplication::processEvents();
        GraficoStriscia *giri = g->grafico(0);
        const int interi = giri->ridisegniCompleti();
        const int segmenti = giri->segmentiDisegnati();
        int rescalature = 0;
        for (int n = 0; n < 30; ++n) {
            const qint32 min = p->canali.Canali[2].MinDisegnato, max = p->canali.Canali[2].MaxDisegnato;
            QVERIFY(frame());
            QApplication::processEvents();
            rescalature += min != p->canali.Canali[2].MinDisegnato || max != p->canali.Canali[2].MaxDisegnato;
        }
        QCOMPARE(int(giri->punti(0).size()), 31);
        QCOMPARE(giri->punti(0).back(), QPointF(30, p->linea.datiLive().ultimoRecord().Valore[2]));
        QVERIFY(giri->ridisegniCompleti() - interi <= rescalature);
        QVERIFY(giri->segmentiDisegnati() - segmenti >= 30 - rescalature);
        QCOMPARE(g->riga(0)->valore(),
                 QString::number(std::lround(p->linea.datiLive().ultimoRecord().Valore[2])));

        QSignalSpy chiusa(g.get(), &Grafici::chiusa);
        tasto(Qt::Key_Escape);
        QCOMPARE(chiusa.size(), 1);
        QCOMPARE(p->anello.RegistrazioneAttiva, qint16(0));
    }

    // The working zones are the longest texts a row shows.
    void everyZoneReadsWholeInItsRow_data()
    {
        QTest::addColumn<QString>("nomeLingua");
        QTest::newRow("English") << "ENGLISH";
        QTest::newRow("Italian") << "ITALIANO";
    }

    void everyZoneReadsWholeInItsRow()
    {
        QFETCH(QString, nomeLingua);
        apri();
        Lingua distribuita(QStringLiteral(KV_SOURCE_DIR "/lang"));
        distribuita.LinguaCorrente = nomeLingua;
        RigaDatoGrafico *riga = g->riga(0);
        for (const char *zona : {"ZONA.1", "ZONA.2", "ZONA.3", "ZONA.4", "ZONA.5", "ZONA.99"}) {
            const QString t = distribuita.LeggiTesto("ZONE", zona);
            QVERIFY(!t.isEmpty());
            riga->impostaValore(t);
            const RigaDatoGrafico::DisposizioneValore d = riga->disposizioneValore();
            QCOMPARE(d.testo, t);
            QVERIFY(riga->rect().contains(d.riquadro));
            QVERIFY2(d.riquadro.contains(QFontMetrics(d.font).boundingRect(d.riquadro, d.allineamento, t)),
                     qPrintable(t));
        }
    }

    void aWriteFailureIsToldAndStopsTheRecording()
    {
        const QString file = cartella.filePath("DATI/A/B/GIRO.ACQ");
        QFile::remove(file);
        apri();
        QAction *inizio = g->barra().azione("Inizio");
        QAction *pausa = g->barra().azione("Pausa");
        QVERIFY(inizio->isVisible() && !pausa->isVisible());

        // The card chooses the file; the window takes it up when the card returns.
        g->barra().impostaApriScheda([&](QWidget *) {
            QVERIFY(FileIni::scrivi(p->percorsoIni(), "MEMORIZZAZIONE", "FileMemor", file));
        });
        tasto(Qt::Key_F2);
        QCOMPARE(p->anello.FileRegistrazione, file);

        for (int n = 0; n < 3; ++n)
            QVERIFY(frame());
        tasto(Qt::Key_F5);
        QCOMPARE(p->anello.StatoRegistrazione, qint16(AnelloRegistrazione::InRegistrazione));
        QVERIFY(!inizio->isVisible() && pausa->isVisible());
        QVERIFY(g->windowTitle().endsWith(testo("REGISTRAZIONE", "STATOREG.1") + "]"));
        const QByteArray scritto = leggi(file);
        QCOMPARE(scritto.count('\n'), 2 + 3);
        {
            SolaLettura protetto(file);
            for (int n = 0; n < 41; ++n)
                QVERIFY(frame());
            QTRY_COMPARE(messaggi.size(), 1);
        }
        QCOMPARE(messaggi.last(), testo("REGISTRAZIONE", "ERRORE.0").replace("XXX", file));
        QCOMPARE(p->anello.StatoRegistrazione, qint16(AnelloRegistrazione::Fermo));
        QVERIFY(inizio->isVisible() && !pausa->isVisible());
        QCOMPARE(leggi(file), scritto);

        // The file holds a recording: asked first. Cancel starts nothing; No goes on in a new
        // file on a card of its own, the old file untouched.
        const QString accoda = testo("REGISTRAZIONE", "ACCODA").replace("XXX", file);
        tasto(Qt::Key_F5);
        QCOMPARE(messaggi.last(), accoda);
        QCOMPARE(p->anello.StatoRegistrazione, qint16(AnelloRegistrazione::Fermo));
        risposta = 7;
        QVERIFY(frame());
        tasto(Qt::Key_F5);
        QCOMPARE(messaggi.size(), 3);
        const QString nuovo = cartella.filePath("DATI/A/B/GIRO_2.ACQ");
        QCOMPARE(p->anello.FileRegistrazione, nuovo);
        QCOMPARE(FileIni::leggi(p->percorsoIni(), "MEMORIZZAZIONE", "FileMemor"), nuovo);
        QCOMPARE(p->anello.StatoRegistrazione, qint16(AnelloRegistrazione::InRegistrazione));
        QVERIFY(leggi(nuovo).startsWith(scritto.left(scritto.indexOf('\n', scritto.indexOf('\n') + 1) + 1)));
        QCOMPARE(leggi(file), scritto);

        // A write that fails as the window closes is told then, before it has gone.
        QVERIFY(frame());
        SolaLettura protetto(nuovo);
        QSignalSpy chiusa(g.get(), &Grafici::chiusa);
        connect(g.get(), &Grafici::chiusa, this, [&] { QCOMPARE(messaggi.size(), 4); });
        tasto(Qt::Key_Escape);
        QCOMPARE(chiusa.size(), 1);
        QCOMPARE(messaggi.last(), testo("REGISTRAZIONE", "ERRORE.0").replace("XXX", nuovo));
    }
};

QTEST_MAIN(TstFinestraGrafici)
#include "tst_finestragrafici.moc"
