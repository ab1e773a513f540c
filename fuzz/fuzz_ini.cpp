// Any bytes as a configuration or language file: parsing, every look-up and a write must
// neither crash nor lose the key just written.
#include "base/FileIni.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace kv;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    const QByteArray byte(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));
    FileIni ini = FileIni::daByte(byte);
    for (const QString &sezione : ini.sezioni()) {
        for (const QString &chiave : ini.chiavi(sezione)) {
            if (!ini.contiene(sezione, chiave))
                std::abort();
            ini.valore(sezione, chiave);
        }
    }
    ini.valore(QStringLiteral("SEGNALAZIONI"), QStringLiteral("SEGNALAZIONE_3"));

    // Write into the first section found (or a new one) and read the value back.
    const QStringList sezioni = ini.sezioni();
    const QString sezione =
        sezioni.isEmpty() || sezioni.first().isEmpty() || sezioni.first() != sezioni.first().trimmed()
            ? QStringLiteral("SERIALE")
            : sezioni.first();
    const QString valore = QStringLiteral("COM3");
    if (ini.imposta(sezione, QStringLiteral("Porta"), valore)) {
        const FileIni riletto = FileIni::daByte(ini.byte());
        if (riletto.codifica() == ini.codifica()
            && riletto.valore(sezione, QStringLiteral("porta")) != valore)
            std::abort();
    }
    return 0;
}
