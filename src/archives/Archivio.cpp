#include "archives/Archivio.h"

#include "archives/Cartelle.h"
#include "base/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>

namespace kv {

namespace {

constexpr char Driver[] = "QSQLITE";
constexpr QByteArrayView Firma("SQLite format 3\0", 16);
// Long enough to ride out a virus scanner's look at the file, short enough for a click.
constexpr int AttesaBloccoMs = 1000;

// SQLite's primary result codes, and the extended ones of a broken constraint.
enum : int {
    SqliteBusy = 5,
    SqliteLocked = 6,
    SqliteReadOnly = 8,
    SqliteIoErr = 10,
    SqliteCorrupt = 11,
    SqliteFull = 13,
    SqliteConstraint = 19,
    SqliteNotADb = 26,
    SqliteConstraintCheck = 275,
};

QString nome(const QString &identificatore)
{
    return u'"' + QString(identificatore).replace(u'"', QLatin1String("\"\"")) + u'"';
}

QString colonnaChiave(const QString &campo)
{
    return QStringLiteral("CHIAVE_") + campo;
}

bool indicizzato(const SchemaArchivio &s, const QString &campo)
{
    for (const IndiceArchivio &i : s.indici)
        for (const QString &c : i.campi)
            if (c.compare(campo, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

// Every column the table has, in order: the fields, then the folded keys.
QStringList colonne(const SchemaArchivio &s)
{
    QStringList r;
    for (const CampoArchivio &c : s.campi)
        r << c.nome;
    for (const CampoArchivio &c : s.campi)
        if (indicizzato(s, c.nome))
            r << colonnaChiave(c.nome);
    return r;
}

QString definizione(const QString &colonna, int dimensione)
{
    QString d = nome(colonna) + QStringLiteral(" TEXT");
    if (dimensione > 0)
        d += QStringLiteral(" CHECK (length(%1) <= %2)").arg(nome(colonna)).arg(dimensione);
    return d;
}

QString ordine(const IndiceArchivio &i)
{
    QStringList parti;
    for (const QString &c : i.campi)
        parti << nome(colonnaChiave(c));
    parti << QStringLiteral("rowid");
    return parti.join(u',');
}

bool nomeSemplice(const QString &n)
{
    return !n.isEmpty() && !n.contains(u'/') && !n.contains(u'\\') && n != u"." && n != u"..";
}

} // namespace

Messaggio MessaggioArchivio(const EsitoArchivio &esito)
{
    Messaggio m;
    switch (esito.errore) {
    case ErroreArchivio::Nessuno:
        return {};
    case ErroreArchivio::FileEstraneo:
        m = Messaggio("ARCHIVI", "ESTRANEO");
        break;
    case ErroreArchivio::Danneggiato:
        m = Messaggio("ARCHIVI", "DANNEGGIATO");
        break;
    case ErroreArchivio::Bloccato:
        m = Messaggio("ARCHIVI", "BLOCCATO");
        break;
    case ErroreArchivio::NonApribile:
    case ErroreArchivio::Uso:
        m = Messaggio("ARCHIVI", "APERTURA");
        break;
    case ErroreArchivio::SolaLettura:
        m = Messaggio("ARCHIVI", "SOLALETTURA");
        break;
    case ErroreArchivio::Scrittura:
        m = Messaggio("ARCHIVI", "SCRITTURA");
        break;
    case ErroreArchivio::ChiaveDuplicata:
        m = Messaggio("ARCHIVI", "DUPLICATA");
        break;
    case ErroreArchivio::TestoTroppoLungo:
        m = Messaggio("ARCHIVI", "LUNGO");
        break;
    case ErroreArchivio::ChiaveMancante:
        m = Messaggio("ARCHIVI", "CHIAVE");
        break;
    }
    return m.con(QStringLiteral("XXX"), QDir::toNativeSeparators(esito.file));
}

bool SoloArchivio(const QSqlDatabase &db, const SchemaArchivio &schema, QString *estraneo)
{
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(QStringLiteral("SELECT type, name, tbl_name, sql FROM sqlite_master"))) {
        estraneo->clear();
        return false;
    }
    while (q.next()) {
        const QString tipo = q.value(0).toString();
        const QString nomeOggetto = q.value(1).toString();
        const bool nostra = q.value(2).toString().compare(schema.tabella, Qt::CaseInsensitive) == 0;
        // The engine keeps its own tables under names no one else may take.
        const bool tabella = tipo == u"table"
                             && q.value(3).toString().startsWith(u"CREATE TABLE", Qt::CaseInsensitive)
                             && (nostra || nomeOggetto.startsWith(u"sqlite_", Qt::CaseInsensitive));
        if (!tabella && !(tipo == u"index" && nostra)) {
            *estraneo = tipo + u' ' + nomeOggetto;
            return false;
        }
    }
    return true;
}

// ---- open and close --------------------------------------------------------------------

Archivio::Archivio() : m_connessione(QStringLiteral("kv-archivio-%1").arg(quintptr(this), 0, 16)) {}

Archivio::~Archivio()
{
    Chiudi();
}

void Archivio::Chiudi()
{
    m_schema = nullptr;
    m_soloLettura = false;
    if (!m_db.isValid())
        return;
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connessione);
}

void Archivio::imposta(ErroreArchivio errore, const QString &dettaglio)
{
    m_esito = {errore, m_percorso, dettaglio};
}

bool Archivio::erroreMotore(const QSqlError &errore, ErroreArchivio altrimenti)
{
    const int codice = errore.nativeErrorCode().toInt();
    ErroreArchivio e = altrimenti;
    switch (codice & 0xFF) {
    case SqliteBusy:
    case SqliteLocked:
        e = ErroreArchivio::Bloccato;
        break;
    case SqliteCorrupt:
    case SqliteNotADb:
        e = ErroreArchivio::Danneggiato;
        break;
    case SqliteReadOnly:
        e = ErroreArchivio::SolaLettura;
        break;
    case SqliteIoErr:
    case SqliteFull:
        e = ErroreArchivio::Scrittura;
        break;
    case SqliteConstraint:
        e = codice == SqliteConstraintCheck ? ErroreArchivio::TestoTroppoLungo
                                            : ErroreArchivio::ChiaveDuplicata;
        break;
    default:
        break;
    }
    imposta(e, errore.text());
    return false;
}

bool Archivio::Apri(const QString &cartella, const QString &nomeFile, const SchemaArchivio &schema)
{
    Chiudi();
    m_percorso = cartella + u'/' + nomeFile;
    if (!nomeSemplice(nomeFile)) {
        imposta(ErroreArchivio::Uso, nomeFile);
        return false;
    }
    if (!QSqlDatabase::isDriverAvailable(QLatin1String(Driver))) {
        imposta(ErroreArchivio::NonApribile, QLatin1String(Driver));
        return false;
    }
    if (!CreaCartella(cartella)) {
        imposta(ErroreArchivio::NonApribile, cartella);
        return false;
    }
    m_percorso = PercorsoFile(cartella, nomeFile);

    // Only an SQLite file, or nothing, is ours to open: whatever else lies there stays.
    const QFileInfo info(m_percorso);
    const bool esisteva = info.exists() || info.isSymLink();
    if (info.isSymLink() || (esisteva && !info.isFile())) {
        imposta(ErroreArchivio::FileEstraneo);
        return false;
    }
    if (esisteva && info.size() > 0) {
        QFile f(m_percorso);
        if (!f.open(QIODevice::ReadOnly)) {
            imposta(ErroreArchivio::NonApribile, f.errorString());
            return false;
        }
        if (f.read(Firma.size()) != Firma) {
            imposta(ErroreArchivio::FileEstraneo);
            return false;
        }
    }
    if (esisteva)
        ToglieSolaLettura(m_percorso, cartella);
    // The journal beside the file needs the folder too.
    m_soloLettura = esisteva && (!QFileInfo(m_percorso).isWritable() || !QFileInfo(cartella).isWritable());

    m_db = QSqlDatabase::addDatabase(QLatin1String(Driver), m_connessione);
    m_db.setDatabaseName(m_percorso);
    m_db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1%2")
                               .arg(AttesaBloccoMs)
                               .arg(m_soloLettura ? QStringLiteral(";QSQLITE_OPEN_READONLY") : QString()));
    bool ok = m_db.open() || erroreMotore(m_db.lastError(), ErroreArchivio::NonApribile);
    ok = ok && pronto(schema);
    if (ok && m_soloLettura) {
        ok = schemaPresente(schema);
    } else if (ok) {
        // Exclusive from here to the close, even when the schema step has nothing to write.
        QSqlQuery inizio(m_db);
        ok = inizio.exec(QStringLiteral("BEGIN EXCLUSIVE"))
             || erroreMotore(inizio.lastError(), ErroreArchivio::NonApribile);
        if (ok && !creaSchema(schema)) {
            m_db.rollback();
            ok = false;
        }
        ok = ok && (m_db.commit() || erroreMotore(m_db.lastError(), ErroreArchivio::Scrittura));
    }
    if (!ok) {
        const EsitoArchivio esito = m_esito;
        Chiudi();
        if (!esisteva)
            QFile::remove(m_percorso);
        m_esito = esito;
        return false;
    }
    m_schema = &schema;
    imposta(ErroreArchivio::Nessuno);
    return true;
}

// The file is held from the first read to the close, must pass the engine's check, and must
// be ours: a table of our name without the fields of its key is someone else's.
bool Archivio::pronto(const SchemaArchivio &schema)
{
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral("PRAGMA locking_mode = EXCLUSIVE")))
        return erroreMotore(q.lastError(), ErroreArchivio::NonApribile);
    if (!q.exec(QStringLiteral("PRAGMA quick_check")))
        return erroreMotore(q.lastError(), ErroreArchivio::Danneggiato);
    if (!q.next() || q.value(0).toString() != u"ok") {
        imposta(ErroreArchivio::Danneggiato, q.value(0).toString());
        return false;
    }
    QString estraneo;
    if (!SoloArchivio(m_db, schema, &estraneo)) {
        imposta(estraneo.isEmpty() ? ErroreArchivio::Danneggiato : ErroreArchivio::FileEstraneo, estraneo);
        return false;
    }
    const QStringList presenti = colonnePresenti(schema);
    if (const IndiceArchivio *primario = schema.primario(); primario && !presenti.isEmpty())
        for (const QString &c : primario->campi)
            if (!presenti.contains(c.toUpper())) {
                imposta(ErroreArchivio::FileEstraneo, c);
                return false;
            }
    return true;
}

