// The strip chart, painted by hand against Qt Charts: four strips in a window, 100 new
// points a second each, a window of 200 samples that jumps on by 40 when full. Prints the
// process's CPU time as a share of one core over the run, and how often each strip was
// drawn whole.
// Usage: bench_striscia dipinta|qtcharts [seconds]   (the platform from QT_QPA_PLATFORM)
#include "monitoring/ui/GraficoStriscia.h"

#include <QApplication>
#include <QChart>
#include <QChartView>
#include <QElapsedTimer>
#include <QGridLayout>
#include <QLineSeries>
#include <QTimer>
#include <QValueAxis>

#include <sys/resource.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <random>

using namespace kv;

namespace {

constexpr int Strisce = 4;
constexpr int Finestra = 200;
constexpr int Salto = 40;

double secondiCpu()
{
    rusage r{};
    getrusage(RUSAGE_SELF, &r);
    return double(r.ru_utime.tv_sec + r.ru_stime.tv_sec)
           + double(r.ru_utime.tv_usec + r.ru_stime.tv_usec) / 1e6;
}

// One strip, whichever way it is drawn.
class Striscia
{
public:
    virtual ~Striscia() = default;
    virtual QWidget *widget() = 0;
    virtual void finestra(int minimo, int massimo) = 0;
    virtual void punto(int x, double y) = 0;
};

class StrisciaDipinta : public Striscia
{
public:
    StrisciaDipinta()
    {
        g.impostaTitolo(GraficoStriscia::AsseX, QStringLiteral("Samples [n]"));
        g.impostaTitolo(GraficoStriscia::AsseY, QStringLiteral("Engine speed [RPM]"));
        g.impostaScala(GraficoStriscia::AsseY, 0, 100);
        g.impostaDivisioni(GraficoStriscia::AsseY, 10, 10);
    }
    QWidget *widget() override { return &g; }
    void finestra(int minimo, int massimo) override
    {
        g.impostaScala(GraficoStriscia::AsseX, minimo, massimo);
    }
    void punto(int x, double y) override { g.aggiungiPunto(0, x, y); }
    GraficoStriscia g;
};

class StrisciaQtCharts : public Striscia
{
public:
    StrisciaQtCharts()
    {
        auto *grafico = new QChart;
        grafico->setTheme(QChart::ChartThemeDark);
        grafico->legend()->hide();
        serie = new QLineSeries;
        QPen penna(QColor(0xFF, 0xD5, 0x4F), 3);
        serie->setPen(penna);
        grafico->addSeries(serie);
        x = new QValueAxis;
        y = new QValueAxis;
        QFont f = x->labelsFont();
        f.setBold(true);
        f.setPointSizeF(11);
        x->setLabelsFont(f);
        y->setLabelsFont(f);
        x->setTitleText(QStringLiteral("Samples [n]"));
        y->setTitleText(QStringLiteral("Engine speed [RPM]"));
        x->setLabelFormat(QStringLiteral("%d"));
        y->setLabelFormat(QStringLiteral("%d"));
        x->setTickCount(6);
        y->setTickCount(11);
        y->setRange(0, 100);
        x->setRange(0, Finestra);
        grafico->addAxis(x, Qt::AlignBottom);
        grafico->addAxis(y, Qt::AlignLeft);
        serie->attachAxis(x);
        serie->attachAxis(y);
        vista.setChart(grafico);
        vista.setRenderHint(QPainter::Antialiasing);
    }
    QWidget *widget() override { return &vista; }
    void finestra(int minimo, int massimo) override
    {
        x->setRange(minimo, massimo);
        int via = 0;
        while (via < serie->count() - 1 && serie->at(via + 1).x() < minimo)
            ++via;
        if (via > 0)
            serie->removePoints(0, via);
    }
    void punto(int px, double py) override { serie->append(px, py); }
    QChartView vista;
    QLineSeries *serie;
    QValueAxis *x;
    QValueAxis *y;
};

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const QStringList argomenti = QCoreApplication::arguments();
    const bool charts = argomenti.value(1) == QLatin1String("qtcharts");
    if (argomenti.size() < 2 || (!charts && argomenti.value(1) != QLatin1String("dipinta"))) {
        std::fprintf(stderr, "usage: bench_striscia dipinta|qtcharts [seconds]\n");
        return 2;
    }
    const int secondi = argomenti.size() > 2 ? argomenti.at(2).toInt() : 30;

    QWidget finestra;
    auto *griglia = new QGridLayout(&finestra);
    std::array<std::unique_ptr<Striscia>, Strisce> strisce;
    for (int i = 0; i < Strisce; ++i) {
        if (charts)
            strisce[i] = std::make_unique<StrisciaQtCharts>();
        else
            strisce[i] = std::make_unique<StrisciaDipinta>();
        griglia->addWidget(strisce[i]->widget(), i / 2, i % 2);
    }
    finestra.resize(1024, 700);
    finestra.show();

    std::mt19937 caso(7);
    std::normal_distribution<double> passo(0, 3);
    std::array<double, Strisce> valori{50, 50, 50, 50};
    int campione = -1;
    int minimo = 0;
    int massimo = Finestra;
    QTimer ritmo;
    ritmo.setTimerType(Qt::PreciseTimer);
    ritmo.setInterval(10);
    QObject::connect(&ritmo, &QTimer::timeout, [&] {
        ++campione;
        if (campione > massimo) {
            minimo += Salto;
            massimo = minimo + Finestra;
            for (auto &s : strisce)
                s->finestra(minimo, massimo);
        }
        for (int i = 0; i < Strisce; ++i) {
            valori[i] = std::clamp(valori[i] + passo(caso), 2.0, 98.0);
            strisce[i]->punto(campione, valori[i]);
        }
    });

    // A second to settle, then the measured run.
    QElapsedTimer attesa;
    attesa.start();
    ritmo.start();
    while (attesa.elapsed() < 1000)
        app.processEvents(QEventLoop::AllEvents, 50);
    const double cpu0 = secondiCpu();
    const int campioni0 = campione;
    QElapsedTimer orologio;
    orologio.start();
    QTimer::singleShot(secondi * 1000, &app, &QCoreApplication::quit);
    app.exec();
    const double parete = double(orologio.nsecsElapsed()) / 1e9;
    const double cpu = secondiCpu() - cpu0;
    const int campioni = campione - campioni0;

    std::printf("strip chart: %s, platform %s, %d strips, %.0f points/s each, window %d jumping by %d\n",
                charts ? "Qt Charts (QChartView, QLineSeries)" : "painted (GraficoStriscia)",
                qPrintable(QGuiApplication::platformName()), Strisce, campioni / parete, Finestra, Salto);
    std::printf("CPU %.2f s over %.1f s: %.1f%% of one core\n", cpu, parete, 100.0 * cpu / parete);
    if (!charts) {
        const auto *g = &static_cast<StrisciaDipinta *>(strisce[0].get())->g;
        std::printf("strip 1: %d whole drawings, %d segments painted alone\n", g->ridisegniCompleti(),
                    g->segmentiDisegnati());
    }
    return 0;
}
