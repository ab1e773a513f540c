#pragma once

#include "variables/Catalogo.h"

#include <QByteArray>

namespace kv {

// The ECU's map area, 0xC100..0xC2FF: the EEPROM homes of the tuning entries, the 512 bytes a
// map file holds and a map read or write moves in blocks of 64.
namespace AreaMappa {
inline constexpr qint32 Inizio = 0xC100;
inline constexpr qint32 Fine = 0xC2FF;
inline constexpr int Dimensione = Fine - Inizio + 1;
inline constexpr int Blocco = 64;
inline constexpr int Blocchi = Dimensione / Blocco;

// The entry's EEPROM home lies whole in the area.
inline bool Contiene(const Parametro &p)
{
    return p.IndirizzoEE >= Inizio && p.IndirizzoEE + p.Dimensione - 1 <= Fine;
}

// The entry's bytes in a map image; its home must lie in the area.
inline QByteArray Cella(const QByteArray &immagine, const Parametro &p)
{
    return immagine.mid(p.IndirizzoEE - Inizio, p.Dimensione);
}
} // namespace AreaMappa

} // namespace kv
