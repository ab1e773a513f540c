#pragma once

#include "link/Porta.h"

#include <QObject>

namespace kv {

class Temporizzatore;

// Watches the line for the two faults a workshop meets most: an adapter pulled out, and a
// port that carries nothing like an ECU (wrong port, wrong speed, ignition off). A lost port
// is opened again, same device and speed, once a second until it comes back; a port on which
// no good frame has arrived for five seconds is said to be mute. It never sends anything.
class SorveglianzaLinea : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalloRiapertura = 1000;
    static constexpr int IntervalloSilenzio = 5000;

    enum class Stato {
        Chiusa, // never opened, or closed on purpose: nothing to retry
        Aperta, // open, good frames come (or the five seconds are not over yet)
        Muta,   // open, and no good frame for five seconds
        Persa   // gone under us: opened again every second
    };

    SorveglianzaLinea(Porta &porta, Temporizzatore &riapertura, Temporizzatore &silenzio,
                      QObject *parent = nullptr);

    // The port has just been opened with these settings, or could not be (no retry then).
    void aperta(const ImpostazioniPorta &impostazioni);
    void chiusa();
    // Every frame that passed its checksum, whatever it carries.
    void frameBuono();

    Stato stato() const { return m_stato; }
    // What was opened last: the device and speed the status line names.
    const ImpostazioniPorta &impostazioni() const { return m_impostazioni; }

signals:
    // The port went away and has been closed. Emitted before any retry.
    void persa();
    // The lost port is open again.
    void riaperta();
    void statoCambiato(SorveglianzaLinea::Stato stato);

private:
    void portaPersa();
    void riprova();
    void silenzio();
    void imposta(Stato stato);

    Porta &m_porta;
    Temporizzatore &m_riapertura;
    Temporizzatore &m_silenzio;
    ImpostazioniPorta m_impostazioni;
    Stato m_stato = Stato::Chiusa;
};

} // namespace kv
