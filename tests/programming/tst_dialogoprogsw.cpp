// ProgSW's dialogue against the simulated ECU wired straight to the program's port: the
// release list and its archive card, what stops a flash before anything is sent, the whole
// flash from an ECU with and without application, and every way it can fail, each followed
// by a flash that goes through. Time-outs fire by hand, except on the pseudo-terminal.

#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/S19DiProva.h"
#include "support/TestiDiProva.h"

#include "archives/Archivio.h"
#include "link/Frame.h"
#include "programming/DialogoProgSW.h"
#include "programming/ImmagineS19.h"

#include <QTest>
#include <QTimer>

using namespace kv;
using namespace kv::sim;

namespace {

struct VistaFinta : VistaProgSW
{
    void mostraSegnalazione(const Messaggio &testo) override { segnalazioni.append(Inglese(testo)); }
    void abilitaPagina(bool a) override { abilitata = a; }
    void mostraBarra(bool visibile) override
    {
        barraVisibile = visibile;
        if (!visibile && scritti)
            scrittiAlNascondere = int(scritti->size());
    }
    void impostaBarra(int valore) override { barra.append(valore); }
    void mostraMsg(const Messaggio &testo, int flags, const Messaggio &titolo) override
    {
        messaggi.append(QStringList{Inglese(testo), QString::number(flags), Inglese(titolo)});
    }
    bool chiedi(const Messaggio &testo, const Messaggio &) override
    {
        domande.append(Inglese(testo));
        return risposta;
    }

    QStringList segnalazioni;
    bool abilitata = true;
    bool barraVisibile = false;
    QList<int> barra;
    QList<QStringList> messaggi;
    QStringList domande;
    bool risposta = true;
    const QByteArrayList *scritti = nullptr;
    int scrittiAlNascondere = -1;
};

enum class Guasto {
    Codice,    // the ECU answers the frame with this status
    Silenzio,  // the ECU says nothing more
    PortaPersa // the adapter is pulled out
};

constexpr int FrameF = 221; // where a fault strikes: 0 the 'I', 1 to 220 a block, 221 the 'F'

// Runs the event loop flat out: every reply is one turn of it, and a flash has 222.
template <typename F>
bool finche(F &&condizione)
{
    QDeadlineTimer scadenza(5000);
    while (!condizione() && !scadenza.hasExpired())
        QCoreApplication::processEvents();
    return condizione();
}

} // namespace

