// A whole software flash through the program's real port code and ProgSW's dialogue, against
// the simulated ECU in a thread of its own with every byte paced as on a real line, at 38400
// and 9600 baud. Prints, over several runs, the time from the first byte of 'I' to the last
// byte of the reply to 'F' against the time the 222 frames and their replies need on the wire
// (ten bits a byte), and the turnaround between a reply and the next block. Then the same with
// the ECU wired straight to the program's port: what is left is the program's own share.
//
// Usage: bench_flash [runs at 38400] [runs at 9600]   (default 5 and 3)

#include "FileS19.h"
#include "LatoEcu.h"
#include "MappaMemoria.h"
#include "base/Lingua.h"

#include "link/PortaSeriale.h"
#include "programming/DialogoProgSW.h"
#include "shell/Programma.h"
#include "support/PortaEcu.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QMutex>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace kv;
using namespace kv::sim;

namespace {

// The page as far as the flash needs one: it notes the last message and ends the loop when
// the page is given back.
class Vista : public VistaProgSW
{
public:
    explicit Vista(QEventLoop &ciclo) : m_ciclo(ciclo) {}
    void mostraSegnalazione(const Messaggio &testo) override { ultima = testo; }
    void abilitaPagina(bool abilitata) override
    {
        if (abilitata)
            m_ciclo.quit();
    }
    void mostraBarra(bool) override {}
    void impostaBarra(int) override {}
    void mostraMsg(const Messaggio &testo, int, const Messaggio &) override { ultima = testo; }
    bool chiedi(const Messaggio &, const Messaggio &) override { return true; }
    Messaggio ultima;

private:
    QEventLoop &m_ciclo;
};

double media(const std::vector<double> &v)
{
    double s = 0;
    for (double x : v)
        s += x;
    return v.empty() ? 0 : s / static_cast<double>(v.size());
}

double percentile(std::vector<double> v, double p)
{
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[std::min(v.size() - 1, static_cast<size_t>(p * static_cast<double>(v.size() - 1) + 0.5))];
}

// What the ECU's side of the line saw of one flash, in its own thread.
struct Osservazione
{
    QMutex mutex;
    bool attivo = false;
    bool fAscoltato = false;
    double inizio = -1; // first byte of 'I' on the line, ms
    double fine = -1;   // last byte of the reply to 'F' off the line, ms
    double fineRisposta = -1;
    qint64 byteRichieste = 0;
    qint64 byteRisposte = 0;
    qint64 byteFlusso = 0;       // live frames that shared the ECU's side meanwhile
    std::vector<double> giri;    // last byte of a reply to first byte of the next request, ms
    double uditaMs = -1;         // the last request heard whole
    std::vector<double> ritardi; // request heard to last byte of its reply, less the reply's wire time
};

struct Esito
{
    bool riuscito = false;
    double secondi = 0;
    double filo = 0;
    double giroMediano = 0;
    double giroP99 = 0;
    double giroMedio = 0;
    double ritardoMedio = 0;
    double programmaMediano = 0; // the program's own time, last byte of a reply in to the next request out
    double programmaMedio = 0;
    double programmaTotale = 0; // s
    double flusso = 0;
};

// The program's serial port with a stopwatch on it: how long the program itself takes from
// the bytes that complete a reply to the write of the next request.
class PortaCronometrata : public Porta
{
public:
    PortaCronometrata(std::unique_ptr<Porta> porta, const QElapsedTimer &orologio)
        : m_porta(std::move(porta))
        , m_orologio(orologio)
    {
        connect(m_porta.get(), &Porta::arrivati, this, [this](const QByteArray &b) {
            m_arrivo = ms();
            emit arrivati(b);
        });
        connect(m_porta.get(), &Porta::persa, this, &Porta::persa);
    }
    bool apri(const ImpostazioniPorta &i) override { return m_porta->apri(i); }
    void chiudi() override { m_porta->chiudi(); }
    bool PortOpen() const override { return m_porta->PortOpen(); }
    bool scrivi(const QByteArray &bytes) override
    {
        const bool ok = m_porta->scrivi(bytes);
        if (misura && m_arrivo >= 0)
            tempi.push_back(ms() - m_arrivo);
        return ok;
    }
    QString descrizioneErrore() const override { return m_porta->descrizioneErrore(); }

    bool misura = false;
    std::vector<double> tempi;

private:
    double ms() const { return static_cast<double>(m_orologio.nsecsElapsed()) / 1e6; }
    std::unique_ptr<Porta> m_porta;
    const QElapsedTimer &m_orologio;
    double m_arrivo = -1;
};

class Banco
{
public:
    // diretto: the ECU in the program's own thread, wired straight to its port, without the
    // pseudo-terminal and the kernel's work between the two ends of it.
    Banco(int baud, const QString &home, bool diretto)
        : m_baud(baud)
        , m_home(home)
        , m_diretto(diretto)
        , m_lato(baud)
    {}

