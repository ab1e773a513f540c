#pragma once

#include <QWidget>

class QListWidget;

namespace kv {

class Korvantine;
class Lingua;

// The language page: the .LNG files beside the program, the one in use selected. The
// choice reaches each page at its next opening.
class SceltaLingua : public QWidget
{
    Q_OBJECT
public:
    SceltaLingua(Korvantine &frame, Lingua &lingua, const QString &percorsoApp, QWidget *parent = nullptr);

    void Scegli();
    void Esci();

signals:
    // Another language is now in use.
    void linguaCambiata();

private:
    Korvantine &m_frame;
    Lingua &m_lingua; // the one the windows read, which the choice changes
    QString m_percorsoApp;
    QListWidget *m_elenco;
    bool m_inScelta = false;
};

} // namespace kv
