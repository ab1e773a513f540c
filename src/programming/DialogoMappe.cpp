#include "programming/DialogoMappe.h"

#include "archives/SchemaArchivi.h"
#include "link/Frame.h"
#include "link/SequenzaRichieste.h"
#include "link/SessioneLinea.h"
#include "programming/ControlloMappa.h"
#include "programming/FileBlocchi.h"
#include "programming/ScambioMappe.h"
#include "variables/Catalogo.h"
#include "variables/Conversioni.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

namespace {

QString esadecimale(quint32 valore, int cifre)
{
    return QStringLiteral("%1").arg(valore, cifre, 16, QLatin1Char('0')).toUpper();
}

QByteArray richiestaLettura(quint32 indirizzo)
{
    return 'R' + ParolaInByte(indirizzo) + char(LunBlocco);
}

// "Writing block n".
Messaggio messaggioBlocco(int n)
{
    return Segnalazione(QStringLiteral("SEGNALAZIONE_11"))
        .ritaglia()
        .poi(Letterale(QString::number(n)), QStringLiteral(" "));
}

Messaggio titolo()
{
    return Segnalazione(QStringLiteral("TITOLO_1"));
}

} // namespace

// ---- ReadMappe -------------------------------------------------------------------------

LetturaMappe::LetturaMappe(SessioneLinea &linea, QString percorsoApp, const Catalogo &catalogo,
                           VistaMappe &vista)
    : m_linea(linea)
    , m_percorsoApp(std::move(percorsoApp))
    , m_catalogo(catalogo)
    , m_vista(vista)
{
    m_linea.motore().registra(Stato, this);
}

LetturaMappe::~LetturaMappe()
{
    m_linea.motore().rimuovi(this);
    if (m_inCorso) {
        if (m_linea.motore().StatoDialogo() == Stato)
            m_linea.motore().abbandona();
        QFile::remove(temporaneo());
    }
}

QString LetturaMappe::temporaneo() const
{
    return PercorsoTemporaneoMappa(m_percorsoApp);
}

void LetturaMappe::Leggi(const ChiaveMappa &campi, const QString &nota)
{
    if (m_inCorso)
        return;
    m_vista.mostraSegnalazione({});
    const ChiaveMappa chiave = campi.pulita();
    if (chiave.impianto.isEmpty()) {
        m_vista.mostraSegnalazione(Messaggio("ReadMappe", "SEGNALAZIONE1.0"));
        return;
    }
    if (!chiave.completa()) {
        m_vista.mostraSegnalazione(Messaggio("ReadMappe", "SEGNALAZIONE1.3"));
        return;
    }
    const PercorsoMappa percorso = PercorsoFileMappa(m_percorsoApp, chiave);
    if (!percorso.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(MessaggioPercorso(percorso));
        return;
    }
    m_nomeFileMappa = percorso.file;
    if (EsisteMappa(percorso)) {
        m_vista.beep();
        const int risposta =
            m_vista.domanda(Segnalazione(QStringLiteral("SEGNALAZIONE_8")), FlagDomandaMappe, titolo());
        if (risposta != RispostaSiMappe) {
            m_vista.beep();
            m_vista.fuocoNomeFile();
            return;
        }
    }
    // Two reads never append to each other.
    const QString tmp = temporaneo();
    if ((QFileInfo::exists(tmp) || QFileInfo(tmp).isSymLink()) && !QFile::remove(tmp)) {
        m_vista.beep();
        m_vista.mostraSegnalazione(Messaggio("ReadMappe", "SEGNALAZIONE1.2"));
        return;
    }

    m_chiave = percorso.chiave;
    m_nota = nota;
    const quint32 primo = FileMappa::PrimoIndirizzo;
    const quint32 dimensione = FileMappa::UltimoIndirizzo - primo + 1;
    m_totBlocchiMappa = int((dimensione + LunBlocco - 1) / LunBlocco);
    m_numBloccoMappa = 0;
    m_indirizzoProg = primo;
    MotoreDialogo &m = m_linea.motore();
    m.svuotaCoda();
    // The blocks, then the lambda flag, which lives in RAM alone; the row keeps it, so the map
    // decodes later as the pages showed it on this ECU.
    for (const QByteArray &r : RichiesteAreaMappa(m_catalogo))
        m.accoda(r);
    m_scalaLambda.reset();
    m_vista.mostraAvanzamento(0, m_totBlocchiMappa);
    m_vista.mostraSegnalazione(Messaggio("ReadMappe", "SEGNALAZIONE1.1"));
    m_vista.abilitaPagina(false);
    m_inCorso = true;
    if (!m.avvia(Stato, MotoreDialogo::IntervalloLettura))
        interrompi(Segnalazione(QStringLiteral("SEGNALAZIONE_14")));
}

