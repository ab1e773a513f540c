#include "programming/ui/SceltaCartella.h"

#include "base/Lingua.h"
#include "shell/ui/Stile.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QCompleter>
#include <QDir>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QStorageInfo>
#include <QTimer>
#include <QUrl>

namespace kv {

namespace {

// Where removable media appear on a Linux desktop: /media/<user>/<name>, /run/media/<user>/<name>,
// or a folder of /mnt itself.
bool removibile(const QString &radice)
{
    const QStringList parti = radice.split(u'/', Qt::SkipEmptyParts);
    if (parti.value(0) == u"media")
        return parti.size() >= 2;
    if (parti.value(0) == u"run" && parti.value(1) == u"media")
        return parti.size() >= 3;
    return parti.value(0) == u"mnt" && parti.size() == 2;
}

// The volumes a medium may be on: removable ones first, then the home folder and the rest;
// the system's own pseudo file systems are left out.
QList<QUrl> volumi()
{
    QList<QUrl> primi, altri;
    for (const QStorageInfo &v : QStorageInfo::mountedVolumes()) {
        const QString radice = v.rootPath();
        if (!v.isValid() || !v.isReady())
            continue;
        if (removibile(radice))
            primi << QUrl::fromLocalFile(radice);
        else if (radice == u"/")
            altri << QUrl::fromLocalFile(radice);
    }
    altri.prepend(QUrl::fromLocalFile(QDir::homePath()));
    return primi + altri;
}

// A click beside the open list of completions closes the list and is not lost with it: the
// button under the pointer is pressed, any other widget gets the click as it came.
class ClicOltreLaLista : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override
    {
        auto *lista = qobject_cast<QWidget *>(oggetto);
        if (!lista || evento->type() != QEvent::MouseButtonPress)
            return false;
        const auto *clic = static_cast<QMouseEvent *>(evento);
        const QPoint dove = clic->globalPosition().toPoint();
        if (lista->rect().contains(lista->mapFromGlobal(dove)))
            return false;
        lista->hide();
        QWidget *sotto = QApplication::widgetAt(dove);
        if (!sotto || sotto->window() == lista->window())
            return true;
        if (auto *tasto = qobject_cast<QAbstractButton *>(sotto)) {
            if (tasto->isEnabled())
                QTimer::singleShot(0, tasto, [tasto] { tasto->click(); });
            return true;
        }
        QMouseEvent copia(QEvent::MouseButtonPress, sotto->mapFromGlobal(clic->globalPosition()),
                          clic->globalPosition(), clic->button(), clic->buttons(), clic->modifiers());
        QCoreApplication::sendEvent(sotto, &copia);
        return true;
    }
};

} // namespace

SceltaCartella::SceltaCartella(QWidget *parent)
    : QWidget(parent)
    , m_etichetta(new QLabel(this))
    , m_campo(new QLineEdit(this))
    , m_sfoglia(new QPushButton(this))
{
    m_campo->setObjectName(QStringLiteral("NomeDestinazione"));
    m_sfoglia->setObjectName(QStringLiteral("Sfoglia"));
    m_sfoglia->setAutoDefault(false);
    m_etichetta->setBuddy(m_campo);
    auto *modello = new QFileSystemModel(this);
    modello->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    modello->setRootPath(QString());
    auto *completamento = new QCompleter(modello, this);
    m_campo->setCompleter(completamento);
    completamento->popup()->installEventFilter(new ClicOltreLaLista(this));

    auto *riga = new QHBoxLayout(this);
    riga->setContentsMargins(0, 0, 0, 0);
    riga->addWidget(m_etichetta);
    riga->addWidget(m_campo, 1);
    riga->addWidget(m_sfoglia);
    setFocusProxy(m_campo);

    connect(m_campo, &QLineEdit::returnPressed, this, [this] { emit cartellaScelta(cartella()); });
    connect(m_sfoglia, &QPushButton::clicked, this, &SceltaCartella::Sfoglia);
}

void SceltaCartella::caricaTesti(const Lingua &lingua, const QString &etichetta)
{
    // Alt and the first letter reach the field from anywhere on the page.
    m_etichetta->setText(ConTastoAlt(etichetta.trimmed()));
    m_etichetta->setVisible(!etichetta.isEmpty());
    m_sfoglia->setText(lingua.LeggiTesto(QStringLiteral("SCAMBIO"), QStringLiteral("SFOGLIA")).trimmed());
    m_titolo = lingua.LeggiTesto(QStringLiteral("SCAMBIO"), QStringLiteral("SCEGLI")).trimmed();
}

QString SceltaCartella::cartella() const
{
    return m_campo->text().trimmed();
}

void SceltaCartella::impostaCartella(const QString &cartella)
{
    m_campo->setText(QDir::toNativeSeparators(cartella));
}

void SceltaCartella::Sfoglia()
{
    QFileDialog dialogo(this, m_titolo, cartella().isEmpty() ? QDir::homePath() : cartella());
    dialogo.setObjectName(QStringLiteral("SceltaCartellaDialogo"));
    dialogo.setFileMode(QFileDialog::Directory);
    dialogo.setOption(QFileDialog::ShowDirsOnly);
    dialogo.setOption(QFileDialog::DontUseNativeDialog);
    dialogo.setSidebarUrls(volumi());
    const int esito = m_modale ? m_modale(dialogo) : dialogo.exec();
    if (esito != QDialog::Accepted || dialogo.selectedFiles().isEmpty())
        return;
    impostaCartella(dialogo.selectedFiles().constFirst());
    m_campo->setFocus(Qt::OtherFocusReason);
    emit cartellaScelta(cartella());
}

} // namespace kv
