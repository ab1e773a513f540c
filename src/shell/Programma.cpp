#include "shell/Programma.h"

#include "link/Frame.h"

namespace kv {

Programma::Programma(const QString &percorsoApp, std::unique_ptr<Porta> portaSeriale,
                     std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
                     QObject *parent)
    : QObject(parent)
    , lingua(percorsoApp)
    , registro(percorsoApp + QStringLiteral("/MESSAGGI.TXT"))
    , ricevitore(&registro)
    , m_porta(std::move(portaSeriale))
    , m_timeOutReq(std::move(timeOutReq))
    , m_timeOutDati(std::move(timeOutDati))
    , porta(*m_porta)
    , TimeOutReq(*m_timeOutReq)
    , TimeOutDati(*m_timeOutDati)
    , motore(porta, TimeOutReq, &registro)
    , identificazione(stato, catalogo, motore)
    , datiLive(stato, motore, identificazione, TimeOutDati, &anello)
{
    stato.PercorsoApp = percorsoApp;
    anello.collega(&canali, percorsoApp);
    connect(&porta, &Porta::arrivati, this, [this](const QByteArray &b) { ricevitore.ricevi(b); });
    ricevitore.impostaGestore([this](const QByteArray &payload) { motore.instrada(payload); });
    ricevitore.impostaSegnalazione(
        [this](const QByteArray &hex) { emit segnalazione(QString::fromLatin1(hex)); });
    motore.impostaGestoreDati([this](const QByteArray &p) { datiLive.RispostaDati(p); });
    motore.impostaGestoreVita([this] { datiLive.RispostaVita(); });
}

Programma::~Programma()
{
    // Nothing of the link may fire into a half-destroyed object.
    porta.disconnect(this);
    TimeOutReq.setEnabled(false);
    TimeOutDati.setEnabled(false);
}

void Programma::IniDialogo()
{
    motore.IniDialogo();
    ricevitore.svuota();
    stato.IniDialogo();
}

void Programma::IniCollegamento()
{
    stato.IniCollegamento();
}

void Programma::LeggiImpSeriale()
{
    seriale = kv::LeggiImpSeriale(percorsoIni(), PortiSeriali());
}

bool Programma::ApriPorta()
{
    porta.chiudi();
    ImpostazioniPorta imp;
    imp.dispositivo = dispositivoForzato.isEmpty() ? seriale.nomeDispositivo : dispositivoForzato;
    imp.velocita = seriale.VelocitaCom;
    if (porta.apri(imp))
        return true;
    porta.chiudi();
    emit portaNonAperta(lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3"),
                        lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
    return false;
}

} // namespace kv
