// How long looking into maps takes: two maps decoded and compared; the compare page opened on
// two archived maps (the page made, the archive tree built, both files read, checked,
// decoded, compared and put on screen); and the tree of a map archive of 20,000 maps, made
// here, built from its folders and catalogue and put in a view; and what the ECU's history
// costs a run: its map area read over a paced line to the simulated ECU, the entry filed, and
// the first store of a run against a later one. Medians of repeated runs, with the offscreen
// platform when no other is set.
#include "BancoSimulatore.h"
#include "ImmagineIniziale.h"
#include "MemoriaEcu.h"
#include "archives/Archivio.h"
#include "archives/StoricoEcu.h"
#include "base/Lingua.h"
#include "calibration/TaraturaParametri.h"
#include "link/SequenzaRichieste.h"
#include "pages/ConfrontoMappe.h"
#include "programming/AlberoMappe.h"
#include "programming/FileBlocchi.h"
#include "programming/MappaArchiviata.h"
#include "programming/ui/ConfrontoMappe.h"
#include "programming/ui/ModelloAlberoMappe.h"
#include "variables/Catalogo.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTreeView>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace kv;

namespace {

double mediana(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// Median, minimum and maximum of n runs of f, in milliseconds.
void misura(const char *cosa, int n, const std::function<void()> &f, double limite)
{
    std::vector<double> tempi;
    for (int i = 0; i < n; ++i) {
        QElapsedTimer t;
        t.start();
        f();
        tempi.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::printf("  %s: median %.3f ms (min %.3f, max %.3f) over %d runs; aim under %.0f ms\n", cosa,
                mediana(tempi), *std::min_element(tempi.begin(), tempi.end()),
                *std::max_element(tempi.begin(), tempi.end()), n, limite);
}

// Where the files go: a memory file system when there is one, so that the disk's pace does
// not hide the program's.
QString radiceTemporanea()
{
    const QString shm = QStringLiteral("/dev/shm");
    return QFileInfo(shm).isDir() && QFileInfo(shm).isWritable() ? shm : QDir::tempPath();
}

QByteArray immagineDiFabbrica()
{
    sim::MemoriaEcu memoria;
    sim::ScriviImmagineIniziale(memoria, Catalogo(), {});
    return memoria.leggi(0xC100, 512);
}

QByteArray testoFile(const QByteArray &immagine)
{
    QByteArray t;
    for (int i = 0; i < immagine.size(); i += LunBlocco)
        t += RecordBlocco(immagine.mid(i, LunBlocco));
    return t;
}

// 2 kits, 20 makes each, 25 models each, 20 maps each: 20,000 files and rows. The rows go in
// one transaction; the archive's own open then fills their folded keys, as it does for rows
// another tool wrote.
bool creaArchivio(const QString &app, const QByteArray &file)
{
    const QString mappe = app + QStringLiteral("/MAPPATURE");
    {
        Archivio db;
        if (!ApriArchivioMappe(mappe, FileArchivi::FileMappe, db))
            return false;
    }
    QSqlDatabase sql = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench"));
    sql.setDatabaseName(mappe + QStringLiteral("/ARCHMAPPE.MDB"));
    bool ok = sql.open() && sql.transaction();
    {
        QSqlQuery q(sql);
        q.prepare(QStringLiteral(
            "INSERT INTO MAPPE (TipoImpianto, Marca, Modello, File, NOTE) VALUES (?, ?, ?, ?, ?)"));
        for (const char *impianto : {"LPG", "CNG"})
            for (int m = 0; m < 20 && ok; ++m)
                for (int o = 0; o < 25 && ok; ++o) {
                    const QString marca = QStringLiteral("Make %1").arg(m, 2, 10, QLatin1Char('0'));
                    const QString modello = QStringLiteral("Model %1").arg(o, 2, 10, QLatin1Char('0'));
                    const QString cartella =
                        QStringLiteral("%1/%2/%3/%4").arg(mappe, QLatin1String(impianto), marca, modello);
                    ok = QDir().mkpath(cartella);
                    for (int f = 0; f < 20 && ok; ++f) {
                        const QString nome = QStringLiteral("map %1").arg(f, 2, 10, QLatin1Char('0'));
                        QFile lkv(cartella + u'/' + nome + QStringLiteral(".LKV"));
                        ok = lkv.open(QIODevice::WriteOnly) && lkv.write(file) == file.size();
                        q.addBindValue(QLatin1String(impianto));
                        q.addBindValue(marca);
                        q.addBindValue(modello);
                        q.addBindValue(nome);
                        q.addBindValue(QStringLiteral("note"));
                        ok = ok && q.exec();
                    }
                }
    }
    ok = ok && sql.commit();
    sql.close();
    sql = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("bench"));
    Archivio db;
    return ok && ApriArchivioMappe(mappe, FileArchivi::FileMappe, db);
}

// The ECU's history on a line at BancoSimulatore::Baud: the read of its map area, filing the
// entry, and the first store of the run (the history read before it) against a later one.
bool misuraStorico()
{
    BancoSimulatore banco;
    QString errore;
    if (!banco.avvia(errore)) {
        std::fprintf(stderr, "%s\n", qPrintable(errore));
        return false;
    }
    Programma &p = *banco.programma;
    p.storico.attiva(true);
    SequenzaRichieste sequenza(p.linea.motore(), 241);
    // One sequence to its end; its milliseconds, or -1 when it failed.
    const auto esegui = [&](bool scrittura, const QList<QByteArray> &richieste,
                            SequenzaRichieste::Esito *esito) {
        QEventLoop ciclo;
        bool ok = false;
        QElapsedTimer t;
        t.start();
        const auto fine = [&](const SequenzaRichieste::Esito &e) {
            ok = e.ok;
            if (esito)
                *esito = e;
            ciclo.quit();
        };
        if (!(scrittura ? sequenza.scrivi(richieste, fine) : sequenza.leggi(richieste, fine)))
            return -1.0;
        QTimer::singleShot(10000, &ciclo, &QEventLoop::quit);
        ciclo.exec();
        return ok ? double(t.nsecsElapsed()) / 1e6 : -1.0;
    };
    const QList<QByteArray> area = RichiesteAreaMappa(p.catalogo);
    std::vector<double> letture;
    SequenzaRichieste::Esito esito;
    for (int i = 0; i < 10; ++i)
        letture.push_back(esegui(false, area, &esito));
    qsizetype filo = 0; // bytes on the line both ways
    for (const QByteArray &r : area)
        filo += r.size() + BancoSimulatore::InvolucroFrame;
    for (const QByteArray &r : esito.risposte)
        filo += r.size() + BancoSimulatore::InvolucroFrame;
    const double mediana = BancoSimulatore::mediana(letture);
    std::printf("  history read, map area and ScalaLambda at %d baud: median %.1f ms over 10 runs; %.1f ms "
                "of it on the wire (%lld bytes), ratio %.2f\n",
                BancoSimulatore::Baud, mediana, BancoSimulatore::millisecondiSulFilo(filo),
                static_cast<long long>(filo), mediana / BancoSimulatore::millisecondiSulFilo(filo));

    const StatoEcu &ecu = p.linea.ecu();
    VoceStorico voce{{ecu.InfCodice, ecu.InfDatoA, ecu.InfDatoB},
                     QDateTime::currentDateTime(),
                     "MP_Minimo",
                     0,
                     AreaDaRisposte(esito.risposte, p.catalogo).immagine};
    misura(
        "history entry filed", 20,
        [&] {
            voce.quando = voce.quando.addSecs(1);
            AggiungiStorico(p.PercorsoApp, voce);
        },
        100);

    // A tuning value to RAM and EEPROM, as a page's store sends it, twice: the first of the run
    // reads the map area for the history before it.
    const Parametro &par = p.catalogo.Parametri[Par::PassiControlloMinimo];
    const QByteArray dati = char(par.Dimensione) + QByteArray(1, '\x07');
    const QList<QByteArray> memorizza = {'W' + ParolaInByte(quint32(par.IndirizzoRAM)) + dati,
                                         'W' + ParolaInByte(quint32(par.IndirizzoEE)) + dati};
    const double prima = esegui(true, memorizza, nullptr);
    const double dopo = esegui(true, memorizza, nullptr);
    std::printf("  first store of the run, history read included: %.1f ms; a later store: %.1f ms\n", prima,
                dopo);
    return mediana > 0 && prima > 0 && dopo > 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const Catalogo catalogo;
    const std::vector<const DescrizionePagina *> altre = {&DescrizioneParametri()};
    const QByteArray a = immagineDiFabbrica();
    QByteArray b = a;
    for (int i = 0x160; i < 0x200; i += 7) // a changed lambda map and more
        b[i] = char(b.at(i) ^ 0x15);

    std::printf("Maps looked into\n");
    int diverse = 0;
    misura(
        "decode and compare two maps", 500,
        [&] {
            const Confronto c = ConfrontaMappe(DecodificaMappa(a, catalogo, {}, altre),
                                               DecodificaMappa(b, catalogo, {}, altre));
            diverse = c.diverse;
        },
        5);
    std::printf("    (%d of 171 entries differ)\n", diverse);

    QTemporaryDir casa(radiceTemporanea() + QStringLiteral("/kv-bench-XXXXXX"));
    const QString lingue = QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG");
    if (!casa.isValid() || !QFile::copy(lingue, casa.filePath(QStringLiteral("ENGLISH.LNG")))) {
        std::fprintf(stderr, "cannot prepare a program folder\n");
        return 1;
    }
    Lingua lingua(casa.path());
    lingua.LinguaCorrente = QStringLiteral("ENGLISH");
    const ChiaveMappa chiaveA{"LPG", "Fiat", "Punto", "base"};
    const ChiaveMappa chiaveB{"LPG", "Fiat", "Punto", "tuned"};
    if (!SalvaImmagineMappa(casa.path(), chiaveA, a, {}, 0).ok()
        || !SalvaImmagineMappa(casa.path(), chiaveB, b, {}, 0).ok()) {
        std::fprintf(stderr, "cannot file the two maps\n");
        return 1;
    }
    bool presa = true;
    misura(
        "compare page opened on two archived maps", 20,
        [&] {
            ConfrontoMappe pagina(casa.path(), catalogo, lingua);
            pagina.resize(1024, 700);
            pagina.carica();
            presa = presa && pagina.scegliArchiviata(ConfrontoMappe::A, chiaveA)
                    && pagina.scegliArchiviata(ConfrontoMappe::B, chiaveB);
            pagina.show();
            QCoreApplication::processEvents();
        },
        100);

    QTemporaryDir grande(radiceTemporanea() + QStringLiteral("/kv-bench-XXXXXX"));
    QElapsedTimer t;
    t.start();
    if (!grande.isValid() || !creaArchivio(grande.path(), testoFile(a))) {
        std::fprintf(stderr, "cannot make the archive of 20,000 maps\n");
        return 1;
    }
    std::printf("  (archive of 20,000 maps made in %.1f s)\n", double(t.elapsed()) / 1000);
    int nodi = 0;
    misura(
        "archive tree of 20,000 maps: folders and catalogue", 7,
        [&] { nodi = AlberoMappe::Carica(grande.path()).conta(); }, 300);
    const QString mappe = grande.path() + QStringLiteral("/MAPPATURE");
    misura(
        "  of which the folders", 7, [&] { AlberoMappe().aggiungiCartelle(mappe); }, 300);
    misura(
        "  of which the catalogue", 7,
        [&] {
            Archivio db;
            if (ApriArchivioMappe(mappe, FileArchivi::FileMappe, db))
                AlberoMappe().aggiungiCatalogo(db);
        },
        300);
    misura(
        "archive tree of 20,000 maps: built and shown in a view", 7,
        [&] {
            ModelloAlberoMappe modello;
            modello.imposta(AlberoMappe::Carica(grande.path()), AlberoMappe::Livello::Mappa);
            QTreeView vista;
            vista.setModel(&modello);
            vista.resize(400, 600);
            vista.expand(modello.indice(AlberoMappe::Radice));
            vista.show();
            QCoreApplication::processEvents();
        },
        300);
    std::printf("    (%d nodes)\n", nodi);
    const bool storico = misuraStorico();
    return presa && storico && nodi == 1 + 2 + 40 + 1000 + 20000 ? 0 : 1;
}
