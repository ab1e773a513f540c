#include "MemoriaEcu.h"

#include <QFile>
#include <QSaveFile>

namespace kv::sim {

using namespace MappaMemoria;

namespace {
constexpr int DimensioneRam = int(FineRam - InizioRam + 1);

bool dentro(quint32 indirizzo, int conteggio, quint32 inizio, quint32 fine)
{
    return conteggio > 0 && indirizzo >= inizio && quint64(indirizzo) + quint64(conteggio) - 1 <= fine;
}
} // namespace

MemoriaEcu::MemoriaEcu() : m_ram(DimensioneRam, '\0'), m_software(DimensioneSoftware, char(0xFF)) {}

AreaMemoria MemoriaEcu::area(quint32 indirizzo, int conteggio)
{
    if (dentro(indirizzo, conteggio, InizioRam, FineRam))
        return AreaMemoria::Ram;
    if (dentro(indirizzo, conteggio, InizioEeprom, FineEeprom))
        return AreaMemoria::Eeprom;
    if (dentro(indirizzo, conteggio, InizioSoftware, FineSoftware))
        return AreaMemoria::Software;
    return AreaMemoria::Nessuna;
}

quint8 MemoriaEcu::byte(quint32 indirizzo) const
{
    if (indirizzo >= InizioRam && indirizzo <= FineRam)
        return quint8(m_ram.at(indirizzo - InizioRam));
    if (indirizzo >= InizioSoftware && indirizzo <= FineSoftware)
        return quint8(m_software.at(indirizzo - InizioSoftware));
    return 0xFF;
}

quint32 MemoriaEcu::parola(quint32 indirizzo) const
{
    return quint32(byte(indirizzo)) << 8 | byte(indirizzo + 1);
}

QByteArray MemoriaEcu::leggi(quint32 indirizzo, int conteggio) const
{
    QByteArray r;
    r.reserve(qMax(conteggio, 0));
    for (int i = 0; i < conteggio; ++i)
        r.append(char(byte(indirizzo + quint32(i))));
    return r;
}

bool MemoriaEcu::scrivi(quint32 indirizzo, const QByteArray &dati)
{
    const int n = int(dati.size());
    if (dentro(indirizzo, n, InizioRam, FineRam)) {
        m_ram.replace(indirizzo - InizioRam, n, dati);
        return true;
    }
    if (dentro(indirizzo, n, InizioSoftware, FineSoftware)) {
        m_software.replace(indirizzo - InizioSoftware, n, dati);
        return true;
    }
    return false;
}

void MemoriaEcu::azzeraRam()
{
    m_ram.fill('\0');
}

bool MemoriaEcu::caricaImmagine(const QByteArray &immagine)
{
    if (immagine.size() != DimensioneSoftware)
        return false;
    m_software = immagine;
    return true;
}

bool FileMemoria::carica(MemoriaEcu &memoria)
{
    if (m_percorso.isEmpty() || !QFile::exists(m_percorso))
        return false;
    QFile f(m_percorso);
    if (!f.open(QIODevice::ReadOnly)) {
        m_errore = QStringLiteral("cannot read the memory file %1: %2").arg(m_percorso, f.errorString());
        return false;
    }
    const QByteArray dati = f.read(DimensioneSoftware + 1);
    if (!memoria.caricaImmagine(dati)) {
        m_errore = QStringLiteral("%1 is not a memory image of this ECU (%2 bytes, %3 expected); "
                                  "it is left untouched")
                       .arg(m_percorso)
                       .arg(f.size())
                       .arg(DimensioneSoftware);
        return false;
    }
    return true;
}

bool FileMemoria::salva(const MemoriaEcu &memoria)
{
    if (!attivo())
        return false;
    QSaveFile f(m_percorso);
    if (!f.open(QIODevice::WriteOnly) || f.write(memoria.immagine()) != DimensioneSoftware || !f.commit()) {
        m_errore = QStringLiteral("cannot save the memory file %1: %2").arg(m_percorso, f.errorString());
        return false;
    }
    return true;
}

} // namespace kv::sim
