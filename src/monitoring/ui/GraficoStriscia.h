#pragma once

#include <QColor>
#include <QPixmap>
#include <QPointF>
#include <QString>
#include <QWidget>

#include <array>
#include <optional>
#include <vector>

namespace kv {

// A strip chart for the live stream: up to two curves against the sample number, each on
// a vertical axis of its own (the second one on the right, shown only when asked for), and
// two horizontal cursors. Made to be read from a metre away: large bold figures, thick
// lines, bright colours on a dark ground.
//
// Drawing follows the stream: a point appended paints only the new segment onto the kept
// picture and repaints that small rectangle. The whole strip is drawn again only when an
// axis, a caption, the data as a whole or the size changes, and then once, at the next
// paint, however many of those changed meanwhile.
class GraficoStriscia : public QWidget
{
    Q_OBJECT
public:
    enum Asse {
        AsseX = 0,
        AsseY = 1,  // the curve 0
        AsseY2 = 2, // the curve 1, on the right
    };
    static constexpr int Tracce = 2;
    static constexpr int Cursori = 2;

    explicit GraficoStriscia(QWidget *parent = nullptr);

    // ---- axes
    void impostaTitolo(Asse asse, const QString &titolo);
    QString titolo(Asse asse) const;
    // A bottom above the top is taken swapped; equal bounds show one unit around them.
    void impostaScala(Asse asse, double minimo, double massimo);
    double minimo(Asse asse) const;
    double massimo(Asse asse) const;
    // Major divisions carry a figure and a grid line, minor ones a short tick.
    void impostaDivisioni(Asse asse, int maggiori, int minori);
    // A number mask as FormattaNumero takes it, "#0" to start with.
    void impostaFormato(Asse asse, const QString &maschera);
    void mostraSecondoAsse(bool mostra);
    bool secondoAsse() const { return m_secondoAsse; }

    // ---- curves
    void impostaColore(int traccia, const QColor &colore);
    // Every curve emptied.
    void azzera();
    void aggiungiPunto(int traccia, double x, double y);
    // A curve replaced as a whole (a replot from a buffer).
    void impostaPunti(int traccia, std::vector<QPointF> punti);
    const std::vector<QPointF> &punti(int traccia) const;

    // ---- cursors: a horizontal line at y; x is kept for whoever asks
    void impostaCursore(int cursore, double x, double y);
    void mostraCursore(int cursore, bool mostra);
    bool cursoreVisibile(int cursore) const;
    double xCursore(int cursore) const;
    double yCursore(int cursore) const;
    void impostaColoreCursore(int cursore, const QColor &colore);

    // How often the whole strip has been drawn, and how many single segments since.
    int ridisegniCompleti() const { return m_ridisegni; }
    int segmentiDisegnati() const { return m_segmenti; }
    // The rectangle of the plot inside the widget, as last laid out.
    QRect areaTracciato() const { return m_area; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    // The wheel turned or the plot was dragged: the window asked to move by so many whole
    // units of the X axis (less than 0: towards the start). Whoever shows the chart decides.
    void scorrimento(double asseX);

protected:
    void paintEvent(QPaintEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;
    void changeEvent(QEvent *evento) override;
    void wheelEvent(QWheelEvent *evento) override;
    void mousePressEvent(QMouseEvent *evento) override;
    void mouseMoveEvent(QMouseEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;

private:
    struct DatiAsse
    {
        double minimo = 0;
        double massimo = 100;
        int maggiori = 5;
        int minori = 0;
        QString titolo;
        QString formato = QStringLiteral("#0");
    };
    struct Cursore
    {
        double x = 0;
        double y = 0;
        bool visibile = false;
        QColor colore;
    };

    void daRidisegnare();
    void ridisegna();
    void impagina();
    void disegnaAsseY(QPainter &p, Asse asse, bool destra);
    void disegnaAsseX(QPainter &p);
    void disegnaTraccia(QPainter &p, int traccia);
    void disegnaCursori(QPainter &p, const QRect &zona);
    QPen pennaTraccia(int traccia) const;
    QPointF mappa(int traccia, const QPointF &punto) const;
    double mappaY(Asse asse, double y) const;
    QRect rettangoloCursore(int cursore) const;
    void sfoltisci();
    void chiediScorrimento(double asseX);
    QFont fontCifre() const;
    QFont fontTitoli() const;

    std::array<DatiAsse, 3> m_assi;
    std::array<std::vector<QPointF>, Tracce> m_punti;
    std::array<QColor, Tracce> m_colori;
    std::array<Cursore, Cursori> m_cursori;
    bool m_secondoAsse = false;

    QPixmap m_immagine;
    QRect m_area;
    bool m_daRidisegnare = true;
    std::optional<double> m_trascinoDa; // x of the pointer while the plot is dragged
    double m_residuo = 0;               // the part of a unit not yet asked for
    int m_ridisegni = 0;
    int m_segmenti = 0;
};

} // namespace kv
