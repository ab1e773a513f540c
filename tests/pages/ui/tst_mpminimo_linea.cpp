// The idle page end to end: the program's serial port on a pseudo-terminal, the simulated
// ECU at the far end with its own live stream, real timers. What the page writes, and what
// leaving keeps, the dialogue's tests meet on the scripted port.

#include "base/Lingua.h"
#include "support/ProgrammaSimulato.h"

#include "pages/ui/CampoDato.h"
#include "pages/ui/MP_Minimo.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

using namespace kv;
using namespace kv::sim;

class TstMpMinimoLinea : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<MP_Minimo> pagina;
    QByteArrayList ricevuti; // commands the ECU took, as frames

    QPushButton *tasto(const char *nome) { return pagina->findChild<QPushButton *>(nome); }
    bool libero() { return attendi(5000); }

    // The page opened as from the menu, its opening read done.
    void apri()
    {
        pagina = std::make_unique<MP_Minimo>(ContestoDi(*p));
        pagina->show();
        QVERIFY(QTest::qWaitForWindowExposed(pagina.get()));
        pagina->carica();
        QVERIFY(libero());
    }

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }

    void init()
    {
        // The first live frame identifies the ECU; the page comes after, as from the menu.
        QVERIFY(avviaSuLinea());
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this,
                [this](const QByteArray &f) { ricevuti.append(f); });
        ricevuti.clear();
    }

    void cleanup()
    {
        pagina.reset();
        chiudi();
    }

    void opensWithTwelveFramesAndTheSimulatorsValues()
    {
        apri();
        QCOMPARE(ricevuti.size(), 12);
        for (const QByteArray &f : std::as_const(ricevuti))
            QCOMPARE(f.at(4), 'R');
        const auto scalato = [this](int parametro) { return std::lround(ram(parametro) * 255.0 / 1023.0); };
        const long attesi[] = {ram(Par::SogliaGiriEntrataMinimo),
                               ram(Par::SogliaGiriUscitaMinimo),
                               scalato(Par::SogliaTpsEntrataMinimo),
                               scalato(Par::SogliaTpsUscitaMinimo),
                               scalato(Par::SogliaLambdaMagroMinimo),
                               scalato(Par::SogliaLambdaRiccoMinimo),
                               std::lround(1000 / (ram(Par::FrequenzaControlloMinimo) * 1.024)),
                               ram(Par::PassiControlloMinimo)};
        for (int i = 0; i < 8; ++i)
            QCOMPARE(pagina->DatoMinimo(i)->text().trimmed(), QString::number(attesi[i]));
        // The live panel runs on the stream while the page is open.
        QTRY_VERIFY_WITH_TIMEOUT(!pagina->findChild<QLabel *>("Dato_0")->text().isEmpty(), 2000);
        // Unchanged, Esc leaves without a word to the ECU.
        ricevuti.clear();
        QSignalSpy chiusa(pagina.get(), &TelaioMessaPunto::chiusa);
        tasto("Esci")->click();
        QCOMPARE(chiusa.size(), 1);
        QTest::qWait(200);
        QVERIFY(ricevuti.isEmpty());
    }
};

QTEST_MAIN(TstMpMinimoLinea)
#include "tst_mpminimo_linea.moc"
