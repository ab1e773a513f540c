#pragma once

#include "link/DatiLive.h"
#include "monitoring/ui/ContestoMonitor.h"

#include <QObject>
#include <QString>

#include <functional>
#include <map>

class QAction;
class QLabel;
class QMenu;
class QMenuBar;
class QToolBar;
class QWidget;

namespace kv {

// The recorder's controls of a monitor window: the toolbar MenuPrinc and the menus MenuP,
// MenuFile, MenuReg, with their captions and tooltips from the window's section of the
// language file, shown and enabled by the recording state; and, for the chart window, the
// keys to freeze the charts (MenuG) and the settings entry (MenuImp).
//
// Every command has a key as well: the menus' accelerators, and F2 card, F3 the viewer of
// recordings in a window of its own, F5 record, F6 pause, F7 stop, F8 freeze or unfreeze.
// Esc is the window's own.
class BarraRegistrazione : public QObject
{
    Q_OBJECT
public:
    // A message box: text, flags, title; returns the key pressed.
    using Messaggio = std::function<int(const QString &testo, int flags, const QString &titolo)>;
    // How the record card (Memorf) is run; without one it is shown modally over the
    // window. When it returns, the recording file is read again from the settings.
    using ApriScheda = std::function<void(QWidget *finestra)>;

    enum class Tipo {
        Strumenti,
        Grafici
    };

    BarraRegistrazione(const ContestoMonitor &contesto, QWidget *finestra, const QString &sezione, Tipo tipo);
    ~BarraRegistrazione() override;

    QMenuBar *menu() const { return m_menu; }
    QToolBar *barra() const { return m_barra; }
    // The recording state in plain words, red while recording, amber while paused: for the
    // window's status line, where it can be seen from the car.
    QLabel *indicatore() const { return m_indicatore; }
    // The toolbar key or menu entry by its name: "Inizio", "MenuReg_0", "MenuG_1"...
    QAction *azione(const QString &nome) const;

    void impostaMessaggio(Messaggio messaggio) { m_messaggio = std::move(messaggio); }
    void impostaApriScheda(ApriScheda apri) { m_apriScheda = std::move(apri); }
    // The status line that names the recording file.
    void impostaLabRegistro(QLabel *etichetta) { m_labRegistro = etichetta; }

    // Captions and tooltips, the stored file read and shown, the controls set by state.
    void carica();
    // AggiornaMenuRegistrazione for this window: its caption and its controls.
    void aggiorna();
    // The button handler: the key upper-cased and trimmed.
    void comando(const QString &chiave);
    // The freeze keys of the chart window: which of the two stands.
    void mostraBlocco(bool bloccato);
    // The window closes: what the ring holds goes to the file if recording, and a write
    // that fails is told now, while the window that recorded is still there.
    void chiudi();
    // The last write failure, if one waits: the recording has stopped; the fitter is told.
    void segnalaErrore();

signals:
    void esci();
    void blocca();
    void sblocca();

protected:
    // The ring record just written; alLimite when its index is at the upper bound.
    void campioneRegistrato(bool alLimite);

private:
    QAction *creaAzione(const QString &nome, const QString &chiave, QObject *genitore);
    void mostraLabRegistro(bool conFile = true);
    // Before a recording starts in a file that already holds one: add to it, or go on in a
    // new file; false when nothing is to start.
    bool sceltaFile();
    void apriScheda();

    ContestoMonitor m_contesto;
    QWidget *m_finestra;
    QString m_sezione;
    Tipo m_tipo;
    QMenuBar *m_menu;
    QToolBar *m_barra;
    QLabel *m_indicatore;
    std::map<QString, QAction *> m_azioni;
    std::vector<QMenu *> m_menuP;
    QLabel *m_labRegistro = nullptr;
    Messaggio m_messaggio;
    ApriScheda m_apriScheda;
    bool m_erroreInAttesa = false;
};

} // namespace kv
