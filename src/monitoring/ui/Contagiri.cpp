#include "monitoring/ui/Contagiri.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QtMath>

#include <cmath>

namespace kv {

namespace {
// The scale runs clockwise over three quarters of a turn, from lower left to lower right.
constexpr double AngoloInizio = 225;
constexpr double Ampiezza = 270;
} // namespace

Contagiri::Contagiri(QWidget *parent) : QWidget(parent)
{
    // The kept dial carries the background too, so nothing behind needs painting.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(minimumSizeHint());
}

void Contagiri::impostaScala(double minimo, double massimo)
{
    if (massimo <= minimo)
        return;
    m_minimo = minimo;
    m_massimo = massimo;
    m_quadrante = QPixmap();
    update();
}

void Contagiri::impostaValore(double valore)
{
    if (valore == m_valore)
        return;
    m_valore = valore;
    update();
}

void Contagiri::impostaDidascalia(const QString &testo)
{
    if (testo == m_didascalia)
        return;
    m_didascalia = testo;
    m_quadrante = QPixmap();
    update();
}

void Contagiri::impostaZonaRossa(double da)
{
    m_zonaRossa = da;
    m_quadrante = QPixmap();
    update();
}

void Contagiri::changeEvent(QEvent *evento)
{
    if (evento->type() == QEvent::PaletteChange || evento->type() == QEvent::FontChange)
        m_quadrante = QPixmap();
    QWidget::changeEvent(evento);
}

double Contagiri::angolo(double v) const
{
    const double f = std::clamp((v - m_minimo) / (m_massimo - m_minimo), 0.0, 1.0);
    return AngoloInizio - f * Ampiezza; // degrees, counter-clockwise from 3 o'clock
}

void Contagiri::disegnaQuadrante(QPainter &p) const
{
    p.setRenderHint(QPainter::Antialiasing);
    const double lato = std::min(width(), height());
    p.translate(width() / 2.0, height() / 2.0);
    p.scale(lato / 200.0, lato / 200.0); // from here on the dial is 200 units across

    // Bezel and face.
    QLinearGradient cornice(-100, -100, 100, 100);
    cornice.setColorAt(0, QColor(0xD8, 0xDC, 0xE0));
    cornice.setColorAt(0.5, QColor(0x70, 0x76, 0x7C));
    cornice.setColorAt(1, QColor(0x2A, 0x2E, 0x32));
    p.setPen(Qt::NoPen);
    p.setBrush(cornice);
    p.drawEllipse(QPointF(0, 0), 99, 99);
    QRadialGradient quadrante(QPointF(0, -20), 110);
    quadrante.setColorAt(0, QColor(0x2C, 0x34, 0x3C));
    quadrante.setColorAt(1, QColor(0x0C, 0x10, 0x14));
    p.setBrush(quadrante);
    p.drawEllipse(QPointF(0, 0), 91, 91);

    // Red zone as a band inside the ticks.
    if (m_zonaRossa < m_massimo) {
        const double a0 = angolo(std::max(m_zonaRossa, m_minimo));
        const double a1 = angolo(m_massimo);
        QPen rossa(QColor(0xE5, 0x39, 0x35), 7, Qt::SolidLine, Qt::FlatCap);
        p.setPen(rossa);
        p.setBrush(Qt::NoBrush);
        p.drawArc(QRectF(-78, -78, 156, 156), int(a1 * 16), int((a0 - a1) * 16));
    }

    // Ticks and numbers: a major tick on every whole thousand, five minor ones between.
    QFont numeri = font();
    numeri.setPixelSize(15);
    numeri.setBold(true);
    p.setFont(numeri);
    const int maggiori = int(std::floor(m_massimo - m_minimo + 1e-9));
    for (int i = 0; i <= maggiori * 5; ++i) {
        const double v = m_minimo + i / 5.0;
        if (v > m_massimo + 1e-9)
            break;
        const double a = qDegreesToRadians(angolo(v));
        const bool maggiore = i % 5 == 0;
        const double r0 = maggiore ? 70 : 76;
        const QPointF u(std::cos(a), -std::sin(a));
        p.setPen(QPen(v >= m_zonaRossa ? QColor(0xFF, 0x8A, 0x80) : QColor(0xEC, 0xEF, 0xF1),
                      maggiore ? 2.6 : 1.2, Qt::SolidLine, Qt::FlatCap));
        p.drawLine(u * r0, u * 84);
        if (maggiore) {
            const QString t = QString::number(int(std::lround(v)));
            p.setPen(QColor(0xEC, 0xEF, 0xF1));
            p.drawText(QRectF(u.x() * 55 - 14, u.y() * 55 - 10, 28, 20), Qt::AlignCenter, t);
        }
    }

    // Unit in the open quarter at the bottom, clear of the numbers.
    QFont piccolo = font();
    piccolo.setPixelSize(11);
    p.setFont(piccolo);
    p.setPen(QColor(0xB0, 0xBE, 0xC5));
    p.drawText(QRectF(-45, 50, 90, 18), Qt::AlignCenter, m_didascalia);
}

void Contagiri::paintEvent(QPaintEvent *)
{
    // The dial changes only with size, scale or caption: it is drawn once and kept, and
    // each new value costs the needle alone.
    const qreal dpr = devicePixelRatioF();
    if (m_quadrante.size() != size() * dpr || m_quadrante.devicePixelRatio() != dpr) {
        m_quadrante = QPixmap(size() * dpr);
        m_quadrante.setDevicePixelRatio(dpr);
        m_quadrante.fill(palette().color(QPalette::Window));
        QPainter q(&m_quadrante);
        disegnaQuadrante(q);
    }
    QPainter p(this);
    p.drawPixmap(0, 0, m_quadrante);
    p.setRenderHint(QPainter::Antialiasing);
    const double lato = std::min(width(), height());
    p.translate(width() / 2.0, height() / 2.0);
    p.scale(lato / 200.0, lato / 200.0);

    // Needle with a soft shadow, then the hub.
    const double a = angolo(m_valore);
    QPainterPath ago;
    ago.moveTo(0, -3.5);
    ago.lineTo(80, -0.8);
    ago.lineTo(80, 0.8);
    ago.lineTo(0, 3.5);
    ago.lineTo(-16, 2);
    ago.lineTo(-16, -2);
    ago.closeSubpath();
    p.save();
    p.translate(1.5, 2.5);
    p.rotate(-a);
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 110));
    p.drawPath(ago);
    p.restore();
    p.save();
    p.rotate(-a);
    QLinearGradient colore(0, -4, 0, 4);
    colore.setColorAt(0, QColor(0xFF, 0x98, 0x3D));
    colore.setColorAt(1, QColor(0xE6, 0x4A, 0x19));
    p.setBrush(colore);
    p.drawPath(ago);
    p.restore();
    QRadialGradient mozzo(QPointF(-2, -2), 12);
    mozzo.setColorAt(0, QColor(0x90, 0x98, 0xA0));
    mozzo.setColorAt(1, QColor(0x20, 0x24, 0x28));
    p.setBrush(mozzo);
    p.setPen(QPen(QColor(0x50, 0x58, 0x60), 1));
    p.drawEllipse(QPointF(0, 0), 9, 9);
}

} // namespace kv
