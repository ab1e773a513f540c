#include "base/PercorsoApp.h"

#include "base/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace kv {

namespace {

QStringList fileLingua(const QString &cartella)
{
    QStringList nomi;
    const QFileInfoList voci =
        QDir(cartella).entryInfoList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &voce : voci) {
        if (voce.fileName().endsWith(QLatin1String(".LNG"), Qt::CaseInsensitive))
            nomi.append(voce.fileName());
    }
    return nomi;
}

} // namespace

QString PulisciPercorso(const QString &percorso)
{
    QString p = percorso.trimmed();
    if (p.endsWith(u'/'))
        p.chop(1);
    return p;
}

bool ContieneLingue(const QString &cartella)
{
    return !fileLingua(cartella).isEmpty();
}

QString RisolviPercorsoApp(const QString &home, const QString &cartellaEseguibile,
                           const QString &cartellaUtente)
{
    if (!home.trimmed().isEmpty())
        return PulisciPercorso(home);

    const QString eseguibile = PulisciPercorso(cartellaEseguibile);
    const QFileInfo info(eseguibile.isEmpty() ? QStringLiteral("/") : eseguibile);
    const bool portatile = info.isDir() && info.isWritable()
                           && (QFileInfo(TrovaFile(eseguibile, QStringLiteral("KORVANTINE.INI"))).isFile()
                               || ContieneLingue(info.filePath()));
    if (portatile || cartellaUtente.trimmed().isEmpty())
        return eseguibile;
    return PulisciPercorso(cartellaUtente);
}

QString CartellaDatiUtente()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
           + QStringLiteral("/Korvantine");
}

QStringList CartelleLingueDistribuite(const QString &cartellaEseguibile)
{
    QStringList cartelle;
    cartelle.append(QDir::cleanPath(cartellaEseguibile + QStringLiteral("/../share/korvantine/lang")));
#ifdef KV_CARTELLA_LINGUE
    cartelle.append(QStringLiteral(KV_CARTELLA_LINGUE));
#endif
    return cartelle;
}

int SeminaLingue(const QString &cartella, const QStringList &origini)
{
    if (CreaCartella(cartella) != -1)
        return -1;
    if (ContieneLingue(cartella))
        return 0;
    int copiati = 0;
    for (const QString &origine : origini) {
        for (const QString &nome : fileLingua(origine)) {
            if (!TrovaFile(cartella, nome).isEmpty())
                continue;
            const QString destinazione = cartella + u'/' + nome;
            if (!QFile::copy(origine + u'/' + nome, destinazione))
                continue;
            // A copy of an installed file would keep its read-only mark.
            QFile::setPermissions(destinazione, QFile::permissions(destinazione) | QFileDevice::WriteOwner
                                                    | QFileDevice::ReadOwner);
            ++copiati;
        }
    }
    return copiati;
}

} // namespace kv
