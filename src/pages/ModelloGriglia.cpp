#include "pages/ModelloGriglia.h"

#include "pages/DialogoPagina.h"
#include "variables/Catalogo.h"
#include "variables/Formato.h"

#include <algorithm>

namespace kv {

ModelloGriglia::ModelloGriglia(int righe, int colonne, DialogoPagina &dialogo, const Catalogo &catalogo,
                               QObject *parent)
    : QAbstractTableModel(parent)
    , m_righe(righe)
    , m_colonne(colonne)
    , m_dialogo(dialogo)
    , m_catalogo(catalogo)
    , m_celle(static_cast<size_t>(righe * colonne))
{}

int ModelloGriglia::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_righe;
}

int ModelloGriglia::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_colonne;
}

const ModelloGriglia::Cella &ModelloGriglia::cella(int riga, int colonna) const
{
    static const Cella fuori;
    if (riga < 0 || riga >= m_righe || colonna < 0 || colonna >= m_colonne)
        return fuori;
    return m_celle[static_cast<size_t>(riga * m_colonne + colonna)];
}

ModelloGriglia::Cella &ModelloGriglia::cellaDa(int riga, int colonna)
{
    return m_celle[static_cast<size_t>(riga * m_colonne + colonna)];
}

void ModelloGriglia::unisci(int riga, int colonna, int righe, int colonne)
{
    m_unioni.emplace_back(colonna, riga, colonne, righe);
}

void ModelloGriglia::impostaTesto(int riga, int colonna, const QString &testo)
{
    if (riga < 0 || riga >= m_righe || colonna < 0 || colonna >= m_colonne)
        return;
    cellaDa(riga, colonna).testo = testo;
    emit dataChanged(index(riga, colonna), index(riga, colonna));
}

double ModelloGriglia::corrente(int parametro) const
{
    return m_catalogo.Valori[static_cast<size_t>(parametro)].Corrente;
}

bool ModelloGriglia::contiene(int parametro) const
{
    return std::any_of(m_celle.begin(), m_celle.end(),
                       [parametro](const Cella &c) { return c.parametro == parametro && c.parametro >= 0; });
}

QString ModelloGriglia::testoDi(int parametro) const
{
    if (!m_mostrati.count(parametro))
        return {};
    return m_catalogo.formatta(parametro, corrente(parametro));
}

std::pair<double, double> ModelloGriglia::estremi(TipoCella tipo) const
{
    double basso = 0;
    double alto = 0;
    bool primo = true;
    for (const Cella &c : m_celle) {
        // A wrong value would wash out the shading of all the right ones.
        if (c.tipo != tipo || !m_mostrati.count(c.parametro) || m_errati.count(c.parametro))
            continue;
        const double v = corrente(c.parametro);
        basso = primo ? v : std::min(basso, v);
        alto = primo ? v : std::max(alto, v);
        primo = false;
    }
    return {basso, alto};
}

QVariant ModelloGriglia::data(const QModelIndex &indice, int ruolo) const
{
    if (!indice.isValid())
        return {};
    const Cella &c = cella(indice.row(), indice.column());
    const bool conValore = c.parametro >= 0 && m_mostrati.count(c.parametro);
    switch (ruolo) {
    case Qt::DisplayRole:
        if (c.tipo == TipoCella::Intestazione)
            return c.parametro < 0 ? c.testo : conValore ? c.prefisso + testoDi(c.parametro) : QString();
        return c.tipo == TipoCella::Vuota ? QString() : testoDi(c.parametro);
    case Qt::EditRole:
        return c.modificabile ? testoDi(c.parametro) : QVariant();
    case Qt::ToolTipRole:
        return c.modificabile ? m_catalogo.suggerimentoIntervallo(c.parametro) : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(Qt::AlignCenter));
    case RuoloTipo:
        return static_cast<int>(c.tipo);
    case RuoloErrata:
        return c.modificabile && m_errati.count(c.parametro) > 0;
    case RuoloViva:
        return m_vive.count({indice.row(), indice.column()}) > 0;
    case RuoloParametro:
        return c.parametro;
    case RuoloIntensita: {
        if (!conValore || (c.tipo != TipoCella::Magro && c.tipo != TipoCella::Ricco))
            return -1.0;
        const auto [basso, alto] = estremi(c.tipo);
        return alto > basso ? (corrente(c.parametro) - basso) / (alto - basso) : 0.5;
    }
    default:
        return {};
    }
}

Qt::ItemFlags ModelloGriglia::flags(const QModelIndex &indice) const
{
    if (!indice.isValid() || !cella(indice.row(), indice.column()).modificabile)
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable;
}

bool ModelloGriglia::setData(const QModelIndex &indice, const QVariant &valore, int ruolo)
{
    if (ruolo != Qt::EditRole || !(flags(indice) & Qt::ItemIsEditable))
        return false;
    modifica(indice, valore.toString());
    return true;
}

void ModelloGriglia::cambiate(const std::set<std::pair<int, int>> &celle)
{
    for (const auto &[r, c] : celle)
        emit dataChanged(index(r, c), index(r, c));
}

