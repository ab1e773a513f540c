#pragma once

#include "base/Messaggio.h"
#include "monitoring/Canali.h"
#include "monitoring/ScalaGrafici.h"

#include <QPointF>
#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace kv {

// The last samples of the channels the chart window lists: more than a window's worth, so
// that a chart added mid-run is filled at once and frozen charts can be looked back over
// (some five minutes at the display's pace).
class AnelloGrafici
{
public:
    static constexpr int LimiteSuperiore = 3000;
    static constexpr int Dimensione = LimiteSuperiore + 1;

    AnelloGrafici() { azzera(); }

    // Empty, and the count back to its start.
    void azzera();
    // The next sample: the count goes on, the next element takes it and the rows' channels.
    void aggiungi(const RecordDati &campione, const RigheDati &righe);
    const RecordDati *ultimo() const;
    // The numbers of the oldest and the newest sample held; none when empty.
    std::optional<std::pair<qint32, qint32>> intervallo() const;

    // The smallest and largest value of a channel among the samples numbered xMin..xMax;
    // none when no sample lies there.
    std::optional<std::pair<double, double>> estremi(int canale, double xMin, double xMax) const;
    // The samples numbered xMin..xMax as points of a channel, oldest first.
    std::vector<QPointF> punti(int canale, double xMin, double xMax) const;

    std::array<RecordDati, Dimensione> BufferGrafici;
    qint16 IndiceGrafici = -1; // newest element, -1 when empty
    double ContaGrafici = -1;  // number of the newest sample, -1 at the start
};

// A chart slot: the channel on show (-1 free), the one at the last layout, and its row.
struct SlotGrafico
{
    qint16 Canale = -1;
    qint16 CanalePrecedente = -1;
    qint16 RigaDati = -1;
};

// What a slot's chart must do after a display tick.
struct AggiornamentoSlot
{
    bool asseX = false; // set the sample window
    bool asseY = false; // set the value scale
    bool punto = false; // append the newest point
    QPointF nuovo;
};

// The chart window without its widgets: the data panel's texts, the ring of samples, the
// four slots and their entries in the settings, freezing, the scroll jumps and the value
// scales found from what is on show. The window draws what this tells it.
class ModelloGrafici
{
public:
    ModelloGrafici(TabellaCanali &canali, QString percorsoIni);

    // The window's load: rows filled, scales and ring back to the start, not frozen, slots
    // free; then the saved slots, each through the toggle as if clicked.
    void carica();

    // The toggle of a channel, as a click on its row: a chart on show goes, another one
    // takes the first free slot. The three state channels are refused and a fifth chart too.
    // True when a slot changed: it is saved, and the charts must be laid out and replotted.
    bool RidisegnoGrafici(int canale);

    // The display tick with a new record; the data panel follows it even when frozen.
    std::array<AggiornamentoSlot, NumeroGrafici> tick(const RecordDati &nuovo);

    // Frozen charts stand still; unfreezing starts them over from sample 0.
    void Blocca();
    void Sblocca();
    bool bloccato() const { return GraficoBloccato != 0; }
    // Frozen charts move over the samples the ring holds, by campioni (less than 0: back in
    // time), the window keeping its width, as far as the oldest sample and back to where
    // they were frozen; the value scales follow what comes on show. True when the window
    // moved: the charts are then set and replotted from the ring.
    bool scorri(double campioni);
    // The same, to the oldest samples (verso < 0) or back to the newest.
    bool scorriAlBordo(int verso);

    // The measured range of a channel over the window, and the scale from it.
    void ScalaFinestra(int canale, double xMin, double xMax);
    // A slot's curve from the ring, within the window on show (RidisegnoTraccia).
    std::vector<QPointF> RidisegnoTraccia(int slot) const;

    int slotInUso() const;
    // The running number of a slot among those in use, -1 when free.
    int posizioneSlot(int slot) const;
    // The slot that shows a channel, -1 when none does.
    int slotDi(int canale) const;

    // The data panel: the text of a channel's value (a state's word, or the number as it
    // stands) and, for the fuel state, its background (blue-green-red).
    struct TestoDato
    {
        Messaggio testo;
        std::optional<quint32> sfondo;
    };
    TestoDato testoDato(int canale, double valore) const;

    // Rows that have a visible entry in the data panel, in order.
    std::vector<int> righeVisibili() const;

    const Canale &canale(int indice) const { return m_canali.Canali[static_cast<std::size_t>(indice)]; }
    QString TitoloCanale(int indice) { return m_canali.TitoloCanale(indice); }

    static constexpr quint32 ColoreBenzina = 0x0000FF;
    static constexpr quint32 ColoreGas = 0x00FF00;
    static constexpr quint32 ColoreIgnoto = 0x00FFFF;

    RigheDati righe{};
    std::array<SlotGrafico, NumeroGrafici> slot{};
    AnelloGrafici anello;
    qint16 GraficoBloccato = 0;

private:
    void ripartiDaZero();
    void aggiornaRigheSlot();

    TabellaCanali &m_canali;
    QString m_percorsoIni;
    qint32 m_maxBloccato = 0; // the window's right edge when frozen
};

} // namespace kv
