#pragma once

// A map image as its file holds it: 64-byte records, each as the map files write them.

#include "programming/FileBlocchi.h"

#include <QByteArray>

namespace kv {

inline QByteArray comeFile(const QByteArray &immagine)
{
    QByteArray testo;
    for (qsizetype i = 0; i < immagine.size(); i += 64)
        testo += RecordBlocco(immagine.mid(i, 64));
    return testo;
}

} // namespace kv
