#pragma once

#include <QString>

namespace kv {

class AnelloRegistrazione;
class Catalogo;
class DatiLive;
class Lingua;
class MotoreDialogo;
class TabellaCanali;

// What the monitor windows, the instruments and the charts, work with, and nothing else:
// the program's folder (settings, recordings and their cards), the language, the channel
// table whose scales the charts follow, the recorder, the live stream they show, and the
// dialogue engine and catalogue the instruments read their set points through.
struct ContestoMonitor
{
    QString percorsoApp;
    const Lingua &lingua;
    TabellaCanali &canali;
    AnelloRegistrazione &anello;
    const DatiLive &datiLive;
    MotoreDialogo &motore;
    Catalogo &catalogo;
};

} // namespace kv
