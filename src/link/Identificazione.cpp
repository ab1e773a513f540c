#include "link/Identificazione.h"

#include "link/Frame.h"
#include "link/StatoEcu.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

namespace kv {

namespace {

struct Lettura
{
    int indice;
    bool daEeprom;
};

// Order matters: the TPS flag is computed once both calibration points are in.
constexpr Lettura Letture[] = {
    {Par::TpsTaratoMassimo, true},
    {Par::TpsTaratoMinimo, true},
    {Par::TipoTps, false},
    {Par::TpsAutoadattante, false},
};

QString campo(const QByteArray &payload, int da, int larghezza)
{
    // One byte, one character, in the ECU's 8-bit set; a short reply gives what it has.
    return QString::fromLatin1(payload.mid(da - 1, larghezza));
}

} // namespace

Identificazione::Identificazione(StatoEcu &ecu, Catalogo &catalogo, MotoreDialogo &motore, QObject *parent)
    : QObject(parent)
    , m_ecu(ecu)
    , m_catalogo(catalogo)
    , m_motore(motore)
{
    m_motore.registra(StatoVersione, this);
}

Identificazione::~Identificazione()
{
    m_motore.rimuovi(this);
}

void Identificazione::avvia()
{
    if (m_motore.StatoDialogo() != -1)
        return;
    m_ecu.EcuNormale = true;
    emit aggiornaMenu();

    m_motore.svuotaCoda();
    m_motore.accoda("V");
    for (const Lettura &l : Letture) {
        const Parametro &p = m_catalogo.Parametri[static_cast<size_t>(l.indice)];
        const auto indirizzo = static_cast<quint32>(l.daEeprom ? p.IndirizzoEE : p.IndirizzoRAM);
        m_motore.accoda('R' + ParolaInByte(indirizzo) + char(p.Dimensione));
    }
    if (!m_motore.PortOpen())
        return;
    emit frameAbilitato(false);
    if (!m_motore.avvia(StatoVersione, MotoreDialogo::IntervalloLettura))
        emit frameAbilitato(true);
}

void Identificazione::RispostaVita()
{
    m_ecu.EcuNormale = false;
}

void Identificazione::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (lettera == 'v' && stato == StatoVersione)
        RispostaVersione(payload);
    else if (lettera == 'r' && stato == StatoLetture)
        rispostaLettura(payload);
    else if (lettera == 'e')
        fine(false); // refused: the engine frees the link, the next live frame tries again
}

void Identificazione::scadenza(int)
{
    // The ECU stays unknown, so the next live frame starts all over.
    emit frameAbilitato(true);
}

void Identificazione::RispostaVersione(const QByteArray &payload)
{
    m_ecu.InfVeicolo = campo(payload, 2, 10);
    m_ecu.InfData = campo(payload, 12, 10);
    m_ecu.InfCodice = campo(payload, 22, 14);
    m_ecu.InfDatoA = campo(payload, 36, 10);
    m_ecu.InfDatoB = campo(payload, 46, 4);

    if (m_motore.passaA(StatoLetture) == MotoreDialogo::Seguito::Concluso)
        fine(true);
}

void Identificazione::rispostaLettura(const QByteArray &payload)
{
    const int passo = m_motore.PassoDialogo();
    if (passo >= 0 && passo < static_cast<int>(std::size(Letture))) {
        const int indice = Letture[passo].indice;
        Parametro &p = m_catalogo.Parametri[static_cast<size_t>(indice)];
        const double grezzo = NumeroBE(payload.mid(1, p.Dimensione));
        switch (indice) {
        case Par::TpsTaratoMassimo:
            p.Max = m_catalogo.daGrezzo(indice, grezzo);
            break;
        case Par::TpsTaratoMinimo:
            p.Min = m_catalogo.daGrezzo(indice, grezzo);
            m_ecu.TpsPresente = TpsPresenteDa(m_catalogo.Parametri[Par::TpsTaratoMassimo].Max, p.Min);
            break;
        case Par::TipoTps:
            m_ecu.TipoTpsPresente = grezzo != 0;
            break;
        case Par::TpsAutoadattante:
            m_ecu.TpsAutoPresente = grezzo != 0;
            break;
        }
    }
    if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso)
        fine(true);
}

void Identificazione::fine(bool completata)
{
    emit frameAbilitato(true);
    if (completata) {
        m_ecu.EcuDaIdentificare = false;
        emit identificata();
    }
}

} // namespace kv
