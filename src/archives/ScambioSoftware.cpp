#include "archives/ScambioSoftware.h"

#include "archives/Cartelle.h"
#include "archives/PulisciDestinazione.h"
#include "base/FileSystem.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QSet>

namespace kv {

namespace {

constexpr QLatin1String Files19("FILES19");
constexpr QLatin1String EstensioneS19(".S19");

int lunghezzaNome()
{
    const SchemaArchivio &s = SchemaSoftware();
    return s.campi.at(s.campo(u"NomeSW")).dimensione;
}

QString cartellaSoftware(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware);
}

EsitoScambio fine(bool fatto, const Messaggio &messaggio, std::vector<Messaggio> avvisi = {}, int voci = 0)
{
    return {fatto, messaggio, std::move(avvisi), voci};
}

// The name of an .S19 file without its extension; empty for any other file.
QString nomeDaFile(const QFileInfo &file)
{
    const QString n = file.fileName();
    if (file.isSymLink() || !file.isFile() || n.startsWith(u'.')
        || !n.endsWith(EstensioneS19, Qt::CaseInsensitive))
        return {};
    return n.chopped(EstensioneS19.size());
}

QString fileNelMedium(const MediumScambio &m, const QString &nome)
{
    return FileNelMedium(m, {Files19, nome + EstensioneS19});
}

} // namespace

QString CartellaFiles19(const QString &percorsoApp)
{
    return PercorsoFile(cartellaSoftware(percorsoApp), Files19);
}

QString PercorsoS19(const QString &cartella, const QString &nome)
{
    return PercorsoFile(cartella, nome + EstensioneS19);
}

QList<VoceSoftware> ElencoSoftware(const QString &percorsoApp, EsitoArchivio *esito)
{
    QMap<QString, VoceSoftware> voci;
    const QString files = CartellaFiles19(percorsoApp);
    if (DentroRadice(files, percorsoApp)) {
        for (const QFileInfo &f : QDir(files).entryInfoList(QDir::Files | QDir::Hidden | QDir::System)) {
            const QString nome = nomeDaFile(f);
            if (nome.trimmed().isEmpty())
                continue;
            VoceSoftware &v = voci[ChiavePiegata(nome.trimmed())];
            v.nome = nome.trimmed();
            v.suDisco = true;
        }
    }
    Archivio db;
    if (ApriArchivioSoftware(cartellaSoftware(percorsoApp), FileArchivi::FileSoftware, db)) {
        for (const RigaArchivio &r : db.Elenca(u"PER_NOME")) {
            const QString nome = r.Testo(u"NomeSW").trimmed();
            if (nome.isEmpty())
                continue;
            VoceSoftware &v = voci[ChiavePiegata(nome)];
            if (v.nome.isEmpty())
                v.nome = nome;
            v.versione = r.Testo(u"Versione");
            v.nota = r.Testo(u"NOTE");
            v.nelCatalogo = true;
        }
    }
    if (esito)
        *esito = db.Esito();
    ChiudiArchivioSoftware(db);
    return voci.values();
}

EsitoScambio ScriviDiscoSoftware(const QString &percorsoApp, const QStringList &nomi,
                                 const QString &destinazione, const DomandaScambio &domanda)
{
    if (ElencoSoftware(percorsoApp).isEmpty())
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_31")));
    if (nomi.isEmpty())
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_23")));
    const AvvioCopiaSet avvio =
        AvviaCopiaSet(destinazione, percorsoApp, domanda, Segnalazione("SEGNALAZIONE_32"));
    if (avvio.errore)
        return *avvio.errore;
    const CartellaScambio &meta = avvio.destinazione;
    const QString &temp = avvio.temp;
    EsitoScambio esito;
    Archivio locale, set;
    if (!ApriArchivioSoftware(cartellaSoftware(percorsoApp), FileArchivi::FileSoftware, locale)
        || !ApriArchivioSoftware(temp, FileArchivi::FileTempSoftware, set)) {
        const EsitoArchivio e = locale.Aperto() ? set.Esito() : locale.Esito();
        CancellaTemp(percorsoApp);
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_19")), {MessaggioArchivio(e)});
    }
    const QString files = CartellaFiles19(percorsoApp);
    const QString filesSet = temp + u'/' + Files19;
    CreaCartella(filesSet);
    QSet<QString> fatti;
    for (const QString &n : nomi) {
        const QString nome = n.trimmed();
        if (!NomeScambioValido(nome, lunghezzaNome()) || fatti.contains(ChiavePiegata(nome))) {
            esito.avvisi.push_back(MessaggioScambio(fatti.contains(ChiavePiegata(nome))
                                                        ? Messaggio("SCAMBIO", "DOPPIO")
                                                        : Messaggio("SCAMBIO", "NOME"),
                                                    NomeVisibile(nome)));
            continue;
        }
        fatti.insert(ChiavePiegata(nome));
        const std::optional<RigaArchivio> qui = locale.Cerca(u"PER_NOME", {nome});
        RigaArchivio riga = set.NuovaRiga();
        riga.Imposta(u"NomeSW", nome);
        riga.Imposta(u"Versione", qui ? qui->Campo(u"Versione") : std::nullopt);
        riga.Imposta(u"NOTE", qui ? qui->Campo(u"NOTE") : std::nullopt);
        if (!set.Salva(riga)) {
            esito.avvisi.push_back(MessaggioArchivio(set.Esito()));
            continue;
        }
        const QString file = PercorsoS19(files, nome);
        if (DentroRadice(file, files) && QFileInfo(file).isFile()) {
            if (CopiaFileScambio(file, filesSet + u'/' + nome + EstensioneS19, temp, MassimoFileScambio)
                != EsitoCopia::Fatta)
                esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "SOLO_RIGA"), nome));
        } else {
            esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "SOLO_RIGA"), nome));
        }
        ++esito.voci;
    }
    ChiudiArchivioSoftware(set);
    ChiudiArchivioSoftware(locale);

    return ConsegnaSet(esito, meta, temp, percorsoApp, TipoScambio::Software);
}