    ~Banco()
    {
        if (m_programma)
            m_programma->linea.porta().chiudi();
    }

    bool avvia()
    {
        osserva();
        if (m_diretto) {
            m_lato.ecu->avvia();
            return apriProgramma(std::make_unique<PortaEcu>(*m_lato.ecu));
        }
        if (!m_lato.avviaSuPty())
            return false;
        return apriProgramma(std::make_unique<PortaSeriale>());
    }

    bool apriProgramma(std::unique_ptr<Porta> interna)
    {
        auto porta = std::make_unique<PortaCronometrata>(std::move(interna), m_lato.orologio());
        m_porta = porta.get();
        m_lingua = Lingua(m_home);
        m_programma = (std::make_unique<Programma>(m_home, m_lingua, std::move(porta),
                                                   std::make_unique<TemporizzatoreQt>(),
                                                   std::make_unique<TemporizzatoreQt>()));
        m_programma->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        m_programma->seriale.VelocitaCom = m_baud;
        m_programma->dispositivoForzato = m_lato.ecu->percorsoDispositivo();
        if (!m_programma->ApriPorta()) {
            std::fprintf(stderr, "cannot open %s\n", qPrintable(m_programma->dispositivoForzato));
            return false;
        }
        return true;
    }

    // Identified and the link free, as when the fitter opens the page.
    bool pronto()
    {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 15000) {
            if (!m_programma->linea.ecu().EcuDaIdentificare
                && m_programma->linea.motore().StatoDialogo() == -1)
                return true;
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            QThread::msleep(1);
        }
        return false;
    }

    Esito flash()
    {
        Esito e;
        if (!pronto()) {
            std::fprintf(stderr, "the simulated ECU was not identified\n");
            return e;
        }
        {
            QMutexLocker blocco(&m_oss.mutex);
            m_oss.attivo = true;
            m_oss.fAscoltato = false;
            m_oss.inizio = m_oss.fine = m_oss.fineRisposta = -1;
            m_oss.byteRichieste = m_oss.byteRisposte = m_oss.byteFlusso = 0;
            m_oss.giri.clear();
            m_oss.ritardi.clear();
            m_oss.uditaMs = -1;
        }
        QEventLoop ciclo;
        Vista vista(ciclo);
        DialogoProgSW dialogo(m_programma->linea, m_programma->PercorsoApp, vista);
        dialogo.scegli(QStringLiteral("BENCH"));
        QTimer::singleShot(120000, &ciclo, &QEventLoop::quit);
        m_porta->tempi.clear();
        m_porta->misura = true;
        dialogo.avviaProgrammazione();
        ciclo.exec();
        m_porta->misura = false;
        // The first write is the 'I', which answers no reply.
        if (!m_porta->tempi.empty())
            m_porta->tempi.erase(m_porta->tempi.begin());
        e.programmaMediano = mediana(m_porta->tempi);
        e.programmaMedio = media(m_porta->tempi);
        e.programmaTotale = e.programmaMedio * static_cast<double>(m_porta->tempi.size()) / 1000.0;
        e.riuscito = vista.ultima == Segnalazione(QStringLiteral("SEGNALAZIONE_12"));
        // The last byte of the reply reaches the program just after the ECU has sent it.
        QThread::msleep(5);
        QMutexLocker blocco(&m_oss.mutex);
        m_oss.attivo = false;
        e.secondi = (m_oss.fine - m_oss.inizio) / 1000.0;
        e.filo = m_lato.secondiSulFilo(m_oss.byteRichieste + m_oss.byteRisposte);
        e.flusso = m_lato.secondiSulFilo(m_oss.byteFlusso);
        e.giroMediano = mediana(m_oss.giri);
        e.giroP99 = percentile(m_oss.giri, 0.99);
        e.giroMedio = media(m_oss.giri);
        e.ritardoMedio = media(m_oss.ritardi);
        if (!e.riuscito)
            std::fprintf(stderr, "the flash did not go through: %s\n",
                         qPrintable(m_programma->lingua.testo(vista.ultima)));
        return e;
    }

private:
    void osserva()
    {
        m_lato.osserva(
            [this](const QByteArray &f) {
                QMutexLocker blocco(&m_oss.mutex);
                if (!m_oss.attivo || f.size() < 5)
                    return;
                const double primoByte = m_lato.primoByteMs(f);
                const char l = f.at(4);
                if (l == 'I' && m_oss.inizio < 0)
                    m_oss.inizio = primoByte;
                if (m_oss.inizio < 0)
                    return;
                m_oss.byteRichieste += f.size();
                if (m_oss.fineRisposta >= 0 && (l == 'W' || l == 'F'))
                    m_oss.giri.push_back(primoByte - m_oss.fineRisposta);
                if (l == 'F')
                    m_oss.fAscoltato = true;
                m_oss.uditaMs = m_lato.adessoMs();
            },
            [this](int l, char lettera) {
                QMutexLocker blocco(&m_oss.mutex);
                if (!m_oss.attivo || m_oss.inizio < 0 || m_oss.fine >= 0)
                    return;
                if (lettera == 'e') {
                    m_oss.byteRisposte += l;
                    m_oss.fineRisposta = m_lato.adessoMs();
                    if (m_oss.uditaMs >= 0)
                        m_oss.ritardi.push_back(m_oss.fineRisposta - m_oss.uditaMs
                                                - m_lato.secondiSulFilo(l) * 1000.0);
                    if (m_oss.fAscoltato)
                        m_oss.fine = m_oss.fineRisposta;
                } else if (lettera == 'd') {
                    m_oss.byteFlusso += l;
                }
            });
    }

