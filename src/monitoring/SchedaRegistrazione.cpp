#include "monitoring/SchedaRegistrazione.h"

#include "archives/Cartelle.h"
#include "base/Configurazione.h"
#include "base/Cp1252.h"
#include "base/FileIni.h"
#include "base/FileSystem.h"
#include "monitoring/AnelloRegistrazione.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace kv {

namespace {

constexpr int LunghezzaVoce = 50;
constexpr QStringView Vietati = u"/\\:*?\"<>|";

// A bound of the list walk: the text padded with riempi to the box's length, cut to it,
// upper-cased.
QString limite(const QString &testo, QChar riempi, int lunghezza)
{
    return testo.leftJustified(lunghezza, riempi, true).toUpper();
}

QString campoVoce(const QString &testo)
{
    return testo.trimmed().toUpper().leftJustified(LunghezzaVoce, u' ', true);
}

SchedaRegistrazione::Esito nuovoEsito(SchedaRegistrazione::Esito::Tipo tipo, int casella = -1,
                                      const QString &percorso = {})
{
    SchedaRegistrazione::Esito e;
    e.tipo = tipo;
    e.casella = casella;
    e.percorso = percorso;
    return e;
}

// A refused name as a message can show it: control characters as '?', a long one cut.
QString leggibile(const QString &nome)
{
    constexpr int Massimo = 60;
    QString r = nome.left(Massimo);
    for (QChar &c : r)
        if (c.unicode() < 0x20 || (c.unicode() >= 0x7F && c.unicode() <= 0x9F))
            c = u'?';
    return nome.size() > Massimo ? r + QStringLiteral("...") : r;
}

} // namespace

SchedaRegistrazione::SchedaRegistrazione(const QString &percorsoApp, AnelloRegistrazione &anello)
    : m_percorsoApp(percorsoApp)
    , m_anello(anello)
{}

QString SchedaRegistrazione::cartellaDati() const
{
    return PercorsoFile(m_percorsoApp, FileArchivi::CartellaDati);
}

bool SchedaRegistrazione::Apri()
{
    return ApriArchivioDati(cartellaDati(), FileArchivi::FileDati, m_db) != 0;
}

void SchedaRegistrazione::Chiudi()
{
    ChiudiArchivioDati(m_db);
}

QString SchedaRegistrazione::VoceElenco(const QString &marca, const QString &modello)
{
    return campoVoce(marca) + campoVoce(modello);
}

QString SchedaRegistrazione::Imbottita(const QString &testo, int casella)
{
    if (casella < 0 || casella >= NumeroCaselle)
        return testo;
    return testo.leftJustified(Lunghezza[static_cast<std::size_t>(casella)], u' ');
}

bool SchedaRegistrazione::CarattereAmmesso(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x20 || (u >= 0x7F && u <= 0x9F) || Vietati.contains(c))
        return false;
    bool perdita = false;
    Cp1252::codifica(QStringView(&c, 1), &perdita);
    return !perdita;
}

bool SchedaRegistrazione::NomeAmmesso(const QString &nome, int casella)
{
    if (casella < Marca || casella > File || nome.isEmpty()
        || nome.size() > Lunghezza[static_cast<std::size_t>(casella)] || nome.startsWith(u'.'))
        return false;
    for (QChar c : nome)
        if (!CarattereAmmesso(c))
            return false;
    return true;
}

QList<SchedaRegistrazione::Voce> SchedaRegistrazione::ElencoEsi(const QString &marca, const QString &modello)
{
    QList<Voce> voci;
    if (!m_db.Aperto())
        return voci;
    const QString m = marca.trimmed();
    const QString n = modello.trimmed();
    const int lm = Lunghezza[Marca];
    const int ln = Lunghezza[Modello];
    const QString bassoMarca = limite(m, QChar(0), lm), altoMarca = limite(m, QChar(255), lm);
    const QString bassoModello = limite(n, QChar(0), ln), altoModello = limite(n, QChar(255), ln);
    const QList<RigaArchivio> righe = m_db.Elenca(u"PER_MARCAMOD", {m, n});
    for (const RigaArchivio &riga : righe) {
        const std::optional<QString> rm = riga.Campo(u"MARCA");
        const std::optional<QString> rn = riga.Campo(u"MODELLO");
        if (!rm || !rn)
            continue;
        const QString vm = limite(*rm, QChar(0), lm);
        const QString vn = limite(*rn, QChar(0), ln);
        if (vm < bassoMarca || vm > altoMarca || vn < bassoModello || vn > altoModello)
            break;
        voci.append({VoceElenco(*rm, *rn), riga.Testo(u"FILE")});
    }
    return voci;
}

