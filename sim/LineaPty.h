#pragma once

#include "Linea.h"

class QSocketNotifier;

namespace kv::sim {

// A pseudo-terminal: we hold the master, the tester opens the slave device as it would a
// serial port. We also keep the slave open ourselves, so that the master does not see a
// hang-up before the tester arrives or after it leaves; closing both is what makes the
// tester's port fail, as if the cable were pulled.
class LineaPty : public Linea
{
    Q_OBJECT
public:
    // collegamento: optional fixed path made a symlink to the slave device. An existing
    // symlink there is replaced; anything else there is left alone and the open fails.
    explicit LineaPty(QString collegamento = {}, QObject *parent = nullptr);
    ~LineaPty() override;

    bool apri() override;
    void chiudi() override;
    bool aperta() const override { return m_master >= 0; }
    void scrivi(const QByteArray &dati) override;
    QString percorso() const override { return m_percorso; }
    const QString &collegamento() const { return m_collegamento; }

private:
    void leggi();
    bool creaCollegamento();
    void togliCollegamento();

    QString m_collegamento;
    QString m_percorso;
    int m_master = -1;
    int m_slave = -1;
    QSocketNotifier *m_notificatore = nullptr;
};

} // namespace kv::sim
