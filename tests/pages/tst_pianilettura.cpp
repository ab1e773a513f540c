// What every read plan must respect, whatever its rows; what the rows bring back is for the
// read handler's tests against the simulated ECU.

#include "pages/PianiLettura.h"
#include "variables/Catalogo.h"

#include <QTest>

using namespace kv;

class TstPianiLettura : public QObject
{
    Q_OBJECT

    Catalogo c;

private slots:
    void statesWithoutAPlan()
    {
        for (int stato : {-1, 0, 2, 3, 101, 111, 211, 999})
            QVERIFY2(!PianoPerStato(stato), qPrintable(QString::number(stato)));
        for (int stato : {1, 11, 21, 31, 41, 51, 181, 191, 201})
            QCOMPARE(PianoPerStato(stato)->stato, stato);
    }

    void everyRowReadsAHomeItsEntryHas()
    {
        for (const PianoLettura &piano : PianiLettura()) {
            for (const RigaLettura &riga : piano.righe) {
                const QByteArray dove =
                    QByteArray::number(piano.stato) + "/" + QByteArray::number(riga.parametro);
                QVERIFY2(IndirizzoRiga(c, riga) >= 0, dove);
                // EEPROM only where there is no RAM copy: the RAM holds what the ECU runs on.
                QVERIFY2(riga.eeprom == (c.Parametri[static_cast<size_t>(riga.parametro)].IndirizzoRAM < 0),
                         dove);
            }
        }
    }

    void rowOrderWithinAPlan()
    {
        for (const PianoLettura &piano : PianiLettura()) {
            bool scala = false;
            for (size_t i = 0; i < piano.righe.size(); ++i) {
                const RigaLettura &riga = piano.righe[i];
                scala = scala || riga.tipo == TipoRiga::ScalaLambda;
                // The flag decides how every lambda threshold after it is scaled.
                if (c.Parametri[static_cast<size_t>(riga.parametro)].Conv == Conversione::L)
                    QVERIFY2(scala, qPrintable(QString("state %1").arg(piano.stato)));
                // The low TPS point decides TPS presence once everything else is in.
                if (riga.tipo == TipoRiga::TpsMinimo)
                    QCOMPARE(i + 1, piano.righe.size());
            }
        }
    }
};

QTEST_APPLESS_MAIN(TstPianiLettura)
#include "tst_pianilettura.moc"
