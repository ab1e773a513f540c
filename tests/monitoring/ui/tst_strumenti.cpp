// The instruments panel: its 13 set-point reads against the simulated ECU wired straight
// to the port, the display tick on records put in by hand, and the panel on screen.

#include "../../variables/PortaEcu.h"

#include "link/Frame.h"
#include "monitoring/ui/BarraStrumento.h"
#include "monitoring/ui/Contagiri.h"
#include "monitoring/ui/ImmaginiMotorino.h"
#include "monitoring/ui/ModelloStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "shell/Programma.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLabel>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using M = ModelloStrumenti;

class TstStrumenti : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    std::unique_ptr<Programma> p;
    PortaEcu *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    std::unique_ptr<M> modello;

    bool attendi()
    {
        QDeadlineTimer scadenza(3000);
        while (p->motore.StatoDialogo != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents();
        return p->motore.StatoDialogo == -1;
    }

    void voce(int parametro, int grezzo) { ImpostaVoceEcu(*ecu, p->catalogo, parametro, grezzo); }

    // A live record as the 'd' decoder leaves it.
    void record(double giri, double tps, double lambda, double passi, double zona, double pompa, double alim)
    {
        auto &v = p->stato.DatiAttuali[0].Valore;
        v[1] = 0;
        v[2] = giri;
        v[3] = tps;
        v[4] = lambda;
        v[5] = passi;
        v[7] = zona;
        v[8] = pompa;
        v[10] = alim;
        p->stato.DatoNuovo = -1;
    }

    // Loaded and read, so the record last shown is all -1.
    bool pronto() { return modello->carica() && attendi(); }

    QString testo(const char *sezione, const QString &chiave) { return p->lingua.LeggiTesto(sezione, chiave); }

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
        voce(Par::SogliaGiriEntrataMinimo, 1100);
        voce(Par::SogliaGiriEntrataCutOff, 2000);
        voce(Par::SogliaGiriEntrataPC, 2600);
        voce(Par::SogliaTpsEntrataMinimo, 80);
        voce(Par::SogliaTpsEntrataCutOff, 90);
        voce(Par::SogliaTpsEntrataPC, 850);
        voce(Par::PassiControlloMinimo, 3);
        voce(Par::PassiControlloNormale, 20);
        voce(Par::PosizioneMotorinoNormale, 120);
        voce(Par::ScalaLambda, 0);
        voce(Par::SogliaLambdaRiccoMinimo, 600);
        voce(Par::SogliaLambdaRiccoNormale, 580);
        voce(Par::SogliaLambdaRiccoPC, 640);
        modello = std::make_unique<M>(*p);
    }

    void cleanup()
    {
        modello.reset();
        p.reset();
        ecu.reset();
    }

    void thirteenReadsFillTheSetPoints()
    {
        p->stato.RegistrazioneAttiva = 0;
        p->anello.IndiceRegistrazione = 7;
        QSignalSpy fine(modello.get(), &M::letturaFinita);
        QVERIFY(modello->carica());
        QCOMPARE(p->motore.StatoDialogo, qint16(M::Stato));
        QVERIFY(attendi());
        QCOMPARE(fine.size(), 1);
        QCOMPARE(fine.at(0).at(0).toBool(), true);
        QCOMPARE(p->motore.PassoDialogo, qint16(-1));
        QCOMPARE(p->stato.RegistrazioneAttiva, qint16(-1));
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(-1));

        QCOMPARE(porta->scritti.size(), 13);
        for (int passo = 0; passo < M::Passi; ++passo) {
            const Parametro &par = p->catalogo.Parametri[static_cast<size_t>(M::parametro(passo))];
            QByteArray richiesta("R");
            richiesta += ParolaInByte(quint32(par.IndirizzoRAM));
            richiesta += char(par.Dimensione);
            QCOMPARE(porta->scritti.at(passo), CreaFrame(richiesta));
        }

        const auto scala = [](int g) { return std::round(g * 255.0 / 1023.0); };
        QCOMPARE(modello->valore(M::GiriMinimo), 1100.0);
        QCOMPARE(modello->valore(M::GiriPienoCarico), 2600.0);
        QCOMPARE(modello->valore(M::TpsMinimo), scala(80));
        QCOMPARE(modello->valore(M::TpsPienoCarico), scala(850));
        QCOMPARE(modello->valore(M::PosizioneReset), 120.0);
        QCOMPARE(modello->scalaLambda(), 0.0);
        QCOMPARE(modello->valore(M::LambdaMinimo), scala(600));
        QCOMPARE(modello->testoValore(M::TpsCutOff), QString::number(scala(90)));

        QCOMPARE(*modello->marcatore(M::MarcaTpsPienoCarico), scala(850) / 255);
        QCOMPARE(*modello->marcatore(M::MarcaLambdaNormale), scala(580) / 255);
        QCOMPARE(*modello->marcatore(M::LineaReset), 120.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiNormSopra), 140.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiNormSotto), 100.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiMinSopra), 123.0 / 255);
        QCOMPARE(*modello->marcatore(M::PassiMinSotto), 117.0 / 255);
    }

    void rawLambdaScaleKeepsTheRawThresholds()
    {
        voce(Par::ScalaLambda, 1);
        voce(Par::SogliaLambdaRiccoMinimo, 200);
        QVERIFY(modello->carica());
        QVERIFY(attendi());
        QCOMPARE(modello->scalaLambda(), 255.0);
        QCOMPARE(modello->valore(M::LambdaMinimo), 200.0);
        QCOMPARE(*modello->marcatore(M::MarcaLambdaMinimo), 200.0 / 255);
    }

    void markersHiddenUntilRead()
    {
        ecu->impostaStallo(true);
        QSignalSpy fine(modello.get(), &M::letturaFinita);
        QVERIFY(modello->carica());
        for (int m = 0; m < M::Marcatori; ++m)
            QVERIFY(!modello->marcatore(M::Marcatore(m)));
        QVERIFY(modello->testoValore(M::GiriMinimo).isEmpty());
        QVERIFY(req->scatta());
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
        QCOMPARE(fine.size(), 1);
        QCOMPARE(fine.at(0).at(0).toBool(), false);
    }

    void closedPortReadsNothing()
    {
        porta->chiudi();
        QVERIFY(!modello->carica());
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(p->motore.StatoDialogo, qint16(-1));
    }

    void firstRecordShowsEverythingThenOnlyChanges()
    {
        QVERIFY(modello->carica());
        QVERIFY(attendi());
        QVERIFY(!modello->tick().qualcosa()); // nothing new yet
        record(2500, 40, 120, 90, 2, 0, 1);
        M::Cambiamenti c = modello->tick();
        QVERIFY(c.giri && c.tps && c.lambda && c.motorino && c.alimentazione && c.pompata && c.zona);
        QCOMPARE(p->stato.DatoNuovo, qint16(0));
        const M::Quadro &q = modello->quadro();
        QCOMPARE(q.giri, QString("2500"));
        QCOMPARE(q.lancettaGiri, 2.5);
        QCOMPARE(q.barraTps, 40.0);
        QCOMPARE(q.lambda, QString("120"));
        QCOMPARE(q.posizioneMotorino, 90.0 / 255);
        QCOMPARE(q.zona, testo("ZONE", "ZONA.2"));

        record(2600, 40, 120, 90, 2, 0, 1);
        c = modello->tick();
        QVERIFY(c.giri);
        QVERIFY(!c.tps && !c.lambda && !c.motorino && !c.alimentazione && !c.pompata && !c.zona);
        QCOMPARE(p->stato.DatiAttuali[1].Valore[2], 2600.0);
    }

    void speedAboveTheScaleLeavesTheNeedle()
    {
        QVERIFY(pronto());
        record(3000, 0, 0, 0, 1, 0, 1);
        modello->tick();
        record(9500, 0, 0, 0, 1, 0, 1);
        QVERIFY(modello->tick().giri);
        QCOMPARE(modello->quadro().giri, QString("9500"));
        QCOMPARE(modello->quadro().lancettaGiri, 3.0);
        record(8000, 0, 0, 0, 1, 0, 1); // the top of the scale itself is on it
        modello->tick();
        QCOMPARE(modello->quadro().lancettaGiri, 8.0);
    }

    void barsTakeOnlyValuesOnTheirScale()
    {
        QVERIFY(pronto());
        record(800, 100, 100, 0, 1, 0, 1);
        modello->tick();
        record(800, 255, 300, 0, 1, 0, 1);
        modello->tick();
        QCOMPARE(modello->quadro().barraTps, 255.0);
        QCOMPARE(modello->quadro().barraLambda, 100.0);
        QCOMPARE(modello->quadro().lambda, QString("300"));
    }

    void supplyStateAndItsColour_data()
    {
        QTest::addColumn<double>("valore");
        QTest::addColumn<QString>("chiave");
        QTest::addColumn<quint32>("colore");
        QTest::newRow("petrol") << 0.0 << "TIPO.0" << quint32(0x0000FF);
        QTest::newRow("gas") << 1.0 << "TIPO.1" << quint32(0x00FF00);
        QTest::newRow("no third type") << 2.0 << "TIPO.99" << quint32(0x00FFFF);
    }

    void supplyStateAndItsColour()
    {
        QFETCH(double, valore);
        QFETCH(QString, chiave);
        QFETCH(quint32, colore);
        QVERIFY(pronto());
        record(800, 10, 10, 10, 1, 0, valore);
        QVERIFY(modello->tick().alimentazione);
        QCOMPARE(modello->quadro().alimentazione, testo("ALIMENTAZIONE", chiave));
        QVERIFY(!modello->quadro().alimentazione.isEmpty());
        QCOMPARE(modello->quadro().coloreAlimentazione, colore);
    }

    void pumpAndZoneTexts()
    {
        QVERIFY(pronto());
        record(800, 10, 10, 10, 0, 0, 1);
        modello->tick();
        QCOMPARE(modello->quadro().pompata, testo("POMPATA", "POMPATA.0"));
        QCOMPARE(modello->quadro().zona, testo("ZONE", "ZONA.99"));
        record(800, 10, 10, 10, 6, 3, 1);
        modello->tick();
        QCOMPARE(modello->quadro().pompata, testo("POMPATA", "POMPATA.99"));
        QCOMPARE(modello->quadro().zona, testo("ZONE", "ZONA.99"));
        record(800, 10, 10, 10, 5, 1, 1);
        modello->tick();
        QCOMPARE(modello->quadro().zona, testo("ZONE", "ZONA.5"));
    }

    void recordingLineAndClosing()
    {
        QFile ini(p->percorsoIni());
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write("[MEMORIZZAZIONE]\r\nFileMemor= /tmp/prova.ACQ \r\n");
        ini.close();
        QCOMPARE(modello->testoRegistro(), testo("STRUMENTI", "LABREGISTRO.0") + " /tmp/prova.ACQ");
        QVERIFY(modello->carica());
        QVERIFY(attendi());
        p->anello.IndiceRegistrazione = 5;
        modello->chiudi();
        QCOMPARE(p->stato.RegistrazioneAttiva, qint16(0));
        QCOMPARE(p->anello.IndiceRegistrazione, qint16(-1));
    }

    void panelOnScreen()
    {
        modello.reset();
        Strumenti s(*p);
        s.resize(1100, 600);
        s.show();
        QVERIFY(QTest::qWaitForWindowExposed(&s));
        QSignalSpy chiusa(&s, &Strumenti::chiusa);
        s.carica();
        QVERIFY(!s.findChild<QWidget *>("Cruscotto")->isVisible()); // until the set points are in
        QVERIFY(attendi());
        QVERIFY(s.findChild<QWidget *>("Cruscotto")->isVisible());
        QCOMPARE(s.windowTitle(), testo("Strumenti", "CAPTION"));
        auto *tps = s.findChild<BarraStrumento *>("Dato_TPS");
        QCOMPARE(*tps->marcatore(2), std::round(850 * 255.0 / 1023.0) / 255);
        QCOMPARE(*s.findChild<ScalaMotorino *>("MotorinoZ")->reset(), 120.0 / 255);

        ecu->avanzaTempo(40);
        QTRY_COMPARE(p->stato.DatoNuovo, qint16(-1));
        const RecordDati r = p->stato.DatiAttuali[0];
        s.VisDati();
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_2")->text(), QString::number(std::lround(r.Valore[2])));
        QCOMPARE(s.findChild<Contagiri *>("Dato_Giri")->valore(), r.Valore[2] / 1000);
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_3")->text(), QString::number(std::lround(r.Valore[5])));

        record(9000, 30, 40, 50, 3, 0, 2);
        s.VisDati();
        QCOMPARE(s.findChild<Contagiri *>("Dato_Giri")->valore(), r.Valore[2] / 1000);
        QCOMPARE(s.findChild<QLabel *>("DatoCanale_2")->text(), QString("9000"));
        auto *alim = s.findChild<QLabel *>("StatoAlim");
        QCOMPARE(alim->text(), testo("ALIMENTAZIONE", "TIPO.99"));
        QCOMPARE(alim->palette().color(QPalette::Window), QColor(255, 255, 0));
        QCOMPARE(s.findChild<QLabel *>("ZonaLavoro")->text(), testo("ZONE", "ZONA.3"));

        QTest::keyClick(&s, Qt::Key_Escape);
        QCOMPARE(chiusa.size(), 1);
        QCOMPARE(p->stato.RegistrazioneAttiva, qint16(0));
    }
};

QTEST_MAIN(TstStrumenti)
#include "tst_strumenti.moc"
