#pragma once

#include <QMap>
#include <QString>
#include <QtGlobal>

namespace kv {

// The folder helpers of the archives and the exchange media. Each takes the root it may
// work in: a path that leaves it, lexically ("..") or through a symbolic link on the way,
// is refused, and a symbolic link met inside is never followed.

// True when percorso is radice or below it and no existing part of it from radice down,
// percorso included, is a symbolic link.
bool DentroRadice(const QString &percorso, const QString &radice);

// Clears a read-only mark of a file, keeping its other permissions. True when the file is
// writable afterwards.
bool ToglieSolaLettura(const QString &percorso, const QString &radice);

// Copies the whole of origine over destinazione, which need not exist, overwriting files of
// the same name (matched without regard to case). Symbolic links in origine are passed
// over; a link in destinazione is replaced, never written through. Errors are passed over:
// false when anything was refused or failed, true also when origine is missing.
bool CopiaCartella(const QString &origine, const QString &destinazione, const QString &radice);

// Deletes a folder and everything in it, read-only marks and all; links inside are
// removed, not followed. A missing folder is no failure. False when anything was left.
bool CancellaCartella(const QString &cartella, const QString &radice);

// The make logos: every MARK/*.BMP below percorsoApp, by the upper-cased base name. Empty
// when the folder is missing.
QMap<QString, QString> CaricoMarchi(const QString &percorsoApp);

} // namespace kv
