#include "archives/CancellazioneSoftware.h"

#include "archives/Cartelle.h"
#include "archives/ScambioSoftware.h"
#include "base/FileSystem.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

EsitoScambio CancellaSoftware(const QString &percorsoApp, const QString &nome, const DomandaScambio &domanda)
{
    EsitoScambio esito;
    const QString n = nome.trimmed();
    if (n.isEmpty()) {
        esito.messaggio = MessaggioScambio(Segnalazione("SEGNALAZIONE_13"));
        return esito;
    }
    const Messaggio testo = MessaggioScambio(Segnalazione("SEGNALAZIONE_26"))
                                .poi(MessaggioScambio(Messaggio("SCAMBIO", "CANCELLA_SW"), NomeVisibile(n)));
    if (!domanda(testo))
        return esito;

    Archivio db;
    if (!ApriArchivioSoftware(PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware),
                              FileArchivi::FileSoftware, db)) {
        esito.messaggio = MessaggioArchivio(db.Esito());
        return esito;
    }
    // A catalogue that can only be read would keep a row whose file was gone.
    if (db.SoloLettura()) {
        esito.messaggio = MessaggioScambio(Messaggio("SCAMBIO", "CANCELLATO_SW_NO"), NomeVisibile(n));
        esito.avvisi.push_back(MessaggioScambio(Messaggio("ARCHIVI", "SOLALETTURA"), db.Percorso()));
        return esito;
    }
    const bool riga = db.Cancella(u"PER_NOME", {n}) || db.Esito().ok();
    if (!riga)
        esito.avvisi.push_back(MessaggioArchivio(db.Esito()));
    ChiudiArchivioSoftware(db);

    // Only a plain file of FILES19 itself, whatever the name holds.
    bool file = true;
    const QString files = CartellaFiles19(percorsoApp);
    const QString s19 = PercorsoS19(files, n);
    const QFileInfo info(s19);
    if (riga && !n.contains(u'/') && DentroRadice(files, percorsoApp) && DentroRadice(s19, files)
        && info.absolutePath() == QFileInfo(files).absoluteFilePath() && info.isFile()) {
        ToglieSolaLettura(s19, files);
        file = QFile::remove(s19);
        if (!file)
            esito.avvisi.push_back(MessaggioScambio(Messaggio("SCAMBIO", "CANCELLAZIONE"), NomeVisibile(n)));
    }
    esito.fatto = true;
    esito.voci = riga && file ? 1 : 0;
    esito.messaggio = MessaggioScambio(esito.voci ? Messaggio("SCAMBIO", "CANCELLATO_SW")
                                                  : Messaggio("SCAMBIO", "CANCELLATO_SW_NO"),
                                       NomeVisibile(n));
    return esito;
}

} // namespace kv
