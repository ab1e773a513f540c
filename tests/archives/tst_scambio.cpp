// Exchange media on the archives' side: which folders may be a medium (real paths, not
// text), cleaning a target of an older set, software there and back, a crafted medium that
// tries to write outside the archive, a medium that cannot be read to the end, and the
// deletion of a software.

#include "support/FileDiProva.h"
#include "support/MezzoDiProva.h"
#include "support/SolaLettura.h"

#include "archives/CancellazioneSoftware.h"
#include "archives/PulisciDestinazione.h"
#include "archives/ScambioSoftware.h"
#include "base/Lingua.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace kv;

class TestScambio : public QObject, BancoScambio
{
    Q_OBJECT

    void software(const QString &nome, const QString &versione, const QByteArray &file)
    {
        Archivio db;
        QVERIFY(ApriArchivioSoftware(p("app/SOFTWARE"), "SOFTWARE.MDB", db));
        RigaArchivio r = db.NuovaRiga();
        r.Imposta(u"NomeSW", nome);
        r.Imposta(u"Versione", versione);
        r.Imposta(u"NOTE", "note of " + nome);
        QVERIFY(db.Salva(r));
        if (!file.isNull())
            scrivi(p("app/SOFTWARE/FILES19/") + nome + ".S19", file);
    }
    static QStringList righe(const QList<VoceSoftware> &voci)
    {
        QStringList r;
        for (const VoceSoftware &v : voci)
            r << QStringList{v.nome, v.versione, v.nota, v.suDisco ? "file" : "-"}.join(u'|');
        return r;
    }

private slots:
    void init()
    {
        prepara({"app/MAPPATURE/LPG/Fiat/Punto", "app/SOFTWARE/FILES19", "fuori/cartella"});
        scrivi(p("app/MAPPATURE/LPG/Fiat/Punto/base.LKV"), "a map");
        scrivi(p("fuori/segreto.txt"), "outside");
    }

    void cartellaDelMezzo_data()
    {
        QTest::addColumn<QString>("cartella");
        QTest::addColumn<EsitoCartellaScambio>("esito");
        using E = EsitoCartellaScambio;
        QTest::newRow("a folder beside") << "fuori/cartella" << E::Valida;
        QTest::newRow("not made yet") << "fuori/nuova/stick" << E::Valida;
        QTest::newRow("blank") << "  " << E::Vuota;
        QTest::newRow("a file") << "fuori/segreto.txt" << E::NonCartella;
        QTest::newRow("the program's folder") << "app" << E::Programma;
        QTest::newRow("the same, spelt another way") << "app/TEMP/../" << E::Programma;
        QTest::newRow("inside it") << "app/MAPPATURE" << E::Programma;
        QTest::newRow("inside it, not made yet") << "app/ESPORTA" << E::Programma;
        QTest::newRow("the folder that holds it") << "." << E::Programma;
        QTest::newRow("the root") << "/" << E::Programma;
        QTest::newRow("a link to it") << "link-app" << E::Programma;
        QTest::newRow("a link into it") << "link-mappe" << E::Programma;
        QTest::newRow("below a link to it") << "link-app/stick" << E::Programma;
    }

    void cartellaDelMezzo()
    {
        QFETCH(QString, cartella);
        QFETCH(EsitoCartellaScambio, esito);
        QVERIFY(QFile::link(app, p("link-app")));
        QVERIFY(QFile::link(p("app/MAPPATURE"), p("link-mappe")));
        const QString percorso =
            cartella.trimmed().isEmpty() || cartella.startsWith(u'/') ? cartella : p(cartella);
        QCOMPARE(ControllaCartellaScambio(percorso, app).esito, esito);
    }

