#include "monitoring/ui/GraficoVisore.h"

#include "monitoring/ui/ColoriGrafico.h"

#include "monitoring/Canali.h"
#include "monitoring/ModelloVisore.h"
#include "monitoring/ScalaGrafici.h"
#include "variables/Formato.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kv {

namespace {

using namespace ColoriGrafico;
const QColor ColoreCursore(0x66, 0xDD, 0x6A);
const QColor ColoreSecondo(0xFF, 0x60, 0x5C);

constexpr int Tacca = 5;
constexpr int Spazio = 6;
constexpr double PassoRotella = 1.25;
constexpr double PassoTasti = 2.0;
constexpr int SogliaTrascinamento = 4;
constexpr int PixelTraTacche = 90;

// A step of 1, 2 or 5 times a power of ten, near the one asked for.
double passoTondo(double grezzo)
{
    if (!(grezzo > 0))
        return 1;
    const double dieci = std::pow(10.0, std::floor(std::log10(grezzo)));
    const double r = grezzo / dieci;
    return (r < 1.5 ? 1 : r < 3.5 ? 2 : r < 7.5 ? 5 : 10) * dieci;
}

} // namespace

GraficoVisore::GraficoVisore(ModelloVisore &modello, const TabellaCanali &canali, QWidget *parent)
    : QWidget(parent)
    , m_modello(modello)
    , m_canali(canali)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setObjectName(QStringLiteral("GraficoVisore"));
}

QColor GraficoVisore::coloreCanale(int canale)
{
    // The first four as the live charts' four slots show the channels they are given first.
    switch (canale) {
    case Canale::Giri:
        return {0xFF, 0xD5, 0x4F};
    case Canale::Tps:
        return {0x4D, 0xD0, 0xE1};
    case Canale::Lambda:
        return {0xAE, 0xEA, 0x6A};
    case Canale::ActPos:
        return {0xFF, 0x8A, 0x65};
    case Canale::RicMag:
        return {0xBA, 0x68, 0xC8};
    case Canale::MZonAct:
        return {0x90, 0xCA, 0xF9};
    case Canale::Pompata:
        return {0xF0, 0x62, 0x92};
    case Canale::TipTps:
        return {0x9F, 0xA8, 0xDA};
    case Canale::TipAlim:
        return {0x81, 0xC7, 0x84};
    case Canale::TipoLambda:
        return {0xFF, 0xB7, 0x4D};
    default:
        return {0xE0, 0xE0, 0xE0};
    }
}

QFont GraficoVisore::fontCifre() const
{
    QFont f = font();
    f.setBold(true);
    return f;
}

void GraficoVisore::ridisegna()
{
    m_daRidisegnare = true;
    update();
}

void GraficoVisore::resizeEvent(QResizeEvent *)
{
    ridisegna();
}

double GraficoVisore::xPixel(double x) const
{
    const double larghezza = m_modello.xMax() - m_modello.xMin();
    return m_area.left() + (x - m_modello.xMin()) / larghezza * m_area.width();
}

double GraficoVisore::xDaPixel(double px) const
{
    const double larghezza = m_modello.xMax() - m_modello.xMin();
    return m_modello.xMin() + (px - m_area.left()) / std::max(m_area.width(), 1) * larghezza;
}

double GraficoVisore::yPixel(const Striscia &s, double v) const
{
    const double ampiezza = s.massimo > s.minimo ? s.massimo - s.minimo : 1.0;
    return s.rettangolo.bottom() + 1 - (v - s.minimo) / ampiezza * s.rettangolo.height();
}

