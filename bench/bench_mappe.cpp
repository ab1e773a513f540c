// How long a map takes to read out of the ECU and to write into it, against the simulated
// ECU at 38400 baud with every byte paced as on a real line, set against the time the eight
// requests and their replies need on the wire (10 bits a byte). Once with the ECU's live
// stream off, once with it running as in the workshop; and once with the simulator wired
// straight to the port, no line at all, which leaves the program's own share of the time.
#include "EcuSimulata.h"
#include "base/Lingua.h"
#include "link/Frame.h"
#include "link/PortaSeriale.h"
#include "programming/DialogoMappe.h"
#include "programming/FileBlocchi.h"
#include "shell/Programma.h"
#include "support/PortaEcu.h"

#include <QCoreApplication>
#include <QDir>
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
constexpr int Prove = 15;

double msSulFilo(qint64 byte)
{
    return static_cast<double>(byte) * 10.0 * 1000.0 / Baud;
}

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Times the end of the line's part (the page enabled again) and the end of the handler.
struct VistaCronometro : VistaMappe
{
    QElapsedTimer orologio;
    QEventLoop *ciclo = nullptr;
    double linea = 0;
    Messaggio ultima;

    void mostraSegnalazione(const Messaggio &testo) override { ultima = testo; }
    void abilitaPagina(bool abilitata) override
    {
        if (!abilitata)
            return;
        linea = static_cast<double>(orologio.nsecsElapsed()) / 1e6;
        QTimer::singleShot(0, ciclo, &QEventLoop::quit);
    }
    void mostraAvanzamento(int, int) override {}
    void nascondiAvanzamento() override {}
    void beep() override {}
    int domanda(const Messaggio &, int, const Messaggio &) override { return RispostaSiMappe; }
    void chiudiPagina() override {}
};

struct Misure
{
    std::vector<double> linea;
    std::vector<double> tutto;
    int fallite = 0;
};

void stampa(const char *cosa, const Misure &m, double filo)
{
    std::printf("  %s: wire %.2f ms; to the last reply median %.2f ms (min %.2f, max %.2f), ratio %.3f; "
                "with the file and archive work median %.2f ms, ratio %.3f; failed %d of %d\n",
                cosa, filo, mediana(m.linea), *std::min_element(m.linea.begin(), m.linea.end()),
                *std::max_element(m.linea.begin(), m.linea.end()), mediana(m.linea) / filo, mediana(m.tutto),
                mediana(m.tutto) / filo, m.fallite, Prove);
}

enum class Collegamento {
    Cadenzata,
    CadenzataConFlusso,
    Nessuna
};

