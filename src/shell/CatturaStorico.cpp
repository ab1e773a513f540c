#include "shell/CatturaStorico.h"

#include "link/Frame.h"
#include "link/SessioneLinea.h"
#include "link/TabellaStati.h"

#include <QDebug>

#include <algorithm>

namespace kv {

namespace {

// A command of the queue that changes the EEPROM or starts a flash.
bool CambiaEeprom(const QByteArray &coda)
{
    const QList<QByteArray> comandi = DatiInCoda(coda);
    return std::any_of(comandi.cbegin(), comandi.cend(), [](const QByteArray &dati) {
        return dati.startsWith('I')
               || (dati.size() >= 3 && dati.at(0) == 'W'
                   && ((quint8(dati.at(1)) << 8) | quint8(dati.at(2))) >= 0xC000);
    });
}

} // namespace

CatturaStorico::CatturaStorico(QString percorsoApp, SessioneLinea &linea, const Catalogo &catalogo,
                               QObject *parent)
    : QObject(parent)
    , m_percorsoApp(std::move(percorsoApp))
    , m_linea(linea)
    , m_catalogo(catalogo)
    , m_lettura(linea.motore(), Stato)
{}

void CatturaStorico::attiva(bool si)
{
    m_linea.motore().impostaGuardia(si ? this : nullptr);
}

CatturaStorico::~CatturaStorico()
{
    m_linea.motore().impostaGuardia(nullptr);
}

QString CatturaStorico::Evento(int stato)
{
    // The first state of each group, as the state table gives its owner.
    static const std::pair<int, const char *> Proprietari[] = {
        {1, "MP_Minimo"},      {11, "MP_Normale"},   {21, "MP_PienoCarico"},  {31, "MP_CutOff"},
        {41, "MP_Pompata"},    {51, "MP_Lavoro"},    {121, "IniTaratura"},    {131, "T_Giri"},
        {151, "ProgSW"},       {171, "ProgMappe"},   {181, "MP_Stechio"},     {191, "MP_InibizPC"},
        {201, "MP_RientroCO"}, {211, "T_Parametri"}, {231, "ConfrontoMappe"}, {331, "T_Giri_Single"},
    };
    const int primo = TabellaStati::primoDelGruppo(stato);
    for (const auto &[p, nome] : Proprietari)
        if (p == primo)
            return QString::fromLatin1(nome);
    return {};
}

bool CatturaStorico::prima(int stato, const QByteArray &coda)
{
    const StatoEcu &ecu = m_linea.ecu();
    const IdentitaEcu id{ecu.InfCodice, ecu.InfDatoA, ecu.InfDatoB};
    if (ecu.EcuDaIdentificare || !ecu.EcuNormale || id.vuota() || m_fatte.contains(id.chiave())
        || !CambiaEeprom(coda))
        return false;
    m_voce = {id, {}, Evento(stato), std::nullopt, {}};
    return m_lettura.leggi(RichiesteAreaMappa(m_catalogo),
                           [this](const SequenzaRichieste::Esito &e) { letta(e); });
}

void CatturaStorico::letta(const SequenzaRichieste::Esito &esito)
{
    // Asked once whatever came of it: the cost is one read a run, never one a store.
    m_fatte.insert(m_voce.ecu.chiave());
    const AreaLetta area = AreaDaRisposte(esito.risposte, m_catalogo);
    if (area.ok()) {
        m_voce.quando = QDateTime::currentDateTime();
        m_voce.scalaLambda = area.scalaLambda;
        m_voce.immagine = area.immagine;
        const EsitoArchivio e = AggiungiStorico(m_percorsoApp, m_voce);
        if (!e.ok())
            qWarning("The ECU's map could not be kept in its history");
        emit archiviata(m_voce, e);
    }
    m_linea.motore().riprendi();
}

} // namespace kv
