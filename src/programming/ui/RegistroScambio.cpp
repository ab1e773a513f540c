#include "programming/ui/RegistroScambio.h"

#include "programming/ui/PaginaElenchiMappe.h"
#include "programming/ui/PaginaSoftware.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

#include <QDialog>

namespace kv {

namespace {

// The frame asks the page's questions, runs its folder dialog and takes it away when it ends.
template <typename Pagina>
Korvantine::FabbricaPagina fabbrica(typename Pagina::Funzione funzione)
{
    return [funzione](Korvantine &frame) -> QWidget * {
        auto *pagina = new Pagina(frame.programma().lingua, frame.programma().PercorsoApp, funzione);
        pagina->impostaDomanda([&frame](const QString &testo, int flags, const QString &titolo) {
            return frame.MostraMsg(testo, flags, titolo);
        });
        pagina->impostaModale([&frame](QDialog &dialogo) { return frame.eseguiModale(dialogo); });
        QObject::connect(pagina, &TelaioScambio::chiusa, &frame,
                         [&frame, pagina] { frame.ChiudiPagina(pagina); });
        pagina->carica();
        return pagina;
    };
}

} // namespace

void RegistraPagineScambio(Korvantine &frame)
{
    using S = PaginaSoftware::Funzione;
    using M = PaginaElenchiMappe::Funzione;
    frame.registraPagina(IdPagina::CreaDiscoSW, fabbrica<PaginaSoftware>(S::CreaDisco));
    frame.registraPagina(IdPagina::RipriDiscoSW, fabbrica<PaginaSoftware>(S::Ripristino));
    frame.registraPagina(IdPagina::CancelSW, fabbrica<PaginaSoftware>(S::Cancellazione));
    frame.registraPagina(IdPagina::CreaDiscoMappe, fabbrica<PaginaElenchiMappe>(M::CreaDisco));
    frame.registraPagina(IdPagina::RipriMappe, fabbrica<PaginaElenchiMappe>(M::Ripristino));
    frame.registraPagina(IdPagina::CancelMappe, fabbrica<PaginaElenchiMappe>(M::Cancellazione));
}

} // namespace kv
