#pragma once

#include "link/MotoreDialogo.h"

#include <QObject>

namespace kv {

class AnelloRegistrazione;
class Catalogo;

// The instruments panel's dialogue: its 13 set points read once under state 101 into the
// catalogue, and the recorder armed while the panel is open.
class LetturaStrumenti : public QObject, public GestoreStati
{
    Q_OBJECT
public:
    static constexpr int Stato = 101;

    LetturaStrumenti(MotoreDialogo &motore, Catalogo &catalogo, AnelloRegistrazione &anello,
                     QObject *parent = nullptr);
    ~LetturaStrumenti() override;

    // Load: the ring emptied and recording armed, the set points back to -1 and the 13 reads
    // started. False when the port is closed: nothing is read.
    bool carica();
    // Closing: what the ring holds written if recording, the ring emptied, recording off.
    void chiudi();
    bool inLettura() const;

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override { return stato == Stato ? 'r' : 0; }

signals:
    void valoreLetto(int passo);
    // The reads are over, completed or not: the panel lives on the stream from now on.
    void letturaFinita(bool completa);

private:
    MotoreDialogo &m_motore;
    Catalogo &m_catalogo;
    AnelloRegistrazione &m_anello;
};

} // namespace kv
