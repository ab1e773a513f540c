#pragma once

#include "Linea.h"

class QSerialPort;

namespace kv::sim {

// A real serial device, e.g. the far end of a null-modem cable: 8 data bits, no parity,
// one stop bit, no handshake, at the given rate.
class LineaDispositivo : public Linea
{
    Q_OBJECT
public:
    LineaDispositivo(QString dispositivo, int baud, QObject *parent = nullptr);
    ~LineaDispositivo() override;

    bool apri() override;
    void chiudi() override;
    bool aperta() const override;
    void scrivi(const QByteArray &dati) override;
    QString percorso() const override { return m_dispositivo; }

private:
    QString m_dispositivo;
    int m_baud;
    QSerialPort *m_porta;
};

} // namespace kv::sim
