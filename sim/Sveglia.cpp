#include "Sveglia.h"

#include <QSocketNotifier>

#include <ctime>
#include <pthread.h>
#include <sched.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace kv::sim {

namespace {

timespec comeTimespec(qint64 ns)
{
    timespec t{};
    t.tv_sec = static_cast<time_t>(ns / 1'000'000'000);
    t.tv_nsec = static_cast<long>(ns % 1'000'000'000);
    return t;
}

} // namespace

Sveglia::Sveglia(QObject *parent)
    : QObject(parent)
    , m_fd(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (m_fd < 0)
        return;
    m_notificatore = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Read, this);
    connect(m_notificatore, &QSocketNotifier::activated, this, &Sveglia::scaduta);
}

Sveglia::~Sveglia()
{
    delete m_notificatore;
    if (m_fd >= 0)
        ::close(m_fd);
}

qint64 Sveglia::adessoNs()
{
    timespec t{};
    ::clock_gettime(CLOCK_MONOTONIC, &t);
    return qint64(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

void Sveglia::puntaA(qint64 scadenzaNs)
{
    m_attiva = true;
    if (m_fd < 0) {
        // Without a timer descriptor the next turn of the loop has to do.
        QMetaObject::invokeMethod(this, &Sveglia::scaduta, Qt::QueuedConnection);
        return;
    }
    itimerspec s{};
    // Zero would disarm the timer: the clock's first nanosecond stands for "already past".
    s.it_value = comeTimespec(qMax<qint64>(1, scadenzaNs));
    ::timerfd_settime(m_fd, TFD_TIMER_ABSTIME, &s, nullptr);
}

void Sveglia::ferma()
{
    m_attiva = false;
    if (m_fd < 0)
        return;
    const itimerspec zero{};
    ::timerfd_settime(m_fd, TFD_TIMER_ABSTIME, &zero, nullptr);
    quint64 scadenze = 0;
    while (::read(m_fd, &scadenze, sizeof scadenze) > 0) {}
}

void Sveglia::scaduta()
{
    if (m_fd >= 0) {
        quint64 scadenze = 0;
        while (::read(m_fd, &scadenze, sizeof scadenze) > 0) {}
    }
    if (!m_attiva)
        return;
    m_attiva = false;
    emit suonata();
}

bool PrioritaReale()
{
    sched_param parametri{};
    parametri.sched_priority = sched_get_priority_min(SCHED_FIFO);
    return ::pthread_setschedparam(::pthread_self(), SCHED_FIFO, &parametri) == 0;
}

} // namespace kv::sim
