#pragma once

#include "pages/ContestoPagina.h"
#include "shell/IdPagina.h"

class QWidget;

namespace kv {

class Korvantine;
class TelaioMessaPunto;

// A tuning page by its id on what it is to work with, not yet loaded: its own class where it
// has one, otherwise the page frame over its description. Null for an id that is not a tuning
// page.
TelaioMessaPunto *CreaPaginaMessaPunto(const ContestoPagina &contesto, IdPagina id,
                                       QWidget *parent = nullptr);

// Puts every tuning page of the page table into the main frame's page registry.
void RegistraPagineMessaPunto(Korvantine &frame);

} // namespace kv
