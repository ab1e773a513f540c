#include "SessioneCli.h"
#include "base/Lingua.h"

#include "Comandi.h"

#include "base/Configurazione.h"
#include "base/PercorsoApp.h"
#include "link/PortaSeriale.h"
#include "shell/Programma.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTimer>

#include <unistd.h>

namespace kv::cli {

namespace {

const QString OpzionePorta = QStringLiteral("port");
const QString OpzioneBaud = QStringLiteral("baud");
const QString OpzioneCasa = QStringLiteral("home");

QElapsedTimer &orologio()
{
    static QElapsedTimer t = [] {
        QElapsedTimer o;
        o.start();
        return o;
    }();
    return t;
}

} // namespace

SessioneCli::SessioneCli(QCommandLineParser &p, const QStringList &argomenti, bool conPorta)
    : m_parser(p)
    , m_argomenti(argomenti)
    , m_conPorta(conPorta)
    , m_comando(argomenti.first())
{
    orologio();
    if (conPorta) {
        p.addOption(
            {OpzionePorta,
             QStringLiteral("The serial port: COM1 to COM10 as the Serial port page names them (see "
                            "'korvantine-cli ports'), or a device path such as /dev/ttyUSB0. Default: "
                            "the port of the program's settings."),
             QStringLiteral("PORT")});
        p.addOption(
            {OpzioneBaud,
             QStringLiteral("Line speed: 4800, 9600, 19200 or 38400. Default: the program's settings."),
             QStringLiteral("RATE")});
    }
    p.addOption({OpzioneCasa,
                 QStringLiteral("The program's folder (settings, language, archives). Default: the one the "
                                "program itself would use."),
                 QStringLiteral("DIR")});
}

SessioneCli::~SessioneCli()
{
    m_avanzamento.chiudi();
}

bool SessioneCli::prepara(const QString &descrizione, int minimiPosizionali, int massimiPosizionali)
{
    if (!analizza(m_parser, m_argomenti, descrizione, minimiPosizionali, massimiPosizionali, m_uscita))
        return false;
    m_json = m_parser.isSet(QStringLiteral("json"));
    m_quiet = m_parser.isSet(QStringLiteral("quiet"));
    m_avanzamento.imposta(!m_quiet, ::isatty(STDERR_FILENO) == 1);
    const QString eseguibile = QCoreApplication::applicationDirPath();
    m_casa = RisolviPercorsoApp(m_parser.value(OpzioneCasa), eseguibile, CartellaDatiUtente());
    m_lingua = Lingua::DellaCartella(m_casa, eseguibile);
    if (!m_propria.isValid()) {
        fallisci(FileNonScritto,
                 QStringLiteral("no temporary folder can be made: ") + m_propria.errorString());
        return false;
    }
    return !m_conPorta || risolviPorta();
}

bool SessioneCli::risolviPorta()
{
    // The system's ports are looked up once: the settings and --port name them in the same list.
    const QStringList porti = PortiSeriali();
    const ImpSeriale ini = LeggiImpSeriale(PercorsoIni(m_casa), porti);
    const QString data = m_parser.value(OpzionePorta).trimmed();
    if (data.isEmpty()) {
        m_nomePorta = ini.Porta;
        m_porta.dispositivo = ini.nomeDispositivo;
    } else if (data.startsWith(u'/')) {
        if (ControllaDispositivo(data) == EsitoDispositivo::NonPercorso) {
            fallisci(Uso, QStringLiteral("--port: '%1' is not a device path").arg(data));
            return false;
        }
        m_nomePorta = data;
        m_porta.dispositivo = data;
    } else {
        static const QRegularExpression com(QStringLiteral("^COM([0-9]{1,2})$"),
                                            QRegularExpression::CaseInsensitiveOption);
        const QRegularExpressionMatch m = com.match(data);
        const int n = m.hasMatch() ? m.captured(1).toInt() : 0;
        if (n < 1 || n > PorteCom) {
            fallisci(Uso, QStringLiteral("--port takes COM1 to COM%1 or a device path, not '%2'")
                              .arg(PorteCom)
                              .arg(data));
            return false;
        }
        m_nomePorta = QStringLiteral("COM%1").arg(n);
        m_porta.dispositivo = NomeDispositivo(m_nomePorta, n, porti);
    }
    if (m_porta.dispositivo.isEmpty()) {
        fallisci(
            PortaNonDisponibile,
            QStringLiteral("%1: the system reports no such serial port ('korvantine-cli ports' lists them)")
                .arg(m_nomePorta));
        return false;
    }
    m_porta.velocita = ini.VelocitaCom;
    if (m_parser.isSet(OpzioneBaud)) {
        const int baud = m_parser.value(OpzioneBaud).toInt();
        if (baud != 4800 && baud != 9600 && baud != 19200 && baud != 38400) {
            fallisci(Uso, QStringLiteral("--baud takes 4800, 9600, 19200 or 38400, not '%1'")
                              .arg(m_parser.value(OpzioneBaud)));
            return false;
        }
        m_porta.velocita = baud;
    }
    return true;
}

Programma &SessioneCli::crea(bool nellaCasa)
{
    m_programma = std::make_unique<Programma>(
        nellaCasa ? m_casa : m_propria.path(), m_lingua, std::make_unique<PortaSeriale>(),
        std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    Programma &p = *m_programma;
    // MESSAGGI.TXT is the log of the program's own last run: a command leaves it alone.
    p.linea.registro().impostaPercorso({});
    p.canali.InizializzaCanali(p.lingua.Cerca());
    QObject::connect(&p.linea.TimeOutReq(), &Temporizzatore::scaduto, [this] { m_senzaRisposta = true; });
    QObject::connect(&p.linea.sorveglianza(), &SorveglianzaLinea::persa, [this] { m_senzaRisposta = true; });
    return p;
}

bool SessioneCli::apri()
{
    const QString &d = m_porta.dispositivo;
    if (!QFileInfo::exists(d)) {
        fallisci(PortaNonDisponibile, QStringLiteral("%1: no such device (adapter not plugged in?)").arg(d));
        return false;
    }
    SessioneLinea &linea = m_programma->linea;
    if (linea.apri(m_porta)) {
        m_aperturaMs = orologio().elapsed();
        m_senzaRisposta = false;
        return true;
    }
    QString motivo;
    if (linea.portaOccupata())
        motivo = m_lingua.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("PORTA_OCCUPATA"));
    else if (!linea.gruppoMancante().isEmpty())
        motivo = m_lingua.LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("PERMESSO_PORTA"))
                     .replace(QStringLiteral("YYY"), linea.gruppoMancante());
    if (motivo.isEmpty())
        motivo = QStringLiteral("cannot open XXX: ") + linea.porta().descrizioneErrore();
    fallisci(PortaNonDisponibile, motivo.replace(QStringLiteral("XXX"), d));
    return false;
}

