#include "programming/ui/ReadMappe.h"
#include "base/Lingua.h"

#include "base/FileSystem.h"
#include "programming/ui/ModelloAlberoMappe.h"

#include <QFocusEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QValidator>

namespace kv {

namespace {

// The key filter of the name fields: what a name may not hold never gets in, be it typed
// or pasted.
class FiltroNome : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &testo, int &posizione) const override
    {
        int prima = 0;
        for (int i = 0; i < posizione && i < testo.size(); ++i)
            prima += CarattereVietatoNome(testo.at(i)) ? 1 : 0;
        const QString filtrato = FiltraNome(testo);
        if (filtrato != testo) {
            testo = filtrato;
            posizione -= prima;
        }
        return Acceptable;
    }
};

} // namespace

ReadMappe::ReadMappe(const ContestoProgrammazione &contesto, const Catalogo &catalogo, QWidget *parent)
    : TelaioMappe(contesto, QStringLiteral("ReadMappe"), parent)
    , m_lettura(contesto.linea, contesto.percorsoApp, catalogo, static_cast<VistaMappe &>(*this))
{
    const char *nomi[] = {"NomeMarca", "NomeModello", "NomeFlyMod", "Note"};
    for (size_t i = 0; i < m_etichette.size(); ++i) {
        m_etichette[i] = new QLabel(this);
        m_etichette[i]->setObjectName(QStringLiteral("LabCampo_%1").arg(i));
    }
    m_impianto = new QLabel(this);
    m_impianto->setObjectName(QStringLiteral("Impianto"));
    m_impianto->setFrameShape(QFrame::StyledPanel);
    m_impianto->setFrameShadow(QFrame::Sunken);
    auto *filtro = new FiltroNome(this);
    for (size_t i = 0; i < m_campi.size(); ++i) {
        m_campi[i] = new QLineEdit(this);
        m_campi[i]->setObjectName(QString::fromLatin1(nomi[i]));
        if (i < 3)
            m_campi[i]->setValidator(filtro);
        m_campi[i]->installEventFilter(this);
        m_etichette[i + 1]->setBuddy(m_campi[i]);
    }
    auto *este = new QLabel(FileMappa::Estensione, this);
    este->setObjectName(QStringLiteral("LabEste"));

    QGridLayout *g = areaCampi();
    g->addWidget(m_etichette[0], 0, 0);
    g->addWidget(m_impianto, 0, 1, 1, 2);
    for (int i = 0; i < 4; ++i) {
        g->addWidget(m_etichette[size_t(i) + 1], i + 1, 0);
        g->addWidget(m_campi[size_t(i)], i + 1, 1, 1, i == 2 ? 1 : 2);
    }
    g->addWidget(este, 3, 2);
    g->setColumnStretch(1, 1);
    comando()->setObjectName(QStringLiteral("Leggi"));

    // The plant folders are there from the first read on.
    const QString mappe = CartellaMappe(contesto.percorsoApp);
    for (const QLatin1String impianto : FileMappa::Impianti)
        CreaCartella(PercorsoFile(mappe, impianto));
}

void ReadMappe::caricaTestiAltrove()
{
    for (size_t i = 0; i < m_etichette.size(); ++i)
        m_etichette[i]->setText(testo(QStringLiteral("LABCAMPO.") + QString::number(i)));
    comando()->setText(QLatin1Char('&') + contesto().lingua.LeggiTesto("TASTI", "LETTURA").trimmed()
                       + QStringLiteral("  (F2)"));
}

QList<QWidget *> ReadMappe::ordineCampi() const
{
    return {m_campi[0], m_campi[1], m_campi[2], m_campi[3]};
}

void ReadMappe::Leggi()
{
    // F2 does not leave the field it is pressed in: what was typed there stands as it is.
    if (auto *campo = qobject_cast<QLineEdit *>(focusWidget()); campo && campo != Note())
        m_testoEntrata = campo->text();
    m_lettura.Leggi({m_impianto->text(), NomeMarca()->text(), NomeModello()->text(), NomeFlyMod()->text()},
                    Note()->text());
}

void ReadMappe::nodoCliccato(int nodo)
{
    const AlberoMappe &a = modello().albero();
    const int profondita = a.valido(nodo) ? int(a.nodo(nodo).livello) : 0;
    const ChiaveMappa k = a.valido(nodo) ? a.chiave(nodo) : ChiaveMappa{};
    m_impianto->setText(profondita >= 1 ? k.impianto : QString());
    imposta(NomeMarca(), profondita >= 2 ? k.marca : QString());
    imposta(NomeModello(), profondita >= 3 ? k.modello : QString());
    imposta(NomeFlyMod(), {});
}

void ReadMappe::imposta(QLineEdit *campo, const QString &testo)
{
    campo->setText(testo);
    // What the tree puts in the field in use is no change of the fitter's.
    if (campo->hasFocus())
        m_testoEntrata = testo;
}

void ReadMappe::mappaCliccata(int nodo)
{
    const AlberoMappe &a = modello().albero();
    if (!a.valido(nodo))
        return;
    imposta(NomeFlyMod(), a.nodo(nodo).nome);
    imposta(Note(), a.nodo(nodo).nota.value_or(QString()));
}

void ReadMappe::entrato(QLineEdit *campo)
{
    if (campo != Note()) {
        mostraTesto(m_impianto->text().isEmpty() ? testo(QStringLiteral("SEGNALAZIONE1.0")) : QString());
        campo->setText(campo->text().trimmed());
    }
    m_testoEntrata = campo->text();
}

void ReadMappe::lasciato(QLineEdit *campo)
{
    if (campo == Note())
        return;
    campo->setText(campo->text().trimmed());
    // The make comes before the model, and the model before the map: a changed one clears
    // those after it.
    if (campo->text() == m_testoEntrata)
        return;
    if (campo == NomeMarca() || campo == NomeModello()) {
        if (campo == NomeMarca())
            NomeModello()->clear();
        NomeFlyMod()->clear();
        Mappe()->clear();
    }
}

bool ReadMappe::eventFilter(QObject *oggetto, QEvent *evento)
{
    auto *campo = qobject_cast<QLineEdit *>(oggetto);
    if (!campo || std::find(m_campi.begin(), m_campi.end(), campo) == m_campi.end())
        return TelaioMappe::eventFilter(oggetto, evento);
    // Another window (a question, another program) taking the focus for a while is no
    // leaving of the field.
    const auto spostato = [this, evento] {
        const Qt::FocusReason r = static_cast<QFocusEvent *>(evento)->reason();
        return r != Qt::ActiveWindowFocusReason && r != Qt::PopupFocusReason && !fuocoDaAbilitazione();
    };
    switch (evento->type()) {
    case QEvent::FocusIn:
        if (spostato())
            entrato(campo);
        break;
    case QEvent::FocusOut:
        if (spostato())
            lasciato(campo);
        break;
    case QEvent::KeyPress: {
        const int k = static_cast<QKeyEvent *>(evento)->key();
        if (k == Qt::Key_Return || k == Qt::Key_Enter) {
            focusNextChild();
            return true;
        }
        break;
    }
    default:
        break;
    }
    return TelaioMappe::eventFilter(oggetto, evento);
}

void ReadMappe::mappaArchiviata(const ChiaveMappa &chiave)
{
    aggiornaAlbero(chiave);
}

void ReadMappe::fuocoNomeFile()
{
    NomeFlyMod()->setFocus(Qt::OtherFocusReason);
    NomeFlyMod()->selectAll();
}

} // namespace kv
