#pragma once

#include "programming/ContestoProgrammazione.h"
#include "programming/DialogoMappe.h"

#include <QWidget>

#include <functional>

class QLabel;
class QProgressBar;

namespace kv {

// A page that runs a map read or write, as the dialogue sees it: the message line, the
// progress bar, the questions and the page's end. The page lays the line and the bar out and
// says what being disabled means for it.
class PaginaVistaMappe : public QWidget, protected VistaMappe
{
    Q_OBJECT
public:
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    // sezione: the page's section of the language file, its form name.
    PaginaVistaMappe(const ContestoProgrammazione &contesto, QString sezione, QWidget *parent = nullptr);

    // Who asks the page's questions; without one, the program's message box over the page.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }

    const ContestoProgrammazione &contesto() const { return m_contesto; }
    QString segnalazione() const;

signals:
    void chiusa();

protected:
    QString testo(const QString &chiave) const;
    // The message line, with a text of the page's own.
    void mostraTesto(const QString &testo);
    QLabel *rigaSegnalazione() const { return m_segnalazione; }
    QProgressBar *barra() const { return m_barra; }

    // VistaMappe
    void mostraSegnalazione(const Messaggio &testo) override;
    void mostraAvanzamento(int valore, int massimo) override;
    void nascondiAvanzamento() override;
    void beep() override;
    int domanda(const Messaggio &testo, int flags, const Messaggio &titolo) override;
    void chiudiPagina() override;

private:
    ContestoProgrammazione m_contesto;
    QString m_sezione;
    Domanda m_domanda;
    QProgressBar *m_barra;
    QLabel *m_segnalazione;
};

} // namespace kv
