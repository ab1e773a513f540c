#pragma once

#include "programming/AlberoMappe.h"

#include <QAbstractItemModel>
#include <QIcon>
#include <QMap>

namespace kv {

// The tree of maps for a QTreeView: one column, the root MAPPATURE on top, shown down to
// the level asked for (the models for the map pages, the maps for the exchange media).
// A map without its file is greyed and marked; a map's note is its tool tip; a make takes
// its logo from MARK when there is one.
class ModelloAlberoMappe : public QAbstractItemModel
{
    Q_OBJECT
public:
    explicit ModelloAlberoMappe(QObject *parent = nullptr);

    void imposta(AlberoMappe albero, AlberoMappe::Livello fondo);
    // Logos by the upper-cased make (CaricoMarchi).
    void impostaMarchi(const QMap<QString, QString> &marchi);
    // The mark behind a map whose file is missing.
    void impostaTestoMancante(const QString &testo) { m_mancante = testo; }

    const AlberoMappe &albero() const { return m_albero; }
    // The tree's node behind an index; -1 for an invalid one.
    int nodo(const QModelIndex &indice) const;
    QModelIndex indice(int nodo) const;
    // What a list of maps shows for a map: its name, and the mark when its file is missing.
    QString testoMappa(int nodo) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    AlberoMappe m_albero;
    AlberoMappe::Livello m_fondo = AlberoMappe::Livello::Modello;
    QMap<QString, QIcon> m_marchi;
    QString m_mancante;
};

} // namespace kv
