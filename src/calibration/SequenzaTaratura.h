#pragma once

#include "link/DatiLive.h"
#include "link/ErroreEcu.h"
#include "link/MotoreDialogo.h"
#include "link/StatoProgramma.h"
#include "shell/IdPagina.h"

#include <QObject>

#include <functional>

namespace kv {

class Lingua;
class LogicaTaratura;
class Programma;
class TelaioTaratura;

// The calibration's part of the program: the one driver of the guided sequence
// (AvviaTaratura), the handshake with the ECU in state 121, the live stream's status byte
// handed on to the open calibration page, and the ECU leaving calibration by itself.
// One lives beside the main frame for the whole run.
class SequenzaTaratura : public QObject, public GestoreStati, public GestoreTaratura
{
    Q_OBJECT
public:
    static constexpr int StatoIngresso = 121;
    static constexpr int StatoMemorizzazione = 122;
    static constexpr int IntervalloIngresso = 2000;
    // How long a finished step stays on view before the next one opens.
    static constexpr int AttesaPassoMs = 2000;
    static constexpr int PassiSequenza = 5;
    static constexpr quint8 StatoEntrata = 255;
    static constexpr quint8 StatoGiriPronto = 234;

    // Message box styles and the answers the calibration looks at.
    static constexpr int FlagDomanda = 0x24;
    static constexpr int FlagInformazione = 0x40;
    static constexpr int RispostaOk = 1;
    static constexpr int RispostaSi = 6;

    SequenzaTaratura(Programma &programma, TelaioTaratura &telaio, QObject *parent = nullptr);
    ~SequenzaTaratura() override;

    Programma &programma() { return m_programma; }
    StatoProgramma &stato();
    MotoreDialogo &motore();

    // Step 0 the warning page, 1 the 'A' 2 that asks the ECU in (only with PassoTaratura 0),
    // 2 to 5 the page of that step.
    void AvviaTaratura(FaseTaratura passo);
    void ChiudiPagineTaratura();
    // Closes page id if it is on view; prosegui opens the step TaraturaInCorso holds now.
    void chiudiPagina(IdPagina id, bool prosegui);

    // The warning page's keys. Both close it; the caller takes it away.
    void TastoOK();
    void TastoAnnulla();

    // The 'A' 2 that brings the ECU back to its entry point when a calibration is left: the
    // handshake that follows ends nothing but itself.
    void inviaUscita();

    // The step of pagina is over: after AttesaPassoMs it closes and step passo opens, unless
    // the page has gone meanwhile.
    void passoSuccessivo(LogicaTaratura &pagina, FaseTaratura passo);

    // testo with its first "xx" as passo and its first "yy" as the number of steps.
    static QString ComponiPasso(const QString &testo, int passo);
    // The sample counter to -1 and the previous record to -1.0: a page's frames count from 0
    // and the first status always reads as a change.
    void AzzeraDatiLive();

    // The common box with the title of section SEGNALAZIONI, for the fitter's own actions.
    // One at a time: a box asked for while another is up is not shown and answers 0.
    int domanda(const QString &testo, int flags);
    bool domandaInCorso() const { return m_inDomanda; }
    // The same box raised by the ECU's frames or replies: it comes up once the handler has
    // returned, so that the stream goes on under it, and poi gets the answer. Not shown, nor
    // poi called, if contesto has gone or left the frame by then.
    void avvisoDifferito(const QString &testo, int flags, LogicaTaratura *contesto,
                         std::function<void(int)> poi);

    // The page whose logic takes the status byte now; a later one replaces it.
    void collega(LogicaTaratura *pagina);
    void scollega(LogicaTaratura *pagina);
    LogicaTaratura *paginaCollegata() const { return m_pagina; }

    // GestoreStati: states 121 and 122.
    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;

    // GestoreTaratura
    void marciaNormale(const RecordDati &attuale) override;
    void statoTaratura(int stato, bool sequenza, const RecordDati &attuale) override;

private:
    void inviaIngresso();
    void ingresso();
    void apri(IdPagina id);

    Programma &m_programma;
    TelaioTaratura &m_telaio;
    LogicaTaratura *m_pagina = nullptr;
    bool m_inDomanda = false;
};

} // namespace kv