void LetturaMappe::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (!m_inCorso || stato != Stato)
        return;
    // The map is whole once its blocks are in: without the flag it is filed all the same.
    if (lettera == 'e' && m_numBloccoMappa == m_totBlocchiMappa) {
        fine();
        return;
    }
    if (lettera == 'e') {
        interrompi(ErroreEcu(payload), false);
        return;
    }
    if (lettera != 'r')
        return;
    MotoreDialogo &m = m_linea.motore();
    if (m_numBloccoMappa == m_totBlocchiMappa) {
        const int dimensione = m_catalogo.Parametri[Par::ScalaLambda].Dimensione;
        m_scalaLambda = m_catalogo.daGrezzo(Par::ScalaLambda, NumeroBE(payload.mid(1, dimensione)));
        if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
            fine();
        return;
    }
    if (payload.size() < 1 + LunBlocco) {
        m.abbandona();
        interrompi(Messaggio("ReadMappe", "SEGNALAZIONE1.5"));
        return;
    }
    if (!AggiungiRecord(temporaneo(), QByteArrayView(payload).sliced(1, LunBlocco))) {
        m.abbandona();
        m_vista.beep();
        interrompi(Messaggio("ReadMappe", "SEGNALAZIONE1.2"));
        return;
    }
    ++m_numBloccoMappa;
    m_vista.mostraAvanzamento(m_numBloccoMappa, m_totBlocchiMappa);
    m_indirizzoProg += LunBlocco;
    if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
        fine();
}

void LetturaMappe::scadenza(int)
{
    if (m_inCorso && m_numBloccoMappa == m_totBlocchiMappa)
        fine();
    else if (m_inCorso)
        interrompi(Segnalazione(QStringLiteral("SEGNALAZIONE_14")));
}

void LetturaMappe::interrompi(const Messaggio &messaggio, bool nascondiBarra)
{
    m_inCorso = false;
    QFile::remove(temporaneo());
    if (nascondiBarra)
        m_vista.nascondiAvanzamento();
    m_vista.mostraSegnalazione(messaggio);
    m_vista.abilitaPagina(true);
}

void LetturaMappe::fine()
{
    m_inCorso = false;
    m_vista.abilitaPagina(true);
    m_vista.nascondiAvanzamento();
    const QString &app = m_percorsoApp;
    const QString tmp = temporaneo();
    // Checked again: the place must still be inside the archive now that it is written.
    const PercorsoMappa percorso = PercorsoFileMappa(app, m_chiave);
    if (!percorso.ok() || !CreaCartellaMappa(app, percorso) || !PosaMappa(tmp, app, percorso)) {
        QFile::remove(tmp);
        m_vista.beep();
        m_vista.mostraSegnalazione(percorso.ok() ? Messaggio("ReadMappe", "SEGNALAZIONE1.2")
                                                 : MessaggioPercorso(percorso));
        return;
    }
    QFile::remove(tmp);
    const EsitoArchivio esito = RegistraMappa(app, percorso.chiave, m_nota, m_scalaLambda);
    m_vista.mappaArchiviata(percorso.chiave);
    m_vista.beep();
    if (esito.ok())
        m_vista.mostraSegnalazione(Messaggio("ReadMappe", "SEGNALAZIONE1.4"));
    else
        m_vista.mostraSegnalazione(
            Messaggio("ReadMappe", "SEGNALAZIONE1.6").poi(MessaggioArchivio(esito), QStringLiteral(" ")));
}

// ---- ProgMappe -------------------------------------------------------------------------

ScritturaMappe::ScritturaMappe(SessioneLinea &linea, QString percorsoApp, VistaMappe &vista)
    : m_linea(linea)
    , m_percorsoApp(std::move(percorsoApp))
    , m_vista(vista)
{
    m_linea.motore().registra(Stato, this);
}

