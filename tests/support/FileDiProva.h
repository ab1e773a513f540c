#pragma once

// Whole files written and read back by tests, byte for byte.

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTest>

namespace kv {

inline void scrivi(const QString &percorso, const QByteArray &byte)
{
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(byte), byte.size());
}

inline QByteArray leggi(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace kv
