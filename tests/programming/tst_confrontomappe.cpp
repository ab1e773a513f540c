// Maps looked into: one read from the simulated ECU decodes as the conversions of the
// catalogue give it by hand, two maps compare entry by entry, values of B copied into A make A
// show what B shows, and A is filed under a new name. The history of an ECU is kept beside
// the map archive, apart from it.

#include "base/Lingua.h"
#include "support/FileDiProva.h"
#include "support/ProgrammaSimulato.h"
#include "support/VistaMappeMuta.h"

#include "archives/StoricoEcu.h"
#include "calibration/TaraturaParametri.h"
#include "pages/ConfrontoMappe.h"
#include "programming/AlberoMappe.h"
#include "programming/DialogoMappe.h"
#include "programming/MappaArchiviata.h"
#include "programming/ui/TestiMappa.h"

#include <QTest>

using namespace kv;
using namespace kv::Par;

namespace {

MappaDecodificata decodifica(const QByteArray &immagine, ScalaLambdaMappa scala = {})
{
    return DecodificaMappa(immagine, Catalogo(), scala, {&DescrizioneParametri()});
}

QByteArray conByte(QByteArray immagine, quint32 indirizzo, const char *hex)
{
    const QByteArray b = QByteArray::fromHex(hex);
    return immagine.replace(int(indirizzo - 0xC100), b.size(), b);
}

} // namespace

class TstConfrontoMappe : public QObject, ProgrammaSimulato
{
    Q_OBJECT

    QString app() const { return cartella.filePath(QStringLiteral("app")); }

private slots:
    void init()
    {
        QVERIFY(QDir(app()).removeRecursively());
        QVERIFY(preparaCartella(app()));
        avvia(OpzioniManuali(), app());
    }
    void cleanup() { chiudi(); }

    void aMapReadDecodesAsThePagesShowIt()
    {
        // Raw bytes at the catalogue's EEPROM homes, and what a page shows for them: lambda
        // thresholds by rule A with ScalaLambda 0, as they stand with it set.
        struct Caso
        {
            int voce;
            quint32 dove;
            const char *byte, *regolaA, *tali;
        };
        const Caso casi[] = {
            {SogliaGiriEntrataMinimo, 0xC128, "044C", "1100", "1100"}, // I
            {PosizioneRTS + 3, 0xC226, "46", "70", "70"},              // I, one byte every two
            {SogliaTpsEntrataMinimo, 0xC118, "0050", "20", "20"},      // A: 80 * 255 / 1023 = 19.9
            {TpsRTS + 7, 0xC20E, "03FF", "255", "255"},                // A
            {SogliaLambdaRiccoMinimo, 0xC136, "00C8", "50", "200"},    // L
            {SogliaRiccoMappa + 39, 0xC2FE, "0190", "100", "400"},     // L: 99.7
            {FrequenzaControlloMinimo, 0xC148, "0062", "10", "10"},    // P: 1000 / (98 * 1.024)
            {PrimaFrequenzaNormale, 0xC14A, "0000", "-1", "-1"},       // P of a period 0
            {PercentualePompata + 3, 0xC1FD, "85", "-5", "-5"},        // S
            {PercentualePompata + 4, 0xC1FE, "80", "0", "0"},          // S
            {ValoreEmulazione, 0xC162, "85", "-5", "-5"},              // signed on its page
            {TpsAutoadattante, 0xC109, "07", "7", "7"},                // a list's second item
        };
        for (const Caso &c : casi)
            QVERIFY(ecu->scriviMemoria(c.dove, QByteArray::fromHex(c.byte)));
        QVERIFY(ecu->scriviMemoria(0x015B, QByteArray(1, '\x07'))); // ScalaLambda, in RAM only
        VistaMappeMuta vista;
        LetturaMappe lettura(p->linea, p->PercorsoApp, p->catalogo, vista);
        const ChiaveMappa chiave{"LPG", "Fiat", "Punto", "base"};
        lettura.Leggi(chiave, {});
        QVERIFY(attendi() && !lettura.inCorso());

        const MappaArchiviata m = CaricaMappaArchiviata(app(), chiave);
        QVERIFY(m.ok());
        QCOMPARE(m.mappa.immagine, ecu->leggiMemoria(0xC100, 512));
        QCOMPARE(m.scalaLambda, 255.0); // the row keeps what the ECU had
        for (const bool tenuta : {false, true}) {
            const MappaDecodificata d =
                decodifica(m.mappa.immagine, tenuta ? ScalaDa(m.scalaLambda, OrigineScala::Archivio)
                                                    : ScalaDa(std::nullopt, {}));
            QCOMPARE(d.voci.size(), size_t(171)); // every entry with a home in 0xC100..0xC2FF
            for (const Caso &c : casi)
                QVERIFY2(d.voce(c.voce)->testo == QLatin1String(tenuta ? c.tali : c.regolaA), c.byte);
            QCOMPARE(d.voce(TpsAutoadattante)->scelta, 1);
        }
        // Labels are the pages' own rows, or a grid cell's place.
        const MappaDecodificata d = decodifica(m.mappa.immagine);
        QCOMPARE(EtichettaVoce(p->lingua, d, *d.voce(SogliaGiriEntrataMinimo)),
                 "RPM threshold for entering idle [RPM]");
        QCOMPARE(EtichettaVoce(p->lingua, d, *d.voce(SogliaRiccoMappa + 39)),
                 "RPM zone 8, T.P.S. zone 5: rich threshold [units]");
        QCOMPARE(TestoMostrato(p->lingua, *d.voce(TpsAutoadattante)), testo("TPSAUTO", "TPSAUTO.1"));
        QVERIFY(!decodifica(m.mappa.immagine.chopped(1)).ok);
    }

