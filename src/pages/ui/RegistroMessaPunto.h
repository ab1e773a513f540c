#pragma once

#include "shell/IdPagina.h"

class QWidget;

namespace kv {

class Korvantine;
class Programma;
class TelaioMessaPunto;

// A tuning page by its id, not yet loaded: its own class where it has one, otherwise the page
// frame over its description. Null for an id that is not a tuning page.
TelaioMessaPunto *CreaPaginaMessaPunto(Programma &programma, IdPagina id, QWidget *parent = nullptr);

// Puts every tuning page of the page table into the main frame's page registry.
void RegistraPagineMessaPunto(Korvantine &frame);

} // namespace kv
