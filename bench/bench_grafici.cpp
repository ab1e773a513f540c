// The monitor windows under a heavy stream: the simulated ECU sends 100 live frames a second
// (faster than any real ECU) over a pseudo-terminal; first the chart window with four charts
// while recording, then the instruments while recording. For each: the program's CPU time
// (its main thread, where port, decoder, recorder and drawing run; the simulator's thread
// apart) as a share of one core, and the live frames decoded against those sent.
// With "link" the same is measured with no window open, the recorder fed by hand: what the
// port, the decoder and the recorder cost alone.
// Usage: bench_grafici [seconds per window] [grafici|strumenti|link|all]
//        (60 and all unless told; the platform from QT_QPA_PLATFORM)
#include "EcuSimulata.h"
#include "base/Lingua.h"
#include "link/PortaSeriale.h"
#include "monitoring/ui/BarraRegistrazione.h"
#include "monitoring/ui/Grafici.h"
#include "monitoring/ui/GraficoStriscia.h"
#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "shell/Programma.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <ctime>
#include <functional>

using namespace kv;
using namespace kv::sim;

namespace {

constexpr int FrameAlSecondo = 100;

double secondiFilo()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

double secondiProcesso()
{
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    return double(r.ru_utime.tv_sec + r.ru_stime.tv_sec)
           + double(r.ru_utime.tv_usec + r.ru_stime.tv_usec) / 1e6;
}

// The event loop runs as in the program, asleep between events, until the time is up or
// the condition, tested every 20 ms, holds.
void attendi(int millisecondi, const std::function<bool()> &fatto = {})
{
    QEventLoop ciclo;
    QTimer fine;
    fine.setSingleShot(true);
    QObject::connect(&fine, &QTimer::timeout, &ciclo, &QEventLoop::quit);
    fine.start(millisecondi);
    QTimer prova;
    if (fatto) {
        QObject::connect(&prova, &QTimer::timeout, &ciclo, [&] {
            if (fatto())
                ciclo.quit();
        });
        prova.start(20);
    }
    if (!(fatto && fatto()))
        ciclo.exec();
}

// Every live frame the program decodes.
class Contatore : public AscoltatoreDati
{
public:
    void frameNormale(const RecordDati &) override { ++decodificati; }
    void frameStato(const RecordDati &) override { ++decodificati; }
    long decodificati = 0;
};

struct Misura
{
    double secondi = 0;
    double cpuFilo = 0;
    double cpuProcesso = 0;
    long inviati = 0;
    long decodificati = 0;
    qsizetype righe = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int secondi = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 60;
    const QString quali = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("all");
    const auto misurare = [&](const char *nome) {
        return quali == QLatin1String("all") || quali == QLatin1String(nome);
    };

    OpzioniEcu opzioni;
    opzioni.frameAlSecondo = FrameAlSecondo;
    opzioni.baud = 115200;
    auto *ecu = new EcuSimulata(opzioni);
    if (!ecu->apriPty()) {
        std::fprintf(stderr, "cannot open a pseudo-terminal: %s\n", qPrintable(ecu->erroreLinea()));
        return 1;
    }
    std::atomic<long> inviati{0};
    QObject::connect(
        ecu, &EcuSimulata::frameInviato, ecu,
        [&](const QByteArray &f) {
            if (f.size() > 4 && f.at(4) == 'd')
                ++inviati;
        },
        Qt::DirectConnection);
    QThread filo;
    ecu->moveToThread(&filo);
    QObject::connect(&filo, &QThread::finished, ecu, &QObject::deleteLater);
    filo.start();
    QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);

