// korvantine-cli's flash and write-map --verify against the simulated ECU on a pseudo-terminal,
// every byte paced at the line speed and the live stream running as in the workshop. Each run
// is a whole command in a process of its own; the ECU's side of the line times the job, from
// the first byte of its first request ('I' or 'W') to the last byte of its last reply, against
// the time its requests and replies need on the wire (ten bits a byte). The live frames that
// shared the ECU's side meanwhile are told apart, and so is the command's whole time (start,
// port, identification, job, exit).
//
// Usage: bench_cli [runs] [baud]   (default 5 and 38400)

#include "FileS19.h"
#include "LatoEcu.h"

#include "programming/FileBlocchi.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace kv;
using namespace kv::sim;

namespace {

// What the ECU's side of the line saw of one command, kept in the ECU's thread.
struct Osservazione
{
    QMutex mutex;
    double inizio = -1; // first byte of the job's first request, ms
    double fine = -1;   // last byte of the job's last reply, ms
    qint64 byteRichieste = 0;
    qint64 byteRisposte = 0;
    qint64 byteFlusso = 0; // live and boot loader frames sent while the job ran
    int richieste = 0;
    int risposte = 0;
    bool chiuso = false; // 'F' answered: what follows is no longer the flash
    bool fAscoltato = false;
};

struct Esito
{
    bool riuscito = false;
    double lavoro = 0; // s
    double filo = 0;   // s
    double flusso = 0; // s
    double comando = 0;
    int richieste = 0;
    int risposte = 0;
};

class Banco
{
public:
    explicit Banco(int baud) : m_baud(baud), m_lato(baud) {}

    bool avvia()
    {
        osserva();
        return m_lato.avviaSuPty();
    }

    Esito esegui(const QStringList &argomenti, const QString &casa)
    {
        {
            QMutexLocker blocco(&m_oss.mutex);
            m_oss.inizio = m_oss.fine = -1;
            m_oss.byteRichieste = m_oss.byteRisposte = m_oss.byteFlusso = 0;
            m_oss.richieste = m_oss.risposte = 0;
            m_oss.chiuso = m_oss.fAscoltato = false;
        }
        QProcess p;
        QElapsedTimer t;
        t.start();
        p.start(QStringLiteral(KV_CLI), QStringList(argomenti)
                                            << "--port" << m_lato.ecu->percorsoDispositivo() << "--baud"
                                            << QString::number(m_baud) << "--home" << casa << "--quiet");
        const bool finito = p.waitForFinished(180000);
        Esito e;
        e.comando = static_cast<double>(t.nsecsElapsed()) / 1e9;
        e.riuscito = finito && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
        if (!e.riuscito)
            std::fprintf(stderr, "%s: status %d: %s\n", qPrintable(argomenti.join(' ')), p.exitCode(),
                         p.readAllStandardError().constData());
        // The last byte of the reply reaches the command just after the ECU has sent it.
        QThread::msleep(5);
        QMutexLocker blocco(&m_oss.mutex);
        e.lavoro = (m_oss.fine - m_oss.inizio) / 1000.0;
        e.filo = m_lato.secondiSulFilo(m_oss.byteRichieste + m_oss.byteRisposte);
        e.flusso = m_lato.secondiSulFilo(m_oss.byteFlusso);
        e.richieste = m_oss.richieste;
        e.risposte = m_oss.risposte;
        m_oss.inizio = -2; // nothing more counts until the next command
        return e;
    }

private:
    void osserva()
    {
        m_lato.osserva(
            [this](const QByteArray &f) {
                QMutexLocker blocco(&m_oss.mutex);
                if (f.size() < 5 || m_oss.inizio == -2 || m_oss.chiuso)
                    return;
                const char l = f.at(4);
                if (m_oss.inizio < 0 && (l == 'I' || l == 'W'))
                    m_oss.inizio = m_lato.primoByteMs(f);
                if (m_oss.inizio < 0)
                    return;
                m_oss.byteRichieste += f.size();
                ++m_oss.richieste;
                m_oss.fAscoltato = m_oss.fAscoltato || l == 'F';
            },
            [this](int l, char lettera) {
                QMutexLocker blocco(&m_oss.mutex);
                if (m_oss.inizio < 0 || m_oss.chiuso)
                    return;
                if (lettera == 'e' || lettera == 'r') {
                    m_oss.byteRisposte += l;
                    ++m_oss.risposte;
                    m_oss.fine = m_lato.adessoMs();
                    m_oss.chiuso = m_oss.fAscoltato;
                } else {
                    m_oss.byteFlusso += l;
                }
            });
    }

    int m_baud;
    Osservazione m_oss;
    // After what its hooks touch, so that the ECU's thread ends before that goes.
    LatoEcu m_lato;
};

bool scrivi(const QString &percorso, const QByteArray &dati)
{
    QFile f(percorso);
    return f.open(QIODevice::WriteOnly) && f.write(dati) == dati.size();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int corse = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const int baud = argc > 2 ? std::atoi(argv[2]) : 38400;

    QTemporaryDir cartella;
    const QString casa = cartella.filePath(QStringLiteral("home"));
    QByteArray mappa;
    for (int n = 0; n < 8; ++n) {
        QByteArray blocco(64, '\0');
        for (int i = 0; i < blocco.size(); ++i)
            blocco[i] = char(n * 64 + i * 5);
        mappa += RecordBlocco(blocco);
    }
    const QString s19 = cartella.filePath(QStringLiteral("R2.S19"));
    const QString lkv = cartella.filePath(QStringLiteral("BASE.LKV"));
    if (!cartella.isValid() || !QDir().mkpath(casa) || !scrivi(s19, RilascioDemo()) || !scrivi(lkv, mappa))
        return 1;

    Banco banco(baud);
    if (!banco.avvia())
        return 1;
    std::printf("korvantine-cli at %d baud against the simulated ECU on a pseudo-terminal, bytes paced, "
                "live stream at 25 frames/s; %d runs each\n",
                baud, corse);
    const QList<QStringList> comandi{{"flash", s19, "--yes"}, {"write-map", lkv, "--verify"}};
    for (const QStringList &comando : comandi) {
        std::vector<double> rapporti, lavori, comandiS, conFlusso;
        Esito e;
        for (int i = 0; i < corse; ++i) {
            e = banco.esegui(comando, casa);
            if (!e.riuscito || e.filo <= 0)
                return 1;
            rapporti.push_back(e.lavoro / e.filo);
            conFlusso.push_back(e.lavoro / (e.filo + e.flusso));
            lavori.push_back(e.lavoro);
            comandiS.push_back(e.comando);
            std::printf(
                "  %s run %d: job %.3f s, wire %.3f s, ratio %.4f; live frames meanwhile %.3f s on the "
                "wire; the whole command %.3f s\n",
                qPrintable(comando.first()), i + 1, e.lavoro, e.filo, e.lavoro / e.filo, e.flusso, e.comando);
            std::fflush(stdout);
        }
        std::printf(
            "%s: %d requests and %d replies, %.3f s on the wire; job median %.3f s, ratio median "
            "%.4f (min %.4f, max %.4f); counting the live frames on the wire too, ratio median "
            "%.4f; the whole command median %.3f s\n",
            qPrintable(comando.join(' ').replace(cartella.path() + '/', QString())), e.richieste, e.risposte,
            e.filo, mediana(lavori), mediana(rapporti), *std::min_element(rapporti.begin(), rapporti.end()),
            *std::max_element(rapporti.begin(), rapporti.end()), mediana(conFlusso), mediana(comandiS));
        std::fflush(stdout);
    }
    return 0;
}
