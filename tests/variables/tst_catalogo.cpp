#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QSet>
#include <QTest>

#include <cmath>

namespace {

struct Serie
{
    int base;
    int elementi;
};

// The array entries of the catalogue.
const Serie SerieCatalogo[] = {
    {Par::GiriPompata, Par::ElementiGiriPompata},
    {Par::PercentualePompata, Par::ElementiPercentualePompata},
    {Par::AsseTpsMappa, Par::ElementiAsseTps},
    {Par::AsseGiriMappa, Par::ElementiAsseGiri},
    {Par::SogliaMagroMappa, Par::CelleMappa},
    {Par::SogliaRiccoMappa, Par::CelleMappa},
    {Par::GiriRTS, Par::ElementiGiriRTS},
    {Par::TpsRTS, Par::ElementiTpsRTS},
    {Par::PosizioneRTS, Par::ElementiPosizioneRTS},
};

bool dentro(qint32 indirizzo, int dimensione, qint32 da, qint32 a)
{
    return indirizzo >= da && indirizzo + dimensione - 1 <= a;
}

} // namespace

class TestCatalogo : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_cat.InizializzaParametri(); }

    void numeroEDimensioni();
    void indirizziNelleAree();
    void nessunaSovrapposizione();
    void serieConsecutive();
    void mappaAlternaMagroERicco();
    void blocchiLettiDallePagine();
    void maschere();
    void limitiDiRunTime();
    void ogniLimiteDiRunTimeHaUnaSorgente();
    void inizializzaRipristina();

    void conversioneAnalogicaDaValoriInteri();
    void conversioneAnalogicaSeguelaMaschera();
    void conversioneAnalogicaStabile();
    void conversioneLambda();
    void conversioniPeriodoSegnoFlag();
    void suggerimento();
    void tpsPresente();

    void limitiDellaTabella_data();
    void limitiDellaTabella();
    void limitiPerPagina();
    void tpsTaratoMinimoSoloUscita();
    void catenaPompata();
    void catenaGiriRTS();
    void coppieDellaMappa();
    void paginaLavoro();
    void sorgenteFuoriTabella();

private:
    Catalogo m_cat;
};

void TestCatalogo::numeroEDimensioni()
{
    QCOMPARE(int(m_cat.Parametri.size()), 174);
    QCOMPARE(int(m_cat.Valori.size()), 174);
    for (int i = 0; i < Par::Numero; ++i) {
        const qint16 d = m_cat.Parametri[i].Dimensione;
        QVERIFY2(d == 1 || d == 2, qPrintable(QString::number(i)));
    }
}

void TestCatalogo::indirizziNelleAree()
{
    for (int i = 0; i < Par::Numero; ++i) {
        const Parametro &p = m_cat.Parametri[i];
        QVERIFY2(p.IndirizzoRAM == -1 || dentro(p.IndirizzoRAM, p.Dimensione, 0x0090, 0x01FD),
                 qPrintable(QString::number(i)));
        QVERIFY2(p.IndirizzoEE == -1 || dentro(p.IndirizzoEE, p.Dimensione, 0xC104, 0xC2FF),
                 qPrintable(QString::number(i)));
    }
    // Only in the tool, only in RAM, only in EEPROM.
    QCOMPARE(m_cat.Parametri[Par::PercentualeEmulazione].IndirizzoRAM, -1);
    QCOMPARE(m_cat.Parametri[Par::PercentualeEmulazione].IndirizzoEE, -1);
    QCOMPARE(m_cat.Parametri[Par::ScalaLambda].IndirizzoEE, -1);
    QCOMPARE(m_cat.Parametri[Par::BaseEmulazione].IndirizzoEE, -1);
    QCOMPARE(m_cat.Parametri[Par::TpsTaratoMinimo].IndirizzoRAM, -1);
    QCOMPARE(m_cat.Parametri[Par::TpsTaratoMassimo].IndirizzoRAM, -1);
}

void TestCatalogo::nessunaSovrapposizione()
{
    QHash<qint32, int> ram;
    QHash<qint32, int> ee;
    for (int i = 0; i < Par::Numero; ++i) {
        const Parametro &p = m_cat.Parametri[i];
        for (int b = 0; b < p.Dimensione; ++b) {
            if (p.IndirizzoRAM != -1) {
                QVERIFY2(!ram.contains(p.IndirizzoRAM + b),
                         qPrintable(QStringLiteral("RAM %1 e %2").arg(i).arg(ram.value(p.IndirizzoRAM + b))));
                ram.insert(p.IndirizzoRAM + b, i);
            }
            if (p.IndirizzoEE != -1) {
                QVERIFY2(!ee.contains(p.IndirizzoEE + b),
                         qPrintable(QStringLiteral("EE %1 e %2").arg(i).arg(ee.value(p.IndirizzoEE + b))));
                ee.insert(p.IndirizzoEE + b, i);
            }
        }
    }
}

