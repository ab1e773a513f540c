#pragma once

#include "monitoring/Canali.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <array>
#include <optional>

namespace kv {

// The recorder: a ring of the last 41 samples, kept while a monitor window is open so that
// a recording starts with what happened just before the fitter pressed the button, the
// recording state, and the writer of the .ACQ file.
//
// The file only ever grows: a new file gets its two heading lines, then every write appends
// whole sample lines and hands them to the system at once. When a write fails (a full disk,
// a file made read-only, a path that is no longer a plain file inside the program's folder)
// the recording stops and the error waits in prendiErrore() for the window to tell the
// fitter; a half-written batch is cut off again, so what the file held before stays as it
// was. The samples of that batch are lost, not silently as they once were, but with a
// message.
class AnelloRegistrazione : public QObject
{
    Q_OBJECT
public:
    static constexpr int LimiteSuperiore = 40;
    static constexpr int Dimensione = LimiteSuperiore + 1;

    enum Stato : qint16 {
        Fermo = 0,
        InRegistrazione = 1,
        InPausa = 2,
    };

    enum class Esito {
        Fatto,
        Ignorato, // not a command of the present state
        SenzaFile // Inizio with no file chosen, or while recording
    };

    struct Errore
    {
        enum class Tipo {
            Scrittura, // the system refused the write
            Percorso   // outside the program's folder, or not a plain file
        };
        Tipo tipo = Tipo::Scrittura;
        QString file;
        QString dettaglio; // the system's reason, for the log
    };

    AnelloRegistrazione();

    // The channel table for the heading lines and the folder that recordings must stay in.
    void collega(const TabellaCanali *canali, const QString &cartellaProgramma);

    // Empty ring: no newest element, every record free (AzzeraRegistrazione).
    void azzera();
    void AzzeraRegistrazione() { azzera(); }

    // Takes a decoded sample: the next slot gets the next sample number and channels 1..11.
    // True when the slot written is the last one, the moment a recording writes the ring.
    bool aggiungi(const RecordDati &campione);
    // The same, and while recording a full ring goes to the file; campioneRegistrato follows.
    // Called for each live frame while a monitor window is open.
    bool MemorizzaCampione(const RecordDati &campione);

    // The writer; prima: the ring's whole history in time order, otherwise elements 0 up to
    // the newest. Acts only while recording and with something in the ring; the ring is
    // empty afterwards, written or not.
    void ScriviRegistrazione(bool prima);

    // The toolbar's commands.
    Esito Inizio();
    Esito Pausa();
    Esito Fine();
    // A monitor window closes: what the ring holds goes to the file if recording, then the
    // ring is emptied; the state stays.
    void chiudiFinestra();

    // The stored recording file, tried: a missing file still gives its name, one that
    // cannot be opened, whose folder has gone or that lies outside the program's folder
    // gives none.
    QString LeggiFileRegistrazione() const;
    // Sets FileRegistrazione; false, and none set, for a path outside the program's folder.
    bool impostaFileRegistrazione(const QString &percorso);
    // The chosen file already holds a recording, which a start would add to.
    bool fileConDati() const;

    // The last write failure, once; the recording has been stopped by it.
    std::optional<Errore> prendiErrore();
    bool inErrore() const { return m_errore.has_value(); }

    // The lines as the file holds them, without their CR LF.
    QString rigaNomi() const;
    QString rigaUnita() const;
    static QString rigaCampione(const RecordDati &r);

    std::array<RecordDati, Dimensione> BufferRegistrazione;
    qint16 IndiceRegistrazione = -1; // newest element, -1 when empty
    double ContaRegistrazione = -1;  // number of the newest sample, -1 before the first
    qint16 StatoRegistrazione = Fermo;
    // A monitor window is open: every live record goes into the ring.
    bool RegistrazioneAttiva = false;
    QString FileRegistrazione; // full path, empty when none is chosen

signals:
    // A live sample stored by MemorizzaCampione; alLimite when its index is at the upper
    // bound, the moment a recording writes the file and may fail.
    void campioneRegistrato(bool alLimite);

private:
    bool scrivi(const QByteArray &righe);
    void fallito(Errore::Tipo tipo, const QString &dettaglio);

    const TabellaCanali *m_canali = nullptr;
    QString m_cartella;
    std::optional<Errore> m_errore;
};

// The channels of a sample line after its number, in the file's order.
inline constexpr std::array<int, 11> CanaliRegistrati = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 1};

// How the recorder's controls stand in a state: the same table for both monitor windows.
struct StatoComando
{
    bool visibile = false;
    bool abilitato = false;
    bool premuto = false;
};

struct ComandiRegistrazione
{
    StatoComando inizio;   // Inizio and MenuReg(0)
    StatoComando pausa;    // Pausa and MenuReg(1)
    StatoComando fine;     // the button Fine
    StatoComando fineMenu; // MenuReg(2)
    StatoComando startMem; // Start_Mem and MenuFile(0)
};

ComandiRegistrazione AggiornaMenuRegistrazione(int stato);

// True when the path names an entry inside the folder (not the folder itself), with no
// link on the way and, if it exists, a plain file.
bool PercorsoNellaCartella(const QString &percorso, const QString &cartella);

} // namespace kv
