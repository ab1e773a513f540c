#pragma once

#include "programming/ui/PaginaVistaMappe.h"

#include <QPointer>

class QGridLayout;
class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;
class QTreeView;

namespace kv {

class ModelloAlberoMappe;

// What ReadMappe and ProgMappe share on screen: the tree of plants, makes and models
// (LMappe) with the maps of the chosen model beside it (Mappe), the page's own fields,
// the progress bar, the message line, the page's command on F2 and Esci on Esc.
//
// The tree and the list are driven by the arrows: a node or a map counts as clicked as soon
// as it is the current one. Enter in them moves on as Tab does.
class TelaioMappe : public PaginaVistaMappe
{
    Q_OBJECT
public:
    // sezione: the page's section of the language file, its form name.
    TelaioMappe(const ContestoProgrammazione &contesto, QString sezione, QWidget *parent = nullptr);

    // Captions, the archive checked, the tree filled.
    void carica();

    QTreeView *LMappe() const { return m_albero; }
    QListWidget *Mappe() const { return m_mappe; }
    ModelloAlberoMappe &modello() const { return *m_modello; }

    // The tree built again from disk and catalogue; the node of those names (as deep as
    // they go) made the current one.
    void aggiornaAlbero(const ChiaveMappa &scelta = {});
    // The node and map the fitter has chosen, -1 for none.
    int nodoScelto() const { return m_nodo; }
    int mappaScelta() const;

protected:
    // Where a page puts its fields: a grid on the right of the lists.
    QGridLayout *areaCampi() const { return m_campi; }
    QPushButton *comando() const { return m_comando; }
    QPushButton *esci() const { return m_esci; }
    // The focus moves because the page is disabled for a transfer or enabled after it: no
    // field is entered or left by the fitter then.
    bool fuocoDaAbilitazione() const { return m_abilitazione; }

    // A node of the tree has become the current one (-1: none); the map list is filled
    // already.
    virtual void nodoCliccato(int nodo) = 0;
    // An entry of Mappe has become the current one.
    virtual void mappaCliccata(int nodo) = 0;
    virtual void Comando() = 0;
    virtual void Esci() = 0;
    // The page's own captions, after the frame's.
    virtual void caricaTestiAltrove() {}
    // The first widget the fitter is on, in the tab order after the lists.
    virtual QList<QWidget *> ordineCampi() const = 0;

    // VistaMappe
    void abilitaPagina(bool abilitata) override;

    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    void nodoCorrente(const QModelIndex &indice);
    void riempiMappe(int nodo);

    ModelloAlberoMappe *m_modello;
    QGroupBox *m_box;
    QTreeView *m_albero;
    QLabel *m_labMappe;
    QListWidget *m_mappe;
    QGridLayout *m_campi;
    QPushButton *m_comando;
    QPushButton *m_esci;
    QPointer<QWidget> m_fuoco;
    int m_nodo = -1;
    bool m_abilitazione = false;
};

} // namespace kv
