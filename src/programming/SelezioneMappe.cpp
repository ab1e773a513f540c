#include "programming/SelezioneMappe.h"

#include <algorithm>

namespace kv {

void SelezioneMappe::imposta(AlberoMappe disponibili)
{
    m_disponibili = std::move(disponibili);
    m_foglie.clear();
    ricostruisci();
}

void SelezioneMappe::aggiungi(int nodo)
{
    for (int f : m_disponibili.foglie(nodo))
        if (!m_foglie.contains(f))
            m_foglie.append(f);
    ricostruisci();
}

void SelezioneMappe::rimuovi(int nodo)
{
    for (int f : m_scelte.foglie(nodo)) {
        const QStringList chiave = m_scelte.chiave(f).elenco();
        m_foglie.removeIf([&](int id) { return m_disponibili.chiave(id).elenco() == chiave; });
    }
    ricostruisci();
}

void SelezioneMappe::rimuoviTutti()
{
    m_foglie.clear();
    ricostruisci();
}

QList<ChiaveMappa> SelezioneMappe::chiavi() const
{
    QList<ChiaveMappa> elenco;
    for (int f : m_scelte.foglie(AlberoMappe::Radice))
        elenco << m_scelte.chiave(f);
    return elenco;
}

void SelezioneMappe::ricostruisci()
{
    m_scelte = m_disponibili.sottoinsieme(m_foglie);
}

} // namespace kv
