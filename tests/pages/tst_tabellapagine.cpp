// What every description of the page table must respect, whatever its rows: the page's
// values come back before they are written, its state group is its own, and the language
// files hold every caption its rows and lists ask for. What the rows bring back is for the
// read handler's tests against the simulated ECU.

#include "base/FileIni.h"
#include "link/TabellaStati.h"
#include "pages/DescrizioniPagine.h"
#include "variables/Catalogo.h"

#include <QFile>
#include <QSet>
#include <QTest>

using namespace kv;

class TstTabellaPagine : public QObject
{
    Q_OBJECT

    Catalogo c;

    static QByteArray dove(const DescrizionePagina &d, int parametro)
    {
        return d.sezione.toLatin1() + "/" + QByteArray::number(parametro);
    }

private slots:
    void everyTuningPageOnceWithAGroupOfItsOwn()
    {
        QSet<IdPagina> pagine;
        QMap<int, int> gruppi; // first state -> pages that own it
        for (const DescrizionePagina &d : TabellaPagine()) {
            QVERIFY2(!pagine.contains(d.id), qPrintable(d.sezione));
            pagine.insert(d.id);
            QCOMPARE(TabellaStati::primoDelGruppo(d.primoStato), d.primoStato);
            ++gruppi[d.primoStato];
        }
        for (const DescrizionePagina &d : TabellaPagine())
            QVERIFY2(gruppi[d.primoStato] == 1 || d.gruppoCondiviso, qPrintable(d.sezione));
        // Every tuning entry of the menu but the TPS page, which comes with calibration.
        for (int i = int(IdPagina::MP_Lavoro); i < int(IdPagina::MP_TPS); ++i)
            QVERIFY(pagine.contains(IdPagina(i)));
    }

    void everyRowReadsAHomeItsEntryHas()
    {
        for (const DescrizionePagina &d : TabellaPagine()) {
            for (const RigaLettura &riga : d.piano) {
                QVERIFY2(IndirizzoRiga(c, riga) >= 0, dove(d, riga.parametro));
                // EEPROM only where there is no RAM copy: the RAM holds what the ECU runs on.
                QVERIFY2(riga.eeprom == (c.Parametri[static_cast<size_t>(riga.parametro)].IndirizzoRAM < 0),
                         dove(d, riga.parametro));
            }
        }
    }

    void rowOrderWithinAPlan()
    {
        for (const DescrizionePagina &d : TabellaPagine()) {
            bool scala = false;
            for (size_t i = 0; i < d.piano.size(); ++i) {
                const RigaLettura &riga = d.piano[i];
                scala = scala || riga.tipo == TipoRiga::ScalaLambda;
                // The flag decides how every lambda threshold after it is scaled.
                for (int v : VociRiga(riga))
                    if (c.Parametri[static_cast<size_t>(v)].Conv == Conversione::L)
                        QVERIFY2(scala, dove(d, v));
                // The low TPS point decides TPS presence once everything else is in.
                if (riga.tipo == TipoRiga::TpsMinimo)
                    QCOMPARE(i + 1, d.piano.size());
            }
        }
    }

    void whatAPageWritesItHasReadAndWhatItShowsItWrites()
    {
        for (const DescrizionePagina &d : TabellaPagine()) {
            QSet<int> letti;
            for (const RigaLettura &riga : d.piano)
                if (riga.tipo == TipoRiga::Valore || riga.tipo == TipoRiga::Blocco
                    || riga.tipo == TipoRiga::BloccoMappa)
                    for (int v : VociRiga(riga))
                        letti.insert(v);
            // A value never read would go out as -1; one the page works out goes out as worked out.
            for (const Derivato &x : d.derivati)
                letti.insert(x.bersaglio);
            for (int v : d.voci)
                QVERIFY2(letti.contains(v), dove(d, v));
            const QSet<int> scritti(d.voci.begin(), d.voci.end());
            QCOMPARE(scritti.size(), qsizetype(d.voci.size()));
            for (const BoxParametri &b : d.box)
                for (const RigaPagina &r : b.righe)
                    QVERIFY2(scritti.contains(r.parametro), dove(d, r.parametro));
            for (int indice : d.righeTps) {
                bool trovata = false;
                for (const BoxParametri &b : d.box)
                    for (const RigaPagina &r : b.righe)
                        trovata = trovata || r.indice == indice;
                QVERIFY2(trovata, dove(d, indice));
            }
        }
    }

    void bothLanguagesCaptionEveryRowAndList()
    {
        for (const char *nome : {"ENGLISH.LNG", "ITALIANO.LNG"}) {
            QFile f(QStringLiteral(KV_SOURCE_DIR "/lang/") + QLatin1String(nome));
            QVERIFY(f.open(QIODevice::ReadOnly));
            const FileIni ini = FileIni::daByte(f.readAll());
            QStringList mancanti;
            const auto serve = [&](const QString &sezione, const QString &chiave) {
                if (ini.valore(sezione, chiave).trimmed().isEmpty())
                    mancanti << sezione + "/" + chiave;
            };
            for (const DescrizionePagina &d : TabellaPagine()) {
                serve(d.sezione, "CAPTION");
                for (const BoxParametri &b : d.box) {
                    serve(d.sezione, b.nome + ".CAPTION");
                    for (const RigaPagina &r : b.righe) {
                        serve(d.sezione, "LABPARAMETRO." + QString::number(r.indice));
                        // A list of one item offers no choice.
                        for (int n : {0, 1})
                            if (!r.lista.isEmpty())
                                serve(r.lista, r.lista + "." + QString::number(n));
                    }
                }
            }
            QVERIFY2(mancanti.isEmpty(), qPrintable(QString(nome) + ": " + mancanti.join(", ")));
        }
    }
};

QTEST_APPLESS_MAIN(TstTabellaPagine)
#include "tst_tabellapagine.moc"
