#include "calibration/ui/PagineStriscia.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/StileTaratura.h"
#include "monitoring/ui/GraficoStriscia.h"

#include <QApplication>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace kv {

namespace {

// Both analogue inputs and the stepper come on 0..255 in the live record.
constexpr double ScalaY = 255;

const QColor ColoreTps(0xFF, 0xD0, 0x30);
const QColor ColoreLambda(0x40, 0xF0, 0x70);
const QColor ColoreMotorino(0x50, 0xC8, 0xFF);
const QColor ColoreMinimo(0x60, 0xA0, 0xFF);
const QColor ColoreMassimo(0xFF, 0x60, 0x50);

} // namespace

PaginaStriscia::PaginaStriscia(SequenzaTaratura &sequenza, const Lingua &lingua, IdPagina id, QWidget *parent)
    : QWidget(parent)
    , m_sequenza(sequenza)
    , m_lingua(lingua)
    , m_istruzione(CreaIstruzione(this))
    , m_grafico(new GraficoStriscia(this))
    , m_boxDati(new QGroupBox(this))
    , m_segnalazione1(CreaSegnalazione1(this))
    , m_esciTar(CreaTasto(this, QStringLiteral("EsciTar")))
    , m_esci(CreaTasto(this, QStringLiteral("Esci")))
{
    m_logica = std::make_unique<TaraturaStriscia>(sequenza, id, static_cast<VistaStriscia &>(*this));
    setObjectName(m_logica->sezione());
    const bool l = lambda();
    m_istruzione->setObjectName(l ? QStringLiteral("Msg_Lambda") : QStringLiteral("Msg_TPS"));
    m_grafico->setObjectName(l ? QStringLiteral("GraficoLambda") : QStringLiteral("GraficoTPS"));
    m_boxDati->setObjectName(l ? QStringLiteral("BoxDatiLambda") : QStringLiteral("BoxTPS"));

    const int righe = l ? 3 : 4;
    auto *dati = new QVBoxLayout(m_boxDati);
    for (int i = 0; i < righe; ++i) {
        auto *etichetta = new QLabel(m_boxDati);
        etichetta->setObjectName(QStringLiteral("%1_%2").arg(l ? "LabTarLambda" : "LabTarTPS").arg(i));
        QFont f = etichetta->font();
        f.setPointSizeF(f.pointSizeF() * 1.2);
        etichetta->setFont(f);
        auto *valore = CreaValore(m_boxDati);
        valore->setObjectName(QStringLiteral("%1_%2").arg(l ? "DatiTarLambda" : "DatiTarTPS").arg(i));
        m_etichette.push_back(etichetta);
        m_dati.push_back(valore);
        dati->addWidget(etichetta);
        dati->addWidget(valore);
        dati->addSpacing(6);
    }
    dati->addStretch(1);

    auto *destra = new QVBoxLayout;
    destra->addWidget(m_boxDati, 1);
    if (l) {
        m_boxSonda = new QGroupBox(this);
        m_boxSonda->setObjectName(QStringLiteral("BoxSonda"));
        auto *sonda = new QVBoxLayout(m_boxSonda);
        m_tipoSonda = new QLabel(m_boxSonda);
        m_tipoSonda->setObjectName(QStringLiteral("TipoSonda"));
        sonda->addWidget(m_tipoSonda);
        for (size_t i = 0; i < m_sonda.size(); ++i) {
            auto *opzione = new QRadioButton(m_boxSonda);
            opzione->setObjectName(QStringLiteral("TensSonda_%1").arg(i));
            // The ECU reports the probe; the fitter only reads it.
            opzione->setFocusPolicy(Qt::NoFocus);
            opzione->setAttribute(Qt::WA_TransparentForMouseEvents);
            QFont f = opzione->font();
            f.setBold(true);
            f.setPointSizeF(f.pointSizeF() * 1.2);
            opzione->setFont(f);
            m_sonda[i] = opzione;
            sonda->addWidget(opzione);
        }
        destra->addWidget(m_boxSonda);
    }

    auto *centro = new QHBoxLayout;
    centro->addWidget(m_grafico, 1);
    centro->addLayout(destra);

    auto *comandi = new QHBoxLayout;
    comandi->addStretch(1);
    comandi->addWidget(m_esciTar);
    comandi->addWidget(m_esci);

    auto *colonna = new QVBoxLayout(this);
    colonna->addWidget(m_istruzione);
    colonna->addLayout(centro, 1);
    colonna->addWidget(m_segnalazione1);
    colonna->addLayout(comandi);

    m_esciTar->setText(ConTastoAlt(lingua.LeggiTesto("TASTI", "ESCI")));
    m_esci->setText(ConTastoAlt(lingua.LeggiTesto("TASTI", "ESCI")));
    m_esci->hide();
    m_esci->setEnabled(false);
    connect(m_esciTar, &QPushButton::clicked, this, [this] { m_logica->EsciTar(); });
    connect(m_esci, &QPushButton::clicked, this, [this] { m_logica->Esci(); });
    ScorciatoiaPagina(this, QKeySequence(Qt::Key_Escape), {m_esciTar, m_esci});

    m_grafico->impostaScala(GraficoStriscia::AsseY, 0, ScalaY);
    m_grafico->impostaDivisioni(GraficoStriscia::AsseX, 5, 4);
    m_grafico->impostaDivisioni(GraficoStriscia::AsseY, 5, 1);
    if (l) {
        m_grafico->impostaColore(0, ColoreLambda);
        m_grafico->impostaColore(1, ColoreMotorino);
        m_grafico->mostraSecondoAsse(true);
        m_grafico->impostaScala(GraficoStriscia::AsseY2, 0, ScalaY);
        m_grafico->impostaDivisioni(GraficoStriscia::AsseY2, 5, 1);
    } else {
        m_grafico->impostaColore(0, ColoreTps);
        m_grafico->impostaColoreCursore(0, ColoreMinimo);
        m_grafico->impostaColoreCursore(1, ColoreMassimo);
    }
    m_esciTar->setFocus(Qt::OtherFocusReason);
}

