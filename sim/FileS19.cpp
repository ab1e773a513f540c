#include "FileS19.h"

#include "MappaMemoria.h"
#include "MemoriaEcu.h"

#include "variables/Catalogo.h"

namespace kv::sim {

namespace {

// Count, address and data, then the ones' complement of their sum, as upper-case hex.
QByteArray record(char tipo, const QByteArray &corpo)
{
    QByteArray r;
    r.append(char(corpo.size() + 1));
    r.append(corpo);
    quint8 somma = 0;
    for (const char c : std::as_const(r))
        somma = quint8(somma + quint8(c));
    r.append(char(~somma));
    return QByteArray("S") + tipo + r.toHex().toUpper() + "\r\n";
}

QByteArray indirizzo(quint16 a)
{
    return QByteArray(1, char(a >> 8)) + char(a & 0xFF);
}

} // namespace

QByteArray ImmagineSoftware(const StringheVersione &versione)
{
    MemoriaEcu memoria;
    const Catalogo catalogo;
    ScriviImmagineIniziale(memoria, catalogo, versione);
    return memoria.immagine();
}

QByteArray TestoS19(const QByteArray &immagine, quint16 inizio)
{
    QByteArray testo = record('0', indirizzo(0) + QByteArrayLiteral("KORVANTINE"));
    for (qsizetype i = 0; i < immagine.size(); i += 32)
        testo += record('1', indirizzo(quint16(inizio + i)) + immagine.mid(i, 32));
    return testo + record('9', indirizzo(inizio));
}

QByteArray RilascioDemo()
{
    StringheVersione versione;
    versione.veicolo = "KV-SIM R2 ";
    versione.data = "2025-06-01";
    versione.codice = "KV2SIM0002    ";
    versione.datoA = "LPG-SEQ-02";
    versione.datoB = "R2.0";
    return TestoS19(ImmagineSoftware(versione), quint16(MappaMemoria::InizioSoftware));
}

} // namespace kv::sim
