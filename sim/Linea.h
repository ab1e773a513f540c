#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

namespace kv::sim {

// The ECU's end of the serial line. Bytes go out unchanged and come in as they arrive.
class Linea : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    // False with errore() filled when the line cannot be had.
    virtual bool apri() = 0;
    virtual void chiudi() = 0;
    virtual bool aperta() const = 0;
    // Bytes the far end is not taking are lost, as on a real line with nobody listening.
    virtual void scrivi(const QByteArray &dati) = 0;
    // The device the tester opens.
    virtual QString percorso() const = 0;

    const QString &errore() const { return m_errore; }

signals:
    void ricevuti(const QByteArray &dati);
    // The line is gone under us (device unplugged and the like).
    void persa(const QString &motivo);

protected:
    QString m_errore;
};

} // namespace kv::sim
