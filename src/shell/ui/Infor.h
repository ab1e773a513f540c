#pragma once

#include <QDialog>

namespace kv {

class Korvantine;

// The about box, opened by the logo of the menu.
class Infor : public QDialog
{
    Q_OBJECT
public:
    explicit Infor(Korvantine &frame);
};

} // namespace kv
