#pragma once

#include "monitoring/ui/ContestoMonitor.h"

#include <QWidget>

#include <array>
#include <memory>

class QGroupBox;
class QLabel;
class QPushButton;
class QTimer;

namespace kv {

class AttuatoreMotorino;
class BarraRegistrazione;
class BarraStrumento;
class Contagiri;
class LetturaStrumenti;
class ModelloStrumenti;
class ScalaMotorino;

// The instruments panel: engine speed, throttle, lambda and the stepper with the ECU's
// set points as markers, and the three state texts. It reads its 13 set points once, then
// lives on the live stream, redrawing on each display tick only what changed.
class Strumenti : public QWidget
{
    Q_OBJECT
public:
    // Period of the display tick (VisDati), in ms.
    static constexpr int PeriodoVisDati = 100;

    explicit Strumenti(const ContestoMonitor &contesto, QWidget *parent = nullptr);
    ~Strumenti() override;

    // Captions, then the set points read if the port is open.
    void carica();
    // The closing procedure, also by Esc: ring emptied, recording off, page gone.
    void Esci();
    // The display tick; does nothing unless a new record has come.
    void VisDati();

    ModelloStrumenti &modello() { return *m_modello; }
    LetturaStrumenti &lettura() { return *m_lettura; }
    BarraRegistrazione &barra() { return *m_barra; }

signals:
    void chiusa();

private:
    struct RigaInf
    {
        QLabel *campione = nullptr; // colour of its marker, if it has one
        QLabel *etichetta = nullptr;
        QLabel *valore = nullptr;
    };

    QGroupBox *creaBox(const char *nome);
    QLabel *creaLettura(const char *nome);
    RigaInf creaRigaInf(QWidget *box, const QColor &colore);
    QLabel *creaStato(const char *nome);
    void caricaTesti();
    void letturaFinita();
    void mostraValore(int passo);
    void mostraMarcatori();
    // The bars follow the scale of the newest record; true when one of them changed.
    bool aggiornaScale();
    static void coloraStato(QLabel *stato, const QColor &sfondo);

    ContestoMonitor m_contesto;
    std::unique_ptr<ModelloStrumenti> m_modello;
    LetturaStrumenti *m_lettura;
    QTimer *m_visDati;
    BarraRegistrazione *m_barra;

    QWidget *m_strumenti = nullptr;
    QGroupBox *m_boxGiri = nullptr;
    QGroupBox *m_boxTps = nullptr;
    QGroupBox *m_boxLambda = nullptr;
    QGroupBox *m_boxMotorino = nullptr;
    QGroupBox *m_boxInf = nullptr;

    Contagiri *m_datoGiri = nullptr;
    BarraStrumento *m_datoTps = nullptr;
    BarraStrumento *m_datoLambda = nullptr;
    ScalaMotorino *m_motorinoZ = nullptr;
    AttuatoreMotorino *m_motorinoG = nullptr;
    // DatoCanale(0..3): TPS, lambda, RPM, stepper, with their captions.
    std::array<QLabel *, 4> m_datoCanale{};
    std::array<QLabel *, 4> m_misura{};
    std::array<RigaInf, 3> m_infGiri{};
    std::array<RigaInf, 3> m_infTps{};
    std::array<RigaInf, 3> m_infLambda{};
    std::array<RigaInf, 3> m_infMotorino{};
    std::array<QLabel *, 3> m_labStato{};
    QLabel *m_statoAlim = nullptr;
    QLabel *m_statoPompata = nullptr;
    QLabel *m_zonaLavoro = nullptr;
    QLabel *m_labRegistro = nullptr;
    QPushButton *m_esci = nullptr;
    bool m_chiusa = false;
};

} // namespace kv
