#pragma once

// The simulated ECU wired straight to the program's port, without a line in between:
// what the program writes goes to the ECU, and what the ECU sends comes back on the next
// turn of the event loop, as bytes from a serial port would.

#include "EcuSimulata.h"

#include "link/Porta.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QByteArrayList>

namespace kv {

using namespace kv::sim;

class PortaEcu : public Porta
{
public:
    explicit PortaEcu(EcuSimulata &ecu) : m_ecu(ecu)
    {
        connect(
            &ecu, &EcuSimulata::datiInviati, this, [this](const QByteArray &b) { emit arrivati(b); },
            Qt::QueuedConnection);
    }

    bool apri(const ImpostazioniPorta &) override
    {
        m_aperta = true;
        return true;
    }
    void chiudi() override { m_aperta = false; }
    bool PortOpen() const override { return m_aperta; }
    bool scrivi(const QByteArray &bytes) override
    {
        if (!m_aperta)
            return false;
        scritti.append(bytes);
        m_ecu.riceviDati(bytes);
        return true;
    }
    QString descrizioneErrore() const override { return {}; }
    // A pulled cable: the port closes under the program.
    void perdi()
    {
        m_aperta = false;
        emit persa(QStringLiteral("gone"));
    }

    QByteArrayList scritti;

private:
    EcuSimulata &m_ecu;
    bool m_aperta = true;
};

// The simulator's options for a test that drives time itself: no stream of its own.
inline OpzioniEcu OpzioniManuali()
{
    OpzioniEcu o;
    o.frameAlSecondo = 0;
    return o;
}

// A catalogue entry's RAM or EEPROM cell in the simulator, as a number, and back.
inline int CellaEcu(const EcuSimulata &ecu, const Catalogo &c, int parametro, bool eeprom)
{
    const Parametro &p = c.Parametri[static_cast<size_t>(parametro)];
    const qint32 indirizzo = eeprom ? p.IndirizzoEE : p.IndirizzoRAM;
    return int(NumeroBE(ecu.leggiMemoria(quint32(indirizzo), p.Dimensione)));
}

inline void ImpostaCellaEcu(EcuSimulata &ecu, const Catalogo &c, int parametro, bool eeprom, int grezzo)
{
    const Parametro &p = c.Parametri[static_cast<size_t>(parametro)];
    const qint32 indirizzo = eeprom ? p.IndirizzoEE : p.IndirizzoRAM;
    ecu.scriviMemoria(quint32(indirizzo), ByteBE(grezzo, p.Dimensione));
}

// Both homes of an entry at once, as after a boot.
inline void ImpostaVoceEcu(EcuSimulata &ecu, const Catalogo &c, int parametro, int grezzo)
{
    const Parametro &p = c.Parametri[static_cast<size_t>(parametro)];
    if (p.IndirizzoRAM >= 0)
        ImpostaCellaEcu(ecu, c, parametro, false, grezzo);
    if (p.IndirizzoEE >= 0)
        ImpostaCellaEcu(ecu, c, parametro, true, grezzo);
}

} // namespace kv
