#pragma once

#include "monitoring/Canali.h"

#include <QObject>

#include <vector>

namespace kv {

class Identificazione;
class MotoreDialogo;
class Temporizzatore;
struct StatoEcu;

// What a page takes from each live frame, called after the frame has been decoded and the
// running flags are up to date.
class AscoltatoreDati
{
public:
    virtual ~AscoltatoreDati() = default;
    virtual void frameNormale(const RecordDati &) {}
    virtual void frameStato(const RecordDati &) {}
};

// The calibration's share of the live stream: the status byte, not a reply, drives its pages,
// and the ECU may open the RPM page by itself (status 234) or end a single calibration by
// going back to normal running. The calibration unit plugs this in; the stream calls it at
// its place in each frame, after the frame has been decoded.
class GestoreTaratura
{
public:
    virtual ~GestoreTaratura() = default;
    // The guided sequence runs (TaraturaCompleta), not a single page.
    [[nodiscard]] virtual bool sequenzaInCorso() const = 0;
    // Status 0 while no sequence runs, before EcuInMarcia follows the frame: a single
    // calibration page that is open ends here, with its message.
    virtual void marciaNormale(const RecordDati &attuale) = 0;
    // Any other status, after EcuInMarcia has followed it: the branch of the sequence when
    // sequenza, otherwise that of the single calibration.
    virtual void statoTaratura(int stato, bool sequenza, const RecordDati &attuale) = 0;
};

// The 'd' frames that the ECU sends unasked, and the watchdog that notices when they stop.
class DatiLive : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalloWatchdog = 2000;

    DatiLive(StatoEcu &ecu, MotoreDialogo &motore, Identificazione &identificazione,
             Temporizzatore &timeOutDati, QObject *parent = nullptr);

    void RispostaDati(const QByteArray &payload);
    void RispostaVita();

    void aggiungiAscoltatore(AscoltatoreDati *a);
    void rimuoviAscoltatore(AscoltatoreDati *a);
    // One at a time; nullptr takes it out.
    void impostaGestoreTaratura(GestoreTaratura *g) { m_taratura = g; }

    // The line is gone: the stream counts as lost now, as the watchdog would find two
    // seconds later, and whatever ECU was there is unknown until the line comes back.
    void flussoPerso();

    // The payload of a 'd' frame into a sample record (channels 1 to 11).
    static void decodifica(const QByteArray &payload, RecordDati &record);

    // The newest live record (channels 1 to 11; the sample number is the recorder's business).
    [[nodiscard]] const RecordDati &ultimoRecord() const { return m_ultimo; }

signals:
    // Each live frame of a known ECU, decoded, before the pages and the calibration hear it.
    void nuovoRecord(const kv::RecordDati &record);
    // EcuInMarcia has just changed; the menu follows it.
    void inMarciaCambiata(bool inMarcia);
    // Two seconds without a live frame (a flash or a map transfer excepted): the ECU is
    // unknown again.
    void ecuPersa();

private:
    void watchdog();
    void perdita();
    template <typename F>
    void perOgniAscoltatore(F &&f);
    template <typename F>
    void protetto(F &&f);

    StatoEcu &m_ecu;
    MotoreDialogo &m_motore;
    Identificazione &m_identificazione;
    Temporizzatore &m_timeOutDati;
    RecordDati m_ultimo;
    std::vector<AscoltatoreDati *> m_ascoltatori;
    GestoreTaratura *m_taratura = nullptr;
    // The stream stopped while a flash or a map transfer held the line (a flash runs in the
    // boot loader, which sends no live frames).
    bool m_fermoNelDialogo = false;
};

} // namespace kv
