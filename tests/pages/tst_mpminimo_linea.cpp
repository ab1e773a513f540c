// The idle page end to end: the program's serial port on a pseudo-terminal, the simulated
// ECU at the far end with its own live stream, real timers.

#include "EcuSimulata.h"

#include "../variables/PortaEcu.h"
#include "link/PortaSeriale.h"
#include "pages/CampoDato.h"
#include "pages/MP_Minimo.h"
#include "shell/Programma.h"
#include "variables/Conversioni.h"
#include "variables/DialogoPagina.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

class TstMpMinimoLinea : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    std::unique_ptr<Programma> p;
    std::unique_ptr<MP_Minimo> pagina;
    QByteArrayList ricevuti; // commands the ECU took, as frames
    QList<int> risposte;

    int ram(int parametro) { return CellaEcu(*ecu, p->catalogo, parametro, false); }
    int eeprom(int parametro) { return CellaEcu(*ecu, p->catalogo, parametro, true); }
    CampoDato *dato(int i) { return pagina->DatoMinimo(i); }
    QPushButton *tasto(const char *nome) { return pagina->findChild<QPushButton *>(nome); }
    QString segnalazione() { return pagina->findChild<QLabel *>("Segnalazione")->text(); }

    bool libero(int ms = 5000)
    {
        return QTest::qWaitFor([this] { return p->motore.StatoDialogo == -1; }, ms);
    }

    void collega()
    {
        ecu = std::make_unique<EcuSimulata>();
        QVERIFY2(ecu->apriPty(), qPrintable(ecu->erroreLinea()));
        ricevuti.clear();
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [this](const QByteArray &f) { ricevuti.append(f); });
        p = std::make_unique<Programma>(cartella.path(), std::make_unique<PortaSeriale>(),
                                        std::make_unique<TemporizzatoreQt>(),
                                        std::make_unique<TemporizzatoreQt>());
        p->catalogo.InizializzaParametri();
        p->IniDialogo();
        p->IniCollegamento();
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->seriale.VelocitaCom = 38400;
        p->dispositivoForzato = ecu->percorsoDispositivo();
        QVERIFY(p->ApriPorta());
        ecu->avvia();
        // The first live frame identifies the ECU; the page comes after, as from the menu.
        QTRY_COMPARE_WITH_TIMEOUT(p->stato.EcuDaIdentificare, qint16(0), 5000);
        QVERIFY(libero());
        ricevuti.clear();
    }

    void apri(bool attendiLettura = true)
    {
        pagina = std::make_unique<MP_Minimo>(*p);
        pagina->impostaDomanda([this](const QString &, int, const QString &) {
            return risposte.isEmpty() ? 2 : risposte.takeFirst();
        });
        pagina->show();
        QVERIFY(QTest::qWaitForWindowExposed(pagina.get()));
        pagina->carica();
        if (attendiLettura)
            QVERIFY(libero());
    }

    void scrivi(int i, const QString &testo)
    {
        dato(i)->setFocus();
        dato(i)->setText(testo);
        dato(i == 7 ? 0 : i + 1)->setFocus();
    }

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
    }

    void init() { collega(); }

    void cleanup()
    {
        pagina.reset();
        p.reset();
        ecu.reset();
    }

    void opensWithTwelveFramesAndTheSimulatorsValues()
    {
        apri();
        QCOMPARE(ricevuti.size(), 12);
        for (const QByteArray &f : std::as_const(ricevuti))
            QCOMPARE(f.at(4), 'R');
        const auto scalato = [](int grezzo) { return QString::number(std::lround(grezzo * 255.0 / 1023.0)); };
        QCOMPARE(dato(0)->text().trimmed(), QString::number(ram(Par::SogliaGiriEntrataMinimo)));
        QCOMPARE(dato(1)->text().trimmed(), QString::number(ram(Par::SogliaGiriUscitaMinimo)));
        QCOMPARE(dato(2)->text().trimmed(), scalato(ram(Par::SogliaTpsEntrataMinimo)));
        QCOMPARE(dato(3)->text().trimmed(), scalato(ram(Par::SogliaTpsUscitaMinimo)));
        QCOMPARE(dato(4)->text().trimmed(), scalato(ram(Par::SogliaLambdaMagroMinimo)));
        QCOMPARE(dato(5)->text().trimmed(), scalato(ram(Par::SogliaLambdaRiccoMinimo)));
        QCOMPARE(dato(6)->text().trimmed(),
                 QString::number(std::lround(1000 / (ram(Par::FrequenzaControlloMinimo) * 1.024))));
        QCOMPARE(dato(7)->text().trimmed(), QString::number(ram(Par::PassiControlloMinimo)));
        // The live panel runs on the stream while the page is open.
        QTRY_VERIFY_WITH_TIMEOUT(!pagina->findChild<QLabel *>("Dato_0")->text().isEmpty(), 2000);
    }

    void editApplyThenLeave_data()
    {
        QTest::addColumn<int>("risposta");
        QTest::addColumn<bool>("tenuto");
        QTest::newRow("yes keeps it") << 6 << true;
        QTest::newRow("no puts the opening value back") << 7 << false;
    }

    void editApplyThenLeave()
    {
        QFETCH(int, risposta);
        QFETCH(bool, tenuto);
        apri();
        const int prima = ram(Par::SogliaGiriEntrataMinimo);
        const int nuovo = prima - 50;
        QSignalSpy chiusa(pagina.get(), &TelaioMessaPunto::chiusa);
        scrivi(0, QString::number(nuovo));
        tasto("Applica")->click();
        QVERIFY(libero());
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), nuovo);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), prima);

        risposte = {risposta};
        tasto("Esci")->click();
        QVERIFY(libero());
        QCOMPARE(chiusa.size(), 1);
        QCOMPARE(ram(Par::SogliaGiriEntrataMinimo), tenuto ? nuovo : prima);
        QCOMPARE(eeprom(Par::SogliaGiriEntrataMinimo), tenuto ? nuovo : prima);
    }

    void leavingUnchangedSendsNothing()
    {
        apri();
        ricevuti.clear();
        QSignalSpy chiusa(pagina.get(), &TelaioMessaPunto::chiusa);
        tasto("Esci")->click();
        QCOMPARE(chiusa.size(), 1);
        QTest::qWait(200);
        QVERIFY(ricevuti.isEmpty());
    }

    void refusedWriteStopsAtItsAddress()
    {
        apri();
        const int giri = ram(Par::SogliaGiriUscitaMinimo);
        const int tps = ram(Par::SogliaTpsUscitaMinimo);
        scrivi(1, QString::number(giri + 10));
        ecu->impostaErroreScrittura(quint32(p->catalogo.Parametri[Par::SogliaTpsEntrataMinimo].IndirizzoRAM), 0x05);
        tasto("Applica")->click();
        QVERIFY(libero());
        QCOMPARE(segnalazione(), "05H " + p->lingua.LeggiTesto("ERRORI", "ERR_05"));
        QCOMPARE(ram(Par::SogliaGiriUscitaMinimo), giri + 10); // before the refusal
        QCOMPARE(ram(Par::SogliaTpsUscitaMinimo), tps);          // after it: never sent
        QVERIFY(pagina->isEnabled());
        QVERIFY(tasto("Esci")->isEnabled());
    }

    void timeOutOnTheOpeningReadLeavesOnlyTheWayOut()
    {
        ecu->impostaStallo(true);
        apri(false);
        QVERIFY(!pagina->isEnabled());
        QVERIFY(libero(MotoreDialogo::IntervalloLettura + 2000));
        QVERIFY(pagina->isEnabled());
        QCOMPARE(segnalazione(), p->lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_2"));
        QVERIFY(tasto("Esci_Out")->isVisible());
        QVERIFY(!tasto("Esci")->isVisible());
        QVERIFY(!tasto("Applica")->isEnabled());
    }
};

QTEST_MAIN(TstMpMinimoLinea)
#include "tst_mpminimo_linea.moc"
