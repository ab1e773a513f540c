#pragma once

#include <QByteArray>

namespace kv {
class Catalogo;
}

namespace kv::sim {

class MemoriaEcu;

// The five texts of the version reply, each cut or padded with blanks to its width.
struct StringheVersione
{
    QByteArray veicolo = "KV-SIM    ";
    QByteArray data = "2024-03-18";
    QByteArray codice = "KV2SIM0001    ";
    QByteArray datoA = "LPG-SEQ-01";
    QByteArray datoB = "R1.0";
};

// Writes the software header and the factory tuning of every catalogue entry into the
// programmable area, at the catalogue's EEPROM addresses.
void ScriviImmagineIniziale(MemoriaEcu &memoria, const Catalogo &catalogo, const StringheVersione &versione);

// Writes only the version texts, leaving the rest of the image as it is.
void ScriviVersione(MemoriaEcu &memoria, const StringheVersione &versione);

// What the firmware does at boot: RAM cleared, the RAM-only cells to their defaults,
// then every entry that has both homes copied from EEPROM to RAM.
void AvviaRam(MemoriaEcu &memoria, const Catalogo &catalogo);

} // namespace kv::sim
