#pragma once

#include "link/Porta.h"

#include <QByteArrayList>

namespace kv {

// A port that keeps what is written and can be told to refuse writes; arrivals are
// injected by the test through emit arrivati().
class PortaFinta : public Porta
{
public:
    bool apri(const ImpostazioniPorta &) override
    {
        m_aperta = true;
        return true;
    }
    void chiudi() override { m_aperta = false; }
    bool PortOpen() const override { return m_aperta; }
    bool scrivi(const QByteArray &bytes) override
    {
        if (rifiutaScritture)
            return false;
        scritti.append(bytes);
        return true;
    }
    QString descrizioneErrore() const override { return {}; }

    void arriva(const QByteArray &bytes) { emit arrivati(bytes); }

    QByteArrayList scritti;
    bool rifiutaScritture = false;

private:
    bool m_aperta = true;
};

} // namespace kv
