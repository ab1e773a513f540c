#pragma once

#include "ImmagineIniziale.h"

#include <QByteArray>
#include <QtGlobal>

namespace kv::sim {

// The simulator's software as a release file, so that the demo has something of its own to
// flash: the programmable area with the given version texts and the factory tuning.
QByteArray ImmagineSoftware(const StringheVersione &versione);

// An image as Motorola S-records the way an ECU maker's tools write them: a header, S1
// lines of 32 data bytes with count and checksum, the start record; CR LF line ends.
QByteArray TestoS19(const QByteArray &immagine, quint16 inizio);

// The release the demo offers, KVSIM_R2: this software with a newer vehicle text and date,
// as an S19 file. The flash puts the connected ECU's code and data A and B over its own.
QByteArray RilascioDemo();

} // namespace kv::sim
