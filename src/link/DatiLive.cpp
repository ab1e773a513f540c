#include "link/DatiLive.h"

#include "link/Identificazione.h"
#include "link/MotoreDialogo.h"
#include "link/StatoEcu.h"
#include "link/Temporizzatore.h"
#include "variables/Conversioni.h"

#include <QDebug>

#include <algorithm>
#include <exception>
#include <utility>

namespace kv {

DatiLive::DatiLive(StatoEcu &ecu, MotoreDialogo &motore, Identificazione &identificazione,
                   Temporizzatore &timeOutDati, QObject *parent)
    : QObject(parent)
    , m_ecu(ecu)
    , m_motore(motore)
    , m_identificazione(identificazione)
    , m_timeOutDati(timeOutDati)
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
    v[Canale::TipoLambda] = NumeroBE(byte(15)) != 0 ? 1 : 0;
    v[Canale::FlagPa] = NumeroBE(byte(2));
    v[Canale::Giri] = NumeroBE(parola(3));
    v[Canale::Tps] = Scala1023(NumeroBE(parola(5)));
    v[Canale::Lambda] = v[Canale::TipoLambda] == 1 ? NumeroBE(parola(7)) : Scala1023(NumeroBE(parola(7)));
    // ACTPOS to TIPALIM are one byte each, at positions 9 to 14.
    for (int canale = Canale::ActPos; canale <= Canale::TipAlim; ++canale)
        v[static_cast<size_t>(canale)] = NumeroBE(byte(canale + 4));
}

template <typename F>
void DatiLive::protetto(F &&f)
{
    // A fault in a page's or the calibration's part loses this sample, not the stream.
    try {
        f();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

template <typename F>
void DatiLive::perOgniAscoltatore(F &&f)
{
    // A listener may remove itself (a page closing) while we walk the list.
    const auto copia = m_ascoltatori;
    for (AscoltatoreDati *a : copia) {
        if (std::find(m_ascoltatori.begin(), m_ascoltatori.end(), a) == m_ascoltatori.end())
            continue;
        protetto([&] { f(a); });
    }
}

void DatiLive::RispostaDati(const QByteArray &payload)
{
    if (std::exchange(m_fermoNelDialogo, false)) {
        // The stream comes back after a dialogue silenced it: the ECU may have been restarted
        // under us (new software), so it is identified anew as soon as the line is free.
        m_ecu.ecuPersa();
    }
    if (m_ecu.EcuDaIdentificare) {
        m_identificazione.avvia();
        return;
    }
    m_timeOutDati.setEnabled(false);

    decodifica(payload, m_ultimo);
    const RecordDati attuale = m_ultimo;
    protetto([&] { emit nuovoRecord(attuale); });

    if (attuale.Valore[Canale::FlagPa] == 0) {
        if (m_taratura && !m_taratura->sequenzaInCorso())
            protetto([&] { m_taratura->marciaNormale(attuale); });
        if (!m_ecu.EcuInMarcia) {
            m_ecu.EcuInMarcia = true;
            emit inMarciaCambiata(true);
        }
        perOgniAscoltatore([&](AscoltatoreDati *a) { a->frameNormale(attuale); });
    } else {
        if (m_ecu.EcuInMarcia) {
            m_ecu.EcuInMarcia = false;
            emit inMarciaCambiata(false);
        }
        if (m_taratura) {
            const int stato = static_cast<int>(attuale.Valore[Canale::FlagPa]);
            const bool sequenza = m_taratura->sequenzaInCorso();
            protetto([&] { m_taratura->statoTaratura(stato, sequenza, attuale); });
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

void DatiLive::flussoPerso()
{
    perdita();
}

void DatiLive::watchdog()
{
    // Two seconds without a frame close the pages whatever dialogue runs; only a flash or a
    // map transfer, during which the ECU sends no stream by design, waits for its end.
    if (m_motore.flussoSospeso()) {
        m_fermoNelDialogo = true;
        m_timeOutDati.setEnabled(true);
        return;
    }
    perdita();
}

void DatiLive::perdita()
{
    m_fermoNelDialogo = false;
    m_timeOutDati.setEnabled(false);
    m_ecu.ecuPersa();
    emit ecuPersa();
}

} // namespace kv
