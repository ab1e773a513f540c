#pragma once

#include "link/DatiLive.h"
#include "link/Identificazione.h"
#include "link/MotoreDialogo.h"
#include "link/Porta.h"
#include "link/RegistroFrame.h"
#include "link/Ricevitore.h"
#include "link/SorveglianzaLinea.h"
#include "link/StatoEcu.h"
#include "link/Temporizzatore.h"

#include <QObject>

#include <memory>

namespace kv {

class Catalogo;

// One serial line and the ECU behind it: the port, its receive path (port, receiver, engine)
// wired here, the dialogue engine, identification, the live stream and the line watch. It
// is the only writer of what is known of the ECU; a page talks to the ECU through its engine
// and hears the stream through its signals or as a listener of the stream.
class SessioneLinea : public QObject
{
    Q_OBJECT
public:
    // The port and the timers come from outside, so that tests hand in a pseudo-terminal or
    // timers they fire themselves; the two timers of the line watch are made here when none
    // is given. The frame log goes to registro (MESSAGGI.TXT), empty for none.
    SessioneLinea(const QString &registro, Catalogo &catalogo, std::unique_ptr<Porta> porta,
                  std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
                  std::unique_ptr<Temporizzatore> riapertura = {},
                  std::unique_ptr<Temporizzatore> silenzio = {}, QObject *parent = nullptr);
    ~SessioneLinea() override;

    // The link back to its start: no dialogue, queue and receive buffer empty.
    void IniDialogo();
    // Nothing known of the ECU.
    void IniCollegamento() { m_ecu.IniCollegamento(); }

    // Opens the port; the line watch follows it. False when it cannot be opened: the port is
    // closed and the program goes on without a link.
    bool apri(const ImpostazioniPorta &impostazioni);
    // After an opening refused for lack of permission: the group whose members may use the
    // device; empty otherwise.
    [[nodiscard]] const QString &gruppoMancante() const { return m_gruppoMancante; }
    // After an opening refused because another process holds the line.
    [[nodiscard]] bool portaOccupata() const { return m_portaOccupata; }

    [[nodiscard]] const StatoEcu &ecu() const { return m_ecu; }
    // The ECU has taken new software and restarts with it: it is asked who it is again at its
    // next frame.
    void ecuRiprogrammata() { m_ecu.ecuPersa(); }
    // A page has read the throttle sensor's calibration again.
    void tpsRiletto(bool presente) { m_ecu.TpsPresente = presente; }
    // An ECU known without asking it: a map's image standing in for one.
    void impostaEcu(const StatoEcu &ecu) { m_ecu = ecu; }
    // A known ECU to start from, for a test or a picture.
    StatoEcu &ecuDiProva() { return m_ecu; }

    Porta &porta() { return *m_porta; }
    MotoreDialogo &motore() { return m_motore; }
    Identificazione &identificazione() { return m_identificazione; }
    DatiLive &datiLive() { return m_datiLive; }
    SorveglianzaLinea &sorveglianza() { return m_sorveglianza; }
    const SorveglianzaLinea &sorveglianza() const { return m_sorveglianza; }
    RegistroFrame &registro() { return m_registro; }
    Ricevitore &ricevitore() { return m_ricevitore; }
    Temporizzatore &TimeOutReq() { return *m_timeOutReq; }
    Temporizzatore &TimeOutDati() { return *m_timeOutDati; }
    [[nodiscard]] bool PortOpen() const { return m_porta->PortOpen(); }

signals:
    // The hex of the last good payload, for the message strip.
    void segnalazione(const QString &hex);
    // The ECU acknowledged a write: the page's message line is emptied.
    void scritturaRiuscita();

private:
    void lineaPersa();

    std::unique_ptr<Porta> m_porta;
    std::unique_ptr<Temporizzatore> m_timeOutReq;
    std::unique_ptr<Temporizzatore> m_timeOutDati;
    std::unique_ptr<Temporizzatore> m_riapertura;
    std::unique_ptr<Temporizzatore> m_silenzio;
    StatoEcu m_ecu;
    RegistroFrame m_registro;
    Ricevitore m_ricevitore;
    MotoreDialogo m_motore;
    Identificazione m_identificazione;
    DatiLive m_datiLive;
    SorveglianzaLinea m_sorveglianza;
    QString m_gruppoMancante;
    bool m_portaOccupata = false;
};

} // namespace kv
