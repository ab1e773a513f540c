#pragma once

#include "programming/AlberoMappe.h"

#include <QList>

namespace kv {

// The two trees of the exchange and deletion pages: the maps available (ElencoMM) and those
// chosen from them (ElencoAll). Adding a map brings its plant, make and model along; adding
// an inner node brings every map below it. Removing takes a node with all below it, and a
// node left without maps goes too. Both trees keep the catalogue's order.
class SelezioneMappe
{
public:
    // A new list of available maps; the choice is emptied.
    void imposta(AlberoMappe disponibili);

    const AlberoMappe &disponibili() const { return m_disponibili; }
    const AlberoMappe &scelte() const { return m_scelte; }
    bool vuota() const { return m_foglie.isEmpty(); }

    // A node of disponibili().
    void aggiungi(int nodo);
    void aggiungiTutti() { aggiungi(AlberoMappe::Radice); }
    // A node of scelte().
    void rimuovi(int nodo);
    void rimuoviTutti();

    // The chosen maps, in order.
    QList<ChiaveMappa> chiavi() const;

private:
    void ricostruisci();

    AlberoMappe m_disponibili;
    AlberoMappe m_scelte;
    QList<int> m_foglie; // maps of m_disponibili, in its order
};

} // namespace kv
