#include "programming/DialogoProgSW.h"
#include "link/ErroreEcu.h"
#include "programming/ControlloS19.h"

#include "archives/Archivio.h"
#include "archives/Cartelle.h"
#include "base/FileSystem.h"
#include "link/Frame.h"
#include "link/SessioneLinea.h"
#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"

#include <QDir>
#include <QFileInfo>

namespace kv {

QString CartellaFileS19(const QString &percorsoApp)
{
    return PercorsoFile(PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware), QStringLiteral("FILES19"));
}

QStringList ElencoSoftware(const QString &percorsoApp)
{
    const QString cartella = CartellaFileS19(percorsoApp);
    // A folder reached through a link could lie anywhere: nothing is made or listed there.
    if (!DentroRadice(cartella, percorsoApp))
        return {};
    CreaCartella(cartella + u'/');
    QStringList nomi;
    const QFileInfoList voci = QDir(cartella).entryInfoList(QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo &voce : voci) {
        const QString nome = voce.fileName();
        if (voce.isSymLink() || !nome.endsWith(QLatin1String(".S19"), Qt::CaseInsensitive))
            continue;
        const QString testo = nome.chopped(4).trimmed();
        if (!testo.isEmpty())
            nomi.append(testo);
    }
    return nomi;
}

SchedaSoftware LeggiSchedaSoftware(const QString &percorsoApp, const QString &nome)
{
    SchedaSoftware scheda;
    Archivio db;
    if (ApriArchivioSoftware(PercorsoFile(percorsoApp, FileArchivi::CartellaSoftware),
                             FileArchivi::FileSoftware, db)
        == 0) {
        scheda.avviso = MessaggioArchivio(db.Esito());
        return scheda;
    }
    if (const auto riga = db.Cerca(u"PER_NOME", {nome})) {
        scheda.Versione = riga->Testo(u"Versione");
        scheda.Note = riga->Testo(u"Note");
    } else if (!db.Esito().ok()) {
        scheda.avviso = MessaggioArchivio(db.Esito());
    }
    ChiudiArchivioSoftware(db);
    return scheda;
}

DialogoProgSW::DialogoProgSW(SessioneLinea &linea, const QString &percorsoApp, VistaProgSW &vista)
    : m_linea(linea)
    , m_motore(linea.motore())
    , m_percorsoApp(percorsoApp)
    , m_vista(vista)
{
    m_motore.registra(StatoInizio, this);
}

DialogoProgSW::~DialogoProgSW()
{
    // Nobody is left to hear the rest: the link is given back now, not at the time-out.
    if (inCorso())
        m_motore.abbandona();
    m_motore.rimuovi(this);
}

bool DialogoProgSW::inCorso() const
{
    const int stato = m_motore.StatoDialogo();
    return stato >= StatoInizio && stato < StatoInizio + 10;
}

SchedaSoftware DialogoProgSW::scegli(const QString &testoNodo)
{
    m_nome = testoNodo.trimmed();
    if (m_nome.isEmpty())
        return {};
    return LeggiSchedaSoftware(m_percorsoApp, m_nome);
}

bool DialogoProgSW::preparaImmagine()
{
    const QString &app = m_percorsoApp;
    const Messaggio nonValido = Segnalazione(QStringLiteral("SEGNALAZIONE_9"));
    // Only a plain file of the software folder is read: not a link, nor a path.
    const QString s19 = m_nome.contains(u'/') || m_nome.contains(u'\\')
                            ? QString()
                            : TrovaFile(CartellaFileS19(app), m_nome + QStringLiteral(".S19"));
    if (s19.isEmpty() || !DentroRadice(s19, app) || !QFileInfo(s19).isFile()) {
        m_vista.mostraSegnalazione(nonValido);
        return false;
    }
    const EsitoS19 esito = LeggiS19(s19);
    if (!esito.ok()) {
        m_vista.mostraSegnalazione(messaggioS19(esito));
        return false;
    }
    m_fileSW = PercorsoFileSW(app);
    if (!PreparaFileSW(m_fileSW) || !ConvertiS19(s19, m_fileSW, m_linea.ecu())) {
        m_vista.mostraSegnalazione(nonValido);
        return false;
    }
    return true;
}

Messaggio DialogoProgSW::messaggioS19(const EsitoS19 &esito) const
{
    return Messaggio("ProgSW", "RIFIUTO")
        .ritaglia()
        .con(QStringLiteral("XXX"), m_nome)
        .poi(Messaggio("ProgSW", "S19." + QString::number(int(esito.errore)))
                 .ritaglia()
                 .con(QStringLiteral("XXX"), QString::number(esito.riga))
                 .con(QStringLiteral("YYY"), QString::number(esito.colonna)),
             QStringLiteral(" "));
}