QStringList Archivio::colonnePresenti(const SchemaArchivio &schema)
{
    QStringList r;
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral("PRAGMA table_info(%1)").arg(nome(schema.tabella))))
        return r;
    while (q.next())
        r << q.value(1).toString().toUpper();
    return r;
}

bool Archivio::schemaPresente(const SchemaArchivio &schema)
{
    const QStringList presenti = colonnePresenti(schema);
    for (const QString &c : colonne(schema))
        if (!presenti.contains(c.toUpper())) {
            imposta(ErroreArchivio::SolaLettura, c);
            return false;
        }
    return true;
}

// What the file lacks is added, what it has is left as it is: a file of an older schema
// gains the new fields and indexes, a second open changes nothing.
bool Archivio::creaSchema(const SchemaArchivio &schema)
{
    QSqlQuery q(m_db);
    QStringList definizioni;
    for (const CampoArchivio &c : schema.campi)
        definizioni << definizione(c.nome, c.dimensione);
    for (const CampoArchivio &c : schema.campi)
        if (indicizzato(schema, c.nome))
            definizioni << definizione(colonnaChiave(c.nome), 0);
    if (!q.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS %1 (%2)")
                    .arg(nome(schema.tabella), definizioni.join(QLatin1String(", ")))))
        return erroreMotore(q.lastError(), ErroreArchivio::NonApribile);

    const QStringList presenti = colonnePresenti(schema);
    for (const CampoArchivio &c : schema.campi) {
        QList<std::pair<QString, int>> nuove;
        if (!presenti.contains(c.nome.toUpper()))
            nuove.append({c.nome, c.dimensione});
        if (indicizzato(schema, c.nome) && !presenti.contains(colonnaChiave(c.nome).toUpper()))
            nuove.append({colonnaChiave(c.nome), 0});
        for (const auto &[colonna, dimensione] : std::as_const(nuove))
            if (!q.exec(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2")
                            .arg(nome(schema.tabella), definizione(colonna, dimensione))))
                return erroreMotore(q.lastError(), ErroreArchivio::NonApribile);
    }
    // Keys first, so that a unique index finds them filled.
    if (!ricalcolaChiavi(schema))
        return false;
    for (const IndiceArchivio &i : schema.indici) {
        QStringList campi;
        for (const QString &c : i.campi)
            campi << nome(colonnaChiave(c));
        if (!q.exec(QStringLiteral("CREATE %1INDEX IF NOT EXISTS %2 ON %3 (%4)")
                        .arg(i.unico || i.primario ? QStringLiteral("UNIQUE ") : QString(), nome(i.nome),
                             nome(schema.tabella), campi.join(u','))))
            return erroreMotore(q.lastError(), ErroreArchivio::NonApribile);
    }
    return true;
}

