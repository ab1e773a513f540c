#include "calibration/TaraturaParametri.h"

#include "calibration/SequenzaTaratura.h"
#include "monitoring/Canali.h"
#include "pages/DialogoPagina.h"
#include "variables/Catalogo.h"

#include <utility>

namespace kv {

namespace {

using namespace Par;

// BaseEmulazione comes on the ECU's 0..1023 scale and spans 80 points of the percentage,
// which starts at 10.
constexpr double ScalaBase = 80.0 / 1023.0;
constexpr double FondoScala = 10;

DescrizionePagina costruisci()
{
    DescrizionePagina d;
    d.id = IdPagina::T_Parametri;
    d.sezione = QStringLiteral("T_Parametri");
    d.primoStato = 211;
    d.gruppoCondiviso = true;
    // The ECU's own copy of the emulation value is its EEPROM one.
    d.piano = {rigaValore(BaseEmulazione),
               rigaValore(ValoreEmulazione, true),
               rigaValore(TipoTps),
               rigaValore(TpsAutoadattante),
               rigaValore(TempoDisabilitazioneControllo, true),
               rigaValore(TempoAnomaliaLambda, true)};
    // The percentage has no home in the ECU: it goes out as the value worked out from it.
    d.voci = {PercentualeEmulazione,         ValoreEmulazione,   TipoTps, TpsAutoadattante,
              TempoDisabilitazioneControllo, TempoAnomaliaLambda};
    d.box = {
        {QStringLiteral("BOXEMU"), {{0, PercentualeEmulazione, {}}}},
        {QStringLiteral("BOXTPS"),
         {{3, TipoTps, QStringLiteral("TIPOTPS"), true, true},
          {4, TpsAutoadattante, QStringLiteral("TPSAUTO"), true, true}}},
        {QStringLiteral("BOXTIME"), {{1, TempoDisabilitazioneControllo, {}}, {2, TempoAnomaliaLambda, {}}}}};
    d.derivatiLettura = {{PercentualeEmulazione, ValoreEmulazione, 1, FondoScala, BaseEmulazione, ScalaBase}};
    d.derivati = {{ValoreEmulazione, PercentualeEmulazione, 1, -FondoScala, BaseEmulazione, -ScalaBase}};
    d.segnoModulo = {ValoreEmulazione};
    // A save the ECU does not answer leaves the page in use, to try again or to leave.
    d.scadenza = Scadenza::LetturaEmergenza;
    return d;
}

} // namespace

const DescrizionePagina &DescrizioneParametri()
{
    static const DescrizionePagina d = costruisci();
    return d;
}

TaraturaParametri::TaraturaParametri(SequenzaTaratura &sequenza, DialogoPagina &dialogo)
    : m_sequenza(sequenza)
    , m_dialogo(dialogo)
    , m_inSequenza(sequenza.TaraturaCompleta())
{}

Messaggio TaraturaParametri::titolo() const
{
    const QString &sezione = m_dialogo.descrizione().sezione;
    if (!m_inSequenza)
        return {sezione, QStringLiteral("CAPTION.0")};
    return SequenzaTaratura::ComponiPasso({sezione, QStringLiteral("CAPTION.1")},
                                          int(m_sequenza.TaraturaInCorso()));
}

void TaraturaParametri::EsciTar(bool validi, const QString &motivo)
{
    m_salvataggio = Salvataggio::Nessuno;
    if (!validi) {
        Messaggio domanda = Segnalazione("SEGNALAZIONE_57");
        if (!motivo.isEmpty())
            domanda.prima = motivo + QLatin1Char(' ');
        if (m_sequenza.domanda(domanda, SequenzaTaratura::FlagDomanda) == DialogoPagina::RispostaNo)
            m_sequenza.ChiudiPagineTaratura();
        return;
    }
    const int salvataggio = m_dialogo.primoStato() + 1;
    m_salvataggio = Salvataggio::InCorso;
    m_dialogo.calcolaDerivati();
    m_dialogo.ApplicaValori(0, salvataggio, true, true);
    // Nothing on its way (the port is closed): nothing to wait for.
    if (m_salvataggio == Salvataggio::InCorso && m_sequenza.motore().StatoDialogo() != salvataggio)
        m_salvataggio = Salvataggio::Riuscito;
    m_sequenza.sequenzaConclusa();
    // The frames go on behind the box.
    const int risposta =
        m_sequenza.domanda(Segnalazione("SEGNALAZIONE_56"), SequenzaTaratura::FlagInformazione);
    if (risposta != SequenzaTaratura::RispostaOk)
        m_salvataggio = Salvataggio::Nessuno;
    else if (m_salvataggio == Salvataggio::InCorso)
        m_salvataggio = Salvataggio::InCorsoChiudi;
    else if (m_salvataggio == Salvataggio::Riuscito)
        m_sequenza.ChiudiPagineTaratura();
    // Fallito: the page keeps the ECU's word, and EsciTar may be tried again.
}

void TaraturaParametri::scritturaConclusa(bool riuscita)
{
    const Salvataggio prima =
        std::exchange(m_salvataggio, riuscita ? Salvataggio::Riuscito : Salvataggio::Fallito);
    if (prima == Salvataggio::Nessuno)
        m_salvataggio = Salvataggio::Nessuno;
    else if (prima == Salvataggio::InCorsoChiudi && riuscita)
        m_sequenza.ChiudiPagineTaratura();
}

} // namespace kv
