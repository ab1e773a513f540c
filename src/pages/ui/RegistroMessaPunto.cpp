#include "pages/ui/RegistroMessaPunto.h"

#include "pages/ui/MP_Lavoro.h"
#include "pages/ui/MP_Minimo.h"
#include "pages/ui/MP_Normale.h"
#include "pages/ui/MP_PienoCarico.h"
#include "pages/ui/MP_Pompata.h"
#include "pages/ui/ModificaSenzaEcu.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

namespace kv {

namespace {

// The frame asks the page's questions, shows what it says on its strip and takes it away when
// it ends.
template <class Pagina>
QWidget *apri(Korvantine &frame, Pagina *pagina)
{
    pagina->impostaDomanda([&frame](const QString &testo, int flags, const QString &titolo) {
        return frame.MostraMsg(testo, flags, titolo);
    });
    QObject::connect(pagina, &Pagina::chiusa, &frame, [&frame, pagina] { frame.ChiudiPagina(pagina); });
    QObject::connect(pagina, &Pagina::segnalazione1, &frame, &Korvantine::impostaSegnalazione1);
    pagina->carica();
    return pagina;
}

} // namespace

TelaioMessaPunto *CreaPaginaMessaPunto(const ContestoPagina &contesto, IdPagina id, QWidget *parent)
{
    // The pages with widgets of their own; any other is its description on the frame.
    switch (id) {
    case IdPagina::MP_Minimo:
        return new MP_Minimo(contesto, parent);
    case IdPagina::MP_Normale:
        return new MP_Normale(contesto, parent);
    case IdPagina::MP_PienoCarico:
        return new MP_PienoCarico(contesto, parent);
    case IdPagina::MP_Pompata:
        return new MP_Pompata(contesto, parent);
    case IdPagina::MP_Lavoro:
        return new MP_Lavoro(contesto, parent);
    default:
        break;
    }
    const DescrizionePagina *d = DescrizioneDi(id);
    return d ? new TelaioMessaPunto(contesto, *d, parent) : nullptr;
}

void RegistraPagineMessaPunto(Korvantine &frame)
{
    for (const DescrizionePagina &d : TabellaPagine()) {
        // Calibration pages that share the table are registered by their own unit.
        if (!PaginaMessaPunto(d.id))
            continue;
        frame.registraPagina(d.id, [id = d.id](Korvantine &f) {
            return apri(f, CreaPaginaMessaPunto(ContestoDi(f.programma()), id));
        });
    }
    // The same pages on a map with no ECU: what they need is handed to them there.
    frame.registraPagina(IdPagina::ModificaSenzaEcu, [](Korvantine &f) -> QWidget * {
        Programma &p = f.programma();
        return apri(f, new ModificaSenzaEcu(p.PercorsoApp, p.lingua, p.menu.ModoAssistenza()));
    });
}

} // namespace kv
