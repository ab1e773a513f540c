// korvantine-ecu: the simulated ECU on a pseudo-terminal or a serial device.

#include "ComandiOperatore.h"
#include "EcuSimulata.h"
#include "FileS19.h"
#include "RigaComando.h"

#include "link/Frame.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSaveFile>
#include <QSocketNotifier>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace kv;
using namespace kv::sim;

namespace {

// Ctrl-C, SIGTERM and the two fault signals reach the event loop through a signalfd,
// so nothing has to happen inside a signal handler.
class SegnaliProcesso : public QObject
{
public:
    SegnaliProcesso(EcuSimulata &ecu, QObject *parent) : QObject(parent)
    {
        sigset_t insieme;
        sigemptyset(&insieme);
        for (int s : {SIGINT, SIGTERM, SIGUSR1, SIGUSR2})
            sigaddset(&insieme, s);
        sigprocmask(SIG_BLOCK, &insieme, nullptr);
        m_fd = signalfd(-1, &insieme, SFD_NONBLOCK | SFD_CLOEXEC);
        if (m_fd < 0)
            return;
        auto *notificatore = new QSocketNotifier(qintptr(m_fd), QSocketNotifier::Read, this);
        connect(notificatore, &QSocketNotifier::activated, this, [this, &ecu] {
            signalfd_siginfo info{};
            while (::read(m_fd, &info, sizeof info) == ssize_t(sizeof info)) {
                switch (info.ssi_signo) {
                case SIGUSR1:
                    ecu.impostaStallo(!ecu.guasti().stallo);
                    std::fprintf(stderr, "stall %s\n", ecu.guasti().stallo ? "on" : "off");
                    break;
                case SIGUSR2:
                    ecu.riaggancia();
                    break;
                default:
                    QCoreApplication::quit();
                }
            }
        });
    }
    ~SegnaliProcesso() override
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }

private:
    int m_fd = -1;
};

// The fitter's actions, one a line on standard input; the end of the input just stops the
// listening (a simulator started with </dev/null or in the background runs on as before).
class IngressoOperatore : public QObject
{
public:
    IngressoOperatore(EcuSimulata &ecu, QObject *parent) : QObject(parent), m_ecu(ecu)
    {
        m_notificatore = new QSocketNotifier(qintptr(STDIN_FILENO), QSocketNotifier::Read, this);
        connect(m_notificatore, &QSocketNotifier::activated, this, &IngressoOperatore::leggi);
    }

private:
    void leggi()
    {
        char blocco[256];
        const ssize_t letti = ::read(STDIN_FILENO, blocco, sizeof blocco);
        if (letti <= 0) {
            m_notificatore->setEnabled(false);
            return;
        }
        m_riga.append(blocco, qsizetype(letti));
        qsizetype fine;
        while ((fine = m_riga.indexOf('\n')) >= 0) {
            const QString riga = QString::fromLocal8Bit(m_riga.left(fine));
            m_riga.remove(0, fine + 1);
            const QString risposta = EseguiComandoOperatore(m_ecu, riga);
            if (!risposta.isEmpty()) {
                std::printf("%s\n", qPrintable(risposta));
                std::fflush(stdout);
            }
        }
        if (m_riga.size() > 4096)
            m_riga.clear(); // not a line of ours
    }

    EcuSimulata &m_ecu;
    QSocketNotifier *m_notificatore;
    QByteArray m_riga;
};

