#include "base/IstanzaUnica.h"

#include "base/FileSystem.h"

#include <QFileInfo>

namespace kv {

IstanzaUnica::IstanzaUnica(const QString &percorsoApp)
    : m_cartella(percorsoApp)
    , m_percorso(percorsoApp + QStringLiteral("/KORVANTINE.LCK"))
    , m_lock(m_percorso)
{
    // Age alone never makes a lock stale: the program runs for hours.
    m_lock.setStaleLockTime(0);
}

IstanzaUnica::Esito IstanzaUnica::acquisisci()
{
    if (m_lock.isLocked())
        return Esito::Acquisita;
    if (!QFileInfo(m_cartella.isEmpty() ? QStringLiteral("/") : m_cartella).isDir()
        && CreaCartella(m_cartella) != -1)
        return Esito::Errore;
    if (m_lock.tryLock(0))
        return Esito::Acquisita;
    return m_lock.error() == QLockFile::LockFailedError ? Esito::AltraIstanza : Esito::Errore;
}

void IstanzaUnica::rilascia()
{
    if (m_lock.isLocked())
        m_lock.unlock();
}

} // namespace kv