bool SessioneCli::attendiEcu()
{
    Programma &p = *m_programma;
    int buoni = 0;
    const QMetaObject::Connection c =
        QObject::connect(&p.linea, &SessioneLinea::segnalazione, [&buoni] { ++buoni; });
    const StatoEcu &ecu = p.linea.ecu();
    const MotoreDialogo &m = p.linea.motore();
    const bool nota = attendi(
        [&] { return (!ecu.EcuDaIdentificare && m.StatoDialogo() == -1) || !ecu.EcuNormale; }, AttesaEcuMs);
    QObject::disconnect(c);
    if (nota) {
        m_senzaRisposta = false;
        return true;
    }
    const QString dove = QStringLiteral("%1 at %2 baud").arg(m_porta.dispositivo).arg(m_porta.velocita);
    fallisci(
        NessunaRisposta,
        buoni > 0
            ? QStringLiteral("the ECU on %1 sends frames but did not answer its identification").arg(dove)
            : QStringLiteral("no ECU answered on %1 within %2 s (wrong port or speed, ignition off?)")
                  .arg(dove)
                  .arg(AttesaEcuMs / 1000));
    return false;
}

bool SessioneCli::attendi(const std::function<bool()> &fatto, int millisecondi)
{
    if (fatto())
        return true;
    QEventLoop ciclo;
    QTimer controllo;
    controllo.setInterval(5);
    QObject::connect(&controllo, &QTimer::timeout, &ciclo, [&] {
        if (fatto())
            ciclo.quit();
    });
    QTimer scadenza;
    scadenza.setSingleShot(true);
    QObject::connect(&scadenza, &QTimer::timeout, &ciclo, &QEventLoop::quit);
    if (millisecondi >= 0)
        scadenza.start(millisecondi);
    controllo.start();
    ciclo.exec();
    return fatto();
}

void SessioneCli::chiudiPorta()
{
    if (!m_programma)
        return;
    m_programma->linea.sorveglianza().chiusa();
    m_programma->linea.porta().chiudi();
}

bool SessioneCli::uscitaScrivibile(const QString &percorso)
{
    const QFileInfo info(percorso);
    if (info.isSymLink() || (info.exists() && !info.isFile())) {
        fallisci(FileNonScritto,
                 percorso + QStringLiteral(" is a link or not a plain file; nothing written"));
        return false;
    }
    if (!QFileInfo(info.absolutePath()).isDir()) {
        fallisci(FileNonScritto, QStringLiteral("no folder %1; nothing written").arg(info.absolutePath()));
        return false;
    }
    return true;
}

double SessioneCli::secondi() const
{
    return m_aperturaMs < 0 ? 0 : double(orologio().elapsed() - m_aperturaMs) / 1000.0;
}

int SessioneCli::fallisci(int uscita, const QString &testo)
{
    m_avanzamento.chiudi();
    m_uscita = uscita;
    err() << m_comando << ": " << testo << '\n';
    err().flush();
    if (m_json) {
        QJsonObject o{{QStringLiteral("status"), uscita}, {QStringLiteral("error"), testo}};
        if (!m_porta.dispositivo.isEmpty())
            o.insert(QStringLiteral("port"), m_porta.dispositivo);
        out() << QJsonDocument(o).toJson(QJsonDocument::Compact) << '\n';
        out().flush();
    }
    return uscita;
}

int SessioneCli::riuscito(QJsonObject dati)
{
    m_avanzamento.chiudi();
    m_uscita = Fatto;
    if (m_json) {
        dati.insert(QStringLiteral("status"), Fatto);
        if (!m_porta.dispositivo.isEmpty())
            dati.insert(QStringLiteral("port"), m_porta.dispositivo);
        out() << QJsonDocument(dati).toJson(QJsonDocument::Compact) << '\n';
        out().flush();
    }
    return Fatto;
}

void SessioneCli::dici(const QString &testo)
{
    if (m_quiet)
        return;
    m_avanzamento.chiudi();
    err() << m_comando << ": " << testo << '\n';
    err().flush();
}

} // namespace kv::cli
