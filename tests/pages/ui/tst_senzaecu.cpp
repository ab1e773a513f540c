// A map edited with no ECU against the same edit on the simulated ECU: written back, the two
// leave the same memory. The first store of a run leaves one history entry, the memory as it
// was; and the ECU now, taken as a side of the compare page, is the simulator's memory.

#include "support/ProgrammaSimulato.h"
#include "support/VistaMappeMuta.h"

#include "pages/ui/CampoDato.h"
#include "pages/ui/MP_Minimo.h"
#include "programming/DialogoMappe.h"
#include "programming/MappaSenzaEcu.h"
#include "programming/ui/ConfrontoMappe.h"

#include <QPushButton>
#include <QTest>

using namespace kv;

namespace {

bool libera(SessioneLinea &linea)
{
    return QTest::qWaitFor([&] { return linea.motore().StatoDialogo() == -1; }, 3000);
}

// The idle page on a line: the RPM to enter idle and its lean lambda threshold (rule A)
// typed, applied, and stored on leaving.
void modifica(const ContestoPagina &contesto)
{
    MP_Minimo pagina(contesto);
    pagina.impostaDomanda([](const QString &, int, const QString &) { return 6; });
    pagina.carica();
    QVERIFY(libera(contesto.linea));
    for (auto [campo, valore] : {std::pair{0, "850"}, {4, "80"}}) {
        pagina.DatoMinimo(campo)->setFocus();
        pagina.DatoMinimo(campo)->setText(QString::fromLatin1(valore));
        pagina.DatoMinimo(campo + 1)->setFocus();
    }
    pagina.Applica();
    QVERIFY(libera(contesto.linea));
    pagina.Esci();
    QVERIFY(libera(contesto.linea));
}

} // namespace

class TstSenzaEcu : public QObject, ProgrammaSimulato
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(preparaCartella()); }
    void cleanup() { chiudi(); }

    void anEditWithNoEcuWritesWhatTheSameEditOnTheEcuDoes()
    {
        avvia();
        p->storico.attiva(true);
        const IdentitaEcu id{QStringLiteral("KV2SIM0001"), QStringLiteral("LPG-SEQ-01"),
                             QStringLiteral("R1.0")};
        StatoEcu &s = p->linea.ecuDiProva();
        std::tie(s.InfCodice, s.InfDatoA, s.InfDatoB) = std::tie(id.codice, id.datoA, id.datoB);
        vociMinimo();
        const QByteArray prima = ecu->leggiMemoria(0xC100, 512);

        modifica(ContestoDi(*p));
        const QByteArray sullEcu = ecu->leggiMemoria(0xC100, 512);
        QCOMPARE(sullEcu.mid(0x28, 2).toHex(), QByteArray("0352")); // 850 at SogliaGiriEntrataMinimo
        QList<VoceStorico> storico = ElencaStorico(cartella.path(), id);
        QCOMPARE(storico.size(), 1);
        QCOMPARE(storico[0].immagine, prima);
        QCOMPARE(storico[0].evento, QStringLiteral("MP_Minimo"));

        // The same edit on the archived map as it was, with no ECU, saved under a new name.
        QVERIFY(ecu->scriviMemoria(0xC100, prima));
        const ChiaveMappa base{"LPG", "Fiat", "Punto", "base"}, nuova{"LPG", "Fiat", "Punto", "desk"};
        QVERIFY(SalvaImmagineMappa(cartella.path(), base, prima, {}, 0).ok());
        MappaSenzaEcu mappa(CaricaMappaArchiviata(cartella.path(), base));
        modifica({mappa.linea(), mappa.catalogo(), p->lingua, false});
        QVERIFY(mappa.modificata());
        QCOMPARE(ecu->leggiMemoria(0xC100, 512), prima); // no ECU was behind the page
        QVERIFY(mappa.salva(cartella.path(), nuova, {}).ok());

        VistaMappeMuta vista;
        ScritturaMappe scrittura(p->linea, p->PercorsoApp, vista);
        scrittura.ProgrammaMappa(nuova, false);
        QVERIFY(libera(p->linea));
        QCOMPARE(ecu->leggiMemoria(0xC100, 512), sullEcu);
        QCOMPARE(ElencaStorico(cartella.path(), id).size(), 1); // one read a run and ECU

        ConfrontoMappe confronto(cartella.path(), p->catalogo, p->lingua);
        confronto.impostaEcu(p->linea);
        QVERIFY(confronto.leggiEcu(ConfrontoMappe::A));
        QTRY_VERIFY(confronto.sorgente(ConfrontoMappe::A).valida());
        QCOMPARE(confronto.sorgente(ConfrontoMappe::A).immagine, sullEcu);
        QCOMPARE(confronto.sorgente(ConfrontoMappe::A).scala.origine, OrigineScala::Ecu);
    }
};

QTEST_MAIN(TstSenzaEcu)
#include "tst_senzaecu.moc"
