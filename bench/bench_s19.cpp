// ConvertiS19 of a full-size release (every byte of 0xC000..0xF6FF in lines of 32) into the
// blank FILESW.TXT, files and all; and the overlay alone, in memory. Medians of many runs,
// and the time per kilobyte of S19 text.
#include "link/StatoEcu.h"
#include "programming/ImmagineS19.h"
#include "support/S19DiProva.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace kv;

namespace {

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void stampa(const char *nome, const std::vector<double> &us, qsizetype byte)
{
    const double m = mediana(us);
    std::printf("%-36s median %8.1f us  %7.2f us/KB  (min %.1f, max %.1f, %zu runs)\n", nome, m,
                m / (double(byte) / 1024.0), *std::min_element(us.begin(), us.end()),
                *std::max_element(us.begin(), us.end()), us.size());
}

} // namespace

int main()
{
    QTemporaryDir dir;
    const QByteArray testo = S19Completo(ImmagineDiProva());
    const QString fileS19 = dir.filePath(QStringLiteral("KV2.S19"));
    const QString fileSW = dir.filePath(QStringLiteral("FILESW.TXT"));
    QFile f(fileS19);
    if (!f.open(QIODevice::WriteOnly) || f.write(testo) != testo.size())
        return 1;
    f.close();
    StatoEcu stato;
    stato.InfCodice = QStringLiteral("KV2SIM0001");
    std::printf("S19 file: %lld bytes, %lld lines\n", static_cast<long long>(testo.size()),
                static_cast<long long>(testo.count('\n')));

    constexpr int Giri = 300;
    std::vector<double> file, memoria;
    QElapsedTimer t;
    for (int i = 0; i < Giri; ++i) {
        if (!PreparaFileSW(fileSW))
            return 1;
        t.start();
        if (!ConvertiS19(fileS19, fileSW, stato))
            return 1;
        file.push_back(double(t.nsecsElapsed()) / 1e3);

        QByteArray immagine = FileSWVuoto();
        const TestiIdentificazione testi = TestiIdentificazioneDi(stato);
        t.start();
        SovrapponiS19(testo, immagine, testi);
        memoria.push_back(double(t.nsecsElapsed()) / 1e3);
    }
    stampa("ConvertiS19 (read, overlay, write)", file, testo.size());
    stampa("overlay in memory", memoria, testo.size());
    return 0;
}
