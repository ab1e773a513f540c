// The simulated ECU behind a real pseudo-terminal, talked to with QSerialPort as the
// workshop program does. The slow cases of the simulator live here, grouped.

#include "AiutoSim.h"

#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSerialPort>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>
#include <QTest>

#include <memory>

namespace {

// The tester's end: a QSerialPort and the frames it has read.
class Tester : public QObject
{
public:
    bool apri(const QString &percorso, int baud = 9600)
    {
        porta.setPortName(percorso);
        if (!porta.open(QIODevice::ReadWrite))
            return false;
        porta.setBaudRate(baud);
        connect(&porta, &QSerialPort::readyRead, this, [this] {
            const QByteArray b = porta.readAll();
            byteLetti += b.size();
            frame.append(lettore.aggiungi(b));
        });
        return true;
    }
    void invia(const QByteArray &bytes)
    {
        porta.write(bytes);
        porta.flush();
    }
    // Lets everything already on the line arrive, then forgets it.
    void svuota()
    {
        QTest::qWait(60);
        frame.clear();
        byteLetti = 0;
    }
    // The first frame that is not live data, within ms.
    FrameLetto risposta(int ms = 1000)
    {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < ms) {
            for (const FrameLetto &f : std::as_const(frame))
                if (f.lettera() != 'd' && f.lettera() != 'g')
                    return f;
            QTest::qWait(10);
        }
        return {};
    }
    int conta(char lettera) const
    {
        int n = 0;
        for (const FrameLetto &f : frame)
            n += f.lettera() == lettera ? 1 : 0;
        return n;
    }

    QSerialPort porta;
    LettoreFrameEcu lettore;
    QList<FrameLetto> frame;
    qint64 byteLetti = 0;
};

} // namespace

class TestLineaPty : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_cartella;
    std::unique_ptr<EcuSimulata> m_ecu;
    std::unique_ptr<Tester> m_tester;
    Catalogo m_cat;

