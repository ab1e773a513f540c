// Every key the code looks up, and every family the code builds from an index, must be in
// both shipped language files with some text: a missing key would show as a blank caption
// or, in a menu, as an entry that silently vanishes.
#include "base/FileIni.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace kv;

namespace {

struct Richiesta
{
    QString sezione;
    QString chiave;
    bool famiglia = false; // chiave is a prefix that takes an index
    QString dove;
};

const QStringList FileSpediti = {"ENGLISH.LNG", "ITALIANO.LNG"};

QByteArray byteDi(const QString &nome)
{
    QFile f(QStringLiteral(KV_SOURCE_DIR "/lang/") + nome);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QList<Richiesta> richiesteNelCodice()
{
    // A look-up, LeggiTesto("SEZIONE", "CHIAVE", or a message of the logic, Messaggio("SEZIONE",
    // "CHIAVE" (Messaggio m(...) and Messaggio{...} as well), followed by ')', ',' or '}' for a
    // whole key, by anything else (a '+' and an index) for a family; Segnalazione("CHIAVE") for
    // the common section. A literal may be wrapped, as QStringLiteral("..."), or be a u"..."
    // literal.
    static const QString Letterale = QStringLiteral(R"re((?:\w+\s*\(\s*u?"([^"\\]*)"\s*\)|u?"([^"\\]*)"))re");
    static const QRegularExpression chiamata(
        QStringLiteral(R"re((?:LeggiTesto|\bMessaggio(?:\s+\w+)?)\s*[({]\s*)re") + Letterale
        + QStringLiteral(R"re(\s*,\s*)re") + Letterale + QStringLiteral(R"re(\s*(\S))re"));
    static const QRegularExpression comune(QStringLiteral(R"re(\bSegnalazione\s*\(\s*)re") + Letterale
                                           + QStringLiteral(R"re(\s*(\S))re"));
    QList<Richiesta> richieste;
    QDirIterator it(QStringLiteral(KV_SOURCE_DIR "/src"), {"*.cpp", "*.h"}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString percorso = it.next();
        QFile f(percorso);
        if (!f.open(QIODevice::ReadOnly))
            continue;
        const QString codice = QString::fromUtf8(f.readAll());
        const auto richiesta = [&](const QString &sezione, const QString &chiave, const QString &seguito) {
            Richiesta r;
            r.sezione = sezione;
            r.chiave = chiave;
            r.famiglia = r.chiave.endsWith(u'.') || r.chiave.endsWith(u'_')
                         || (seguito != ")" && seguito != "," && seguito != "}");
            r.dove = percorso.mid(QStringLiteral(KV_SOURCE_DIR).size() + 1);
            richieste.append(r);
        };
        for (auto trovate = chiamata.globalMatch(codice); trovate.hasNext();) {
            const auto m = trovate.next();
            richiesta(m.captured(1) + m.captured(2), m.captured(3) + m.captured(4), m.captured(5));
        }
        for (auto trovate = comune.globalMatch(codice); trovate.hasNext();) {
            const auto m = trovate.next();
            richiesta(QStringLiteral("SEGNALAZIONI"), m.captured(1) + m.captured(2), m.captured(3));
        }
    }
    return richieste;
}

QStringList indici(const QString &prefisso, int da, int a)
{
    QStringList chiavi;
    for (int i = da; i <= a; ++i)
        chiavi.append(prefisso + QString::number(i));
    return chiavi;
}

} // namespace

class TestChiaviLingua : public QObject
{
    Q_OBJECT

private slots:
    void everyKeyTheCodeUsesHasText()
    {
        const QList<Richiesta> richieste = richiesteNelCodice();
        QVERIFY(richieste.size() > 50); // the pattern still finds the calls
        QStringList mancanti;
        for (const QString &nome : FileSpediti) {
            const FileIni ini = FileIni::daByte(byteDi(nome));
            for (const Richiesta &r : richieste) {
                bool trovata = !r.famiglia && !ini.valore(r.sezione, r.chiave).isEmpty();
                for (const QString &chiave : r.famiglia ? ini.chiavi(r.sezione) : QStringList()) {
                    if (chiave.startsWith(r.chiave, Qt::CaseInsensitive)
                        && !ini.valore(r.sezione, chiave).isEmpty())
                        trovata = true;
                }
                if (!trovata)
                    mancanti << QStringLiteral("%1: [%2] %3%4 used in %5")
                                    .arg(nome, r.sezione, r.chiave,
                                         r.famiglia ? QStringLiteral("*") : QString(), r.dove);
            }
        }
        QVERIFY2(mancanti.isEmpty(), qPrintable("\n" + mancanti.join(u'\n')));
    }

