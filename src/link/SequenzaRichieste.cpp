#include "link/SequenzaRichieste.h"

#include "link/ErroreEcu.h"
#include "link/Frame.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <utility>

namespace kv {

SequenzaRichieste::SequenzaRichieste(MotoreDialogo &motore, int primoStato, QObject *parent)
    : QObject(parent)
    , m_motore(motore)
    , m_primo(primoStato)
{
    m_motore.registra(m_primo, this);
}

SequenzaRichieste::~SequenzaRichieste()
{
    if (inCorso() && (m_motore.StatoDialogo() == m_primo || m_motore.StatoDialogo() == m_primo + 1))
        m_motore.abbandona();
    m_motore.rimuovi(this);
}

bool SequenzaRichieste::leggi(const QList<QByteArray> &richieste, Fine fine)
{
    return avvia(m_primo, richieste, std::move(fine));
}

bool SequenzaRichieste::scrivi(const QList<QByteArray> &richieste, Fine fine)
{
    return avvia(m_primo + 1, richieste, std::move(fine));
}

bool SequenzaRichieste::avvia(int stato, const QList<QByteArray> &richieste, Fine fine)
{
    if (inCorso() || richieste.isEmpty() || !m_motore.PortOpen())
        return false;
    // Another page may have taken the group while this one waited.
    m_motore.registra(m_primo, this);
    m_motore.svuotaCoda();
    for (const QByteArray &r : richieste)
        m_motore.accoda(r);
    m_risposte.clear();
    m_fine = std::move(fine);
    if (m_motore.avvia(stato, MotoreDialogo::IntervalloLettura))
        return true;
    m_fine = {};
    return false;
}

char SequenzaRichieste::rispostaAttesa(int stato) const
{
    if (!inCorso())
        return 0;
    return stato == m_primo ? 'r' : stato == m_primo + 1 ? 'e' : 0;
}

void SequenzaRichieste::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (!inCorso())
        return;
    if (lettera == 'e' && (payload.size() < 2 || quint8(payload.at(1)) != 0xFF)) {
        concludi(false, ErroreEcu(payload));
        return;
    }
    if (lettera != rispostaAttesa(stato))
        return;
    m_risposte.append(payload);
    if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso)
        concludi(true);
}

void SequenzaRichieste::scadenza(int)
{
    if (inCorso())
        concludi(false);
}

void SequenzaRichieste::concludi(bool ok, Messaggio rifiuto)
{
    Esito esito{ok, m_risposte, std::move(rifiuto)};
    Fine fine = std::exchange(m_fine, {});
    // After a refusal or a time-out the engine frees the link only once this returns.
    QMetaObject::invokeMethod(
        this, [fine = std::move(fine), esito = std::move(esito)] { fine(esito); }, Qt::QueuedConnection);
}

QList<QByteArray> RichiesteAreaMappa(const Catalogo &catalogo)
{
    QList<QByteArray> richieste;
    for (int n = 0; n < AreaMappa::Blocchi; ++n)
        richieste.append('R' + ParolaInByte(quint32(AreaMappa::Inizio + n * AreaMappa::Blocco))
                         + char(AreaMappa::Blocco));
    const Parametro &scala = catalogo.Parametri[Par::ScalaLambda];
    richieste.append('R' + ParolaInByte(quint32(scala.IndirizzoRAM)) + char(scala.Dimensione));
    return richieste;
}

AreaLetta AreaDaRisposte(const QList<QByteArray> &risposte, const Catalogo &catalogo)
{
    constexpr int blocchi = AreaMappa::Blocchi;
    AreaLetta area;
    QByteArray immagine;
    for (int n = 0; n < blocchi && n < risposte.size(); ++n)
        immagine += risposte.at(n).mid(1, AreaMappa::Blocco);
    if (immagine.size() != AreaMappa::Dimensione)
        return area;
    area.immagine = immagine;
    const int dimensione = catalogo.Parametri[Par::ScalaLambda].Dimensione;
    if (risposte.size() > blocchi && risposte.at(blocchi).size() > dimensione)
        area.scalaLambda =
            catalogo.daGrezzo(Par::ScalaLambda, NumeroBE(risposte.at(blocchi).mid(1, dimensione)));
    return area;
}

} // namespace kv
