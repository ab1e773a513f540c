#include "shell/ui/Logo.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace kv {

void DisegnaLogo(QPainter &p, const QRectF &area)
{
    // Drawn on a 64-unit square, like the SVG.
    const qreal lato = qMin(area.width(), area.height());
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.translate(area.center().x() - lato / 2, area.center().y() - lato / 2);
    p.scale(lato / 64.0, lato / 64.0);

    QLinearGradient fondo(0, 0, 0, 64);
    fondo.setColorAt(0, QColor(0x1f, 0x6f, 0x9f));
    fondo.setColorAt(1, QColor(0x0e, 0x3a, 0x5a));
    p.setPen(Qt::NoPen);
    p.setBrush(fondo);
    p.drawRoundedRect(QRectF(2, 2, 60, 60), 12, 12);

    // The scale: a 270-degree arc open at the bottom, its last part the rich zone.
    const QRectF quadrante(12, 14, 40, 40);
    QPen arco(Qt::white, 5, Qt::SolidLine, Qt::RoundCap);
    p.setPen(arco);
    p.setBrush(Qt::NoBrush);
    p.drawArc(quadrante, 225 * 16, -205 * 16);
    arco.setColor(QColor(0xf5, 0xa6, 0x23));
    p.setPen(arco);
    p.drawArc(quadrante, 12 * 16, -57 * 16);

    // The needle, towards the upper right, and its hub.
    p.setPen(QPen(QColor(0xf5, 0xa6, 0x23), 4, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(32, 34), QPointF(43, 23));
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::white);
    p.drawEllipse(QPointF(32, 34), 4.5, 4.5);

    // A bar under the gauge, like the read-out of a meter.
    p.setBrush(QColor(255, 255, 255, 200));
    p.drawRoundedRect(QRectF(24, 46, 16, 5), 2.5, 2.5);
    p.restore();
}

QIcon IconaProgramma()
{
    QIcon icona;
    for (const int lato : {16, 24, 32, 48, 64, 128, 256}) {
        QPixmap immagine(lato, lato);
        immagine.fill(Qt::transparent);
        QPainter p(&immagine);
        DisegnaLogo(p, QRectF(0, 0, lato, lato));
        p.end();
        icona.addPixmap(immagine);
    }
    return icona;
}

Logo::Logo(QWidget *parent) : QAbstractButton(parent)
{
    setObjectName(QStringLiteral("Logo"));
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus);
}

QSize Logo::sizeHint() const
{
    const int lato = fontMetrics().height() * 4;
    return {lato, lato};
}

void Logo::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    DisegnaLogo(p, QRectF(rect()));
}

} // namespace kv
