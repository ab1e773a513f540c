// The link's real port code against the simulated ECU at 38400 baud with every byte paced
// as on a real line. Prints the line turnaround (from the last byte of a reply leaving the
// ECU to the first byte of the next request reaching it) and how close 500 single-value
// reads come to the time their bytes need on the wire.
#include "LatoEcu.h"
#include "base/Lingua.h"
#include "link/PortaSeriale.h"
#include "shell/Programma.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kv;
using namespace kv::sim;

namespace {

constexpr int Baud = 38400;
constexpr int Letture = 500;
constexpr quint32 Indirizzo = 0x00A0; // a two-byte threshold in RAM

// Reads everything queued, then ends the loop.
class Lettore : public GestoreStati
{
public:
    Lettore(MotoreDialogo &m, QEventLoop &fine) : motore(m), ciclo(fine) {}
    char rispostaAttesa(int stato) const override { return stato == 1 ? 'r' : 0; }
    void risposta(char, int, const QByteArray &) override
    {
        ++risposte;
        if (motore.prosegui() == MotoreDialogo::Seguito::Concluso)
            ciclo.quit();
    }
    void scadenza(int) override
    {
        ++scadenze;
        ciclo.quit();
    }
    MotoreDialogo &motore;
    QEventLoop &ciclo;
    int risposte = 0;
    int scadenze = 0;
};

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    const auto i = static_cast<size_t>(p * static_cast<double>(v.size() - 1) + 0.5);
    return v[std::min(i, v.size() - 1)];
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);

    // Times on the ECU's side of the line, taken in the ECU's own thread; before the ECU's
    // side, so that its thread ends before they go.
    std::vector<double> fineRisposta, inizioRichiesta;
    qint64 byteFlusso = 0;
    LatoEcu lato(Baud);
    lato.osserva(
        [&](const QByteArray &f) {
            if (f.size() > 4 && f.at(4) == 'R')
                inizioRichiesta.push_back(lato.primoByteMs(f));
        },
        [&](int l, char lettera) {
            if (lettera == 'r')
                fineRisposta.push_back(lato.adessoMs());
            else if (lettera == 'd')
                byteFlusso += l;
        });
    if (!lato.avviaSuPty())
        return 1;

    QTemporaryDir cartella;
    Lingua lingua(cartella.path());
    Programma p(cartella.path(), lingua, std::make_unique<PortaSeriale>(),
                std::make_unique<TemporizzatoreQt>(), std::make_unique<TemporizzatoreQt>());
    p.seriale.VelocitaCom = Baud;
    p.dispositivoForzato = lato.ecu->percorsoDispositivo();
    if (!p.ApriPorta()) {
        std::fprintf(stderr, "cannot open %s: %s\n", qPrintable(p.dispositivoForzato),
                     qPrintable(p.linea.porta().descrizioneErrore()));
        return 1;
    }

    QEventLoop ciclo;
    QObject::connect(&p.linea.identificazione(), &Identificazione::identificata, &ciclo, &QEventLoop::quit);
    QTimer::singleShot(10000, &ciclo, &QEventLoop::quit);
    ciclo.exec();
    if (p.linea.ecu().EcuDaIdentificare) {
        std::fprintf(stderr, "the simulated ECU was not identified\n");
        return 1;
    }
    std::printf("identified %s at %d baud, bytes paced\n", qPrintable(p.linea.ecu().InfCodice.trimmed()),
                Baud);

    Lettore lettore(p.linea.motore(), ciclo);
    p.linea.motore().registra(1, &lettore);
    p.linea.motore().svuotaCoda();
    for (int i = 0; i < Letture; ++i)
        p.linea.motore().accoda('R' + ParolaInByte(Indirizzo) + char(2));
    const qint64 flussoPrima = byteFlusso;
    fineRisposta.clear();
    inizioRichiesta.clear();
    QElapsedTimer t;
    t.start();
    if (!p.linea.motore().avvia(1, MotoreDialogo::IntervalloLettura)) {
        std::fprintf(stderr, "the port closed before the reads\n");
        return 1;
    }
    ciclo.exec();
    const double trascorsi = static_cast<double>(t.nsecsElapsed()) / 1e9;
    p.linea.porta().chiudi();
    lato.ferma();

    // Request: 'R', address, count, in a frame; reply: 'r' and two bytes, in a frame.
    const qint64 byteDialogo = qint64(Letture) * ((4 + 6) + (3 + 6));
    const double filoDialogo = lato.secondiSulFilo(byteDialogo);
    const qint64 flusso = byteFlusso - flussoPrima;
    std::vector<double> giri;
    for (size_t k = 1; k < inizioRichiesta.size() && k <= fineRisposta.size(); ++k)
        giri.push_back(inizioRichiesta[k] - fineRisposta[k - 1]);

    std::printf("reads answered: %d of %d, time-outs: %d\n", lettore.risposte, Letture, lettore.scadenze);
    std::printf(
        "turnaround, last reply byte to first request byte: median %.2f ms, p99 %.2f ms (%zu samples)\n",
        percentile(giri, 0.5), percentile(giri, 0.99), giri.size());
    std::printf("500 reads: %.3f s elapsed; their bytes need %.3f s on the wire: ratio %.2f\n", trascorsi,
                filoDialogo, trascorsi / filoDialogo);
    std::printf(
        "live frames shared the ECU's side meanwhile: %lld bytes (%.3f s); ratio with them counted %.2f\n",
        static_cast<long long>(flusso), lato.secondiSulFilo(flusso),
        trascorsi / (filoDialogo + lato.secondiSulFilo(flusso)));
    return 0;
}
