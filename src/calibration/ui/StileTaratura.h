#pragma once

#include "shell/ui/Stile.h"

#include <QString>

#include <functional>

class QKeySequence;
class QLabel;
class QPushButton;
class QWidget;

namespace kv {

// The looks the calibration pages share. A fitter reads them standing at the car, a metre or
// more from the screen: the present instruction and the live figures are large.

// The instruction of the present step: large bold text, light on dark, wrapped.
QLabel *CreaIstruzione(QWidget *parent);
// A live figure, as on the tuning pages' panel but larger.
QLabel *CreaValore(QWidget *parent, int cifre = 5);
// The line that tells how the exchange with the ECU stands.
QLabel *CreaSegnalazione1(QWidget *parent);
// A command button that Enter presses when it has the focus.
QPushButton *CreaTasto(QWidget *parent, const QString &nome);
// A key of the page, heard wherever the focus is on it: it presses the first of the buttons
// that is enabled and in view, if any.
void ScorciatoiaPagina(QWidget *pagina, const QKeySequence &tasto,
                       std::initializer_list<QPushButton *> tasti);

} // namespace kv
