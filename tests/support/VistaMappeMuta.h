#pragma once

#include "programming/DialogoMappe.h"

// A map dialogue's view that shows nothing and answers every question Yes.
struct VistaMappeMuta : kv::VistaMappe
{
    void mostraSegnalazione(const kv::Messaggio &) override {}
    void abilitaPagina(bool) override {}
    void mostraAvanzamento(int, int) override {}
    void nascondiAvanzamento() override {}
    void beep() override {}
    int domanda(const kv::Messaggio &, int, const kv::Messaggio &) override { return kv::RispostaSiMappe; }
    void chiudiPagina() override {}
};
