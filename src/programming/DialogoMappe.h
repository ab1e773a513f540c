#pragma once

#include "base/Messaggio.h"
#include "link/ErroreEcu.h"
#include "link/MotoreDialogo.h"
#include "programming/FileMappa.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace kv {

class Catalogo;
class SessioneLinea;

// What the two map pages' dialogues ask of the page on screen.
class VistaMappe
{
public:
    virtual ~VistaMappe() = default;

    // The page's message line (Segnalazione1), empty to clear it.
    virtual void mostraSegnalazione(const Messaggio &testo) = 0;
    // Disabled from the first frame of a transfer to its last reply.
    virtual void abilitaPagina(bool abilitata) = 0;
    // The progress bar, shown at that value and maximum; hidden again.
    virtual void mostraAvanzamento(int valore, int massimo) = 0;
    virtual void nascondiAvanzamento() = 0;
    virtual void beep() = 0;
    // The common message box; the code of the key pressed (6 for yes).
    virtual int domanda(const Messaggio &testo, int flags, const Messaggio &titolo) = 0;
    // The page ends. Called last; the page may go away after it returns.
    virtual void chiudiPagina() = 0;
    // A read has been filed under those names: the tree is built again and shows it.
    virtual void mappaArchiviata(const ChiaveMappa &) {}
    // The fitter would not overwrite: the map's name is to be changed.
    virtual void fuocoNomeFile() {}
    // A write cut off half-way: the question whether to write the map again, asked once the
    // reply that ended it has been dealt with; yes calls ScritturaMappe::Riscrivi.
    virtual void offriRiscrittura(const Messaggio &) {}
};

// Codes of the message box and the question's flags: yes and no with the question mark;
// with SecondoPredefinito, no is the answer that Enter gives.
inline constexpr int RispostaSiMappe = 6;
inline constexpr int FlagDomandaMappe = 0x24;
inline constexpr int SecondoPredefinito = 0x100;

// The ECU side of ReadMappe: the map is read in blocks of 64 bytes from 0xC100 into
// KVMAPPA.TMP, and only after the last block is the file put in place (replacing one of the
// same name in one step) and its catalogue row written. A read that stops for any reason
// leaves no new file, no row and no KVMAPPA.TMP, and an older map of that name untouched.
// It owns states 161 to 170 for as long as it lives.
class LetturaMappe : public GestoreStati
{
public:
    static constexpr int Stato = 161;

    // The map lands in the archive below percorsoApp; the catalogue says where the ECU keeps
    // its lambda flag.
    LetturaMappe(SessioneLinea &linea, QString percorsoApp, const Catalogo &catalogo, VistaMappe &vista);
    ~LetturaMappe() override;
    LetturaMappe(const LetturaMappe &) = delete;
    LetturaMappe &operator=(const LetturaMappe &) = delete;

    // Leggi: campi holds the plant of the selected branch (empty when none is selected) and
    // the make, model and map name typed; nota the note.
    void Leggi(const ChiaveMappa &campi, const QString &nota);

    bool inCorso() const { return m_inCorso; }
    // The map file in use since the last Leggi that got as far as the line.
    const QString &NomeFileMappa() const { return m_nomeFileMappa; }
    int NumBloccoMappa() const { return m_numBloccoMappa; }
    int TotBlocchiMappa() const { return m_totBlocchiMappa; }
    quint32 IndirizzoProg() const { return m_indirizzoProg; }

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override { return stato == Stato ? 'r' : 0; }
    bool senzaFlusso(int stato) const override { return stato == Stato; }

private:
    void fine();
    // The read ends without a map: KVMAPPA.TMP goes, the page comes back with the message.
    void interrompi(const Messaggio &messaggio, bool nascondiBarra = true);
    QString temporaneo() const;

    SessioneLinea &m_linea;
    const QString m_percorsoApp;
    const Catalogo &m_catalogo;
    VistaMappe &m_vista;
    ChiaveMappa m_chiave;
    QString m_nota;
    QString m_nomeFileMappa;
    int m_numBloccoMappa = 0;
    int m_totBlocchiMappa = 0;
    quint32 m_indirizzoProg = 0;
    bool m_inCorso = false;
    std::optional<double> m_scalaLambda;
};

// The ECU side of ProgMappe: the map file is checked whole (ControllaMappa) and refused,
// naming its first bad record, unless it is exactly a map; after one question its 512 bytes
// go over in 8 blocks by 'W' from 0xC100, without 'I' or 'F'. Asked for, they are then read
// back and compared. A write cut off half-way leaves part of the new map and part of the old
// in the ECU: the fitter is told so and offered to write it again. It owns states 171 to 180
// for as long as it lives.
class ScritturaMappe : public GestoreStati
{
public:
    static constexpr int Stato = 171;
    static constexpr int StatoVerifica = 172;
    static constexpr int IntervalloScrittura = 3000;

    ScritturaMappe(SessioneLinea &linea, QString percorsoApp, VistaMappe &vista);
    ~ScritturaMappe() override;
    ScritturaMappe(const ScritturaMappe &) = delete;
    ScritturaMappe &operator=(const ScritturaMappe &) = delete;

    // Programma: mappa holds plant, make and model of the selected model (empty when none
    // is selected) and the name of the selected map; verifica asks for the read-back.
    void ProgrammaMappa(const ChiaveMappa &mappa, bool verifica);
    // The same for 512 bytes from elsewhere (a history entry), named nome in the question and
    // the messages; refused unless they are the map area's size.
    void ProgrammaImmagine(const QByteArray &immagine, const QString &nome, bool verifica);
    // The map of the last write sent again, without a question: the yes to the offer after
    // a write cut off half-way.
    void Riscrivi();
    // Esci: closes at once unless a map was written in this visit; then asks first.
    void Esci();

    bool MappaScritta() const { return m_mappaScritta; }
    const QString &NomeFileMappa() const { return m_nomeFileMappa; }
    int NumBloccoMappa() const { return m_numBloccoMappa; }
    quint32 IndirizzoProg() const { return m_indirizzoProg; }
    // The first address where the ECU differs from the file after the last verification;
    // -1 when it did not differ or none has run.
    qint64 PrimaDifferenza() const { return m_primaDifferenza; }

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    // The blocks are acknowledged; the check after them reads back.
    char rispostaAttesa(int stato) const override
    {
        return stato == Stato ? 'e' : stato == StatoVerifica ? 'r' : 0;
    }
    bool senzaFlusso(int stato) const override { return stato == Stato || stato == StatoVerifica; }

private:
    void invia();
    // Block NumBloccoMappa queued as the next 'W'.
    void accodaBlocco();
    void bloccoScritto();
    void fineScrittura();
    void avviaVerifica();
    void fineVerifica();
    void fallita(const Messaggio &messaggio, bool nascondiBarra);
    // The write stopped after at least one block may have gone in.
    void interrotta(Messaggio motivo);

    SessioneLinea &m_linea;
    const QString m_percorsoApp;
    VistaMappe &m_vista;
    QString m_nomeFileMappa;
    QString m_nomeMappa; // as the messages name it: LPG\Fiat\Punto\base
    int m_numBloccoMappa = 0;
    quint32 m_indirizzoProg = 0;
    bool m_mappaScritta = false;
    bool m_verifica = false;
    // The 512 bytes being sent, as the check found them, and what the read-back found.
    QByteArray m_immagine;
    QByteArray m_riletti;
    qint64 m_primaDifferenza = -1;
};

} // namespace kv
