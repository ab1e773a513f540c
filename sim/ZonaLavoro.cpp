#include "ZonaLavoro.h"

namespace kv::sim {

int ZonaLavoro::aggiorna(int giri, int tps, const SoglieMotore &s, int dtMs)
{
    switch (m_zona) {
    case Zona::Minimo:
        if (giri > s.giriUscitaMinimo || tps > s.tpsUscitaMinimo)
            m_zona = Zona::Normale;
        break;
    case Zona::CutOff:
        if (giri < s.giriUscitaCutOff || tps > s.tpsUscitaCutOff) {
            m_zona = Zona::Rientro;
            m_rientroMs = DurataRientroMs;
        }
        return m_zona;
    case Zona::Rientro:
        m_rientroMs -= dtMs;
        if (m_rientroMs > 0)
            return m_zona;
        m_zona = Zona::Normale;
        break;
    case Zona::PienoCarico:
        if (tps < s.tpsUscitaPC || giri < s.giriUscitaPC)
            m_zona = Zona::Normale;
        break;
    default:
        m_zona = Zona::Normale;
        break;
    }
    if (m_zona == Zona::Normale) {
        if (giri > s.giriEntrataCutOff && tps < s.tpsEntrataCutOff)
            m_zona = Zona::CutOff;
        else if (giri > s.giriEntrataPC && tps > s.tpsEntrataPC)
            m_zona = Zona::PienoCarico;
        else if (giri < s.giriEntrataMinimo && tps < s.tpsEntrataMinimo)
            m_zona = Zona::Minimo;
    }
    return m_zona;
}

} // namespace kv::sim
