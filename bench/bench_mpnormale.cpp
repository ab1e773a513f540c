// How long the normal page takes to open (17 reads, the lambda map among them), to try its
// values in RAM (99 writes) and to store them on leaving (99 to RAM and 99 to EEPROM) against
// the simulated ECU at 38400 baud with every byte paced as on a real line, against the time
// their frames need on the wire.
#include "BancoSimulatore.h"

#include "pages/DialogoPagina.h"
#include "pages/ui/MP_Normale.h"
#include "variables/Catalogo.h"

#include <QApplication>

#include <cstdio>

using namespace kv;

namespace {

constexpr int Giri = 10;

struct Misura
{
    explicit Misura(const char *n) : nome(n) {}
    const char *nome;
    int frame = 0;
    qint64 byte = 0;
    std::vector<double> tempi;
    std::vector<double> flussi;
};

void stampa(const Misura &m)
{
    const double filo = BancoSimulatore::millisecondiSulFilo(m.byte);
    const double mediana = BancoSimulatore::mediana(m.tempi);
    std::printf("%-22s %4d frames %6lld bytes  wire %8.1f ms  median %8.1f ms  min %8.1f  max %8.1f  "
                "ratio %.2f  stream meanwhile %6.1f ms\n",
                m.nome, m.frame, static_cast<long long>(m.byte), filo, mediana,
                *std::min_element(m.tempi.begin(), m.tempi.end()),
                *std::max_element(m.tempi.begin(), m.tempi.end()), mediana / filo,
                BancoSimulatore::mediana(m.flussi));
}

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
    const DescrizionePagina &d = *DescrizioneDi(IdPagina::MP_Normale);
    constexpr int Involucro = BancoSimulatore::InvolucroFrame;

    // Requests of 'R', address and count, replies of 'r' and the bytes asked for; writes of
    // 'W', address, count and the value, acknowledged by 'e' and 0xFF.
    Misura apertura("open (read)");
    for (const RigaLettura &riga : d.piano) {
        ++apertura.frame;
        apertura.byte += 4 + Involucro + 1 + ConteggioRiga(p.catalogo, riga) + Involucro;
    }
    Misura applica("Applica (RAM)");
    Misura memorizza("Esci, Yes (RAM+EEPROM)");
    for (int v : d.voci) {
        const Parametro &par = p.catalogo.Parametri[static_cast<size_t>(v)];
        const qint64 scrittura = 4 + par.Dimensione + Involucro + 2 + Involucro;
        for (Misura *m : {&applica, &memorizza}) {
            ++m->frame;
            m->byte += scrittura;
        }
        ++memorizza.frame;
        memorizza.byte += scrittura;
    }

    int fallite = 0;
    for (int i = 0; i < Giri; ++i) {
        MP_Normale pagina(ContestoDi(p));
        pagina.impostaDomanda(
            [](const QString &, int, const QString &) { return DialogoPagina::RispostaSi; });
        bool chiusa = false;
        QObject::connect(&pagina, &TelaioMessaPunto::chiusa, [&chiusa] { chiusa = true; });
        double flusso = 0;
        apertura.tempi.push_back(banco.cronometra([&pagina] { pagina.carica(); }, flusso));
        apertura.flussi.push_back(flusso);
        applica.tempi.push_back(banco.cronometra([&pagina] { pagina.Applica(); }, flusso));
        applica.flussi.push_back(flusso);
        // Something to keep, so that leaving asks and stores.
        p.catalogo.Valori[Par::TipoNOR].Letto += 1;
        memorizza.tempi.push_back(banco.cronometra([&pagina] { pagina.Esci(); }, flusso));
        memorizza.flussi.push_back(flusso);
        if (!chiusa)
            ++fallite;
    }

    std::printf("MP_Normale at %d baud, bytes paced, live stream running, %d rounds\n", BancoSimulatore::Baud,
                Giri);
    for (const Misura *m : {&apertura, &applica, &memorizza})
        stampa(*m);
    std::printf("rounds that failed: %d\n", fallite);
    return fallite == 0 ? 0 : 1;
}
