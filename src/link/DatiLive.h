#pragma once

#include <QObject>

#include <vector>

namespace kv {

class AnelloRegistrazione;
class Identificazione;
class MotoreDialogo;
class Temporizzatore;
struct RecordDati;
struct StatoProgramma;

// What a page, the recorder or the calibration takes from each live frame. Called after
// the frame has been decoded into DatiAttuali(0) and the running flags are up to date.
class AscoltatoreDati
{
public:
    virtual ~AscoltatoreDati() = default;
    virtual void frameNormale(const RecordDati &) {}
    virtual void frameStato(const RecordDati &) {}
    // The ring record just written; alLimite when its index is at the upper bound.
    virtual void campioneRegistrato(bool alLimite) { Q_UNUSED(alLimite); }
};

// The 'd' frames that the ECU sends unasked, and the watchdog that notices when they stop.
class DatiLive : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalloWatchdog = 2000;

    DatiLive(StatoProgramma &stato, MotoreDialogo &motore, Identificazione &identificazione,
             Temporizzatore &timeOutDati, AnelloRegistrazione *anello = nullptr, QObject *parent = nullptr);

    void RispostaDati(const QByteArray &payload);
    void RispostaVita();

    void aggiungiAscoltatore(AscoltatoreDati *a);
    void rimuoviAscoltatore(AscoltatoreDati *a);

    // The payload of a 'd' frame into a sample record (channels 1 to 11).
    static void decodifica(const QByteArray &payload, RecordDati &record);

signals:
    // EcuInMarcia has just changed; the menu follows it.
    void inMarciaCambiata(bool inMarcia);
    // Two seconds without a live frame: the ECU is unknown again.
    void ecuPersa();

private:
    void watchdog();
    template <typename F>
    void perOgniAscoltatore(F &&f);

    StatoProgramma &m_stato;
    MotoreDialogo &m_motore;
    Identificazione &m_identificazione;
    Temporizzatore &m_timeOutDati;
    AnelloRegistrazione *m_anello;
    std::vector<AscoltatoreDati *> m_ascoltatori;
};

} // namespace kv
