#include "pages/ModelloStrumenti.h"

#include "link/Frame.h"
#include "link/Temporizzatore.h"
#include "pages/PannelloLive.h"
#include "shell/Programma.h"
#include "variables/Conversioni.h"
#include "variables/Formato.h"

namespace kv {

namespace {

// The set points of the instruments: the main threshold of each working zone, the
// stepper's control steps and its reset position, and the lambda scale flag before the
// lambda thresholds that depend on it.
constexpr std::array<int, ModelloStrumenti::Passi> Parametri = {
    Par::SogliaGiriEntrataMinimo,  Par::SogliaGiriEntrataCutOff,
    Par::SogliaGiriEntrataPC,      Par::SogliaTpsEntrataMinimo,
    Par::SogliaTpsEntrataCutOff,   Par::SogliaTpsEntrataPC,
    Par::PassiControlloMinimo,     Par::PassiControlloNormale,
    Par::PosizioneMotorinoNormale, Par::ScalaLambda,
    Par::SogliaLambdaRiccoMinimo,  Par::SogliaLambdaRiccoNormale,
    Par::SogliaLambdaRiccoPC,
};

QString intero(double v)
{
    return FormattaNumero(v, QStringLiteral("#0"));
}

// Position on a 0..255 scale as a fraction of its height; -1 when it cannot be worked out.
double posizione(double v)
{
    return Interpola(v, 1.0, 0.0, 255.0, 0.0);
}

} // namespace

ModelloStrumenti::ModelloStrumenti(Programma &programma, QObject *parent)
    : QObject(parent)
    , m_programma(programma)
{
    m_programma.motore.registra(Stato, this);
}

ModelloStrumenti::~ModelloStrumenti()
{
    m_programma.motore.rimuovi(this);
}

int ModelloStrumenti::parametro(int passo)
{
    return passo >= 0 && passo < Passi ? Parametri[static_cast<size_t>(passo)] : -1;
}

bool ModelloStrumenti::carica()
{
    m_programma.anello.azzera();
    m_programma.stato.RegistrazioneAttiva = -1;
    for (int p : Parametri)
        m_programma.catalogo.azzeraValori(p);
    RecordDati &mostrato = m_programma.stato.DatiAttuali[1];
    for (int canale = 1; canale <= 11; ++canale)
        mostrato.Valore[static_cast<size_t>(canale)] = -1.0;

    MotoreDialogo &m = m_programma.motore;
    m.svuotaCoda();
    for (int p : Parametri) {
        const Parametro &par = m_programma.catalogo.Parametri[static_cast<size_t>(p)];
        m.accoda('R' + ParolaInByte(static_cast<quint32>(par.IndirizzoRAM)) + char(par.Dimensione));
    }
    if (!m.PortOpen())
        return false;
    return m.avvia(Stato, MotoreDialogo::IntervalloLettura);
}

void ModelloStrumenti::chiudi()
{
    m_programma.anello.chiudiFinestra();
    m_programma.stato.RegistrazioneAttiva = 0;
}

bool ModelloStrumenti::inLettura() const
{
    return m_programma.motore.StatoDialogo == Stato;
}

double ModelloStrumenti::valore(int passo) const
{
    const int p = parametro(passo);
    return p < 0 ? -1.0 : m_programma.catalogo.Valori[static_cast<size_t>(p)].Letto;
}

QString ModelloStrumenti::testoValore(int passo) const
{
    const int p = parametro(passo);
    if (p < 0 || valore(passo) == -1.0)
        return {};
    return m_programma.catalogo.formatta(p, valore(passo));
}

double ModelloStrumenti::scalaLambda() const
{
    return valore(ScalaLambda);
}

std::optional<double> ModelloStrumenti::marcatore(Marcatore m) const
{
    double v = -1;
    switch (m) {
    case MarcaTpsMinimo:
        v = valore(TpsMinimo);
        break;
    case MarcaTpsCutOff:
        v = valore(TpsCutOff);
        break;
    case MarcaTpsPienoCarico:
        v = valore(TpsPienoCarico);
        break;
    case MarcaLambdaMinimo:
        v = valore(LambdaMinimo);
        break;
    case MarcaLambdaNormale:
        v = valore(LambdaNormale);
        break;
    case MarcaLambdaPienoCarico:
        v = valore(LambdaPienoCarico);
        break;
    case LineaReset:
    case PassiNormSopra:
    case PassiNormSotto:
    case PassiMinSopra:
    case PassiMinSotto: {
        const double reset = valore(PosizioneReset);
        if (reset == -1.0)
            return std::nullopt;
        const double normale = valore(PassiNormale);
        const double minimo = valore(PassiMinimo);
        v = m == LineaReset       ? reset
            : m == PassiNormSopra ? reset + normale
            : m == PassiNormSotto ? reset - normale
            : m == PassiMinSopra  ? minimo + reset
                                  : reset - minimo;
        break;
    }
    case Marcatori:
        return std::nullopt;
    }
    if (v == -1.0)
        return std::nullopt;
    const double y = posizione(v);
    if (y == -1.0)
        return std::nullopt;
    return y;
}

void ModelloStrumenti::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (stato != Stato)
        return;
    if (lettera == 'e') {
        fine(false); // a refusal ends the reads; the engine frees the link
        return;
    }
    if (lettera != 'r')
        return;
    MotoreDialogo &m = m_programma.motore;
    m.timeOutReq().setEnabled(false);
    const int passo = m.PassoDialogo;
    const int p = parametro(passo);
    if (p >= 0) {
        Catalogo &c = m_programma.catalogo;
        const int dimensione = c.Parametri[static_cast<size_t>(p)].Dimensione;
        c.registraLettura(p, c.daGrezzo(p, NumeroBE(payload.mid(1, dimensione))));
        emit valoreLetto(passo);
    }
    if (m.continua())
        return;
    m.PassoDialogo = -1;
    m.termina();
    fine(true);
}

