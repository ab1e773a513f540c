#include "programming/ui/ModelloAlberoMappe.h"

#include <QBrush>
#include <QPalette>

namespace kv {

ModelloAlberoMappe::ModelloAlberoMappe(QObject *parent) : QAbstractItemModel(parent) {}

void ModelloAlberoMappe::imposta(AlberoMappe albero, AlberoMappe::Livello fondo)
{
    beginResetModel();
    m_albero = std::move(albero);
    m_fondo = fondo;
    endResetModel();
}

void ModelloAlberoMappe::impostaMarchi(const QMap<QString, QString> &marchi)
{
    m_marchi.clear();
    for (auto it = marchi.cbegin(); it != marchi.cend(); ++it)
        m_marchi.insert(it.key(), QIcon(it.value()));
}

int ModelloAlberoMappe::nodo(const QModelIndex &indice) const
{
    if (!indice.isValid() || indice.model() != this)
        return -1;
    const int id = int(indice.internalId());
    return m_albero.valido(id) ? id : -1;
}

QModelIndex ModelloAlberoMappe::indice(int nodo) const
{
    if (!m_albero.valido(nodo) || m_albero.nodo(nodo).livello > m_fondo)
        return {};
    return createIndex(m_albero.riga(nodo), 0, quintptr(nodo));
}

QString ModelloAlberoMappe::testoMappa(int nodo) const
{
    if (!m_albero.valido(nodo))
        return {};
    const AlberoMappe::Nodo &n = m_albero.nodo(nodo);
    return n.suDisco || m_mancante.isEmpty() ? n.nome : n.nome + QLatin1Char(' ') + m_mancante;
}

QModelIndex ModelloAlberoMappe::index(int row, int column, const QModelIndex &parent) const
{
    if (column != 0)
        return {};
    if (!parent.isValid())
        return row == 0 ? createIndex(0, 0, quintptr(AlberoMappe::Radice)) : QModelIndex();
    const int padre = nodo(parent);
    if (padre < 0 || m_albero.nodo(padre).livello >= m_fondo)
        return {};
    const int figlio = m_albero.figlio(padre, row);
    return figlio < 0 ? QModelIndex() : createIndex(row, 0, quintptr(figlio));
}

QModelIndex ModelloAlberoMappe::parent(const QModelIndex &child) const
{
    const int id = nodo(child);
    if (id <= AlberoMappe::Radice)
        return {};
    return indice(m_albero.nodo(id).padre);
}

int ModelloAlberoMappe::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return 1;
    const int id = nodo(parent);
    if (id < 0 || m_albero.nodo(id).livello >= m_fondo)
        return 0;
    return int(m_albero.nodo(id).figli.size());
}

int ModelloAlberoMappe::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant ModelloAlberoMappe::data(const QModelIndex &index, int role) const
{
    const int id = nodo(index);
    if (id < 0)
        return {};
    const AlberoMappe::Nodo &n = m_albero.nodo(id);
    switch (role) {
    case Qt::DisplayRole:
        return n.livello == AlberoMappe::Livello::Mappa ? testoMappa(id) : n.nome;
    case Qt::DecorationRole:
        if (n.livello == AlberoMappe::Livello::Marca)
            return m_marchi.value(n.nome.toUpper());
        return {};
    case Qt::ToolTipRole:
        return n.nota.value_or(QString());
    case Qt::ForegroundRole:
        if (!n.suDisco)
            return QBrush(QPalette().color(QPalette::Disabled, QPalette::Text));
        return {};
    default:
        return {};
    }
}

} // namespace kv
