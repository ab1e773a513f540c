#pragma once

#include <QDialog>

class QLineEdit;

namespace kv {

class Korvantine;

// The access word of the service mode.
class Password : public QDialog
{
    Q_OBJECT
public:
    explicit Password(Korvantine &frame);

    void TastoOK();

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    Korvantine &m_frame;
    QLineEdit *m_parola;
    bool m_inVerifica = false;
};

} // namespace kv
