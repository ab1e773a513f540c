// korvantine-pictures DIR: every screen of the program, rendered to PNG files in DIR against the
// simulated ECU, in English, as a fitter sees them at 1024x768.
// Run it with the offscreen platform (scripts/pictures.sh does).

#include "Demo.h"
#include "base/Lingua.h"

#include "archives/ScambioSoftware.h"
#include "base/FileIni.h"
#include "base/IstanzaUnica.h"
#include "base/PercorsoApp.h"
#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/IniTaratura.h"
#include "calibration/ui/PagineStriscia.h"
#include "calibration/ui/RegistroTaratura.h"
#include "calibration/ui/T_Giri.h"
#include "calibration/ui/T_Parametri.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/GraficoVisore.h"
#include "monitoring/ui/Memorf.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "monitoring/ui/Visore.h"
#include "pages/GriglieMessaPunto.h"
#include "pages/ui/GrigliaMessaPunto.h"
#include "pages/ui/MP_Normale.h"
#include "pages/ui/ModificaSenzaEcu.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "programming/MappaArchiviata.h"
#include "programming/ui/ConfrontoMappe.h"
#include "programming/ui/PaginaElenchiMappe.h"
#include "programming/ui/PaginaSoftware.h"
#include "programming/ui/PaginaStorico.h"
#include "programming/ui/ProgMappe.h"
#include "programming/ui/ProgSW.h"
#include "programming/ui/ReadMappe.h"
#include "programming/ui/RegistroMappe.h"
#include "programming/ui/RegistroProgSW.h"
#include "programming/ui/RegistroScambio.h"
#include "programming/ui/SceltaCartella.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"
#include "shell/ui/MsgBox1.h"
#include "variables/Conversioni.h"

#include <QApplication>
#include <QCheckBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>

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

