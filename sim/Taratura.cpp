#include "Taratura.h"

namespace kv::sim {

void Taratura::azzera()
{
    entra(Fase::Nessuna);
    m_puntiTps.reset();
}

void Taratura::entra(Fase fase)
{
    m_fase = fase;
    m_tempoMs = 0;
    m_giriVisti = false;
    m_passoTps = PassoTps::Riposo;
    m_tempoPassoMs = 0;
    m_sommaRiposo = 0;
    m_campioniRiposo = 0;
    m_tpsMinimo = 0;
    m_tpsMassimo = 0;
    m_ultimoAumentoMs = 0;
    m_rilascioDetto = false;
    // Outside the TPS step nobody holds the pedal down.
    if (fase != Fase::TpsSequenza && fase != Fase::TpsSingola)
        m_pedale = Pedale::Riposo;
}

void Taratura::pedale(Pedale p)
{
    m_pedale = p;
    if (p == Pedale::Riposo && (m_fase == Fase::TpsSequenza || m_fase == Fase::TpsSingola)
        && m_passoTps == PassoTps::Riposo && !m_rilascioDetto) {
        m_rilascioDetto = true;
        // The rest point is taken over the second that follows the fitter's word.
        m_tempoPassoMs = 0;
        m_sommaRiposo = 0;
        m_campioniRiposo = 0;
    }
}

int Taratura::comando(int codice, quint8 codiceErrato)
{
    switch (codice) {
    case 0:
        entra(Fase::GiriSequenza);
        return 0xFF;
    case 1:
        entra(m_fase == Fase::GiriSequenza ? Fase::TpsSequenza : Fase::Nessuna);
        return 0xFF;
    case 2:
        entra(Fase::Ingresso);
        return NessunaRisposta;
    case 3:
        entra(Fase::GiriSingola);
        return 0xFF;
    case 4:
        entra(Fase::TpsSingola);
        return 0xFF;
    case 5:
        entra(Fase::LambdaSingola);
        return 0xFF;
    default:
        return codiceErrato;
    }
}

std::optional<std::pair<int, int>> Taratura::prendiPuntiTps()
{
    auto punti = m_puntiTps;
    m_puntiTps.reset();
    return punti;
}

void Taratura::passoTps(const CampioneMotore &c)
{
    switch (m_passoTps) {
    case PassoTps::Riposo: {
        // The rest point is the mean of the last second at rest, when the pedal has settled.
        const int fine = m_manuale ? 1000 : TpsRiposoMs;
        if (m_manuale && (!m_rilascioDetto || m_pedale != Pedale::Riposo))
            break;
        if (m_tempoPassoMs >= fine - 1000) {
            m_sommaRiposo += c.tps;
            ++m_campioniRiposo;
        }
        if (m_tempoPassoMs >= fine) {
            m_tpsMinimo =
                m_campioniRiposo > 0 ? int((m_sommaRiposo + m_campioniRiposo / 2) / m_campioniRiposo) : c.tps;
            m_passoTps = PassoTps::Minimo;
            m_tempoPassoMs = 0;
        }
        break;
    }
    case PassoTps::Minimo:
        if (m_tempoPassoMs >= TpsMinimoMs) {
            m_passoTps = PassoTps::Premi;
            m_tempoPassoMs = 0;
            if (!m_manuale)
                m_pedale = Pedale::Premuto;
        }
        break;
    case PassoTps::Premi:
        if (m_tempoPassoMs >= TpsPremiMs && m_pedale == Pedale::Premuto) {
            m_passoTps = PassoTps::Massimo;
            m_tempoPassoMs = 0;
            m_tpsMassimo = c.tps;
            m_ultimoAumentoMs = 0;
        }
        break;
    case PassoTps::Massimo:
        // Decided on what came before, so the sample that ends the step is not counted
        // in a maximum the stream has never shown under 219.
        if ((m_tempoPassoMs >= TpsMassimoMinMs && m_tempoPassoMs - m_ultimoAumentoMs >= TpsFermoMs)
            || m_tempoPassoMs >= TpsMassimoMaxMs) {
            m_passoTps = PassoTps::Appreso;
            m_tempoPassoMs = 0;
            m_puntiTps = std::make_pair(m_tpsMinimo, m_tpsMassimo);
            if (!m_manuale)
                m_pedale = Pedale::Riposo;
        } else if (c.tps > m_tpsMassimo) {
            m_tpsMassimo = c.tps;
            m_ultimoAumentoMs = m_tempoPassoMs;
        }
        break;
    case PassoTps::Appreso:
        if (m_fase == Fase::TpsSequenza && m_tempoPassoMs >= TpsMemorizzatoMs)
            entra(Fase::LambdaSequenza);
        break;
    }
}

void Taratura::passo(int dtMs, const CampioneMotore &c)
{
    m_tempoMs += dtMs;
    m_tempoPassoMs += dtMs;
    switch (m_fase) {
    case Fase::Nessuna:
        break;
    case Fase::Ingresso:
        if (m_tempoMs >= IngressoMs)
            entra(Fase::Nessuna);
        break;
    case Fase::GiriSequenza:
    case Fase::GiriSingola:
        // Pulses from a running engine, however wrong the RPM coefficient still is.
        if (m_tempoMs >= MotoreFermoMs && c.acceso)
            m_giriVisti = true;
        break;
    case Fase::TpsSequenza:
    case Fase::TpsSingola:
        passoTps(c);
        break;
    case Fase::LambdaSequenza:
        if (m_tempoMs >= LambdaSweepMs)
            entra(Fase::FineSequenza);
        break;
    case Fase::LambdaSingola:
        if (m_tempoMs >= LambdaSweepMs + FineSingolaMs)
            entra(Fase::Nessuna);
        break;
    case Fase::FineSequenza:
        if (m_tempoMs >= FineSequenzaMs)
            entra(Fase::Nessuna);
        break;
    }
}

quint8 Taratura::stato() const
{
    switch (m_fase) {
    case Fase::Nessuna:
        return StatoTaratura::Normale;
    case Fase::Ingresso:
        return StatoTaratura::Ingresso;
    case Fase::GiriSequenza:
    case Fase::GiriSingola:
        return m_giriVisti ? StatoTaratura::GiriVisto : StatoTaratura::GiriAttesa;
    case Fase::TpsSequenza:
    case Fase::TpsSingola:
        switch (m_passoTps) {
        case PassoTps::Riposo:
            return m_fase == Fase::TpsSingola && m_tempoMs < 1000 ? StatoTaratura::TpsAttesaSingola
                                                                  : StatoTaratura::TpsAttesa;
        case PassoTps::Minimo:
            return StatoTaratura::TpsMinimo;
        case PassoTps::Premi:
            return StatoTaratura::TpsPremi;
        case PassoTps::Massimo:
            return StatoTaratura::TpsMassimo;
        case PassoTps::Appreso:
            return m_fase == Fase::TpsSingola ? StatoTaratura::TpsFineSingola : StatoTaratura::TpsMemorizzato;
        }
        break;
    case Fase::LambdaSequenza:
        return StatoTaratura::LambdaIstruzione;
    case Fase::LambdaSingola:
        return m_tempoMs < LambdaSweepMs ? StatoTaratura::LambdaIstruzione : StatoTaratura::LambdaFineSingola;
    case Fase::FineSequenza:
        return StatoTaratura::LambdaFine;
    }
    return StatoTaratura::Normale;
}

ModoMotore Taratura::modoMotore() const
{
    switch (m_fase) {
    case Fase::Nessuna:
        return ModoMotore::Ciclo;
    case Fase::GiriSequenza:
    case Fase::GiriSingola:
        return m_tempoMs < MotoreFermoMs ? ModoMotore::Spento : ModoMotore::Minimo;
    case Fase::TpsSequenza:
    case Fase::TpsSingola:
        return m_pedale == Pedale::Premuto ? ModoMotore::PedalePremuto : ModoMotore::Minimo;
    case Fase::LambdaSequenza:
        return ModoMotore::Sweep;
    case Fase::LambdaSingola:
        return m_tempoMs < LambdaSweepMs ? ModoMotore::Sweep : ModoMotore::Minimo;
    default:
        return ModoMotore::Minimo;
    }
}

} // namespace kv::sim
