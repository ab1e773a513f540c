#include "monitoring/ui/ImmaginiMotorino.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace kv {

namespace {
const QColor Reset(0xF5, 0xF5, 0xF5);
const QColor FinestraNormale(0x42, 0xA5, 0xF5);
const QColor FinestraMinimo(0x66, 0xBB, 0x6A);
const QColor Indicatore(0xFF, 0xB3, 0x00);
} // namespace

ScalaMotorino::ScalaMotorino(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    setMinimumSize(minimumSizeHint());
}

void ScalaMotorino::impostaPosizione(double frazione)
{
    if (frazione == m_posizione)
        return;
    m_posizione = frazione;
    update();
}

void ScalaMotorino::impostaMarcatori(std::optional<double> reset, std::optional<double> normaleSopra,
                                     std::optional<double> normaleSotto, std::optional<double> minimoSopra,
                                     std::optional<double> minimoSotto)
{
    m_reset = reset;
    m_normaleSopra = normaleSopra;
    m_normaleSotto = normaleSotto;
    m_minimoSopra = minimoSopra;
    m_minimoSotto = minimoSotto;
    update();
}

void ScalaMotorino::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QFontMetricsF fm(font());
    const double colonnaNumeri = fm.horizontalAdvance(QStringLiteral("255")) + 8;
    const double larghezza = std::clamp(width() * 0.34, 22.0, 60.0);
    const double sinistra = std::max(colonnaNumeri + 6, (width() - larghezza) / 2.0);
    const QRectF traccia(sinistra, 10, larghezza, height() - 20);
    const auto y = [&](double f) { return traccia.bottom() - std::clamp(f, 0.0, 1.0) * traccia.height(); };

    for (int v = 0; v <= 255; v += 10) {
        const double f = v / 255.0;
        const bool lungo = v % 50 == 0;
        p.setPen(QPen(palette().color(QPalette::WindowText), lungo ? 1.4 : 0.8));
        p.drawLine(QPointF(traccia.left() - (lungo ? 8 : 4), y(f)), QPointF(traccia.left() - 1, y(f)));
        if (lungo)
            p.drawText(QRectF(traccia.left() - colonnaNumeri - 6, y(f) - fm.height() / 2, colonnaNumeri - 4,
                              fm.height()),
                       Qt::AlignRight | Qt::AlignVCenter, QString::number(v));
    }

    p.setPen(QPen(QColor(0x50, 0x58, 0x60), 1));
    p.setBrush(QColor(0x16, 0x1A, 0x1E));
    p.drawRoundedRect(traccia, 4, 4);

    // The control windows as bands, the idle one inside the normal one.
    const auto banda = [&](std::optional<double> sopra, std::optional<double> sotto, const QColor &c) {
        if (!sopra || !sotto)
            return;
        QColor riempimento = c;
        riempimento.setAlpha(70);
        const QRectF r(QPointF(traccia.left() + 2, y(*sopra)), QPointF(traccia.right() - 2, y(*sotto)));
        p.setPen(Qt::NoPen);
        p.setBrush(riempimento);
        p.drawRect(r.normalized());
        p.setPen(QPen(c, 1.6));
        p.drawLine(QPointF(traccia.left() + 1, y(*sopra)), QPointF(traccia.right() - 1, y(*sopra)));
        p.drawLine(QPointF(traccia.left() + 1, y(*sotto)), QPointF(traccia.right() - 1, y(*sotto)));
    };
    banda(m_normaleSopra, m_normaleSotto, FinestraNormale);
    banda(m_minimoSopra, m_minimoSotto, FinestraMinimo);
    if (m_reset) {
        p.setPen(QPen(Reset, 1.6, Qt::DashLine));
        p.drawLine(QPointF(traccia.left() - 2, y(*m_reset)), QPointF(traccia.right() + 2, y(*m_reset)));
    }

    // The present position: a bright line with a pointer on the right.
    const double yp = y(m_posizione);
    p.setPen(QPen(Indicatore, 3, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(traccia.left() + 3, yp), QPointF(traccia.right() - 3, yp));
    QPainterPath punta;
    punta.moveTo(traccia.right() + 2, yp);
    punta.lineTo(traccia.right() + 12, yp - 6);
    punta.lineTo(traccia.right() + 12, yp + 6);
    punta.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(Indicatore);
    p.drawPath(punta);
}

