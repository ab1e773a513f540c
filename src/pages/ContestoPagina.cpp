#include "pages/ContestoPagina.h"

#include "shell/Programma.h"

namespace kv {

ContestoPagina ContestoDi(Programma &programma)
{
    return {programma.linea, programma.catalogo, programma.lingua, programma.menu.ModoAssistenza()};
}

} // namespace kv
