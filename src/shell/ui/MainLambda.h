#pragma once

#include "shell/Menu.h"

#include <QAbstractButton>
#include <QWidget>

#include <array>
#include <vector>

class QGroupBox;
class QLabel;
class QPushButton;

namespace kv {

class Korvantine;
class Lingua;
class Logo;

// One entry of the option box: it takes the focus when the mouse passes over it, and the
// entry with the focus is the one in red. Only a mouse that moves counts: an entry that
// comes up under a pointer left still must not take the keys from where the fitter is.
class VoceOpzione : public QAbstractButton
{
    Q_OBJECT
public:
    // Colours in the program's blue-green-red numbers.
    static constexpr quint32 ColoreFuoco = 0x0000FF;
    static constexpr quint32 ColoreNormale = 0xC0C0C0;

    VoceOpzione(int indice, QWidget *parent = nullptr);
    QSize sizeHint() const override;
    QColor coloreTesto() const;

protected:
    void paintEvent(QPaintEvent *) override;
    void mouseMoveEvent(QMouseEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;

private:
    int m_indice;
};

// The main menu: five functions, the options of the one selected, the exit.
class MainLambda : public QWidget
{
    Q_OBJECT
public:
    MainLambda(Korvantine &frame, StatoMenu &menu, const StatoEcu &ecu, const Lingua &lingua,
               QWidget *parent = nullptr);

    void AggiornaMenu();
    // -1 clears the selection, 0 to 4 shows that function's options, 99 ends the program.
    void ScegliFunzione(int indice);
    // The focus on the first function that takes it.
    void daiFuoco();

    QPushButton *funzione(int i) const { return m_funzione[static_cast<size_t>(i)]; }
    VoceOpzione *opzione(int i) const { return m_opzioni[static_cast<size_t>(i)]; }

protected:
    void keyPressEvent(QKeyEvent *evento) override;

private:
    void cliccaOpzione(int indice);
    void fuocoSullaPrimaVoce();
    void esc();

    Korvantine &m_frame;
    StatoMenu &m_menu;
    const StatoEcu &m_ecu;
    const Lingua &m_lingua;
    std::array<QPushButton *, Menu::NumeroFunzioni> m_funzione{};
    std::array<VoceOpzione *, Menu::NumeroOpzioni> m_opzioni{};
    std::vector<Menu::Voce> m_voci;
    QGroupBox *m_boxMenu;
    QPushButton *m_uscita;
    Logo *m_logo;
    QLabel *m_versione;
    bool m_inApertura = false;
    bool m_inDomanda = false;
};

} // namespace kv
