#pragma once

#include <QString>
#include <QStringList>

namespace kv {

// Where the program keeps its files (PercorsoApp). The start-up order that keeps a second
// instance from touching anything: RisolviPercorsoApp (reads only), IstanzaUnica on the
// result, and only then SeminaLingue and the rest.

// Trimmed, one trailing '/' cut; the root "/" thus becomes "", from which "/NAME" paths
// are still built right.
QString PulisciPercorso(const QString &percorso);

// home, when not blank, wins. Otherwise the executable's folder when it is writable and holds
// KORVANTINE.INI or a .LNG file (a portable install). Otherwise the per-user folder.
// Nothing is made or changed on disk.
QString RisolviPercorsoApp(const QString &home, const QString &cartellaEseguibile,
                           const QString &cartellaUtente);

// The per-user data folder: the generic data location with "/Korvantine" behind it.
QString CartellaDatiUtente();

// Where the shipped language files may lie, first choice first: an installed tree
// (exeDir/../share/korvantine/lang), then the lang/ folder of the source tree built from.
QStringList CartelleLingueDistribuite(const QString &cartellaEseguibile);

// Seeds a folder that holds no .LNG file yet (a first start) with every .LNG of the given
// folders, the first folder that has a name winning; a folder that already holds one is left
// alone, so a file the user has is never overwritten. The folder is made when missing.
// Returns the number of files copied, -1 when the folder cannot be made.
int SeminaLingue(const QString &cartella, const QStringList &origini);

// True when the folder holds a .LNG file (extension matched without regard to case).
bool ContieneLingue(const QString &cartella);

} // namespace kv