    // Sections whose keys the code names in full are the case above's.
    void everyKeyOfAComputedFamilyHasText_data()
    {
        QTest::addColumn<QString>("sezione");
        QTest::addColumn<QStringList>("chiavi");
        QTest::newRow("ZONE") << "ZONE" << indici("ZONA.", 1, 5) + QStringList{"ZONA.99"};
        QStringList canali;
        for (const char *canale :
             {"CAMPIONI", "FLAGPA", "GIRI", "TPS", "LAMBDA", "ACTPOS", "RICMAG", "MZONACT", "POMPATA",
              "TIPTPS", "TIPALIM", "TIPOLAMBDA", "LIBERO2", "LIBERO3", "LIBERO4", "LIBERO5"})
            canali << QString::fromLatin1(canale) + ".NOME";
        // Units only where the quantity has one; the others may be blank.
        canali << "GIRI.UM"
               << "TPS.UM"
               << "LAMBDA.UM"
               << "ACTPOS.UM";
        QTest::newRow("PAR_CANALI") << "PAR_CANALI" << canali;
        QTest::newRow("ERRORI") << "ERRORI" << indici("ERR_0", 1, 7) + QStringList{"ERR_99"};
        QTest::newRow("TASTI") << "TASTI" << QStringList{"OK",         "ANNULLA",    "SI",        "NO",
                                                         "RIPROVA",    "INTERROMPI", "IGNORA",    "ESCI",
                                                         "SCEGLI",     "SALVA",      "APPLICA",   "MEMORIZZA",
                                                         "RIPRISTINA", "FINE",       "PROGRAMMA", "CREA",
                                                         "CANCELLA",   "AVANTI",     "CONFERMA",  "LETTURA",
                                                         "AGGIORNA"};
        QTest::newRow("ALIMENTAZIONE") << "ALIMENTAZIONE" << QStringList{"TIPO.0", "TIPO.1", "TIPO.99"};
        // The menu: an entry without text vanishes, so every one the program opens must be there.
        QTest::newRow("MainLambda") << "MainLambda"
                                    << indici("FUNZIONE.", 0, 4) + QStringList{"USCITA", "VERSIONE"}
                                           + indici("PROGRAMMAZIONE.", 0, 2) + indici("VISDATI.", 0, 1)
                                           + indici("MESSAPUNTO0.", 0, 3) + indici("MESSAPUNTO1.", 0, 10)
                                           + indici("TARATURA.", 0, 4) + indici("UTILITA.", 0, 11);
        QTest::newRow("VisInf") << "VisInf" << QStringList{"CAPTION"} + indici("LABINFC.", 0, 3);
        // The monitor windows look their menus up in their own section.
        const QStringList registratore =
            QStringList{"CAPTION", "LABREGISTRO.1"} + indici("MENUFILE.", 0, 1) + indici("MENUREG.", 0, 2);
        QTest::newRow("Strumenti") << "Strumenti" << registratore + indici("MENUP.", 0, 1);
        QTest::newRow("Grafici") << "Grafici"
                                 << registratore + indici("MENUP.", 0, 3) + indici("MENUG.", 0, 1)
                                        + QStringList{"MENUIMP.0"};
        QTest::newRow("REGISTRAZIONE") << "REGISTRAZIONE" << indici("STATOREG.", 0, 2);
        QTest::newRow("Memorf") << "Memorf" << QStringList{"CAPTION", "SCHEDA"} + indici("LABSCHEDA.", 0, 3);
        QTest::newRow("ProgSW") << "ProgSW" << indici("S19.", 1, 10);
        QTest::newRow("ProgMappe") << "ProgMappe" << indici("MAPPA.", 1, 5);
        QTest::newRow("ReadMappe") << "ReadMappe" << indici("NOME.", 1, 5);
        const QStringList bottoni = indici("AGGIUNGI.", 0, 1) + indici("RIMUOVI.", 0, 1);
        QTest::newRow("CreaDiscoMappe")
            << "CreaDiscoMappe" << QStringList{"CAPTION"} + indici("LABCD.", 0, 2) + bottoni;
        QTest::newRow("RipriMappe") << "RipriMappe"
                                    << QStringList{"CAPTION"} + indici("LABSALVA.", 0, 2) + bottoni;
        QTest::newRow("CancelMappe") << "CancelMappe"
                                     << QStringList{"CAPTION"} + indici("LABCD.", 0, 1) + bottoni;
        const QStringList campiSW = indici("LABSW.", 0, 1);
        QTest::newRow("CreaDiscoSW") << "CreaDiscoSW"
                                     << QStringList{"CAPTION", "BOXCREADISCO", "BOXDESTINAZIONE"} + campiSW;
        QTest::newRow("RipriDiscoSW")
            << "RipriDiscoSW" << QStringList{"CAPTION", "BOXSORGENTE", "BOXRIPRIDISCO"} + campiSW;
        QTest::newRow("CancelSW") << "CancelSW" << QStringList{"CAPTION", "BOXCANCEL"} + campiSW;
        // The compare page names an entry no page row shows by its catalogue name.
        QStringList confronto = {
            "CAPTION",          "LABMAPPE", "NESSUNA",        "MODIFICATA", "SCEGLIMAPPA",
            "SCEGLIVOCE",       "DUE",      "SOLODIFFERENZE", "DIFFERENZE", "UGUALI",
            "BOXSALVA.CAPTION", "SALVA",    "COPIATO",        "NIENTE",     "SOLOARCHIVIO",
            "SALVATA",          "USCITA",   "GRUPPO.ALTRO",   "SOSTITUISCI"};
        for (const char *voce : {"CostanteGiri", "TpsTaratoMinimo", "TpsTaratoMassimo", "ValoreEmulazione",
                                 "GiriPompata", "PercentualePompata", "AsseTpsMappa", "AsseGiriMappa",
                                 "SogliaMagroMappa", "SogliaRiccoMappa", "GiriRTS", "TpsRTS", "PosizioneRTS"})
            confronto << QStringLiteral("VOCE.") + QLatin1String(voce);
        QTest::newRow("ConfrontoMappe")
            << "ConfrontoMappe"
            << confronto + indici("SCEGLI.", 0, 1) + indici("PRENDI.", 0, 1) + indici("SCALA.", 0, 4)
                   + indici("SCHEDA.", 0, 0) + indici("GRIGLIA.", 0, 2) + indici("COLONNA.", 0, 3)
                   + indici("COPIA.", 0, 2) + indici("MAPPA.", 1, 5) + indici("SALVA.", 1, 3);
        // The calibration pages look up their own section, the form's name.
        const QStringList giri = QStringList{"CAPTION.0"} + indici("SEGNALAZIONE.", 0, 2)
                                 + indici("LABPARAMETRO.", 0, 1) + indici("MISURA.", 0, 1);
        QTest::newRow("T_Giri") << "T_Giri" << giri + QStringList{"CAPTION.1"};
        QTest::newRow("T_Giri_Single") << "T_Giri_Single" << giri;
        const QStringList tps = QStringList{"CAPTION.0", "BOXTPS.CAPTION", "GRAFICO.ASSEX"}
                                + indici("LABTARTPS.", 0, 3) + indici("MSG_TPS.", 0, 2);
        QTest::newRow("T_TPS") << "T_TPS" << tps + QStringList{"CAPTION.1"};
        QTest::newRow("T_TPS_Single") << "T_TPS_Single" << tps;
        const QStringList lambda = QStringList{"CAPTION.0",       "CAPTION.1",     "BOXSONDA.CAPTION",
                                               "BOXDATI.CAPTION", "GRAFICO.ASSEX", "MSG_LAMBDA.0"}
                                   + indici("LABTARLAMBDA.", 0, 2) + indici("TENSSONDA.", 0, 1);
        QTest::newRow("T_Lambda") << "T_Lambda" << lambda + QStringList{"CAPTION.2"};
        QTest::newRow("T_Lambda_Single") << "T_Lambda_Single" << lambda;
        QTest::newRow("DEMO") << "DEMO" << QStringList{"CAPTION", "CONTAGIRI"} + indici("OPERATORE.", 0, 3);
    }

