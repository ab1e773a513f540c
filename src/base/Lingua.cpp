#include "base/Lingua.h"

#include "base/FileSystem.h"

#include <QDir>
#include <QFileInfo>

namespace kv {

namespace {

const QString Estensione = QStringLiteral(".LNG");

bool nomeSemplice(const QString &nome)
{
    return !nome.isEmpty() && !nome.contains(u'/') && !nome.contains(u'\\');
}

bool esisteFileLingua(const QString &cartella, const QString &nome)
{
    return nomeSemplice(nome) && QFileInfo(TrovaFile(cartella, nome + Estensione)).isFile();
}

} // namespace

Lingua::Lingua(QString percorsoApp) : PercorsoApp(std::move(percorsoApp)) {}

void Lingua::LeggiImpLingua()
{
    const QString ini = PercorsoFile(PercorsoApp, QStringLiteral("KORVANTINE.INI"));
    const QString scelta = FileIni::leggi(ini, QStringLiteral("IMPOSTAZIONI"), QStringLiteral("Lingua"),
                                          QStringLiteral("ENGLISH"));
    if (esisteFileLingua(PercorsoApp, scelta)) {
        LinguaCorrente = scelta;
        return;
    }

    // The name is taken from the file found, so that a lower-case copy still reads.
    const QString inglese = TrovaFile(PercorsoApp, QStringLiteral("ENGLISH.LNG"));
    if (QFileInfo(inglese).isFile()) {
        LinguaCorrente = QFileInfo(inglese).fileName().chopped(Estensione.size());
        return;
    }

    const QFileInfoList voci = QDir(PercorsoApp.isEmpty() ? QStringLiteral("/") : PercorsoApp)
                                   .entryInfoList(QDir::Files | QDir::Hidden, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &voce : voci) {
        const QString nome = voce.fileName();
        if (nome.size() > Estensione.size() && nome.endsWith(Estensione, Qt::CaseInsensitive)) {
            LinguaCorrente = nome.chopped(Estensione.size());
            return;
        }
    }

    LinguaCorrente = QStringLiteral("ITALIANO");
}

QString Lingua::LeggiTesto(const QString &sezione, const QString &chiave, const QString &estensione) const
{
    if (!nomeSemplice(LinguaCorrente))
        return {};
    const QString percorso = TrovaFile(PercorsoApp, LinguaCorrente + estensione);
    const QFileInfo info(percorso);
    if (percorso.isEmpty() || !info.isFile())
        return {};

    const qint64 dimensione = info.size();
    const QDateTime modifica = info.lastModified();
    if (percorso != m_percorsoLetto || dimensione != m_dimensione || modifica != m_modifica) {
        FileIni::StatoLettura stato;
        m_file = FileIni::daFile(percorso, &stato);
        // A file that could not be read is tried again at the next look-up.
        m_percorsoLetto = stato == FileIni::StatoLettura::Letto ? percorso : QString();
        m_dimensione = dimensione;
        m_modifica = modifica;
    }
    return m_file.valore(sezione, chiave);
}

} // namespace kv
