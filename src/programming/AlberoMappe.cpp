#include "programming/AlberoMappe.h"

#include "archives/SchemaArchivi.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace kv {

namespace {

QFileInfoList voci(const QString &cartella, QDir::Filters tipo)
{
    QFileInfoList elenco;
    for (const QFileInfo &v : QDir(cartella).entryInfoList(tipo | QDir::NoDotAndDotDot | QDir::System))
        if (!v.isSymLink() && !v.fileName().startsWith(u'.'))
            elenco.append(v);
    return elenco;
}

} // namespace

AlberoMappe::AlberoMappe()
{
    Nodo radice;
    radice.nome = FileArchivi::CartellaMappe;
    m_nodi.push_back(radice);
}

int AlberoMappe::figlioDi(int padre, const QString &nome, Livello livello)
{
    const QString chiave = ChiavePiegata(nome);
    for (int f : std::as_const(m_nodi[size_t(padre)].figli))
        if (m_nodi[size_t(f)].piegato == chiave)
            return f;
    Nodo n;
    n.livello = livello;
    n.nome = nome;
    n.piegato = chiave;
    n.padre = padre;
    m_nodi.push_back(n);
    const int id = conta() - 1;
    m_nodi[size_t(padre)].figli.append(id);
    return id;
}

void AlberoMappe::ordina(int id)
{
    QList<int> &figli = m_nodi[size_t(id)].figli;
    std::stable_sort(figli.begin(), figli.end(),
                     [this](int a, int b) { return m_nodi[size_t(a)].piegato < m_nodi[size_t(b)].piegato; });
    for (int f : std::as_const(figli))
        ordina(f);
}

void AlberoMappe::aggiungiCartelle(const QString &cartellaMappe)
{
    m_nodi[0].suDisco = QFileInfo(cartellaMappe).isDir();
    m_nodi[0].percorso = cartellaMappe;
    const auto cartelle = [](const QFileInfo &padre) { return voci(padre.filePath(), QDir::Dirs); };
    for (const QFileInfo &impianto : voci(cartellaMappe, QDir::Dirs)) {
        const int i = figlioDi(Radice, impianto.fileName(), Livello::Impianto);
        for (const QFileInfo &marca : cartelle(impianto)) {
            const int m = figlioDi(i, marca.fileName(), Livello::Marca);
            for (const QFileInfo &modello : cartelle(marca)) {
                const int o = figlioDi(m, modello.fileName(), Livello::Modello);
                for (const QFileInfo &file : voci(modello.filePath(), QDir::Files)) {
                    const QString nome = file.fileName();
                    if (!nome.endsWith(FileMappa::Estensione, Qt::CaseInsensitive))
                        continue;
                    const QString base = nome.chopped(FileMappa::Estensione.size()).trimmed();
                    if (base.isEmpty())
                        continue;
                    const int f = figlioDi(o, base, Livello::Mappa);
                    m_nodi[size_t(f)].suDisco = true;
                    m_nodi[size_t(f)].percorso = file.filePath();
                }
                m_nodi[size_t(o)].suDisco = true;
                m_nodi[size_t(o)].percorso = modello.filePath();
            }
            m_nodi[size_t(m)].suDisco = true;
            m_nodi[size_t(m)].percorso = marca.filePath();
        }
        m_nodi[size_t(i)].suDisco = true;
        m_nodi[size_t(i)].percorso = impianto.filePath();
    }
    ordina(Radice);
}

void AlberoMappe::aggiungiCatalogo(Archivio &db)
{
    aggiungiRighe(db.Elenca(u"PER_NOME"));
}

