#pragma once

#include "pages/ui/TelaioMessaPunto.h"

namespace kv {

// The idle page: when the ECU takes the engine to be idling, and how it holds the mixture
// there. The model of all tuning pages; its dialogue states are 1, 2 and 3.
class MP_Minimo : public TelaioMessaPunto
{
    Q_OBJECT
public:
    explicit MP_Minimo(const ContestoPagina &contesto, QWidget *parent = nullptr);

    QString FormatoMinimo(int indice) const { return formato(indice); }
    CampoDato *DatoMinimo(int indice) const { return campo(indice); }
};

} // namespace kv