void ModelloStrumenti::scadenza(int)
{
    fine(false);
}

void ModelloStrumenti::fine(bool completa)
{
    emit letturaFinita(completa);
}

ModelloStrumenti::Cambiamenti ModelloStrumenti::tick()
{
    Cambiamenti c;
    StatoProgramma &s = m_programma.stato;
    if (s.DatoNuovo == 0)
        return c;
    const auto &nuovo = s.DatiAttuali[0].Valore;
    auto &mostrato = s.DatiAttuali[1].Valore;
    const auto cambiato = [&](int canale) {
        return nuovo[static_cast<size_t>(canale)] != mostrato[static_cast<size_t>(canale)];
    };
    const Lingua &l = m_programma.lingua;

    if ((c.giri = cambiato(2))) {
        m_quadro.giri = intero(nuovo[2]);
        const double migliaia = nuovo[2] / 1000;
        // Off the scale the needle stays where it was; the number goes on.
        if (migliaia >= GiriMinimoScala && migliaia <= GiriMassimoScala)
            m_quadro.lancettaGiri = migliaia;
    }
    const auto inBarra = [](double v) {
        const float f = static_cast<float>(v);
        return f >= static_cast<float>(BarraMinimo) && f <= static_cast<float>(BarraMassimo);
    };
    if ((c.tps = cambiato(3))) {
        m_quadro.tps = intero(nuovo[3]);
        if (inBarra(nuovo[3]))
            m_quadro.barraTps = nuovo[3];
    }
    if ((c.lambda = cambiato(4))) {
        m_quadro.lambda = intero(nuovo[4]);
        if (inBarra(nuovo[4]))
            m_quadro.barraLambda = nuovo[4];
    }
    if ((c.motorino = cambiato(5))) {
        m_quadro.motorino = intero(nuovo[5]);
        const double x = posizione(nuovo[5]);
        if (x != -1.0)
            m_quadro.posizioneMotorino = x;
    }
    if ((c.alimentazione = cambiato(10))) {
        const double v = nuovo[10];
        if (v == 0 || v == 1) {
            m_quadro.alimentazione = l.LeggiTesto("ALIMENTAZIONE", "TIPO." + intero(v));
            m_quadro.coloreAlimentazione = v == 0 ? ColoreBenzina : ColoreGas;
        } else {
            m_quadro.alimentazione = l.LeggiTesto("ALIMENTAZIONE", "TIPO.99");
            m_quadro.coloreAlimentazione = ColoreIgnoto;
        }
    }
    if ((c.pompata = cambiato(8))) {
        // Only the pump at rest has a text of its own.
        m_quadro.pompata =
            nuovo[8] == 0 ? l.LeggiTesto("POMPATA", "POMPATA.0") : l.LeggiTesto("POMPATA", "POMPATA.99");
    }
    if ((c.zona = cambiato(7)))
        m_quadro.zona = TestoZona(l, nuovo[7]);

    for (int canale = 1; canale <= 11; ++canale)
        mostrato[static_cast<size_t>(canale)] = nuovo[static_cast<size_t>(canale)];
    s.DatoNuovo = 0;
    return c;
}

} // namespace kv
