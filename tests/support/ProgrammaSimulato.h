#pragma once

// A Programma on the simulated ECU, in English, as the tests of pages and panels want it:
// either wired straight to the port with timers the test fires itself (avvia), or over a
// pseudo-terminal with real timers and the ECU's own live stream (avviaSuLinea). A test class
// derives from it next to QObject and calls preparaCartella() in initTestCase(), one of the
// two in init() and chiudi() in cleanup().

#include "base/Lingua.h"
#include "support/PortaEcu.h"

#include "link/PortaSeriale.h"
#include "shell/Programma.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace kv {

class ProgrammaSimulato
{
protected:
    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    Lingua lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> p;
    PortaEcu *porta = nullptr;                   // straight wiring only
    TemporizzatoreManuale *req = nullptr;        // straight wiring only
    TemporizzatoreManuale *riapertura = nullptr; // straight wiring only

    // The English texts in the program's folder, or in another one.
    bool preparaCartella(const QString &altra = {})
    {
        const QString c = altra.isEmpty() ? cartella.path() : altra;
        return cartella.isValid() && QDir().mkpath(c)
               && QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"),
                              c + QStringLiteral("/ENGLISH.LNG"));
    }

    // The ECU known and quiet: nothing moves until the test says so. A port of the test's own
    // kind, other options of the simulator and another folder for the program may be given.
    template <typename P = PortaEcu>
    void avvia(const OpzioniEcu &opzioni = OpzioniManuali(), const QString &app = {})
    {
        p.reset();
        ecu = std::make_unique<EcuSimulata>(opzioni);
        auto pe = std::make_unique<P>(*ecu);
        auto r = std::make_unique<TemporizzatoreManuale>();
        auto ra = std::make_unique<TemporizzatoreManuale>();
        porta = pe.get();
        req = r.get();
        riapertura = ra.get();
        lingua = Lingua(app.isEmpty() ? cartella.path() : app);
        p = std::make_unique<Programma>(app.isEmpty() ? cartella.path() : app, lingua, std::move(pe),
                                        std::move(r), std::make_unique<TemporizzatoreManuale>(),
                                        std::move(ra), std::make_unique<TemporizzatoreManuale>());
        p->linea.ecuDiProva().EcuDaIdentificare = false;
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->canali.InizializzaCanali(p->lingua.Cerca());
        p->linea.datiLive().aggiungiAscoltatore(&m_decodificati);
    }

    // The real port at 38400 baud, the ECU streaming, identified by its first frames (or, with
    // no application, known as such).
    bool avviaSuLinea(const OpzioniEcu &opzioni = {})
    {
        p.reset();
        ecu = std::make_unique<EcuSimulata>(opzioni);
        if (!ecu->apriPty())
            return false;
        porta = nullptr;
        req = nullptr;
        lingua = Lingua(cartella.path());
        p = std::make_unique<Programma>(cartella.path(), lingua, std::make_unique<PortaSeriale>(),
                                        std::make_unique<TemporizzatoreQt>(),
                                        std::make_unique<TemporizzatoreQt>());
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->seriale.VelocitaCom = 38400;
        p->dispositivoForzato = ecu->percorsoDispositivo();
        if (!p->ApriPorta())
            return false;
        ecu->avvia();
        return QTest::qWaitFor(
                   [this] { return !p->linea.ecu().EcuDaIdentificare || !p->linea.ecu().EcuNormale; }, 5000)
               && attendi(5000);
    }

    void chiudi()
    {
        p.reset();
        ecu.reset();
        porta = nullptr;
        req = nullptr;
        riapertura = nullptr;
    }

    // n live frames of the simulator's, each through the port and the receive path.
    bool frame(int n = 1)
    {
        for (int i = 0; i < n; ++i) {
            const int prima = m_decodificati.n;
            ecu->avanzaTempo(40);
            if (!QTest::qWaitFor([&] { return m_decodificati.n == prima + 1; }, 2000))
                return false;
        }
        return true;
    }

    // The link free again; replies come back through the event loop.
    bool attendi(int millisecondi = 3000)
    {
        QDeadlineTimer scadenza(millisecondi);
        while (p->linea.motore().StatoDialogo() != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return p->linea.motore().StatoDialogo() == -1;
    }

    int ram(int parametro) const { return CellaEcu(*ecu, p->catalogo, parametro, false); }
    int eeprom(int parametro) const { return CellaEcu(*ecu, p->catalogo, parametro, true); }
    // Both homes of an entry, as after a boot.
    void voce(int parametro, int grezzo) { ImpostaVoceEcu(*ecu, p->catalogo, parametro, grezzo); }
    // The idle page's entries and the entries its limits come from, in both homes.
    void vociMinimo()
    {
        using namespace Par;
        for (auto [v, grezzo] : {std::pair{SogliaGiriEntrataMinimo, 900},
                                 {SogliaGiriUscitaMinimo, 1300},
                                 {SogliaGiriUscitaCutOff, 1700},
                                 {SogliaTpsEntrataMinimo, 100},
                                 {SogliaTpsUscitaMinimo, 160},
                                 {TpsTaratoMassimo, 1000},
                                 {TpsTaratoMinimo, 50},
                                 {ScalaLambda, 0},
                                 {SogliaLambdaMagroMinimo, 300},
                                 {SogliaLambdaRiccoMinimo, 700},
                                 {FrequenzaControlloMinimo, 100},
                                 {PassiControlloMinimo, 7}})
            voce(v, grezzo);
    }
    QString testo(const char *sezione, const QString &chiave) const
    {
        return p->lingua.LeggiTesto(sezione, chiave);
    }

private:
    struct Contatore : AscoltatoreDati
    {
        void frameNormale(const RecordDati &) override { ++n; }
        void frameStato(const RecordDati &) override { ++n; }
        int n = 0;
    } m_decodificati;
};

} // namespace kv
