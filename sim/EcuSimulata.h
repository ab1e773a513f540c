#pragma once

#include "Guasti.h"
#include "ImmagineIniziale.h"
#include "MemoriaEcu.h"
#include "ModelloMotore.h"
#include "RicevitoreComandi.h"
#include "Taratura.h"

#include "variables/Catalogo.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QObject>

#include <deque>
#include <functional>

class QTimer;

namespace kv::sim {

class Linea;
class Sveglia;

// Status byte of an 'e' reply.
namespace ErroreEcu {
enum : quint8 {
    ComandoSconosciuto = 0x01, // letter the firmware does not know
    ComandoNonAmmesso = 0x02,  // known, but not in the present mode
    IndirizzoNonValido = 0x03, // range not all in one writable area
    LunghezzaErrata = 0x04,    // frame too short or too long for the command
    ScritturaFallita = 0x05,   // the usual code of an injected write fault
    CodiceTaraturaErrato = 0x06,
    Fatto = 0xFF,
};
} // namespace ErroreEcu

struct OpzioniEcu
{
    int frameAlSecondo = 25; // 'd' frames per second; 0: the caller drives avanzaTempo()
    int baud = 9600;
    bool cadenzaReale = false;        // bytes leave at baud / 10 per second, queued like a UART
    bool applicazionePresente = true; // false: only the boot loader, 'g' frames
    int tipoSonda = 0;                // TIPOLAMBDA; non-zero sends lambda ready on 0..255
    bool operatoreManuale = false;    // the TPS step waits for the fitter's pedal (see Taratura)
    QString fileMemoria;              // programmable area kept here between runs
    StringheVersione versione;        // used when no memory file supplies an image
    quint32 seme = 1;
    int durataCicloMs = 36000;
    Guasti guasti;
};

// The ECU at the far end of the line: memory, firmware commands, calibration programs, an
// engine feeding the live stream, and faults on demand. All state is in the object. It
// runs in the thread it lives in: open the line there, then moveToThread() if wanted, and
// call avvia() (e.g. by QMetaObject::invokeMethod) in that thread; let the thread's
// finished() deleteLater() it. From other threads use queued calls for the slots;
// percorsoDispositivo(), erroreMemoria() and the memory accessors are safe from anywhere,
// the other getters only from the object's thread.
class EcuSimulata : public QObject
{
    Q_OBJECT
public:
    enum class Modo {
        Applicazione,
        Programmazione,
        SenzaApplicazione
    };
    Q_ENUM(Modo)

    explicit EcuSimulata(const OpzioniEcu &opzioni = {}, QObject *parent = nullptr);
    ~EcuSimulata() override;

    // Lines. False with erroreLinea() filled when the line cannot be had.
    bool apriPty(const QString &collegamento = {});
    bool apriDispositivo(const QString &dispositivo);
    QString percorsoDispositivo() const;
    QString erroreLinea() const;

    // Empty unless the memory file could not be read or written.
    QString erroreMemoria() const;

    // Memory as the firmware sees it; addresses the ECU has not read as 0xFF. A direct
    // write bypasses faults and modes and is kept in the memory file if it touches the
    // programmable area; false when the range is not all memory.
    QByteArray leggiMemoria(quint32 indirizzo, int conteggio) const;
    bool scriviMemoria(quint32 indirizzo, const QByteArray &dati);
    // The five version texts into the image, e.g. over one loaded from the memory file.
    void scriviVersione(const StringheVersione &versione);

    Modo modo() const { return m_modo; }
    // The blocks a programming session has been sent since its 'I' (writes to a wrong
    // address not counted).
    int bloccoProgrammazione() const { return m_bloccoProgrammazione; }
    quint8 statoTaratura() const { return m_taratura.stato(); }
    Taratura::Fase faseTaratura() const { return m_taratura.fase(); }
    const CampioneMotore &ultimoCampione() const { return m_ultimoCampione; }
    // What an outside rev counter reads at the car.
    double giriVeri() const { return m_motore.giriVeri(); }
    Taratura::Pedale pedale() const { return m_taratura.pedaleAttuale(); }
    bool operatoreManuale() const { return m_taratura.manuale(); }
    const Guasti &guasti() const { return m_iniettore.guasti(); }
    const OpzioniEcu &opzioni() const { return m_opzioni; }

public slots:
    void avvia();
    void ferma();
    // Time moves on by ms: one engine step and, if the application runs, one stream frame.
    void avanzaTempo(int ms);
    // Bytes from the tester.
    void riceviDati(const QByteArray &bytes);