void TestCatalogo::serieConsecutive()
{
    int elementiInSerie = 0;
    for (const Serie &s : SerieCatalogo) {
        elementiInSerie += s.elementi;
        const Parametro &primo = m_cat.Parametri[s.base];
        const Parametro &secondo = m_cat.Parametri[s.base + 1];
        const qint32 passoRam = secondo.IndirizzoRAM - primo.IndirizzoRAM;
        const qint32 passoEE = secondo.IndirizzoEE - primo.IndirizzoEE;
        QVERIFY(primo.IndirizzoRAM == -1 || passoRam >= primo.Dimensione);
        QVERIFY(passoEE >= primo.Dimensione);
        for (int i = 1; i < s.elementi; ++i) {
            const Parametro &p = m_cat.Parametri[s.base + i];
            const QByteArray dove = QByteArray::number(s.base + i);
            QVERIFY2(p.Dimensione == primo.Dimensione && p.Conv == primo.Conv, dove);
            if (primo.IndirizzoRAM == -1)
                QVERIFY2(p.IndirizzoRAM == -1, dove);
            else
                QVERIFY2(p.IndirizzoRAM == primo.IndirizzoRAM + i * passoRam, dove);
            QVERIFY2(p.IndirizzoEE == primo.IndirizzoEE + i * passoEE, dove);
        }
    }
    // Every index up to the last array is some entry: 0..48 single, then the arrays and the
    // singles between them.
    QVERIFY(elementiInSerie < Par::Numero);
    QCOMPARE(Par::PosizioneRTS + Par::ElementiPosizioneRTS, int(Par::Numero));
    QCOMPARE(Par::TpsRTS + Par::ElementiTpsRTS, int(Par::PosizioneRTS));
    QCOMPARE(Par::GiriRTS + Par::ElementiGiriRTS, int(Par::TpsRTS));
    QCOMPARE(Par::SogliaRiccoMappa + Par::CelleMappa, int(Par::IncrementoTps));
    QCOMPARE(Par::SogliaMagroMappa + Par::CelleMappa, int(Par::SogliaRiccoMappa));
    QCOMPARE(Par::AsseGiriMappa + Par::ElementiAsseGiri, int(Par::SogliaMagroMappa));
    QCOMPARE(Par::AsseTpsMappa + Par::ElementiAsseTps, int(Par::AsseGiriMappa));
    QCOMPARE(Par::PercentualePompata + Par::ElementiPercentualePompata,
             int(Par::FrequenzaControlloMinimo));
    QCOMPARE(Par::GiriPompata + Par::ElementiGiriPompata, int(Par::SogliaTpsEntrataMinimo));
}

void TestCatalogo::mappaAlternaMagroERicco()
{
    for (int i = 0; i < Par::CelleMappa; ++i) {
        const Parametro &magro = m_cat.Parametri[Par::SogliaMagroMappa + i];
        const Parametro &ricco = m_cat.Parametri[Par::SogliaRiccoMappa + i];
        QCOMPARE(ricco.IndirizzoRAM, magro.IndirizzoRAM + 2);
        QCOMPARE(ricco.IndirizzoEE, magro.IndirizzoEE + 2);
        if (i > 0) {
            QCOMPARE(magro.IndirizzoRAM, m_cat.Parametri[Par::SogliaMagroMappa + i - 1].IndirizzoRAM + 4);
            QCOMPARE(magro.IndirizzoEE, m_cat.Parametri[Par::SogliaMagroMappa + i - 1].IndirizzoEE + 4);
        }
    }
    // The 40 cells fill the map areas exactly.
    QCOMPARE(m_cat.Parametri[Par::SogliaMagroMappa].IndirizzoRAM, 0x015E);
    QCOMPARE(m_cat.Parametri[Par::SogliaRiccoMappa + 39].IndirizzoRAM + 1, 0x01FD);
    QCOMPARE(m_cat.Parametri[Par::SogliaMagroMappa].IndirizzoEE, 0xC260);
    QCOMPARE(m_cat.Parametri[Par::SogliaRiccoMappa + 39].IndirizzoEE + 1, 0xC2FF);
}

