// The exchange and deletion pages in the main frame, by keyboard alone: maps chosen in the
// tree and copied to a medium folder, restored from it into an emptied archive, deleted;
// software copied, deleted and restored; each page reached from the Utilities menu.

#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/PortaFinta.h"
#include "support/Tastiera.h"

#include "programming/FileMappa.h"
#include "programming/ui/PaginaElenchiMappe.h"
#include "programming/ui/PaginaSoftware.h"
#include "programming/ui/RegistroScambio.h"
#include "programming/ui/SceltaCartella.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

using namespace kv;

class TstPagineScambio : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    QTemporaryDir mezzo; // the medium, outside the program's folder
    Lingua lingua;       // lent to the program below, so it outlives it
    std::unique_ptr<Programma> p;
    std::unique_ptr<Korvantine> frame;
    QStringList domande;

    QString d(const QString &relativo) const { return dir.filePath(relativo); }
    QString m(const QString &relativo) const { return mezzo.filePath(relativo); }
    QString testo(const char *sezione, const char *chiave) const
    {
        return p->lingua.LeggiTesto(sezione, chiave).trimmed();
    }
    QString corrente(QTreeView *albero) const { return albero->currentIndex().data().toString(); }
    // A map file whose every record holds the text.
    static QByteArray lkv(const QByteArray &testo)
    {
        return (testo.leftJustified(64, ' ').toHex().toUpper() + "\r\n").repeated(8);
    }
    void mappa(const QString &chiave, const QByteArray &byte)
    {
        const QStringList parti = chiave.split(u'/');
        QVERIFY(RegistraMappa(dir.path(), {parti[0], parti[1], parti[2], parti[3]}, "note " + parti[3]).ok());
        QVERIFY(QDir().mkpath(QFileInfo(d("MAPPATURE/") + chiave).path()));
        scrivi(d("MAPPATURE/") + chiave + ".LKV", lkv(byte));
    }

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), d("ENGLISH.LNG")));
        lingua = Lingua(dir.path());
        p = std::make_unique<Programma>(dir.path(), lingua, std::make_unique<PortaFinta>(),
                                        std::make_unique<TemporizzatoreQt>(),
                                        std::make_unique<TemporizzatoreQt>());
        p->lingua.LinguaCorrente = QStringLiteral("ENGLISH");
        p->linea.ecuDiProva().EcuDaIdentificare = false;
        p->linea.ecuDiProva().EcuNormale = -1;
        frame = std::make_unique<Korvantine>(*p);
        RegistraPagineScambio(*frame);
        frame->avvia();
        frame->resize(1024, 768);
        QVERIFY(QTest::qWaitForWindowActive(frame.get()));
        mappa("LPG/Fiat/Punto/base", "base map");
        mappa("LPG/Fiat/Punto/tuned", "tuned map");
        mappa("CNG/Opel/Astra/eco", "eco map");
    }

    void cleanupTestCase()
    {
        frame.reset();
        p.reset();
    }

    void everyPageFromTheUtilitiesMenu()
    {
        const IdPagina pagine[] = {IdPagina::CreaDiscoSW,    IdPagina::RipriDiscoSW, IdPagina::CancelSW,
                                   IdPagina::CreaDiscoMappe, IdPagina::RipriMappe,   IdPagina::CancelMappe};
        for (int i = 0; i < 6; ++i) {
            QVERIFY(frame->menu());
            QTest::keyClick(frame->menu(), Qt::Key_F5);
            QTest::keyClick(frame->menu(), Qt::Key(Qt::Key_F2 + i), Qt::ShiftModifier);
            QTRY_COMPARE(frame->idPaginaAttiva(), pagine[i]);
            QVERIFY(!frame->paginaAttiva()->windowTitle().isEmpty());
            tasti({Qt::Key_Escape});
            QTRY_VERIFY(frame->menu());
        }
    }

    void copyMapsByKeyboard()
    {
        auto *pagina = apriChiedendo<PaginaElenchiMappe>(*frame, IdPagina::CreaDiscoMappe, domande);
        QVERIFY(pagina);
        QCOMPARE(fuoco(), pagina->ElencoMM());
        // MAPPATURE, CNG, Opel, LPG, Fiat: the make brings both of its maps.
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down});
        QCOMPARE(corrente(pagina->ElencoMM()), QStringLiteral("Fiat"));
        tasti({Qt::Key_Insert});
        QCOMPARE(pagina->selezione().chiavi().size(), 2);
        // In the chosen tree: down to the first map, and out with it.
        tasti({Qt::Key_Tab});
        QCOMPARE(fuoco(), pagina->ElencoAll());
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down});
        QCOMPARE(corrente(pagina->ElencoAll()), QStringLiteral("base"));
        tasti({Qt::Key_Delete});
        QCOMPARE(pagina->selezione().chiavi().size(), 1);
        QCOMPARE(corrente(pagina->ElencoAll()), QStringLiteral("Punto"));
        // No destination yet: refused, no question.
        tasti({Qt::Key_F2});
        QCOMPARE(pagina->segnalazione(), testo("SEGNALAZIONI", "SEGNALAZIONE_18"));
        tasti({Qt::Key_Tab});
        QCOMPARE(fuoco(), pagina->cartella()->campo());
        QTest::keyClicks(fuoco(), m("stick"));
        tasti({Qt::Key_F2});
        QCOMPARE(domande, QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_16")});
        QCOMPARE(pagina->segnalazione(), testo("SEGNALAZIONI", "SEGNALAZIONE_20"));
        QCOMPARE(QDir(m("stick/LPG/Fiat/Punto")).entryList(QDir::Files), QStringList{"tuned.LKV"});
        QVERIFY(QFileInfo::exists(m("stick/DBTEMP.MDB")));
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());
    }

    void restoreMapsByKeyboard()
    {
        QVERIFY(QDir(d("MAPPATURE")).removeRecursively());
        domande.clear();
        auto *pagina = apriChiedendo<PaginaElenchiMappe>(*frame, IdPagina::RipriMappe, domande);
        QVERIFY(pagina);
        tasti({Qt::Key_Tab, Qt::Key_Tab});
        QCOMPARE(fuoco(), pagina->cartella()->campo());
        QTest::keyClicks(fuoco(), m("stick"));
        tasti({Qt::Key_Return});
        QCOMPARE(pagina->selezione().disponibili().foglie(0).size(), 1);
        // Back in the tree, every map of the medium at once.
        tasti({Qt::Key_Backtab, Qt::Key_Backtab});
        QCOMPARE(fuoco(), pagina->ElencoMM());
        tasti({Qt::Key_Insert}, Qt::ControlModifier);
        QCOMPARE(pagina->selezione().chiavi().size(), 1);
        tasti({Qt::Key_F2});
        QCOMPARE(pagina->segnalazione(), testo("RipriMappe", "SEGNALAZIONE_3.1"));
        QVERIFY(domande.isEmpty());
        QCOMPARE(leggi(d("MAPPATURE/LPG/Fiat/Punto/tuned.LKV")), lkv("tuned map"));
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());
    }

    void deleteMapByKeyboard()
    {
        domande.clear();
        auto *pagina = apriChiedendo<PaginaElenchiMappe>(*frame, IdPagina::CancelMappe, domande);
        QVERIFY(pagina);
        // MAPPATURE, LPG, Fiat, then open the make and the model down to the map.
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down});
        QCOMPARE(corrente(pagina->ElencoMM()), QStringLiteral("tuned"));
        tasti({Qt::Key_Return, Qt::Key_F2});
        QCOMPARE(domande,
                 QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_30") + "\n\nLPG\\Fiat\\Punto\\tuned"});
        QCOMPARE(pagina->segnalazione(), testo("SEGNALAZIONI", "SEGNALAZIONE_29"));
        QVERIFY(!QFileInfo::exists(d("MAPPATURE/LPG/Fiat/Punto")));
        QVERIFY(pagina->selezione().vuota());
        QVERIFY(pagina->selezione().disponibili().foglie(0).isEmpty());
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());
    }

    void softwareByKeyboard()
    {
        QVERIFY(QDir().mkpath(d("SOFTWARE/FILES19")));
        scrivi(d("SOFTWARE/FILES19/KV2.S19"), "two");
        scrivi(d("SOFTWARE/FILES19/KV3.S19"), "three");
        domande.clear();
        auto *crea = apriChiedendo<PaginaSoftware>(*frame, IdPagina::CreaDiscoSW, domande);
        QVERIFY(crea);
        QCOMPARE(crea->LSoftware()->count(), 2);
        tasti({Qt::Key_Down});
        QCOMPARE(crea->LSoftware()->selectedItems().size(), 1);
        tasti({Qt::Key_Tab});
        QTest::keyClicks(fuoco(), m("stick"));
        tasti({Qt::Key_F2});
        QCOMPARE(crea->segnalazione(), testo("SEGNALAZIONI", "SEGNALAZIONE_20"));
        QCOMPARE(QDir(m("stick/FILES19")).entryList(QDir::Files), QStringList{"KV3.S19"});
        QVERIFY(QFileInfo::exists(m("stick/DBTEMP.MDB"))); // the maps' set stays beside it
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());

        auto *cancella = apriChiedendo<PaginaSoftware>(*frame, IdPagina::CancelSW, domande);
        QVERIFY(cancella);
        // With nothing chosen, Delete deletes nothing and says so.
        tasti({Qt::Key_Delete});
        QCOMPARE(domande.last(), testo("SEGNALAZIONI", "SEGNALAZIONE_13"));
        QCOMPARE(cancella->LSoftware()->count(), 2);
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Delete});
        QVERIFY(domande.last().contains("KV3.S19"));
        QVERIFY(!QFileInfo::exists(d("SOFTWARE/FILES19/KV3.S19")));
        QCOMPARE(cancella->LSoftware()->count(), 1);
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());

        domande.clear();
        auto *ripri = apriChiedendo<PaginaSoftware>(*frame, IdPagina::RipriDiscoSW, domande);
        QVERIFY(ripri);
        tasti({Qt::Key_Tab});
        QTest::keyClicks(fuoco(), m("stick"));
        tasti({Qt::Key_Return});
        QCOMPARE(ripri->LSoftware()->count(), 1);
        tasti({Qt::Key_F2});
        QCOMPARE(ripri->segnalazione(), testo("RipriDiscoSW", "SEGNALAZIONE1.3.1"));
        QCOMPARE(leggi(d("SOFTWARE/FILES19/KV3.S19")), QByteArray("three"));
        QVERIFY(domande.isEmpty());
        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());
    }
};

QTEST_MAIN(TstPagineScambio)
#include "tst_pagine_scambio.moc"
