#include "calibration/ui/T_Parametri.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/ui/StileTaratura.h"
#include "pages/DialogoPagina.h"
#include "pages/ui/CampoDato.h"
#include "variables/Catalogo.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kv {

T_Parametri::T_Parametri(SequenzaTaratura &sequenza, const ContestoPagina &contesto, QWidget *parent)
    : TelaioMessaPunto(contesto, DescrizioneParametri(), parent)
    , m_logica(std::make_unique<TaraturaParametri>(sequenza, dialogo()))
    , m_istruzione(CreaIstruzione(this))
    , m_esciTar(new QPushButton(this))
{
    m_esciTar->setObjectName(QStringLiteral("EsciTar"));
    m_istruzione->setObjectName(QStringLiteral("Istruzione"));
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, m_istruzione);
    // Nothing live to follow here: the engine's figures belong to the steps before.
    pannelloLive()->hide();

    aggiungiComando(m_esciTar);
    connect(m_esciTar, &QPushButton::clicked, this, &T_Parametri::EsciTar);
    tastiEsc({m_esciTar, tastoEsci(), tastoEsciOut()});
    const bool inSequenza = m_logica->inSequenza();
    m_esciTar->setVisible(inSequenza);
    m_esciTar->setEnabled(inSequenza);
    tastoEsci()->setVisible(!inSequenza);
    tastoEsci()->setEnabled(!inSequenza);

    for (QPushButton *b : {tastoApplica(), tastoMemorizza(), tastoRipristina()})
        b->setEnabled(false);
    for (int i = 0; i < 3; ++i)
        connect(campo(i), &QLineEdit::textEdited, this, &T_Parametri::modificato);
    for (int k = 0; k < 2; ++k) {
        connect(lista(RigaTipoTps + k), &QComboBox::activated, this, [this, k](int indice) {
            const int letta = m_selezioneLetta[static_cast<size_t>(k)];
            if (letta >= 0 && indice != letta)
                modificato();
        });
    }
}

void T_Parametri::caricaTestiAltrove()
{
    setWindowTitle(contesto().lingua.testo(m_logica->titolo()));
    const Lingua &l = contesto().lingua;
    const bool sequenza = m_logica->inSequenza();
    const QString uscita = l.LeggiTesto("TASTI", sequenza ? "ESCI" : "FINE");
    const QString fine = l.LeggiTesto("TASTI", sequenza ? "FINE" : "ESCI");
    m_esciTar->setText(testoComando(uscita, QStringLiteral("Esc")));
    tastoEsci()->setText(testoComando(fine, QStringLiteral("Esc")));
    tastoEsciOut()->setText(testoComando(fine, QStringLiteral("Esc")));
    m_istruzione->setText(testo(sequenza ? QStringLiteral("ISTRUZIONE.1") : QStringLiteral("ISTRUZIONE.0")));
}

void T_Parametri::modificato()
{
    tastoApplica()->setEnabled(true);
    tastoMemorizza()->setEnabled(false);
}

void T_Parametri::Applica()
{
    if (!prendiValori())
        return;
    dialogo().Applica();
    tastoMemorizza()->setEnabled(true);
    tastoApplica()->setEnabled(false);
}

void T_Parametri::EsciTar()
{
    const bool validi = prendiValori();
    m_logica->EsciTar(validi, validi ? QString() : primoRespinto(false));
}

void T_Parametri::mostraValore(int parametro, double valore)
{
    TelaioMessaPunto::mostraValore(parametro, valore);
    if (parametro == Par::TipoTps)
        m_selezioneLetta[0] = TipoTps()->currentIndex();
    else if (parametro == Par::TpsAutoadattante)
        m_selezioneLetta[1] = TpsAutoadattante()->currentIndex();
}

void T_Parametri::uscitaEmergenza()
{
    TelaioMessaPunto::uscitaEmergenza();
    // Esci_Out alone, in the sequence as well.
    m_esciTar->hide();
    m_esciTar->setEnabled(false);
}

void T_Parametri::scritturaConclusa(int stato, bool riuscita)
{
    (void)stato;
    m_logica->scritturaConclusa(riuscita);
}

} // namespace kv
