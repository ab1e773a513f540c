#pragma once

#include <QWidget>

#include <array>

class QLineEdit;

namespace kv {

class Korvantine;

// The version of the ECU as identification read it.
class VisInf : public QWidget
{
    Q_OBJECT
public:
    explicit VisInf(Korvantine &frame, QWidget *parent = nullptr);

    // Code, vehicle, datum A, datum B.
    QString valore(int i) const;
    void aggiorna();

private:
    Korvantine &m_frame;
    std::array<QLineEdit *, 4> m_infVis{};
};

} // namespace kv
