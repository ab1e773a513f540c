#pragma once

#include "archives/Scambio.h"

#include <QString>

namespace kv {

// CancelSW: after one question that names it, the catalogue row and the file
// SOFTWARE/FILES19/<nome>.S19 go in one step. A missing row does not keep the file, nor the
// reverse; an archive that cannot be opened keeps both. Nothing outside FILES19 is removed.
EsitoScambio CancellaSoftware(const QString &percorsoApp, const QString &nome, const DomandaScambio &domanda);

} // namespace kv