    void everyKeyOfAComputedFamilyHasText()
    {
        QFETCH(QString, sezione);
        QFETCH(QStringList, chiavi);
        for (const QString &nome : FileSpediti) {
            const FileIni ini = FileIni::daByte(byteDi(nome));
            for (const QString &chiave : chiavi)
                QVERIFY2(!ini.valore(sezione, chiave).isEmpty(),
                         qPrintable(nome + ": [" + sezione + "] " + chiave));
        }
    }

    void bothFilesAreWindows1252WithCrLfAndHoldTheSameKeys()
    {
        QList<QSet<QString>> insiemi;
        for (const QString &nome : FileSpediti) {
            const QByteArray byte = byteDi(nome);
            QVERIFY2(byte.startsWith(';'), qPrintable(nome + ": missing, empty or without its comment line"));
            QCOMPARE(byte.count("\r\n"), byte.count('\n'));
            QVERIFY(byte.endsWith("\r\n"));
            const FileIni ini = FileIni::daByte(byte);
            QCOMPARE(ini.codifica(), FileIni::Codifica::Windows1252);
            QSet<QString> insieme;
            for (const QString &sezione : ini.sezioni()) {
                for (const QString &chiave : ini.chiavi(sezione))
                    insieme.insert(sezione.toUpper() + u'/' + chiave.toUpper());
            }
            QVERIFY2(insieme.size() > 100, qPrintable(nome));
            insiemi.append(insieme);
        }
        QVERIFY2(insiemi[0] == insiemi[1],
                 qPrintable("only in ENGLISH: " + (insiemi[0] - insiemi[1]).values().join(", ")
                            + "; only in ITALIANO: " + (insiemi[1] - insiemi[0]).values().join(", ")));
    }
};

QTEST_GUILESS_MAIN(TestChiaviLingua)
#include "tst_chiavilingua.moc"
