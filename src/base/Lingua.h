#pragma once

#include "base/FileIni.h"
#include "base/Messaggio.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <functional>

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
    // The look-up alone, for a table that keeps the names it finds (the channels); it reads
    // this object, which must outlive it, in whatever language it is set to by then.
    std::function<QString(const QString &, const QString &)> Cerca() const
    {
        return [this](const QString &sezione, const QString &chiave) { return LeggiTesto(sezione, chiave); };
    }
    // A message of the logic, looked up and filled in; an empty message gives empty text.
    QString testo(const Messaggio &m) const;

    // The folders of the language files shipped with this build, first choice first.
    // A home made by an older build keeps its own files, which lack the newer keys: a key
    // that the home's file does not hold at all is taken from the shipped file of the same
    // name. A key the fitter has emptied stays empty (that is how an entry is hidden), and
    // whatever the fitter has reworded wins.
    void impostaCartelleDistribuite(QStringList cartelle) { m_cartelleDistribuite = std::move(cartelle); }
    const QStringList &cartelleDistribuite() const { return m_cartelleDistribuite; }

    QString LinguaCorrente;
    QString PercorsoApp;

    // The language of a folder the program may never have started in: it has no language
    // files yet, so the shipped ones serve, and nothing is written there for that.
    static Lingua DellaCartella(const QString &percorsoApp, const QString &cartellaEseguibile);

private:
    // The file last parsed; a different path, size or time of change reads it again, so a
    // change of LinguaCorrente or of the file on disk reaches the next look-up.
    struct FileLetto
    {
        QString percorso;
        qint64 dimensione = -1;
        QDateTime modifica;
        FileIni file;

        const FileIni *aggiorna(const QString &percorsoFile);
    };

    QStringList m_cartelleDistribuite;
    mutable FileLetto m_casa;
    mutable FileLetto m_distribuito;
};

} // namespace kv
