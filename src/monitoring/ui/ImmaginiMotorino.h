#pragma once

#include <QWidget>

#include <optional>

namespace kv {

// The stepper's position on its 0..255 scale (MotorinoZ with StepP): the reset position
// and the two control windows round it (normal control wide, idle control narrow) drawn
// as marker lines, and the pointer at the present position.
class ScalaMotorino : public QWidget
{
    Q_OBJECT
public:
    explicit ScalaMotorino(QWidget *parent = nullptr);

    // Fractions of the scale, 0 at the bottom.
    void impostaPosizione(double frazione);
    double posizione() const { return m_posizione; }
    void impostaMarcatori(std::optional<double> reset, std::optional<double> normaleSopra,
                          std::optional<double> normaleSotto, std::optional<double> minimoSopra,
                          std::optional<double> minimoSotto);
    std::optional<double> reset() const { return m_reset; }

    QSize sizeHint() const override { return {110, 260}; }
    QSize minimumSizeHint() const override { return {80, 140}; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    double m_posizione = 0;
    std::optional<double> m_reset, m_normaleSopra, m_normaleSotto, m_minimoSopra, m_minimoSotto;
};

// The stepper itself seen from the side (MotorinoG with StepG): the pintle runs out of the
// body with the position, over a travel ruler that marks the reset position.
class AttuatoreMotorino : public QWidget
{
    Q_OBJECT
public:
    explicit AttuatoreMotorino(QWidget *parent = nullptr);

    void impostaPosizione(double frazione);
    double posizione() const { return m_posizione; }
    void impostaReset(std::optional<double> frazione);

    QSize sizeHint() const override { return {220, 110}; }
    QSize minimumSizeHint() const override { return {150, 80}; }

protected:
    void paintEvent(QPaintEvent *) override;

private:
    double m_posizione = 0;
    std::optional<double> m_reset;
};

} // namespace kv
