// The dialogues: the port page and what it writes, the language page and the next page load,
// the ECU version page and the service-mode access word.
#include "AiutoUi.h"
#include "base/Lingua.h"

#include "base/FileIni.h"
#include "shell/ui/Comunicazione.h"
#include "shell/ui/VisInf.h"
#include "support/FileDiProva.h"

#include <QLineEdit>
#include <QListWidget>

using namespace kv;

using aiuto::Ambiente;

namespace {

const QList<PortaDisponibile> Porte = {{"/dev/ttyUSB0", "FT232R USB UART"}, {"/dev/ttyS0", ""}};

// The port page on the system's two ports above, over a settings file that holds ini.
QWidget *apriComunicazione(Ambiente &a, const QByteArray &ini = {})
{
    if (!ini.isEmpty())
        scrivi(a.programma->percorsoIni(), ini);
    a.frame->registraPagina(IdPagina::Comunicazione,
                            [](Korvantine &f) { return NuovaComunicazione(f, Porte); });
    return a.frame->apriPagina(IdPagina::Comunicazione);
}

QString scelta(QListWidget *l)
{
    const auto voci = l->selectedItems();
    return voci.isEmpty() ? QString() : voci.first()->data(Qt::UserRole).toString();
}

void scegli(QListWidget *l, const QString &valore)
{
    for (int i = 0; i < l->count(); ++i) {
        if (l->item(i)->data(Qt::UserRole).toString() == valore)
            l->setCurrentRow(i);
    }
}

bool rosso(QListWidget *l)
{
    return l->palette().color(QPalette::Text) == QColor(0xFF, 0, 0);
}

} // namespace

