#include "archives/Scambio.h"

#include "archives/Cartelle.h"
#include "archives/PulisciDestinazione.h"
#include "base/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace kv {

namespace {

constexpr QByteArrayView FirmaSqlite("SQLite format 3\0", 16);

constexpr QFile::Permissions Scrivibile = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser
                                          | QFile::WriteUser | QFile::ReadGroup | QFile::ReadOther;

bool carattereVietato(QChar c)
{
    static constexpr char16_t Vietati[] = u"\\/:*?\"<>|";
    if (c.unicode() < 0x20 || c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
        || c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph)
        return true;
    for (char16_t v : Vietati)
        if (v != 0 && c == QChar(v))
            return true;
    return false;
}

bool filePiano(const QFileInfo &info)
{
    return !info.isSymLink() && info.isFile();
}

} // namespace

bool NomeScambioValido(const QString &nome, int massimo)
{
    const QString t = nome.trimmed();
    // Windows drops a trailing point, so "Punto." would become another name there.
    if (t.isEmpty() || t.size() > massimo || t.startsWith(u'.') || t.endsWith(u'.') || NomeRiservato(t))
        return false;
    for (QChar c : t)
        if (carattereVietato(c))
            return false;
    return true;
}

QString NomeVisibile(const QString &nome)
{
    constexpr int Massimo = 60;
    QString t;
    for (QChar c : nome)
        t += c.unicode() < 0x20 || c.category() == QChar::Other_Control ? QChar(u'?') : c;
    return t.size() > Massimo ? t.left(Massimo) + QChar(0x2026) : t;
}

Messaggio MessaggioScambio(Messaggio m, const QString &testo)
{
    m.ritaglia().con(QStringLiteral("XXX"), testo);
    return m;
}

Messaggio MessaggioConteggio(Messaggio m, int n)
{
    if (n == 1)
        m.chiavePreferita = m.chiave + QStringLiteral(".1");
    return MessaggioScambio(std::move(m), QString::number(n));
}

QString PreparaTemp(const QString &percorsoApp)
{
    const QString temp = PercorsoFile(percorsoApp, FileArchivi::CartellaTemp);
    const QFileInfo info(temp);
    if (info.isSymLink() || (info.exists() && !info.isDir())) {
        if (!QFile::remove(temp))
            return {};
    } else if (!CancellaCartella(temp, percorsoApp)) {
        return {};
    }
    if (!CreaCartella(temp) || !DentroRadice(temp, percorsoApp) || !QFileInfo(temp).isDir())
        return {};
    return temp;
}

bool CancellaTemp(const QString &percorsoApp)
{
    const QString temp = PercorsoFile(percorsoApp, FileArchivi::CartellaTemp);
    if (QFileInfo(temp).isSymLink())
        return QFile::remove(temp);
    return CancellaCartella(temp, percorsoApp);
}

EsitoCopia CopiaFileScambio(const QString &origine, const QString &destinazione, const QString &radice,
                            qint64 massimo)
{
    const QFileInfo o(origine);
    if (!filePiano(o))
        return EsitoCopia::Mancante;
    if (o.size() > massimo)
        return EsitoCopia::TroppoGrande;
    if (!DentroRadice(destinazione, radice))
        return EsitoCopia::Errore;
    const QFileInfo d(destinazione);
    if (d.isDir())
        return EsitoCopia::Errore;
    if (d.exists() && !QFile::remove(destinazione))
        return EsitoCopia::Errore;
    if (!QFile::copy(origine, destinazione))
        return EsitoCopia::Errore;
    // A copy from a read-only medium must be writable here.
    QFile::setPermissions(destinazione, Scrivibile);
    return QFileInfo(destinazione).size() == o.size() ? EsitoCopia::Fatta : EsitoCopia::Errore;
}

std::optional<QByteArray> ContenutoPrecedente(const QString &file, const QString &radice)
{
    if (!DentroRadice(file, radice) || !filePiano(QFileInfo(file)))
        return std::nullopt;
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    return f.readAll();
}

namespace {

bool scriviFile(const QString &destinazione, const QByteArray &byte)
{
    if (!ScriviFileIntero(destinazione, byte))
        return false;
    QFile::setPermissions(destinazione, Scrivibile);
    return true;
}

} // namespace

bool PosaFile(const QString &origine, const QString &destinazione, const QString &radice)
{
    if (!filePiano(QFileInfo(origine)) || !DentroRadice(destinazione, radice)
        || QFileInfo(destinazione).isDir())
        return false;
    QFile f(origine);
    if (!f.open(QIODevice::ReadOnly))
        return false;
    const QByteArray byte = f.readAll();
    if (f.error() != QFileDevice::NoError)
        return false;
    return scriviFile(destinazione, byte);
}

