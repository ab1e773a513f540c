#pragma once

#include <QString>

namespace kv {

// What a tuning page's dialogue asks of the page on screen. The dialogue owns the values
// and the link; the page owns the fields. Entries the page does not show are ignored there.
class VistaPagina
{
public:
    virtual ~VistaPagina() = default;

    // The entry holds a new value to show: read from the ECU, or put back by Ripristina.
    // A list shows it as its selection index.
    virtual void mostraValore(int parametro, double valore) = 0;
    // Min or Max of the entry changed: its range hint reads so now.
    virtual void mostraSuggerimento(int parametro, const QString &testo) = 0;
    // No TPS fitted: the page hides its TPS rows.
    virtual void nascondiRigheTps() = 0;
    // A TPS fitted: rows hidden while an earlier read had found none come back.
    virtual void mostraRigheTps() {}
    // TpsAutoadattante reads 0: the ECU adapts this TPS threshold itself.
    virtual void bloccaCampoTps(int parametro) = 0;
    // The page's one-line message, empty to clear it.
    virtual void mostraSegnalazione(const QString &testo) = 0;
    virtual void mostraZonaLavoro(const QString &testo) = 0;
    // Disabled from the first frame of a dialogue to its last reply.
    virtual void abilitaPagina(bool abilitata) = 0;
    // The opening read failed: only Esci_Out is left.
    virtual void uscitaEmergenza() = 0;
    // The page ends. Called last in a handler; the page may go away after it returns.
    virtual void chiudiPagina() = 0;
    // A save (first state + 1 or + 2) is over: every frame acknowledged, or cut short by a
    // refusal or a time-out. Before chiudiPagina() when the save closes the page.
    virtual void scritturaConclusa(int stato, bool riuscita)
    {
        (void)stato;
        (void)riuscita;
    }
};

} // namespace kv
