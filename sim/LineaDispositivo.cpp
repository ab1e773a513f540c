#include "LineaDispositivo.h"

#include <QSerialPort>

namespace kv::sim {

LineaDispositivo::LineaDispositivo(QString dispositivo, int baud, QObject *parent)
    : Linea(parent)
    , m_dispositivo(std::move(dispositivo))
    , m_baud(baud)
    , m_porta(new QSerialPort(this))
{
    connect(m_porta, &QSerialPort::readyRead, this, [this] { emit ricevuti(m_porta->readAll()); });
    connect(m_porta, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) {
        if (e == QSerialPort::ResourceError && m_porta->isOpen()) {
            const QString motivo = QStringLiteral("%1: %2").arg(m_dispositivo, m_porta->errorString());
            m_porta->close();
            emit persa(motivo);
        }
    });
}

LineaDispositivo::~LineaDispositivo()
{
    chiudi();
}

bool LineaDispositivo::apri()
{
    chiudi();
    m_errore.clear();
    m_porta->setPortName(m_dispositivo);
    if (!m_porta->open(QIODevice::ReadWrite)) {
        m_errore =
            QStringLiteral("cannot open the serial device %1: %2").arg(m_dispositivo, m_porta->errorString());
        return false;
    }
    if (!m_porta->setBaudRate(m_baud) || !m_porta->setDataBits(QSerialPort::Data8)
        || !m_porta->setParity(QSerialPort::NoParity) || !m_porta->setStopBits(QSerialPort::OneStop)
        || !m_porta->setFlowControl(QSerialPort::NoFlowControl)) {
        m_errore = QStringLiteral("cannot set %1 to %2 baud 8N1: %3")
                       .arg(m_dispositivo)
                       .arg(m_baud)
                       .arg(m_porta->errorString());
        m_porta->close();
        return false;
    }
    return true;
}

void LineaDispositivo::chiudi()
{
    if (m_porta->isOpen())
        m_porta->close();
}

bool LineaDispositivo::aperta() const
{
    return m_porta->isOpen();
}

void LineaDispositivo::scrivi(const QByteArray &dati)
{
    if (m_porta->isOpen())
        m_porta->write(dati);
}

} // namespace kv::sim
