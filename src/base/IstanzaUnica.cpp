#include "base/IstanzaUnica.h"

#include "base/FileSystem.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>

#include <unistd.h>

namespace kv {

namespace {

const QByteArray Richiesta = QByteArrayLiteral("KORVANTINE-RICHIAMO\n");
const QByteArray Risposta = QByteArrayLiteral("OK\n");

} // namespace

IstanzaUnica::IstanzaUnica(const QString &percorsoApp)
    : m_cartella(percorsoApp)
    , m_percorso(percorsoApp + QStringLiteral("/KORVANTINE.LCK"))
    , m_lock(m_percorso)
{
    // Age alone never makes a lock stale: the program runs for hours.
    m_lock.setStaleLockTime(0);
}

IstanzaUnica::~IstanzaUnica() = default;

IstanzaUnica::Esito IstanzaUnica::acquisisci()
{
    m_motivo = Motivo::Nessuno;
    if (m_lock.isLocked())
        return Esito::Acquisita;
    if (!QFileInfo(m_cartella.isEmpty() ? QStringLiteral("/") : m_cartella).isDir()
        && CreaCartella(m_cartella) != -1) {
        m_motivo = Motivo::NonCreabile;
        return Esito::Errore;
    }
    if (m_lock.tryLock(0))
        return Esito::Acquisita;
    switch (m_lock.error()) {
    case QLockFile::LockFailedError:
        return Esito::AltraIstanza;
    case QLockFile::PermissionError:
        m_motivo = Motivo::SolaLettura;
        break;
    default:
        m_motivo = Motivo::Altro;
        break;
    }
    return Esito::Errore;
}

void IstanzaUnica::rilascia()
{
    m_server.reset();
    if (m_lock.isLocked())
        m_lock.unlock();
}

QString IstanzaUnica::nomeRichiamo() const
{
    // One name per folder and user; the folder as it really is, however it was written.
    const QString reale = QFileInfo(m_cartella).canonicalFilePath();
    const QByteArray impronta =
        QCryptographicHash::hash((reale.isEmpty() ? m_cartella : reale).toUtf8(), QCryptographicHash::Sha1)
            .toHex()
            .left(16);
    return QStringLiteral("korvantine-%1-%2").arg(QString::number(::getuid()), QString::fromLatin1(impronta));
}

bool IstanzaUnica::ascoltaRichiami(std::function<void()> richiamo)
{
    if (!m_lock.isLocked())
        return false;
    m_server = std::make_unique<QLocalServer>();
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // The lock is ours, so a socket of that name is a leftover of a crash.
    QLocalServer::removeServer(nomeRichiamo());
    if (!m_server->listen(nomeRichiamo())) {
        m_server.reset();
        return false;
    }
    QLocalServer *server = m_server.get();
    QObject::connect(server, &QLocalServer::newConnection, server, [server, richiamo = std::move(richiamo)] {
        while (QLocalSocket *s = server->nextPendingConnection()) {
            QObject::connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
            QObject::connect(s, &QLocalSocket::readyRead, s, [s, richiamo] {
                if (!s->canReadLine())
                    return;
                if (s->readLine(256) == Richiesta) {
                    s->write(Risposta);
                    s->flush();
                    if (richiamo)
                        richiamo();
                }
                s->disconnectFromServer();
            });
        }
    });
    return true;
}

bool IstanzaUnica::richiamaAltra(int attesaMs) const
{
    QLocalSocket s;
    s.connectToServer(nomeRichiamo());
    if (!s.waitForConnected(attesaMs))
        return false;
    s.write(Richiesta);
    if (!s.waitForBytesWritten(attesaMs))
        return false;
    while (!s.canReadLine()) {
        if (!s.waitForReadyRead(attesaMs))
            return false;
    }
    return s.readLine(256) == Risposta;
}

} // namespace kv
