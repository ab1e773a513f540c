#pragma once

#include <QLockFile>
#include <QString>

namespace kv {

// One running program per PercorsoApp, by the lock file KORVANTINE.LCK there. The lock
// names its process: a lock left by a crashed instance is taken over, a live one never,
// however old. A refused instance has touched no file.
class IstanzaUnica
{
public:
    enum class Esito {
        Acquisita,    // this is the only instance
        AltraIstanza, // another one runs: end silently
        Errore        // the folder cannot hold a lock (read-only, missing parent...)
    };

    explicit IstanzaUnica(const QString &percorsoApp);

    // Makes the folder when it is missing (no other instance can be using it then), and
    // tries the lock without waiting.
    Esito acquisisci();
    void rilascia();
    bool attiva() const { return m_lock.isLocked(); }
    const QString &percorsoLock() const { return m_percorso; }

private:
    QString m_cartella;
    QString m_percorso;
    QLockFile m_lock;
};

} // namespace kv
