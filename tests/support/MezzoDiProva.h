#pragma once

// A catalogue written straight with SQL, as a crafted medium would hold it (any rows, no key
// checks).

#include "support/FileDiProva.h"

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

} // namespace kv
