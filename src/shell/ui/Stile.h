#pragma once

#include <QString>

class QLabel;
class QListWidget;
class QWidget;

namespace kv {

// The few looks the shell's pages share.

// The page's title at its top, so a page says what it is even where the frame's title bar
// is out of sight.
QLabel *CreaIntestazione(const QString &testo, QWidget *parent);

// A list as tall as its first righe rows, with room around each entry for the mouse.
void DimensionaElenco(QListWidget *elenco, int righe);

} // namespace kv