    void pulituraDelMezzo()
    {
        // An older set of maps, with links into it and in its place, beside the fitter's own
        // things.
        QVERIFY(QDir().mkpath(p("stick/LPG/Vecchia/Mod")) && QDir().mkpath(p("stick/cng/X/Y")));
        QVERIFY(QDir().mkpath(p("stick/FOTO")) && QDir().mkpath(p("stick/FILES19")));
        scrivi(p("stick/LPG/Vecchia/Mod/old.LKV"), "old");
        scrivi(p("stick/cng/X/Y/old.lkv"), "old");
        scrivi(p("stick/DBTEMP.MDB"), "old catalogue");
        scrivi(p("stick/ELENCO_1.TXT"), "LPG");
        scrivi(p("stick/FOTO/auto.jpg"), "photo");
        scrivi(p("stick/LETTERA.TXT"), "letter");
        scrivi(p("stick/FILES19/KV1.S19"), "old software");
        QVERIFY(QFile::link(p("fuori"), p("stick/LPG/Vecchia/via")));
        QVERIFY(QFile::link(p("fuori"), p("stick/CNG")));
        QVERIFY(QFile::setPermissions(p("stick/LPG/Vecchia/Mod/old.LKV"), QFile::ReadOwner));
        QVERIFY(QDir().mkpath(p("set/LPG/Fiat/Punto")));
        scrivi(p("set/DBTEMP.MDB"), "new catalogue");
        scrivi(p("set/LPG/Fiat/Punto/base.LKV"), "new map");
        const auto fuori = istantanea(p("fuori"));

        // A target that is the program's folder by a link is never cleaned.
        QVERIFY(QFile::link(app, p("link-app")));
        const auto archivio = istantanea(app);
        QCOMPARE(
            PulisciDestinazione(ControllaCartellaScambio(p("link-app"), app), p("set"), TipoScambio::Mappe),
            EsitoPulizia::CopiaFallita);
        QCOMPARE(istantanea(app), archivio);

        QCOMPARE(PulisciDestinazione(ControllaCartellaScambio(p("stick"), app), p("set"), TipoScambio::Mappe),
                 EsitoPulizia::Fatta);
        QCOMPARE(QDir(p("stick")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({"DBTEMP.MDB", "FILES19", "FOTO", "LETTERA.TXT", "LPG"}));
        QCOMPARE(QDir(p("stick/LPG")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{"Fiat"});
        QCOMPARE(leggi(p("stick/DBTEMP.MDB")), QByteArray("new catalogue"));
        QCOMPARE(leggi(p("stick/LPG/Fiat/Punto/base.LKV")), QByteArray("new map"));
        QCOMPARE(leggi(p("stick/FOTO/auto.jpg")), QByteArray("photo"));
        QCOMPARE(istantanea(p("fuori")), fuori);

        // A software set after it takes the older one, and leaves the maps.
        scrivi(p("stick/softripr.mdb"), "old software catalogue");
        QVERIFY(QDir().mkpath(p("setsw/FILES19")));
        scrivi(p("setsw/SOFTRIPR.MDB"), "software catalogue");
        scrivi(p("setsw/FILES19/KV2.S19"), "new software");
        QCOMPARE(
            PulisciDestinazione(ControllaCartellaScambio(p("stick"), app), p("setsw"), TipoScambio::Software),
            EsitoPulizia::Fatta);
        QCOMPARE(QDir(p("stick")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({"DBTEMP.MDB", "FILES19", "FOTO", "LETTERA.TXT", "LPG", "SOFTRIPR.MDB"}));
        QCOMPARE(QDir(p("stick/FILES19")).entryList(QDir::Files), QStringList{"KV2.S19"});
        QCOMPARE(leggi(p("stick/LPG/Fiat/Punto/base.LKV")), QByteArray("new map"));
    }

    void softwareAndataERitorno()
    {
        software("KV2", "2.01", "S0 release two");
        software("KV3", "3.00", "S0 release three");
        software("SOLORIGA", "1.0", QByteArray());
        QVERIFY(QFile::setPermissions(p("app/SOFTWARE/FILES19/KV3.S19"), QFile::ReadOwner));
        const QList<VoceSoftware> prima = ElencoSoftware(app);
        QCOMPARE(righe(prima), QStringList({"KV2|2.01|note of KV2|file", "KV3|3.00|note of KV3|file",
                                            "SOLORIGA|1.0|note of SOLORIGA|-"}));

        // Nothing to write, no target, and the program's folder: refused before the question.
        QCOMPARE(testo(ScriviDiscoSoftware(app, {}, p("stick"), rispondi({})).messaggio),
                 testo("SEGNALAZIONI", "SEGNALAZIONE_23"));
        QCOMPARE(testo(ScriviDiscoSoftware(app, {"KV2"}, " ", rispondi({})).messaggio),
                 testo("SEGNALAZIONI", "SEGNALAZIONE_32"));
        QCOMPARE(testo(ScriviDiscoSoftware(app, {"KV2"}, app, rispondi({})).messaggio),
                 testo("SEGNALAZIONI", "SEGNALAZIONE_21"));
        QVERIFY(domande.isEmpty());
        QCOMPARE(testo(ScriviDiscoSoftware(app, {"KV2"}, p("stick"), rispondi({false})).messaggio),
                 testo("SEGNALAZIONI", "SEGNALAZIONE_19"));
        QVERIFY(!QFileInfo::exists(p("stick")));

        const EsitoScambio scritto =
            ScriviDiscoSoftware(app, {"KV2", "KV3", "SOLORIGA"}, p("stick"), rispondi({true}));
        QVERIFY(scritto.fatto);
        QCOMPARE(testo(scritto.messaggio), testo("SEGNALAZIONI", "SEGNALAZIONE_20"));
        QCOMPARE(avvisi(scritto), QStringList{testo("SCAMBIO", "SOLO_RIGA", "SOLORIGA")});
        QVERIFY(!QFileInfo::exists(p("app/TEMP")));

        // The archive emptied, and all of it back from the medium, which is read-only.
        QVERIFY(
            QFile::setPermissions(p("app/SOFTWARE/FILES19/KV3.S19"), QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(QDir(p("app/SOFTWARE")).removeRecursively());
        const auto mezzo = istantanea(p("stick"));
        SorgenteSoftware letto;
        {
            SolaLettura protetto(p("stick"), QFile::ReadOwner | QFile::ExeOwner);
            letto = LeggiDiscoSoftware(app, p("stick"));
            QVERIFY(letto.esito.fatto);
            QStringList nomi;
            for (const VoceSoftware &v : letto.voci)
                nomi << v.nome;
            const EsitoScambio ripreso = RipristinaSoftware(app, p("stick"), nomi, rispondi({}));
            QVERIFY(ripreso.fatto);
            QCOMPARE(ripreso.voci, 2);
            QCOMPARE(avvisi(ripreso), QStringList{testo("SCAMBIO", "SENZA_FILE", "SOLORIGA")});
        }
        QCOMPARE(righe(letto.voci), QStringList({"KV2|2.01|note of KV2|file", "KV3|3.00|note of KV3|file",
                                                 "SOLORIGA|1.0|note of SOLORIGA|-"}));
        QCOMPARE(righe(ElencoSoftware(app)), righe(prima).mid(0, 2));
        QCOMPARE(leggi(p("app/SOFTWARE/FILES19/KV2.S19")), QByteArray("S0 release two"));
        QCOMPARE(leggi(p("app/SOFTWARE/FILES19/KV3.S19")), QByteArray("S0 release three"));
        QVERIFY(QFileInfo(p("app/SOFTWARE/FILES19/KV3.S19")).isWritable());
        QCOMPARE(istantanea(p("stick")), mezzo);
        QVERIFY(domande.size() == 2 && !QFileInfo::exists(p("app/TEMP")));

        // Again: each one asks first, and a no leaves row and file as they are.
        scrivi(p("app/SOFTWARE/FILES19/KV2.S19"), "tuned here");
        domande.clear();
        QCOMPARE(RipristinaSoftware(app, p("stick"), {"KV2", "KV3"}, rispondi({false, true})).voci, 1);
        QCOMPARE(domande.first(), testo("RipriDiscoSW", "SEGNALAZIONE1.1", " KV2\\2.01 "));
        QCOMPARE(leggi(p("app/SOFTWARE/FILES19/KV2.S19")), QByteArray("tuned here"));
    }

    void mezzoSoftwareManomesso()
    {
        // Rows that name places outside, odd names, a doubled key, a file that is missing or
        // is a link, and folders that loop or lead out.
        QVERIFY(QDir().mkpath(p("stick/FILES19")));
        const QList<QStringList> righeMezzo = {
            {"../../../fuori/preso", "1", "up and out"},
            {"/tmp/assoluto", "1", ""},
            {"con/barra", "1", ""},
            {"con\\rovescia", "1", ""},
            {QString(300, u'x'), "1", ""},
            {"ctl\x01", "1", ""},
            {".nascosto", "1", ""},
            {"BUONO", "1.0", "good one"},
            {"buono", "6.6", "the same in another case"},
            {"MANCA", "1", ""},
            {"LINK", "1", ""},
            {"SETTE", "7", QString()},
        };
        catalogoGrezzo(p("stick/SOFTRIPR.MDB"), "SOFTWARE", {"NomeSW", "Versione", "NOTE"}, righeMezzo);
        scrivi(p("stick/FILES19/BUONO.S19"), "good");
        scrivi(p("stick/FILES19/sette.s19"), "seven");
        scrivi(p("stick/FILES19/.nascosto.S19"), "hidden");
        scrivi(p("stick/FILES19/ctl\x01.S19"), "control");
        QVERIFY(QFile::link(p("fuori/segreto.txt"), p("stick/FILES19/LINK.S19")));
        QVERIFY(QFile::link(p("stick/FILES19"), p("stick/FILES19/giro")));
        QVERIFY(QFile::link("/", p("stick/FILES19/radice")));
        const auto fuori = istantanea(m_dir->path(), app);

        QStringList nomi;
        for (const QStringList &r : righeMezzo)
            nomi << r.first();
        const EsitoScambio esito = RipristinaSoftware(app, p("stick"), nomi, rispondi({}));
        QVERIFY(esito.fatto);
        QCOMPARE(esito.voci, 2);
        QCOMPARE(QDir(p("app/SOFTWARE/FILES19")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList({"BUONO.S19", "SETTE.S19"}));
        QCOMPARE(leggi(p("app/SOFTWARE/FILES19/SETTE.S19")), QByteArray("seven"));
        QCOMPARE(righe(ElencoSoftware(app)), QStringList({"BUONO|1.0|good one|file", "SETTE|7||file"}));
        QCOMPARE(istantanea(m_dir->path(), app), fuori);
        QStringList attesi;
        for (int i = 0; i < 7; ++i)
            attesi << testo("SCAMBIO", "NOME", NomeVisibile(nomi.at(i)));
        attesi << testo("SCAMBIO", "DOPPIO", "buono") << testo("SCAMBIO", "SENZA_FILE", "MANCA")
               << testo("SCAMBIO", "SENZA_FILE", "LINK");
        QCOMPARE(avvisi(esito), attesi);
    }

    void mezzoIllegibile_data()
    {
        QTest::addColumn<QByteArray>("catalogo");
        QTest::addColumn<QString>("chiave");
        QTest::newRow("not a database") << QByteArray("this is no database at all") << "CATALOGO";
        QTest::newRow("a damaged database") << QByteArray() << "CATALOGO";
        QTest::newRow("no catalogue") << QByteArray("-") << "CATALOGO_ASSENTE";
        QTest::newRow("a file that cannot be read") << QByteArray("+") << "LETTURA";
    }

    void mezzoIllegibile()
    {
        QFETCH(QByteArray, catalogo);
        QFETCH(QString, chiave);
        software("KV2", "2.01", "here");
        QVERIFY(QDir().mkpath(p("stick/FILES19")));
        scrivi(p("stick/FILES19/KV2.S19"), "from the medium");
        if (catalogo.isEmpty() || catalogo == "+") {
            catalogoGrezzo(p("stick/SOFTRIPR.MDB"), "SOFTWARE", {"NomeSW", "Versione", "NOTE"},
                           {{"KV2", "9", "medium"}});
            if (catalogo.isEmpty()) {
                // Pages of the table overwritten in the middle of the file.
                QFile f(p("stick/SOFTRIPR.MDB"));
                QVERIFY(f.open(QIODevice::ReadWrite));
                QVERIFY(f.seek(1024));
                QVERIFY(f.write(QByteArray(f.size() - 1024, '\xA5')) > 0);
            }
        } else if (catalogo != "-") {
            scrivi(p("stick/SOFTRIPR.MDB"), catalogo);
        }
        const auto archivio = istantanea(app);
        SolaLettura illeggibile(p("stick/FILES19/KV2.S19"), catalogo == "+"
                                                                ? QFile::Permissions()
                                                                : QFile::Permissions(QFile::ReadOwner));
        const QString mezzo = QFileInfo(p("stick")).canonicalFilePath();
        const QString percorso =
            chiave == u"CATALOGO_ASSENTE" || chiave == u"LETTURA" ? mezzo : mezzo + "/SOFTRIPR.MDB";
        const EsitoScambio esito = RipristinaSoftware(app, p("stick"), {"KV2"}, rispondi({}));
        QVERIFY(!esito.fatto);
        QCOMPARE(testo(esito.messaggio), testo("SCAMBIO", qPrintable(chiave), percorso));
        QCOMPARE(istantanea(app), archivio);
        QVERIFY(LeggiDiscoSoftware(app, p("stick")).voci.isEmpty());
    }

    void cancellazioneSoftware()
    {
        software("KV2", "2.01", "release");
        software("KV3", "3.00", "other");
        scrivi(p("fuori/x.S19"), "outside");
        QVERIFY(QFile::setPermissions(p("app/SOFTWARE/FILES19/KV2.S19"), QFile::ReadOwner));

        QCOMPARE(CancellaSoftware(app, "KV2", rispondi({false})).voci, 0);
        QVERIFY(domande.first().endsWith(testo("SCAMBIO", "CANCELLA_SW", "KV2")));
        QVERIFY(QFileInfo::exists(p("app/SOFTWARE/FILES19/KV2.S19")));

        const EsitoScambio esito = CancellaSoftware(app, "kv2", rispondi({true}));
        QVERIFY(esito.fatto && esito.avvisi.empty());
        QCOMPARE(righe(ElencoSoftware(app)), QStringList{"KV3|3.00|note of KV3|file"});
        QVERIFY(!QFileInfo::exists(p("app/SOFTWARE/FILES19/KV2.S19")));

        // A name that would lead out deletes no file anywhere.
        QVERIFY(CancellaSoftware(app, "../../../fuori/x", rispondi({true})).fatto);
        QCOMPARE(leggi(p("fuori/x.S19")), QByteArray("outside"));
        QCOMPARE(righe(ElencoSoftware(app)).size(), 1);
    }
};

QTEST_MAIN(TestScambio)
#include "tst_scambio.moc"
