#include "programming/ContestoProgrammazione.h"

#include "shell/Programma.h"

namespace kv {

ContestoProgrammazione ContestoProgrammazioneDi(Programma &programma)
{
    return {programma.linea, programma.lingua, programma.PercorsoApp};
}

} // namespace kv
