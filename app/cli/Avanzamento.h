#pragma once

#include <QElapsedTimer>
#include <QString>

namespace kv::cli {

// Progress of a transfer on stderr: on a terminal one bar, redrawn in place, with the blocks
// done and the time left; into a log one plain line at each tenth, so that the log stays short.
class Avanzamento
{
public:
    // attivo: false prints nothing (--quiet); terminale: stderr is a terminal.
    void imposta(bool attivo, bool terminale)
    {
        m_attivo = attivo;
        m_terminale = terminale;
    }

    // A phase starts ("writing", "verifying"): its blocks count from 0.
    void inizia(const QString &fase, int totale);
    void aggiorna(int fatti);
    // The phase is over, or cut off; the bar's line is ended.
    void chiudi();
    [[nodiscard]] bool aperta() const { return m_aperta; }

private:
    void disegna();

    bool m_attivo = false;
    bool m_terminale = false;
    bool m_aperta = false;
    QString m_fase;
    int m_totale = 0;
    int m_fatti = 0;
    int m_decimo = -1;
    QElapsedTimer m_orologio;
};

} // namespace kv::cli
