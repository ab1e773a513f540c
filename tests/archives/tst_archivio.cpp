// The catalogue databases on SQLite: open-or-create, keys blind to case, and files that are
// not ours, damaged or held by someone else.

#include "archives/Archivio.h"

#include "base/Lingua.h"
#include "support/FileDiProva.h"

#include <QDir>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace kv;

namespace {

RigaArchivio mappa(const Archivio &a, const QString &tipo, const QString &marca, const QString &modello,
                   const QString &file, std::optional<QString> nota = std::nullopt)
{
    RigaArchivio r = a.NuovaRiga();
    r.Imposta(u"TipoImpianto", tipo);
    r.Imposta(u"Marca", marca);
    r.Imposta(u"Modello", modello);
    r.Imposta(u"File", file);
    r.Imposta(u"Note", std::move(nota));
    return r;
}

QStringList chiavi(const QList<RigaArchivio> &righe)
{
    QStringList r;
    for (const RigaArchivio &riga : righe)
        r << QStringLiteral("%1/%2/%3/%4")
                 .arg(riga.Testo(u"TipoImpianto"), riga.Testo(u"Marca"), riga.Testo(u"Modello"),
                      riga.Testo(u"File"));
    return r;
}

// What SQLite itself says the file holds, through a connection of the test's own.
QStringList oggettiNelFile(const QString &percorso)
{
    QStringList r;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("prova"));
        db.setDatabaseName(percorso);
        if (db.open()) {
            QSqlQuery q(QStringLiteral("SELECT type, name, sql FROM sqlite_master ORDER BY name"), db);
            while (q.next())
                r << q.value(0).toString() + u' ' + q.value(1).toString() + u' ' + q.value(2).toString();
        }
    }
    QSqlDatabase::removeDatabase(QStringLiteral("prova"));
    return r;
}

} // namespace

