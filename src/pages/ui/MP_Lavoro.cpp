#include "pages/ui/MP_Lavoro.h"

#include "variables/Catalogo.h"

#include <QComboBox>
#include <QEvent>
#include <QPushButton>

namespace kv {

namespace {

constexpr std::array<int, 2> Righe = {MP_Lavoro::RigaTipoCO, MP_Lavoro::RigaTipoPC};

} // namespace

MP_Lavoro::MP_Lavoro(const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, *DescrizioneDi(IdPagina::MP_Lavoro), parent)
{
    for (int riga : Righe) {
        lista(riga)->installEventFilter(this);
        connect(lista(riga), &QComboBox::activated, this, [this, riga] { Lista_Click(riga); });
    }
    // A list changed and applied can be kept again: the page is disabled once a save is under way.
    connect(tastoApplica(), &QPushButton::clicked, this, [this] {
        if (!isEnabled())
            tastoMemorizza()->setEnabled(true);
    });
}

void MP_Lavoro::mostraValore(int parametro, double valore)
{
    TelaioMessaPunto::mostraValore(parametro, valore);
    for (size_t k = 0; k < Righe.size(); ++k)
        if (parametro == (k == 0 ? Par::TipoCO : Par::TipoPC) && m_selezioniLette[k] == -1)
            m_selezioniLette[k] = lista(Righe[k])->currentIndex();
}

void MP_Lavoro::Lista_Click(int riga)
{
    const size_t k = riga == RigaTipoCO ? 0 : 1;
    // A choice the ECU does not have yet: it can be tried, not kept.
    if (lista(riga)->currentIndex() != m_selezioniLette[k]) {
        tastoApplica()->setEnabled(true);
        tastoMemorizza()->setEnabled(false);
    }
}

bool MP_Lavoro::eventFilter(QObject *oggetto, QEvent *evento)
{
    if (evento->type() == QEvent::FocusOut) {
        for (size_t k = 0; k < Righe.size(); ++k)
            if (oggetto == lista(Righe[k]))
                m_selezioniLette[k] = lista(Righe[k])->currentIndex();
    }
    return TelaioMessaPunto::eventFilter(oggetto, evento);
}

} // namespace kv
