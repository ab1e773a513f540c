#pragma once

#include <QWidget>

#include <array>

class QLineEdit;

namespace kv {

class Korvantine;
class Lingua;
class SessioneLinea;

// The version of the ECU as identification read it.
class VisInf : public QWidget
{
    Q_OBJECT
public:
    VisInf(Korvantine &frame, SessioneLinea &linea, const Lingua &lingua, QWidget *parent = nullptr);

    // Code, vehicle, datum A, datum B.
    QString valore(int i) const;
    void aggiorna();

private:
    Korvantine &m_frame;
    SessioneLinea &m_linea;
    std::array<QLineEdit *, 4> m_infVis{};
};

} // namespace kv
