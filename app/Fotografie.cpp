// korvantine-pictures DIR: the main menu, the ECU version page, the port page, the idle page,
// the instruments (also while recording), the charts and the calibration pages (the sequence
// and the single ones, each mid-way), rendered to PNG files in DIR against the simulated ECU,
// in English, as a fitter sees them at 1024x768.
// Run it with the offscreen platform (scripts/pictures.sh does).

#include "Demo.h"

#include "base/FileIni.h"
#include "base/IstanzaUnica.h"
#include "base/PercorsoApp.h"
#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/IniTaratura.h"
#include "calibration/ui/PagineStriscia.h"
#include "calibration/ui/RegistroTaratura.h"
#include "calibration/ui/T_Giri.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPushButton>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

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
    Programma programma(home.path(), std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                        std::make_unique<TemporizzatoreQt>());
    programma.dispositivoForzato = demo.percorso();
    Korvantine finestra(programma);
    RegistraPagineMessaPunto(finestra);
    RegistraStrumenti(finestra);
    RegistraPagineTaratura(finestra);
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
        finestra.ChiudiPagina(grafici);
    }

    // Calibration as a fitter walks it, the pedal worked through the simulator; the boxes
    // that close a calibration are answered as they come.
    QTimer risposte;
    QObject::connect(&risposte, &QTimer::timeout, [] {
        if (auto *box = qobject_cast<MsgBox1 *>(QApplication::activeModalWidget()))
            box->tastiVisibili().constFirst()->click();
    });
    StatoProgramma &s = programma.stato;
    const auto paginaAperta = [&](IdPagina id) { return finestra.idPaginaAttiva() == id; };
    const auto inMarcia = [&] { return s.EcuInMarcia && finestra.menu() && linkLibero(); };
    if (MainLambda *menu = finestra.menu())
        menu->ScegliFunzione(3);
    s.TaraturaInCorso = FaseTaratura::Avviso;
    s.PassoTaratura = 0;
    finestra.AvviaTaratura(FaseTaratura::Avviso);
    if (auto *avviso = qobject_cast<IniTaratura *>(finestra.paginaSopra())) {
        ok &= salvaConSopra(finestra, *avviso, cartella, QStringLiteral("t-initaratura.png"));
        avviso->TastoOK();
    }
    if (attendi([&] { return paginaAperta(IdPagina::T_Giri) && s.PassoTaratura == 2; }, 10000)) {
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
    // The sequence ends at a step this build lacks, with a word that is answered.
    risposte.start(200);
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
            attendi([&] { return s.DatiAttuali[0].Valore[Canale::FlagPa] == 234; }, 5000);
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
