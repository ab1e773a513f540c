#include "shell/ui/MsgBox1.h"

#include "base/Lingua.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

MsgBox1::MsgBox1(const Lingua &lingua, QWidget *parent)
    : QDialog(parent)
    , m_lingua(lingua)
    , m_segnalazione(new QLabel(this))
{
    setObjectName(QStringLiteral("MsgBox1"));
    setModal(true);
    m_segnalazione->setObjectName(QStringLiteral("Segnalazione"));
    m_segnalazione->setWordWrap(true);
    m_segnalazione->setTextFormat(Qt::PlainText);
    m_segnalazione->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // Long messages wrap at a comfortable reading width rather than at the edge of the screen.
    m_segnalazione->setMinimumWidth(fontMetrics().averageCharWidth() * 44);
    m_segnalazione->setMaximumWidth(fontMetrics().averageCharWidth() * 70);

    auto *colonna = new QVBoxLayout(this);
    colonna->setSpacing(fontMetrics().height());
    colonna->addWidget(m_segnalazione, 1);

    creaInsieme(0, "TastoOK", {{"OK", 1}});
    creaInsieme(1, "TastoOKCancel", {{"OK", 1}, {"ANNULLA", 2}});
    creaInsieme(2, "TastoAbortRetryIgnore", {{"INTERROMPI", 3}, {"RIPROVA", 4}, {"IGNORA", 5}});
    creaInsieme(3, "TastoSiNoAnnulla", {{"SI", 6}, {"NO", 7}, {"ANNULLA", 2}});
    creaInsieme(4, "TastoSiNo", {{"SI", 6}, {"NO", 7}});
    creaInsieme(5, "TastoRiprovaAnnulla", {{"RIPROVA", 4}, {"ANNULLA", 2}});
    for (const Insieme &i : m_insiemi)
        colonna->addWidget(i.riquadro, 0, Qt::AlignRight);
    colonna->setSizeConstraint(QLayout::SetFixedSize);
}

void MsgBox1::creaInsieme(int indice, const char *nome,
                          std::initializer_list<std::pair<const char *, int>> tasti)
{
    Insieme &insieme = m_insiemi[static_cast<size_t>(indice)];
    insieme.riquadro = new QWidget(this);
    insieme.riquadro->setObjectName(QLatin1String(nome));
    auto *riga = new QHBoxLayout(insieme.riquadro);
    riga->setContentsMargins(0, 0, 0, 0);
    int n = 0;
    for (const auto &[chiave, codice] : tasti) {
        auto *tasto = new QPushButton(insieme.riquadro);
        tasto->setObjectName(QStringLiteral("%1_%2").arg(QLatin1String(nome)).arg(n++));
        tasto->setProperty("chiave", QLatin1String(chiave));
        tasto->setMinimumWidth(fontMetrics().averageCharWidth() * 12);
        const int risposta = codice;
        connect(tasto, &QPushButton::clicked, this, [this, risposta] {
            m_risposta = risposta;
            accept();
        });
        riga->addWidget(tasto);
        insieme.tasti.append(tasto);
    }
    insieme.riquadro->hide();
}

void MsgBox1::prepara(const QString &testo, int flags, const QString &titolo, int predefinito)
{
    m_risposta = Chiuso;
    setWindowTitle(titolo);
    m_segnalazione->setText(testo);
    const int scelto = flags & 0x0F;
    // A set the box does not know gets the plain OK, so the box can always be answered.
    m_insiemeAttivo = scelto < static_cast<int>(m_insiemi.size()) ? scelto : 0;
    for (size_t i = 0; i < m_insiemi.size(); ++i) {
        const Insieme &insieme = m_insiemi[i];
        const bool attivo = static_cast<int>(i) == m_insiemeAttivo;
        insieme.riquadro->setVisible(attivo);
        for (QPushButton *tasto : insieme.tasti) {
            tasto->setText(
                m_lingua.LeggiTesto(QStringLiteral("TASTI"), tasto->property("chiave").toString()));
            tasto->setDefault(false);
            tasto->setAutoDefault(attivo);
        }
    }
    const QList<QPushButton *> &tasti = m_insiemi[static_cast<size_t>(m_insiemeAttivo)].tasti;
    QPushButton *primo = tasti.value(predefinito >= 0 && predefinito < tasti.size() ? predefinito : 0);
    primo->setDefault(true);
    primo->setFocus(Qt::OtherFocusReason);
}

QList<QPushButton *> MsgBox1::tastiVisibili() const
{
    return m_insiemi[static_cast<size_t>(m_insiemeAttivo)].tasti;
}

int MostraMsg(const Lingua &lingua, const QString &testo, int flags, const QString &titolo, int predefinito,
              QWidget *parent)
{
    MsgBox1 box(lingua, parent);
    box.prepara(testo, flags, titolo, predefinito);
    box.exec();
    return box.RispostaMsg();
}

} // namespace kv
