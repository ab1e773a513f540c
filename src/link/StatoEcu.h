#pragma once

#include <QString>

namespace kv {

// What is known of the ECU at the far end of the line. The link's receive path writes it
// (identification, the live stream, a page that has just read the throttle sensor's
// calibration through the session); everyone else holds it const.
struct StatoEcu
{
    bool EcuDaIdentificare = true;
    bool EcuInMarcia = true; // the ECU reports normal running (status byte 0)
    bool EcuNormale = true;  // the ECU runs its application; false after a 'g' frame

    bool TpsPresente = true; // the throttle sensor has been calibrated
    bool TipoTpsPresente = false;
    bool TpsAutoPresente = false;

    QString InfVeicolo = QString(10, QLatin1Char(' '));
    QString InfData = QString(10, QLatin1Char(' '));
    QString InfCodice = QString(14, QLatin1Char(' '));
    QString InfDatoA = QString(10, QLatin1Char(' '));
    QString InfDatoB = QString(4, QLatin1Char(' '));

    // Nothing known: the state of a new line, and of one whose ECU has gone.
    void IniCollegamento() { *this = StatoEcu{}; }
    // The stream has stopped or the ECU restarted: it is identified again from the next frame.
    void ecuPersa()
    {
        EcuInMarcia = true;
        EcuNormale = true;
        EcuDaIdentificare = true;
    }
};

} // namespace kv
