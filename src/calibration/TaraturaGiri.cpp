#include "calibration/TaraturaGiri.h"

#include "calibration/SequenzaTaratura.h"
#include "link/Frame.h"
#include "monitoring/Canali.h"
#include "pages/DialogoPagina.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"
#include "variables/Formato.h"

namespace kv {

namespace {

// The six speed thresholds a confirmation puts back, whatever they held.
constexpr std::pair<int, int> SoglieFisse[] = {
    {Par::SogliaGiriEntrataMinimo, 1100}, {Par::SogliaGiriUscitaMinimo, 1200},
    {Par::SogliaGiriEntrataCutOff, 2000}, {Par::SogliaGiriUscitaCutOff, 1800},
    {Par::SogliaGiriEntrataPC, 2000},     {Par::SogliaGiriUscitaPC, 1800},
};

QByteArray scritturaRam(const Parametro &p, double valore)
{
    return 'W' + ParolaInByte(static_cast<quint32>(p.IndirizzoRAM)) + char(p.Dimensione)
           + ByteBE(valore, p.Dimensione);
}

} // namespace

TaraturaGiri::TaraturaGiri(SequenzaTaratura &sequenza, bool singola, VistaGiri &vista, QObject *parent)
    : LogicaTaratura(sequenza, singola ? IdPagina::T_Giri_Single : IdPagina::T_Giri, vista, parent)
    , m_vistaGiri(vista)
{}

QList<QByteArray> TaraturaGiri::ScrittureConferma(double costanteGiri)
{
    const Catalogo c;
    QList<QByteArray> frame{scritturaRam(c.Parametri[Par::CostanteGiri], costanteGiri)};
    for (const auto &[parametro, valore] : SoglieFisse)
        frame.append(scritturaRam(c.Parametri[static_cast<size_t>(parametro)], valore));
    return frame;
}

void TaraturaGiri::caricaTesti()
{
    m_giriTeoInserito = false;
    m_giriTeoDigitato = false;
    m_vistaGiri.mostraBoxGiri(false);
    m_vistaGiri.abilitaConferma(singola());
    m_vistaGiri.abilitaAvanti(false);
    if (singola())
        m_vista.mostraSegnalazione1(Segnalazione("SEGNALAZIONE_1"));
}

QString TaraturaGiri::formattaGiri(double giri) const
{
    return FormattaNumero(giri, m_sequenza.canali().Canali[Canale::Giri].Formato);
}

void TaraturaGiri::mostraGiri(const RecordDati &attuale)
{
    m_giriReali = formattaGiri(attuale.Valore[Canale::Giri]);
    m_vistaGiri.mostraGiriReali(m_giriReali);
    if (!m_giriTeoInserito && m_vistaGiri.giriTeoAttivo())
        m_vistaGiri.mostraGiriTeo(m_giriReali);
}

void TaraturaGiri::frame(int statoEcu, const RecordDati &attuale)
{
    if (singola()) {
        // The single page has no wait on 239: the engine turning is all it needs.
        if (motore().StatoDialogo() != -1 || statoEcu != StatoMotoreVisto)
            return;
        mostraGiri(attuale);
        m_vista.mostraIstruzione(testo(QStringLiteral("SEGNALAZIONE.1")));
        m_vistaGiri.mostraBoxGiri(true);
        return;
    }
    mostraGiri(attuale);
    if (statoEcu == StatoAttesaMotore && m_sequenza.avanzaPasso(0, 1)) {
        m_vista.mostraIstruzione(testo(QStringLiteral("SEGNALAZIONE.0")));
        m_vistaGiri.mostraBoxGiri(false);
    }
    if (statoEcu == StatoMotoreVisto && m_sequenza.avanzaPasso(1, 2)) {
        m_vistaGiri.abilitaConferma(true);
        m_vista.mostraIstruzione(testo(QStringLiteral("SEGNALAZIONE.1")));
        m_vistaGiri.mostraBoxGiri(true);
    }
}

std::optional<QString> TaraturaGiri::uscitaGiriTeo(const QString &testo)
{
    if (!TestoNumerico(testo))
        return std::nullopt;
    m_giriTeoInserito = true;
    if (!singola()) {
        m_vistaGiri.abilitaConferma(true);
        m_vistaGiri.fuocoConferma();
    }
    return formattaGiri(ValNumero(testo));
}

void TaraturaGiri::Conferma(const QString &giriTeo)
{
    if (!m_giriTeoDigitato) {
        m_vista.mostraSegnalazione1(testo(QStringLiteral("SEGNALAZIONE.2")));
        m_vistaGiri.giriTeoNonValido();
        return;
    }
    if (!TestoNumerico(giriTeo)) {
        m_vistaGiri.giriTeoNonValido();
        return;
    }
    if (singola())
        m_giriTeoInserito = true;
    const double reali = ValNumero(m_giriReali);
    ValoreParametro &costante = m_sequenza.catalogo().Valori[Par::CostanteGiri];
    // An engine that stands still, or a coefficient never read, gives nothing to correct.
    if (!(reali > 0) || costante.Corrente < 0)
        return;
    costante.Corrente = costante.Corrente * (ValNumero(giriTeo) / reali);

    MotoreDialogo &m = motore();
    m.svuotaCoda();
    for (const QByteArray &f : ScrittureConferma(costante.Corrente))
        m.accoda(f);
    if (!singola()) {
        m_vistaGiri.abilitaConferma(false);
        m_vistaGiri.abilitaAvanti(true);
    }
    if (!m.PortOpen())
        return;
    m_vista.mostraSegnalazione1(Segnalazione("SEGNALAZIONE_4"));
    m_vista.abilitaPagina(false);
    if (!m.avvia(singola() ? StatoScritturaSingola : StatoScrittura, MotoreDialogo::IntervalloLettura))
        m_vista.abilitaPagina(true);
}

void TaraturaGiri::AvantiTar()
{
    if (singola() || m_sequenza.ultimoRecord().Valore[Canale::FlagPa] != StatoMotoreVisto)
        return;
    if (!inviaComando(1, statoUscita(), MotoreDialogo::IntervalloLettura))
        m_sequenza.ChiudiPagineTaratura();
}

void TaraturaGiri::EsciTar()
{
    if (singola()) {
        LogicaTaratura::EsciTar();
        return;
    }
    if (m_sequenza.domanda(Segnalazione("SEGNALAZIONE_54"), SequenzaTaratura::FlagDomanda)
            != SequenzaTaratura::RispostaSi
        || !collegata())
        return;
    m_sequenza.abbandonaSequenza();
    if (!inviaComando(1, statoUscita(), MotoreDialogo::IntervalloLettura))
        m_sequenza.ChiudiPagineTaratura();
}

bool TaraturaGiri::rispostaPropria(char lettera, int statoDialogo, const QByteArray &payload)
{
    MotoreDialogo &m = motore();
    switch (statoDialogo) {
    case 131:
    case 331: {
        const Parametro &p = m_sequenza.catalogo().Parametri[Par::CostanteGiri];
        m.svuotaCoda();
        m.accoda('R' + ParolaInByte(static_cast<quint32>(p.IndirizzoRAM)) + char(p.Dimensione));
        (void)m.passaA(singola() ? StatoLetturaSingola : StatoLettura);
        return true;
    }
    case StatoLettura:
    case StatoLetturaSingola: {
        if (lettera != 'r')
            return true;
        Catalogo &c = m_sequenza.catalogo();
        const int dimensione = c.Parametri[Par::CostanteGiri].Dimensione;
        c.registraLettura(Par::CostanteGiri,
                          c.daGrezzo(Par::CostanteGiri, NumeroBE(payload.mid(1, dimensione))));
        if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
            fineLettura();
        return true;
    }
    case StatoScrittura:
    case StatoScritturaSingola:
        if (m.prosegui() != MotoreDialogo::Seguito::Concluso)
            return true;
        m_vista.mostraSegnalazione1(statoDialogo == StatoScrittura ? Segnalazione("SEGNALAZIONE_55")
                                                                   : Messaggio());
        m_vista.abilitaPagina(true);
        return true;
    default:
        return false;
    }
}

void TaraturaGiri::fineLettura()
{
    // The instruction the ECU may have given meanwhile stays in view. Alone, the page asks
    // for the engine until the ECU sees it turn: it has no wait of its own for that.
    if (singola())
        m_vista.mostraIstruzione(testo(QStringLiteral("SEGNALAZIONE.0")));
    else if (m_sequenza.PassoTaratura() <= 0)
        m_vista.mostraIstruzione({});
    m_vista.abilitaPagina(true);
    m_sequenza.AzzeraDatiLive();
    m_vista.mostraSegnalazione1({});
}

void TaraturaGiri::fineComando(int statoDialogo)
{
    if (statoDialogo != statoUscita())
        return;
    if (!singola()) {
        if (m_sequenza.TaraturaCompleta()) {
            m_sequenza.passaAFase(FaseTaratura::Tps);
            m_sequenza.chiudiPagina(id(), true);
        } else {
            // The fitter chose to leave: the pages go, and the ECU back to its entry point.
            m_sequenza.ChiudiPagineTaratura();
            m_sequenza.inviaUscita();
        }
        return;
    }
    if (!m_giriTeoInserito) {
        m_sequenza.ChiudiPagineTaratura();
        return;
    }
    chiudiDopoAvviso(Segnalazione("SEGNALAZIONE_60"));
}

} // namespace kv