class TstDialogoProgSW : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    VistaFinta vista;
    std::unique_ptr<DialogoProgSW> d;
    QByteArray s19;

    QString app() const { return cartella.path(); }
    QString segnalazione(int n) const { return testo("SEGNALAZIONI", "SEGNALAZIONE_" + QString::number(n)); }
    QByteArrayList frame(char lettera) const
    {
        QByteArrayList f;
        for (const QByteArray &b : std::as_const(porta->scritti))
            if (b.size() > 4 && b.at(4) == lettera)
                f.append(b);
        return f;
    }
    // What the ECU must hold after a flash: the release with the identification it gave.
    QByteArray immagineAttesa() const
    {
        QByteArray id =
            (p->linea.ecu().InfCodice + p->linea.ecu().InfDatoA + p->linea.ecu().InfDatoB).toLatin1();
        return ImmagineDiProva().replace(0x40, id.size(), id);
    }
    bool libero()
    {
        return finche([this] { return p->linea.motore().StatoDialogo() == -1; });
    }

    // A fresh program and ECU; an ECU with application is identified first.
    void avvia(bool applicazione)
    {
        d.reset();
        OpzioniEcu o = OpzioniManuali();
        o.applicazionePresente = applicazione;
        ProgrammaSimulato::avvia(o);
        p->linea.ecuDiProva().EcuDaIdentificare = true;
        ecu->avanzaTempo(applicazione ? 40 : 300);
        if (applicazione)
            QVERIFY(finche([this] { return !p->linea.ecu().EcuDaIdentificare; }));
        else
            QVERIFY(finche([this] { return !p->linea.ecu().EcuNormale; }));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        vista = VistaFinta();
        vista.scritti = &porta->scritti;
        d = std::make_unique<DialogoProgSW>(p->linea, p->PercorsoApp, vista);
        porta->scritti.clear();
    }

    // A flash that runs to its end: 'I', the 220 blocks in order, 'F', the bar and the line
    // following each block.
    void flashRiuscito()
    {
        vista = VistaFinta();
        vista.scritti = &porta->scritti;
        porta->scritti.clear();
        d->avviaProgrammazione();
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(DialogoProgSW::StatoInizio));
        QCOMPARE(req->interval(), 3000);
        QVERIFY(!vista.abilitata);
        QVERIFY(libero());

        QCOMPARE(vista.domande,
                 QStringList{testo("ProgSW", "DOMANDA").trimmed().replace("XXX", d->nomeScelto())});
        QCOMPARE(vista.segnalazioni.first(), segnalazione(7));
        QCOMPARE(vista.segnalazioni.last(), segnalazione(12));
        QCOMPARE(vista.segnalazioni.size(), 222);
        QCOMPARE(vista.segnalazioni.at(100), segnalazione(11).trimmed() + " 100");
        QList<int> barra{0};
        for (int n = 1; n <= 220; ++n)
            barra.append(n);
        QCOMPARE(vista.barra, barra);
        QCOMPARE(vista.scrittiAlNascondere, 221); // hidden as the 'F' goes out
        QVERIFY(vista.abilitata && !vista.barraVisibile);

        const QByteArray attesa = immagineAttesa();
        const QByteArrayList w = frame('W');
        QCOMPARE(w.size(), 220);
        for (int n = 1; n <= 220; ++n)
            QCOMPARE(w.at(n - 1), CreaFrame('W' + ParolaInByte(quint32(0xC000 + 64 * (n - 1))) + '\x40'
                                            + attesa.mid(64 * (n - 1), 64)));
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame("I")} + w + QByteArrayList{CreaFrame("F")});
        QCOMPARE(ecu->leggiMemoria(0xC000, 0x3700), attesa);
        QCOMPARE(leggi(app() + "/FILESW.TXT").size(), 28600);
        // The ECU now runs the new software.
        QCOMPARE(ecu->modo(), EcuSimulata::Modo::Applicazione);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(preparaCartella() && QDir(app()).mkpath("SOFTWARE/FILES19"));
        s19 = S19Completo(ImmagineDiProva());
        scrivi(app() + "/SOFTWARE/FILES19/NEWREL.S19", s19);
    }

    void cleanup()
    {
        d.reset();
        chiudi();
    }

    void listAndArchiveCard()
    {
        QTemporaryDir altra;
        const QString home = altra.path();
        QVERIFY(preparaCartella(home));
        ProgrammaSimulato::avvia(OpzioniManuali(), home);
        DialogoProgSW dialogo(p->linea, p->PercorsoApp, vista);

        // The folder is made when missing.
        QVERIFY(ElencoSoftware(home).isEmpty());
        QVERIFY(QFileInfo(home + "/SOFTWARE/FILES19").isDir());
        for (const char *nome : {"KV2_R3.S19", "kv1 beta .s19", "README.TXT", "OLD.S19.BAK"})
            scrivi(home + "/SOFTWARE/FILES19/" + nome, "S9030000FC\r\n");
        QVERIFY(QDir(home + "/SOFTWARE/FILES19").mkdir("FOLDER.S19"));
        QVERIFY(
            QFile::link(app() + "/SOFTWARE/FILES19/NEWREL.S19", home + "/SOFTWARE/FILES19/ELSEWHERE.S19"));
        QCOMPARE(ElencoSoftware(home), (QStringList{"kv1 beta", "KV2_R3"}));

        Archivio db;
        QCOMPARE(ApriArchivioSoftware(home + "/SOFTWARE", "SOFTWARE.MDB", db), qint16(-1));
        RigaArchivio riga = db.NuovaRiga();
        riga.Imposta(u"NomeSW", QStringLiteral("KV2_R3"));
        riga.Imposta(u"Versione", QStringLiteral("3.0.1"));
        riga.Imposta(u"NOTE", QStringLiteral("Lean idle fixed"));
        QVERIFY(db.Aggiungi(riga));
        ChiudiArchivioSoftware(db);

        const SchedaSoftware scheda = dialogo.scegli(QStringLiteral(" kv2_r3 "));
        QCOMPARE(dialogo.nomeScelto(), QStringLiteral("kv2_r3"));
        QCOMPARE(scheda.Versione, QStringLiteral("3.0.1"));
        QCOMPARE(scheda.Note, QStringLiteral("Lean idle fixed"));
        QVERIFY(scheda.avviso.vuoto());
        const SchedaSoftware senzaRiga = dialogo.scegli(QStringLiteral("kv1 beta"));
        QVERIFY(senzaRiga.Versione.isEmpty() && senzaRiga.Note.isEmpty() && senzaRiga.avviso.vuoto());

        // An archive left by something else is named, and left as it is.
        const QByteArray estraneo = "Standard Jet DB\0\0\0\0";
        scrivi(home + "/SOFTWARE/SOFTWARE.MDB", estraneo);
        const SchedaSoftware straniera = dialogo.scegli(QStringLiteral("KV2_R3"));
        QVERIFY(straniera.Versione.isEmpty());
        QVERIFY(Inglese(straniera.avviso).contains("SOFTWARE.MDB"));
        QCOMPARE(leggi(home + "/SOFTWARE/SOFTWARE.MDB"), estraneo);
    }

    void nothingIsSentWhen_data()
    {
        QTest::addColumn<QString>("nome");
        QTest::addColumn<QByteArray>("contenuto"); // written as <nome>.S19 unless empty
        QTest::addColumn<bool>("portaAperta");
        // SEGNALAZIONE_n on the line, 13 in a box, 19 after the fitter's no; -n the file refused
        // with reason n of ProgSW, naming line 2.
        QTest::addColumn<int>("messaggio");
        QTest::newRow("no release chosen") << QString() << QByteArray() << true << 13;
        QTest::newRow("the file has gone") << "GONE" << QByteArray() << true << 9;
        QTest::newRow("the identification falls outside a line")
            << "SHORT" << RigaS1(0xC040, QByteArray(16, '\x11')) + "\nS903C0003C\n"
            << true << 9;
        QTest::newRow("a name that climbs out of the folder") << "../NEWREL" << QByteArray() << true << 9;
        QTest::newRow("a damaged line")
            << "BAD" << QByteArray("S0030000FC\nS1FFC1004142FF\nS903C0003C\n") << true << -5;
        QTest::newRow("the port is closed") << "NEWREL" << QByteArray() << false << 3;
        QTest::newRow("the fitter says no") << "NEWREL" << QByteArray() << true << 19;
    }

    void nothingIsSentWhen()
    {
        QFETCH(QString, nome);
        QFETCH(QByteArray, contenuto);
        QFETCH(bool, portaAperta);
        QFETCH(int, messaggio);
        avvia(true);
        scrivi(app() + "/SOFTWARE/NEWREL.S19", s19); // where the climbing name points
        if (!contenuto.isEmpty())
            scrivi(app() + "/SOFTWARE/FILES19/" + nome + ".S19", contenuto);
        if (!portaAperta)
            porta->chiudi();
        vista.risposta = messaggio != 19;
        d->scegli(nome);
        d->avviaProgrammazione();
        QTest::qWait(20);
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QVERIFY(vista.abilitata && !vista.barraVisibile);
        // The question comes only once nothing stands in the way.
        QCOMPARE(vista.domande.size(), messaggio == 19 ? 1 : 0);
        if (messaggio == 13) {
            QCOMPARE(vista.messaggi,
                     (QList<QStringList>{{segnalazione(13), "64", testo("SEGNALAZIONI", "TITOLO_1")}}));
            QVERIFY(vista.segnalazioni.isEmpty());
        } else if (messaggio < 0) {
            QCOMPARE(vista.segnalazioni.size(), 1);
            const QString motivo =
                testo("ProgSW", "S19." + QString::number(-messaggio)).trimmed().replace("XXX", "2");
            QVERIFY2(vista.segnalazioni.first().endsWith(motivo), qPrintable(vista.segnalazioni.first()));
        } else {
            QCOMPARE(vista.segnalazioni, QStringList{segnalazione(messaggio)});
        }
        QFile::remove(app() + "/SOFTWARE/NEWREL.S19");
    }

    void wholeFlash_data()
    {
        QTest::addColumn<bool>("applicazione");
        QTest::newRow("ECU running its application") << true;
        QTest::newRow("ECU with only its boot loader ('g')") << false;
    }

    void wholeFlash()
    {
        QFETCH(bool, applicazione);
        avvia(applicazione);
        if (!applicazione)
            QCOMPARE(p->linea.ecu().InfCodice, QString(14, ' ')); // no version reply: blanks go in
        d->scegli(QStringLiteral("NEWREL"));
        const QString codice = p->linea.ecu().InfCodice;
        flashRiuscito();
        // The ECU runs the new software: asked again, it gives the release's vehicle text and
        // the code it had, which the flash carried over.
        QVERIFY(p->linea.ecu().EcuDaIdentificare);
        ecu->avanzaTempo(40);
        QVERIFY(finche([this] { return !p->linea.ecu().EcuDaIdentificare; }));
        QCOMPARE(p->linea.ecu().InfVeicolo, QStringLiteral("NEW-REL   "));
        QCOMPARE(p->linea.ecu().InfCodice, codice);
    }

    // The identification goes into the image byte for byte as the version reply gave it.
    void identificationBytesRoundTrip()
    {
        avvia(true);
        for (int primo = 0x20; primo <= 0xFF; primo += 28) {
            QByteArray byte;
            for (int b = primo; b < primo + 28; ++b) // 8 replies of 28 bytes: 0x20 to 0xFF
                byte.append(char(b));
            ecu->scriviVersione({.codice = byte.left(14), .datoA = byte.mid(14, 10), .datoB = byte.right(4)});
            p->linea.ecuDiProva().EcuDaIdentificare = true;
            ecu->avanzaTempo(40);
            QVERIFY(finche([this] { return !p->linea.ecu().EcuDaIdentificare; }));
            const TestiIdentificazione t = TestiIdentificazioneDi(p->linea.ecu());
            QCOMPARE(t.codice + t.datoA + t.datoB, byte);
        }
    }

    void failureThenRetry_data()
    {
        QTest::addColumn<int>("dove");
        QTest::addColumn<Guasto>("guasto");
        QTest::addColumn<int>("codice");
        QTest::addColumn<QString>("chiave"); // of ERRORI after the code, or of SEGNALAZIONI
        QTest::newRow("'I' refused, 01") << 0 << Guasto::Codice << 0x01 << "ERR_01";
        QTest::newRow("block 1 refused, 00") << 1 << Guasto::Codice << 0x00 << "ERR_99";
        QTest::newRow("block 37 refused, 07") << 37 << Guasto::Codice << 0x07 << "ERR_07";
        QTest::newRow("block 220 refused, 08") << 220 << Guasto::Codice << 0x08 << "ERR_99";
        QTest::newRow("'F' refused, 05") << FrameF << Guasto::Codice << 0x05 << "ERR_05";
        QTest::newRow("no reply to 'I'") << 0 << Guasto::Silenzio << 0 << "SEGNALAZIONE_10";
        QTest::newRow("line dropped at block 100") << 100 << Guasto::Silenzio << 0 << "SEGNALAZIONE_10";
        QTest::newRow("no reply to 'F'") << FrameF << Guasto::Silenzio << 0 << "SEGNALAZIONE_10";
        QTest::newRow("adapter pulled at block 50") << 50 << Guasto::PortaPersa << 0 << "SEGNALAZIONE_10";
    }

    void failureThenRetry()
    {
        QFETCH(int, dove);
        QFETCH(Guasto, guasto);
        QFETCH(int, codice);
        QFETCH(QString, chiave);
        avvia(true);
        d->scegli(QStringLiteral("NEWREL"));

        // The fault strikes as the ECU takes its frame.
        int contati = 0;
        bool colpito = false;
        auto aggancio = connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [&](const QByteArray &f) {
            const char l = f.at(4);
            const int n = l == 'I' ? 0 : l == 'F' ? FrameF : ++contati;
            if (n != dove || colpito)
                return;
            colpito = true;
            const bool daSe = guasto == Guasto::Codice && n >= 1 && n <= 220;
            if (!daSe)
                ecu->impostaStallo(true);
            if (guasto == Guasto::Codice && !daSe)
                QTimer::singleShot(0, porta, [this, codice] {
                    emit porta->arrivati(CreaFrame(QByteArray("e") + char(codice), 0));
                });
            if (guasto == Guasto::PortaPersa)
                QTimer::singleShot(0, porta, [this] { porta->perdi(); });
        });
        if (guasto == Guasto::Codice && dove >= 1 && dove <= 220)
            ecu->impostaGuastoBlocco(dove, quint8(codice));

        d->avviaProgrammazione();
        QVERIFY(finche([&] { return colpito; }));
        QTest::qWait(20);
        if (guasto == Guasto::Silenzio) {
            QCOMPARE(p->linea.motore().StatoDialogo(), qint16(dove == 0 ? 151 : dove == FrameF ? 153 : 152));
            QVERIFY(!vista.abilitata);
            QVERIFY(req->scatta());
        }
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        const QString attesa = guasto == Guasto::Codice
                                   ? QStringLiteral("%1H ").arg(codice, 2, 16, QLatin1Char('0')).toUpper()
                                         + testo("ERRORI", chiave)
                                   : testo("SEGNALAZIONI", chiave);
        QCOMPARE(vista.segnalazioni.last(), attesa);
        QVERIFY(vista.abilitata && !vista.barraVisibile);
        QVERIFY(!req->isEnabled());
        // Nothing after the frame that failed; no 'F' unless it was the 'F'.
        QCOMPARE(porta->scritti.size(), dove + 1);
        QCOMPARE(frame('F').size(), dove == FrameF ? 1 : 0);
        QCOMPARE(leggi(app() + "/SOFTWARE/FILES19/NEWREL.S19"), s19);

        // The fitter presses Programma again, once the line is back: all over from 'I'.
        disconnect(aggancio);
        ecu->impostaGuastoBlocco(0);
        ecu->impostaStallo(false);
        if (guasto == Guasto::PortaPersa) {
            QVERIFY(!p->linea.porta().PortOpen());
            QVERIFY(riapertura->scatta());
            QVERIFY(p->linea.porta().PortOpen());
        }
        flashRiuscito();
    }

    // The same through the program's serial port on a pseudo-terminal, with real timers and
    // the ECU's own live stream.
    void onAPseudoTerminal_data()
    {
        QTest::addColumn<bool>("applicazione");
        QTest::addColumn<int>("caduta"); // the block where the line drops on the first try, 0 none
        QTest::newRow("ECU with only its boot loader") << false << 0;
        QTest::newRow("line dropped at block 100, then again") << true << 100;
    }

    void onAPseudoTerminal()
    {
        QFETCH(bool, applicazione);
        QFETCH(int, caduta);
        OpzioniEcu o;
        o.applicazionePresente = applicazione;
        QVERIFY(avviaSuLinea(o));
        vista = VistaFinta();
        DialogoProgSW dialogo(p->linea, p->PercorsoApp, vista);
        dialogo.scegli(QStringLiteral("NEWREL"));
        const auto ultima = [this] { return vista.segnalazioni.value(vista.segnalazioni.size() - 1); };
        if (caduta) {
            ecu->impostaCadutaAlBlocco(caduta, 500);
            dialogo.avviaProgrammazione();
            // The ECU goes silent and comes back; the block waits its 3 s and the flash ends.
            QTRY_COMPARE_WITH_TIMEOUT(ultima(), segnalazione(10), 6000);
            QCOMPARE(dialogo.NumBloccoSW(), caduta);
            QVERIFY(vista.abilitata && !vista.barraVisibile);
        }
        dialogo.avviaProgrammazione();
        QTRY_COMPARE_WITH_TIMEOUT(ultima(), segnalazione(12), 10000);
        QCOMPARE(ecu->leggiMemoria(0xC000, 0x3700), immagineAttesa());
        if (!applicazione) {
            QCOMPARE(p->linea.ecu().InfCodice + p->linea.ecu().InfDatoA + p->linea.ecu().InfDatoB,
                     QString(28, u' '));
            // The new software runs: the ECU that had none is identified, with the new image's
            // version reply.
            QTRY_VERIFY_WITH_TIMEOUT(!p->linea.ecu().EcuDaIdentificare && p->linea.ecu().EcuNormale, 5000);
            QCOMPARE(p->linea.ecu().InfVeicolo, QStringLiteral("NEW-REL   "));
        }
    }

    void imageDeletedHalfWayEndsWithoutF()
    {
        avvia(true);
        d->scegli(QStringLiteral("NEWREL"));
        int contati = 0;
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [&](const QByteArray &f) {
            if (f.at(4) == 'W' && ++contati == 60)
                QFile::remove(app() + "/FILESW.TXT");
        });
        d->avviaProgrammazione();
        QVERIFY(libero());
        QCOMPARE(frame('W').size(), 60);
        QCOMPARE(frame('F').size(), 0);
        QCOMPARE(vista.segnalazioni.last(), segnalazione(13));
        QVERIFY(vista.abilitata && !req->isEnabled());
    }
};

QTEST_GUILESS_MAIN(TstDialogoProgSW)
#include "tst_dialogoprogsw.moc"
