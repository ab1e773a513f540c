#include "pages/ui/MP_Pompata.h"

#include "pages/GriglieMessaPunto.h"
#include "pages/ui/GrigliaMessaPunto.h"
#include "shell/Programma.h"

#include <QVBoxLayout>

namespace kv {

MP_Pompata::MP_Pompata(Programma &programma, QWidget *parent)
    : TelaioMessaPunto(programma, *DescrizioneDi(IdPagina::MP_Pompata), parent)
    , m_modello(new ModelloGrigliaPompata(dialogo(), programma.catalogo, this))
    , m_griglia(new GrigliaMessaPunto(m_modello, this))
{
    m_griglia->setObjectName(QStringLiteral("GrigliaPompata"));
    areaPagina()->addWidget(m_griglia, 0, Qt::AlignLeft);
    aggiungiGriglia(m_griglia);
}

void MP_Pompata::caricaTestiAltrove()
{
    for (int r = 0; r < ModelloGrigliaPompata::Righe; ++r)
        m_modello->impostaTesto(r, 0, testo(QStringLiteral("GRIGLIA.%1").arg(r)));
    m_griglia->adattaDimensioni();
}

} // namespace kv
