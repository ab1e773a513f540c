// Feeds arbitrary bytes, in arbitrary slices, to the receive path and checks that every
// payload it hands on came from a well-formed frame.
#include "link/Frame.h"
#include "link/Ricevitore.h"

#include <cstdint>
#include <cstdlib>

using namespace kv;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    Ricevitore r;
    r.impostaGestore([](const QByteArray &payload) {
        if (payload.isEmpty() || payload.size() > Frame::LunghezzaMassima - Frame::Sovraccarico)
            std::abort();
    });
    // The first byte chooses the slice length, so the fuzzer explores split frames too.
    const size_t fetta = 1 + data[0] % 32;
    const char *p = reinterpret_cast<const char *>(data + 1);
    size_t resto = size - 1;
    while (resto > 0) {
        const size_t n = resto < fetta ? resto : fetta;
        r.ricevi(QByteArray(p, static_cast<qsizetype>(n)));
        p += n;
        resto -= n;
        if (r.inAttesa() < 0 || r.inAttesa() > static_cast<qsizetype>(size))
            std::abort();
    }
    r.ricevi({});
    return 0;
}
