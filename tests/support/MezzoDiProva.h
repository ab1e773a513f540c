#pragma once

// What the exchange tests build and look at: a catalogue written straight with SQL, as a
// crafted medium would hold it (any rows, no key checks), and a picture of a folder tree that
// shows whether anything in it was written, made or removed.

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QTest>

namespace kv {

inline void catalogoGrezzo(const QString &file, const QString &tabella, const QStringList &colonne,
                           const QList<QStringList> &righe)
{
    const QString connessione = QStringLiteral("catalogo-grezzo");
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connessione);
        db.setDatabaseName(file);
        QVERIFY(db.open());
        QSqlQuery q(db);
        QVERIFY(q.exec(QStringLiteral("CREATE TABLE %1 (%2 TEXT)")
                           .arg(tabella, colonne.join(QLatin1String(" TEXT, ")))));
        for (const QStringList &r : righe) {
            QStringList segni;
            for (int i = 0; i < r.size(); ++i)
                segni << QStringLiteral("?");
            QVERIFY(q.prepare(QStringLiteral("INSERT INTO %1 VALUES (%2)").arg(tabella, segni.join(u','))));
            for (const QString &v : r)
                q.addBindValue(v.isNull() ? QVariant() : QVariant(v));
            QVERIFY(q.exec());
        }
        q.finish();
        db.close();
    }
    QSqlDatabase::removeDatabase(connessione);
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