void ModelloGriglia::mostraValore(int parametro)
{
    if (!contiene(parametro))
        return;
    m_mostrati.insert(parametro);
    m_errati.erase(parametro);
    m_modificati.erase(parametro);
    // The shading of every cell of its kind may move with it.
    emit dataChanged(index(0, 0), index(m_righe - 1, m_colonne - 1));
}

bool ModelloGriglia::valida(int parametro) const
{
    return m_dialogo.valoreValido(parametro, testoDi(parametro));
}

void ModelloGriglia::segna(int parametro, bool errata)
{
    if (errata == (m_errati.count(parametro) > 0))
        return;
    if (errata)
        m_errati.insert(parametro);
    else
        m_errati.erase(parametro);
    std::set<std::pair<int, int>> celle;
    for (int r = 0; r < m_righe; ++r)
        for (int c = 0; c < m_colonne; ++c)
            if (cella(r, c).parametro == parametro)
                celle.insert({r, c});
    cambiate(celle);
}

std::vector<QModelIndex> ModelloGriglia::daControllare(const QModelIndex &modificata) const
{
    return {modificata};
}

std::vector<QModelIndex> ModelloGriglia::celleVive(double, double) const
{
    return {};
}

ModelloGriglia::Esito ModelloGriglia::modifica(const QModelIndex &indice, const QString &testo)
{
    const Cella &c = cella(indice.row(), indice.column());
    if (!indice.isValid() || !c.modificabile || !TestoNumerico(testo))
        return {};
    const double v = ValNumero(testo);
    m_dialogo.impostaCorrente(c.parametro, v);
    m_dialogo.valoreModificato(c.parametro, v);
    m_mostrati.insert(c.parametro);
    m_modificati.insert(c.parametro);
    emit dataChanged(index(0, 0), index(m_righe - 1, m_colonne - 1));

    Esito esito;
    for (const QModelIndex &i : daControllare(indice)) {
        const int p = cella(i.row(), i.column()).parametro;
        const bool buona = valida(p);
        segna(p, !buona);
        if (!buona && esito.valido) {
            esito.valido = false;
            esito.errata = i;
        }
    }
    emit modificata(esito);
    return esito;
}

QModelIndex ModelloGriglia::controlla()
{
    QModelIndex prima;
    qsizetype posizionePrima = 0;
    const std::vector<int> &ordine = m_dialogo.voci();
    std::set<int> visti;
    for (int r = 0; r < m_righe; ++r) {
        for (int c = 0; c < m_colonne; ++c) {
            const Cella &x = cella(r, c);
            if (!x.modificabile || !visti.insert(x.parametro).second)
                continue;
            const bool buona = valida(x.parametro);
            segna(x.parametro, !buona);
            const auto trovata = std::find(ordine.begin(), ordine.end(), x.parametro);
            const qsizetype posizione = trovata - ordine.begin();
            if (!buona && (!prima.isValid() || posizione < posizionePrima)) {
                prima = index(r, c);
                posizionePrima = posizione;
            }
        }
    }
    return prima;
}

bool ModelloGriglia::respinto(int parametro) const
{
    const ValoreParametro &v = m_catalogo.Valori[static_cast<size_t>(parametro)];
    return m_mostrati.count(parametro) && v.Corrente != v.Letto && !valida(parametro);
}

QModelIndex ModelloGriglia::respinta() const
{
    for (int r = 0; r < m_righe; ++r)
        for (int c = 0; c < m_colonne; ++c)
            if (cella(r, c).modificabile && respinto(cella(r, c).parametro))
                return index(r, c);
    return {};
}

void ModelloGriglia::scartaRespinte()
{
    for (QModelIndex i = respinta(); i.isValid(); i = respinta()) {
        const int p = cella(i.row(), i.column()).parametro;
        const double letto = m_catalogo.Valori[static_cast<size_t>(p)].Letto;
        m_dialogo.impostaCorrente(p, letto);
        m_dialogo.valoreModificato(p, letto);
        mostraValore(p);
        // Its partner, marked for its sake, is looked at again.
        for (const QModelIndex &k : daControllare(i)) {
            const int q = cella(k.row(), k.column()).parametro;
            segna(q, !valida(q));
        }
    }
}

int ModelloGriglia::banda(double valore, int primoPunto, int punti) const
{
    int b = 0;
    while (b < punti && valore > corrente(primoPunto + b))
        ++b;
    return b;
}

void ModelloGriglia::impostaPuntoVivo(double giri, double tps)
{
    std::set<std::pair<int, int>> vive;
    for (const QModelIndex &i : celleVive(giri, tps))
        vive.insert({i.row(), i.column()});
    if (vive == m_vive)
        return;
    std::set<std::pair<int, int>> diverse;
    std::set_symmetric_difference(vive.begin(), vive.end(), m_vive.begin(), m_vive.end(),
                                  std::inserter(diverse, diverse.end()));
    m_vive = std::move(vive);
    cambiate(diverse);
}

} // namespace kv
