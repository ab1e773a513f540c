#pragma once

#include <QPixmap>
#include <QWidget>

class QPainter;

namespace kv {

// The round engine-speed gauge (Dato_Giri): a needle over a scale in thousands of RPM,
// drawn at any size. Only a change of value repaints it.
class Contagiri : public QWidget
{
    Q_OBJECT
public:
    explicit Contagiri(QWidget *parent = nullptr);

    void impostaScala(double minimo, double massimo);
    double minimo() const { return m_minimo; }
    double massimo() const { return m_massimo; }

    // The needle goes to the value as given; the caller keeps it within the scale.
    void impostaValore(double valore);
    double valore() const { return m_valore; }

    // The unit printed on the dial ("x1000 RPM").
    void impostaDidascalia(const QString &testo);
    // From here to the top of the scale the dial is red.
    void impostaZonaRossa(double da);

    QSize sizeHint() const override { return {260, 260}; }
    QSize minimumSizeHint() const override { return {140, 140}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int w) const override { return w; }

protected:
    void paintEvent(QPaintEvent *) override;
    void changeEvent(QEvent *evento) override;

private:
    double angolo(double v) const;
    void disegnaQuadrante(QPainter &p) const;

    double m_minimo = 0;
    double m_massimo = 8;
    double m_zonaRossa = 6.5;
    double m_valore = 0;
    QString m_didascalia;
    QPixmap m_quadrante; // the dial without the needle, as last drawn
};

} // namespace kv
