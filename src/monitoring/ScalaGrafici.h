#pragma once

#include <QtGlobal>

#include <array>

namespace kv {

// The arithmetic of the strip charts, shared by the chart window and the calibration pages.

// A working axis with whole bounds and whole divisions round the range min..max: the range
// widened by margine percent on each side, cut into steps of passo, centred and rounded
// (ties to even). passo <= 0 counts as 1.
void ScalaCanale(double min, double max, int margine, int passo, qint32 &minAsse, qint32 &maxAsse);

// The window of sample numbers moves on by a jump once the newest sample passes its right
// edge: by margine percent of its width (the chart window), or by a fixed number of
// samples (the calibration strips). True when it moved.
bool SaltoFinestra(double conta, int margine, qint32 &minAsse, qint32 &maxAsse);
bool SaltoFisso(double progressivo, double salto, double &minimo, double &massimo);

// One rectangle of the chart window's layout, in pixels.
struct PosGrafico
{
    qint16 Sinistra = 0;
    qint16 Alto = 0;
    qint16 Larghezza = 0;
    qint16 Altezza = 0;
};

inline constexpr int NumeroGrafici = 4;
using TabellaPosGrafico = std::array<PosGrafico, NumeroGrafici>;

// The data panel takes this share of the inner width, at the left edge.
int LarghezzaBoxDati(int larghezzaFinestra);

// The four entries for a window of inner width W whose data panel has top T and height A:
// one chart fills the area, two stack, three or four take the quadrants.
TabellaPosGrafico CalcolaPosGrafico(int larghezzaFinestra, int altoBox, int altezzaBox);

// Where the chart of a slot stands when n slots are in use and it is the k-th of them
// (from 0): with three or more each keeps the quadrant of its own slot number, with fewer
// they fill from the top; the size always comes by count.
PosGrafico RettangoloGrafico(const TabellaPosGrafico &tabella, int inUso, int k, int slot);

// A visible row k of the data panel (of conta visible rows, panel height A): the top of its
// caption and of its value, from the top of the panel.
struct PosRigaDati
{
    int etichetta = 0;
    int dato = 0;
    int passo = 0; // the row pitch
};
PosRigaDati PosizioneRigaDati(int k, int conta, int altezzaBox);

} // namespace kv
