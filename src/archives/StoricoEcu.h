#pragma once

#include "archives/Archivio.h"

#include <QByteArray>
#include <QDateTime>
#include <QLatin1String>
#include <QList>
#include <QString>

#include <optional>

namespace kv {

// The history of the ECUs: what an ECU's map area held just before the program changed it,
// one entry a time, kept in STORICO/STORICO.MDB beside the other archives. It lies outside
// MAPPATURE on purpose: the map tree, the exchange media and the deletion of maps never see
// an entry, so nothing of it goes with a medium or a deletion unless it is picked on its own.
namespace FileStorico {
inline constexpr QLatin1String Cartella("STORICO");
inline constexpr QLatin1String File("STORICO.MDB");
// Date and time of an entry as kept: they sort as they read.
inline constexpr QLatin1String FormatoData("yyyy-MM-dd");
inline constexpr QLatin1String FormatoOra("HH:mm:ss.zzz");
} // namespace FileStorico

// An ECU by its identification strings, the three a software flash keeps (at 0xC040, 0xC04E
// and 0xC058): the fields of the version reply after the vehicle text and the date.
struct IdentitaEcu
{
    QString codice;
    QString datoA;
    QString datoB;

    // The key the entries of one ECU share; the blanks that pad the strings do not count.
    QString chiave() const;
    bool vuota() const
    {
        return codice.trimmed().isEmpty() && datoA.trimmed().isEmpty() && datoB.trimmed().isEmpty();
    }
};

struct VoceStorico
{
    IdentitaEcu ecu;
    QDateTime quando; // local time, to the millisecond
    // What was about to happen: a short word of the caller's (a page stored, a map written,
    // a calibration, a flash), kept as given.
    QString evento;
    std::optional<double> scalaLambda; // the ECU's flag at the time, 0 or 255
    QByteArray immagine;               // the 512 bytes from 0xC100
};

// STORICO of STORICO.MDB.
const SchemaArchivio &SchemaStorico();

// Adds an entry. An entry of the same ECU in the same millisecond takes the next one, so
// none is ever lost to another. Refused with Uso, and nothing written, unless the image
// has the map area's 512 bytes and the ECU some identification.
EsitoArchivio AggiungiStorico(const QString &percorsoApp, const VoceStorico &voce);

// The entries of an ECU, newest first.
QList<VoceStorico> ElencaStorico(const QString &percorsoApp, const IdentitaEcu &ecu,
                                 EsitoArchivio *esito = nullptr);

// The entry of that ECU at that time (to the millisecond); nullopt when there is none.
std::optional<VoceStorico> LeggiStorico(const QString &percorsoApp, const IdentitaEcu &ecu,
                                        const QDateTime &quando, EsitoArchivio *esito = nullptr);

} // namespace kv
