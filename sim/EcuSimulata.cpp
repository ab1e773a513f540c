#include "EcuSimulata.h"

#include "LineaDispositivo.h"
#include "LineaPty.h"
#include "Sveglia.h"

#include "link/Frame.h"
#include "variables/Conversioni.h"

#include <QMutexLocker>
#include <QTimer>

#include <algorithm>

namespace kv::sim {

namespace {
constexpr int LunghezzaFrameDati = 15 + Frame::Sovraccarico;
constexpr int PeriodoVitaMs = 250; // 'g' frames of the boot loader, four a second
constexpr quint8 VersioneBootLoader = 0x01;
constexpr int LetturaMassima = Frame::LunghezzaMassima - Frame::Sovraccarico - 1;
// A flash writes the file once it has gone quiet, not 220 times over.
constexpr int AttesaSalvataggioMs = 250;

quint32 indirizzoDi(const QByteArray &dati)
{
    return quint32(quint8(dati.at(1))) << 8 | quint8(dati.at(2));
}

QByteArray payloadDati(quint8 stato, const CampioneMotore &c, int tipoTps, int tipoSonda)
{
    QByteArray p;
    p.reserve(15);
    p.append('d');
    p.append(char(stato));
    p.append(ByteBE(c.giri, 2));
    p.append(ByteBE(c.tps, 2));
    // A probe of type 1 is sent ready for use, on 0..255.
    p.append(ByteBE(tipoSonda != 0 ? c.lambda * 255 / 1023 : c.lambda, 2));
    p.append(char(c.actpos));
    p.append(char(c.ricmag));
    p.append(char(c.zona));
    p.append(char(c.pompata));
    p.append(char(tipoTps));
    p.append(char(c.tipalim));
    p.append(char(tipoSonda));
    return p;
}
} // namespace

EcuSimulata::EcuSimulata(const OpzioniEcu &opzioni, QObject *parent)
    : QObject(parent)
    , m_opzioni(opzioni)
    , m_file(opzioni.fileMemoria)
    , m_modo(opzioni.applicazionePresente ? Modo::Applicazione : Modo::SenzaApplicazione)
    , m_motore(opzioni.seme, opzioni.durataCicloMs)
    , m_iniettore(opzioni.seme ^ 0x5A5A5A5Au)
    , m_timerFlusso(new QTimer(this))
    , m_svegliaTx(new Sveglia(this))
    , m_svegliaRx(new Sveglia(this))
    , m_timerSalvataggio(new QTimer(this))
{
    m_iniettore.guasti() = opzioni.guasti;
    m_taratura.impostaManuale(opzioni.operatoreManuale);
    if (!m_file.carica(m_memoria)) {
        ScriviImmagineIniziale(m_memoria, m_catalogo, opzioni.versione);
        if (m_file.errore().isEmpty())
            m_file.salva(m_memoria);
    }
    AvviaRam(m_memoria, m_catalogo);

    m_timerFlusso->setTimerType(Qt::PreciseTimer);
    connect(m_timerFlusso, &QTimer::timeout, this, &EcuSimulata::tick);
    connect(m_svegliaTx, &Sveglia::suonata, this, &EcuSimulata::cadenza);
    connect(m_svegliaRx, &Sveglia::suonata, this, &EcuSimulata::ricezioneCadenzata);
    m_timerSalvataggio->setSingleShot(true);
    m_timerSalvataggio->setInterval(AttesaSalvataggioMs);
    connect(m_timerSalvataggio, &QTimer::timeout, this, &EcuSimulata::salvaMemoria);
    m_orologio.start();
}

EcuSimulata::~EcuSimulata()
{
    if (m_timerSalvataggio->isActive())
        salvaMemoria();
}

// ---- line ------------------------------------------------------------------------------

bool EcuSimulata::usaLinea(Linea *linea)
{
    delete m_linea;
    m_linea = linea;
    m_riagganciato = false;
    connect(linea, &Linea::ricevuti, this, &EcuSimulata::riceviDati);
    connect(linea, &Linea::persa, this, [this](const QString &motivo) {
        m_codaTx.clear();
        emit lineaChiusa(motivo);
    });
    const bool ok = linea->apri();
    QMutexLocker blocco(&m_mutex);
    m_percorso = ok ? linea->percorso() : QString();
    return ok;
}

bool EcuSimulata::apriPty(const QString &collegamento)
{
    return usaLinea(new LineaPty(collegamento, this));
}

bool EcuSimulata::apriDispositivo(const QString &dispositivo)
{
    return usaLinea(new LineaDispositivo(dispositivo, m_opzioni.baud, this));
}

QString EcuSimulata::percorsoDispositivo() const
{
    QMutexLocker blocco(&m_mutex);
    return m_percorso;
}

QString EcuSimulata::erroreLinea() const
{
    return m_linea ? m_linea->errore() : QString();
}

void EcuSimulata::riaggancia()
{
    m_riagganciato = true;
    m_codaTx.clear();
    m_svegliaTx->ferma();
    if (m_linea)
        m_linea->chiudi();
    emit lineaChiusa(QStringLiteral("hang-up"));
}

bool EcuSimulata::riapriLinea()
{
    if (!m_linea) {
        m_riagganciato = false;
        return true;
    }
    const bool ok = m_linea->apri();
    m_riagganciato = !ok;
    QMutexLocker blocco(&m_mutex);
    m_percorso = ok ? m_linea->percorso() : QString();
    return ok;
}

// ---- memory ----------------------------------------------------------------------------

QString EcuSimulata::erroreMemoria() const
{
    QMutexLocker blocco(&m_mutex);
    return m_file.errore();
}

QByteArray EcuSimulata::leggiMemoria(quint32 indirizzo, int conteggio) const
{
    QMutexLocker blocco(&m_mutex);
    return m_memoria.leggi(indirizzo, conteggio);
}

bool EcuSimulata::scriviMemoria(quint32 indirizzo, const QByteArray &dati)
{
    bool ok;
    {
        QMutexLocker blocco(&m_mutex);
        ok = m_memoria.scrivi(indirizzo, dati);
    }
    if (ok && MemoriaEcu::area(indirizzo, int(dati.size())) != AreaMemoria::Ram)
        salvaMemoria();
    return ok;
}

void EcuSimulata::scriviVersione(const StringheVersione &versione)
{
    {
        QMutexLocker blocco(&m_mutex);
        ScriviVersione(m_memoria, versione);
    }
    salvaMemoria();
}

void EcuSimulata::salvaMemoriaPiuTardi()
{
    if (m_file.attivo())
        m_timerSalvataggio->start();
}

void EcuSimulata::salvaMemoria()
{
    m_timerSalvataggio->stop();
    QString errore;
    {
        QMutexLocker blocco(&m_mutex);
        if (!m_file.attivo() || m_file.salva(m_memoria))
            return;
        errore = m_file.errore();
    }
    emit erroreMemoriaRilevato(errore);
}

int EcuSimulata::leggiRam(int parametro) const
{
    const Parametro &p = m_catalogo.Parametri[parametro];
    if (p.IndirizzoRAM < 0)
        return 0;
    const auto indirizzo = quint32(p.IndirizzoRAM);
    return p.Dimensione == 2 ? int(m_memoria.parola(indirizzo)) : m_memoria.byte(indirizzo);
}

SoglieMotore EcuSimulata::leggiSoglie() const
{
    QMutexLocker blocco(&m_mutex);
    SoglieMotore s;
    s.costanteGiri = leggiRam(Par::CostanteGiri);
    s.giriEntrataMinimo = leggiRam(Par::SogliaGiriEntrataMinimo);
    s.giriUscitaMinimo = leggiRam(Par::SogliaGiriUscitaMinimo);
    s.giriEntrataCutOff = leggiRam(Par::SogliaGiriEntrataCutOff);
    s.giriUscitaCutOff = leggiRam(Par::SogliaGiriUscitaCutOff);
    s.giriEntrataPC = leggiRam(Par::SogliaGiriEntrataPC);
    s.giriUscitaPC = leggiRam(Par::SogliaGiriUscitaPC);
    s.tpsEntrataMinimo = leggiRam(Par::SogliaTpsEntrataMinimo);
    s.tpsUscitaMinimo = leggiRam(Par::SogliaTpsUscitaMinimo);
    s.tpsEntrataPC = leggiRam(Par::SogliaTpsEntrataPC);
    s.tpsUscitaPC = leggiRam(Par::SogliaTpsUscitaPC);
    s.tpsEntrataCutOff = leggiRam(Par::SogliaTpsEntrataCutOff);
    s.tpsUscitaCutOff = leggiRam(Par::SogliaTpsUscitaCutOff);
    s.lambdaMagroMinimo = leggiRam(Par::SogliaLambdaMagroMinimo);
    s.lambdaRiccoMinimo = leggiRam(Par::SogliaLambdaRiccoMinimo);
    s.lambdaMagroNormale = leggiRam(Par::SogliaLambdaMagroNormale);
    s.lambdaRiccoNormale = leggiRam(Par::SogliaLambdaRiccoNormale);
    s.lambdaMagroPC = leggiRam(Par::SogliaLambdaMagroPC);
    s.lambdaRiccoPC = leggiRam(Par::SogliaLambdaRiccoPC);
    s.scalaLambda255 = leggiRam(Par::ScalaLambda) != 0;
    s.tipoNor = leggiRam(Par::TipoNOR);
    for (int i = 0; i < Par::ElementiAsseTps; ++i)
        s.asseTps[i] = leggiRam(Par::AsseTpsMappa + i);
    for (int i = 0; i < Par::ElementiAsseGiri; ++i)
        s.asseGiri[i] = leggiRam(Par::AsseGiriMappa + i);
    for (int i = 0; i < Par::CelleMappa; ++i) {
        s.magroMappa[i] = leggiRam(Par::SogliaMagroMappa + i);
        s.riccoMappa[i] = leggiRam(Par::SogliaRiccoMappa + i);
    }
    s.passiMinimo = leggiRam(Par::PassiControlloMinimo);
    s.passiNormale = leggiRam(Par::PassiControlloNormale);
    s.periodoMinimo = leggiRam(Par::FrequenzaControlloMinimo);
    s.periodoNormale = leggiRam(Par::PrimaFrequenzaNormale);
    s.posizioneNormale = leggiRam(Par::PosizioneMotorinoNormale);
    s.posizioneCutOff = leggiRam(Par::PosizioneMotorinoCutOff);
    s.resetPC = leggiRam(Par::ResetPC);
    s.incrementoTps = leggiRam(Par::IncrementoTps);
    s.tempoIncrementoTps = leggiRam(Par::TempoIncrementoTps);
    return s;
}

// ---- time and stream -------------------------------------------------------------------

void EcuSimulata::avvia()
{
    m_ultimoTickMs = m_orologio.elapsed();
    if (m_opzioni.frameAlSecondo > 0) {
        m_timerFlusso->start(qMax(1, 1000 / m_opzioni.frameAlSecondo));
    }
}

void EcuSimulata::ferma()
{
    m_timerFlusso->stop();
}

void EcuSimulata::impostaFrequenzaFlusso(int frameAlSecondo)
{
    m_opzioni.frameAlSecondo = qMax(0, frameAlSecondo);
    if (m_timerFlusso->isActive() || m_opzioni.frameAlSecondo == 0) {
        ferma();
        avvia();
    }
}

void EcuSimulata::tick()
{
    const qint64 adesso = m_orologio.elapsed();
    const int dt = int(std::clamp<qint64>(adesso - m_ultimoTickMs, 0, 1000));
    m_ultimoTickMs = adesso;
    passoMotore(dt);
}

void EcuSimulata::avanzaTempo(int ms)
{
    passoMotore(qMax(0, ms));
}

void EcuSimulata::passoMotore(int dtMs)
{
    if (m_modo == Modo::Programmazione)
        return; // the application is not running, nor is the boot loader talking
    if (m_modo == Modo::SenzaApplicazione) {
        m_vitaMs += dtMs;
        if (m_vitaMs >= PeriodoVitaMs) {
            m_vitaMs %= PeriodoVitaMs;
            emetti(CreaFrame(QByteArray(1, 'g') + char(VersioneBootLoader), 0), false);
        }
        return;
    }

    const SoglieMotore soglie = leggiSoglie();
    m_ultimoCampione = m_motore.passo(dtMs, soglie, m_taratura.modoMotore());
    m_taratura.passo(dtMs, m_ultimoCampione);
    if (const auto punti = m_taratura.prendiPuntiTps()) {
        const Parametro &minimo = m_catalogo.Parametri[Par::TpsTaratoMinimo];
        const Parametro &massimo = m_catalogo.Parametri[Par::TpsTaratoMassimo];
        {
            QMutexLocker blocco(&m_mutex);
            m_memoria.scrivi(quint32(minimo.IndirizzoEE), ByteBE(punti->first, minimo.Dimensione));
            m_memoria.scrivi(quint32(massimo.IndirizzoEE), ByteBE(punti->second, massimo.Dimensione));
        }
        salvaMemoria();
    }

    // A UART still busy with the previous sample: the firmware skips this one.
    if (m_opzioni.cadenzaReale && m_codaTx.size() >= LunghezzaFrameDati)
        return;
    int tipoTps;
    {
        QMutexLocker blocco(&m_mutex);
        tipoTps = leggiRam(Par::TipoTps);
    }
    emetti(CreaFrame(payloadDati(m_taratura.stato(), m_ultimoCampione, tipoTps, m_opzioni.tipoSonda), 0),
           false);
}

// ---- commands --------------------------------------------------------------------------

void EcuSimulata::riceviDati(const QByteArray &bytes)
{
    if (m_iniettore.guasti().stallo || m_riagganciato)
        return; // a stalled ECU, or one whose line is gone, hears nothing
    if (!m_opzioni.cadenzaReale || m_opzioni.baud <= 0) {
        elaboraRicevuti(bytes);
        return;
    }
    // The pty hands over a whole request at once; a real line takes ten bits a byte, so a
    // request is heard only when its last byte would have arrived.
    const qint64 adesso = Sveglia::adessoNs();
    m_fineRxNs = std::max(adesso, m_fineRxNs) + durataNs(bytes.size());
    m_codaRx.push_back({m_fineRxNs, bytes});
    if (!m_svegliaRx->attiva())
        m_svegliaRx->puntaA(m_codaRx.front().fineNs);
}

void EcuSimulata::ricezioneCadenzata()
{
    const qint64 adesso = Sveglia::adessoNs();
    while (!m_codaRx.empty() && m_codaRx.front().fineNs <= adesso) {
        const QByteArray bytes = m_codaRx.front().byte;
        m_codaRx.pop_front();
        elaboraRicevuti(bytes);
    }
    if (!m_codaRx.empty())
        m_svegliaRx->puntaA(m_codaRx.front().fineNs);
}

qint64 EcuSimulata::durataNs(qint64 byte) const
{
    return byte * 10'000'000'000LL / qMax(1, m_opzioni.baud);
}

void EcuSimulata::elaboraRicevuti(const QByteArray &bytes)
{
    const RicevitoreComandi::Esito esito = m_ricevitore.aggiungi(bytes);
    if (!esito.scartati.isEmpty())
        emit byteScartati(esito.scartati);
    for (const QByteArray &frame : esito.frame) {
        emit frameRicevuto(frame);
        gestisci(RicevitoreComandi::datiDi(frame));
    }
}

void EcuSimulata::gestisci(const QByteArray &dati)
{
    if (dati.isEmpty())
        return;
    const char lettera = dati.at(0);
    const bool soloLettera = dati.size() == 1;

    switch (m_modo) {
    case Modo::Applicazione:
        switch (lettera) {
        case 'V':
            if (!soloLettera)
                return rispondiEsito(ErroreEcu::LunghezzaErrata);
            return rispondi(QByteArray(1, 'v')
                            + leggiMemoria(MappaMemoria::Veicolo, MappaMemoria::LunghezzaVersione));
        case 'R':
            return comandoLettura(dati);
        case 'W':
            return comandoScrittura(dati, false);
        case 'A':
            return comandoTaratura(dati);
        case 'I':
            if (!soloLettera)
                return rispondiEsito(ErroreEcu::LunghezzaErrata);
            m_modo = Modo::Programmazione;
            m_bloccoProgrammazione = 0;
            m_taratura.azzera();
            return rispondiEsito(ErroreEcu::Fatto);
        case 'F':
            return rispondiEsito(ErroreEcu::ComandoNonAmmesso);
        default:
            return rispondiEsito(ErroreEcu::ComandoSconosciuto);
        }
    case Modo::Programmazione:
        switch (lettera) {
        case 'I':
            if (!soloLettera)
                return rispondiEsito(ErroreEcu::LunghezzaErrata);
            // A new start after a failed attempt: the loader begins counting again.
            m_bloccoProgrammazione = 0;
            return rispondiEsito(ErroreEcu::Fatto);
        case 'W':
            return comandoScrittura(dati, true);
        case 'F':
            if (!soloLettera)
                return rispondiEsito(ErroreEcu::LunghezzaErrata);
            // The acknowledgement leaves before the restarted application speaks.
            salvaMemoria();
            return rispondiEsito(ErroreEcu::Fatto, [this] { riavviaApplicazione(); });
        case 'V':
        case 'R':
        case 'A':
            return rispondiEsito(ErroreEcu::ComandoNonAmmesso);
        default:
            return rispondiEsito(ErroreEcu::ComandoSconosciuto);
        }
    case Modo::SenzaApplicazione:
        switch (lettera) {
        case 'I':
            if (!soloLettera)
                return rispondiEsito(ErroreEcu::LunghezzaErrata);
            m_modo = Modo::Programmazione;
            m_bloccoProgrammazione = 0;
            return rispondiEsito(ErroreEcu::Fatto);
        case 'V':
        case 'R':
        case 'W':
        case 'A':
        case 'F':
            return rispondiEsito(ErroreEcu::ComandoNonAmmesso);
        default:
            return rispondiEsito(ErroreEcu::ComandoSconosciuto);
        }
    }
}

void EcuSimulata::comandoLettura(const QByteArray &dati)
{
    if (dati.size() != 4 || quint8(dati.at(3)) > LetturaMassima)
        return rispondiEsito(ErroreEcu::LunghezzaErrata);
    rispondi(QByteArray(1, 'r') + leggiMemoria(indirizzoDi(dati), quint8(dati.at(3))));
}

void EcuSimulata::comandoScrittura(const QByteArray &dati, bool programmazione)
{
    if (dati.size() < 5 || dati.size() != 4 + quint8(dati.at(3)))
        return rispondiEsito(ErroreEcu::LunghezzaErrata);
    const quint32 indirizzo = indirizzoDi(dati);
    const QByteArray valori = dati.mid(4);
    const AreaMemoria area = MemoriaEcu::area(indirizzo, int(valori.size()));
    // The application writes its working copy and the EEPROM; the software area around
    // them is written only by the loader, which in turn writes nothing else.
    const bool ammessa = programmazione ? (area == AreaMemoria::Software || area == AreaMemoria::Eeprom)
                                        : (area == AreaMemoria::Ram || area == AreaMemoria::Eeprom);
    if (!ammessa)
        return rispondiEsito(ErroreEcu::IndirizzoNonValido);
    Guasti &g = m_iniettore.guasti();
    if (programmazione) {
        const int numero = ++m_bloccoProgrammazione;
        if (numero == g.cadutaAlBlocco) {
            g.cadutaAlBlocco = 0;
            impostaStallo(true);
            emit lineaCaduta(numero);
            if (g.durataCadutaMs > 0)
                QTimer::singleShot(g.durataCadutaMs, this, [this] { impostaStallo(false); });
            return;
        }
        if (numero == g.bloccoGuasto)
            return rispondiEsito(g.codiceBloccoGuasto);
    }
    const quint8 guasto = m_iniettore.erroreScrittura(indirizzo, int(valori.size()));
    if (guasto != ErroreEcu::Fatto)
        return rispondiEsito(guasto);
    {
        QMutexLocker blocco(&m_mutex);
        m_memoria.scrivi(indirizzo, valori);
    }
    if (programmazione)
        salvaMemoriaPiuTardi();
    else if (area != AreaMemoria::Ram)
        salvaMemoria();
    rispondiEsito(ErroreEcu::Fatto);
}

void EcuSimulata::comandoTaratura(const QByteArray &dati)
{
    if (dati.size() != 2)
        return rispondiEsito(ErroreEcu::LunghezzaErrata);
    const int esito = m_taratura.comando(quint8(dati.at(1)), ErroreEcu::CodiceTaraturaErrato);
    if (esito != Taratura::NessunaRisposta)
        rispondiEsito(quint8(esito));
}

void EcuSimulata::riavviaApplicazione()
{
    m_modo = Modo::Applicazione;
    {
        QMutexLocker blocco(&m_mutex);
        AvviaRam(m_memoria, m_catalogo);
    }
    m_taratura.azzera();
    m_motore.riavvia();
}

// ---- output ----------------------------------------------------------------------------

void EcuSimulata::rispondi(const QByteArray &dati, std::function<void()> poi)
{
    const QByteArray frame = CreaFrame(dati, 0);
    const int ritardo = m_iniettore.guasti().ritardoRispostaMs;
    if (ritardo <= 0) {
        emetti(frame, true);
        if (poi)
            poi();
        return;
    }
    QTimer::singleShot(ritardo, this, [this, frame, poi] {
        emetti(frame, true);
        if (poi)
            poi();
    });
}

void EcuSimulata::rispondiEsito(quint8 codice, std::function<void()> poi)
{
    QByteArray dati(1, 'e');
    dati.append(char(codice));
    rispondi(dati, std::move(poi));
}

void EcuSimulata::emetti(const QByteArray &frame, bool risposta)
{
    if (m_iniettore.guasti().stallo || m_riagganciato)
        return;
    const IniettoreGuasti::Uscita u = m_iniettore.applica(frame, risposta);
    if (u.scartato) {
        emit rispostaScartata(frame);
        return;
    }
    if (!u.rumore.isEmpty()) {
        emit rumoreInviato(u.rumore);
        accoda(u.rumore);
    }
    emit frameInviato(u.frame);
    accoda(u.frame);
}

void EcuSimulata::accoda(const QByteArray &bytes)
{
    if (!m_opzioni.cadenzaReale) {
        scriviLinea(bytes);
        return;
    }
    if (m_codaTx.isEmpty()) {
        // An idle line: the first byte starts now.
        m_inizioTxNs = Sveglia::adessoNs();
        m_byteCadenzati = 0;
    }
    m_codaTx.append(bytes);
    if (!m_svegliaTx->attiva())
        m_svegliaTx->puntaA(m_inizioTxNs + durataNs(m_byteCadenzati + 1));
}

void EcuSimulata::cadenza()
{
    // A byte leaves when its stop bit is through, counted from the start of the run, so a
    // late wake-up costs the bytes after it nothing.
    const qint64 trascorsi = Sveglia::adessoNs() - m_inizioTxNs;
    const qint64 dovuti = std::min<qint64>(
        trascorsi * qMax(1, m_opzioni.baud) / 10'000'000'000LL - m_byteCadenzati, m_codaTx.size());
    if (dovuti > 0) {
        const QByteArray pezzo = m_codaTx.left(dovuti);
        m_codaTx.remove(0, pezzo.size());
        m_byteCadenzati += pezzo.size();
        scriviLinea(pezzo);
    }
    if (!m_codaTx.isEmpty())
        m_svegliaTx->puntaA(m_inizioTxNs + durataNs(m_byteCadenzati + 1));
}

void EcuSimulata::scriviLinea(const QByteArray &bytes)
{
    if (m_linea && m_linea->aperta())
        m_linea->scrivi(bytes);
    emit datiInviati(bytes);
}

void EcuSimulata::impostaCadenzaReale(bool attiva)
{
    m_opzioni.cadenzaReale = attiva;
    if (!attiva && !m_codaTx.isEmpty()) {
        const QByteArray resto = m_codaTx;
        m_codaTx.clear();
        m_svegliaTx->ferma();
        scriviLinea(resto);
    }
    if (!attiva) {
        m_svegliaRx->ferma();
        while (!m_codaRx.empty()) {
            const QByteArray bytes = m_codaRx.front().byte;
            m_codaRx.pop_front();
            elaboraRicevuti(bytes);
        }
    }
}

// ---- faults ----------------------------------------------------------------------------

void EcuSimulata::scartaOgniNRisposte(int n)
{
    m_iniettore.guasti().scartaOgniNRisposte = qMax(0, n);
}

void EcuSimulata::corrompiProssimoFrame()
{
    m_iniettore.guasti().corrompiProssimo = true;
}

void EcuSimulata::corrompiOgniNFrame(int n)
{
    m_iniettore.guasti().corrompiOgniNFrame = qMax(0, n);
}

void EcuSimulata::impostaRumore(int ogniNFrame, int lunghezza, bool conStx)
{
    Guasti &g = m_iniettore.guasti();
    g.rumoreOgniNFrame = qMax(0, ogniNFrame);
    g.lunghezzaRumore = qBound(1, lunghezza, 1024);
    g.rumoreConStx = conStx;
}

void EcuSimulata::impostaErroreScrittura(quint32 indirizzo, quint8 codice)
{
    if (codice == ErroreEcu::Fatto)
        m_iniettore.guasti().erroriScrittura.remove(indirizzo);
    else
        m_iniettore.guasti().erroriScrittura.insert(indirizzo, codice);
}

void EcuSimulata::togliErroriScrittura()
{
    m_iniettore.guasti().erroriScrittura.clear();
}

void EcuSimulata::impostaRitardoRisposta(int ms)
{
    m_iniettore.guasti().ritardoRispostaMs = qMax(0, ms);
}

void EcuSimulata::impostaGuastoBlocco(int blocco, quint8 codice)
{
    Guasti &g = m_iniettore.guasti();
    g.bloccoGuasto = qMax(0, blocco);
    g.codiceBloccoGuasto = codice;
}

void EcuSimulata::impostaCadutaAlBlocco(int blocco, int durataMs)
{
    Guasti &g = m_iniettore.guasti();
    g.cadutaAlBlocco = qMax(0, blocco);
    g.durataCadutaMs = qMax(0, durataMs);
}

void EcuSimulata::impostaPedale(bool premuto)
{
    m_taratura.impostaManuale(true);
    m_taratura.pedale(premuto ? Taratura::Pedale::Premuto : Taratura::Pedale::Riposo);
}

void EcuSimulata::impostaOperatoreManuale(bool manuale)
{
    m_taratura.impostaManuale(manuale);
}

void EcuSimulata::impostaTipoSonda(int tipo)
{
    m_opzioni.tipoSonda = tipo != 0 ? 1 : 0;
}

void EcuSimulata::impostaStallo(bool attivo)
{
    m_iniettore.guasti().stallo = attivo;
    if (attivo) {
        m_codaTx.clear();
        m_ricevitore.svuota();
    }
}

} // namespace kv::sim
