#pragma once

#include <QLineEdit>

namespace kv {

// The edit field of a tuning page: whole numbers only, typed from the keyboard, with the
// colours that tell the fitter where the focus is, what is wrong and what is locked. Taking
// the focus it selects its text, so that the first digit typed replaces it.
class CampoDato : public QLineEdit
{
    Q_OBJECT
public:
    static constexpr int LunghezzaMassima = 6;

    explicit CampoDato(QWidget *parent = nullptr);

    // The ECU adapts the value itself: read-only, shown green on black.
    void blocca(bool bloccato);
    bool bloccato() const { return m_bloccato; }

    // Marked by ControlloValori; the mark stays until the field is left again.
    void segnaErrato(bool errato);
    bool errato() const { return m_errato; }

    // The page's mask for this field, used when the fitter leaves it.
    void impostaMaschera(const QString &maschera) { m_maschera = maschera; }
    const QString &maschera() const { return m_maschera; }

    // Text as the page shows a value: by the mask, blanks in front up to the maximum length.
    void mostra(double valore, const QString &maschera);
    // The fitter has typed something other than what the page last showed or took.
    bool cambiato() const { return text().trimmed() != m_mostrato.trimmed(); }
    // Applica has taken what the field holds.
    void preso() { m_mostrato = text(); }
    static QString testoCampo(double valore, const QString &maschera, int lunghezza);

signals:
    // Focus left the field holding a number, after it has been formatted.
    void lasciato(double valore);

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void focusInEvent(QFocusEvent *evento) override;
    void focusOutEvent(QFocusEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;

private:
    enum class Aspetto {
        Normale,
        Fuoco,
        Errato,
        Bloccato
    };
    void colora(Aspetto aspetto);

    bool m_bloccato = false;
    bool m_errato = false;
    bool m_selezionaAlRilascio = false;
    QString m_maschera = QStringLiteral("#0");
    QString m_mostrato;
};

} // namespace kv
