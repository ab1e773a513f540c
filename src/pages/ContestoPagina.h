#pragma once

namespace kv {

class Catalogo;
class Lingua;
class Programma;
class SessioneLinea;

// What a tuning page works with, and nothing else: the line its dialogue runs on (the ECU's,
// or a map's image standing in for one), the catalogue whose values it shows and whose
// limits it keeps, the language, and whether the menu is in service mode.
struct ContestoPagina
{
    SessioneLinea &linea;
    Catalogo &catalogo;
    const Lingua &lingua;
    bool assistenza = false;
};

// The connected ECU's, as the program holds it, in the menu's present mode.
ContestoPagina ContestoDi(Programma &programma);

} // namespace kv
