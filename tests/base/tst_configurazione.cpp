#include "base/Configurazione.h"

#include "support/FileDiProva.h"

#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

// In natural order: ttyACM0, ttyS0, ttyS2, ttyS10, ttyUSB0.
const QStringList Porti = {"/dev/ttyUSB0", "/dev/ttyS10", "/dev/ttyS2", "/dev/ttyS0", "/dev/ttyACM0"};

} // namespace

class TestConfigurazione : public QObject
{
    Q_OBJECT

private slots:
    void serialSettingsFromTheirTexts_data()
    {
        QTest::addColumn<QString>("porta");
        QTest::addColumn<QString>("baud");
        QTest::addColumn<int>("numero");
        QTest::addColumn<int>("velocita");
        QTest::addColumn<QString>("dispositivo");
        const auto riga = [](const char *porta, const char *baud, int numero, int velocita,
                             const char *disp) {
            QTest::newRow((QByteArray(porta) + " " + baud).constData())
                << porta << baud << numero << velocita << disp;
        };
        riga("COM1", "4800", 1, 4800, "/dev/ttyACM0");
        riga("COM2", "9600", 2, 9600, "/dev/ttyS0");
        riga("COM3", "19200", 3, 19200, "/dev/ttyS2");
        riga("COM4", "38400", 4, 38400, "/dev/ttyS10");
        riga("COM5", "57600", 5, 9600, "/dev/ttyUSB0");
        riga("COM6", "115200", 6, 9600, "");
        riga("COM10", "2400", 10, 9600, "");
        riga("COM11", "19200.0", 1, 19200, "/dev/ttyACM0");
        riga("COM0", "19200.5", 1, 9600, "/dev/ttyACM0");
        riga("COMx", "veloce", 1, 9600, "/dev/ttyACM0");
        riga("", "", 1, 9600, "/dev/ttyACM0");
        riga("com4", "38400 baud", 4, 38400, "/dev/ttyS10");
        riga("COM 5", " 4800", 5, 4800, "/dev/ttyUSB0");
        // Half to even, as the old 16-bit conversion rounded; the rest of the number reading is
        // ValNumero's.
        riga("COM2.5", "9600", 2, 9600, "/dev/ttyS0");
        riga("COM3.5", "9600", 4, 9600, "/dev/ttyS10");
        riga("COM-3", "9600", 1, 9600, "/dev/ttyACM0");
        riga("COM99999999999999999999999", "9600", 1, 9600, "/dev/ttyACM0");
        riga("XYZ6", "9600", 6, 9600, "");
        riga("/dev/serial/by-id/usb-FTDI", "9600", 1, 9600, "/dev/serial/by-id/usb-FTDI");
    }

    void serialSettingsFromTheirTexts()
    {
        QFETCH(QString, porta);
        QFETCH(QString, baud);
        QFETCH(int, numero);
        QFETCH(int, velocita);
        QFETCH(QString, dispositivo);
        const ImpSeriale imp = ImpSerialeDaTesti(porta, baud, Porti);
        QCOMPARE(imp.Porta, porta);
        QCOMPARE(imp.PortaCom, numero);
        QCOMPARE(imp.VelocitaCom, velocita);
        QCOMPARE(imp.nomeDispositivo, dispositivo);
        // The order the system lists them in does not matter.
        QStringList rovescio = Porti;
        std::reverse(rovescio.begin(), rovescio.end());
        QCOMPARE(NomeDispositivo(porta, numero, rovescio), dispositivo);
    }

    void readingTheFileCorrectsNothing()
    {
        QTemporaryDir dir;
        const QString ini = PercorsoIni(dir.path());
        const QByteArray testo =
            "[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n\r\n[seriale]\r\nporta=COM2\r\nBAUDRATE=57600\r\n";
        scrivi(ini, testo);
        const ImpSeriale imp = LeggiImpSeriale(ini, Porti);
        QCOMPARE(imp.PortaCom, 2);
        QCOMPARE(imp.VelocitaCom, 9600);
        QCOMPARE(leggi(ini), testo);
        // The file's own spelling of its name is found.
        QVERIFY(QFile::rename(ini, dir.filePath("korvantine.ini")));
        QCOMPARE(PercorsoIni(dir.path()), dir.filePath("korvantine.ini"));

        const ImpSeriale senza = LeggiImpSeriale(dir.filePath("NO.INI"), Porti);
        QCOMPARE(senza.Porta, QString("COM1"));
        QCOMPARE(senza.nomeDispositivo, QString("/dev/ttyACM0"));
        QVERIFY(!QFile::exists(dir.filePath("NO.INI")));
        QVERIFY(ImpSerialeDaTesti("COM1", "9600", {}).nomeDispositivo.isEmpty());
    }

    void writingKeepsTheRestOfTheFile()
    {
        QTemporaryDir dir;
        const QString ini = dir.filePath("KORVANTINE.INI");
        const QByteArray coda = "\r\n[GRAFICI]\r\nGrafico_1=2\r\n";
        scrivi(ini, "; impostazioni\r\n[SERIALE]\r\nPorta=COM1\r\nBaudRate=9600\r\n" + coda);
        QVERIFY(scriviImpSeriale(ini, "COM3", 19200));
        QCOMPARE(leggi(ini), "; impostazioni\r\n[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n" + coda);
        QCOMPARE(LeggiImpSeriale(ini, Porti).VelocitaCom, 19200);

        QVERIFY(scriviImpSeriale(dir.filePath("NUOVO.INI"), "COM2", 4800));
        QCOMPARE(leggi(dir.filePath("NUOVO.INI")),
                 QByteArray("[SERIALE]\r\nPorta=COM2\r\nBaudrate=4800\r\n"));
        QVERIFY(!scriviImpSeriale(dir.filePath("NO/KORVANTINE.INI"), "COM2", 4800));
    }
};

QTEST_GUILESS_MAIN(TestConfigurazione)
#include "tst_configurazione.moc"