    void differencesOfBCopiedIntoANewMap()
    {
        const QByteArray a = ecu->leggiMemoria(0xC100, 512);
        // Three values B shows otherwise, and a raw TPS step that shows the same.
        const QByteArray b = conByte(
            conByte(conByte(conByte(a, 0xC128, "0514"), 0xC262, "0300"), 0xC22A, "A0"), 0xC118, "0051");
        const Confronto c = ConfrontaMappe(decodifica(a), decodifica(b));
        QCOMPARE(c.parametriDiversi(),
                 (std::vector<int>{SogliaGiriEntrataMinimo, SogliaRiccoMappa, PosizioneRTS + 5}));
        QCOMPARE(c.riga(SogliaGiriEntrataMinimo)->differenza, QStringLiteral("+200"));
        QCOMPARE(c.parametriDiversi(GriglieMappa()[1].parametri()), std::vector<int>{PosizioneRTS + 5});

        const QByteArray copiata = CopiaValori(a, {}, b, {}, c.parametriDiversi(), Catalogo());
        QCOMPARE(ConfrontaMappe(decodifica(copiata), decodifica(b)).diverse, 0);
        QCOMPARE(copiata, conByte(b, 0xC118, "0050")); // what showed the same is left as it was
        // A lambda threshold of B under another ScalaLambda: A shows the same number.
        const ScalaLambdaMappa tali = ScalaDa(255, OrigineScala::Ecu);
        const QByteArray lambda =
            CopiaValori(a, {}, conByte(a, 0xC136, "00C8"), tali, {SogliaLambdaRiccoMinimo}, Catalogo());
        QCOMPARE(lambda.mid(0x36, 2).toHex(), QByteArray("0322")); // 200 * 1023 / 255
        QCOMPARE(decodifica(lambda).voce(SogliaLambdaRiccoMinimo)->testo, QStringLiteral("200"));

        const ChiaveMappa nuova{"LPG", "Fiat", "Punto", "tuned"};
        EsitoSalvataggio e = SalvaImmagineMappa(app(), nuova, copiata, QStringLiteral("from B"), 255);
        QVERIFY(e.ok() && e.archivio.ok());
        const MappaArchiviata m = CaricaMappaArchiviata(app(), nuova);
        QVERIFY(m.ok());
        QCOMPARE(m.mappa.immagine, copiata);
        QCOMPARE(m.scalaLambda, 255.0);
        QCOMPARE(m.nota, QStringLiteral("from B"));
        // A name the map tree refuses writes nothing.
        const auto prima = istantanea(app());
        e = SalvaImmagineMappa(app(), {"LPG", "Fiat", "Punto", "../x"}, copiata, {}, std::nullopt);
        QCOMPARE(e.errore, EsitoSalvataggio::Errore::Nome);
        QCOMPARE(istantanea(app()), prima);
    }

