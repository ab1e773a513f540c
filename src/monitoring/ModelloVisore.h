#pragma once

#include "monitoring/RegistrazioneAcq.h"

#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace kv {

// The recording viewer without its widgets: which channels are on show, the stretch of
// the time axis in view, the cursor and the second cursor, and how the keys and the mouse
// move them. The cursor always stands on a sample and always in view; the view never
// leaves the recording and never narrows below a few samples.
class ModelloVisore
{
public:
    // The narrowest view, in samples of the axis.
    static constexpr double FinestraMinima = 10;
    // The channels as the file lists them, which is also the order of the charts.
    static constexpr auto Canali = CanaliRegistrati;

    // The recording taken over whole; the view shows all of it, the cursor on its first
    // sample, no second cursor. The channels on show stay as they were.
    void imposta(RegistrazioneAcq registrazione, QString percorso);
    const RegistrazioneAcq &registrazione() const { return m_registrazione; }
    const QString &percorso() const { return m_percorso; }
    bool vuoto() const { return m_registrazione.vuota(); }

    // ---- channels
    const std::vector<int> &mostrati() const { return m_mostrati; }
    bool mostrato(int canale) const;
    void mostra(int canale, bool si);

    // ---- the axis: samples, or seconds at the stream's nominal rate
    bool inSecondi = false;
    double xMin() const { return m_xMin; }
    double xMax() const { return m_xMax; }
    // The first sample's place and one past the last one's: the view at its widest.
    double inizioAsse() const;
    double fineAsse() const;
    // A place on the axis as the axis shows it.
    double suAsse(double x) const { return inSecondi ? x / RegistrazioneAcq::CampioniAlSecondo : x; }

    void finestra(double xMin, double xMax);
    // fattore > 1 narrows the view, keeping centro where it stands on screen.
    void zoom(double fattore, double centro);
    void zoomSulCursore(double fattore);
    void sposta(double dx);
    void tutto();
    // The samples in view: da..a - 1.
    std::pair<qsizetype, qsizetype> visibili() const;

    // ---- cursors
    qsizetype cursore() const { return m_cursore; }
    std::optional<qsizetype> secondo() const { return m_secondo; }
    void impostaCursore(qsizetype indice);
    // The cursor moved by samples, by screenfuls (the view goes along), to an end.
    void muovi(qsizetype passi);
    void pagina(int verso);
    void primo() { impostaCursore(0); }
    void ultimo() { impostaCursore(m_registrazione.campioni() - 1); }
    // The second cursor set where the cursor stands; set there already, it goes.
    void segnaSecondo();
    // What the export takes: the samples from one cursor to the other, both included, or all.
    std::pair<qsizetype, qsizetype> tratto() const;

    // The stretch between the cursors, second cursor to cursor: samples of the axis, and
    // seconds at the nominal rate.
    double differenzaCampioni() const;

    RegistrazioneAcq::Statistiche statistiche(int canale) const;

private:
    void seguiCursore();

    RegistrazioneAcq m_registrazione;
    QString m_percorso;
    std::vector<int> m_mostrati{Canale::Giri, Canale::Tps, Canale::Lambda, Canale::ActPos};
    double m_xMin = 0;
    double m_xMax = FinestraMinima;
    qsizetype m_cursore = 0;
    std::optional<qsizetype> m_secondo;
};

} // namespace kv
