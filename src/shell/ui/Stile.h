#pragma once

#include <QColor>
#include <QString>

class QLabel;
class QListWidget;
class QWidget;

namespace kv {

// The few looks the shell's pages share.

// The page's title at its top, so a page says what it is even where the frame's title bar
// is out of sight.
QLabel *CreaIntestazione(const QString &testo, QWidget *parent);

// A page's message line, framed and two lines high even when empty, so that the page does not
// move as messages come and go.
QLabel *CreaRigaSegnalazione(const QString &nome, QWidget *parent);

// A list as tall as its first righe rows, with room around each entry for the mouse.
void DimensionaElenco(QListWidget *elenco, int righe);

// The colours of the tuning pages, by what they tell the fitter.
// A command's caption with its Alt key on the first letter, as the design-time "&APPLICA";
// a caption that marks its own key keeps it.
QString ConTastoAlt(const QString &testo);

// The Alt keys of a page kept apart: a label that would share its key with a button, or
// with a label before it, takes the first letter of its text that is still free. Buttons
// keep theirs.
void DistinguiTastiAlt(QWidget *pagina);

namespace Tavolozza {
// Fields and grid cells: at rest, with the focus, wrong, locked because the ECU adapts them.
inline constexpr QColor SfondoCampo(255, 255, 255);
inline constexpr QColor TestoCampo(0, 0, 0);
inline constexpr QColor SfondoFuoco(0, 0, 255);
inline constexpr QColor SfondoErrato(255, 0, 0);
inline constexpr QColor TestoChiaro(255, 255, 255);
inline constexpr QColor SfondoBloccato(0, 0, 0);
inline constexpr QColor TestoBloccato(0, 255, 0);
// The range beside a field.
inline constexpr QColor TestoIntervallo(0x60, 0x60, 0x60);
// The live display: what the engine does now.
inline constexpr QColor SfondoDisplay(0x10, 0x18, 0x20);
inline constexpr QColor TestoDisplay(0x7C, 0xFC, 0x9A);
// Grids: fixed cells, and the two ends of the shading of lean thresholds, of rich
// thresholds and of other values, lowest value first. No red among them: red means wrong.
inline constexpr QColor SfondoIntestazione(0xDE, 0xE2, 0xE6);
inline constexpr QColor TestoIntestazione(0x30, 0x38, 0x40);
inline constexpr QColor SfondoAsse(0xF4, 0xF1, 0xE4);
inline constexpr QColor MagroBasso(0xEA, 0xF2, 0xFF);
inline constexpr QColor MagroAlto(0x86, 0xAE, 0xEC);
inline constexpr QColor RiccoBasso(0xEC, 0xF8, 0xE6);
inline constexpr QColor RiccoAlto(0x86, 0xC8, 0x7A);
inline constexpr QColor ValoreBasso(0xF6, 0xF6, 0xF6);
inline constexpr QColor ValoreAlto(0xC6, 0xD2, 0xDE);
// The cell where the engine runs now.
inline constexpr QColor BordoVivo(0xFF, 0x8C, 0x00);
inline constexpr QColor BordoVivoInterno(0x20, 0x20, 0x20);

// From a to b by t in 0..1.
QColor Sfumatura(const QColor &a, const QColor &b, double t);
} // namespace Tavolozza

} // namespace kv
