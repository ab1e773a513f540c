// The software page in the main frame, by keys alone, on an ECU that has only its boot
// loader: the menu opens it, the list shows the releases, the arrows show the archive card,
// F2 programs, Esc goes back.

#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/S19DiProva.h"

#include "archives/Archivio.h"
#include "programming/ui/ProgSW.h"
#include "programming/ui/RegistroProgSW.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

using namespace kv;
using namespace kv::sim;

class TstProgSW : public QObject, ProgrammaSimulato
{
    Q_OBJECT

private slots:
    void listedChosenAndProgrammedByKeys()
    {
        const QString app = cartella.path();
        QVERIFY(preparaCartella() && QDir(app).mkpath("SOFTWARE/FILES19"));
        scrivi(app + "/SOFTWARE/FILES19/KV2_R3.S19", S19Completo(ImmagineDiProva(5)));
        scrivi(app + "/SOFTWARE/FILES19/KV2_R2.S19", S19Completo(ImmagineDiProva(9)));
        {
            Archivio db;
            QCOMPARE(ApriArchivioSoftware(app + "/SOFTWARE", "SOFTWARE.MDB", db), qint16(-1));
            RigaArchivio riga = db.NuovaRiga();
            riga.Imposta(u"NomeSW", QStringLiteral("KV2_R2"));
            riga.Imposta(u"Versione", QStringLiteral("2.4"));
            riga.Imposta(u"Note", QStringLiteral("Faster idle recovery"));
            QVERIFY(db.Aggiungi(riga));
        }

        OpzioniEcu o = OpzioniManuali();
        o.applicazionePresente = false;
        avvia(o);
        Korvantine frame(*p);
        RegistraProgSW(frame);
        frame.avvia();
        QApplication::setActiveWindow(&frame);
        ecu->avanzaTempo(300); // a 'g' frame: no application
        QTRY_VERIFY(!p->linea.ecu().EcuNormale);
        frame.AggiornaMenu();

        QTest::keyClick(frame.menu(), Qt::Key_F1);
        QTest::keyClick(frame.menu(), Qt::Key_F1, Qt::ShiftModifier);
        QCOMPARE(frame.idPaginaAttiva(), IdPagina::ProgSW);
        auto *pagina = qobject_cast<ProgSW *>(frame.paginaAttiva());
        QVERIFY(pagina);
        QCOMPARE(frame.windowTitle(), p->lingua.LeggiTesto("ProgSW", "CAPTION").trimmed());
        auto *lista = pagina->findChild<QTreeWidget *>("LSoftware");
        QCOMPARE(lista->topLevelItemCount(), 2);
        QCOMPARE(lista->topLevelItem(0)->text(0), QStringLiteral("KV2_R2"));
        QCOMPARE(lista->topLevelItem(1)->text(0), QStringLiteral("KV2_R3"));
        QTRY_VERIFY(lista->hasFocus());

        // Nothing is chosen until the fitter moves: the first Down takes the first release.
        QTest::keyClick(lista, Qt::Key_Down);
        QCOMPARE(pagina->dialogo().nomeScelto(), QStringLiteral("KV2_R2"));
        QCOMPARE(pagina->findChild<QLabel *>("Versione")->text(), QStringLiteral("2.4"));
        QCOMPARE(pagina->findChild<QLabel *>("Note")->text(), QStringLiteral("Faster idle recovery"));
        QTest::keyClick(lista, Qt::Key_Down);
        QCOMPARE(pagina->dialogo().nomeScelto(), QStringLiteral("KV2_R3"));
        QVERIFY(pagina->findChild<QLabel *>("Versione")->text().isEmpty());
        QTest::keyClick(lista, Qt::Key_Up);
        QTest::keyClick(lista, Qt::Key_Return);
        QCOMPARE(pagina->dialogo().nomeScelto(), QStringLiteral("KV2_R2"));

        auto *barra = pagina->findChild<QProgressBar *>("BarraPercentuale");
        QVERIFY(barra->isHidden());
        QCOMPARE(barra->maximum(), 220);
        // One question first, naming the release, with no as its default.
        QStringList domande;
        pagina->impostaMessaggio([&](const QString &testo, int flags, const QString &) {
            domande << testo + (flags & 0x100 ? " [no]" : "");
            return 6;
        });
        QTest::keyClick(lista, Qt::Key_F2);
        QCOMPARE(domande,
                 QStringList{p->lingua.LeggiTesto("ProgSW", "DOMANDA").trimmed().replace("XXX", "KV2_R2")
                             + " [no]"});
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(DialogoProgSW::StatoInizio));
        auto *programma = pagina->findChild<QPushButton *>("Programma");
        auto *esci = pagina->findChild<QPushButton *>("Esci");
        QVERIFY(!lista->isEnabled() && !programma->isEnabled() && !esci->isEnabled() && barra->isVisible());
        QVERIFY(attendi(10000));
        QCOMPARE(pagina->findChild<QLabel *>("Segnalazione1")->text(),
                 p->lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_12"));
        QVERIFY(lista->isEnabled() && programma->isEnabled() && esci->isEnabled() && barra->isHidden());
        QByteArray attesa = ImmagineDiProva(9);
        attesa.replace(0x40, 28, QByteArray(28, ' ')); // no version reply was ever read
        QCOMPARE(ecu->leggiMemoria(0xC000, 0x3700), attesa);
        QCOMPARE(ecu->modo(), EcuSimulata::Modo::Applicazione);

        QTRY_VERIFY(lista->hasFocus());
        QTest::keyClick(lista, Qt::Key_Escape);
        QVERIFY(frame.menu());
    }
};

QTEST_MAIN(TstProgSW)
#include "tst_progsw.moc"
