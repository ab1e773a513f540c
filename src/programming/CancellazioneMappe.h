#pragma once

#include "archives/Scambio.h"
#include "programming/FileMappa.h"

#include <QList>
#include <QString>

namespace kv {

// CancelMappe: after one question that lists them, the catalogue row and the .LKV file of
// each map, and the model's folder when no map is left in it (the make's and the plant's
// folders stay, even empty). A missing row does not keep the file; a place that leads out of
// MAPPATURE or through a link keeps its file; an archive that cannot be opened keeps all.
EsitoScambio CancellaMappe(const QString &percorsoApp, const QList<ChiaveMappa> &mappe,
                           const DomandaScambio &domanda);

} // namespace kv
