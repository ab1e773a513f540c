#pragma once

#include "programming/ContestoProgrammazione.h"
#include "programming/DialogoProgSW.h"

#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>

class QGroupBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace kv {

// The software programming page: the releases in the software folder, the version and
// notes the archive keeps for the one chosen, and Programma, which writes it into the ECU
// with the bar counting the blocks. F2 programs, Esc leaves, Enter in the list chooses.
class ProgSW : public QWidget, private VistaProgSW
{
    Q_OBJECT
public:
    // Shows a message box and returns the key's code; with SecondoPredefinito among the flags,
    // the second key is the default.
    using Messaggio = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    explicit ProgSW(const ContestoProgrammazione &contesto, QWidget *parent = nullptr);
    ~ProgSW() override;

    // Who shows the box; without one, the program's message box over this page.
    void impostaMessaggio(Messaggio messaggio) { m_messaggio = std::move(messaggio); }

    // Captions, the software folder made if missing, and the list filled.
    void carica();
    // Fills LSoftware again from the folder; nothing is chosen afterwards.
    void ElencoSoftware();

    void Programma_Click();
    void Esci_Click();

    DialogoProgSW &dialogo() { return *m_dialogo; }

signals:
    // Esci: the page has ended.
    void chiusa();

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    // VistaProgSW
    void mostraSegnalazione(const kv::Messaggio &testo) override;
    void abilitaPagina(bool abilitata) override;
    void mostraBarra(bool visibile) override;
    void impostaBarra(int valore) override;
    void mostraMsg(const kv::Messaggio &testo, int flags, const kv::Messaggio &titolo) override;
    bool chiedi(const kv::Messaggio &testo, const kv::Messaggio &titolo) override;

    // A click on a node, or Enter on it.
    void nodoScelto();
    void caricaTesti();

    ContestoProgrammazione m_contesto;
    std::unique_ptr<DialogoProgSW> m_dialogo;
    Messaggio m_messaggio;

    QGroupBox *m_boxProg;
    QTreeWidget *m_lSoftware;
    QLabel *m_labVersione;
    QLabel *m_versione;
    QLabel *m_labNote;
    QLabel *m_note;
    QProgressBar *m_barraPercentuale;
    QLabel *m_segnalazione1;
    QPushButton *m_tastoProgramma;
    QPushButton *m_tastoEsci;
    QPointer<QWidget> m_fuoco;
};

} // namespace kv
