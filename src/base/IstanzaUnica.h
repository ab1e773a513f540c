#pragma once

#include <QLockFile>
#include <QString>

#include <functional>
#include <memory>

class QLocalServer;

namespace kv {

// One running program per PercorsoApp, by the lock file KORVANTINE.LCK there. The lock
// names its process: a lock left by a crashed instance is taken over, a live one never,
// however old. A refused instance has touched no file.
//
// The instance that holds the lock listens on a local socket named after the folder, so
// that a second start can ask it to come forward instead of ending without a word.
class IstanzaUnica
{
public:
    enum class Esito {
        Acquisita,    // this is the only instance
        AltraIstanza, // another one runs: end silently
        Errore        // the folder cannot hold a lock (read-only, missing parent...)
    };
    // Why the folder could not hold the lock.
    enum class Motivo {
        Nessuno,
        NonCreabile, // the folder is missing and cannot be made (or a file stands there)
        SolaLettura, // nothing may be written in it
        Altro
    };

    explicit IstanzaUnica(const QString &percorsoApp);
    ~IstanzaUnica();

    // Makes the folder when it is missing (no other instance can be using it then), and
    // tries the lock without waiting.
    Esito acquisisci();
    void rilascia();
    bool attiva() const { return m_lock.isLocked(); }
    const QString &percorsoLock() const { return m_percorso; }
    Motivo motivo() const { return m_motivo; }

    // While the lock is ours: richiamo runs whenever a second start asks for this instance.
    // False when the socket cannot be set up (the program works as well without it).
    bool ascoltaRichiami(std::function<void()> richiamo);
    // From a second start: asks the instance that holds the folder to come forward; true
    // when it answered within the time.
    bool richiamaAltra(int attesaMs = 2000) const;

private:
    QString nomeRichiamo() const;

    QString m_cartella;
    QString m_percorso;
    QLockFile m_lock;
    Motivo m_motivo = Motivo::Nessuno;
    std::unique_ptr<QLocalServer> m_server;
};

} // namespace kv
