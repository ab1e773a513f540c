#pragma once

#include "base/Messaggio.h"
#include "link/MotoreDialogo.h"
#include "shell/FaseTaratura.h"
#include "shell/IdPagina.h"

#include <QObject>
#include <QString>

namespace kv {

class SequenzaTaratura;
struct RecordDati;

// What a calibration page's logic asks of the page on screen.
class VistaTaratura
{
public:
    virtual ~VistaTaratura() = default;

    virtual void mostraTitolo(const Messaggio &testo) = 0;
    // What the fitter has to do now, in large letters (Segnalazione, Msg_TPS, Msg_Lambda).
    virtual void mostraIstruzione(const Messaggio &testo) = 0;
    // How the exchange with the ECU stands (Segnalazione1).
    virtual void mostraSegnalazione1(const Messaggio &testo) = 0;
    // Disabled from the first frame of a dialogue to its last reply.
    virtual void abilitaPagina(bool abilitata) = 0;
    // The ECU did not answer a single page: only Esci is left, which tells it nothing.
    virtual void uscitaEmergenza() = 0;
};

// The logic of one calibration page, single or of the sequence: its opening command, its
// replies and time-outs, the way out, and what it does with each live frame's status.
// The page on screen owns it and calls chiusa() as it goes away.
class LogicaTaratura : public QObject, public GestoreStati
{
    Q_OBJECT
public:
    LogicaTaratura(SequenzaTaratura &sequenza, IdPagina id, VistaTaratura &vista, QObject *parent = nullptr);
    ~LogicaTaratura() override;

    IdPagina id() const { return m_id; }
    // The page used alone, opened from the menu with an 'A' code of its own.
    bool singola() const;
    // The step it serves: Giri, Tps or Lambda.
    FaseTaratura fase() const;
    // Its section of the language file: the form name.
    QString sezione() const;
    // Still on view: frames, replies and timers reach it.
    bool collegata() const { return m_collegata; }
    // Waiting to hand over to the next step: the frames are no longer its business.
    bool inUscita() const { return m_inUscita; }
    void impostaInUscita() { m_inUscita = true; }

    // The page opens: caption, a single page's step, its opening command.
    virtual void carica();
    // One live frame with a status other than 0, in the branch the page belongs to.
    virtual void frame(int stato, const RecordDati &attuale) = 0;
    // The buttons.
    virtual void EsciTar();
    void Esci();
    // The page has been taken off the frame.
    void chiusa();

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    // Every command of a calibration page is acknowledged by 'e'; a page that reads back
    // says so.
    char rispostaAttesa(int stato) const override;

    // The opening command's state, 'A' code and the state of the 'A' 1 that leaves; -1 for
    // a page that has none.
    int primoStato() const;
    int codiceApertura() const;
    int statoUscita() const;

protected:
    // A key of the page's own section.
    Messaggio testo(const QString &chiave) const;
    // The page's captions, once the frame's are set.
    virtual void caricaTesti() {}
    // A reply in one of the page's own states; false leaves it to the common end.
    virtual bool rispostaPropria(char lettera, int stato, const QByteArray &payload);
    // The common end of a single page's 'A' reply, once the queue is empty.
    virtual void fineComando(int stato);
    // The information box, raised after the handler; an OK closes the calibration pages.
    void chiudiDopoAvviso(const Messaggio &testo);
    // 'A' codice under stato: page disabled until the reply. False when the port is closed.
    bool inviaComando(int codice, int stato, int intervallo);

    MotoreDialogo &motore() const;
    SequenzaTaratura &m_sequenza;
    VistaTaratura &m_vista;

private:
    IdPagina m_id;
    bool m_collegata = true;
    bool m_inUscita = false;
};

} // namespace kv
