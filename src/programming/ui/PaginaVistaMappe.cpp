#include "programming/ui/PaginaVistaMappe.h"

#include "base/Lingua.h"
#include "shell/ui/MsgBox1.h"
#include "shell/ui/Stile.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>

namespace kv {

PaginaVistaMappe::PaginaVistaMappe(const ContestoProgrammazione &contesto, QString sezione, QWidget *parent)
    : QWidget(parent)
    , m_contesto(contesto)
    , m_sezione(std::move(sezione))
    , m_barra(new QProgressBar(this))
    , m_segnalazione(CreaRigaSegnalazione(QStringLiteral("Segnalazione1"), this))
{
    setObjectName(m_sezione);
    m_barra->hide();
    m_domanda = [this](const QString &t, int flags, const QString &titolo) {
        return kv::MostraMsg(m_contesto.lingua, t, flags, titolo, (flags & SecondoPredefinito) ? 1 : 0, this);
    };
}

QString PaginaVistaMappe::testo(const QString &chiave) const
{
    return m_contesto.lingua.LeggiTesto(m_sezione, chiave).trimmed();
}

QString PaginaVistaMappe::segnalazione() const
{
    return m_segnalazione->text();
}

void PaginaVistaMappe::mostraTesto(const QString &testo)
{
    m_segnalazione->setText(testo);
}

void PaginaVistaMappe::mostraSegnalazione(const Messaggio &testo)
{
    mostraTesto(m_contesto.lingua.testo(testo));
}

void PaginaVistaMappe::mostraAvanzamento(int valore, int massimo)
{
    m_barra->setMaximum(massimo);
    m_barra->setValue(qMin(valore, massimo));
    m_barra->show();
}

void PaginaVistaMappe::nascondiAvanzamento()
{
    m_barra->hide();
}

void PaginaVistaMappe::beep()
{
    QApplication::beep();
}

int PaginaVistaMappe::domanda(const Messaggio &testo, int flags, const Messaggio &titolo)
{
    const Lingua &l = m_contesto.lingua;
    return m_domanda(l.testo(testo), flags, l.testo(titolo));
}

void PaginaVistaMappe::chiudiPagina()
{
    emit chiusa();
}

} // namespace kv
