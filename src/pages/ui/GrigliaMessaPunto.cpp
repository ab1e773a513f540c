#include "pages/ui/GrigliaMessaPunto.h"

#include "pages/ModelloGriglia.h"
#include "pages/ui/CampoDato.h"
#include "shell/ui/Stile.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>

namespace kv {

using Tipo = ModelloGriglia::TipoCella;
using namespace Tavolozza;

class DelegatoGriglia : public QStyledItemDelegate
{
public:
    explicit DelegatoGriglia(GrigliaMessaPunto *griglia) : QStyledItemDelegate(griglia), m_griglia(griglia) {}

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &,
                          const QModelIndex &indice) const override
    {
        auto *campo = new CampoDato(parent);
        campo->setObjectName(QStringLiteral("DatoEdit"));
        campo->setFrame(false);
        campo->setAlignment(Qt::AlignCenter);
        campo->setFont(m_griglia->font());
        campo->setToolTip(indice.data(Qt::ToolTipRole).toString());
        m_griglia->m_campo = campo;
        return campo;
    }

    void setEditorData(QWidget *editor, const QModelIndex &indice) const override
    {
        auto *campo = static_cast<CampoDato *>(editor);
        campo->setText(indice.data(Qt::EditRole).toString().trimmed());
        // The first key typed replaces the value, as in a field entered by Tab.
        campo->selectAll();
    }

    void setModelData(QWidget *editor, QAbstractItemModel *modello, const QModelIndex &indice) const override
    {
        modello->setData(indice, static_cast<CampoDato *>(editor)->text());
    }

    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &opzioni,
                              const QModelIndex &) const override
    {
        editor->setGeometry(opzioni.rect);
    }

    void paint(QPainter *p, const QStyleOptionViewItem &opzioni, const QModelIndex &indice) const override;

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override
    {
        auto *editor = qobject_cast<QWidget *>(oggetto);
        if (!editor)
            return QStyledItemDelegate::eventFilter(oggetto, evento);
        if (evento->type() != QEvent::ShortcutOverride && evento->type() != QEvent::KeyPress)
            return QStyledItemDelegate::eventFilter(oggetto, evento);
        // Esc is the page's, as in any field: it clicks Esci, which takes what was typed.
        if (evento->type() == QEvent::ShortcutOverride)
            return false;
        const auto *tasto = static_cast<QKeyEvent *>(evento);
        if (tasto->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
            return QStyledItemDelegate::eventFilter(oggetto, evento);
        // As in a spreadsheet: Enter and Tab keep the value and go on to the next cell, an
        // arrow keeps it and goes to the neighbour that way.
        switch (tasto->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Tab:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MoveNext);
            return true;
        case Qt::Key_Backtab:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MovePrevious);
            return true;
        case Qt::Key_Up:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MoveUp);
            return true;
        case Qt::Key_Down:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MoveDown);
            return true;
        case Qt::Key_Left:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MoveLeft);
            return true;
        case Qt::Key_Right:
            m_griglia->confermaESposta(editor, GrigliaMessaPunto::MoveRight);
            return true;
        default:
            return QStyledItemDelegate::eventFilter(oggetto, evento);
        }
    }

private:
    bool vivaA(const QModelIndex &indice, int dr, int dc) const
    {
        const QModelIndex altra =
            indice.siblingAtRow(indice.row() + dr).siblingAtColumn(indice.column() + dc);
        return altra.isValid() && altra.data(ModelloGriglia::RuoloViva).toBool();
    }

    GrigliaMessaPunto *m_griglia;
};

