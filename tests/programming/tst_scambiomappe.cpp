// Maps on exchange media and their deletion: the choice of the two trees, a set of maps to a
// medium and back into an emptied archive, a crafted medium that tries to write outside the
// archive, a medium that cannot take the set, and the deletion that prunes the model's folder
// behind its last map. A software set beside the maps is met by the archives' tests.

#include "support/FileDiProva.h"
#include "support/MezzoDiProva.h"
#include "support/SolaLettura.h"

#include "base/Lingua.h"
#include "programming/AlberoMappe.h"
#include "programming/CancellazioneMappe.h"
#include "programming/ScambioMappe.h"
#include "programming/SelezioneMappe.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace kv;

namespace {

ChiaveMappa k(const QString &testo)
{
    const QStringList parti = testo.split(u'/');
    return {parti.value(0), parti.value(1), parti.value(2), parti.value(3)};
}

// A map file whose every record holds the text, a label the tests read back.
QByteArray lkv(const QByteArray &testo)
{
    return (testo.leftJustified(64, ' ').toHex().toUpper() + "\r\n").repeated(8);
}

QString etichetta(const QByteArray &file)
{
    return QString::fromLatin1(file.size() == 1040 ? QByteArray::fromHex(file.left(128)).trimmed() : file);
}

QStringList testi(const QList<ChiaveMappa> &chiavi)
{
    QStringList r;
    for (const ChiaveMappa &c : chiavi)
        r << c.elenco().join(u'/');
    return r;
}

} // namespace

class TestScambioMappe : public QObject, BancoScambio
{
    Q_OBJECT

    // A map of the archive: its row (unless riga is false) and its file (unless byte is null).
    void mappa(const QString &chiave, const QByteArray &byte, const QString &nota = {}, bool riga = true)
    {
        if (riga)
            QVERIFY(RegistraMappa(app, k(chiave), nota).ok());
        if (!byte.isNull()) {
            QVERIFY(QDir().mkpath(QFileInfo(p("app/MAPPATURE/") + chiave).path()));
            scrivi(p("app/MAPPATURE/") + chiave + ".LKV", lkv(byte));
        }
    }
    // The archive as the fitter knows it: each map's row (with its note) and file.
    QStringList archivio() const
    {
        QStringList r;
        const AlberoMappe albero = AlberoMappe::Carica(app);
        for (int f : albero.foglie(AlberoMappe::Radice)) {
            const AlberoMappe::Nodo &n = albero.nodo(f);
            r << QStringList{albero.chiave(f).elenco().join(u'/'),
                             n.nelCatalogo ? n.nota.value_or("NULL") : "-",
                             n.suDisco ? etichetta(leggi(n.percorso)) : "-"}
                     .join(u'|');
        }
        return r;
    }
    QList<ChiaveMappa> tutte(const AlberoMappe &albero) const
    {
        SelezioneMappe s;
        s.imposta(albero);
        s.aggiungiTutti();
        return s.chiavi();
    }

private slots:
    void init()
    {
        prepara({"app/MAPPATURE", "fuori"});
        scrivi(p("fuori/segreto.txt"), "outside");
    }

