// The map pages in the main frame, by keyboard alone, against the simulated ECU: a map read
// into the archive under LPG, a make, a model and a name with a note, found again in the
// tree, written into an ECU of other contents and verified; then compared with another, its
// difference copied in and the copy saved under a new name.

#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/Tastiera.h"

#include "programming/ControlloMappa.h"
#include "programming/FileBlocchi.h"
#include "programming/MappaArchiviata.h"
#include "programming/ui/ConfrontoMappe.h"
#include "programming/ui/ProgMappe.h"
#include "programming/ui/ReadMappe.h"
#include "programming/ui/RegistroMappe.h"
#include "shell/ui/Korvantine.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTest>
#include <QTreeView>
#include <QTreeWidget>

using namespace kv;
using namespace kv::sim;

namespace {

QByteArray disegno(int seme)
{
    QByteArray b(512, '\0');
    for (int i = 0; i < b.size(); ++i)
        b[i] = char((i * 5 + seme * 17) & 0xFF);
    return b;
}

} // namespace

class TstPagineMappe : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    std::unique_ptr<Korvantine> frame;
    QStringList domande;

    QString segnalazione(QWidget *pagina) const
    {
        return pagina->findChild<QLabel *>(QStringLiteral("Segnalazione1"))->text();
    }
private slots:
    void initTestCase()
    {
        QVERIFY(preparaCartella());
        avvia();
        frame = std::make_unique<Korvantine>(*p);
        RegistraPagineMappe(*frame);
        frame->avvia();
        frame->resize(1024, 768);
        QVERIFY(QTest::qWaitForWindowActive(frame.get()));
    }

    void cleanupTestCase()
    {
        frame.reset();
        chiudi();
    }

    void readByKeyboardIntoTheArchive()
    {
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(1)));
        auto *pagina = apriChiedendo<ReadMappe>(*frame, IdPagina::ReadMappe, domande);
        QVERIFY(pagina);
        QCOMPARE(fuoco(), pagina->LMappe());
        // The tree: MAPPATURE, then CNG and LPG, made by the page.
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down});
        QCOMPARE(pagina->Impianto()->text(), QStringLiteral("LPG"));
        tasti({Qt::Key_Tab, Qt::Key_Tab});
        QCOMPARE(fuoco(), pagina->NomeMarca());
        QTest::keyClicks(fuoco(), "Fi/a\\t,"); // the key filter keeps the letters
        tasti({Qt::Key_Return});
        QCOMPARE(pagina->NomeMarca()->text(), QStringLiteral("Fiat"));
        QTest::keyClicks(fuoco(), " Punto 1.2 ");
        tasti({Qt::Key_Return});
        QCOMPARE(pagina->NomeModello()->text(), QStringLiteral("Punto 1.2")); // trimmed on leaving
        QTest::keyClicks(fuoco(), "base");
        tasti({Qt::Key_Return});
        QCOMPARE(fuoco(), pagina->Note());
        QTest::keyClicks(fuoco(), "as delivered");
        tasti({Qt::Key_F2});
        QTRY_COMPARE(segnalazione(pagina), testo("ReadMappe", "SEGNALAZIONE1.4"));

        const QString file = cartella.filePath("MAPPATURE/LPG/Fiat/Punto 1.2/base.LKV");
        QCOMPARE(LeggiMappa(file).immagine, disegno(1));
        // The rebuilt tree shows the new model with its map chosen.
        QCOMPARE(pagina->LMappe()->currentIndex().data().toString(), QStringLiteral("Punto 1.2"));
        QCOMPARE(pagina->Mappe()->currentItem()->text(), QStringLiteral("base"));
        QCOMPARE(pagina->Note()->text(), QStringLiteral("as delivered"));
        QVERIFY(pagina->isEnabled());

        // Reading again onto the same name asks first.
        tasti({Qt::Key_F2});
        QTRY_COMPARE(segnalazione(pagina), testo("ReadMappe", "SEGNALAZIONE1.4"));
        QCOMPARE(domande, QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_8")});

        tasti({Qt::Key_Escape});
        QTRY_VERIFY(frame->menu());
    }

    void writeByKeyboardAndVerify()
    {
        // A row whose file is missing sits in the list, marked, beside the map read above.
        QVERIFY(RegistraMappa(cartella.path(), {"LPG", "Fiat", "Punto 1.2", "lost"}, {}).ok());
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(2)));
        domande.clear();
        auto *pagina = apriChiedendo<ProgMappe>(*frame, IdPagina::ProgMappe, domande);
        QVERIFY(pagina);
        QVERIFY(pagina->Verifica()->isChecked());
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right,
               Qt::Key_Down});
        QCOMPARE(pagina->LMappe()->currentIndex().data().toString(), QStringLiteral("Punto 1.2"));
        QCOMPARE(pagina->Mappe()->count(), 2);
        QCOMPARE(pagina->Mappe()->item(1)->text(), "lost " + testo("ProgMappe", "MANCANTE"));

        // The missing file is refused, the other one sent and verified.
        tasti({Qt::Key_Tab, Qt::Key_Down, Qt::Key_Down});
        QCOMPARE(fuoco(), pagina->Mappe());
        QCOMPARE(pagina->Mappe()->currentRow(), 1);
        tasti({Qt::Key_F2});
        QCOMPARE(segnalazione(pagina), testo("ProgMappe", "SEGNALAZIONE1.3"));
        tasti({Qt::Key_Up});
        QCOMPARE(pagina->Note()->text(), QStringLiteral("as delivered"));
        tasti({Qt::Key_F2});
        QTRY_COMPARE(segnalazione(pagina), testo("ProgMappe", "SEGNALAZIONE1.6"));
        QCOMPARE(ecu->leggiMemoria(0xC100, 512), disegno(1));

        // One question before the first block; a map has been written: leaving asks too.
        tasti({Qt::Key_Escape});
        QCOMPARE(
            domande,
            QStringList({testo("ProgMappe", "DOMANDA").trimmed().replace("XXX", "LPG\\Fiat\\Punto 1.2\\base"),
                         testo("SEGNALAZIONI", "SEGNALAZIONE_56")}));
        QTRY_VERIFY(frame->menu());
    }

    void compareByKeyboardAndSaveTheCopy()
    {
        // Beside the map read above: the same with the idle entry RPM raised, and a file that
        // is no map.
        const QString punto = cartella.filePath("MAPPATURE/LPG/Fiat/Punto 1.2/");
        const QByteArray tuned = QByteArray(disegno(1)).replace(0x28, 2, QByteArray::fromHex("0514"));
        QVERIFY(
            SalvaImmagineMappa(cartella.path(), {"LPG", "Fiat", "Punto 1.2", "tuned"}, tuned, {}, {}).ok());
        QByteArray rotto = leggi(punto + "base.LKV");
        rotto[2 * 130 + 5] = 'x';
        scrivi(punto + "broken.LKV", rotto);
        domande.clear();
        auto *pagina = apriChiedendo<ConfrontoMappe>(*frame, IdPagina::ConfrontoMappe, domande);
        QVERIFY(pagina);
        QCOMPARE(fuoco(), pagina->LMappe());
        // MAPPATURE, CNG, LPG, Fiat, Punto 1.2, then its maps: base, broken, lost, tuned.
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right,
               Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_F3, Qt::Key_Down, Qt::Key_F4});
        QCOMPARE(pagina->segnalazione(), testo("ConfrontoMappe", "MAPPA.4")
                                             .trimmed()
                                             .replace("XXX", "LPG\\Fiat\\Punto 1.2\\broken")
                                             .replace("YYY", "3")
                                             .replace("ZZZ", "6"));
        QVERIFY(!pagina->sorgente(ConfrontoMappe::B).valida());
        tasti({Qt::Key_Down, Qt::Key_Down, Qt::Key_F4, Qt::Key_F8});
        QCOMPARE(pagina->confronto().diverse, 1);
        int visibili = 0;
        for (QTreeWidgetItemIterator it(pagina->Parametri(), QTreeWidgetItemIterator::NotHidden); *it; ++it)
            visibili += (*it)->parent() ? 1 : 0;
        QCOMPARE(visibili, 1);

        tasti({Qt::Key_F7});
        QVERIFY(pagina->modificata() && pagina->confronto().diverse == 0);
        pagina->campo(2)->setFocus();
        QTest::keyClicks(fuoco(), "tuned:2"); // a name keeps the map tree's rules
        tasti({Qt::Key_F2});
        QCOMPARE(leggi(punto + "tuned2.LKV"), leggi(punto + "tuned.LKV"));
        QVERIFY(!pagina->modificata());
        tasti({Qt::Key_Escape});
        QVERIFY(domande.isEmpty());
        QTRY_VERIFY(frame->menu());
    }
};

QTEST_MAIN(TstPagineMappe)
#include "tst_pagine_mappe.moc"
