// The page frame on the idle page, with the simulated ECU wired straight to the port:
// fields, keys and colours, the emergency exit, the live panel, and the pages as the main
// window's menu opens them. What the page's dialogue does with the values is met in the
// variables tests.

#include "base/Lingua.h"
#include "support/ProgrammaSimulato.h"

#include "pages/DialogoPagina.h"
#include "pages/ui/CampoDato.h"
#include "pages/ui/MP_Minimo.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <cmath>

using namespace kv;
using namespace kv::sim;

namespace {

const QColor Rosso(255, 0, 0);
const QColor Bianco(Qt::white);

QColor sfondo(const QWidget *w)
{
    return w->palette().color(QPalette::Base);
}
QColor testoDi(const QWidget *w)
{
    return w->palette().color(QPalette::Text);
}

} // namespace

class TstTelaioMessaPunto : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<MP_Minimo> pagina;
    int risposta = 2; // what the question at Esci is answered
    int domande = 0;

    CampoDato *dato(int i) { return pagina->DatoMinimo(i); }
    QPushButton *tasto(const char *nome) { return pagina->findChild<QPushButton *>(nome); }
    QLabel *etichetta(const QString &nome) { return pagina->findChild<QLabel *>(nome); }
    QString testo(const char *chiave) { return p->lingua.LeggiTesto("SEGNALAZIONI", chiave); }

    void apri(bool attendiLettura = true)
    {
        pagina = std::make_unique<MP_Minimo>(ContestoDi(*p));
        pagina->impostaDomanda([this](const QString &, int flags, const QString &) {
            ++domande;
            return flags == DialogoPagina::FlagDomandaEsci ? risposta : -1;
        });
        pagina->resize(900, 520);
        pagina->show();
        QVERIFY(QTest::qWaitForWindowExposed(pagina.get()));
        pagina->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(pagina.get()));
        pagina->carica();
        if (attendiLettura)
            QVERIFY(attendi());
    }

    // Focus into a field by Tab-like means, as the fitter would.
    void entra(CampoDato *c)
    {
        c->setFocus(Qt::TabFocusReason);
        QTRY_VERIFY(c->hasFocus());
    }
    void digita(int i, const QString &testo)
    {
        entra(dato(i));
        dato(i)->clear();
        QTest::keyClicks(dato(i), testo);
    }

    // The main window with the pages its menu opens, and one of them opened through it.
    template <typename Pagina>
    Pagina *apriDalMenu(Korvantine &finestra, IdPagina id)
    {
        RegistraPagineMessaPunto(finestra);
        finestra.avvia();
        auto *aperta = qobject_cast<Pagina *>(finestra.apriPagina(id));
        return aperta && attendi() && finestra.idPaginaAttiva() == id ? aperta : nullptr;
    }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }

    void init()
    {
        avvia();
        risposta = 2;
        domande = 0;
        vociMinimo();
    }

    void cleanup()
    {
        pagina.reset();
        chiudi();
    }

    void opensWithPaddedValuesCaptionsAndRanges()
    {
        apri();
        const QStringList attesi = {"900", "1300", "25", "40", "75", "174", "10", "7"};
        for (int i = 0; i < 8; ++i) {
            QCOMPARE(dato(i)->text().trimmed(), attesi[i]);
            // Padded to the field's length, except the one being edited.
            QVERIFY(dato(i)->hasFocus() || dato(i)->text().size() == CampoDato::LunghezzaMassima);
        }
        QVERIFY(dato(0)->hasFocus()); // ready for typing
        const QString titolo = p->lingua.LeggiTesto("MP_Minimo", "CAPTION");
        QVERIFY(!titolo.isEmpty() && pagina->windowTitle() == titolo);
        QCOMPARE(etichetta("LabParametro_0")->text(), p->lingua.LeggiTesto("MP_Minimo", "LABPARAMETRO.0"));
        QCOMPARE(dato(3)->toolTip(), QString("12 - 249"));
        QVERIFY(pagina->isEnabled() && etichetta("Segnalazione")->text().isEmpty());
        QVERIFY(tasto("Esci")->isVisible() && !tasto("Esci_Out")->isVisible());
    }

    void keyFilterAndFocusColoursOfAField()
    {
        apri();
        CampoDato *c = dato(0);
        entra(c);
        QCOMPARE(c->text(), QString("900")); // trimmed on entry
        QCOMPARE(sfondo(c), QColor(0, 0, 255));
        QCOMPARE(testoDi(c), Bianco);
        QTest::keyClick(c, Qt::Key_End);
        QTest::keyClick(c, Qt::Key_Minus);
        QCOMPARE(c->text(), QString("900")); // "-" only into an empty field
        QTest::keyClicks(c, "1.,a");
        QTest::keyClick(c, Qt::Key_Return);
        QVERIFY(dato(1)->hasFocus());           // Enter moves on like Tab
        QCOMPARE(c->text(), QString("  9001")); // formatted on leaving
        QCOMPARE(sfondo(c), Bianco);
        QCOMPARE(testoDi(c), QColor(Qt::black));

        entra(c);
        QTest::keyClick(c, Qt::Key_Space);
        QCOMPARE(c->text(), QString());
        QTest::keyClicks(c, "-5");
        QCOMPARE(c->text(), QString("-5"));
        QTest::keyClick(c, Qt::Key_Backspace);
        QTest::keyClick(c, Qt::Key_Return);
        QCOMPARE(c->text(), QString("-")); // not a number: left as typed
    }

    void theFirstDigitReplacesTheField()
    {
        apri();
        QTest::keyClicks(dato(0), "1100"); // the page opened on it
        QCOMPARE(dato(0)->text(), QString("1100"));
        QTest::mouseClick(dato(1), Qt::LeftButton);
        QTest::keyClicks(dato(1), "1250");
        QCOMPARE(dato(1)->text(), QString("1250"));
    }

    void badValuesTurnRedAndNeverLeaveThePage()
    {
        apri();
        const qsizetype prima = porta->scritti.size();
        digita(0, "1400"); // above the idle exit
        digita(7, "");     // left empty: normal colours for now
        entra(dato(6));
        QCOMPARE(sfondo(dato(7)), Bianco);
        QTest::keyClick(dato(6), Qt::Key_F2);
        QCOMPARE(porta->scritti.size(), prima);
        QCOMPARE(sfondo(dato(7)), Rosso);
        QCOMPARE(testoDi(dato(7)), Bianco);
        QVERIFY(dato(0)->hasFocus()); // the first bad one, in the colours of the focus
        QCOMPARE(sfondo(dato(0)), QColor(0, 0, 255));
        QCOMPARE(testoDi(dato(0)), Bianco);
        // The idle exit now lies below its new floor of 1400.
        QCOMPARE(sfondo(dato(1)), Rosso);
        QCOMPARE(sfondo(dato(2)), Bianco);
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 900);
    }

    void commandKeysApplyStoreRestoreAndAsk()
    {
        apri();
        digita(0, "1000");
        QTest::keyClick(dato(0), Qt::Key_F2);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QVERIFY(dato(0)->hasFocus()); // back where it was before the save

        QTest::keyClick(pagina.get(), Qt::Key_F5); // snapshot of 1000
        digita(0, "950");
        QTest::keyClick(dato(0), Qt::Key_F2);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 950);
        QTest::keyClick(pagina.get(), Qt::Key_F8);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QCOMPARE(dato(0)->text().trimmed(), QString("1000"));

        // Esc asks, as there is something to keep; a box closed without a key changes nothing.
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        const qsizetype prima = porta->scritti.size();
        risposta = 99;
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QCOMPARE(domande, 1);
        QVERIFY(chiusure.isEmpty() && porta->scritti.size() == prima);
    }

    void commandsAnswerTheirAltKeysAsWellAsTheirFunctionKeys_data()
    {
        QTest::addColumn<int>("premuto");
        QTest::addColumn<Qt::KeyboardModifiers>("modificatori");
        QTest::addColumn<QString>("comando");
        const auto riga = [](const char *nome, int k, Qt::KeyboardModifiers m, const char *comando) {
            QTest::newRow(nome) << k << m << QString(comando);
        };
        riga("F2", Qt::Key_F2, Qt::NoModifier, "Applica");
        riga("Alt+A", Qt::Key_A, Qt::AltModifier, "Applica");
        riga("F5", Qt::Key_F5, Qt::NoModifier, "Memorizza");
        riga("Alt+S", Qt::Key_S, Qt::AltModifier, "Memorizza");
        riga("F8", Qt::Key_F8, Qt::NoModifier, "Ripristina");
        riga("Alt+R", Qt::Key_R, Qt::AltModifier, "Ripristina");
        riga("Esc", Qt::Key_Escape, Qt::NoModifier, "Esci");
        riga("Alt+E", Qt::Key_E, Qt::AltModifier, "Esci");
    }

    void commandsAnswerTheirAltKeysAsWellAsTheirFunctionKeys()
    {
        QFETCH(int, premuto);
        QFETCH(Qt::KeyboardModifiers, modificatori);
        QFETCH(QString, comando);
        apri();
        QVERIFY(dato(0)->hasFocus());
        QHash<QString, int> premuti;
        for (QPushButton *b : pagina->findChildren<QPushButton *>())
            connect(b, &QPushButton::clicked, this, [&premuti, b] { ++premuti[b->objectName()]; });
        // As the window system sends it: to the field being edited.
        QTest::keyClick(pagina->windowHandle(), Qt::Key(premuto), modificatori);
        QTRY_COMPARE(premuti.value(comando), 1);
        QCOMPARE(premuti.size(), 1);
        QVERIFY(tasto("Applica")->text().startsWith(QLatin1String("&")));
    }

    void timeOutOnTheOpeningReadLeavesOnlyTheWayOut()
    {
        ecu->impostaStallo(true);
        apri(false);
        QVERIFY(!pagina->isEnabled());
        QCOMPARE(etichetta("Segnalazione")->text(), testo("SEGNALAZIONE_1"));
        QVERIFY(req->scatta());
        QVERIFY(pagina->isEnabled());
        QCOMPARE(etichetta("Segnalazione")->text(), testo("SEGNALAZIONE_2"));
        QVERIFY(tasto("Esci_Out")->isVisible() && tasto("Esci_Out")->isEnabled());
        QVERIFY(!tasto("Esci")->isVisible());
        for (const char *n : {"Esci", "Applica", "Memorizza", "Ripristina"})
            QVERIFY2(!tasto(n)->isEnabled(), n);

        // Neither their keys nor Esc do anything now; Esci_Out leaves without a word.
        ecu->impostaStallo(false);
        const qsizetype prima = porta->scritti.size();
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        QTest::keyClick(pagina.get(), Qt::Key_F2);
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QTest::keyClick(pagina->windowHandle(), Qt::Key_A, Qt::AltModifier);
        QTest::qWait(200);
        QCOMPARE(chiusure.size(), 0);
        // The way out has the Alt key of Esci.
        QTest::keyClick(pagina->windowHandle(), Qt::Key_E, Qt::AltModifier);
        QTRY_COMPARE(chiusure.size(), 1);
        QCOMPARE(porta->scritti.size(), prima);
        QCOMPARE(domande, 0);
    }

    void noTpsFittedHidesItsRowsButStillChecksThem()
    {
        voce(Par::TpsTaratoMassimo, 1023);
        voce(Par::TpsTaratoMinimo, 1023);
        apri();
        for (int i : {2, 3}) {
            QVERIFY(!dato(i)->isVisible());
            QVERIFY(!etichetta(QString("LabParametro_%1").arg(i))->isVisible());
            QVERIFY(!etichetta(QString("Misura_%1").arg(i))->isVisible());
        }
        QVERIFY(dato(4)->isVisible());
        // The hidden exit threshold now lies below its floor of 255: the check still sees it.
        QVERIFY(!pagina->ControlloValori());
        QCOMPARE(sfondo(dato(3)), Rosso);
    }

    void adaptiveTpsLocksItsFieldsYetApplySendsThem()
    {
        p->catalogo.Valori[Par::TpsAutoadattante].Letto = 0;
        apri();
        for (int i : {2, 3}) {
            QVERIFY(dato(i)->isReadOnly());
            QCOMPARE(sfondo(dato(i)), QColor(Qt::black));
            QCOMPARE(testoDi(dato(i)), QColor(0, 255, 0));
        }
        entra(dato(2));
        QTest::keyClicks(dato(2), "9 ");
        QCOMPARE(dato(2)->text().trimmed(), QString("25"));
        QCOMPARE(sfondo(dato(2)), QColor(Qt::black));
        voce(Par::SogliaTpsEntrataMinimo, 0);
        tasto("Applica")->click();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaTpsEntrataMinimo), 100);
    }

    void livePanelFollowsTheStream()
    {
        apri();
        ecu->avanzaTempo(40);
        QTRY_VERIFY(!etichetta("Dato_0")->text().isEmpty());
        const RecordDati &r = p->linea.datiLive().ultimoRecord();
        // Panel row by row: RPM, lambda, TPS, stepper.
        const int canali[] = {Canale::Giri, Canale::Lambda, Canale::Tps, Canale::ActPos};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(etichetta(QString("Dato_%1").arg(i))->text(),
                     QString::number(std::lround(r.Valore[canali[i]])));
        const int zona = int(r.Valore[Canale::MZonAct]);
        QCOMPARE(
            etichetta("ZonaLavoro")->text(),
            p->lingua.LeggiTesto("ZONE", zona >= 1 && zona <= 5 ? QString("ZONA.%1").arg(zona) : "ZONA.99"));
    }

    void aPageTheSilenceClosesSaysWhatItDidNotApply()
    {
        Korvantine finestra(*p);
        auto *minimo = apriDalMenu<MP_Minimo>(finestra, IdPagina::MP_Minimo);
        QVERIFY(minimo && frame()); // the stream is known: its watchdog runs
        const QString titolo = minimo->windowTitle();
        minimo->DatoMinimo(0)->setText("1000"); // typed, not applied
        QString detto;
        QTimer::singleShot(50, this, [&detto] {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                if (auto *box = qobject_cast<MsgBox1 *>(w); box && box->isVisible()) {
                    detto = box->findChild<QLabel *>("Segnalazione")->text();
                    box->tastiVisibili().at(0)->click();
                }
            }
        });
        QVERIFY(static_cast<TemporizzatoreManuale &>(p->linea.TimeOutDati()).scatta());
        QVERIFY(finestra.menu());
        QTRY_COMPARE(detto, p->lingua.LeggiTesto("MESSAPUNTO", "LINEA_PERSA").replace("XXX", titolo));
    }

    void idlePageAsksThroughTheMainWindowsBox()
    {
        Korvantine finestra(*p);
        auto *minimo = apriDalMenu<MP_Minimo>(finestra, IdPagina::MP_Minimo);
        QVERIFY(minimo);
        // The main window's message line: set as the page loads, emptied by an acknowledged save.
        auto *riga = finestra.findChild<QLabel *>("Segnalazione1");
        QCOMPARE(riga->text(), p->lingua.LeggiTesto("TASTI", "ESCI"));
        minimo->DatoMinimo(0)->setText("1000");
        minimo->Applica();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QCOMPARE(riga->text(), QString());
        // The box is the main window's; answer No as soon as it shows.
        QTimer::singleShot(50, this, [] {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                auto *box = qobject_cast<MsgBox1 *>(w);
                if (box && box->isVisible() && box->tastiVisibili().size() == 3)
                    box->tastiVisibili().at(1)->click(); // Yes, No, Cancel
            }
        });
        minimo->findChild<QPushButton *>("Esci")->click();
        QVERIFY(attendi());
        QTRY_VERIFY(!finestra.paginaAperta(minimo));
        QVERIFY(finestra.idPaginaAttiva() != IdPagina::MP_Minimo);
        QCOMPARE(riga->text(), QString());                // the page's word went with it
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 900); // No: the opening value is back
    }
};

QTEST_MAIN(TstTelaioMessaPunto)
#include "tst_telaiomessapunto.moc"
