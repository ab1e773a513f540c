#include "pages/LetturaStrumenti.h"

#include "link/Frame.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/ModelloStrumenti.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

namespace kv {

LetturaStrumenti::LetturaStrumenti(MotoreDialogo &motore, Catalogo &catalogo, AnelloRegistrazione &anello,
                                   QObject *parent)
    : QObject(parent)
    , m_motore(motore)
    , m_catalogo(catalogo)
    , m_anello(anello)
{
    m_motore.registra(Stato, this);
}

LetturaStrumenti::~LetturaStrumenti()
{
    m_motore.rimuovi(this);
}

bool LetturaStrumenti::carica()
{
    m_anello.azzera();
    m_anello.RegistrazioneAttiva = true;
    m_motore.svuotaCoda();
    for (int passo = 0; passo < ModelloStrumenti::Passi; ++passo) {
        const int p = ModelloStrumenti::parametro(passo);
        m_catalogo.azzeraValori(p);
        const Parametro &par = m_catalogo.Parametri[static_cast<size_t>(p)];
        m_motore.accoda('R' + ParolaInByte(static_cast<quint32>(par.IndirizzoRAM)) + char(par.Dimensione));
    }
    if (!m_motore.PortOpen())
        return false;
    return m_motore.avvia(Stato, MotoreDialogo::IntervalloLettura);
}

void LetturaStrumenti::chiudi()
{
    m_anello.chiudiFinestra();
    m_anello.RegistrazioneAttiva = false;
}

bool LetturaStrumenti::inLettura() const
{
    return m_motore.StatoDialogo() == Stato;
}

void LetturaStrumenti::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (stato != Stato)
        return;
    if (lettera == 'e') {
        emit letturaFinita(false); // a refusal ends the reads; the engine frees the link
        return;
    }
    if (lettera != 'r')
        return;
    const int passo = m_motore.PassoDialogo();
    const int p = ModelloStrumenti::parametro(passo);
    if (p >= 0) {
        const int dimensione = m_catalogo.Parametri[static_cast<size_t>(p)].Dimensione;
        m_catalogo.registraLettura(p, m_catalogo.daGrezzo(p, NumeroBE(payload.mid(1, dimensione))));
        emit valoreLetto(passo);
    }
    if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso)
        emit letturaFinita(true);
}

void LetturaStrumenti::scadenza(int)
{
    emit letturaFinita(false);
}

} // namespace kv
