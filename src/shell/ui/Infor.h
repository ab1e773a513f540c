#pragma once

#include <QDialog>

namespace kv {

class Korvantine;
class Lingua;

// The about box, opened by the logo of the menu.
class Infor : public QDialog
{
    Q_OBJECT
public:
    Infor(Korvantine &frame, const Lingua &lingua);
};

} // namespace kv