private slots:
    void initTestCase()
    {
        QVERIFY(m_cartella.isValid());
        const QString collegamento = m_cartella.filePath(QStringLiteral("ecu"));
        m_ecu = std::make_unique<EcuSimulata>();
        QVERIFY2(m_ecu->apriPty(collegamento), qPrintable(m_ecu->erroreLinea()));
        QVERIFY(m_ecu->percorsoDispositivo().startsWith(QLatin1String("/dev/")));
        QCOMPARE(QFileInfo(collegamento).symLinkTarget(), m_ecu->percorsoDispositivo());
        m_ecu->avvia();
        m_tester = std::make_unique<Tester>();
        QVERIFY2(m_tester->apri(collegamento), qPrintable(m_tester->porta.errorString()));
    }

    void comandiSullaLinea()
    {
        Tester &t = *m_tester;
        t.svuota();
        t.invia(Comando("V"));
        const FrameLetto v = t.risposta();
        QVERIFY(v.checksumOk);
        QCOMPARE(v.payload.size(), 49);
        QCOMPARE(v.payload.mid(1, 10), StringheVersione().veicolo);
        QCOMPARE(v.payload.mid(21, 14), StringheVersione().codice);

        const Parametro &pMin = m_cat.Parametri[Par::TpsTaratoMinimo];
        t.svuota();
        t.invia(ComandoLettura(quint32(pMin.IndirizzoEE), pMin.Dimensione));
        const FrameLetto r = t.risposta();
        QCOMPARE(r.lettera(), 'r');
        QCOMPARE(NumeroBE(r.payload.mid(1)), 60.0);

        const Parametro &p = m_cat.Parametri[Par::SogliaGiriUscitaMinimo];
        t.svuota();
        t.invia(ComandoScrittura(quint32(p.IndirizzoRAM), ByteBE(1250, 2)));
        QCOMPARE(t.risposta().payload, QByteArray::fromHex("65FF"));
        QCOMPARE(m_ecu->leggiMemoria(quint32(p.IndirizzoRAM), 2), ByteBE(1250, 2));
    }

    void frequenzaDelFlusso()
    {
        Tester &t = *m_tester;
        t.svuota();
        QTest::qWait(2000);
        const int dati = t.conta('d');
        QVERIFY2(dati >= 25 && dati <= 75, qPrintable(QString::number(dati))); // 25 a second, loosely
        for (const FrameLetto &f : std::as_const(t.frame))
            QVERIFY(f.checksumOk && f.payload.size() == 15);
    }

    void guastiSullaLinea()
    {
        Tester &t = *m_tester;

        m_ecu->scartaOgniNRisposte(1);
        t.svuota();
        t.invia(Comando("V"));
        QCOMPARE(t.risposta(500).lettera(), '\0');
        QVERIFY(t.conta('d') > 5); // the stream goes on all the same
        m_ecu->scartaOgniNRisposte(0);

        t.svuota();
        m_ecu->corrompiProssimoFrame();
        QTest::qWait(500);
        int cattivi = 0;
        for (const FrameLetto &f : std::as_const(t.frame))
            cattivi += f.checksumOk ? 0 : 1;
        QCOMPARE(cattivi, 1);

        m_ecu->impostaErroreScrittura(0x00A0, 0x07);
        t.svuota();
        t.invia(ComandoScrittura(0x00A0, ByteBE(1000, 2)));
        QCOMPARE(t.risposta().payload, QByteArray::fromHex("6507"));
        m_ecu->togliErroriScrittura();

        m_ecu->impostaStallo(true);
        t.svuota();
        t.invia(Comando("V"));
        QTest::qWait(500);
        QCOMPARE(t.byteLetti, 0);
        m_ecu->impostaStallo(false);
        QTRY_VERIFY_WITH_TIMEOUT(t.conta('d') > 0, 1000);
        QCOMPARE(t.risposta(200).lettera(), '\0');
    }

    void cadenzaDiUnaLineaLenta()
    {
        // 25 samples of 21 bytes a second do not fit into 4800 baud: the line runs full
        // and the ECU skips samples, as a real one with a busy UART does.
        OpzioniEcu o;
        o.baud = 4800;
        o.cadenzaReale = true;
        EcuSimulata ecu(o);
        QVERIFY2(ecu.apriPty(), qPrintable(ecu.erroreLinea()));
        Tester t;
        QVERIFY(t.apri(ecu.percorsoDispositivo(), 4800));
        ecu.avvia();
        QTest::qWait(300);
        t.svuota();
        QTest::qWait(2000);
        QVERIFY2(t.byteLetti > 2 * 480 * 8 / 10 && t.byteLetti <= 2 * 480 * 11 / 10,
                 qPrintable(QString::number(t.byteLetti)));
        QVERIFY(t.conta('d') < 2 * 25);

        t.svuota();
        QElapsedTimer orologio;
        orologio.start();
        t.invia(Comando("V"));
        QCOMPARE(t.risposta().lettera(), 'v');
        // 55 bytes of reply behind at least part of a stream frame: over 110 ms at 480 bytes/s.
        QVERIFY2(orologio.elapsed() >= 110, qPrintable(QString::number(orologio.elapsed())));
    }

    void inUnAltroThread()
    {
        auto *ecu = new EcuSimulata;
        QVERIFY(ecu->apriPty());
        QThread thread;
        ecu->moveToThread(&thread);
        connect(&thread, &QThread::finished, ecu, &QObject::deleteLater);
        thread.start();
        // Stopped on every way out, a failed check included.
        struct Fermo
        {
            QThread &t;
            ~Fermo()
            {
                t.quit();
                t.wait(2000);
            }
        } fermo{thread};
        QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia);

        // Over a second's worth of stream with nobody at the far end: what the tester
        // finds on opening is recent, not everything since the start.
        QTest::qWait(2500);
        Tester t;
        QVERIFY(t.apri(ecu->percorsoDispositivo()));
        QTest::qWait(30);
        QVERIFY2(t.byteLetti > 0 && t.byteLetti <= 1024 + 2 * 21, qPrintable(QString::number(t.byteLetti)));
        QTRY_VERIFY_WITH_TIMEOUT(t.conta('d') >= 5, 2000);
        t.invia(Comando("V"));
        QCOMPARE(t.risposta().lettera(), 'v');
        QCOMPARE(ecu->leggiMemoria(MappaMemoria::Codice, 14), StringheVersione().codice);
    }

    void aperturaNonRiuscita()
    {
        EcuSimulata ecu;
        QVERIFY(!ecu.apriDispositivo(QStringLiteral("/nonexistent/ttyKV0")));
        QVERIFY(ecu.erroreLinea().contains(QLatin1String("/nonexistent/ttyKV0")));
        QVERIFY(ecu.percorsoDispositivo().isEmpty());

        const QString file = m_cartella.filePath(QStringLiteral("note.txt"));
        {
            QFile f(file);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write("keep me");
        }
        QVERIFY(!ecu.apriPty(file));
        QVERIFY(ecu.erroreLinea().contains(QLatin1String("not a symbolic link")));
        QFile f(file);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), QByteArray("keep me"));
    }

    void riaggancio()
    {
        Tester &t = *m_tester;
        const QString collegamento = m_cartella.filePath(QStringLiteral("ecu"));
        m_ecu->riaggancia();
        QTRY_VERIFY_WITH_TIMEOUT(t.porta.error() != QSerialPort::NoError, 3000);
        QVERIFY(t.porta.error() == QSerialPort::ResourceError || t.porta.error() == QSerialPort::ReadError);
        QVERIFY(!QFileInfo::exists(collegamento) && !QFileInfo(collegamento).isSymLink());

        // A new line: a new device behind the same fixed path. The tester lets go of the
        // dead port first, as the workshop program does before opening again.
        t.porta.close();
        QVERIFY(m_ecu->riapriLinea());
        QVERIFY(!m_ecu->percorsoDispositivo().isEmpty());
        QCOMPARE(QFileInfo(collegamento).symLinkTarget(), m_ecu->percorsoDispositivo());
        Tester nuovo;
        QVERIFY2(nuovo.apri(collegamento), qPrintable(nuovo.porta.errorString()));
        nuovo.invia(Comando("V"));
        QCOMPARE(nuovo.risposta().lettera(), 'v');
    }
};

QTEST_GUILESS_MAIN(TestLineaPty)
#include "tst_lineapty.moc"