int misura(Collegamento linea)
{
    const bool flusso = linea == Collegamento::CadenzataConFlusso;
    OpzioniEcu opzioni;
    opzioni.baud = Baud;
    opzioni.cadenzaReale = linea != Collegamento::Nessuna;
    opzioni.frameAlSecondo = flusso ? 25 : 0;
    auto *ecu = new EcuSimulata(opzioni);
    QThread filo;
    std::unique_ptr<Porta> porta;
    if (linea == Collegamento::Nessuna) {
        ecu->setParent(&filo);
        porta = std::make_unique<PortaEcu>(*ecu);
    } else {
        if (!ecu->apriPty()) {
            std::fprintf(stderr, "cannot open a pseudo-terminal: %s\n", qPrintable(ecu->erroreLinea()));
            return 1;
        }
        ecu->moveToThread(&filo);
        QObject::connect(&filo, &QThread::finished, ecu, &QObject::deleteLater);
        filo.start();
        QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia, Qt::QueuedConnection);
        porta = std::make_unique<PortaSeriale>();
    }

    QTemporaryDir cartella;
    Lingua lingua(cartella.path());
    Programma p(cartella.path(), lingua, std::move(porta), std::make_unique<TemporizzatoreQt>(),
                std::make_unique<TemporizzatoreQt>());
    p.seriale.VelocitaCom = Baud;
    p.dispositivoForzato = ecu->percorsoDispositivo();
    if (!flusso)
        p.linea.ecuDiProva().EcuDaIdentificare = false;
    if (!p.ApriPorta()) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(p.dispositivoForzato));
        return 1;
    }
    QEventLoop ciclo;
    if (flusso) {
        QObject::connect(&p.linea.identificazione(), &Identificazione::identificata, &ciclo,
                         &QEventLoop::quit);
        QTimer::singleShot(10000, &ciclo, &QEventLoop::quit);
        ciclo.exec();
        if (p.linea.ecu().EcuDaIdentificare) {
            std::fprintf(stderr, "the simulated ECU was not identified\n");
            return 1;
        }
    }

    VistaCronometro vista;
    vista.ciclo = &ciclo;
    const ChiaveMappa chiave{"LPG", "Bench", "Model", "map"};
    const QString fine = p.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_15");
    Misure lette;
    Misure scritte;
    QTimer guardia;
    guardia.setSingleShot(true);
    QObject::connect(&guardia, &QTimer::timeout, &ciclo, &QEventLoop::quit);
    for (int i = 0; i < Prove; ++i) {
        {
            LetturaMappe lettura(p.linea, p.PercorsoApp, p.catalogo, vista);
            vista.orologio.start();
            guardia.start(10000);
            lettura.Leggi(chiave, QStringLiteral("bench"));
            ciclo.exec();
            lette.linea.push_back(vista.linea);
            lette.tutto.push_back(static_cast<double>(vista.orologio.nsecsElapsed()) / 1e6);
            if (!QFile::exists(lettura.NomeFileMappa()) || lettura.inCorso())
                ++lette.fallite;
        }
        {
            ScritturaMappe scrittura(p.linea, p.PercorsoApp, vista);
            vista.orologio.start();
            guardia.start(10000);
            scrittura.ProgrammaMappa(chiave, false);
            ciclo.exec();
            scritte.linea.push_back(vista.linea);
            scritte.tutto.push_back(static_cast<double>(vista.orologio.nsecsElapsed()) / 1e6);
            if (!scrittura.MappaScritta())
                ++scritte.fallite;
        }
    }
    p.linea.porta().chiudi();
    filo.quit();
    filo.wait();

    // 'R', address, count; 'r' and 64 bytes; 'W', address, count and 64 bytes; 'e' and status.
    const qint64 righe = FileMappa::Blocchi;
    // The read ends with ScalaLambda: 'R' for one byte, 'r' and the byte.
    const double filoLettura = msSulFilo(righe * ((4 + Frame::Sovraccarico) + (1 + 64 + Frame::Sovraccarico))
                                         + (4 + Frame::Sovraccarico) + (1 + 1 + Frame::Sovraccarico));
    const double filoScrittura =
        msSulFilo(righe * ((4 + 64 + Frame::Sovraccarico) + (2 + Frame::Sovraccarico)));
    const char *nomi[] = {"paced line, no live stream", "paced line, live stream at 25 frames/s",
                          "no line (simulator wired to the port): the program's own share"};
    std::printf("%s, %d runs each:\n", nomi[int(linea)], Prove);
    stampa("read (8 x 'R' 10 bytes, 'r' 71 bytes; 'R' 10, 'r' 8 for ScalaLambda)", lette, filoLettura);
    stampa("write (8 x 'W' 74 bytes, 'e' 8 bytes)", scritte, filoScrittura);
    return lette.fallite + scritte.fallite == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    std::printf("Map read and write at %d baud against the simulated ECU, bytes paced\n", Baud);
    int esito = 0;
    for (Collegamento linea :
         {Collegamento::Cadenzata, Collegamento::CadenzataConFlusso, Collegamento::Nessuna})
        esito |= misura(linea);
    return esito;
}
