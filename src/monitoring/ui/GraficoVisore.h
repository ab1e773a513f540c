#pragma once

#include "monitoring/RegistrazioneAcq.h"

#include <QImage>
#include <QWidget>

#include <vector>

namespace kv {

class ModelloVisore;
class TabellaCanali;

// The viewer's charts: one strip for each channel on show, stacked over one time axis, each
// in its channel's colour and on a scale found from what is in view as the live charts find
// theirs; the cursor and the second cursor across all of them.
//
// At most one vertical stroke is drawn for each column of pixels, from the least to the
// greatest sample that falls in it, written straight into the picture's pixels, so a day of
// samples draws as fast as a minute. A
// sample missing between two others (a pause) leaves the line broken. The strips are kept
// as a picture: moving a cursor paints the cursors alone over it.
//
// Keys: Left and Right move the cursor by a sample, with Ctrl (or Page Up and Page Down) by
// a screenful; Home and End go to the ends; + and - zoom round the cursor; Space sets the
// second cursor. The wheel zooms round the pointer, dragging pans, a click sets the cursor.
class GraficoVisore : public QWidget
{
    Q_OBJECT
public:
    GraficoVisore(ModelloVisore &modello, const TabellaCanali &canali, QWidget *parent = nullptr);

    // The view, the channels or the recording changed: everything is drawn again.
    void ridisegna();

    // The caption of the time axis in seconds; in samples it is the sample counter's.
    void impostaTitoloSecondi(const QString &titolo) { m_titoloSecondi = titolo; }

    // The channel's colour, as in the readout beside the charts.
    static QColor coloreCanale(int canale);

    // The rectangle the strips share, as last laid out.
    QRect areaTracciato() const { return m_area; }

    QSize sizeHint() const override { return {720, 520}; }
    QSize minimumSizeHint() const override { return {320, 200}; }

signals:
    // The cursor, the view or the second cursor was moved from here.
    void cambiato();

protected:
    void paintEvent(QPaintEvent *evento) override;
    void resizeEvent(QResizeEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;
    void wheelEvent(QWheelEvent *evento) override;
    void mousePressEvent(QMouseEvent *evento) override;
    void mouseMoveEvent(QMouseEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;

private:
    struct Striscia
    {
        int canale = 0;
        QRect rettangolo; // the plot, without the title above it
        double minimo = 0;
        double massimo = 1;
    };

    void impagina();
    void disegnaTutto();
    void disegnaStriscia(QPainter &p, const Striscia &s);
    // True when the curve is drawn sample by sample (few in view), false when by columns.
    bool perCampioni(const Striscia &s) const;
    void disegnaCampioni(QPainter &p, const Striscia &s);
    void disegnaColonne(const Striscia &s);
    void disegnaAsseX(QPainter &p);
    void disegnaCursori(QPainter &p);
    double xPixel(double x) const;
    double xDaPixel(double px) const;
    double yPixel(const Striscia &s, double v) const;
    QFont fontCifre() const;

    ModelloVisore &m_modello;
    const TabellaCanali &m_canali;
    QString m_titoloSecondi;
    std::vector<Striscia> m_strisce;
    std::vector<RegistrazioneAcq::ColonnaPixel> m_colonne;
    QImage m_immagine;
    QRect m_area;
    bool m_daRidisegnare = true;
    QPoint m_premuto;
    double m_xMinPremuto = 0;
    bool m_trascinato = false;
};

} // namespace kv
