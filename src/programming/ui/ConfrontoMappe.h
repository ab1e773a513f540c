#pragma once

#include "pages/ConfrontoMappe.h"
#include "programming/FileMappa.h"

#include "shell/ui/BoxSalvaMappa.h"

#include <QWidget>

#include <array>
#include <functional>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QTableWidget;
class QTreeView;
class QTreeWidget;

namespace kv {

class Catalogo;
class Lingua;
class ModelloAlberoMappe;
class SequenzaRichieste;
class SessioneLinea;

// Two maps side by side, by keyboard: maps are chosen in the archive tree (F3 takes the
// current one as A, F4 as B); every parameter shows with A, B and the difference, grouped by
// the tuning page that edits it, and the lambda map, the full-load grid and the pump grid
// show as grids, the differing values marked. Values of B are copied into an archived A one
// at a time (F5), a grid or a page at a time (F6), or all at once (F7); the edited A is then
// saved under a new map name (F2), by the rules of the map tree.
//
// With the connected ECU handed in, either side may be the ECU now (Shift+F3, Shift+F4), read
// as a map read reads it. Values copied into an ECU A go to its RAM at once, as a tuning page's
// Apply; F9 stores them in its EEPROM after the pages' question, whose No puts its RAM back.
//
// It takes what it needs and nothing else: the program's folder, the catalogue, the language.
// Either side is any source of a 512-byte image and a ScalaLambda (impostaSorgente).
class ConfrontoMappe : public QWidget
{
    Q_OBJECT
public:
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;
    enum Lato {
        A = 0,
        B = 1
    };

    ConfrontoMappe(QString percorsoApp, const Catalogo &catalogo, const Lingua &lingua,
                   QWidget *parent = nullptr);
    ~ConfrontoMappe() override;

    // Who asks the page's questions; without one, the program's message box over the page.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }
    // Captions and the tree.
    void carica();

    // A map of the archive as one side. A file the strict check refuses is not taken: the
    // side stays as it was and the message line says which record is bad. An A holding
    // unsaved copies is replaced only after a question.
    bool scegliArchiviata(Lato lato, const ChiaveMappa &chiave);
    // Any source as one side.
    void impostaSorgente(Lato lato, SorgenteMappa sorgente);
    // The connected ECU, as a source and as a target.
    void impostaEcu(SessioneLinea &linea);
    // The ECU's map area and ScalaLambda read, then taken as one side. False when no ECU is
    // there to read, or a read or write of the page runs.
    bool leggiEcu(Lato lato);
    // The values copied into an ECU A stored in its EEPROM, or its RAM put back, as the
    // fitter answers; then poi, unless he cancels or the ECU fails.
    void memorizzaEcu(std::function<void()> poi = {});

    const SorgenteMappa &sorgente(Lato lato) const { return m_sorgenti[size_t(lato)]; }
    const Confronto &confronto() const { return m_confronto; }
    // A holds values copied from B that are not saved yet.
    bool modificata() const { return m_modificata; }

    // The commands.
    void prendi(Lato lato); // the tree's current map
    void copiaValore();
    void copiaGriglia();
    void copiaDifferenze();
    void Salva();
    void Esci();

    QTreeView *LMappe() const { return m_albero; }
    QTreeWidget *Parametri() const { return m_parametri; }
    QCheckBox *SoloDifferenze() const { return m_soloDifferenze; }
    QTabWidget *Schede() const { return m_schede; }
    QTableWidget *griglia(int indice, Lato lato) const { return m_griglie[size_t(indice)][size_t(lato)]; }
    // Kit, make, model, map name and note of the map A is saved as.
    QComboBox *Impianto() const { return m_boxSalva->impianto(); }
    QLineEdit *campo(int n) const { return m_boxSalva->campo(n); }
    QString segnalazione() const;

signals:
    void chiusa();

private:
    QString testo(const QString &chiave) const;
    void mostraSegnalazione(const QString &testo);
    int domanda(const QString &testo, int flags);
    // Both sides decoded and compared again, and everything on view with them.
    void aggiorna();
    void riempiParametri();
    void riempiGriglia(int indice);
    void applicaFiltro();
    void mostraLato(Lato lato);
    // The values of those entries copied from B into A; what the message line says.
    void copia(const std::vector<int> &parametri);
    // The entry under the keyboard: the parameter row, or the grid cell; -1 none.
    int voceCorrente() const;
    // Requests to the ECU with the page disabled; fine(true) once all are acknowledged.
    void scriviEcu(const QList<QByteArray> &richieste, std::function<void(bool)> fine);
    void abilita(bool abilitata);

    QString m_percorsoApp;
    const Catalogo &m_catalogo;
    const Lingua &m_lingua;
    Domanda m_domanda;
    std::array<SorgenteMappa, 2> m_sorgenti;
    Confronto m_confronto;
    bool m_modificata = false;
    SessioneLinea *m_linea = nullptr;
    std::unique_ptr<SequenzaRichieste> m_ecu;
    QByteArray m_ecuLetta; // what A's ECU held as read, or as stored last
    QWidget *m_fuoco = nullptr;

    ModelloAlberoMappe *m_modello;
    QTreeView *m_albero;
    QLabel *m_labAlbero;
    std::array<QLabel *, 2> m_titoli{};
    std::array<QLabel *, 2> m_nomi{};
    std::array<QLabel *, 2> m_scale{};
    std::array<QPushButton *, 2> m_prendi{};
    std::array<QPushButton *, 2> m_prendiEcu{};
    QPushButton *m_memorizza;
    QTabWidget *m_schede;
    QTreeWidget *m_parametri;
    QCheckBox *m_soloDifferenze;
    QLabel *m_conteggio;
    std::array<std::array<QTableWidget *, 2>, 3> m_griglie{};
    std::array<QPushButton *, 3> m_copie{};
    BoxSalvaMappa *m_boxSalva;
    QPushButton *m_salva;
    QPushButton *m_esci;
    QLabel *m_segnalazione;
};

} // namespace kv
