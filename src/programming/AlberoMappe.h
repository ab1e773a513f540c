#pragma once

#include "archives/Archivio.h"
#include "programming/FileMappa.h"

#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace kv {

// The tree of maps: root MAPPATURE, then plant, make, model, and the maps as leaves. It
// merges two sources that are tied by name alone and may disagree: the folders and .LKV
// files below MAPPATURE, and the rows of the catalogue. Names meet without regard to case
// (as the catalogue's keys do); a node shows the disk's spelling when it has one. So a map
// whose row has no file, and a file that has no row, are both there, each flagged.
//
// Nodes are numbered from 0 (the root) and never move once the tree is built; children
// sort as the catalogue's index does. A view wraps this description (the ui's item model).
class AlberoMappe
{
public:
    enum class Livello {
        Radice,
        Impianto,
        Marca,
        Modello,
        Mappa
    };

    struct Nodo
    {
        Livello livello = Livello::Radice;
        QString nome;
        int padre = -1;
        QList<int> figli;
        // A folder (a .LKV file for a map) on disk, and its path; empty path when none.
        bool suDisco = false;
        QString percorso;
        // A catalogue row under this node; for a map, its own row.
        bool nelCatalogo = false;
        // The row's note; NULL and a map without a row have none.
        std::optional<QString> nota;
        // The name as keys compare (ChiavePiegata), worked out once: a large archive meets
        // every name many times while the tree is built.
        QString piegato;
    };

    AlberoMappe();

    // The folders below cartellaMappe, three levels deep, and the .LKV files in the third.
    // Symbolic links and hidden entries are passed over, never followed.
    void aggiungiCartelle(const QString &cartellaMappe);
    // Every row of an open map catalogue (ARCHMAPPE.MDB or DBTEMP.MDB) whose four key
    // fields have text.
    void aggiungiCatalogo(Archivio &db);
    // The same for rows read elsewhere (the catalogue of an exchange medium).
    void aggiungiRighe(const QList<RigaArchivio> &righe);
    // Folders and catalogue of the program's folder; the catalogue is opened and closed
    // again. Without a catalogue the folders are still there, and esito says why.
    static AlberoMappe Carica(const QString &percorsoApp, EsitoArchivio *esito = nullptr);

    static constexpr int Radice = 0;
    int conta() const { return int(m_nodi.size()); }
    const Nodo &nodo(int id) const { return m_nodi.at(size_t(id)); }
    bool valido(int id) const { return id >= 0 && id < conta(); }
    // The child at that row, -1 when there is none; and the row of a node in its parent.
    int figlio(int id, int riga) const;
    int riga(int id) const;

    // The names from the plant down to the node; fields below it stay empty.
    ChiaveMappa chiave(int id) const;
    // The node of those names, as deep as they go (an empty field ends them); -1 if absent.
    int trova(const ChiaveMappa &chiave) const;
    // The maps below a node, in order (the node itself when it is a map).
    QList<int> foglie(int id) const;
    // A tree of some maps of this one, with the nodes above them, each as it is here.
    AlberoMappe sottoinsieme(const QList<int> &mappe) const;

private:
    int figlioDi(int padre, const QString &nome, Livello livello);
    void ordina(int id);

    std::vector<Nodo> m_nodi;
};

} // namespace kv
