#pragma once

#include "base/Messaggio.h"
#include "shell/IdPagina.h"

#include <QString>

namespace kv {

// What calibration needs of the main frame: its pages, its message box and its pages' area.
class TelaioTaratura
{
public:
    virtual ~TelaioTaratura() = default;

    // The page made and shown, in place of the menu or, for the warning page, over it. False
    // when this build has no such page, and then nothing has changed.
    virtual bool apriPagina(IdPagina id) = 0;
    // Closes page id if it is the one on view. prosegui goes on with the step that
    // TaraturaInCorso holds now; otherwise the menu comes back.
    virtual void chiudiPagina(IdPagina id, bool prosegui) = 0;
    // Every calibration page closed, the menu shown, the three calibration flags cleared.
    virtual void ChiudiPagineTaratura() = 0;
    // The calibration page open in the frame or over the menu; Nessuna when there is none.
    virtual IdPagina paginaTaratura() const = 0;
    // The pages' area (the menu with it) while the handshake holds the link.
    virtual void abilitaFrame(bool abilitato) = 0;
    virtual void abilitaMenu(bool abilitato) = 0;
    // The common message box with the program's title; returns the code of the key pressed.
    virtual int MostraMsg(const Messaggio &testo, int flags) = 0;
};

} // namespace kv
