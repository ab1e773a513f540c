#include "monitoring/ui/RegistroStrumenti.h"

#include "monitoring/ui/Strumenti.h"
#include "shell/ui/Korvantine.h"

namespace kv {

void RegistraStrumenti(Korvantine &frame)
{
    frame.registraPagina(IdPagina::Strumenti, [](Korvantine &f) -> QWidget * {
        auto *pagina = new Strumenti(f.programma());
        QObject::connect(pagina, &Strumenti::chiusa, &f, [&f, pagina] { f.ChiudiPagina(pagina); });
        pagina->carica();
        return pagina;
    });
}

} // namespace kv
