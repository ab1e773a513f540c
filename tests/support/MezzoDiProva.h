#pragma once

// A catalogue written straight with SQL, as a crafted medium would hold it (any rows, no key
// checks), and the bench the exchange tests share: a fresh folder with the program in app/,
// the English texts, and the questions asked.

#include "support/FileDiProva.h"

#include "archives/ScambioSoftware.h"
#include "base/Lingua.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

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

struct BancoScambio
{
    std::unique_ptr<QTemporaryDir> m_dir;
    QString app;
    Lingua lingua;
    QStringList domande;

    QString p(const QString &relativo) const { return m_dir->filePath(relativo); }
    QString testo(const char *sezione, const char *chiave, const QString &al = {}) const
    {
        return lingua.testo(MessaggioScambio(Messaggio(sezione, chiave), al));
    }
    QString testo(const Messaggio &m) const { return lingua.testo(m); }
    QStringList avvisi(const EsitoScambio &esito) const
    {
        QStringList t;
        for (const Messaggio &m : esito.avvisi)
            t << lingua.testo(m);
        return t;
    }
    DomandaScambio rispondi(QList<bool> risposte)
    {
        return [this, risposte](const Messaggio &t) mutable {
            domande << lingua.testo(t);
            return risposte.isEmpty() || risposte.takeFirst();
        };
    }
    // A fresh folder with app/ and its folders, and the English texts.
    void prepara(const QStringList &cartelle)
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        app = p("app");
        for (const QString &c : cartelle)
            QVERIFY(QDir().mkpath(p(c)));
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), p("app/ENGLISH.LNG")));
        lingua = Lingua(app);
        lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        domande.clear();
    }
};

} // namespace kv
