#include "calibration/TaraturaStriscia.h"

#include "calibration/SequenzaTaratura.h"
#include "monitoring/Canali.h"
#include "monitoring/ScalaGrafici.h"
#include "variables/Catalogo.h"
#include "variables/Formato.h"

namespace kv {

namespace {

// Status codes of the two steps.
enum : int {
    LambdaFineSingola = 29,
    LambdaFine = 204,
    LambdaIstruzione = 206,
    LambdaUltimo = 207,
    TpsFine = 206,
    TpsMemorizzato = 207,
    TpsPrimoSingola = 218,
    TpsMassimo = 219,
    TpsPremi = 220,
    TpsMinimo = 221,
    TpsAttesaSingola = 222,
    TpsAttesa = 223,
};

} // namespace

TaraturaStriscia::TaraturaStriscia(SequenzaTaratura &sequenza, IdPagina id, VistaStriscia &vista,
                                   QObject *parent)
    : LogicaTaratura(sequenza, id, vista, parent)
    , m_vistaStriscia(vista)
{}

void TaraturaStriscia::caricaTesti()
{
    m_sequenza.AzzeraDatiLive();
    m_minimoX = 0;
    m_massimoX = LarghezzaFinestra;
    m_vistaStriscia.impostaAsseX(m_minimoX, m_massimoX);
}

QString TaraturaStriscia::formatta(const RecordDati &attuale, int canale) const
{
    return FormattaNumero(attuale.Valore[static_cast<size_t>(canale)],
                          m_sequenza.canali().Canali[static_cast<size_t>(canale)].Formato);
}

double TaraturaStriscia::avanzaCampione()
{
    const qint32 progressivo = m_sequenza.avanzaCampione();
    if (SaltoFisso(progressivo, Salto, m_minimoX, m_massimoX))
        m_vistaStriscia.impostaAsseX(m_minimoX, m_massimoX);
    return progressivo;
}

void TaraturaStriscia::cursore(int indice, double x, double y)
{
    Cursore &c = m_cursori[static_cast<size_t>(indice)];
    c.x = x;
    c.y = y;
    m_vistaStriscia.impostaCursore(indice, x, y);
    if (!c.visibile) {
        c.visibile = true;
        m_vistaStriscia.mostraCursore(indice);
    }
}

void TaraturaStriscia::frame(int statoEcu, const RecordDati &attuale)
{
    VistaStriscia &v = m_vistaStriscia;
    const bool cambiato = statoEcu != m_sequenza.recordPrecedente().Valore[Canale::FlagPa];
    if (fase() == FaseTaratura::Tps) {
        v.mostraDato(0, formatta(attuale, Canale::Giri));
        v.mostraDato(1, formatta(attuale, Canale::Tps));
        const double x = avanzaCampione();
        v.aggiungiPunto(0, x, attuale.Valore[Canale::Tps]);
        statoTps(statoEcu, cambiato, x, attuale);
        return;
    }
    v.mostraDato(0, formatta(attuale, Canale::Giri));
    v.mostraDato(1, formatta(attuale, Canale::Lambda));
    v.mostraDato(2, formatta(attuale, Canale::ActPos));
    const int sonda = attuale.Valore[Canale::TipoLambda] == 1 ? 1 : 0;
    v.selezionaSonda(sonda);
    // Nothing ever makes an option active again: a probe once seen stays ruled out.
    v.disattivaSonda(1 - sonda);
    const double x = avanzaCampione();
    v.aggiungiPunto(0, x, attuale.Valore[Canale::Lambda]);
    v.aggiungiPunto(1, x, attuale.Valore[Canale::ActPos]);
    statoLambda(statoEcu, cambiato);
}

void TaraturaStriscia::statoTps(int statoEcu, bool cambiato, double x, const RecordDati &attuale)
{
    const double tps = attuale.Valore[Canale::Tps];
    // The sequence's page acts on a code once, when it comes; the single page on every frame.
    const bool agisci = cambiato || singola();
    if (!singola() && (statoEcu < TpsFine || statoEcu > TpsAttesa)) {
        m_sequenza.ChiudiPagineTaratura();
        return;
    }
    if (singola() && (statoEcu < TpsPrimoSingola || statoEcu > TpsAttesa))
        return;
    switch (statoEcu) {
    case TpsAttesaSingola:
        if (!singola())
            break;
        [[fallthrough]];
    case TpsAttesa:
        if (cambiato)
            m_vista.mostraIstruzione(testo(QStringLiteral("MSG_TPS.0")));
        break;
    case TpsMinimo:
        if (agisci) {
            cursore(0, x, tps);
            m_vistaStriscia.mostraDato(2, formatta(attuale, Canale::Tps));
        }
        break;
    case TpsPremi:
        if (agisci)
            m_vista.mostraIstruzione(testo(QStringLiteral("MSG_TPS.1")));
        break;
    case TpsMassimo:
        // The maximum only rises.
        if (!cursoreVisibile(1) || tps > yCursore(1)) {
            cursore(1, x, tps);
            m_vistaStriscia.mostraDato(3, formatta(attuale, Canale::Tps));
        }
        break;
    case TpsFine:
    case TpsMemorizzato:
        // Both ends learnt: the pedal goes back to rest while the next step comes.
        m_vista.mostraIstruzione(testo(QStringLiteral("MSG_TPS.2")));
        m_sequenza.passoSuccessivo(*this, FaseTaratura::Lambda);
        break;
    case TpsPrimoSingola:
        // Alone, the ECU waits here once both ends are learnt, until the fitter leaves.
        if (singola() && cursoreVisibile(1))
            m_vista.mostraIstruzione(testo(QStringLiteral("MSG_TPS.2")));
        break;
    default:
        break;
    }
}

void TaraturaStriscia::statoLambda(int statoEcu, bool cambiato)
{
    if (!singola()) {
        if (statoEcu < LambdaFine || statoEcu > LambdaUltimo) {
            m_sequenza.ChiudiPagineTaratura();
            return;
        }
        if (statoEcu == LambdaIstruzione && cambiato)
            m_vista.mostraIstruzione(testo(QStringLiteral("MSG_LAMBDA.0")));
        else if (statoEcu == LambdaFine)
            m_sequenza.passoSuccessivo(*this, FaseTaratura::Parametri);
        return;
    }
    if (statoEcu == LambdaIstruzione) {
        m_vista.mostraIstruzione(testo(QStringLiteral("MSG_LAMBDA.0")));
    } else if (statoEcu == LambdaFine || statoEcu == LambdaFineSingola) {
        // Asked again with each such frame until the fitter answers OK.
        chiudiDopoAvviso(Segnalazione("SEGNALAZIONE_58"));
    }
}

} // namespace kv