void RimettiFile(const QString &destinazione, const QString &radice, const std::optional<QByteArray> &prima)
{
    if (!DentroRadice(destinazione, radice))
        return;
    if (prima)
        scriviFile(destinazione, *prima);
    else if (filePiano(QFileInfo(destinazione)))
        QFile::remove(destinazione);
}

CatalogoScambio LeggiCatalogoScambio(const QString &percorso, const SchemaArchivio &schema)
{
    CatalogoScambio r;
    r.esito.file = percorso;
    const auto errore = [&r](ErroreArchivio e, const QString &dettaglio) {
        r.esito.errore = e;
        r.esito.dettaglio = dettaglio;
        r.righe.clear();
        return r;
    };
    const QFileInfo info(percorso);
    if (!filePiano(info))
        return errore(ErroreArchivio::NonApribile, {});
    if (info.size() > MassimoCatalogoScambio)
        return errore(ErroreArchivio::FileEstraneo, QStringLiteral("size"));
    {
        QFile f(percorso);
        if (!f.open(QIODevice::ReadOnly))
            return errore(ErroreArchivio::NonApribile, f.errorString());
        if (f.read(FirmaSqlite.size()) != FirmaSqlite)
            return errore(ErroreArchivio::FileEstraneo, {});
    }
    const QString connessione = QStringLiteral("kv-scambio-%1").arg(quintptr(&r), 0, 16);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connessione);
        db.setDatabaseName(percorso);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!db.open()) {
            errore(ErroreArchivio::Danneggiato, db.lastError().text());
        } else {
            QSqlQuery q(db);
            q.setForwardOnly(true);
            QString estraneo;
            if (!q.exec(QStringLiteral("PRAGMA quick_check")) || !q.next()
                || q.value(0).toString() != u"ok") {
                errore(ErroreArchivio::Danneggiato, q.lastError().text());
            } else if (!SoloArchivio(db, schema, &estraneo)) {
                errore(estraneo.isEmpty() ? ErroreArchivio::Danneggiato : ErroreArchivio::FileEstraneo,
                       estraneo);
            } else if (!q.exec(QStringLiteral("SELECT * FROM \"%1\"").arg(schema.tabella))) {
                errore(ErroreArchivio::FileEstraneo, q.lastError().text());
            } else {
                const QSqlRecord record = q.record();
                QList<int> colonna;
                for (const CampoArchivio &c : schema.campi) {
                    int trovata = -1;
                    for (int i = 0; i < record.count() && trovata < 0; ++i)
                        if (record.fieldName(i).compare(c.nome, Qt::CaseInsensitive) == 0)
                            trovata = i;
                    colonna << trovata;
                }
                while (q.next()) {
                    RigaArchivio riga(schema);
                    for (int i = 0; i < schema.campi.size(); ++i) {
                        const QVariant v = colonna.at(i) < 0 ? QVariant() : q.value(colonna.at(i));
                        riga.Imposta(schema.campi.at(i).nome,
                                     v.isNull() ? std::nullopt : std::optional<QString>(v.toString()));
                    }
                    r.righe << riga;
                }
                if (q.lastError().isValid())
                    errore(ErroreArchivio::Danneggiato, q.lastError().text());
            }
            q.finish();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase(connessione);
    return r;
}

namespace {

struct FormaSet
{
    QLatin1String catalogo;
    const SchemaArchivio &schema;
    QList<QLatin1String> alberi;
    int livelli; // folders between a tree and its files
    QLatin1String estensione;
};

FormaSet forma(TipoScambio tipo)
{
    if (tipo == TipoScambio::Software)
        return {FileArchivi::FileTempSoftware,
                SchemaSoftware(),
                {QLatin1String("FILES19")},
                0,
                QLatin1String(".S19")};
    return {FileArchivi::FileTempMappe,
            SchemaMappe(),
            {QLatin1String("LPG"), QLatin1String("CNG")},
            2,
            QLatin1String(".LKV")};
}

bool nascosto(const QFileInfo &v)
{
    return v.isSymLink() || v.fileName().startsWith(u'.');
}

// False when something could not be read.
bool copiaAlbero(const QString &origine, const QString &meta, const QString &temp, int livelli,
                 QLatin1String estensione, const QString &sorgente, QStringList &grandi)
{
    if (!CreaCartella(meta) || !DentroRadice(meta, temp))
        return false;
    if (livelli >= 0) {
        const QFileInfoList cartelle =
            QDir(origine).entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo &d : cartelle)
            if (!nascosto(d)
                && !copiaAlbero(d.filePath(), PercorsoFile(meta, d.fileName()), temp, livelli - 1, estensione,
                                sorgente, grandi))
                return false;
        return true;
    }
    const QFileInfoList file =
        QDir(origine).entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QFileInfo &f : file) {
        if (nascosto(f) || !f.fileName().endsWith(estensione, Qt::CaseInsensitive))
            continue;
        switch (CopiaFileScambio(f.filePath(), PercorsoFile(meta, f.fileName()), temp, MassimoFileScambio)) {
        case EsitoCopia::Fatta:
        case EsitoCopia::Mancante:
            break;
        case EsitoCopia::TroppoGrande:
            grandi << f.filePath().mid(sorgente.size() + 1);
            break;
        case EsitoCopia::Errore:
            return false;
        }
    }
    return true;
}

} // namespace

