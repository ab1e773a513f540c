// korvantine-pictures DIR: every screen of the program, rendered to PNG files in DIR against the
// simulated ECU, in English, as a fitter sees them at 1024x768.
// Run it with the offscreen platform (scripts/pictures.sh does).

#include "Demo.h"

#include "archives/ScambioSoftware.h"
#include "base/FileIni.h"
#include "base/IstanzaUnica.h"
#include "base/PercorsoApp.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "programming/ui/PaginaElenchiMappe.h"
#include "programming/ui/PaginaSoftware.h"
#include "programming/ui/ProgMappe.h"
#include "programming/ui/ReadMappe.h"
#include "programming/ui/RegistroMappe.h"
#include "programming/ui/RegistroScambio.h"
#include "programming/ui/SceltaCartella.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"

#include <QApplication>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <functional>
#include <memory>

using namespace kv;

namespace {

bool attendi(const std::function<bool()> &condizione, int millisecondi)
{
    QDeadlineTimer scadenza(millisecondi);
    while (!condizione()) {
        if (scadenza.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return true;
}

void pausa(int millisecondi)
{
    attendi([] { return false; }, millisecondi);
}

bool salva(QWidget &finestra, const QDir &cartella, const QString &nome)
{
    pausa(300);
    const QString percorso = cartella.filePath(nome);
    if (!finestra.grab().save(percorso)) {
        std::fprintf(stderr, "korvantine-pictures: cannot write %s\n", qPrintable(percorso));
        return false;
    }
    std::printf("%s\n", qPrintable(percorso));
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList argomenti = QCoreApplication::arguments();
    if (argomenti.size() != 2) {
        std::fprintf(stderr, "usage: korvantine-pictures DIR\n");
        return 2;
    }
    // Absolute: the start-up moves the working folder to the program's own.
    const QDir cartella(QDir(argomenti.at(1)).absolutePath());
    if (!QDir().mkpath(cartella.path())) {
        std::fprintf(stderr, "korvantine-pictures: cannot make %s\n", qPrintable(cartella.path()));
        return 1;
    }

    // A folder of its own, so that the user's settings play no part in the pictures.
    QTemporaryDir home;
    if (!home.isValid())
        return 1;
    IstanzaUnica istanza(home.path());
    if (Avvio::preparaCartella(home.path(), istanza) != Avvio::Esito::Prosegui)
        return 1;
    SeminaLingue(home.path(), CartelleLingueDistribuite(QCoreApplication::applicationDirPath()));

    Demo demo;
    QString errore;
    if (!demo.avvia(errore)) {
        std::fprintf(stderr, "korvantine-pictures: %s\n", qPrintable(errore));
        return 1;
    }
    Programma programma(home.path(), std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                        std::make_unique<TemporizzatoreQt>());
    programma.dispositivoForzato = demo.percorso();
    Korvantine finestra(programma);
    RegistraPagineMessaPunto(finestra);
    RegistraStrumenti(finestra);
    RegistraPagineMappe(finestra);
    RegistraPagineScambio(finestra);
    Avvio::esegui(programma);
    finestra.avvia();
    finestra.showNormal();
    finestra.resize(1024, 768);

    if (!attendi([&] { return !programma.stato.EcuDaIdentificare; }, 15000)) {
        std::fprintf(stderr, "korvantine-pictures: the simulated ECU was not identified\n");
        return 1;
    }
    pausa(1500);

    bool ok = true;
    if (MainLambda *menu = finestra.menu()) {
        menu->ScegliFunzione(4);
        menu->opzione(0)->setFocus();
    }
    ok &= salva(finestra, cartella, QStringLiteral("main-menu.png"));

    if (QWidget *pagina = finestra.apriPagina(IdPagina::VisInf)) {
        ok &= salva(finestra, cartella, QStringLiteral("visinf.png"));
        finestra.ChiudiPagina(pagina);
    }
    if (QWidget *pagina = finestra.apriPagina(IdPagina::Comunicazione)) {
        ok &= salva(finestra, cartella, QStringLiteral("comunicazione.png"));
        finestra.ChiudiPagina(pagina);
    }

    const auto linkLibero = [&] { return programma.motore.StatoDialogo() == -1; };
    if (QWidget *pagina = finestra.apriPagina(IdPagina::MP_Minimo)) {
        attendi(linkLibero, 5000);
        pausa(600); // a few live frames into the panel
        ok &= salva(finestra, cartella, QStringLiteral("mp_minimo.png"));
        finestra.ChiudiPagina(pagina);
    }
    // The demo ECU's map read into the archive, then written back and verified.
    if (auto *lettura = qobject_cast<ReadMappe *>(finestra.apriPagina(IdPagina::ReadMappe))) {
        lettura->aggiornaAlbero({QStringLiteral("LPG"), {}, {}, {}});
        lettura->NomeMarca()->setText(QStringLiteral("Fiat"));
        lettura->NomeModello()->setText(QStringLiteral("Punto 1200"));
        lettura->NomeFlyMod()->setText(QStringLiteral("Base"));
        lettura->Note()->setText(QStringLiteral("As delivered, before tuning"));
        lettura->Leggi();
        attendi(linkLibero, 5000);
        ok &= salva(finestra, cartella, QStringLiteral("readmappe.png"));
        finestra.ChiudiPagina(lettura);
    }
    if (auto *scrittura = qobject_cast<ProgMappe *>(finestra.apriPagina(IdPagina::ProgMappe))) {
        scrittura->aggiornaAlbero({QStringLiteral("LPG"), QStringLiteral("Fiat"),
                                   QStringLiteral("Punto 1200"), QStringLiteral("Base")});
        scrittura->Verifica()->setChecked(true);
        scrittura->Programmazione();
        attendi(linkLibero, 5000);
        ok &= salva(finestra, cartella, QStringLiteral("progmappe.png"));
        finestra.ChiudiPagina(scrittura);
    }
    // The exchange pages against a medium folder beside the program's: the map read above and
    // a software release copied to it and restored from it, then the two deletion pages.
    QTemporaryDir mezzo;
    {
        QDir().mkpath(home.filePath(QStringLiteral("SOFTWARE/FILES19")));
        QFile s19(home.filePath(QStringLiteral("SOFTWARE/FILES19/KV2026.S19")));
        if (s19.open(QIODevice::WriteOnly))
            s19.write("S00600004844521B\r\nS9030000FC\r\n");
        Archivio db;
        if (ApriArchivioSoftware(home.filePath(QStringLiteral("SOFTWARE")), QStringLiteral("SOFTWARE.MDB"),
                                 db)) {
            RigaArchivio riga = db.NuovaRiga();
            riga.Imposta(u"NomeSW", QStringLiteral("KV2026"));
            riga.Imposta(u"Versione", QStringLiteral("2.6"));
            riga.Imposta(u"NOTE", QStringLiteral("Release for the 2026 kits"));
            db.Salva(riga);
        }
    }
    const auto siSempre = [](const QString &, int, const QString &) { return 6; };
    if (auto *crea = qobject_cast<PaginaElenchiMappe *>(finestra.apriPagina(IdPagina::CreaDiscoMappe))) {
        crea->impostaDomanda(siSempre);
        crea->Aggiungi(0);
        crea->cartella()->impostaCartella(mezzo.path());
        crea->Comando();
        ok &= salva(finestra, cartella, QStringLiteral("creadiscomappe.png"));
        finestra.ChiudiPagina(crea);
    }
    if (auto *crea = qobject_cast<PaginaSoftware *>(finestra.apriPagina(IdPagina::CreaDiscoSW))) {
        crea->impostaDomanda(siSempre);
        crea->LSoftware()->selectAll();
        crea->cartella()->impostaCartella(mezzo.path());
        crea->Comando();
        ok &= salva(finestra, cartella, QStringLiteral("creadiscosw.png"));
        finestra.ChiudiPagina(crea);
    }
    if (auto *ripri = qobject_cast<PaginaElenchiMappe *>(finestra.apriPagina(IdPagina::RipriMappe))) {
        ripri->impostaDomanda(siSempre);
        ripri->cartella()->impostaCartella(mezzo.path());
        ripri->ScegliSorgente(mezzo.path());
        ripri->Aggiungi(0);
        ripri->Comando();
        ok &= salva(finestra, cartella, QStringLiteral("riprimappe.png"));
        finestra.ChiudiPagina(ripri);
    }
    if (auto *ripri = qobject_cast<PaginaSoftware *>(finestra.apriPagina(IdPagina::RipriDiscoSW))) {
        ripri->impostaDomanda(siSempre);
        ripri->cartella()->impostaCartella(mezzo.path());
        ripri->ScegliSorgente(mezzo.path());
        ok &= salva(finestra, cartella, QStringLiteral("ripridiscosw.png"));
        finestra.ChiudiPagina(ripri);
    }
    if (auto *cancella = qobject_cast<PaginaElenchiMappe *>(finestra.apriPagina(IdPagina::CancelMappe))) {
        cancella->Aggiungi(0);
        ok &= salva(finestra, cartella, QStringLiteral("cancelmappe.png"));
        finestra.ChiudiPagina(cancella);
    }
    if (QWidget *pagina = finestra.apriPagina(IdPagina::CancelSW)) {
        ok &= salva(finestra, cartella, QStringLiteral("cancelsw.png"));
        finestra.ChiudiPagina(pagina);
    }
    // Some way into the engine's cycle, where every instrument has something to say.
    pausa(7000);
    // A drive is recorded to a file where the record card would put it.
    const QString file = home.filePath(QStringLiteral("DATI/DEMO/PROVA/GIRO1.ACQ"));
    QDir().mkpath(QFileInfo(file).path());
    FileIni::scrivi(programma.percorsoIni(), QStringLiteral("MEMORIZZAZIONE"), QStringLiteral("FileMemor"),
                    file);
    if (auto *strumenti = qobject_cast<Strumenti *>(finestra.apriPagina(IdPagina::Strumenti))) {
        attendi(linkLibero, 5000);
        pausa(1500);
        ok &= salva(finestra, cartella, QStringLiteral("strumenti.png"));
        strumenti->barra().comando(QStringLiteral("INIZIO"));
        pausa(2500);
        ok &= salva(finestra, cartella, QStringLiteral("strumenti-recording.png"));
        strumenti->barra().comando(QStringLiteral("FINE"));
        finestra.ChiudiPagina(strumenti);
    }
    // Four charts, run long enough for the window to have jumped on once.
    if (auto *grafici = qobject_cast<Grafici *>(finestra.apriPagina(IdPagina::Grafici))) {
        for (int canale : {2, 3, 4, 5})
            if (grafici->modello().slotDi(canale) < 0)
                grafici->cliccaCanale(canale);
        grafici->riga(1)->setFocus();
        grafici->barra().comando(QStringLiteral("INIZIO"));
        pausa(23000);
        ok &= salva(finestra, cartella, QStringLiteral("grafici.png"));
        grafici->barra().comando(QStringLiteral("FINE"));
    }
    return ok ? 0 : 1;
}