// Rows that came without their folded keys (a field added later, a file written by another
// tool) get them, so that every row can be found.
bool Archivio::ricalcolaChiavi(const SchemaArchivio &schema)
{
    QStringList campi, mancanti;
    for (const CampoArchivio &c : schema.campi)
        if (indicizzato(schema, c.nome)) {
            campi << c.nome;
            mancanti << QStringLiteral("(%1 IS NULL AND %2 IS NOT NULL)")
                            .arg(nome(colonnaChiave(c.nome)), nome(c.nome));
        }
    if (campi.isEmpty())
        return true;
    QStringList selezione;
    for (const QString &c : std::as_const(campi))
        selezione << nome(c);
    QSqlQuery q(m_db);
    if (!q.exec(QStringLiteral("SELECT rowid, %1 FROM %2 WHERE %3")
                    .arg(selezione.join(u','), nome(schema.tabella), mancanti.join(QLatin1String(" OR ")))))
        return erroreMotore(q.lastError(), ErroreArchivio::NonApribile);
    QList<QVariantList> aggiornamenti;
    while (q.next()) {
        QVariantList v;
        for (int i = 0; i < campi.size(); ++i) {
            const QVariant testo = q.value(i + 1);
            v << (testo.isNull() ? QVariant() : QVariant(ChiavePiegata(testo.toString())));
        }
        v << q.value(0);
        aggiornamenti << v;
    }
    QStringList assegnazioni;
    for (const QString &c : std::as_const(campi))
        assegnazioni << nome(colonnaChiave(c)) + QStringLiteral(" = ?");
    QSqlQuery u(m_db);
    u.prepare(QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                  .arg(nome(schema.tabella), assegnazioni.join(u',')));
    for (const QVariantList &v : std::as_const(aggiornamenti)) {
        for (int i = 0; i < v.size(); ++i)
            u.bindValue(i, v.at(i));
        if (!u.exec())
            return erroreMotore(u.lastError(), ErroreArchivio::NonApribile);
    }
    return true;
}

