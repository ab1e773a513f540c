#pragma once

#include "pages/ui/TelaioMessaPunto.h"

#include <array>

namespace kv {

// The work-zone page, the quick one: the main value of each working zone in four boxes, the
// partners worked out by Applica. Dialogue states 51, 52 and 53.
class MP_Lavoro : public TelaioMessaPunto
{
    Q_OBJECT
public:
    static constexpr int RigaTipoCO = 11;
    static constexpr int RigaTipoPC = 15;

    explicit MP_Lavoro(const ContestoPagina &contesto, QWidget *parent = nullptr);

protected:
    void mostraValore(int parametro, double valore) override;
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    void Lista_Click(int riga);

    // The selections of TipoCO and TipoPC as read, -1 until then; a list left takes its own.
    std::array<int, 2> m_selezioniLette{-1, -1};
};

} // namespace kv