void GraficoVisore::impagina()
{
    const QFontMetrics cifre(fontCifre());
    const int sinistra = cifre.horizontalAdvance(QStringLiteral("-000000")) + Tacca + 8;
    const int basso = cifre.height() * 2 + Tacca + 6;
    m_area = QRect(sinistra, Spazio, std::max(width() - sinistra - 14, 10),
                   std::max(height() - Spazio - basso, 10));

    m_strisce.clear();
    const std::vector<int> &mostrati = m_modello.mostrati();
    if (mostrati.empty())
        return;
    const int titolo = cifre.height() + 2;
    const int n = int(mostrati.size());
    const double passo = double(m_area.height() + Spazio) / n;
    for (int k = 0; k < n; ++k) {
        Striscia s;
        s.canale = mostrati[std::size_t(k)];
        const int alto = m_area.top() + int(std::lround(passo * k)) + titolo;
        const int fondo = m_area.top() + int(std::lround(passo * (k + 1))) - Spazio;
        s.rettangolo = QRect(m_area.left(), alto, m_area.width(), std::max(fondo - alto, 4));
        // The scale the live chart would find for what is in view.
        const Canale &c = m_canali.Canali[std::size_t(s.canale)];
        qint32 minimo = c.MinTabella, massimo = c.MaxTabella;
        const RegistrazioneAcq::Statistiche st = m_modello.statistiche(s.canale);
        if (st.campioni > 0)
            ScalaCanale(st.minimo, st.massimo, c.Margine, c.DivMaggiori, minimo, massimo);
        s.minimo = minimo;
        s.massimo = massimo;
        m_strisce.push_back(s);
    }
}

void GraficoVisore::paintEvent(QPaintEvent *)
{
    const qreal dpr = devicePixelRatioF();
    if (m_daRidisegnare || m_immagine.size() != size() * dpr)
        disegnaTutto();
    QPainter p(this);
    p.drawImage(0, 0, m_immagine);
    disegnaCursori(p);
    if (hasFocus()) {
        p.setPen(QPen(palette().color(QPalette::Highlight), 2));
        p.setBrush(Qt::NoBrush);
        p.drawRect(rect().adjusted(1, 1, -1, -1));
    }
}

void GraficoVisore::disegnaTutto()
{
    const qreal dpr = devicePixelRatioF();
    if (m_immagine.size() != size() * dpr) {
        m_immagine = QImage(size() * dpr, QImage::Format_RGB32);
        m_immagine.setDevicePixelRatio(dpr);
    }
    m_immagine.fill(Fondo);
    impagina();
    {
        QPainter p(&m_immagine);
        for (const Striscia &s : m_strisce)
            disegnaStriscia(p, s);
        disegnaAsseX(p);
        for (const Striscia &s : m_strisce)
            if (perCampioni(s))
                disegnaCampioni(p, s);
    }
    // Over the grid, with the painter gone: the dense curves are pixels of their own.
    for (const Striscia &s : m_strisce)
        if (!perCampioni(s))
            disegnaColonne(s);
    m_daRidisegnare = false;
}

void GraficoVisore::disegnaStriscia(QPainter &p, const Striscia &s)
{
    const QRect &r = s.rettangolo;
    const Canale &c = m_canali.Canali[std::size_t(s.canale)];
    const QColor colore = coloreCanale(s.canale);
    const QFontMetrics cifre(fontCifre());
    p.setFont(fontCifre());
    p.fillRect(r, FondoTracciato);

    // The caption above the strip, in the curve's colour.
    p.setPen(colore);
    const QString unita = c.UM.trimmed();
    const QString titolo =
        c.Nome.trimmed() + (unita.isEmpty() ? QString() : QStringLiteral(" [") + unita + u']');
    p.drawText(r.left(), r.top() - 3 - cifre.descent(), cifre.elidedText(titolo, Qt::ElideRight, r.width()));

    // Value axis: every grid line, as many figures as fit.
    const int divisioni = std::max<int>(c.DivMaggiori, 1);
    const double passo = double(r.height()) / divisioni;
    const int ogni = std::max(1, int(std::ceil(cifre.height() * 1.05 / std::max(passo, 1.0))));
    for (int i = 0; i <= divisioni; ++i) {
        const int y = int(std::lround(r.bottom() + 1 - passo * i));
        if (i > 0 && i < divisioni && passo >= 4) {
            p.setPen(QPen(Griglia, 1));
            p.drawLine(r.left(), y, r.right(), y);
        }
        p.setPen(QPen(Cifre, 1));
        p.drawLine(r.left() - Tacca, y, r.left(), y);
        if (i % ogni != 0 && i != divisioni)
            continue;
        const QString testo = FormattaNumero(s.minimo + (s.massimo - s.minimo) * i / divisioni, c.Formato);
        const int yTesto = std::clamp(y + cifre.ascent() / 2 - 1, r.top() - 2 + cifre.ascent() / 2,
                                      r.bottom() + cifre.descent());
        p.drawText(r.left() - Tacca - 4 - cifre.horizontalAdvance(testo), yTesto, testo);
    }
    p.setPen(QPen(Griglia, 1));
    p.setBrush(Qt::NoBrush);
    p.drawRect(r.adjusted(0, 0, -1, -1));
}

