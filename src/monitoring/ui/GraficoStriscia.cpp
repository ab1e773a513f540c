#include "monitoring/ui/GraficoStriscia.h"

#include "monitoring/ui/ColoriGrafico.h"

#include "variables/Formato.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kv {

namespace {

using namespace ColoriGrafico;

constexpr double SpessoreTraccia = 3.0;
constexpr double SpessoreCursore = 2.5;
constexpr int Tacca = 7;
constexpr int TaccaMinore = 4;
// Enough for any window of the live stream; past it the points left of the axis go.
constexpr std::size_t LimitePunti = 8192;

int indice(GraficoStriscia::Asse a)
{
    return static_cast<int>(a);
}

} // namespace

GraficoStriscia::GraficoStriscia(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_colori = {QColor(0xFF, 0xD5, 0x4F), QColor(0x4D, 0xD0, 0xE1)};
    m_cursori[0].colore = QColor(0x66, 0xDD, 0x6A);
    m_cursori[1].colore = QColor(0xFF, 0x60, 0x5C);
    m_assi[AsseX].minimo = 0;
    m_assi[AsseX].massimo = 200;
}

// ---- axes

void GraficoStriscia::impostaTitolo(Asse asse, const QString &titolo)
{
    DatiAsse &a = m_assi[indice(asse)];
    if (a.titolo == titolo)
        return;
    a.titolo = titolo;
    impagina();
    daRidisegnare();
}

QString GraficoStriscia::titolo(Asse asse) const
{
    return m_assi[indice(asse)].titolo;
}

void GraficoStriscia::impostaScala(Asse asse, double minimo, double massimo)
{
    if (!std::isfinite(minimo) || !std::isfinite(massimo))
        return;
    if (minimo > massimo)
        std::swap(minimo, massimo);
    DatiAsse &a = m_assi[indice(asse)];
    if (a.minimo == minimo && a.massimo == massimo)
        return;
    const bool avanti = asse == AsseX && minimo > a.minimo;
    a.minimo = minimo;
    a.massimo = massimo;
    if (avanti)
        sfoltisci();
    // The figures may have grown wider.
    impagina();
    daRidisegnare();
}

double GraficoStriscia::minimo(Asse asse) const
{
    return m_assi[indice(asse)].minimo;
}

double GraficoStriscia::massimo(Asse asse) const
{
    return m_assi[indice(asse)].massimo;
}

void GraficoStriscia::impostaDivisioni(Asse asse, int maggiori, int minori)
{
    DatiAsse &a = m_assi[indice(asse)];
    maggiori = std::clamp(maggiori, 1, 100);
    minori = std::clamp(minori, 0, 100);
    if (a.maggiori == maggiori && a.minori == minori)
        return;
    a.maggiori = maggiori;
    a.minori = minori;
    daRidisegnare();
}

void GraficoStriscia::impostaFormato(Asse asse, const QString &maschera)
{
    DatiAsse &a = m_assi[indice(asse)];
    if (a.formato == maschera)
        return;
    a.formato = maschera;
    impagina();
    daRidisegnare();
}

void GraficoStriscia::mostraSecondoAsse(bool mostra)
{
    if (m_secondoAsse == mostra)
        return;
    m_secondoAsse = mostra;
    impagina();
    daRidisegnare();
}

// ---- curves

void GraficoStriscia::impostaColore(int traccia, const QColor &colore)
{
    if (traccia < 0 || traccia >= Tracce || m_colori[traccia] == colore)
        return;
    m_colori[traccia] = colore;
    daRidisegnare();
}

void GraficoStriscia::azzera()
{
    for (auto &v : m_punti)
        v.clear();
    daRidisegnare();
}

