#include "shell/Configurazione.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

void scrivi(const QString &percorso, const QByteArray &byte)
{
    QFile f(percorso);
    QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(f.write(byte), byte.size());
}

QByteArray leggi(const QString &percorso)
{
    QFile f(percorso);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

const QStringList Porti = {"/dev/ttyUSB0", "/dev/ttyS10", "/dev/ttyS2", "/dev/ttyS0",
                           "/dev/ttyACM0"};

} // namespace

class TestConfigurazione : public QObject
{
    Q_OBJECT

private slots:
    void porta_data();
    void porta();
    void velocita_data();
    void velocita();
    void valoriFissi();
    void dispositivo_data();
    void dispositivo();
    void letturaDalFile();
    void fileMancante();
    void scrittura();
};

void TestConfigurazione::porta_data()
{
    QTest::addColumn<QString>("testo");
    QTest::addColumn<int>("numero");
    QTest::newRow("COM1") << "COM1" << 1;
    QTest::newRow("COM3") << "COM3" << 3;
    QTest::newRow("COM10") << "COM10" << 10;
    QTest::newRow("COM11") << "COM11" << 1;
    QTest::newRow("COM0") << "COM0" << 1;
    QTest::newRow("COMx") << "COMx" << 1;
    QTest::newRow("vuoto") << "" << 1;
    QTest::newRow("minuscolo") << "com4" << 4;
    QTest::newRow("spazio") << "COM 5" << 5;
    QTest::newRow("coda") << "COM7abc" << 7;
    QTest::newRow("meta pari") << "COM2.5" << 2;
    QTest::newRow("meta dispari") << "COM3.5" << 4;
    QTest::newRow("quasi 11") << "COM10.4" << 10;
    QTest::newRow("negativo") << "COM-3" << 1;
    QTest::newRow("esponente") << "COM1e1" << 10;
    QTest::newRow("enorme") << "COM99999999999999999999999" << 1;
    QTest::newRow("altro prefisso") << "XYZ6" << 6;
}

void TestConfigurazione::porta()
{
    QFETCH(QString, testo);
    QFETCH(int, numero);
    const ImpSeriale imp = ImpSerialeDaTesti(testo, "9600", {});
    QCOMPARE(imp.PortaCom, numero);
    QCOMPARE(imp.Porta, testo);
}

void TestConfigurazione::velocita_data()
{
    QTest::addColumn<QString>("testo");
    QTest::addColumn<int>("velocita");
    QTest::newRow("4800") << "4800" << 4800;
    QTest::newRow("9600") << "9600" << 9600;
    QTest::newRow("19200") << "19200" << 19200;
    QTest::newRow("38400") << "38400" << 38400;
    QTest::newRow("57600") << "57600" << 9600;
    QTest::newRow("115200") << "115200" << 9600;
    QTest::newRow("2400") << "2400" << 9600;
    QTest::newRow("decimali") << "19200.0" << 19200;
    QTest::newRow("quasi") << "19200.5" << 9600;
    QTest::newRow("testo") << "veloce" << 9600;
    QTest::newRow("vuoto") << "" << 9600;
    QTest::newRow("unita") << "38400 baud" << 38400;
}

void TestConfigurazione::velocita()
{
    QFETCH(QString, testo);
    QFETCH(int, velocita);
    QCOMPARE(ImpSerialeDaTesti("COM1", testo, {}).VelocitaCom, velocita);
}

void TestConfigurazione::valoriFissi()
{
    const ImpSeriale imp = ImpSerialeDaTesti("COM2", "4800", Porti);
    QCOMPARE(imp.ParitaCom, QChar(u'N'));
    QCOMPARE(imp.BitDatiCom, 8);
    QCOMPARE(imp.BitStopCom, 1);
}

void TestConfigurazione::dispositivo_data()
{
    QTest::addColumn<QString>("porta");
    QTest::addColumn<int>("numero");
    QTest::addColumn<QString>("dispositivo");
    // In natural order: ttyACM0, ttyS0, ttyS2, ttyS10, ttyUSB0.
    QTest::newRow("COM1") << "COM1" << 1 << "/dev/ttyACM0";
    QTest::newRow("COM2") << "COM2" << 2 << "/dev/ttyS0";
    QTest::newRow("COM3") << "COM3" << 3 << "/dev/ttyS2";
    QTest::newRow("COM4") << "COM4" << 4 << "/dev/ttyS10";
    QTest::newRow("COM5") << "COM5" << 5 << "/dev/ttyUSB0";
    QTest::newRow("COM6 manca") << "COM6" << 6 << "";
    QTest::newRow("COM11 e' il primo") << "COM11" << 1 << "/dev/ttyACM0";
    QTest::newRow("percorso") << "/dev/serial/by-id/usb-FTDI" << 1 << "/dev/serial/by-id/usb-FTDI";
}

