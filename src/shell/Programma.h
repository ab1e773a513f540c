#pragma once

#include "base/Configurazione.h"
#include "link/SessioneLinea.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/Canali.h"
#include "shell/CatturaStorico.h"
#include "shell/StatoMenu.h"
#include "variables/Catalogo.h"

#include <QObject>

#include <memory>

namespace kv {

class Lingua;

// The composition root: it builds, once at start (tests build their own), the objects that
// each own one piece of the program's state, and wires them. Each is handed on to those that
// need it, and nothing else:
// - catalogo: every parameter's place, limits and last values;
// - canali, anello: the channel table, and the recorder with its ring of samples;
// - linea: the serial line, the dialogue engine, identification, the live stream and what is
//   known of the ECU;
// - menu: the function chosen and service mode;
// - storico: the ECUs' map areas kept in their history before the run first changes them;
// - seriale: the serial settings.
// The language is not the program's: whoever builds it (app/, a test) owns one and lends it
// here for the windows; nothing below them looks anything up in it.
class Programma : public QObject
{
    Q_OBJECT
public:
    Programma(const QString &percorsoApp, Lingua &lingua, std::unique_ptr<Porta> porta,
              std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
              std::unique_ptr<Temporizzatore> riapertura = {}, std::unique_ptr<Temporizzatore> silenzio = {},
              QObject *parent = nullptr);
    ~Programma() override;

    // The link and the menu back to their start values; the receive buffer is emptied too.
    void IniDialogo();
    void IniCollegamento() { linea.IniCollegamento(); }

    // Reads the serial settings and opens the port. On failure portaNonAperta has been
    // emitted, the port is closed, and the program goes on without a link.
    bool ApriPorta();
    void LeggiImpSeriale();

    QString percorso(const QString &nome) const { return PercorsoApp + QLatin1Char('/') + nome; }
    QString percorsoIni() const { return PercorsoIni(PercorsoApp); }

    const QString PercorsoApp;
    char SepDecimale = '.';
    // Overrides the port named in the settings for this run only (the demo's simulator).
    QString dispositivoForzato;

    Catalogo catalogo;
    TabellaCanali canali;
    AnelloRegistrazione anello;
    Lingua &lingua;
    ImpSeriale seriale;
    SessioneLinea linea;
    StatoMenu menu;
    CatturaStorico storico;

signals:
    // The port could not be opened; gruppo names the group to join when permission was lacking.
    void portaNonAperta(const QString &dispositivo, const QString &gruppo);
};

} // namespace kv
