#pragma once

#include "monitoring/Canali.h"

#include <QString>

namespace kv {

class IstanzaUnica;
class Programma;

// The entry routine, in the order that keeps a second instance from touching anything and
// that lets each step speak in the chosen language.
namespace Avvio {

enum class Esito {
    Prosegui,
    AltraIstanza, // end at once, silently
    CartellaInutilizzabile
};

// The working folder and the single-instance check. Nothing on disk is changed before the
// lock is ours.
Esito preparaCartella(const QString &percorsoApp, IstanzaUnica &istanza);

// Folders, leftovers of the last run, program-wide state, catalogues, serial settings, port,
// channel table and recording ring. The language is chosen before this: testo looks the
// channels' names up in it. The main frame comes after this.
void esegui(Programma &programma, const CercaTesto &testo);

} // namespace Avvio

} // namespace kv
