#pragma once

#include "programming/MappaArchiviata.h"
#include "variables/Catalogo.h"

#include <QByteArray>

#include <memory>
#include <optional>

namespace kv {

class PortaMappa;
class SessioneLinea;

// A map of the archive opened for the tuning pages with no ECU behind them. The pages get a
// line session of its own whose port is the map's image (PortaMappa) and whose ECU counts as
// identified and in normal running, and a catalogue of its own: what they read and the
// throttle sensor's limits taken from the map never mix with the connected ECU's. They
// work as on an ECU; what they store lands in the image.
class MappaSenzaEcu
{
public:
    // mappa has passed the strict check. The pages take its row's ScalaLambda, 0 without one.
    explicit MappaSenzaEcu(const MappaArchiviata &mappa);
    ~MappaSenzaEcu();
    MappaSenzaEcu(const MappaSenzaEcu &) = delete;
    MappaSenzaEcu &operator=(const MappaSenzaEcu &) = delete;

    SessioneLinea &linea() { return *m_linea; }
    Catalogo &catalogo() { return m_catalogo; }

    // The map it was opened from, or saved as last.
    const ChiaveMappa &chiave() const { return m_chiave; }
    const std::optional<double> &scalaLambda() const { return m_scalaLambda; }
    // As the pages have stored it.
    const QByteArray &immagine() const;
    // Stored by a page since it was opened or saved.
    bool modificata() const { return immagine() != m_salvata; }

    // The image filed under new names, by the map tree's rules, with the ScalaLambda of the
    // opened map's row; from then on the opened map is that one.
    EsitoSalvataggio salva(const QString &percorsoApp, const ChiaveMappa &chiave, const QString &nota);

private:
    Catalogo m_catalogo;
    PortaMappa *m_porta;
    std::unique_ptr<SessioneLinea> m_linea;
    ChiaveMappa m_chiave;
    std::optional<double> m_scalaLambda;
    QByteArray m_salvata;
};

} // namespace kv
