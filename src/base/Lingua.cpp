#include "base/Lingua.h"

#include "base/FileSystem.h"
#include "base/PercorsoApp.h"

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

const FileIni *Lingua::FileLetto::aggiorna(const QString &percorsoFile)
{
    const QFileInfo info(percorsoFile);
    if (percorsoFile.isEmpty() || !info.isFile())
        return nullptr;
    const qint64 dimensioneFile = info.size();
    const QDateTime modificaFile = info.lastModified();
    if (percorsoFile != percorso || dimensioneFile != dimensione || modificaFile != modifica) {
        FileIni::StatoLettura stato;
        file = FileIni::daFile(percorsoFile, &stato);
        // A file that could not be read is tried again at the next look-up.
        percorso = stato == FileIni::StatoLettura::Letto ? percorsoFile : QString();
        dimensione = dimensioneFile;
        modifica = modificaFile;
    }
    return &file;
}

QString Lingua::LeggiTesto(const QString &sezione, const QString &chiave, const QString &estensione) const
{
    if (!nomeSemplice(LinguaCorrente))
        return {};
    const QString nome = LinguaCorrente + estensione;
    const QString percorso = TrovaFile(PercorsoApp, nome);
    const FileIni *casa = m_casa.aggiorna(percorso);
    if (!casa)
        return {};
    if (casa->contiene(sezione, chiave) || m_cartelleDistribuite.isEmpty())
        return casa->valore(sezione, chiave);

    for (const QString &cartella : m_cartelleDistribuite) {
        const QString distribuito = TrovaFile(cartella, nome);
        if (distribuito.isEmpty())
            continue;
        if (QFileInfo(distribuito).canonicalFilePath() == QFileInfo(percorso).canonicalFilePath())
            return {};
        const FileIni *f = m_distribuito.aggiorna(distribuito);
        return f ? f->valore(sezione, chiave) : QString();
    }
    return {};
}

QString Lingua::testo(const Messaggio &m) const
{
    const auto cerca = [&](const QString &chiave) {
        const QString t = chiave.isEmpty() ? QString() : LeggiTesto(m.sezione, chiave);
        return m.ritagliato ? t.trimmed() : t;
    };
    QString t = cerca(m.chiavePreferita);
    if (t.isEmpty())
        t = cerca(m.chiave);
    for (const Messaggio::Valore &v : m.valori) {
        const QString valore = v.messaggio.empty() ? v.testo : testo(v.messaggio.front());
        if (!v.soloPrimo) {
            t.replace(v.segnaposto, valore);
        } else if (const qsizetype i = t.indexOf(v.segnaposto); i >= 0) {
            t.replace(i, v.segnaposto.size(), valore);
        }
    }
    t.prepend(m.prima);
    for (const Messaggio &altro : m.seguito) {
        const QString poi = testo(altro);
        if (!poi.isEmpty())
            t += (t.isEmpty() ? QString() : altro.giunta) + poi;
    }
    return t;
}

Lingua Lingua::DellaCartella(const QString &percorsoApp, const QString &cartellaEseguibile)
{
    Lingua lingua(percorsoApp);
    const QStringList distribuite = CartelleLingueDistribuite(cartellaEseguibile);
    lingua.impostaCartelleDistribuite(distribuite);
    for (const QString &cartella : distribuite)
        if (!ContieneLingue(lingua.PercorsoApp) && ContieneLingue(cartella))
            lingua.PercorsoApp = cartella;
    lingua.LeggiImpLingua();
    return lingua;
}

} // namespace kv
