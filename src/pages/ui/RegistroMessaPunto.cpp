#include "pages/ui/RegistroMessaPunto.h"

#include "pages/ui/MP_Minimo.h"
#include "shell/ui/Korvantine.h"

namespace kv {

namespace {

// The frame asks the page's questions and takes it away when it ends.
template <typename Pagina>
QWidget *apri(Korvantine &frame)
{
    auto *pagina = new Pagina(frame.programma());
    pagina->impostaDomanda([&frame](const QString &testo, int flags, const QString &titolo) {
        return frame.MostraMsg(testo, flags, titolo);
    });
    QObject::connect(pagina, &TelaioMessaPunto::chiusa, &frame,
                     [&frame, pagina] { frame.ChiudiPagina(pagina); });
    pagina->carica();
    return pagina;
}

} // namespace

void RegistraPagineMessaPunto(Korvantine &frame)
{
    frame.registraPagina(IdPagina::MP_Minimo, apri<MP_Minimo>);
    // The other tuning pages come with their own units.
}

} // namespace kv
