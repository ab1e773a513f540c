#pragma once

#include "link/Porta.h"

#include <QByteArray>

namespace kv {

class Catalogo;

// A map's image standing in for an ECU: it answers the read and write requests of the tuning
// pages as the ECU would and sends nothing unasked. The map area's EEPROM addresses
// (0xC100..0xC2FF) read and write the image. RAM starts as the ECU's does after a start,
// each catalogue entry's working copy loaded from its EEPROM home, the lambda flag (which
// has none) from the value given; the pages then try values there, and only what they store
// reaches the image.
class PortaMappa : public Porta
{
    Q_OBJECT
public:
    static constexpr int DimensioneRam = 0x200;

    PortaMappa(QByteArray immagine, const Catalogo &catalogo, double scalaLambda, QObject *parent = nullptr);

    bool apri(const ImpostazioniPorta &) override;
    void chiudi() override;
    bool PortOpen() const override { return m_aperta; }
    // The frame answered on the next turn of the event loop, as a line would.
    bool scrivi(const QByteArray &bytes) override;
    QString descrizioneErrore() const override { return {}; }

    const QByteArray &immagine() const { return m_immagine; }
    const QByteArray &ram() const { return m_ram; }

private:
    QByteArray risposta(const QByteArray &dati);
    // The bytes at addresses [indirizzo, indirizzo + n) of the image or of RAM; null when
    // they are not all in one of the two.
    QByteArray *memoria(quint32 indirizzo, int n, int &scarto);

    QByteArray m_immagine;
    QByteArray m_ram;
    bool m_aperta = true;
};

} // namespace kv
