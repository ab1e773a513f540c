#pragma once

#include <QString>
#include <QtGlobal>

#include <array>
#include <functional>

namespace kv {

// A text of the language file by section and key: names that become data, not messages.
using CercaTesto = std::function<QString(const QString &sezione, const QString &chiave)>;

// One live quantity of the 'd' stream and how charts scale it.
struct Canale
{
    static constexpr int LunghezzaNome = 20;

    // The channels by name: indices of Canali and of RecordDati::Valore.
    enum Indice : int {
        Campioni = 0, // the sample counter
        FlagPa = 1,   // the ECU's status byte: 0 in normal running
        Giri = 2,
        Tps = 3,
        Lambda = 4,
        ActPos = 5, // stepper position
        RicMag = 6,
        MZonAct = 7, // work zone
        Pompata = 8,
        TipTps = 9,
        TipAlim = 10,    // fuel in use: 0 petrol, 1 gas
        TipoLambda = 11, // probe type: 1 reads the lambda word unscaled
        Libero2 = 12,
        Libero3 = 13,
        Libero4 = 14,
        Libero5 = 15
    };

    QString Nome;         // always LunghezzaNome characters, blank padded
    qint16 InGrafico = 0; // -1 while drawn in a chart slot
    QString UM;
    qint32 MinTabella = 0;
    qint32 MaxTabella = 0;
    qint32 MinAsse = 0;
    qint32 MaxAsse = 0;
    qint32 MinDisegnato = 0;
    qint32 MaxDisegnato = 0;
    double MinMisurato = 0;
    double MaxMisurato = 0;
    qint16 DivMaggiori = 0;
    qint16 DivMinori = 0;
    qint16 Margine = 0;
    QString Formato;
    quint8 Ampiezza = 0;
};

inline constexpr int NumeroCanali = 16;

// One sample of every channel; Progressivo -1 marks an empty record.
struct RecordDati
{
    std::array<double, NumeroCanali> Valore{};
    qint32 Progressivo = -1;
};

// A row of the chart window's data panel. Canale -1 ends the list.
struct RigaDati
{
    qint16 Canale = -1;
    qint16 Visibile = 0;
    qint16 Selezionabile = 0;
};

using RigheDati = std::array<RigaDati, NumeroCanali>;

// The rows the chart window starts with.
RigheDati RigheDatiIniziali();

// The sample counter, the status byte and the two state values are never drawn.
bool puoAndareInGrafico(int canale);

// Key of a channel in section "PAR_CANALI"; empty outside 0..15.
QString ChiaveCanale(int indice);

// The description of the 16 channels: names and units from the language file, scales fixed.
// The names go into the header of every recording, so they are data here.
class TabellaCanali
{
public:
    void InizializzaCanali(const CercaTesto &testo);
    // Names and units in the language now in use; the scales stay as the charts left them.
    void RinominaCanali(const CercaTesto &testo);

    // Trimmed name, then " [unit]" when the unit is not blank. Empty outside 0..15.
    QString TitoloCanale(int indice);

    // Working and drawn scales back to the nominal one, nothing in a chart.
    void AzzeraScale();

    std::array<Canale, NumeroCanali> Canali;
};

} // namespace kv
