#pragma once

// A Programma on a scripted port with every timer fired by hand: the test plays the ECU's
// part through arriva(), and identifica() runs the identification as an ECU would answer it.

#include "base/Lingua.h"
#include "support/FrameDiProva.h"
#include "support/PortaFinta.h"

#include "link/Frame.h"
#include "shell/Programma.h"

#include <QTemporaryDir>

#include <memory>

namespace kv {

struct ProgrammaFinto
{
    QTemporaryDir cartella;
    Lingua lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> p;
    PortaFinta *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    TemporizzatoreManuale *dati = nullptr;
    TemporizzatoreManuale *riapertura = nullptr;
    TemporizzatoreManuale *silenzio = nullptr;

    void creaProgramma()
    {
        p.reset();
        auto pf = std::make_unique<PortaFinta>();
        auto r = std::make_unique<TemporizzatoreManuale>();
        auto d = std::make_unique<TemporizzatoreManuale>();
        auto ra = std::make_unique<TemporizzatoreManuale>();
        auto si = std::make_unique<TemporizzatoreManuale>();
        porta = pf.get();
        req = r.get();
        dati = d.get();
        riapertura = ra.get();
        silenzio = si.get();
        lingua = Lingua(cartella.path());
        p = std::make_unique<Programma>(cartella.path(), lingua, std::move(pf), std::move(r), std::move(d),
                                        std::move(ra), std::move(si));
    }

    void arriva(const QByteArray &payload) { porta->arriva(CreaFrame(payload, 0)); }

    // The first live frame and the replies: the TPS cells, the TPS type and the adaptive flag.
    void identifica(quint16 tpsMax = 900, quint16 tpsMin = 60, quint8 tipoTps = 7, quint8 adattivo = 0)
    {
        for (const QByteArray &f :
             {datiLive(0), rispostaVersione(), "r" + parola(tpsMax), "r" + parola(tpsMin),
              QByteArray(1, 'r') + char(tipoTps), QByteArray(1, 'r') + char(adattivo)})
            arriva(f);
    }
};

} // namespace kv
