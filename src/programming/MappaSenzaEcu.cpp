#include "programming/MappaSenzaEcu.h"

#include "link/PortaMappa.h"
#include "link/SessioneLinea.h"
#include "variables/AreaMappa.h"
#include "variables/Conversioni.h"

namespace kv {

MappaSenzaEcu::MappaSenzaEcu(const MappaArchiviata &mappa)
    : m_chiave(mappa.percorso.chiave)
    , m_scalaLambda(mappa.scalaLambda)
    , m_salvata(mappa.mappa.immagine)
{
    auto porta = std::make_unique<PortaMappa>(m_salvata, m_catalogo, m_scalaLambda.value_or(0));
    m_porta = porta.get();
    m_linea = std::make_unique<SessioneLinea>(QString(), m_catalogo, std::move(porta),
                                              std::make_unique<TemporizzatoreQt>(),
                                              std::make_unique<TemporizzatoreQt>());
    // What identification would have learnt from an ECU holding this map: the throttle
    // sensor's calibration points as limits, and whether it is fitted, of what kind.
    const auto grezzo = [this](int p) {
        const Parametro &par = m_catalogo.Parametri[size_t(p)];
        return NumeroBE(AreaMappa::Cella(m_salvata, par));
    };
    Parametro &massimo = m_catalogo.Parametri[Par::TpsTaratoMassimo];
    Parametro &minimo = m_catalogo.Parametri[Par::TpsTaratoMinimo];
    massimo.Max = m_catalogo.daGrezzo(Par::TpsTaratoMassimo, grezzo(Par::TpsTaratoMassimo));
    minimo.Min = m_catalogo.daGrezzo(Par::TpsTaratoMinimo, grezzo(Par::TpsTaratoMinimo));
    StatoEcu ecu;
    ecu.EcuDaIdentificare = false;
    ecu.TpsPresente = TpsPresenteDa(massimo.Max, minimo.Min);
    ecu.TipoTpsPresente = grezzo(Par::TipoTps) != 0;
    ecu.TpsAutoPresente = grezzo(Par::TpsAutoadattante) != 0;
    m_linea->impostaEcu(ecu);
}

MappaSenzaEcu::~MappaSenzaEcu() = default;

const QByteArray &MappaSenzaEcu::immagine() const
{
    return m_porta->immagine();
}

EsitoSalvataggio MappaSenzaEcu::salva(const QString &percorsoApp, const ChiaveMappa &chiave,
                                      const QString &nota)
{
    const QByteArray immagine = m_porta->immagine();
    EsitoSalvataggio e = SalvaImmagineMappa(percorsoApp, chiave, immagine, nota, m_scalaLambda);
    if (e.ok() || e.errore == EsitoSalvataggio::Errore::Nessuno) {
        m_chiave = e.percorso.chiave;
        m_salvata = immagine;
    }
    return e;
}

} // namespace kv