// ---- look-ups --------------------------------------------------------------------------

struct Archivio::Ricerca
{
    const IndiceArchivio *indice = nullptr;
    QStringList colonneChiave;
};

bool Archivio::preparaRicerca(QStringView indice, const QStringList &chiave, Ricerca &r)
{
    if (!m_schema) {
        imposta(ErroreArchivio::Uso, QStringLiteral("closed"));
        return false;
    }
    r.indice = m_schema->indice(indice);
    if (!r.indice || chiave.size() > r.indice->campi.size()) {
        imposta(ErroreArchivio::Uso, indice.toString());
        return false;
    }
    for (int i = 0; i < chiave.size(); ++i)
        r.colonneChiave << nome(colonnaChiave(r.indice->campi.at(i)));
    imposta(ErroreArchivio::Nessuno);
    return true;
}

QList<RigaArchivio> Archivio::righe(const QString &dove, const QVariantList &valori, const Ricerca &r,
                                    int limite)
{
    QStringList campi;
    for (const CampoArchivio &c : m_schema->campi)
        campi << nome(c.nome);
    QString sql = QStringLiteral("SELECT rowid, %1 FROM %2").arg(campi.join(u','), nome(m_schema->tabella));
    if (!dove.isEmpty())
        sql += QStringLiteral(" WHERE ") + dove;
    sql += QStringLiteral(" ORDER BY ") + ordine(*r.indice);
    if (limite > 0)
        sql += QStringLiteral(" LIMIT %1").arg(limite);
    QSqlQuery q(m_db);
    q.setForwardOnly(true);
    q.prepare(sql);
    for (int i = 0; i < valori.size(); ++i)
        q.bindValue(i, valori.at(i));
    QList<RigaArchivio> risultato;
    if (!q.exec()) {
        erroreMotore(q.lastError(), ErroreArchivio::Danneggiato);
        return risultato;
    }
    while (q.next()) {
        RigaArchivio riga(*m_schema);
        for (int i = 0; i < m_schema->campi.size(); ++i) {
            const QVariant v = q.value(i + 1);
            riga.Imposta(m_schema->campi.at(i).nome, v.isNull() ? std::nullopt : std::optional(v.toString()));
        }
        risultato << riga;
    }
    return risultato;
}

