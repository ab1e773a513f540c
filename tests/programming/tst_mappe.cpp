// Maps against the simulated ECU wired straight to the port: reading one into the archive,
// writing one back, what an interrupted read leaves (nothing), names that would lead out of
// MAPPATURE, damaged files, the read-back check, and the tree that merges folders and
// catalogue. Time-outs fire by hand.

#include "base/Lingua.h"
#include "support/DiscoPieno.h"
#include "support/FileDiProva.h"
#include "support/MappaDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/TestiDiProva.h"

#include "base/FileIni.h"

#include "link/Frame.h"
#include "programming/AlberoMappe.h"
#include "programming/DialogoMappe.h"
#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"

#include <QTest>
#include <QTimer>

using namespace kv;
using namespace kv::sim;

namespace {

struct VistaFinta : VistaMappe
{
    void mostraSegnalazione(const Messaggio &testo) override { segnalazione = Inglese(testo); }
    void abilitaPagina(bool a) override { abilitata = a; }
    void mostraAvanzamento(int valore, int massimo) override
    {
        barra = true;
        avanzamento = {valore, massimo};
    }
    void nascondiAvanzamento() override { barra = false; }
    void beep() override {}
    int domanda(const Messaggio &testo, int f, const Messaggio &) override
    {
        domande.append(Inglese(testo));
        flags = f;
        return risposta;
    }
    void offriRiscrittura(const Messaggio &testo) override { offerte.append(Inglese(testo)); }
    void chiudiPagina() override { ++chiusure; }
    void mappaArchiviata(const ChiaveMappa &k) override { archiviate.append(k.elenco().join(u'/')); }
    void fuocoNomeFile() override { ++fuochi; }

    QString segnalazione;
    bool abilitata = true;
    bool barra = false;
    std::pair<int, int> avanzamento;
    int risposta = RispostaSiMappe;
    QStringList domande;
    int flags = 0;
    QStringList offerte;
    int chiusure = 0;
    QStringList archiviate;
    int fuochi = 0;
};

// What goes wrong at the n-th request: the port answers in the ECU's place, or not at all.
enum class Guasto {
    Nessuno,
    Silenzio, // no reply: the time-out follows
    Errore,   // 'e' with fault 2
    Corto,    // an 'r' with 10 bytes in place of 64
    Caduta    // the adapter is pulled out
};

class PortaGuasta : public PortaEcu
{
public:
    using PortaEcu::PortaEcu;
    bool scrivi(const QByteArray &bytes) override
    {
        if (guasto == Guasto::Nessuno || ++richieste != al)
            return PortaEcu::scrivi(bytes);
        scritti.append(bytes);
        QTimer::singleShot(0, this, [this] {
            if (guasto == Guasto::Errore)
                emit arrivati(CreaFrame(QByteArray("e\x02", 2), 0));
            else if (guasto == Guasto::Corto)
                emit arrivati(CreaFrame('r' + QByteArray(10, '\x11'), 0));
            else if (guasto == Guasto::Caduta) {
                chiudi();
                emit persa(QStringLiteral("pulled"));
            }
        });
        return true;
    }
    Guasto guasto = Guasto::Nessuno;
    int al = 0;
    int richieste = 0;
};

QByteArray disegno(int seme)
{
    QByteArray b(FileMappa::Dimensione, '\0');
    for (int i = 0; i < b.size(); ++i)
        b[i] = char((i * 7 + seme * 31) & 0xFF);
    return b;
}

// Letter and address of every request written, as "W C100".
QStringList richieste(const QByteArrayList &frame)
{
    QStringList r;
    for (const QByteArray &f : frame)
        r << QStringLiteral("%1 %2")
                 .arg(QChar(f.at(4)))
                 .arg(QString::fromLatin1(f.mid(5, 2).toHex().toUpper()));
    return r;
}

QStringList indirizzi(QChar lettera, int quanti)
{
    QStringList r;
    for (int n = 0; n < quanti; ++n)
        r << QStringLiteral("%1 %2").arg(lettera).arg(0xC100 + 64 * n, 4, 16).toUpper();
    return r;
}

} // namespace

