#include "shell/StatoMenu.h"

#include "link/StatoEcu.h"

namespace kv {

void StatoMenu::ecuCambiata(const StatoEcu &ecu)
{
    if (!ecu.EcuNormale || (!ecu.EcuInMarcia && m_funzione == Funzione::MessaPunto))
        m_funzione = Funzione::Nessuna;
}

} // namespace kv
