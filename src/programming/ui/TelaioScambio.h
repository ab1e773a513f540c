#pragma once

#include "archives/Scambio.h"

#include <QWidget>

#include <functional>

class QBoxLayout;
class QDialog;
class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace kv {

class Lingua;
class SceltaCartella;

// What the exchange and deletion pages share on screen: the page's body on top, the folder of
// the medium (for the exchanges), the message line (Segnalazione), the lines of the entries
// passed over (Avvisi, shown only when there are some), the page's command on F2 and Esci on
// Esc. Questions go through the program's message box, with the wait cursor lifted while
// they are asked.
class TelaioScambio : public QWidget
{
    Q_OBJECT
public:
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;
    using Modale = std::function<int(QDialog &)>;

    // sezione: the page's section of the language file, its form name.
    TelaioScambio(const Lingua &lingua, QString percorsoApp, QString sezione, bool conCartella,
                  QWidget *parent = nullptr);

    // Who asks the questions and runs the folder dialog; without them, the program's message
    // box and the dialog on its own.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }
    void impostaModale(Modale modale);

    SceltaCartella *cartella() const { return m_cartella; }
    QString segnalazione() const;
    QStringList avvisi() const;

    // The page's command, as the button and F2 press it.
    virtual void Comando() = 0;

signals:
    void chiusa();

protected:
    void showEvent(QShowEvent *evento) override;

    // The wait cursor for as long as an operation runs.
    class Attesa
    {
    public:
        Attesa();
        ~Attesa();
        Attesa(const Attesa &) = delete;
        Attesa &operator=(const Attesa &) = delete;
    };

    const Lingua &lingua() const { return m_lingua; }
    const QString &percorsoApp() const { return m_percorsoApp; }
    // Where the page puts its body, above the folder.
    QBoxLayout *corpo() const { return m_corpo; }
    // Where the folder goes (a box of the page's, or the frame's own place).
    void mettiCartella(QBoxLayout *dove);
    QPushButton *comando() const { return m_comando; }
    QPushButton *esci() const { return m_esci; }
    QString testo(const QString &chiave) const;
    QString testo(const Messaggio &m) const;
    // Caption, the two buttons (the command's caption by its key of TASTI), the folder's label.
    void caricaTesti(const QString &tastoComando, const QString &etichettaCartella);

    void mostraSegnalazione(const QString &testo);
    void mostra(const EsitoScambio &esito);
    // A yes-or-no question with the title of the program; true for yes.
    bool chiedi(const Messaggio &testo);
    // An information box with OK.
    void avvisa(const QString &testo);

private:
    const Lingua &m_lingua;
    QString m_percorsoApp;
    QString m_sezione;
    Domanda m_domanda;
    QBoxLayout *m_corpo;
    SceltaCartella *m_cartella = nullptr;
    QLabel *m_segnalazione;
    QPlainTextEdit *m_avvisi;
    QPushButton *m_comando;
    QPushButton *m_esci;
};

} // namespace kv
