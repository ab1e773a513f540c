// Any bytes as a recording opened in the viewer: read, shown whole and zoomed, the cursors
// moved, statistics and chart columns taken over the view, the stretch between the cursors
// exported. The axis must rise, the cursor stay on a sample in view, and the summaries the
// charts and statistics use must give the same range as the samples themselves.
#include "monitoring/Canali.h"
#include "monitoring/EsportaCsv.h"
#include "monitoring/ModelloVisore.h"
#include "monitoring/RegistrazioneAcq.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

using namespace kv;

namespace {

// The range of samples da..a - 1 of a channel, sample by sample.
void estremi(const RegistrazioneAcq &r, int canale, qsizetype da, qsizetype a, double &minimo,
             double &massimo)
{
    minimo = std::numeric_limits<double>::infinity();
    massimo = -minimo;
    for (qsizetype i = da; i < a; ++i) {
        minimo = std::min(minimo, r.valore(canale, i));
        massimo = std::max(massimo, r.valore(canale, i));
    }
}

void controllaVista(const ModelloVisore &v)
{
    const RegistrazioneAcq &r = v.registrazione();
    const auto [da, a] = v.visibili();
    // A recording shorter than the narrowest view is shown in a view that runs past its end.
    const double fineVista = std::max(v.fineAsse(), v.inizioAsse() + ModelloVisore::FinestraMinima);
    if (v.cursore() < 0 || v.cursore() >= r.campioni() || da < 0 || a > r.campioni() || da > a
        || (a > da && (v.cursore() < da || v.cursore() >= a)) || v.xMin() < v.inizioAsse()
        || v.xMax() > fineVista + 1e-9 * std::abs(fineVista) || v.xMin() >= v.xMax())
        std::abort();
    std::vector<RegistrazioneAcq::ColonnaPixel> colonne;
    for (const int canale : ModelloVisore::Canali) {
        const RegistrazioneAcq::Statistiche s = r.statistiche(canale, da, a);
        double minimo = 0, massimo = 0;
        estremi(r, canale, da, a, minimo, massimo);
        if (s.campioni != a - da || (a > da && (s.minimo != minimo || s.massimo != massimo)))
            std::abort();
        // Each column of pixels holds the samples that stand in its stretch of the axis.
        constexpr int Colonne = 37;
        r.decima(canale, v.xMin(), v.xMax(), Colonne, colonne);
        const double larghezza = (v.xMax() - v.xMin()) / Colonne;
        qsizetype j = r.indiceDa(v.xMin());
        for (int k = 0; k < Colonne; ++k) {
            const RegistrazioneAcq::ColonnaPixel &p = colonne[size_t(k)];
            const qsizetype fine = r.indiceDa(k + 1 == Colonne ? v.xMax() : v.xMin() + larghezza * (k + 1));
            if (p.vuota != (fine == j))
                std::abort();
            if (fine == j)
                continue;
            estremi(r, canale, j, fine, minimo, massimo);
            if (p.minimo != float(minimo) || p.massimo != float(massimo)
                || p.primo != float(r.valore(canale, j)) || p.ultimo != float(r.valore(canale, fine - 1))
                || p.unita != r.segue(j))
                std::abort();
            j = fine;
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    static const TabellaCanali canali = [] {
        TabellaCanali t;
        t.InizializzaCanali([](const QString &, const QString &) { return QString(); });
        return t;
    }();
    QByteArray byte(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));
    QBuffer file(&byte);
    file.open(QIODevice::ReadOnly);
    RegistrazioneAcq r;
    if (r.leggi(file, file.size()) != RegistrazioneAcq::Esito::Letta) {
        if (!r.vuota())
            std::abort();
        return 0;
    }
    for (qsizetype i = 1; i < r.campioni(); ++i)
        if (r.posizione(i) <= r.posizione(i - 1))
            std::abort();
    if (r.vuota())
        return 0;

    ModelloVisore v;
    v.imposta(std::move(r), QStringLiteral("fuzz.acq"));
    controllaVista(v);
    v.zoomSulCursore(4);
    v.muovi(v.registrazione().campioni() / 3 + 1);
    v.segnaSecondo();
    v.pagina(1);
    controllaVista(v);
    v.zoom(0.5, (v.xMin() + v.xMax()) / 2);
    v.ultimo();
    controllaVista(v);

    const auto [da, a] = v.tratto();
    QBuffer csv;
    csv.open(QIODevice::WriteOnly);
    if (!ScriviCsv(v.registrazione(), canali, da, a, csv) || csv.data().count('\n') != a - da + 1)
        std::abort();
    return 0;
}
