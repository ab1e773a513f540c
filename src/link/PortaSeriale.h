#pragma once

#include "link/Porta.h"

#include <QSerialPort>

namespace kv {

class PortaSeriale : public Porta
{
    Q_OBJECT
public:
    explicit PortaSeriale(QObject *parent = nullptr);
    ~PortaSeriale() override;

    bool apri(const ImpostazioniPorta &impostazioni) override;
    void chiudi() override;
    bool PortOpen() const override;
    bool scrivi(const QByteArray &bytes) override;
    QString descrizioneErrore() const override;

private:
    void leggi();
    void errore(QSerialPort::SerialPortError e);

    QSerialPort m_porta;
    QString m_errore;
};

} // namespace kv
