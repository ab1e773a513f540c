// The read plans as data: how many frames each page asks for, where, and in which order.

#include "variables/Catalogo.h"
#include "variables/PianiLettura.h"

#include <QTest>

class TstPianiLettura : public QObject
{
    Q_OBJECT

    Catalogo c;

    QList<QByteArray> richieste(int stato)
    {
        QList<QByteArray> r;
        const PianoLettura *piano = PianoPerStato(stato);
        if (piano)
            for (const RigaLettura &riga : piano->righe)
                r.append(RichiestaLettura(c, riga));
        return r;
    }

    static QByteArray r(quint16 indirizzo, int conteggio)
    {
        QByteArray d(1, 'R');
        d += char(indirizzo >> 8);
        d += char(indirizzo & 0xFF);
        d += char(conteggio);
        return d;
    }

private slots:
    void frameCountOfEveryPage_data()
    {
        QTest::addColumn<int>("stato");
        QTest::addColumn<int>("frame");
        QTest::newRow("idle") << 1 << 12;
        QTest::newRow("normal") << 11 << 17;
        QTest::newRow("full load") << 21 << 16;
        QTest::newRow("cut-off") << 31 << 9;
        QTest::newRow("pump") << 41 << 12;
        QTest::newRow("work zones") << 51 << 29;
        QTest::newRow("stoichiometric") << 181 << 3;
        QTest::newRow("full-load inhibition") << 191 << 2;
        QTest::newRow("return from cut-off") << 201 << 1;
    }

    void frameCountOfEveryPage()
    {
        QFETCH(int, stato);
        QFETCH(int, frame);
        QCOMPARE(richieste(stato).size(), frame);
    }

    void statesWithoutAPlan()
    {
        for (int stato : {-1, 0, 2, 3, 101, 111, 211, 999})
            QVERIFY2(!PianoPerStato(stato), qPrintable(QString::number(stato)));
    }

    void idlePlanFrameByFrame()
    {
        const QList<QByteArray> atteso = {
            r(0x00A0, 2), r(0x009C, 2), r(0x015B, 1), r(0x00A6, 2), r(0x012C, 1), r(0x009A, 2),
            r(0xC112, 2), r(0x00A2, 2), r(0x009E, 2), r(0x00A4, 2), r(0x012D, 2), r(0xC110, 2)};
        QCOMPARE(richieste(1), atteso);
    }

    void blocksAskForTheSumOfTheirElements()
    {
        const QList<QByteArray> normale = richieste(11);
        QCOMPARE(normale.at(9), r(0xC112, 2));
        QCOMPARE(normale.at(10), r(0x0112, 8));
        QCOMPARE(normale.at(11), r(0x011A, 14));
        QCOMPARE(normale.at(12), r(0x015E, 40));
        QCOMPARE(normale.at(13), r(0x0186, 40));
        QCOMPARE(normale.at(14), r(0x01AE, 40));
        QCOMPARE(normale.at(15), r(0x01D6, 40));
        QCOMPARE(normale.at(16), r(0xC110, 2));

        const QList<QByteArray> pieno = richieste(21);
        QCOMPARE(pieno.at(12), r(0x0137, 14));
        QCOMPARE(pieno.at(13), r(0xC200, 16));
        QCOMPARE(pieno.at(14), r(0xC220, 8));
    }

    void eepromRowsOnlyWhereThePlanSaysSo()
    {
        // The inhibition page has no RAM copies; everything else reads RAM except the TPS points.
        for (const PianoLettura &piano : PianiLettura()) {
            for (const RigaLettura &riga : piano.righe) {
                const qint32 indirizzo = IndirizzoRiga(c, riga);
                QVERIFY(indirizzo >= 0);
                const bool tps = riga.parametro == Par::TpsTaratoMinimo || riga.parametro == Par::TpsTaratoMassimo;
                const bool griglia = riga.parametro == Par::TpsRTS || riga.parametro == Par::PosizioneRTS;
                const bool eeprom = tps || griglia || piano.stato == 191;
                QCOMPARE(riga.eeprom, eeprom);
                QCOMPARE(indirizzo >= 0xC000, eeprom);
            }
        }
    }

    void lambdaFlagBeforeEveryLambdaThreshold()
    {
        for (const PianoLettura &piano : PianiLettura()) {
            bool scala = false;
            for (const RigaLettura &riga : piano.righe) {
                if (riga.tipo == TipoRiga::ScalaLambda)
                    scala = true;
                if (c.Parametri[static_cast<size_t>(riga.parametro)].Conv == Conversione::L)
                    QVERIFY2(scala, qPrintable(QString("state %1").arg(piano.stato)));
            }
        }
    }

    void lowTpsPointClosesTheThresholdPages()
    {
        for (int stato : {1, 11, 21, 31, 51}) {
            const PianoLettura *piano = PianoPerStato(stato);
            QCOMPARE(piano->righe.back().tipo, TipoRiga::TpsMinimo);
            // Only the normal page, which shows no TPS field, leaves TPS presence alone.
            QCOMPARE(piano->presenzaTps, stato != 11);
        }
        for (int stato : {41, 181, 191, 201})
            for (const RigaLettura &riga : PianoPerStato(stato)->righe)
                QVERIFY(riga.tipo == TipoRiga::Valore);
    }
};

QTEST_APPLESS_MAIN(TstPianiLettura)
#include "tst_pianilettura.moc"
