#include "pages/DialogoPagina.h"
#include "link/ErroreEcu.h"

#include "base/Lingua.h"
#include "link/Frame.h"
#include "link/SessioneLinea.h"
#include "pages/PannelloLive.h"
#include "pages/VistaPagina.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <QRegularExpression>

#include <algorithm>

namespace kv {

namespace {

bool sogliaTps(int parametro)
{
    return parametro >= Par::SogliaTpsEntrataMinimo && parametro <= Par::SogliaTpsUscitaCutOff;
}

} // namespace

bool TestoNumerico(const QString &testo)
{
    static const QRegularExpression numero(QStringLiteral(R"(^\s*[+-]?(\d+[.,]?\d*|[.,]\d+)\s*$)"));
    return numero.match(testo).hasMatch();
}

DialogoPagina::DialogoPagina(DescrizionePagina descrizione, Catalogo &catalogo, SessioneLinea &linea,
                             bool assistenza, const Lingua &lingua, VistaPagina &vista)
    : m_descrizione(std::move(descrizione))
    , m_voci(m_descrizione.vociInUso(assistenza))
    , m_catalogo(catalogo)
    , m_motore(linea.motore())
    , m_linea(linea)
    , m_lingua(lingua)
    , m_vista(vista)
{
    m_motore.registra(m_descrizione.primoStato, this);
}

DialogoPagina::~DialogoPagina()
{
    m_motore.rimuovi(this);
}

bool DialogoPagina::avviaLettura()
{
    for (int p : m_descrizione.voci)
        m_catalogo.azzeraValori(p);
    m_catalogo.azzeraValori(Par::ScalaLambda);
    if (m_descrizione.piano.empty())
        return false;

    m_motore.svuotaCoda();
    for (const RigaLettura &riga : m_descrizione.piano)
        m_motore.accoda(RichiestaLettura(m_catalogo, riga));
    if (!m_motore.PortOpen())
        return false;
    m_vista.mostraSegnalazione(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_1"));
    m_vista.abilitaPagina(false);
    return m_motore.avvia(m_descrizione.primoStato, MotoreDialogo::IntervalloLettura);
}

void DialogoPagina::ApplicaValori(int origine, int stato, bool ram, bool eeprom)
{
    m_motore.svuotaCoda();
    for (int p : m_voci) {
        const Parametro &par = m_catalogo.Parametri[static_cast<size_t>(p)];
        const ValoreParametro &v = m_catalogo.Valori[static_cast<size_t>(p)];
        const double grezzo = aGrezzo(p, origine == 0 ? v.Corrente : v.Letto);
        const QByteArray dati = char(par.Dimensione) + ByteBE(grezzo, par.Dimensione);
        // RAM frame and EEPROM frame of one entry side by side: a failure half-way leaves
        // the earlier entries written in both and the later ones in neither.
        if (ram && par.IndirizzoRAM != -1)
            m_motore.accoda('W' + ParolaInByte(static_cast<quint32>(par.IndirizzoRAM)) + dati);
        if (eeprom && par.IndirizzoEE != -1)
            m_motore.accoda('W' + ParolaInByte(static_cast<quint32>(par.IndirizzoEE)) + dati);
    }
    if (!m_motore.PortOpen())
        return;
    if (m_motore.CodaTx().isEmpty()) {
        // Nothing the asked memory can take (an EEPROM-only page saved to RAM): the save
        // is over before it began, and leaving still leaves.
        fineScrittura(stato);
        return;
    }
    m_vista.mostraSegnalazione(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_4"));
    m_vista.abilitaPagina(false);
    if (!m_motore.avvia(stato, MotoreDialogo::IntervalloLettura))
        m_vista.abilitaPagina(true);
}

bool DialogoPagina::ControlloCambiamenti() const
{
    for (int p : m_voci) {
        const ValoreParametro &v = m_catalogo.Valori[static_cast<size_t>(p)];
        if (v.Corrente != v.Letto)
            return true;
    }
    return false;
}

bool DialogoPagina::valoreValido(int parametro, const QString &testo) const
{
    if (!Catalogo::indiceValido(parametro) || !TestoNumerico(testo))
        return false;
    const double v = ValNumero(testo);
    const Parametro &p = m_catalogo.Parametri[static_cast<size_t>(parametro)];
    return v >= p.Min && v <= p.Max;
}

QString DialogoPagina::motivoRespinto(int parametro, const QString &nome, const QString &testo) const
{
    if (!Catalogo::indiceValido(parametro) || valoreValido(parametro, testo))
        return {};
    QString motivo = TestoNumerico(testo) ? m_lingua.LeggiTesto("MESSAPUNTO", "FUORI_LIMITI")
                                          : m_lingua.LeggiTesto("MESSAPUNTO", "NON_NUMERO");
    // The caption last: whatever it holds is not taken for a mark.
    motivo.replace(QLatin1String("ZZZ"), m_catalogo.suggerimentoIntervallo(parametro));
    motivo.replace(QLatin1String("YYY"), testo.trimmed());
    return motivo.replace(QLatin1String("XXX"), nome.trimmed());
}

void DialogoPagina::valoreModificato(int parametro, double valore)
{
    aggiornaLimiti(parametro, valore, Occasione::Modifica);
}

void DialogoPagina::impostaCorrente(int parametro, double valore)
{
    if (Catalogo::indiceValido(parametro))
        m_catalogo.Valori[static_cast<size_t>(parametro)].Corrente = valore;
}

namespace {

double deriva(const Derivato &d, const Catalogo &c, double ValoreParametro::*campo)
{
    const auto valore = [&](int p) { return c.Valori[static_cast<size_t>(p)].*campo; };
    double v = valore(d.sorgente) * d.fattore + d.scarto;
    if (d.altra >= 0)
        v += valore(d.altra) * d.fattoreAltra;
    return v;
}

} // namespace

void DialogoPagina::calcolaDerivati()
{
    for (const Derivato &d : m_descrizione.derivati)
        m_catalogo.Valori[static_cast<size_t>(d.bersaglio)].Corrente =
            deriva(d, m_catalogo, &ValoreParametro::Corrente);
}

void DialogoPagina::Applica()
{
    calcolaDerivati();
    ApplicaValori(0, primoStato() + 1, true, false);
}

void DialogoPagina::Memorizza()
{
    for (int p : m_voci) {
        ValoreParametro &v = m_catalogo.Valori[static_cast<size_t>(p)];
        v.Memorizzato = v.Corrente;
    }
}

void DialogoPagina::Ripristina()
{
    for (int p : m_voci) {
        ValoreParametro &v = m_catalogo.Valori[static_cast<size_t>(p)];
        v.Corrente = v.Memorizzato;
        m_vista.mostraValore(p, v.Corrente);
        aggiornaLimiti(p, v.Corrente, Occasione::Modifica);
    }
    ApplicaValori(0, primoStato() + 1, true, false);
}

bool DialogoPagina::Esci()
{
    if (ControlloCambiamenti())
        return true;
    m_vista.chiudiPagina();
    return false;
}

void DialogoPagina::RispostaEsci(int risposta)
{
    if (risposta == RispostaSi)
        ApplicaValori(0, primoStato() + 2, true, true);
    else if (risposta == RispostaNo)
        ApplicaValori(1, primoStato() + 2, true, false);
}

void DialogoPagina::EsciOut()
{
    m_vista.chiudiPagina();
}

void DialogoPagina::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (lettera == 'e' && (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF)) {
        erroreEcu(stato, payload);
        return;
    }
    if (lettera == 'r' && stato == primoStato())
        rispostaLettura(payload);
    else if (lettera == 'e' && (stato == primoStato() + 1 || stato == primoStato() + 2))
        rispostaScrittura(stato);
}

char DialogoPagina::rispostaAttesa(int stato) const
{
    return m_descrizione.rispostaAttesa(stato);
}

void DialogoPagina::scadenza(int stato)
{
    // Left as it is, disabled: it can only be left.
    if (m_descrizione.scadenza == Scadenza::Muta)
        return;
    m_vista.abilitaPagina(true);
    const bool lettura = stato == primoStato();
    const bool soloMessaggio = m_descrizione.scadenza == Scadenza::SoloMessaggio
                               || (m_descrizione.scadenza == Scadenza::LetturaEmergenza && !lettura);
    if (lettura || soloMessaggio)
        m_vista.mostraSegnalazione(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_2"));
    else
        m_vista.mostraSegnalazione(m_lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_5"));
    if (!soloMessaggio && (lettura || stato == primoStato() + 2))
        m_vista.uscitaEmergenza();
    if (!lettura)
        m_vista.scritturaConclusa(stato, false);
}

void DialogoPagina::erroreEcu(int stato, const QByteArray &payload)
{
    m_vista.mostraSegnalazione(TestoErroreEcu(m_lingua, payload));
    m_vista.abilitaPagina(true);
    if (stato == primoStato())
        m_vista.uscitaEmergenza();
    else
        m_vista.scritturaConclusa(stato, false);
}

void DialogoPagina::rispostaLettura(const QByteArray &payload)
{
    if (m_descrizione.zonaLavoro)
        m_vista.mostraZonaLavoro(
            TestoZona(m_lingua, m_linea.datiLive().ultimoRecord().Valore[Canale::MZonAct]));
    const int passo = m_motore.PassoDialogo();
    const auto &piano = m_descrizione.piano;
    if (passo >= 0 && passo < static_cast<int>(piano.size())) {
        gestisciRiga(piano[static_cast<size_t>(passo)], payload);
        derivaLettura(piano[static_cast<size_t>(passo)]);
    }
    if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso)
        fineLettura();
}

void DialogoPagina::gestisciRiga(const RigaLettura &riga, const QByteArray &payload)
{
    const int p = riga.parametro;
    const int dimensione = m_catalogo.Parametri[static_cast<size_t>(p)].Dimensione;
    const auto grezzo = [&] { return NumeroBE(payload.mid(1, dimensione)); };
    switch (riga.tipo) {
    case TipoRiga::Valore:
        leggiVoce(p, payload.mid(1, dimensione));
        break;
    case TipoRiga::SoloLimite: {
        const double v = m_catalogo.daGrezzo(p, grezzo());
        // The high TPS point is kept: the last row of the plan needs it for TPS presence.
        if (p == Par::TpsTaratoMassimo)
            m_catalogo.registraLettura(p, v);
        aggiornaLimiti(p, v, Occasione::Lettura);
        break;
    }
    case TipoRiga::ScalaLambda:
        m_catalogo.Valori[Par::ScalaLambda].Letto = m_catalogo.daGrezzo(p, grezzo());
        break;
    case TipoRiga::Ignorata:
        break;
    case TipoRiga::TpsMinimo: {
        const double v = m_catalogo.daGrezzo(p, grezzo());
        aggiornaLimiti(p, v, Occasione::Lettura);
        if (m_descrizione.tps()) {
            const bool presente = TpsPresenteDa(m_catalogo.Valori[Par::TpsTaratoMassimo].Letto, v);
            m_linea.tpsRiletto(presente);
            if (presente)
                m_vista.mostraRigheTps();
            else
                m_vista.nascondiRigheTps();
        }
        break;
    }
    case TipoRiga::Blocco:
    case TipoRiga::BloccoMappa:
        // Each element from its own address, wherever it lies in the bytes read.
        for (int v : VociRiga(riga))
            leggiVoce(v, payload.mid(1 + ScartoNellaRiga(m_catalogo, riga, v),
                                     m_catalogo.Parametri[static_cast<size_t>(v)].Dimensione));
        break;
    }
}

double DialogoPagina::daGrezzo(int parametro, double grezzo) const
{
    const auto &s = m_descrizione.segnoModulo;
    if (std::find(s.begin(), s.end(), parametro) != s.end())
        return SegnoModulo(grezzo);
    return m_catalogo.daGrezzo(parametro, grezzo);
}

double DialogoPagina::aGrezzo(int parametro, double valore) const
{
    const auto &s = m_descrizione.segnoModulo;
    if (std::find(s.begin(), s.end(), parametro) != s.end())
        return CodificaSegnoModulo(valore);
    if (const RigaPagina *r = m_descrizione.riga(parametro); r && r->secondaA255)
        return valore != 0 ? 255 : 0;
    return m_catalogo.aGrezzo(parametro, valore);
}

void DialogoPagina::derivaLettura(const RigaLettura &riga)
{
    const std::vector<int> letti = VociRiga(riga);
    for (const Derivato &d : m_descrizione.derivatiLettura) {
        if (std::find(letti.begin(), letti.end(), d.sorgente) == letti.end())
            continue;
        const double v = deriva(d, m_catalogo, &ValoreParametro::Letto);
        m_catalogo.registraLettura(d.bersaglio, v);
        m_vista.mostraValore(d.bersaglio, v);
        mostraSuggerimento(d.bersaglio);
    }
}

void DialogoPagina::leggiVoce(int parametro, const QByteArray &byte)
{
    const double v = daGrezzo(parametro, NumeroBE(byte));
    m_catalogo.registraLettura(parametro, v);
    m_vista.mostraValore(parametro, v);
    mostraSuggerimento(parametro);
    aggiornaLimiti(parametro, v, Occasione::Lettura);
    if (m_descrizione.tps() && sogliaTps(parametro) && m_catalogo.Valori[Par::TpsAutoadattante].Letto == 0)
        m_vista.bloccaCampoTps(parametro);
}

void DialogoPagina::aggiornaLimiti(int parametro, double valore, Occasione occasione)
{
    const QList<int> toccati = m_catalogo.aggiornaLimiti(parametro, valore, m_descrizione.pagina, occasione);
    for (int t : toccati)
        mostraSuggerimento(t);
}

void DialogoPagina::mostraSuggerimento(int parametro)
{
    m_vista.mostraSuggerimento(parametro, m_catalogo.suggerimentoIntervallo(parametro));
}

void DialogoPagina::fineLettura()
{
    m_vista.mostraSegnalazione({});
    m_vista.abilitaPagina(true);
}

void DialogoPagina::rispostaScrittura(int stato)
{
    if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso)
        fineScrittura(stato);
}

void DialogoPagina::fineScrittura(int stato)
{
    m_vista.mostraSegnalazione({});
    m_vista.abilitaPagina(true);
    m_vista.scritturaConclusa(stato, true);
    // Last: closing may take the page, and this object with it, away.
    if (stato == primoStato() + 2)
        m_vista.chiudiPagina();
}

} // namespace kv
