// The simulated ECU driven directly: bytes in, frames out, time moved by hand.

#include "AiutoSim.h"
#include "RigaComando.h"

#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <set>

namespace {

OpzioniEcu manuale()
{
    OpzioniEcu o;
    o.frameAlSecondo = 0;
    return o;
}

void scorri(EcuSimulata &ecu, int ms, int passo = 40)
{
    for (int t = 0; t < ms; t += passo)
        ecu.avanzaTempo(passo);
}

// The value at a catalogue entry's address, read with an 'R' frame; -1 on a bad reply.
int leggi(EcuSimulata &ecu, Raccolta &r, qint32 indirizzo, int dimensione)
{
    r.svuota();
    ecu.riceviDati(ComandoLettura(quint32(indirizzo), dimensione));
    const auto risposte = r.risposte();
    if (risposte.size() != 1 || !risposte[0].checksumOk || risposte[0].lettera() != 'r'
        || risposte[0].payload.size() != 1 + dimensione)
        return -1;
    return int(NumeroBE(risposte[0].payload.mid(1)));
}

// The 'e' status of the one reply to frame, or -1.
int esito(EcuSimulata &ecu, Raccolta &r, const QByteArray &frame)
{
    r.svuota();
    ecu.riceviDati(frame);
    const auto risposte = r.risposte();
    if (risposte.size() != 1 || risposte[0].lettera() != 'e' || risposte[0].payload.size() != 2)
        return -1;
    return quint8(risposte[0].payload.at(1));
}

// The status bytes of the stream with repeats folded: 255 255 0 0 255 gives 255 0 255.
QList<int> statiDistinti(const QList<FrameLetto> &frame)
{
    QList<int> stati;
    for (const FrameLetto &f : frame) {
        const int s = Dati(f.payload).stato;
        if (stati.isEmpty() || stati.last() != s)
            stati.append(s);
    }
    return stati;
}

} // namespace

class TestEcuSimulata : public QObject
{
    Q_OBJECT

private:
    Catalogo m_cat;

    int ram(EcuSimulata &e, Raccolta &r, int par)
    {
        return leggi(e, r, m_cat.Parametri[par].IndirizzoRAM, m_cat.Parametri[par].Dimensione);
    }
    int ee(EcuSimulata &e, Raccolta &r, int par)
    {
        return leggi(e, r, m_cat.Parametri[par].IndirizzoEE, m_cat.Parametri[par].Dimensione);
    }
    QByteArray scritturaRam(int par, int valore)
    {
        return ComandoScrittura(quint32(m_cat.Parametri[par].IndirizzoRAM), ByteBE(valore, m_cat.Parametri[par].Dimensione));
    }

private slots:
    void versione()
    {
        OpzioniEcu o = manuale();
        o.versione.veicolo = "PANDA 1.2";
        o.versione.codice = "KV-0123456789-XYZ"; // longer than its 14 places
        o.versione.datoB = "B7";
        EcuSimulata ecu(o);
        Raccolta r(ecu);
        ecu.riceviDati(Comando("V"));
        const auto risposte = r.risposte();
        QCOMPARE(risposte.size(), 1);
        QVERIFY(risposte[0].checksumOk);
        const QByteArray v = risposte[0].payload;
        QCOMPARE(v.size(), 49);
        QCOMPARE(v.at(0), 'v');
        QCOMPARE(v.mid(1, 10), QByteArray("PANDA 1.2 "));
        QCOMPARE(v.mid(11, 10), o.versione.data);
        QCOMPARE(v.mid(21, 14), QByteArray("KV-0123456789-"));
        QCOMPARE(v.mid(35, 10), o.versione.datoA);
        QCOMPARE(v.mid(45, 4), QByteArray("B7  "));
        // The identification the programming tool carries over lives at its fixed places.
        QCOMPARE(ecu.leggiMemoria(0xC040, 14), QByteArray("KV-0123456789-"));
        QCOMPARE(ecu.leggiMemoria(0xC058, 4), QByteArray("B7  "));
        QCOMPARE(esito(ecu, r, Comando("VX")), int(ErroreEcu::LunghezzaErrata));
    }

