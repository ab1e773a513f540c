#include "programming/CancellazioneMappe.h"

#include "archives/Cartelle.h"
#include "programming/ScambioMappe.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kv {

namespace {

// The question names every map it deletes, up to a screenful.
constexpr int MappeNellaDomanda = 12;

bool restaUnaMappa(const QString &cartella)
{
    const QStringList voci = QDir(cartella).entryList(QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &v : voci)
        if (v.endsWith(FileMappa::Estensione, Qt::CaseInsensitive))
            return true;
    return false;
}

} // namespace

EsitoScambio CancellaMappe(const QString &percorsoApp, const QList<ChiaveMappa> &mappe,
                           const DomandaScambio &domanda)
{
    EsitoScambio esito;
    if (mappe.isEmpty()) {
        esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_27"));
        return esito;
    }
    QStringList nomi;
    for (const ChiaveMappa &k : mappe.mid(0, MappeNellaDomanda))
        nomi << NomeVisibile(TestoChiaveMappa(k.pulita()));
    // The names as they stand, and how many more below them.
    const bool altre = mappe.size() > MappeNellaDomanda;
    Messaggio elenco = altre ? MessaggioScambio(Messaggio("SCAMBIO", "ALTRE"),
                                                QString::number(mappe.size() - MappeNellaDomanda))
                             : Messaggio();
    elenco.prima = nomi.join(u'\n') + (altre ? QStringLiteral("\n") : QString());
    if (!domanda(MessaggioScambio(Segnalazione("SEGNALAZIONE_30")).poi(elenco)))
        return esito;

    const QString radice = CartellaMappe(percorsoApp);
    Archivio db;
    if (!ApriArchivioMappe(radice, FileArchivi::FileMappe, db)) {
        esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_28"));
        esito.avvisi.push_back(MessaggioArchivio(db.Esito()));
        return esito;
    }
    // A catalogue that can only be read would keep rows whose files were gone.
    if (db.SoloLettura()) {
        esito.messaggio = MessaggioScambio(Messaggio("SCAMBIO", "CANCELLATE_NESSUNA"));
        esito.avvisi.push_back(MessaggioScambio(Messaggio("ARCHIVI", "SOLALETTURA"), db.Percorso()));
        return esito;
    }
    for (const ChiaveMappa &m : mappe) {
        const ChiaveMappa k = m.pulita();
        const QString visibile = NomeVisibile(TestoChiaveMappa(k));
        if (!db.Cancella(u"PER_NOME", k.elenco()) && !db.Esito().ok()) {
            esito.avvisi.push_back(MessaggioArchivio(db.Esito()).preceduto(visibile + QStringLiteral(": ")));
            continue;
        }
        const PercorsoMappa p = PercorsoFileMappa(percorsoApp, k, NomiMappa::Esistenti);
        if (!p.ok()) {
            if (k.completa())
                esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "FUORI_CANCELLA"), visibile));
            continue;
        }
        if (EsisteMappa(p)) {
            ToglieSolaLettura(p.file, radice);
            if (!QFile::remove(p.file)) {
                esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "CANCELLAZIONE"), visibile));
                continue;
            }
        }
        ++esito.voci;
        // The model's folder goes with its last map; the make's and the plant's stay.
        if (QFileInfo(p.cartella).isDir() && !restaUnaMappa(p.cartella))
            CancellaCartella(p.cartella, radice);
    }
    ChiudiArchivioMappe(db);
    esito.fatto = true;
    // The closing line says what happened, whatever the lines below it tell.
    if (esito.voci == mappe.size())
        esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_29"));
    else if (esito.voci == 0)
        esito.messaggio = MessaggioScambio(Messaggio("SCAMBIO", "CANCELLATE_NESSUNA"));
    else
        esito.messaggio =
            MessaggioScambio(Messaggio("SCAMBIO", "CANCELLATE_PARTE"), QString::number(esito.voci))
                .con(QStringLiteral("YYY"), QString::number(mappe.size()));
    return esito;
}

} // namespace kv
