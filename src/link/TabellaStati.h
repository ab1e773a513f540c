#pragma once

namespace kv {

// Which reply letter each dialogue state waits for. States group by ten, and the group
// names the owner that a reply or a time-out is routed to.
namespace TabellaStati {

// 'r', 'e', 'v' or 'd' (ended by the live stream); 0 for a state the program never sets.
char rispostaAttesa(int stato);

// -1 for the free link and for states below 1.
constexpr int gruppo(int stato)
{
    return stato >= 1 ? (stato - 1) / 10 : -1;
}

// The first state of a group, the one of its opening read.
constexpr int primoDelGruppo(int stato)
{
    return gruppo(stato) * 10 + 1;
}

} // namespace TabellaStati

} // namespace kv
