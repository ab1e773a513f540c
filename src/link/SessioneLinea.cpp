#include "link/SessioneLinea.h"

namespace kv {

SessioneLinea::SessioneLinea(const QString &registro, Catalogo &catalogo, std::unique_ptr<Porta> porta,
                             std::unique_ptr<Temporizzatore> timeOutReq,
                             std::unique_ptr<Temporizzatore> timeOutDati,
                             std::unique_ptr<Temporizzatore> riapertura,
                             std::unique_ptr<Temporizzatore> silenzio, QObject *parent)
    : QObject(parent)
    , m_porta(std::move(porta))
    , m_timeOutReq(std::move(timeOutReq))
    , m_timeOutDati(std::move(timeOutDati))
    , m_riapertura(riapertura ? std::move(riapertura) : std::make_unique<TemporizzatoreQt>())
    , m_silenzio(silenzio ? std::move(silenzio) : std::make_unique<TemporizzatoreQt>())
    , m_registro(registro)
    , m_ricevitore(&m_registro)
    , m_motore(*m_porta, *m_timeOutReq, &m_registro)
    , m_identificazione(m_ecu, catalogo, m_motore)
    , m_datiLive(m_ecu, m_motore, m_identificazione, *m_timeOutDati)
    , m_sorveglianza(*m_porta, *m_riapertura, *m_silenzio)
{
    connect(m_porta.get(), &Porta::arrivati, this, [this](const QByteArray &b) { m_ricevitore.ricevi(b); });
    m_ricevitore.impostaGestore([this](const QByteArray &payload) {
        m_sorveglianza.frameBuono();
        if (payload.size() >= 2 && payload.at(0) == 'e' && static_cast<quint8>(payload.at(1)) == 0xFF)
            emit scritturaRiuscita();
        m_motore.instrada(payload);
    });
    m_ricevitore.impostaSegnalazione(
        [this](const QByteArray &hex) { emit segnalazione(QString::fromLatin1(hex)); });
    m_motore.impostaGestoreDati([this](const QByteArray &p) { m_datiLive.RispostaDati(p); });
    m_motore.impostaGestoreVita([this] { m_datiLive.RispostaVita(); });
    connect(&m_sorveglianza, &SorveglianzaLinea::persa, this, &SessioneLinea::lineaPersa);
    // Nothing of the dead line may be joined to the first bytes of the new one.
    connect(&m_sorveglianza, &SorveglianzaLinea::riaperta, this, [this] { m_ricevitore.svuota(); });
}

SessioneLinea::~SessioneLinea()
{
    // Nothing of the link may fire into a half-destroyed object.
    m_porta->disconnect(this);
    m_timeOutReq->setEnabled(false);
    m_timeOutDati->setEnabled(false);
    m_riapertura->setEnabled(false);
    m_silenzio->setEnabled(false);
}

void SessioneLinea::IniDialogo()
{
    m_motore.IniDialogo();
    m_ricevitore.svuota();
}

bool SessioneLinea::apri(const ImpostazioniPorta &impostazioni)
{
    m_porta->chiudi();
    m_gruppoMancante.clear();
    m_portaOccupata = false;
    if (m_porta->apri(impostazioni)) {
        m_sorveglianza.aperta(impostazioni);
        return true;
    }
    m_gruppoMancante = m_porta->gruppoMancante();
    m_portaOccupata = m_porta->occupata();
    m_porta->chiudi();
    m_sorveglianza.chiusa();
    return false;
}

void SessioneLinea::lineaPersa()
{
    // The request on the line will get no reply: it ends now, as a time-out ends it. Then
    // the stream is lost, so the ECU is identified again once the port is back.
    m_motore.lineaPersa();
    m_ricevitore.svuota();
    m_datiLive.flussoPerso();
}

} // namespace kv