void TestCatalogo::blocchiLettiDallePagine()
{
    // The pages read these arrays in one request each (address, byte count); the elements
    // written one by one must be exactly the bytes such a request returns.
    struct Blocco
    {
        int base;
        int elementi;
        bool eeprom;
        qint32 indirizzo;
        int byte;
    };
    const Blocco blocchi[] = {
        {Par::AsseTpsMappa, Par::ElementiAsseTps, false, 0x0112, 8},
        {Par::AsseGiriMappa, Par::ElementiAsseGiri, false, 0x011A, 14},
        {Par::GiriRTS, Par::ElementiGiriRTS, false, 0x0137, 14},
        {Par::TpsRTS, Par::ElementiTpsRTS, true, 0xC200, 16},
    };
    for (const Blocco &b : blocchi) {
        int somma = 0;
        for (int i = 0; i < b.elementi; ++i) {
            const Parametro &p = m_cat.Parametri[b.base + i];
            QCOMPARE(b.eeprom ? p.IndirizzoEE : p.IndirizzoRAM, b.indirizzo + somma);
            somma += p.Dimensione;
        }
        QCOMPARE(somma, b.byte);
    }
    // Four map requests of 40 bytes from 0x015E: ten cells each, lean word then rich word.
    for (int i = 0; i < Par::CelleMappa; ++i)
        QCOMPARE(m_cat.Parametri[Par::SogliaMagroMappa + i].IndirizzoRAM,
                 0x015E + 40 * (i / 10) + 4 * (i % 10));

    // The permanent pump grid fills 0xC1F0..0xC1FE: four words, a gap, five bytes.
    QCOMPARE(m_cat.Parametri[Par::GiriPompata].IndirizzoEE, 0xC1F0);
    const int ultima = Par::PercentualePompata + Par::ElementiPercentualePompata - 1;
    QCOMPARE(m_cat.Parametri[ultima].IndirizzoEE, 0xC1FE);
}

void TestCatalogo::maschere()
{
    for (int i = 0; i < Par::Numero; ++i) {
        const ValoreParametro &v = m_cat.Valori[i];
        QCOMPARE(v.Formato, i == Par::SogliaGiriUscitaPC ? QString() : QStringLiteral("#0"));
        QCOMPARE(v.Letto, -1.0);
        QCOMPARE(v.Corrente, -1.0);
        QCOMPARE(v.Memorizzato, -1.0);
    }
}

void TestCatalogo::limitiDiRunTime()
{
    QSet<int> minAttesi{Par::SogliaGiriUscitaMinimo, Par::SogliaGiriEntrataCutOff,
                        Par::SogliaGiriUscitaCutOff, Par::SogliaGiriEntrataPC,
                        Par::SogliaTpsUscitaMinimo, Par::SogliaTpsUscitaCutOff,
                        Par::SogliaLambdaRiccoMinimo, Par::SogliaLambdaRiccoPC,
                        Par::SogliaLambdaRiccoNormale};
    QSet<int> maxAttesi{Par::SogliaGiriEntrataMinimo, Par::SogliaGiriUscitaMinimo,
                        Par::SogliaGiriUscitaCutOff, Par::SogliaGiriUscitaPC,
                        Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo,
                        Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff,
                        Par::SogliaLambdaMagroMinimo, Par::SogliaLambdaMagroPC,
                        Par::SogliaLambdaMagroNormale};
    for (int i = 0; i < Par::ElementiGiriPompata; ++i) {
        minAttesi.insert(Par::GiriPompata + i);
        maxAttesi.insert(Par::GiriPompata + i);
    }
    for (int i = 0; i < Par::CelleMappa; ++i) {
        maxAttesi.insert(Par::SogliaMagroMappa + i);
        minAttesi.insert(Par::SogliaRiccoMappa + i);
    }
    for (int i = 1; i < Par::ElementiGiriRTS; ++i)
        minAttesi.insert(Par::GiriRTS + i);
    for (int i = 0; i + 1 < Par::ElementiGiriRTS; ++i)
        maxAttesi.insert(Par::GiriRTS + i);

    for (int i = 0; i < Par::Numero; ++i) {
        const Parametro &p = m_cat.Parametri[i];
        const QByteArray dove = QByteArray::number(i);
        QVERIFY2((p.Min == -1) == minAttesi.contains(i), dove);
        QVERIFY2((p.Max == -1) == maxAttesi.contains(i), dove);
        if (p.Min != -1 && p.Max != -1)
            QVERIFY2(p.Min < p.Max, dove);
    }
    QCOMPARE(m_cat.Parametri[Par::GiriRTS].Min, 400.0);
    QCOMPARE(m_cat.Parametri[Par::GiriRTS + 6].Max, 10000.0);
}