namespace {

QVariantList piegati(const QStringList &testi)
{
    QVariantList r;
    for (const QString &t : testi)
        r << ChiavePiegata(t);
    return r;
}

QString uguali(const QStringList &colonne)
{
    QStringList parti;
    for (const QString &c : colonne)
        parti << c + QStringLiteral(" = ?");
    return parti.join(QLatin1String(" AND "));
}

QString nonSotto(const QStringList &colonne)
{
    if (colonne.isEmpty())
        return {};
    QStringList segnaposti;
    for (qsizetype i = 0; i < colonne.size(); ++i)
        segnaposti << QStringLiteral("?");
    return QStringLiteral("(%1) >= (%2)").arg(colonne.join(u','), segnaposti.join(u','));
}

} // namespace

std::optional<RigaArchivio> Archivio::Cerca(QStringView indice, const QStringList &chiave)
{
    Ricerca r;
    if (!preparaRicerca(indice, chiave, r))
        return std::nullopt;
    const QList<RigaArchivio> trovate = righe(uguali(r.colonneChiave), piegati(chiave), r, 1);
    return trovate.isEmpty() ? std::nullopt : std::optional(trovate.first());
}

std::optional<RigaArchivio> Archivio::CercaDa(QStringView indice, const QStringList &chiave)
{
    Ricerca r;
    if (!preparaRicerca(indice, chiave, r))
        return std::nullopt;
    const QList<RigaArchivio> trovate = righe(nonSotto(r.colonneChiave), piegati(chiave), r, 1);
    return trovate.isEmpty() ? std::nullopt : std::optional(trovate.first());
}

QList<RigaArchivio> Archivio::Elenca(QStringView indice, const QStringList &da)
{
    Ricerca r;
    if (!preparaRicerca(indice, da, r))
        return {};
    return righe(nonSotto(r.colonneChiave), piegati(da), r, 0);
}

