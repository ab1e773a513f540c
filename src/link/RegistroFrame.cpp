#include "link/RegistroFrame.h"

#include "link/Frame.h"

#include <QFile>

namespace kv {

RegistroFrame::RegistroFrame(QString percorsoFile) : m_percorso(std::move(percorsoFile)) {}

void RegistroFrame::LogFrame(const QByteArray &bytes) const
{
    if (m_percorso.isEmpty())
        return;
    QFile file(m_percorso);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
        return; // the log is an aid; a full disk must not stop the link
    file.write(HexFrame(bytes) + "\r\n");
}

} // namespace kv
