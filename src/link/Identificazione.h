#pragma once

#include "link/MotoreDialogo.h"

#include <QObject>

namespace kv {

class Catalogo;
struct StatoEcu;

// The program never asks whether an ECU is there: the first live frame starts this, which
// asks for the version and reads the four cells that decide what the menus offer.
class Identificazione : public QObject, public GestoreStati
{
    Q_OBJECT
public:
    static constexpr int StatoVersione = 111;
    static constexpr int StatoLetture = 112;

    Identificazione(StatoEcu &ecu, Catalogo &catalogo, MotoreDialogo &motore, QObject *parent = nullptr);
    ~Identificazione() override;

    // On a live frame while the ECU is still unknown.
    void avvia();
    // 'g': an ECU without application.
    void RispostaVita();

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override
    {
        return stato == StatoVersione ? 'v' : stato == StatoLetture ? 'r' : 0;
    }

signals:
    void aggiornaMenu();
    // The main frame is disabled while identification holds the link.
    void frameAbilitato(bool abilitato);
    void identificata();

private:
    void RispostaVersione(const QByteArray &payload);
    void rispostaLettura(const QByteArray &payload);
    // After the link is free: the frame enabled again, and the ECU known when completata.
    void fine(bool completata);

    StatoEcu &m_ecu;
    Catalogo &m_catalogo;
    MotoreDialogo &m_motore;
};

} // namespace kv
