#pragma once

#include "calibration/TaraturaParametri.h"
#include "pages/ui/TelaioMessaPunto.h"

#include <array>
#include <memory>

class QLabel;

namespace kv {

class SequenzaTaratura;

// T_Parametri: step 5 of the guided sequence, and a page of its own from the Calibration
// menu. A tuning page on the common frame, with the present instruction in large letters
// on top and EsciTar as the way out of the sequence. Apply, Store and Restore wait for a
// change to be offered.
class T_Parametri : public TelaioMessaPunto
{
    Q_OBJECT
public:
    T_Parametri(SequenzaTaratura &sequenza, const ContestoPagina &contesto, QWidget *parent = nullptr);

    QString FormatoParametri(int indice) const { return formato(indice); }
    CampoDato *D_Parametri(int indice) const { return campo(indice); }
    QComboBox *TipoTps() const { return lista(RigaTipoTps); }
    QComboBox *TpsAutoadattante() const { return lista(RigaTpsAutoadattante); }
    TaraturaParametri &logica() { return *m_logica; }

    void Applica() override;
    void EsciTar();

    static constexpr int RigaTipoTps = 3;
    static constexpr int RigaTpsAutoadattante = 4;

protected:
    void caricaTestiAltrove() override;
    void mostraValore(int parametro, double valore) override;
    void uscitaEmergenza() override;
    void scritturaConclusa(int stato, bool riuscita) override;

private:
    // Something the fitter may apply: Apply offered, Store not until it is applied.
    void modificato();

    std::unique_ptr<TaraturaParametri> m_logica;
    QLabel *m_istruzione;
    QPushButton *m_esciTar;
    // The lists' items as read, -1 until then.
    std::array<int, 2> m_selezioneLetta{-1, -1};
};

} // namespace kv
