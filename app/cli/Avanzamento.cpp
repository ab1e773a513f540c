#include "Avanzamento.h"

#include "Comandi.h"

#include <algorithm>

namespace kv::cli {

namespace {

constexpr int LarghezzaBarra = 30;

QString minutiSecondi(qint64 ms)
{
    const qint64 s = (ms + 500) / 1000;
    return QStringLiteral("%1:%2").arg(s / 60).arg(s % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

void Avanzamento::inizia(const QString &fase, int totale)
{
    chiudi();
    m_fase = fase;
    m_totale = std::max(totale, 1);
    m_fatti = 0;
    m_decimo = -1;
    m_aperta = true;
    m_orologio.start();
    disegna();
}

void Avanzamento::aggiorna(int fatti)
{
    if (!m_aperta || fatti == m_fatti)
        return;
    m_fatti = std::clamp(fatti, 0, m_totale);
    disegna();
}

void Avanzamento::chiudi()
{
    if (m_aperta && m_attivo && m_terminale) {
        err() << '\n';
        err().flush();
    }
    m_aperta = false;
}

void Avanzamento::disegna()
{
    if (!m_attivo)
        return;
    if (!m_terminale) {
        // A log gets a line at each tenth, not one per block.
        const int decimo = m_fatti * 10 / m_totale;
        if (decimo == m_decimo)
            return;
        m_decimo = decimo;
        err() << m_fase << ": " << m_fatti << '/' << m_totale << " blocks\n";
        err().flush();
        return;
    }
    const int pieni = m_fatti * LarghezzaBarra / m_totale;
    QString resto = QStringLiteral("--:--");
    if (m_fatti > 0) {
        const qint64 trascorsi = m_orologio.elapsed();
        resto = minutiSecondi(trascorsi * (m_totale - m_fatti) / m_fatti);
    }
    err() << '\r' << m_fase.leftJustified(10) << " [" << QString(pieni, QLatin1Char('#'))
          << QString(LarghezzaBarra - pieni, QLatin1Char('.')) << "] " << m_fatti << '/' << m_totale
          << " blocks, " << resto << " left ";
    err().flush();
}

} // namespace kv::cli
