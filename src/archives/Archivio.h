#pragma once

#include "archives/SchemaArchivi.h"
#include "base/Messaggio.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <optional>

class QSqlError;

namespace kv {

enum class ErroreArchivio {
    Nessuno,
    FileEstraneo,     // the file is no archive of ours; it is left as it is
    Danneggiato,      // the engine finds the file malformed
    Bloccato,         // another program holds it
    NonApribile,      // cannot be made or opened: folder, rights, engine missing
    SolaLettura,      // a write on an archive that could only be opened for reading
    Scrittura,        // a write did not go through; the archive is as it was before it
    ChiaveDuplicata,  // a row with that key exists
    TestoTroppoLungo, // a text longer than its field
    ChiaveMancante,   // a field of the primary key without text
    Uso,              // unknown index or field, archive not open: the caller's mistake
};

struct EsitoArchivio
{
    ErroreArchivio errore = ErroreArchivio::Nessuno;
    QString file;      // the archive's path
    QString dettaglio; // field name or the engine's text, for the log
    bool ok() const { return errore == ErroreArchivio::Nessuno; }
};

// The message for the user, with the file's path in place of "XXX". Empty for Nessuno.
Messaggio MessaggioArchivio(const EsitoArchivio &esito);

// One archive file open for one operation: its own connection, closed and removed when the
// object goes (or by Chiudi), so nothing stays open between operations. One thread only.
//
// Look-ups follow the seek of an index: "=" finds the first row whose key fields equal the
// given values, ">=" the first row not below them in the index's order; fewer values than
// the index has fields compare only the leading ones. Key fields compare and sort by
// ChiavePiegata, so case never matters. Rows of equal key come in the order they were added.
// Every write is one transaction: it is wholly on disk or not at all.
class Archivio
{
public:
    Archivio();
    ~Archivio();
    Archivio(const Archivio &) = delete;
    Archivio &operator=(const Archivio &) = delete;

    // Open or create, as the archives have always done: makes the folder, clears a read-only
    // mark, creates the file when there is none, adds whatever table, field or index of the
    // schema the file lacks, and leaves the rest of the file as it is. The file is held
    // exclusively until closed. A file that cannot be written (a CD) is opened for reading.
    // A file that is not an SQLite database, a damaged or locked one, gives false with the
    // reason in Esito(); nothing on disk is changed then. nomeFile is a plain file name,
    // looked up in cartella without regard to case.
    bool Apri(const QString &cartella, const QString &nomeFile, const SchemaArchivio &schema);
    void Chiudi();

    bool Aperto() const { return m_schema != nullptr; }
    bool SoloLettura() const { return m_soloLettura; }
    QString Percorso() const { return m_percorso; }
    const SchemaArchivio *Schema() const { return m_schema; }
    // The outcome of the last call.
    const EsitoArchivio &Esito() const { return m_esito; }

    // An empty row of this archive's table.
    RigaArchivio NuovaRiga() const;

    // Seek "="; nullopt when nothing matches or on an error (then Esito() is not ok).
    std::optional<RigaArchivio> Cerca(QStringView indice, const QStringList &chiave);
    // Seek ">=".
    std::optional<RigaArchivio> CercaDa(QStringView indice, const QStringList &chiave);
    // Every row from the seek ">=" on (all rows for an empty key), in the index's order.
    QList<RigaArchivio> Elenca(QStringView indice, const QStringList &da = {});
    // The rows whose key fields begin with the given texts, one text per leading field.
    QList<RigaArchivio> ElencaPrefisso(QStringView indice, const QStringList &prefissi);

    // A new row; ChiaveDuplicata when a unique index already holds its key.
    bool Aggiungi(const RigaArchivio &riga);
    // The row that seek "=" finds gets every field of riga; false when none was found.
    bool Modifica(QStringView indice, const QStringList &chiave, const RigaArchivio &riga);
    // Edits the row with riga's primary key, or adds it when there is none.
    bool Salva(const RigaArchivio &riga);
    // Deletes the row that seek "=" finds; false when none was found.
    bool Cancella(QStringView indice, const QStringList &chiave);

private:
    struct Ricerca;
    bool preparaRicerca(QStringView indice, const QStringList &chiave, Ricerca &r);
    QList<RigaArchivio> righe(const QString &dove, const QVariantList &valori, const Ricerca &r, int limite);
    std::optional<qint64> trovaRowid(QStringView indice, const QStringList &chiave);
    bool scrivi(const RigaArchivio &riga, std::optional<qint64> rowid);
    bool controllaRiga(const RigaArchivio &riga);
    bool pronto(const SchemaArchivio &schema);
    QStringList colonnePresenti(const SchemaArchivio &schema);
    bool schemaPresente(const SchemaArchivio &schema);
    bool creaSchema(const SchemaArchivio &schema);
    bool ricalcolaChiavi(const SchemaArchivio &schema);
    bool erroreMotore(const QSqlError &errore, ErroreArchivio altrimenti);
    void imposta(ErroreArchivio errore, const QString &dettaglio = {});

    QSqlDatabase m_db;
    QString m_connessione;
    QString m_percorso;
    const SchemaArchivio *m_schema = nullptr;
    bool m_soloLettura = false;
    EsitoArchivio m_esito;
};

// Whether an open file holds nothing but the engine's own tables, the schema's table and
// indexes on it. Another program's tables make it someone else's file, and views and triggers
// would run code of whoever made it on our queries and writes (a view can be endless): false,
// with what was found in *estraneo, or with *estraneo empty when the list could not be read.
bool SoloArchivio(const QSqlDatabase &db, const SchemaArchivio &schema, QString *estraneo);

// The three open procedures of the program: -1 with db open, 0 when it could not be opened
// (the reason in db.Esito()).
qint16 ApriArchivioDati(const QString &cartella, const QString &nomeFile, Archivio &db);
qint16 ApriArchivioSoftware(const QString &cartella, const QString &nomeFile, Archivio &db);
qint16 ApriArchivioMappe(const QString &cartella, const QString &nomeFile, Archivio &db);
// Closing never fails.
void ChiudiArchivioDati(Archivio &db);
void ChiudiArchivioSoftware(Archivio &db);
void ChiudiArchivioMappe(Archivio &db);

} // namespace kv
