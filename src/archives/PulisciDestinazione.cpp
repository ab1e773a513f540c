#include "archives/PulisciDestinazione.h"

#include "archives/Cartelle.h"
#include "archives/Scambio.h"
#include "base/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <limits>

namespace kv {

namespace {

// a is b or lies below it.
bool sottoOUguale(const QString &a, const QString &b)
{
    if (a == b)
        return true;
    const QString prefisso = b.endsWith(u'/') ? b : b + u'/';
    return a.startsWith(prefisso);
}

bool uguale(const QString &a, QLatin1String b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Which entries of the medium's top folder belong to the old set: whole trees, and files.
bool alberoDelSet(const QString &nome, TipoScambio tipo)
{
    if (tipo == TipoScambio::Software)
        return uguale(nome, QLatin1String("FILES19"));
    return uguale(nome, QLatin1String("LPG")) || uguale(nome, QLatin1String("CNG"));
}

bool fileDelSet(const QString &nome, TipoScambio tipo)
{
    // Only the software's own catalogue: a set of maps on the same medium keeps its own.
    if (tipo == TipoScambio::Software)
        return uguale(nome, QLatin1String("SOFTRIPR.MDB")) || uguale(nome, QLatin1String("SOFTRIPR.LDB"));
    static const QRegularExpression elenco(QStringLiteral("^ELENCO_[0-9]+\\.TXT$"),
                                           QRegularExpression::CaseInsensitiveOption);
    return uguale(nome, QLatin1String("DBTEMP.MDB")) || uguale(nome, QLatin1String("DBTEMP.LDB"))
           || elenco.match(nome).hasMatch();
}

constexpr QDir::Filters TutteLeVoci = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;

bool togliVecchio(const QString &radice, TipoScambio tipo)
{
    bool ok = true;
    const QFileInfoList voci = QDir(radice).entryInfoList(TutteLeVoci);
    for (const QFileInfo &v : voci) {
        const QString nome = v.fileName();
        const bool albero = alberoDelSet(nome, tipo);
        if (!albero && !fileDelSet(nome, tipo))
            continue;
        if (v.isSymLink()) {
            ok = QFile::remove(v.filePath()) && ok; // the link goes, what it points at stays
        } else if (v.isDir()) {
            if (albero)
                ok = CancellaCartella(v.filePath(), radice) && ok;
        } else if (v.isFile()) {
            QFile::setPermissions(v.filePath(), QFile::permissions(v.filePath()) | QFile::WriteOwner);
            ok = QFile::remove(v.filePath()) && ok;
        }
    }
    return ok;
}

// The folders first and the catalogue last: a medium that fills up or is pulled out on the
// way holds no catalogue of a set that is not all there.
bool copiaSet(const QString &temp, const QString &radice)
{
    const QFileInfoList voci = QDir(temp).entryInfoList(TutteLeVoci, QDir::DirsFirst | QDir::Name);
    for (const QFileInfo &v : voci) {
        if (v.isSymLink())
            continue;
        const QString meta = PercorsoFile(radice, v.fileName());
        const bool ok = v.isDir()
                            ? CopiaCartella(v.filePath(), meta, radice)
                            : CopiaFileScambio(v.filePath(), meta, radice, std::numeric_limits<qint64>::max())
                                  == EsitoCopia::Fatta;
        if (!ok) {
            if (!v.isDir() && !QFileInfo(meta).isSymLink())
                QFile::remove(meta);
            return false;
        }
    }
    return true;
}

} // namespace

QString PercorsoReale(const QString &percorso)
{
    QString testo = percorso.trimmed();
    if (testo == u"~" || testo.startsWith(QLatin1String("~/")))
        testo = QDir::homePath() + testo.mid(1);
    QString p = QDir::cleanPath(QFileInfo(testo).absoluteFilePath());
    QStringList resto;
    for (;;) {
        const QFileInfo info(p);
        if (info.exists()) {
            QString reale = info.canonicalFilePath();
            if (reale.isEmpty())
                break;
            for (const QString &parte : std::as_const(resto))
                reale = reale.endsWith(u'/') ? reale + parte : reale + u'/' + parte;
            return reale;
        }
        const QString padre = info.path();
        if (padre == p || padre.isEmpty())
            break;
        resto.prepend(info.fileName());
        p = padre;
    }
    return QDir::cleanPath(QFileInfo(testo).absoluteFilePath());
}

CartellaScambio ControllaCartellaScambio(const QString &testo, const QString &percorsoApp)
{
    CartellaScambio r;
    if (testo.trimmed().isEmpty())
        return r;
    r.percorso = PercorsoReale(testo);
    const QString app = PercorsoReale(percorsoApp);
    if (sottoOUguale(r.percorso, app) || sottoOUguale(app, r.percorso)) {
        r.esito = EsitoCartellaScambio::Programma;
        return r;
    }
    const QFileInfo info(r.percorso);
    r.esito =
        info.exists() && !info.isDir() ? EsitoCartellaScambio::NonCartella : EsitoCartellaScambio::Valida;
    return r;
}

EsitoPulizia PulisciDestinazione(const CartellaScambio &destinazione, const QString &temp, TipoScambio tipo)
{
    if (!destinazione.ok())
        return EsitoPulizia::CopiaFallita;
    const QString radice = destinazione.percorso;
    const bool pulita = !QFileInfo(radice).isDir() || togliVecchio(radice, tipo);
    if (!CreaCartella(radice) || !QFileInfo(radice).isDir() || !copiaSet(temp, radice))
        return EsitoPulizia::CopiaFallita;
    return pulita ? EsitoPulizia::Fatta : EsitoPulizia::Parziale;
}

AvvioCopiaSet AvviaCopiaSet(const QString &destinazione, const QString &percorsoApp,
                            const DomandaScambio &domanda, const Messaggio &vuota)
{
    AvvioCopiaSet avvio;
    const auto rifiuto = [&avvio](const Messaggio &messaggio) {
        avvio.errore = EsitoScambio{false, messaggio, {}, 0};
        return avvio;
    };
    avvio.destinazione = ControllaCartellaScambio(destinazione, percorsoApp);
    switch (avvio.destinazione.esito) {
    case EsitoCartellaScambio::Valida:
        break;
    case EsitoCartellaScambio::Vuota:
        return rifiuto(MessaggioScambio(vuota));
    case EsitoCartellaScambio::Programma:
        return rifiuto(MessaggioScambio(Segnalazione("SEGNALAZIONE_21")));
    case EsitoCartellaScambio::NonCartella:
        return rifiuto(MessaggioScambio(Messaggio("SCAMBIO", "NON_CARTELLA"), avvio.destinazione.percorso));
    }
    if (!domanda(MessaggioScambio(Segnalazione("SEGNALAZIONE_16"))))
        return rifiuto(MessaggioScambio(Segnalazione("SEGNALAZIONE_19")));
    avvio.temp = PreparaTemp(percorsoApp);
    if (avvio.temp.isEmpty())
        return rifiuto(MessaggioScambio(Messaggio("SCAMBIO", "TEMP"),
                                        PercorsoFile(percorsoApp, FileArchivi::CartellaTemp)));
    return avvio;
}

EsitoScambio ConsegnaSet(EsitoScambio esito, const CartellaScambio &destinazione, const QString &temp,
                         const QString &percorsoApp, TipoScambio tipo)
{
    const EsitoPulizia pulizia = PulisciDestinazione(destinazione, temp, tipo);
    CancellaTemp(percorsoApp);
    if (pulizia == EsitoPulizia::CopiaFallita) {
        esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "COPIA"), destinazione.percorso));
        esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_19"));
        return esito;
    }
    if (pulizia == EsitoPulizia::Parziale)
        esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "PULIZIA"), destinazione.percorso));
    esito.fatto = true;
    esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_20"));
    return esito;
}

} // namespace kv
