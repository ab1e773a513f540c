#include "programming/MappaArchiviata.h"

#include "archives/SchemaArchivi.h"
#include "programming/FileBlocchi.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

MappaArchiviata CaricaMappaArchiviata(const QString &percorsoApp, const ChiaveMappa &chiave)
{
    MappaArchiviata m;
    m.percorso = PercorsoFileMappa(percorsoApp, chiave, NomiMappa::Esistenti);
    if (!m.percorso.ok() || !EsisteMappa(m.percorso)) {
        m.mappa.errore = EsitoMappa::Errore::Illeggibile;
        return m;
    }
    m.mappa = LeggiMappa(m.percorso.file);
    Archivio db;
    if (ApriArchivioMappe(CartellaMappe(percorsoApp), FileArchivi::FileMappe, db)) {
        if (const std::optional<RigaArchivio> r = db.Cerca(u"PER_NOME", m.percorso.chiave.elenco())) {
            m.nota = r->Campo(u"Note");
            if (const std::optional<QString> s = r->Campo(u"ScalaLambda"); s && !s->trimmed().isEmpty())
                m.scalaLambda = s->toDouble() != 0 ? 255 : 0;
        }
    }
    m.archivio = db.Esito();
    return m;
}

Messaggio MessaggioMappaRifiutata(const MappaArchiviata &mappa, const QString &nome)
{
    // The name last: one that holds a placeholder stays as typed.
    return Messaggio(QStringLiteral("ConfrontoMappe"),
                     QStringLiteral("MAPPA.") + QString::number(int(mappa.mappa.errore)))
        .ritaglia()
        .con(QStringLiteral("ZZZ"), QString::number(mappa.mappa.colonna))
        .con(QStringLiteral("YYY"), QString::number(mappa.mappa.record))
        .con(QStringLiteral("XXX"), nome);
}

Messaggio MessaggioSalvataggio(const EsitoSalvataggio &esito)
{
    const QString sezione = QStringLiteral("ConfrontoMappe");
    if (!esito.ok())
        return Messaggio(sezione, esito.errore == EsitoSalvataggio::Errore::Verifica
                                      ? QStringLiteral("SALVA.2")
                                      : QStringLiteral("SALVA.1"))
            .ritaglia();
    if (!esito.archivio.ok())
        return Messaggio(sezione, QStringLiteral("SALVA.3"))
            .ritaglia()
            .poi(MessaggioArchivio(esito.archivio), QStringLiteral(" "));
    return {};
}

namespace {

EsitoSalvataggio fallito(EsitoSalvataggio::Errore errore, const PercorsoMappa &percorso)
{
    EsitoSalvataggio e;
    e.errore = errore;
    e.percorso = percorso;
    return e;
}

} // namespace

EsitoSalvataggio SalvaImmagineMappa(const QString &percorsoApp, const ChiaveMappa &chiave,
                                    const QByteArray &immagine, const QString &nota,
                                    std::optional<double> scalaLambda)
{
    using E = EsitoSalvataggio::Errore;
    const PercorsoMappa percorso = PercorsoFileMappa(percorsoApp, chiave);
    if (!percorso.ok())
        return fallito(percorso.errore == PercorsoMappa::Errore::Nome ? E::Nome : E::FuoriRadice, percorso);
    if (immagine.size() != FileMappa::Dimensione)
        return fallito(E::Immagine, percorso);

    const QString tmp = PercorsoTemporaneoMappa(percorsoApp);
    if ((QFileInfo::exists(tmp) || QFileInfo(tmp).isSymLink()) && !QFile::remove(tmp))
        return fallito(E::Scrittura, percorso);
    bool scritto = true;
    for (int n = 0; n < FileMappa::Blocchi && scritto; ++n)
        scritto = AggiungiRecord(tmp, QByteArrayView(immagine).sliced(n * LunBlocco, LunBlocco));
    if (!scritto) {
        QFile::remove(tmp);
        return fallito(E::Scrittura, percorso);
    }
    // What lands in the archive is what the strict check reads back, byte for byte.
    const EsitoMappa riletta = LeggiMappa(tmp);
    if (!riletta.ok() || riletta.immagine != immagine) {
        QFile::remove(tmp);
        return fallito(E::Verifica, percorso);
    }
    const bool posata = CreaCartellaMappa(percorsoApp, percorso) && PosaMappa(tmp, percorsoApp, percorso);
    QFile::remove(tmp);
    if (!posata)
        return fallito(E::Scrittura, percorso);
    EsitoSalvataggio e;
    e.percorso = percorso;
    e.archivio = RegistraMappa(percorsoApp, percorso.chiave, nota, scalaLambda);
    return e;
}

} // namespace kv
