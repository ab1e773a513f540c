#include "Demo.h"

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
    return avvia(errore, OpzioniEcu{});
}

bool Demo::avvia(QString &errore, const OpzioniEcu &opzioni,
                 const std::function<void(EcuSimulata &)> &prepara)
{
    auto *ecu = new EcuSimulata(opzioni);
    if (!ecu->apriPty()) {
        errore = ecu->erroreLinea();
        delete ecu;
        return false;
    }
    m_percorso = ecu->percorsoDispositivo();
    if (prepara)
        prepara(*ecu);
    // The line and the timers move with the object; it is deleted in its own thread.
    ecu->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, ecu, &QObject::deleteLater);
    m_thread.start();
    QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);
    return true;
}

} // namespace kv
