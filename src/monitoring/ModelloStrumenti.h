#pragma once

#include "monitoring/Canali.h"

#include <QString>

#include <array>
#include <optional>

namespace kv {

class Catalogo;

// What the instruments panel shows, without a widget: the 13 set points (read from the ECU
// into the catalogue by the panel's dialogue), the marker positions they give, and the display
// tick that turns the newest live record into what changed since the last one shown.
class ModelloStrumenti
{
public:
    static constexpr int Passi = 13;

    // The reads, in order; the value of each is kept by the catalogue.
    enum Passo {
        GiriMinimo,
        GiriCutOff,
        GiriPienoCarico,
        TpsMinimo,
        TpsCutOff,
        TpsPienoCarico,
        PassiMinimo,
        PassiNormale,
        PosizioneReset,
        ScalaLambda,
        LambdaMinimo,
        LambdaNormale,
        LambdaPienoCarico,
    };

    enum Marcatore {
        MarcaTpsMinimo,
        MarcaTpsCutOff,
        MarcaTpsPienoCarico,
        MarcaLambdaMinimo,
        MarcaLambdaNormale,
        MarcaLambdaPienoCarico,
        LineaReset,
        PassiNormSopra,
        PassiNormSotto, // PassiNorm(0), PassiNorm(1)
        PassiMinSopra,
        PassiMinSotto, // PassiMin(0), PassiMin(1)
        Marcatori
    };

    // Scales of the instruments: the gauge in thousands of RPM, the bars at least on the
    // 0..255 of a 10-bit input as the stream shows it.
    static constexpr double GiriMinimoScala = 0;
    static constexpr double GiriMassimoScala = 8;
    static constexpr double BarraMinimo = 0;
    static constexpr double BarraMassimo = 255;

    struct Scala
    {
        double minimo = BarraMinimo;
        double massimo = BarraMassimo;
        bool operator==(const Scala &) const = default;
    };
    // The scale of the bar of channel 3 (TPS) or 4 (lambda) for the newest record: 0..255
    // joined to the channel's range in the channel table wherever the stream may go beyond
    // 255, which a probe of type 1 does, sending its lambda raw.
    Scala scalaBarra(int canale) const;

    // Supply-state colours, blue-green-red as the program keeps them.
    static constexpr quint32 ColoreBenzina = 0x0000FF;
    static constexpr quint32 ColoreGas = 0x00FF00;
    static constexpr quint32 ColoreIgnoto = 0x00FFFF;

    ModelloStrumenti(const Catalogo &catalogo, const TabellaCanali &canali);

    // The catalogue entry read at a step.
    static int parametro(int passo);

    // The panel opens: the last shown record to -1, so the first one shows in full.
    void azzera();
    // Each live record as it comes; the display tick shows the newest.
    void ricevi(const RecordDati &record);

    // The value read at a step, -1 until read; its text by the entry's mask, empty until read.
    double valore(int passo) const;
    QString testoValore(int passo) const;
    // Where a marker stands on its scale, 0 at the bottom and 1 at the top; none while
    // its set point is unread.
    std::optional<double> marcatore(Marcatore m) const;
    // The lambda scale flag as the panel keeps it: 0 or 255, -1 until read.
    double scalaLambda() const;

    struct Cambiamenti
    {
        bool giri = false;
        bool tps = false;
        bool lambda = false;
        bool motorino = false;
        bool alimentazione = false;
        bool pompata = false;
        bool zona = false;
        bool qualcosa() const
        {
            return giri || tps || lambda || motorino || alimentazione || pompata || zona;
        }
    };

    // The display tick: nothing unless a new record has come; then each quantity that
    // differs from the record last shown, and the new record becomes the one shown.
    Cambiamenti tick();

    // What the instruments show after the last tick. The texts of the supply and the pump
    // are keys of their sections (ALIMENTAZIONE, POMPATA), the zone a number.
    struct Quadro
    {
        QString giri, tps, lambda, motorino; // DatoCanale(2), (0), (1), (3)
        double lancettaGiri = 0;             // thousands of RPM
        double barraTps = 0;
        double barraLambda = 0;
        double posizioneMotorino = 0; // 0..1 along the stepper's travel
        QString chiaveAlimentazione;
        quint32 coloreAlimentazione = ColoreIgnoto;
        QString chiavePompata;
        double zona = -1;
    };
    const Quadro &quadro() const { return m_quadro; }
    // The record the last tick showed.
    const RecordDati &mostrato() const { return m_mostrato; }

private:
    const Catalogo &m_catalogo;
    const TabellaCanali &m_canali;
    RecordDati m_nuovo;
    RecordDati m_mostrato;
    bool m_datoNuovo = false;
    Quadro m_quadro;
};

} // namespace kv
