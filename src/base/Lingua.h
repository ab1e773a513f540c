#pragma once

#include "base/FileIni.h"

#include <QDateTime>
#include <QString>

namespace kv {

// Looks texts up by section and key in the language file in use. A missing file, section
// or key gives empty text and nothing else: every text the user reads comes from here.
class Lingua
{
public:
    explicit Lingua(QString percorsoApp = {});

    // Picks the language file from KORVANTINE.INI with the fallbacks the program promises.
    void LeggiImpLingua();

    QString LeggiTesto(const QString &sezione, const QString &chiave,
                       const QString &estensione = QStringLiteral(".LNG")) const;

    QString LinguaCorrente;
    QString PercorsoApp;

private:
    // The file last parsed; a different path, size or time of change reads it again, so a
    // change of LinguaCorrente or of the file on disk reaches the next look-up.
    mutable QString m_percorsoLetto;
    mutable qint64 m_dimensione = -1;
    mutable QDateTime m_modifica;
    mutable FileIni m_file;
};

} // namespace kv
