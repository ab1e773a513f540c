#pragma once

#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

#include <functional>

namespace kv {

// File-system helpers with the program's flag convention: -1 true, 0 false.

// Makes every missing level of the path (separator '/', a trailing one or not). -1 when the
// whole path exists as a folder or has been made, 0 on any failure, which stays silent.
qint16 CreaCartella(const QString &percorso);

// Attribute mask as the directory search takes it: 16 asks for a folder, 0 for a plain file;
// other bits are ignored (there are no hidden or system files to ask for here). -1 when the
// search finds something, 0 when not and on any error. The last part may hold the wildcards
// '*' and '?', matched without regard to case; a pattern ending in '.' also matches a name
// without extension, and a folder search lists "." and ".." as the directory search does.
// A name without wildcards is tried as written first, then without regard to case.
qint16 EsisteFile(const QString &percorso, int attributi);

// Waits, serving nothing, until the time of day has moved on by that many seconds; the
// midnight wrap is taken care of. Zero, negative or not-a-number waits nothing.
void AttesaSecondi(double secondi);
// The same against a given clock (milliseconds since midnight), for callers that must not
// depend on the real one.
void AttesaSecondi(double secondi, const std::function<int()> &millisecondiDelGiorno);

// The path of an entry named nome in cartella: as written when it exists, otherwise the first
// (by name) whose name matches without regard to case; empty when there is none. The files
// are named in upper case, but a copy brought from elsewhere may not be.
QString TrovaFile(const QString &cartella, const QString &nome);

// TrovaFile, or cartella + '/' + nome as written when nothing is there yet.
QString PercorsoFile(const QString &cartella, const QString &nome);

// Replaces the file at percorso by byte in one step (QSaveFile): the old file stays whole
// unless the new one has been written, flushed and closed without an error. False then.
bool ScriviFileIntero(const QString &percorso, QByteArrayView byte);

// A name Windows keeps for a device (CON, PRN, AUX, NUL, COM1 to COM9, LPT1 to LPT9), in any
// case, with or without an extension: a file or folder of that name cannot be copied to a
// medium that a Windows machine reads.
bool NomeRiservato(const QString &nome);

} // namespace kv
