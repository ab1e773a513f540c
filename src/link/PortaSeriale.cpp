#include "link/PortaSeriale.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kv {

QString GruppoPerDispositivo(const QString &dispositivo)
{
    const QByteArray nome = QFile::encodeName(dispositivo);
    // As the opening itself is checked: with the effective ids, not the real ones.
    if (nome.isEmpty() || ::faccessat(AT_FDCWD, nome.constData(), R_OK | W_OK, AT_EACCESS) == 0
        || errno != EACCES)
        return {};
    struct stat info
    {};
    if (::stat(nome.constData(), &info) == 0 && info.st_gid != 0
        && (info.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP)) {
        if (const group *g = ::getgrgid(info.st_gid))
            return QString::fromLocal8Bit(g->gr_name);
    }
    return QStringLiteral("dialout");
}

bool DispositivoOccupato(const QString &dispositivo)
{
    const QByteArray nome = QFile::encodeName(dispositivo);
    // Non-blocking, so that a modem line without carrier does not hold us here.
    const int fd = ::open(nome.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return errno == EBUSY; // held in exclusive mode (TIOCEXCL) by its user
    const bool occupato = ::flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(fd);
    return occupato;
}

PortaSeriale::PortaSeriale(QObject *parent) : Porta(parent)
{
    connect(&m_porta, &QSerialPort::readyRead, this, &PortaSeriale::leggi);
    connect(&m_porta, &QSerialPort::errorOccurred, this, &PortaSeriale::errore);
}

PortaSeriale::~PortaSeriale()
{
    m_porta.disconnect(this);
}

bool PortaSeriale::apri(const ImpostazioniPorta &impostazioni)
{
    chiudi();
    m_errore.clear();
    m_gruppo.clear();
    m_occupata = false;
    m_porta.setPortName(impostazioni.dispositivo);
    if (impostazioni.dispositivo.isEmpty()) {
        m_errore = QStringLiteral("no such serial port");
        return false;
    }
    if (!m_porta.open(QIODevice::ReadWrite)) {
        m_errore = m_porta.errorString();
        m_gruppo = GruppoPerDispositivo(impostazioni.dispositivo);
        m_occupata = m_gruppo.isEmpty() && DispositivoOccupato(impostazioni.dispositivo);
        return false;
    }
    // One user of the line at a time, whatever path names the device: the program and
    // korvantine-cli each take this lock, and the kernel drops it with the file.
    if (::flock(int(m_porta.handle()), LOCK_EX | LOCK_NB) != 0) {
        m_occupata = errno == EWOULDBLOCK;
        m_errore = QString::fromLocal8Bit(std::strerror(errno));
        m_porta.close();
        return false;
    }
    const bool ok = m_porta.setBaudRate(impostazioni.velocita) && m_porta.setDataBits(QSerialPort::Data8)
                    && m_porta.setParity(QSerialPort::NoParity) && m_porta.setStopBits(QSerialPort::OneStop)
                    && m_porta.setFlowControl(QSerialPort::NoFlowControl);
    if (!ok) {
        m_errore = m_porta.errorString();
        m_porta.close();
        return false;
    }
    m_porta.clear();
    return true;
}

void PortaSeriale::chiudi()
{
    if (m_porta.isOpen())
        m_porta.close();
}

bool PortaSeriale::PortOpen() const
{
    return m_porta.isOpen();
}

bool PortaSeriale::scrivi(const QByteArray &bytes)
{
    if (!m_porta.isOpen())
        return false;
    const bool accettati = m_porta.write(bytes) == bytes.size();
    // Out to the device now, not at the next turn of the event loop: the ECU waits for it.
    m_porta.flush();
    return accettati;
}

QString PortaSeriale::descrizioneErrore() const
{
    return m_errore;
}

void PortaSeriale::leggi()
{
    const QByteArray bytes = m_porta.readAll();
    if (!bytes.isEmpty())
        emit arrivati(bytes);
}

void PortaSeriale::errore(QSerialPort::SerialPortError e)
{
    // A read or write that the system refuses on an open device means the device is gone
    // (an adapter pulled out, a line hung up); the driver copes with a busy line by itself,
    // and a garbled byte is no error here but a frame that fails its checksum.
    switch (e) {
    case QSerialPort::ResourceError:
    case QSerialPort::PermissionError:
    case QSerialPort::ReadError:
    case QSerialPort::WriteError:
        break;
    default:
        return;
    }
    if (!m_porta.isOpen())
        return;
    m_errore = m_porta.errorString();
    m_porta.close();
    emit persa(m_errore);
}

} // namespace kv
