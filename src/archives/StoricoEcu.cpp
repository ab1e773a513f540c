#include "archives/StoricoEcu.h"

#include "archives/Cartelle.h"
#include "base/FileSystem.h"

#include <algorithm>

namespace kv {

namespace {

constexpr int DimensioneImmagine = 512;
constexpr QLatin1Char Separatore('|');

QString cartella(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, FileStorico::Cartella);
}

// The archive opened where it belongs: a folder that is a link to elsewhere is refused.
bool apri(Archivio &db, const QString &percorsoApp)
{
    const QString c = cartella(percorsoApp);
    if (!DentroRadice(c, percorsoApp))
        return false;
    return db.Apri(c, FileStorico::File, SchemaStorico());
}

EsitoArchivio esitoDi(const Archivio &db, const QString &percorsoApp)
{
    if (db.Aperto() || !db.Esito().ok())
        return db.Esito();
    return {ErroreArchivio::FileEstraneo, cartella(percorsoApp), {}};
}

bool esadecimale(const QString &testo)
{
    return std::all_of(testo.begin(), testo.end(), [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'A' && c <= u'F') || (c >= u'a' && c <= u'f');
    });
}

VoceStorico daRiga(const RigaArchivio &r)
{
    VoceStorico v;
    const QStringList ecu = r.Testo(u"Ecu").split(Separatore);
    v.ecu = {ecu.value(0), ecu.value(1), ecu.value(2)};
    v.quando = QDateTime(QDate::fromString(r.Testo(u"Data"), FileStorico::FormatoData),
                         QTime::fromString(r.Testo(u"Ora"), FileStorico::FormatoOra));
    v.evento = r.Testo(u"Evento");
    if (const std::optional<QString> s = r.Campo(u"ScalaLambda"); s && !s->isEmpty())
        v.scalaLambda = s->toDouble() != 0 ? 255 : 0;
    // An image that is not whole is no image: it is never shown or written in part.
    const QString hex = r.Testo(u"Immagine");
    if (hex.size() == 2 * DimensioneImmagine && esadecimale(hex))
        v.immagine = QByteArray::fromHex(hex.toLatin1());
    return v;
}

} // namespace

QString IdentitaEcu::chiave() const
{
    return QStringList{codice.trimmed(), datoA.trimmed(), datoB.trimmed()}.join(Separatore);
}

const SchemaArchivio &SchemaStorico()
{
    static const SchemaArchivio s{QStringLiteral("STORICO"),
                                  {{QStringLiteral("Ecu"), 30},
                                   {QStringLiteral("Data"), 10},
                                   {QStringLiteral("Ora"), 12},
                                   {QStringLiteral("Evento"), 40},
                                   {QStringLiteral("ScalaLambda"), 3},
                                   {QStringLiteral("Immagine"), 2 * DimensioneImmagine}},
                                  {{QStringLiteral("PER_ECU"),
                                    {QStringLiteral("Ecu"), QStringLiteral("Data"), QStringLiteral("Ora")},
                                    true,
                                    true}}};
    return s;
}

EsitoArchivio AggiungiStorico(const QString &percorsoApp, const VoceStorico &voce)
{
    if (voce.immagine.size() != DimensioneImmagine || voce.ecu.vuota() || !voce.quando.isValid())
        return {ErroreArchivio::Uso, cartella(percorsoApp), QStringLiteral("entry")};
    Archivio db;
    if (!apri(db, percorsoApp))
        return esitoDi(db, percorsoApp);
    RigaArchivio riga = db.NuovaRiga();
    riga.Imposta(u"Ecu", voce.ecu.chiave());
    riga.Imposta(u"Evento", voce.evento.left(SchemaStorico().campi.at(3).dimensione));
    riga.Imposta(u"ScalaLambda", voce.scalaLambda
                                     ? std::optional(QString::number(*voce.scalaLambda != 0 ? 255 : 0))
                                     : std::nullopt);
    riga.Imposta(u"Immagine", QString::fromLatin1(voce.immagine.toHex().toUpper()));
    QDateTime quando = voce.quando;
    for (int prova = 0; prova < 1000; ++prova, quando = quando.addMSecs(1)) {
        riga.Imposta(u"Data", quando.toString(FileStorico::FormatoData));
        riga.Imposta(u"Ora", quando.toString(FileStorico::FormatoOra));
        if (db.Aggiungi(riga) || db.Esito().errore != ErroreArchivio::ChiaveDuplicata)
            break;
    }
    return db.Esito();
}

QList<VoceStorico> ElencaStorico(const QString &percorsoApp, const IdentitaEcu &ecu, EsitoArchivio *esito)
{
    QList<VoceStorico> voci;
    Archivio db;
    const bool aperto = apri(db, percorsoApp);
    if (aperto) {
        const QList<RigaArchivio> righe = db.ElencaPrefisso(u"PER_ECU", {ecu.chiave()});
        for (auto r = righe.crbegin(); r != righe.crend(); ++r)
            if (ChiavePiegata(r->Testo(u"Ecu")) == ChiavePiegata(ecu.chiave()))
                voci.append(daRiga(*r));
    }
    if (esito)
        *esito = esitoDi(db, percorsoApp);
    return voci;
}

std::optional<VoceStorico> LeggiStorico(const QString &percorsoApp, const IdentitaEcu &ecu,
                                        const QDateTime &quando, EsitoArchivio *esito)
{
    std::optional<VoceStorico> voce;
    Archivio db;
    if (apri(db, percorsoApp))
        if (const std::optional<RigaArchivio> r =
                db.Cerca(u"PER_ECU", {ecu.chiave(), quando.toString(FileStorico::FormatoData),
                                      quando.toString(FileStorico::FormatoOra)}))
            voce = daRiga(*r);
    if (esito)
        *esito = esitoDi(db, percorsoApp);
    return voce;
}

} // namespace kv
