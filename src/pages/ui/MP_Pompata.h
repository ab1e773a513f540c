#pragma once

#include "pages/ui/TelaioMessaPunto.h"

namespace kv {

class GrigliaMessaPunto;
class ModelloGrigliaPompata;

// The pump page: the enrichment on a quick opening of the throttle, zone by RPM zone in
// GrigliaPompata; in service mode also how quick an opening counts. Memorizza does here what
// it does on every page, and is called the same. Dialogue states 41, 42 and 43.
class MP_Pompata : public TelaioMessaPunto
{
    Q_OBJECT
public:
    explicit MP_Pompata(const ContestoPagina &contesto, QWidget *parent = nullptr);

    CampoDato *DatoPomp(int indice) const { return campo(indice); }
    GrigliaMessaPunto *GrigliaPompata() const { return m_griglia; }

protected:
    void caricaTestiAltrove() override;

private:
    ModelloGrigliaPompata *m_modello;
    GrigliaMessaPunto *m_griglia;
};

} // namespace kv
