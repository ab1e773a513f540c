#pragma once

#include "programming/FileMappa.h"
#include "shell/IdPagina.h"

#include "shell/ui/BoxSalvaMappa.h"

#include <QPointer>

#include <QWidget>

#include <array>
#include <functional>
#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;
class QTreeWidget;

namespace kv {

class Lingua;
class MappaSenzaEcu;
class TelaioMessaPunto;

// A map of the archive edited at the desk, with no ECU: chosen in the tree (Enter or F3), it
// is opened on a line of its own that its image answers, and every tuning page of the menu's
// mode works on it as on an ECU, in place of this page until it is left. The title and the
// strip say all the while that no ECU is behind it, and what the pages store lands in the
// image only. The edited map is filed under a new name (F2), by the map tree's rules; leaving
// (Esc) with changes not filed asks first.
class ModificaSenzaEcu : public QWidget
{
    Q_OBJECT
public:
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    ModificaSenzaEcu(QString percorsoApp, const Lingua &lingua, bool assistenza, QWidget *parent = nullptr);
    ~ModificaSenzaEcu() override;

    // Who asks this page's and the tuning pages' questions; without one, the program's box.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }
    // Captions and the tree.
    void carica();

    // The map opened for editing. A file the strict check refuses is not: the message line
    // names its first bad record. A map with changes not filed is replaced after a question.
    bool apriMappa(const ChiaveMappa &chiave);
    // A tuning page of the list on the open map, loaded; null when there is none to open.
    TelaioMessaPunto *apriPagina(IdPagina id);
    void Salva();
    void Esci();

    MappaSenzaEcu *mappa() const { return m_mappa.get(); }
    TelaioMessaPunto *pagina() const { return m_pagina; }
    QTreeWidget *LMappe() const { return m_albero; }
    QListWidget *Pagine() const { return m_pagine; }
    QComboBox *Impianto() const { return m_boxSalva->impianto(); }
    // Make, model, map name and note of the map it is filed as.
    QLineEdit *campo(int n) const { return m_boxSalva->campo(n); }
    QString segnalazione() const;

signals:
    void chiusa();
    // For the main frame's message line: the mark of a map with no ECU, and what a page says.
    void segnalazione1(const QString &testo);

protected:
    void hideEvent(QHideEvent *evento) override;

private:
    QString testo(const QString &chiave) const;
    QString marchio() const;
    void mostraSegnalazione(const QString &testo);
    int domanda(const QString &testo, int flags);
    void riempiAlbero(const ChiaveMappa &scelta);
    void riempiPagine();
    void mostraMappa();
    void paginaChiusa();
    void aggiornaTitolo();

    QString m_percorsoApp;
    const Lingua &m_lingua;
    bool m_assistenza;
    Domanda m_domanda;
    std::unique_ptr<MappaSenzaEcu> m_mappa;
    QPointer<TelaioMessaPunto> m_pagina;

    QStackedWidget *m_pila;
    QWidget *m_banco;
    QLabel *m_labAlbero;
    QTreeWidget *m_albero;
    QLabel *m_labMappa;
    QLabel *m_nome;
    QLabel *m_scala;
    QLabel *m_labPagine;
    QListWidget *m_pagine;
    QPushButton *m_apri;
    BoxSalvaMappa *m_boxSalva;
    QPushButton *m_salva;
    QPushButton *m_esci;
    QLabel *m_segnalazione;
};

} // namespace kv
