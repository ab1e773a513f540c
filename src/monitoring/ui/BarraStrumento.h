#pragma once

#include <QColor>
#include <QWidget>

#include <array>
#include <optional>

namespace kv {

// A vertical bar instrument (Dato_TPS, Dato_Lambda) on a scale of its own, with up to three
// set-point markers drawn across it. Only a change repaints it.
class BarraStrumento : public QWidget
{
    Q_OBJECT
public:
    static constexpr int NumeroMarcatori = 3;

    explicit BarraStrumento(QWidget *parent = nullptr);

    double minimo() const { return m_minimo; }
    double massimo() const { return m_massimo; }
    void impostaScala(double minimo, double massimo);

    // The caller keeps the value within the scale.
    void impostaValore(double valore);
    double valore() const { return m_valore; }

    // Bottom and top colours of the filled part.
    void impostaColori(const QColor &basso, const QColor &alto);

    // Marker i at a fraction of the height (0 bottom, 1 top); none hides it.
    void impostaMarcatore(int i, std::optional<double> frazione, const QColor &colore);
    std::optional<double> marcatore(int i) const;

    QSize sizeHint() const override { return {110, 260}; }
    QSize minimumSizeHint() const override { return {80, 140}; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    double colonnaNumeri() const;
    QRectF traccia() const; // the bar's track inside the widget

    struct Marca
    {
        std::optional<double> frazione;
        QColor colore;
    };

    double m_minimo = 0;
    double m_massimo = 255;
    double m_valore = 0;
    QColor m_basso = QColor(0x1E, 0x88, 0xE5);
    QColor m_alto = QColor(0x4D, 0xD0, 0xE1);
    std::array<Marca, NumeroMarcatori> m_marche{};
};

} // namespace kv
