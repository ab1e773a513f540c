#pragma once

#include <QString>

namespace kv {

class Lingua;
class Programma;
class SessioneLinea;

// What a programming page that talks to the ECU works with: the line, the language, and the
// program folder under which the archive and the history lie.
struct ContestoProgrammazione
{
    SessioneLinea &linea;
    const Lingua &lingua;
    QString percorsoApp;
};

// The connected ECU's, as the program holds it.
ContestoProgrammazione ContestoProgrammazioneDi(Programma &programma);

} // namespace kv
