#pragma once

#include "archives/Archivio.h"

#include <QList>
#include <QString>

#include <array>
#include <functional>
#include <optional>

namespace kv {

class AnelloRegistrazione;

// The record card of a recording, without its window (Memorf): make, model, file name and
// notes, kept as a row of DATI in ARCHDATI.MDB, and the recording file the card names,
// DATI/<make>/<model>/<FILE>.ACQ below the program's folder. The archive is open from
// Apri to Chiudi, as long as the card is on screen.
//
// A name typed on the card becomes a folder or a file: only names that stay one plain
// entry inside DATI are taken, in characters the program's files can hold (Windows-1252,
// the code page of the settings and of the recordings).
class SchedaRegistrazione
{
public:
    enum Casella {
        Marca = 0,
        Modello = 1,
        File = 2,
        Note = 3,
    };
    static constexpr int NumeroCaselle = 4;
    // The boxes' maximum lengths: those of the fields of DATI, and 255 for the notes.
    static constexpr std::array<int, NumeroCaselle> Lunghezza = {50, 50, 20, 255};
    using Caselle = std::array<QString, NumeroCaselle>;

    // An entry of ElencoEsi, with the FILE of its card beside it (NomeEsi).
    struct Voce
    {
        QString testo;
        QString file;
    };

    struct Esito
    {
        enum class Tipo {
            Fatto,
            Vuota,         // the box casella is empty
            NomeRifiutato, // the box casella holds what no folder or file may be named
            FuoriCartella, // the path would leave DATI (a link on the way)
            NonSostituita, // the card or its file existed and the fitter kept it
            Archivio,      // ARCHDATI.MDB refused; archivio tells why
            Cartella,      // the folder could not be made
            VecchioFile,   // the old recording at that path could not be deleted
            Impostazioni,  // FileMemor could not be stored
        };
        Tipo tipo = Tipo::Fatto;
        int casella = -1;
        QString percorso; // the recording file, or the name refused
        EsitoArchivio archivio;
        bool ok() const { return tipo == Tipo::Fatto; }
    };

    SchedaRegistrazione(const QString &percorsoApp, AnelloRegistrazione &anello);

    // ApriArchivioDati on DATI; false with the reason in esitoArchivio().
    bool Apri();
    void Chiudi();
    bool aperta() const { return m_db.Aperto(); }
    const EsitoArchivio &esitoArchivio() const { return m_db.Esito(); }

    // The cards whose make and model begin with the texts typed, walking PER_MARCAMOD from
    // the first key not below them and stopping at the first row outside the bounds.
    QList<Voce> ElencoEsi(const QString &marca, const QString &modello);
    // The card of an entry, as the boxes show it (NULL as empty text); none when it has gone.
    std::optional<Caselle> LeggiScheda(const Voce &voce);

    // Stores the card and chooses its file: the row written or replaced in one transaction,
    // the folder made, a file already at that path deleted, the path kept as FileMemor and
    // read back into the recorder. sostituire is asked, and must say yes, when the card or
    // a file at its path already exists. Nothing is written unless every name passes.
    Esito Memorizza(const Caselle &caselle, const std::function<bool()> &sostituire);

    // A recording started again goes to a file of its own: the card of the recorder's file
    // copied under the next free name (FILE_2, FILE_3...), stored as Memorizza stores it.
    // Nothing is replaced; without a card (or without the archive) the folders' names stand
    // for make and model.
    Esito NuovoFile();
    // The file's name with the number n behind it, cut to fit the box.
    static QString NomeNumerato(const QString &file, int n);

    QString cartellaDati() const;
    // The file a card names; empty, with the reason in rifiuto, when a name is refused or
    // the path leaves DATI. Existing folders are matched without regard to case.
    QString PercorsoRegistrazione(const QString &marca, const QString &modello, const QString &file,
                                  Esito *rifiuto = nullptr) const;

    // The entry of ElencoEsi: make and model trimmed, upper-cased, each blank-padded or cut to 50.
    static QString VoceElenco(const QString &marca, const QString &modello);
    // The box's text as it stands when the box is left: blank-padded to its length.
    static QString Imbottita(const QString &testo, int casella);
    // What the make, model and file boxes take as typed.
    static bool CarattereAmmesso(QChar c);
    // A whole (trimmed) name for the box.
    static bool NomeAmmesso(const QString &nome, int casella);

private:
    QString m_percorsoApp;
    AnelloRegistrazione &m_anello;
    Archivio m_db;
};

// The message for the fitter; empty for Fatto, Vuota and NonSostituita, which speak by a
// beep and the focus.
Messaggio MessaggioEsitoScheda(const SchedaRegistrazione::Esito &esito);

} // namespace kv
