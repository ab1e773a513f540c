#include "programming/ScambioMappe.h"

#include "archives/Cartelle.h"
#include "archives/PulisciDestinazione.h"
#include "base/FileSystem.h"
#include "programming/ControlloMappa.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace kv {

namespace {

// Why a map's names cannot travel; empty when they can.
Messaggio difettoNomi(const ChiaveMappa &k)
{
    for (int n = 0; n < ChiaveMappa::Campi; ++n)
        if (!NomeScambioValido(k.campo(n), LunghezzaMassimaNome(n)))
            return Messaggio("SCAMBIO", "NOME");
    for (const QLatin1String impianto : FileMappa::Impianti)
        if (k.impianto.compare(impianto, Qt::CaseInsensitive) == 0)
            return {};
    return Messaggio("SCAMBIO", "IMPIANTO");
}

QString piegata(const ChiaveMappa &k)
{
    QStringList parti;
    for (const QString &p : k.elenco())
        parti << ChiavePiegata(p);
    return parti.join(u'\t');
}

RigaArchivio rigaMappa(const Archivio &db, const ChiaveMappa &k, const std::optional<QString> &nota)
{
    RigaArchivio r = db.NuovaRiga();
    r.Imposta(u"TipoImpianto", k.impianto);
    r.Imposta(u"Marca", k.marca);
    r.Imposta(u"Modello", k.modello);
    r.Imposta(u"File", k.file);
    r.Imposta(u"NOTE", nota);
    return r;
}

// Why an entry of a list is passed over (a name that cannot be a file here, or one already
// done in other case); empty when it goes ahead, and then it counts as done.
Messaggio scarto(const ChiaveMappa &k, QSet<QString> &fatte)
{
    if (Messaggio difetto = difettoNomi(k); !difetto.vuoto())
        return difetto;
    if (fatte.contains(piegata(k)))
        return Messaggio("SCAMBIO", "DOPPIO");
    fatte.insert(piegata(k));
    return {};
}

EsitoScambio fine(bool fatto, const Messaggio &messaggio, std::vector<Messaggio> avvisi = {})
{
    return {fatto, messaggio, std::move(avvisi), 0};
}

} // namespace

QString TestoChiaveMappa(const ChiaveMappa &chiave)
{
    return chiave.elenco().join(u'\\');
}

EsitoScambio ScriviDiscoMappe(const QString &percorsoApp, const QList<ChiaveMappa> &mappe,
                              const QString &destinazione, const DomandaScambio &domanda)
{
    if (mappe.isEmpty())
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_17")));
    const AvvioCopiaSet avvio =
        AvviaCopiaSet(destinazione, percorsoApp, domanda, Segnalazione("SEGNALAZIONE_18"));
    if (avvio.errore)
        return *avvio.errore;
    const CartellaScambio &meta = avvio.destinazione;
    const QString &temp = avvio.temp;
    Archivio locale, set;
    if (!ApriArchivioMappe(CartellaMappe(percorsoApp), FileArchivi::FileMappe, locale)
        || !ApriArchivioMappe(temp, FileArchivi::FileTempMappe, set)) {
        const EsitoArchivio e = locale.Aperto() ? set.Esito() : locale.Esito();
        CancellaTemp(percorsoApp);
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_19")), {MessaggioArchivio(e)});
    }
    EsitoScambio esito;
    QSet<QString> fatte;
    for (const ChiaveMappa &m : mappe) {
        const ChiaveMappa k = m.pulita();
        const QString visibile = NomeVisibile(TestoChiaveMappa(k));
        const auto salta = [&](Messaggio motivo) {
            esito.avvisi.push_back(MessaggioScambio(std::move(motivo), visibile));
        };
        if (Messaggio difetto = scarto(k, fatte); !difetto.vuoto()) {
            salta(std::move(difetto));
            continue;
        }
        const PercorsoMappa p = PercorsoFileMappa(percorsoApp, k, NomiMappa::Esistenti);
        if (!p.ok()) {
            salta(Messaggio("SCAMBIO", "FUORI"));
            continue;
        }
        const std::optional<RigaArchivio> qui = locale.Cerca(u"PER_NOME", k.elenco());
        if (!set.Salva(rigaMappa(set, p.chiave, qui ? qui->Campo(u"NOTE") : std::nullopt))) {
            esito.avvisi.push_back(MessaggioArchivio(set.Esito()).preceduto(visibile + QStringLiteral(": ")));
            continue;
        }
        QString cartella = temp;
        for (int n = ChiaveMappa::Impianto; n <= ChiaveMappa::Modello; ++n)
            cartella = PercorsoFile(cartella, p.chiave.campo(n));
        const bool copiata =
            EsisteMappa(p) && CreaCartella(cartella) && DentroRadice(cartella, temp)
            && CopiaFileScambio(p.file, cartella + u'/' + p.chiave.file + FileMappa::Estensione, temp,
                                MassimoFileScambio)
                   == EsitoCopia::Fatta;
        if (!copiata)
            salta(Messaggio("SCAMBIO", "SOLO_RIGA"));
        ++esito.voci;
    }
    ChiudiArchivioMappe(set);
    ChiudiArchivioMappe(locale);

    return ConsegnaSet(esito, meta, temp, percorsoApp, TipoScambio::Mappe);
}