QList<RigaArchivio> Archivio::ElencaPrefisso(QStringView indice, const QStringList &prefissi)
{
    Ricerca r;
    if (!preparaRicerca(indice, prefissi, r))
        return {};
    QStringList condizioni;
    QVariantList valori;
    for (int i = 0; i < prefissi.size(); ++i) {
        const QString p = ChiavePiegata(prefissi.at(i));
        if (p.isEmpty())
            continue;
        condizioni << QStringLiteral("substr(%1, 1, ?) = ?").arg(r.colonneChiave.at(i));
        valori << p.size() << p;
    }
    return righe(condizioni.join(QLatin1String(" AND ")), valori, r, 0);
}

// ---- writes ----------------------------------------------------------------------------

RigaArchivio Archivio::NuovaRiga() const
{
    return m_schema ? RigaArchivio(*m_schema) : RigaArchivio();
}

std::optional<qint64> Archivio::trovaRowid(QStringView indice, const QStringList &chiave)
{
    Ricerca r;
    if (!preparaRicerca(indice, chiave, r))
        return std::nullopt;
    QSqlQuery q(m_db);
    q.prepare(QStringLiteral("SELECT rowid FROM %1 WHERE %2 ORDER BY %3 LIMIT 1")
                  .arg(nome(m_schema->tabella),
                       chiave.isEmpty() ? QStringLiteral("1") : uguali(r.colonneChiave), ordine(*r.indice)));
    const QVariantList valori = piegati(chiave);
    for (int i = 0; i < valori.size(); ++i)
        q.bindValue(i, valori.at(i));
    if (!q.exec()) {
        erroreMotore(q.lastError(), ErroreArchivio::Danneggiato);
        return std::nullopt;
    }
    return q.next() ? std::optional(q.value(0).toLongLong()) : std::nullopt;
}

bool Archivio::controllaRiga(const RigaArchivio &riga)
{
    imposta(ErroreArchivio::Nessuno);
    if (!m_schema || riga.schema() != m_schema) {
        imposta(ErroreArchivio::Uso, m_schema ? m_schema->tabella : QStringLiteral("closed"));
        return false;
    }
    if (m_soloLettura) {
        imposta(ErroreArchivio::SolaLettura);
        return false;
    }
    for (int i = 0; i < m_schema->campi.size(); ++i) {
        const CampoArchivio &c = m_schema->campi.at(i);
        if (c.dimensione > 0 && riga.valore(i).value_or(QString()).size() > c.dimensione) {
            imposta(ErroreArchivio::TestoTroppoLungo, c.nome);
            return false;
        }
    }
    if (const IndiceArchivio *p = m_schema->primario())
        for (const QString &c : p->campi)
            if (riga.Testo(c).isEmpty()) {
                imposta(ErroreArchivio::ChiaveMancante, c);
                return false;
            }
    return true;
}

bool Archivio::scrivi(const RigaArchivio &riga, std::optional<qint64> rowid)
{
    const QStringList tutte = colonne(*m_schema);
    QVariantList valori;
    for (int i = 0; i < m_schema->campi.size(); ++i) {
        const std::optional<QString> v = riga.valore(i);
        valori << (v ? QVariant(*v) : QVariant());
    }
    for (const CampoArchivio &c : m_schema->campi)
        if (indicizzato(*m_schema, c.nome)) {
            const std::optional<QString> v = riga.Campo(c.nome);
            valori << (v ? QVariant(ChiavePiegata(*v)) : QVariant());
        }
    QStringList nomi, segnaposti;
    for (const QString &c : tutte) {
        nomi << nome(c);
        segnaposti << (rowid ? nome(c) + QStringLiteral(" = ?") : QStringLiteral("?"));
    }
    QSqlQuery q(m_db);
    if (rowid) {
        q.prepare(QStringLiteral("UPDATE %1 SET %2 WHERE rowid = ?")
                      .arg(nome(m_schema->tabella), segnaposti.join(u',')));
        valori << *rowid;
    } else {
        q.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                      .arg(nome(m_schema->tabella), nomi.join(u','), segnaposti.join(u',')));
    }
    for (int i = 0; i < valori.size(); ++i)
        q.bindValue(i, valori.at(i));
    return q.exec() || erroreMotore(q.lastError(), ErroreArchivio::Scrittura);
}

