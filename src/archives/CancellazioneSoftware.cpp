#include "archives/CancellazioneSoftware.h"

#include "archives/Cartelle.h"
#include "archives/ScambioSoftware.h"
#include "base/FileSystem.h"
#include "base/Lingua.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

EsitoScambio CancellaSoftware(const QString &percorsoApp, const Lingua &lingua, const QString &nome,
                              const DomandaScambio &domanda)
{
    EsitoScambio esito;
    const QString n = nome.trimmed();
    if (n.isEmpty()) {
        esito.messaggio =
            TestoScambio(lingua, QStringLiteral("SEGNALAZIONI"), QStringLiteral("SEGNALAZIONE_13"));
        return esito;
    }
    const QString testo =
        TestoScambio(lingua, QStringLiteral("SEGNALAZIONI"), QStringLiteral("SEGNALAZIONE_26"))
        + QStringLiteral("\n\n")
        + TestoScambio(lingua, QStringLiteral("SCAMBIO"), QStringLiteral("CANCELLA_SW"), NomeVisibile(n));
    if (!domanda(testo))
        return esito;

    Archivio db;
    if (!ApriArchivioSoftware(PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware),
                              FileArchivi::FileSoftware, db)) {
        esito.messaggio = TestoEsitoArchivio(lingua, db.Esito());
        return esito;
    }
    if (!db.Cancella(u"PER_NOME", {n}) && !db.Esito().ok())
        esito.avvisi << TestoEsitoArchivio(lingua, db.Esito());
    ChiudiArchivioSoftware(db);

    // Only a plain file of FILES19 itself, whatever the name holds.
    const QString files = CartellaFiles19(percorsoApp);
    const QString file = PercorsoS19(files, n);
    const QFileInfo info(file);
    if (!n.contains(u'/') && DentroRadice(files, percorsoApp) && DentroRadice(file, files)
        && info.absolutePath() == QFileInfo(files).absoluteFilePath() && info.isFile()) {
        ToglieSolaLettura(file, files);
        if (!QFile::remove(file))
            esito.avvisi << TestoScambio(lingua, QStringLiteral("SCAMBIO"), QStringLiteral("CANCELLAZIONE"),
                                         NomeVisibile(n));
    }
    esito.fatto = true;
    esito.voci = 1;
    esito.messaggio =
        TestoScambio(lingua, QStringLiteral("SCAMBIO"), QStringLiteral("CANCELLATO_SW"), NomeVisibile(n));
    return esito;
}

} // namespace kv
