#pragma once

namespace kv {

// Every page the main frame can open, by its form name. The menu says which one an entry
// opens; the main frame opens it through the page registry, where a page that is not built
// yet is simply absent.
enum class IdPagina {
    Nessuna = -1,

    // Programming
    ProgSW,
    ProgMappe,

    // Live data
    Strumenti,
    Grafici,

    // Tuning
    MP_Lavoro,
    MP_Pompata,
    MP_Minimo,
    MP_Normale,
    MP_PienoCarico,
    MP_CutOff,
    MP_Stechio,
    MP_InibizPC,
    MP_RientroCO,
    MP_TPS,

    // Calibration: the single pages, the sequence's pages and its warning page
    T_Giri_Single,
    T_TPS_Single,
    T_Lambda_Single,
    T_Parametri,
    IniTaratura,
    T_Giri,
    T_TPS,
    T_Lambda,
    // The menu entry that starts the sequence; it opens no page of its own.
    SequenzaTaratura,

    // Utilities
    VisInf,
    CreaDiscoSW,
    RipriDiscoSW,
    CancelSW,
    CreaDiscoMappe,
    RipriMappe,
    CancelMappe,
    ReadMappe,
    ConfrontoMappe,
    Comunicazione,
    SceltaLingua,
    Password,
    // The viewer of recordings, which needs no ECU
    Visore,

    // A map of the archive edited with no ECU (Tuning), the ECU's history (Programming)
    ModificaSenzaEcu,
    StoricoEcu,

    // The about box, opened by the logo
    Infor,
};

// The tuning pages, which the watchdog closes when the ECU goes silent.
constexpr bool PaginaMessaPunto(IdPagina id)
{
    return id >= IdPagina::MP_Lavoro && id <= IdPagina::MP_TPS;
}

// The pages of calibration, single or in sequence, with its warning page.
constexpr bool PaginaTaratura(IdPagina id)
{
    return id >= IdPagina::T_Giri_Single && id <= IdPagina::T_Lambda;
}

} // namespace kv
