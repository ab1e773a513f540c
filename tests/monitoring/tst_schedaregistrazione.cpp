// The record card without its window: the row in ARCHDATI.MDB and its replacement after
// the question, the list of cards by make and model, the file the card names, and names
// that would put a file outside DATI.

#include "support/FileDiProva.h"
#include "support/MezzoDiProva.h"
#include "support/TestiDiProva.h"

#include "base/Configurazione.h"
#include "base/FileIni.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/SchedaRegistrazione.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace kv;

using S = SchedaRegistrazione;
using Tipo = S::Esito::Tipo;

class TstSchedaRegistrazione : public QObject
{
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> radice; // the program's folder is app/ inside it
    QString app;
    std::unique_ptr<AnelloRegistrazione> anello;
    std::unique_ptr<S> scheda;

    QString dati(const QString &resto = {}) const
    {
        return app + "/DATI" + (resto.isEmpty() ? "" : "/" + resto);
    }

    // Every row of the file as another opener of it sees them: MARCA/MODELLO/FILE/NOTE.
    QStringList righeNelFile()
    {
        scheda->Chiudi();
        QStringList r;
        {
            Archivio a;
            if (!ApriArchivioDati(dati(), "ARCHDATI.MDB", a))
                return {"cannot open"};
            for (const RigaArchivio &riga : a.Elenca(u"PER_FILE"))
                r << riga.Testo(u"MARCA") + '/' + riga.Testo(u"MODELLO") + '/' + riga.Testo(u"FILE") + '/'
                         + riga.Testo(u"NOTE").trimmed();
        }
        scheda->Apri();
        return r;
    }

    S::Esito memorizza(const S::Caselle &c, int *domande = nullptr, bool risposta = true)
    {
        return scheda->Memorizza(c, [&] {
            if (domande)
                ++*domande;
            return risposta;
        });
    }

private slots:
    void init()
    {
        radice = std::make_unique<QTemporaryDir>();
        app = radice->filePath("app");
        QVERIFY(QDir().mkpath(app));
        anello = std::make_unique<AnelloRegistrazione>();
        anello->collega(nullptr, app);
        scheda = std::make_unique<S>(app, *anello);
        QVERIFY(scheda->Apri());
    }

    void cleanup()
    {
        scheda.reset();
        radice.reset();
    }

    void theCardIsStoredThenReplacedAfterTheQuestion()
    {
        int domande = 0;
        // The file name as typed, lower case: the card keeps it, the file on disk is upper case.
        S::Esito e = memorizza({" Fiat ", "Punto ", " giro1", "first drive"}, &domande);
        QVERIFY(e.ok());
        QCOMPARE(domande, 0);
        const QString file = dati("Fiat/Punto/GIRO1.ACQ");
        QCOMPARE(e.percorso, file);
        QCOMPARE(righeNelFile(), QStringList{"Fiat/Punto/giro1/first drive"});
        QVERIFY(QFileInfo(dati("Fiat/Punto")).isDir());
        QCOMPARE(FileIni::leggi(PercorsoIni(app), "MEMORIZZAZIONE", "FileMemor"), file);
        QCOMPARE(anello->FileRegistrazione, file);
        {
            scheda->Chiudi();
            Archivio a;
            QVERIFY(ApriArchivioDati(dati(), "ARCHDATI.MDB", a));
            // The notes are stored as the box holds them when left: padded to its length.
            QCOMPARE(a.Cerca(u"PER_FILE", {"fiat", "punto", "GIRO1"})->Testo(u"NOTE"),
                     QString("first drive").leftJustified(255, ' '));
            a.Chiudi();
            QVERIFY(scheda->Apri());
        }
        scrivi(file, "recorded\r\n");

        // The same card in other letters: asked; No keeps card and recording.
        e = memorizza({"FIAT", "punto", "GIRO1", "second"}, &domande, false);
        QCOMPARE(e.tipo, Tipo::NonSostituita);
        QCOMPARE(e.casella, int(S::File));
        QCOMPARE(domande, 1);
        QCOMPARE(righeNelFile(), QStringList{"Fiat/Punto/giro1/first drive"});
        QCOMPARE(leggi(file), QByteArray("recorded\r\n"));

        // Yes: one row with the new texts, and the old recording gone.
        e = memorizza({"FIAT", "punto", "GIRO1", "second"}, &domande, true);
        QVERIFY(e.ok());
        QCOMPARE(domande, 2);
        QCOMPARE(righeNelFile(), QStringList{"FIAT/punto/GIRO1/second"});
        QCOMPARE(e.percorso, file); // the folders of the first card, whatever the case
        QVERIFY(!QFile::exists(file));

        // A recording at the path of a new card is somebody's too: asked as well.
        scrivi(dati("Fiat/Punto/GIRO2.ACQ"), "older\r\n");
        e = memorizza({"Fiat", "Punto", "giro2", ""}, &domande, false);
        QCOMPARE(e.tipo, Tipo::NonSostituita);
        QCOMPARE(domande, 3);
        QCOMPARE(leggi(dati("Fiat/Punto/GIRO2.ACQ")), QByteArray("older\r\n"));
    }

