// How long the idle page takes to open against the simulated ECU at 38400 baud with every
// byte paced as on a real line, against the time its twelve frames need on the wire.
#include "BancoSimulatore.h"

#include "pages/ui/MP_Minimo.h"
#include "variables/Catalogo.h"

#include <QApplication>

#include <cstdio>

using namespace kv;

namespace {

constexpr int Aperture = 20;

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    BancoSimulatore banco;
    QString errore;
    if (!banco.avvia(errore)) {
        std::fprintf(stderr, "%s\n", qPrintable(errore));
        return 1;
    }
    Programma &p = *banco.programma;

    // The bytes of the opening read: each request a frame of 'R', address and count; each
    // reply a frame of 'r' and the bytes asked for.
    const DescrizionePagina &d = *DescrizioneDi(IdPagina::MP_Minimo);
    qint64 byteRichieste = 0;
    qint64 byteRisposte = 0;
    for (const RigaLettura &riga : d.piano) {
        byteRichieste += 4 + BancoSimulatore::InvolucroFrame;
        byteRisposte += 1 + ConteggioRiga(p.catalogo, riga) + BancoSimulatore::InvolucroFrame;
    }
    const double filo = BancoSimulatore::millisecondiSulFilo(byteRichieste + byteRisposte);

    std::vector<double> tempi;
    std::vector<double> flussi;
    int scadute = 0;
    for (int i = 0; i < Aperture; ++i) {
        MP_Minimo pagina(ContestoDi(p));
        double flusso = 0;
        tempi.push_back(banco.cronometra([&pagina] { pagina.carica(); }, flusso));
        flussi.push_back(flusso);
        if (!pagina.isEnabled() || !pagina.findChild<QWidget *>("Esci")->isEnabled())
            ++scadute;
    }

    std::printf("MP_Minimo opening read at %d baud, bytes paced, live stream running\n",
                BancoSimulatore::Baud);
    std::printf("frames: %zu requests (%lld bytes) and %zu replies (%lld bytes)\n", d.piano.size(),
                static_cast<long long>(byteRichieste), d.piano.size(), static_cast<long long>(byteRisposte));
    std::printf("time on the wire for those frames: %.2f ms\n", filo);
    std::printf(
        "time to open the page (load to last reply), %d openings: median %.2f ms, min %.2f ms, max %.2f ms\n",
        Aperture, BancoSimulatore::mediana(tempi), *std::min_element(tempi.begin(), tempi.end()),
        *std::max_element(tempi.begin(), tempi.end()));
    std::printf("live frames on the ECU's side meanwhile: median %.2f ms of line time\n",
                BancoSimulatore::mediana(flussi));
    std::printf("ratio, opening time to wire time: %.2f; openings that failed: %d\n",
                BancoSimulatore::mediana(tempi) / filo, scadute);
    return scadute == 0 ? 0 : 1;
}
