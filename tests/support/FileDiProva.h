#pragma once

// Whole files written and read back by tests, byte for byte, and a picture of a folder tree
// that shows whether anything in it was written, made or removed.

#include <QByteArray>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QString>
#include <QTest>

namespace kv {

// The folder is made first when it is not there.
inline void scrivi(const QString &percorso, const QByteArray &byte)
{
    QVERIFY(QDir().mkpath(QFileInfo(percorso).path()));
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(byte), byte.size());
}

inline QByteArray leggi(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Every entry below cartella, links not followed, but for the subtree escluso: its path, its
// kind and, for a file, a hash of its content.
inline QMap<QString, QByteArray> istantanea(const QString &cartella, const QString &escluso = {})
{
    QMap<QString, QByteArray> voci;
    QDirIterator it(cartella, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString p = it.next();
        if (!escluso.isEmpty() && (p == escluso || p.startsWith(escluso + u'/')))
            continue;
        const QFileInfo info(p);
        QByteArray v;
        if (info.isSymLink()) {
            v = "link " + info.symLinkTarget().toUtf8();
        } else if (info.isDir()) {
            v = "dir";
        } else {
            QFile f(p);
            v = f.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha1)
                                            : QByteArray("unreadable");
        }
        voci.insert(p, v);
    }
    return voci;
}

} // namespace kv
