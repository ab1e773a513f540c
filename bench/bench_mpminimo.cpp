// How long the idle page takes to open against the simulated ECU at 38400 baud with every
// byte paced as on a real line, against the time its twelve frames need on the wire.
#include "EcuSimulata.h"
#include "link/PortaSeriale.h"
#include "pages/PianiLettura.h"
#include "pages/ui/MP_Minimo.h"
#include "shell/Programma.h"
#include "variables/Catalogo.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kv;
using namespace kv::sim;

namespace {

constexpr int Baud = 38400;
constexpr int Aperture = 20;

double secondiSulFilo(qint64 byte)
{
    return static_cast<double>(byte) * 10.0 / Baud;
}

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    OpzioniEcu opzioni;
    opzioni.baud = Baud;
    opzioni.cadenzaReale = true;
    auto *ecu = new EcuSimulata(opzioni);
    if (!ecu->apriPty()) {
        std::fprintf(stderr, "cannot open a pseudo-terminal: %s\n", qPrintable(ecu->erroreLinea()));
        return 1;
    }
    qint64 byteFlusso = 0;
    QObject::connect(
        ecu, &EcuSimulata::frameInviato, ecu,
        [&](const QByteArray &f) {
            if (f.size() > 4 && f.at(4) == 'd')
                byteFlusso += f.size();
        },
        Qt::DirectConnection);
    QThread filo;
    ecu->moveToThread(&filo);
    QObject::connect(&filo, &QThread::finished, ecu, &QObject::deleteLater);
    filo.start();
    QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);

    QTemporaryDir cartella;
    Programma p(cartella.path(), std::make_unique<PortaSeriale>(), std::make_unique<TemporizzatoreQt>(),
                std::make_unique<TemporizzatoreQt>());
    p.seriale.VelocitaCom = Baud;
    p.dispositivoForzato = ecu->percorsoDispositivo();
    if (!p.ApriPorta()) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(p.dispositivoForzato));
        return 1;
    }
    QEventLoop ciclo;
    QObject::connect(&p.identificazione, &Identificazione::identificata, &ciclo, &QEventLoop::quit);
    QTimer::singleShot(10000, &ciclo, &QEventLoop::quit);
    ciclo.exec();
    if (p.stato.EcuDaIdentificare) {
        std::fprintf(stderr, "the simulated ECU was not identified\n");
        return 1;
    }

    // The bytes of the opening read: each request a frame of 'R', address and count; each
    // reply a frame of 'r' and the bytes asked for.
    const PianoLettura *piano = PianoPerStato(1);
    qint64 byteRichieste = 0;
    qint64 byteRisposte = 0;
    for (const RigaLettura &riga : piano->righe) {
        byteRichieste += 4 + 6;
        byteRisposte += 1 + ConteggioRiga(p.catalogo, riga) + 6;
    }
    const double filo12 = secondiSulFilo(byteRichieste + byteRisposte);

    std::vector<double> tempi;
    std::vector<double> flussi;
    int scadute = 0;
    QObject::connect(&p.motore, &MotoreDialogo::cursoreAttesa, &ciclo, [&](bool attesa) {
        if (!attesa)
            ciclo.quit();
    });
    for (int i = 0; i < Aperture; ++i) {
        MP_Minimo pagina(p);
        const qint64 flussoPrima = byteFlusso;
        QElapsedTimer t;
        t.start();
        pagina.carica();
        if (p.motore.StatoDialogo() != -1)
            ciclo.exec();
        tempi.push_back(static_cast<double>(t.nsecsElapsed()) / 1e6);
        flussi.push_back(secondiSulFilo(byteFlusso - flussoPrima) * 1000.0);
        if (pagina.isEnabled() == false || !pagina.findChild<QWidget *>("Esci")->isEnabled())
            ++scadute;
    }
    p.porta.chiudi();
    filo.quit();
    filo.wait();

    std::printf("MP_Minimo opening read at %d baud, bytes paced, live stream running\n", Baud);
    std::printf("frames: %zu requests (%lld bytes) and %zu replies (%lld bytes)\n", piano->righe.size(),
                static_cast<long long>(byteRichieste), piano->righe.size(),
                static_cast<long long>(byteRisposte));
    std::printf("time on the wire for those frames: %.2f ms\n", filo12 * 1000.0);
    std::printf(
        "time to open the page (load to last reply), %d openings: median %.2f ms, min %.2f ms, max %.2f ms\n",
        Aperture, mediana(tempi), *std::min_element(tempi.begin(), tempi.end()),
        *std::max_element(tempi.begin(), tempi.end()));
    std::printf("live frames on the ECU's side meanwhile: median %.2f ms of line time\n", mediana(flussi));
    std::printf("ratio, opening time to wire time: %.2f; openings that failed: %d\n",
                mediana(tempi) / (filo12 * 1000.0), scadute);
    return scadute == 0 ? 0 : 1;
}