// Types text into a widget key by key, as the fitter would.
void digita(QWidget *w, const QString &testo)
{
    for (QChar c : testo) {
        QKeyEvent giu(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
        QKeyEvent su(QEvent::KeyRelease, 0, Qt::NoModifier, QString(c));
        QApplication::sendEvent(w, &giu);
        QApplication::sendEvent(w, &su);
    }
}

// The frame with the box that stands over it, as the screen shows them together.
bool salvaConSopra(QWidget &finestra, QWidget &sopra, const QDir &cartella, const QString &nome)
{
    pausa(300);
    QPixmap immagine = finestra.grab();
    QPainter pittore(&immagine);
    pittore.drawPixmap(finestra.mapFromGlobal(sopra.mapToGlobal(QPoint(0, 0))), sopra.grab());
    pittore.end();
    const QString percorso = cartella.filePath(nome);
    if (!immagine.save(percorso)) {
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
    Lingua lingua(home.path());
    Programma programma(home.path(), lingua, std::make_unique<PortaSeriale>(),
                        std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    programma.dispositivoForzato = demo.percorso();
    programma.storico.attiva(true);
    Korvantine finestra(programma);
    RegistraPagineMessaPunto(finestra);
    RegistraStrumenti(finestra);
    RegistraPagineMappe(finestra);
    RegistraProgSW(finestra);
    RegistraPagineScambio(finestra);
    SequenzaTaratura &taratura = RegistraPagineTaratura(finestra);
    programma.lingua.LeggiImpLingua();
    Avvio::esegui(programma, [&programma](const QString &s, const QString &k) {
        return programma.lingua.LeggiTesto(s, k);
    });
    PreparaRilascioDemo(programma.PercorsoApp, programma.lingua);
    finestra.avvia();
    finestra.showNormal();
    finestra.resize(1024, 768);

    if (!attendi([&] { return !programma.linea.ecu().EcuDaIdentificare; }, 15000)) {
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

    const auto linkLibero = [&] { return programma.linea.motore().StatoDialogo() == -1; };
    // The tuning pages as the service menu opens them, each after a few live frames.
    programma.menu.impostaAssistenza(true);
    const std::pair<IdPagina, const char *> pagine[] = {
        {IdPagina::MP_Minimo, "mp_minimo.png"},           {IdPagina::MP_Normale, "mp_normale.png"},
        {IdPagina::MP_PienoCarico, "mp_pienocarico.png"}, {IdPagina::MP_CutOff, "mp_cutoff.png"},
        {IdPagina::MP_Pompata, "mp_pompata.png"},         {IdPagina::MP_Lavoro, "mp_lavoro.png"},
        {IdPagina::MP_Stechio, "mp_stechio.png"},         {IdPagina::MP_InibizPC, "mp_inibizpc.png"},
        {IdPagina::MP_RientroCO, "mp_rientroco.png"},     {IdPagina::MP_TPS, "mp_tps.png"}};
    for (const auto &[id, nome] : pagine) {
        // The map shows best with the engine out on it, away from idle.
        if (id == IdPagina::MP_Normale)
            attendi([&] { return programma.linea.datiLive().ultimoRecord().Valore[Canale::Giri] > 2200; },
                    30000);
        QWidget *pagina = finestra.apriPagina(id);
        if (!pagina)
            continue;
        attendi(linkLibero, 5000);
        pausa(600);
        ok &= salva(finestra, cartella, QString::fromLatin1(nome));
        if (auto *normale = qobject_cast<MP_Normale *>(pagina)) {
            // A lean threshold typed above its rich one, as the fitter would see it.
            GrigliaMessaPunto *mappa = normale->MappaLambda();
            const QModelIndex magro = mappa->model()->index(MappaLambda::rigaMagro(2), 5);
            mappa->setFocus();
            mappa->setCurrentIndex(magro);
            mappa->modello()->modifica(magro, QStringLiteral("200"));
            ok &= salva(finestra, cartella, QStringLiteral("mp_normale-check.png"));
        }
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
        scrittura->impostaDomanda([](const QString &, int, const QString &) { return 6; });
        scrittura->Programmazione();
        attendi(linkLibero, 5000);
        ok &= salva(finestra, cartella, QStringLiteral("progmappe.png"));
        finestra.ChiudiPagina(scrittura);
    }
    // That map against a copy tuned richer at high load, the differences only, then its
    // lambda map.
    const ChiaveMappa base{QStringLiteral("LPG"), QStringLiteral("Fiat"), QStringLiteral("Punto 1200"),
                           QStringLiteral("Base")};
    ChiaveMappa ricca = base;
    ricca.file = QStringLiteral("Rich top");
    if (const MappaArchiviata letta = CaricaMappaArchiviata(home.path(), base); letta.ok()) {
        QByteArray immagine = letta.mappa.immagine;
        for (int zona = 0; zona < Par::CelleMappa; ++zona) {
            const int dove = 0x162 + 4 * zona; // SogliaRiccoMappa(zona) from 0xC100
            if (zona % 5 >= 3 || zona >= 35)
                immagine.replace(dove, 2, ByteBE(NumeroBE(immagine.mid(dove, 2)) + 41, 2));
        }
        immagine.replace(0x28, 2, ByteBE(NumeroBE(immagine.mid(0x28, 2)) + 50, 2));
        SalvaImmagineMappa(home.path(), ricca, immagine, QStringLiteral("Richer at high load"),
                           letta.scalaLambda);
    }
    if (auto *confronto = qobject_cast<ConfrontoMappe *>(finestra.apriPagina(IdPagina::ConfrontoMappe))) {
        confronto->scegliArchiviata(ConfrontoMappe::A, base);
        confronto->scegliArchiviata(ConfrontoMappe::B, ricca);
        confronto->SoloDifferenze()->setChecked(true);
        ok &= salva(finestra, cartella, QStringLiteral("confrontomappe.png"));
        confronto->Schede()->setCurrentIndex(1);
        ok &= salva(finestra, cartella, QStringLiteral("confrontomappe-mappa.png"));
        // The ECU now as A against the richer map.
        confronto->Schede()->setCurrentIndex(0);
        if (confronto->leggiEcu(ConfrontoMappe::A))
            attendi([&] { return confronto->isEnabled(); }, 5000);
        ok &= salva(finestra, cartella, QStringLiteral("confrontomappe-ecu.png"));
        finestra.ChiudiPagina(confronto);
    }
    // The richer map opened with no ECU, then its normal page on it.
    if (auto *banco = qobject_cast<ModificaSenzaEcu *>(finestra.apriPagina(IdPagina::ModificaSenzaEcu))) {
        banco->apriMappa(ricca);
        ok &= salva(finestra, cartella, QStringLiteral("modificasenzaecu.png"));
        if (TelaioMessaPunto *pagina = banco->apriPagina(IdPagina::MP_Normale)) {
            attendi([&] { return pagina->isEnabled(); }, 5000);
            pausa(600);
            ok &= salva(finestra, cartella, QStringLiteral("modificasenzaecu-pagina.png"));
            pagina->Esci();
        }
        // As the fitter leaves it, so that its mark leaves the strip with it.
        banco->Esci();
    }
    // The map write above was the run's first change: the ECU's map before it is in its history.
    if (auto *storico = qobject_cast<PaginaStorico *>(finestra.apriPagina(IdPagina::StoricoEcu))) {
        ok &= salva(finestra, cartella, QStringLiteral("storicoecu.png"));
        finestra.ChiudiPagina(storico);
    }
    programma.menu.impostaAssistenza(false);
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
        // As the fitter leaves it: a page closed otherwise takes the recorder's flag along
        // when it goes, after the next one has set it.
        strumenti->Esci();
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
        grafici->Esci();
    }
    // That drive in the viewer, worked by its keys: the second cursor set, the cursor moved on.
    if (auto *visore = qobject_cast<Visore *>(finestra.apriPagina(IdPagina::Visore))) {
        const std::pair<Qt::Key, int> tasti[] = {
            {Qt::Key_Home, 1}, {Qt::Key_Right, 150}, {Qt::Key_Space, 1}, {Qt::Key_Right, 175}};
        for (const auto &[tasto, volte] : tasti)
            for (int i = 0; i < volte; ++i) {
                QKeyEvent giu(QEvent::KeyPress, tasto, Qt::NoModifier);
                QApplication::sendEvent(visore->grafico(), &giu);
            }
        ok &= salva(finestra, cartella, QStringLiteral("visore.png"));
        finestra.ChiudiPagina(visore);
    }
    // The demo's release chosen and some way into its flash.
    if (auto *pagina = qobject_cast<ProgSW *>(finestra.apriPagina(IdPagina::ProgSW))) {
        pagina->impostaMessaggio([](const QString &, int, const QString &) { return 6; });
        if (auto *lista = pagina->findChild<QTreeWidget *>(QStringLiteral("LSoftware"));
            lista && lista->topLevelItemCount() > 0)
            lista->setCurrentItem(lista->topLevelItem(0));
        if (auto *tasto = pagina->findChild<QPushButton *>(QStringLiteral("Programma")))
            tasto->click();
        pausa(8000);
        ok &= salva(finestra, cartella, QStringLiteral("progsw.png"));
        // The pages after this one need the link: the flash runs to its end first.
        attendi(linkLibero, 120000);
        finestra.ChiudiPagina(pagina);
    }
    // The record card, with a few cards in the archive and the make begun.
    {
        AnelloRegistrazione prova;
        prova.collega(&programma.canali, home.path());
        SchedaRegistrazione archivio(home.path(), prova);
        if (archivio.Apri())
            for (const SchedaRegistrazione::Caselle &c :
                 {SchedaRegistrazione::Caselle{"Fiat", "Punto 1.2", "giro1", "Town, cold start"},
                  SchedaRegistrazione::Caselle{"Fiat", "Punto 1.2", "giro2", "Motorway"},
                  SchedaRegistrazione::Caselle{"Fiat", "Panda", "prova", ""},
                  SchedaRegistrazione::Caselle{"Ford", "Focus", "collaudo", ""}})
                archivio.Memorizza(c, [] { return true; });
    }
    {
        Memorf scheda(programma.PercorsoApp, programma.lingua, programma.anello, &finestra);
        scheda.show();
        digita(scheda.casella(SchedaRegistrazione::Marca), QStringLiteral("Fiat"));
        scheda.elencoEsi()->setCurrentRow(1);
        scheda.elencoEsi()->setFocus();
        ok &= salva(scheda, cartella, QStringLiteral("memorf.png"));
        scheda.reject();
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

    // Calibration as a fitter walks it, the pedal worked through the simulator; the boxes
    // that close a calibration are answered as they come.
    QTimer risposte;
    QObject::connect(&risposte, &QTimer::timeout, [] {
        if (auto *box = qobject_cast<MsgBox1 *>(QApplication::activeModalWidget()))
            box->tastiVisibili().constFirst()->click();
    });
    const StatoEcu &s = programma.linea.ecu();
    const auto paginaAperta = [&](IdPagina id) { return finestra.idPaginaAttiva() == id; };
    const auto inMarcia = [&] { return s.EcuInMarcia && finestra.menu() && linkLibero(); };
    if (MainLambda *menu = finestra.menu())
        menu->ScegliFunzione(3);
    finestra.avviaSequenzaTaratura();
    if (auto *avviso = qobject_cast<IniTaratura *>(finestra.paginaSopra())) {
        ok &= salvaConSopra(finestra, *avviso, cartella, QStringLiteral("t-initaratura.png"));
        avviso->TastoOK();
    }
    if (attendi([&] { return paginaAperta(IdPagina::T_Giri) && taratura.PassoTaratura() == 2; }, 10000)) {
        auto *giri = static_cast<T_Giri *>(finestra.paginaAttiva());
        pausa(2500); // the engine settles at idle
        giri->logica().tastoGiriTeo();
        giri->GiriTeo()->setText(QString::number(demo.giriContagiri()));
        ok &= salva(finestra, cartella, QStringLiteral("t-giri.png"));
        giri->logica().Conferma(giri->GiriTeo()->text());
        attendi(linkLibero, 5000);
        giri->logica().AvantiTar();
    }
    if (attendi([&] { return paginaAperta(IdPagina::T_TPS); }, 5000)) {
        pausa(1500);
        demo.operatore(QStringLiteral("pedal rest"));
        pausa(2500);
        demo.operatore(QStringLiteral("pedal full"));
        pausa(1800);
        ok &= salva(finestra, cartella, QStringLiteral("t-tps.png"));
        demo.operatore(QStringLiteral("pedal rest"));
    }
    if (attendi([&] { return paginaAperta(IdPagina::T_Lambda); }, 15000)) {
        pausa(7000);
        ok &= salva(finestra, cartella, QStringLiteral("t-lambda.png"));
    }
    // The last step: the parameters as read, then kept in the ECU, and the closing word
    // answered as it comes.
    risposte.start(200);
    if (attendi([&] { return paginaAperta(IdPagina::T_Parametri) && linkLibero(); }, 20000)) {
        pausa(600);
        ok &= salva(finestra, cartella, QStringLiteral("t-parametri.png"));
        static_cast<T_Parametri *>(finestra.paginaAttiva())->EsciTar();
    }
    attendi(inMarcia, 30000);

    // Each single calibration is left by its own key, which tells the ECU.
    const auto singola = [&](IdPagina id, const std::function<void()> &durante, const QString &nome) {
        QWidget *pagina = attendi(inMarcia, 20000) ? finestra.apriPagina(id) : nullptr;
        if (!pagina)
            return;
        durante();
        ok &= salva(finestra, cartella, nome);
        if (auto *giri = qobject_cast<T_Giri *>(pagina))
            giri->logica().EsciTar();
        else if (auto *striscia = qobject_cast<PaginaStriscia *>(pagina))
            striscia->logica().EsciTar();
        demo.operatore(QStringLiteral("pedal rest"));
        attendi(inMarcia, 20000);
    };
    singola(
        IdPagina::T_Giri_Single,
        [&] {
            attendi([&] { return programma.linea.datiLive().ultimoRecord().Valore[Canale::FlagPa] == 234; },
                    5000);
            pausa(3000); // the engine settles at idle
        },
        QStringLiteral("t-giri-single.png"));
    singola(
        IdPagina::T_TPS_Single,
        [&] {
            pausa(1500);
            demo.operatore(QStringLiteral("pedal rest"));
            pausa(2300);
        },
        QStringLiteral("t-tps-single.png"));
    singola(
        IdPagina::T_Lambda_Single, [&] { pausa(8000); }, QStringLiteral("t-lambda-single.png"));
    return ok ? 0 : 1;
}