void GraficoStriscia::aggiungiPunto(int traccia, double x, double y)
{
    if (traccia < 0 || traccia >= Tracce || !std::isfinite(x) || !std::isfinite(y))
        return;
    std::vector<QPointF> &v = m_punti[traccia];
    v.emplace_back(x, y);
    if (v.size() > LimitePunti)
        sfoltisci();
    if (traccia == 1 && !m_secondoAsse)
        return;
    // Waiting for a whole drawing anyway, or unseen: the point goes in with that drawing.
    if (m_daRidisegnare)
        return;
    if (m_immagine.isNull() || !isVisible()) {
        m_daRidisegnare = true;
        return;
    }
    const QPointF b = mappa(traccia, v.back());
    const QPointF a = v.size() >= 2 ? mappa(traccia, v[v.size() - 2]) : b;
    QPainter p(&m_immagine);
    p.setRenderHint(QPainter::Antialiasing);
    p.setClipRect(m_area);
    p.setPen(pennaTraccia(traccia));
    if (a == b)
        p.drawPoint(b);
    else
        p.drawLine(a, b);
    ++m_segmenti;
    const double margine = SpessoreTraccia + 2;
    update(QRectF(a, b).normalized().adjusted(-margine, -margine, margine, margine).toAlignedRect() & m_area);
}

void GraficoStriscia::impostaPunti(int traccia, std::vector<QPointF> punti)
{
    if (traccia < 0 || traccia >= Tracce)
        return;
    m_punti[traccia] = std::move(punti);
    sfoltisci();
    daRidisegnare();
}

const std::vector<QPointF> &GraficoStriscia::punti(int traccia) const
{
    return m_punti[std::clamp(traccia, 0, Tracce - 1)];
}

// ---- cursors

void GraficoStriscia::impostaCursore(int cursore, double x, double y)
{
    if (cursore < 0 || cursore >= Cursori || !std::isfinite(y))
        return;
    Cursore &c = m_cursori[cursore];
    if (c.x == x && c.y == y)
        return;
    const QRect prima = rettangoloCursore(cursore);
    c.x = x;
    c.y = y;
    if (c.visibile) {
        update(prima);
        update(rettangoloCursore(cursore));
    }
}

void GraficoStriscia::mostraCursore(int cursore, bool mostra)
{
    if (cursore < 0 || cursore >= Cursori || m_cursori[cursore].visibile == mostra)
        return;
    m_cursori[cursore].visibile = mostra;
    update(rettangoloCursore(cursore));
}

bool GraficoStriscia::cursoreVisibile(int cursore) const
{
    return cursore >= 0 && cursore < Cursori && m_cursori[cursore].visibile;
}

double GraficoStriscia::xCursore(int cursore) const
{
    return cursore >= 0 && cursore < Cursori ? m_cursori[cursore].x : 0;
}

double GraficoStriscia::yCursore(int cursore) const
{
    return cursore >= 0 && cursore < Cursori ? m_cursori[cursore].y : 0;
}

void GraficoStriscia::impostaColoreCursore(int cursore, const QColor &colore)
{
    if (cursore < 0 || cursore >= Cursori)
        return;
    m_cursori[cursore].colore = colore;
    update(rettangoloCursore(cursore));
}

// ---- drawing

QSize GraficoStriscia::sizeHint() const
{
    return {480, 280};
}

QSize GraficoStriscia::minimumSizeHint() const
{
    const QFontMetrics cifre(fontCifre());
    return {cifre.horizontalAdvance(QStringLiteral("00000")) * 4, cifre.height() * 7};
}

QFont GraficoStriscia::fontCifre() const
{
    QFont f = font();
    f.setBold(true);
    f.setPointSizeF(std::max(f.pointSizeF() * 1.25, 11.0));
    return f;
}

QFont GraficoStriscia::fontTitoli() const
{
    QFont f = font();
    f.setBold(true);
    f.setPointSizeF(std::max(f.pointSizeF() * 1.45, 13.0));
    return f;
}

void GraficoStriscia::daRidisegnare()
{
    m_daRidisegnare = true;
    update();
}

void GraficoStriscia::impagina()
{
    const QFontMetrics cifre(fontCifre());
    const QFontMetrics titoli(fontTitoli());
    const auto larghezzaCifre = [&](Asse asse) {
        const DatiAsse &a = m_assi[indice(asse)];
        return std::max(cifre.horizontalAdvance(FormattaNumero(a.minimo, a.formato)),
                        cifre.horizontalAdvance(FormattaNumero(a.massimo, a.formato)));
    };
    const int sinistra = larghezzaCifre(AsseY) + Tacca + 8;
    const DatiAsse &x = m_assi[AsseX];
    const int mezzaCifraX = cifre.horizontalAdvance(FormattaNumero(x.massimo, x.formato)) / 2 + 6;
    const int destra = m_secondoAsse ? larghezzaCifre(AsseY2) + Tacca + 8 : mezzaCifraX;
    const int alto = titoli.height() + 6;
    const int basso = cifre.height() * 2 + Tacca + 6;
    m_area = QRect(sinistra, alto, std::max(width() - sinistra - destra, 10),
                   std::max(height() - alto - basso, 10));
}

