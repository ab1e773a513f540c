#include "link/PortaMappa.h"

#include "link/Frame.h"
#include "variables/AreaMappa.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

namespace kv {

namespace {

// The codes the ECU refuses with: a letter it does not take here, a place outside its memory,
// a frame of the wrong length.
constexpr char NonAmmesso = 0x02;
constexpr char IndirizzoErrato = 0x03;
constexpr char LunghezzaErrata = 0x04;

QByteArray esito(char codice)
{
    return QByteArray(1, 'e') + codice;
}

} // namespace

PortaMappa::PortaMappa(QByteArray immagine, const Catalogo &catalogo, double scalaLambda, QObject *parent)
    : Porta(parent)
    , m_immagine(std::move(immagine))
    , m_ram(DimensioneRam, '\0')
{
    m_immagine.resize(AreaMappa::Dimensione, '\0');
    for (const Parametro &p : catalogo.Parametri) {
        if (p.IndirizzoRAM < 0 || p.IndirizzoRAM + p.Dimensione > DimensioneRam || !AreaMappa::Contiene(p))
            continue;
        m_ram.replace(p.IndirizzoRAM, p.Dimensione, AreaMappa::Cella(m_immagine, p));
    }
    const Parametro &scala = catalogo.Parametri[Par::ScalaLambda];
    m_ram.replace(scala.IndirizzoRAM, scala.Dimensione, ByteBE(scalaLambda != 0 ? 255 : 0, scala.Dimensione));
}

bool PortaMappa::apri(const ImpostazioniPorta &)
{
    m_aperta = true;
    return true;
}

void PortaMappa::chiudi()
{
    m_aperta = false;
}

bool PortaMappa::scrivi(const QByteArray &bytes)
{
    if (!m_aperta || bytes.size() < Frame::Sovraccarico || bytes.at(0) != Frame::STX)
        return false;
    const QByteArray dati = bytes.mid(4, bytes.size() - Frame::Sovraccarico);
    const QByteArray frame = CreaFrame(risposta(dati), 0);
    QMetaObject::invokeMethod(
        this, [this, frame] { emit arrivati(frame); }, Qt::QueuedConnection);
    return true;
}

QByteArray *PortaMappa::memoria(quint32 indirizzo, int n, int &scarto)
{
    if (n <= 0)
        return nullptr;
    if (indirizzo + quint32(n) <= quint32(DimensioneRam)) {
        scarto = int(indirizzo);
        return &m_ram;
    }
    constexpr quint32 inizio = AreaMappa::Inizio;
    if (indirizzo >= inizio && indirizzo + quint32(n) <= inizio + AreaMappa::Dimensione) {
        scarto = int(indirizzo - inizio);
        return &m_immagine;
    }
    return nullptr;
}

QByteArray PortaMappa::risposta(const QByteArray &dati)
{
    const char lettera = dati.isEmpty() ? '\0' : dati.at(0);
    if ((lettera != 'R' && lettera != 'W') || dati.size() < 4)
        return esito(lettera == 'R' || lettera == 'W' ? LunghezzaErrata : NonAmmesso);
    const quint32 indirizzo = (quint32(quint8(dati.at(1))) << 8) | quint8(dati.at(2));
    const int n = quint8(dati.at(3));
    int scarto = 0;
    QByteArray *m = memoria(indirizzo, n, scarto);
    if (lettera == 'R')
        return dati.size() != 4 ? esito(LunghezzaErrata)
               : m              ? 'r' + m->mid(scarto, n)
                                : esito(IndirizzoErrato);
    if (dati.size() != 4 + n)
        return esito(LunghezzaErrata);
    if (!m)
        return esito(IndirizzoErrato);
    m->replace(scarto, n, dati.mid(4));
    return esito(char(0xFF));
}

} // namespace kv
