#pragma once

#include <QObject>
#include <QTimer>

namespace kv {

// A timer with the Enabled and Interval of the program's design. The dialogue engine sees
// only this, so tests can fire it by hand and the program can use a QTimer.
class Temporizzatore : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    virtual void setInterval(int ms) = 0;
    virtual int interval() const = 0;
    // Enabling (re)starts the count, disabling stops it.
    virtual void setEnabled(bool abilitato) = 0;
    virtual bool isEnabled() const = 0;

signals:
    void scaduto();
};

class TemporizzatoreQt : public Temporizzatore
{
    Q_OBJECT
public:
    explicit TemporizzatoreQt(QObject *parent = nullptr);

    void setInterval(int ms) override { m_timer.setInterval(ms); }
    int interval() const override { return m_timer.interval(); }
    void setEnabled(bool abilitato) override;
    bool isEnabled() const override { return m_timer.isActive(); }

private:
    QTimer m_timer;
};

// Fired by the test, never by the clock.
class TemporizzatoreManuale : public Temporizzatore
{
    Q_OBJECT
public:
    using Temporizzatore::Temporizzatore;

    void setInterval(int ms) override { m_intervallo = ms; }
    int interval() const override { return m_intervallo; }
    void setEnabled(bool abilitato) override { m_abilitato = abilitato; }
    bool isEnabled() const override { return m_abilitato; }

    // Fires only when enabled, as a real timer would.
    bool scatta();

private:
    int m_intervallo = 0;
    bool m_abilitato = false;
};

} // namespace kv
