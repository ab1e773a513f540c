// The idle page and the instruments panel opened and closed through the main frame's
// registry, as the menu does it.

#include "../variables/PortaEcu.h"

#include "monitoring/ui/RegistroStrumenti.h"
#include "monitoring/ui/Strumenti.h"
#include "pages/CampoDato.h"
#include "pages/MP_Minimo.h"
#include "variables/DialogoPagina.h"
#include "pages/RegistroMessaPunto.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QTimer>

#include <QDeadlineTimer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

class TstRegistroPagine : public QObject
{
    Q_OBJECT

    QTemporaryDir cartella;
    std::unique_ptr<EcuSimulata> ecu;
    std::unique_ptr<Programma> p;
    std::unique_ptr<Korvantine> frame;

    bool attendi()
    {
        QDeadlineTimer scadenza(3000);
        while (p->motore.StatoDialogo != -1 && !scadenza.hasExpired())
            QCoreApplication::processEvents();
        return p->motore.StatoDialogo == -1;
    }

private slots:
    void init()
    {
        ecu = std::make_unique<EcuSimulata>(OpzioniManuali());
        p = std::make_unique<Programma>(cartella.path(), std::make_unique<PortaEcu>(*ecu),
                                        std::make_unique<TemporizzatoreManuale>(),
                                        std::make_unique<TemporizzatoreManuale>());
        p->catalogo.InizializzaParametri();
        p->IniDialogo();
        p->IniCollegamento();
        p->stato.EcuDaIdentificare = 0;
        frame = std::make_unique<Korvantine>(*p);
        RegistraPagineMessaPunto(*frame);
        RegistraStrumenti(*frame);
        frame->avvia();
        QVERIFY(QTest::qWaitForWindowExposed(frame.get()));
    }

    void cleanup()
    {
        frame.reset();
        p.reset();
        ecu.reset();
    }

    void idlePageComesAndGoesThroughTheFrame()
    {
        QVERIFY(frame->paginaRegistrata(IdPagina::MP_Minimo));
        auto *pagina = qobject_cast<MP_Minimo *>(frame->apriPagina(IdPagina::MP_Minimo));
        QVERIFY(pagina);
        QVERIFY(attendi());
        QCOMPARE(frame->idPaginaAttiva(), IdPagina::MP_Minimo);
        QVERIFY(!pagina->DatoMinimo(0)->text().trimmed().isEmpty());
        pagina->findChild<QPushButton *>("Esci")->click();
        QVERIFY(!frame->paginaAperta(pagina));
        QVERIFY(frame->idPaginaAttiva() != IdPagina::MP_Minimo);
    }

    void idlePageAsksThroughTheFramesBox()
    {
        auto *pagina = qobject_cast<MP_Minimo *>(frame->apriPagina(IdPagina::MP_Minimo));
        QVERIFY(attendi());
        pagina->dialogo().impostaCorrente(Par::SogliaGiriEntrataMinimo, 1000);
        // The box is the frame's; answer No as soon as it shows.
        QTimer::singleShot(50, this, [] {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                auto *box = qobject_cast<MsgBox1 *>(w);
                if (box && box->isVisible() && box->tastiVisibili().size() == 3)
                    box->tastiVisibili().at(1)->click(); // Yes, No, Cancel
            }
        });
        pagina->findChild<QPushButton *>("Esci")->click();
        QVERIFY(attendi());
        QTRY_VERIFY(!frame->paginaAperta(pagina));
        // No: the opening value went back to RAM.
        QCOMPARE(CellaEcu(*ecu, p->catalogo, Par::SogliaGiriEntrataMinimo, false),
                 int(p->catalogo.Valori[Par::SogliaGiriEntrataMinimo].Letto));
    }

    void instrumentsComeAndGoThroughTheFrame()
    {
        auto *pagina = qobject_cast<Strumenti *>(frame->apriPagina(IdPagina::Strumenti));
        QVERIFY(pagina);
        QVERIFY(attendi());
        QCOMPARE(p->stato.RegistrazioneAttiva, qint16(-1));
        pagina->Esci();
        QVERIFY(!frame->paginaAperta(pagina));
        QCOMPARE(p->stato.RegistrazioneAttiva, qint16(0));
    }
};

QTEST_MAIN(TstRegistroPagine)
#include "tst_registropagine.moc"
