#pragma once

#include "link/Frame.h"

#include <QObject>

#include <array>
#include <functional>

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
};

// Thrown by a send that the port refused; the engine turns it into a short time-out.
struct ErroreInvio
{};

// Strict stop-and-wait: one request on the line, then its reply or a time-out. A page
// fills the queue, sets a state of its own and sends the first frame; the reply handlers
// carry on from there. Nothing is ever sent twice.
class MotoreDialogo : public QObject
{
    Q_OBJECT
public:
    static constexpr int IntervalloLettura = 5000;
    static constexpr int IntervalloTrappola = 200;

    MotoreDialogo(Porta &porta, Temporizzatore &timeOutReq, RegistroFrame *registro = nullptr,
                  QObject *parent = nullptr);

    void registra(int stato, GestoreStati *gestore);
    void rimuovi(GestoreStati *gestore);

    void IniDialogo();

    // Step 1 of a dialogue: the page empties the queue and appends its requests.
    void svuotaCoda() { CodaTx.clear(); }
    void accoda(const QByteArray &dati) { CodaTx.append(CreaFrame(dati, -1)); }

    // Steps 2 to 5. False when the port is closed: nothing is set and nothing is sent.
    // The owner disables its page when this returns true.
    bool avvia(int stato, int intervallo);

    // Next frame of the queue onto the line, timer armed. False when the queue is empty.
    bool inviaProssimo();
    // The same, counting the step: the continuation of a reply handler.
    bool continua();
    // End of a dialogue: cursor back, link free.
    void termina();
    // The line is gone: a request still waiting for its reply ends at once, as its time-out
    // would have ended it.
    void abbandona();

    bool PortOpen() const;

    // Entry point of every good frame but 'd' and 'g', which have owners of their own.
    void instrada(const QByteArray &payload);

    void impostaGestoreDati(std::function<void(const QByteArray &)> f) { m_gestoreDati = std::move(f); }
    void impostaGestoreVita(std::function<void()> f) { m_gestoreVita = std::move(f); }

    Temporizzatore &timeOutReq() { return m_timeOutReq; }

    qint16 StatoDialogo = -1;
    qint16 PassoDialogo = 0;
    QByteArray CodaTx;
    FrameUscita UltimoFrame;

signals:
    void cursoreAttesa(bool attesa);

private:
    void scrivi(const QByteArray &bytes);
    void armaTrappola();
    void scadenzaTimeOutReq();
    GestoreStati *gestore(int stato) const;

    Porta &m_porta;
    Temporizzatore &m_timeOutReq;
    RegistroFrame *m_registro;
    std::array<GestoreStati *, 40> m_gestori{};
    std::function<void(const QByteArray &)> m_gestoreDati;
    std::function<void()> m_gestoreVita;
};

} // namespace kv
