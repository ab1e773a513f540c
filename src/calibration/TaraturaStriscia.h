#pragma once

#include "calibration/LogicaTaratura.h"

#include <array>

namespace kv {

// What the TPS and lambda pages' logic asks of their strip chart and labels.
class VistaStriscia : public VistaTaratura
{
public:
    // DatiTarTPS / DatiTarLambda(indice).
    virtual void mostraDato(int indice, const QString &testo) = 0;
    virtual void impostaAsseX(double minimo, double massimo) = 0;
    virtual void aggiungiPunto(int traccia, double x, double y) = 0;
    virtual void impostaCursore(int cursore, double x, double y) = 0;
    virtual void mostraCursore(int cursore) = 0;
    // TensSonda(indice) set on, and TensSonda(indice) made inactive.
    virtual void selezionaSonda(int indice) { Q_UNUSED(indice); }
    virtual void disattivaSonda(int indice) { Q_UNUSED(indice); }
};

// The two pages that follow the ECU's own work on a live strip: T_TPS, T_TPS_Single (the
// pedal's end points, marked by two cursors) and T_Lambda, T_Lambda_Single (probe and
// stepper together). They send nothing but their single page's 'A' codes.
class TaraturaStriscia : public LogicaTaratura
{
    Q_OBJECT
public:
    // The strip's window of sample numbers at opening, and its jump when it is full.
    static constexpr double LarghezzaFinestra = 200;
    static constexpr double Salto = 40;

    TaraturaStriscia(SequenzaTaratura &sequenza, IdPagina id, VistaStriscia &vista,
                     QObject *parent = nullptr);

    void frame(int stato, const RecordDati &attuale) override;

    // What the strip shows now, as the page would be asked.
    double minimoX() const { return m_minimoX; }
    double massimoX() const { return m_massimoX; }
    bool cursoreVisibile(int cursore) const { return m_cursori[static_cast<size_t>(cursore)].visibile; }
    double yCursore(int cursore) const { return m_cursori[static_cast<size_t>(cursore)].y; }

protected:
    void caricaTesti() override;

private:
    struct Cursore
    {
        bool visibile = false;
        double x = 0;
        double y = 0;
    };

    QString formatta(const RecordDati &attuale, int canale) const;
    double avanzaCampione();
    void cursore(int indice, double x, double y);
    void statoTps(int stato, bool cambiato, double x, const RecordDati &attuale);
    void statoLambda(int stato, bool cambiato);

    VistaStriscia &m_vistaStriscia;
    double m_minimoX = 0;
    double m_massimoX = LarghezzaFinestra;
    std::array<Cursore, 2> m_cursori{};
};

} // namespace kv
