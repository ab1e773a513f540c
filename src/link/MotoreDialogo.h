#pragma once

#include "link/Frame.h"

#include <QObject>

#include <array>
#include <functional>
#include <optional>

namespace kv {

class Porta;
class RegistroFrame;
class Temporizzatore;

// The owner of a group of ten dialogue states: a page, identification, calibration.
class GestoreStati
{
public:
    virtual ~GestoreStati() = default;
    // A reply the state waits for ('r', 'v', 'e' with 0xFF), or an 'e' with a fault code,
    // which every owner hears in any of its states.
    virtual void risposta(char lettera, int stato, const QByteArray &payload) = 0;
    // TimeOutReq fired in one of the owner's states; the engine frees the link afterwards.
    virtual void scadenza(int stato) = 0;
    // The reply letter a state of the owner waits for ('r', 'e', 'v', 'd'), 0 for none: each
    // owner declares its own, so the engine routes by the group of ten alone.
    [[nodiscard]] virtual char rispostaAttesa(int stato) const = 0;
    // The ECU sends no live stream in this state by design (its boot loader during a flash, a
    // map transfer): the stream's watchdog waits for the dialogue to end instead of closing
    // the pages.
    [[nodiscard]] virtual bool senzaFlusso(int stato) const
    {
        (void)stato;
        return false;
    }
};

// Something to be done on the line before some dialogues begin: it is shown each dialogue as
// it starts and may run one of its own first, the one asked for being held, queue and all,
// until MotoreDialogo::riprendi(). The owner of the held dialogue notices nothing but the wait.
class GuardiaDialogo
{
public:
    virtual ~GuardiaDialogo() = default;
    // The dialogue of stato is about to send coda. True when the guard has started a
    // dialogue of its own instead; it then calls riprendi() once that one is over, and lets
    // the held one pass when it is shown it again.
    virtual bool prima(int stato, const QByteArray &coda) = 0;
};

// Strict stop-and-wait: one request on the line, then its reply or a time-out. An owner
// fills the queue and starts a dialogue in a state of its own; its reply handlers carry on
// from there through prosegui(). Nothing is ever sent twice, and only the engine writes
// the dialogue's state.
class MotoreDialogo : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalloLettura = 5000;
    static constexpr int IntervalloTrappola = 200;

    // What became of a dialogue after one of its steps.
    enum class Seguito {
        Inviato,  // the next frame is on the line, the reply timer armed
        Trappola, // the port refused it: the time-out follows in IntervalloTrappola
        Concluso  // the queue was empty: the dialogue has ended and the link is free
    };

    MotoreDialogo(Porta &porta, Temporizzatore &timeOutReq, RegistroFrame *registro = nullptr,
                  QObject *parent = nullptr);

    // The owner of the group of ten states that holds stato.
    void registra(int stato, GestoreStati *gestore);
    // Forgets an owner in every group it held.
    void rimuovi(GestoreStati *gestore);

    // Link free, queue and last frame empty, timer off: the state at start-up.
    void IniDialogo();

    // Empties the queue: the first step of every dialogue.
    void svuotaCoda() { m_codaTx.clear(); }
    // Appends one request, framed for the ECU.
    void accoda(const QByteArray &dati) { m_codaTx.append(CreaFrame(dati, -1)); }

    // Step 0, hourglass, the state, the interval, the first frame, the timer. False when the
    // port is closed: nothing is set and nothing is sent. A refused first frame still starts
    // the dialogue, which the trap then ends as a time-out.
    [[nodiscard]] bool avvia(int stato, int intervallo);

    // One guard at most; nullptr takes it away.
    void impostaGuardia(GuardiaDialogo *guardia) { m_guardia = guardia; }
    // The dialogue the guard held, started as it was asked for. With the port gone meanwhile
    // it ends as its time-out would end it, so its owner hears of it.
    void riprendi();

    // The continuation of a reply handler: timer stopped, then the next frame as the next
    // step, or, with the queue empty, termina(). The handler finishes its own work only on
    // Concluso.
    [[nodiscard]] Seguito prosegui();
    // The same, moving on to another state of the same owner, whose steps count from 0.
    // A refused frame leaves the dialogue in the state it came from.
    [[nodiscard]] Seguito passaA(int stato);

    // Normal end of a dialogue: cursor back, no step, link free.
    void termina();
    // What a time-out or an emergency does: timer stopped, cursor back, link free; whatever
    // is still queued stays there until the next dialogue empties it.
    void abbandona();
    // The line is gone: a request still waiting for its reply ends at once, as its time-out
    // would have ended it.
    void lineaPersa();

    [[nodiscard]] bool PortOpen() const;

    // Entry point of every good frame but 'd' and 'g', which have owners of their own.
    void instrada(const QByteArray &payload);

    void impostaGestoreDati(std::function<void(const QByteArray &)> f) { m_gestoreDati = std::move(f); }
    void impostaGestoreVita(std::function<void()> f) { m_gestoreVita = std::move(f); }

    // A dialogue holds the line during which the ECU sends no live stream by design.
    [[nodiscard]] bool flussoSospeso() const;

    // The dialogue in progress, -1 when the link is free. A held dialogue counts as in
    // progress once the guard's own has ended, so nobody takes the link before it resumes.
    [[nodiscard]] qint16 StatoDialogo() const
    {
        return m_statoDialogo == -1 && m_trattenuto ? static_cast<qint16>(m_trattenuto->stato)
                                                    : m_statoDialogo;
    }
    // The frame in flight inside the dialogue, 0 for the first, -1 after a normal end.
    [[nodiscard]] qint16 PassoDialogo() const { return m_passoDialogo; }
    // Whole frames still to send.
    [[nodiscard]] const QByteArray &CodaTx() const { return m_codaTx; }
    // The frame last taken from the queue.
    [[nodiscard]] const FrameUscita &UltimoFrame() const { return m_ultimoFrame; }

signals:
    void cursoreAttesa(bool attesa);

private:
    Seguito inviaProssimo(bool contaPasso);
    void armaTrappola();
    // Runs a handler; what it throws is logged and reported as false.
    template <typename F>
    bool protetto(const char *cosa, int stato, F &&f);
    void scadenzaTimeOutReq();
    GestoreStati *gestore(int stato) const;

    struct Trattenuto
    {
        int stato;
        int intervallo;
        QByteArray coda;
    };

    Porta &m_porta;
    Temporizzatore &m_timeOutReq;
    GuardiaDialogo *m_guardia = nullptr;
    std::optional<Trattenuto> m_trattenuto;
    RegistroFrame *m_registro;
    std::array<GestoreStati *, 40> m_gestori{};
    std::function<void(const QByteArray &)> m_gestoreDati;
    std::function<void()> m_gestoreVita;

    qint16 m_statoDialogo = -1;
    qint16 m_passoDialogo = 0;
    QByteArray m_codaTx;
    FrameUscita m_ultimoFrame;
};

} // namespace kv
