#pragma once

#include <QLatin1String>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>

namespace kv {

// Where the archives live below PercorsoApp, and their files. Folder and file names are
// matched without regard to case on disk; these are the spellings used for new ones.
namespace FileArchivi {
inline constexpr QLatin1String CartellaDati("DATI");
inline constexpr QLatin1String FileDati("ARCHDATI.MDB");
inline constexpr QLatin1String CartellaSoftware("SOFTWARE");
inline constexpr QLatin1String FileSoftware("SOFTWARE.MDB");
inline constexpr QLatin1String CartellaS19("SOFTWARE/FILES19");
inline constexpr QLatin1String CartellaMappe("MAPPATURE");
inline constexpr QLatin1String FileMappe("ARCHMAPPE.MDB");
inline constexpr QLatin1String CartellaTemp("TEMP");
inline constexpr QLatin1String FileTempMappe("DBTEMP.MDB");
inline constexpr QLatin1String FileTempSoftware("SOFTRIPR.MDB");
inline constexpr QLatin1String CartellaMarchi("MARK");
} // namespace FileArchivi

// A text field; dimensione 0 is a memo, without a limit.
struct CampoArchivio
{
    QString nome;
    int dimensione = 0;
};

struct IndiceArchivio
{
    QString nome;
    QStringList campi;
    bool primario = false;
    bool unico = false;
};

// One table with its fields and indexes: each archive file holds one.
struct SchemaArchivio
{
    QString tabella;
    QList<CampoArchivio> campi;
    QList<IndiceArchivio> indici;

    // By name, without regard to case; -1 / nullptr when there is none.
    int campo(QStringView nome) const;
    const IndiceArchivio *indice(QStringView nome) const;
    const IndiceArchivio *primario() const;
};

// DATI of ARCHDATI.MDB: the record cards of the recordings.
const SchemaArchivio &SchemaDati();
// SOFTWARE of SOFTWARE.MDB and SOFTRIPR.MDB.
const SchemaArchivio &SchemaSoftware();
// MAPPE of ARCHMAPPE.MDB and DBTEMP.MDB.
const SchemaArchivio &SchemaMappe();
// MAPPE of ARCHMAPPE.MDB alone: the same, and the ScalaLambda the ECU had when the map was
// read from it ("0" or "255"; NULL when nobody knows). Exchange media keep the schema above.
const SchemaArchivio &SchemaArchivioMappe();

// The form a key value is compared in: upper case over the whole of Unicode, so that
// "Fiat" and "FIAT", "Citroën" and "CITROËN" are one key. Keys sort by this form.
QString ChiavePiegata(QStringView testo);

// One row of a table: a text or NULL for each field of its schema, reached by field name
// without regard to case ("NOTE" and "Note" are one field).
class RigaArchivio
{
public:
    RigaArchivio() = default;
    explicit RigaArchivio(const SchemaArchivio &schema);

    const SchemaArchivio *schema() const { return m_schema; }

    // NULL, and an unknown field, give nullopt.
    std::optional<QString> Campo(QStringView nome) const;
    // NULL as empty text.
    QString Testo(QStringView nome) const;
    bool Nullo(QStringView nome) const { return !Campo(nome).has_value(); }
    // False for a field the schema does not have.
    bool Imposta(QStringView nome, std::optional<QString> valore);

    std::optional<QString> valore(int indice) const { return m_valori.value(indice); }

private:
    const SchemaArchivio *m_schema = nullptr;
    QList<std::optional<QString>> m_valori;
};

} // namespace kv
