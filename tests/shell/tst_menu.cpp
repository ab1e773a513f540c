// The menu's rules without a widget: what each state of the ECU and each language file
// leaves enabled, hidden or open, and the access word of the service mode.
#include "base/Lingua.h"
#include "link/StatoEcu.h"
#include "shell/InfoProgramma.h"
#include "shell/Menu.h"
#include "shell/StatoMenu.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace kv;

namespace {

// Which entries are enabled, '1' or '0' over the visible ones.
QString abilitate(const std::vector<Menu::Voce> &voci)
{
    QString s;
    for (const Menu::Voce &v : voci) {
        if (v.visibile)
            s += v.abilitata ? u'1' : u'0';
    }
    return s;
}

} // namespace

class TstMenu : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    Lingua lingua;

    std::vector<Menu::Voce> opzioni(int f, const StatoEcu &ecu, bool assistenza, const Lingua &l)
    {
        return Menu::Opzioni(f, ecu, assistenza,
                             [&l](const QString &k) { return l.LeggiTesto("MainLambda", k); });
    }
    std::vector<Menu::Voce> opzioni(int f, const StatoEcu &ecu, bool assistenza)
    {
        return opzioni(f, ecu, assistenza, lingua);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(
            QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
        lingua = Lingua(cartella.path());
        lingua.LeggiImpLingua();
    }

    void enabledFunctionsAndEntriesByEcuState_data()
    {
        QTest::addColumn<QList<int>>("flag"); // EcuNormale, EcuInMarcia, TpsPresente, ModoAssistenza
        QTest::addColumn<int>("sceltaDopo");
        QTest::addColumn<QString>("atteso"); // entries of each function, '-' for a function off
        QTest::newRow("normal ECU") << QList<int>{-1, 1, -1, 0} << 3 << "111 11 1111 11111 111111111111";
        QTest::newRow("service mode")
            << QList<int>{-1, 1, -1, 1} << 3 << "111 11 11111111111 11111 111111111111";
        // After a 'g' frame: programming and utilities only, and the selection goes.
        QTest::newRow("no application") << QList<int>{0, 1, -1, 0} << -1 << "100 - - - 011011000001";
        // A status other than 0: no tuning, and only the sequence of the calibration entries.
        QTest::newRow("calibration status") << QList<int>{-1, 0, -1, 0} << 3 << "111 11 - 00001 111111111111";
        QTest::newRow("no TPS") << QList<int>{-1, 1, 0, 0} << 3 << "111 11 1011 11111 111111111111";
        QTest::newRow("no TPS, service")
            << QList<int>{-1, 1, 0, 1} << 3 << "111 11 11110111111 11111 111111111111";
    }

    void enabledFunctionsAndEntriesByEcuState()
    {
        QFETCH(QList<int>, flag);
        QFETCH(int, sceltaDopo);
        QFETCH(QString, atteso);
        StatoEcu stato;
        stato.EcuNormale = flag[0] != 0;
        stato.EcuInMarcia = flag[1] != 0;
        stato.TpsPresente = flag[2] != 0;
        const bool assistenza = flag[3] != 0;
        StatoMenu menu;
        menu.scegli(Funzione::Taratura);
        menu.ecuCambiata(stato);
        QCOMPARE(static_cast<int>(menu.FunzioneScelta()), sceltaDopo);
        QStringList voci;
        for (int i = 0; i < Menu::NumeroFunzioni; ++i)
            voci << (Menu::FunzioneAbilitata(i, stato) ? abilitate(opzioni(i, stato, assistenza))
                                                       : QString("-"));
        QCOMPARE(voci.join(u' '), atteso);
        // The one entry a missing TPS greys is the pump page.
        for (const Menu::Voce &v : opzioni(2, stato, assistenza))
            QCOMPARE(v.visibile && !v.abilitata, !stato.TpsPresente && v.pagina == IdPagina::MP_Pompata);
    }

    void theLanguageFileSetsTheListsLength()
    {
        QTemporaryDir altra;
        QFile f(altra.filePath("PROVA.LNG"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[MainLambda]\r\nUTILITA.0=Version\r\nUTILITA.1=\r\nUTILITA.2=   \r\nUTILITA.3=Delete\r\n"
                "PROGRAMMAZIONE.0=Software\r\nPROGRAMMAZIONE.1=Maps\r\nPROGRAMMAZIONE.3=Extra\r\n");
        f.close();
        Lingua prova(altra.path());
        prova.LeggiImpLingua();
        StatoEcu stato;
        const auto utilita = opzioni(4, stato, false, prova);
        QCOMPARE(abilitate(utilita), QStringLiteral("11"));
        QVERIFY(utilita[3].visibile && !utilita[1].visibile && !utilita[2].visibile && !utilita[11].visibile);
        // Text past the table's rows shows, but opens nothing.
        const auto prog = opzioni(0, stato, false, prova);
        QVERIFY(prog[3].visibile && !prog[3].abilitata);
        QCOMPARE(prog[3].pagina, IdPagina::Nessuna);
        QVERIFY(opzioni(5, stato, false, prova).empty());

        Lingua nessuna(altra.filePath("manca"));
        nessuna.LeggiImpLingua();
        for (int i = 0; i < Menu::NumeroFunzioni; ++i)
            QVERIFY(abilitate(opzioni(i, stato, false, nessuna)).isEmpty());
    }

    void accessWord_data()
    {
        QTest::addColumn<qint16>("modo");
        QTest::addColumn<QString>("parola");
        QTest::addColumn<int>("esito");
        QTest::addColumn<qint16>("modoDopo");
        using E = Menu::EsitoParola;
        QTest::newRow("upper") << qint16(0) << "TORBA" << int(E::Assistenza) << qint16(1);
        QTest::newRow("lower") << qint16(0) << "torba" << int(E::Assistenza) << qint16(1);
        QTest::newRow("mixed, already in service") << qint16(1) << "ToRbA" << int(E::Assistenza) << qint16(1);
        QTest::newRow("wrong in service: silent exit") << qint16(1) << "torb" << int(E::Normale) << qint16(0);
        QTest::newRow("empty in service") << qint16(1) << "" << int(E::Normale) << qint16(0);
        QTest::newRow("wrong in normal") << qint16(0) << "TORBA " << int(E::Errata) << qint16(0);
    }

    void accessWord()
    {
        QFETCH(qint16, modo);
        QFETCH(QString, parola);
        QFETCH(int, esito);
        QFETCH(qint16, modoDopo);
        StatoMenu menu;
        menu.impostaAssistenza(modo != 0);
        QCOMPARE(int(Menu::VerificaParola(menu, parola)), esito);
        QCOMPARE(menu.ModoAssistenza(), modoDopo != 0);
    }

    void versionNumber()
    {
        const QList<std::pair<const char *, const char *>> casi = {{"1.2.7", "1.02"},  {"0.1.0", "0.01"},
                                                                   {"12.34", "12.34"}, {"3", "3.00"},
                                                                   {"x.y", "0.00"},    {"", "0.00"}};
        for (const auto &[testo, numero] : casi)
            QCOMPARE(InfoProgramma::NumeroVersione(testo), QString(numero));
        const QString riga = InfoProgramma::TestoVersione("  Version ");
        QVERIFY(riga.startsWith(QStringLiteral("Version ") + InfoProgramma::NumeroVersione()));
        QVERIFY(riga.endsWith(InfoProgramma::Descrizione()));
    }
};

QTEST_GUILESS_MAIN(TstMenu)
#include "tst_menu.moc"
