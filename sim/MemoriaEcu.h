#pragma once

#include "MappaMemoria.h"

#include <QByteArray>
#include <QString>

namespace kv::sim {

// The bytes of the simulated ECU: RAM and the programmable area. Addresses the ECU does
// not have read as 0xFF and cannot be written.
class MemoriaEcu
{
public:
    MemoriaEcu();

    static AreaMemoria area(quint32 indirizzo, int conteggio);

    QByteArray leggi(quint32 indirizzo, int conteggio) const;
    // Writes the whole range or nothing; false when the range is not all memory.
    bool scrivi(quint32 indirizzo, const QByteArray &dati);

    quint8 byte(quint32 indirizzo) const;
    quint32 parola(quint32 indirizzo) const;

    void azzeraRam();

    // The programmable area as a flat image (0xC000 onwards), for keeping between runs.
    QByteArray immagine() const { return m_software; }
    // False, and nothing changed, when the image has not exactly the area's size.
    bool caricaImmagine(const QByteArray &immagine);

private:
    QByteArray m_ram;
    QByteArray m_software;
};

// The programmable area kept in a file between runs.
class FileMemoria
{
public:
    explicit FileMemoria(QString percorso = {}) : m_percorso(std::move(percorso)) {}

    bool attivo() const { return !m_percorso.isEmpty() && m_errore.isEmpty(); }
    const QString &percorso() const { return m_percorso; }
    const QString &errore() const { return m_errore; }

    // Fills the memory from the file if there is one. A file that is there but not an
    // image of this ECU is left alone: the error is kept and nothing will be saved over it.
    bool carica(MemoriaEcu &memoria);
    // Replaces the file atomically.
    bool salva(const MemoriaEcu &memoria);

private:
    QString m_percorso;
    QString m_errore;
};

} // namespace kv::sim
