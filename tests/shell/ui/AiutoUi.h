#pragma once

// What the shell's widget tests share: a program on a scripted port with the shipped language
// files, its main frame on the offscreen screen, and an automatic answer to message boxes.

#include "base/Lingua.h"
#include "support/ProgrammaFinto.h"

#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"
#include "shell/ui/MsgBox1.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>

namespace kv {

namespace aiuto {

inline bool copia(const QString &nome, const QString &cartella)
{
    return QFile::copy(QStringLiteral(KV_SOURCE_DIR "/lang/") + nome, cartella + u'/' + nome);
}

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
struct Ambiente : ProgrammaFinto
{
    Programma *programma = nullptr;
    std::unique_ptr<Korvantine> frame;

    explicit Ambiente(bool identificata = true, bool avvia = true)
    {
        copia(QStringLiteral("ENGLISH.LNG"), cartella.path());
        copia(QStringLiteral("ITALIANO.LNG"), cartella.path());
        creaProgramma();
        programma = p.get();
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

    const StatoEcu &ecu() { return programma->linea.ecu(); }
    StatoMenu &statoMenu() { return programma->menu; }
    MainLambda *menu() { return frame->menu(); }

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