void TestCatalogo::ogniLimiteDiRunTimeHaUnaSorgente()
{
    // A limit left at -1 by the table must be filled by some row, or its field can never
    // pass the check.
    QSet<QPair<int, int>> coperti;
    for (const LimiteIncrociato &r : TabellaLimitiIncrociati()) {
        QVERIFY(Catalogo::indiceValido(r.bersaglio));
        QVERIFY(Catalogo::indiceValido(r.sorgente));
        coperti.insert({r.bersaglio, int(r.lato)});
    }
    for (int i = 0; i < Par::Numero; ++i) {
        if (m_cat.Parametri[i].Min == -1)
            QVERIFY2(coperti.contains({i, int(Lato::Min)}), QByteArray::number(i));
        if (m_cat.Parametri[i].Max == -1)
            QVERIFY2(coperti.contains({i, int(Lato::Max)}), QByteArray::number(i));
    }
}

void TestCatalogo::inizializzaRipristina()
{
    m_cat.Parametri[Par::SogliaGiriUscitaMinimo].Min = 900;
    m_cat.registraLettura(Par::TipoPC, 2);
    m_cat.Valori[Par::TipoPC].Formato = QStringLiteral("0.0");
    m_cat.InizializzaParametri();
    QCOMPARE(m_cat.Parametri[Par::SogliaGiriUscitaMinimo].Min, -1.0);
    QCOMPARE(m_cat.Valori[Par::TipoPC].Letto, -1.0);
    QCOMPARE(m_cat.Valori[Par::TipoPC].Formato, QStringLiteral("#0"));

    m_cat.registraLettura(Par::TipoPC, 2);
    QCOMPARE(m_cat.Valori[Par::TipoPC].Corrente, 2.0);
    QCOMPARE(m_cat.Valori[Par::TipoPC].Memorizzato, 2.0);
    m_cat.azzeraValori(Par::TipoPC);
    QCOMPARE(m_cat.Valori[Par::TipoPC].Letto, -1.0);
    m_cat.registraLettura(-1, 5); // ignored, not a crash
    m_cat.azzeraValori(Par::Numero);
}

void TestCatalogo::conversioneAnalogicaDaValoriInteri()
{
    for (int grezzo = 0; grezzo <= 1023; ++grezzo) {
        const double mostrato = m_cat.daGrezzo(Par::SogliaTpsEntrataMinimo, grezzo);
        QCOMPARE(mostrato, std::floor(Scala1023(grezzo) + 0.5));
        QVERIFY(mostrato >= 0 && mostrato <= 255);
    }
    QCOMPARE(m_cat.daGrezzo(Par::TpsTaratoMassimo, 0x03FF), 255.0);
}

void TestCatalogo::conversioneAnalogicaSeguelaMaschera()
{
    m_cat.Valori[Par::IncrementoTps].Formato = QStringLiteral("0.0");
    QCOMPARE(m_cat.daGrezzo(Par::IncrementoTps, 2), 0.5);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaTpsEntrataPC, 2), 0.0);
}

void TestCatalogo::conversioneAnalogicaStabile()
{
    // What is read, written back and read again shows the same number.
    const double mezzoPasso = Scala255(0.5);
    for (int grezzo = 0; grezzo <= 1023; ++grezzo) {
        const double mostrato = m_cat.daGrezzo(Par::AsseTpsMappa, grezzo);
        const double riscritto = m_cat.aGrezzo(Par::AsseTpsMappa, mostrato);
        QVERIFY(std::fabs(riscritto - grezzo) <= mezzoPasso + 1e-9);
        const double inviato = NumeroBE(ByteBE(riscritto, 2));
        QCOMPARE(m_cat.daGrezzo(Par::AsseTpsMappa, inviato), mostrato);
    }
    QCOMPARE(m_cat.aGrezzo(Par::SogliaTpsEntrataPC, 300), 1023.0);
    QCOMPARE(m_cat.aGrezzo(Par::SogliaTpsEntrataPC, -5), 0.0);
    QCOMPARE(m_cat.aGrezzo(Par::SogliaTpsEntrataPC, 255), 1023.0);
}

