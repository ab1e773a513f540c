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
    QString gruppoMancante() const override { return m_gruppo; }
    bool occupata() const override { return m_occupata; }

private:
    void leggi();
    void errore(QSerialPort::SerialPortError e);

    QSerialPort m_porta;
    QString m_errore;
    QString m_gruppo;
    bool m_occupata = false;
};

// The group to join for a device this process may not open; empty when it may, or when
// something else stands in the way. The device's own group when that group may read and
// write it, otherwise the one that holds serial ports on Debian.
QString GruppoPerDispositivo(const QString &dispositivo);

// True when another open file of the device holds its lock: the program or a korvantine-cli
// is using the line. The lock is flock() on the open device, which the kernel drops with
// the process, so a killed holder leaves no lock behind.
bool DispositivoOccupato(const QString &dispositivo);

} // namespace kv
