#pragma once

#include "pages/ui/TelaioMessaPunto.h"

class QLabel;

namespace kv {

class GrigliaMessaPunto;
class ModelloMappaLambda;

// The normal page: how the stepper chases the lambda signal in closed loop, and the band it
// regulates against, either two thresholds or the lambda map of 40 zones (TipoNOR). Its
// dialogue states are 11, 12 and 13.
class MP_Normale : public TelaioMessaPunto
{
    Q_OBJECT
public:
    static constexpr int RigaTipoNOR = 7;

    explicit MP_Normale(const ContestoPagina &contesto, QWidget *parent = nullptr);

    QString FormatoNormale(int indice) const { return formato(indice); }
    CampoDato *DatoNormale(int indice) const { return campo(indice); }
    GrigliaMessaPunto *MappaLambda() const { return m_mappa; }

protected:
    void caricaTestiAltrove() override;

private:
    // Thresholds or map, by the selection of TipoNOR; other indices change nothing.
    void TipoNOR_Click(int indice);

    ModelloMappaLambda *m_modello;
    GrigliaMessaPunto *m_mappa;
    QLabel *m_legenda;
};

} // namespace kv
