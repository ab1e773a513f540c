#pragma once

#include "monitoring/ModelloVisore.h"

#include <QWidget>

#include <functional>

class QAction;
class QLabel;
class QMenu;
class QTableWidget;

namespace kv {

class GraficoVisore;
class Lingua;
class TabellaCanali;

// The recording viewer: a recording chosen by its record card or as any .ACQ file, its
// channels on stacked charts over one time axis, the cursor's readout of every channel
// beside them (text a screen reader reads), the difference between two cursors, minimum,
// maximum and mean of what is in view, and the export of a stretch to CSV and of the
// charts to PNG.
//
// It needs no ECU and nothing of the program's state: the program's folder (for the
// archive of recordings), the language and the channel table. So it runs as a page of the
// main frame, as a window beside a monitor window, or alone for a file named on the
// command line.
class Visore : public QWidget
{
    Q_OBJECT
public:
    // A message box: text, flags, title; returns the key pressed.
    using Messaggio = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    Visore(QString percorsoApp, const Lingua &lingua, const TabellaCanali &canali, QWidget *parent = nullptr);

    void impostaMessaggio(Messaggio messaggio) { m_messaggio = std::move(messaggio); }
    // Whether a recording may be chosen by its card: opening the archive may write to the
    // program's folder, which the viewer run on its own leaves alone.
    void permettiSchede(bool permesse);

    // Reads the file and shows it; a file that cannot be read or is no recording is told,
    // and whatever was on show stays.
    bool apri(const QString &percorso);
    // F5: the file read again, the same stretch and cursor kept.
    void ricarica();
    void scegliScheda();
    void scegliFile();
    void esportaCsv();
    void esportaPng();
    // Esc: the page or the window goes.
    void esci();

    // The export itself, with no dialogue: true when written; a failure is told.
    bool esportaCsvIn(const QString &percorso);
    bool esportaPngIn(const QString &percorso);

    ModelloVisore &modello() { return m_modello; }
    GraficoVisore *grafico() const { return m_grafico; }

signals:
    void chiusa();

protected:
    void closeEvent(QCloseEvent *evento) override;

private:
    QAction *azione(QMenu *menu, const char *nome, const QString &testo, const QKeySequence &tasto);
    void aggiorna();
    void aggiornaLettura();
    void aggiornaCanali();
    void aggiornaTitolo();
    void mostraStato();
    QString numero(double v) const;
    QString secondi(double x) const;
    QString cartellaIniziale() const;
    bool esporta(const QString &percorso, const std::function<bool(QIODevice &)> &scrivi);

    QString m_percorsoApp;
    const Lingua &m_lingua;
    const TabellaCanali &m_canali;
    Messaggio m_messaggio;
    ModelloVisore m_modello;
    GraficoVisore *m_grafico;
    QTableWidget *m_tabella;
    QLabel *m_lettura;
    QLabel *m_stato;
    QLabel *m_tasti;
    QAction *m_apriScheda = nullptr;
    QAction *m_secondi = nullptr;
    std::vector<QAction *> m_azioniCanali;
    bool m_chiuso = false;
};

// The viewer in a window of its own beside the window given (a monitor window, whose stream
// goes on), on the recording named when it is there; the window goes when it is closed.
Visore *ApriVisore(const QString &percorsoApp, const Lingua &lingua, const TabellaCanali &canali,
                   const QString &registrazione, QWidget *accanto);

} // namespace kv