std::optional<SchedaRegistrazione::Caselle> SchedaRegistrazione::LeggiScheda(const Voce &voce)
{
    if (!m_db.Aperto())
        return std::nullopt;
    const QString marca = voce.testo.left(LunghezzaVoce).trimmed();
    const QString modello = voce.testo.mid(LunghezzaVoce, LunghezzaVoce).trimmed();
    const QString file = voce.file.trimmed().toUpper();
    const std::optional<RigaArchivio> riga = m_db.Cerca(u"PER_FILE", {marca, modello, file});
    if (!riga)
        return std::nullopt;
    return Caselle{riga->Testo(u"MARCA"), riga->Testo(u"MODELLO"), riga->Testo(u"FILE"),
                   riga->Testo(u"NOTE")};
}

QString SchedaRegistrazione::PercorsoRegistrazione(const QString &marca, const QString &modello,
                                                   const QString &file, Esito *rifiuto) const
{
    const std::array<QString, 3> nomi = {marca.trimmed(), modello.trimmed(), file.trimmed()};
    for (int i = Marca; i <= File; ++i)
        if (!NomeAmmesso(nomi[static_cast<std::size_t>(i)], i)) {
            if (rifiuto)
                *rifiuto = nuovoEsito(Esito::Tipo::NomeRifiutato, i, nomi[static_cast<std::size_t>(i)]);
            return {};
        }
    // An existing folder of another case is the same make or model, as the card's key is.
    const QString dati = cartellaDati();
    const QString cartella = PercorsoFile(PercorsoFile(dati, nomi[0]), nomi[1]);
    const QString percorso = PercorsoFile(cartella, nomi[2].toUpper() + QStringLiteral(".ACQ"));
    // Lexically below DATI, no link from the program's folder down, and so for real.
    if (!DentroRadice(percorso, dati) || !DentroRadice(percorso, m_percorsoApp)
        || !PercorsoNellaCartella(percorso, m_percorsoApp)) {
        if (rifiuto)
            *rifiuto = nuovoEsito(Esito::Tipo::FuoriCartella, -1, percorso);
        return {};
    }
    return percorso;
}

SchedaRegistrazione::Esito SchedaRegistrazione::Memorizza(const Caselle &caselle,
                                                          const std::function<bool()> &sostituire)
{
    Caselle t;
    for (std::size_t i = 0; i < t.size(); ++i)
        t[i] = caselle[i].trimmed();
    for (int i = Marca; i <= File; ++i)
        if (t[static_cast<std::size_t>(i)].isEmpty())
            return nuovoEsito(Esito::Tipo::Vuota, i);
    Esito e;
    const QString percorso = PercorsoRegistrazione(t[Marca], t[Modello], t[File], &e);
    if (percorso.isEmpty())
        return e;

    const auto archivio = [this] {
        Esito a = nuovoEsito(Esito::Tipo::Archivio);
        a.archivio = m_db.Esito();
        if (a.archivio.ok())
            a.archivio = {
                ErroreArchivio::NonApribile, PercorsoFile(cartellaDati(), FileArchivi::FileDati), {}};
        return a;
    };
    if (!m_db.Aperto())
        return archivio();
    const QStringList chiave = {t[Marca], t[Modello], t[File]};
    const bool esiste = m_db.Cerca(u"PER_FILE", chiave).has_value();
    if (!m_db.Esito().ok())
        return archivio();
    // A file at that path without its card is somebody's recording too.
    if ((esiste || QFileInfo::exists(percorso)) && !(sostituire && sostituire()))
        return nuovoEsito(Esito::Tipo::NonSostituita, File, percorso);

    const QString cartella = QFileInfo(percorso).path();
    if (!CreaCartella(cartella))
        return nuovoEsito(Esito::Tipo::Cartella, -1, cartella);
    // The folders are real now: the path must still lie where it was checked to lie.
    if (PercorsoRegistrazione(t[Marca], t[Modello], t[File], &e) != percorso)
        return nuovoEsito(Esito::Tipo::FuoriCartella, -1, percorso);

    RigaArchivio riga = m_db.NuovaRiga();
    riga.Imposta(u"MARCA", t[Marca]);
    riga.Imposta(u"MODELLO", t[Modello]);
    riga.Imposta(u"FILE", t[File]);
    riga.Imposta(u"NOTE", Imbottita(caselle[Note], Note));
    if (!m_db.Salva(riga))
        return archivio();

    // A card that is stored again starts its recording afresh.
    if (QFileInfo::exists(percorso) && !QFile::remove(percorso))
        return nuovoEsito(Esito::Tipo::VecchioFile, -1, percorso);
    if (!FileIni::scrivi(PercorsoIni(m_percorsoApp), QStringLiteral("MEMORIZZAZIONE"),
                         QStringLiteral("FileMemor"), percorso))
        return nuovoEsito(Esito::Tipo::Impostazioni, -1, percorso);
    m_anello.impostaFileRegistrazione(m_anello.LeggiFileRegistrazione());
    if (m_anello.FileRegistrazione != percorso)
        return nuovoEsito(Esito::Tipo::Impostazioni, -1, percorso);
    e = nuovoEsito(Esito::Tipo::Fatto, -1, percorso);
    return e;
}