    void sceltaDeiDueAlberi()
    {
        mappa("LPG/Fiat/Punto/base", "1");
        mappa("LPG/Fiat/Punto/tuned", "2");
        mappa("LPG/Fiat/Panda/eco", "3");
        mappa("CNG/Opel/Astra/metano", "4");
        SelezioneMappe s;
        s.imposta(AlberoMappe::Carica(app));
        const AlberoMappe &d = s.disponibili();
        // A map brings its parents; a make brings all below it, once.
        s.aggiungi(d.trova(k("LPG/Fiat/Punto/tuned")));
        QCOMPARE(testi(s.chiavi()), QStringList{"LPG/Fiat/Punto/tuned"});
        s.aggiungi(d.trova(k("LPG/Fiat")));
        QCOMPARE(testi(s.chiavi()),
                 QStringList({"LPG/Fiat/Panda/eco", "LPG/Fiat/Punto/base", "LPG/Fiat/Punto/tuned"}));
        // Removing a model's last map takes the model; removing a make takes all below it.
        s.rimuovi(s.scelte().trova(k("LPG/Fiat/Panda/eco")));
        QCOMPARE(s.scelte().trova(k("LPG/Fiat/Panda")), -1);
        s.aggiungiTutti();
        s.rimuovi(s.scelte().trova(k("LPG/Fiat")));
        QCOMPARE(testi(s.chiavi()), QStringList{"CNG/Opel/Astra/metano"});
        QCOMPARE(s.scelte().trova(k("LPG")), -1);
        s.rimuoviTutti();
        QVERIFY(s.vuota() && s.scelte().nodo(AlberoMappe::Radice).figli.isEmpty());
    }

