#pragma once

#include "variables/LimitiIncrociati.h"

#include <QList>
#include <QString>
#include <QtGlobal>

#include <array>

namespace kv {

// How the raw number on the ECU becomes the shown number.
enum class Conversione : char {
    I = 'I', // identity
    A = 'A', // 10-bit analogue input shown on 0..255
    L = 'L', // lambda threshold: like A when ScalaLambda is 0, else identity
    P = 'P', // stepper period shown as steps per second
    S = 'S', // sign-and-magnitude byte
    F = 'F', // flag: any non-zero raw value is 255
};

struct Parametro
{
    double Min;          // -1: set at run time
    double Max;          // -1: set at run time
    qint32 IndirizzoRAM; // -1: no RAM copy
    qint32 IndirizzoEE;  // -1: no EEPROM home
    qint16 Dimensione;   // bytes on the ECU, 1 or 2
    Conversione Conv;
};

// All in shown units; -1 means not read yet.
struct ValoreParametro
{
    double Letto = -1;
    double Corrente = -1;
    double Memorizzato = -1;
    QString Formato;
};

// Index of every entry; an array entry is its base index, element i at base + i.
namespace Par {
enum : int {
    CostanteGiri = 0,
    SogliaGiriEntrataMinimo = 1,
    SogliaGiriUscitaMinimo = 2,
    SogliaGiriEntrataCutOff = 3,
    SogliaGiriUscitaCutOff = 4,
    SogliaGiriEntrataPC = 5,
    SogliaGiriUscitaPC = 6,
    GiriPompata = 7,
    SogliaTpsEntrataMinimo = 11,
    SogliaTpsUscitaMinimo = 12,
    SogliaTpsEntrataPC = 13,
    SogliaTpsUscitaPC = 14,
    SogliaTpsEntrataCutOff = 15,
    SogliaTpsUscitaCutOff = 16,
    TpsTaratoMinimo = 17,
    TpsTaratoMassimo = 18,
    SogliaLambdaRiccoMinimo = 19,
    SogliaLambdaMagroMinimo = 20,
    SogliaLambdaRiccoPC = 21,
    SogliaLambdaMagroPC = 22,
    SogliaLambdaMagroNormale = 23,
    SogliaLambdaRiccoNormale = 24,
    ScalaLambda = 25,
    TipoNOR = 26,
    BaseEmulazione = 27,
    ValoreEmulazione = 28,
    TempoDisabilitazioneControllo = 29,
    TempoAnomaliaLambda = 30,
    PercentualeEmulazione = 31,
    PassiControlloMinimo = 32,
    PassiRaddoppioNormale = 33,
    PassiControlloNormale = 34,
    PosizioneMotorinoNormale = 35,
    ResetPC = 36,
    PcConf = 37,
    TipoPC = 38,
    PosizioneMotorinoCutOff = 39,
    TipoCO = 40,
    PercentualePompata = 41,
    FrequenzaControlloMinimo = 46,
    PrimaFrequenzaNormale = 47,
    SecondaFrequenzaNormale = 48,
    AsseTpsMappa = 49,
    AsseGiriMappa = 53,
    SogliaMagroMappa = 60,
    SogliaRiccoMappa = 100,
    IncrementoTps = 140,
    TempoIncrementoTps = 141,
    TempoInibizionePompata = 142,
    CampioniStechiometrici = 143,
    CampioniMagro = 144,
    CampioniRicco = 145,
    InizioInibizionePC = 146,
    DurataInibizionePC = 147,
    TipoRIENTRO = 148,
    TipoTps = 149,
    TpsAutoadattante = 150,
    GiriRTS = 151,
    TpsRTS = 158,
    PosizioneRTS = 166,
    Numero = 174
};

// Element counts of the array entries.
inline constexpr int ElementiGiriPompata = 4;
inline constexpr int ElementiPercentualePompata = 5;
inline constexpr int ElementiAsseTps = 4;
inline constexpr int ElementiAsseGiri = 7;
inline constexpr int CelleMappa = 40;
inline constexpr int ElementiGiriRTS = 7;
inline constexpr int ElementiTpsRTS = 8;
inline constexpr int ElementiPosizioneRTS = 8;
} // namespace Par

// TPS calibration points of 255 both (after conversion) mean that no TPS is fitted.
bool TpsPresenteDa(double tpsTaratoMassimo, double tpsTaratoMinimo);

// Every tunable variable of the ECU: where it lives, its limits and mask (Parametri), and
// what this run has learned about it (Valori), both by the same index.
class Catalogo
{
public:
    Catalogo();

    // Back to the state of start-up: table limits, masks, every value -1.
    void InizializzaParametri();

    std::array<Parametro, Par::Numero> Parametri;
    std::array<ValoreParametro, Par::Numero> Valori;

    static bool indiceValido(int indice) { return indice >= 0 && indice < Par::Numero; }

    // Raw number read from the ECU to the shown number. A and L (when ScalaLambda reads 0)
    // pass through the entry's mask and ValNumero, so the result is already as shown.
    double daGrezzo(int indice, double grezzo) const;
    // Shown number to the raw number to write. A and scaled L are clamped to 0..1023.
    double aGrezzo(int indice, double mostrato) const;

    // Letto, Corrente and Memorizzato all take the value, as after a read.
    void registraLettura(int indice, double mostrato);
    // Letto, Corrente and Memorizzato back to -1: not read yet.
    void azzeraValori(int indice);

    // Range hint of a field: Min " - " Max, each by the entry's mask.
    QString suggerimentoIntervallo(int indice) const;
    // The entry's value formatted by its own mask.
    QString formatta(int indice, double valore) const;

    // The source entry has just taken valore (read from the ECU, or left in a field by the
    // fitter): sets every limit that depends on it for that page and that occasion.
    // Returns the entries whose Min or Max were written, without repeats, in table order.
    QList<int> aggiornaLimiti(int sorgente, double valore, Pagina pagina, Occasione occasione);

private:
    void imposta(int indice, qint32 ram, qint32 ee, qint16 dimensione, double min, double max,
                 Conversione conv);
    double scalaLetturaAnalogica(int indice, double grezzo) const;
    bool lambdaScalata() const;
};

} // namespace kv