MediumScambio LeggiMediumScambio(const QString &percorsoApp, const QString &sorgente, TipoScambio tipo)
{
    MediumScambio m;
    const auto errore = [&](Messaggio motivo, const QString &testo) {
        m.esito.fatto = false;
        m.esito.messaggio = MessaggioScambio(std::move(motivo), testo);
        m.righe.clear();
        CancellaTemp(percorsoApp);
        return m;
    };
    const CartellaScambio cartella = ControllaCartellaScambio(sorgente, percorsoApp);
    if (cartella.esito == EsitoCartellaScambio::Vuota)
        return m;
    if (cartella.esito == EsitoCartellaScambio::Programma)
        return errore(Messaggio("SCAMBIO", "SORGENTE_APP"), {});
    if (!QFileInfo(cartella.percorso).isDir())
        return errore(Messaggio("SCAMBIO", "NON_CARTELLA"), cartella.percorso);
    m.temp = PreparaTemp(percorsoApp);
    if (m.temp.isEmpty())
        return errore(Messaggio("SCAMBIO", "TEMP"), PercorsoFile(percorsoApp, FileArchivi::CartellaTemp));

    const FormaSet f = forma(tipo);
    const QString catalogo = TrovaFile(cartella.percorso, f.catalogo);
    const QString copia = m.temp + u'/' + f.catalogo;
    switch (CopiaFileScambio(catalogo, copia, m.temp, MassimoCatalogoScambio)) {
    case EsitoCopia::Fatta:
        break;
    case EsitoCopia::Mancante:
        return errore(Messaggio("SCAMBIO", "CATALOGO_ASSENTE"), cartella.percorso);
    case EsitoCopia::TroppoGrande:
        return errore(Messaggio("SCAMBIO", "CATALOGO"), catalogo);
    case EsitoCopia::Errore:
        return errore(Messaggio("SCAMBIO", "LETTURA"), cartella.percorso);
    }
    QStringList grandi;
    const QFileInfoList cartelle =
        QDir(cartella.percorso).entryInfoList(QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    for (const QFileInfo &d : cartelle) {
        bool delSet = false;
        for (QLatin1String albero : f.alberi)
            delSet = delSet || d.fileName().compare(albero, Qt::CaseInsensitive) == 0;
        if (!delSet || nascosto(d))
            continue;
        if (!copiaAlbero(d.filePath(), PercorsoFile(m.temp, d.fileName()), m.temp, f.livelli - 1,
                         f.estensione, cartella.percorso, grandi))
            return errore(Messaggio("SCAMBIO", "LETTURA"), cartella.percorso);
    }
    for (const QString &g : std::as_const(grandi))
        m.esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "GRANDE"), NomeVisibile(g)));

    const CatalogoScambio letto = LeggiCatalogoScambio(copia, f.schema);
    if (!letto.esito.ok())
        return errore(Messaggio("SCAMBIO", "CATALOGO"), catalogo);
    m.righe = letto.righe;
    m.esito.fatto = true;
    return m;
}

QString FileNelMedium(const MediumScambio &medium, const QStringList &parti)
{
    QString p = medium.temp;
    for (const QString &parte : parti) {
        if (p.isEmpty() || parte.isEmpty() || parte.contains(u'/') || parte == u"." || parte == u"..")
            return {};
        p = TrovaFile(p, parte);
    }
    return !p.isEmpty() && DentroRadice(p, medium.temp) && filePiano(QFileInfo(p)) ? p : QString();
}

} // namespace kv
