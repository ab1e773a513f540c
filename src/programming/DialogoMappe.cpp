#include "programming/DialogoMappe.h"

#include "archives/SchemaArchivi.h"
#include "base/Lingua.h"
#include "link/Frame.h"
#include "programming/ControlloMappa.h"
#include "programming/FileBlocchi.h"
#include "programming/ScambioMappe.h"
#include "shell/Programma.h"
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

// The text of a name or place refused, with the field at fault.
QString testoPercorso(const Lingua &l, const PercorsoMappa &p)
{
    if (p.errore == PercorsoMappa::Errore::Nome) {
        const QString campo =
            l.LeggiTesto("ReadMappe", "LABCAMPO." + QString::number(p.nomi.campo)).trimmed();
        const QString motivo =
            l.LeggiTesto("ReadMappe", "NOME." + QString::number(int(p.nomi.errore)))
                .replace(QLatin1String("XXX"), QString::number(LunghezzaMassimaNome(p.nomi.campo)));
        return campo + QStringLiteral(": ") + motivo;
    }
    return l.LeggiTesto("ReadMappe", "NOME.9");
}

} // namespace

// ---- ReadMappe -------------------------------------------------------------------------

LetturaMappe::LetturaMappe(Programma &programma, VistaMappe &vista) : m_programma(programma), m_vista(vista)
{
    m_programma.linea.motore().registra(Stato, this);
}

LetturaMappe::~LetturaMappe()
{
    m_programma.linea.motore().rimuovi(this);
    if (m_inCorso) {
        if (m_programma.linea.motore().StatoDialogo() == Stato)
            m_programma.linea.motore().abbandona();
        QFile::remove(temporaneo());
    }
}

QString LetturaMappe::temporaneo() const
{
    return PercorsoTemporaneoMappa(m_programma.PercorsoApp);
}

