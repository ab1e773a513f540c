#include "archives/Cartelle.h"

#include "archives/SchemaArchivi.h"
#include "base/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kv {

namespace {

QString pulito(const QString &percorso)
{
    return QDir::cleanPath(QFileInfo(percorso).absoluteFilePath());
}

constexpr QDir::Filters TutteLeVoci = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

bool copia(const QString &origine, const QString &destinazione)
{
    if (!QFileInfo(destinazione).isDir() && !QDir().mkpath(destinazione))
        return false;
    bool ok = true;
    const QFileInfoList voci = QDir(origine).entryInfoList(TutteLeVoci, QDir::Name);
    for (const QFileInfo &voce : voci) {
        if (voce.isSymLink())
            continue;
        QString meta = PercorsoFile(destinazione, voce.fileName());
        QFileInfo esistente(meta);
        if (esistente.isSymLink() || (voce.isDir() && esistente.exists() && !esistente.isDir())) {
            ok = QFile::remove(meta) && ok;
            meta = destinazione + u'/' + voce.fileName();
            esistente = QFileInfo(meta);
        }
        if (voce.isDir()) {
            ok = copia(voce.filePath(), meta) && ok;
        } else if (esistente.isDir()) {
            ok = false; // a folder is never deleted to make room for a file
        } else {
            if (esistente.exists())
                QFile::remove(meta);
            ok = QFile::copy(voce.filePath(), meta) && ok;
        }
    }
    return ok;
}

bool cancella(const QString &cartella)
{
    QFile::setPermissions(cartella, QFile::permissions(cartella) | QFile::ReadOwner | QFile::WriteOwner
                                        | QFile::ExeOwner);
    bool ok = true;
    const QFileInfoList voci = QDir(cartella).entryInfoList(TutteLeVoci);
    for (const QFileInfo &voce : voci) {
        if (voce.isDir() && !voce.isSymLink())
            ok = cancella(voce.filePath()) && ok;
        else
            ok = QFile::remove(voce.filePath()) && ok;
    }
    return QDir().rmdir(cartella) && ok;
}

} // namespace

bool DentroRadice(const QString &percorso, const QString &radice)
{
    if (percorso.trimmed().isEmpty() || radice.trimmed().isEmpty())
        return false;
    const QString r = pulito(radice);
    const QString p = pulito(percorso);
    const QString prefisso = r.endsWith(u'/') ? r : r + u'/';
    if (p != r && !p.startsWith(prefisso))
        return false;
    // Each level from just below the root down to the path itself.
    QString passo = r;
    const QStringList parti = p.mid(r.size()).split(u'/', Qt::SkipEmptyParts);
    for (const QString &parte : parti) {
        passo = passo.endsWith(u'/') ? passo + parte : passo + u'/' + parte;
        if (QFileInfo(passo).isSymLink())
            return false;
    }
    return true;
}

bool ToglieSolaLettura(const QString &percorso, const QString &radice)
{
    if (!DentroRadice(percorso, radice))
        return false;
    const QFileInfo info(percorso);
    if (!info.exists())
        return false;
    const QFile::Permissions p = QFile::permissions(percorso);
    if (!(p & QFile::WriteOwner))
        QFile::setPermissions(percorso, p | QFile::WriteOwner | QFile::WriteUser);
    return QFileInfo(percorso).isWritable();
}

bool CopiaCartella(const QString &origine, const QString &destinazione, const QString &radice)
{
    if (!DentroRadice(destinazione, radice))
        return false;
    const QFileInfo info(origine);
    if (info.isSymLink())
        return false;
    if (!info.exists())
        return true;
    return info.isDir() && copia(pulito(origine), pulito(destinazione));
}

bool CancellaCartella(const QString &cartella, const QString &radice)
{
    if (!DentroRadice(cartella, radice))
        return false;
    const QFileInfo info(cartella);
    if (!info.exists())
        return true;
    return info.isDir() && cancella(pulito(cartella));
}

QMap<QString, QString> CaricoMarchi(const QString &percorsoApp)
{
    QMap<QString, QString> marchi;
    const QString cartella = TrovaFile(percorsoApp, FileArchivi::CartellaMarchi);
    if (cartella.isEmpty() || !QFileInfo(cartella).isDir())
        return marchi;
    const QFileInfoList voci =
        QDir(cartella).entryInfoList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QFileInfo &voce : voci)
        if (voce.suffix().compare(u"BMP", Qt::CaseInsensitive) == 0)
            marchi.insert(voce.completeBaseName().toUpper(), voce.filePath());
    return marchi;
}

} // namespace kv
