#include "programming/ui/RegistroMappe.h"

#include "programming/ui/ProgMappe.h"
#include "programming/ui/ReadMappe.h"
#include "shell/ui/Korvantine.h"

namespace kv {

namespace {

// The frame asks the page's questions and takes it away when it ends.
template <typename Pagina>
QWidget *apri(Korvantine &frame)
{
    auto *pagina = new Pagina(frame.programma());
    pagina->impostaDomanda([&frame](const QString &testo, int flags, const QString &titolo) {
        return frame.MostraMsg(testo, flags, titolo, (flags & SecondoPredefinito) ? 1 : 0);
    });
    QObject::connect(pagina, &TelaioMappe::chiusa, &frame, [&frame, pagina] { frame.ChiudiPagina(pagina); });
    pagina->carica();
    return pagina;
}

} // namespace

void RegistraPagineMappe(Korvantine &frame)
{
    frame.registraPagina(IdPagina::ReadMappe, apri<ReadMappe>);
    frame.registraPagina(IdPagina::ProgMappe, apri<ProgMappe>);
}

} // namespace kv