void AlberoMappe::aggiungiRighe(const QList<RigaArchivio> &righe)
{
    // Rows come in key order, so a model's maps follow each other: its node is looked up once.
    ChiaveMappa ultima;
    int modello = -1;
    for (const RigaArchivio &r : righe) {
        const ChiaveMappa k =
            ChiaveMappa{r.Testo(u"TipoImpianto"), r.Testo(u"Marca"), r.Testo(u"Modello"), r.Testo(u"File")}
                .pulita();
        if (!k.completa())
            continue;
        if (modello < 0 || k.impianto != ultima.impianto || k.marca != ultima.marca
            || k.modello != ultima.modello) {
            modello = Radice;
            const Livello livelli[] = {Livello::Impianto, Livello::Marca, Livello::Modello};
            for (int n = 0; n <= ChiaveMappa::Modello; ++n) {
                modello = figlioDi(modello, k.campo(n), livelli[n]);
                m_nodi[size_t(modello)].nelCatalogo = true;
            }
            ultima = k;
        }
        const int id = figlioDi(modello, k.file, Livello::Mappa);
        m_nodi[size_t(id)].nelCatalogo = true;
        m_nodi[size_t(id)].nota = r.Campo(u"Note");
    }
    m_nodi[0].nelCatalogo = m_nodi[0].nelCatalogo || !righe.isEmpty();
    ordina(Radice);
}

AlberoMappe AlberoMappe::Carica(const QString &percorsoApp, EsitoArchivio *esito)
{
    AlberoMappe albero;
    const QString cartella = CartellaMappe(percorsoApp);
    albero.aggiungiCartelle(cartella);
    Archivio db;
    const bool aperto = ApriArchivioMappe(cartella, FileArchivi::FileMappe, db);
    if (aperto)
        albero.aggiungiCatalogo(db);
    if (esito)
        *esito = db.Esito();
    if (aperto)
        ChiudiArchivioMappe(db);
    return albero;
}

int AlberoMappe::figlio(int id, int riga) const
{
    if (!valido(id))
        return -1;
    const QList<int> &figli = m_nodi[size_t(id)].figli;
    return riga >= 0 && riga < figli.size() ? figli.at(riga) : -1;
}

int AlberoMappe::riga(int id) const
{
    if (!valido(id) || id == Radice)
        return 0;
    return int(m_nodi[size_t(m_nodi[size_t(id)].padre)].figli.indexOf(id));
}

ChiaveMappa AlberoMappe::chiave(int id) const
{
    ChiaveMappa k;
    for (int n = id; valido(n) && n != Radice; n = m_nodi[size_t(n)].padre) {
        const Nodo &nodo = m_nodi[size_t(n)];
        k.impostaCampo(int(nodo.livello) - 1, nodo.nome);
    }
    return k;
}

int AlberoMappe::trova(const ChiaveMappa &chiave) const
{
    int id = Radice;
    for (int n = 0; n < ChiaveMappa::Campi; ++n) {
        const QString nome = chiave.campo(n).trimmed();
        if (nome.isEmpty())
            break;
        const QString piegato = ChiavePiegata(nome);
        int trovato = -1;
        for (int f : m_nodi[size_t(id)].figli)
            if (m_nodi[size_t(f)].piegato == piegato)
                trovato = f;
        if (trovato < 0)
            return -1;
        id = trovato;
    }
    return id;
}

QList<int> AlberoMappe::foglie(int id) const
{
    QList<int> elenco;
    if (!valido(id))
        return elenco;
    if (m_nodi[size_t(id)].livello == Livello::Mappa)
        elenco.append(id);
    for (int f : m_nodi[size_t(id)].figli)
        elenco += foglie(f);
    return elenco;
}

AlberoMappe AlberoMappe::sottoinsieme(const QList<int> &mappe) const
{
    AlberoMappe a;
    a.m_nodi[0] = m_nodi[0];
    a.m_nodi[0].figli.clear();
    for (int id : mappe) {
        if (!valido(id) || nodo(id).livello != Livello::Mappa)
            continue;
        QList<int> via;
        for (int n = id; n != Radice; n = nodo(n).padre)
            via.prepend(n);
        int dove = Radice;
        for (int n : std::as_const(via)) {
            const Nodo &qui = nodo(n);
            dove = a.figlioDi(dove, qui.nome, qui.livello);
            Nodo &copia = a.m_nodi[size_t(dove)];
            copia.suDisco = qui.suDisco;
            copia.percorso = qui.percorso;
            copia.nelCatalogo = qui.nelCatalogo;
            copia.nota = qui.nota;
        }
    }
    a.ordina(Radice);
    return a;
}

} // namespace kv
