#include "calibration/LogicaTaratura.h"

#include "calibration/SequenzaTaratura.h"
#include "link/TabellaStati.h"
#include "monitoring/Canali.h"
#include "variables/Catalogo.h"

namespace kv {

namespace {

// What tells the six pages apart besides their fields.
struct DatiPagina
{
    IdPagina id;
    const char *sezione;
    FaseTaratura fase;
    bool singola;
    int codice;      // 'A' code sent on opening, -1 none
    int primoStato;  // its state
    int statoUscita; // state of the 'A' 1 that leaves
};

constexpr DatiPagina Pagine[] = {
    {IdPagina::T_Giri, "T_Giri", FaseTaratura::Giri, false, 0, 131, 132},
    {IdPagina::T_Giri_Single, "T_Giri_Single", FaseTaratura::Giri, true, 3, 331, 334},
    {IdPagina::T_TPS, "T_TPS", FaseTaratura::Tps, false, -1, -1, -1},
    {IdPagina::T_TPS_Single, "T_TPS_Single", FaseTaratura::Tps, true, 4, 341, 342},
    {IdPagina::T_Lambda, "T_Lambda", FaseTaratura::Lambda, false, -1, -1, -1},
    {IdPagina::T_Lambda_Single, "T_Lambda_Single", FaseTaratura::Lambda, true, 5, 351, 352},
};

const DatiPagina &datiPagina(IdPagina id)
{
    for (const DatiPagina &d : Pagine)
        if (d.id == id)
            return d;
    return Pagine[0];
}

constexpr int IntervalloComando = 5000;
// The ECU may store what it has learnt before it answers the 'A' 1 of a single page.
constexpr int IntervalloUscitaSingola = 30000;

} // namespace

LogicaTaratura::LogicaTaratura(SequenzaTaratura &sequenza, IdPagina id, VistaTaratura &vista, QObject *parent)
    : QObject(parent)
    , m_sequenza(sequenza)
    , m_vista(vista)
    , m_id(id)
{
    if (primoStato() > 0)
        motore().registra(primoStato(), this);
    m_sequenza.collega(this);
}

LogicaTaratura::~LogicaTaratura()
{
    chiusa();
}

void LogicaTaratura::chiusa()
{
    if (!m_collegata)
        return;
    m_collegata = false;
    motore().rimuovi(this);
    m_sequenza.scollega(this);
}

bool LogicaTaratura::singola() const
{
    return datiPagina(m_id).singola;
}

FaseTaratura LogicaTaratura::fase() const
{
    return datiPagina(m_id).fase;
}

QString LogicaTaratura::sezione() const
{
    return QString::fromLatin1(datiPagina(m_id).sezione);
}

char LogicaTaratura::rispostaAttesa(int stato) const
{
    return primoStato() > 0 && TabellaStati::gruppo(stato) == TabellaStati::gruppo(primoStato()) ? 'e' : 0;
}

int LogicaTaratura::primoStato() const
{
    return datiPagina(m_id).primoStato;
}

int LogicaTaratura::codiceApertura() const
{
    return datiPagina(m_id).codice;
}

int LogicaTaratura::statoUscita() const
{
    return datiPagina(m_id).statoUscita;
}

MotoreDialogo &LogicaTaratura::motore() const
{
    return m_sequenza.motore();
}

Messaggio LogicaTaratura::testo(const QString &chiave) const
{
    return {sezione(), chiave};
}

void LogicaTaratura::carica()
{
    m_vista.mostraTitolo(m_sequenza.TaraturaCompleta() ? SequenzaTaratura::ComponiPasso(
                             testo(QStringLiteral("CAPTION.1")), int(m_sequenza.TaraturaInCorso()))
                                                       : testo(QStringLiteral("CAPTION.0")));
    caricaTesti();
    if (singola())
        m_sequenza.entraInFase(fase());
    if (codiceApertura() >= 0)
        inviaComando(codiceApertura(), primoStato(), IntervalloComando);
}

bool LogicaTaratura::inviaComando(int codice, int statoDialogo, int intervallo)
{
    MotoreDialogo &m = motore();
    m.svuotaCoda();
    m.accoda(QByteArray(1, 'A') + char(codice));
    if (!m.PortOpen())
        return false;
    m_vista.abilitaPagina(false);
    if (m.avvia(statoDialogo, intervallo))
        return true;
    m_vista.abilitaPagina(true);
    return false;
}

void LogicaTaratura::EsciTar()
{
    if (singola()) {
        // Nobody to tell with the port closed: the page just goes.
        if (!inviaComando(1, statoUscita(), IntervalloUscitaSingola))
            m_sequenza.ChiudiPagineTaratura();
        return;
    }
    const int risposta = m_sequenza.domanda(Segnalazione("SEGNALAZIONE_54"), SequenzaTaratura::FlagDomanda);
    if (risposta != SequenzaTaratura::RispostaSi || !m_collegata)
        return;
    // The pages go at once; the ECU's way back to its entry point is heard by the sequence.
    m_sequenza.inviaUscita();
    m_sequenza.ChiudiPagineTaratura();
}

void LogicaTaratura::Esci()
{
    if (m_sequenza.domanda(Segnalazione("SEGNALAZIONE_56"), SequenzaTaratura::FlagInformazione)
            == SequenzaTaratura::RispostaOk
        && m_collegata)
        m_sequenza.ChiudiPagineTaratura();
}

void LogicaTaratura::risposta(char lettera, int statoDialogo, const QByteArray &payload)
{
    if (lettera == 'e' && (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF)) {
        m_vista.mostraSegnalazione1(ErroreEcu(payload));
        m_vista.abilitaPagina(true);
        return;
    }
    if (rispostaPropria(lettera, statoDialogo, payload))
        return;
    if (motore().prosegui() != MotoreDialogo::Seguito::Concluso)
        return;
    m_vista.mostraSegnalazione1({});
    m_vista.abilitaPagina(true);
    fineComando(statoDialogo);
}

void LogicaTaratura::fineComando(int statoDialogo)
{
    if (statoDialogo == statoUscita())
        chiudiDopoAvviso(Segnalazione("SEGNALAZIONE_56"));
}

void LogicaTaratura::chiudiDopoAvviso(const Messaggio &testo)
{
    m_sequenza.avvisoDifferito(testo, SequenzaTaratura::FlagInformazione, this, [this](int risposta) {
        if (risposta == SequenzaTaratura::RispostaOk)
            m_sequenza.ChiudiPagineTaratura();
    });
}

bool LogicaTaratura::rispostaPropria(char lettera, int statoDialogo, const QByteArray &payload)
{
    Q_UNUSED(lettera);
    Q_UNUSED(statoDialogo);
    Q_UNUSED(payload);
    return false;
}

void LogicaTaratura::scadenza(int statoDialogo)
{
    Q_UNUSED(statoDialogo);
    m_vista.mostraSegnalazione1(Segnalazione("SEGNALAZIONE_2"));
    m_vista.abilitaPagina(true);
    if (singola())
        m_vista.uscitaEmergenza();
}

} // namespace kv
