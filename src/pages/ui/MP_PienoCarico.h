#pragma once

#include "pages/ui/TelaioMessaPunto.h"

namespace kv {

class GrigliaMessaPunto;
class ModelloGrigliaRTS;

// The full-load page: when the ECU leaves closed loop for full load, and where it puts the
// stepper there, by thresholds or by the grid of RPM zones (GrigliaRTS). Its two lists decide
// which rows and which columns count. Dialogue states 21, 22 and 23.
class MP_PienoCarico : public TelaioMessaPunto
{
    Q_OBJECT
public:
    static constexpr int RigaTipoPC = 7;
    static constexpr int RigaPcConf = 8;

    explicit MP_PienoCarico(const ContestoPagina &contesto, QWidget *parent = nullptr);

    CampoDato *DatoPC(int indice) const { return campo(indice); }
    GrigliaMessaPunto *GrigliaRTS() const { return m_griglia; }

protected:
    void caricaTestiAltrove() override;
    void nascondiRigheTps() override;
    void mostraRigheTps() override;

private:
    // What a click on either list leaves on view.
    void Liste_Click();

    ModelloGrigliaRTS *m_modello;
    GrigliaMessaPunto *m_griglia;
};

} // namespace kv
