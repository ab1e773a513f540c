#pragma once

#include "EcuSimulata.h"

#include <QString>

class QCommandLineParser;

namespace kv::sim {

// Everything the command line of korvantine-ecu can ask for.
struct ImpostazioniProgramma
{
    OpzioniEcu ecu;
    QString dispositivo;       // empty: a pseudo-terminal
    QString collegamento;      // fixed symlink to the pseudo-terminal
    bool versioneData = false; // a version text was given: it goes over a loaded image too
    bool verboso = false;
    int stalloDopoMs = -1;     // -1: never
    int durataStalloMs = 0;    // 0: until told otherwise
    int riagganciaDopoMs = -1; // -1: never
    QString rilascio;          // write the demo's release there and end
};

void PreparaRigaComando(QCommandLineParser &parser);

// After parser.parse(): false with a message that names the offending option.
bool InterpretaRigaComando(const QCommandLineParser &parser, ImpostazioniProgramma &imp, QString &errore);

} // namespace kv::sim
