#pragma once

#include "shell/IdPagina.h"

#include <QString>

#include <array>
#include <functional>
#include <vector>

namespace kv {

class StatoMenu;
struct StatoEcu;

// What the main menu offers, worked out from what is known of the ECU, the mode and the
// captions of the language file: which functions and entries are shown and enabled, and what
// each entry opens. The menu page only paints this.
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

// The caption of a key of the menu's section of the language file.
using TestoVoce = std::function<QString(const QString &chiave)>;

bool FunzioneAbilitata(int funzione, const StatoEcu &ecu);

// The key of a function's caption, in the menu's section.
QString ChiaveFunzione(int funzione);
// The key prefix of a function's entries; the tuning entries differ by mode. Empty outside 0..4.
QString PrefissoOpzioni(int funzione, bool assistenza);

// The NumeroOpzioni entries of a function in the present mode; empty outside 0..4.
std::vector<Voce> Opzioni(int funzione, const StatoEcu &ecu, bool assistenza, const TestoVoce &testo);

enum class EsitoParola {
    Assistenza, // the access word: service mode on
    Normale,    // another word in service mode: back to normal, without a word
    Errata      // another word in normal mode: the fitter is told
};

// Checks the word typed on the access page and sets ModoAssistenza.
EsitoParola VerificaParola(StatoMenu &menu, const QString &parola);

} // namespace Menu

} // namespace kv