    void theListShowsTheCardsWhoseMakeAndModelBeginAsTyped_data()
    {
        QTest::addColumn<QString>("marca");
        QTest::addColumn<QString>("modello");
        QTest::addColumn<QStringList>("attese");
        const QStringList tutte = {"ALFA ROMEO/147/E", "FIAT/PANDA/D", "FIAT/PUNTO/A",
                                   "FIAT/PUNTO/F",     "FIAT/UNO/B",   "FORD/KA/C"};
        const auto riga = [](const char *nome, const char *marca, const char *modello,
                             const QStringList &attese) {
            QTest::newRow(nome) << QString(marca) << QString(modello) << attese;
        };
        riga("both empty: all", "", "", tutte);
        riga("make begun", "fi", "", tutte.mid(1, 4));
        riga("make and model begun", "FIAT ", "p", tutte.mid(1, 3));
        riga("whole make and model", "Ford", "Ka", {"FORD/KA/C"});
        riga("no such make", "Opel", "", {});
        // The walk stops at the first card outside the bounds: FIAT/PANDA comes first.
        riga("model begun under a shorter make", "F", "U", {});
    }

    void theListShowsTheCardsWhoseMakeAndModelBeginAsTyped()
    {
        QFETCH(QString, marca);
        QFETCH(QString, modello);
        QFETCH(QStringList, attese);
        for (const auto &c : {S::Caselle{"Fiat", "Punto", "a", "1"}, S::Caselle{"Fiat", "Uno", "b", "2"},
                              S::Caselle{"Ford", "Ka", "c", ""}, S::Caselle{"Fiat", "Panda", "d", ""},
                              S::Caselle{"Alfa Romeo", "147", "e", ""}, S::Caselle{"fiat", "punto", "f", ""}})
            QVERIFY(memorizza(c).ok());

        const QList<S::Voce> voci = scheda->ElencoEsi(marca, modello);
        QStringList viste;
        for (const S::Voce &v : voci) {
            QCOMPARE(v.testo.size(), 100);
            viste << v.testo.left(50).trimmed() + '/' + v.testo.mid(50).trimmed() + '/' + v.file.toUpper();
            // A click on the entry finds the card as it was typed.
            const auto c = scheda->LeggiScheda(v);
            QVERIFY(c);
            QCOMPARE((*c)[S::File], v.file);
            QCOMPARE(S::VoceElenco((*c)[S::Marca], (*c)[S::Modello]), v.testo);
        }
        QCOMPARE(viste, attese);
    }

    void namesThatWouldLeaveDatiAreRefused_data()
    {
        QTest::addColumn<int>("casella");
        QTest::addColumn<QString>("nome");
        const QList<std::pair<const char *, QString>> nomi = {
            {"dot dot", ".."},
            {"dot", "."},
            {"leading dot", ".hidden"},
            {"slash", "a/b"},
            {"up and out", "../../x"},
            {"backslash", "a\\b"},
            {"colon", "c:x"},
            {"star", "a*"},
            {"tab", "a\tb"},
            {"line feed", "a\nb"},
            {"escape", QString("a") + QChar(0x1B)},
            {"delete", QString("a") + QChar(0x7F)},
            {"not in the code page", QString::fromUtf8("\xe6\x97\xa5\xe6\x9c\xac")},
            {"300 characters", QString(300, u'A')},
        };
        for (int c : {S::Marca, S::Modello, S::File})
            for (const auto &[riga, nome] : nomi)
                QTest::addRow("%s in box %d", riga, c) << c << nome;
        QTest::newRow("21 characters for a file") << int(S::File) << QString(21, u'F');
    }

    void namesThatWouldLeaveDatiAreRefused()
    {
        QFETCH(int, casella);
        QFETCH(QString, nome);
        const auto prima = istantanea(radice->path());
        S::Caselle c = {"Fiat", "Punto", "GIRO", ""};
        c[static_cast<std::size_t>(casella)] = nome;
        const S::Esito e = memorizza(c);
        QCOMPARE(e.tipo, Tipo::NomeRifiutato);
        QCOMPARE(e.casella, casella);
        QCOMPARE(istantanea(radice->path()), prima);
        QVERIFY(righeNelFile().isEmpty());
        QVERIFY(anello->FileRegistrazione.isEmpty());
        // The fitter is told which name, readable.
        const QString testo = Inglese(MessaggioEsitoScheda(e));
        QVERIFY(!testo.isEmpty() && !testo.contains("XXX"));
        for (QChar ch : testo)
            QVERIFY(ch.unicode() >= 0x20);
    }

    void linksAreNotFollowedOut_data()
    {
        QTest::addColumn<QString>("collegamento"); // below DATI
        QTest::addColumn<bool>("aCartella");       // to a folder outside, else to a file
        QTest::newRow("make folder") << "Fiat" << true;
        QTest::newRow("model folder") << "Fiat/Punto" << true;
        QTest::newRow("the recording file") << "Fiat/Punto/GIRO.ACQ" << false;
    }

    void linksAreNotFollowedOut()
    {
        QFETCH(QString, collegamento);
        QFETCH(bool, aCartella);
        const QString fuori = radice->filePath(aCartella ? "fuori" : "fuori.acq");
        if (aCartella)
            QVERIFY(QDir().mkpath(fuori));
        else
            scrivi(fuori, "elsewhere");
        QVERIFY(QDir().mkpath(QFileInfo(dati(collegamento)).path()));
        QVERIFY(QFile::link(fuori, dati(collegamento)));
        const auto prima = istantanea(radice->path());

        const S::Esito e = memorizza({"Fiat", "Punto", "giro", ""});
        QCOMPARE(e.tipo, Tipo::FuoriCartella);
        QCOMPARE(istantanea(radice->path()), prima);
        QVERIFY(righeNelFile().isEmpty());
        if (!aCartella)
            QCOMPARE(leggi(fuori), QByteArray("elsewhere"));
    }
};

QTEST_GUILESS_MAIN(TstSchedaRegistrazione)
#include "tst_schedaregistrazione.moc"