void TestCatalogo::conversioneLambda()
{
    // Only a flag read as 0 asks for scaling; not read yet counts as ready to use.
    QCOMPARE(m_cat.Valori[Par::ScalaLambda].Letto, -1.0);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaLambdaMagroPC, 200), 200.0);

    m_cat.Valori[Par::ScalaLambda].Letto = m_cat.daGrezzo(Par::ScalaLambda, 1);
    QCOMPARE(m_cat.Valori[Par::ScalaLambda].Letto, 255.0);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaLambdaRiccoMinimo, 200), 200.0);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaMagroMappa + 7, 200), 200.0);
    QCOMPARE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 300), 300.0); // no clamp

    m_cat.Valori[Par::ScalaLambda].Letto = m_cat.daGrezzo(Par::ScalaLambda, 0);
    QCOMPARE(m_cat.Valori[Par::ScalaLambda].Letto, 0.0);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaLambdaRiccoMinimo, 200), 50.0);
    QCOMPARE(m_cat.daGrezzo(Par::SogliaRiccoMappa + 39, 200), 50.0);
    QCOMPARE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 300), 1023.0);
    QCOMPARE(m_cat.aGrezzo(Par::SogliaLambdaRiccoMinimo, 255), 1023.0);
}

void TestCatalogo::conversioniPeriodoSegnoFlag()
{
    const double frequenza = m_cat.daGrezzo(Par::PrimaFrequenzaNormale, 48);
    QCOMPARE(frequenza, FrequenzaPeriodo(48)); // fraction kept
    QVERIFY(frequenza != std::floor(frequenza));
    QCOMPARE(m_cat.daGrezzo(Par::FrequenzaControlloMinimo, 0), -1.0);
    QCOMPARE(m_cat.aGrezzo(Par::FrequenzaControlloMinimo, 0), -1.0);
    QVERIFY(m_cat.aGrezzo(Par::SecondaFrequenzaNormale, 100) < 10); // no clamp, no rounding
    QVERIFY(std::fabs(m_cat.aGrezzo(Par::PrimaFrequenzaNormale, frequenza) - 48) < 1e-9);

    QCOMPARE(m_cat.daGrezzo(Par::PercentualePompata + 2, 0xB2), -50.0);
    QCOMPARE(m_cat.daGrezzo(Par::PercentualePompata, 0x80), 0.0);
    QCOMPARE(m_cat.aGrezzo(Par::PercentualePompata + 4, -50), double(0xB2));
    QCOMPARE(m_cat.aGrezzo(Par::PercentualePompata + 4, 50), double(0x32));

    QCOMPARE(m_cat.daGrezzo(Par::ScalaLambda, 7), 255.0);
    QCOMPARE(m_cat.daGrezzo(Par::CostanteGiri, 65535), 65535.0);
    QCOMPARE(m_cat.aGrezzo(Par::CostanteGiri, 1234), 1234.0);
    QCOMPARE(m_cat.daGrezzo(-1, 7), 7.0);
    QCOMPARE(m_cat.aGrezzo(Par::Numero, 7), 7.0);
}

void TestCatalogo::suggerimento()
{
    QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaTpsEntrataPC), QStringLiteral("0 - 255"));
    QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaGiriUscitaMinimo), QStringLiteral("-1 - -1"));
    m_cat.Parametri[Par::SogliaTpsEntrataPC].Min = 12.6;
    QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaTpsEntrataPC), QStringLiteral("13 - 255"));
    // Nr 6 carries no mask: the number as it stands.
    m_cat.Parametri[Par::SogliaGiriUscitaPC].Max = 5000.5;
    QCOMPARE(m_cat.suggerimentoIntervallo(Par::SogliaGiriUscitaPC), QStringLiteral("400 - 5000.5"));
    QCOMPARE(m_cat.suggerimentoIntervallo(Par::Numero), QString());
    QCOMPARE(m_cat.formatta(Par::SogliaGiriUscitaPC, 4500), QStringLiteral("4500"));
}

