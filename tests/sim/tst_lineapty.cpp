// The simulated ECU behind a real pseudo-terminal, talked to with QSerialPort as the
// workshop program does: what only a real line shows. Commands and faults over the line,
// and a line that hangs up and comes back, are met by the link and page tests.

#include "EcuSimulata.h"

#include "link/Frame.h"
#include "link/Ricevitore.h"
#include "support/FileDiProva.h"

#include <QFileInfo>
#include <QScopeGuard>
#include <QSerialPort>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace kv;
using namespace kv::sim;

namespace {

// The tester's end: a QSerialPort and the letters of the good frames it has read.
class Tester : public QObject
{
public:
    bool apri(const QString &percorso)
    {
        m_ricevitore.impostaGestore([this](const QByteArray &payload) { lettere.append(payload.at(0)); });
        porta.setPortName(percorso);
        connect(&porta, &QSerialPort::readyRead, this, [this] {
            const QByteArray b = porta.readAll();
            byteLetti += b.size();
            m_ricevitore.ricevi(b);
        });
        return porta.open(QIODevice::ReadWrite) && porta.setBaudRate(9600);
    }
    // The letter of the first reply to comando, within a second.
    char risposta(const QByteArray &comando)
    {
        lettere.clear();
        porta.write(comando);
        porta.flush();
        const auto prima = [this] {
            for (char l : std::as_const(lettere))
                if (l != 'd' && l != 'g')
                    return l;
            return '\0';
        };
        return QTest::qWaitFor([&] { return prima() != '\0'; }, 1000) ? prima() : '\0';
    }

    QSerialPort porta;
    QByteArray lettere;
    qint64 byteLetti = 0;

private:
    Ricevitore m_ricevitore;
};

} // namespace

class TestLineaPty : public QObject
{
    Q_OBJECT

    QTemporaryDir m_cartella;

private slots:
    void inUnAltroThread()
    {
        auto *ecu = new EcuSimulata;
        QVERIFY(ecu->apriPty());
        QThread thread;
        ecu->moveToThread(&thread);
        connect(&thread, &QThread::finished, ecu, &QObject::deleteLater);
        thread.start();
        const auto fermo = qScopeGuard([&thread] {
            thread.quit();
            thread.wait(2000);
        }); // a failed check included
        QMetaObject::invokeMethod(ecu, &EcuSimulata::avvia);

        // Over a second's worth of stream with nobody at the far end: what the tester
        // finds on opening is recent, not everything since the start.
        QTest::qWait(2500);
        Tester t;
        QVERIFY(t.apri(ecu->percorsoDispositivo()));
        QTest::qWait(30);
        QVERIFY2(t.byteLetti > 0 && t.byteLetti <= 1024 + 2 * 21, qPrintable(QString::number(t.byteLetti)));
        QTRY_VERIFY_WITH_TIMEOUT(t.lettere.count('d') >= 5, 2000);
        QCOMPARE(t.risposta(CreaFrame("V")), 'v');
        QCOMPARE(ecu->leggiMemoria(MappaMemoria::Codice, 14), StringheVersione().codice);
    }

    void aperturaNonRiuscita()
    {
        EcuSimulata ecu;
        QVERIFY(!ecu.apriDispositivo(QStringLiteral("/nonexistent/ttyKV0")));
        QVERIFY(ecu.erroreLinea().contains(QLatin1String("/nonexistent/ttyKV0")));
        QVERIFY(ecu.percorsoDispositivo().isEmpty());
        // A file in the place of the link is no link, and stays as it was.
        const QString file = m_cartella.filePath(QStringLiteral("note.txt"));
        scrivi(file, "keep me");
        QVERIFY(!ecu.apriPty(file));
        QVERIFY(ecu.erroreLinea().contains(QLatin1String("not a symbolic link")));
        QCOMPARE(leggi(file), QByteArray("keep me"));
    }
};

QTEST_GUILESS_MAIN(TestLineaPty)
#include "tst_lineapty.moc"
