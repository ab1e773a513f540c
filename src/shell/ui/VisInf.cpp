#include "shell/ui/VisInf.h"
#include "base/Lingua.h"

#include "link/SessioneLinea.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/Stile.h"

#include <QFontDatabase>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace kv {

VisInf::VisInf(Korvantine &frame, SessioneLinea &linea, const Lingua &lingua, QWidget *parent)
    : QWidget(parent)
    , m_frame(frame)
    , m_linea(linea)
{
    setObjectName(QStringLiteral("VisInf"));
    const Lingua &l = lingua;
    setWindowTitle(l.LeggiTesto("VisInf", "CAPTION").trimmed());

    auto *box = new QGroupBox(this);
    box->setObjectName(QStringLiteral("BoxInf"));
    auto *campi = new QFormLayout(box);
    const int u = fontMetrics().averageCharWidth();
    campi->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    campi->setHorizontalSpacing(3 * u);
    campi->setVerticalSpacing(3 * u / 2);
    QFont fisso = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    fisso.setPointSizeF(font().pointSizeF() * 1.35);
    for (int i = 0; i < 4; ++i) {
        auto *etichetta = new QLabel(l.LeggiTesto("VisInf", "LABINFC." + QString::number(i)).trimmed(), box);
        etichetta->setObjectName(QStringLiteral("LabInfC_%1").arg(i));
        QFont grande = etichetta->font();
        grande.setPointSizeF(grande.pointSizeF() * 1.15);
        etichetta->setFont(grande);
        auto *campo = new QLineEdit(box);
        campo->setObjectName(QStringLiteral("InfVis_%1").arg(i));
        campo->setReadOnly(true);
        campo->setFont(fisso);
        campo->setMinimumWidth(QFontMetrics(fisso).averageCharWidth() * 20);
        campo->setFocusPolicy(Qt::ClickFocus);
        campi->addRow(etichetta, campo);
        m_infVis[static_cast<size_t>(i)] = campo;
    }

    auto *ok = new QPushButton(l.LeggiTesto("TASTI", "OK").trimmed(), this);
    ok->setObjectName(QStringLiteral("TastoOK"));
    ok->setMinimumWidth(u * 14);
    connect(ok, &QPushButton::clicked, this, [this] { m_frame.ChiudiPagina(this); });
    auto *esc = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    esc->setContext(Qt::WidgetWithChildrenShortcut);
    connect(esc, &QShortcut::activated, ok, &QPushButton::click);

    // Box and key stay centred whatever the size of the frame.
    auto *colonna = new QVBoxLayout(this);
    colonna->setContentsMargins(3 * u, 2 * u, 3 * u, 2 * u);
    colonna->addStretch(1);
    colonna->addWidget(CreaIntestazione(windowTitle(), this), 0, Qt::AlignHCenter);
    colonna->addSpacing(2 * u);
    colonna->addWidget(box, 0, Qt::AlignHCenter);
    colonna->addSpacing(2 * u);
    colonna->addWidget(ok, 0, Qt::AlignHCenter);
    colonna->addStretch(2);
    setFocusProxy(ok);

    connect(&m_linea.identificazione(), &Identificazione::identificata, this, &VisInf::aggiorna);
    aggiorna();
}

QString VisInf::valore(int i) const
{
    return i >= 0 && i < 4 ? m_infVis[static_cast<size_t>(i)]->text() : QString();
}

void VisInf::aggiorna()
{
    const StatoEcu &s = m_linea.ecu();
    const QString valori[] = {s.InfCodice, s.InfVeicolo, s.InfDatoA, s.InfDatoB};
    for (size_t i = 0; i < m_infVis.size(); ++i)
        m_infVis[i]->setText(valori[i]);
}

} // namespace kv
