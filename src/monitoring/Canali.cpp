#include "monitoring/Canali.h"

namespace kv {

namespace {

struct RigaTabella
{
    const char *chiave;
    qint32 minTabella;
    qint32 maxTabella;
    qint16 divMaggiori;
    qint16 divMinori;
    qint16 margine;
    quint8 ampiezza;
};

// FLAGPA repeats the scale of GIRI; no chart shows it, so it was never corrected.
constexpr std::array<RigaTabella, NumeroCanali> Tabella{{
    {"CAMPIONI", 0, 200, 6, 10, 20, 0},
    {"FLAGPA", 0, 7000, 10, 10, 2, 1},
    {"GIRI", 0, 7000, 10, 10, 2, 2},
    {"TPS", 0, 100, 10, 10, 2, 2},
    {"LAMBDA", 0, 5000, 10, 10, 2, 2},
    {"ACTPOS", 0, 100, 10, 10, 2, 1},
    {"RICMAG", 0, 100, 10, 10, 2, 1},
    {"MZONACT", 0, 100, 10, 10, 2, 1},
    {"POMPATA", 0, 100, 10, 10, 2, 1},
    {"TIPTPS", 0, 100, 10, 10, 2, 1},
    {"TIPALIM", 0, 100, 10, 10, 2, 1},
    {"TIPOLAMBDA", 0, 255, 10, 10, 2, 1},
    {"LIBERO2", 0, 100, 10, 10, 2, 1},
    {"LIBERO3", 0, 100, 10, 10, 2, 1},
    {"LIBERO4", 0, 100, 10, 10, 2, 1},
    {"LIBERO5", 0, 100, 10, 10, 2, 1},
}};

bool indiceValido(int indice)
{
    return indice >= 0 && indice < NumeroCanali;
}

// The name field has a fixed width: longer text is cut, shorter is padded with blanks.
QString nomeFisso(const QString &testo)
{
    return testo.left(Canale::LunghezzaNome).leftJustified(Canale::LunghezzaNome, QLatin1Char(' '));
}

} // namespace

QString ChiaveCanale(int indice)
{
    return indiceValido(indice) ? QString::fromLatin1(Tabella[indice].chiave) : QString();
}

bool puoAndareInGrafico(int canale)
{
    return indiceValido(canale) && canale != Canale::FlagPa && canale != Canale::MZonAct
           && canale != Canale::TipAlim;
}

RigheDati RigheDatiIniziali()
{
    RigheDati righe{};
    const std::array<RigaDati, 10> elenco{{
        {Canale::Giri, 1, 1},
        {Canale::Tps, 1, 1},
        {Canale::Lambda, 1, 1},
        {Canale::ActPos, 1, 1},
        {Canale::RicMag, 1, 1},
        {Canale::MZonAct, 1, 1},
        {Canale::Pompata, 1, 1},
        {Canale::TipTps, 0, 1},
        {Canale::TipAlim, 1, 1},
        {Canale::TipoLambda, 0, 1},
    }};
    for (std::size_t i = 0; i < elenco.size(); ++i)
        righe[i] = elenco[i];
    return righe;
}

void TabellaCanali::InizializzaCanali(const CercaTesto &testo)
{
    for (int i = 0; i < NumeroCanali; ++i) {
        const RigaTabella &r = Tabella[i];
        Canale &c = Canali[i];
        c = Canale{};
        c.MinTabella = r.minTabella;
        c.MaxTabella = r.maxTabella;
        c.MinAsse = r.minTabella;
        c.MaxAsse = r.maxTabella;
        c.MinDisegnato = r.minTabella;
        c.MaxDisegnato = r.maxTabella;
        c.DivMaggiori = r.divMaggiori;
        c.DivMinori = r.divMinori;
        c.Margine = r.margine;
        c.Formato = QStringLiteral("#0");
        c.Ampiezza = r.ampiezza;
    }
    RinominaCanali(testo);
}

void TabellaCanali::RinominaCanali(const CercaTesto &testo)
{
    const QString sezione = QStringLiteral("PAR_CANALI");
    for (int i = 0; i < NumeroCanali; ++i) {
        const QString chiave = QString::fromLatin1(Tabella[i].chiave);
        Canali[i].Nome = nomeFisso(testo(sezione, chiave + QStringLiteral(".NOME")));
        Canali[i].UM = testo(sezione, chiave + QStringLiteral(".UM"));
    }
}

QString TabellaCanali::TitoloCanale(int indice)
{
    if (!indiceValido(indice))
        return {};
    Canale &c = Canali[indice];
    const QString nome = c.Nome.trimmed();
    c.Nome = nomeFisso(nome);
    const QString um = c.UM.trimmed();
    if (um.isEmpty())
        return nome;
    return nome + QStringLiteral(" [") + um + QLatin1Char(']');
}

void TabellaCanali::AzzeraScale()
{
    for (Canale &c : Canali) {
        c.MinAsse = c.MinTabella;
        c.MinDisegnato = c.MinTabella;
        c.MaxAsse = c.MaxTabella;
        c.MaxDisegnato = c.MaxTabella;
        c.InGrafico = 0;
    }
}

} // namespace kv