void TestCatalogo::tpsPresente()
{
    QVERIFY(!TpsPresenteDa(255, 255));
    QVERIFY(TpsPresenteDa(255, 254));
    QVERIFY(TpsPresenteDa(0, 255));
    QVERIFY(TpsPresenteDa(255.0000001, 255));
    const double alto = m_cat.daGrezzo(Par::TpsTaratoMassimo, 0x03FF);
    const double basso = m_cat.daGrezzo(Par::TpsTaratoMinimo, 0x03FF);
    QVERIFY(!TpsPresenteDa(alto, basso));
    QVERIFY(TpsPresenteDa(alto, m_cat.daGrezzo(Par::TpsTaratoMinimo, 0x03F0)));
}

void TestCatalogo::limitiDellaTabella_data()
{
    QTest::addColumn<int>("pagina");
    QTest::addColumn<int>("sorgente");
    QTest::addColumn<int>("bersaglio");
    QTest::addColumn<bool>("massimo");

    auto r = [](const char *nome, Pagina p, int sorgente, int bersaglio, bool massimo) {
        QTest::newRow(nome) << int(p) << sorgente << bersaglio << massimo;
    };
    r("minimo giri uscita min", Pagina::Minimo, Par::SogliaGiriEntrataMinimo, Par::SogliaGiriUscitaMinimo, false);
    r("minimo giri entrata max", Pagina::Minimo, Par::SogliaGiriUscitaMinimo, Par::SogliaGiriEntrataMinimo, true);
    r("minimo giri uscita max", Pagina::Minimo, Par::SogliaGiriUscitaCutOff, Par::SogliaGiriUscitaMinimo, true);
    r("minimo tps uscita min", Pagina::Minimo, Par::SogliaTpsEntrataMinimo, Par::SogliaTpsUscitaMinimo, false);
    r("minimo tps entrata max", Pagina::Minimo, Par::SogliaTpsUscitaMinimo, Par::SogliaTpsEntrataMinimo, true);
    r("minimo tps uscita max", Pagina::Minimo, Par::TpsTaratoMassimo, Par::SogliaTpsUscitaMinimo, true);
    r("minimo lambda magro max", Pagina::Minimo, Par::SogliaLambdaRiccoMinimo, Par::SogliaLambdaMagroMinimo, true);
    r("minimo lambda ricco min", Pagina::Minimo, Par::SogliaLambdaMagroMinimo, Par::SogliaLambdaRiccoMinimo, false);
    r("normale magro max", Pagina::Normale, Par::SogliaLambdaRiccoNormale, Par::SogliaLambdaMagroNormale, true);
    r("normale ricco min", Pagina::Normale, Par::SogliaLambdaMagroNormale, Par::SogliaLambdaRiccoNormale, false);
    r("pc giri uscita max", Pagina::PienoCarico, Par::SogliaGiriEntrataPC, Par::SogliaGiriUscitaPC, true);
    r("pc giri entrata min", Pagina::PienoCarico, Par::SogliaGiriUscitaPC, Par::SogliaGiriEntrataPC, false);
    r("pc tps uscita max", Pagina::PienoCarico, Par::SogliaTpsEntrataPC, Par::SogliaTpsUscitaPC, true);
    r("pc tps entrata min", Pagina::PienoCarico, Par::SogliaTpsUscitaPC, Par::SogliaTpsEntrataPC, false);
    r("pc tps uscita min", Pagina::PienoCarico, Par::SogliaTpsUscitaCutOff, Par::SogliaTpsUscitaPC, false);
    r("pc tps entrata max", Pagina::PienoCarico, Par::TpsTaratoMassimo, Par::SogliaTpsEntrataPC, true);
    r("pc lambda magro max", Pagina::PienoCarico, Par::SogliaLambdaRiccoPC, Par::SogliaLambdaMagroPC, true);
    r("pc lambda ricco min", Pagina::PienoCarico, Par::SogliaLambdaMagroPC, Par::SogliaLambdaRiccoPC, false);
    r("co giri uscita max", Pagina::CutOff, Par::SogliaGiriEntrataCutOff, Par::SogliaGiriUscitaCutOff, true);
    r("co giri entrata min", Pagina::CutOff, Par::SogliaGiriUscitaCutOff, Par::SogliaGiriEntrataCutOff, false);
    r("co giri uscita min", Pagina::CutOff, Par::SogliaGiriUscitaMinimo, Par::SogliaGiriUscitaCutOff, false);
    r("co tps uscita min", Pagina::CutOff, Par::SogliaTpsEntrataCutOff, Par::SogliaTpsUscitaCutOff, false);
    r("co tps entrata max", Pagina::CutOff, Par::SogliaTpsUscitaCutOff, Par::SogliaTpsEntrataCutOff, true);
    r("co tps uscita max", Pagina::CutOff, Par::TpsTaratoMassimo, Par::SogliaTpsUscitaCutOff, true);
}

