#include "monitoring/Canali.h"
#include "shell/Lingua.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The keys of the 16 channels, as the language files carry them.
const char *const Chiavi[NumeroCanali] = {
    "CAMPIONI", "FLAGPA", "GIRI", "TPS", "LAMBDA", "ACTPOS", "RICMAG", "MZONACT",
    "POMPATA", "TIPTPS", "TIPALIM", "TIPOLAMBDA", "LIBERO2", "LIBERO3", "LIBERO4", "LIBERO5",
};

} // namespace

class TestCanali : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();

    void nomiEUnita();
    void titoloCanale();
    void unitaVuotaSenzaParentesi();
    void chiaveMancante();
    void nomeLungoTagliato();
    void scaleDellaTabella();
    void azzeraScale();
    void canaliFuoriDaiGrafici();
    void righeDati();

private:
    QTemporaryDir m_cartella;
    TabellaCanali m_tabella;
};

void TestCanali::initTestCase()
{
    QVERIFY(m_cartella.isValid());
    QFile f(m_cartella.filePath(QStringLiteral("PROVA.LNG")));
    QVERIFY(f.open(QIODevice::WriteOnly));
    QByteArray testo = "[ALTRO]\r\nGIRI.NOME=sbagliato\r\n[PAR_CANALI]\r\n";
    for (int i = 0; i < NumeroCanali; ++i) {
        const QByteArray chiave = Chiavi[i];
        if (chiave == "LAMBDA")
            continue; // a key the file lacks
        if (chiave == "GIRI") {
            testo += "GIRI.NOME=GIRI\r\nGIRI.UM=RPM\r\n";
        } else if (chiave == "CAMPIONI") {
            testo += "CAMPIONI.NOME=Numero dei campioni registrati\r\nCAMPIONI.UM=n\r\n";
        } else if (chiave == "FLAGPA") {
            testo += "FLAGPA.NOME=STATO\r\n"; // no unit
        } else {
            testo += chiave + ".NOME=N" + QByteArray::number(i) + "\r\n";
            testo += chiave + ".UM=U" + QByteArray::number(i) + "\r\n";
        }
    }
    QCOMPARE(f.write(testo), testo.size());
}

void TestCanali::init()
{
    Lingua lingua(m_cartella.path());
    lingua.LinguaCorrente = QStringLiteral("PROVA");
    m_tabella.InizializzaCanali(lingua);
}

void TestCanali::nomiEUnita()
{
    for (int i = 0; i < NumeroCanali; ++i) {
        QCOMPARE(ChiaveCanale(i), QString::fromLatin1(Chiavi[i]));
        const Canale &c = m_tabella.Canali[i];
        QCOMPARE(c.Nome.size(), Canale::LunghezzaNome);
        QCOMPARE(c.Formato, QStringLiteral("#0"));
        QCOMPARE(c.InGrafico, qint16(0));
        const QByteArray chiave = Chiavi[i];
        if (chiave == "GIRI" || chiave == "CAMPIONI" || chiave == "FLAGPA" || chiave == "LAMBDA")
            continue;
        QCOMPARE(c.Nome.trimmed(), QStringLiteral("N%1").arg(i));
        QCOMPARE(c.UM, QStringLiteral("U%1").arg(i));
    }
}

void TestCanali::titoloCanale()
{
    QCOMPARE(m_tabella.TitoloCanale(2), QStringLiteral("GIRI [RPM]"));
    QCOMPARE(m_tabella.TitoloCanale(1), QStringLiteral("STATO"));
    QCOMPARE(m_tabella.TitoloCanale(9), QStringLiteral("N9 [U9]"));
    QCOMPARE(m_tabella.TitoloCanale(-1), QString());
    QCOMPARE(m_tabella.TitoloCanale(NumeroCanali), QString());
}

void TestCanali::unitaVuotaSenzaParentesi()
{
    Canale &c = m_tabella.Canali[5];
    c.Nome = QStringLiteral("  PASSI");
    c.UM = QStringLiteral("   ");
    QCOMPARE(m_tabella.TitoloCanale(5), QStringLiteral("PASSI"));
    // The trimmed name goes back into the fixed field.
    QCOMPARE(c.Nome, QStringLiteral("PASSI").leftJustified(Canale::LunghezzaNome, QLatin1Char(' ')));
    c.UM = QStringLiteral(" % ");
    QCOMPARE(m_tabella.TitoloCanale(5), QStringLiteral("PASSI [%]"));
}

