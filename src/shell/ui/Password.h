#pragma once

#include <QDialog>

class QLineEdit;

namespace kv {

class Korvantine;
class Lingua;
class StatoMenu;

// The access word of the service mode.
class Password : public QDialog
{
    Q_OBJECT
public:
    Password(Korvantine &frame, StatoMenu &menu, const Lingua &lingua);

    void TastoOK();

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    Korvantine &m_frame;
    StatoMenu &m_menu;
    const Lingua &m_lingua;
    QLineEdit *m_parola;
    bool m_inVerifica = false;
};

} // namespace kv
