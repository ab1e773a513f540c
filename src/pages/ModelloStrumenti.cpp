#include "pages/ModelloStrumenti.h"

#include "link/Frame.h"
#include "pages/PannelloLive.h"
#include "shell/Programma.h"
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
    m_programma.stato.RegistrazioneAttiva = true;
    for (int p : Parametri)
        m_programma.catalogo.azzeraValori(p);
    RecordDati &mostrato = m_programma.stato.DatiAttuali[1];
    for (int canale = Canale::FlagPa; canale <= Canale::TipoLambda; ++canale)
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
    m_programma.stato.RegistrazioneAttiva = false;
}

bool ModelloStrumenti::inLettura() const
{
    return m_programma.motore.StatoDialogo() == Stato;
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

ModelloStrumenti::Scala ModelloStrumenti::scalaBarra(int canale) const
{
    Scala s;
    const bool lambdaGrezza = m_programma.stato.DatiAttuali[0].Valore[Canale::TipoLambda] == 1;
    if (canale == 3 || (canale == 4 && lambdaGrezza)) {
        const Canale &c = m_programma.canali.Canali[static_cast<size_t>(canale)];
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
    const int passo = m.PassoDialogo();
    const int p = parametro(passo);
    if (p >= 0) {
        Catalogo &c = m_programma.catalogo;
        const int dimensione = c.Parametri[static_cast<size_t>(p)].Dimensione;
        c.registraLettura(p, c.daGrezzo(p, NumeroBE(payload.mid(1, dimensione))));
        emit valoreLetto(passo);
    }
    if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
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
    if (!s.DatoNuovo)
        return c;
    const auto &nuovo = s.DatiAttuali[0].Valore;
    auto &mostrato = s.DatiAttuali[1].Valore;
    const auto cambiato = [&](int canale) {
        return nuovo[static_cast<size_t>(canale)] != mostrato[static_cast<size_t>(canale)];
    };
    const Lingua &l = m_programma.lingua;

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
            m_quadro.alimentazione = l.LeggiTesto("ALIMENTAZIONE", "TIPO." + intero(v));
            m_quadro.coloreAlimentazione = v == 0 ? ColoreBenzina : ColoreGas;
        } else {
            m_quadro.alimentazione = l.LeggiTesto("ALIMENTAZIONE", "TIPO.99");
            m_quadro.coloreAlimentazione = ColoreIgnoto;
        }
    }
    if ((c.pompata = cambiato(Canale::Pompata))) {
        // Only the pump at rest has a text of its own.
        m_quadro.pompata = nuovo[Canale::Pompata] == 0 ? l.LeggiTesto("POMPATA", "POMPATA.0")
                                                       : l.LeggiTesto("POMPATA", "POMPATA.99");
    }
    if ((c.zona = cambiato(Canale::MZonAct)))
        m_quadro.zona = TestoZona(l, nuovo[Canale::MZonAct]);

    for (int canale = Canale::FlagPa; canale <= Canale::TipoLambda; ++canale)
        mostrato[static_cast<size_t>(canale)] = nuovo[static_cast<size_t>(canale)];
    s.DatoNuovo = false;
    return c;
}

} // namespace kv
