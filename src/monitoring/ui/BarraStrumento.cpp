#include "monitoring/ui/BarraStrumento.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace kv {

namespace {

// The step between numbered ticks: 1, 2 or 5 times a power of ten, about six of them.
double passoNumerato(double ampiezza)
{
    const double grezzo = ampiezza / 6.0;
    const double potenza = std::pow(10.0, std::floor(std::log10(grezzo)));
    for (double m : {1.0, 2.0, 5.0})
        if (m * potenza >= grezzo)
            return m * potenza;
    return 10.0 * potenza;
}

} // namespace

BarraStrumento::BarraStrumento(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Expanding);
    setMinimumSize(minimumSizeHint());
}

void BarraStrumento::impostaScala(double minimo, double massimo)
{
    if (massimo <= minimo)
        return;
    m_minimo = minimo;
    m_massimo = massimo;
    update();
}

void BarraStrumento::impostaValore(double valore)
{
    if (valore == m_valore)
        return;
    m_valore = valore;
    // Only the track moves; the scale beside it stays as painted.
    update(traccia().toAlignedRect().adjusted(-2, -2, 2, 2));
}

void BarraStrumento::impostaColori(const QColor &basso, const QColor &alto)
{
    m_basso = basso;
    m_alto = alto;
    update();
}

void BarraStrumento::impostaMarcatore(int i, std::optional<double> frazione, const QColor &colore)
{
    if (i < 0 || i >= NumeroMarcatori)
        return;
    Marca &m = m_marche[static_cast<size_t>(i)];
    if (m.frazione == frazione && m.colore == colore)
        return;
    m = {frazione, colore};
    update();
}

std::optional<double> BarraStrumento::marcatore(int i) const
{
    if (i < 0 || i >= NumeroMarcatori)
        return std::nullopt;
    return m_marche[static_cast<size_t>(i)].frazione;
}

double BarraStrumento::colonnaNumeri() const
{
    const QFontMetricsF fm(font());
    return std::max(fm.horizontalAdvance(QString::number(m_massimo, 'f', 0)),
                    fm.horizontalAdvance(QString::number(m_minimo, 'f', 0)))
           + 8;
}

QRectF BarraStrumento::traccia() const
{
    const double margine = 10;
    const double larghezzaBarra = std::clamp(width() * 0.34, 22.0, 60.0);
    const double sinistra = std::max(colonnaNumeri() + 6, (width() - larghezzaBarra) / 2.0);
    return QRectF(sinistra, margine, larghezzaBarra, height() - 2 * margine);
}

void BarraStrumento::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);

    const QFontMetricsF fm(font());
    const double colonnaNumeri = this->colonnaNumeri();
    const QRectF traccia = this->traccia();
    const auto yDi = [&](double frazione) { return traccia.bottom() - frazione * traccia.height(); };

    // Scale: a number and a long tick at round values (every 50 on 0..255), five short
    // ticks between them.
    p.setFont(font());
    const double numerato = passoNumerato(m_massimo - m_minimo);
    const double breve = numerato / 5;
    const auto primo = static_cast<long>(std::ceil(m_minimo / breve));
    const auto ultimo = static_cast<long>(std::floor(m_massimo / breve));
    for (long n = primo; n <= ultimo; ++n) {
        const double v = static_cast<double>(n) * breve;
        const double y = yDi((v - m_minimo) / (m_massimo - m_minimo));
        const bool lungo = n % 5 == 0;
        p.setPen(QPen(palette().color(QPalette::WindowText), lungo ? 1.4 : 0.8));
        p.drawLine(QPointF(traccia.left() - (lungo ? 8 : 4), y), QPointF(traccia.left() - 1, y));
        if (lungo)
            p.drawText(QRectF(traccia.left() - colonnaNumeri - 6, y - fm.height() / 2, colonnaNumeri - 4,
                              fm.height()),
                       Qt::AlignRight | Qt::AlignVCenter, QString::number(v, 'f', 0));
    }

    // The track, dark and slightly sunk.
    QLinearGradient fondo(traccia.topLeft(), traccia.topRight());
    fondo.setColorAt(0, QColor(0x10, 0x14, 0x18));
    fondo.setColorAt(0.5, QColor(0x26, 0x2C, 0x32));
    fondo.setColorAt(1, QColor(0x10, 0x14, 0x18));
    p.setPen(QPen(QColor(0x50, 0x58, 0x60), 1));
    p.setBrush(fondo);
    p.drawRoundedRect(traccia, 4, 4);

    // The filled part.
    const double f = std::clamp((m_valore - m_minimo) / (m_massimo - m_minimo), 0.0, 1.0);
    if (f > 0) {
        QRectF pieno = traccia.adjusted(3, 3, -3, -3);
        pieno.setTop(pieno.bottom() - f * pieno.height());
        QLinearGradient riempimento(QPointF(0, traccia.bottom()), QPointF(0, traccia.top()));
        riempimento.setColorAt(0, m_basso);
        riempimento.setColorAt(1, m_alto);
        p.setPen(Qt::NoPen);
        p.setBrush(riempimento);
        p.drawRoundedRect(pieno, 2, 2);
        // A sheen across the left half keeps it from looking flat.
        QLinearGradient luce(pieno.topLeft(), pieno.topRight());
        luce.setColorAt(0, QColor(255, 255, 255, 70));
        luce.setColorAt(0.45, QColor(255, 255, 255, 0));
        p.setBrush(luce);
        p.drawRoundedRect(pieno, 2, 2);
    }

    // Set points: a line across and a pointer on each side.
    for (const Marca &m : m_marche) {
        if (!m.frazione)
            continue;
        const double y = yDi(std::clamp(*m.frazione, 0.0, 1.0));
        p.setPen(QPen(m.colore, 2.4, Qt::SolidLine, Qt::FlatCap));
        p.drawLine(QPointF(traccia.left() - 2, y), QPointF(traccia.right() + 2, y));
        QPainterPath punta;
        punta.moveTo(traccia.right() + 2, y);
        punta.lineTo(traccia.right() + 10, y - 5);
        punta.lineTo(traccia.right() + 10, y + 5);
        punta.closeSubpath();
        p.setPen(Qt::NoPen);
        p.setBrush(m.colore);
        p.drawPath(punta);
    }
}

} // namespace kv