void TestCanali::chiaveMancante()
{
    const Canale &c = m_tabella.Canali[4];
    QCOMPARE(c.Nome, QString(Canale::LunghezzaNome, QLatin1Char(' ')));
    QCOMPARE(c.UM, QString());
    QCOMPARE(c.MaxTabella, 5000); // the row is filled all the same
    QCOMPARE(m_tabella.TitoloCanale(4), QString());
}

void TestCanali::nomeLungoTagliato()
{
    QCOMPARE(m_tabella.Canali[0].Nome, QStringLiteral("Numero dei campioni "));
    QCOMPARE(m_tabella.TitoloCanale(0), QStringLiteral("Numero dei campioni [n]"));
}

void TestCanali::scaleDellaTabella()
{
    for (const Canale &c : m_tabella.Canali) {
        QCOMPARE(c.MinTabella, 0);
        QVERIFY(c.MaxTabella > c.MinTabella);
        QCOMPARE(c.MinAsse, c.MinTabella);
        QCOMPARE(c.MaxAsse, c.MaxTabella);
        QVERIFY(c.DivMaggiori > 0 && c.DivMinori > 0 && c.Margine > 0);
    }
    // The sample counter describes the time axis; the scales a chart starts from.
    QCOMPARE(m_tabella.Canali[0].MaxTabella, 200);
    QCOMPARE(m_tabella.Canali[0].Margine, qint16(20));
    QCOMPARE(m_tabella.Canali[0].Ampiezza, quint8(0));
    QCOMPARE(m_tabella.Canali[2].MaxTabella, 7000);
    QCOMPARE(m_tabella.Canali[2].Ampiezza, quint8(2));
    QCOMPARE(m_tabella.Canali[11].MaxTabella, 255);
}

void TestCanali::azzeraScale()
{
    for (Canale &c : m_tabella.Canali) {
        c.MinAsse = -30;
        c.MaxAsse = 99999;
        c.MinDisegnato = 17;
        c.MaxDisegnato = 18;
        c.InGrafico = -1;
    }
    m_tabella.AzzeraScale();
    for (const Canale &c : m_tabella.Canali) {
        QCOMPARE(c.MinAsse, c.MinTabella);
        QCOMPARE(c.MinDisegnato, c.MinTabella);
        QCOMPARE(c.MaxAsse, c.MaxTabella);
        QCOMPARE(c.MaxDisegnato, c.MaxTabella);
        QCOMPARE(c.InGrafico, qint16(0));
    }
}

void TestCanali::canaliFuoriDaiGrafici()
{
    for (int i = 0; i < NumeroCanali; ++i)
        QCOMPARE(puoAndareInGrafico(i), i != 1 && i != 7 && i != 10);
    QVERIFY(!puoAndareInGrafico(-1));
    QVERIFY(!puoAndareInGrafico(NumeroCanali));
}

void TestCanali::righeDati()
{
    const RigheDati righe = RigheDatiIniziali();
    int fine = 0;
    while (fine < NumeroCanali && righe[fine].Canale != -1)
        ++fine;
    QCOMPARE(fine, 10);
    for (int r = 0; r < fine; ++r) {
        QCOMPARE(righe[r].Canale, qint16(r + 2));
        QCOMPARE(righe[r].Selezionabile, qint16(1));
        QCOMPARE(righe[r].Visibile, qint16(righe[r].Canale == 9 || righe[r].Canale == 11 ? 0 : 1));
    }
    for (int r = fine; r < NumeroCanali; ++r) {
        QCOMPARE(righe[r].Canale, qint16(-1));
        QCOMPARE(righe[r].Visibile, qint16(0));
        QCOMPARE(righe[r].Selezionabile, qint16(0));
    }
}

QTEST_APPLESS_MAIN(TestCanali)
#include "tst_canali.moc"
