#include "link/DatiLive.h"

#include "link/Identificazione.h"
#include "link/MotoreDialogo.h"
#include "link/StatoProgramma.h"
#include "link/Temporizzatore.h"
#include "monitoring/AnelloRegistrazione.h"
#include "variables/Conversioni.h"

#include <algorithm>

namespace kv {

DatiLive::DatiLive(StatoProgramma &stato, MotoreDialogo &motore, Identificazione &identificazione,
                   Temporizzatore &timeOutDati, AnelloRegistrazione *anello, QObject *parent)
    : QObject(parent)
    , m_stato(stato)
    , m_motore(motore)
    , m_identificazione(identificazione)
    , m_timeOutDati(timeOutDati)
    , m_anello(anello)
{
    m_timeOutDati.setInterval(IntervalloWatchdog);
    connect(&m_timeOutDati, &Temporizzatore::scaduto, this, &DatiLive::watchdog);
}

void DatiLive::aggiungiAscoltatore(AscoltatoreDati *a)
{
    if (std::find(m_ascoltatori.begin(), m_ascoltatori.end(), a) == m_ascoltatori.end())
        m_ascoltatori.push_back(a);
}

void DatiLive::rimuoviAscoltatore(AscoltatoreDati *a)
{
    std::erase(m_ascoltatori, a);
}

void DatiLive::decodifica(const QByteArray &payload, RecordDati &record)
{
    const auto byte = [&](int posizione) { return payload.mid(posizione - 1, 1); };
    const auto parola = [&](int posizione) { return payload.mid(posizione - 1, 2); };
    auto &v = record.Valore;
    // The probe type decides how the lambda word is scaled, so it comes first.
    v[11] = NumeroBE(byte(15)) != 0 ? 1 : 0;
    v[1] = NumeroBE(byte(2));
    v[2] = NumeroBE(parola(3));
    v[3] = Scala1023(NumeroBE(parola(5)));
    v[4] = v[11] == 1 ? NumeroBE(parola(7)) : Scala1023(NumeroBE(parola(7)));
    for (int canale = 5; canale <= 10; ++canale)
        v[static_cast<size_t>(canale)] = NumeroBE(byte(canale + 4));
}

template <typename F>
void DatiLive::perOgniAscoltatore(F &&f)
{
    // A listener may remove itself (a page closing) while we walk the list.
    const auto copia = m_ascoltatori;
    for (AscoltatoreDati *a : copia) {
        if (std::find(m_ascoltatori.begin(), m_ascoltatori.end(), a) == m_ascoltatori.end())
            continue;
        try {
            f(a);
        } catch (...) {
            m_stato.DatoNuovo = 0;
        }
    }
}

void DatiLive::RispostaDati(const QByteArray &payload)
{
    if (m_stato.EcuDaIdentificare == -1) {
        m_identificazione.avvia();
        return;
    }
    m_timeOutDati.setEnabled(false);

    RecordDati &attuale = m_stato.DatiAttuali[0];
    decodifica(payload, attuale);

    if (m_stato.RegistrazioneAttiva && m_anello) {
        const bool alLimite = m_anello->MemorizzaCampione(attuale);
        perOgniAscoltatore([&](AscoltatoreDati *a) { a->campioneRegistrato(alLimite); });
    }
    m_stato.DatoNuovo = -1;

    if (attuale.Valore[1] == 0) {
        if (m_stato.EcuInMarcia != 1) {
            m_stato.EcuInMarcia = 1;
            emit inMarciaCambiata(1);
        }
        perOgniAscoltatore([&](AscoltatoreDati *a) { a->frameNormale(attuale); });
    } else {
        if (m_stato.EcuInMarcia != 0) {
            m_stato.EcuInMarcia = 0;
            if (m_stato.FunzioneScelta == 2)
                m_stato.FunzioneScelta = -1;
            emit inMarciaCambiata(0);
        }
        perOgniAscoltatore([&](AscoltatoreDati *a) { a->frameStato(attuale); });
    }
    m_timeOutDati.setEnabled(true);
}

void DatiLive::RispostaVita()
{
    m_timeOutDati.setEnabled(false);
    m_identificazione.RispostaVita();
}

void DatiLive::watchdog()
{
    m_timeOutDati.setEnabled(false);
    m_stato.EcuInMarcia = 1;
    m_stato.EcuNormale = -1;
    m_stato.EcuDaIdentificare = -1;
    emit ecuPersa();
}

} // namespace kv
