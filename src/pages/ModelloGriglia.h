#pragma once

#include <QAbstractTableModel>
#include <QRect>

#include <set>
#include <vector>

namespace kv {

class Catalogo;
class DialogoPagina;

// A grid of a tuning page (the lambda map, the full-load grid, the pump grid) over the
// catalogue: which entry each cell shows, which cells the fitter may edit, which are wrong,
// and where the engine runs now. An edited cell takes effect at once in the entry's Corrente
// and in the limits that hang on it, as the grids of these pages always did.
class ModelloGriglia : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum class TipoCella {
        Vuota,
        Intestazione, // fixed text, or a breakpoint repeated after "> " so a zone reads as a range
        Asse,         // a breakpoint
        Magro,        // lean threshold of a map cell
        Ricco,        // rich threshold of a map cell
        Valore        // any other value of a zone
    };

    enum Ruolo {
        RuoloTipo = Qt::UserRole + 1, // TipoCella as an int
        RuoloErrata,                  // bool: outside its limits, or not a number
        RuoloViva,                    // bool: the engine runs in this zone now
        RuoloIntensita,               // double 0..1: the value among the others of its kind
        RuoloParametro                // int: the entry, -1 for none
    };

    struct Cella
    {
        TipoCella tipo = TipoCella::Vuota;
        int parametro = -1;
        QString testo;    // of an Intestazione without an entry
        QString prefisso; // "> " before a repeated breakpoint
        bool modificabile = false;
    };

    // What became of an edit: valid, or the cell the grid must stay on.
    struct Esito
    {
        bool valido = true;
        QModelIndex errata;
    };

    ModelloGriglia(int righe, int colonne, DialogoPagina &dialogo, const Catalogo &catalogo,
                   QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &indice, int ruolo = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &indice) const override;
    // The text of the edit field, taken as the fitter leaves it; see modifica().
    bool setData(const QModelIndex &indice, const QVariant &valore, int ruolo = Qt::EditRole) override;

    const Cella &cella(int riga, int colonna) const;
    // A fixed text, from the language file.
    void impostaTesto(int riga, int colonna, const QString &testo);
    // Cells drawn as one; the view merges them.
    const std::vector<QRect> &unioni() const { return m_unioni; }

    bool contiene(int parametro) const;
    // The entry has a new value to show (read, or put back): its cells follow, unmarked.
    void mostraValore(int parametro);
    // The text a cell of the entry shows; empty before the entry has been read.
    QString testoDi(int parametro) const;

    // An edit left in a cell. A number goes into the entry's Corrente and the limits that
    // follow it; then the cells daControllare() names are checked and marked. Text that is not
    // a number changes nothing.
    Esito modifica(const QModelIndex &indice, const QString &testo);
    // ControlloValori over the grid: every editable cell checked and marked; the first wrong
    // one in the page's write order, invalid when all are good.
    QModelIndex controlla();
    // The first cell the fitter has changed to a value the page may not send; invalid when
    // none. A value read that way is not his doing and is left to ControlloValori.
    QModelIndex respinta() const;
    // Such cells back to the values read, shown so: the page is left without them.
    void scartaRespinte();
    // Some cell edited since the values were last shown or taken by Applica.
    bool cambiata() const { return !m_modificati.empty(); }
    void presa() { m_modificati.clear(); }

    // The engine's speed and throttle now: the zone it runs in is marked. Never touches a
    // value or the selection.
    void impostaPuntoVivo(double giri, double tps);

signals:
    void modificata(const Esito &esito);

protected:
    Cella &cellaDa(int riga, int colonna);
    void unisci(int riga, int colonna, int righe, int colonne);
    double corrente(int parametro) const;
    bool letto(int parametro) const { return m_mostrati.count(parametro) > 0; }
    // Number of breakpoints of the axis below valore: the zone, counted from 0, that a
    // value falls in when each zone starts above a breakpoint.
    int banda(double valore, int primoPunto, int punti) const;

    // The cells an edit of this one must check: itself, unless a page knows better.
    virtual std::vector<QModelIndex> daControllare(const QModelIndex &modificata) const;
    // The cells of the zone where the engine runs; none unless a grid has a live zone.
    virtual std::vector<QModelIndex> celleVive(double giri, double tps) const;

private:
    bool valida(int parametro) const;
    bool respinto(int parametro) const;
    void segna(int parametro, bool errata);
    void cambiate(const std::set<std::pair<int, int>> &celle);
    std::pair<double, double> estremi(TipoCella tipo) const;

    int m_righe;
    int m_colonne;
    DialogoPagina &m_dialogo;
    const Catalogo &m_catalogo;
    std::vector<Cella> m_celle;
    std::vector<QRect> m_unioni;
    std::set<int> m_mostrati; // entries read at least once
    std::set<int> m_errati;
    std::set<int> m_modificati;
    std::set<std::pair<int, int>> m_vive;
};

} // namespace kv
