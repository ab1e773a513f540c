#pragma once

// A Programma on the simulated ECU, in English, as the tests of pages and panels want it:
// either wired straight to the port with timers the test fires itself (avvia), or over a
// pseudo-terminal with real timers and the ECU's own live stream (avviaSuLinea). A test class
// derives from it next to QObject and calls preparaCartella() in initTestCase(), one of the
// two in init() and chiudi() in cleanup().

#include "support/PortaEcu.h"

#include "link/PortaSeriale.h"
#include "shell/Programma.h"

#include <QDeadlineTimer>
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
    std::unique_ptr<Programma> p;
    PortaEcu *porta = nullptr;            // straight wiring only
    TemporizzatoreManuale *req = nullptr; // straight wiring only

    // The program's folder with the English texts in it.
    bool preparaCartella()
    {
        return cartella.isValid()
               && QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"),
                              cartella.filePath("ENGLISH.LNG"));
    }

    // The ECU known and quiet: nothing moves until the test says so.
    void avvia()
    {
        ecu = std::make_unique<EcuSimulata>(OpzioniManuali());
        auto pe = std::make_unique<PortaEcu>(*ecu);
        auto r = std::make_unique<TemporizzatoreManuale>();
        porta = pe.get();
        req = r.get();
        p = std::make_unique<Programma>(cartella.path(), std::move(pe), std::move(r),
                                        std::make_unique<TemporizzatoreManuale>());
        p->stato.EcuDaIdentificare = false;
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
    }

    // The real port at 38400 baud, the ECU streaming, identified by its first frames.
    bool avviaSuLinea()
    {
        ecu = std::make_unique<EcuSimulata>();
        if (!ecu->apriPty())
            return false;
        porta = nullptr;
        req = nullptr;
        p = std::make_unique<Programma>(cartella.path(), std::make_unique<PortaSeriale>(),
                                        std::make_unique<TemporizzatoreQt>(),
                                        std::make_unique<TemporizzatoreQt>());
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->seriale.VelocitaCom = 38400;
        p->dispositivoForzato = ecu->percorsoDispositivo();
        if (!p->ApriPorta())
            return false;
        ecu->avvia();
        return QTest::qWaitFor([this] { return !p->stato.EcuDaIdentificare; }, 5000) && attendi(5000);
    }

    void chiudi()
    {
        p.reset();
        ecu.reset();
        porta = nullptr;
        req = nullptr;
    }

    // The link free again; replies come back through the event loop.
    bool attendi(int millisecondi = 3000)
    {
        QDeadlineTimer scadenza(millisecondi);
        while (p->motore.StatoDialogo() != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        return p->motore.StatoDialogo() == -1;
    }

    int ram(int parametro) const { return CellaEcu(*ecu, p->catalogo, parametro, false); }
    int eeprom(int parametro) const { return CellaEcu(*ecu, p->catalogo, parametro, true); }
    // Both homes of an entry, as after a boot.
    void voce(int parametro, int grezzo) { ImpostaVoceEcu(*ecu, p->catalogo, parametro, grezzo); }
    QString testo(const char *sezione, const QString &chiave) const
    {
        return p->lingua.LeggiTesto(sezione, chiave);
    }
};

} // namespace kv
