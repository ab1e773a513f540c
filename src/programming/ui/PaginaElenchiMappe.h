#pragma once

#include "programming/SelezioneMappe.h"
#include "programming/ui/TelaioScambio.h"

#include <array>

class QLabel;
class QPushButton;
class QTreeView;

namespace kv {

class ModelloAlberoMappe;

// The three map pages of the utilities, one frame: CreaDiscoMappe (copy to a medium),
// RipriMappe (restore from one) and CancelMappe (delete from the archive). Two trees, the
// maps available (ElencoMM) and the ones chosen (ElencoAll), with the medium's folder below
// them for the first two.
//
// By keyboard: arrows in the trees, Insert or Enter in ElencoMM adds the node, Delete or
// Enter in ElencoAll removes it, with Ctrl all of them; the four buttons have their Alt keys. Enter in the folder
// field confirms it (RipriMappe then lists the medium's maps).
class PaginaElenchiMappe : public TelaioScambio
{
    Q_OBJECT
public:
    enum class Funzione {
        CreaDisco,
        Ripristino,
        Cancellazione
    };

    PaginaElenchiMappe(const Lingua &lingua, QString percorsoApp, Funzione funzione,
                       QWidget *parent = nullptr);

    // Captions, and the archive's maps in ElencoMM (for the copy and the deletion).
    void carica();

    QTreeView *ElencoMM() const { return m_elenchi[0]; }
    QTreeView *ElencoAll() const { return m_elenchi[1]; }
    const SelezioneMappe &selezione() const { return m_selezione; }

    // The buttons: Aggiungi(0) all, Aggiungi(1) the current node; Rimuovi(0) the current
    // node, Rimuovi(1) all.
    void Aggiungi(int indice);
    void Rimuovi(int indice);
    // CreaAgg, Ripristina or Cancella.
    void Comando() override;
    // The medium's maps listed in ElencoMM (RipriMappe).
    void ScegliSorgente(const QString &sorgente);

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    // Both trees built again, or only ElencoAll (the fitter stays where he is in ElencoMM).
    void aggiornaElenchi(bool disponibili = true);
    void ricaricaArchivio();

    Funzione m_funzione;
    SelezioneMappe m_selezione;
    std::array<ModelloAlberoMappe *, 2> m_modelli{};
    std::array<QTreeView *, 2> m_elenchi{};
    std::array<QLabel *, 2> m_etichette{};
    std::array<QPushButton *, 2> m_aggiungi{};
    std::array<QPushButton *, 2> m_rimuovi{};
    QString m_sorgente; // the medium listed in ElencoMM (RipriMappe)
};

} // namespace kv