void TestCatalogo::limitiDellaTabella()
{
    QFETCH(int, pagina);
    QFETCH(int, sorgente);
    QFETCH(int, bersaglio);
    QFETCH(bool, massimo);

    for (Occasione occasione : {Occasione::Lettura, Occasione::Modifica}) {
        m_cat.InizializzaParametri();
        const Parametro prima = m_cat.Parametri[bersaglio];
        const QList<int> toccati =
            m_cat.aggiornaLimiti(sorgente, 123, static_cast<Pagina>(pagina), occasione);
        QVERIFY(toccati.contains(bersaglio));
        const Parametro &dopo = m_cat.Parametri[bersaglio];
        QCOMPARE(massimo ? dopo.Max : dopo.Min, 123.0);
        QCOMPARE(massimo ? dopo.Min : dopo.Max, massimo ? prima.Min : prima.Max);
    }
}

void TestCatalogo::limitiPerPagina()
{
    // The idle exit bounds the idle entry on the idle page, the cut-off exit on the cut-off
    // page; neither page touches the other's limit.
    QCOMPARE(m_cat.aggiornaLimiti(Par::SogliaGiriUscitaMinimo, 1200, Pagina::Minimo, Occasione::Lettura),
             QList<int>{Par::SogliaGiriEntrataMinimo});
    QCOMPARE(m_cat.Parametri[Par::SogliaGiriUscitaCutOff].Min, -1.0);

    m_cat.InizializzaParametri();
    QCOMPARE(m_cat.aggiornaLimiti(Par::SogliaGiriUscitaMinimo, 1200, Pagina::CutOff, Occasione::Modifica),
             QList<int>{Par::SogliaGiriUscitaCutOff});
    QCOMPARE(m_cat.Parametri[Par::SogliaGiriEntrataMinimo].Max, -1.0);

    // An entry that bounds nothing changes nothing.
    const auto prima = m_cat.Parametri;
    QVERIFY(m_cat.aggiornaLimiti(Par::PassiControlloMinimo, 7, Pagina::Minimo, Occasione::Lettura).isEmpty());
    for (int i = 0; i < Par::Numero; ++i)
        QVERIFY(prima[i].Min == m_cat.Parametri[i].Min && prima[i].Max == m_cat.Parametri[i].Max);
}

void TestCatalogo::tpsTaratoMinimoSoloUscita()
{
    for (Pagina p : {Pagina::Minimo, Pagina::Normale, Pagina::PienoCarico, Pagina::CutOff, Pagina::Lavoro}) {
        m_cat.InizializzaParametri();
        m_cat.aggiornaLimiti(Par::SogliaTpsEntrataMinimo, 20, Pagina::Minimo, Occasione::Lettura);
        QCOMPARE(m_cat.aggiornaLimiti(Par::TpsTaratoMinimo, 12, p, Occasione::Lettura),
                 QList<int>{Par::SogliaTpsUscitaMinimo});
        QCOMPARE(m_cat.Parametri[Par::SogliaTpsUscitaMinimo].Min, 12.0);
        QCOMPARE(m_cat.Parametri[Par::SogliaTpsEntrataMinimo].Min, 0.0);
    }
    // The fitter leaving field 2 puts the idle entry back in charge.
    m_cat.aggiornaLimiti(Par::SogliaTpsEntrataMinimo, 30, Pagina::Minimo, Occasione::Modifica);
    QCOMPARE(m_cat.Parametri[Par::SogliaTpsUscitaMinimo].Min, 30.0);
    // The calibration point is never edited on a page.
    QVERIFY(m_cat.aggiornaLimiti(Par::TpsTaratoMinimo, 12, Pagina::Minimo, Occasione::Modifica).isEmpty());
}

