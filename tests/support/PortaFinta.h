#pragma once

#include "link/Porta.h"

#include <QByteArrayList>

namespace kv {

// A port that keeps what is written and can be told to refuse writes or openings;
// arrivals are injected by the test through emit arrivati(), a pulled cable by perdi().
class PortaFinta : public Porta
{
public:
    bool apri(const ImpostazioniPorta &impostazioni) override
    {
        ++aperture;
        ultime = impostazioni;
        m_aperta = riesce;
        return riesce;
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
    void perdi()
    {
        m_aperta = false;
        emit persa(QStringLiteral("gone"));
    }

    QByteArrayList scritti;
    bool rifiutaScritture = false;
    bool riesce = true;
    int aperture = 0;
    ImpostazioniPorta ultime;

private:
    bool m_aperta = true;
};

} // namespace kv
