// The channel table: names and units by the language file's keys, titles and scales.

#include "support/FileDiProva.h"

#include "base/Lingua.h"
#include "monitoring/Canali.h"

#include <QTemporaryDir>
#include <QTest>

using namespace kv;

class TestCanali : public QObject
{
    Q_OBJECT

    QTemporaryDir m_cartella;
    TabellaCanali m_tabella;

private slots:
    void init()
    {
        // Channel i is "Ni" in "Ui", except a name too long, one without a unit and one missing.
        QByteArray testo = "[ALTRO]\r\nGIRI.NOME=wrong section\r\n[PAR_CANALI]\r\n";
        for (int i = 0; i < NumeroCanali; ++i) {
            const QByteArray chiave = ChiaveCanale(i).toLatin1();
            const QByteArray n = QByteArray::number(i);
            if (i != 4)
                testo += chiave + ".NOME=" + (i == 0 ? "Numero dei campioni registrati" : "N" + n) + "\r\n";
            if (i != 1 && i != 4)
                testo += chiave + ".UM=U" + n + "\r\n";
        }
        scrivi(m_cartella.filePath(QStringLiteral("PROVA.LNG")), testo);
        Lingua lingua(m_cartella.path());
        lingua.LinguaCorrente = QStringLiteral("PROVA");
        m_tabella.InizializzaCanali(lingua.Cerca());
    }

    void titlesFromNamesAndUnits()
    {
        for (int i = 0; i < NumeroCanali; ++i) {
            QCOMPARE(m_tabella.Canali[i].Nome.size(), Canale::LunghezzaNome);
            const QString atteso = i == 0   ? QStringLiteral("Numero dei campioni [U0]")
                                   : i == 1 ? QStringLiteral("N1")
                                   : i == 4 ? QString()
                                            : QStringLiteral("N%1 [U%1]").arg(i);
            QCOMPARE(m_tabella.TitoloCanale(i), atteso);
        }
        QCOMPARE(m_tabella.TitoloCanale(-1), QString());
        QCOMPARE(m_tabella.TitoloCanale(NumeroCanali), QString());

        // A blank unit takes no brackets; the trimmed name goes back into the fixed field.
        Canale &c = m_tabella.Canali[5];
        c.Nome = QStringLiteral("  PASSI");
        c.UM = QStringLiteral("   ");
        QCOMPARE(m_tabella.TitoloCanale(5), QStringLiteral("PASSI"));
        QCOMPARE(c.Nome, QStringLiteral("PASSI").leftJustified(Canale::LunghezzaNome, QLatin1Char(' ')));
        c.UM = QStringLiteral(" % ");
        QCOMPARE(m_tabella.TitoloCanale(5), QStringLiteral("PASSI [%]"));
    }

    void everyChannelIsNamedInBothShippedFiles()
    {
        Lingua lingua(QStringLiteral(KV_SOURCE_DIR "/lang"));
        for (const char *nome : {"ENGLISH", "ITALIANO"}) {
            lingua.LinguaCorrente = QLatin1String(nome);
            TabellaCanali t;
            t.InizializzaCanali(lingua.Cerca());
            for (const Canale &c : t.Canali)
                QVERIFY2(!c.Nome.trimmed().isEmpty(), nome);
        }
    }

    void scalesStartAtTheTableAndGoBackToIt()
    {
        for (Canale &c : m_tabella.Canali) {
            // Every row is filled, the one without texts too.
            QVERIFY(c.MinTabella == 0 && c.MaxTabella > 0);
            QVERIFY(c.MinAsse == c.MinTabella && c.MaxAsse == c.MaxTabella);
            QVERIFY(c.DivMaggiori > 0 && c.DivMinori > 0 && c.Margine > 0);
            c.MinAsse = -30;
            c.MaxDisegnato = 18;
            c.InGrafico = -1;
        }
        m_tabella.AzzeraScale();
        for (const Canale &c : m_tabella.Canali) {
            QVERIFY(c.MinAsse == c.MinTabella && c.MinDisegnato == c.MinTabella);
            QVERIFY(c.MaxAsse == c.MaxTabella && c.MaxDisegnato == c.MaxTabella);
            QCOMPARE(c.InGrafico, qint16(0));
        }
    }
};

QTEST_APPLESS_MAIN(TestCanali)
#include "tst_canali.moc"
