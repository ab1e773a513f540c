#include "link/Temporizzatore.h"

namespace kv {

TemporizzatoreQt::TemporizzatoreQt(QObject *parent) : Temporizzatore(parent)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Temporizzatore::scaduto);
}

void TemporizzatoreQt::setEnabled(bool abilitato)
{
    if (abilitato)
        m_timer.start();
    else
        m_timer.stop();
}

bool TemporizzatoreManuale::scatta()
{
    if (!m_abilitato)
        return false;
    emit scaduto();
    return true;
}

} // namespace kv