    int m_baud;
    QString m_home;
    bool m_diretto;
    Osservazione m_oss;
    // After what its hooks touch, so that the ECU's thread ends before that goes; before the
    // program, whose port has the ECU and the clock.
    LatoEcu m_lato;
    Lingua m_lingua; // lent to the program below, so it outlives it
    std::unique_ptr<Programma> m_programma;
    PortaCronometrata *m_porta = nullptr;
};

bool misura(int baud, int corse, const QString &home, bool diretto)
{
    Banco banco(baud, home, diretto);
    if (!banco.avvia())
        return false;
    std::vector<double> rapporti, secondi, giri, giri99, propri;
    double filo = 0;
    for (int i = 0; i < corse; ++i) {
        const Esito e = banco.flash();
        if (!e.riuscito)
            return false;
        rapporti.push_back(e.secondi / e.filo);
        propri.push_back((e.filo + e.programmaTotale) / e.filo);
        secondi.push_back(e.secondi);
        giri.push_back(e.giroMediano);
        giri99.push_back(e.giroP99);
        filo = e.filo;
        std::printf(
            "  run %d: %.3f s, ratio %.4f; turnaround median %.3f ms, mean %.3f ms, p99 %.3f ms; the "
            "simulator's own delay per reply, mean %.3f ms; the program's own time per reply, median %.3f "
            "ms, "
            "mean %.3f ms%s\n",
            i + 1, e.secondi, e.secondi / e.filo, e.giroMediano, e.giroMedio, e.giroP99, e.ritardoMedio,
            e.programmaMediano, e.programmaMedio,
            e.flusso > 0 ? qPrintable(
                QStringLiteral(", live frames before the 'I' reply %1 ms").arg(e.flusso * 1000.0, 0, 'f', 2))
                         : "");
        std::fflush(stdout);
    }
    std::printf("%d baud: 222 frames and replies need %.3f s on the wire; flash median %.3f s "
                "(min %.3f, max %.3f); ratio median %.4f (min %.4f, max %.4f); turnaround median "
                "%.3f ms; the wire plus the program's own time alone, ratio %.4f\n",
                baud, filo, mediana(secondi), *std::min_element(secondi.begin(), secondi.end()),
                *std::max_element(secondi.begin(), secondi.end()), mediana(rapporti),
                *std::min_element(rapporti.begin(), rapporti.end()),
                *std::max_element(rapporti.begin(), rapporti.end()), mediana(giri), mediana(propri));
    std::fflush(stdout);
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int corse38400 = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const int corse9600 = argc > 2 ? std::max(1, std::atoi(argv[2])) : 3;

    // A home of its own with the English texts and one release, made from the simulator's software.
    QTemporaryDir home;
    if (!home.isValid() || !QDir(home.path()).mkpath(QStringLiteral("SOFTWARE/FILES19"))
        || !QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"),
                        home.filePath(QStringLiteral("ENGLISH.LNG"))))
        return 1;
    StringheVersione versione;
    versione.veicolo = "KV-BENCH  ";
    QFile s19(home.filePath(QStringLiteral("SOFTWARE/FILES19/BENCH.S19")));
    const QByteArray testo = TestoS19(ImmagineSoftware(versione), quint16(MappaMemoria::InizioSoftware));
    if (!s19.open(QIODevice::WriteOnly) || s19.write(testo) != testo.size())
        return 1;
    s19.close();

    for (const bool diretto : {false, true}) {
        std::printf("full flash, 'I' + 220 blocks + 'F', bytes paced at the line speed, %s\n",
                    diretto ? "the ECU wired straight to the program's port"
                            : "over a pseudo-terminal through the program's serial port code");
        for (const auto &[baud, corse] : {std::pair{38400, corse38400}, std::pair{9600, corse9600}}) {
            if (!misura(baud, corse, home.path(), diretto))
                return 1;
        }
    }
    return 0;
}
