#include "shell/ui/BoxSalvaMappa.h"

#include "base/Lingua.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace kv {

BoxSalvaMappa::BoxSalvaMappa(QPushButton *salva, QWidget *parent)
    : QGroupBox(parent)
    , m_impianto(new QComboBox(this))
{
    setObjectName(QStringLiteral("BoxSalva"));
    auto *griglia = new QGridLayout(this);
    m_impianto->setObjectName(QStringLiteral("Impianto"));
    for (const QLatin1String i : FileMappa::Impianti)
        m_impianto->addItem(i);
    const char *nomi[] = {"NomeMarca", "NomeModello", "NomeFlyMod", "Note"};
    for (QLabel *&e : m_etichette)
        e = new QLabel(this);
    m_etichette[0]->setBuddy(m_impianto);
    griglia->addWidget(m_etichette[0], 0, 0);
    griglia->addWidget(m_impianto, 1, 0);
    for (size_t i = 0; i < m_campi.size(); ++i) {
        m_campi[i] = new QLineEdit(this);
        m_campi[i]->setObjectName(QString::fromLatin1(nomi[i]));
        if (i < 3)
            connect(m_campi[i], &QLineEdit::textEdited, m_campi[i], [e = m_campi[i]](const QString &t) {
                // What a name may not hold never gets in, typed or pasted.
                const QString filtrato = FiltraNome(t);
                if (filtrato != t)
                    e->setText(filtrato);
            });
        m_etichette[i + 1]->setBuddy(m_campi[i]);
        griglia->addWidget(m_etichette[i + 1], 0, int(i) + 1);
        griglia->addWidget(m_campi[i], 1, int(i) + 1);
    }
    griglia->setColumnStretch(4, 1);
    griglia->addWidget(salva, 1, 5);
}

void BoxSalvaMappa::caricaTesti(const Lingua &lingua, const QString &titolo)
{
    setTitle(titolo);
    for (size_t i = 0; i < m_etichette.size(); ++i)
        m_etichette[i]->setText(
            lingua.LeggiTesto(QStringLiteral("ReadMappe"), QStringLiteral("LABCAMPO.") + QString::number(i))
                .trimmed());
}

void BoxSalvaMappa::imposta(const ChiaveMappa &chiave, const QString &nota)
{
    m_impianto->setCurrentIndex(qMax(0, m_impianto->findText(chiave.impianto, Qt::MatchFixedString)));
    m_campi[0]->setText(chiave.marca);
    m_campi[1]->setText(chiave.modello);
    m_campi[2]->clear();
    m_campi[3]->setText(nota);
}

ChiaveMappa BoxSalvaMappa::chiave() const
{
    return {m_impianto->currentText(), m_campi[0]->text(), m_campi[1]->text(), m_campi[2]->text()};
}

QString BoxSalvaMappa::nota() const
{
    return m_campi[3]->text();
}

PercorsoMappa BoxSalvaMappa::percorso(const QString &percorsoApp, Messaggio &motivo) const
{
    const PercorsoMappa p = PercorsoFileMappa(percorsoApp, chiave());
    if (!p.ok())
        motivo = MessaggioPercorso(p);
    if (p.errore == PercorsoMappa::Errore::Nome)
        m_campi[size_t(qBound(1, p.nomi.campo, 3) - 1)]->setFocus();
    return p;
}

} // namespace kv
