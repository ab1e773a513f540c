#include "calibration/SequenzaTaratura.h"

#include "calibration/LogicaTaratura.h"
#include "calibration/TelaioTaratura.h"
#include "link/SessioneLinea.h"
#include "variables/Formato.h"

#include <QPointer>
#include <QScopedValueRollback>
#include <QTimer>

namespace kv {

SequenzaTaratura::SequenzaTaratura(SessioneLinea &linea, Catalogo &catalogo, TabellaCanali &canali,
                                   TelaioTaratura &telaio, QObject *parent)
    : QObject(parent)
    , m_linea(linea)
    , m_catalogo(catalogo)
    , m_canali(canali)
    , m_telaio(telaio)
{
    m_linea.motore().registra(StatoIngresso, this);
    m_linea.datiLive().impostaGestoreTaratura(this);
}

SequenzaTaratura::~SequenzaTaratura()
{
    m_linea.motore().rimuovi(this);
    m_linea.datiLive().impostaGestoreTaratura(nullptr);
}

MotoreDialogo &SequenzaTaratura::motore()
{
    return m_linea.motore();
}

const RecordDati &SequenzaTaratura::ultimoRecord() const
{
    return m_linea.datiLive().ultimoRecord();
}

void SequenzaTaratura::avviaSequenza()
{
    m_fase = FaseTaratura::Avviso;
    m_passo = 0;
    AvviaTaratura(FaseTaratura::Avviso);
}

bool SequenzaTaratura::avanzaPasso(qint16 da, qint16 a)
{
    if (m_passo != da)
        return false;
    m_passo = a;
    return true;
}

void SequenzaTaratura::passaAFase(FaseTaratura passo)
{
    m_fase = passo;
    m_passo = 0;
}

void SequenzaTaratura::terminata()
{
    m_completa = false;
    m_fase = FaseTaratura::Nessuna;
    m_passo = -1;
}

Messaggio SequenzaTaratura::ComponiPasso(Messaggio testo, int passo)
{
    return testo.conPrimo(QStringLiteral("xx"), FormattaNumero(passo, QStringLiteral("#0")))
        .conPrimo(QStringLiteral("yy"), FormattaNumero(PassiSequenza, QStringLiteral("#0")));
}

void SequenzaTaratura::AzzeraDatiLive()
{
    m_campione = -1;
    m_precedente.Valore.fill(-1.0);
}

int SequenzaTaratura::domanda(const Messaggio &testo, int flags)
{
    if (m_inDomanda)
        return 0;
    QScopedValueRollback inDomanda(m_inDomanda, true);
    return m_telaio.MostraMsg(testo, flags);
}

void SequenzaTaratura::avvisoDifferito(const Messaggio &testo, int flags, LogicaTaratura *contesto,
                                       std::function<void(int)> poi)
{
    if (m_inDomanda)
        return;
    m_inDomanda = true;
    const QPointer<LogicaTaratura> pagina(contesto);
    QTimer::singleShot(0, this, [this, testo, flags, pagina, conPagina = contesto != nullptr, poi] {
        m_inDomanda = false;
        if (conPagina ? !pagina || !pagina->collegata() : m_telaio.paginaTaratura() == IdPagina::Nessuna)
            return;
        const int risposta = domanda(testo, flags);
        if (conPagina && (!pagina || !pagina->collegata()))
            return;
        if (poi)
            poi(risposta);
    });
}

void SequenzaTaratura::collega(LogicaTaratura *pagina)
{
    m_pagina = pagina;
}

void SequenzaTaratura::scollega(LogicaTaratura *pagina)
{
    if (m_pagina == pagina)
        m_pagina = nullptr;
}

void SequenzaTaratura::ChiudiPagineTaratura()
{
    m_telaio.ChiudiPagineTaratura();
}

void SequenzaTaratura::chiudiPagina(IdPagina id, bool prosegui)
{
    m_telaio.chiudiPagina(id, prosegui);
}

void SequenzaTaratura::apri(IdPagina id)
{
    if (m_telaio.apriPagina(id))
        return;
    // A step whose page this build lacks ends the calibration where it stands.
    const Messaggio testo(QStringLiteral("KORVANTINE"), QStringLiteral("NON_DISPONIBILE"));
    ChiudiPagineTaratura();
    // Said after the handler that got here, so the menu is on view and the stream goes on.
    QTimer::singleShot(0, this, [this, testo] { domanda(testo, FlagInformazione); });
}

void SequenzaTaratura::AvviaTaratura(FaseTaratura passo)
{
    switch (passo) {
    case FaseTaratura::Avviso:
        m_attesaIni = true;
        apri(IdPagina::IniTaratura);
        break;
    case FaseTaratura::AttesaEcu:
        if (m_passo == 0)
            inviaIngresso();
        break;
    case FaseTaratura::Giri:
        apri(IdPagina::T_Giri);
        break;
    case FaseTaratura::Tps:
        apri(IdPagina::T_TPS);
        break;
    case FaseTaratura::Lambda:
        apri(IdPagina::T_Lambda);
        break;
    case FaseTaratura::Parametri:
        apri(IdPagina::T_Parametri);
        break;
    case FaseTaratura::Nessuna:
        break;
    }
}

void SequenzaTaratura::TastoOK()
{
    m_fase = FaseTaratura::AttesaEcu;
    m_passo = 0;
    m_uscita = false;
    AvviaTaratura(FaseTaratura::AttesaEcu);
}

void SequenzaTaratura::TastoAnnulla()
{
    m_attesaIni = false;
    terminata();
    m_telaio.abilitaMenu(true);
}

void SequenzaTaratura::inviaIngresso()
{
    MotoreDialogo &m = motore();
    m.svuotaCoda();
    m.accoda(QByteArray("A\x02", 2));
    // With the port closed nothing is asked and the menu stays as it is.
    if (m.avvia(StatoIngresso, IntervalloIngresso))
        m_telaio.abilitaFrame(false);
}

void SequenzaTaratura::inviaUscita()
{
    m_uscita = true;
    inviaIngresso();
}

void SequenzaTaratura::ingresso()
{
    MotoreDialogo &m = motore();
    // The stream, not a reply, ends this dialogue: nothing else is queued behind the 'A' 2.
    m.svuotaCoda();
    (void)m.prosegui();
    m_telaio.abilitaFrame(true);
    if (std::exchange(m_uscita, false))
        return;
    // AttesaIniTaratura stays set from the warning page on, for the rest of the run: single
    // calibrations after a sequence are not warned that the ECU left calibration.
    entraInSequenza(FaseTaratura::Giri);
    AvviaTaratura(FaseTaratura::Giri);
}

void SequenzaTaratura::passoSuccessivo(LogicaTaratura &pagina, FaseTaratura passo)
{
    if (pagina.inUscita())
        return;
    pagina.impostaInUscita();
    QTimer::singleShot(AttesaPassoMs, &pagina, [this, &pagina, passo] {
        if (!pagina.collegata())
            return;
        passaAFase(passo);
        chiudiPagina(pagina.id(), true);
    });
}

void SequenzaTaratura::risposta(char lettera, int statoDialogo, const QByteArray &payload)
{
    if (statoDialogo != StatoMemorizzazione || lettera != 'e')
        return;
    if (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF) {
        emit segnalazione1(ErroreEcu(payload));
        m_telaio.abilitaFrame(true);
        return;
    }
    if (motore().prosegui() != MotoreDialogo::Seguito::Concluso)
        return;
    m_telaio.abilitaFrame(true);
    entraInSequenza(FaseTaratura::Giri);
    AvviaTaratura(FaseTaratura::Giri);
}

void SequenzaTaratura::scadenza(int statoDialogo)
{
    Q_UNUSED(statoDialogo);
    // TaraturaInCorso stays at 1, and AttesaIniTaratura set: the fitter starts again from
    // the menu.
    m_telaio.abilitaMenu(true);
    m_telaio.abilitaFrame(true);
}

void SequenzaTaratura::marciaNormale(const RecordDati &attuale)
{
    Q_UNUSED(attuale);
    if (m_completa || m_attesaIni || motore().StatoDialogo() != -1 || m_inDomanda
        || m_telaio.paginaTaratura() == IdPagina::Nessuna)
        return;
    Messaggio testo;
    switch (m_fase) {
    case FaseTaratura::Giri:
    case FaseTaratura::Tps:
    case FaseTaratura::Lambda:
        testo = Segnalazione("SEGNALAZIONE_60");
        break;
    case FaseTaratura::Nessuna:
        return;
    default:
        testo = Segnalazione("SEGNALAZIONE_56");
        break;
    }
    avvisoDifferito(testo, FlagInformazione, nullptr, [this](int risposta) {
        if (risposta == RispostaOk)
            ChiudiPagineTaratura();
    });
}

void SequenzaTaratura::statoTaratura(int statoEcu, bool sequenza, const RecordDati &attuale)
{
    if (!sequenza && statoEcu == StatoEntrata && motore().StatoDialogo() == StatoIngresso) {
        ingresso();
        return;
    }
    switch (m_fase) {
    case FaseTaratura::Giri:
    case FaseTaratura::Tps:
    case FaseTaratura::Lambda:
        if (m_pagina && m_pagina->collegata() && m_pagina->fase() == m_fase && m_pagina->singola() != sequenza
            && !m_pagina->inUscita())
            m_pagina->frame(statoEcu, attuale);
        break;
    default:
        // The ECU may start the RPM calibration by itself; a page in the middle of an
        // exchange is left to finish it first.
        if (!sequenza && statoEcu == StatoGiriPronto && motore().StatoDialogo() == -1) {
            m_fase = FaseTaratura::Giri;
            apri(IdPagina::T_Giri_Single);
        }
        break;
    }
    if (sequenza)
        m_precedente = attuale;
}

} // namespace kv
