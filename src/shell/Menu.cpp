#include "shell/Menu.h"

#include "link/StatoEcu.h"
#include "shell/StatoMenu.h"

namespace kv {

namespace Menu {

namespace {

enum class Condizione {
    Testo,       // enabled when it has text
    EcuNormale,  // and the ECU runs its application
    TpsPresente, // and the throttle sensor has been calibrated
    EcuInMarcia  // and the ECU is in normal running
};

struct Riga
{
    IdPagina pagina;
    Condizione condizione;
};

using C = Condizione;
using P = IdPagina;

const std::vector<Riga> Programmazione = {
    {P::ProgSW, C::Testo}, {P::ProgMappe, C::EcuNormale}, {P::StoricoEcu, C::EcuNormale}};
const std::vector<Riga> VisualizzaDati = {{P::Strumenti, C::Testo}, {P::Grafici, C::Testo}};
const std::vector<Riga> MessaPuntoNormale = {{P::MP_Lavoro, C::Testo},
                                             {P::MP_Pompata, C::TpsPresente},
                                             {P::ConfrontoMappe, C::Testo},
                                             {P::ModificaSenzaEcu, C::Testo}};
const std::vector<Riga> MessaPuntoAssistenza = {
    {P::MP_Minimo, C::Testo},      {P::MP_Normale, C::Testo},       {P::MP_PienoCarico, C::Testo},
    {P::MP_CutOff, C::Testo},      {P::MP_Pompata, C::TpsPresente}, {P::MP_Stechio, C::Testo},
    {P::MP_InibizPC, C::Testo},    {P::MP_RientroCO, C::Testo},     {P::MP_TPS, C::Testo},
    {P::ConfrontoMappe, C::Testo}, {P::ModificaSenzaEcu, C::Testo}};
const std::vector<Riga> Taratura = {{P::T_Giri_Single, C::EcuInMarcia},
                                    {P::T_TPS_Single, C::EcuInMarcia},
                                    {P::T_Lambda_Single, C::EcuInMarcia},
                                    {P::T_Parametri, C::EcuInMarcia},
                                    {P::SequenzaTaratura, C::Testo}};
const std::vector<Riga> Utilita = {
    {P::VisInf, C::EcuNormale},       {P::CreaDiscoSW, C::Testo},    {P::RipriDiscoSW, C::Testo},
    {P::CancelSW, C::EcuNormale},     {P::CreaDiscoMappe, C::Testo}, {P::RipriMappe, C::Testo},
    {P::CancelMappe, C::EcuNormale},  {P::ReadMappe, C::EcuNormale}, {P::Comunicazione, C::EcuNormale},
    {P::SceltaLingua, C::EcuNormale}, {P::Password, C::EcuNormale},  {P::Visore, C::Testo}};

const std::vector<Riga> *righe(int funzione, bool assistenza)
{
    switch (funzione) {
    case 0:
        return &Programmazione;
    case 1:
        return &VisualizzaDati;
    case 2:
        return assistenza ? &MessaPuntoAssistenza : &MessaPuntoNormale;
    case 3:
        return &Taratura;
    case 4:
        return &Utilita;
    default:
        return nullptr;
    }
}

bool condizioneVera(Condizione c, const StatoEcu &s)
{
    switch (c) {
    case Condizione::Testo:
        return true;
    case Condizione::EcuNormale:
        return s.EcuNormale;
    case Condizione::TpsPresente:
        return s.TpsPresente;
    case Condizione::EcuInMarcia:
        return s.EcuInMarcia;
    }
    return false;
}

} // namespace

QString ChiaveFunzione(int funzione)
{
    return QStringLiteral("FUNZIONE.") + QString::number(funzione);
}

bool FunzioneAbilitata(int funzione, const StatoEcu &stato)
{
    if (funzione < 0 || funzione >= NumeroFunzioni)
        return false;
    if (!stato.EcuNormale)
        return funzione == 0 || funzione == 4;
    return funzione != 2 || stato.EcuInMarcia;
}

QString PrefissoOpzioni(int funzione, bool assistenza)
{
    switch (funzione) {
    case 0:
        return QStringLiteral("PROGRAMMAZIONE.");
    case 1:
        return QStringLiteral("VISDATI.");
    case 2:
        return QStringLiteral("MESSAPUNTO%1.").arg(assistenza ? 1 : 0);
    case 3:
        return QStringLiteral("TARATURA.");
    case 4:
        return QStringLiteral("UTILITA.");
    default:
        return {};
    }
}

std::vector<Voce> Opzioni(int funzione, const StatoEcu &stato, bool assistenza, const TestoVoce &testo)
{
    const std::vector<Riga> *tabella = righe(funzione, assistenza);
    if (!tabella)
        return {};
    const QString prefisso = PrefissoOpzioni(funzione, assistenza);
    std::vector<Voce> voci(NumeroOpzioni);
    for (int i = 0; i < NumeroOpzioni; ++i) {
        Voce &v = voci[static_cast<size_t>(i)];
        v.caption = testo(prefisso + QString::number(i)).trimmed();
        v.visibile = !v.caption.isEmpty();
        // Text for an entry past the table opens nothing, so it stays grey.
        if (i < static_cast<int>(tabella->size())) {
            const Riga &r = (*tabella)[static_cast<size_t>(i)];
            v.pagina = r.pagina;
            v.abilitata = v.visibile && condizioneVera(r.condizione, stato);
        }
    }
    return voci;
}

EsitoParola VerificaParola(StatoMenu &menu, const QString &parola)
{
    if (parola.toUpper() == QLatin1String(ParolaAssistenza)) {
        menu.impostaAssistenza(true);
        return EsitoParola::Assistenza;
    }
    if (menu.ModoAssistenza()) {
        menu.impostaAssistenza(false);
        return EsitoParola::Normale;
    }
    return EsitoParola::Errata;
}

} // namespace Menu

} // namespace kv
