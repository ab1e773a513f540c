#pragma once

namespace kv {

// Dialogue states group by ten, and the group names the owner that a reply or a time-out is
// routed to; each owner declares the reply letters of its own states.
namespace TabellaStati {

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
