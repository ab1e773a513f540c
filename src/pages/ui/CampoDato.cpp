#include "pages/ui/CampoDato.h"

#include "pages/DialogoPagina.h"
#include "shell/ui/Stile.h"
#include "variables/Formato.h"

#include <QKeyEvent>

#include <utility>

namespace kv {

using namespace Tavolozza;

CampoDato::CampoDato(QWidget *parent) : QLineEdit(parent)
{
    setMaxLength(LunghezzaMassima);
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    // Pasting would bypass the key filter.
    setContextMenuPolicy(Qt::NoContextMenu);
    colora(Aspetto::Normale);
}

void CampoDato::colora(Aspetto aspetto)
{
    QPalette p = palette();
    QColor sfondo = SfondoCampo;
    QColor testo = TestoCampo;
    switch (aspetto) {
    case Aspetto::Normale:
        break;
    case Aspetto::Fuoco:
        sfondo = SfondoFuoco;
        testo = TestoChiaro;
        break;
    case Aspetto::Errato:
        sfondo = SfondoErrato;
        testo = TestoChiaro;
        break;
    case Aspetto::Bloccato:
        sfondo = SfondoBloccato;
        testo = TestoBloccato;
        break;
    }
    p.setColor(QPalette::Base, sfondo);
    p.setColor(QPalette::Text, testo);
    // The selected text in reverse, inside the focus colour: what the next digit replaces is
    // seen to be selected, and a field that is not selected does not look so.
    p.setColor(QPalette::Highlight, testo);
    p.setColor(QPalette::HighlightedText, sfondo);
    setPalette(p);
}

void CampoDato::blocca(bool bloccato)
{
    m_bloccato = bloccato;
    setReadOnly(bloccato);
    colora(bloccato ? Aspetto::Bloccato : Aspetto::Normale);
}

void CampoDato::segnaErrato(bool errato)
{
    m_errato = errato;
    if (m_bloccato)
        return;
    colora(errato ? Aspetto::Errato : hasFocus() ? Aspetto::Fuoco : Aspetto::Normale);
}

QString CampoDato::testoCampo(double valore, const QString &maschera, int lunghezza)
{
    const QString testo = FormattaNumero(valore, maschera);
    return testo.rightJustified(lunghezza, QLatin1Char(' ')).right(lunghezza);
}

void CampoDato::mostra(double valore, const QString &maschera)
{
    m_maschera = maschera;
    m_mostrato = testoCampo(valore, maschera, maxLength());
    setText(m_mostrato);
}

void CampoDato::keyPressEvent(QKeyEvent *evento)
{
    if (evento->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    const int tasto = evento->key();
    if (tasto == Qt::Key_Escape) {
        evento->ignore(); // the page's own key
        return;
    }
    if (tasto == Qt::Key_Return || tasto == Qt::Key_Enter) {
        focusNextChild();
        return;
    }
    if (tasto == Qt::Key_Backspace || tasto == Qt::Key_Delete) {
        if (!m_bloccato)
            QLineEdit::keyPressEvent(evento);
        return;
    }
    const QString testo = evento->text();
    if (testo.isEmpty()) {
        QLineEdit::keyPressEvent(evento); // moving the cursor, or a key for the page
        return;
    }
    if (m_bloccato)
        return;
    const QChar c = testo.at(0);
    if (c == QLatin1Char(' ')) {
        clear();
    } else if (c.isDigit() && c.unicode() < 128) {
        QLineEdit::keyPressEvent(evento);
    } else if (c == QLatin1Char('-') && text().trimmed().isEmpty()) {
        QLineEdit::keyPressEvent(evento);
    }
    // Anything else, the decimal point and comma among them, is dropped.
}

void CampoDato::focusInEvent(QFocusEvent *evento)
{
    if (!m_bloccato) {
        // The focus colours win over the red mark: the fitter must see where he types.
        colora(Aspetto::Fuoco);
        if (text() != text().trimmed())
            setText(text().trimmed());
    }
    QLineEdit::focusInEvent(evento);
    // However the field is reached, the first digit typed replaces what it holds. A click
    // places the cursor after this: the selection is made again when the button is let go.
    selectAll();
    m_selezionaAlRilascio = evento->reason() == Qt::MouseFocusReason;
}

void CampoDato::mouseReleaseEvent(QMouseEvent *evento)
{
    QLineEdit::mouseReleaseEvent(evento);
    // A drag chose a part on purpose.
    if (std::exchange(m_selezionaAlRilascio, false) && !hasSelectedText())
        selectAll();
}

void CampoDato::focusOutEvent(QFocusEvent *evento)
{
    QLineEdit::focusOutEvent(evento);
    if (m_bloccato)
        return;
    // A box over the page is not the fitter leaving the field: a red mark stays for him to
    // mend when he comes back.
    const bool sopra =
        evento->reason() == Qt::ActiveWindowFocusReason || evento->reason() == Qt::PopupFocusReason;
    if (!sopra || !m_errato) {
        m_errato = false;
        colora(Aspetto::Normale);
    }
    if (!TestoNumerico(text()))
        return;
    const double valore = ValNumero(text());
    setText(testoCampo(valore, m_maschera, maxLength()));
    emit lasciato(valore);
}

} // namespace kv