class TstDialoghi : public QObject
{
    Q_OBJECT

private slots:
    void portPageShowsTheSettings_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("porta");
        QTest::addColumn<QString>("baud");
        const auto riga = [](const char *nome, const QByteArray &ini, const char *porta, const char *baud) {
            QTest::newRow(nome) << ini << QString(porta) << QString(baud);
        };
        riga("no file", {}, "COM1", "9600");
        riga("COM3 at 19200", "[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n", "COM3", "19200");
        riga("COM11 and 57600", "[SERIALE]\r\nPorta=COM11\r\nBaudRate=57600\r\n", "COM1", "9600");
        riga("device", "[seriale]\r\nporta=/dev/ttyUSB0\r\nbaudrate=4800\r\n", "/dev/ttyUSB0", "4800");
        riga("device not there", "[SERIALE]\r\nPorta=/dev/ttyACM7\r\n", "", "9600");
    }

    void portPageShowsTheSettings()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, porta);
        QFETCH(QString, baud);
        Ambiente a(false);
        QVERIFY(apriComunicazione(a, ini));
        auto *seriali = a.sullaPagina<QListWidget>("Seriali");
        QCOMPARE(a.frame->windowTitle(), a.testo("Comunicazione", "CAPTION"));
        QCOMPARE(scelta(seriali), porta);
        QCOMPARE(scelta(a.sullaPagina<QListWidget>("Baud")), baud);
        // COMn counts the system's ports in natural order; the ports follow by their names.
        QCOMPARE(seriali->count(), 12);
        QVERIFY(seriali->item(0)->text().contains(QStringLiteral("/dev/ttyS0")));
        QVERIFY(seriali->item(1)->text().contains(QStringLiteral("FT232R USB UART")));
        QCOMPARE(seriali->item(2)->text(), QStringLiteral("COM3"));
        QCOMPARE(seriali->item(10)->data(Qt::UserRole).toString(), QStringLiteral("/dev/ttyUSB0"));
    }

    void saveWritesNothingWithoutASelectionAndElseReopensThePort()
    {
        Ambiente a(false);
        const QString ini = a.programma->percorsoIni();
        const QByteArray prima(
            "[IMPOSTAZIONI]\r\nLingua=ENGLISH\r\n[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n");
        QVERIFY(apriComunicazione(a, prima));
        auto *seriali = a.sullaPagina<QListWidget>("Seriali");
        auto *baud = a.sullaPagina<QListWidget>("Baud");
        QCOMPARE(a.sullaPagina("Salva")->text(), a.testo("TASTI", "SALVA"));
        seriali->clearSelection();
        a.sullaPagina("Salva")->click();
        QVERIFY(rosso(seriali) && seriali->hasFocus());
        seriali->setCurrentRow(1);
        QVERIFY(!rosso(seriali));
        baud->clearSelection();
        a.sullaPagina("Salva")->click();
        QVERIFY(rosso(baud));
        QCOMPARE(a.frame->idPaginaAttiva(), IdPagina::Comunicazione);
        QTest::keyClick(seriali, Qt::Key_Escape);
        QVERIFY(a.menu());
        QCOMPARE(leggi(ini), prima);
        QCOMPARE(a.porta->aperture, 0);

        // F2 saves too.
        QVERIFY(a.frame->apriPagina(IdPagina::Comunicazione));
        scegli(a.sullaPagina<QListWidget>("Seriali"), "/dev/ttyUSB0");
        scegli(a.sullaPagina<QListWidget>("Baud"), "38400");
        QTest::keyClick(a.sullaPagina<QListWidget>("Seriali"), Qt::Key_F2);
        QCOMPARE(FileIni::leggi(ini, "SERIALE", "Porta"), QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(FileIni::leggi(ini, "SERIALE", "Baudrate"), QStringLiteral("38400"));
        QCOMPARE(a.porta->aperture, 1);
        QCOMPARE(a.porta->ultime.dispositivo, QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(a.porta->ultime.velocita, 38400);
        QCOMPARE(a.programma->seriale.VelocitaCom, 38400);
        QVERIFY(a.menu());
    }

    void aPortThatWillNotOpenIsToldAndThePageStillCloses()
    {
        Ambiente a(false);
        a.porta->riesce = false;
        aiuto::Risponditore r;
        QVERIFY(apriComunicazione(a));
        scegli(a.sullaPagina<QListWidget>("Seriali"), "COM4");
        a.sullaPagina("Salva")->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_3"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_2"));
        QCOMPARE(FileIni::leggi(a.programma->percorsoIni(), "SERIALE", "Porta"), QStringLiteral("COM4"));
        QVERIFY(a.menu());
        auto *stato = a.frame->findChild<QLabel *>(QStringLiteral("StatoCollegamento"));
        QVERIFY(stato->text().startsWith(a.testo("KORVANTINE", "COLLEGAMENTO.0")));
    }

    void aLanguageChangeReachesTheNextPageLoad()
    {
        Ambiente a(false);
        const QString ini = a.programma->percorsoIni();
        const QString inglese = a.menu()->funzione(0)->text();
        aiuto::Risponditore r;
        // The language in use again: said so, and nothing changes.
        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        auto *elenco = a.sullaPagina<QListWidget>("ElencoLingue");
        QCOMPARE(elenco->count(), 2);
        // Each language by its own name, as its file says it.
        for (int i = 0; i < 2; ++i)
            QCOMPARE(elenco->item(i)->text(),
                     FileIni::leggi(a.cartella.filePath(QStringList{"ENGLISH.LNG", "ITALIANO.LNG"}[i]),
                                    "SceltaLingua", "NOME")
                         .trimmed());
        QCOMPARE(elenco->currentRow(), 0);
        a.sullaPagina("Scegli")->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SceltaLingua", "SEGNALAZIONE.0"));
        QCOMPARE(r.visti[0].tasti, QStringList{a.testo("TASTI", "OK")});
        QVERIFY(a.menu());
        // No choice writes the language in use, silently.
        QVERIFY(!QFile::exists(ini) || QFile::remove(ini));
        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        a.sullaPagina<QListWidget>("ElencoLingue")->clearSelection();
        a.sullaPagina("Scegli")->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(FileIni::leggi(ini, "IMPOSTAZIONI", "Lingua"), QStringLiteral("ENGLISH"));

        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        a.sullaPagina<QListWidget>("ElencoLingue")->setCurrentRow(1);
        a.sullaPagina("Scegli")->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(a.programma->lingua.LinguaCorrente, QStringLiteral("ITALIANO"));
        QCOMPARE(FileIni::leggi(ini, "IMPOSTAZIONI", "Lingua"), QStringLiteral("ITALIANO"));
        const QString italiano =
            FileIni::leggi(a.cartella.filePath("ITALIANO.LNG"), "MainLambda", "FUNZIONE.0").trimmed();
        QVERIFY(italiano != inglese);
        QCOMPARE(a.menu()->funzione(0)->text(), italiano);
        // The channels' names too, which the charts and the recordings carry.
        QCOMPARE(a.programma->canali.Canali[Canale::Giri].Nome.trimmed(),
                 FileIni::leggi(a.cartella.filePath("ITALIANO.LNG"), "PAR_CANALI", "GIRI.NOME").trimmed());
        QCOMPARE(a.frame->windowTitle(),
                 FileIni::leggi(a.cartella.filePath("ITALIANO.LNG"), "KORVANTINE", "CAPTION").trimmed());
    }

    void versionPageFillsWhenIdentificationEnds()
    {
        Ambiente a(false);
        auto *pagina = qobject_cast<VisInf *>(a.frame->apriPagina(IdPagina::VisInf));
        QVERIFY(pagina);
        QCOMPARE(pagina->valore(0).trimmed(), QString());
        a.identifica();
        QCOMPARE((QStringList{pagina->valore(0), pagina->valore(1), pagina->valore(2), pagina->valore(3)}),
                 (QStringList{"KV-CODE-000042", "VEICOLO-01", "DATO-A-123", "B-77"}));
        QCOMPARE(a.frame->windowTitle(), a.testo("VisInf", "CAPTION"));
        a.sullaPagina("TastoOK")->click();
        QVERIFY(a.menu());
    }

    void enterInTheAccessBoxMovesOnAndEscCancels()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F5);
        QTest::keyClick(m, Qt::Key_F11, Qt::ShiftModifier);
        auto *box = qobject_cast<QDialog *>(a.frame->paginaSopra());
        QVERIFY(box);
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Password);
        QTRY_VERIFY(box->isActiveWindow());
        auto *parola = a.sullaPagina<QLineEdit>("Parola");
        parola->setFocus();
        QTest::keyClicks(parola, QStringLiteral("TORBA"));
        QTest::keyClick(parola, Qt::Key_Return);
        QCOMPARE(a.frame->paginaSopra(), box);
        QCOMPARE(a.statoMenu().ModoAssistenza(), false);
        QCOMPARE(box->focusWidget(), a.sullaPagina("TastoOK"));
        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(!a.frame->paginaSopra());
        QCOMPARE(a.statoMenu().ModoAssistenza(), false);
        QVERIFY(m->isEnabled());
        QCOMPARE(a.menu(), m);
    }
};

QTEST_MAIN(TstDialoghi)
#include "tst_dialoghi.moc"
