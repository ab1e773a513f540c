#include "shell/Programma.h"

#include "link/Frame.h"

namespace kv {

Programma::Programma(const QString &percorsoApp, std::unique_ptr<Porta> portaSeriale,
                     std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
                     std::unique_ptr<Temporizzatore> riapertura, std::unique_ptr<Temporizzatore> silenzio,
                     QObject *parent)
    : QObject(parent)
    , lingua(percorsoApp)
    , registro(percorsoApp + QStringLiteral("/MESSAGGI.TXT"))
    , ricevitore(&registro)
    , m_porta(std::move(portaSeriale))
    , m_timeOutReq(std::move(timeOutReq))
    , m_timeOutDati(std::move(timeOutDati))
    , m_riapertura(riapertura ? std::move(riapertura) : std::make_unique<TemporizzatoreQt>())
    , m_silenzio(silenzio ? std::move(silenzio) : std::make_unique<TemporizzatoreQt>())
    , porta(*m_porta)
    , TimeOutReq(*m_timeOutReq)
    , TimeOutDati(*m_timeOutDati)
    , motore(porta, TimeOutReq, &registro)
    , identificazione(stato, catalogo, motore)
    , datiLive(stato, motore, identificazione, TimeOutDati, &anello)
    , sorveglianza(porta, *m_riapertura, *m_silenzio)
{
    stato.PercorsoApp = percorsoApp;
    anello.collega(&canali, percorsoApp);
    connect(&porta, &Porta::arrivati, this, [this](const QByteArray &b) { ricevitore.ricevi(b); });
    ricevitore.impostaGestore([this](const QByteArray &payload) {
        sorveglianza.frameBuono();
        if (payload.size() >= 2 && payload.at(0) == 'e' && static_cast<quint8>(payload.at(1)) == 0xFF)
            impostaSegnalazione1({});
        motore.instrada(payload);
    });
    ricevitore.impostaSegnalazione(
        [this](const QByteArray &hex) { emit segnalazione(QString::fromLatin1(hex)); });
    motore.impostaGestoreDati([this](const QByteArray &p) { datiLive.RispostaDati(p); });
    motore.impostaGestoreVita([this] { datiLive.RispostaVita(); });
    connect(&sorveglianza, &SorveglianzaLinea::persa, this, &Programma::lineaPersa);
    // Nothing of the dead line may be joined to the first bytes of the new one.
    connect(&sorveglianza, &SorveglianzaLinea::riaperta, this, [this] { ricevitore.svuota(); });
}

Programma::~Programma()
{
    // Nothing of the link may fire into a half-destroyed object.
    porta.disconnect(this);
    TimeOutReq.setEnabled(false);
    TimeOutDati.setEnabled(false);
    m_riapertura->setEnabled(false);
    m_silenzio->setEnabled(false);
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
    if (porta.apri(imp)) {
        sorveglianza.aperta(imp);
        return true;
    }
    const QString gruppo = porta.gruppoMancante();
    porta.chiudi();
    sorveglianza.chiusa();
    QString testo = lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3");
    if (!gruppo.isEmpty())
        testo += QStringLiteral("\n\n")
                 + lingua.LeggiTesto("SEGNALAZIONI", "PERMESSO_PORTA")
                       .replace(QStringLiteral("XXX"), imp.dispositivo)
                       .replace(QStringLiteral("YYY"), gruppo);
    emit portaNonAperta(testo, lingua.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
    return false;
}

void Programma::lineaPersa()
{
    // The request on the line will get no reply: it ends now, as a time-out ends it. Then
    // the stream is lost, so the ECU is identified again once the port is back.
    motore.lineaPersa();
    ricevitore.svuota();
    datiLive.flussoPerso();
}

} // namespace kv