void GraficoStriscia::chiediScorrimento(double asseX)
{
    m_residuo += asseX;
    const double intero = std::trunc(m_residuo);
    m_residuo -= intero;
    if (intero != 0)
        emit scorrimento(intero);
}

void GraficoStriscia::wheelEvent(QWheelEvent *evento)
{
    // A notch away from the fitter goes back by a tenth of the window.
    const QPoint d = evento->angleDelta();
    const double tacche = (d.y() != 0 ? d.y() : d.x()) / 120.0;
    const DatiAsse &x = m_assi[AsseX];
    chiediScorrimento(-tacche * (x.massimo - x.minimo) / 10);
    evento->accept();
}

void GraficoStriscia::mousePressEvent(QMouseEvent *evento)
{
    if (evento->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(evento);
    m_trascinoDa = evento->position().x();
    m_residuo = 0;
}

void GraficoStriscia::mouseMoveEvent(QMouseEvent *evento)
{
    if (!m_trascinoDa || m_area.width() <= 0)
        return QWidget::mouseMoveEvent(evento);
    // The curve follows the pointer: dragged to the right, it shows what came before.
    const DatiAsse &x = m_assi[AsseX];
    const double dx = evento->position().x() - *m_trascinoDa;
    m_trascinoDa = evento->position().x();
    chiediScorrimento(-dx * (x.massimo - x.minimo) / m_area.width());
}

void GraficoStriscia::mouseReleaseEvent(QMouseEvent *evento)
{
    if (evento->button() == Qt::LeftButton)
        m_trascinoDa.reset();
    QWidget::mouseReleaseEvent(evento);
}

void GraficoStriscia::resizeEvent(QResizeEvent *)
{
    impagina();
    daRidisegnare();
}

void GraficoStriscia::changeEvent(QEvent *evento)
{
    if (evento->type() == QEvent::FontChange || evento->type() == QEvent::PaletteChange) {
        impagina();
        daRidisegnare();
    }
    QWidget::changeEvent(evento);
}

void GraficoStriscia::paintEvent(QPaintEvent *)
{
    const qreal dpr = devicePixelRatioF();
    if (m_daRidisegnare || m_immagine.size() != size() * dpr || m_immagine.devicePixelRatio() != dpr)
        ridisegna();
    QPainter p(this);
    p.drawPixmap(0, 0, m_immagine);
    disegnaCursori(p, m_area);
}

void GraficoStriscia::ridisegna()
{
    const qreal dpr = devicePixelRatioF();
    m_immagine = QPixmap(size() * dpr);
    m_immagine.setDevicePixelRatio(dpr);
    m_immagine.fill(Fondo);
    impagina();
    QPainter p(&m_immagine);
    p.fillRect(m_area, FondoTracciato);
    disegnaAsseX(p);
    disegnaAsseY(p, AsseY, false);
    if (m_secondoAsse)
        disegnaAsseY(p, AsseY2, true);
    p.setPen(QPen(Griglia, 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(m_area.adjusted(0, 0, -1, -1));

    p.setRenderHint(QPainter::Antialiasing);
    p.setClipRect(m_area);
    disegnaTraccia(p, 0);
    if (m_secondoAsse)
        disegnaTraccia(p, 1);
    m_daRidisegnare = false;
    ++m_ridisegni;
}

void GraficoStriscia::disegnaAsseY(QPainter &p, Asse asse, bool destra)
{
    const DatiAsse &a = m_assi[indice(asse)];
    const QFontMetrics cifre(fontCifre());
    const double passoPixel = double(m_area.height()) / a.maggiori;
    // Every grid line, but only as many figures as fit one above the other.
    const int ogni = std::max(1, int(std::ceil(cifre.height() * 1.05 / std::max(passoPixel, 1.0))));
    p.setFont(fontCifre());
    for (int i = 0; i <= a.maggiori; ++i) {
        const double valore = a.minimo + (a.massimo - a.minimo) * i / a.maggiori;
        const int y = int(std::lround(m_area.bottom() - passoPixel * i));
        if (!destra && i > 0 && i < a.maggiori && passoPixel >= 4) {
            p.setPen(QPen(Griglia, 1, Qt::DotLine));
            p.drawLine(m_area.left(), y, m_area.right(), y);
        }
        p.setPen(QPen(Cifre, 2));
        const int bordo = destra ? m_area.right() : m_area.left();
        p.drawLine(destra ? bordo : bordo - Tacca, y, destra ? bordo + Tacca : bordo, y);
        if (i % ogni != 0)
            continue;
        p.setPen(destra ? m_colori[1] : Cifre);
        const QString testo = FormattaNumero(valore, a.formato);
        const int w = cifre.horizontalAdvance(testo);
        const int xTesto = destra ? bordo + Tacca + 4 : bordo - Tacca - 4 - w;
        const int yTesto = std::clamp(y + cifre.ascent() / 2 - 1, m_area.top() + cifre.ascent() - 4,
                                      m_area.bottom() + cifre.descent() + 2);
        p.drawText(xTesto, yTesto, testo);
    }
    if (a.minori > 1 && passoPixel / a.minori >= 4) {
        p.setPen(QPen(Cifre, 1));
        const int bordo = destra ? m_area.right() : m_area.left();
        for (int i = 0; i < a.maggiori; ++i)
            for (int j = 1; j < a.minori; ++j) {
                const int y = int(std::lround(m_area.bottom() - passoPixel * (i + double(j) / a.minori)));
                p.drawLine(destra ? bordo : bordo - TaccaMinore, y, destra ? bordo + TaccaMinore : bordo, y);
            }
    }
    // The caption heads the strip, in the colour of its curve.
    if (!a.titolo.isEmpty()) {
        const QFontMetrics titoli(fontTitoli());
        p.setFont(fontTitoli());
        p.setPen(m_colori[destra ? 1 : 0]);
        const int larghezza = m_area.width() / (m_secondoAsse ? 2 : 1);
        const QString testo = titoli.elidedText(a.titolo, Qt::ElideRight, larghezza);
        const int w = titoli.horizontalAdvance(testo);
        const int x = destra ? m_area.right() - w : m_area.left();
        p.drawText(x, m_area.top() - 4 - titoli.descent(), testo);
    }
}

void GraficoStriscia::disegnaAsseX(QPainter &p)
{
    const DatiAsse &a = m_assi[AsseX];
    const QFontMetrics cifre(fontCifre());
    const double passoPixel = double(m_area.width()) / a.maggiori;
    const int larghezzaCifra = std::max(cifre.horizontalAdvance(FormattaNumero(a.massimo, a.formato)),
                                        cifre.horizontalAdvance(FormattaNumero(a.minimo, a.formato)));
    const int ogni = std::max(1, int(std::ceil((larghezzaCifra + 12) / std::max(passoPixel, 1.0))));
    p.setFont(fontCifre());
    const int yCifre = m_area.bottom() + Tacca + 2 + cifre.ascent();
    for (int i = 0; i <= a.maggiori; ++i) {
        const double valore = a.minimo + (a.massimo - a.minimo) * i / a.maggiori;
        const int x = int(std::lround(m_area.left() + passoPixel * i));
        if (i > 0 && i < a.maggiori && passoPixel >= 4) {
            p.setPen(QPen(Griglia, 1, Qt::DotLine));
            p.drawLine(x, m_area.top(), x, m_area.bottom());
        }
        p.setPen(QPen(Cifre, 2));
        p.drawLine(x, m_area.bottom(), x, m_area.bottom() + Tacca);
        if (i % ogni != 0)
            continue;
        const QString testo = FormattaNumero(valore, a.formato);
        p.drawText(x - cifre.horizontalAdvance(testo) / 2, yCifre, testo);
    }
    if (a.minori > 1 && passoPixel / a.minori >= 4) {
        p.setPen(QPen(Cifre, 1));
        for (int i = 0; i < a.maggiori; ++i)
            for (int j = 1; j < a.minori; ++j) {
                const int x = int(std::lround(m_area.left() + passoPixel * (i + double(j) / a.minori)));
                p.drawLine(x, m_area.bottom(), x, m_area.bottom() + TaccaMinore);
            }
    }
    if (!a.titolo.isEmpty()) {
        p.setPen(TitoloX);
        const QString testo = cifre.elidedText(a.titolo, Qt::ElideRight, m_area.width());
        p.drawText(m_area.center().x() - cifre.horizontalAdvance(testo) / 2, yCifre + cifre.height() + 1,
                   testo);
    }
}

QPen GraficoStriscia::pennaTraccia(int traccia) const
{
    return QPen(m_colori[traccia], SpessoreTraccia, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void GraficoStriscia::disegnaTraccia(QPainter &p, int traccia)
{
    const std::vector<QPointF> &v = m_punti[traccia];
    if (v.empty())
        return;
    std::vector<QPointF> mappati;
    mappati.reserve(v.size());
    for (const QPointF &punto : v)
        mappati.push_back(mappa(traccia, punto));
    p.setPen(pennaTraccia(traccia));
    if (mappati.size() == 1)
        p.drawPoint(mappati.front());
    else
        p.drawPolyline(mappati.data(), int(mappati.size()));
}

void GraficoStriscia::disegnaCursori(QPainter &p, const QRect &zona)
{
    const QFontMetrics cifre(fontCifre());
    for (int i = 0; i < Cursori; ++i) {
        const Cursore &c = m_cursori[i];
        if (!c.visibile)
            continue;
        const double y = mappaY(AsseY, c.y);
        if (y < zona.top() - 1 || y > zona.bottom() + 1)
            continue;
        p.setRenderHint(QPainter::Antialiasing, false);
        p.setPen(QPen(c.colore, SpessoreCursore, Qt::DashLine, Qt::FlatCap));
        p.drawLine(QPointF(zona.left(), y), QPointF(zona.right(), y));
        // Its value at the right end, on a dark patch so that a curve under it does not hide it.
        const QString testo = FormattaNumero(c.y, m_assi[AsseY].formato);
        p.setFont(fontCifre());
        const int w = cifre.horizontalAdvance(testo) + 8;
        QRect etichetta(zona.right() - w - 2, int(y) - cifre.height() - 2, w, cifre.height());
        if (etichetta.top() < zona.top())
            etichetta.moveTop(int(y) + 3);
        p.fillRect(etichetta, FondoTracciato);
        p.setPen(c.colore);
        p.drawText(etichetta, Qt::AlignCenter, testo);
    }
}

QRect GraficoStriscia::rettangoloCursore(int cursore) const
{
    const double y = mappaY(AsseY, m_cursori[cursore].y);
    const int h = QFontMetrics(fontCifre()).height();
    return QRect(m_area.left(), int(y) - h - 4, m_area.width(), 2 * h + 10) & m_area;
}

double GraficoStriscia::mappaY(Asse asse, double y) const
{
    const DatiAsse &a = m_assi[indice(asse)];
    const double ampiezza = a.massimo > a.minimo ? a.massimo - a.minimo : 1.0;
    const double base = a.massimo > a.minimo ? a.minimo : a.minimo - 0.5;
    return m_area.bottom() - (y - base) / ampiezza * m_area.height();
}

QPointF GraficoStriscia::mappa(int traccia, const QPointF &punto) const
{
    const DatiAsse &x = m_assi[AsseX];
    const double ampiezza = x.massimo > x.minimo ? x.massimo - x.minimo : 1.0;
    const double px = m_area.left() + (punto.x() - x.minimo) / ampiezza * m_area.width();
    return {px, mappaY(traccia == 0 ? AsseY : AsseY2, punto.y())};
}

void GraficoStriscia::sfoltisci()
{
    // Points left of the window go, but for the last one, which starts the line at the edge.
    const double minimo = m_assi[AsseX].minimo;
    for (auto &v : m_punti) {
        const auto primo =
            std::find_if(v.begin(), v.end(), [minimo](const QPointF &q) { return q.x() >= minimo; });
        if (primo - v.begin() > 1)
            v.erase(v.begin(), primo - 1);
        if (v.size() > LimitePunti)
            v.erase(v.begin(), v.begin() + std::ptrdiff_t(v.size() - LimitePunti / 2));
    }
}

} // namespace kv
