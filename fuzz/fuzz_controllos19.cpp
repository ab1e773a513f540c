// Any bytes as an S19 file checked before a flash: a refusal names a line the file has (and,
// for a bad digit, a character that is none), and a file that passes is S-records to the
// end record and converts into a whole image.
#include "link/StatoEcu.h"
#include "programming/ControlloS19.h"
#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"

#include <QList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace kv;

namespace {

// The lines as the check and the conversion split them: at CR LF, LF or CR.
QList<QByteArrayView> righe(QByteArrayView testo)
{
    QList<QByteArrayView> r;
    for (qsizetype inizio = 0; inizio < testo.size();) {
        qsizetype f = inizio;
        while (f < testo.size() && testo[f] != '\n' && testo[f] != '\r')
            ++f;
        r << testo.sliced(inizio, f - inizio);
        inizio = f + (f + 1 < testo.size() && testo[f] == '\r' && testo[f + 1] == '\n' ? 2 : 1);
    }
    return r;
}

bool esadecimale(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    using E = EsitoS19::Errore;
    static const QByteArray vuoto = FileSWVuoto();
    static const TestiIdentificazione testi = TestiIdentificazioneDi(StatoEcu{});
    const QByteArrayView testo(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));
    const EsitoS19 e = ControllaS19(testo);
    const QList<QByteArrayView> r = righe(testo);

    if (!e.ok()) {
        if (e.errore == E::Illeggibile || e.riga < 0 || e.riga > r.size()
            || (e.riga == 0) != (e.errore == E::NessunDato))
            std::abort();
        if (e.errore == E::NonEsadecimale) {
            const QByteArrayView riga = r.at(e.riga - 1);
            if (e.colonna < 3 || e.colonna > riga.size() || esadecimale(riga[e.colonna - 1]))
                std::abort();
        }
        return 0;
    }
    // Passed: every line an S-record or blank, the last record the end record S9.
    QByteArrayView ultima;
    for (const QByteArrayView riga : r) {
        if (riga.trimmed().isEmpty())
            continue;
        if (riga.size() < 10 || riga[0] != 'S')
            std::abort();
        ultima = riga;
    }
    if (!ultima.startsWith("S9"))
        std::abort();
    // The image holds, outside the identification, the bytes of the last S1 record at each
    // address of the software area, and 0xFF where none reaches.
    QByteArray atteso(ImmagineSW::Fine - ImmagineSW::Inizio + 1, '\xFF');
    for (const QByteArrayView riga : r) {
        if (!riga.startsWith("S1"))
            continue;
        const QByteArray byte = QByteArray::fromHex(riga.sliced(4).chopped(2).toByteArray());
        const quint32 indirizzo = quint32(byte.at(0) & 0xFF) << 8 | quint32(byte.at(1) & 0xFF);
        for (qsizetype i = 2; i < byte.size(); ++i)
            if (indirizzo + i - 2 >= ImmagineSW::Inizio && indirizzo + i - 2 <= ImmagineSW::Fine)
                atteso[indirizzo + i - 2 - ImmagineSW::Inizio] = byte.at(i);
    }
    QByteArray immagine = vuoto;
    if (!SovrapponiS19(testo, immagine, testi))
        return 0;
    QByteArray letta;
    for (int b = 0; b < ImmagineSW::Blocchi; ++b)
        letta += DecodificaRecord(
            QByteArrayView(immagine).sliced(qsizetype(b) * LunghezzaRecord, LunghezzaRecord));
    constexpr qsizetype Identificazione = 0xC040 - ImmagineSW::Inizio,
                        FineIdentificazione = 0xC05B - ImmagineSW::Inizio;
    if (immagine.size() != ImmagineSW::DimensioneFile || letta.size() != atteso.size()
        || letta.first(Identificazione) != atteso.first(Identificazione)
        || letta.sliced(FineIdentificazione + 1) != atteso.sliced(FineIdentificazione + 1))
        std::abort();
    return 0;
}
