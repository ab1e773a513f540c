#include "programming/ui/RegistroProgSW.h"

#include "programming/DialogoMappe.h"
#include "programming/ui/ProgSW.h"
#include "shell/ui/Korvantine.h"

namespace kv {

void RegistraProgSW(Korvantine &frame)
{
    frame.registraPagina(IdPagina::ProgSW, [](Korvantine &f) -> QWidget * {
        auto *pagina = new ProgSW(ContestoProgrammazioneDi(f.programma()));
        pagina->impostaMessaggio([&f](const QString &testo, int flags, const QString &titolo) {
            return f.MostraMsg(testo, flags, titolo, (flags & SecondoPredefinito) ? 1 : 0);
        });
        // Esci brings the menu back and the page goes.
        QObject::connect(pagina, &ProgSW::chiusa, &f, [&f, pagina] { f.ChiudiPagina(pagina); });
        pagina->carica();
        return pagina;
    });
}

} // namespace kv