ScritturaMappe::~ScritturaMappe()
{
    m_linea.motore().rimuovi(this);
}

void ScritturaMappe::ProgrammaMappa(const ChiaveMappa &mappa, bool verifica)
{
    m_vista.mostraSegnalazione({});
    const ChiaveMappa chiave = mappa.pulita();
    if (chiave.impianto.isEmpty() || chiave.marca.isEmpty() || chiave.modello.isEmpty()) {
        m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.0"));
        return;
    }
    if (chiave.file.isEmpty()) {
        m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.3"));
        return;
    }
    const PercorsoMappa percorso = PercorsoFileMappa(m_percorsoApp, chiave, NomiMappa::Esistenti);
    if (!percorso.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.4"));
        return;
    }
    m_nomeFileMappa = percorso.file;
    if (!EsisteMappa(percorso)) {
        m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.3"));
        return;
    }
    // The whole file is judged before the first block: a file that is not exactly a map
    // would write past 0xC2FF into the software, or half a map.
    const EsitoMappa esito = LeggiMappa(m_nomeFileMappa);
    if (!esito.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(esito.errore == EsitoMappa::Errore::Illeggibile
                                       ? Messaggio("ProgMappe", "SEGNALAZIONE1.2")
                                       : Messaggio("ProgMappe", "RIFIUTATA")
                                             .ritaglia()
                                             .con(QStringLiteral("XXX"), TestoChiaveMappa(percorso.chiave))
                                             .poi(MessaggioEsitoMappa(esito), QStringLiteral(" ")));
        return;
    }
    ProgrammaImmagine(esito.immagine, TestoChiaveMappa(percorso.chiave), verifica);
}

void ScritturaMappe::ProgrammaImmagine(const QByteArray &immagine, const QString &nome, bool verifica)
{
    if (immagine.size() != FileMappa::Dimensione)
        return;
    m_nomeMappa = nome;
    if (m_vista.domanda(Messaggio("ProgMappe", "DOMANDA").ritaglia().con(QStringLiteral("XXX"), m_nomeMappa),
                        FlagDomandaMappe | SecondoPredefinito, titolo())
        != RispostaSiMappe) {
        m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_19")));
        return;
    }
    m_immagine = immagine;
    m_verifica = verifica;
    invia();
}

void ScritturaMappe::Riscrivi()
{
    if (m_immagine.size() == FileMappa::Dimensione && m_linea.motore().StatoDialogo() == -1)
        invia();
}

void ScritturaMappe::invia()
{
    m_primaDifferenza = -1;
    m_numBloccoMappa = 1;
    m_indirizzoProg = FileMappa::PrimoIndirizzo;
    m_vista.mostraAvanzamento(1, FileMappa::Blocchi);
    MotoreDialogo &m = m_linea.motore();
    m.svuotaCoda();
    accodaBlocco();
    m_vista.abilitaPagina(false);
    if (!m.avvia(Stato, IntervalloScrittura))
        fallita(Segnalazione(QStringLiteral("SEGNALAZIONE_3")), true);
}

void ScritturaMappe::accodaBlocco()
{
    const QByteArray blocco = m_immagine.mid((m_numBloccoMappa - 1) * LunBlocco, LunBlocco);
    m_vista.mostraSegnalazione(messaggioBlocco(m_numBloccoMappa));
    m_linea.motore().accoda('W' + ParolaInByte(m_indirizzoProg) + char(blocco.size()) + blocco);
}

void ScritturaMappe::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (lettera == 'e' && (payload.size() < 2 || quint8(payload.at(1)) != 0xFF)) {
        // The ECU keeps what was written before the refusal; nothing is repeated.
        const Messaggio errore = ErroreEcu(payload);
        if (stato == Stato && m_numBloccoMappa > 1)
            interrotta(errore);
        else
            fallita(errore, false);
        return;
    }
    if (lettera == 'e' && stato == Stato) {
        bloccoScritto();
    } else if (lettera == 'r' && stato == StatoVerifica) {
        m_riletti += payload.mid(1, LunBlocco);
        m_vista.mostraAvanzamento(int(m_riletti.size() / LunBlocco), FileMappa::Blocchi);
        if (m_linea.motore().prosegui() == MotoreDialogo::Seguito::Concluso)
            fineVerifica();
    }
}

