#pragma once

#include <QAbstractButton>
#include <QIcon>

class QPainter;
class QRectF;

namespace kv {

// The program's mark: a gauge on a blue tile. app/korvantine.svg is the same drawing for the
// desktop; keep the two alike.
void DisegnaLogo(QPainter &pittore, const QRectF &area);

// The mark at the usual icon sizes, for the window.
QIcon IconaProgramma();

// The mark on the main menu; a click opens the about box.
class Logo : public QAbstractButton
{
    Q_OBJECT
public:
    explicit Logo(QWidget *parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *) override;
};

} // namespace kv
