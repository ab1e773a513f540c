#pragma once

namespace kv {

// Dialogue states group by ten, and the group names the owner that a reply or a time-out is
// routed to. The tuning pages know the letters of their own groups; this table holds those
// of every other owner.
namespace TabellaStati {

// 'r', 'e', 'v' or 'd' (ended by the live stream); 0 for a state no owner here uses.
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
