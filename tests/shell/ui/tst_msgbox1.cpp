// The common message box: the button set of each flag value, the codes it returns, the
// default button, and the 99 of a box closed without a button.
#include "AiutoUi.h"

#include "shell/Lingua.h"

#include <QTemporaryDir>

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

    void codiciDiRitorno_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("insieme");
        QTest::addColumn<QStringList>("etichette");
        QTest::addColumn<QList<int>>("codici");
        QTest::newRow("0 OK") << 0 << "TastoOK" << QStringList{"OK"} << QList<int>{1};
        QTest::newRow("1 OK Cancel") << 1 << "TastoOKCancel" << QStringList{"OK", "Cancel"} << QList<int>{1, 2};
        QTest::newRow("2 Abort Retry Ignore") << 2 << "TastoAbortRetryIgnore"
                                              << QStringList{"Abort", "Retry", "Ignore"} << QList<int>{3, 4, 5};
        QTest::newRow("3 Yes No Cancel") << 3 << "TastoSiNoAnnulla" << QStringList{"Yes", "No", "Cancel"}
                                         << QList<int>{6, 7, 2};
        QTest::newRow("4 Yes No") << 4 << "TastoSiNo" << QStringList{"Yes", "No"} << QList<int>{6, 7};
        QTest::newRow("5 Retry Cancel") << 5 << "TastoRiprovaAnnulla" << QStringList{"Retry", "Cancel"}
                                        << QList<int>{4, 2};
        // The icon and question bits are not the box's business.
        QTest::newRow("36 question") << 36 << "TastoSiNo" << QStringList{"Yes", "No"} << QList<int>{6, 7};
        QTest::newRow("0x41 information") << 0x41 << "TastoOKCancel" << QStringList{"OK", "Cancel"}
                                          << QList<int>{1, 2};
        // A set the box does not know still gives a box that can be answered.
        QTest::newRow("7 unknown") << 7 << "TastoOK" << QStringList{"OK"} << QList<int>{1};
    }

    void codiciDiRitorno()
    {
        QFETCH(int, flags);
        QFETCH(QString, insieme);
        QFETCH(QStringList, etichette);
        QFETCH(QList<int>, codici);
        for (int i = 0; i < codici.size(); ++i) {
            aiuto::Risponditore r(i);
            QString visibile;
            r.durante = [&visibile](MsgBox1 *box) {
                for (QWidget *w : box->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
                    if (w->objectName().startsWith(u"Tasto") && !w->isHidden())
                        visibile += w->objectName();
                }
            };
            QCOMPARE(MostraMsg(lingua, "Text", flags, "Title"), codici.at(i));
            QCOMPARE(r.visti.size(), 1);
            QCOMPARE(r.visti[0].tasti, etichette);
            QCOMPARE(r.visti[0].testo, QStringLiteral("Text"));
            QCOMPARE(r.visti[0].titolo, QStringLiteral("Title"));
            QCOMPARE(visibile, insieme);
        }
    }

    void chiusoSenzaTastoDa99()
    {
        aiuto::Risponditore r(-1);
        QCOMPARE(MostraMsg(lingua, "Text", 4, "Title"), 99);
        QCOMPARE(MostraMsg(lingua, "Text", 0, "Title"), 99);
        QCOMPARE(r.visti.size(), 2);
    }

    void escChiudeSenzaTasto()
    {
        aiuto::Risponditore r(0);
        r.durante = [](MsgBox1 *box) { QTest::keyClick(box, Qt::Key_Escape); };
        QCOMPARE(MostraMsg(lingua, "Text", 3, "Title"), 99);
    }

    void tastoPredefinito_data()
    {
        QTest::addColumn<int>("flags");
        QTest::addColumn<int>("predefinito");
        QTest::addColumn<QString>("fuoco");
        QTest::addColumn<int>("invio");
        QTest::newRow("yes-no, default 1: No") << 4 << 1 << "No" << 7;
        QTest::newRow("yes-no, default 0: Yes") << 4 << 0 << "Yes" << 6;
        QTest::newRow("abort-retry-ignore, default 2") << 2 << 2 << "Ignore" << 5;
        QTest::newRow("yes-no-cancel, default 2") << 3 << 2 << "Cancel" << 2;
        QTest::newRow("out of range: the first") << 5 << 7 << "Retry" << 4;
        QTest::newRow("negative: the first") << 1 << -1 << "OK" << 1;
    }

    void tastoPredefinito()
    {
        QFETCH(int, flags);
        QFETCH(int, predefinito);
        QFETCH(QString, fuoco);
        QFETCH(int, invio);
        aiuto::Risponditore r(0);
        QString conFuoco;
        r.durante = [&conFuoco](MsgBox1 *box) {
            if (auto *t = qobject_cast<QPushButton *>(box->focusWidget()))
                conFuoco = t->text();
            // Enter presses the default button.
            QTest::keyClick(box, Qt::Key_Return);
        };
        QCOMPARE(MostraMsg(lingua, "Text", flags, "Title", predefinito), invio);
        QCOMPARE(r.visti[0].fuoco, fuoco);
        QCOMPARE(conFuoco, fuoco);
    }

    void boxRiusatoRipartenDa99()
    {
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
