#pragma once

#include <QColor>

// The ground, grid and figures of the charts: the live strip and the viewer read alike.
namespace kv::ColoriGrafico {

inline const QColor Fondo(0x12, 0x17, 0x1C);
inline const QColor FondoTracciato(0x0A, 0x0E, 0x11);
inline const QColor Griglia(0x3C, 0x47, 0x52);
inline const QColor Cifre(0xE8, 0xEC, 0xEF);
inline const QColor TitoloX(0xB8, 0xC2, 0xCA);

} // namespace kv::ColoriGrafico