void TestConfigurazione::dispositivo()
{
    QFETCH(QString, porta);
    QFETCH(int, numero);
    QFETCH(QString, dispositivo);
    const ImpSeriale imp = ImpSerialeDaTesti(porta, "9600", Porti);
    QCOMPARE(imp.PortaCom, numero);
    QCOMPARE(imp.nomeDispositivo, dispositivo);
    // The order the system lists them in does not matter.
    QStringList rovescio = Porti;
    std::reverse(rovescio.begin(), rovescio.end());
    QCOMPARE(NomeDispositivo(porta, numero, rovescio), dispositivo);
}

void TestConfigurazione::letturaDalFile()
{
    QTemporaryDir dir;
    const QString ini = PercorsoIni(dir.path());
    QCOMPARE(ini, dir.filePath("KORVANTINE.INI"));
    const QByteArray testo = "[IMPOSTAZIONI]\r\nLingua=ITALIANO\r\n\r\n"
                             "[seriale]\r\nporta=COM2\r\nBAUDRATE=57600\r\n";
    scrivi(ini, testo);
    const ImpSeriale imp = LeggiImpSeriale(ini, Porti);
    QCOMPARE(imp.Porta, QString("COM2"));
    QCOMPARE(imp.PortaCom, 2);
    QCOMPARE(imp.VelocitaCom, 9600);
    QCOMPARE(imp.nomeDispositivo, QString("/dev/ttyS0"));
    // Reading corrects nothing: the file keeps its text until the user saves.
    QCOMPARE(leggi(ini), testo);

    // The file's own spelling of its name is found.
    QVERIFY(QFile::rename(ini, dir.filePath("korvantine.ini")));
    QCOMPARE(PercorsoIni(dir.path()), dir.filePath("korvantine.ini"));
}

void TestConfigurazione::fileMancante()
{
    QTemporaryDir dir;
    const ImpSeriale imp = LeggiImpSeriale(dir.filePath("KORVANTINE.INI"), Porti);
    QCOMPARE(imp.Porta, QString("COM1"));
    QCOMPARE(imp.PortaCom, 1);
    QCOMPARE(imp.VelocitaCom, 9600);
    QCOMPARE(imp.nomeDispositivo, QString("/dev/ttyACM0"));
    QVERIFY(!QFile::exists(dir.filePath("KORVANTINE.INI")));
    QVERIFY(ImpSerialeDaTesti("COM1", "9600", {}).nomeDispositivo.isEmpty());
}

void TestConfigurazione::scrittura()
{
    QTemporaryDir dir;
    const QString ini = dir.filePath("KORVANTINE.INI");
    scrivi(ini, "; impostazioni\r\n[SERIALE]\r\nPorta=COM1\r\nBaudRate=9600\r\n\r\n"
                "[GRAFICI]\r\nGrafico_1=2\r\n");
    QVERIFY(scriviImpSeriale(ini, "COM3", 19200));
    QCOMPARE(leggi(ini), QByteArray("; impostazioni\r\n[SERIALE]\r\nPorta=COM3\r\nBaudRate=19200\r\n\r\n"
                                    "[GRAFICI]\r\nGrafico_1=2\r\n"));
    const ImpSeriale imp = LeggiImpSeriale(ini, Porti);
    QCOMPARE(imp.PortaCom, 3);
    QCOMPARE(imp.VelocitaCom, 19200);

    const QString nuovo = dir.filePath("NUOVO.INI");
    QVERIFY(scriviImpSeriale(nuovo, "COM2", 4800));
    QCOMPARE(leggi(nuovo), QByteArray("[SERIALE]\r\nPorta=COM2\r\nBaudrate=4800\r\n"));

    QVERIFY(!scriviImpSeriale(dir.filePath("NO/KORVANTINE.INI"), "COM2", 4800));
}

QTEST_GUILESS_MAIN(TestConfigurazione)
#include "tst_configurazione.moc"
