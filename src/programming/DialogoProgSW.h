#pragma once

#include "base/Messaggio.h"
#include "link/MotoreDialogo.h"

#include <QString>
#include <QStringList>

namespace kv {

struct EsitoS19;
class SessioneLinea;

// What the software page's dialogue asks of the page on screen.
class VistaProgSW
{
public:
    virtual ~VistaProgSW() = default;

    // The page's message line, Segnalazione1.
    virtual void mostraSegnalazione(const Messaggio &testo) = 0;
    // Disabled from the first frame of the flash to its last reply.
    virtual void abilitaPagina(bool abilitata) = 0;
    // BarraPercentuale, 0 to 220.
    virtual void mostraBarra(bool visibile) = 0;
    virtual void impostaBarra(int valore) = 0;
    // The common message box.
    virtual void mostraMsg(const Messaggio &testo, int flags, const Messaggio &titolo) = 0;
    // A question with yes and no, no the default; true for yes.
    virtual bool chiedi(const Messaggio &testo, const Messaggio &titolo) = 0;
};

// The software folder, <program>/SOFTWARE/FILES19, as it is spelt on disk.
QString CartellaFileS19(const QString &percorsoApp);

// ElencoSoftware: the S19 files of the software folder, made first if it is missing; each
// file's name less its last four characters, trimmed, in order of name. Links and folders
// are not releases.
QStringList ElencoSoftware(const QString &percorsoApp);

// What the archive says of a release. avviso holds the archive's own message when it could
// not be opened; the release can be programmed all the same.
struct SchedaSoftware
{
    QString Versione;
    QString Note;
    Messaggio avviso;
};
SchedaSoftware LeggiSchedaSoftware(const QString &percorsoApp, const QString &nome);

// The ECU side of ProgSW: the chosen S19 file checked whole (ControllaS19), the image built
// from it, one question, then 'I', the 220 blocks by 'W' and 'F', one reply each, nothing
// ever repeated. A failure leaves the ECU as it stands; the next start rebuilds the image and
// begins again with 'I'. After 'F' the ECU runs new software, so it is identified anew. It
// owns the states 151 to 160 for as long as it lives.
class DialogoProgSW : public GestoreStati
{
public:
    static constexpr int StatoInizio = 151;  // 'I' sent
    static constexpr int StatoBlocchi = 152; // a 'W' sent
    static constexpr int StatoFine = 153;    // 'F' sent
    static constexpr int IntervalloProgrammazione = 3000;
    static constexpr int FlagInformazione = 0x40;

    DialogoProgSW(SessioneLinea &linea, const QString &percorsoApp, VistaProgSW &vista);
    ~DialogoProgSW() override;

    DialogoProgSW(const DialogoProgSW &) = delete;
    DialogoProgSW &operator=(const DialogoProgSW &) = delete;

    // A click on a node: its trimmed text becomes the chosen release, and the archive
    // tells its version and notes.
    SchedaSoftware scegli(const QString &testoNodo);
    const QString &nomeScelto() const { return m_nome; }

    // A click on Programma.
    void avviaProgrammazione();

    // Between the 'I' and the end of the flash.
    bool inCorso() const;
    qint32 NumBloccoSW() const { return m_numBloccoSW; }
    qint32 IndirizzoProg() const { return m_indirizzoProg; }

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override
    {
        return stato >= StatoInizio && stato <= StatoFine ? 'e' : 0;
    }
    bool senzaFlusso(int stato) const override { return stato >= StatoInizio && stato <= StatoFine; }

private:
    // The image from the chosen file; false, with the message shown, when nothing may be sent.
    bool preparaImmagine();
    // Why the chosen file is refused, naming its first bad line.
    Messaggio messaggioS19(const EsitoS19 &esito) const;
    // Queues block NumBloccoSW; false, with the flash ended, when it cannot be read.
    bool accodaBlocco();
    void bloccoIlleggibile();
    void dopoBlocco();
    void erroreEcu(const QByteArray &payload);

    SessioneLinea &m_linea;
    MotoreDialogo &m_motore;
    const QString m_percorsoApp;
    VistaProgSW &m_vista;

    QString m_nome;
    QString m_fileSW; // FILESW.TXT of this flash
    qint32 m_numBloccoSW = 0;
    qint32 m_indirizzoProg = 0;
};

} // namespace kv