void registra(const QElapsedTimer &orologio, const char *verso, const QByteArray &bytes)
{
    std::fprintf(stderr, "%9.3f %s %s\n", double(orologio.elapsed()) / 1000.0, verso,
                 HexFrame(bytes).constData());
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("korvantine-ecu"));

    QCommandLineParser parser;
    PreparaRigaComando(parser);
    parser.process(app);
    if (!parser.positionalArguments().isEmpty()) {
        std::fprintf(stderr, "korvantine-ecu: unexpected argument \"%s\"; see --help\n",
                     qPrintable(parser.positionalArguments().constFirst()));
        return 2;
    }
    ImpostazioniProgramma imp;
    QString errore;
    if (!InterpretaRigaComando(parser, imp, errore)) {
        std::fprintf(stderr, "korvantine-ecu: %s\n", qPrintable(errore));
        return 2;
    }

    if (!imp.rilascio.isEmpty()) {
        QSaveFile file(imp.rilascio);
        if (!file.open(QIODevice::WriteOnly) || file.write(RilascioDemo()) < 0 || !file.commit()) {
            std::fprintf(stderr, "korvantine-ecu: cannot write %s: %s\n", qPrintable(imp.rilascio),
                         qPrintable(file.errorString()));
            return 1;
        }
        return 0;
    }

    EcuSimulata ecu(imp.ecu);
    if (!ecu.erroreMemoria().isEmpty()) {
        std::fprintf(stderr, "korvantine-ecu: %s\n", qPrintable(ecu.erroreMemoria()));
        return 1;
    }
    if (imp.versioneData && !imp.ecu.fileMemoria.isEmpty())
        ecu.scriviVersione(imp.ecu.versione);

    const bool aperta =
        imp.dispositivo.isEmpty() ? ecu.apriPty(imp.collegamento) : ecu.apriDispositivo(imp.dispositivo);
    if (!aperta) {
        std::fprintf(stderr, "korvantine-ecu: %s\n", qPrintable(ecu.erroreLinea()));
        return 1;
    }

    QElapsedTimer orologio;
    orologio.start();
    if (imp.verboso) {
        QObject::connect(&ecu, &EcuSimulata::frameRicevuto, &app,
                         [&](const QByteArray &f) { registra(orologio, "tester>", f); });
        QObject::connect(&ecu, &EcuSimulata::frameInviato, &app,
                         [&](const QByteArray &f) { registra(orologio, "ecu>   ", f); });
        QObject::connect(&ecu, &EcuSimulata::rumoreInviato, &app,
                         [&](const QByteArray &b) { registra(orologio, "noise> ", b); });
        QObject::connect(&ecu, &EcuSimulata::rispostaScartata, &app,
                         [&](const QByteArray &f) { registra(orologio, "dropped", f); });
        QObject::connect(&ecu, &EcuSimulata::byteScartati, &app,
                         [&](const QByteArray &b) { registra(orologio, "junk>  ", b); });
    }
    QObject::connect(&ecu, &EcuSimulata::lineaChiusa, &app, [](const QString &motivo) {
        std::fprintf(stderr, "line closed: %s\n", qPrintable(motivo));
    });
    QObject::connect(&ecu, &EcuSimulata::lineaCaduta, &app, [&ecu](int blocco) {
        std::fprintf(stderr, "line dropped at block %d%s\n", blocco,
                     ecu.guasti().durataCadutaMs > 0 ? "" : " (SIGUSR1 brings it back)");
    });
    QObject::connect(&ecu, &EcuSimulata::erroreMemoriaRilevato, &app, [](const QString &testo) {
        std::fprintf(stderr, "korvantine-ecu: %s\n", qPrintable(testo));
    });

    if (imp.stalloDopoMs >= 0) {
        QTimer::singleShot(imp.stalloDopoMs, &ecu, [&] {
            ecu.impostaStallo(true);
            std::fprintf(stderr, "stall on\n");
            if (imp.durataStalloMs > 0)
                QTimer::singleShot(imp.durataStalloMs, &ecu, [&] {
                    ecu.impostaStallo(false);
                    std::fprintf(stderr, "stall off\n");
                });
        });
    }
    if (imp.riagganciaDopoMs >= 0)
        QTimer::singleShot(imp.riagganciaDopoMs, &ecu, [&] { ecu.riaggancia(); });

    SegnaliProcesso segnali(ecu, &app);
    IngressoOperatore operatore(ecu, &app);
    ecu.avvia();

    std::printf("ECU simulator ready on %s\n", qPrintable(ecu.percorsoDispositivo()));
    std::fflush(stdout);
    if (!imp.collegamento.isEmpty())
        std::fprintf(stderr, "link: %s -> %s\n", qPrintable(imp.collegamento),
                     qPrintable(ecu.percorsoDispositivo()));

    return app.exec();
}