namespace {
// One write, one transaction; a failure leaves the file as it was before it.
template <typename F>
bool inTransazione(QSqlDatabase &db, F &&passi)
{
    if (!db.transaction())
        return false;
    if (!passi()) {
        db.rollback();
        return false;
    }
    return db.commit();
}
} // namespace

bool Archivio::Aggiungi(const RigaArchivio &riga)
{
    if (!controllaRiga(riga))
        return false;
    bool ok = inTransazione(m_db, [&] { return scrivi(riga, std::nullopt); });
    if (!ok && m_esito.ok())
        erroreMotore(m_db.lastError(), ErroreArchivio::Scrittura);
    return ok;
}

bool Archivio::Modifica(QStringView indice, const QStringList &chiave, const RigaArchivio &riga)
{
    if (!controllaRiga(riga))
        return false;
    bool trovata = false;
    bool ok = inTransazione(m_db, [&] {
        const std::optional<qint64> rowid = trovaRowid(indice, chiave);
        trovata = rowid.has_value();
        return trovata && scrivi(riga, rowid);
    });
    if (!ok && trovata && m_esito.ok())
        erroreMotore(m_db.lastError(), ErroreArchivio::Scrittura);
    return ok;
}

bool Archivio::Salva(const RigaArchivio &riga)
{
    if (!controllaRiga(riga))
        return false;
    const IndiceArchivio *primario = m_schema->primario();
    QStringList chiave;
    for (const QString &c : primario->campi)
        chiave << riga.Testo(c);
    bool ok = inTransazione(m_db, [&] {
        const std::optional<qint64> rowid = trovaRowid(primario->nome, chiave);
        return m_esito.ok() && scrivi(riga, rowid);
    });
    if (!ok && m_esito.ok())
        erroreMotore(m_db.lastError(), ErroreArchivio::Scrittura);
    return ok;
}

bool Archivio::Cancella(QStringView indice, const QStringList &chiave)
{
    if (!m_schema || m_soloLettura) {
        imposta(m_schema ? ErroreArchivio::SolaLettura : ErroreArchivio::Uso);
        return false;
    }
    bool trovata = false;
    bool ok = inTransazione(m_db, [&] {
        const std::optional<qint64> rowid = trovaRowid(indice, chiave);
        trovata = rowid.has_value();
        if (!trovata)
            return false;
        QSqlQuery q(m_db);
        q.prepare(QStringLiteral("DELETE FROM %1 WHERE rowid = ?").arg(nome(m_schema->tabella)));
        q.bindValue(0, *rowid);
        return q.exec() || erroreMotore(q.lastError(), ErroreArchivio::Scrittura);
    });
    if (!ok && trovata && m_esito.ok())
        erroreMotore(m_db.lastError(), ErroreArchivio::Scrittura);
    return ok;
}

// ---- the program's three open procedures -----------------------------------------------

qint16 ApriArchivioDati(const QString &cartella, const QString &nomeFile, Archivio &db)
{
    return db.Apri(cartella, nomeFile, SchemaDati()) ? -1 : 0;
}

qint16 ApriArchivioSoftware(const QString &cartella, const QString &nomeFile, Archivio &db)
{
    return db.Apri(cartella, nomeFile, SchemaSoftware()) ? -1 : 0;
}

qint16 ApriArchivioMappe(const QString &cartella, const QString &nomeFile, Archivio &db)
{
    // The local archive keeps more than a medium carries; an older one gains the field.
    const bool locale = nomeFile.compare(FileArchivi::FileMappe, Qt::CaseInsensitive) == 0;
    return db.Apri(cartella, nomeFile, locale ? SchemaArchivioMappe() : SchemaMappe()) ? -1 : 0;
}

void ChiudiArchivioDati(Archivio &db)
{
    db.Chiudi();
}

void ChiudiArchivioSoftware(Archivio &db)
{
    db.Chiudi();
}

void ChiudiArchivioMappe(Archivio &db)
{
    db.Chiudi();
}

} // namespace kv
