#pragma once

#include "pages/DescrizioniPagine.h"

#include <QString>

namespace kv {

class DialogoPagina;
class SequenzaTaratura;

// T_Parametri on the tuning pages' frame: the emulation percentage that the page works out
// and the ECU never holds, the TPS kind and its self-adaptation, and two times. It shares
// its group of states with MP_TPS; the two are never open together.
const DescrizionePagina &DescrizioneParametri();

// What T_Parametri adds to a tuning page: its caption, and EsciTar, the last step of the
// guided sequence, which keeps everything in the ECU and ends the calibration.
class TaraturaParametri
{
public:
    TaraturaParametri(SequenzaTaratura &sequenza, DialogoPagina &dialogo);

    // Opened by the guided sequence rather than from the menu; decided on opening.
    bool inSequenza() const { return m_inSequenza; }
    QString titolo() const;

    // validi: ControlloValori's verdict; when it passed, Corrente holds the fields already.
    // Valid values go to RAM and EEPROM and the calibration ends once the fitter has read
    // the closing word; otherwise the fitter, told motivo, mends them or leaves without them.
    void EsciTar(bool validi, const QString &motivo = {});
    // A save of the page is over. A calibration ended by EsciTar while the frames were
    // still going out closes now, if they all went.
    void scritturaConclusa(bool riuscita);

private:
    // How the save of EsciTar stands.
    enum class Salvataggio {
        Nessuno,
        InCorso,
        InCorsoChiudi, // the fitter has read the closing word meanwhile
        Riuscito,
        Fallito
    };

    SequenzaTaratura &m_sequenza;
    DialogoPagina &m_dialogo;
    bool m_inSequenza;
    Salvataggio m_salvataggio = Salvataggio::Nessuno;
};

} // namespace kv
