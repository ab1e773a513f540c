#include "Demo.h"

#include "ComandiOperatore.h"
#include "EcuSimulata.h"

namespace kv {

using namespace kv::sim;

Demo::Demo()
{
    m_thread.setObjectName(QStringLiteral("EcuSimulata"));
}

Demo::~Demo()
{
    if (m_thread.isRunning()) {
        m_thread.quit();
        m_thread.wait();
    }
}

bool Demo::avvia(QString &errore)
{
    // The demo is where a fitter learns: the TPS step waits for the pedal worked by hand.
    OpzioniEcu opzioni;
    opzioni.operatoreManuale = true;
    auto *ecu = new EcuSimulata(opzioni);
    if (!ecu->apriPty()) {
        errore = ecu->erroreLinea();
        delete ecu;
        return false;
    }
    m_percorso = ecu->percorsoDispositivo();
    m_ecu = ecu;
    // The line and the timers move with the object; it is deleted in its own thread.
    ecu->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, ecu, &QObject::deleteLater);
    m_thread.start();
    QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);
    return true;
}

QString Demo::operatore(const QString &comando)
{
    if (!m_ecu || !m_thread.isRunning())
        return {};
    QString risposta;
    EcuSimulata *ecu = m_ecu;
    QMetaObject::invokeMethod(
        ecu, [&risposta, ecu, comando] { risposta = EseguiComandoOperatore(*ecu, comando); },
        Qt::BlockingQueuedConnection);
    return risposta;
}

int Demo::giriContagiri()
{
    if (!m_ecu || !m_thread.isRunning())
        return 0;
    int giri = 0;
    EcuSimulata *ecu = m_ecu;
    QMetaObject::invokeMethod(
        ecu, [&giri, ecu] { giri = qRound(ecu->giriVeri()); }, Qt::BlockingQueuedConnection);
    return giri;
}

} // namespace kv