void DelegatoGriglia::paint(QPainter *p, const QStyleOptionViewItem &opzioni, const QModelIndex &indice) const
{
    const auto tipo = static_cast<Tipo>(indice.data(ModelloGriglia::RuoloTipo).toInt());
    const double intensita = indice.data(ModelloGriglia::RuoloIntensita).toDouble();
    const bool errata = indice.data(ModelloGriglia::RuoloErrata).toBool();
    const bool attuale = indice == m_griglia->currentIndex() && m_griglia->hasFocus();
    QColor sfondo = SfondoCampo;
    QColor testo = TestoCampo;
    bool forte = false;
    switch (tipo) {
    case Tipo::Vuota:
    case Tipo::Intestazione:
        sfondo = SfondoIntestazione;
        testo = TestoIntestazione;
        break;
    case Tipo::Asse:
        sfondo = SfondoAsse;
        forte = true;
        break;
    case Tipo::Magro:
        sfondo = Sfumatura(MagroBasso, MagroAlto, intensita);
        break;
    case Tipo::Ricco:
        sfondo = Sfumatura(RiccoBasso, RiccoAlto, intensita);
        break;
    case Tipo::Valore:
        break;
    }
    if (attuale) {
        sfondo = SfondoFuoco;
        testo = TestoChiaro;
    }
    // Wrong wins: the grid stays on a wrong cell, and it must show why.
    if (errata) {
        sfondo = SfondoErrato;
        testo = TestoChiaro;
        forte = true;
    }
    const QRect r = opzioni.rect;
    p->save();
    p->fillRect(r, sfondo);
    QFont f = opzioni.font;
    f.setBold(forte);
    p->setFont(f);
    p->setPen(testo);
    p->drawText(r.adjusted(3, 0, -3, 0), Qt::AlignCenter, indice.data(Qt::DisplayRole).toString());
    if (attuale && errata) {
        p->setPen(QPen(SfondoFuoco, 3));
        p->drawRect(r.adjusted(1, 1, -2, -2));
    }
    if (indice.data(ModelloGriglia::RuoloViva).toBool()) {
        // One frame round the whole zone: no line between two cells of it.
        const int spessore = 3;
        QRect dentro = r.adjusted(0, 0, -1, -1);
        p->setPen(Qt::NoPen);
        p->setBrush(BordoVivo);
        if (!vivaA(indice, -1, 0))
            p->drawRect(QRect(dentro.left(), dentro.top(), dentro.width() + 1, spessore));
        if (!vivaA(indice, 1, 0))
            p->drawRect(QRect(dentro.left(), dentro.bottom() - spessore + 1, dentro.width() + 1, spessore));
        if (!vivaA(indice, 0, -1))
            p->drawRect(QRect(dentro.left(), dentro.top(), spessore, dentro.height() + 1));
        if (!vivaA(indice, 0, 1))
            p->drawRect(QRect(dentro.right() - spessore + 1, dentro.top(), spessore, dentro.height() + 1));
    }
    p->restore();
}

GrigliaMessaPunto::GrigliaMessaPunto(ModelloGriglia *modello, QWidget *parent)
    : QTableView(parent)
    , m_modello(modello)
{
    setModel(modello);
    setItemDelegate(new DelegatoGriglia(this));
    horizontalHeader()->hide();
    verticalHeader()->hide();
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked);
    // Tab leaves the grid for the next control, as it leaves a field.
    setTabKeyNavigation(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    QFont f = font();
    f.setPointSizeF(f.pointSizeF() * 1.1);
    setFont(f);
    for (const QRect &u : modello->unioni())
        setSpan(u.top(), u.left(), u.height(), u.width());
    // A click opens the field over the cell, as it always has.
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex &i) {
        if (isEnabled() && (m_modello->flags(i) & Qt::ItemIsEditable))
            edit(i);
    });
    connect(modello, &ModelloGriglia::modificata, this, [this](const ModelloGriglia::Esito &esito) {
        if (!esito.valido)
            restaSu(esito.errata);
    });
    adattaDimensioni();
}

void GrigliaMessaPunto::restaSu(const QModelIndex &indice)
{
    // After the field has closed, which may move the current cell.
    QMetaObject::invokeMethod(
        this, [this, indice = QPersistentModelIndex(indice)] { setCurrentIndex(indice); },
        Qt::QueuedConnection);
}

void GrigliaMessaPunto::confermaModifica()
{
    if (m_campo && state() == EditingState) {
        CampoDato *campo = m_campo;
        commitData(campo);
        closeEditor(campo, QAbstractItemDelegate::NoHint);
    }
}

