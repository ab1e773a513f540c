#pragma once

#include "base/Messaggio.h"
#include "link/DatiLive.h"
#include "link/ErroreEcu.h"
#include "link/MotoreDialogo.h"
#include "monitoring/Canali.h"
#include "shell/FaseTaratura.h"
#include "shell/IdPagina.h"

#include <QObject>

#include <functional>

namespace kv {

class LogicaTaratura;
class Catalogo;
class SessioneLinea;
class TabellaCanali;
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

    SequenzaTaratura(SessioneLinea &linea, Catalogo &catalogo, TabellaCanali &canali, TelaioTaratura &telaio,
                     QObject *parent = nullptr);
    ~SequenzaTaratura() override;

    SessioneLinea &linea() { return m_linea; }
    Catalogo &catalogo() { return m_catalogo; }
    TabellaCanali &canali() { return m_canali; }
    MotoreDialogo &motore();

    // Where the calibration stands. The session is their only writer: pages ask it to move.
    [[nodiscard]] FaseTaratura TaraturaInCorso() const { return m_fase; }
    // The counter within the step, -1 for none.
    [[nodiscard]] qint16 PassoTaratura() const { return m_passo; }
    // The guided sequence runs, not a single page.
    [[nodiscard]] bool TaraturaCompleta() const { return m_completa; }
    // The warning page is up: the ECU's normal running is expected.
    [[nodiscard]] bool AttesaIniTaratura() const { return m_attesaIni; }

    // The menu's entry: the warning page, step 0.
    void avviaSequenza();
    // A single page takes its own step.
    void entraInFase(FaseTaratura fase) { m_fase = fase; }
    // The counter moves from da to a; false, and nothing changes, when it is not at da.
    bool avanzaPasso(qint16 da, qint16 a);
    // The step is over in the sequence: the next one is passo, from its start.
    void passaAFase(FaseTaratura passo);
    // The ECU is in calibration: the guided sequence runs, from step passo.
    void entraInSequenza(FaseTaratura passo)
    {
        m_completa = true;
        passaAFase(passo);
    }
    // The fitter leaves the sequence: from here its pages behave as single ones.
    void abbandonaSequenza() { m_completa = false; }
    // The last step stores: the sequence counts as done, so the ECU's leaving warns of nothing.
    void sequenzaConclusa() { m_completa = true; }
    // The warning page is up.
    void paginaAvvisoAperta() { m_attesaIni = true; }
    // The calibration pages have gone: nothing runs any more.
    void terminata();
    // Continues with the step TaraturaInCorso holds now (a page closed with prosegui).
    void prosegui() { AvviaTaratura(m_fase); }

    // The newest live record, and the one that came before the present one in the sequence
    // (-1 everywhere after AzzeraDatiLive).
    const RecordDati &ultimoRecord() const;
    const RecordDati &recordPrecedente() const { return m_precedente; }
    // The sample counter of a strip page: -1 after AzzeraDatiLive, then one more a frame.
    qint32 avanzaCampione() { return ++m_campione; }

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
    static Messaggio ComponiPasso(Messaggio testo, int passo);
    // The sample counter to -1 and the previous record to -1.0: a page's frames count from 0
    // and the first status always reads as a change.
    void AzzeraDatiLive();

    // The common box with the title of section SEGNALAZIONI, for the fitter's own actions.
    // One at a time: a box asked for while another is up is not shown and answers 0.
    int domanda(const Messaggio &testo, int flags);
    bool domandaInCorso() const { return m_inDomanda; }
    // The same box raised by the ECU's frames or replies: it comes up once the handler has
    // returned, so that the stream goes on under it, and poi gets the answer. Not shown, nor
    // poi called, if contesto has gone or left the frame by then.
    void avvisoDifferito(const Messaggio &testo, int flags, LogicaTaratura *contesto,
                         std::function<void(int)> poi);

    // The page whose logic takes the status byte now; a later one replaces it.
    void collega(LogicaTaratura *pagina);
    void scollega(LogicaTaratura *pagina);
    LogicaTaratura *paginaCollegata() const { return m_pagina; }

    // GestoreStati: states 121 and 122.
    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    // The entry waits for the status byte of the stream, not a reply.
    char rispostaAttesa(int stato) const override
    {
        return stato == StatoIngresso ? 'd' : stato == StatoMemorizzazione ? 'e' : 0;
    }

    // GestoreTaratura
    bool sequenzaInCorso() const override { return m_completa; }
    void marciaNormale(const RecordDati &attuale) override;
    void statoTaratura(int stato, bool sequenza, const RecordDati &attuale) override;

signals:
    // For the frame's message line: the ECU refused the store.
    void segnalazione1(const kv::Messaggio &testo);

private:
    void inviaIngresso();
    void ingresso();
    void apri(IdPagina id);

    SessioneLinea &m_linea;
    Catalogo &m_catalogo;
    TabellaCanali &m_canali;
    TelaioTaratura &m_telaio;
    LogicaTaratura *m_pagina = nullptr;
    bool m_inDomanda = false;

    FaseTaratura m_fase = FaseTaratura::Nessuna;
    qint16 m_passo = -1;
    bool m_completa = false;
    bool m_attesaIni = false;
    bool m_uscita = false; // the 'A' 2 under way ends a calibration instead of starting one
    RecordDati m_precedente;
    qint32 m_campione = -1;
};

} // namespace kv
