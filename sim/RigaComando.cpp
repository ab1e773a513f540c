#include "RigaComando.h"

#include <QCommandLineParser>

namespace kv::sim {

namespace {
const QString TestoAiuto = QStringLiteral(
    "Simulated Korvantine ECU. It opens a pseudo-terminal (or a serial device) and behaves\n"
    "there like the ECU of a gas kit: it streams live data, answers the tester's commands,\n"
    "runs the calibration programs and takes new software and maps.\n"
    "\n"
    "Point the workshop program's serial port at the device printed on the first line,\n"
    "\"ECU simulator ready on /dev/pts/N\", or at the fixed path given with --link.\n"
    "Stop it with Ctrl-C. While it runs: kill -USR1 <pid> switches a stall on and off,\n"
    "kill -USR2 <pid> hangs up the line.\n"
    "\n"
    "The fitter's actions at the car go on standard input, one a line: \"pedal rest\",\n"
    "\"pedal full\", \"probe 0\", \"probe 1\", \"manual\", \"auto\", \"status\" (with the rev\n"
    "counter's reading for the RPM calibration), \"help\".\n"
    "\n"
    "Addresses take 0x for hexadecimal (0xC110), plain digits are decimal.");

bool intero(const QCommandLineParser &p, const QString &nome, int minimo, int massimo, int &valore,
            QString &errore)
{
    if (!p.isSet(nome))
        return true;
    bool ok = false;
    const int v = p.value(nome).toInt(&ok, 10);
    if (!ok || v < minimo || v > massimo) {
        errore = QStringLiteral("--%1 wants a whole number from %2 to %3, not \"%4\"")
                     .arg(nome)
                     .arg(minimo)
                     .arg(massimo)
                     .arg(p.value(nome));
        return false;
    }
    valore = v;
    return true;
}

// 0x for hexadecimal, otherwise decimal (a leading zero does not mean octal here).
bool numero(const QString &testo, quint32 &valore)
{
    const QString t = testo.trimmed();
    bool ok = false;
    if (t.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        valore = t.mid(2).toUInt(&ok, 16);
    else
        valore = t.toUInt(&ok, 10);
    return ok;
}

// "a" or "a:b"; b stays as it is when missing.
bool coppia(const QString &testo, quint32 &a, quint32 &b)
{
    const QStringList parti = testo.split(QLatin1Char(':'));
    if (parti.size() > 2 || !numero(parti.at(0), a))
        return false;
    return parti.size() == 1 || numero(parti.at(1), b);
}

bool secondiInMs(const QString &testo, int &ms)
{
    bool ok = false;
    const double s = testo.trimmed().toDouble(&ok);
    if (!ok || s < 0 || s > 24 * 3600)
        return false;
    ms = int(s * 1000);
    return true;
}
} // namespace

void PreparaRigaComando(QCommandLineParser &parser)
{
    parser.setApplicationDescription(TestoAiuto);
    parser.addHelpOption();
    parser.addOptions({
        {{QStringLiteral("d"), QStringLiteral("device")},
         QStringLiteral("Use this serial device (e.g. /dev/ttyUSB0 at the end of a null-modem cable) instead "
                        "of a pseudo-terminal."),
         QStringLiteral("path")},
        {{QStringLiteral("l"), QStringLiteral("link")},
         QStringLiteral("Also make this fixed path a symbolic link to the pseudo-terminal. An existing link "
                        "is replaced, a real file is not."),
         QStringLiteral("path")},
        {{QStringLiteral("b"), QStringLiteral("baud")},
         QStringLiteral("Line speed: 4800, 9600, 19200 or 38400. Default 9600."),
         QStringLiteral("rate")},
        {{QStringLiteral("r"), QStringLiteral("rate")},
         QStringLiteral("Live-data frames per second. Default 25."),
         QStringLiteral("frames")},
        {QStringLiteral("pace"),
         QStringLiteral("Send every byte at the pace of the line speed (10 bits a byte), replies queued "
                        "behind the live data, as on a real line.")},
        {QStringLiteral("no-application"),
         QStringLiteral("Start as an ECU without software: only the boot loader runs, sending 'g' frames and "
                        "taking programming commands.")},
        {{QStringLiteral("m"), QStringLiteral("memory")},
         QStringLiteral("Keep the EEPROM and software area in this file: loaded at start if present, saved "
                        "on every write."),
         QStringLiteral("file")},
        {QStringLiteral("vehicle"), QStringLiteral("Vehicle text of the version reply (10 characters)."),
         QStringLiteral("text")},
        {QStringLiteral("date"), QStringLiteral("Date text of the version reply (10 characters)."),
         QStringLiteral("text")},
        {QStringLiteral("code"), QStringLiteral("Software code of the version reply (14 characters)."),
         QStringLiteral("text")},
        {QStringLiteral("datum-a"), QStringLiteral("Datum A of the version reply (10 characters)."),
         QStringLiteral("text")},
        {QStringLiteral("datum-b"), QStringLiteral("Datum B of the version reply (4 characters)."),
         QStringLiteral("text")},
        {QStringLiteral("lambda-type"),
         QStringLiteral(
             "Lambda probe type reported in the live data, 0 or 1 (1 sends lambda on 0..255). Default 0."),
         QStringLiteral("type")},
        {QStringLiteral("manual-pedal"),
         QStringLiteral(
             "The fitter works the pedal: the TPS calibration waits for \"pedal rest\" and \"pedal "
             "full\" on standard input. Without it a simulated fitter does both on cue, until the "
             "first pedal command.")},
        {QStringLiteral("cycle"),
         QStringLiteral("Length in seconds of the drive cycle idle - acceleration - cruise - full load - "
                        "over-run. Default 36."),
         QStringLiteral("seconds")},
        {QStringLiteral("seed"), QStringLiteral("Seed of the random noise, for repeatable runs. Default 1."),
         QStringLiteral("n")},
        {QStringLiteral("drop-reply"), QStringLiteral("Fault: do not send every n-th reply."),
         QStringLiteral("n")},
        {QStringLiteral("corrupt"), QStringLiteral("Fault: spoil the checksum of every n-th frame sent."),
         QStringLiteral("n")},
        {QStringLiteral("corrupt-next"),
         QStringLiteral("Fault: spoil the checksum of the first frame sent.")},
        {QStringLiteral("noise"),
         QStringLiteral(
             "Fault: a burst of random bytes before every n-th frame, of the given length (default 8)."),
         QStringLiteral("n[:length]")},
        {QStringLiteral("noise-stx"), QStringLiteral("Let the noise hold the start byte 0x02 too.")},
        {QStringLiteral("write-error"),
         QStringLiteral("Fault: a write touching this address is refused with this 'e' code (default 5). May "
                        "be repeated."),
         QStringLiteral("address[:code]")},
        {QStringLiteral("delay"), QStringLiteral("Fault: every reply leaves this many milliseconds late."),
         QStringLiteral("ms")},
        {QStringLiteral("stall"),
         QStringLiteral("Fault: after this many seconds stop answering and streaming, for the given seconds "
                        "(0 or none: until SIGUSR1)."),
         QStringLiteral("after[:for]")},
        {QStringLiteral("fail-block"),
         QStringLiteral(
             "Fault: in software programming, refuse block n (counted from 1 after each 'I') with this "
             "'e' code (default 5), at every attempt."),
         QStringLiteral("n[:code]")},
        {QStringLiteral("drop-block"),
         QStringLiteral("Fault: in software programming, the line goes dead at block n, once: that block and "
                        "everything after it goes unheard and unanswered, for the given seconds (0 or none: "
                        "until SIGUSR1)."),
         QStringLiteral("n[:seconds]")},
        {QStringLiteral("hang-up"),
         QStringLiteral("Fault: after this many seconds the line vanishes, as if the cable were pulled."),
         QStringLiteral("after")},
        {QStringLiteral("save-release"),
         QStringLiteral("Write the release the program's demo flashes (this software with the vehicle text "
                        "\"KV-SIM R2\") to this S19 file, and end."),
         QStringLiteral("file")},
        {{QStringLiteral("v"), QStringLiteral("verbose")},
         QStringLiteral("Log every frame to standard error, in hexadecimal, with its direction.")},
    });
}

bool InterpretaRigaComando(const QCommandLineParser &p, ImpostazioniProgramma &imp, QString &errore)
{
    OpzioniEcu &o = imp.ecu;
    imp.dispositivo = p.value(QStringLiteral("device"));
    imp.collegamento = p.value(QStringLiteral("link"));
    imp.rilascio = p.value(QStringLiteral("save-release"));
    if (!imp.dispositivo.isEmpty() && !imp.collegamento.isEmpty()) {
        errore = QStringLiteral(
            "--link is for the pseudo-terminal; with --device the device path is already fixed");
        return false;
    }
    if (!intero(p, QStringLiteral("baud"), 0, 1000000, o.baud, errore))
        return false;
    if (o.baud != 4800 && o.baud != 9600 && o.baud != 19200 && o.baud != 38400) {
        errore = QStringLiteral("--baud must be 4800, 9600, 19200 or 38400, not %1").arg(o.baud);
        return false;
    }
    if (!intero(p, QStringLiteral("rate"), 1, 200, o.frameAlSecondo, errore))
        return false;
    o.cadenzaReale = p.isSet(QStringLiteral("pace"));
    o.applicazionePresente = !p.isSet(QStringLiteral("no-application"));
    o.fileMemoria = p.value(QStringLiteral("memory"));
    o.operatoreManuale = p.isSet(QStringLiteral("manual-pedal"));
    if (!intero(p, QStringLiteral("lambda-type"), 0, 1, o.tipoSonda, errore))
        return false;
    int ciclo = o.durataCicloMs / 1000;
    if (!intero(p, QStringLiteral("cycle"), 5, 3600, ciclo, errore))
        return false;
    o.durataCicloMs = ciclo * 1000;
    int seme = int(o.seme);
    if (!intero(p, QStringLiteral("seed"), 0, 2147483647, seme, errore))
        return false;
    o.seme = quint32(seme);

    const struct
    {
        const char *nome;
        QByteArray StringheVersione::*campo;
    } testi[] = {
        {"vehicle", &StringheVersione::veicolo}, {"date", &StringheVersione::data},
        {"code", &StringheVersione::codice},     {"datum-a", &StringheVersione::datoA},
        {"datum-b", &StringheVersione::datoB},
    };
    for (const auto &t : testi) {
        const QString nome = QLatin1String(t.nome);
        if (p.isSet(nome)) {
            o.versione.*t.campo = p.value(nome).toLatin1();
            imp.versioneData = true;
        }
    }

    Guasti &g = o.guasti;
    if (!intero(p, QStringLiteral("drop-reply"), 0, 1000000, g.scartaOgniNRisposte, errore)
        || !intero(p, QStringLiteral("corrupt"), 0, 1000000, g.corrompiOgniNFrame, errore)
        || !intero(p, QStringLiteral("delay"), 0, 600000, g.ritardoRispostaMs, errore))
        return false;
    g.corrompiProssimo = p.isSet(QStringLiteral("corrupt-next"));
    if (p.isSet(QStringLiteral("noise"))) {
        quint32 n = 0;
        quint32 lunghezza = 8;
        if (!coppia(p.value(QStringLiteral("noise")), n, lunghezza) || lunghezza < 1 || lunghezza > 1024) {
            errore = QStringLiteral("--noise wants n or n:length (length 1 to 1024), not \"%1\"")
                         .arg(p.value(QStringLiteral("noise")));
            return false;
        }
        g.rumoreOgniNFrame = int(n);
        g.lunghezzaRumore = int(lunghezza);
    }
    g.rumoreConStx = p.isSet(QStringLiteral("noise-stx"));
    for (const QString &voce : p.values(QStringLiteral("write-error"))) {
        quint32 indirizzo = 0;
        quint32 codice = ErroreEcu::ScritturaFallita;
        if (!coppia(voce, indirizzo, codice) || indirizzo > 0xFFFF || codice > 0xFE) {
            errore = QStringLiteral("--write-error wants address[:code], an address up to 0xFFFF and a code "
                                    "up to 0xFE (0xFF means success), not \"%1\"")
                         .arg(voce);
            return false;
        }
        g.erroriScrittura.insert(indirizzo, quint8(codice));
    }
    if (p.isSet(QStringLiteral("fail-block"))) {
        quint32 blocco = 0;
        quint32 codice = ErroreEcu::ScritturaFallita;
        if (!coppia(p.value(QStringLiteral("fail-block")), blocco, codice) || blocco < 1 || blocco > 100000
            || codice > 0xFE) {
            errore = QStringLiteral(
                         "--fail-block wants n[:code], a block from 1 and a code up to 0xFE, not \"%1\"")
                         .arg(p.value(QStringLiteral("fail-block")));
            return false;
        }
        g.bloccoGuasto = int(blocco);
        g.codiceBloccoGuasto = quint8(codice);
    }
    if (p.isSet(QStringLiteral("drop-block"))) {
        const QStringList parti = p.value(QStringLiteral("drop-block")).split(QLatin1Char(':'));
        quint32 blocco = 0;
        if (parti.size() > 2 || !numero(parti.at(0), blocco) || blocco < 1 || blocco > 100000
            || (parti.size() == 2 && !secondiInMs(parti.at(1), g.durataCadutaMs))) {
            errore = QStringLiteral("--drop-block wants n or n:seconds, a block from 1, not \"%1\"")
                         .arg(p.value(QStringLiteral("drop-block")));
            return false;
        }
        g.cadutaAlBlocco = int(blocco);
    }
    if (p.isSet(QStringLiteral("stall"))) {
        const QStringList parti = p.value(QStringLiteral("stall")).split(QLatin1Char(':'));
        if (parti.size() > 2 || !secondiInMs(parti.at(0), imp.stalloDopoMs)
            || (parti.size() == 2 && !secondiInMs(parti.at(1), imp.durataStalloMs))) {
            errore = QStringLiteral("--stall wants seconds or seconds:seconds, not \"%1\"")
                         .arg(p.value(QStringLiteral("stall")));
            return false;
        }
    }
    if (p.isSet(QStringLiteral("hang-up"))
        && !secondiInMs(p.value(QStringLiteral("hang-up")), imp.riagganciaDopoMs)) {
        errore = QStringLiteral("--hang-up wants a number of seconds, not \"%1\"")
                     .arg(p.value(QStringLiteral("hang-up")));
        return false;
    }
    imp.verboso = p.isSet(QStringLiteral("verbose"));
    return true;
}

} // namespace kv::sim
