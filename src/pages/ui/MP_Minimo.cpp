#include "pages/ui/MP_Minimo.h"

namespace kv {

MP_Minimo::MP_Minimo(const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, *DescrizioneDi(IdPagina::MP_Minimo), parent)
{}

} // namespace kv