class TestArchivio : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void apreOCreaConLoSchema_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::addColumn<QString>("file");
        QTest::addColumn<int>("quale");
        QTest::addColumn<QStringList>("indici");
        QTest::addColumn<QString>("campoLungo");
        QTest::addColumn<int>("dimensione");
        const auto riga = [](const char *nome, const char *cartella, const char *file, int quale,
                             const QStringList &indici, const char *campo, int dimensione) {
            QTest::newRow(nome) << QString(cartella) << QString(file) << quale << indici << QString(campo)
                                << dimensione;
        };
        riga("recordings", "DATI", "ARCHDATI.MDB", 0, {"PER_FILE", "PER_MARCAMOD"}, "FILE", 20);
        riga("software", "SOFTWARE", "SOFTWARE.MDB", 1, {"PER_NOME"}, "NomeSW", 30);
        riga("maps", "MAPPATURE", "ARCHMAPPE.MDB", 2, {"PER_NOME"}, "TipoImpianto", 3);
        riga("exchange maps", "TEMP", "DBTEMP.MDB", 2, {"PER_NOME"}, "Marca", 50);
        riga("exchange software", "TEMP", "SOFTRIPR.MDB", 1, {"PER_NOME"}, "Versione", 20);
    }

    void apreOCreaConLoSchema()
    {
        QFETCH(QString, cartella);
        QFETCH(QString, file);
        QFETCH(int, quale);
        QFETCH(QStringList, indici);
        QFETCH(QString, campoLungo);
        QFETCH(int, dimensione);
        using Apri = qint16 (*)(const QString &, const QString &, Archivio &);
        const Apri apri[] = {ApriArchivioDati, ApriArchivioSoftware, ApriArchivioMappe};
        const QString percorso = m_dir->filePath(cartella + u'/' + file);

        RigaArchivio riga;
        {
            Archivio a;
            QCOMPARE(apri[quale](m_dir->filePath(cartella), file, a), qint16(-1)); // the folder is made too
            QVERIFY(leggi(percorso).startsWith("SQLite format 3"));
            riga = a.NuovaRiga();
            for (const CampoArchivio &c : a.Schema()->campi)
                riga.Imposta(c.nome, QString(qMax(c.dimensione, 1), u'x'));
            QVERIFY(a.Aggiungi(riga));
            // One character over the field's size is refused, and nothing is written.
            riga.Imposta(campoLungo, QString(dimensione + 1, u'y'));
            QVERIFY(!a.Aggiungi(riga));
            QCOMPARE(a.Esito().errore, ErroreArchivio::TestoTroppoLungo);
            QCOMPARE(a.Esito().dettaglio, campoLungo);
        }
        const QStringList oggetti = oggettiNelFile(percorso);
        for (const QString &indice : indici)
            QVERIFY2(oggetti.filter(QStringLiteral("index ") + indice).size() == 1,
                     qPrintable(oggetti.join('\n')));

        // A second and third open change nothing, and the row is there.
        for (int volta = 0; volta < 2; ++volta) {
            Archivio a;
            QCOMPARE(apri[quale](m_dir->filePath(cartella), file, a), qint16(-1));
            QCOMPARE(a.Elenca(indici.first()).size(), 1);
        }
        QCOMPARE(oggettiNelFile(percorso), oggetti);
        // Nothing stays open behind the operation.
        QVERIFY(QSqlDatabase::connectionNames().isEmpty());
    }

    void chiaviCiecheAlleMaiuscole_data()
    {
        QTest::addColumn<QString>("scritta");
        QTest::addColumn<QString>("cercata");
        QTest::addColumn<bool>("stessa");
        const auto riga = [](const char *nome, const char *scritta, const char *cercata, bool stessa) {
            QTest::newRow(nome) << QString::fromUtf8(scritta) << QString::fromUtf8(cercata) << stessa;
        };
        riga("plain", "FIAT", "Fiat", true);
        riga("umlaut", "CITROËN", "Citroën", true);
        riga("caron", "ŠKODA", "škoda", true);
        riga("ligature and y diaeresis", "ŒŸ", "œÿ", true);
        riga("accent is no case", "CITROËN", "CITROEN", false);
        riga("blank is a character", "FIAT", "FIAT ", false);
    }

    void chiaviCiecheAlleMaiuscole()
    {
        QFETCH(QString, scritta);
        QFETCH(QString, cercata);
        QFETCH(bool, stessa);
        Archivio a;
        QVERIFY(a.Apri(m_dir->path(), QStringLiteral("ARCHMAPPE.MDB"), SchemaMappe()));
        QVERIFY(a.Aggiungi(mappa(a, "LPG", scritta, "M", "F", QStringLiteral("prima"))));

        const auto trovata = a.Cerca(u"per_nome", {"lpg", cercata, "m", "f"});
        QCOMPARE(trovata.has_value(), stessa);
        if (stessa)
            QCOMPARE(trovata->Testo(u"MARCA"), scritta);
        // One key: a second row is refused, saving edits the one there, keeping the new spelling.
        QCOMPARE(a.Aggiungi(mappa(a, "LPG", cercata, "M", "F")), !stessa);
        if (stessa)
            QCOMPARE(a.Esito().errore, ErroreArchivio::ChiaveDuplicata);
        QVERIFY(a.Salva(mappa(a, "Lpg", cercata, "m", "f", QStringLiteral("dopo"))));
        QCOMPARE(a.Elenca(u"PER_NOME").size(), stessa ? 1 : 2);
        QCOMPARE(a.Cerca(u"PER_NOME", {"LPG", cercata, "M", "F"})->Testo(u"note"), QStringLiteral("dopo"));
    }

    void ricercheNellOrdineDellIndice()
    {
        Archivio a;
        QVERIFY(a.Apri(m_dir->path(), QStringLiteral("ARCHMAPPE.MDB"), SchemaMappe()));
        for (const auto &[t, m, o, f] : {std::tuple{"LPG", "Fiat", "Punto", "B"},
                                         {"CNG", "Opel", "Zafira", "Z"},
                                         {"LPG", "citroën", "C3", "X"},
                                         {"LPG", "FIAT", "Panda", "A"},
                                         {"LPG", "Fiat", "Panda", "C"}})
            QVERIFY(a.Aggiungi(mappa(a, t, m, o, f)));

        QCOMPARE(chiavi(a.Elenca(u"PER_NOME")),
                 QStringList({"CNG/Opel/Zafira/Z", "LPG/citroën/C3/X", "LPG/FIAT/Panda/A", "LPG/Fiat/Panda/C",
                              "LPG/Fiat/Punto/B"}));
        // ">=" with the leading fields only: the first key not below them.
        QCOMPARE(chiavi({*a.CercaDa(u"PER_NOME", {"lpg", "D"})}), QStringList{"LPG/FIAT/Panda/A"});
        QCOMPARE(chiavi(a.Elenca(u"PER_NOME", {"LPG", "fiat", "PU"})), QStringList{"LPG/Fiat/Punto/B"});
        QVERIFY(!a.CercaDa(u"PER_NOME", {"LPG", "Z"}));
        QVERIFY(a.Esito().ok());
        // "=" with the leading fields finds the first in order.
        QCOMPARE(chiavi({*a.Cerca(u"PER_NOME", {"LPG", "fiat"})}), QStringList{"LPG/FIAT/Panda/A"});
        QCOMPARE(chiavi(a.ElencaPrefisso(u"PER_NOME", {"L", "fi", "pa"})),
                 QStringList({"LPG/FIAT/Panda/A", "LPG/Fiat/Panda/C"}));

        // Edit can move a row to a new key; delete takes the one the seek finds.
        QVERIFY(
            a.Modifica(u"PER_NOME", {"CNG", "OPEL", "ZAFIRA", "Z"}, mappa(a, "CNG", "Opel", "Astra", "Z")));
        QVERIFY(
            !a.Modifica(u"PER_NOME", {"CNG", "OPEL", "ZAFIRA", "Z"}, mappa(a, "CNG", "Opel", "Corsa", "Z")));
        QVERIFY(a.Esito().ok());
        QVERIFY(
            !a.Modifica(u"PER_NOME", {"LPG", "FIAT", "PUNTO", "B"}, mappa(a, "LPG", "Fiat", "Panda", "a")));
        QCOMPARE(a.Esito().errore, ErroreArchivio::ChiaveDuplicata);
        QVERIFY(a.Cancella(u"PER_NOME", {"lpg", "FIAT", "panda"}));
        QVERIFY(!a.Cancella(u"PER_NOME", {"LPG", "Lancia"}));
        QCOMPARE(chiavi(a.Elenca(u"PER_NOME")), QStringList({"CNG/Opel/Astra/Z", "LPG/citroën/C3/X",
                                                             "LPG/Fiat/Panda/C", "LPG/Fiat/Punto/B"}));
        // A note left NULL stays NULL; a key field cannot be empty.
        QVERIFY(a.Cerca(u"PER_NOME", {"LPG", "Fiat", "Panda", "C"})->Nullo(u"NOTE"));
        QVERIFY(!a.Salva(mappa(a, "LPG", "", "Punto", "B")));
        QCOMPARE(a.Esito().errore, ErroreArchivio::ChiaveMancante);
        // Rows of a non-unique index come in the order they were added.
        Archivio dati;
        QVERIFY(dati.Apri(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), SchemaDati()));
        for (const char *file : {"UNO", "DUE", "TRE"}) {
            RigaArchivio r = dati.NuovaRiga();
            r.Imposta(u"MARCA", QStringLiteral("Fiat"));
            r.Imposta(u"MODELLO", QStringLiteral("Panda"));
            r.Imposta(u"FILE", QLatin1String(file));
            QVERIFY(dati.Aggiungi(r));
        }
        QCOMPARE(dati.Cerca(u"PER_MARCAMOD", {"FIAT", "PANDA"})->Testo(u"FILE"), QStringLiteral("UNO"));
        QCOMPARE(dati.ElencaPrefisso(u"PER_MARCAMOD", {"f", ""}).size(), 3);
    }

    void fileAltruiLasciatiComeSono_data()
    {
        QTest::addColumn<QByteArray>("contenuto");
        QTest::addColumn<bool>("collegamento");
        QTest::addColumn<ErroreArchivio>("errore");
        const QByteArray jet =
            QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20) + QByteArray(2000, '\x5A');
        QTest::newRow("old Jet archive") << jet << false << ErroreArchivio::FileEstraneo;
        QTest::newRow("a few bytes") << QByteArray("SQLite") << false << ErroreArchivio::FileEstraneo;
        QTest::newRow("link to a file elsewhere") << QByteArray() << true << ErroreArchivio::FileEstraneo;
        QByteArray rovinato = QByteArray("SQLite format 3\x00", 16) + QByteArray(4096 - 16, '\xEE');
        QTest::newRow("SQLite header, garbage behind") << rovinato << false << ErroreArchivio::Danneggiato;
        // Another program's database, and a view in place of the table that never ends.
        for (const char *f : {"altrui.sqlite", "viste_infinite.sqlite"})
            QTest::newRow(f) << leggi(QStringLiteral(KV_SOURCE_DIR "/fuzz/corpus/fuzz_archivi/") + f) << false
                             << ErroreArchivio::FileEstraneo;
    }

    void fileAltruiLasciatiComeSono()
    {
        QFETCH(QByteArray, contenuto);
        QFETCH(bool, collegamento);
        QFETCH(ErroreArchivio, errore);
        const QString cartella = m_dir->filePath(QStringLiteral("SOFTWARE"));
        QVERIFY(QDir().mkpath(cartella));
        const QString altrove = m_dir->filePath(QStringLiteral("altrove.txt"));
        // Found without regard to case, like every file the program looks for.
        const QString percorso = cartella + QStringLiteral("/software.mdb");
        if (collegamento) {
            scrivi(altrove, "not for the archive");
            QVERIFY(QFile::link(altrove, percorso));
        } else {
            scrivi(percorso, contenuto);
        }
        const QStringList prima = QDir(cartella).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);

        Archivio a;
        QCOMPARE(ApriArchivioSoftware(cartella, QStringLiteral("SOFTWARE.MDB"), a), qint16(0));
        QCOMPARE(a.Esito().errore, errore);
        QVERIFY(!a.Aperto());
        if (collegamento)
            QCOMPARE(leggi(altrove), QByteArray("not for the archive"));
        else
            QCOMPARE(leggi(percorso), contenuto);
        QCOMPARE(QDir(cartella).entryList(QDir::AllEntries | QDir::Hidden | QDir::System), prima);

        Lingua lingua(QStringLiteral(KV_SOURCE_DIR "/lang"));
        for (const char *nome : {"ENGLISH", "ITALIANO"}) {
            lingua.LinguaCorrente = QLatin1String(nome);
            const QString testo = lingua.testo(MessaggioArchivio(a.Esito()));
            QVERIFY2(testo.contains(QDir::toNativeSeparators(percorso))
                         && !testo.contains(QLatin1String("XXX")),
                     qPrintable(testo));
        }
    }

    void archivioDanneggiato()
    {
        const QString percorso = m_dir->filePath(QStringLiteral("SOFTWARE.MDB"));
        {
            Archivio a;
            QVERIFY(a.Apri(m_dir->path(), QStringLiteral("SOFTWARE.MDB"), SchemaSoftware()));
            for (int i = 0; i < 40; ++i) {
                RigaArchivio r = a.NuovaRiga();
                r.Imposta(u"NomeSW", QStringLiteral("KV%1").arg(i));
                r.Imposta(u"NOTE", QString(2000, u'n'));
                QVERIFY(a.Aggiungi(r));
            }
        }
        // A page in the middle overwritten, as a bad sector or a cut copy would leave it.
        QByteArray byte = leggi(percorso);
        QVERIFY(byte.size() > 5 * 4096);
        byte.replace(3 * 4096, 4096, QByteArray(4096, '\x77'));
        scrivi(percorso, byte);

        Archivio a;
        QVERIFY(!a.Apri(m_dir->path(), QStringLiteral("SOFTWARE.MDB"), SchemaSoftware()));
        QCOMPARE(a.Esito().errore, ErroreArchivio::Danneggiato);
        QCOMPARE(leggi(percorso), byte);
    }

    void bloccatoEdiSolaLettura()
    {
        const QString percorso = m_dir->filePath(QStringLiteral("ARCHDATI.MDB"));
        Archivio primo;
        QCOMPARE(ApriArchivioDati(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), primo), qint16(-1));
        ChiudiArchivioDati(primo);
        // Held from the open on, also when the open had nothing to write.
        QCOMPARE(ApriArchivioDati(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), primo), qint16(-1));
        Archivio secondo;
        QCOMPARE(ApriArchivioDati(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), secondo), qint16(0));
        QCOMPARE(secondo.Esito().errore, ErroreArchivio::Bloccato);
        ChiudiArchivioDati(primo);
        QCOMPARE(ApriArchivioDati(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), secondo), qint16(-1));
        ChiudiArchivioDati(secondo);

        // A file marked read-only, as one copied from a CD, opens once the mark is cleared.
        QVERIFY(QFile::setPermissions(percorso, QFile::ReadOwner | QFile::ReadGroup));
        QCOMPARE(ApriArchivioDati(m_dir->path(), QStringLiteral("ARCHDATI.MDB"), secondo), qint16(-1));
        QVERIFY(!secondo.SoloLettura());
        QVERIFY(QFile::permissions(percorso) & QFile::WriteOwner);
        QVERIFY(QFile::permissions(percorso) & QFile::ReadGroup);
    }

    void fileDiSchemaVecchio()
    {
        // A table without the notes, an index or the folded keys, and a row in it.
        const QString percorso = m_dir->filePath(QStringLiteral("SOFTWARE.MDB"));
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("vecchio"));
            db.setDatabaseName(percorso);
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("CREATE TABLE Software (NomeSW TEXT, Versione TEXT)")));
            QVERIFY(q.exec(QStringLiteral("INSERT INTO Software VALUES ('Kv2 Gpl', '1.4')")));
        }
        QSqlDatabase::removeDatabase(QStringLiteral("vecchio"));

        Archivio a;
        QVERIFY(a.Apri(m_dir->path(), QStringLiteral("SOFTWARE.MDB"), SchemaSoftware()));
        const auto riga = a.Cerca(u"PER_NOME", {"KV2 GPL"});
        QVERIFY(riga && riga->Testo(u"Versione") == u"1.4" && riga->Nullo(u"Note"));
        RigaArchivio doppione = a.NuovaRiga();
        doppione.Imposta(u"NomeSW", QStringLiteral("kv2 gpl"));
        QVERIFY(!a.Aggiungi(doppione));
        QCOMPARE(a.Esito().errore, ErroreArchivio::ChiaveDuplicata);
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
};

QTEST_GUILESS_MAIN(TestArchivio)
#include "tst_archivio.moc"
