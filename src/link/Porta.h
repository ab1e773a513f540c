#pragma once

#include <QObject>
#include <QString>

namespace kv {

// Serial settings as the program keeps them: 8 data bits, no parity, one stop bit.
struct ImpostazioniPorta
{
    QString dispositivo; // system name or path of the device
    qint32 velocita = 9600;
};

// The serial line as the link sees it. The program uses QSerialPort behind it; tests may
// use another byte pipe. Arrivals are signalled on the thread of the timers.
class Porta : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual bool apri(const ImpostazioniPorta &impostazioni) = 0;
    virtual void chiudi() = 0;
    virtual bool PortOpen() const = 0;
    // One write of the whole frame; false when the port refused it.
    virtual bool scrivi(const QByteArray &bytes) = 0;
    virtual QString descrizioneErrore() const = 0;
    // After an opening refused for lack of permission: the group whose members may use the
    // device. Empty when that was not the reason.
    virtual QString gruppoMancante() const { return {}; }
    // After an opening refused because another process holds the line (the program, or a
    // korvantine-cli).
    virtual bool occupata() const { return false; }

signals:
    void arrivati(const QByteArray &bytes);
    // The line went away under us (an adapter pulled out): the port is closed by then.
    void persa(const QString &motivo);
};

} // namespace kv
