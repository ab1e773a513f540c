#include "monitoring/ModelloStrumenti.h"

#include "variables/Catalogo.h"
#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <algorithm>

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

// Position on a scale as a fraction of its height; -1 when it cannot be worked out.
double posizione(double v, double minimo = 0.0, double massimo = 255.0)
{
    return Interpola(v, 1.0, 0.0, massimo, minimo);
}

} // namespace

ModelloStrumenti::ModelloStrumenti(const Catalogo &catalogo, const TabellaCanali &canali)
    : m_catalogo(catalogo)
    , m_canali(canali)
{}

int ModelloStrumenti::parametro(int passo)
{
    return passo >= 0 && passo < Passi ? Parametri[static_cast<size_t>(passo)] : -1;
}

void ModelloStrumenti::azzera()
{
    for (int canale = Canale::FlagPa; canale <= Canale::TipoLambda; ++canale)
        m_mostrato.Valore[static_cast<size_t>(canale)] = -1.0;
}

void ModelloStrumenti::ricevi(const RecordDati &record)
{
    m_nuovo = record;
    m_datoNuovo = true;
}

double ModelloStrumenti::valore(int passo) const
{
    const int p = parametro(passo);
    return p < 0 ? -1.0 : m_catalogo.Valori[static_cast<size_t>(p)].Letto;
}

QString ModelloStrumenti::testoValore(int passo) const
{
    const int p = parametro(passo);
    if (p < 0 || valore(passo) == -1.0)
        return {};
    return m_catalogo.formatta(p, valore(passo));
}

double ModelloStrumenti::scalaLambda() const
{
    return valore(ScalaLambda);
}

ModelloStrumenti::Scala ModelloStrumenti::scalaBarra(int canale) const
{
    Scala s;
    const bool lambdaGrezza = m_nuovo.Valore[Canale::TipoLambda] == 1;
    if (canale == 3 || (canale == 4 && lambdaGrezza)) {
        const Canale &c = m_canali.Canali[static_cast<size_t>(canale)];
        s.minimo = std::min(s.minimo, static_cast<double>(c.MinTabella));
        s.massimo = std::max(s.massimo, static_cast<double>(c.MaxTabella));
    }
    return s;
}

std::optional<double> ModelloStrumenti::marcatore(Marcatore m) const
{
    double v = -1;
    // Set points on a bar stand on that bar's scale; those of the stepper on 0..255.
    Scala scala;
    switch (m) {
    case MarcaTpsMinimo:
        v = valore(TpsMinimo);
        scala = scalaBarra(3);
        break;
    case MarcaTpsCutOff:
        v = valore(TpsCutOff);
        scala = scalaBarra(3);
        break;
    case MarcaTpsPienoCarico:
        v = valore(TpsPienoCarico);
        scala = scalaBarra(3);
        break;
    case MarcaLambdaMinimo:
        v = valore(LambdaMinimo);
        scala = scalaBarra(4);
        break;
    case MarcaLambdaNormale:
        v = valore(LambdaNormale);
        scala = scalaBarra(4);
        break;
    case MarcaLambdaPienoCarico:
        v = valore(LambdaPienoCarico);
        scala = scalaBarra(4);
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
    const double y = posizione(v, scala.minimo, scala.massimo);
    if (y == -1.0)
        return std::nullopt;
    return y;
}

ModelloStrumenti::Cambiamenti ModelloStrumenti::tick()
{
    Cambiamenti c;
    if (!m_datoNuovo)
        return c;
    const auto &nuovo = m_nuovo.Valore;
    auto &mostrato = m_mostrato.Valore;
    const auto cambiato = [&](int canale) {
        return nuovo[static_cast<size_t>(canale)] != mostrato[static_cast<size_t>(canale)];
    };
    if ((c.giri = cambiato(Canale::Giri))) {
        m_quadro.giri = intero(nuovo[Canale::Giri]);
        const double migliaia = nuovo[Canale::Giri] / 1000;
        // Off the scale the needle stays where it was; the number goes on.
        if (migliaia >= GiriMinimoScala && migliaia <= GiriMassimoScala)
            m_quadro.lancettaGiri = migliaia;
    }
    const auto inBarra = [this](int canale, double v) {
        const Scala scala = scalaBarra(canale);
        const float f = static_cast<float>(v);
        return f >= static_cast<float>(scala.minimo) && f <= static_cast<float>(scala.massimo);
    };
    if ((c.tps = cambiato(Canale::Tps))) {
        m_quadro.tps = intero(nuovo[Canale::Tps]);
        if (inBarra(Canale::Tps, nuovo[Canale::Tps]))
            m_quadro.barraTps = nuovo[Canale::Tps];
    }
    // The probe type decides the lambda bar's scale, so a change of it counts as a change.
    if ((c.lambda = cambiato(Canale::Lambda) || cambiato(Canale::TipoLambda))) {
        m_quadro.lambda = intero(nuovo[Canale::Lambda]);
        if (inBarra(Canale::Lambda, nuovo[Canale::Lambda]))
            m_quadro.barraLambda = nuovo[Canale::Lambda];
    }
    if ((c.motorino = cambiato(Canale::ActPos))) {
        m_quadro.motorino = intero(nuovo[Canale::ActPos]);
        const double x = posizione(nuovo[Canale::ActPos]);
        if (x != -1.0)
            m_quadro.posizioneMotorino = x;
    }
    if ((c.alimentazione = cambiato(Canale::TipAlim))) {
        const double v = nuovo[Canale::TipAlim];
        if (v == 0 || v == 1) {
            m_quadro.chiaveAlimentazione = "TIPO." + intero(v);
            m_quadro.coloreAlimentazione = v == 0 ? ColoreBenzina : ColoreGas;
        } else {
            m_quadro.chiaveAlimentazione = QStringLiteral("TIPO.99");
            m_quadro.coloreAlimentazione = ColoreIgnoto;
        }
    }
    if ((c.pompata = cambiato(Canale::Pompata))) {
        // Only the pump at rest has a text of its own.
        m_quadro.chiavePompata =
            nuovo[Canale::Pompata] == 0 ? QStringLiteral("POMPATA.0") : QStringLiteral("POMPATA.99");
    }
    if ((c.zona = cambiato(Canale::MZonAct)))
        m_quadro.zona = nuovo[Canale::MZonAct];

    for (int canale = Canale::FlagPa; canale <= Canale::TipoLambda; ++canale)
        mostrato[static_cast<size_t>(canale)] = nuovo[static_cast<size_t>(canale)];
    m_datoNuovo = false;
    return c;
}

} // namespace kv