void ScritturaMappe::bloccoScritto()
{
    MotoreDialogo &m = m_linea.motore();
    if (m_numBloccoMappa < FileMappa::Blocchi) {
        ++m_numBloccoMappa;
        m_vista.mostraAvanzamento(m_numBloccoMappa, FileMappa::Blocchi);
        m_indirizzoProg += LunBlocco;
        m.svuotaCoda();
        accodaBlocco();
        (void)m.prosegui();
        return;
    }
    if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
        fineScrittura();
}

void ScritturaMappe::fineScrittura()
{
    m_vista.nascondiAvanzamento();
    m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_15")));
    m_vista.abilitaPagina(true);
    m_mappaScritta = true;
    if (m_verifica)
        avviaVerifica();
}

void ScritturaMappe::avviaVerifica()
{
    MotoreDialogo &m = m_linea.motore();
    m.svuotaCoda();
    for (int n = 0; n < FileMappa::Blocchi; ++n)
        m.accoda(richiestaLettura(FileMappa::PrimoIndirizzo + quint32(n * LunBlocco)));
    m_riletti.clear();
    m_vista.mostraAvanzamento(0, FileMappa::Blocchi);
    m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.5"));
    m_vista.abilitaPagina(false);
    if (!m.avvia(StatoVerifica, MotoreDialogo::IntervalloLettura))
        fallita(Messaggio("ProgMappe", "SEGNALAZIONE1.8"), true);
}

void ScritturaMappe::fineVerifica()
{
    m_vista.nascondiAvanzamento();
    m_vista.abilitaPagina(true);
    for (qsizetype i = 0; i < m_immagine.size(); ++i) {
        if (i >= m_riletti.size() || m_riletti.at(i) != m_immagine.at(i)) {
            m_primaDifferenza = FileMappa::PrimoIndirizzo + i;
            const QString ecu =
                i < m_riletti.size() ? esadecimale(quint8(m_riletti.at(i)), 2) : QStringLiteral("--");
            m_vista.beep();
            m_vista.mostraSegnalazione(
                Messaggio("ProgMappe", "SEGNALAZIONE1.7")
                    .con(QStringLiteral("XXX"), esadecimale(quint32(m_primaDifferenza), 4))
                    .con(QStringLiteral("YYY"), esadecimale(quint8(m_immagine.at(i)), 2))
                    .con(QStringLiteral("ZZZ"), ecu));
            return;
        }
    }
    m_vista.mostraSegnalazione(Messaggio("ProgMappe", "SEGNALAZIONE1.6"));
}

void ScritturaMappe::scadenza(int stato)
{
    if (stato == StatoVerifica)
        fallita(Messaggio("ProgMappe", "SEGNALAZIONE1.8"), true);
    else
        interrotta(Segnalazione(QStringLiteral("SEGNALAZIONE_14")));
}

void ScritturaMappe::fallita(const Messaggio &messaggio, bool nascondiBarra)
{
    if (nascondiBarra)
        m_vista.nascondiAvanzamento();
    m_vista.mostraSegnalazione(messaggio);
    m_vista.abilitaPagina(true);
}

void ScritturaMappe::interrotta(Messaggio motivo)
{
    // Whether the block in flight got in is not known: from there on the ECU may hold either.
    fallita(motivo.poi(Messaggio("ProgMappe", "MISTA")
                           .ritaglia()
                           .con(QStringLiteral("XXX"), QString::number(m_numBloccoMappa)),
                       QStringLiteral(" ")),
            true);
    m_vista.offriRiscrittura(
        Messaggio("ProgMappe", "RISCRIVERE").ritaglia().con(QStringLiteral("XXX"), m_nomeMappa));
}

void ScritturaMappe::Esci()
{
    if (!m_mappaScritta) {
        m_vista.chiudiPagina();
        return;
    }
    if (m_vista.domanda(Segnalazione(QStringLiteral("SEGNALAZIONE_56")), FlagDomandaMappe, titolo())
        == RispostaSiMappe)
        m_vista.chiudiPagina();
}

} // namespace kv
