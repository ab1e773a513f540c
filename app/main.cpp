#include "Demo.h"
#include "MenuOperatore.h"

#include "base/IstanzaUnica.h"
#include "base/PercorsoApp.h"
#include "calibration/ui/RegistroTaratura.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "programming/ui/RegistroMappe.h"
#include "programming/ui/RegistroProgSW.h"
#include "programming/ui/RegistroScambio.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Logo.h"

#include <QApplication>
#include <QCommandLineParser>

#include <cstdio>
#include <memory>

using namespace kv;

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Korvantine"));
    QApplication::setApplicationVersion(QStringLiteral(KORVANTINE_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("korvantine"));
    QApplication::setWindowIcon(IconaProgramma());

    QCommandLineParser opzioni;
    opzioni.setApplicationDescription(QStringLiteral("Workshop tool for gas-conversion ECUs."));
    opzioni.addHelpOption();
    opzioni.addVersionOption();
    const QCommandLineOption home(QStringLiteral("home"),
                                  QStringLiteral("Keep settings, archives and logs in DIR."),
                                  QStringLiteral("DIR"));
    const QCommandLineOption demo(QStringLiteral("demo"),
                                  QStringLiteral("Talk to a simulated ECU started inside the program; "
                                                 "the port in the settings is left as it is."));
    const QCommandLineOption demoSenzaApplicazione(
        QStringLiteral("demo-no-application"),
        QStringLiteral("Like --demo, with a simulated ECU that has no application yet: only its boot loader "
                       "runs, sending 'g' frames, until it is programmed."));
    opzioni.addOption(home);
    opzioni.addOption(demo);
    opzioni.addOption(demoSenzaApplicazione);
    opzioni.process(app);

    const QString cartellaEseguibile = QCoreApplication::applicationDirPath();
    const QString percorsoApp =
        RisolviPercorsoApp(opzioni.value(home), cartellaEseguibile, CartellaDatiUtente());
    IstanzaUnica istanza(percorsoApp);
    switch (Avvio::preparaCartella(percorsoApp, istanza)) {
    case Avvio::Esito::Prosegui:
        break;
    case Avvio::Esito::AltraIstanza:
        return 0;
    case Avvio::Esito::CartellaInutilizzabile:
        std::fprintf(stderr, "korvantine: cannot use the folder %s\n", qPrintable(percorsoApp));
        return 1;
    }
    SeminaLingue(percorsoApp, CartelleLingueDistribuite(cartellaEseguibile));

    // Made before the program object, so that it outlives the port that talks to it.
    Demo ecuDemo;
    const bool inDemo = opzioni.isSet(demo) || opzioni.isSet(demoSenzaApplicazione);
    if (inDemo) {
        QString errore;
        if (!ecuDemo.avvia(errore, !opzioni.isSet(demoSenzaApplicazione))) {
            std::fprintf(stderr, "korvantine: the simulated ECU cannot start: %s\n", qPrintable(errore));
            return 1;
        }
        std::fprintf(stderr,
                     "korvantine: demo with the simulated ECU on %s; Ctrl+Shift+E: the fitter's actions at "
                     "the car\n",
                     qPrintable(ecuDemo.percorso()));
    }

    Programma programma(percorsoApp, std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                        std::make_unique<TemporizzatoreQt>());
    programma.dispositivoForzato = ecuDemo.percorso();
    programma.lingua.impostaCartelleDistribuite(CartelleLingueDistribuite(cartellaEseguibile));

    // The frame exists before the port is opened, so that a failure reaches its message box,
    // which comes up once the frame is on screen.
    Korvantine finestra(programma);
    QObject::connect(&finestra, &Korvantine::uscita, &app, [] { QCoreApplication::exit(0); });
    // Each unit of pages puts its own into the frame's registry; a menu entry whose page is
    // in none of them tells the fitter it is not there yet.
    RegistraPagineMessaPunto(finestra);
    RegistraStrumenti(finestra);
    RegistraPagineMappe(finestra);
    RegistraProgSW(finestra);
    RegistraPagineScambio(finestra);
    RegistraPagineTaratura(finestra);
    if (inDemo)
        InstallaMenuOperatore(finestra, ecuDemo);

    Avvio::esegui(programma);
    // Something to flash into the simulated ECU, when the home has no release of its own.
    if (inDemo)
        PreparaRilascioDemo(programma.PercorsoApp, programma.lingua);
    finestra.avvia();
    return app.exec();
}
