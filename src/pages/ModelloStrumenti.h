#pragma once

#include "link/MotoreDialogo.h"

#include <QObject>
#include <QString>

#include <array>
#include <optional>

namespace kv {

class Programma;

// What the instruments panel shows, without a widget: the 13 set points read once under
// state 101, the marker positions they give, and the display tick that turns the newest
// live record into what changed since the last one shown.
class ModelloStrumenti : public QObject, public GestoreStati
{
    Q_OBJECT
public:
    static constexpr int Stato = 101;
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

    explicit ModelloStrumenti(Programma &programma, QObject *parent = nullptr);
    ~ModelloStrumenti() override;

    // The catalogue entry read at a step.
    static int parametro(int passo);

    // Load: the ring emptied and recording armed, the set points back to -1, the last
    // shown record to -1 so the first one shows in full, and the 13 reads started.
    // False when the port is closed: nothing is read.
    bool carica();
    // Closing: what the ring holds written if recording, the ring emptied, recording off.
    void chiudi();
    bool inLettura() const;

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

    // What the instruments show after the last tick.
    struct Quadro
    {
        QString giri, tps, lambda, motorino; // DatoCanale(2), (0), (1), (3)
        double lancettaGiri = 0;             // thousands of RPM
        double barraTps = 0;
        double barraLambda = 0;
        double posizioneMotorino = 0; // 0..1 along the stepper's travel
        QString alimentazione;
        quint32 coloreAlimentazione = ColoreIgnoto;
        QString pompata;
        QString zona;
    };
    const Quadro &quadro() const { return m_quadro; }

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;

signals:
    void valoreLetto(int passo);
    // The reads are over, completed or not: the panel lives on the stream from now on.
    void letturaFinita(bool completa);

private:
    void fine(bool completa);

    Programma &m_programma;
    Quadro m_quadro;
};

} // namespace kv