SorgenteSoftware LeggiDiscoSoftware(const QString &percorsoApp, const QString &sorgente)
{
    SorgenteSoftware s;
    const MediumScambio m = LeggiMediumScambio(percorsoApp, sorgente, TipoScambio::Software);
    s.esito = m.esito;
    if (!m.esito.fatto)
        return s;
    for (const RigaArchivio &r : m.righe) {
        VoceSoftware v;
        v.nome = r.Testo(u"NomeSW").trimmed();
        if (v.nome.isEmpty())
            continue;
        v.versione = r.Testo(u"Versione");
        v.nota = r.Testo(u"NOTE");
        v.nelCatalogo = true;
        v.suDisco = NomeScambioValido(v.nome, lunghezzaNome()) && !fileNelMedium(m, v.nome).isEmpty();
        s.voci << v;
    }
    std::stable_sort(s.voci.begin(), s.voci.end(), [](const VoceSoftware &a, const VoceSoftware &b) {
        return ChiavePiegata(a.nome) < ChiavePiegata(b.nome);
    });
    CancellaTemp(percorsoApp);
    return s;
}

EsitoScambio RipristinaSoftware(const QString &percorsoApp, const QString &sorgente, const QStringList &nomi,
                                const DomandaScambio &domanda)
{
    if (nomi.isEmpty() || sorgente.trimmed().isEmpty())
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_23")));
    const MediumScambio m = LeggiMediumScambio(percorsoApp, sorgente, TipoScambio::Software);
    if (!m.esito.fatto)
        return m.esito;
    EsitoScambio esito;
    esito.avvisi = m.esito.avvisi;
    Archivio locale;
    const QString files = CartellaFiles19(percorsoApp);
    if (!ApriArchivioSoftware(cartellaSoftware(percorsoApp), FileArchivi::FileSoftware, locale)
        || !CreaCartella(files) || !DentroRadice(files, percorsoApp)) {
        esito.messaggio = MessaggioScambio(Messaggio("RipriDiscoSW", "SEGNALAZIONE1.4"));
        if (!locale.Esito().ok())
            esito.avvisi.push_back(MessaggioArchivio(locale.Esito()));
        CancellaTemp(percorsoApp);
        return esito;
    }
    QSet<QString> fatti;
    for (const QString &n : nomi) {
        const QString nome = n.trimmed();
        const QString visibile = NomeVisibile(nome);
        const auto salta = [&](Messaggio motivo) {
            esito.avvisi.push_back(MessaggioScambio(std::move(motivo), visibile));
        };
        if (!NomeScambioValido(nome, lunghezzaNome())) {
            salta(Messaggio("SCAMBIO", "NOME"));
            continue;
        }
        if (fatti.contains(ChiavePiegata(nome))) {
            salta(Messaggio("SCAMBIO", "DOPPIO"));
            continue;
        }
        fatti.insert(ChiavePiegata(nome));
        const QString origine = fileNelMedium(m, nome);
        if (origine.isEmpty()) {
            salta(Messaggio("SCAMBIO", "SENZA_FILE"));
            continue;
        }
        std::optional<QString> versione, nota;
        for (const RigaArchivio &r : std::as_const(m.righe)) {
            if (ChiavePiegata(r.Testo(u"NomeSW").trimmed()) == ChiavePiegata(nome)) {
                versione = r.Campo(u"Versione");
                nota = r.Campo(u"NOTE");
                break;
            }
        }
        // The name as it is spelt here already, if it is.
        const QString file = PercorsoS19(files, nome);
        if (!DentroRadice(file, files) || QFileInfo(file).isDir()) {
            salta(Messaggio("SCAMBIO", "FUORI"));
            continue;
        }
        const QString qui = QFileInfo(file).fileName().chopped(EstensioneS19.size());
        const std::optional<RigaArchivio> riga = locale.Cerca(u"PER_NOME", {nome});
        if (riga || QFileInfo(file).isFile()) {
            const Messaggio testo =
                MessaggioScambio(Messaggio("RipriDiscoSW", "SEGNALAZIONE1.1"),
                                 u' ' + nome + u'\\' + (riga ? riga->Testo(u"Versione") : QString()) + u' ');
            if (!domanda(testo))
                continue;
        }
        const std::optional<QByteArray> prima = ContenutoPrecedente(file, files);
        if (!PosaFile(origine, file, files)) {
            salta(Messaggio("SCAMBIO", "SCRITTURA"));
            continue;
        }
        RigaArchivio nuova = locale.NuovaRiga();
        nuova.Imposta(u"NomeSW", riga ? riga->Testo(u"NomeSW") : qui);
        nuova.Imposta(u"Versione", versione);
        nuova.Imposta(u"NOTE", nota);
        if (!locale.Salva(nuova)) {
            RimettiFile(file, files, prima);
            esito.avvisi.push_back(
                MessaggioArchivio(locale.Esito()).preceduto(visibile + QStringLiteral(": ")));
            continue;
        }
        ++esito.voci;
    }
    ChiudiArchivioSoftware(locale);
    CancellaTemp(percorsoApp);
    esito.fatto = true;
    esito.messaggio = MessaggioConteggio(Messaggio("RipriDiscoSW", "SEGNALAZIONE1.3"), esito.voci);
    return esito;
}

} // namespace kv