bool GraficoVisore::perCampioni(const Striscia &s) const
{
    const auto [da, a] = m_modello.visibili();
    // Two pixels a sample at least, or the columns say more.
    return a - da <= s.rettangolo.width() / 2;
}

void GraficoVisore::disegnaCampioni(QPainter &p, const Striscia &s)
{
    const RegistrazioneAcq &reg = m_modello.registrazione();
    if (reg.vuota())
        return;
    p.save();
    p.setClipRect(s.rettangolo);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(coloreCanale(s.canale), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    std::vector<QPointF> punti;
    const auto traccia = [&] {
        if (punti.size() == 1)
            p.drawPoint(punti.front());
        else if (punti.size() > 1)
            p.drawPolyline(punti.data(), int(punti.size()));
        punti.clear();
    };
    // The neighbours outside the view carry the line to the edges.
    const auto [da, a] = m_modello.visibili();
    for (qsizetype i = std::max<qsizetype>(da - 1, 0); i < std::min(a + 1, reg.campioni()); ++i) {
        if (!reg.segue(i))
            traccia();
        punti.emplace_back(xPixel(double(reg.posizione(i))), yPixel(s, reg.valore(s.canale, i)));
    }
    traccia();
    p.restore();
}

void GraficoVisore::disegnaColonne(const Striscia &s)
{
    const RegistrazioneAcq &reg = m_modello.registrazione();
    if (reg.vuota())
        return;
    // In device pixels: one column of them each.
    const qreal dpr = m_immagine.devicePixelRatio();
    const int sinistra = int(std::lround(s.rettangolo.left() * dpr));
    const int alto = int(std::lround(s.rettangolo.top() * dpr));
    const int basso = int(std::lround((s.rettangolo.bottom() + 1) * dpr)) - 1;
    const int colonne = std::min(int(std::lround(s.rettangolo.width() * dpr)), m_immagine.width() - sinistra);
    if (colonne <= 0 || basso < alto)
        return;
    reg.decima(s.canale, m_modello.xMin(), m_modello.xMax(), colonne, m_colonne);
    const QRgb colore = coloreCanale(s.canale).rgb();
    const auto riga = [&](double v) { return yPixel(s, v) * dpr; };
    auto *pixel = reinterpret_cast<QRgb *>(m_immagine.bits());
    const qsizetype passo = m_immagine.bytesPerLine() / qsizetype(sizeof(QRgb));
    const auto tratto = [&](std::size_t k, double minimo, double massimo) {
        int y0 = int(std::floor(riga(massimo)));
        int y1 = int(std::floor(riga(minimo)));
        // Two pixels at least, so that a flat stretch reads as a line.
        if (y1 - y0 < 1)
            y1 = y0 + 1;
        y0 = std::clamp(y0, alto, basso);
        y1 = std::clamp(y1, alto, basso);
        QRgb *p = pixel + qsizetype(y0) * passo + sinistra + qsizetype(k);
        for (int y = y0; y <= y1; ++y, p += passo)
            *p = colore;
    };
    std::ptrdiff_t ultima = -1; // the last column with samples
    for (std::size_t k = 0; k < m_colonne.size(); ++k) {
        const RegistrazioneAcq::ColonnaPixel &cp = m_colonne[k];
        if (cp.vuota)
            continue;
        double minimo = cp.minimo, massimo = cp.massimo;
        // The line runs on from the last column with samples when none is missing between
        // them, straight across the columns that fall between two samples.
        if (cp.unita && ultima >= 0) {
            const double da = m_colonne[std::size_t(ultima)].ultimo;
            const double salto = (cp.primo - da) / double(std::ptrdiff_t(k) - ultima);
            for (auto j = std::size_t(ultima + 1); j < k; ++j) {
                const double meta = double(std::ptrdiff_t(j) - ultima);
                tratto(j, std::min(da + salto * (meta - 0.5), da + salto * (meta + 0.5)),
                       std::max(da + salto * (meta - 0.5), da + salto * (meta + 0.5)));
            }
            const double prima = std::ptrdiff_t(k) - ultima == 1 ? da : cp.primo - salto / 2;
            minimo = std::min(minimo, prima);
            massimo = std::max(massimo, prima);
        }
        tratto(k, minimo, massimo);
        ultima = std::ptrdiff_t(k);
    }
}

void GraficoVisore::disegnaAsseX(QPainter &p)
{
    const QFontMetrics cifre(fontCifre());
    p.setFont(fontCifre());
    const double a = m_modello.suAsse(m_modello.xMin());
    const double b = m_modello.suAsse(m_modello.xMax());
    const double passo = passoTondo((b - a) * PixelTraTacche / std::max(m_area.width(), 1));
    const int decimali = passo >= 1 ? 0 : int(std::ceil(-std::log10(passo)));
    const double scala = m_modello.inSecondi ? RegistrazioneAcq::CampioniAlSecondo : 1.0;
    const int y = m_area.bottom() + 1;
    for (auto k = qint64(std::ceil(a / passo)); double(k) * passo <= b; ++k) {
        const double v = double(k) * passo;
        const int x = int(std::lround(xPixel(v * scala)));
        p.setPen(QPen(Griglia, 1));
        for (const Striscia &s : m_strisce)
            p.drawLine(x, s.rettangolo.top(), x, s.rettangolo.bottom());
        p.setPen(QPen(Cifre, 1));
        p.drawLine(x, y, x, y + Tacca);
        const QString testo = QString::number(v, 'f', decimali);
        p.drawText(x - cifre.horizontalAdvance(testo) / 2, y + Tacca + 2 + cifre.ascent(), testo);
    }
    p.setPen(TitoloX);
    const Canale &campioni = m_canali.Canali[Canale::Campioni];
    const QString titolo =
        m_modello.inSecondi ? m_titoloSecondi
                            : campioni.Nome.trimmed() + QStringLiteral(" [") + campioni.UM.trimmed() + u']';
    p.drawText(m_area.center().x() - cifre.horizontalAdvance(titolo) / 2,
               y + Tacca + 2 + cifre.ascent() + cifre.height(), titolo);
}

void GraficoVisore::disegnaCursori(QPainter &p)
{
    const RegistrazioneAcq &reg = m_modello.registrazione();
    if (reg.vuota() || m_strisce.empty())
        return;
    const int alto = m_strisce.front().rettangolo.top();
    const int basso = m_strisce.back().rettangolo.bottom();
    const auto dentro = [&](double x) { return x >= m_area.left() - 1 && x <= m_area.right() + 1; };
    const double xc = xPixel(double(reg.posizione(m_modello.cursore())));
    if (const auto s = m_modello.secondo()) {
        const double xs = xPixel(double(reg.posizione(*s)));
        const double sinistra = std::clamp(std::min(xc, xs), double(m_area.left()), double(m_area.right()));
        const double destra = std::clamp(std::max(xc, xs), double(m_area.left()), double(m_area.right()));
        QColor velo = ColoreSecondo;
        velo.setAlpha(40);
        p.fillRect(QRectF(sinistra, alto, destra - sinistra, basso - alto), velo);
        if (dentro(xs)) {
            p.setPen(QPen(ColoreSecondo, 2, Qt::DashLine));
            p.drawLine(QPointF(xs, alto), QPointF(xs, basso));
        }
    }
    if (!dentro(xc))
        return;
    p.setPen(QPen(ColoreCursore, 2));
    p.drawLine(QPointF(xc, alto), QPointF(xc, basso));
    p.setRenderHint(QPainter::Antialiasing);
    for (const Striscia &s : m_strisce) {
        const double y = yPixel(s, reg.valore(s.canale, m_modello.cursore()));
        p.setPen(QPen(Qt::black, 1));
        p.setBrush(ColoreCursore);
        p.drawEllipse(QPointF(xc, std::clamp(y, double(s.rettangolo.top()), double(s.rettangolo.bottom()))),
                      4, 4);
    }
}

void GraficoVisore::keyPressEvent(QKeyEvent *evento)
{
    const double xMin = m_modello.xMin(), xMax = m_modello.xMax();
    const bool ctrl = evento->modifiers() & Qt::ControlModifier;
    switch (evento->key()) {
    case Qt::Key_Left:
        ctrl ? m_modello.pagina(-1) : m_modello.muovi(-1);
        break;
    case Qt::Key_Right:
        ctrl ? m_modello.pagina(1) : m_modello.muovi(1);
        break;
    case Qt::Key_PageUp:
        m_modello.pagina(-1);
        break;
    case Qt::Key_PageDown:
        m_modello.pagina(1);
        break;
    case Qt::Key_Home:
        m_modello.primo();
        break;
    case Qt::Key_End:
        m_modello.ultimo();
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        m_modello.zoomSulCursore(PassoTasti);
        break;
    case Qt::Key_Minus:
        m_modello.zoomSulCursore(1 / PassoTasti);
        break;
    case Qt::Key_Space:
        m_modello.segnaSecondo();
        break;
    default:
        QWidget::keyPressEvent(evento);
        return;
    }
    if (m_modello.xMin() != xMin || m_modello.xMax() != xMax)
        ridisegna();
    else
        update();
    emit cambiato();
}

void GraficoVisore::wheelEvent(QWheelEvent *evento)
{
    const double scatti = evento->angleDelta().y() / 120.0;
    if (scatti == 0)
        return;
    m_modello.zoom(std::pow(PassoRotella, scatti), xDaPixel(evento->position().x()));
    ridisegna();
    emit cambiato();
}

void GraficoVisore::mousePressEvent(QMouseEvent *evento)
{
    setFocus(Qt::MouseFocusReason);
    if (evento->button() != Qt::LeftButton)
        return;
    m_premuto = evento->pos();
    m_xMinPremuto = m_modello.xMin();
    m_trascinato = false;
}

void GraficoVisore::mouseMoveEvent(QMouseEvent *evento)
{
    if (!(evento->buttons() & Qt::LeftButton))
        return;
    const int dx = evento->pos().x() - m_premuto.x();
    if (!m_trascinato && std::abs(dx) < SogliaTrascinamento)
        return;
    m_trascinato = true;
    setCursor(Qt::ClosedHandCursor);
    const double larghezza = m_modello.xMax() - m_modello.xMin();
    const double xMin = m_xMinPremuto - dx * larghezza / std::max(m_area.width(), 1);
    m_modello.finestra(xMin, xMin + larghezza);
    ridisegna();
    emit cambiato();
}

void GraficoVisore::mouseReleaseEvent(QMouseEvent *evento)
{
    if (evento->button() != Qt::LeftButton)
        return;
    unsetCursor();
    if (m_trascinato || m_modello.vuoto() || !m_area.contains(evento->pos()))
        return;
    m_modello.impostaCursore(m_modello.registrazione().indiceVicino(xDaPixel(evento->position().x())));
    update();
    emit cambiato();
}

} // namespace kv