PaginaStriscia::~PaginaStriscia() = default;

bool PaginaStriscia::lambda() const
{
    return m_logica->fase() == FaseTaratura::Lambda;
}

QString PaginaStriscia::testo(const QString &chiave) const
{
    return m_lingua.LeggiTesto(m_logica->sezione(), chiave);
}

void PaginaStriscia::carica()
{
    const bool l = lambda();
    const QString prefisso = l ? QStringLiteral("LABTARLAMBDA.") : QStringLiteral("LABTARTPS.");
    for (size_t i = 0; i < m_etichette.size(); ++i)
        m_etichette[i]->setText(testo(prefisso + QString::number(i)));
    TabellaCanali &canali = m_sequenza.canali();
    m_grafico->impostaTitolo(GraficoStriscia::AsseX, testo(QStringLiteral("GRAFICO.ASSEX")));
    if (l) {
        m_boxDati->setTitle(testo(QStringLiteral("BOXDATI.CAPTION")));
        m_boxSonda->setTitle(testo(QStringLiteral("BOXSONDA.CAPTION")));
        m_tipoSonda->setText(
            testo(m_logica->singola() ? QStringLiteral("CAPTION.1") : QStringLiteral("CAPTION.2")));
        for (size_t i = 0; i < m_sonda.size(); ++i)
            m_sonda[i]->setText(testo(QStringLiteral("TENSSONDA.") + QString::number(i)));
        m_grafico->impostaTitolo(GraficoStriscia::AsseY, canali.TitoloCanale(Canale::Lambda));
        m_grafico->impostaTitolo(GraficoStriscia::AsseY2, canali.TitoloCanale(Canale::ActPos));
    } else {
        m_boxDati->setTitle(testo(QStringLiteral("BOXTPS.CAPTION")));
        m_grafico->impostaTitolo(GraficoStriscia::AsseY, canali.TitoloCanale(Canale::Tps));
    }
    m_logica->carica();
}

void PaginaStriscia::hideEvent(QHideEvent *evento)
{
    QWidget::hideEvent(evento);
    if (!evento->spontaneous())
        m_logica->chiusa();
}

void PaginaStriscia::mostraTitolo(const Messaggio &testo)
{
    setWindowTitle(m_lingua.testo(testo));
}

void PaginaStriscia::mostraIstruzione(const Messaggio &testo)
{
    m_istruzione->setText(m_lingua.testo(testo));
}

void PaginaStriscia::mostraSegnalazione1(const Messaggio &testo)
{
    m_segnalazione1->setText(m_lingua.testo(testo));
}

void PaginaStriscia::abilitaPagina(bool abilitata)
{
    if (abilitata == isEnabled())
        return;
    setEnabled(abilitata);
    if (abilitata && !isAncestorOf(QApplication::focusWidget()))
        (m_esciTar->isVisibleTo(this) ? m_esciTar : m_esci)->setFocus(Qt::OtherFocusReason);
}

void PaginaStriscia::uscitaEmergenza()
{
    m_esci->show();
    m_esci->setEnabled(true);
    m_esciTar->hide();
    m_esciTar->setEnabled(false);
    m_esci->setFocus(Qt::OtherFocusReason);
}

void PaginaStriscia::mostraDato(int indice, const QString &testo)
{
    if (indice >= 0 && indice < static_cast<int>(m_dati.size()))
        m_dati[static_cast<size_t>(indice)]->setText(testo);
}

void PaginaStriscia::impostaAsseX(double minimo, double massimo)
{
    m_grafico->impostaScala(GraficoStriscia::AsseX, minimo, massimo);
}

void PaginaStriscia::aggiungiPunto(int traccia, double x, double y)
{
    m_grafico->aggiungiPunto(traccia, x, y);
}

void PaginaStriscia::impostaCursore(int cursore, double x, double y)
{
    m_grafico->impostaCursore(cursore, x, y);
}

void PaginaStriscia::mostraCursore(int cursore)
{
    m_grafico->mostraCursore(cursore, true);
}

void PaginaStriscia::selezionaSonda(int indice)
{
    if (indice >= 0 && indice < static_cast<int>(m_sonda.size()) && m_sonda[static_cast<size_t>(indice)])
        m_sonda[static_cast<size_t>(indice)]->setChecked(true);
}

void PaginaStriscia::disattivaSonda(int indice)
{
    if (indice >= 0 && indice < static_cast<int>(m_sonda.size()) && m_sonda[static_cast<size_t>(indice)])
        m_sonda[static_cast<size_t>(indice)]->setEnabled(false);
}

} // namespace kv