    void scartaOgniNRisposte(int n);
    void corrompiProssimoFrame();
    void corrompiOgniNFrame(int n);
    void impostaRumore(int ogniNFrame, int lunghezza = 8, bool conStx = false);
    // codice 0xFF takes the fault off that address.
    void impostaErroreScrittura(quint32 indirizzo, quint8 codice = ErroreEcu::ScritturaFallita);
    void togliErroriScrittura();
    void impostaRitardoRisposta(int ms);
    void impostaStallo(bool attivo);
    // Programming faults by block number (see Guasti); 0 takes them off.
    void impostaGuastoBlocco(int blocco, quint8 codice = ErroreEcu::ScritturaFallita);
    void impostaCadutaAlBlocco(int blocco, int durataMs = 0);
    // The line vanishes: the tester's port sees an error, and nothing from it is heard.
    // riapriLinea() brings up a new one (a pty gets a new device path; a fixed symlink
    // follows it); without a line of its own, it just lets the ECU hear and speak again.
    void riaggancia();
    bool riapriLinea();
    void impostaCadenzaReale(bool attiva);
    void impostaFrequenzaFlusso(int frameAlSecondo);

    // The fitter at the car: the pedal (a word from the fitter puts the TPS step in manual),
    // who works it, and the kind of lambda probe fitted (0 or 1, as TIPOLAMBDA reports it).
    void impostaPedale(bool premuto);
    void impostaOperatoreManuale(bool manuale);
    void impostaTipoSonda(int tipo);

signals:
    // Exactly what goes onto the line, piece by piece.
    void datiInviati(const QByteArray &bytes);
    void frameInviato(const QByteArray &frame);
    void frameRicevuto(const QByteArray &frame);
    void byteScartati(const QByteArray &bytes);
    void rumoreInviato(const QByteArray &bytes);
    void rispostaScartata(const QByteArray &frame);
    void lineaChiusa(const QString &motivo);
    void erroreMemoriaRilevato(const QString &testo);
    // The line has gone dead at that block of a programming session.
    void lineaCaduta(int blocco);

private:
    bool usaLinea(Linea *linea);
    void tick();
    void passoMotore(int dtMs);
    void gestisci(const QByteArray &dati);
    void comandoLettura(const QByteArray &dati);
    void comandoScrittura(const QByteArray &dati, bool programmazione);
    void comandoTaratura(const QByteArray &dati);
    void riavviaApplicazione();
    SoglieMotore leggiSoglie() const;
    int leggiRam(int parametro) const;
    void salvaMemoria();
    void salvaMemoriaPiuTardi();

    void rispondi(const QByteArray &dati, std::function<void()> poi = {});
    void rispondiEsito(quint8 codice, std::function<void()> poi = {});
    void emetti(const QByteArray &frame, bool risposta);
    void accoda(const QByteArray &bytes);
    void cadenza();
    void scriviLinea(const QByteArray &bytes);
    void elaboraRicevuti(const QByteArray &bytes);
    void ricezioneCadenzata();
    // Ten bits a byte at the line speed: start, eight data, stop.
    qint64 durataNs(qint64 byte) const;

    OpzioniEcu m_opzioni;
    Catalogo m_catalogo;
    mutable QMutex m_mutex; // memory, file and device path
    MemoriaEcu m_memoria;
    FileMemoria m_file;
    QString m_percorso;

    Modo m_modo;
    RicevitoreComandi m_ricevitore;
    ModelloMotore m_motore;
    Taratura m_taratura;
    CampioneMotore m_ultimoCampione;
    IniettoreGuasti m_iniettore;
    int m_vitaMs = 0;
    int m_bloccoProgrammazione = 0;

    Linea *m_linea = nullptr;
    bool m_riagganciato = false;

    QTimer *m_timerFlusso;
    // Pacing by absolute deadlines on the monotonic clock, both ways.
    Sveglia *m_svegliaTx;
    Sveglia *m_svegliaRx;
    QTimer *m_timerSalvataggio;
    // Bytes from the tester and the time (ns) their last bit has crossed the line.
    struct InArrivo
    {
        qint64 fineNs;
        QByteArray byte;
    };
    std::deque<InArrivo> m_codaRx;
    qint64 m_fineRxNs = 0;
    QElapsedTimer m_orologio;
    qint64 m_ultimoTickMs = 0;
    QByteArray m_codaTx;
    qint64 m_inizioTxNs = 0; // the first byte of m_codaTx's run started on the line then
    qint64 m_byteCadenzati = 0;
};

} // namespace kv::sim
