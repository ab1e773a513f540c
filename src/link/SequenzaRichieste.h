#pragma once

#include "base/Messaggio.h"
#include "link/MotoreDialogo.h"
#include "variables/AreaMappa.h"

#include <QByteArray>
#include <QList>
#include <QObject>

#include <functional>
#include <optional>

namespace kv {

class Catalogo;

// A short dialogue of a caller that is no page of the state table: requests sent one after
// the other, the replies kept, and one call at the end however it ended. Reads wait for 'r'
// in the first state of its group, writes for 'e' in the second. The call comes once the
// engine has let the link go, so it may start the next dialogue at once.
class SequenzaRichieste : public QObject, public GestoreStati
{
    Q_OBJECT
public:
    struct Esito
    {
        bool ok = false;
        QList<QByteArray> risposte; // the payloads that came, in order
        Messaggio rifiuto;          // the ECU's refusal that ended it; empty after a silence
    };
    using Fine = std::function<void(const Esito &)>;

    SequenzaRichieste(MotoreDialogo &motore, int primoStato, QObject *parent = nullptr);
    ~SequenzaRichieste() override;

    // Each a request's data ('R' or 'W' and the rest). False when the port is closed or a
    // sequence of this one runs: nothing is sent and fine never comes.
    bool leggi(const QList<QByteArray> &richieste, Fine fine);
    bool scrivi(const QList<QByteArray> &richieste, Fine fine);
    bool inCorso() const { return static_cast<bool>(m_fine); }

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override;

private:
    bool avvia(int stato, const QList<QByteArray> &richieste, Fine fine);
    void concludi(bool ok, Messaggio rifiuto = {});

    MotoreDialogo &m_motore;
    int m_primo;
    Fine m_fine;
    QList<QByteArray> m_risposte;
};

// The ECU's map area as a map read takes it: its blocks in order, then the lambda flag from
// RAM, which the bytes alone do not say.
QList<QByteArray> RichiesteAreaMappa(const Catalogo &catalogo);

struct AreaLetta
{
    QByteArray immagine;               // empty unless every block came whole
    std::optional<double> scalaLambda; // none when the ECU did not give it
    bool ok() const { return immagine.size() == AreaMappa::Dimensione; }
};

// The replies of RichiesteAreaMappa put together; the blocks are enough without the flag.
AreaLetta AreaDaRisposte(const QList<QByteArray> &risposte, const Catalogo &catalogo);

} // namespace kv
