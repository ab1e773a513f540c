// The line watch on a scripted port, its two timers fired by hand: a port that carries nothing
// like an ECU, and a port that goes away in the middle of a dialogue and comes back.
#include "support/ProgrammaFinto.h"

#include <QSignalSpy>
#include <QTest>

using namespace kv;

using Stato = SorveglianzaLinea::Stato;

class TstLinea : public QObject, ProgrammaFinto
{
    Q_OBJECT

    Stato stato() const { return p->linea.sorveglianza().stato(); }

private slots:
    void init()
    {
        creaProgramma();
        p->dispositivoForzato = QStringLiteral("/dev/ttyUSB3");
        p->seriale.VelocitaCom = 19200;
        QVERIFY(p->ApriPorta());
        QCOMPARE(stato(), Stato::Aperta);
    }

    void nothingLikeAnEcuIsToldAndAGoodFrameEndsIt_data()
    {
        QTest::addColumn<QByteArray>("sullaLinea");
        QTest::newRow("silence") << QByteArray();
        QTest::newRow("noise, or the wrong speed") << QByteArray::fromHex("55aa13ff00807f66e01cfe");
        QByteArray rovinato = CreaFrame(datiLive(0), 0);
        rovinato[rovinato.size() - 2] = char(rovinato.at(rovinato.size() - 2) ^ 0x5A);
        QTest::newRow("frames that fail their checksum") << rovinato + rovinato;
    }

    void nothingLikeAnEcuIsToldAndAGoodFrameEndsIt()
    {
        QFETCH(QByteArray, sullaLinea);
        QSignalSpy cambi(&p->linea.sorveglianza(), &SorveglianzaLinea::statoCambiato);
        QCOMPARE(silenzio->interval(), 5000);
        porta->arriva(sullaLinea);
        QVERIFY(silenzio->scatta());
        QCOMPARE(stato(), Stato::Muta);
        QCOMPARE(cambi.size(), 1);
        QVERIFY(!silenzio->isEnabled()); // said once
        QVERIFY(porta->scritti.isEmpty());
        QCOMPARE(p->linea.sorveglianza().impostazioni().dispositivo, QStringLiteral("/dev/ttyUSB3"));
        QCOMPARE(p->linea.sorveglianza().impostazioni().velocita, 19200);

        // A good frame right behind a spoilt one may wait for the next arrival.
        arriva("g\x01");
        arriva("g\x01");
        QCOMPARE(stato(), Stato::Aperta);
        QVERIFY(silenzio->isEnabled());
        QVERIFY(porta->scritti.isEmpty());
    }

    void aLostPortEndsTheDialogueAndTheEcuIsIdentifiedWhenItComesBack()
    {
        QSignalSpy frame(&p->linea.identificazione(), &Identificazione::frameAbilitato);
        arriva(datiLive(0));
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(111));
        QCOMPARE(porta->scritti, QByteArrayList{CreaFrame("V")});

        porta->perdi();
        QCOMPARE(stato(), Stato::Persa);
        // The request in flight ended as its time-out would: the link is free, the frame enabled.
        QCOMPARE(p->linea.motore().StatoDialogo(), qint16(-1));
        QCOMPARE(frame.last().at(0).toBool(), true);
        QVERIFY(!silenzio->isEnabled());
        QCOMPARE(riapertura->interval(), 1000);

        // Nothing goes to a dead port, whoever asks.
        p->linea.motore().svuotaCoda();
        p->linea.motore().accoda("V");
        QVERIFY(!p->linea.motore().avvia(111, MotoreDialogo::IntervalloLettura));
        porta->riesce = false;
        for (int i = 0; i < 3; ++i)
            QVERIFY(riapertura->scatta());
        QCOMPARE(stato(), Stato::Persa);
        QCOMPARE(porta->aperture, 4);
        QCOMPARE(porta->ultime.dispositivo, QStringLiteral("/dev/ttyUSB3"));
        QCOMPARE(porta->ultime.velocita, 19200);
        QCOMPARE(porta->scritti.size(), 1);

        porta->riesce = true;
        QSignalSpy riaperta(&p->linea.sorveglianza(), &SorveglianzaLinea::riaperta);
        QVERIFY(riapertura->scatta());
        QCOMPARE(riaperta.size(), 1);
        QCOMPARE(stato(), Stato::Aperta);
        QVERIFY(!riapertura->isEnabled());
        QVERIFY(silenzio->isEnabled());
        arriva(datiLive(0));
        QCOMPARE(porta->scritti, (QByteArrayList{CreaFrame("V"), CreaFrame("V")}));

        // A port closed on purpose (settings that fail) is not tried again.
        porta->riesce = false;
        QVERIFY(!p->ApriPorta());
        QCOMPARE(stato(), Stato::Chiusa);
        QVERIFY(!riapertura->isEnabled() && !silenzio->isEnabled());
    }
};

QTEST_GUILESS_MAIN(TstLinea)
#include "tst_linea.moc"