void LetturaMappe::Leggi(const ChiaveMappa &campi, const QString &nota)
{
    if (m_inCorso)
        return;
    const Lingua &l = m_programma.lingua;
    m_vista.mostraSegnalazione({});
    const ChiaveMappa chiave = campi.pulita();
    if (chiave.impianto.isEmpty()) {
        m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.0"));
        return;
    }
    if (!chiave.completa()) {
        m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.3"));
        return;
    }
    const PercorsoMappa percorso = PercorsoFileMappa(m_programma.PercorsoApp, chiave);
    if (!percorso.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(testoPercorso(l, percorso));
        return;
    }
    m_nomeFileMappa = percorso.file;
    if (EsisteMappa(percorso)) {
        m_vista.beep();
        const int risposta = m_vista.domanda(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_8"), FlagDomandaMappe,
                                             l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"));
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
        m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.2"));
        return;
    }

    m_chiave = percorso.chiave;
    m_nota = nota;
    const quint32 primo = FileMappa::PrimoIndirizzo;
    const quint32 dimensione = FileMappa::UltimoIndirizzo - primo + 1;
    m_totBlocchiMappa = int((dimensione + LunBlocco - 1) / LunBlocco);
    m_numBloccoMappa = 0;
    m_indirizzoProg = primo;
    MotoreDialogo &m = m_programma.linea.motore();
    m.svuotaCoda();
    for (int n = 0; n < m_totBlocchiMappa; ++n)
        m.accoda(richiestaLettura(primo + quint32(n * LunBlocco)));
    // The lambda flag lives in RAM alone; the row keeps it, so the map decodes later as the
    // pages showed it on this ECU.
    const Parametro &scala = m_programma.catalogo.Parametri[Par::ScalaLambda];
    m.accoda('R' + ParolaInByte(quint32(scala.IndirizzoRAM)) + char(scala.Dimensione));
    m_scalaLambda.reset();
    m_vista.mostraAvanzamento(0, m_totBlocchiMappa);
    m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.1"));
    m_vista.abilitaPagina(false);
    m_inCorso = true;
    if (!m.avvia(Stato, MotoreDialogo::IntervalloLettura))
        interrompi(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_14"));
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
        interrompi(m_programma.lingua.testo(ErroreEcu(payload)), false);
        return;
    }
    if (lettera != 'r')
        return;
    MotoreDialogo &m = m_programma.linea.motore();
    if (m_numBloccoMappa == m_totBlocchiMappa) {
        const int dimensione = m_programma.catalogo.Parametri[Par::ScalaLambda].Dimensione;
        m_scalaLambda = m_programma.catalogo.daGrezzo(Par::ScalaLambda, NumeroBE(payload.mid(1, dimensione)));
        if (m.prosegui() == MotoreDialogo::Seguito::Concluso)
            fine();
        return;
    }
    if (payload.size() < 1 + LunBlocco) {
        m.abbandona();
        interrompi(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.5"));
        return;
    }
    if (!AggiungiRecord(temporaneo(), QByteArrayView(payload).sliced(1, LunBlocco))) {
        m.abbandona();
        m_vista.beep();
        interrompi(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.2"));
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
        interrompi(m_programma.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_14"));
}

void LetturaMappe::interrompi(const QString &messaggio, bool nascondiBarra)
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
    const QString &app = m_programma.PercorsoApp;
    const QString tmp = temporaneo();
    // Checked again: the place must still be inside the archive now that it is written.
    const PercorsoMappa percorso = PercorsoFileMappa(app, m_chiave);
    if (!percorso.ok() || !CreaCartellaMappa(app, percorso) || !PosaMappa(tmp, app, percorso)) {
        QFile::remove(tmp);
        m_vista.beep();
        m_vista.mostraSegnalazione(percorso.ok()
                                       ? m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.2")
                                       : testoPercorso(m_programma.lingua, percorso));
        return;
    }
    QFile::remove(tmp);
    const EsitoArchivio esito = RegistraMappa(app, percorso.chiave, m_nota, m_scalaLambda);
    m_vista.mappaArchiviata(percorso.chiave);
    m_vista.beep();
    if (esito.ok())
        m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.4"));
    else
        m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ReadMappe", "SEGNALAZIONE1.6")
                                   + QLatin1Char(' ') + TestoEsitoArchivio(m_programma.lingua, esito));
}

// ---- ProgMappe -------------------------------------------------------------------------

ScritturaMappe::ScritturaMappe(Programma &programma, VistaMappe &vista)
    : m_programma(programma)
    , m_vista(vista)
{
    m_programma.linea.motore().registra(Stato, this);
}

ScritturaMappe::~ScritturaMappe()
{
    m_programma.linea.motore().rimuovi(this);
}

void ScritturaMappe::ProgrammaMappa(const ChiaveMappa &mappa, bool verifica)
{
    const Lingua &l = m_programma.lingua;
    m_vista.mostraSegnalazione({});
    const ChiaveMappa chiave = mappa.pulita();
    if (chiave.impianto.isEmpty() || chiave.marca.isEmpty() || chiave.modello.isEmpty()) {
        m_vista.mostraSegnalazione(l.LeggiTesto("ProgMappe", "SEGNALAZIONE1.0"));
        return;
    }
    if (chiave.file.isEmpty()) {
        m_vista.mostraSegnalazione(l.LeggiTesto("ProgMappe", "SEGNALAZIONE1.3"));
        return;
    }
    const PercorsoMappa percorso = PercorsoFileMappa(m_programma.PercorsoApp, chiave, NomiMappa::Esistenti);
    if (!percorso.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(l.LeggiTesto("ProgMappe", "SEGNALAZIONE1.4"));
        return;
    }
    m_nomeFileMappa = percorso.file;
    if (!EsisteMappa(percorso)) {
        m_vista.mostraSegnalazione(l.LeggiTesto("ProgMappe", "SEGNALAZIONE1.3"));
        return;
    }
    // The whole file is judged before the first block: a file that is not exactly a map
    // would write past 0xC2FF into the software, or half a map.
    const EsitoMappa esito = LeggiMappa(m_nomeFileMappa);
    if (!esito.ok()) {
        m_vista.beep();
        m_vista.mostraSegnalazione(
            esito.errore == EsitoMappa::Errore::Illeggibile
                ? l.LeggiTesto("ProgMappe", "SEGNALAZIONE1.2")
                : l.LeggiTesto("ProgMappe", "RIFIUTATA")
                          .trimmed()
                          .replace(QLatin1String("XXX"), TestoChiaveMappa(percorso.chiave))
                      + QLatin1Char(' ') + TestoEsitoMappa(l, esito));
        return;
    }
    ProgrammaImmagine(esito.immagine, TestoChiaveMappa(percorso.chiave), verifica);
}

void ScritturaMappe::ProgrammaImmagine(const QByteArray &immagine, const QString &nome, bool verifica)
{
    const Lingua &l = m_programma.lingua;
    if (immagine.size() != FileMappa::Dimensione)
        return;
    m_nomeMappa = nome;
    if (m_vista.domanda(
            l.LeggiTesto("ProgMappe", "DOMANDA").trimmed().replace(QLatin1String("XXX"), m_nomeMappa),
            FlagDomandaMappe | SecondoPredefinito, l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"))
        != RispostaSiMappe) {
        m_vista.mostraSegnalazione(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_19"));
        return;
    }
    m_immagine = immagine;
    m_verifica = verifica;
    invia();
}

void ScritturaMappe::Riscrivi()
{
    if (m_immagine.size() == FileMappa::Dimensione && m_programma.linea.motore().StatoDialogo() == -1)
        invia();
}

void ScritturaMappe::invia()
{
    m_primaDifferenza = -1;
    m_numBloccoMappa = 1;
    m_indirizzoProg = FileMappa::PrimoIndirizzo;
    m_vista.mostraAvanzamento(1, FileMappa::Blocchi);
    MotoreDialogo &m = m_programma.linea.motore();
    m.svuotaCoda();
    accodaBlocco();
    m_vista.abilitaPagina(false);
    if (!m.avvia(Stato, IntervalloScrittura))
        fallita(m_programma.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_3"), true);
}

void ScritturaMappe::accodaBlocco()
{
    const QByteArray blocco = m_immagine.mid((m_numBloccoMappa - 1) * LunBlocco, LunBlocco);
    m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_11").trimmed()
                               + QLatin1Char(' ') + QString::number(m_numBloccoMappa));
    m_programma.linea.motore().accoda('W' + ParolaInByte(m_indirizzoProg) + char(blocco.size()) + blocco);
}

void ScritturaMappe::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (lettera == 'e' && (payload.size() < 2 || quint8(payload.at(1)) != 0xFF)) {
        // The ECU keeps what was written before the refusal; nothing is repeated.
        const QString errore = m_programma.lingua.testo(ErroreEcu(payload));
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
        if (m_programma.linea.motore().prosegui() == MotoreDialogo::Seguito::Concluso)
            fineVerifica();
    }
}

void ScritturaMappe::bloccoScritto()
{
    MotoreDialogo &m = m_programma.linea.motore();
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
    m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_15"));
    m_vista.abilitaPagina(true);
    m_mappaScritta = true;
    if (m_verifica)
        avviaVerifica();
}

void ScritturaMappe::avviaVerifica()
{
    MotoreDialogo &m = m_programma.linea.motore();
    m.svuotaCoda();
    for (int n = 0; n < FileMappa::Blocchi; ++n)
        m.accoda(richiestaLettura(FileMappa::PrimoIndirizzo + quint32(n * LunBlocco)));
    m_riletti.clear();
    m_vista.mostraAvanzamento(0, FileMappa::Blocchi);
    m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ProgMappe", "SEGNALAZIONE1.5"));
    m_vista.abilitaPagina(false);
    if (!m.avvia(StatoVerifica, MotoreDialogo::IntervalloLettura))
        fallita(m_programma.lingua.LeggiTesto("ProgMappe", "SEGNALAZIONE1.8"), true);
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
                m_programma.lingua.LeggiTesto("ProgMappe", "SEGNALAZIONE1.7")
                    .replace(QLatin1String("XXX"), esadecimale(quint32(m_primaDifferenza), 4))
                    .replace(QLatin1String("YYY"), esadecimale(quint8(m_immagine.at(i)), 2))
                    .replace(QLatin1String("ZZZ"), ecu));
            return;
        }
    }
    m_vista.mostraSegnalazione(m_programma.lingua.LeggiTesto("ProgMappe", "SEGNALAZIONE1.6"));
}

void ScritturaMappe::scadenza(int stato)
{
    if (stato == StatoVerifica)
        fallita(m_programma.lingua.LeggiTesto("ProgMappe", "SEGNALAZIONE1.8"), true);
    else
        interrotta(m_programma.lingua.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_14"));
}

void ScritturaMappe::fallita(const QString &messaggio, bool nascondiBarra)
{
    if (nascondiBarra)
        m_vista.nascondiAvanzamento();
    m_vista.mostraSegnalazione(messaggio);
    m_vista.abilitaPagina(true);
}

void ScritturaMappe::interrotta(const QString &motivo)
{
    // Whether the block in flight got in is not known: from there on the ECU may hold either.
    const Lingua &l = m_programma.lingua;
    fallita(motivo + QLatin1Char(' ')
                + l.LeggiTesto("ProgMappe", "MISTA")
                      .trimmed()
                      .replace(QLatin1String("XXX"), QString::number(m_numBloccoMappa)),
            true);
    m_vista.offriRiscrittura(
        l.LeggiTesto("ProgMappe", "RISCRIVERE").trimmed().replace(QLatin1String("XXX"), m_nomeMappa));
}

void ScritturaMappe::Esci()
{
    if (!m_mappaScritta) {
        m_vista.chiudiPagina();
        return;
    }
    const Lingua &l = m_programma.lingua;
    if (m_vista.domanda(l.LeggiTesto("SEGNALAZIONI", "SEGNALAZIONE_56"), FlagDomandaMappe,
                        l.LeggiTesto("SEGNALAZIONI", "TITOLO_1"))
        == RispostaSiMappe)
        m_vista.chiudiPagina();
}

} // namespace kv
