// A software flash end to end: the program's serial port on a pseudo-terminal, the simulated
// ECU at the far end with its own live stream, real timers. The ECU's memory afterwards is
// the S19 file with the identification strings of the ECU, byte for byte.

#include "EcuSimulata.h"

#include "link/PortaSeriale.h"
#include "programming/DialogoProgSW.h"
#include "shell/Programma.h"
#include "support/FileDiProva.h"
#include "support/S19DiProva.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;
using namespace kv::sim;

namespace {

struct Vista : VistaProgSW
{
    void mostraSegnalazione(const QString &testo) override { segnalazione = testo; }
    void abilitaPagina(bool a) override { abilitata = a; }
    void mostraBarra(bool v) override { barra = v; }
    void impostaBarra(int) override {}
    void mostraMsg(const QString &, int, const QString &) override {}
    QString segnalazione;
    bool abilitata = true;
    bool barra = false;
};

} // namespace

class TstProgSWLinea : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;

private slots:
    void initTestCase()
    {
        QVERIFY(
            QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
        QVERIFY(QDir(cartella.path()).mkpath("SOFTWARE/FILES19"));
        scrivi(cartella.filePath("SOFTWARE/FILES19/NEWREL.S19"), S19Completo(ImmagineDiProva(3)));
    }

    void flash_data()
    {
        QTest::addColumn<bool>("applicazione");
        QTest::addColumn<int>("caduta"); // the block where the line drops on the first try, 0 none
        QTest::newRow("ECU running its application") << true << 0;
        QTest::newRow("ECU with only its boot loader") << false << 0;
        QTest::newRow("line dropped at block 100, then again") << true << 100;
    }

    void flash()
    {
        QFETCH(bool, applicazione);
        QFETCH(int, caduta);
        OpzioniEcu o;
        o.applicazionePresente = applicazione;
        EcuSimulata ecu(o);
        QVERIFY2(ecu.apriPty(), qPrintable(ecu.erroreLinea()));
        Programma p(cartella.path(), std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                    std::make_unique<TemporizzatoreQt>());
        p.lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p.seriale.VelocitaCom = 38400;
        p.dispositivoForzato = ecu.percorsoDispositivo();
        QVERIFY(p.ApriPorta());
        ecu.avvia();
        if (applicazione)
            QTRY_COMPARE_WITH_TIMEOUT(p.stato.EcuDaIdentificare, false, 5000);
        else
            QTRY_COMPARE_WITH_TIMEOUT(p.stato.EcuNormale, false, 5000);
        QTRY_COMPARE_WITH_TIMEOUT(p.motore.StatoDialogo(), qint16(-1), 5000);

        Vista vista;
        DialogoProgSW d(p.motore, p.stato, p.lingua, vista);
        d.scegli(QStringLiteral("NEWREL"));
        const auto segnalazione = [&](int n) {
            return p.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_" + QString::number(n));
        };
        if (caduta) {
            ecu.impostaCadutaAlBlocco(caduta, 500);
            d.avviaProgrammazione();
            // The ECU goes silent and comes back; the block waits its 3 s and the flash ends.
            QTRY_COMPARE_WITH_TIMEOUT(vista.segnalazione, segnalazione(10), 6000);
            QCOMPARE(d.NumBloccoSW(), caduta);
            QVERIFY(vista.abilitata && !vista.barra);
            QCOMPARE(p.motore.StatoDialogo(), qint16(-1));
        }
        d.avviaProgrammazione();
        QTRY_COMPARE_WITH_TIMEOUT(vista.segnalazione, segnalazione(12), 10000);
        QVERIFY(vista.abilitata);

        QByteArray attesa = ImmagineDiProva(3);
        const QByteArray id =
            applicazione ? o.versione.codice + o.versione.datoA + o.versione.datoB : QByteArray(28, ' ');
        attesa.replace(0x40, 28, id);
        QCOMPARE(ecu.leggiMemoria(0xC000, 0x3700), attesa);
        // The new software runs: an ECU that had none is identified for the first time, and
        // its version reply is the new image's.
        QCOMPARE(ecu.modo(), EcuSimulata::Modo::Applicazione);
        if (!applicazione) {
            QTRY_VERIFY_WITH_TIMEOUT(!p.stato.EcuDaIdentificare && p.stato.EcuNormale, 5000);
            QCOMPARE(p.stato.InfVeicolo, QStringLiteral("NEW-REL   "));
        }
    }
};

QTEST_GUILESS_MAIN(TstProgSWLinea)
#include "tst_progsw_linea.moc"
