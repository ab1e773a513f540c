#pragma once

// What the shell's widget tests share: a program on a scripted port with the shipped language
// files, its main frame on the offscreen screen, and an automatic answer to message boxes.

#include "support/PortaFinta.h"

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

namespace kv {

namespace aiuto {

// A live frame: 800 RPM, TPS 100, lambda 500, stepper 90, zone 2, TPS type 1, supply 2.
inline QByteArray datiLive(quint8 stato)
{
    const char byte[] = {'d', char(stato), 0x03, 0x20, 0, 100, 0x01, char(0xF4), 90, 1, 2, 0, 1, 2, 0};
    return QByteArray(byte, sizeof byte);
}

inline QByteArray versione()
{
    return "vVEICOLO-012026-11-01KV-CODE-000042DATO-A-123B-77";
}

inline QByteArray parola(quint16 v)
{
    return QByteArray(1, char(v >> 8)) + char(v & 0xFF);
}

inline bool copia(const QString &nome, const QString &cartella)
{
    return QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/") + nome, cartella + u'/' + nome);
}

// A port that counts its openings and may refuse them.
using PortaContata = PortaFinta;

// A page for the tests that counts how many of its kind are alive.
struct PaginaContata : QWidget
{
    explicit PaginaContata(int &v) : vive(v)
    {
        ++vive;
        setWindowTitle(QStringLiteral("Test page"));
    }
    ~PaginaContata() override { --vive; }
    int &vive;
};

// The program as the start-up leaves it, its port scripted, its timers fired by hand, and the
// main frame on screen; the ECU identified unless told otherwise.
struct Ambiente
{
    QTemporaryDir cartella;
    PortaContata *porta = nullptr;
    TemporizzatoreManuale *req = nullptr;
    TemporizzatoreManuale *dati = nullptr;
    TemporizzatoreManuale *riapertura = nullptr;
    TemporizzatoreManuale *silenzio = nullptr;
    std::unique_ptr<Programma> programma;
    std::unique_ptr<Korvantine> frame;

    explicit Ambiente(bool identificata = true, bool avvia = true)
    {
        copia(QStringLiteral("ENGLISH.LNG"), cartella.path());
        copia(QStringLiteral("ITALIANO.LNG"), cartella.path());
        auto p = std::make_unique<PortaContata>();
        auto r = std::make_unique<TemporizzatoreManuale>();
        auto d = std::make_unique<TemporizzatoreManuale>();
        auto ra = std::make_unique<TemporizzatoreManuale>();
        auto si = std::make_unique<TemporizzatoreManuale>();
        porta = p.get();
        req = r.get();
        dati = d.get();
        riapertura = ra.get();
        silenzio = si.get();
        programma = std::make_unique<Programma>(cartella.path(), std::move(p), std::move(r), std::move(d),
                                                std::move(ra), std::move(si));
        programma->lingua.LeggiImpLingua();
        programma->LeggiImpSeriale();
        frame = std::make_unique<Korvantine>(*programma);
        if (avvia)
            avviaFrame();
        if (identificata)
            identifica();
    }

    void avviaFrame()
    {
        frame->avvia();
        QApplication::setActiveWindow(frame.get());
        QTest::qWait(1);
    }

    StatoProgramma &stato() { return programma->stato; }
    MainLambda *menu() { return frame->menu(); }
    void arriva(const QByteArray &payload) { emit porta->arrivati(CreaFrame(payload, 0)); }

    // The first live frame and the replies of identification: TPS cells 900 and 60 raw, type 7.
    void identifica()
    {
        for (const QByteArray &f : {datiLive(0), versione(), "r" + parola(900), "r" + parola(60),
                                    QByteArray("r\x07"), QByteArray("r\x00", 2)})
            arriva(f);
    }

    void registraContata(IdPagina id, int &vive)
    {
        frame->registraPagina(id, [&vive](Korvantine &) { return new PaginaContata(vive); });
    }

    template <typename T = QPushButton>
    T *sullaPagina(const char *nome)
    {
        QWidget *pagina = frame->paginaSopra() ? frame->paginaSopra() : frame->paginaAttiva();
        return pagina ? pagina->findChild<T *>(QLatin1String(nome)) : nullptr;
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

    explicit Risponditore(int indice = 0) : m_indice(indice) { qApp->installEventFilter(this); }
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

} // namespace kv
