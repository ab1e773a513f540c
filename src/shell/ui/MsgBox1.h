#pragma once

#include <QDialog>

#include <array>

class QLabel;
class QPushButton;

namespace kv {

class Lingua;

// The program's own message box: its button labels come from the language file, which the
// system's box could not do. The low four bits of the flags choose the buttons; the others
// are not looked at.
class MsgBox1 : public QDialog
{
    Q_OBJECT
public:
    static constexpr int Chiuso = 99; // the answer of a box closed without a button

    MsgBox1(const Lingua &lingua, QWidget *parent = nullptr);

    // Title, text, the one button set of the flags, and the focus on button number
    // predefinito of that set (the first one when there is no such button).
    void prepara(const QString &testo, int flags, const QString &titolo, int predefinito);

    // The code of the button pressed, Chiuso while none has been.
    int RispostaMsg() const { return m_risposta; }

    // The buttons of the set on view, left to right.
    QList<QPushButton *> tastiVisibili() const;

private:
    struct Insieme
    {
        QWidget *riquadro = nullptr;
        QList<QPushButton *> tasti;
    };

    void creaInsieme(int indice, const char *nome, std::initializer_list<std::pair<const char *, int>> tasti);

    const Lingua &m_lingua;
    QLabel *m_segnalazione;
    std::array<Insieme, 6> m_insiemi;
    int m_insiemeAttivo = 0;
    int m_risposta = Chiuso;
};

// One box, shown modally, for callers that have no main frame to go through.
int MostraMsg(const Lingua &lingua, const QString &testo, int flags, const QString &titolo,
              int predefinito = 0, QWidget *parent = nullptr);

} // namespace kv
