#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

namespace kv {

// Windows-1252, the code page of the configuration and language files. Qt 6 may be built
// without a codec for it, so the 32 bytes that differ from Latin-1 are mapped here.
namespace Cp1252 {

// Every byte has a character: the five bytes the code page leaves undefined map to the
// control character of the same number, as Windows itself does.
QString decodifica(QByteArrayView byte);

// Characters outside the code page become '?'; *perdita (if given) tells whether any did.
QByteArray codifica(QStringView testo, bool *perdita = nullptr);

} // namespace Cp1252

} // namespace kv
