// The commands that look at the line and the ECU without changing it: ports, identify, record.

#include "Comandi.h"
#include "SessioneCli.h"

#include "base/Configurazione.h"
#include "monitoring/EsportaCsv.h"
#include "monitoring/RegistrazioneAcq.h"
#include "shell/Programma.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>

#include <csignal>

namespace kv::cli {

namespace {

volatile std::sig_atomic_t interrotto = 0;

void interruzione(int)
{
    interrotto = 1;
}

} // namespace

int porte(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti, false);
    if (!s.prepara(
            QStringLiteral("List the serial ports as the Serial port page does: COM1 to COM10 each "
                           "with the device it stands for now, and the port of the program's settings."),
            0, 0))
        return s.uscita();
    // One look at the system's ports: the settings' port is starred in the list it was named from.
    const QList<PortaDisponibile> disponibili = PorteDisponibili();
    QStringList porti;
    for (const PortaDisponibile &d : disponibili)
        porti.append(d.percorso);
    const ImpSeriale ini = LeggiImpSeriale(PercorsoIni(s.casa()), porti);
    QJsonArray elenco;
    for (const VocePorta &v : ElencoPorte(disponibili)) {
        // The page's second half names the same devices again, by path: one line a port here.
        if (v.dispositivo.isEmpty() || !v.valore.startsWith(QLatin1String("COM")))
            continue;
        elenco.append(QJsonObject{{QStringLiteral("name"), v.valore},
                                  {QStringLiteral("device"), v.dispositivo},
                                  {QStringLiteral("description"), v.descrizione}});
        if (!s.json())
            out() << (v.dispositivo == ini.nomeDispositivo ? "* " : "  ") << v.valore.leftJustified(6) << ' '
                  << v.dispositivo.leftJustified(16) << ' ' << v.descrizione << '\n';
    }
    if (!s.json()) {
        out() << "settings: " << ini.Porta << " ("
              << (ini.nomeDispositivo.isEmpty() ? "-" : ini.nomeDispositivo) << "), " << ini.VelocitaCom
              << " baud\n";
    }
    return s.riuscito(
        {{QStringLiteral("ports"), elenco},
         {QStringLiteral("settings"), QJsonObject{{QStringLiteral("port"), ini.Porta},
                                                  {QStringLiteral("device"), ini.nomeDispositivo},
                                                  {QStringLiteral("baud"), ini.VelocitaCom}}}});
}

int identifica(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti);
    if (!s.prepara(QStringLiteral("Identify the ECU as the program does on its first live frame: its version "
                                  "texts, or that it runs only its boot loader."),
                   0, 0))
        return s.uscita();
    Programma &programma = s.crea();
    if (!s.apri() || !s.attendiEcu())
        return s.uscita();
    const StatoEcu ecu = programma.linea.ecu();
    s.chiudiPorta();
    QJsonObject o{{QStringLiteral("application"), ecu.EcuNormale}};
    // As the ECU sent them, blanks and all: the last three travel into a new software.
    const std::pair<const char *, QString> campi[] = {{"vehicle", ecu.InfVeicolo},
                                                      {"date", ecu.InfData},
                                                      {"code", ecu.InfCodice},
                                                      {"data_a", ecu.InfDatoA},
                                                      {"data_b", ecu.InfDatoB}};
    if (ecu.EcuNormale)
        for (const auto &[nome, valore] : campi)
            o.insert(QLatin1String(nome), valore);
    if (!s.json() && !p.isSet(QStringLiteral("quiet"))) {
        out() << "application " << (ecu.EcuNormale ? "yes" : "no (boot loader only)") << '\n';
        if (ecu.EcuNormale)
            for (const auto &[nome, valore] : campi)
                out() << QString::fromLatin1(nome).leftJustified(11) << ' ' << valore.trimmed() << '\n';
    }
    return s.riuscito(o);
}