Q_DECLARE_METATYPE(kv::ChiaveMappa)
Q_DECLARE_METATYPE(Guasto)

class TstMappe : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    VistaFinta vista;

    QString app() const { return cartella.filePath(QStringLiteral("app")); }
    QString mappe() const { return app() + QStringLiteral("/MAPPATURE"); }
    QString tmp() const { return app() + QStringLiteral("/KVMAPPA.TMP"); }
    PortaGuasta *guasta() const { return static_cast<PortaGuasta *>(porta); }
    QByteArray memoria() const { return ecu->leggiMemoria(0xC100, FileMappa::Dimensione); }
    // Everything beside and below the program's folder but the frame log.
    QMap<QString, QByteArray> contenuto() const
    {
        return istantanea(cartella.path(), app() + "/MESSAGGI.TXT");
    }

    // The request on the line has gone unanswered this long: its time-out fires.
    void scade()
    {
        QTest::qWait(20);
        QVERIFY(req->scatta());
    }

    std::optional<RigaArchivio> riga(const QStringList &chiave)
    {
        Archivio db;
        if (!ApriArchivioMappe(mappe(), QStringLiteral("ARCHMAPPE.MDB"), db))
            return std::nullopt;
        return db.Cerca(u"PER_NOME", chiave);
    }
    int righe()
    {
        Archivio db;
        return ApriArchivioMappe(mappe(), QStringLiteral("ARCHMAPPE.MDB"), db)
                   ? int(db.Elenca(u"PER_NOME").size())
                   : -1;
    }

    // A map filed as ReadMappe files one.
    void archivia(const ChiaveMappa &k, const QByteArray &testoFile, const QString &nota)
    {
        const PercorsoMappa pm = PercorsoFileMappa(app(), k);
        QVERIFY(pm.ok() && CreaCartellaMappa(app(), pm));
        scrivi(pm.file, testoFile);
        QVERIFY(RegistraMappa(app(), k, nota).ok());
    }

    bool leggiMappa(const ChiaveMappa &k, const QString &nota)
    {
        LetturaMappe lettura(p->linea, p->PercorsoApp, p->catalogo, vista);
        lettura.Leggi(k, nota);
        return attendi() && !lettura.inCorso();
    }