SorgenteMappe LeggiDiscoMappe(const QString &percorsoApp, const QString &sorgente)
{
    SorgenteMappe s;
    const MediumScambio m = LeggiMediumScambio(percorsoApp, sorgente, TipoScambio::Mappe);
    s.esito = m.esito;
    if (!m.esito.fatto)
        return s;
    s.albero.aggiungiCartelle(m.temp);
    s.albero.aggiungiRighe(m.righe);
    CancellaTemp(percorsoApp);
    return s;
}

EsitoScambio RipristinaMappe(const QString &percorsoApp, const QString &sorgente,
                             const QList<ChiaveMappa> &mappe, const DomandaScambio &domanda)
{
    if (mappe.isEmpty() || sorgente.trimmed().isEmpty())
        return fine(false, MessaggioScambio(Segnalazione("SEGNALAZIONE_17")));
    const MediumScambio m = LeggiMediumScambio(percorsoApp, sorgente, TipoScambio::Mappe);
    if (!m.esito.fatto)
        return m.esito;
    EsitoScambio esito;
    esito.avvisi = m.esito.avvisi;
    Archivio locale;
    const QString radice = CartellaMappe(percorsoApp);
    if (!ApriArchivioMappe(radice, FileArchivi::FileMappe, locale)) {
        CancellaTemp(percorsoApp);
        esito.avvisi.push_back(MessaggioArchivio(locale.Esito()));
        return fine(false, MessaggioScambio(Messaggio("RipriMappe", "SEGNALAZIONE_4")), esito.avvisi);
    }
    // The notes of the medium by key; the first of a doubled key wins.
    QHash<QString, std::optional<QString>> note;
    for (const RigaArchivio &r : m.righe) {
        const ChiaveMappa k =
            ChiaveMappa{r.Testo(u"TipoImpianto"), r.Testo(u"Marca"), r.Testo(u"Modello"), r.Testo(u"File")}
                .pulita();
        if (!note.contains(piegata(k)))
            note.insert(piegata(k), r.Campo(u"NOTE"));
    }
    QSet<QString> fatte;
    for (const ChiaveMappa &mappa : mappe) {
        const ChiaveMappa k = mappa.pulita();
        const QString visibile = NomeVisibile(TestoChiaveMappa(k));
        const auto salta = [&](Messaggio motivo) {
            esito.avvisi.push_back(MessaggioScambio(std::move(motivo), visibile));
        };
        if (Messaggio difetto = scarto(k, fatte); !difetto.vuoto()) {
            salta(std::move(difetto));
            continue;
        }
        const QString origine =
            FileNelMedium(m, {k.impianto, k.marca, k.modello, k.file + FileMappa::Estensione});
        if (origine.isEmpty()) {
            salta(Messaggio("SCAMBIO", "SENZA_FILE"));
            continue;
        }
        // Only a file that is exactly a map comes into the archive: from there it could be
        // written into an ECU.
        if (const EsitoMappa controllo = LeggiMappa(origine); !controllo.ok()) {
            esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "NON_MAPPA"), visibile)
                                       .con(QStringLiteral("YYY"), MessaggioEsitoMappa(controllo)));
            continue;
        }
        const PercorsoMappa p = PercorsoFileMappa(percorsoApp, k, NomiMappa::Esistenti);
        if (!p.ok()) {
            salta(Messaggio("SCAMBIO", "FUORI"));
            continue;
        }
        const std::optional<RigaArchivio> qui = locale.Cerca(u"PER_NOME", k.elenco());
        if (qui || EsisteMappa(p)) {
            const Messaggio testo = MessaggioScambio(Messaggio("RipriMappe", "SEGNALAZIONE_1"),
                                                     u' ' + TestoChiaveMappa(p.chiave) + u' ');
            if (!domanda(testo))
                continue;
        }
        const std::optional<QByteArray> prima = ContenutoPrecedente(p.file, radice);
        if (!CreaCartellaMappa(percorsoApp, p) || !PosaFile(origine, p.file, radice)) {
            salta(Messaggio("SCAMBIO", "SCRITTURA"));
            continue;
        }
        if (!locale.Salva(rigaMappa(locale, p.chiave, note.value(piegata(k))))) {
            RimettiFile(p.file, radice, prima);
            esito.avvisi.push_back(
                MessaggioArchivio(locale.Esito()).preceduto(visibile + QStringLiteral(": ")));
            continue;
        }
        ++esito.voci;
    }
    ChiudiArchivioMappe(locale);
    CancellaTemp(percorsoApp);
    esito.fatto = true;
    esito.messaggio = MessaggioConteggio(Messaggio("RipriMappe", "SEGNALAZIONE_3"), esito.voci);
    return esito;
}

} // namespace kv
