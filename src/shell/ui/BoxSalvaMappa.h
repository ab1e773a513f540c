#pragma once

#include "programming/FileMappa.h"

#include <QGroupBox>

#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kv {

class Lingua;

// "Save as a new map": the kit, make, model, file name and note of a map about to be filed,
// with the map tree's rules on names, and the page's own save command beside them.
class BoxSalvaMappa : public QGroupBox
{
    Q_OBJECT
public:
    BoxSalvaMappa(QPushButton *salva, QWidget *parent);

    void caricaTesti(const Lingua &lingua, const QString &titolo);
    // Kit, make and model of a map at hand, its note; the file name is the fitter's to give.
    void imposta(const ChiaveMappa &chiave, const QString &nota);

    ChiaveMappa chiave() const;
    QString nota() const;
    // Where the typed names lead; when refused, motivo says why and the field at fault has
    // the focus.
    PercorsoMappa percorso(const QString &percorsoApp, Messaggio &motivo) const;

    QComboBox *impianto() const { return m_impianto; }
    // 0 make, 1 model, 2 file, 3 note.
    QLineEdit *campo(int n) const { return m_campi[size_t(n)]; }

private:
    QComboBox *m_impianto;
    std::array<QLabel *, 5> m_etichette{};
    std::array<QLineEdit *, 4> m_campi{};
};

} // namespace kv