void DialogoProgSW::avviaProgrammazione()
{
    if (m_nome.isEmpty()) {
        m_vista.mostraMsg(Segnalazione(QStringLiteral("SEGNALAZIONE_13")), FlagInformazione,
                          Segnalazione(QStringLiteral("TITOLO_1")));
        return;
    }
    // The page is disabled while the link is busy; this only keeps a stray call out.
    if (m_motore.StatoDialogo() != -1)
        return;
    if (!preparaImmagine())
        return;
    if (!m_motore.PortOpen()) {
        m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_3")));
        return;
    }
    if (!m_vista.chiedi(Messaggio("ProgSW", "DOMANDA").ritaglia().con(QStringLiteral("XXX"), m_nome),
                        Segnalazione(QStringLiteral("TITOLO_1")))) {
        m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_19")));
        return;
    }
    m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_7")));
    m_vista.impostaBarra(0);
    m_vista.mostraBarra(true);
    m_numBloccoSW = 0;
    m_motore.svuotaCoda();
    m_motore.accoda(QByteArrayLiteral("I"));
    m_vista.abilitaPagina(false);
    if (!m_motore.avvia(StatoInizio, IntervalloProgrammazione)) {
        m_vista.mostraBarra(false);
        m_vista.abilitaPagina(true);
    }
}

void DialogoProgSW::risposta(char lettera, int stato, const QByteArray &payload)
{
    if (lettera != 'e')
        return;
    if (payload.size() < 2 || static_cast<quint8>(payload.at(1)) != 0xFF) {
        erroreEcu(payload);
        return;
    }
    switch (stato) {
    case StatoInizio:
        m_numBloccoSW = 1;
        m_vista.impostaBarra(m_numBloccoSW);
        m_indirizzoProg = static_cast<qint32>(ImmagineSW::Inizio);
        if (accodaBlocco())
            (void)m_motore.passaA(StatoBlocchi);
        break;
    case StatoBlocchi:
        dopoBlocco();
        break;
    case StatoFine:
        if (m_motore.prosegui() == MotoreDialogo::Seguito::Concluso) {
            // The ECU restarts with what has just been written: the next live frame asks it
            // again who it is, so the version page shows what it now runs.
            m_linea.ecuRiprogrammata();
            m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_12")));
            m_vista.abilitaPagina(true);
        }
        break;
    default:
        break;
    }
}

bool DialogoProgSW::accodaBlocco()
{
    // LeggiBloccoSW on the path found as the flash began: the file is opened afresh for each
    // block all the same.
    const QByteArray blocco = LeggiBlocco(m_fileSW, m_numBloccoSW);
    if (blocco.isEmpty()) {
        bloccoIlleggibile();
        return false;
    }
    m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_11"))
                                   .ritaglia()
                                   .poi(Letterale(QString::number(m_numBloccoSW)), QStringLiteral(" ")));
    m_motore.accoda('W' + ParolaInByte(static_cast<quint32>(m_indirizzoProg)) + char(LunBlocco) + blocco);
    return true;
}

void DialogoProgSW::dopoBlocco()
{
    if (NumeroBlocchi(m_fileSW) > m_numBloccoSW) {
        ++m_numBloccoSW;
        m_indirizzoProg += LunBlocco;
        m_vista.impostaBarra(m_numBloccoSW);
        if (accodaBlocco())
            (void)m_motore.prosegui();
        return;
    }
    // An image gone from the disk half-way must not end in 'F': the ECU would start a
    // software that is only partly there.
    if (!QFileInfo::exists(m_fileSW)) {
        bloccoIlleggibile();
        return;
    }
    m_vista.mostraBarra(false);
    m_motore.accoda(QByteArrayLiteral("F"));
    (void)m_motore.passaA(StatoFine);
}

void DialogoProgSW::bloccoIlleggibile()
{
    m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_13")));
    m_motore.abbandona();
    m_vista.abilitaPagina(true);
}

void DialogoProgSW::erroreEcu(const QByteArray &payload)
{
    m_vista.mostraSegnalazione(ErroreEcu(payload));
    m_vista.mostraBarra(false);
    m_vista.abilitaPagina(true);
}

void DialogoProgSW::scadenza(int stato)
{
    if (stato < StatoInizio || stato >= StatoInizio + 10)
        return;
    m_vista.mostraSegnalazione(Segnalazione(QStringLiteral("SEGNALAZIONE_10")));
    m_vista.mostraBarra(false);
    m_vista.abilitaPagina(true);
}

} // namespace kv
