#pragma once

#include <QString>

class QByteArray;

namespace kv {

// The frame log MESSAGGI.TXT: one line of upper-case hex per frame, sent or received,
// CR LF, no time stamp. Opened, appended and closed for each line so that nothing is
// lost if the program dies.
class RegistroFrame
{
public:
    explicit RegistroFrame(QString percorsoFile = {});

    void LogFrame(const QByteArray &bytes) const;
    const QString &percorso() const { return m_percorso; }
    // Another file from the next frame on; empty logs nothing.
    void impostaPercorso(QString percorsoFile) { m_percorso = std::move(percorsoFile); }

private:
    QString m_percorso;
};

} // namespace kv