    QTemporaryDir cartella;
    QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG"));
    Lingua lingua(cartella.path());
    Programma p(cartella.path(), lingua, std::make_unique<PortaSeriale>(),
                std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    p.lingua.LinguaCorrente = QStringLiteral("ENGLISH");
    p.canali.InizializzaCanali(p.lingua.Cerca());
    p.seriale.VelocitaCom = 115200;
    p.dispositivoForzato = ecu->percorsoDispositivo();
    if (!p.ApriPorta()) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(p.dispositivoForzato));
        return 1;
    }
    attendi(10000, [&] { return !p.linea.ecu().EcuDaIdentificare && p.linea.motore().StatoDialogo() == -1; });
    if (p.linea.ecu().EcuDaIdentificare) {
        std::fprintf(stderr, "the simulated ECU was not identified\n");
        return 1;
    }
    Contatore contatore;
    p.linea.datiLive().aggiungiAscoltatore(&contatore);
    QDir().mkpath(cartella.filePath("DATI/BENCH"));

    // The stream held while the counts start, so that no frame is in flight across the start.
    const auto flusso = [&](int frame) {
        QMetaObject::invokeMethod(ecu, [ecu, frame] {
            ecu->impostaFrequenzaFlusso(frame);
            if (frame > 0)
                ecu->avvia();
        });
    };
    const auto misura = [&](const std::function<void(const QString &)> &comando, const QString &file) {
        Misura m;
        flusso(0);
        attendi(300);
        QFile::remove(file);
        // No history: every line of the file is then a frame counted here.
        p.anello.azzera();
        p.anello.impostaFileRegistrazione(file);
        comando(QStringLiteral("INIZIO"));
        inviati = 0;
        contatore.decodificati = 0;
        const double filo0 = secondiFilo();
        const double processo0 = secondiProcesso();
        QElapsedTimer orologio;
        orologio.start();
        flusso(FrameAlSecondo);
        attendi(secondi * 1000);
        m.secondi = double(orologio.nsecsElapsed()) / 1e9;
        m.cpuFilo = secondiFilo() - filo0;
        m.cpuProcesso = secondiProcesso() - processo0;
        flusso(0);
        attendi(500);
        comando(QStringLiteral("FINE"));
        m.inviati = inviati;
        m.decodificati = contatore.decodificati;
        QFile f(file);
        if (f.open(QIODevice::ReadOnly))
            m.righe = f.readAll().count('\n') - 2;
        return m;
    };
    const auto stampa = [](const char *nome, const Misura &m) {
        std::printf("%s: %.1f s, %.0f live frames/s sent\n", nome, m.secondi, double(m.inviati) / m.secondi);
        std::printf("  CPU of the program's thread: %.2f s, %.2f%% of one core (whole process with the "
                    "simulator: %.2f%%)\n",
                    m.cpuFilo, 100.0 * m.cpuFilo / m.secondi, 100.0 * m.cpuProcesso / m.secondi);
        std::printf("  'd' frames sent %ld, decoded %ld, lost %ld; sample lines recorded %lld\n", m.inviati,
                    m.decodificati, m.inviati - m.decodificati, static_cast<long long>(m.righe));
    };

    std::printf("monitor windows at %d live frames/s, platform %s, window 1024x700\n", FrameAlSecondo,
                qPrintable(QGuiApplication::platformName()));
    int esito = 0;
    if (misurare("link")) {
        // No window: only the receive path and the recorder, as while a window is open.
        p.anello.RegistrazioneAttiva = true;
        const auto comando = [&](const QString &c) {
            if (c == QLatin1String("INIZIO"))
                p.anello.Inizio();
            else
                p.anello.Fine();
        };
        const Misura m = misura(comando, cartella.filePath("DATI/BENCH/LINK.ACQ"));
        stampa("no window, recording", m);
        esito |= m.inviati != m.decodificati || m.righe != m.decodificati;
        p.anello.RegistrazioneAttiva = false;
    }
    if (misurare("grafici")) {
        Grafici grafici(ContestoMonitorDi(p));
        grafici.resize(1024, 700);
        grafici.show();
        grafici.carica();
        for (int c : {2, 3, 4, 5})
            if (grafici.modello().slotDi(c) < 0)
                grafici.cliccaCanale(c);
        const Misura m = misura([&](const QString &c) { grafici.barra().comando(c); },
                                cartella.filePath("DATI/BENCH/GRAFICI.ACQ"));
        stampa("Grafici, four charts, recording", m);
        std::printf("  chart 1: %d whole drawings, %d segments drawn alone\n",
                    grafici.grafico(0)->ridisegniCompleti(), grafici.grafico(0)->segmentiDisegnati());
        esito |= m.inviati != m.decodificati || m.righe != m.decodificati;
        grafici.Esci();
    }
    if (misurare("strumenti")) {
        Strumenti strumenti(ContestoMonitorDi(p));
        strumenti.resize(1024, 700);
        strumenti.show();
        strumenti.carica();
        attendi(5000, [&] { return p.linea.motore().StatoDialogo() == -1; });
        const Misura m = misura([&](const QString &c) { strumenti.barra().comando(c); },
                                cartella.filePath("DATI/BENCH/STRUMENTI.ACQ"));
        stampa("Strumenti, recording", m);
        esito |= m.inviati != m.decodificati || m.righe != m.decodificati;
        strumenti.Esci();
    }
    p.linea.datiLive().rimuoviAscoltatore(&contatore);
    p.linea.porta().chiudi();
    filo.quit();
    filo.wait();
    return esito;
}