void GrigliaMessaPunto::confermaESposta(QWidget *editor, CursorAction verso)
{
    const QModelIndex da = currentIndex();
    commitData(editor);
    closeEditor(editor, QAbstractItemDelegate::NoHint);
    // A wrong value keeps the grid where it is (restaSu); a good one lets it move.
    const QModelIndex a = moveCursor(verso, Qt::NoModifier);
    if (a.isValid() && a != da && (m_modello->flags(a) & Qt::ItemIsEditable))
        setCurrentIndex(a);
}

void GrigliaMessaPunto::adattaDimensioni()
{
    const QFontMetrics fm(font());
    const int alta = fm.height() * 8 / 5;
    const int larga = fm.horizontalAdvance(QStringLiteral("> 00000")) + 12;
    for (int r = 0; r < m_modello->rowCount(); ++r)
        setRowHeight(r, alta);
    for (int c = 0; c < m_modello->columnCount(); ++c) {
        int serve = larga;
        for (int r = 0; r < m_modello->rowCount(); ++r)
            if (columnSpan(r, c) == 1)
                serve = std::max(serve, fm.horizontalAdvance(m_modello->cella(r, c).testo) + 16);
        setColumnWidth(c, serve);
    }
    updateGeometry();
}

void GrigliaMessaPunto::nascondiColonna(int colonna, bool nascosta)
{
    setColumnHidden(colonna, nascosta);
    updateGeometry();
}

QSize GrigliaMessaPunto::sizeHint() const
{
    int larga = 2 * frameWidth();
    for (int c = 0; c < m_modello->columnCount(); ++c)
        if (!isColumnHidden(c))
            larga += columnWidth(c);
    int alta = 2 * frameWidth();
    for (int r = 0; r < m_modello->rowCount(); ++r)
        alta += rowHeight(r);
    return {larga + 1, alta + 1};
}

QSize GrigliaMessaPunto::minimumSizeHint() const
{
    return sizeHint();
}

void GrigliaMessaPunto::focusInEvent(QFocusEvent *evento)
{
    QTableView::focusInEvent(evento);
    // Entered by keyboard with no cell chosen yet: the first one the fitter can edit.
    const auto modificabile = [this](const QModelIndex &i) {
        return i.isValid() && !isColumnHidden(i.column()) && (m_modello->flags(i) & Qt::ItemIsEditable);
    };
    for (int i = 0; !modificabile(currentIndex()) && i < m_modello->rowCount() * m_modello->columnCount();
         ++i) {
        const QModelIndex prossima =
            m_modello->index(i / m_modello->columnCount(), i % m_modello->columnCount());
        if (modificabile(prossima))
            setCurrentIndex(prossima);
    }
    viewport()->update();
}

void GrigliaMessaPunto::focusOutEvent(QFocusEvent *evento)
{
    QTableView::focusOutEvent(evento);
    viewport()->update();
}

void GrigliaMessaPunto::keyPressEvent(QKeyEvent *evento)
{
    const QModelIndex attuale = currentIndex();
    const bool modificabile = attuale.isValid() && (m_modello->flags(attuale) & Qt::ItemIsEditable);
    if (evento->key() == Qt::Key_Return || evento->key() == Qt::Key_Enter) {
        if (modificabile)
            edit(attuale);
        evento->accept();
        return;
    }
    const QString testo = evento->text();
    const bool comando = evento->modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (!testo.isEmpty() && testo.at(0).isPrint() && !comando) {
        const QChar c = testo.at(0);
        // A digit, a sign or a blank starts the edit and is its first key; other keys do nothing.
        if (modificabile
            && ((c.isDigit() && c.unicode() < 128) || c == QLatin1Char('-') || c == QLatin1Char(' ')))
            edit(attuale, AnyKeyPressed, evento);
        evento->accept();
        return;
    }
    QTableView::keyPressEvent(evento);
}

} // namespace kv
