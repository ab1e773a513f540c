// Any bytes as a map file: the check either refuses them, naming a record and a character
// that are really wrong, or hands on 512 bytes that write back to the same file; the decoder
// and the compare page then take the image (or, for bytes the check refuses, the first 512 as
// an ECU's read would give them) under both lambda scales, and every entry must come out.
#include "calibration/TaraturaParametri.h"
#include "pages/ConfrontoMappe.h"
#include "pages/DecodificaMappa.h"
#include "programming/ControlloMappa.h"
#include "programming/FileBlocchi.h"
#include "programming/FileMappa.h"
#include "variables/Catalogo.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace kv;

namespace {

bool esadecimale(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

void controllaRifiuto(const QByteArray &file, const EsitoMappa &e)
{
    using E = EsitoMappa::Errore;
    if (!e.immagine.isEmpty())
        std::abort();
    const qsizetype inizio = qsizetype(e.record - 1) * LunghezzaRecord;
    switch (e.errore) {
    case E::NonEsadecimale:
        if (e.record < 1 || e.record > FileMappa::Blocchi || e.colonna < 1 || e.colonna > LunghezzaRecord - 2
            || esadecimale(file.at(inizio + e.colonna - 1)))
            std::abort();
        break;
    case E::Corto:
        if (e.record < 1 || e.record > FileMappa::Blocchi || file.size() >= FileMappa::DimensioneFile)
            std::abort();
        break;
    case E::FineRiga:
        if (e.record < 1 || e.record > FileMappa::Blocchi
            || file.mid(inizio + LunghezzaRecord - 2, 2) == "\r\n")
            std::abort();
        break;
    case E::Lungo:
        if (file.size() <= FileMappa::DimensioneFile)
            std::abort();
        break;
    case E::Nessuno:
    case E::Illeggibile:
        std::abort();
    }
}

void decodifica(const QByteArray &immagine, const Catalogo &catalogo,
                const std::vector<const DescrizionePagina *> &altre)
{
    static const QByteArray bianca(AreaMappa::Dimensione, '\xFF');
    static const MappaDecodificata decodificataBianca = DecodificaMappa(bianca, catalogo, {}, altre);
    static const std::vector<int> tutti = [] {
        std::vector<int> p;
        for (const VoceMappa &v : decodificataBianca.voci)
            p.push_back(v.parametro());
        return p;
    }();
    for (const double s : {0.0, 255.0}) {
        const ScalaLambdaMappa scala = ScalaDa(s, OrigineScala::Ecu);
        const MappaDecodificata m = DecodificaMappa(immagine, catalogo, scala, altre);
        if (!m.ok || m.voci.size() != tutti.size())
            std::abort();
        for (const int p : tutti)
            if (!m.voce(p))
                std::abort();
        // Every value copied into the blank map: it then shows what this one shows.
        const QByteArray copia = CopiaValori(bianca, scala, immagine, scala, tutti, catalogo);
        const Confronto c = ConfrontaMappe(DecodificaMappa(copia, catalogo, scala, altre), m);
        if (c.righe.size() != tutti.size() || c.diverse != 0)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    static const Catalogo catalogo;
    static const std::vector<const DescrizionePagina *> altre{&DescrizioneParametri()};
    const QByteArray file(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));

    const EsitoMappa e = ControllaMappa(file);
    if (!e.ok()) {
        controllaRifiuto(file, e);
        if (file.size() >= AreaMappa::Dimensione)
            decodifica(file.first(AreaMappa::Dimensione), catalogo, altre);
        return 0;
    }
    // Accepted: the image is the file's digits, and writes back as the file (digits in upper case).
    if (e.immagine.size() != FileMappa::Dimensione)
        std::abort();
    QByteArray riscritto;
    for (int n = 0; n < FileMappa::Blocchi; ++n)
        riscritto += RecordBlocco(QByteArrayView(e.immagine).sliced(n * LunBlocco, LunBlocco));
    if (riscritto != file.toUpper())
        std::abort();
    decodifica(e.immagine, catalogo, altre);
    return 0;
}
