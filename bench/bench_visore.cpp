// The viewer of recordings on a one-hour and a 24-hour recording at the stream's rate
// (25 samples a second), written to /tmp by the recorder's own line writer, with a few
// pauses in them. Each measurement runs in a process of its own, the viewer window as the
// program shows it (1280x800, four charts), so that its peak memory is the program's:
// open (read and laid out), open and shown (the first paint done), peak RSS against the
// file's size, and the redraw of the charts at several zooms, panned, with all eleven
// channels, and for a cursor move. Medians of the runs.
// Usage: bench_visore [runs]     (5 unless told; the files are kept for a second run)
//        bench_visore --misura FILE   (one run, figures on standard output)
#include "base/Lingua.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/Canali.h"
#include "monitoring/ModelloVisore.h"
#include "monitoring/ui/GraficoVisore.h"
#include "monitoring/ui/Visore.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QProcess>

#include <sys/resource.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

using namespace kv;

namespace {

constexpr double Frequenza = 25;

struct Prova
{
    const char *nome;
    const char *file;
    qint64 campioni;
};

const Prova Prove[] = {
    {"1 hour", "/tmp/kv_bench_1h.ACQ", qint64(3600 * Frequenza)},
    {"24 hours", "/tmp/kv_bench_24h.ACQ", qint64(24 * 3600 * Frequenza)},
};

// The channel table as the program fills it, from the shipped English texts.
void canaliInglesi(Lingua &lingua, TabellaCanali &canali)
{
    lingua.PercorsoApp = QStringLiteral(KV_SOURCE_DIR "/lang");
    lingua.LinguaCorrente = QStringLiteral("ENGLISH");
    canali.InizializzaCanali(lingua.Cerca());
}

// A drive: the engine's speed swings between idle and 4000 RPM, throttle and lambda follow,
// and the recording is paused for a minute every hour.
bool genera(const Prova &prova)
{
    if (QFileInfo(QString::fromLatin1(prova.file)).size() > prova.campioni * 100)
        return true;
    Lingua lingua;
    TabellaCanali canali;
    canaliInglesi(lingua, canali);
    AnelloRegistrazione anello;
    anello.collega(&canali, QStringLiteral("/tmp"));
    QFile f(QString::fromLatin1(prova.file));
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray blocco = (anello.rigaNomi() + "\r\n" + anello.rigaUnita() + "\r\n").toLatin1();
    qint64 numero = 0;
    for (qint64 i = 0; i < prova.campioni; ++i, ++numero) {
        if (i > 0 && i % qint64(3600 * Frequenza) == 0)
            numero += qint64(60 * Frequenza);
        const double t = double(i) / Frequenza;
        RecordDati r;
        r.Progressivo = qint32(numero);
        const double giri = 2300 + 1500 * std::sin(t / 20) + 200 * std::sin(t * 1.7);
        r.Valore[Canale::Giri] = giri;
        r.Valore[Canale::Tps] = std::clamp(127 + 110 * std::sin(t / 20 + 0.3), 0.0, 255.0);
        r.Valore[Canale::Lambda] = 500 + 400 * std::sin(t * 3.1);
        r.Valore[Canale::ActPos] = 120 + 60 * std::sin(t / 7);
        r.Valore[Canale::RicMag] = std::sin(t * 3.1) > 0 ? 255 : 0;
        r.Valore[Canale::MZonAct] = 1 + int(giri / 1000) % 5;
        r.Valore[Canale::Pompata] = std::sin(t / 3) > 0.9 ? 1 : 0;
        r.Valore[Canale::TipTps] = 1;
        r.Valore[Canale::TipAlim] = t > 30 ? 1 : 0;
        r.Valore[Canale::TipoLambda] = 0;
        r.Valore[Canale::FlagPa] = 0;
        blocco += AnelloRegistrazione::rigaCampione(r).toLatin1() + "\r\n";
        if (blocco.size() > (1 << 20)) {
            if (f.write(blocco) != blocco.size())
                return false;
            blocco.clear();
        }
    }
    return f.write(blocco) == blocco.size();
}

double msDa(const QElapsedTimer &t)
{
    return double(t.nsecsElapsed()) / 1e6;
}

// The drawing thread's own time: on a machine shared with other work, what a free core takes.
double msFilo()
{
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
}

double mediana(QList<double> v)
{
    if (v.isEmpty())
        return 0;
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

// One run in this process: figures as "name value" lines.
int misura(const QString &file)
{
    Lingua lingua;
    TabellaCanali canali;
    canaliInglesi(lingua, canali);
    Visore visore(QStringLiteral("/tmp"), lingua, canali);
    visore.resize(1280, 800);
    visore.show();
    QCoreApplication::processEvents();
    GraficoVisore *g = visore.grafico();
    ModelloVisore &m = visore.modello();

    QElapsedTimer t;
    t.start();
    if (!visore.apri(file))
        return 1;
    const double apertura = msDa(t);
    g->repaint();
    const double mostrata = msDa(t);
    std::printf("apertura %.2f\nmostrata %.2f\nbyte %zu\n", apertura, mostrata,
                m.registrazione().byteInMemoria());

    // A full redraw, as a zoom or a pan makes it, the median of a few.
    const auto ridisegno = [&](const char *nome, const std::function<void()> &prepara) {
        QList<double> tempi, cpu;
        for (int i = 0; i < 15; ++i) {
            prepara();
            g->ridisegna();
            QElapsedTimer r;
            r.start();
            const double c0 = msFilo();
            g->repaint();
            cpu << msFilo() - c0;
            tempi << msDa(r);
        }
        std::printf("%s %.3f\n%s_cpu %.3f\n", nome, mediana(tempi), nome, mediana(cpu));
    };
    const double inizio = m.inizioAsse();
    const double centro = (m.inizioAsse() + m.fineAsse()) / 2;
    const auto vista = [&](double larghezza) {
        return [&m, centro, larghezza] { m.finestra(centro - larghezza / 2, centro + larghezza / 2); };
    };
    ridisegno("tutta", [&] { m.tutto(); });
    ridisegno("decimo", vista((m.fineAsse() - inizio) / 10));
    ridisegno("ora", vista(3600 * Frequenza));
    ridisegno("minuto", vista(60 * Frequenza));
    ridisegno("duecento", vista(200));
    ridisegno("spostata", [&] {
        m.tutto();
        m.zoom(50, centro);
        m.sposta((m.xMax() - m.xMin()) / 10);
    });
    ridisegno("undici", [&] {
        for (int c : ModelloVisore::Canali)
            m.mostra(c, true);
        m.tutto();
    });
    // A cursor moved: the strips stay as drawn, the cursors are painted over them.
    QList<double> cursore, cpu;
    m.tutto();
    g->repaint();
    for (int i = 0; i < 15; ++i) {
        QElapsedTimer r;
        r.start();
        const double c0 = msFilo();
        m.muovi(1);
        g->update();
        g->repaint();
        cpu << msFilo() - c0;
        cursore << msDa(r);
    }
    std::printf("cursore %.3f\ncursore_cpu %.3f\n", mediana(cursore), mediana(cpu));
    rusage uso{};
    getrusage(RUSAGE_SELF, &uso);
    std::printf("rss %ld\n", uso.ru_maxrss);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList argomenti = QCoreApplication::arguments();
    if (argomenti.value(1) == QLatin1String("--misura"))
        return misura(argomenti.value(2));
    const int giri = std::max(1, argomenti.value(1, QStringLiteral("5")).toInt());

    std::printf("Viewer of recordings: a window of 1280x800, four charts unless told; medians of %d runs, "
                "each in a process of its own.\n\n",
                giri);
    for (const Prova &prova : Prove) {
        if (!genera(prova)) {
            std::fprintf(stderr, "bench_visore: cannot write %s\n", prova.file);
            return 1;
        }
        QMap<QString, QList<double>> cifre;
        for (int i = 0; i < giri; ++i) {
            QProcess figlio;
            figlio.start(QCoreApplication::applicationFilePath(),
                         {QStringLiteral("--misura"), QString::fromLatin1(prova.file)});
            if (!figlio.waitForFinished(600000) || figlio.exitCode() != 0) {
                std::fprintf(stderr, "bench_visore: the run on %s failed\n", prova.file);
                return 1;
            }
            for (const QByteArray &riga : figlio.readAllStandardOutput().split('\n')) {
                const QList<QByteArray> parti = riga.split(' ');
                if (parti.size() == 2)
                    cifre[QString::fromLatin1(parti[0])] << parti[1].toDouble();
            }
        }
        const double mb = double(QFileInfo(QString::fromLatin1(prova.file)).size()) / 1e6;
        const double rss = mediana(cifre.value(QStringLiteral("rss"))) / 1e3;
        const auto c = [&](const char *nome) { return mediana(cifre.value(QString::fromLatin1(nome))); };
        std::printf("%s: %lld samples, file %.1f MB\n", prova.nome, static_cast<long long>(prova.campioni),
                    mb);
        std::printf("  open %.0f ms, open and shown %.0f ms\n", c("apertura"), c("mostrata"));
        std::printf("  peak RSS %.1f MB = %.2f x the file (samples and summaries %.1f MB = %.2f x)\n", rss,
                    rss / mb, c("byte") / 1e6, c("byte") / 1e6 / mb);
        const auto due = [&](const char *nome) {
            return QString::asprintf("%.2f (%.2f)", c((QByteArray(nome) + "_cpu").constData()), c(nome));
        };
        std::printf("  redraw, ms of the drawing thread (wall time in brackets):\n"
                    "    whole %s, a tenth %s, an hour %s, a minute %s, 200 samples %s,\n"
                    "    panned %s, eleven charts whole %s; cursor moved %s\n\n",
                    qPrintable(due("tutta")), qPrintable(due("decimo")), qPrintable(due("ora")),
                    qPrintable(due("minuto")), qPrintable(due("duecento")), qPrintable(due("spostata")),
                    qPrintable(due("undici")), qPrintable(due("cursore")));
    }
    return 0;
}
