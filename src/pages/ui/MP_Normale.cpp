#include "pages/ui/MP_Normale.h"

#include "base/Lingua.h"
#include "pages/GriglieMessaPunto.h"
#include "pages/ui/GrigliaMessaPunto.h"
#include "shell/ui/Stile.h"

#include <QComboBox>
#include <QLabel>
#include <QVBoxLayout>

namespace kv {

namespace {

// A small square of a colour, then its meaning.
QString voceLegenda(const QColor &colore, const QString &testo)
{
    return QStringLiteral("<span style=\"background-color: %1;\">&nbsp;&nbsp;&nbsp;&nbsp;</span>&nbsp;%2")
        .arg(colore.name(), testo.toHtmlEscaped());
}

} // namespace

MP_Normale::MP_Normale(const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, *DescrizioneDi(IdPagina::MP_Normale), parent)
    , m_modello(new ModelloMappaLambda(dialogo(), contesto.catalogo, this))
    , m_mappa(new GrigliaMessaPunto(m_modello, this))
    , m_legenda(new QLabel(this))
{
    m_mappa->setObjectName(QStringLiteral("MappaLambda"));
    m_legenda->setObjectName(QStringLiteral("LegendaMappa"));
    m_legenda->setTextFormat(Qt::RichText);
    areaPagina()->addWidget(m_mappa, 0, Qt::AlignLeft);
    areaPagina()->addWidget(m_legenda, 0, Qt::AlignLeft);
    aggiungiGriglia(m_mappa);
    connect(lista(RigaTipoNOR), &QComboBox::currentIndexChanged, this, &MP_Normale::TipoNOR_Click);
    connect(m_modello, &ModelloGriglia::modificata, this, [this](const ModelloGriglia::Esito &esito) {
        mostraMessaggio(esito.valido ? QString()
                                     : this->contesto().lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_59"));
    });
}

void MP_Normale::caricaTestiAltrove()
{
    m_modello->impostaTesto(0, 0, testo(QStringLiteral("MAPPA.ASSI")));
    using namespace Tavolozza;
    m_legenda->setText(
        voceLegenda(RiccoAlto, testo(QStringLiteral("MAPPA.RICCO"))) + QStringLiteral("&nbsp;&nbsp;&nbsp;")
        + voceLegenda(MagroAlto, testo(QStringLiteral("MAPPA.MAGRO"))) + QStringLiteral("&nbsp;&nbsp;&nbsp;")
        + voceLegenda(BordoVivo, testo(QStringLiteral("MAPPA.VIVO"))));
    m_mappa->adattaDimensioni();
}

void MP_Normale::TipoNOR_Click(int indice)
{
    if (indice != 0 && indice != 1)
        return;
    const bool soglie = indice == 1;
    mostraRiga(5, soglie);
    mostraRiga(6, soglie);
    m_mappa->setVisible(!soglie);
    m_mappa->setEnabled(!soglie);
    m_legenda->setVisible(!soglie);
}

} // namespace kv
