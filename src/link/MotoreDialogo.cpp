#include "link/MotoreDialogo.h"

#include "link/Porta.h"
#include "link/TabellaStati.h"
#include "link/Temporizzatore.h"

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

void MotoreDialogo::IniDialogo()
{
    StatoDialogo = -1;
    PassoDialogo = 0;
    CodaTx.clear();
    UltimoFrame = {};
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
    PassoDialogo = 0;
    emit cursoreAttesa(true);
    StatoDialogo = static_cast<qint16>(stato);
    m_timeOutReq.setInterval(intervallo);
    try {
        inviaProssimo();
    } catch (const ErroreInvio &) {
        armaTrappola();
    }
    return true;
}

bool MotoreDialogo::inviaProssimo()
{
    UltimoFrame = InviaProssimo(CodaTx, m_registro);
    if (!UltimoFrame.Valido)
        return false;
    scrivi(UltimoFrame.Byte);
    m_timeOutReq.setEnabled(true);
    return true;
}

bool MotoreDialogo::continua()
{
    UltimoFrame = InviaProssimo(CodaTx, m_registro);
    if (!UltimoFrame.Valido)
        return false;
    ++PassoDialogo;
    scrivi(UltimoFrame.Byte);
    m_timeOutReq.setEnabled(true);
    return true;
}

void MotoreDialogo::termina()
{
    emit cursoreAttesa(false);
    StatoDialogo = -1;
}

void MotoreDialogo::abbandona()
{
    if (m_timeOutReq.isEnabled())
        scadenzaTimeOutReq();
}

void MotoreDialogo::scrivi(const QByteArray &bytes)
{
    if (!m_porta.scrivi(bytes))
        throw ErroreInvio{};
}

void MotoreDialogo::armaTrappola()
{
    m_timeOutReq.setEnabled(false);
    m_timeOutReq.setInterval(IntervalloTrappola);
    m_timeOutReq.setEnabled(true);
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

    const qint16 statoIngresso = StatoDialogo;
    const bool erroreEcu =
        lettera == 'e' && (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF);
    if (!erroreEcu && TabellaStati::rispostaAttesa(statoIngresso) != lettera)
        return; // a late or stray reply: the state does not wait for it
    GestoreStati *g = gestore(statoIngresso);
    if (!g) {
        if (erroreEcu) {
            m_timeOutReq.setEnabled(false);
            emit cursoreAttesa(false);
            StatoDialogo = -1;
        }
        return;
    }
    if (erroreEcu) {
        m_timeOutReq.setEnabled(false);
        emit cursoreAttesa(false);
    }
    try {
        g->risposta(lettera, statoIngresso, payload);
    } catch (...) {
        // Whatever went wrong, the dialogue ends as if the reply had not come.
        StatoDialogo = statoIngresso;
        armaTrappola();
        return;
    }
    // A refusal by the ECU always ends the dialogue; what is left queued stays unsent.
    if (erroreEcu)
        StatoDialogo = -1;
}

void MotoreDialogo::scadenzaTimeOutReq()
{
    m_timeOutReq.setEnabled(false);
    emit cursoreAttesa(false);
    if (GestoreStati *g = gestore(StatoDialogo)) {
        try {
            g->scadenza(StatoDialogo);
        } catch (...) {}
    }
    StatoDialogo = -1;
}

} // namespace kv
