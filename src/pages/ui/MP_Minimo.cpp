#include "pages/ui/MP_Minimo.h"

namespace kv {

MP_Minimo::MP_Minimo(Programma &programma, QWidget *parent)
    : TelaioMessaPunto(programma, *DescrizioneDi(IdPagina::MP_Minimo), parent)
{}

} // namespace kv
