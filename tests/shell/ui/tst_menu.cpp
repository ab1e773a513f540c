// The menu's rules without a widget: what each state of the ECU and each language file
// leaves enabled, hidden or open, and the access word of the service mode.
#include "shell/InfoProgramma.h"
#include "shell/Lingua.h"
#include "shell/Menu.h"
#include "shell/StatoProgramma.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

// Which entries of a function are enabled, as a string of '1' and '0' over the visible ones.
QString abilitate(const std::vector<Menu::Voce> &voci)
{
    QString s;
    for (const Menu::Voce &v : voci) {
        if (v.visibile)
            s += v.abilitata ? u'1' : u'0';
    }
    return s;
}

int visibili(const std::vector<Menu::Voce> &voci)
{
    return static_cast<int>(std::count_if(voci.begin(), voci.end(), [](const Menu::Voce &v) { return v.visibile; }));
}

} // namespace

class TstMenu : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    Lingua lingua;
    StatoProgramma stato;

private slots:
    void initTestCase()
    {
        QVERIFY(QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/ENGLISH.LNG"), cartella.filePath("ENGLISH.LNG")));
        lingua = Lingua(cartella.path());
        lingua.LeggiImpLingua();
        QCOMPARE(lingua.LinguaCorrente, QStringLiteral("ENGLISH"));
    }

    void init() { stato = StatoProgramma{}; }

    void ecuNormaleTuttoAbilitato()
    {
        stato.FunzioneScelta = 3;
        const Menu::Funzioni f = Menu::AggiornaFunzioni(stato, lingua);
        QCOMPARE(stato.FunzioneScelta, qint16(3));
        for (bool a : f.abilitata)
            QVERIFY(a);
        QCOMPARE(f.caption[4], QStringLiteral("Utilities"));
        QCOMPARE(f.uscita, QStringLiteral("Exit"));
        QVERIFY(!f.titolo.isEmpty());

        QCOMPARE(abilitate(Menu::Opzioni(0, stato, lingua)), QStringLiteral("11"));
        QCOMPARE(abilitate(Menu::Opzioni(1, stato, lingua)), QStringLiteral("11"));
        QCOMPARE(abilitate(Menu::Opzioni(2, stato, lingua)), QStringLiteral("11"));
        QCOMPARE(abilitate(Menu::Opzioni(3, stato, lingua)), QStringLiteral("11111"));
        QCOMPARE(abilitate(Menu::Opzioni(4, stato, lingua)), QStringLiteral("11111111111"));

        const auto utilita = Menu::Opzioni(4, stato, lingua);
        QCOMPARE(static_cast<int>(utilita.size()), Menu::NumeroOpzioni);
        QCOMPARE(utilita[0].pagina, IdPagina::VisInf);
        QCOMPARE(utilita[8].pagina, IdPagina::Comunicazione);
        QCOMPARE(utilita[9].pagina, IdPagina::SceltaLingua);
        QCOMPARE(utilita[10].pagina, IdPagina::Password);
        QCOMPARE(utilita[8].caption, QStringLiteral("Serial port"));
        QCOMPARE(Menu::Opzioni(3, stato, lingua)[4].pagina, IdPagina::SequenzaTaratura);
        QVERIFY(Menu::Opzioni(-1, stato, lingua).empty());
        QVERIFY(Menu::Opzioni(5, stato, lingua).empty());
    }

    void ecuSenzaApplicazione()
    {
        // After a 'g' frame: programming and utilities only, and the selection goes.
        stato.EcuNormale = 0;
        stato.FunzioneScelta = 4;
        const Menu::Funzioni f = Menu::AggiornaFunzioni(stato, lingua);
        QCOMPARE(stato.FunzioneScelta, qint16(-1));
        QCOMPARE(f.abilitata, (std::array<bool, 5>{true, false, false, false, true}));
        QCOMPARE(abilitate(Menu::Opzioni(0, stato, lingua)), QStringLiteral("10"));
        QCOMPARE(abilitate(Menu::Opzioni(4, stato, lingua)), QStringLiteral("01101100000"));
    }

    void ecuInTaratura()
    {
        // A status other than 0: no tuning, and only the sequence of the calibration entries.
        stato.EcuInMarcia = 0;
        const Menu::Funzioni f = Menu::AggiornaFunzioni(stato, lingua);
        QCOMPARE(f.abilitata, (std::array<bool, 5>{true, true, false, true, true}));
        QCOMPARE(abilitate(Menu::Opzioni(3, stato, lingua)), QStringLiteral("00001"));
        QCOMPARE(abilitate(Menu::Opzioni(4, stato, lingua)), QStringLiteral("11111111111"));
        QVERIFY(!Menu::FunzioneAbilitata(2, stato));
    }

    void senzaTpsLaPompataEGrigiaInEntrambiIModi()
    {
        stato.TpsPresente = 0;
        QCOMPARE(abilitate(Menu::Opzioni(2, stato, lingua)), QStringLiteral("10"));
        QCOMPARE(Menu::Opzioni(2, stato, lingua)[1].pagina, IdPagina::MP_Pompata);
        stato.ModoAssistenza = 1;
        const auto voci = Menu::Opzioni(2, stato, lingua);
        QCOMPARE(abilitate(voci), QStringLiteral("111101111"));
        QCOMPARE(voci[4].pagina, IdPagina::MP_Pompata);
        QVERIFY(voci[4].visibile);
    }

    void modoAssistenzaCambiaLeVociDellaMessaAPunto()
    {
        QCOMPARE(Menu::PrefissoOpzioni(2, 0), QStringLiteral("MESSAPUNTO0."));
        QCOMPARE(Menu::PrefissoOpzioni(2, 1), QStringLiteral("MESSAPUNTO1."));
        QCOMPARE(visibili(Menu::Opzioni(2, stato, lingua)), 2);
        stato.ModoAssistenza = 1;
        const auto voci = Menu::Opzioni(2, stato, lingua);
        QCOMPARE(visibili(voci), 9);
        QCOMPARE(voci[0].pagina, IdPagina::MP_Minimo);
        QCOMPARE(voci[8].pagina, IdPagina::MP_TPS);
        QCOMPARE(voci[0].caption, QStringLiteral("Idle"));
    }

    void ilFileDiLinguaDecideLaLunghezzaDegliElenchi()
    {
        QTemporaryDir altra;
        QFile f(altra.filePath("PROVA.LNG"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("[MainLambda]\r\nUTILITA.0=Version\r\nUTILITA.1=\r\nUTILITA.2=   \r\nUTILITA.3=Delete\r\n"
                "PROGRAMMAZIONE.0=Software\r\nPROGRAMMAZIONE.1=Maps\r\nPROGRAMMAZIONE.2=Extra\r\n");
        f.close();
        Lingua prova(altra.path());
        prova.LeggiImpLingua();
        QCOMPARE(prova.LinguaCorrente, QStringLiteral("PROVA"));

        const auto utilita = Menu::Opzioni(4, stato, prova);
        QCOMPARE(visibili(utilita), 2);
        QVERIFY(!utilita[1].visibile && !utilita[1].abilitata);
        QVERIFY(!utilita[2].visibile && !utilita[2].abilitata);
        QVERIFY(utilita[3].visibile && utilita[3].abilitata);
        QVERIFY(!utilita[11].visibile);
        // Text past the table's rows shows, but opens nothing.
        const auto prog = Menu::Opzioni(0, stato, prova);
        QVERIFY(prog[2].visibile);
        QVERIFY(!prog[2].abilitata);
        QCOMPARE(prog[2].pagina, IdPagina::Nessuna);
    }

    void senzaFileDiLinguaNessunaVoce()
    {
        QTemporaryDir vuota;
        Lingua nessuna(vuota.path());
        nessuna.LeggiImpLingua();
        const Menu::Funzioni f = Menu::AggiornaFunzioni(stato, nessuna);
        QVERIFY(f.caption[0].isEmpty());
        for (int i = 0; i < Menu::NumeroFunzioni; ++i)
            QCOMPARE(visibili(Menu::Opzioni(i, stato, nessuna)), 0);
    }

    void parolaDAccesso_data()
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
        QTest::newRow("empty in normal") << qint16(0) << "" << int(E::Errata) << qint16(0);
    }

    void parolaDAccesso()
    {
        QFETCH(qint16, modo);
        QFETCH(QString, parola);
        QFETCH(int, esito);
        QFETCH(qint16, modoDopo);
        stato.ModoAssistenza = modo;
        QCOMPARE(int(Menu::VerificaParola(stato, parola)), esito);
        QCOMPARE(stato.ModoAssistenza, modoDopo);
    }

    void numeroDiVersione()
    {
        QCOMPARE(InfoProgramma::NumeroVersione("1.2.7"), QStringLiteral("1.02"));
        QCOMPARE(InfoProgramma::NumeroVersione("0.1.0"), QStringLiteral("0.01"));
        QCOMPARE(InfoProgramma::NumeroVersione("12.34"), QStringLiteral("12.34"));
        QCOMPARE(InfoProgramma::NumeroVersione("3"), QStringLiteral("3.00"));
        QCOMPARE(InfoProgramma::NumeroVersione("x.y"), QStringLiteral("0.00"));
        QCOMPARE(InfoProgramma::NumeroVersione(""), QStringLiteral("0.00"));
        const QString riga = InfoProgramma::TestoVersione("  Version ");
        QVERIFY(riga.startsWith(QStringLiteral("Version ") + InfoProgramma::NumeroVersione()));
        QVERIFY(riga.endsWith(InfoProgramma::Descrizione()));
    }
};

QTEST_GUILESS_MAIN(TstMenu)
#include "tst_menu.moc"
