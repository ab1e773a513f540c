#include "pages/ui/MP_Minimo.h"

#include "pages/DialogoPagina.h"
#include "variables/Catalogo.h"

namespace kv {

MP_Minimo::MP_Minimo(Programma &programma, QWidget *parent)
    : TelaioMessaPunto(programma, DescrizioneMinimo(), QStringLiteral("MP_Minimo"), parent)
{
    creaBoxParametri(QStringLiteral("BOXMINIMO"));
    // Field order is the write order of the page.
    const auto &voci = dialogo().descrizione().voci;
    for (size_t i = 0; i < voci.size(); ++i)
        aggiungiRiga(static_cast<int>(i), voci[i]);
    impostaRigheTps({2, 3});
}

} // namespace kv
