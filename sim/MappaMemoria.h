#pragma once

#include <QtGlobal>

namespace kv::sim {

// Where things live in the simulated ECU. RAM is the working copy the firmware runs on;
// the programmable area holds the software, and inside it the EEPROM block with the
// stored parameters and the map.
namespace MappaMemoria {
inline constexpr quint32 InizioRam = 0x0090;
inline constexpr quint32 FineRam = 0x01FD;
inline constexpr quint32 InizioSoftware = 0xC000;
inline constexpr quint32 FineSoftware = 0xF6FF;
inline constexpr quint32 InizioEeprom = 0xC100;
inline constexpr quint32 FineEeprom = 0xC2FF;
inline constexpr int DimensioneSoftware = int(FineSoftware - InizioSoftware + 1);

// The version reply is the 48 bytes from Veicolo on, in this order. Codice, DatoA and
// DatoB are where the programming tool puts the identification back into a new image;
// Veicolo and Data sit just before them so that the whole reply is one read.
inline constexpr quint32 Veicolo = 0xC02C;
inline constexpr int LunghezzaVeicolo = 10;
inline constexpr quint32 Data = 0xC036;
inline constexpr int LunghezzaData = 10;
inline constexpr quint32 Codice = 0xC040;
inline constexpr int LunghezzaCodice = 14;
inline constexpr quint32 DatoA = 0xC04E;
inline constexpr int LunghezzaDatoA = 10;
inline constexpr quint32 DatoB = 0xC058;
inline constexpr int LunghezzaDatoB = 4;
inline constexpr int LunghezzaVersione = 48;
} // namespace MappaMemoria

// The area a whole range of addresses falls in. A range that straddles two areas, or
// touches an address the ECU does not have, is Nessuna.
enum class AreaMemoria {
    Nessuna,
    Ram,
    Eeprom,
    Software
};

} // namespace kv::sim