private slots:
    void init()
    {
        for (const char *c : {"app", "fuori"})
            QVERIFY(QDir(cartella.filePath(c)).removeRecursively());
        QVERIFY(preparaCartella(app()) && QDir().mkpath(mappe() + "/LPG")
                && QDir().mkpath(cartella.filePath("fuori")));
        avvia<PortaGuasta>(OpzioniManuali(), app());
        vista = VistaFinta{};
    }

    void cleanup() { chiudi(); }

    void readFilesTheEcuMemoryByteForByte()
    {
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(1)));
        QVERIFY(ecu->scriviMemoria(0x015B, QByteArray(1, '\x01'))); // ScalaLambda
        QVERIFY(leggiMappa({"LPG", "Fiat", "Punto 1.2", "base"}, QStringLiteral("  idle reworked ")));
        // The eight blocks, then the RAM flag that says how the map's lambda thresholds show.
        QCOMPARE(richieste(porta->scritti), indirizzi(u'R', 8) << QStringLiteral("R 015B"));
        for (const QByteArray &f : porta->scritti.mid(0, 8))
            QCOMPARE(quint8(f.at(7)), quint8(64));
        const QString file = mappe() + QStringLiteral("/LPG/Fiat/Punto 1.2/base.LKV");
        QCOMPARE(leggi(file), comeFile(disegno(1)));
        QCOMPARE(riga({"LPG", "Fiat", "Punto 1.2", "base"})->Testo(u"Note"), QStringLiteral("idle reworked"));
        QCOMPARE(riga({"LPG", "Fiat", "Punto 1.2", "base"})->Testo(u"ScalaLambda"), QStringLiteral("255"));
        QVERIFY(!QFile::exists(tmp()));
        QCOMPARE(vista.segnalazione, testo("ReadMappe", "SEGNALAZIONE1.4"));
        QCOMPARE(vista.archiviate, QStringList{"LPG/Fiat/Punto 1.2/base"});
        QVERIFY(vista.abilitata && !vista.barra && vista.avanzamento == std::make_pair(8, 8));
    }

    void overwritingAsksOnce_data()
    {
        QTest::addColumn<int>("risposta");
        QTest::newRow("yes replaces file and row") << RispostaSiMappe;
        QTest::newRow("no keeps both") << 7;
    }

    void overwritingAsksOnce()
    {
        QFETCH(int, risposta);
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(1)), QStringLiteral("old"));
        const QString punto = mappe() + "/LPG/Fiat/Punto/";
        QVERIFY(QFile::rename(punto + "base.LKV", punto + "Base.lkv")); // as brought from elsewhere
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(2)));
        vista.risposta = risposta;
        // Another case of the same names is the same map; a note of blanks is no note.
        QVERIFY(leggiMappa({"LPG", "FIAT", "punto", "BASE"}, QStringLiteral("   ")));
        QCOMPARE(vista.domande, QStringList{testo("SEGNALAZIONI", "SEGNALAZIONE_8")});
        const bool si = risposta == RispostaSiMappe;
        QCOMPARE(porta->scritti.size(), si ? 9 : 0);
        QCOMPARE(vista.fuochi, si ? 0 : 1);
        QCOMPARE(leggi(punto + "Base.lkv"), comeFile(disegno(si ? 2 : 1)));
        QCOMPARE(QDir(punto).entryList(QDir::Files), QStringList{"Base.lkv"});
        QCOMPARE(righe(), 1);
        const std::optional<RigaArchivio> r = riga({"LPG", "Fiat", "Punto", "base"});
        QVERIFY(r);
        QCOMPARE(r->Nullo(u"Note"), si);
    }

    void interruptedReadLeavesNothing_data()
    {
        QTest::addColumn<Guasto>("guasto");
        QTest::addColumn<bool>("nuova"); // a name not in the archive yet
        QTest::addColumn<QString>("messaggio");
        const QString muta = QStringLiteral("SEGNALAZIONI/SEGNALAZIONE_14");
        QTest::newRow("time-out at block 4") << Guasto::Silenzio << false << muta;
        QTest::newRow("time-out, new make") << Guasto::Silenzio << true << muta;
        QTest::newRow("error reply at block 4") << Guasto::Errore << false << QStringLiteral("02H");
        QTest::newRow("line pulled at block 4") << Guasto::Caduta << true << muta;
        QTest::newRow("short block 4")
            << Guasto::Corto << false << QStringLiteral("ReadMappe/SEGNALAZIONE1.5");
    }

    void interruptedReadLeavesNothing()
    {
        QFETCH(Guasto, guasto);
        QFETCH(bool, nuova);
        QFETCH(QString, messaggio);
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(1)), QStringLiteral("old"));
        const auto prima = contenuto();
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(2)));
        guasta()->guasto = guasto;
        guasta()->al = 4;
        LetturaMappe lettura(p->linea, p->PercorsoApp, p->catalogo, vista);
        lettura.Leggi({"LPG", nuova ? "Opel" : "Fiat", "Punto", "base"}, QStringLiteral("new"));
        QTRY_COMPARE(guasta()->richieste, 4);
        if (guasto == Guasto::Silenzio) {
            QCOMPARE(leggi(tmp()), comeFile(disegno(2).left(192))); // three records so far
            scade();
        }
        QVERIFY(attendi());
        QVERIFY(!lettura.inCorso());

        QCOMPARE(contenuto(), prima);
        QCOMPARE(riga({"LPG", "Fiat", "Punto", "base"})->Testo(u"Note"), QStringLiteral("old"));
        QCOMPARE(righe(), 1);
        const QStringList parti = messaggio.split(u'/');
        const QString atteso = parti.size() == 2 ? p->lingua.LeggiTesto(parti[0], parti[1]) : messaggio;
        QVERIFY2(vista.segnalazione.startsWith(atteso), qPrintable(vista.segnalazione));
        QVERIFY(vista.abilitata);
        QCOMPARE(p->linea.motore().StatoDialogo(), -1);
    }

    void aRefusedFlagStillFilesTheMap()
    {
        guasta()->guasto = Guasto::Errore;
        guasta()->al = 9; // ScalaLambda, after the eight blocks
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(3)));
        QVERIFY(leggiMappa({"LPG", "Fiat", "Punto", "base"}, {}));
        QCOMPARE(leggi(mappe() + "/LPG/Fiat/Punto/base.LKV"), comeFile(disegno(3)));
        QVERIFY(riga({"LPG", "Fiat", "Punto", "base"})->Nullo(u"ScalaLambda"));
    }

    void namesThatLeadOutAreRefused_data()
    {
        QTest::addColumn<ChiaveMappa>("chiave");
        QTest::addColumn<QString>("motivo");
        const auto k = [](const char *marca, const char *modello, const QString &file) {
            return ChiaveMappa{"LPG", marca, modello, file};
        };
        const QString vietato = QStringLiteral("NOME.2");
        const QString punto = QStringLiteral("NOME.4");
        QTest::newRow("dot-dot") << k("..", "..", "x") << punto;
        QTest::newRow("up and over") << k("Fiat", "Punto", "../../../fuori/x") << vietato;
        QTest::newRow("slash") << k("a/b", "c", "d") << vietato;
        QTest::newRow("absolute") << k("Fiat", "Punto", "/etc/passwd") << vietato;
        QTest::newRow("backslash") << k("Fiat", "..\\..", "d") << vietato;
        QTest::newRow("colon") << k("C:", "Punto", "d") << vietato;
        QTest::newRow("leading dot") << k("Fiat", ".hidden", "d") << punto;
        QTest::newRow("trailing dot, which Windows drops") << k("Fiat", "Punto.", "d") << punto;
        QTest::newRow("a device name with an extension")
            << k("Fiat", "LPT1.txt", "d") << QStringLiteral("NOME.5");
        QTest::newRow("control character") << k("Fiat", "Pun\x01to", "d") << vietato;
        QTest::newRow("newline") << k("Fiat", "Punto", "a\nb") << vietato;
        QTest::newRow("comma") << k("Fiat", "Punto", "a,b") << vietato;
        QTest::newRow("wildcard") << k("Fiat", "Punto", "a*") << vietato;
        QTest::newRow("300 characters") << k("Fiat", "Punto", QString(300, u'x')) << QStringLiteral("NOME.3");
        QTest::newRow("21 characters") << k("Fiat", "Punto", QString(21, u'x')) << QStringLiteral("NOME.3");
        QTest::newRow("51-character make")
            << k(QByteArray(51, 'm').constData(), "Punto", "d") << QStringLiteral("NOME.3");
        QTest::newRow("plant dot-dot") << ChiaveMappa{"..", "Fiat", "Punto", "d"} << punto;
        // Links inside MAPPATURE lead out: refused whatever their case.
        QTest::newRow("through a link") << k("Fuori", "Punto", "d") << QStringLiteral("NOME.9");
        QTest::newRow("through a link, other case") << k("FUORI", "Punto", "d") << QStringLiteral("NOME.9");
        QTest::newRow("onto a linked file") << k("Fiat", "Punto", "rubato") << QStringLiteral("NOME.9");
    }

    void namesThatLeadOutAreRefused()
    {
        QFETCH(ChiaveMappa, chiave);
        QFETCH(QString, motivo);
        QVERIFY(QFile::link(cartella.filePath("fuori"), mappe() + "/LPG/Fuori"));
        QVERIFY(QDir().mkpath(mappe() + "/LPG/Fiat/Punto"));
        scrivi(cartella.filePath("fuori/segreto.LKV"), "keep");
        QVERIFY(QFile::link(cartella.filePath("fuori/segreto.LKV"), mappe() + "/LPG/Fiat/Punto/rubato.LKV"));
        const auto prima = contenuto();

        leggiMappa(chiave, QStringLiteral("note"));
        QVERIFY(porta->scritti.isEmpty());
        QVERIFY(vista.domande.isEmpty());
        const QString atteso =
            p->lingua.LeggiTesto(QStringLiteral("ReadMappe"), motivo).section(QLatin1String("XXX"), 0, 0);
        QVERIFY2(!atteso.isEmpty() && vista.segnalazione.contains(atteso), qPrintable(vista.segnalazione));
        QCOMPARE(contenuto(), prima);
        QCOMPARE(righe(), 0);
    }

    void aMapFolderThatIsALinkLeadsNowhere()
    {
        QVERIFY(QDir(mappe()).removeRecursively());
        QVERIFY(QFile::link(cartella.filePath("fuori"), mappe()));
        leggiMappa({"LPG", "Fiat", "Punto", "d"}, {});
        QVERIFY(porta->scritti.isEmpty());
        QVERIFY(QDir(cartella.filePath("fuori")).isEmpty());
    }

    // Only a file that is exactly a map goes, after one question whose default is no; any
    // other is refused before its first byte, naming its first bad record (the refusals
    // themselves are the map check's own table).
    void onlyAWholeMapIsSent_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("motivo"); // ProgMappe's reason, with its record; empty: sent
        const QByteArray mappa = comeFile(disegno(3));
        QTest::newRow("8 records") << mappa << QString();
        QTest::newRow("7 records") << mappa.left(7 * 130) << "MAPPA.2 8";
        QTest::newRow("a ninth record, over the software") << mappa + mappa.left(130) << "MAPPA.3 0";
        QTest::newRow("the fitter says no") << mappa << "SEGNALAZIONE_19";
    }

    void onlyAWholeMapIsSent()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, motivo);
        archivia({"CNG", "Opel", "Zafira", "eco"}, file, {});
        QVERIFY(ecu->scriviMemoria(0xC100, QByteArray(512, '\xEE')));
        vista.risposta = motivo.isEmpty() ? RispostaSiMappe : 7;
        ScritturaMappe scrittura(p->linea, p->PercorsoApp, vista);
        scrittura.ProgrammaMappa({"CNG", "Opel", "Zafira", "eco"}, false);
        QVERIFY(attendi());
        QCOMPARE(richieste(porta->scritti), motivo.isEmpty() ? indirizzi(u'W', 8) : QStringList());
        QCOMPARE(memoria(), motivo.isEmpty() ? disegno(3) : QByteArray(512, '\xEE'));
        const bool chiesto = !motivo.startsWith(u"MAPPA");
        QCOMPARE(vista.domande.size(), chiesto ? 1 : 0);
        QVERIFY(!chiesto
                || (vista.domande.first().contains("CNG\\Opel\\Zafira\\eco")
                    && (vista.flags & SecondoPredefinito)));
        if (!chiesto)
            QVERIFY2(vista.segnalazione.endsWith(testo("ProgMappe", motivo.section(u' ', 0, 0))
                                                     .trimmed()
                                                     .replace("XXX", motivo.section(u' ', 1))),
                     qPrintable(vista.segnalazione));
    }

    void interruptedWriteSaysSoAndOffersToWriteAgain()
    {
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(4)), {});
        QVERIFY(ecu->scriviMemoria(0xC100, QByteArray(512, '\xEE')));
        guasta()->guasto = Guasto::Silenzio;
        guasta()->al = 4;
        ScritturaMappe scrittura(p->linea, p->PercorsoApp, vista);
        scrittura.ProgrammaMappa({"LPG", "Fiat", "Punto", "base"}, true);
        QTRY_COMPARE(guasta()->richieste, 4);
        scade();
        QVERIFY(attendi());
        QCOMPARE(memoria(), disegno(4).left(192) + QByteArray(320, '\xEE'));
        QVERIFY2(vista.segnalazione.contains(testo("ProgMappe", "MISTA").trimmed().replace("XXX", "4")),
                 qPrintable(vista.segnalazione));
        QCOMPARE(vista.offerte.size(), 1);

        // Yes to the offer: the whole map again, verified, without asking twice.
        guasta()->guasto = Guasto::Nessuno;
        scrittura.Riscrivi();
        QVERIFY(attendi());
        QCOMPARE(memoria(), disegno(4));
        QCOMPARE(vista.segnalazione, testo("ProgMappe", "SEGNALAZIONE1.6"));
        QCOMPARE(vista.domande.size(), 1);
    }

    // With the disk full (no file may grow past 600 bytes), a map read over one of the same
    // name, the settings saved and a software image built all say they failed, and every file
    // that was there stays whole.
    void fullDiskLosesNothing()
    {
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(1)), QStringLiteral("old"));
        const QString ini = app() + "/KORVANTINE.INI";
        scrivi(ini, "[SERIALE]\r\nPorta=COM1\r\n");
        const QString s19 = app() + "/NEW.S19";
        scrivi(s19, "S107C000010203042E\r\nS903C0003C\r\n");
        QVERIFY(PreparaFileSW(PercorsoFileSW(app())));
        QVERIFY(ecu->scriviMemoria(0xC100, disegno(2)));
        const auto prima = contenuto();
        const int fallite = ConDiscoPieno(600, [&] {
            const bool letta = leggiMappa({"LPG", "Fiat", "Punto", "base"}, {})
                               && vista.segnalazione == testo("ReadMappe", "SEGNALAZIONE1.2");
            FileIni impostazioni = FileIni::daFile(ini);
            impostazioni.imposta("SERIALE", "Porta", QString(1000, u'x'));
            return (letta ? 0 : 1) | (impostazioni.salva(ini) ? 2 : 0)
                   | (ConvertiS19(s19, PercorsoFileSW(app()), p->linea.ecu()) ? 4 : 0);
        });
        QCOMPARE(fallite, 0);
        QCOMPARE(contenuto(), prima);
    }

    void verificationFindsTheFirstDifference_data()
    {
        QTest::addColumn<qint64>("guastato"); // an address the ECU then holds otherwise, -1 none
        QTest::addColumn<qint64>("differenza");
        QTest::newRow("the same") << qint64(-1) << qint64(-1);
        QTest::newRow("one byte changed behind the writer") << qint64(0xC1A3) << qint64(0xC1A3);
        QTest::newRow("the last record") << qint64(0xC2FF) << qint64(0xC2FF);
    }

    void verificationFindsTheFirstDifference()
    {
        QFETCH(qint64, guastato);
        QFETCH(qint64, differenza);
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(6)), {});
        bool fatto = false;
        connect(ecu.get(), &EcuSimulata::frameRicevuto, this, [&](const QByteArray &f) {
            if (f.at(4) == 'R' && !fatto && guastato >= 0) {
                fatto = true;
                ecu->scriviMemoria(quint32(guastato), QByteArray(1, char(~disegno(6).at(guastato - 0xC100))));
            }
        });
        ScritturaMappe scrittura(p->linea, p->PercorsoApp, vista);
        scrittura.ProgrammaMappa({"LPG", "Fiat", "Punto", "base"}, true);
        QVERIFY(attendi());
        QCOMPARE(richieste(porta->scritti), indirizzi(u'W', 8) + indirizzi(u'R', 8));
        QCOMPARE(scrittura.PrimaDifferenza(), differenza);
        QVERIFY(scrittura.MappaScritta());
        if (differenza < 0)
            QCOMPARE(vista.segnalazione, testo("ProgMappe", "SEGNALAZIONE1.6"));
        else
            QVERIFY2(vista.segnalazione.contains(QString::number(differenza, 16).toUpper() + u'H'),
                     qPrintable(vista.segnalazione));
    }

    void writingChecksThePlaceAndLeavingAsks()
    {
        // A row without its file, and rows whose names lead out, cannot be sent.
        QVERIFY(RegistraMappa(app(), {"LPG", "Fiat", "Punto", "senza file"}, {}).ok());
        ScritturaMappe scrittura(p->linea, p->PercorsoApp, vista);
        scrittura.ProgrammaMappa({"LPG", "Fiat", "Punto", "senza file"}, false);
        QCOMPARE(vista.segnalazione, testo("ProgMappe", "SEGNALAZIONE1.3"));
        scrittura.ProgrammaMappa({"LPG", "..", "..", "KORVANTINE"}, false);
        QCOMPARE(vista.segnalazione, testo("ProgMappe", "SEGNALAZIONE1.4"));
        scrittura.ProgrammaMappa({"LPG", "Fiat", "", ""}, false);
        QCOMPARE(vista.segnalazione, testo("ProgMappe", "SEGNALAZIONE1.0"));
        QVERIFY(porta->scritti.isEmpty());

        // Leaving without a map written needs no answer; after one it does.
        scrittura.Esci();
        QCOMPARE(vista.chiusure, 1);
        archivia({"LPG", "Fiat", "Punto", "base"}, comeFile(disegno(7)), {});
        scrittura.ProgrammaMappa({"LPG", "Fiat", "Punto", "base"}, false);
        QVERIFY(attendi());
        vista.risposta = 7;
        scrittura.Esci();
        QCOMPARE(vista.domande.last(), testo("SEGNALAZIONI", "SEGNALAZIONE_56"));
        QCOMPARE(vista.chiusure, 1);
        vista.risposta = RispostaSiMappe;
        scrittura.Esci();
        QCOMPARE(vista.chiusure, 2);
    }

    void treeMergesFoldersAndCatalogue()
    {
        archivia({"LPG", "Fiat", "Punto", "a"}, comeFile(disegno(1)), QStringLiteral("note a"));
        scrivi(mappe() + "/LPG/Fiat/Punto/b.lkv", comeFile(disegno(2))); // no row
        scrivi(mappe() + "/LPG/Fiat/Punto/notes.txt", "not a map");
        QVERIFY(RegistraMappa(app(), {"lpg", "FIAT", "PUNTO", "c"}, {}).ok());                  // no file
        QVERIFY(RegistraMappa(app(), {"CNG", "Opel", "Astra", "d"}, QStringLiteral("x")).ok()); // no folders
        QVERIFY(QDir().mkpath(cartella.filePath("fuori/Marca/Modello")));
        scrivi(cartella.filePath("fuori/Marca/Modello/x.LKV"), "outside");
        QVERIFY(QFile::link(cartella.filePath("fuori"), mappe() + "/LPG/Link"));
        QVERIFY(QDir().mkpath(mappe() + "/LPG/.nascosta/m"));

        EsitoArchivio esito;
        const AlberoMappe a = AlberoMappe::Carica(app(), &esito);
        QVERIFY(esito.ok());
        QCOMPARE(a.nodo(AlberoMappe::Radice).nome, QStringLiteral("MAPPATURE"));
        QCOMPARE(a.trova({"LPG", "Link", {}, {}}), -1);
        QCOMPARE(a.trova({"LPG", ".nascosta", {}, {}}), -1);
        const int punto = a.trova({"LPG", "FIAT", "punto", {}});
        QVERIFY(punto > 0);
        QCOMPARE(a.nodo(punto).nome, QStringLiteral("Punto"));
        QStringList foglie;
        for (int f : a.foglie(punto)) {
            const AlberoMappe::Nodo &n = a.nodo(f);
            foglie << n.nome + (n.suDisco ? QStringLiteral(" F") : QStringLiteral(" -"))
                          + (n.nelCatalogo ? QStringLiteral("R ") : QStringLiteral("- "))
                          + n.nota.value_or(QStringLiteral("NULL"));
        }
        QCOMPARE(foglie, QStringList({"a FR note a", "b F- NULL", "c -R NULL"}));
        const int astra = a.trova({"CNG", "Opel", "Astra", "d"});
        QVERIFY(astra > 0 && !a.nodo(astra).suDisco && a.nodo(astra).nota == QStringLiteral("x"));
        QCOMPARE(a.chiave(astra).elenco(), QStringList({"CNG", "Opel", "Astra", "d"}));

        // Without a usable catalogue the folders are still there, and the reason is given.
        QVERIFY(QFile::remove(mappe() + "/ARCHMAPPE.MDB"));
        scrivi(mappe() + "/ARCHMAPPE.MDB", "not a database");
        const AlberoMappe soloCartelle = AlberoMappe::Carica(app(), &esito);
        QCOMPARE(esito.errore, ErroreArchivio::FileEstraneo);
        QCOMPARE(soloCartelle.foglie(soloCartelle.trova({"LPG", "Fiat", "Punto", {}})).size(), 2);
        QCOMPARE(soloCartelle.trova({"CNG", "Opel", {}, {}}), -1);
    }
};

QTEST_GUILESS_MAIN(TstMappe)
#include "tst_mappe.moc"
