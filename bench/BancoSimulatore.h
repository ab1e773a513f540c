#pragma once

// The simulated ECU of the demo at 38400 baud with every byte paced as on a real line, a
// program on its pseudo-terminal with the real port and timers, and the ECU identified: what
// the page benchmarks measure against. The live stream runs all the while.

#include "Demo.h"
#include "EcuSimulata.h"
#include "base/Lingua.h"

#include "link/PortaSeriale.h"
#include "shell/Programma.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace kv {

class BancoSimulatore
{
public:
    static constexpr int Baud = 38400;
    // Bytes a frame adds to its data: start, length, checksum and the rest.
    static constexpr int InvolucroFrame = 6;

    bool avvia(QString &errore)
    {
        sim::OpzioniEcu opzioni;
        opzioni.baud = Baud;
        opzioni.cadenzaReale = true;
        const bool demo = m_demo.avvia(errore, opzioni, [this](sim::EcuSimulata &ecu) {
            // In the ECU's thread: counted as the bytes leave.
            QObject::connect(
                &ecu, &sim::EcuSimulata::frameInviato, &ecu,
                [this](const QByteArray &f) {
                    if (f.size() > 4 && f.at(4) == 'd')
                        m_byteFlusso += f.size();
                },
                Qt::DirectConnection);
        });
        if (!demo)
            return false;
        lingua = Lingua(m_cartella.path());
        programma = std::make_unique<Programma>(m_cartella.path(), lingua, std::make_unique<PortaSeriale>(),
                                                std::make_unique<TemporizzatoreQt>(),
                                                std::make_unique<TemporizzatoreQt>());
        programma->seriale.VelocitaCom = Baud;
        programma->dispositivoForzato = m_demo.percorso();
        if (!programma->ApriPorta()) {
            errore = QStringLiteral("cannot open ") + m_demo.percorso();
            return false;
        }
        QEventLoop ciclo;
        QObject::connect(&programma->linea.identificazione(), &Identificazione::identificata, &ciclo,
                         &QEventLoop::quit);
        QTimer::singleShot(10000, &ciclo, &QEventLoop::quit);
        ciclo.exec();
        if (programma->linea.ecu().EcuDaIdentificare) {
            errore = QStringLiteral("the simulated ECU was not identified");
            return false;
        }
        return true;
    }

    // Milliseconds from f() to the end of the dialogue it starts, with the stream's line
    // time in those milliseconds in flusso.
    template <typename F>
    double cronometra(F &&f, double &flusso)
    {
        QEventLoop ciclo;
        const auto fine = QObject::connect(&programma->linea.motore(), &MotoreDialogo::cursoreAttesa, &ciclo,
                                           [&ciclo](bool attesa) {
                                               if (!attesa)
                                                   ciclo.quit();
                                           });
        const qint64 prima = m_byteFlusso;
        QElapsedTimer t;
        t.start();
        f();
        if (programma->linea.motore().StatoDialogo() != -1)
            ciclo.exec();
        const double ms = static_cast<double>(t.nsecsElapsed()) / 1e6;
        QObject::disconnect(fine);
        flusso = millisecondiSulFilo(m_byteFlusso - prima);
        return ms;
    }

    static double millisecondiSulFilo(qint64 byte)
    {
        return static_cast<double>(byte) * 10.0 * 1000.0 / Baud;
    }

    static double mediana(std::vector<double> v)
    {
        std::sort(v.begin(), v.end());
        return v.empty() ? 0 : v[v.size() / 2];
    }

    ~BancoSimulatore()
    {
        if (programma)
            programma->linea.porta().chiudi();
    }

    Lingua lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> programma;

private:
    Demo m_demo;
    QTemporaryDir m_cartella;
    std::atomic<qint64> m_byteFlusso{0};
};

} // namespace kv
