// Pictures of the idle page and the instruments panel as the fitter sees them: the main
// frame against the simulated ECU, on the offscreen platform. Writes mp_minimo.png and
// strumenti.png into the folder given (docs/pictures of the source tree by default).
#include "EcuSimulata.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "pages/RegistroMessaPunto.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"

#include <QApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <functional>

namespace {

void attendi(int ms)
{
    QEventLoop ciclo;
    QTimer::singleShot(ms, &ciclo, &QEventLoop::quit);
    ciclo.exec();
}

bool attendiChe(const std::function<bool()> &condizione, int ms)
{
    for (int t = 0; t < ms && !condizione(); t += 20)
        attendi(20);
    return condizione();
}

bool salva(QWidget &w, const QString &percorso)
{
    const bool ok = w.grab().save(percorso);
    std::printf("%s %s\n", ok ? "wrote" : "could not write", qPrintable(percorso));
    return ok;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QString cartellaFoto = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                          : QStringLiteral(KV_SOURCE_DIR "/docs/pictures");
    QDir().mkpath(cartellaFoto);

    OpzioniEcu opzioni;
    opzioni.baud = 38400;
    auto *ecu = new EcuSimulata(opzioni);
    if (!ecu->apriPty()) {
        std::fprintf(stderr, "cannot open a pseudo-terminal: %s\n", qPrintable(ecu->erroreLinea()));
        return 1;
    }
    QThread filo;
    ecu->moveToThread(&filo);
    QObject::connect(&filo, &QThread::finished, ecu, &QObject::deleteLater);
    filo.start();
    QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);

    QTemporaryDir cartella;
    QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG"));
    Programma p(cartella.path(), std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                std::make_unique<TemporizzatoreQt>());
    p.catalogo.InizializzaParametri();
    p.canali.InizializzaCanali(p.lingua);
    p.IniDialogo();
    p.IniCollegamento();
    p.lingua.LinguaCorrente = QStringLiteral("ENGLISH");
    p.stato.ModoAssistenza = 1;
    p.seriale.VelocitaCom = 38400;
    p.dispositivoForzato = ecu->percorsoDispositivo();

    Korvantine frame(p);
    RegistraPagineMessaPunto(frame);
    RegistraStrumenti(frame);
    if (!p.ApriPorta()) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(p.dispositivoForzato));
        return 1;
    }
    frame.avvia();
    frame.showNormal();
    frame.resize(1024, 720);
    if (!attendiChe([&] { return p.stato.EcuDaIdentificare == 0 && p.motore.StatoDialogo == -1; }, 10000)) {
        std::fprintf(stderr, "the simulated ECU was not identified\n");
        return 1;
    }

    bool ok = true;
    if (!frame.apriPagina(IdPagina::MP_Minimo)) {
        std::fprintf(stderr, "the idle page is not registered\n");
        return 1;
    }
    attendiChe([&] { return p.motore.StatoDialogo == -1; }, 5000);
    attendi(600); // a few live frames into the panel
    ok &= salva(frame, cartellaFoto + QStringLiteral("/mp_minimo.png"));
    if (auto *pagina = frame.paginaAttiva())
        frame.ChiudiPagina(pagina);
    attendi(100);

    // Some way into the simulator's engine cycle, where every instrument has something to say.
    attendi(7000);
    frame.apriPagina(IdPagina::Strumenti);
    attendiChe([&] { return p.motore.StatoDialogo == -1; }, 5000);
    attendi(1500);
    ok &= salva(frame, cartellaFoto + QStringLiteral("/strumenti.png"));

    p.porta.chiudi();
    filo.quit();
    filo.wait();
    return ok ? 0 : 1;
}