int registra(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti);
    p.addOption({QStringLiteral("seconds"), QStringLiteral("How long to record."), QStringLiteral("N")});
    p.addPositionalArgument(
        QStringLiteral("OUT"),
        QStringLiteral("A recording (.ACQ, the recorder's format; an existing one is added "
                       "to, as the recorder does), or with .csv a CSV as the viewer exports "
                       "it."));
    if (!s.prepara(
            QStringLiteral("Record the ECU's live stream for N seconds. Ctrl-C ends it early and keeps "
                           "what came."),
            1, 1))
        return s.uscita();
    bool ok = false;
    const double secondi = p.value(QStringLiteral("seconds")).toDouble(&ok);
    if (!ok || secondi <= 0 || secondi > 24 * 3600)
        return s.fallisci(Uso, QStringLiteral("--seconds takes a number of seconds, up to a day"));
    const QString uscitaFile = QFileInfo(p.positionalArguments().first()).absoluteFilePath();
    const bool csv = uscitaFile.endsWith(QLatin1String(".csv"), Qt::CaseInsensitive);
    if (!s.uscitaScrivibile(uscitaFile))
        return s.uscita();
    if (!csv && QFileInfo::exists(uscitaFile)) {
        RegistrazioneAcq esistente;
        if (esistente.leggi(uscitaFile) != RegistrazioneAcq::Esito::Letta)
            return s.fallisci(FileCattivo,
                              uscitaFile + QStringLiteral(" is not a recording; nothing written"));
    }

    Programma &programma = s.crea();
    if (!s.apri() || !s.attendiEcu())
        return s.uscita();
    if (!programma.linea.ecu().EcuNormale)
        return s.fallisci(RifiutoEcu,
                          QStringLiteral("the ECU runs only its boot loader and sends no live data"));

    // The recorder as a monitor window drives it, in the folder of the file (or the
    // command's own, for a CSV made from it at the end).
    AnelloRegistrazione &anello = programma.anello;
    const QString acq =
        csv ? QDir(s.cartellaPropria()).filePath(QStringLiteral("REGISTRAZIONE.ACQ")) : uscitaFile;
    anello.collega(&programma.canali, QFileInfo(acq).absolutePath());
    if (!anello.impostaFileRegistrazione(acq))
        return s.fallisci(FileNonScritto, QStringLiteral("cannot record into ") + uscitaFile);
    int campioni = 0;
    bool persa = false;
    QObject::connect(&programma.linea.datiLive(), &DatiLive::nuovoRecord, [&] {
        if (anello.StatoRegistrazione == AnelloRegistrazione::InRegistrazione)
            ++campioni;
    });
    QObject::connect(&programma.linea.datiLive(), &DatiLive::ecuPersa, [&] { persa = true; });
    std::signal(SIGINT, interruzione);
    std::signal(SIGTERM, interruzione);
    anello.RegistrazioneAttiva = true;
    anello.Inizio();
    s.dici(QStringLiteral("recording %1 s into %2").arg(secondi).arg(uscitaFile));
    s.attendi([&] { return persa || anello.inErrore() || s.senzaRisposta() || interrotto != 0; },
              int(secondi * 1000));
    anello.Fine();
    anello.RegistrazioneAttiva = false;
    s.chiudiPorta();
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);

    if (const auto e = anello.prendiErrore())
        return s.fallisci(FileNonScritto, QStringLiteral("cannot write %1: %2").arg(e->file, e->dettaglio));
    if (campioni == 0)
        return s.fallisci(NessunaRisposta, QStringLiteral("no live data came; nothing written"));
    if (csv) {
        RegistrazioneAcq registrazione;
        if (registrazione.leggi(acq) != RegistrazioneAcq::Esito::Letta)
            return s.fallisci(FileNonScritto, QStringLiteral("the recording could not be read back"));
        const EsitoEsportazione e = ScriviEsportazione(uscitaFile, acq, [&](QIODevice &d) {
            return ScriviCsv(registrazione, programma.canali, 0, registrazione.campioni(), d);
        });
        if (!e.ok())
            return s.fallisci(FileNonScritto,
                              QStringLiteral("cannot write %1: %2").arg(uscitaFile, e.dettaglio));
    }
    if (persa || s.senzaRisposta())
        return s.fallisci(NessunaRisposta,
                          QStringLiteral("the ECU stopped sending after %1 samples; they are in %2")
                              .arg(campioni)
                              .arg(uscitaFile));
    return s.riuscito({{QStringLiteral("file"), uscitaFile}, {QStringLiteral("samples"), campioni}});
}

} // namespace kv::cli
