#include "LineaPty.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QTimer>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace kv::sim {

namespace {
// Bytes left unread at the far end beyond this mean nobody is listening: a tester reads
// within milliseconds. A real line keeps nothing for a listener that is not there.
constexpr int ArretratiMassimi = 1024;

QString testoErrno(const char *cosa)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(cosa), QString::fromLocal8Bit(std::strerror(errno)));
}
} // namespace

LineaPty::LineaPty(QString collegamento, QObject *parent)
    : Linea(parent)
    , m_collegamento(std::move(collegamento))
{}

LineaPty::~LineaPty()
{
    chiudi();
}

bool LineaPty::apri()
{
    chiudi();
    m_errore.clear();
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0) {
        m_errore = testoErrno("cannot open a pseudo-terminal");
        return false;
    }
    char nome[256] = {};
    if (::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0
        || ::ptsname_r(m_master, nome, sizeof nome) != 0) {
        m_errore = testoErrno("cannot prepare the pseudo-terminal");
        chiudi();
        return false;
    }
    m_percorso = QString::fromLocal8Bit(nome);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);

    m_slave = ::open(nome, O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (m_slave < 0) {
        m_errore = testoErrno("cannot open the far end of the pseudo-terminal");
        chiudi();
        return false;
    }
    // Raw until the tester sets its own mode: no echo, no line editing, no CR/LF games.
    termios t{};
    if (::tcgetattr(m_slave, &t) == 0) {
        ::cfmakeraw(&t);
        ::cfsetispeed(&t, B9600);
        ::cfsetospeed(&t, B9600);
        ::tcsetattr(m_slave, TCSANOW, &t);
    }

    if (!m_collegamento.isEmpty() && !creaCollegamento()) {
        chiudi();
        return false;
    }

    m_notificatore = new QSocketNotifier(qintptr(m_master), QSocketNotifier::Read, this);
    connect(m_notificatore, &QSocketNotifier::activated, this, &LineaPty::leggi);
    return true;
}

bool LineaPty::creaCollegamento()
{
    const QFileInfo info(m_collegamento);
    if (info.isSymLink()) {
        QFile::remove(m_collegamento);
    } else if (info.exists()) {
        m_errore =
            QStringLiteral("%1 exists and is not a symbolic link; it is left alone").arg(m_collegamento);
        return false;
    }
    if (!QFile::link(m_percorso, m_collegamento)) {
        m_errore = QStringLiteral("cannot make the link %1 to %2").arg(m_collegamento, m_percorso);
        return false;
    }
    return true;
}

void LineaPty::togliCollegamento()
{
    if (m_collegamento.isEmpty() || m_percorso.isEmpty())
        return;
    const QFileInfo info(m_collegamento);
    if (info.isSymLink() && info.symLinkTarget() == m_percorso)
        QFile::remove(m_collegamento);
}

void LineaPty::chiudi()
{
    delete m_notificatore;
    m_notificatore = nullptr;
    if (m_master >= 0)
        togliCollegamento();
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
    m_slave = -1;
    m_master = -1;
}

void LineaPty::leggi()
{
    QByteArray arrivati;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(m_master, buffer, sizeof buffer);
        if (n > 0) {
            arrivati.append(buffer, n);
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EIO && m_notificatore) {
            // Nobody holds the far end. We keep it open ourselves, so this is only a
            // moment; pause the notifier rather than spin on it.
            m_notificatore->setEnabled(false);
            QTimer::singleShot(100, this, [this] {
                if (m_notificatore)
                    m_notificatore->setEnabled(true);
            });
        }
        break;
    }
    if (!arrivati.isEmpty())
        emit ricevuti(arrivati);
}

void LineaPty::scrivi(const QByteArray &dati)
{
    if (m_master < 0)
        return;
    int arretrati = 0;
    if (m_slave >= 0 && ::ioctl(m_slave, TIOCINQ, &arretrati) == 0 && arretrati > ArretratiMassimi)
        ::tcflush(m_slave, TCIFLUSH);
    const char *p = dati.constData();
    qsizetype resto = dati.size();
    bool svuotato = false;
    while (resto > 0) {
        const ssize_t n = ::write(m_master, p, size_t(resto));
        if (n > 0) {
            p += n;
            resto -= n;
            continue;
        }
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0 && errno == EAGAIN && !svuotato && m_slave >= 0) {
            // The far end's input is full: nobody is reading. What waits there is as
            // lost as on a line without a listener; make room for what is current.
            ::tcflush(m_slave, TCIFLUSH);
            svuotato = true;
            continue;
        }
        break;
    }
}

} // namespace kv::sim
