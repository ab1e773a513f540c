#include "programming/ui/RegistroMappe.h"

#include "base/Lingua.h"
#include "programming/ui/ConfrontoMappe.h"
#include "programming/ui/PaginaStorico.h"
#include "programming/ui/ProgMappe.h"
#include "programming/ui/ReadMappe.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

namespace kv {

namespace {

// The frame asks the page's questions and takes it away when it ends.
template <class Pagina>
QWidget *apri(Korvantine &frame, Pagina *pagina)
{
    pagina->impostaDomanda([&frame](const QString &testo, int flags, const QString &titolo) {
        return frame.MostraMsg(testo, flags, titolo, (flags & SecondoPredefinito) ? 1 : 0);
    });
    QObject::connect(pagina, &Pagina::chiusa, &frame, [&frame, pagina] { frame.ChiudiPagina(pagina); });
    pagina->carica();
    return pagina;
}

} // namespace

void RegistraPagineMappe(Korvantine &frame)
{
    frame.registraPagina(IdPagina::ReadMappe, [](Korvantine &f) {
        return apri(f, new ReadMappe(ContestoProgrammazioneDi(f.programma()), f.programma().catalogo));
    });
    frame.registraPagina(IdPagina::ProgMappe, [](Korvantine &f) {
        return apri(f, new ProgMappe(ContestoProgrammazioneDi(f.programma())));
    });
    // Archived maps need no ECU: the page gets the folder, the catalogue and the texts, and
    // the line only for the ECU as one side.
    frame.registraPagina(IdPagina::ConfrontoMappe, [](Korvantine &f) -> QWidget * {
        Programma &p = f.programma();
        auto *pagina = new ConfrontoMappe(p.PercorsoApp, p.catalogo, p.lingua);
        pagina->impostaEcu(p.linea);
        return apri(f, pagina);
    });
    frame.registraPagina(IdPagina::StoricoEcu, [](Korvantine &f) -> QWidget * {
        auto *pagina = new PaginaStorico(ContestoProgrammazioneDi(f.programma()));
        // An entry against the ECU now: the compare page takes the frame, the entry as B.
        QObject::connect(pagina, &PaginaStorico::confronta, &f, [&f](const VoceStorico &v) {
            auto *c = qobject_cast<ConfrontoMappe *>(f.apriPagina(IdPagina::ConfrontoMappe));
            if (!c)
                return;
            const Lingua &l = f.programma().lingua;
            c->impostaSorgente(
                ConfrontoMappe::B,
                {SorgenteMappa::Tipo::Storico,
                 l.LeggiTesto("StoricoEcu", "NOME")
                     .trimmed()
                     .replace(QLatin1String("XXX"), QLocale().toString(v.quando, QLocale::ShortFormat)),
                 v.immagine, ScalaDa(v.scalaLambda, OrigineScala::Storico)});
            c->leggiEcu(ConfrontoMappe::A);
        });
        return apri(f, pagina);
    });
}

} // namespace kv
