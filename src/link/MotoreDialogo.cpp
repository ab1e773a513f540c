#include "link/MotoreDialogo.h"

#include "link/Porta.h"
#include "link/TabellaStati.h"
#include "link/Temporizzatore.h"

#include <QDebug>

#include <exception>
#include <utility>

namespace kv {

MotoreDialogo::MotoreDialogo(Porta &porta, Temporizzatore &timeOutReq, RegistroFrame *registro,
                             QObject *parent)
    : QObject(parent)
    , m_porta(porta)
    , m_timeOutReq(timeOutReq)
    , m_registro(registro)
{
    connect(&m_timeOutReq, &Temporizzatore::scaduto, this, &MotoreDialogo::scadenzaTimeOutReq);
}

void MotoreDialogo::registra(int stato, GestoreStati *gestore)
{
    const int g = TabellaStati::gruppo(stato);
    if (g >= 0 && g < static_cast<int>(m_gestori.size()))
        m_gestori[static_cast<size_t>(g)] = gestore;
}

void MotoreDialogo::rimuovi(GestoreStati *gestore)
{
    for (auto &g : m_gestori)
        if (g == gestore)
            g = nullptr;
}

GestoreStati *MotoreDialogo::gestore(int stato) const
{
    const int g = TabellaStati::gruppo(stato);
    if (g < 0 || g >= static_cast<int>(m_gestori.size()))
        return nullptr;
    return m_gestori[static_cast<size_t>(g)];
}

bool MotoreDialogo::flussoSospeso() const
{
    const GestoreStati *g = gestore(m_statoDialogo);
    return m_statoDialogo != -1 && g && g->senzaFlusso(m_statoDialogo);
}

void MotoreDialogo::IniDialogo()
{
    m_statoDialogo = -1;
    m_passoDialogo = 0;
    m_codaTx.clear();
    m_ultimoFrame = {};
    m_trattenuto.reset();
    m_timeOutReq.setEnabled(false);
}

bool MotoreDialogo::PortOpen() const
{
    return m_porta.PortOpen();
}

bool MotoreDialogo::avvia(int stato, int intervallo)
{
    if (!m_porta.PortOpen())
        return false;
    if (m_guardia && !m_trattenuto) {
        // Held first: the guard's own dialogue starts through here and must pass.
        m_trattenuto = Trattenuto{stato, intervallo, m_codaTx};
        if (m_guardia->prima(stato, m_trattenuto->coda))
            return true;
        m_codaTx = std::exchange(m_trattenuto, std::nullopt)->coda;
    }
    m_passoDialogo = 0;
    emit cursoreAttesa(true);
    m_statoDialogo = static_cast<qint16>(stato);
    m_timeOutReq.setInterval(intervallo);
    // A refused frame has armed the trap: the dialogue is under way all the same.
    (void)inviaProssimo(false);
    return true;
}

MotoreDialogo::Seguito MotoreDialogo::inviaProssimo(bool contaPasso)
{
    m_ultimoFrame = InviaProssimo(m_codaTx, m_registro);
    if (!m_ultimoFrame.Valido)
        return Seguito::Concluso;
    if (contaPasso)
        ++m_passoDialogo;
    if (!m_porta.scrivi(m_ultimoFrame.Byte)) {
        armaTrappola();
        return Seguito::Trappola;
    }
    m_timeOutReq.setEnabled(true);
    return Seguito::Inviato;
}

MotoreDialogo::Seguito MotoreDialogo::prosegui()
{
    m_timeOutReq.setEnabled(false);
    const Seguito seguito = inviaProssimo(true);
    if (seguito == Seguito::Concluso)
        termina();
    return seguito;
}

MotoreDialogo::Seguito MotoreDialogo::passaA(int stato)
{
    m_timeOutReq.setEnabled(false);
    const qint16 prima = m_statoDialogo;
    m_statoDialogo = static_cast<qint16>(stato);
    m_passoDialogo = 0;
    const Seguito seguito = inviaProssimo(false);
    if (seguito == Seguito::Trappola)
        m_statoDialogo = prima; // the time-out belongs to the state whose reply came
    else if (seguito == Seguito::Concluso)
        termina();
    return seguito;
}

void MotoreDialogo::riprendi()
{
    if (!m_trattenuto)
        return;
    const Trattenuto t = *std::exchange(m_trattenuto, std::nullopt);
    m_codaTx = t.coda;
    if (avvia(t.stato, t.intervallo))
        return;
    m_statoDialogo = static_cast<qint16>(t.stato);
    armaTrappola();
}

void MotoreDialogo::termina()
{
    emit cursoreAttesa(false);
    m_statoDialogo = -1;
    m_passoDialogo = -1;
}

void MotoreDialogo::lineaPersa()
{
    if (m_timeOutReq.isEnabled())
        scadenzaTimeOutReq();
}

void MotoreDialogo::abbandona()
{
    m_timeOutReq.setEnabled(false);
    emit cursoreAttesa(false);
    m_statoDialogo = -1;
}

void MotoreDialogo::armaTrappola()
{
    m_timeOutReq.setEnabled(false);
    m_timeOutReq.setInterval(IntervalloTrappola);
    m_timeOutReq.setEnabled(true);
}

template <typename F>
bool MotoreDialogo::protetto(const char *cosa, int stato, F &&f)
{
    try {
        f();
        return true;
    } catch (const std::exception &e) {
        qWarning("%s in dialogue state %d failed: %s", cosa, stato, e.what());
    } catch (...) {
        qWarning("%s in dialogue state %d failed: unknown exception", cosa, stato);
    }
    return false;
}

void MotoreDialogo::instrada(const QByteArray &payload)
{
    if (payload.isEmpty())
        return;
    const char lettera = payload.at(0);
    switch (lettera) {
    case 'd':
        if (m_gestoreDati)
            m_gestoreDati(payload);
        return;
    case 'g':
        if (m_gestoreVita)
            m_gestoreVita();
        return;
    case 'v':
    case 'r':
    case 'e':
        break;
    default:
        return;
    }

    const qint16 statoIngresso = m_statoDialogo;
    const bool erroreEcu =
        lettera == 'e' && (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF);
    GestoreStati *g = gestore(statoIngresso);
    if (!erroreEcu && (!g || g->rispostaAttesa(statoIngresso) != lettera))
        return; // a late or stray reply: the state does not wait for it
    if (!g) {
        if (erroreEcu)
            abbandona();
        return;
    }
    if (erroreEcu) {
        m_timeOutReq.setEnabled(false);
        emit cursoreAttesa(false);
    }
    if (!protetto("Reply handler", statoIngresso, [&] { g->risposta(lettera, statoIngresso, payload); })) {
        // Whatever went wrong, the dialogue ends as if the reply had not come.
        m_statoDialogo = statoIngresso;
        armaTrappola();
        return;
    }
    // A refusal by the ECU always ends the dialogue; what is left queued stays unsent.
    if (erroreEcu)
        m_statoDialogo = -1;
}

void MotoreDialogo::scadenzaTimeOutReq()
{
    m_timeOutReq.setEnabled(false);
    emit cursoreAttesa(false);
    const qint16 stato = m_statoDialogo;
    if (GestoreStati *g = gestore(stato))
        (void)protetto("Time-out handler", stato, [&] { g->scadenza(stato); });
    m_statoDialogo = -1;
}

} // namespace kv