void TestCatalogo::catenaPompata()
{
    const double giri[] = {1000, 2000, 3000, 4000};
    for (int i = 0; i < Par::ElementiGiriPompata; ++i)
        m_cat.aggiornaLimiti(Par::GiriPompata + i, giri[i], Pagina::Pompata, Occasione::Lettura);

    const double minAttesi[] = {0, 1000, 2000, 3000};
    const double maxAttesi[] = {2000, 3000, 4000, 4000};
    for (int i = 0; i < Par::ElementiGiriPompata; ++i) {
        QCOMPARE(m_cat.Parametri[Par::GiriPompata + i].Min, minAttesi[i]);
        QCOMPARE(m_cat.Parametri[Par::GiriPompata + i].Max, maxAttesi[i]);
    }

    // An edit moves the neighbours only; the last breakpoint keeps its opening cap.
    QCOMPARE(m_cat.aggiornaLimiti(Par::GiriPompata + 3, 4500, Pagina::Pompata, Occasione::Modifica),
             QList<int>{Par::GiriPompata + 2});
    QCOMPARE(m_cat.Parametri[Par::GiriPompata + 2].Max, 4500.0);
    QCOMPARE(m_cat.Parametri[Par::GiriPompata + 3].Max, 4000.0);
    m_cat.aggiornaLimiti(Par::GiriPompata, 800, Pagina::Pompata, Occasione::Modifica);
    QCOMPARE(m_cat.Parametri[Par::GiriPompata + 1].Min, 800.0);
    QCOMPARE(m_cat.Parametri[Par::GiriPompata].Min, 0.0);
}

void TestCatalogo::catenaGiriRTS()
{
    for (int i = 0; i < Par::ElementiGiriRTS; ++i)
        m_cat.aggiornaLimiti(Par::GiriRTS + i, 1000.0 * (i + 1), Pagina::PienoCarico, Occasione::Lettura);
    for (int i = 0; i < Par::ElementiGiriRTS; ++i) {
        const Parametro &p = m_cat.Parametri[Par::GiriRTS + i];
        QCOMPARE(p.Min, i == 0 ? 400.0 : 1000.0 * i);
        QCOMPARE(p.Max, i == Par::ElementiGiriRTS - 1 ? 10000.0 : 1000.0 * (i + 2));
    }
}

void TestCatalogo::coppieDellaMappa()
{
    const QList<int> toccati =
        m_cat.aggiornaLimiti(Par::SogliaMagroMappa + 17, 90, Pagina::Normale, Occasione::Modifica);
    QCOMPARE(toccati, QList<int>{Par::SogliaRiccoMappa + 17});
    QCOMPARE(m_cat.Parametri[Par::SogliaRiccoMappa + 17].Min, 90.0);
    QCOMPARE(m_cat.Parametri[Par::SogliaRiccoMappa + 16].Min, -1.0);
    QCOMPARE(m_cat.Parametri[Par::SogliaRiccoMappa + 18].Min, -1.0);

    m_cat.aggiornaLimiti(Par::SogliaRiccoMappa + 39, 140, Pagina::Normale, Occasione::Lettura);
    QCOMPARE(m_cat.Parametri[Par::SogliaMagroMappa + 39].Max, 140.0);
}

void TestCatalogo::paginaLavoro()
{
    const QList<int> toccati =
        m_cat.aggiornaLimiti(Par::TpsTaratoMassimo, 250, Pagina::Lavoro, Occasione::Lettura);
    QCOMPARE(toccati.size(), 4);
    QCOMPARE(QSet<int>(toccati.begin(), toccati.end()),
             (QSet<int>{Par::SogliaTpsEntrataMinimo, Par::SogliaTpsEntrataCutOff,
                        Par::SogliaTpsEntrataPC, Par::TpsTaratoMassimo}));
    for (int i : toccati)
        QCOMPARE(m_cat.Parametri[i].Max, 250.0);
    // The single pages' partners are not bounded from here.
    QCOMPARE(m_cat.Parametri[Par::SogliaTpsUscitaMinimo].Max, -1.0);

    m_cat.aggiornaLimiti(Par::SogliaLambdaRiccoMinimo, 140, Pagina::Lavoro, Occasione::Lettura);
    QCOMPARE(m_cat.Parametri[Par::SogliaLambdaRiccoMinimo].Min, 140.0);
    QCOMPARE(m_cat.Parametri[Par::SogliaLambdaMagroMinimo].Max, -1.0);
}

void TestCatalogo::sorgenteFuoriTabella()
{
    QVERIFY(m_cat.aggiornaLimiti(-1, 5, Pagina::Minimo, Occasione::Lettura).isEmpty());
    QVERIFY(m_cat.aggiornaLimiti(Par::Numero, 5, Pagina::Minimo, Occasione::Lettura).isEmpty());
}

QTEST_APPLESS_MAIN(TestCatalogo)
#include "tst_catalogo.moc"
