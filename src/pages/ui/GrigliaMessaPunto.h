#pragma once

#include "pages/ui/CampoDato.h"

#include <QPointer>
#include <QTableView>

namespace kv {

class ModelloGriglia;

// A grid of a tuning page on screen: fixed cells drawn like headers, lean and rich
// thresholds shaded by value, wrong cells red, the engine's zone outlined. One edit field
// floats over the cell being edited, with the key filter of the page's fields. By keyboard:
// arrows move, Enter or a digit opens the field; in it Enter or Tab keeps what was typed and
// moves on to the next cell, an arrow keeps it and moves that way, Esc is the page's Esci.
class GrigliaMessaPunto : public QTableView
{
    Q_OBJECT
public:
    explicit GrigliaMessaPunto(ModelloGriglia *modello, QWidget *parent = nullptr);

    ModelloGriglia *modello() const { return m_modello; }

    // What the field holds goes into the grid now, as if the fitter had left it.
    void confermaModifica();
    // The field over the cell, null when none is open.
    CampoDato *campoAperto() const { return inModifica() ? m_campo.data() : nullptr; }
    bool inModifica() const { return state() == EditingState; }

    // Column widths and row heights to fit the texts; a column may be kept out of sight.
    void adattaDimensioni();
    void nascondiColonna(int colonna, bool nascosta);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void focusInEvent(QFocusEvent *evento) override;
    void focusOutEvent(QFocusEvent *evento) override;

private:
    friend class DelegatoGriglia;
    void restaSu(const QModelIndex &indice);
    // The field's value kept, the field closed, the current cell moved by verso.
    void confermaESposta(QWidget *editor, CursorAction verso);

    ModelloGriglia *m_modello;
    QPointer<CampoDato> m_campo;
};

} // namespace kv
