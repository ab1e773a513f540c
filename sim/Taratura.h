#pragma once

#include "ModelloMotore.h"

#include <QtGlobal>

#include <optional>
#include <utility>

namespace kv::sim {

// Status byte of the 'd' stream (channel FLAGPA).
namespace StatoTaratura {
enum : quint8 {
    Normale = 0,
    LambdaFineSingola = 29,
    LambdaFine = 204,
    LambdaIstruzione = 206,
    TpsMemorizzato = 207,
    TpsFineSingola = 218,
    TpsMassimo = 219,
    TpsPremi = 220,
    TpsMinimo = 221,
    TpsAttesaSingola = 222,
    TpsAttesa = 223,
    GiriVisto = 234,
    GiriAttesa = 239,
    Ingresso = 255,
};
} // namespace StatoTaratura

// The firmware's calibration programs, switched by the 'A' command and reported only
// through the status byte. The tester's pages follow the byte, so the order matters:
//
// 'A' 2  entry point of the guided sequence: 255. Left to itself for IngressoMs the ECU
//        gives up waiting and goes back to normal running. No 'e' reply: the stream is it.
// 'A' 0  RPM step of the sequence, 'A' 3 the same alone: 239 while the engine is stopped
//        and being started, 234 once it turns. 'e' 0xFF.
// 'A' 1  from the sequence's RPM step: on to the TPS step. From anywhere else: back to
//        normal running (0). 'e' 0xFF.
//        TPS step: 223 pedal at rest (alone, 222 for the first second), 221 minimum
//        learnt, 220 press fully, 219 following the maximum until it stops rising; then
//        both points go to EEPROM. In the sequence 207 for a second, then the lambda step;
//        alone ('A' 4) 218 until 'A' 1.
//        Lambda step: 206 while the stepper sweeps end to end twice, then in the sequence 204
//        for FineSequenzaMs and back to normal running; alone ('A' 5) 29 for
//        FineSingolaMs, then back to normal running.
// Any other code is refused with CodiceErrato.
//
// The fitter at the car: the pedal. Left to itself (automatic) a simulated fitter lets the
// pedal rest and presses it on cue. Manual, the TPS step waits for the fitter's word that
// the pedal is released (at 223) and for the pedal pressed fully (at 220).
class Taratura
{
public:
    enum class Fase {
        Nessuna,
        Ingresso,
        GiriSequenza,
        GiriSingola,
        TpsSequenza,
        TpsSingola,
        LambdaSequenza,
        LambdaSingola,
        FineSequenza,
    };

    static constexpr int NessunaRisposta = -1;
    static constexpr int IngressoMs = 10000;
    static constexpr int MotoreFermoMs = 1500;
    static constexpr int TpsRiposoMs = 2500;
    static constexpr int TpsMinimoMs = 1000;
    static constexpr int TpsPremiMs = 500;
    static constexpr int TpsFermoMs = 1000;
    static constexpr int TpsMassimoMinMs = 1500;
    static constexpr int TpsMassimoMaxMs = 4000;
    static constexpr int TpsMemorizzatoMs = 1000;
    static constexpr int LambdaSweepMs = 12000; // two sweeps, time for a fitter to watch them
    static constexpr int FineSequenzaMs = 8000;
    static constexpr int FineSingolaMs = 5000;

    enum class Pedale {
        Riposo,
        Premuto
    };

    // Status of the 'e' reply to 'A' codice, or NessunaRisposta.
    int comando(int codice, quint8 codiceErrato);
    void passo(int dtMs, const CampioneMotore &c);
    void azzera();

    quint8 stato() const;
    ModoMotore modoMotore() const;
    Fase fase() const { return m_fase; }

    // The fitter's side.
    void impostaManuale(bool manuale) { m_manuale = manuale; }
    bool manuale() const { return m_manuale; }
    void pedale(Pedale p);
    Pedale pedaleAttuale() const { return m_pedale; }

    // The two TPS points once the ECU has learnt them; handed out once.
    std::optional<std::pair<int, int>> prendiPuntiTps();

private:
    enum class PassoTps {
        Riposo,
        Minimo,
        Premi,
        Massimo,
        Appreso
    };

    void entra(Fase fase);
    void passoTps(const CampioneMotore &c);

    Fase m_fase = Fase::Nessuna;
    int m_tempoMs = 0; // in the present phase
    bool m_giriVisti = false;
    PassoTps m_passoTps = PassoTps::Riposo;
    int m_tempoPassoMs = 0;
    qint64 m_sommaRiposo = 0;
    int m_campioniRiposo = 0;
    int m_tpsMinimo = 0;
    int m_tpsMassimo = 0;
    int m_ultimoAumentoMs = 0;
    std::optional<std::pair<int, int>> m_puntiTps;
    bool m_manuale = false;
    Pedale m_pedale = Pedale::Riposo;
    bool m_rilascioDetto = false; // the fitter has said so in this TPS step
};

} // namespace kv::sim
