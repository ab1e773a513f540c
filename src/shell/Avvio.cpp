#include "shell/Avvio.h"

#include "base/FileSystem.h"
#include "base/IstanzaUnica.h"
#include "shell/Programma.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

namespace kv {

namespace Avvio {

Esito preparaCartella(const QString &percorsoApp, IstanzaUnica &istanza)
{
    switch (istanza.acquisisci()) {
    case IstanzaUnica::Esito::Acquisita:
        break;
    case IstanzaUnica::Esito::AltraIstanza:
        return Esito::AltraIstanza;
    case IstanzaUnica::Esito::Errore:
        return Esito::CartellaInutilizzabile;
    }
    QDir::setCurrent(percorsoApp);
    return Esito::Prosegui;
}

void esegui(Programma &p, const CercaTesto &testo)
{
    const QString decimale = QLocale().decimalPoint();
    p.SepDecimale = decimale.isEmpty() ? '.' : decimale.at(0).toLatin1();

    // A folder that cannot be made is not reported here: the archive that needs it will say so.
    for (const char *cartella : {"/MAPPATURE/LPG/", "/MAPPATURE/CNG/", "/SOFTWARE/", "/DATI/"})
        CreaCartella(p.PercorsoApp + QLatin1String(cartella));
    // KVMAPPA.TMP belongs to a map read that a crash cut short: it is never finished later.
    for (const char *file : {"/MESSAGGI.TXT", "/MAPPA.TMP", "/KVMAPPA.TMP"}) {
        const QFileInfo percorso(p.PercorsoApp + QLatin1String(file));
        if (percorso.isFile() || percorso.isSymLink())
            QFile::remove(percorso.filePath());
    }

    p.IniDialogo();
    p.IniCollegamento();
    p.catalogo.InizializzaParametri();
    p.LeggiImpSeriale();
    p.ApriPorta();
    p.canali.InizializzaCanali(testo);
    p.anello.azzera();
}

} // namespace Avvio

} // namespace kv
