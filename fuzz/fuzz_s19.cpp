// Any bytes as an S19 file laid over the blank software image: no crash, and an image of
// 220 records of 128 characters and CR LF whatever the text. The characters of S1 data are
// copied as they stand, as the tool has always done, so the records are upper-case
// hexadecimal exactly when the data of every S1 line is: that is checked too.
#include "link/StatoEcu.h"
#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace kv;

namespace {

bool esadecimaleMaiuscolo(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// Whether the data of every S1 line (9th character to the last two) is upper-case hex;
// lines end at CR, LF or both.
bool datiS1Esadecimali(QByteArrayView testo)
{
    for (QByteArrayView resto = testo; !resto.isEmpty();) {
        qsizetype fine = 0;
        while (fine < resto.size() && resto[fine] != '\r' && resto[fine] != '\n')
            ++fine;
        const QByteArrayView riga = resto.first(fine);
        resto = resto.sliced(qMin(resto.size(), fine + 1));
        if (riga.size() < 2 || riga[0] != 'S' || riga[1] != '1')
            continue;
        for (qsizetype i = 8; i < riga.size() - 2; ++i)
            if (!esadecimaleMaiuscolo(riga[i]))
                return false;
    }
    return true;
}

TestiIdentificazione testi()
{
    StatoEcu stato;
    stato.InfCodice = QStringLiteral("KV2\u00C0BC12345678");
    stato.InfDatoA = QStringLiteral("LPG-SEQ-02");
    stato.InfDatoB = QStringLiteral("R2");
    return TestiIdentificazioneDi(stato);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    static const QByteArray vuoto = FileSWVuoto();
    static const TestiIdentificazione identificazione = testi();
    const QByteArrayView s19(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));
    QByteArray immagine = vuoto;
    SovrapponiS19(s19, immagine, identificazione);

    if (immagine.size() != ImmagineSW::DimensioneFile)
        std::abort();
    const bool esadecimale = datiS1Esadecimali(s19);
    for (int r = 0; r < ImmagineSW::Blocchi; ++r) {
        // Only the records the text has touched: the blank one is known, and the fuzzer runs
        // far faster without comparing all 28,600 characters each time.
        const qsizetype inizio = qsizetype(r) * LunghezzaRecord;
        if (std::memcmp(immagine.constData() + inizio, vuoto.constData() + inizio, LunghezzaRecord) == 0)
            continue;
        const QByteArrayView record = QByteArrayView(immagine).sliced(inizio, LunghezzaRecord);
        if (record[128] != '\r' || record[129] != '\n' || DecodificaRecord(record).size() != LunBlocco)
            std::abort();
        for (qsizetype i = 0; i < 128; ++i)
            if (record[i] == '\r' || record[i] == '\n' || (esadecimale && !esadecimaleMaiuscolo(record[i])))
                std::abort();
    }
    return 0;
}
