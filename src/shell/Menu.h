#pragma once

#include "shell/IdPagina.h"

#include <QString>

#include <array>
#include <vector>

namespace kv {

class Lingua;
struct StatoProgramma;

// What the main menu offers, worked out from the program-wide flags and the language file:
// captions, which functions and entries are shown and enabled, and what each entry opens.
// The menu page only paints this.
namespace Menu {

inline constexpr int NumeroFunzioni = 5;
// Shift+F1 to Shift+F12 reach the entries, so there are twelve places.
inline constexpr int NumeroOpzioni = 12;
inline constexpr int FunzioneUscita = 99;
// The access word of the service mode, matched without regard to case.
inline constexpr char ParolaAssistenza[] = "TORBA";

struct Voce
{
    QString caption;       // trimmed
    bool visibile = false; // an entry without text is hidden, so the language file sets the list's length
    bool abilitata = false;
    IdPagina pagina = IdPagina::Nessuna;
};

struct Funzioni
{
    QString titolo; // of the main frame
    std::array<QString, NumeroFunzioni> caption;
    std::array<bool, NumeroFunzioni> abilitata{};
    QString uscita;
};

// Steps 1 to 5 of the menu refresh. An ECU without application leaves no function selected.
Funzioni AggiornaFunzioni(StatoProgramma &stato, const Lingua &lingua);

bool FunzioneAbilitata(int funzione, const StatoProgramma &stato);

// The key prefix of a function's entries; the tuning entries differ by mode. Empty outside 0..4.
QString PrefissoOpzioni(int funzione, bool assistenza);

// The NumeroOpzioni entries of a function in the present mode; empty outside 0..4.
std::vector<Voce> Opzioni(int funzione, const StatoProgramma &stato, const Lingua &lingua);

enum class EsitoParola {
    Assistenza, // the access word: service mode on
    Normale,    // another word in service mode: back to normal, without a word
    Errata      // another word in normal mode: the fitter is told
};

// Checks the word typed on the access page and sets ModoAssistenza.
EsitoParola VerificaParola(StatoProgramma &stato, const QString &parola);

} // namespace Menu

} // namespace kv
