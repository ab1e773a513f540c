#include "link/PortaSeriale.h"
#include "shell/Avvio.h"
#include "shell/IstanzaUnica.h"
#include "shell/PercorsoApp.h"
#include "shell/Programma.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("Korvantine"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KORVANTINE_VERSION));

    QCommandLineParser opzioni;
    opzioni.setApplicationDescription(QStringLiteral("Workshop tool for gas-conversion ECUs."));
    opzioni.addHelpOption();
    opzioni.addVersionOption();
    const QCommandLineOption home(QStringLiteral("home"),
                                  QStringLiteral("Keep settings, archives and logs in DIR."),
                                  QStringLiteral("DIR"));
    opzioni.addOption(home);
    opzioni.process(app);

    const QString cartellaEseguibile = QCoreApplication::applicationDirPath();
    const QString percorsoApp = RisolviPercorsoApp(opzioni.value(home), cartellaEseguibile,
                                                   CartellaDatiUtente());
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

    Programma programma(percorsoApp, std::make_unique<PortaSeriale>(),
                        std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    // Until the main window exists, messages go to the terminal.
    QObject::connect(&programma, &Programma::portaNonAperta, [](const QString &testo, const QString &titolo) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(titolo), qPrintable(testo));
    });
    QObject::connect(&programma.identificazione, &Identificazione::identificata, [&programma] {
        const StatoProgramma &s = programma.stato;
        std::fprintf(stderr, "ECU identified: %s | %s | %s | %s\n", qPrintable(s.InfCodice),
                     qPrintable(s.InfVeicolo), qPrintable(s.InfDatoA), qPrintable(s.InfDatoB));
    });
    QObject::connect(&programma.datiLive, &DatiLive::ecuPersa, [] {
        std::fprintf(stderr, "Live data lost: waiting for the ECU\n");
    });

    Avvio::esegui(programma);
    std::fprintf(stderr, "Korvantine started in %s, language %s, port %s at %d baud (%s)\n",
                 qPrintable(percorsoApp), qPrintable(programma.lingua.LinguaCorrente),
                 qPrintable(programma.seriale.nomeDispositivo.isEmpty() ? programma.seriale.Porta
                                                                      : programma.seriale.nomeDispositivo),
                 programma.seriale.VelocitaCom, programma.porta.PortOpen() ? "open" : "closed");
    return app.exec();
}