    void anArchiveOfAnOlderVersionOpensAndGainsTheField()
    {
        const QString mappe = app() + QStringLiteral("/MAPPATURE");
        {
            Archivio vecchio;
            QVERIFY(vecchio.Apri(mappe, QStringLiteral("ARCHMAPPE.MDB"), SchemaMappe()));
            RigaArchivio r = vecchio.NuovaRiga();
            for (auto [campo, valore] : {std::pair{u"TipoImpianto", "LPG"},
                                         {u"Marca", "Fiat"},
                                         {u"Modello", "Uno"},
                                         {u"File", "old"},
                                         {u"NOTE", "kept"}})
                r.Imposta(campo, QString::fromLatin1(valore));
            QVERIFY(vecchio.Aggiungi(r));
        }
        const AlberoMappe albero = AlberoMappe::Carica(app());
        QCOMPARE(albero.nodo(albero.trova({"LPG", "Fiat", "Uno", "old"})).nota, QStringLiteral("kept"));
        QVERIFY(RegistraMappa(app(), {"LPG", "Fiat", "Uno", "old"}, QStringLiteral("kept"), 9).ok());
        Archivio db;
        QVERIFY(ApriArchivioMappe(mappe, QStringLiteral("ARCHMAPPE.MDB"), db));
        QCOMPARE(db.Cerca(u"PER_NOME", {"LPG", "Fiat", "Uno", "old"})->Testo(u"ScalaLambda"),
                 QStringLiteral("255"));
    }

    void historyKeepsEachEcusEntriesApart()
    {
        const IdentitaEcu id{"KV2SIM0001    ", "LPG-SEQ-01", "R1.0"};
        const QDateTime t(QDate(2024, 3, 18), QTime(10, 0));
        const QByteArray prima = ecu->leggiMemoria(0xC100, 512);
        const QByteArray dopo = conByte(prima, 0xC128, "0514");
        QVERIFY(AggiungiStorico(app(), {id, t, QStringLiteral("MP_Minimo"), 7, prima}).ok());
        QVERIFY(AggiungiStorico(app(), {id, t, QStringLiteral("MAPPA"), std::nullopt, dopo}).ok()); // same ms
        QVERIFY(AggiungiStorico(app(), {{"KV2SIM0002", "LPG-SEQ-01", "R1.0"}, t, {}, {}, dopo}).ok());
        QCOMPARE(AggiungiStorico(app(), {id, t, {}, {}, prima.chopped(1)}).errore, ErroreArchivio::Uso);

        const QList<VoceStorico> voci = ElencaStorico(app(), {"KV2SIM0001", "LPG-SEQ-01 ", "R1.0"});
        QCOMPARE(voci.size(), 2); // newest first
        QCOMPARE(voci[0].quando, t.addMSecs(1));
        QCOMPARE(voci[0].immagine, dopo);
        QCOMPARE(voci[1].evento, QStringLiteral("MP_Minimo"));
        QCOMPARE(voci[1].scalaLambda, 255.0);
        QCOMPARE(LeggiStorico(app(), id, t)->immagine, prima);
        // The map tree, and so the exchange and deletion pages, never see an entry.
        QCOMPARE(AlberoMappe::Carica(app()).conta(), 1);
    }
};

QTEST_MAIN(TstConfrontoMappe)
#include "tst_confrontomappe.moc"
