#pragma once

#include <QWidget>

#include <functional>

class QDialog;
class QLabel;
class QLineEdit;
class QPushButton;

namespace kv {

class Lingua;

// The one folder of an exchange medium: typed (with completion of folder names), or chosen in
// the desktop's folder dialog, whose side bar lists the mounted volumes, removable media
// first. Enter in the field, or a folder chosen in the dialog, confirms it.
class SceltaCartella : public QWidget
{
    Q_OBJECT
public:
    using Modale = std::function<int(QDialog &)>;

    explicit SceltaCartella(QWidget *parent = nullptr);

    // Captions from the language file: the field's label, the button, the dialog's title.
    void caricaTesti(const Lingua &lingua, const QString &etichetta);
    // Who runs the dialog; without one, it runs by itself.
    void impostaModale(Modale modale) { m_modale = std::move(modale); }

    QString cartella() const;
    void impostaCartella(const QString &cartella);
    QLineEdit *campo() const { return m_campo; }
    QPushButton *sfoglia() const { return m_sfoglia; }

    // The folder dialog, as the button opens it.
    void Sfoglia();

signals:
    // A folder has been confirmed (Enter, or the dialog); the text may be empty.
    void cartellaScelta(const QString &cartella);

private:
    QLabel *m_etichetta;
    QLineEdit *m_campo;
    QPushButton *m_sfoglia;
    QString m_titolo;
    Modale m_modale;
};

} // namespace kv