    void andataERitorno()
    {
        mappa("LPG/Fiat/Punto/base", "base map", "as delivered");
        mappa("LPG/Fiat/Punto/tuned", "tuned map");
        mappa("CNG/Opel/Astra/eco", "eco map", "for winter");
        mappa("LPG/Fiat/Panda/solo", QByteArray(), "a row without its file");
        mappa("LPG/Fiat/Punto/sciolto", "a file without its row", {}, false);
        // The stick holds an older set of maps and the fitter's photos.
        QVERIFY(QDir().mkpath(p("stick/LPG/Vecchia/M")) && QDir().mkpath(p("stick/FOTO")));
        scrivi(p("stick/LPG/Vecchia/M/old.LKV"), "old");
        scrivi(p("stick/FOTO/auto.jpg"), "photo");
        const QStringList prima = archivio();
        QCOMPARE(prima.size(), 5);

        const EsitoScambio scritto =
            ScriviDiscoMappe(app, tutte(AlberoMappe::Carica(app)), p("stick"), rispondi({}));
        QVERIFY(scritto.fatto);
        QCOMPARE(testo(scritto.messaggio), testo("SEGNALAZIONI", "SEGNALAZIONE_20"));
        QCOMPARE(avvisi(scritto), QStringList{testo("SCAMBIO", "SOLO_RIGA", "LPG\\Fiat\\Panda\\solo")});
        QCOMPARE(domande, QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_16")});
        QVERIFY(!QFileInfo::exists(p("stick/LPG/Vecchia")));
        QCOMPARE(leggi(p("stick/FOTO/auto.jpg")), QByteArray("photo"));
        QCOMPARE(leggi(p("stick/CNG/Opel/Astra/eco.LKV")), lkv("eco map"));
        QCOMPARE(LeggiCatalogoScambio(p("stick/DBTEMP.MDB"), SchemaMappe()).righe.size(), 5);

        // Another installation: an empty archive, everything on the medium chosen.
        QVERIFY(QDir(p("app/MAPPATURE")).removeRecursively());
        const SorgenteMappe sorgente = LeggiDiscoMappe(app, p("stick"));
        QVERIFY(sorgente.esito.fatto);
        const int solo = sorgente.albero.trova(k("LPG/Fiat/Panda/solo"));
        QVERIFY(solo > 0 && !sorgente.albero.nodo(solo).suDisco);
        domande.clear();
        const EsitoScambio ripreso = RipristinaMappe(app, p("stick"), tutte(sorgente.albero), rispondi({}));
        QVERIFY(ripreso.fatto);
        QCOMPARE(testo(ripreso.messaggio), testo("RipriMappe", "SEGNALAZIONE_3", "4"));
        QCOMPARE(avvisi(ripreso), QStringList{testo("SCAMBIO", "SENZA_FILE", "LPG\\Fiat\\Panda\\solo")});
        QVERIFY(domande.isEmpty());
        QStringList attese = prima;
        attese.removeIf([](const QString &r) { return r.contains("Panda"); });
        // A file that had no row comes back with an empty note, as the medium gave it.
        attese.replaceInStrings("sciolto|-|", "sciolto|NULL|");
        QCOMPARE(archivio(), attese);
        QVERIFY(!QFileInfo::exists(p("app/TEMP")));

        // Once more: a no keeps the fitter's map, row and file; a yes replaces the other.
        scrivi(p("app/MAPPATURE/LPG/Fiat/Punto/base.LKV"), lkv("tuned here"));
        QVERIFY(RegistraMappa(app, k("LPG/Fiat/Punto/base"), "changed here").ok());
        scrivi(p("app/MAPPATURE/LPG/Fiat/Punto/tuned.LKV"), lkv("tuned here too"));
        const EsitoScambio due = RipristinaMappe(
            app, p("stick"), {k("lpg/FIAT/punto/BASE"), k("LPG/Fiat/Punto/tuned")}, rispondi({false, true}));
        QCOMPARE(due.voci, 1);
        QCOMPARE(domande.first(), testo("RipriMappe", "SEGNALAZIONE_1", " LPG\\Fiat\\Punto\\base "));
        QVERIFY(archivio().contains("LPG/Fiat/Punto/base|changed here|tuned here"));
        QVERIFY(archivio().contains("LPG/Fiat/Punto/tuned|NULL|tuned map"));
    }

    void mezzoManomesso()
    {
        // The archive here has a make that is a link to elsewhere, and TEMP is a link too. The
        // names the exchange check refuses are the software medium's test; here, that each
        // field of a key meets it.
        QVERIFY(QDir().mkpath(p("fuori/opel")) && QDir().mkpath(p("fuori/temp"))
                && QDir().mkpath(p("app/MAPPATURE/CNG")));
        scrivi(p("fuori/temp/tieni.txt"), "keep");
        QVERIFY(QFile::link(p("fuori/opel"), p("app/MAPPATURE/CNG/Opel")));
        QVERIFY(QFile::link(p("fuori/temp"), p("app/TEMP")));

        QVERIFY(QDir().mkpath(p("stick/LPG/Fiat/Punto")) && QDir().mkpath(p("stick/CNG/Fiat/Multipla")));
        QVERIFY(QDir().mkpath(p("stick/CNG/Opel/Astra")) && QDir().mkpath(p("fuori/M")));
        scrivi(p("stick/LPG/Fiat/Punto/base.LKV"), lkv("good map"));
        scrivi(p("stick/CNG/Fiat/Multipla/eco.lkv"), lkv("good too"));
        scrivi(p("stick/CNG/Opel/Astra/eco.LKV"), lkv("would land outside"));
        scrivi(p("stick/LPG/Fiat/Punto/rotta.LKV"), "not a map");
        scrivi(p("fuori/M/f.LKV"), lkv("outside map"));
        QVERIFY(QFile::link(p("fuori/segreto.txt"), p("stick/LPG/Fiat/Punto/link.LKV")));
        QVERIFY(QFile::link(p("stick/LPG"), p("stick/LPG/Fiat/giro")));
        QVERIFY(QFile::link("/", p("stick/LPG/tutto")));
        QVERIFY(QFile::link(p("fuori"), p("stick/LPG/Via")));
        const QList<QStringList> righe = {
            {"LPG", "..", "..", "evil"},         {"/etc", "a", "b", "c"},
            {"LPG", "Fiat", "Punto", "con.lkv"}, {"LPG", "Fiat", "Punto.", "x"},
            {"GPL", "Fiat", "Punto", "base"},    {"LPG", "Fiat", "Punto", "base"},
            {"lpg", "FIAT", "punto", "BASE"},    {"LPG", "Fiat", "Punto", "manca"},
            {"LPG", "Fiat", "Punto", "link"},    {"LPG", "Via", "M", "f"},
            {"LPG", "Fiat", "Punto", "rotta"},   {"CNG", "Opel", "Astra", "eco"},
            {"CNG", "Fiat", "Multipla", "eco"},
        };
        QList<QStringList> conNote;
        QList<ChiaveMappa> chiavi;
        for (const QStringList &r : righe) {
            conNote << r + QStringList{"note " + r.last()};
            chiavi << ChiaveMappa{r.at(0), r.at(1), r.at(2), r.at(3)};
        }
        catalogoGrezzo(p("stick/DBTEMP.MDB"), "MAPPE", {"TipoImpianto", "Marca", "Modello", "File", "NOTE"},
                       conNote);
        const auto fuori = istantanea(m_dir->path(), app);

        const EsitoScambio esito = RipristinaMappe(app, p("stick"), chiavi, rispondi({}));
        QVERIFY(esito.fatto);
        QCOMPARE(esito.voci, 2);
        QCOMPARE(archivio(), QStringList({"CNG/Fiat/Multipla/eco|note eco|good too",
                                          "LPG/Fiat/Punto/base|note base|good map"}));
        QCOMPARE(istantanea(m_dir->path(), app), fuori);
        QStringList attesi;
        for (int i = 0; i < 4; ++i)
            attesi << testo("SCAMBIO", "NOME", NomeVisibile(TestoChiaveMappa(chiavi.at(i))));
        attesi << testo("SCAMBIO", "IMPIANTO", "GPL\\Fiat\\Punto\\base")
               << testo("SCAMBIO", "DOPPIO", "lpg\\FIAT\\punto\\BASE")
               << testo("SCAMBIO", "SENZA_FILE", "LPG\\Fiat\\Punto\\manca")
               << testo("SCAMBIO", "SENZA_FILE", "LPG\\Fiat\\Punto\\link")
               << testo("SCAMBIO", "SENZA_FILE", "LPG\\Via\\M\\f")
               << testo("SCAMBIO", "NON_MAPPA", "LPG\\Fiat\\Punto\\rotta")
                      .replace("YYY", lingua.LeggiTesto("ProgMappe", "MAPPA.4")
                                          .trimmed()
                                          .replace("XXX", "1")
                                          .replace("YYY", "1"))
               << testo("SCAMBIO", "FUORI", "CNG\\Opel\\Astra\\eco");
        QCOMPARE(avvisi(esito), attesi);

        // A catalogue that is no database: a clear word, and nothing changes.
        scrivi(p("stick/DBTEMP.MDB"), "no database");
        const QStringList qui = archivio();
        const EsitoScambio rifiutato = RipristinaMappe(app, p("stick"), chiavi, rispondi({}));
        QVERIFY(!rifiutato.fatto);
        QCOMPARE(testo(rifiutato.messaggio),
                 testo("SCAMBIO", "CATALOGO", QFileInfo(p("stick")).canonicalFilePath() + "/DBTEMP.MDB"));
        QCOMPARE(archivio(), qui);
        QVERIFY(LeggiDiscoMappe(app, p("stick")).albero.foglie(AlberoMappe::Radice).isEmpty());
    }

    void mezzoPieno()
    {
        mappa("LPG/Fiat/Punto/base", "base map", "as delivered");
        QVERIFY(QDir().mkpath(p("stick")));
        const auto archivio = istantanea(app);
        SolaLettura pieno(p("stick"), QFile::ReadOwner | QFile::ExeOwner);
        const EsitoScambio esito =
            ScriviDiscoMappe(app, {k("LPG/Fiat/Punto/base")}, p("stick"), rispondi({}));
        QVERIFY(!esito.fatto);
        QCOMPARE(testo(esito.messaggio), testo("SEGNALAZIONI", "SEGNALAZIONE_19"));
        QCOMPARE(avvisi(esito),
                 QStringList{testo("SCAMBIO", "COPIA", QFileInfo(p("stick")).canonicalFilePath())});
        QCOMPARE(istantanea(app), archivio);
    }

    void cancellazione()
    {
        mappa("LPG/Fiat/Punto/base", "1");
        mappa("LPG/Fiat/Punto/tuned", "2");
        mappa("LPG/Fiat/Panda/solo", "3");
        mappa("LPG/Fiat/Punto/sciolto", "4", {}, false);
        QVERIFY(QFile::setPermissions(p("app/MAPPATURE/LPG/Fiat/Panda/solo.LKV"), QFile::ReadOwner));
        QVERIFY(QDir().mkpath(p("fuori/x")));
        scrivi(p("fuori/x/y.LKV"), "outside");
        const auto fuori = istantanea(p("fuori"));

        QCOMPARE(CancellaMappe(app, {k("LPG/Fiat/Panda/solo")}, rispondi({false})).voci, 0);
        QCOMPARE(domande.first(), testo("SEGNALAZIONI", "SEGNALAZIONE_30") + "\n\nLPG\\Fiat\\Panda\\solo");
        QVERIFY(QFileInfo::exists(p("app/MAPPATURE/LPG/Fiat/Panda/solo.LKV")));

        // The last map of a model takes the model's folder; a file without its row goes too;
        // a name that leads out deletes nothing there.
        const EsitoScambio esito = CancellaMappe(
            app, {k("LPG/Fiat/Panda/solo"), k("LPG/Fiat/Punto/sciolto"), {"LPG", "..", "../fuori/x", "y"}},
            rispondi({true}));
        QVERIFY(esito.fatto);
        QCOMPARE(testo(esito.messaggio), testo("SCAMBIO", "CANCELLATE_PARTE", "2").replace("YYY", "3"));
        QCOMPARE(avvisi(esito), QStringList{testo("SCAMBIO", "FUORI_CANCELLA", "LPG\\..\\../fuori/x\\y")});
        QVERIFY(!QFileInfo::exists(p("app/MAPPATURE/LPG/Fiat/Panda")));
        QCOMPARE(archivio(), QStringList({"LPG/Fiat/Punto/base|NULL|1", "LPG/Fiat/Punto/tuned|NULL|2"}));
        QCOMPARE(istantanea(p("fuori")), fuori);

        QVERIFY(CancellaMappe(app, {k("LPG/Fiat/Punto/base"), k("LPG/Fiat/Punto/tuned")}, rispondi({true}))
                    .fatto);
        QVERIFY(!QFileInfo::exists(p("app/MAPPATURE/LPG/Fiat/Punto")));
        QVERIFY(QFileInfo(p("app/MAPPATURE/LPG/Fiat")).isDir());
        QVERIFY(archivio().isEmpty());

        // An archive that can only be read (its folder is): nothing goes, and the line says so.
        mappa("LPG/Fiat/Uno/resta", "5");
        {
            SolaLettura sola(p("app/MAPPATURE"), QFile::ReadOwner | QFile::ExeOwner);
            QCOMPARE(testo(CancellaMappe(app, {k("LPG/Fiat/Uno/resta")}, rispondi({true})).messaggio),
                     testo("SCAMBIO", "CANCELLATE_NESSUNA"));
        }
        QCOMPARE(archivio(), QStringList{"LPG/Fiat/Uno/resta|NULL|5"});

        // An archive that cannot be opened keeps every file.
        scrivi(p("app/MAPPATURE/ARCHMAPPE.MDB"), "no database");
        const EsitoScambio rifiutato = CancellaMappe(app, {k("LPG/Fiat/Uno/resta")}, rispondi({true}));
        QCOMPARE(testo(rifiutato.messaggio), testo("SEGNALAZIONI", "SEGNALAZIONE_28"));
        QVERIFY(QFileInfo::exists(p("app/MAPPATURE/LPG/Fiat/Uno/resta.LKV")));
    }
};

QTEST_MAIN(TestScambioMappe)
#include "tst_scambiomappe.moc"
