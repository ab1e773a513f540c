// The dialogues: the port page and what it writes, the language page and the next page load,
// the ECU version page, the service-mode access word and the about box.
#include "AiutoUi.h"

#include "shell/FileIni.h"
#include "shell/ui/Comunicazione.h"
#include "shell/ui/VisInf.h"

#include <QLineEdit>
#include <QListWidget>

using aiuto::Ambiente;

namespace {

// A port that counts its openings and may refuse them.
class PortaContata : public PortaFinta
{
public:
    bool apri(const ImpostazioniPorta &impostazioni) override
    {
        ++aperture;
        ultime = impostazioni;
        return riesce && PortaFinta::apri(impostazioni);
    }
    int aperture = 0;
    bool riesce = true;
    ImpostazioniPorta ultime;
};

QByteArray leggiFile(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

bool scriviFile(const QString &percorso, const QByteArray &byte)
{
    QFile f(percorso);
    return f.open(QIODevice::WriteOnly) && f.write(byte) == byte.size();
}

const QList<PortaDisponibile> Porte = {{"/dev/ttyUSB0", "FT232R USB UART"}, {"/dev/ttyS0", ""}};

struct ConPorta
{
    PortaContata *porta;
    Ambiente a;

    ConPorta()
        : ConPorta(std::make_unique<PortaContata>())
    {
    }
    explicit ConPorta(std::unique_ptr<PortaContata> p)
        : porta(p.get())
        , a(std::move(p))
    {
        a.frame->registraPagina(IdPagina::Comunicazione,
                                [](Korvantine &f) { return new Comunicazione(f, Porte); });
    }

    QListWidget *seriali() { return a.frame->paginaAttiva()->findChild<QListWidget *>(QStringLiteral("Seriali")); }
    QListWidget *baud() { return a.frame->paginaAttiva()->findChild<QListWidget *>(QStringLiteral("Baud")); }
    QString ini() { return a.programma->percorsoIni(); }
    QString scelta(QListWidget *l)
    {
        const auto voci = l->selectedItems();
        return voci.isEmpty() ? QString() : voci.first()->data(Qt::UserRole).toString();
    }
    int riga(QListWidget *l, const QString &valore)
    {
        for (int i = 0; i < l->count(); ++i) {
            if (l->item(i)->data(Qt::UserRole).toString() == valore)
                return i;
        }
        return -1;
    }
};

bool rosso(QListWidget *l)
{
    return l->palette().color(QPalette::Text) == QColor(0xFF, 0, 0);
}

} // namespace

class TstDialoghi : public QObject
{
    Q_OBJECT

private slots:
    void comunicazioneMostraLeImpostazioni_data()
    {
        QTest::addColumn<QByteArray>("ini");
        QTest::addColumn<QString>("porta");
        QTest::addColumn<QString>("baud");
        QTest::newRow("no file") << QByteArray() << "COM1" << "9600";
        QTest::newRow("COM3 at 19200") << QByteArray("[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n") << "COM3" << "19200";
        QTest::newRow("COM11 and 57600") << QByteArray("[SERIALE]\r\nPorta=COM11\r\nBaudRate=57600\r\n") << "COM1" << "9600";
        QTest::newRow("device") << QByteArray("[seriale]\r\nporta=/dev/ttyUSB0\r\nbaudrate=4800\r\n") << "/dev/ttyUSB0" << "4800";
        QTest::newRow("device not there") << QByteArray("[SERIALE]\r\nPorta=/dev/ttyACM7\r\n") << "" << "9600";
    }

