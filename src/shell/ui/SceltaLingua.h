#pragma once

#include <QWidget>

class QListWidget;

namespace kv {

class Korvantine;

// The language page: the .LNG files beside the program, the one in use selected. The
// choice reaches each page at its next opening.
class SceltaLingua : public QWidget
{
    Q_OBJECT
public:
    explicit SceltaLingua(Korvantine &frame, QWidget *parent = nullptr);

    void Scegli();
    void Esci();

private:
    Korvantine &m_frame;
    QListWidget *m_elenco;
    bool m_inScelta = false;
};

} // namespace kv
