// The common message box: the button set of each flag value, the codes it returns, the
// default button, and the 99 of a box closed without a button.
#include "AiutoUi.h"

#include "base/Lingua.h"

using namespace kv;

class TstMsgBox1 : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    Lingua lingua;

private slots:
    void initTestCase()
    {
        QVERIFY(aiuto::copia(QStringLiteral("ENGLISH.LNG"), cartella.path()));
        lingua = Lingua(cartella.path());
        lingua.LeggiImpLingua();
    }

    void buttonSetsTheirCodesAndTheDefault_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<QStringList>("etichette");
        QTest::addColumn<QList<int>>("codici");
        QTest::newRow("0 OK") << 0 << QStringList{"OK"} << QList<int>{1};
        QTest::newRow("1 OK Cancel") << 1 << QStringList{"OK", "Cancel"} << QList<int>{1, 2};
        QTest::newRow("2 Abort Retry Ignore")
            << 2 << QStringList{"Abort", "Retry", "Ignore"} << QList<int>{3, 4, 5};
        QTest::newRow("3 Yes No Cancel") << 3 << QStringList{"Yes", "No", "Cancel"} << QList<int>{6, 7, 2};
        QTest::newRow("4 Yes No") << 4 << QStringList{"Yes", "No"} << QList<int>{6, 7};
        QTest::newRow("5 Retry Cancel") << 5 << QStringList{"Retry", "Cancel"} << QList<int>{4, 2};
        // The icon and question bits are not the box's business.
        QTest::newRow("36 question") << 36 << QStringList{"Yes", "No"} << QList<int>{6, 7};
        QTest::newRow("0x41 information") << 0x41 << QStringList{"OK", "Cancel"} << QList<int>{1, 2};
        // A set the box does not know still gives a box that can be answered.
        QTest::newRow("7 unknown") << 7 << QStringList{"OK"} << QList<int>{1};
    }

    // Each button, made the default and taken by Enter, gives its code; a default out of the
    // set falls on the first button.
    void buttonSetsTheirCodesAndTheDefault()
    {
        QFETCH(int, flags);
        QFETCH(QStringList, etichette);
        QFETCH(QList<int>, codici);
        const auto n = int(codici.size());
        for (int predefinito : QList<int>{0, 1, 2, -1, n}) {
            const int atteso = predefinito >= 0 && predefinito < n ? predefinito : 0;
            aiuto::Risponditore r(0);
            QString conFuoco;
            r.durante = [&conFuoco](MsgBox1 *box) {
                if (auto *t = qobject_cast<QPushButton *>(box->focusWidget()))
                    conFuoco = t->text();
                QTest::keyClick(box, Qt::Key_Return);
            };
            QCOMPARE(MostraMsg(lingua, "Text", flags, "Title", predefinito), codici.at(atteso));
            QCOMPARE(r.visti.size(), 1);
            QCOMPARE(r.visti[0].tasti, etichette);
            QCOMPARE(r.visti[0].testo, QStringLiteral("Text"));
            QCOMPARE(r.visti[0].titolo, QStringLiteral("Title"));
            QCOMPARE(r.visti[0].fuoco, etichette.at(atteso));
            QCOMPARE(conFuoco, etichette.at(atteso));
        }
    }

    void closedWithoutAButtonGives99()
    {
        aiuto::Risponditore r(-1);
        QCOMPARE(MostraMsg(lingua, "Text", 4, "Title"), 99);
        QCOMPARE(MostraMsg(lingua, "Text", 0, "Title"), 99);
        r.durante = [](MsgBox1 *box) { QTest::keyClick(box, Qt::Key_Escape); };
        r.rispondi(0);
        QCOMPARE(MostraMsg(lingua, "Text", 3, "Title"), 99);
        QCOMPARE(r.visti.size(), 3);
        // A box used again starts from 99, not from its last answer.
        MsgBox1 box(lingua);
        box.prepara("A", 4, "T", 0);
        box.tastiVisibili().at(0)->click();
        QCOMPARE(box.RispostaMsg(), 6);
        box.prepara("B", 0, "T", 0);
        QCOMPARE(box.RispostaMsg(), 99);
        QCOMPARE(box.tastiVisibili().size(), 1);
    }
};

QTEST_MAIN(TstMsgBox1)
#include "tst_msgbox1.moc"
