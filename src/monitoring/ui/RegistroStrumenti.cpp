#include "monitoring/ui/RegistroStrumenti.h"

#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/Memorf.h"
#include "monitoring/ui/Strumenti.h"
#include "shell/ui/Korvantine.h"

namespace kv {

namespace {

// The frame shows the window's messages and takes it away when it ends.
template <typename Finestra>
void prepara(Korvantine &f, Finestra *pagina, const BarraRegistrazione::ApriScheda &apriScheda)
{
    BarraRegistrazione &barra = pagina->barra();
    barra.impostaMessaggio([&f](const QString &testo, int flags, const QString &titolo) {
        return f.MostraMsg(testo, flags, titolo);
    });
    if (apriScheda) {
        barra.impostaApriScheda(apriScheda);
    } else {
        // Through the frame, so that the page outlives the card whatever happens meanwhile.
        barra.impostaApriScheda([&f](QWidget *finestra) {
            Memorf scheda(f.programma(), finestra);
            f.eseguiModale(scheda);
        });
    }
    QObject::connect(pagina, &Finestra::chiusa, &f, [&f, pagina] { f.ChiudiPagina(pagina); });
    pagina->carica();
}

} // namespace

void RegistraStrumenti(Korvantine &frame, BarraRegistrazione::ApriScheda apriScheda)
{
    frame.registraPagina(IdPagina::Strumenti, [apriScheda](Korvantine &f) -> QWidget * {
        auto *pagina = new Strumenti(f.programma());
        prepara(f, pagina, apriScheda);
        return pagina;
    });
    frame.registraPagina(IdPagina::Grafici, [apriScheda](Korvantine &f) -> QWidget * {
        auto *pagina = new Grafici(f.programma());
        prepara(f, pagina, apriScheda);
        return pagina;
    });
}

} // namespace kv
