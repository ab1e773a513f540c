#include "Demo.h"

#include "ComandiOperatore.h"
#include "EcuSimulata.h"
#include "FileS19.h"

#include "archives/Archivio.h"
#include "archives/Cartelle.h"
#include "base/FileSystem.h"
#include "base/Lingua.h"
#include "programming/DialogoProgSW.h"

#include <QFileInfo>

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

bool Demo::avvia(QString &errore, bool applicazione)
{
    OpzioniEcu opzioni;
    opzioni.applicazionePresente = applicazione;
    // Bytes at the pace of a real line, so that a flash takes the time it takes in the workshop.
    opzioni.cadenzaReale = true;
    // The demo is where a fitter learns: the TPS step waits for the pedal worked by hand.
    opzioni.operatoreManuale = true;
    return avvia(errore, opzioni);
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

QString PreparaRilascioDemo(const QString &percorsoApp, const Lingua &lingua)
{
    if (!ElencoSoftware(percorsoApp).isEmpty())
        return {};
    const QString nome = QStringLiteral("KVSIM_R2");
    const QString percorso = CartellaFileS19(percorsoApp) + u'/' + nome + QStringLiteral(".S19");
    if (!DentroRadice(percorso, percorsoApp) || QFileInfo(percorso).isSymLink())
        return {};
    if (!ScriviFileIntero(percorso, RilascioDemo()))
        return {};

    // The card is a courtesy: without it the release is listed and flashed all the same.
    Archivio db;
    if (ApriArchivioSoftware(PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware),
                             FileArchivi::FileSoftware, db)
        != 0) {
        RigaArchivio riga = db.NuovaRiga();
        riga.Imposta(u"NomeSW", nome);
        riga.Imposta(u"Versione", QStringLiteral("2.0"));
        riga.Imposta(u"NOTE",
                     lingua.LeggiTesto(QStringLiteral("ProgSW"), QStringLiteral("DEMO.NOTE")).trimmed());
        db.Salva(riga);
        ChiudiArchivioSoftware(db);
    }
    return nome;
}

} // namespace kv