QString SchedaRegistrazione::NomeNumerato(const QString &file, int n)
{
    QString base = file.trimmed();
    // FILE_2 goes on as FILE_3, not FILE_2_2.
    const qsizetype trattino = base.lastIndexOf(u'_');
    if (trattino > 0) {
        bool numero = false;
        base.mid(trattino + 1).toInt(&numero);
        if (numero)
            base.truncate(trattino);
    }
    const QString coda = u'_' + QString::number(n);
    return base.left(Lunghezza[File] - coda.size()).trimmed() + coda;
}

SchedaRegistrazione::Esito SchedaRegistrazione::NuovoFile()
{
    const QString attuale = m_anello.FileRegistrazione;
    const QFileInfo info(attuale);
    Caselle card = {
        QFileInfo(info.path()).dir().dirName(), info.dir().dirName(), info.completeBaseName(), {}};
    for (const Voce &v : ElencoEsi(card[Marca], card[Modello])) {
        const std::optional<Caselle> c = LeggiScheda(v);
        if (c && PercorsoRegistrazione((*c)[Marca], (*c)[Modello], (*c)[File]) == attuale) {
            card = *c;
            break;
        }
    }
    for (int n = 2; n < 1000; ++n) {
        Caselle nuova = card;
        nuova[File] = NomeNumerato(card[File], n);
        const QString percorso = PercorsoRegistrazione(nuova[Marca], nuova[Modello], nuova[File]);
        if (percorso.isEmpty())
            break;
        if (QFileInfo::exists(percorso)
            || (m_db.Aperto()
                && m_db.Cerca(u"PER_FILE", {card[Marca].trimmed(), card[Modello].trimmed(), nuova[File]})))
            continue;
        return Memorizza(nuova, [] { return false; });
    }
    return nuovoEsito(Esito::Tipo::NomeRifiutato, File, card[File]);
}

Messaggio MessaggioEsitoScheda(const SchedaRegistrazione::Esito &esito)
{
    using T = SchedaRegistrazione::Esito::Tipo;
    Messaggio m;
    switch (esito.tipo) {
    case T::Fatto:
    case T::Vuota:
    case T::NonSostituita:
        return {};
    case T::Archivio:
        return MessaggioArchivio(esito.archivio);
    case T::NomeRifiutato:
        m = Messaggio("Memorf", "SEGNALAZIONE.0");
        break;
    case T::FuoriCartella:
        m = Messaggio("Memorf", "SEGNALAZIONE.1");
        break;
    case T::Cartella:
        m = Messaggio("Memorf", "SEGNALAZIONE.2");
        break;
    case T::VecchioFile:
        m = Messaggio("Memorf", "SEGNALAZIONE.3");
        break;
    case T::Impostazioni:
        m = Messaggio("Memorf", "SEGNALAZIONE.4");
        break;
    }
    return m.con(QStringLiteral("XXX"), esito.tipo == T::NomeRifiutato
                                            ? leggibile(esito.percorso)
                                            : QDir::toNativeSeparators(esito.percorso));
}

} // namespace kv
