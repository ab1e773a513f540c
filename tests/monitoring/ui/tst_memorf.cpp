// The record card on screen: the list following what is typed, an entry filling the boxes,
// the question before a card is replaced, an archive that is not ours; and a recording made
// end to end through the card from the chart window of the main window, against the
// simulated ECU.

#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"

#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/Memorf.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MsgBox1.h"

#include <QAction>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>

using namespace kv;

using S = SchedaRegistrazione;

class TstMemorf : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    QStringList messaggi;

    QString dati(const QString &resto) const { return cartella.filePath("DATI/" + resto); }

    // Runs azione on the modal box of type T as soon as it is up.
    template <typename T, typename F>
    void quandoAperto(F azione)
    {
        auto *t = new QTimer(this);
        t->setInterval(10);
        connect(t, &QTimer::timeout, this, [t, azione] {
            if (auto *w = qobject_cast<T *>(QApplication::activeModalWidget())) {
                t->stop();
                t->deleteLater();
                azione(w);
            }
        });
        t->start();
    }

    // The card as another opener of the archive sees it: MARCA/MODELLO/FILE.
    QStringList schede() const
    {
        QStringList r;
        Archivio a;
        if (!ApriArchivioDati(cartella.filePath("DATI"), "ARCHDATI.MDB", a))
            return {"cannot open"};
        for (const RigaArchivio &riga : a.Elenca(u"PER_FILE"))
            r << riga.Testo(u"MARCA") + '/' + riga.Testo(u"MODELLO") + '/' + riga.Testo(u"FILE");
        return r;
    }

    std::unique_ptr<Memorf> apriScheda()
    {
        auto m = std::make_unique<Memorf>(p->PercorsoApp, p->lingua, p->anello);
        m->impostaMessaggio([this](const QString &t, int flags, const QString &) {
            messaggi << t;
            return flags == 36 ? risposta : 1;
        });
        m->show();
        if (!QTest::qWaitForWindowActive(m.get()))
            return nullptr;
        return m;
    }
    int risposta = 7;

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }

    void init()
    {
        messaggi.clear();
        QVERIFY(QDir(cartella.filePath("DATI")).removeRecursively());
        QFile::remove(cartella.filePath("KORVANTINE.INI"));
        avvia();
    }

    void cleanup() { chiudi(); }

    void theListFollowsTheTypingAndAnEntryFillsTheCard()
    {
        {
            AnelloRegistrazione altro;
            altro.collega(nullptr, cartella.path());
            S s(cartella.path(), altro);
            QVERIFY(s.Apri());
            for (const auto &c :
                 {S::Caselle{"Fiat", "Punto", "giro1", "town"}, S::Caselle{"Fiat", "Panda", "giro2", ""},
                  S::Caselle{"Ford", "Ka", "k", ""}})
                QVERIFY(s.Memorizza(c, [] { return true; }).ok());
        }
        auto m = apriScheda();
        QVERIFY(m);
        QCOMPARE(m->windowTitle(), testo("Memorf", "CAPTION"));
        QCOMPARE(m->elencoEsi()->count(), 3);
        QCOMPARE(QApplication::focusWidget(), m->casella(S::Marca));

        QTest::keyClicks(m->casella(S::Marca), "fi");
        QCOMPARE(m->elencoEsi()->count(), 2);
        QTest::keyClicks(m->casella(S::Marca), "at");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), m->casella(S::Modello));
        // The box left stands padded to its length, and is trimmed again when entered.
        QCOMPARE(m->casella(S::Marca)->text(), QString("fiat").leftJustified(50, ' '));
        QTest::keyClicks(m->casella(S::Modello), "pu");
        QCOMPARE(m->elencoEsi()->count(), 1);
        QCOMPARE(m->elencoEsi()->item(0)->text(), S::VoceElenco("Fiat", "Punto"));
        QCOMPARE(m->nomeEsi(), QStringList{"giro1"});

        // A click on the entry fills the card from the archive, as typed there.
        const QListWidget *e = m->elencoEsi();
        QTest::mouseClick(e->viewport(), Qt::LeftButton, {}, e->visualItemRect(e->item(0)).center());
        for (int i = 0; i < S::NumeroCaselle; ++i)
            QCOMPARE(m->casella(i)->text(),
                     (QStringList{"Fiat", "Punto", "giro1", QString("town").leftJustified(255)}).at(i));
        QCOMPARE(m->scheda()->title(), testo("Memorf", "SCHEDA") + " - Fiat Punto");

        // That card exists: asked, and No leaves everything and goes to the file box.
        QTest::keyClick(m.get(), Qt::Key_F2);
        QCOMPARE(messaggi, QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_8")});
        QVERIFY(m->isVisible());
        QCOMPARE(QApplication::focusWidget(), m->casella(S::File));
        QVERIFY(p->anello.FileRegistrazione.isEmpty());

        // The box does not take a name that would be refused as typed.
        m->casella(S::File)->clear();
        QTest::keyClicks(m->casella(S::File), "./a\\:b*");
        QCOMPARE(m->casella(S::File)->text(), QString("ab"));

        // Yes replaces it and makes its file the recording file.
        m->casella(S::File)->setText("giro1");
        risposta = 6;
        QTest::keyClick(m.get(), Qt::Key_F2);
        QCOMPARE(messaggi.size(), 2);
        QVERIFY(!m->isVisible());
        QCOMPARE(m->result(), int(QDialog::Accepted));
        QCOMPARE(p->anello.FileRegistrazione, dati("Fiat/Punto/GIRO1.ACQ"));
    }

    void anArchiveThatIsNotOursLeavesTheCardOutOfUse_data()
    {
        QTest::addColumn<QByteArray>("contenuto");
        QTest::addColumn<ErroreArchivio>("errore");
        QTest::newRow("foreign file")
            << QByteArray("Standard Jet DB", 15) + QByteArray(2000, 'Z') << ErroreArchivio::FileEstraneo;
        QTest::newRow("damaged") << QByteArray("SQLite format 3\x00", 16) + QByteArray(4096 - 16, '\xEE')
                                 << ErroreArchivio::Danneggiato;
    }

    void anArchiveThatIsNotOursLeavesTheCardOutOfUse()
    {
        QFETCH(QByteArray, contenuto);
        QFETCH(ErroreArchivio, errore);
        QVERIFY(QDir().mkpath(cartella.filePath("DATI")));
        const QString file = cartella.filePath("DATI/ARCHDATI.MDB");
        scrivi(file, contenuto);

        auto m = apriScheda();
        QVERIFY(m);
        QVERIFY(!m->elencoEsi()->isEnabled());
        QVERIFY(m->scheda()->isHidden());
        QVERIFY(!m->tastoMemorizza()->isEnabled());
        QVERIFY(m->segnalazione()->isVisible());
        QCOMPARE(m->segnalazione()->text(), p->lingua.testo(MessaggioArchivio({errore, file, {}})));
        QTest::keyClick(m.get(), Qt::Key_F2);
        QVERIFY(messaggi.isEmpty());
        QTest::keyClick(m.get(), Qt::Key_Escape);
        QVERIFY(!m->isVisible());
        QCOMPARE(m->result(), int(QDialog::Rejected));
    }

    void aRecordingThroughTheCardFromTheCharts()
    {
        // The charts opened from the main window, whose registry runs the card.
        Korvantine finestra(*p);
        RegistraStrumenti(finestra);
        finestra.avvia();
        finestra.resize(1024, 768);
        finestra.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&finestra));
        auto *g = qobject_cast<Grafici *>(finestra.apriPagina(IdPagina::Grafici));
        QVERIFY(g);
        // The keys are on the values at once: Space charts the engine speed.
        QCOMPARE(QApplication::focusWidget(), g->riga(0));
        QTest::keyClick(g->riga(0), Qt::Key_Space);
        QCOMPARE(g->modello().slotDi(Canale::Giri), 0);
        QVERIFY(frame(3));

        // Start_Mem by its key: the card, modal, filled by keyboard and stored with F2.
        quandoAperto<Memorf>([](Memorf *m) {
            const char *testi[] = {"Fiat", "Punto", "giro1", "test drive"};
            for (int i = 0; i < S::NumeroCaselle; ++i)
                QTest::keyClicks(m->casella(i), testi[i]);
            m->tastoMemorizza()->click();
        });
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F2);
        finestra.activateWindow(); // the test platform gives nothing back by itself
        QVERIFY(QTest::qWaitForWindowActive(&finestra));
        QCOMPARE(QApplication::focusWidget(), g->riga(0));
        const QString file = dati("Fiat/Punto/GIRO1.ACQ");
        QCOMPARE(p->anello.FileRegistrazione, file);
        QCOMPARE(g->findChild<QLabel *>("LabRegistro")->text(),
                 testo("STRUMENTI", "LABREGISTRO.0") + " " + file);
        QCOMPARE(schede(), QStringList{"Fiat/Punto/giro1"});

        const auto tasto = [](Qt::Key k) { QTest::keyClick(QApplication::focusWidget(), k); };
        tasto(Qt::Key_F5); // Inizio: the three samples before it open the file
        QVERIFY(frame(45));
        tasto(Qt::Key_F6); // Pausa
        QVERIFY(frame(10));
        tasto(Qt::Key_F5);
        QVERIFY(frame(5));
        tasto(Qt::Key_F7); // Fine
        QCOMPARE(p->anello.StatoRegistrazione, qint16(AnelloRegistrazione::Fermo));

        // What the file holds, and the same card again, are the recorder's and the card's own tests.
        g->Esci();
        QVERIFY(!finestra.paginaAperta(g));
        // The instruments through the same registry: read, then gone by their own way out.
        auto *s = qobject_cast<Strumenti *>(finestra.apriPagina(IdPagina::Strumenti));
        QVERIFY(s && attendi());
        s->Esci();
        QVERIFY(!finestra.paginaAperta(s));
    }
};

QTEST_MAIN(TstMemorf)
#include "tst_memorf.moc"
