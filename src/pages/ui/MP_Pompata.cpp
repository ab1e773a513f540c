#include "pages/ui/MP_Pompata.h"

#include "pages/GriglieMessaPunto.h"
#include "pages/ui/GrigliaMessaPunto.h"

#include <QVBoxLayout>

namespace kv {

MP_Pompata::MP_Pompata(const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, *DescrizioneDi(IdPagina::MP_Pompata), parent)
    , m_modello(new ModelloGrigliaPompata(dialogo(), contesto.catalogo, this))
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
