#include "pages/ui/MP_PienoCarico.h"

#include "link/SessioneLinea.h"
#include "pages/GriglieMessaPunto.h"
#include "pages/ui/GrigliaMessaPunto.h"

#include <QComboBox>
#include <QVBoxLayout>

namespace kv {

MP_PienoCarico::MP_PienoCarico(const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, *DescrizioneDi(IdPagina::MP_PienoCarico), parent)
    , m_modello(new ModelloGrigliaRTS(dialogo(), contesto.catalogo, this))
    , m_griglia(new GrigliaMessaPunto(m_modello, this))
{
    m_griglia->setObjectName(QStringLiteral("GrigliaRTS"));
    areaPagina()->addWidget(m_griglia, 0, Qt::AlignLeft);
    aggiungiGriglia(m_griglia);
    connect(lista(RigaTipoPC), &QComboBox::currentIndexChanged, this, &MP_PienoCarico::Liste_Click);
    connect(lista(RigaPcConf), &QComboBox::currentIndexChanged, this, &MP_PienoCarico::Liste_Click);
}

void MP_PienoCarico::caricaTestiAltrove()
{
    for (int c = 0; c < ModelloGrigliaRTS::Colonne; ++c)
        m_modello->impostaTesto(0, c, testo(QStringLiteral("GRIGLIA.%1").arg(c)));
    m_griglia->adattaDimensioni();
}

void MP_PienoCarico::nascondiRigheTps()
{
    TelaioMessaPunto::nascondiRigheTps();
    // The TPS column goes with the rows.
    Liste_Click();
}

void MP_PienoCarico::mostraRigheTps()
{
    // The lists, read before, decide which TPS rows and column come back.
    Liste_Click();
}

void MP_PienoCarico::Liste_Click()
{
    const auto aspetto = AspettoPerListe(lista(RigaTipoPC)->currentIndex(), lista(RigaPcConf)->currentIndex(),
                                         contesto().linea.ecu().TpsPresente);
    if (!aspetto)
        return;
    for (int riga : {2, 3})
        mostraRiga(riga, aspetto->soglieTps);
    for (int riga : {4, 5, 6})
        mostraRiga(riga, aspetto->soglieLambda);
    m_griglia->setVisible(aspetto->griglia);
    m_griglia->setEnabled(aspetto->griglia);
    m_griglia->nascondiColonna(ModelloGrigliaRTS::ColonnaTps, !aspetto->colonnaTps);
    m_griglia->nascondiColonna(ModelloGrigliaRTS::ColonnaPosizione, !aspetto->colonnaPosizione);
}

} // namespace kv