AttuatoreMotorino::AttuatoreMotorino(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(minimumSizeHint());
}

void AttuatoreMotorino::impostaPosizione(double frazione)
{
    if (frazione == m_posizione)
        return;
    m_posizione = frazione;
    update();
}

void AttuatoreMotorino::impostaReset(std::optional<double> frazione)
{
    if (frazione == m_reset)
        return;
    m_reset = frazione;
    update();
}

void AttuatoreMotorino::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    // Drawn on 220 x 80 units (from y 22 on) and scaled to fit, centred.
    const double s = std::min(width() / 220.0, height() / 80.0);
    p.translate((width() - 220 * s) / 2, (height() - 80 * s) / 2 - 22 * s);
    p.scale(s, s);

    // Travel of the pintle's head: from 20 (fully out) to 110 (fully in).
    const double dentro = 110;
    const double fuori = 20;
    const auto x = [&](double f) { return dentro - std::clamp(f, 0.0, 1.0) * (dentro - fuori); };

    // Ruler under the travel, with the reset position.
    p.setPen(QPen(palette().color(QPalette::WindowText), 1));
    p.drawLine(QPointF(fuori, 92), QPointF(dentro, 92));
    for (int i = 0; i <= 10; ++i) {
        const double xi = x(i / 10.0);
        p.drawLine(QPointF(xi, 92), QPointF(xi, i % 5 == 0 ? 99 : 96));
    }
    if (m_reset) {
        p.setPen(QPen(QColor(0xE5, 0x39, 0x35), 2));
        p.drawLine(QPointF(x(*m_reset), 24), QPointF(x(*m_reset), 100));
    }

    // Pintle: shaft from the body to the head, then the conical head.
    const double testa = x(m_posizione);
    QLinearGradient acciaio(0, 48, 0, 62);
    acciaio.setColorAt(0, QColor(0xEC, 0xEF, 0xF1));
    acciaio.setColorAt(0.5, QColor(0x9E, 0xA7, 0xAD));
    acciaio.setColorAt(1, QColor(0x60, 0x68, 0x70));
    p.setPen(QPen(QColor(0x37, 0x47, 0x4F), 0.8));
    p.setBrush(acciaio);
    p.drawRect(QRectF(testa, 51, 130 - testa, 8));
    QPainterPath cono;
    cono.moveTo(testa + 8, 45);
    cono.lineTo(testa, 48);
    cono.lineTo(testa - 4, 55);
    cono.lineTo(testa, 62);
    cono.lineTo(testa + 8, 65);
    cono.closeSubpath();
    QLinearGradient ottone(0, 45, 0, 65);
    ottone.setColorAt(0, QColor(0xFF, 0xD5, 0x4F));
    ottone.setColorAt(1, QColor(0xB2, 0x7C, 0x10));
    p.setBrush(ottone);
    p.drawPath(cono);

    // Body: flange, can with cooling ribs, connector.
    QLinearGradient corpo(0, 25, 0, 85);
    corpo.setColorAt(0, QColor(0x78, 0x90, 0x9C));
    corpo.setColorAt(0.5, QColor(0x45, 0x5A, 0x64));
    corpo.setColorAt(1, QColor(0x26, 0x32, 0x38));
    p.setBrush(corpo);
    p.setPen(QPen(QColor(0x1C, 0x24, 0x28), 1));
    p.drawRoundedRect(QRectF(122, 32, 10, 46), 2, 2);
    p.drawRoundedRect(QRectF(132, 26, 62, 58), 6, 6);
    p.setPen(QPen(QColor(0x1C, 0x24, 0x28, 160), 1.2));
    for (double xr = 140; xr < 190; xr += 8)
        p.drawLine(QPointF(xr, 30), QPointF(xr, 80));
    p.setPen(QPen(QColor(0x1C, 0x24, 0x28), 1));
    p.setBrush(QColor(0x21, 0x21, 0x21));
    p.drawRoundedRect(QRectF(194, 40, 14, 30), 3, 3);
    p.setBrush(QColor(0xBD, 0xBD, 0xBD));
    for (double yc : {47.0, 55.0, 63.0})
        p.drawRect(QRectF(208, yc - 1.5, 6, 3));
}

} // namespace kv
