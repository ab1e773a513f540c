#pragma once

#include "calibration/TaraturaStriscia.h"

#include <QWidget>

#include <array>
#include <memory>
#include <vector>

class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace kv {

class Lingua;

class GraficoStriscia;

// T_TPS and T_Lambda, each in its single and its sequence form: the present instruction on
// top, the live strip, the figures beside it, and the way out. The ECU does the work; the
// page follows its status byte.
class PaginaStriscia : public QWidget, protected VistaStriscia
{
    Q_OBJECT
public:
    PaginaStriscia(SequenzaTaratura &sequenza, const Lingua &lingua, IdPagina id, QWidget *parent = nullptr);
    ~PaginaStriscia() override;

    void carica();
    TaraturaStriscia &logica() { return *m_logica; }
    GraficoStriscia *grafico() const { return m_grafico; }
    QLabel *dato(int indice) const { return m_dati.at(static_cast<size_t>(indice)); }
    QRadioButton *sonda(int indice) const { return m_sonda.at(static_cast<size_t>(indice)); }

protected:
    void hideEvent(QHideEvent *evento) override;

    // VistaStriscia
    void mostraTitolo(const Messaggio &testo) override;
    void mostraIstruzione(const Messaggio &testo) override;
    void mostraSegnalazione1(const Messaggio &testo) override;
    void abilitaPagina(bool abilitata) override;
    void uscitaEmergenza() override;
    void mostraDato(int indice, const QString &testo) override;
    void impostaAsseX(double minimo, double massimo) override;
    void aggiungiPunto(int traccia, double x, double y) override;
    void impostaCursore(int cursore, double x, double y) override;
    void mostraCursore(int cursore) override;
    void selezionaSonda(int indice) override;
    void disattivaSonda(int indice) override;

private:
    QString testo(const QString &chiave) const;
    bool lambda() const;

    SequenzaTaratura &m_sequenza;
    const Lingua &m_lingua;
    std::unique_ptr<TaraturaStriscia> m_logica;
    QLabel *m_istruzione;
    GraficoStriscia *m_grafico;
    QGroupBox *m_boxDati;
    std::vector<QLabel *> m_etichette;
    std::vector<QLabel *> m_dati;
    QGroupBox *m_boxSonda = nullptr;
    QLabel *m_tipoSonda = nullptr;
    std::array<QRadioButton *, 2> m_sonda{};
    QLabel *m_segnalazione1;
    QPushButton *m_esciTar;
    QPushButton *m_esci;
};

} // namespace kv
