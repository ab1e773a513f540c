// The page frame on the idle page, with the simulated ECU wired straight to the port:
// fields, keys and colours, the commands, the emergency exit and the live panel.

#include "../variables/PortaEcu.h"

#include "pages/CampoDato.h"
#include "pages/MP_Minimo.h"
#include "shell/Programma.h"
#include "variables/DialogoPagina.h"
#include "variables/Formato.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

namespace {

const QColor Blu(0, 0, 255);
const QColor Rosso(255, 0, 0);
const QColor Verde(0, 255, 0);

QColor sfondo(const QWidget *w) { return w->palette().color(QPalette::Base); }
QColor testoDi(const QWidget *w) { return w->palette().color(QPalette::Text); }

} // namespace

class TstTelaioMessaPunto : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    std::unique_ptr<Programma> p;
    PortaEcu *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    std::unique_ptr<MP_Minimo> pagina;
    QList<int> risposte;    // what the question at Esci is answered, in turn
    int domande = 0;

    int ram(int parametro) { return CellaEcu(*ecu, p->catalogo, parametro, false); }
    int eeprom(int parametro) { return CellaEcu(*ecu, p->catalogo, parametro, true); }
    CampoDato *dato(int i) { return pagina->DatoMinimo(i); }
    QPushButton *tasto(const char *nome) { return pagina->findChild<QPushButton *>(nome); }
    QString segnalazione() { return pagina->findChild<QLabel *>("Segnalazione")->text(); }

    bool attendi()
    {
        QDeadlineTimer scadenza(3000);
        while (p->motore.StatoDialogo != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents();
        return p->motore.StatoDialogo == -1;
    }

    void preparaEcu()
    {
        const Catalogo &c = p->catalogo;
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriEntrataMinimo, 900);
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriUscitaMinimo, 1300);
        ImpostaVoceEcu(*ecu, c, Par::SogliaGiriUscitaCutOff, 1700);
        ImpostaVoceEcu(*ecu, c, Par::SogliaTpsEntrataMinimo, 100);
        ImpostaVoceEcu(*ecu, c, Par::SogliaTpsUscitaMinimo, 160);
        ImpostaVoceEcu(*ecu, c, Par::TpsTaratoMassimo, 1000);
        ImpostaVoceEcu(*ecu, c, Par::TpsTaratoMinimo, 50);
        ImpostaVoceEcu(*ecu, c, Par::ScalaLambda, 0);
        ImpostaVoceEcu(*ecu, c, Par::SogliaLambdaMagroMinimo, 300);
        ImpostaVoceEcu(*ecu, c, Par::SogliaLambdaRiccoMinimo, 700);
        ImpostaVoceEcu(*ecu, c, Par::FrequenzaControlloMinimo, 100);
        ImpostaVoceEcu(*ecu, c, Par::PassiControlloMinimo, 7);
    }

    void apri(bool attendiLettura = true)
    {
        pagina = std::make_unique<MP_Minimo>(*p);
        pagina->impostaDomanda([this](const QString &, int flags, const QString &) {
            ++domande;
            if (flags != DialogoPagina::FlagDomandaEsci)
                return -1;
            return risposte.isEmpty() ? 2 : risposte.takeFirst();
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

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
    }

    void init()
    {
        ecu = std::make_unique<EcuSimulata>(OpzioniManuali());
        auto pe = std::make_unique<PortaEcu>(*ecu);
        auto r = std::make_unique<TemporizzatoreManuale>();
        porta = pe.get();
        req = r.get();
        p = std::make_unique<Programma>(cartella.path(), std::move(pe), std::move(r),
                                        std::make_unique<TemporizzatoreManuale>());
        p->catalogo.InizializzaParametri();
        p->IniDialogo();
        p->IniCollegamento();
        p->stato.EcuDaIdentificare = 0;
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        risposte.clear();
        domande = 0;
        preparaEcu();
    }

    void cleanup()
    {
        pagina.reset();
        p.reset();
        ecu.reset();
    }

    void opensWithItsValuesCaptionsAndRanges()
    {
        apri();
        QCOMPARE(porta->scritti.size(), 12);
        const QStringList attesi = {"900", "1300", "25", "40", "75", "174", "10", "7"};
        for (int i = 0; i < 8; ++i) {
            QCOMPARE(dato(i)->text().trimmed(), attesi[i]);
            // Padded to the field's length, except the one being edited.
            if (!dato(i)->hasFocus())
                QCOMPARE(dato(i)->text().size(), CampoDato::LunghezzaMassima);
        }
        QCOMPARE(pagina->FormatoMinimo(0), QString("#0"));
        QCOMPARE(pagina->FormatoMinimo(8), QString());
        QCOMPARE(pagina->windowTitle(), p->lingua.LeggiTesto("MP_Minimo", "CAPTION"));
        QVERIFY(!pagina->windowTitle().isEmpty());
        QCOMPARE(pagina->findChild<QLabel *>("LabParametro_0")->text(),
                 p->lingua.LeggiTesto("MP_Minimo", "LABPARAMETRO.0"));
        QCOMPARE(pagina->findChild<QLabel *>("Misura_6")->text(), QString("steps/s"));
        QCOMPARE(dato(1)->toolTip(), QString("900 - 1700"));
        QCOMPARE(dato(3)->toolTip(), QString("12 - 249"));
        QVERIFY(pagina->isEnabled());
        QVERIFY(segnalazione().isEmpty());
        QVERIFY(tasto("Esci")->isVisible());
        QVERIFY(!tasto("Esci_Out")->isVisible());
        QVERIFY(dato(0)->hasFocus()); // ready for typing
    }

    void keyFilterOfAField()
    {
        apri();
        CampoDato *c = dato(0);
        entra(c);
        QCOMPARE(c->text(), QString("900"));          // trimmed on entry
        QTest::keyClick(c, Qt::Key_End);
        QTest::keyClick(c, Qt::Key_Minus);
        QCOMPARE(c->text(), QString("900"));          // "-" only into an empty field
        QTest::keyClicks(c, "1.,a");
        QCOMPARE(c->text(), QString("9001"));
        QTest::keyClick(c, Qt::Key_Space);
        QCOMPARE(c->text(), QString());
        QTest::keyClicks(c, "-5");
        QCOMPARE(c->text(), QString("-5"));
        QTest::keyClick(c, Qt::Key_Backspace);
        QCOMPARE(c->text(), QString("-"));
        QTest::keyClick(c, Qt::Key_Return);
        QVERIFY(dato(1)->hasFocus());                  // Enter moves on like Tab
        QCOMPARE(c->text(), QString("-"));             // not a number: left as typed
    }

    void focusColoursAndTheFormattedTextOnLeaving()
    {
        apri();
        CampoDato *c = dato(2);
        entra(c);
        QCOMPARE(sfondo(c), Blu);
        QCOMPARE(testoDi(c), QColor(Qt::white));
        c->clear();
        QTest::keyClicks(c, "030");
        entra(dato(3));
        QCOMPARE(sfondo(c), QColor(Qt::white));
        QCOMPARE(testoDi(c), QColor(Qt::black));
        QCOMPARE(c->text(), QString("    30"));
        // The exit threshold's floor follows at once.
        QCOMPARE(p->catalogo.Parametri[Par::SogliaTpsUscitaMinimo].Min, 30.0);
        QCOMPARE(dato(3)->toolTip(), QString("30 - 249"));
    }

    void badValuesTurnRedAndNeverLeaveThePage()
    {
        apri();
        const qsizetype prima = porta->scritti.size();
        entra(dato(0));
        dato(0)->clear();
        QTest::keyClicks(dato(0), "1400");   // above the idle exit
        entra(dato(7));
        dato(7)->clear();                    // left empty: normal colours for now
        entra(dato(6));
        QCOMPARE(sfondo(dato(7)), QColor(Qt::white));
        QTest::keyClick(dato(6), Qt::Key_F2);
        QCOMPARE(porta->scritti.size(), prima);
        QCOMPARE(sfondo(dato(7)), Rosso);
        QCOMPARE(testoDi(dato(7)), QColor(Qt::white));
        QVERIFY(dato(0)->hasFocus());        // the first bad one, still shown red
        QCOMPARE(sfondo(dato(0)), Rosso);
        // The idle exit now lies below its new floor of 1400.
        QCOMPARE(sfondo(dato(1)), Rosso);
        QCOMPARE(sfondo(dato(2)), QColor(Qt::white));
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 900);
        QVERIFY(!pagina->ControlloValori());
    }

    void applyStoreRestoreByTheirKeys()
    {
        apri();
        entra(dato(0));
        dato(0)->clear();
        QTest::keyClicks(dato(0), "1000");
        QTest::keyClick(dato(0), Qt::Key_F2);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), 900);
        QVERIFY(dato(0)->hasFocus()); // back where it was before the save

        QTest::keyClick(pagina.get(), Qt::Key_F5);   // snapshot of 1000
        entra(dato(0));
        dato(0)->clear();
        QTest::keyClicks(dato(0), "950");
        QTest::keyClick(dato(0), Qt::Key_F2);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 950);
        QTest::keyClick(pagina.get(), Qt::Key_F8);
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), 1000);
        QCOMPARE(dato(0)->text().trimmed(), QString("1000"));
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), 900);
    }

    void leavingAsksOnlyWhenSomethingChanged_data()
    {
        QTest::addColumn<int>("risposta");
        QTest::addColumn<int>("ram");
        QTest::addColumn<int>("eeprom");
        QTest::addColumn<bool>("chiusa");
        QTest::newRow("yes") << 6 << 1000 << 1000 << true;
        // A box closed without a key (the watchdog took the page) changes nothing.
        QTest::newRow("box closed") << 99 << 1000 << 900 << false;
    }

    void leavingAsksOnlyWhenSomethingChanged()
    {
        QFETCH(int, risposta);
        QFETCH(int, ram);
        QFETCH(int, eeprom);
        QFETCH(bool, chiusa);
        apri();
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        entra(dato(0));
        dato(0)->clear();
        QTest::keyClicks(dato(0), "1000");
        QTest::keyClick(dato(0), Qt::Key_F2);
        QVERIFY(attendi());
        risposte = {risposta};
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QCOMPARE(domande, 1);
        QVERIFY(attendi());
        QCOMPARE(this->ram(Par::SogliaGiriEntrataMinimo), ram);
        QCOMPARE(this->eeprom(Par::SogliaGiriEntrataMinimo), eeprom);
        QCOMPARE(chiusure.size(), chiusa ? 1 : 0);
    }

    void leavingUnchangedSendsNothing()
    {
        apri();
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        const qsizetype prima = porta->scritti.size();
        tasto("Esci")->click();
        QCOMPARE(domande, 0);
        QCOMPARE(chiusure.size(), 1);
        QCOMPARE(porta->scritti.size(), prima);
    }

    void appliedPeriodFieldAsksOnLeavingThoughNothingWasTyped()
    {
        apri();
        QCOMPARE(dato(6)->text().trimmed(), QString("10"));
        tasto("Applica")->click();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::FrequenzaControlloMinimo), 98);
        tasto("Esci")->click();
        QCOMPARE(domande, 1);
    }

    void timeOutOnTheOpeningReadLeavesOnlyTheWayOut()
    {
        ecu->impostaStallo(true);
        apri(false);
        QVERIFY(!pagina->isEnabled());
        QCOMPARE(segnalazione(), p->lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_1"));
        QVERIFY(req->scatta());
        QVERIFY(pagina->isEnabled());
        QCOMPARE(segnalazione(), p->lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_2"));
        QVERIFY(tasto("Esci_Out")->isVisible());
        QVERIFY(tasto("Esci_Out")->isEnabled());
        QVERIFY(!tasto("Esci")->isVisible());
        for (const char *n : {"Esci", "Applica", "Memorizza", "Ripristina"})
            QVERIFY2(!tasto(n)->isEnabled(), n);

        ecu->impostaStallo(false);
        const qsizetype prima = porta->scritti.size();
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        QTest::keyClick(pagina.get(), Qt::Key_F2);
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QCOMPARE(chiusure.size(), 0);
        tasto("Esci_Out")->click();
        QCOMPARE(chiusure.size(), 1);
        QCOMPARE(porta->scritti.size(), prima);
        QCOMPARE(domande, 0);
    }

    void noTpsFittedHidesItsRowsButStillSendsThem()
    {
        ImpostaVoceEcu(*ecu, p->catalogo, Par::TpsTaratoMassimo, 1023);
        ImpostaVoceEcu(*ecu, p->catalogo, Par::TpsTaratoMinimo, 1023);
        apri();
        QCOMPARE(p->stato.TpsPresente, qint16(0));
        for (int i : {2, 3}) {
            QVERIFY(!dato(i)->isVisible());
            QVERIFY(!pagina->findChild<QLabel *>(QString("LabParametro_%1").arg(i))->isVisible());
            QVERIFY(!pagina->findChild<QLabel *>(QString("Misura_%1").arg(i))->isVisible());
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
            QCOMPARE(testoDi(dato(i)), Verde);
        }
        entra(dato(2));
        QTest::keyClicks(dato(2), "9");
        QTest::keyClick(dato(2), Qt::Key_Space);
        QCOMPARE(dato(2)->text().trimmed(), QString("25"));
        QCOMPARE(sfondo(dato(2)), QColor(Qt::black));
        ImpostaVoceEcu(*ecu, p->catalogo, Par::SogliaTpsEntrataMinimo, 0);
        tasto("Applica")->click();
        QVERIFY(attendi());
        QCOMPARE(ram(Par::SogliaTpsEntrataMinimo), 100);
    }

    void livePanelFollowsTheStream()
    {
        apri();
        ecu->avanzaTempo(40);
        QTRY_VERIFY(!pagina->findChild<QLabel *>("Dato_0")->text().isEmpty());
        const RecordDati &r = p->stato.DatiAttuali[0];
        const auto testo = [](double v) { return QString::number(std::lround(v)); };
        QCOMPARE(pagina->findChild<QLabel *>("Dato_0")->text(), testo(r.Valore[2]));
        QCOMPARE(pagina->findChild<QLabel *>("Dato_1")->text(), testo(r.Valore[4]));
        QCOMPARE(pagina->findChild<QLabel *>("Dato_2")->text(), testo(r.Valore[3]));
        QCOMPARE(pagina->findChild<QLabel *>("Dato_3")->text(), testo(r.Valore[5]));
        const int zona = int(r.Valore[7]);
        QCOMPARE(pagina->findChild<QLabel *>("ZonaLavoro")->text(),
                 p->lingua.LeggiTesto("ZONE", zona >= 1 && zona <= 5 ? QString("ZONA.%1").arg(zona) : "ZONA.99"));
    }

    void closedPortShowsNoParameters()
    {
        porta->chiudi();
        apri(false);
        QVERIFY(!pagina->findChild<QWidget *>("BOXMINIMO")->isVisible());
        QVERIFY(porta->scritti.isEmpty());
        QSignalSpy chiusure(pagina.get(), &TelaioMessaPunto::chiusa);
        QTest::keyClick(pagina.get(), Qt::Key_Escape);
        QCOMPARE(chiusure.size(), 1);
    }
};

QTEST_MAIN(TstTelaioMessaPunto)
#include "tst_telaiomessapunto.moc"
