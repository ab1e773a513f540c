#pragma once

#include "base/Configurazione.h"
#include "base/Lingua.h"
#include "link/DatiLive.h"
#include "link/Identificazione.h"
#include "link/MotoreDialogo.h"
#include "link/Porta.h"
#include "link/RegistroFrame.h"
#include "link/Ricevitore.h"
#include "link/SorveglianzaLinea.h"
#include "link/StatoProgramma.h"
#include "link/Temporizzatore.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/Canali.h"
#include "variables/Catalogo.h"

#include <QObject>

#include <memory>

namespace kv {

// Everything the program keeps for the whole run, built once at start (tests build their
// own). The port and the timers come from outside, so that tests can hand in a
// pseudo-terminal or timers they fire themselves; the two timers of the line watch are made
// here when none is given.
class Programma : public QObject
{
    Q_OBJECT
public:
    Programma(const QString &percorsoApp, std::unique_ptr<Porta> porta,
              std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
              std::unique_ptr<Temporizzatore> riapertura = {}, std::unique_ptr<Temporizzatore> silenzio = {},
              QObject *parent = nullptr);
    ~Programma() override;

    // Program-wide state back to its start values; the receive buffer is emptied too.
    void IniDialogo();
    void IniCollegamento();

    // Reads the serial settings and opens the port. On failure the caller has been told
    // through portaNonAperta, the port is closed, and the program goes on without a link.
    bool ApriPorta();
    void LeggiImpSeriale();

    // The message line of the main frame: set by a tuning page as it loads, emptied by
    // every 'e' that reports success.
    void impostaSegnalazione1(const QString &testo) { emit segnalazione1(testo); }

    QString percorso(const QString &nome) const { return stato.PercorsoApp + QLatin1Char('/') + nome; }
    QString percorsoIni() const { return PercorsoIni(stato.PercorsoApp); }

    StatoProgramma stato;
    Catalogo catalogo;
    TabellaCanali canali;
    AnelloRegistrazione anello;
    Lingua lingua;
    ImpSeriale seriale;
    RegistroFrame registro;
    Ricevitore ricevitore;

private:
    std::unique_ptr<Porta> m_porta;
    std::unique_ptr<Temporizzatore> m_timeOutReq;
    std::unique_ptr<Temporizzatore> m_timeOutDati;
    std::unique_ptr<Temporizzatore> m_riapertura;
    std::unique_ptr<Temporizzatore> m_silenzio;

public:
    Porta &porta;
    Temporizzatore &TimeOutReq;
    Temporizzatore &TimeOutDati;
    MotoreDialogo motore;
    Identificazione identificazione;
    DatiLive datiLive;
    // A port that vanishes is opened again by itself; a port with nothing like an ECU on
    // it is noticed.
    SorveglianzaLinea sorveglianza;

    // Overrides the port named in the settings for this run only (the demo's simulator).
    QString dispositivoForzato;

signals:
    // The port could not be opened: text and title for the message box.
    void portaNonAperta(const QString &testo, const QString &titolo);
    // The hex of the last good payload, for the message strip.
    void segnalazione(const QString &hex);
    void segnalazione1(const QString &testo);

private:
    void lineaPersa();
};

} // namespace kv
