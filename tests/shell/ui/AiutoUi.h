#pragma once

// What the shell's widget tests share: a program on a scripted port with the shipped language
// files, its main frame on the offscreen screen, and an automatic answer to message boxes.

#include "../../support/PortaFinta.h"

#include "link/Frame.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace aiuto {

inline QByteArray datiLive(quint8 stato, quint8 zona = 2)
{
    QByteArray p("d");
    p += char(stato);
    p += char(0x03);
    p += char(0x20); // 800 RPM
    p += char(0);
    p += char(100);  // TPS
    p += char(0x01);
    p += char(0xF4); // lambda
    p += char(90);   // stepper
    p += char(1);    // rich/lean
    p += char(zona);
    p += char(0);    // pump
    p += char(1);    // TPS type
    p += char(2);    // supply
    p += char(0);    // probe type
    return p;
}

inline QByteArray versione()
{
    return "v" + QByteArray("VEICOLO-01") + QByteArray("2026-11-01") + QByteArray("KV-CODE-000042")
        + QByteArray("DATO-A-123") + QByteArray("B-77");
}

inline QByteArray parola(quint16 v)
{
    return QByteArray(1, char(v >> 8)) + char(v & 0xFF);
}

inline bool copia(const QString &nome, const QString &cartella)
{
    return QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/") + nome, cartella + u'/' + nome);
}

// The program as the start-up leaves it, its port scripted, its two timers fired by hand, and
// the main frame on screen.
struct Ambiente
{
    QTemporaryDir cartella;
    Porta *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    TemporizzatoreManuale *dati = nullptr;
    std::unique_ptr<Programma> programma;
    std::unique_ptr<Korvantine> frame;

    explicit Ambiente(std::unique_ptr<Porta> altraPorta = {}, bool avvia = true)
    {
        copia(QStringLiteral("ENGLISH.LNG"), cartella.path());
        copia(QStringLiteral("ITALIANO.LNG"), cartella.path());
        std::unique_ptr<Porta> p = altraPorta ? std::move(altraPorta) : std::make_unique<PortaFinta>();
        auto r = std::make_unique<TemporizzatoreManuale>();
        auto d = std::make_unique<TemporizzatoreManuale>();
        porta = p.get();
        req = r.get();
        dati = d.get();
        programma = std::make_unique<Programma>(cartella.path(), std::move(p), std::move(r), std::move(d));
        programma->catalogo.InizializzaParametri();
        programma->IniDialogo();
        programma->IniCollegamento();
        programma->lingua.LeggiImpLingua();
        programma->LeggiImpSeriale();
        frame = std::make_unique<Korvantine>(*programma);
        if (avvia)
            avviaFrame();
    }

    void avviaFrame()
    {
        frame->avvia();
        QApplication::setActiveWindow(frame.get());
        QTest::qWait(1);
    }

    StatoProgramma &stato() { return programma->stato; }
    MainLambda *menu() { return frame->menu(); }
    PortaFinta *portaFinta() { return dynamic_cast<PortaFinta *>(porta); }

    void arriva(const QByteArray &payload) { emit porta->arrivati(CreaFrame(payload, 0)); }

    // The first live frame and the replies of identification; TPS cells raw.
    void identifica(quint16 tpsMax = 900, quint16 tpsMin = 60)
    {
        arriva(datiLive(0));
        arriva(versione());
        arriva("r" + parola(tpsMax));
        arriva("r" + parola(tpsMin));
        arriva(QByteArray("r") + char(7));
        arriva(QByteArray("r") + char(0));
    }

    QString testo(const char *sezione, const char *chiave)
    {
        return programma->lingua.LeggiTesto(QLatin1String(sezione), QLatin1String(chiave)).trimmed();
    }
};

// Answers every message box that comes up while it lives: it notes what the box said and
// presses the button of the given place (left to right), or closes the box without a button
// for -1. durante runs inside the box's own event loop, before the answer.
class Risponditore : public QObject
{
public:
    struct Visto
    {
        QString testo;
        QString titolo;
        QStringList tasti;
        QString fuoco;
    };

    explicit Risponditore(int indice = 0)
        : m_indice(indice)
    {
        qApp->installEventFilter(this);
    }
    ~Risponditore() override { qApp->removeEventFilter(this); }

    void rispondi(int indice) { m_indice = indice; }

    std::function<void(MsgBox1 *)> durante;
    QList<Visto> visti;

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override
    {
        auto *box = qobject_cast<MsgBox1 *>(oggetto);
        if (!box || evento->type() != QEvent::Show)
            return false;
        Visto v;
        if (auto *l = box->findChild<QLabel *>(QStringLiteral("Segnalazione")))
            v.testo = l->text();
        v.titolo = box->windowTitle();
        for (QPushButton *t : box->tastiVisibili()) {
            v.tasti << t->text();
            if (t->isDefault())
                v.fuoco = t->text();
        }
        visti.append(v);
        QPointer<MsgBox1> b(box);
        QTimer::singleShot(0, this, [this, b] {
            if (b && durante)
                durante(b);
            if (!b || !b->isVisible())
                return;
            if (m_indice < 0)
                b->reject();
            else
                b->tastiVisibili().at(m_indice)->click();
        });
        return false;
    }

private:
    int m_indice;
};

} // namespace aiuto
