#include "Demo.h"
#include "MenuOperatore.h"

#include "base/IstanzaUnica.h"
#include "base/Lingua.h"
#include "base/PercorsoApp.h"
#include "calibration/ui/RegistroTaratura.h"
#include "link/PortaSeriale.h"
#include "monitoring/Canali.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Visore.h"
#include "pages/ui/RegistroMessaPunto.h"
#include "programming/ui/RegistroMappe.h"
#include "programming/ui/RegistroProgSW.h"
#include "programming/ui/RegistroScambio.h"
#include "shell/Avvio.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Logo.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

#include <cstdio>
#include <memory>

using namespace kv;

namespace {

// The language for a word before the program's folder is in use: the folder's own choice
// when it can be read, else a shipped file.
Lingua linguaDiAvvio(const QString &percorsoApp, const QStringList &distribuite)
{
    for (const QString &cartella : QStringList{percorsoApp} + distribuite) {
        Lingua l(cartella);
        l.LeggiImpLingua();
        if (!l.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("TITOLO_1")).isEmpty())
            return l;
    }
    return Lingua();
}

void avvisoDiAvvio(const QString &percorsoApp, const QString &chiave, int flags)
{
    const Lingua l =
        linguaDiAvvio(percorsoApp, CartelleLingueDistribuite(QCoreApplication::applicationDirPath()));
    const QString testo =
        l.LeggiTesto(QStringLiteral("KORVANTINE"), chiave).replace(QStringLiteral("XXX"), percorsoApp);
    if (!testo.isEmpty())
        MostraMsg(l, testo, flags, l.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("TITOLO_1")));
}

// The viewer alone on a recording named on the command line (as a file manager opens it):
// no port, no ECU, not held back by a program already running in the folder, and nothing
// made or written there; the language and the names of the channels are read from it.
int soloVisore(const QString &file, const QString &home)
{
    const QString cartellaEseguibile = QCoreApplication::applicationDirPath();
    const QString percorsoApp = RisolviPercorsoApp(home, cartellaEseguibile, CartellaDatiUtente());
    const Lingua lingua = Lingua::DellaCartella(percorsoApp, cartellaEseguibile);
    TabellaCanali canali;
    canali.InizializzaCanali(lingua.Cerca());
    Visore visore(percorsoApp, lingua, canali);
    visore.permettiSchede(false);
    visore.resize(1280, 780);
    visore.show();
    visore.apri(QFileInfo(file).absoluteFilePath());
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(QStringLiteral("Korvantine"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KORVANTINE_VERSION));

    QCommandLineParser opzioni;
    opzioni.setApplicationDescription(QStringLiteral("Workshop tool for gas-conversion ECUs."));
    const QCommandLineOption aiuto = opzioni.addHelpOption();
    const QCommandLineOption versione = opzioni.addVersionOption();
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
    opzioni.addPositionalArgument(
        QStringLiteral("FILE.ACQ"),
        QStringLiteral("Open only the viewer on this recording, with no ECU and no port."),
        QStringLiteral("[FILE.ACQ]"));
    // Read before the window system is asked for: help and version need no display.
    QStringList argomenti;
    for (int i = 0; i < argc; ++i)
        argomenti << QString::fromLocal8Bit(argv[i]);
    if (!opzioni.parse(argomenti)) {
        std::fprintf(stderr, "korvantine: %s\n", qPrintable(opzioni.errorText()));
        return 2;
    }
    if (opzioni.isSet(aiuto) || opzioni.isSet(QStringLiteral("help-all"))) {
        // There is no application object yet to name the program.
        std::fputs(qPrintable(opzioni.helpText().replace(QStringLiteral("<executable_name>"),
                                                         QFileInfo(argomenti.constFirst()).fileName())),
                   stdout);
        return 0;
    }
    if (opzioni.isSet(versione))
        opzioni.showVersion();

    QApplication app(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("korvantine"));
    QApplication::setWindowIcon(IconaProgramma());
    if (!opzioni.positionalArguments().isEmpty())
        return soloVisore(opzioni.positionalArguments().constFirst(), opzioni.value(home));

    const QString cartellaEseguibile = QCoreApplication::applicationDirPath();
    const QString percorsoApp =
        RisolviPercorsoApp(opzioni.value(home), cartellaEseguibile, CartellaDatiUtente());
    IstanzaUnica istanza(percorsoApp);
    switch (Avvio::preparaCartella(percorsoApp, istanza)) {
    case Avvio::Esito::Prosegui:
        break;
    case Avvio::Esito::AltraIstanza:
        // The one that runs comes forward; if it does not answer, the fitter is told.
        if (istanza.richiamaAltra()) {
            std::fprintf(stderr, "korvantine: already running with %s; its window has been raised\n",
                         qPrintable(percorsoApp));
        } else {
            std::fprintf(stderr, "korvantine: already running with %s\n", qPrintable(percorsoApp));
            avvisoDiAvvio(percorsoApp, QStringLiteral("GIA_IN_USO"), 64);
        }
        return 0;
    case Avvio::Esito::CartellaInutilizzabile:
        std::fprintf(stderr, "korvantine: cannot use the folder %s\n", qPrintable(percorsoApp));
        avvisoDiAvvio(percorsoApp,
                      istanza.motivo() == IstanzaUnica::Motivo::NonCreabile   ? QStringLiteral("CARTELLA.0")
                      : istanza.motivo() == IstanzaUnica::Motivo::SolaLettura ? QStringLiteral("CARTELLA.1")
                                                                              : QStringLiteral("CARTELLA.2"),
                      16);
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

    // The language outlives the program that lends it to the windows.
    Lingua lingua(percorsoApp);
    Programma programma(percorsoApp, lingua, std::make_unique<PortaSeriale>(),
                        std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    programma.dispositivoForzato = ecuDemo.percorso();
    programma.storico.attiva(true);
    programma.lingua.impostaCartelleDistribuite(CartelleLingueDistribuite(cartellaEseguibile));

    // The frame exists before the port is opened, so that a failure reaches its message box,
    // which comes up once the frame is on screen.
    Korvantine finestra(programma);
    istanza.ascoltaRichiami([&finestra] {
        if (finestra.isMinimized())
            finestra.showNormal();
        finestra.raise();
        finestra.activateWindow();
    });
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

    lingua.LeggiImpLingua();
    Avvio::esegui(programma, lingua.Cerca());
    // Something to flash into the simulated ECU, when the home has no release of its own.
    if (inDemo)
        PreparaRilascioDemo(programma.PercorsoApp, programma.lingua);
    finestra.avvia();
    return app.exec();
}
