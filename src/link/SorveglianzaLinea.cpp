#include "link/SorveglianzaLinea.h"

#include "link/Temporizzatore.h"

namespace kv {

SorveglianzaLinea::SorveglianzaLinea(Porta &porta, Temporizzatore &riapertura, Temporizzatore &silenzio,
                                     QObject *parent)
    : QObject(parent)
    , m_porta(porta)
    , m_riapertura(riapertura)
    , m_silenzio(silenzio)
{
    m_riapertura.setInterval(IntervalloRiapertura);
    m_silenzio.setInterval(IntervalloSilenzio);
    connect(&m_porta, &Porta::persa, this, &SorveglianzaLinea::portaPersa);
    connect(&m_riapertura, &Temporizzatore::scaduto, this, &SorveglianzaLinea::riprova);
    connect(&m_silenzio, &Temporizzatore::scaduto, this, &SorveglianzaLinea::silenzio);
}

void SorveglianzaLinea::aperta(const ImpostazioniPorta &impostazioni)
{
    m_impostazioni = impostazioni;
    m_riapertura.setEnabled(false);
    m_silenzio.setEnabled(true);
    imposta(Stato::Aperta);
}

void SorveglianzaLinea::chiusa()
{
    m_riapertura.setEnabled(false);
    m_silenzio.setEnabled(false);
    imposta(Stato::Chiusa);
}

void SorveglianzaLinea::frameBuono()
{
    // Restarted on every frame: it fires only after five seconds with none.
    m_silenzio.setEnabled(true);
    if (m_stato == Stato::Muta)
        imposta(Stato::Aperta);
}

void SorveglianzaLinea::portaPersa()
{
    m_porta.chiudi();
    m_silenzio.setEnabled(false);
    m_riapertura.setEnabled(true);
    imposta(Stato::Persa);
    emit persa();
}

void SorveglianzaLinea::riprova()
{
    if (m_stato != Stato::Persa) {
        m_riapertura.setEnabled(false);
        return;
    }
    // A failed attempt says nothing: the status line already tells the fitter.
    if (!m_porta.apri(m_impostazioni)) {
        m_porta.chiudi();
        return;
    }
    aperta(m_impostazioni);
    emit riaperta();
}

void SorveglianzaLinea::silenzio()
{
    m_silenzio.setEnabled(false);
    if (m_stato == Stato::Aperta && m_porta.PortOpen())
        imposta(Stato::Muta);
}

void SorveglianzaLinea::imposta(Stato stato)
{
    if (stato == m_stato)
        return;
    m_stato = stato;
    emit statoCambiato(stato);
}

} // namespace kv
