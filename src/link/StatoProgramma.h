#pragma once

#include "monitoring/Canali.h"

#include <QString>
#include <QtGlobal>

#include <array>

namespace kv {

// The functions of the main menu, by the index of their button.
enum class Funzione : qint16 {
    Nessuna = -1,
    Programmazione = 0,
    VisualizzaDati = 1,
    MessaPunto = 2,
    Taratura = 3,
    Utilita = 4
};

// Where the calibration sequence stands; a single calibration page takes its own step.
enum class FaseTaratura : qint16 {
    Nessuna = -1,
    Avviso = 0,    // the warning page
    AttesaEcu = 1, // waiting for the ECU to enter calibration
    Giri = 2,
    Tps = 3,
    Lambda = 4,
    Parametri = 5
};

// The program-wide flags and fields. Inside the program a flag is a bool; the numbers
// the ECU and the files use are made where values cross to them.
struct StatoProgramma
{
    QString PercorsoApp;
    char SepDecimale = '.';

    Funzione FunzioneScelta = Funzione::Nessuna;
    bool ModoAssistenza = false;      // service mode
    bool RegistrazioneAttiva = false; // a monitor window keeps samples for a recording

    bool EcuDaIdentificare = true;
    bool DatoNuovo = false;  // a live record came since the monitor page last showed one
    bool EcuInMarcia = true; // the ECU reports normal running (status byte 0)
    bool EcuNormale = true;  // the ECU runs its application; false after a 'g' frame
    FaseTaratura TaraturaInCorso = FaseTaratura::Nessuna;
    qint16 PassoTaratura = -1;      // counter within the calibration step, -1 none
    bool TaraturaCompleta = false;  // the guided sequence runs, not a single page
    bool AttesaIniTaratura = false; // the warning page is up: the ECU's normal running is expected
    bool UscitaTaratura = false;    // the 'A' 2 under way ends a calibration instead of starting one

    bool TpsPresente = true; // the throttle sensor has been calibrated
    bool TipoTpsPresente = false;
    bool TpsAutoPresente = false;

    std::array<RecordDati, 2> DatiAttuali{};

    QString InfVeicolo = QString(10, QLatin1Char(' '));
    QString InfData = QString(10, QLatin1Char(' '));
    QString InfCodice = QString(14, QLatin1Char(' '));
    QString InfDatoA = QString(10, QLatin1Char(' '));
    QString InfDatoB = QString(4, QLatin1Char(' '));

    // The part of IniDialogo that is not the link's own (state, queue, buffer).
    void IniDialogo()
    {
        FunzioneScelta = Funzione::Nessuna;
        ModoAssistenza = false;
        RegistrazioneAttiva = false;
    }

    void IniCollegamento()
    {
        EcuDaIdentificare = true;
        DatoNuovo = false;
        for (auto &r : DatiAttuali)
            r.Progressivo = -1;
        EcuInMarcia = true;
        EcuNormale = true;
        InfVeicolo = QString(10, QLatin1Char(' '));
        InfData = QString(10, QLatin1Char(' '));
        InfCodice = QString(14, QLatin1Char(' '));
        InfDatoA = QString(10, QLatin1Char(' '));
        InfDatoB = QString(4, QLatin1Char(' '));
        TaraturaInCorso = FaseTaratura::Nessuna;
        PassoTaratura = -1;
        TaraturaCompleta = false;
        AttesaIniTaratura = false;
        UscitaTaratura = false;
    }
};

} // namespace kv
