#include "monitoring/ui/RegistroStrumenti.h"
#include "base/Lingua.h"

#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/Memorf.h"
#include "monitoring/ui/Strumenti.h"
#include "monitoring/ui/Visore.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

#include <QFileInfo>

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
            Programma &p = f.programma();
            Memorf scheda(p.PercorsoApp, p.lingua, p.anello, finestra);
            f.eseguiModale(scheda);
        });
    }
    QObject::connect(pagina, &Finestra::chiusa, &f, [&f, pagina] { f.ChiudiPagina(pagina); });
    pagina->carica();
}

} // namespace

ContestoMonitor ContestoMonitorDi(Programma &p)
{
    return {p.PercorsoApp, p.lingua, p.canali, p.anello, p.linea.datiLive(), p.linea.motore(), p.catalogo};
}

void RegistraStrumenti(Korvantine &frame, BarraRegistrazione::ApriScheda apriScheda)
{
    frame.registraPagina(IdPagina::Strumenti, [apriScheda](Korvantine &f) -> QWidget * {
        auto *pagina = new Strumenti(ContestoMonitorDi(f.programma()));
        prepara(f, pagina, apriScheda);
        return pagina;
    });
    frame.registraPagina(IdPagina::Grafici, [apriScheda](Korvantine &f) -> QWidget * {
        auto *pagina = new Grafici(ContestoMonitorDi(f.programma()));
        prepara(f, pagina, apriScheda);
        return pagina;
    });
    // The viewer takes of the program only its folder, its language and its channel table; it
    // opens on the last recording when there is one.
    frame.registraPagina(IdPagina::Visore, [](Korvantine &f) -> QWidget * {
        Programma &p = f.programma();
        auto *pagina = new Visore(p.PercorsoApp, p.lingua, p.canali);
        pagina->impostaMessaggio([&f](const QString &testo, int flags, const QString &titolo) {
            return f.MostraMsg(testo, flags, titolo);
        });
        QObject::connect(pagina, &Visore::chiusa, &f, [&f, pagina] { f.ChiudiPagina(pagina); });
        const QString ultima = p.anello.LeggiFileRegistrazione();
        if (QFileInfo(ultima).isFile())
            pagina->apri(ultima);
        return pagina;
    });
}

} // namespace kv
