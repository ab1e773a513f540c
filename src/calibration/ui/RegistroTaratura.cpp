#include "calibration/ui/RegistroTaratura.h"
#include "base/Lingua.h"

#include "calibration/SequenzaTaratura.h"
#include "calibration/TelaioTaratura.h"
#include "calibration/ui/IniTaratura.h"
#include "calibration/ui/PagineStriscia.h"
#include "calibration/ui/T_Giri.h"
#include "calibration/ui/T_Parametri.h"
#include "shell/Programma.h"
#include "shell/ui/Korvantine.h"
#include "shell/ui/MainLambda.h"

namespace kv {

namespace {

// The main frame as calibration sees it.
class TelaioKorvantine : public QObject, public TelaioTaratura
{
public:
    explicit TelaioKorvantine(Korvantine &frame) : QObject(&frame), m_frame(frame) {}

    bool apriPagina(IdPagina id) override { return m_frame.apriPagina(id) != nullptr; }

    void chiudiPagina(IdPagina id, bool prosegui) override
    {
        QWidget *pagina = m_frame.idPaginaSopra() == id    ? m_frame.paginaSopra()
                          : m_frame.idPaginaAttiva() == id ? m_frame.paginaAttiva()
                                                           : nullptr;
        if (pagina)
            m_frame.ChiudiPagina(pagina, prosegui ? -1 : 0);
    }

    void ChiudiPagineTaratura() override { m_frame.ChiudiPagineTaratura(); }

    IdPagina paginaTaratura() const override
    {
        if (m_frame.paginaSopra() && PaginaTaratura(m_frame.idPaginaSopra()))
            return m_frame.idPaginaSopra();
        if (m_frame.paginaAttiva() && PaginaTaratura(m_frame.idPaginaAttiva()))
            return m_frame.idPaginaAttiva();
        return IdPagina::Nessuna;
    }

    void abilitaFrame(bool abilitato) override { m_frame.abilitaArea(abilitato); }

    void abilitaMenu(bool abilitato) override
    {
        if (MainLambda *m = m_frame.menu())
            m->setEnabled(abilitato);
    }

    int MostraMsg(const Messaggio &testo, int flags) override
    {
        const Lingua &l = m_frame.programma().lingua;
        return m_frame.MostraMsg(l.testo(testo), flags, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
    }

private:
    Korvantine &m_frame;
};

// The session as the frame sees it.
class TaraturaNelFrame : public QObject, public Korvantine::Taratura
{
public:
    TaraturaNelFrame(SequenzaTaratura &sequenza, QObject *parent) : QObject(parent), m_sequenza(sequenza) {}

    void avvia(FaseTaratura passo) override { m_sequenza.AvviaTaratura(passo); }
    void avviaSequenza() override { m_sequenza.avviaSequenza(); }
    void prosegui() override { m_sequenza.prosegui(); }
    bool inCorso() const override { return m_sequenza.TaraturaInCorso() != FaseTaratura::Nessuna; }
    void terminata() override { m_sequenza.terminata(); }

private:
    SequenzaTaratura &m_sequenza;
};

} // namespace

SequenzaTaratura &RegistraPagineTaratura(Korvantine &frame)
{
    auto *telaio = new TelaioKorvantine(frame);
    auto *sequenza = new SequenzaTaratura(frame.programma().linea, frame.programma().catalogo,
                                          frame.programma().canali, *telaio, telaio);
    frame.impostaTaratura(new TaraturaNelFrame(*sequenza, sequenza));
    QObject::connect(sequenza, &SequenzaTaratura::segnalazione1, &frame, [&frame](const Messaggio &m) {
        frame.impostaSegnalazione1(frame.programma().lingua.testo(m));
    });
    frame.registraPagina(
        IdPagina::IniTaratura,
        [sequenza](Korvantine &f) { return new IniTaratura(*sequenza, f.programma().lingua); },
        Korvantine::Apertura::SopraIlMenu);
    // A pair, not a structured binding: clang 14 cannot capture one in a lambda.
    for (const auto &voce : {std::pair{IdPagina::T_Giri, false}, std::pair{IdPagina::T_Giri_Single, true}}) {
        const bool singola = voce.second;
        frame.registraPagina(voce.first, [sequenza, singola](Korvantine &f) {
            auto *pagina = new T_Giri(*sequenza, f.programma().lingua, singola);
            pagina->carica();
            return pagina;
        });
    }
    for (IdPagina id :
         {IdPagina::T_TPS, IdPagina::T_TPS_Single, IdPagina::T_Lambda, IdPagina::T_Lambda_Single}) {
        frame.registraPagina(id, [sequenza, id](Korvantine &f) {
            auto *pagina = new PaginaStriscia(*sequenza, f.programma().lingua, id);
            pagina->carica();
            return pagina;
        });
    }
    frame.registraPagina(IdPagina::T_Parametri, [sequenza](Korvantine &f) -> QWidget * {
        auto *pagina = new T_Parametri(*sequenza, ContestoDi(f.programma()));
        pagina->impostaDomanda([&f](const QString &testo, int flags, const QString &titolo) {
            return f.MostraMsg(testo, flags, titolo);
        });
        // However it ends, in the sequence or alone, the calibration is over and the menu
        // comes back.
        QObject::connect(pagina, &TelaioMessaPunto::segnalazione1, &f, &Korvantine::impostaSegnalazione1);
        QObject::connect(pagina, &TelaioMessaPunto::chiusa, sequenza,
                         [sequenza] { sequenza->ChiudiPagineTaratura(); });
        pagina->carica();
        return pagina;
    });
    return *sequenza;
}

} // namespace kv
