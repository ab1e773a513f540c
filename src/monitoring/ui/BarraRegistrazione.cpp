#include "monitoring/ui/BarraRegistrazione.h"
#include "base/Lingua.h"

#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/SchedaRegistrazione.h"
#include "monitoring/ui/Memorf.h"
#include "monitoring/ui/Visore.h"
#include "shell/ui/MsgBox1.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QToolBar>

#include <cstdio>

namespace kv {

namespace {

constexpr int LatoIcona = 32;
constexpr int Si = 6;
constexpr int No = 7;

// The toolbar's pictures, drawn here so that they scale and need no files.
QIcon icona(const QString &chiave)
{
    QPixmap px(LatoIcona * 2, LatoIcona * 2);
    px.fill(Qt::transparent);
    QPainter p(&px);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(2, 2);
    const QRectF r(4, 4, LatoIcona - 8, LatoIcona - 8);
    const QColor chiaro(0x37, 0x47, 0x4F);
    if (chiave == QLatin1String("START_MEM")) {
        p.setPen(QPen(chiaro, 2));
        p.setBrush(QColor(0xFF, 0xF8, 0xE1));
        p.drawRoundedRect(r.adjusted(0, 3, 0, -3), 2, 2);
        for (int i = 0; i < 3; ++i)
            p.drawLine(QPointF(r.left() + 4, r.top() + 9 + i * 5),
                       QPointF(r.right() - 4, r.top() + 9 + i * 5));
    } else if (chiave == QLatin1String("INIZIO")) {
        p.setPen(QPen(QColor(0x8E, 0x0E, 0x0E), 2));
        p.setBrush(QColor(0xE5, 0x39, 0x35));
        p.drawEllipse(r.adjusted(2, 2, -2, -2));
    } else if (chiave == QLatin1String("PAUSA")) {
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0xF5, 0x7C, 0x00));
        p.drawRect(QRectF(r.left() + 3, r.top() + 1, 6, r.height() - 2));
        p.drawRect(QRectF(r.right() - 9, r.top() + 1, 6, r.height() - 2));
    } else if (chiave == QLatin1String("FINE")) {
        p.setPen(Qt::NoPen);
        p.setBrush(chiaro);
        p.drawRect(r.adjusted(3, 3, -3, -3));
    } else if (chiave == QLatin1String("BLOCCA") || chiave == QLatin1String("SBLOCCA")) {
        const bool chiuso = chiave == QLatin1String("BLOCCA");
        p.setPen(QPen(chiaro, 3));
        p.setBrush(Qt::NoBrush);
        const QRectF arco(r.left() + 5, r.top(), r.width() - 10, 16);
        QPainterPath gancio;
        gancio.moveTo(arco.left(), arco.center().y() + (chiuso ? 4 : -2));
        gancio.arcTo(arco, 180, -180);
        gancio.lineTo(arco.right(), arco.center().y() + 4);
        p.drawPath(chiuso ? gancio : gancio.translated(7, -3));
        p.setPen(Qt::NoPen);
        p.setBrush(QColor(0x15, 0x65, 0xC0));
        p.drawRoundedRect(QRectF(r.left() + 1, r.top() + 11, r.width() - 2, r.height() - 11), 2, 2);
    } else if (chiave == QLatin1String("IMPOSTAZIONI")) {
        p.setPen(QPen(chiaro, 4, Qt::SolidLine, Qt::FlatCap));
        const QPointF c = r.center();
        for (int i = 0; i < 8; ++i) {
            p.save();
            p.translate(c);
            p.rotate(45.0 * i);
            p.drawLine(QPointF(0, 7), QPointF(0, 11));
            p.restore();
        }
        p.setPen(QPen(chiaro, 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(c, 6.5, 6.5);
    } else if (chiave == QLatin1String("ESCI")) {
        p.setPen(QPen(chiaro, 2.5));
        p.setBrush(Qt::NoBrush);
        p.drawRect(QRectF(r.left() + 8, r.top(), r.width() - 8, r.height()));
        p.setPen(QPen(QColor(0xC6, 0x28, 0x28), 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const double y = r.center().y();
        p.drawLine(QPointF(r.left() - 1, y), QPointF(r.left() + 14, y));
        p.drawLine(QPointF(r.left() - 1, y), QPointF(r.left() + 5, y - 6));
        p.drawLine(QPointF(r.left() - 1, y), QPointF(r.left() + 5, y + 6));
    }
    p.end();
    px.setDevicePixelRatio(2);
    return QIcon(px);
}

QString senzaAcceleratore(QString testo)
{
    return testo.remove(QLatin1Char('&')).trimmed();
}

// The window's caption with the recording state behind it; sezione is the window's own.
QString titoloRegistrazione(const Lingua &lingua, const QString &sezione, int stato)
{
    return lingua.LeggiTesto(sezione, QStringLiteral("CAPTION")) + QStringLiteral(" - [")
           + lingua.LeggiTesto(sezione, QStringLiteral("LABREGISTRO.1")) + u' '
           + lingua.LeggiTesto(QStringLiteral("REGISTRAZIONE"),
                               QStringLiteral("STATOREG.") + QString::number(stato))
           + u']';
}

} // namespace

BarraRegistrazione::BarraRegistrazione(const ContestoMonitor &contesto, QWidget *finestra,
                                       const QString &sezione, Tipo tipo)
    : QObject(finestra)
    , m_contesto(contesto)
    , m_finestra(finestra)
    , m_sezione(sezione)
    , m_tipo(tipo)
    , m_menu(new QMenuBar(finestra))
    , m_barra(new QToolBar(finestra))
    , m_indicatore(new QLabel(finestra))
{
    m_indicatore->setObjectName(QStringLiteral("StatoRegistrazione"));
    m_indicatore->setAutoFillBackground(true);
    m_indicatore->setContentsMargins(10, 2, 10, 2);
    QFont fi = m_indicatore->font();
    fi.setBold(true);
    fi.setPointSizeF(fi.pointSizeF() * 1.1);
    m_indicatore->setFont(fi);
    m_menu->setObjectName(QStringLiteral("MenuP"));
    m_barra->setObjectName(QStringLiteral("MenuPrinc"));
    m_barra->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_barra->setIconSize(QSize(LatoIcona, LatoIcona));
    m_barra->setMovable(false);
    QFont f = m_barra->font();
    f.setBold(true);
    f.setPointSizeF(f.pointSizeF() * 1.1);
    m_barra->setFont(f);

    m_messaggio = [this](const QString &testo, int flags, const QString &titolo) {
        return MostraMsg(m_contesto.lingua, testo, flags, titolo, 0, m_finestra);
    };

    // The toolbar, in its order.
    const bool grafici = tipo == Tipo::Grafici;
    QStringList tasti = {QStringLiteral("Start_Mem"), QStringLiteral("Inizio"), QStringLiteral("Pausa"),
                         QStringLiteral("Fine")};
    if (grafici)
        tasti << QStringLiteral("Blocca") << QStringLiteral("Sblocca") << QStringLiteral("Impostazioni");
    tasti << QStringLiteral("Esci");
    for (const QString &t : tasti) {
        QAction *a = creaAzione(t, t.toUpper(), m_barra);
        a->setIcon(icona(t.toUpper()));
        m_barra->addAction(a);
        if (t == QLatin1String("Fine"))
            a->setCheckable(true);
        if (t == QLatin1String("Fine") || (grafici && t == QLatin1String("Impostazioni")))
            m_barra->addSeparator();
    }

    // The menus: the same commands, with the keys.
    const auto nuovoMenu = [this](const QString &nome) {
        QMenu *m = m_menu->addMenu(QString());
        m->setObjectName(nome);
        m_menuP.push_back(m);
        return m;
    };
    QMenu *file = nuovoMenu(QStringLiteral("MenuFile"));
    file->addAction(creaAzione(QStringLiteral("MenuFile_0"), QStringLiteral("START_MEM"), file));
    file->addAction(creaAzione(QStringLiteral("MenuFile_Visore"), QStringLiteral("VISORE"), file));
    file->addSeparator();
    file->addAction(creaAzione(QStringLiteral("MenuFile_1"), QStringLiteral("ESCI"), file));
    QMenu *reg = nuovoMenu(QStringLiteral("MenuReg"));
    for (int i = 0; i < 3; ++i) {
        static const char *chiavi[] = {"INIZIO", "PAUSA", "FINE"};
        reg->addAction(creaAzione(QStringLiteral("MenuReg_%1").arg(i), QString::fromLatin1(chiavi[i]), reg));
    }
    if (grafici) {
        QMenu *g = nuovoMenu(QStringLiteral("MenuG"));
        g->addAction(creaAzione(QStringLiteral("MenuG_0"), QStringLiteral("BLOCCA"), g));
        g->addAction(creaAzione(QStringLiteral("MenuG_1"), QStringLiteral("SBLOCCA"), g));
        QMenu *imp = nuovoMenu(QStringLiteral("MenuImp"));
        imp->addAction(creaAzione(QStringLiteral("MenuImp_0"), QStringLiteral("IMPOSTAZIONI"), imp));
    }

    const std::pair<const char *, Qt::Key> tastiFunzione[] = {
        {"MenuFile_0", Qt::Key_F2}, {"MenuFile_Visore", Qt::Key_F3}, {"MenuReg_0", Qt::Key_F5},
        {"MenuReg_1", Qt::Key_F6},  {"MenuReg_2", Qt::Key_F7},       {"MenuG_0", Qt::Key_F8},
        {"MenuG_1", Qt::Key_F8},
    };
    for (const auto &[nome, tasto] : tastiFunzione)
        if (QAction *a = azione(QString::fromLatin1(nome)))
            a->setShortcut(QKeySequence(tasto));

    connect(&m_contesto.anello, &AnelloRegistrazione::campioneRegistrato, this,
            &BarraRegistrazione::campioneRegistrato);
}

BarraRegistrazione::~BarraRegistrazione() = default;

QAction *BarraRegistrazione::creaAzione(const QString &nome, const QString &chiave, QObject *genitore)
{
    auto *a = new QAction(genitore);
    a->setObjectName(nome);
    connect(a, &QAction::triggered, this, [this, chiave] { comando(chiave); });
    m_azioni[nome] = a;
    return a;
}

QAction *BarraRegistrazione::azione(const QString &nome) const
{
    const auto i = m_azioni.find(nome);
    return i == m_azioni.end() ? nullptr : i->second;
}

void BarraRegistrazione::carica()
{
    const Lingua &l = m_contesto.lingua;
    for (std::size_t i = 0; i < m_menuP.size(); ++i)
        m_menuP[i]->setTitle(l.LeggiTesto(m_sezione, "MENUP." + QString::number(i)));
    const auto testo = [&](const QString &nome, const QString &chiave) {
        const QString t = l.LeggiTesto(m_sezione, chiave);
        if (QAction *a = azione(nome))
            a->setText(t);
        return t;
    };
    const QString startMem = testo(QStringLiteral("MenuFile_0"), QStringLiteral("MENUFILE.0"));
    const QString esci = testo(QStringLiteral("MenuFile_1"), QStringLiteral("MENUFILE.1"));
    const QString inizio = testo(QStringLiteral("MenuReg_0"), QStringLiteral("MENUREG.0"));
    const QString pausa = testo(QStringLiteral("MenuReg_1"), QStringLiteral("MENUREG.1"));
    const QString fine = testo(QStringLiteral("MenuReg_2"), QStringLiteral("MENUREG.2"));
    azione(QStringLiteral("MenuFile_Visore"))->setText(l.LeggiTesto("Visore", "MENUAPRI"));
    std::vector<std::pair<const char *, QString>> tasti = {
        {"Start_Mem", startMem}, {"Inizio", inizio}, {"Pausa", pausa}, {"Fine", fine}, {"Esci", esci}};
    if (m_tipo == Tipo::Grafici) {
        const QString blocca = testo(QStringLiteral("MenuG_0"), QStringLiteral("MENUG.0"));
        const QString sblocca = testo(QStringLiteral("MenuG_1"), QStringLiteral("MENUG.1"));
        testo(QStringLiteral("MenuImp_0"), QStringLiteral("MENUIMP.0"));
        tasti.emplace_back("Blocca", blocca);
        tasti.emplace_back("Sblocca", sblocca);
        tasti.emplace_back("Impostazioni", l.LeggiTesto(m_sezione, QStringLiteral("MENUP.3")));
    }
    for (const auto &[nome, t] : tasti) {
        QAction *a = azione(QString::fromLatin1(nome));
        a->setText(senzaAcceleratore(t));
        a->setToolTip(senzaAcceleratore(t));
    }
    AnelloRegistrazione &r = m_contesto.anello;
    // A failure met while no window could tell it (the frame closing) is old news by now.
    r.prendiErrore();
    r.impostaFileRegistrazione(r.LeggiFileRegistrazione());
    mostraLabRegistro();
    aggiorna();
}

void BarraRegistrazione::mostraLabRegistro(bool conFile)
{
    if (m_labRegistro)
        m_labRegistro->setText(m_contesto.lingua.LeggiTesto("STRUMENTI", "LABREGISTRO.0") + QLatin1Char(' ')
                               + (conFile ? m_contesto.anello.FileRegistrazione : QString()));
}

void BarraRegistrazione::aggiorna()
{
    const int stato = m_contesto.anello.StatoRegistrazione;
    m_finestra->setWindowTitle(titoloRegistrazione(m_contesto.lingua, m_sezione, stato));
    const Lingua &l = m_contesto.lingua;
    m_indicatore->setText(l.LeggiTesto(m_sezione, QStringLiteral("LABREGISTRO.1")) + QLatin1Char(' ')
                          + l.LeggiTesto("REGISTRAZIONE", "STATOREG." + QString::number(stato)));
    QPalette colori = m_finestra->palette();
    if (stato == AnelloRegistrazione::InRegistrazione) {
        colori.setColor(QPalette::Window, QColor(0xC6, 0x28, 0x28));
        colori.setColor(QPalette::WindowText, Qt::white);
    } else if (stato == AnelloRegistrazione::InPausa) {
        colori.setColor(QPalette::Window, QColor(0xFF, 0xB3, 0x00));
        colori.setColor(QPalette::WindowText, Qt::black);
    }
    m_indicatore->setPalette(colori);
    const ComandiRegistrazione c = AggiornaMenuRegistrazione(stato);
    const auto applica = [this](const char *nome, const StatoComando &s) {
        if (QAction *a = azione(QString::fromLatin1(nome))) {
            a->setVisible(s.visibile);
            a->setEnabled(s.abilitato);
            if (a->isCheckable())
                a->setChecked(s.premuto);
        }
    };
    applica("Inizio", c.inizio);
    applica("MenuReg_0", c.inizio);
    applica("Pausa", c.pausa);
    applica("MenuReg_1", c.pausa);
    applica("Fine", c.fine);
    applica("MenuReg_2", c.fineMenu);
    applica("Start_Mem", c.startMem);
    applica("MenuFile_0", c.startMem);
}

void BarraRegistrazione::mostraBlocco(bool bloccato)
{
    for (const char *nome : {"Blocca", "MenuG_0"}) {
        QAction *a = azione(QString::fromLatin1(nome));
        a->setVisible(!bloccato);
        a->setEnabled(!bloccato);
    }
    for (const char *nome : {"Sblocca", "MenuG_1"}) {
        QAction *a = azione(QString::fromLatin1(nome));
        a->setVisible(bloccato);
        a->setEnabled(bloccato);
    }
}

void BarraRegistrazione::comando(const QString &chiave)
{
    const QString k = chiave.trimmed().toUpper();
    AnelloRegistrazione &r = m_contesto.anello;
    const Lingua &l = m_contesto.lingua;
    bool conFile = true;
    if (k == QLatin1String("INIZIO")) {
        if (!sceltaFile())
            return;
        if (r.Inizio() == AnelloRegistrazione::Esito::SenzaFile)
            m_messaggio(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE.0"), 64,
                        l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    } else if (k == QLatin1String("PAUSA")) {
        r.Pausa();
    } else if (k == QLatin1String("FINE")) {
        conFile = r.Fine() != AnelloRegistrazione::Esito::Fatto;
    } else if (k == QLatin1String("START_MEM")) {
        apriScheda();
    } else if (k == QLatin1String("BLOCCA")) {
        emit blocca();
        return;
    } else if (k == QLatin1String("SBLOCCA")) {
        emit sblocca();
        return;
    } else if (k == QLatin1String("VISORE")) {
        ApriVisore(m_contesto.percorsoApp, m_contesto.lingua, m_contesto.canali,
                   m_contesto.anello.FileRegistrazione, m_finestra);
        return;
    } else if (k == QLatin1String("ESCI")) {
        emit esci();
        return;
    } else {
        return;
    }
    aggiorna();
    mostraLabRegistro(conFile);
    segnalaErrore();
}

bool BarraRegistrazione::sceltaFile()
{
    AnelloRegistrazione &r = m_contesto.anello;
    if (r.StatoRegistrazione != AnelloRegistrazione::Fermo || !r.fileConDati())
        return true;
    const Lingua &l = m_contesto.lingua;
    const QString testo =
        l.LeggiTesto("REGISTRAZIONE", "ACCODA").replace(QStringLiteral("XXX"), r.FileRegistrazione);
    const int risposta = m_messaggio(testo, 3 | 32, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    if (risposta == Si)
        return true;
    if (risposta != No)
        return false;
    SchedaRegistrazione scheda(m_contesto.percorsoApp, r);
    scheda.Apri();
    const SchedaRegistrazione::Esito esito = scheda.NuovoFile();
    scheda.Chiudi();
    if (!esito.ok()) {
        QString t = l.testo(MessaggioEsitoScheda(esito));
        if (t.isEmpty())
            t = l.LeggiTesto("REGISTRAZIONE", "NUOVO_FILE")
                    .replace(QStringLiteral("XXX"), r.FileRegistrazione);
        m_messaggio(t, 16, l.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
        mostraLabRegistro();
        return false;
    }
    return true;
}

void BarraRegistrazione::apriScheda()
{
    // The card stands alone while it is filled; the window comes back when it closes.
    const bool visibile = m_finestra->isVisible();
    m_finestra->hide();
    if (m_apriScheda) {
        m_apriScheda(m_finestra);
    } else {
        Memorf scheda(m_contesto.percorsoApp, m_contesto.lingua, m_contesto.anello, m_finestra);
        scheda.exec();
    }
    if (visibile)
        m_finestra->show();
    AnelloRegistrazione &r = m_contesto.anello;
    r.impostaFileRegistrazione(r.LeggiFileRegistrazione());
}

void BarraRegistrazione::chiudi()
{
    m_contesto.anello.chiudiFinestra();
    m_contesto.anello.RegistrazioneAttiva = false;
    segnalaErrore();
}

void BarraRegistrazione::campioneRegistrato(bool alLimite)
{
    if (!alLimite || m_erroreInAttesa || !m_contesto.anello.inErrore())
        return;
    // The write ran in the receive path: the box comes after it has returned.
    m_erroreInAttesa = true;
    QTimer::singleShot(0, this, [this] {
        m_erroreInAttesa = false;
        aggiorna();
        segnalaErrore();
    });
}

void BarraRegistrazione::segnalaErrore()
{
    const auto e = m_contesto.anello.prendiErrore();
    if (!e)
        return;
    aggiorna();
    const Lingua &l = m_contesto.lingua;
    const bool percorso = e->tipo == AnelloRegistrazione::Errore::Tipo::Percorso;
    QString testo =
        percorso ? l.LeggiTesto("REGISTRAZIONE", "ERRORE.1") : l.LeggiTesto("REGISTRAZIONE", "ERRORE.0");
    testo.replace(QStringLiteral("XXX"), e->file);
    if (!e->dettaglio.isEmpty())
        std::fprintf(stderr, "korvantine: recording to %s: %s\n", qPrintable(e->file),
                     qPrintable(e->dettaglio));
    m_messaggio(testo, 16, l.LeggiTesto("SEGNALAZIONI", "TITOLO_2"));
}

} // namespace kv
