#pragma once

class QKeySequence;
class QPushButton;
class QWidget;

namespace kv {

// A command button of a programming page, never the default one, at least larghezza pixels
// wide. Its key works anywhere in the window, but only while the fitter could click the
// button himself: a command that is off or hidden ignores it.
void PreparaComando(QWidget *pagina, QPushButton *comando, const QKeySequence &tasto, int larghezza);

} // namespace kv