    void valoriInizialiCoerenti()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        // The ECU boots with RAM loaded from EEPROM.
        for (int i = 0; i < Par::Numero; ++i) {
            const Parametro &p = m_cat.Parametri[i];
            if (p.IndirizzoRAM >= 0 && p.IndirizzoEE >= 0)
                QVERIFY2(ram(ecu, r, i) == ee(ecu, r, i), qPrintable(QString::number(i)));
        }
        // Every value the fitter could see lies within the table's limits.
        for (int i = 0; i < Par::Numero; ++i) {
            const Parametro &p = m_cat.Parametri[i];
            const qint32 indirizzo = p.IndirizzoEE >= 0 ? p.IndirizzoEE : p.IndirizzoRAM;
            if (indirizzo < 0)
                continue;
            const int grezzo = leggi(ecu, r, indirizzo, p.Dimensione);
            QVERIFY2(grezzo >= 0, qPrintable(QString::number(i)));
            double mostrato = grezzo;
            if (p.Conv == Conversione::A || p.Conv == Conversione::L)
                mostrato = Scala1023(grezzo);
            else if (p.Conv == Conversione::P)
                mostrato = FrequenzaPeriodo(grezzo);
            else if (p.Conv == Conversione::S)
                mostrato = SegnoModulo(grezzo);
            if (p.Min != -1)
                QVERIFY2(mostrato >= p.Min, qPrintable(QStringLiteral("%1: %2 < %3").arg(i).arg(mostrato).arg(p.Min)));
            if (p.Max != -1)
                QVERIFY2(mostrato <= p.Max, qPrintable(QStringLiteral("%1: %2 > %3").arg(i).arg(mostrato).arg(p.Max)));
        }
        const auto v = [&](int par) { return ee(ecu, r, par); };
        // RPM scale: idle entry < idle exit < cut-off exit < cut-off entry; full load exit < entry.
        QVERIFY(v(Par::SogliaGiriEntrataMinimo) < v(Par::SogliaGiriUscitaMinimo));
        QVERIFY(v(Par::SogliaGiriUscitaMinimo) < v(Par::SogliaGiriUscitaCutOff));
        QVERIFY(v(Par::SogliaGiriUscitaCutOff) < v(Par::SogliaGiriEntrataCutOff));
        QVERIFY(v(Par::SogliaGiriUscitaPC) < v(Par::SogliaGiriEntrataPC));
        // TPS: inside the calibrated travel, pairs the right way round.
        const int tpsMin = v(Par::TpsTaratoMinimo);
        const int tpsMax = v(Par::TpsTaratoMassimo);
        QVERIFY(tpsMin > 0 && tpsMin < tpsMax && tpsMax < 1023);
        for (int par = Par::SogliaTpsEntrataMinimo; par <= Par::SogliaTpsUscitaCutOff; ++par)
            QVERIFY2(v(par) > tpsMin && v(par) < tpsMax, qPrintable(QString::number(par)));
        QVERIFY(v(Par::SogliaTpsEntrataMinimo) < v(Par::SogliaTpsUscitaMinimo));
        QVERIFY(v(Par::SogliaTpsEntrataCutOff) < v(Par::SogliaTpsUscitaCutOff));
        QVERIFY(v(Par::SogliaTpsUscitaPC) < v(Par::SogliaTpsEntrataPC));
        QVERIFY(v(Par::SogliaTpsUscitaCutOff) <= v(Par::SogliaTpsUscitaPC));
        // Lambda: lean below rich everywhere, the map included.
        QVERIFY(v(Par::SogliaLambdaMagroMinimo) < v(Par::SogliaLambdaRiccoMinimo));
        QVERIFY(v(Par::SogliaLambdaMagroNormale) < v(Par::SogliaLambdaRiccoNormale));
        QVERIFY(v(Par::SogliaLambdaMagroPC) < v(Par::SogliaLambdaRiccoPC));
        for (int i = 0; i < Par::CelleMappa; ++i)
            QVERIFY(v(Par::SogliaMagroMappa + i) < v(Par::SogliaRiccoMappa + i));
        // Axes and grids rise.
        const auto crescente = [&](int base, int n) {
            for (int i = 1; i < n; ++i)
                if (v(base + i) <= v(base + i - 1))
                    return false;
            return true;
        };
        QVERIFY(crescente(Par::AsseTpsMappa, Par::ElementiAsseTps));
        QVERIFY(crescente(Par::AsseGiriMappa, Par::ElementiAsseGiri));
        QVERIFY(crescente(Par::GiriPompata, Par::ElementiGiriPompata));
        QVERIFY(crescente(Par::GiriRTS, Par::ElementiGiriRTS));
        QVERIFY(crescente(Par::TpsRTS, Par::ElementiTpsRTS));
        QCOMPARE(ram(ecu, r, Par::ScalaLambda), 0);
    }

    void letturaFuoriMemoria()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        ecu.riceviDati(ComandoLettura(0x0000, 4));
        QCOMPARE(r.risposte().value(0).payload, QByteArray::fromHex("72FFFFFFFF"));
        // The last two RAM bytes, then two the ECU does not have.
        const QByteArray inRam = ecu.leggiMemoria(0x01FC, 2);
        r.svuota();
        ecu.riceviDati(ComandoLettura(0x01FC, 4));
        QCOMPARE(r.risposte().value(0).payload, QByteArray(1, 'r') + inRam + QByteArray::fromHex("FFFF"));
        QCOMPARE(esito(ecu, r, ComandoLettura(0x0090, 121)), int(ErroreEcu::LunghezzaErrata));
        r.svuota();
        ecu.riceviDati(ComandoLettura(0xC100, 120));
        QCOMPARE(r.risposte().value(0).payload.size(), 121);
    }

    void scritture()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        const int par = Par::SogliaGiriEntrataMinimo;
        const int primaEe = ee(ecu, r, par);

        QCOMPARE(esito(ecu, r, scritturaRam(par, 950)), 0xFF);
        QCOMPARE(ram(ecu, r, par), 950);
        QCOMPARE(ee(ecu, r, par), primaEe);

        const Parametro &p = m_cat.Parametri[par];
        QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(p.IndirizzoEE), ByteBE(1050, 2))), 0xFF);
        QCOMPARE(ee(ecu, r, par), 1050);
        QCOMPARE(ram(ecu, r, par), 950);

        // The application does not write its own software, nor past the end of RAM.
        const QByteArray codice = ecu.leggiMemoria(0xC000, 4);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xC000, "\x01\x02\x03\x04")), int(ErroreEcu::IndirizzoNonValido));
        QCOMPARE(ecu.leggiMemoria(0xC000, 4), codice);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x01FC, "\x01\x02\x03")), int(ErroreEcu::IndirizzoNonValido));
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x0000, "\x01")), int(ErroreEcu::IndirizzoNonValido));
        // A map block of 64 bytes at the start of the map area is the map programming's write.
        const QByteArray blocco(64, '\x5A');
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xC100, blocco)), 0xFF);
        QCOMPARE(ecu.leggiMemoria(0xC100, 64), blocco);
        // The count has to match the data.
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("5700A00301"))), int(ErroreEcu::LunghezzaErrata));
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("5700A000"))), int(ErroreEcu::LunghezzaErrata));
        QCOMPARE(esito(ecu, r, Comando("Z")), int(ErroreEcu::ComandoSconosciuto));
        QCOMPARE(esito(ecu, r, Comando("F")), int(ErroreEcu::ComandoNonAmmesso));
    }

    void flussoDati()
    {
        OpzioniEcu o = manuale();
        o.tipoSonda = 1;
        EcuSimulata ecu(o);
        Raccolta r(ecu);
        scorri(ecu, 36000);
        const auto frame = r.flusso();
        QCOMPARE(frame.size(), 900);
        std::set<int> zone, ricmag, pompata, tipalim, actpos;
        int giriMin = 99999, giriMax = 0, tpsMin = 9999, tpsMax = 0, lambdaMin = 9999, lambdaMax = 0;
        for (const FrameLetto &f : frame) {
            QVERIFY(f.checksumOk);
            QCOMPARE(f.payload.size(), 15);
            const Dati d(f.payload);
            QCOMPARE(d.stato, 0);
            QCOMPARE(d.tipolambda, 1);
            QVERIFY(d.lambda <= 255); // a type 1 probe is sent on 0..255
            zone.insert(d.zona);
            ricmag.insert(d.ricmag);
            pompata.insert(d.pompata);
            tipalim.insert(d.tipalim);
            actpos.insert(d.actpos);
            giriMin = qMin(giriMin, d.giri);
            giriMax = qMax(giriMax, d.giri);
            tpsMin = qMin(tpsMin, d.tps);
            tpsMax = qMax(tpsMax, d.tps);
            lambdaMin = qMin(lambdaMin, d.lambda);
            lambdaMax = qMax(lambdaMax, d.lambda);
        }
        QCOMPARE(zone, (std::set<int>{1, 2, 3, 4, 5}));
        QCOMPARE(ricmag, (std::set<int>{0, 85, 255}));
        QCOMPARE(pompata, (std::set<int>{0, 1}));
        QCOMPARE(tipalim, (std::set<int>{0, 1}));
        QCOMPARE(Dati(frame.first().payload).tipalim, 0); // petrol while warming up
        QVERIFY(actpos.size() > 20);
        QVERIFY(giriMin < 900 && giriMax > 3500);
        QVERIFY(tpsMin < 80 && tpsMax > 900);
        QVERIFY(lambdaMin < 380 * 255 / 1023 && lambdaMax > 580 * 255 / 1023);

        // TIPTPS is the RAM cell, read as it is now.
        Catalogo cat;
        QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(cat.Parametri[Par::TipoTps].IndirizzoRAM), "\x07")), 0xFF);
        r.svuota();
        ecu.avanzaTempo(40);
        QCOMPARE(Dati(r.flusso().value(0).payload).tiptps, 7);
    }

    void zonaSegueLaRam()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        // A zone once entered holds until its exit threshold is crossed, so a change shows
        // fully from the cycle after the one it was made in.
        const auto zoneDiUnCiclo = [&] {
            scorri(ecu, 36000);
            r.svuota();
            scorri(ecu, 36000);
            std::set<int> zone;
            for (const FrameLetto &f : r.flusso())
                zone.insert(Dati(f.payload).zona);
            return zone;
        };
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{1, 2, 3, 4, 5}));

        // The stored copy is not what the firmware runs on.
        const Parametro &co = m_cat.Parametri[Par::SogliaGiriEntrataCutOff];
        QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(co.IndirizzoEE), ByteBE(9000, 2))), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{1, 2, 3, 4, 5}));

        // Cut-off beyond any speed the engine reaches, idle entry below it: no cut-off, no return, no idle.
        QCOMPARE(esito(ecu, r, scritturaRam(Par::SogliaGiriEntrataCutOff, 9000)), 0xFF);
        QCOMPARE(esito(ecu, r, scritturaRam(Par::SogliaGiriEntrataMinimo, 400)), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{2, 3}));

        // Full load needs more throttle than there is.
        QCOMPARE(esito(ecu, r, scritturaRam(Par::SogliaTpsEntrataPC, 1000)), 0xFF);
        QCOMPARE(zoneDiUnCiclo(), (std::set<int>{2}));
    }

    void taraturaGuidata()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        const Parametro &pMin = m_cat.Parametri[Par::TpsTaratoMinimo];
        const Parametro &pMax = m_cat.Parametri[Par::TpsTaratoMassimo];
        // Erased cells, so that whatever is found afterwards was learnt.
        ecu.scriviMemoria(quint32(pMin.IndirizzoEE), QByteArray::fromHex("03FF"));
        ecu.scriviMemoria(quint32(pMax.IndirizzoEE), QByteArray::fromHex("03FF"));

        ecu.riceviDati(Comando(QByteArray::fromHex("4102")));
        QVERIFY(r.risposte().isEmpty()); // answered only through the stream
        scorri(ecu, 400);
        QCOMPARE(statiDistinti(r.flusso()), QList<int>{255});

        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4100"))), 0xFF);
        scorri(ecu, 4000);
        QCOMPARE(statiDistinti(r.flusso()), (QList<int>{239, 234}));
        QCOMPARE(Dati(r.flusso().first().payload).stato, 239);
        bool fermo = false;
        for (const FrameLetto &f : r.flusso()) {
            const Dati d(f.payload);
            fermo = fermo || (d.stato == 239 && d.giri == 0);
            if (d.stato == 234)
                QVERIFY(d.giri > 300);
        }
        QVERIFY(fermo);

        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4101"))), 0xFF);
        scorri(ecu, 30000);
        const auto frame = r.flusso();
        QCOMPARE(statiDistinti(frame), (QList<int>{223, 221, 220, 219, 207, 206, 204, 0}));

        int tpsAl221 = -1, massimo219 = -1;
        for (const FrameLetto &f : frame) {
            const Dati d(f.payload);
            if (d.stato == 221 && tpsAl221 < 0)
                tpsAl221 = d.tps;
            if (d.stato == 219)
                massimo219 = qMax(massimo219, d.tps);
        }
        const int appresoMin = int(NumeroBE(ecu.leggiMemoria(quint32(pMin.IndirizzoEE), 2)));
        const int appresoMax = int(NumeroBE(ecu.leggiMemoria(quint32(pMax.IndirizzoEE), 2)));
        QVERIFY2(qAbs(appresoMin - tpsAl221) <= 3, qPrintable(QStringLiteral("%1 %2").arg(appresoMin).arg(tpsAl221)));
        QCOMPARE(appresoMax, massimo219);
        QVERIFY(appresoMax > 900);
    }

    void taratureSingole()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4103"))), 0xFF);
        scorri(ecu, 4000);
        QCOMPARE(statiDistinti(r.flusso()), (QList<int>{239, 234}));
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4101"))), 0xFF);
        ecu.avanzaTempo(40);
        QCOMPARE(statiDistinti(r.flusso()), QList<int>{0});

        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4104"))), 0xFF);
        scorri(ecu, 20000);
        QCOMPARE(statiDistinti(r.flusso()), (QList<int>{222, 223, 221, 220, 219, 218}));
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4101"))), 0xFF);

        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4105"))), 0xFF);
        scorri(ecu, 20000);
        QCOMPARE(statiDistinti(r.flusso()), (QList<int>{206, 29}));
        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4101"))), 0xFF);
        ecu.avanzaTempo(40);
        QCOMPARE(statiDistinti(r.flusso()), QList<int>{0});

        // The entry point left waiting gives up by itself.
        r.svuota();
        ecu.riceviDati(Comando(QByteArray::fromHex("4102")));
        scorri(ecu, Taratura::IngressoMs + 1000);
        QCOMPARE(statiDistinti(r.flusso()), (QList<int>{255, 0}));

        QCOMPARE(esito(ecu, r, Comando(QByteArray::fromHex("4109"))), int(ErroreEcu::CodiceTaraturaErrato));
        QCOMPARE(esito(ecu, r, Comando("A")), int(ErroreEcu::LunghezzaErrata));
    }

    void programmazione()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        const Parametro &p = m_cat.Parametri[Par::SogliaGiriEntrataMinimo];
        QCOMPARE(esito(ecu, r, scritturaRam(Par::SogliaGiriEntrataMinimo, 777)), 0xFF);

        QCOMPARE(esito(ecu, r, Comando("I")), 0xFF);
        QCOMPARE(ecu.modo(), EcuSimulata::Modo::Programmazione);
        r.svuota();
        scorri(ecu, 1000);
        QVERIFY(r.frame.isEmpty()); // the stream has stopped

        QCOMPARE(esito(ecu, r, ComandoLettura(0xC000, 4)), int(ErroreEcu::ComandoNonAmmesso));
        QCOMPARE(esito(ecu, r, Comando("V")), int(ErroreEcu::ComandoNonAmmesso));
        QByteArray blocco(64, '\0');
        for (int i = 0; i < 64; ++i)
            blocco[i] = char(i * 3);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xC000, blocco)), 0xFF);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xF6C0, blocco)), 0xFF);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xF6E0, blocco)), int(ErroreEcu::IndirizzoNonValido));
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x0090, "\x01")), int(ErroreEcu::IndirizzoNonValido));
        QCOMPARE(ecu.leggiMemoria(0xC000, 64), blocco);
        QCOMPARE(ecu.leggiMemoria(0xF6C0, 64), blocco);
        // The new image brings a new stored idle threshold.
        QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(p.IndirizzoEE), ByteBE(1020, 2))), 0xFF);

        r.svuota();
        ecu.riceviDati(Comando("F"));
        ecu.avanzaTempo(40);
        QCOMPARE(r.frame.size(), 2);
        QCOMPARE(r.frame[0].payload, QByteArray::fromHex("65FF"));
        QCOMPARE(r.frame[1].lettera(), 'd');
        QCOMPARE(ecu.modo(), EcuSimulata::Modo::Applicazione);
        // The restarted application loads RAM from EEPROM: the try-out value is gone.
        QCOMPARE(ram(ecu, r, Par::SogliaGiriEntrataMinimo), 1020);
    }

    void senzaApplicazione()
    {
        OpzioniEcu o = manuale();
        o.applicazionePresente = false;
        EcuSimulata ecu(o);
        Raccolta r(ecu);
        scorri(ecu, 1000);
        QVERIFY(r.flusso('g').size() >= 3);
        QVERIFY(r.flusso('d').isEmpty());
        for (const FrameLetto &f : r.flusso('g'))
            QVERIFY(f.checksumOk && f.payload.size() >= 2);

        QCOMPARE(esito(ecu, r, ComandoLettura(0xC040, 14)), int(ErroreEcu::ComandoNonAmmesso));
        QCOMPARE(esito(ecu, r, Comando("V")), int(ErroreEcu::ComandoNonAmmesso));
        QCOMPARE(esito(ecu, r, ComandoScrittura(0xC000, "\x01")), int(ErroreEcu::ComandoNonAmmesso));
        QCOMPARE(esito(ecu, r, Comando("I")), 0xFF);
        r.svuota();
        scorri(ecu, 1000);
        QVERIFY(r.frame.isEmpty());
        QCOMPARE(esito(ecu, r, Comando("F")), 0xFF);
        r.svuota();
        scorri(ecu, 400);
        QCOMPARE(r.flusso('d').size(), 10);
        QVERIFY(r.flusso('g').isEmpty());
    }

    void frameInArrivo()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);
        // One byte at a time, after noise.
        const QByteArray v = Comando("V");
        ecu.riceviDati(QByteArray::fromHex("FF0055"));
        for (char b : v)
            ecu.riceviDati(QByteArray(1, b));
        QCOMPARE(r.risposte().size(), 1);

        // A bad checksum is ignored; the good frame right behind it is answered.
        QByteArray guasto = Comando("V");
        guasto[guasto.size() - 2] = char(guasto.at(guasto.size() - 2) + 1);
        r.svuota();
        ecu.riceviDati(guasto + ComandoLettura(0xC040, 2));
        QCOMPARE(r.risposte().size(), 1);
        QCOMPARE(r.risposte()[0].lettera(), 'r');

        // A frame in the ECU's own address order is not a command.
        r.svuota();
        ecu.riceviDati(CreaFrame("V", 0));
        QVERIFY(r.risposte().isEmpty());

        // A length byte below the frame's minimum costs only its STX.
        r.svuota();
        ecu.riceviDati(QByteArray::fromHex("0281") + Comando("V"));
        QCOMPARE(r.risposte().size(), 1);
    }

    void guastiDellaLinea()
    {
        EcuSimulata ecu(manuale());
        Raccolta r(ecu);

        ecu.scartaOgniNRisposte(3);
        r.svuota();
        for (int i = 0; i < 6; ++i)
            ecu.riceviDati(Comando("V"));
        QCOMPARE(r.risposte().size(), 4);
        ecu.scartaOgniNRisposte(0);

        ecu.corrompiProssimoFrame();
        r.svuota();
        ecu.avanzaTempo(40);
        ecu.riceviDati(Comando("V"));
        ecu.avanzaTempo(40);
        QCOMPARE(r.frame.size(), 3);
        QVERIFY(!r.frame[0].checksumOk);
        QVERIFY(r.frame[1].checksumOk && r.frame[2].checksumOk);

        ecu.corrompiOgniNFrame(2);
        r.svuota();
        scorri(ecu, 400);
        int cattivi = 0;
        for (const FrameLetto &f : r.frame)
            cattivi += f.checksumOk ? 0 : 1;
        QCOMPARE(cattivi, 5);
        ecu.corrompiOgniNFrame(0);

        ecu.impostaRumore(1, 5);
        r.svuota();
        scorri(ecu, 400);
        QCOMPARE(r.flusso().size(), 10);
        for (const FrameLetto &f : r.flusso())
            QVERIFY(f.checksumOk);
        QCOMPARE(r.lettore.rumore(), 50);
        QCOMPARE(r.grezzi.size(), 10 * (21 + 5));
        ecu.impostaRumore(0);

        // A write that touches the faulty cell is refused and changes nothing.
        ecu.impostaErroreScrittura(0x00A1, 0x07);
        const QByteArray prima = ecu.leggiMemoria(0x00A0, 2);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x00A0, ByteBE(999, 2))), 0x07);
        QCOMPARE(ecu.leggiMemoria(0x00A0, 2), prima);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x00A2, ByteBE(999, 2))), 0xFF);
        ecu.impostaErroreScrittura(0x00A1, ErroreEcu::Fatto);
        QCOMPARE(esito(ecu, r, ComandoScrittura(0x00A0, ByteBE(999, 2))), 0xFF);

        // Stalled: deaf and dumb; what was said meanwhile is not answered later.
        ecu.impostaStallo(true);
        r.svuota();
        ecu.riceviDati(Comando("V"));
        scorri(ecu, 400);
        QVERIFY(r.grezzi.isEmpty());
        ecu.impostaStallo(false);
        ecu.avanzaTempo(40);
        QCOMPARE(r.frame.size(), 1);
        QCOMPARE(r.frame[0].lettera(), 'd');

        // A late reply.
        ecu.impostaRitardoRisposta(150);
        r.svuota();
        QElapsedTimer orologio;
        orologio.start();
        ecu.riceviDati(Comando("V"));
        QVERIFY(r.risposte().isEmpty());
        QTRY_COMPARE_WITH_TIMEOUT(r.risposte().size(), 1, 2000);
        QVERIFY(orologio.elapsed() >= 140);
    }

    void cadenzaDellaLinea()
    {
        OpzioniEcu o = manuale();
        o.cadenzaReale = true;
        o.baud = 9600;
        EcuSimulata ecu(o);
        Raccolta r(ecu);
        // 120 bytes read: a frame of 127 bytes, 132 ms at 960 bytes a second.
        QElapsedTimer orologio;
        orologio.start();
        ecu.riceviDati(ComandoLettura(0xC100, 120));
        QVERIFY(r.grezzi.size() < 127);
        QTRY_COMPARE_WITH_TIMEOUT(r.grezzi.size(), 127, 2000);
        QVERIFY2(orologio.elapsed() >= 120, qPrintable(QString::number(orologio.elapsed())));

        // A reply waits behind the stream frame already on its way; a sample that finds the
        // line busy is skipped.
        r.svuota();
        ecu.avanzaTempo(40);
        ecu.riceviDati(Comando("V"));
        ecu.avanzaTempo(40);
        QTRY_COMPARE_WITH_TIMEOUT(r.frame.size(), 2, 2000);
        QCOMPARE(r.frame[0].lettera(), 'd');
        QCOMPARE(r.frame[1].lettera(), 'v');
        QTest::qWait(100);
        QCOMPARE(r.frame.size(), 2);
    }

    void memoriaSuFile()
    {
        QTemporaryDir cartella;
        QVERIFY(cartella.isValid());
        const QString percorso = cartella.filePath(QStringLiteral("ecu.bin"));
        OpzioniEcu o = manuale();
        o.fileMemoria = percorso;
        const Parametro &p = m_cat.Parametri[Par::SogliaGiriUscitaMinimo];
        {
            EcuSimulata ecu(o);
            QVERIFY(ecu.erroreMemoria().isEmpty());
            QCOMPARE(QFileInfo(percorso).size(), qint64(MappaMemoria::DimensioneSoftware));
            Raccolta r(ecu);
            QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(p.IndirizzoEE), ByteBE(1234, 2))), 0xFF);
            QCOMPARE(esito(ecu, r, scritturaRam(Par::SogliaGiriEntrataMinimo, 555)), 0xFF);
        }
        {
            o.versione.veicolo = "ALTRO";
            EcuSimulata ecu(o);
            Raccolta r(ecu);
            QCOMPARE(ee(ecu, r, Par::SogliaGiriUscitaMinimo), 1234);
            QCOMPARE(ram(ecu, r, Par::SogliaGiriUscitaMinimo), 1234); // booted from the kept EEPROM
            QVERIFY(ram(ecu, r, Par::SogliaGiriEntrataMinimo) != 555); // RAM is not kept
            QCOMPARE(ecu.leggiMemoria(MappaMemoria::Veicolo, 6), QByteArray("KV-SIM")); // the file's image wins
        }

        // Something else under that name is never overwritten.
        const QString estraneo = cartella.filePath(QStringLiteral("appunti.txt"));
        {
            QFile f(estraneo);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("not an ECU");
        }
        o.fileMemoria = estraneo;
        EcuSimulata ecu(o);
        QVERIFY(ecu.erroreMemoria().contains(estraneo));
        Raccolta r(ecu);
        QCOMPARE(esito(ecu, r, ComandoScrittura(quint32(p.IndirizzoEE), ByteBE(1300, 2))), 0xFF);
        QFile f(estraneo);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("not an ECU"));
    }


    void opzioniDaRigaDiComando()
    {
        const auto interpreta = [](const QStringList &argomenti, ImpostazioniProgramma &imp, QString &errore) {
            QCommandLineParser parser;
            PreparaRigaComando(parser);
            if (!parser.parse(QStringList{QStringLiteral("korvantine-ecu")} + argomenti)) {
                errore = parser.errorText();
                return false;
            }
            return InterpretaRigaComando(parser, imp, errore);
        };
        ImpostazioniProgramma imp;
        QString errore;
        QVERIFY2(interpreta({"--baud", "19200", "--rate", "10", "--pace", "--no-application",
                             "--write-error", "0xC110:7", "--write-error", "160", "--noise", "4:12",
                             "--stall", "2.5:1", "--hang-up", "30", "--code", "ABC", "--drop-reply", "3"},
                            imp, errore),
                 qPrintable(errore));
        QCOMPARE(imp.ecu.baud, 19200);
        QCOMPARE(imp.ecu.frameAlSecondo, 10);
        QVERIFY(imp.ecu.cadenzaReale);
        QVERIFY(!imp.ecu.applicazionePresente);
        QCOMPARE(imp.ecu.guasti.erroriScrittura.value(0xC110), quint8(7));
        QCOMPARE(imp.ecu.guasti.erroriScrittura.value(160), quint8(ErroreEcu::ScritturaFallita));
        QCOMPARE(imp.ecu.guasti.rumoreOgniNFrame, 4);
        QCOMPARE(imp.ecu.guasti.lunghezzaRumore, 12);
        QCOMPARE(imp.ecu.guasti.scartaOgniNRisposte, 3);
        QCOMPARE(imp.stalloDopoMs, 2500);
        QCOMPARE(imp.durataStalloMs, 1000);
        QCOMPARE(imp.riagganciaDopoMs, 30000);
        QCOMPARE(imp.ecu.versione.codice, QByteArray("ABC"));
        QVERIFY(imp.versioneData);

        const QList<QStringList> sbagliate = {
            {"--baud", "1200"},
            {"--rate", "0"},
            {"--write-error", "C110"},  // hexadecimal wants its 0x
            {"--write-error", "0xC110:255"},
            {"--noise", "3:0"},
            {"--stall", "soon"},
            {"--device", "/dev/ttyS0", "--link", "/tmp/ecu"},
        };
        for (const QStringList &a : sbagliate) {
            ImpostazioniProgramma altra;
            errore.clear();
            QVERIFY2(!interpreta(a, altra, errore), qPrintable(a.join(' ')));
            QVERIFY(errore.contains(a.first()));
        }
    }
};

QTEST_GUILESS_MAIN(TestEcuSimulata)
#include "tst_ecusimulata.moc"
