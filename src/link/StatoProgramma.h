#pragma once

#include "monitoring/Canali.h"

#include <QString>
#include <QtGlobal>

#include <array>

namespace kv {

// The program-wide flags and fields. Flags are -1 for true and 0 for false, except
// EcuInMarcia (1, 0) and ModoAssistenza (0, 1), as the rest of the program expects.
struct StatoProgramma
{
    QString PercorsoApp;
    char SepDecimale = '.';

    qint16 FunzioneScelta = -1;
    qint16 ModoAssistenza = 0;
    qint16 RegistrazioneAttiva = 0;

    qint16 EcuDaIdentificare = -1;
    qint16 DatoNuovo = 0;
    qint16 EcuInMarcia = 1;
    qint16 EcuNormale = -1;
    qint16 TaraturaInCorso = -1;
    qint16 PassoTaratura = -1;
    qint16 TaraturaCompleta = 0;

    qint16 TpsPresente = -1;
    qint16 TipoTpsPresente = 0;
    qint16 TpsAutoPresente = 0;

    std::array<RecordDati, 2> DatiAttuali{};

    QString InfVeicolo = QString(10, QLatin1Char(' '));
    QString InfData = QString(10, QLatin1Char(' '));
    QString InfCodice = QString(14, QLatin1Char(' '));
    QString InfDatoA = QString(10, QLatin1Char(' '));
    QString InfDatoB = QString(4, QLatin1Char(' '));

    // The part of IniDialogo that is not the link's own (state, queue, buffer).
    void IniDialogo()
    {
        FunzioneScelta = -1;
        ModoAssistenza = 0;
        RegistrazioneAttiva = 0;
    }

    void IniCollegamento()
    {
        EcuDaIdentificare = -1;
        DatoNuovo = 0;
        for (auto &r : DatiAttuali)
            r.Progressivo = -1;
        EcuInMarcia = 1;
        EcuNormale = -1;
        InfVeicolo = QString(10, QLatin1Char(' '));
        InfData = QString(10, QLatin1Char(' '));
        InfCodice = QString(14, QLatin1Char(' '));
        InfDatoA = QString(10, QLatin1Char(' '));
        InfDatoB = QString(4, QLatin1Char(' '));
        TaraturaInCorso = -1;
        PassoTaratura = -1;
        TaraturaCompleta = 0;
    }
};

} // namespace kv