    void comunicazioneMostraLeImpostazioni()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QString, porta);
        QFETCH(QString, baud);
        ConPorta c;
        if (!ini.isEmpty())
            QVERIFY(scriviFile(c.ini(), ini));
        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        QCOMPARE(c.a.frame->windowTitle(), c.a.testo("Comunicazione", "CAPTION"));
        QCOMPARE(c.seriali()->count(), 12);
        QCOMPARE(c.scelta(c.seriali()), porta);
        QCOMPARE(c.scelta(c.baud()), baud);
        // COMn counts the system's ports in natural order; the ports follow by their names.
        QVERIFY(c.seriali()->item(0)->text().contains(QStringLiteral("/dev/ttyS0")));
        QVERIFY(c.seriali()->item(1)->text().contains(QStringLiteral("FT232R USB UART")));
        QCOMPARE(c.seriali()->item(2)->text(), QStringLiteral("COM3"));
        QCOMPARE(c.seriali()->item(10)->data(Qt::UserRole).toString(), QStringLiteral("/dev/ttyUSB0"));
        const QString suggerimento = c.a.testo("Comunicazione", "PARAMETRICOM.TOOLTIPTEXT");
        QCOMPARE(c.seriali()->toolTip(), suggerimento + " = COM1");
        QCOMPARE(c.baud()->toolTip(), suggerimento + " = 9600");
    }

    void salvaSenzaSelezioneNonScriveNulla()
    {
        ConPorta c;
        const QByteArray prima("[IMPOSTAZIONI]\r\nLingua=ENGLISH\r\n[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n");
        QVERIFY(scriviFile(c.ini(), prima));
        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        auto *salva = c.a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Salva"));
        QCOMPARE(salva->text(), c.a.testo("TASTI", "SALVA"));

        c.seriali()->clearSelection();
        salva->click();
        QCOMPARE(leggiFile(c.ini()), prima);
        QCOMPARE(c.a.frame->idPaginaAttiva(), IdPagina::Comunicazione);
        QVERIFY(rosso(c.seriali()));
        QVERIFY(c.seriali()->hasFocus());
        QCOMPARE(c.porta->aperture, 0);

        c.seriali()->setCurrentRow(1);
        QVERIFY(!rosso(c.seriali()));
        c.baud()->clearSelection();
        salva->click();
        QCOMPARE(leggiFile(c.ini()), prima);
        QVERIFY(rosso(c.baud()));
        QCOMPARE(c.a.frame->idPaginaAttiva(), IdPagina::Comunicazione);
        QCOMPARE(c.porta->aperture, 0);
    }

    void salvaScriveERiapre()
    {
        ConPorta c;
        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        c.seriali()->setCurrentRow(c.riga(c.seriali(), "/dev/ttyUSB0"));
        c.baud()->setCurrentRow(c.riga(c.baud(), "38400"));
        // F2 saves.
        QTest::keyClick(c.seriali(), Qt::Key_F2);
        QCOMPARE(FileIni::leggi(c.ini(), "SERIALE", "Porta"), QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(FileIni::leggi(c.ini(), "SERIALE", "Baudrate"), QStringLiteral("38400"));
        QCOMPARE(c.porta->aperture, 1);
        QCOMPARE(c.porta->ultime.dispositivo, QStringLiteral("/dev/ttyUSB0"));
        QCOMPARE(c.porta->ultime.velocita, 38400);
        QCOMPARE(c.a.programma->seriale.VelocitaCom, 38400);
        QVERIFY(c.a.menu());

        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        QCOMPARE(c.scelta(c.seriali()), QStringLiteral("/dev/ttyUSB0"));
        c.seriali()->setCurrentRow(c.riga(c.seriali(), "COM2"));
        c.a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Salva"))->click();
        QCOMPARE(FileIni::leggi(c.ini(), "SERIALE", "Porta"), QStringLiteral("COM2"));
        QCOMPARE(c.porta->aperture, 2);
    }

    void unaPortaCheNonSiApreChiudeLaPaginaLostesso()
    {
        auto p = std::make_unique<PortaContata>();
        p->riesce = false;
        ConPorta c(std::move(p));
        aiuto::Risponditore r;
        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        c.seriali()->setCurrentRow(c.riga(c.seriali(), "COM4"));
        c.a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Salva"))->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, c.a.testo("SEGNALAZIONI", "SEGNALAZIONE_3"));
        QCOMPARE(r.visti[0].titolo, c.a.testo("SEGNALAZIONI", "TITOLO_2"));
        QCOMPARE(FileIni::leggi(c.ini(), "SERIALE", "Porta"), QStringLiteral("COM4"));
        QVERIFY(c.a.menu());
        auto *stato = c.a.frame->findChild<QLabel *>(QStringLiteral("Segnalazione1"));
        QVERIFY(stato->text().startsWith(c.a.testo("KORVANTINE", "COLLEGAMENTO.0")));
    }

    void escEsceSenzaSalvare()
    {
        ConPorta c;
        QVERIFY(c.a.frame->apriPagina(IdPagina::Comunicazione));
        c.seriali()->setCurrentRow(4);
        QTest::keyClick(c.seriali(), Qt::Key_Escape);
        QVERIFY(c.a.menu());
        QVERIFY(!QFile::exists(c.ini()));
        QCOMPARE(c.porta->aperture, 0);
    }

    void laLinguaCambiaAllaProssimaPagina()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        const QString inglese = m->funzione(0)->text();
        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        auto *elenco = a.frame->paginaAttiva()->findChild<QListWidget *>(QStringLiteral("ElencoLingue"));
        QCOMPARE(elenco->count(), 2);
        QCOMPARE(elenco->currentItem()->text(), QStringLiteral("ENGLISH.LNG"));
        QCOMPARE(elenco->selectedItems().size(), 1);
        elenco->setCurrentRow(1);
        aiuto::Risponditore r;
        a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Scegli"))->click();
        QVERIFY(r.visti.isEmpty());
        QCOMPARE(a.programma->lingua.LinguaCorrente, QStringLiteral("ITALIANO"));
        QCOMPARE(FileIni::leggi(a.programma->percorsoIni(), "IMPOSTAZIONI", "Lingua"), QStringLiteral("ITALIANO"));

        MainLambda *nuovo = a.menu();
        QVERIFY(nuovo);
        const QString italiano = FileIni::leggi(a.cartella.filePath("ITALIANO.LNG"), "MainLambda", "FUNZIONE.0").trimmed();
        QVERIFY(italiano != inglese);
        QCOMPARE(nuovo->funzione(0)->text(), italiano);
        QCOMPARE(a.frame->windowTitle(), FileIni::leggi(a.cartella.filePath("ITALIANO.LNG"), "KORVANTINE", "CAPTION").trimmed());
    }

    void laStessaLinguaLoDice()
    {
        Ambiente a;
        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        aiuto::Risponditore r;
        a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Scegli"))->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SceltaLingua", "SEGNALAZIONE.0"));
        QCOMPARE(r.visti[0].titolo, a.testo("SEGNALAZIONI", "TITOLO_1"));
        QCOMPARE(r.visti[0].tasti, QStringList{a.testo("TASTI", "OK")});
        QCOMPARE(FileIni::leggi(a.programma->percorsoIni(), "IMPOSTAZIONI", "Lingua"), QStringLiteral("ENGLISH"));
        QVERIFY(a.menu());
    }

    void nessunaSceltaRiscriveLaLinguaInUso()
    {
        Ambiente a;
        QVERIFY(a.frame->apriPagina(IdPagina::SceltaLingua));
        a.frame->paginaAttiva()->findChild<QListWidget *>(QStringLiteral("ElencoLingue"))->clearSelection();
        aiuto::Risponditore r;
        a.frame->paginaAttiva()->findChild<QPushButton *>(QStringLiteral("Scegli"))->click();
        QVERIFY(r.visti.isEmpty());
        QCOMPARE(a.programma->lingua.LinguaCorrente, QStringLiteral("ENGLISH"));
        QCOMPARE(FileIni::leggi(a.programma->percorsoIni(), "IMPOSTAZIONI", "Lingua"), QStringLiteral("ENGLISH"));
        QVERIFY(a.menu());
    }

    void versioneDellaCentralina()
    {
        Ambiente a;
        auto *pagina = qobject_cast<VisInf *>(a.frame->apriPagina(IdPagina::VisInf));
        QVERIFY(pagina);
        QCOMPARE(pagina->valore(0).trimmed(), QString());
        // Identification completing while the page is open fills it.
        a.identifica();
        QCOMPARE(pagina->valore(0), QStringLiteral("KV-CODE-000042"));
        QCOMPARE(pagina->valore(1), QStringLiteral("VEICOLO-01"));
        QCOMPARE(pagina->valore(2), QStringLiteral("DATO-A-123"));
        QCOMPARE(pagina->valore(3), QStringLiteral("B-77"));
        QCOMPARE(pagina->findChild<QLabel *>(QStringLiteral("LabInfC_0"))->text(), a.testo("VisInf", "LABINFC.0"));
        QCOMPARE(a.frame->windowTitle(), a.testo("VisInf", "CAPTION"));
        pagina->findChild<QPushButton *>(QStringLiteral("TastoOK"))->click();
        QVERIFY(a.menu());
    }

    void parolaDAccessoInQualsiasiMaiuscolo()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F3);
        QCOMPARE(m->opzione(2)->isHidden(), true);
        auto *box = qobject_cast<QDialog *>(a.frame->apriPagina(IdPagina::Password));
        QVERIFY(box);
        QCOMPARE(a.frame->paginaSopra(), box);
        QCOMPARE(a.menu(), m);
        QVERIFY(!m->isEnabled());
        auto *parola = box->findChild<QLineEdit *>(QStringLiteral("Parola"));
        QCOMPARE(parola->echoMode(), QLineEdit::Password);
        QVERIFY(parola->text().isEmpty());

        aiuto::Risponditore r;
        QTest::keyClicks(parola, QStringLiteral("tOrBa"));
        box->findChild<QPushButton *>(QStringLiteral("TastoOK"))->click();
        QVERIFY(r.visti.isEmpty());
        QCOMPARE(a.stato().ModoAssistenza, qint16(1));
        QVERIFY(!a.frame->paginaSopra());
        QVERIFY(m->isEnabled());
        // The list on view is the old one until the function is chosen again.
        QVERIFY(m->opzione(2)->isHidden());
        QTest::keyClick(m, Qt::Key_F3);
        QVERIFY(!m->opzione(8)->isHidden());
        QCOMPARE(m->opzione(0)->text(), a.testo("MainLambda", "MESSAPUNTO1.0"));
    }

    void parolaErrata()
    {
        Ambiente a;
        a.identifica();
        aiuto::Risponditore r;
        // In service mode a wrong word leaves it, without a word.
        a.stato().ModoAssistenza = 1;
        auto *box = a.frame->apriPagina(IdPagina::Password);
        QTest::keyClicks(box->findChild<QLineEdit *>(QStringLiteral("Parola")), QStringLiteral("torb"));
        box->findChild<QPushButton *>(QStringLiteral("TastoOK"))->click();
        QCOMPARE(a.stato().ModoAssistenza, qint16(0));
        QVERIFY(r.visti.isEmpty());
        QVERIFY(!a.frame->paginaSopra());

        // In normal mode it is told.
        box = a.frame->apriPagina(IdPagina::Password);
        QTest::keyClicks(box->findChild<QLineEdit *>(QStringLiteral("Parola")), QStringLiteral("torb"));
        box->findChild<QPushButton *>(QStringLiteral("TastoOK"))->click();
        QCOMPARE(r.visti.size(), 1);
        QCOMPARE(r.visti[0].testo, a.testo("SEGNALAZIONI", "SEGNALAZIONE_22"));
        QCOMPARE(a.stato().ModoAssistenza, qint16(0));
        QVERIFY(!a.frame->paginaSopra());
        QVERIFY(a.menu()->isEnabled());
    }

    void invioPassaAlTastoEdEscAnnulla()
    {
        Ambiente a;
        a.identifica();
        MainLambda *m = a.menu();
        QTest::keyClick(m, Qt::Key_F5);
        QTest::keyClick(m, Qt::Key_F11, Qt::ShiftModifier);
        auto *box = qobject_cast<QDialog *>(a.frame->paginaSopra());
        QVERIFY(box);
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Password);
        QTRY_VERIFY(box->isActiveWindow());
        auto *parola = box->findChild<QLineEdit *>(QStringLiteral("Parola"));
        parola->setFocus();
        QTest::keyClicks(parola, QStringLiteral("TORBA"));
        QTest::keyClick(parola, Qt::Key_Return);
        // Enter moved on like a Tab; nothing was confirmed.
        QCOMPARE(a.frame->paginaSopra(), box);
        QCOMPARE(a.stato().ModoAssistenza, qint16(0));
        QCOMPARE(box->focusWidget(), box->findChild<QPushButton *>(QStringLiteral("TastoOK")));

        QTest::keyClick(box, Qt::Key_Escape);
        QVERIFY(!a.frame->paginaSopra());
        QCOMPARE(a.stato().ModoAssistenza, qint16(0));
        QVERIFY(m->isEnabled());
        QCOMPARE(a.menu(), m);
    }

    void ilLogoApreLInformazione()
    {
        Ambiente a;
        MainLambda *m = a.menu();
        m->findChild<QAbstractButton *>(QStringLiteral("Logo"))->click();
        QCOMPARE(a.frame->idPaginaSopra(), IdPagina::Infor);
        QVERIFY(!m->isEnabled());
        QWidget *infor = a.frame->paginaSopra();
        QCOMPARE(infor->findChild<QLabel *>(QStringLiteral("lblTitle"))->text(), a.testo("Infor", "LBLTITLE"));
        QVERIFY(infor->findChild<QLabel *>(QStringLiteral("lblVersion"))->text().startsWith(a.testo("Infor", "LBLVERSION")));
        infor->findChild<QPushButton *>(QStringLiteral("cmdOK"))->click();
        QVERIFY(!a.frame->paginaSopra());
        QVERIFY(m->isEnabled());
    }
};

QTEST_MAIN(TstDialoghi)
#include "tst_dialoghi.moc"
