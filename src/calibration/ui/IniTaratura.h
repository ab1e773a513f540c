#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace kv {

class Lingua;

class SequenzaTaratura;

// The warning before the guided sequence (step 1 of 5), over the menu: OK (F2) asks the ECU
// into calibration, Cancel (Esc) goes back to the menu.
class IniTaratura : public QDialog
{
    Q_OBJECT
public:
    IniTaratura(SequenzaTaratura &sequenza, const Lingua &lingua, QWidget *parent = nullptr);

    void TastoOK();
    void TastoAnnulla();

protected:
    void reject() override;

private:
    SequenzaTaratura &m_sequenza;
    const Lingua &m_lingua;
    QLabel *m_segnalazione;
    QPushButton *m_ok;
    QPushButton *m_annulla;
    bool m_chiusa = false;
};

} // namespace kv
