#include "monitoring/AnelloRegistrazione.h"

#include "base/Configurazione.h"
#include "base/Cp1252.h"
#include "base/FileIni.h"
#include "variables/Formato.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cerrno>
#include <cmath>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kv {

namespace {
// The channels the stream fills: 1 (status) to 11 (lambda probe type).
constexpr int PrimoCanale = Canale::FlagPa;
constexpr int UltimoCanale = Canale::TipoLambda;
constexpr int LarghezzaCampo = 8;

// The counter as a 32-bit sample number; a run long enough to pass 2^31 wraps round
// instead of failing.
qint32 progressivo(double conta)
{
    if (!std::isfinite(conta) || std::fabs(conta) > 9.0e15)
        return -1;
    return static_cast<qint32>(static_cast<quint32>(std::llround(conta)));
}

// A field of a sample line: the whole number, blanks ahead of it to eight characters; of a
// longer one only the last eight characters.
QString campo(double v)
{
    const QString t = FormattaNumero(v, QStringLiteral("#0"));
    return t.size() > LarghezzaCampo ? t.right(LarghezzaCampo) : t.rightJustified(LarghezzaCampo, u' ');
}

QString errno_testo(int codice)
{
    return QString::fromLocal8Bit(std::strerror(codice));
}

} // namespace

AnelloRegistrazione::AnelloRegistrazione()
{
    azzera();
}

void AnelloRegistrazione::collega(const TabellaCanali *canali, const QString &cartellaProgramma)
{
    m_canali = canali;
    m_cartella = cartellaProgramma;
}

void AnelloRegistrazione::azzera()
{
    IndiceRegistrazione = -1;
    for (RecordDati &r : BufferRegistrazione)
        r.Progressivo = -1;
}

bool AnelloRegistrazione::aggiungi(const RecordDati &campione)
{
    if (IndiceRegistrazione < 0 || IndiceRegistrazione >= LimiteSuperiore)
        IndiceRegistrazione = 0;
    else
        ++IndiceRegistrazione;
    ContaRegistrazione += 1;

    RecordDati &r = BufferRegistrazione[IndiceRegistrazione];
    r.Progressivo = progressivo(ContaRegistrazione);
    for (int c = PrimoCanale; c <= UltimoCanale; ++c)
        r.Valore[c] = campione.Valore[c];
    return IndiceRegistrazione == LimiteSuperiore;
}

bool AnelloRegistrazione::MemorizzaCampione(const RecordDati &campione)
{
    const bool pieno = aggiungi(campione);
    if (pieno && StatoRegistrazione == InRegistrazione)
        ScriviRegistrazione(false);
    emit campioneRegistrato(pieno);
    return pieno;
}

QString AnelloRegistrazione::rigaNomi() const
{
    QStringList campi;
    if (m_canali) {
        campi << m_canali->Canali[0].Nome.trimmed();
        for (int c : CanaliRegistrati)
            campi << m_canali->Canali[static_cast<std::size_t>(c)].Nome.trimmed();
    }
    return campi.join(u';');
}

QString AnelloRegistrazione::rigaUnita() const
{
    QStringList campi;
    if (m_canali) {
        campi << m_canali->Canali[0].UM.trimmed();
        for (int c : CanaliRegistrati)
            campi << m_canali->Canali[static_cast<std::size_t>(c)].UM.trimmed();
    }
    return campi.join(u';');
}

QString AnelloRegistrazione::rigaCampione(const RecordDati &r)
{
    QString riga = campo(r.Progressivo);
    for (int c : CanaliRegistrati)
        riga += u';' + campo(r.Valore[static_cast<std::size_t>(c)]);
    return riga;
}

void AnelloRegistrazione::ScriviRegistrazione(bool prima)
{
    if (IndiceRegistrazione < 0 || StatoRegistrazione != InRegistrazione)
        return;
    QString righe;
    const auto accoda = [&](const RecordDati &r) {
        if (r.Progressivo == -1)
            return;
        righe += rigaCampione(r);
        righe += QStringLiteral("\r\n");
    };
    if (prima) {
        int i = IndiceRegistrazione;
        for (int n = 0; n < Dimensione; ++n) {
            i = i < LimiteSuperiore ? i + 1 : 0;
            accoda(BufferRegistrazione[static_cast<std::size_t>(i)]);
        }
    } else {
        for (int i = 0; i <= IndiceRegistrazione; ++i)
            accoda(BufferRegistrazione[static_cast<std::size_t>(i)]);
    }
    IndiceRegistrazione = -1;
    scrivi(Cp1252::codifica(righe));
}

bool AnelloRegistrazione::scrivi(const QByteArray &righe)
{
    const QString percorso = FileRegistrazione;
    if (percorso.isEmpty() || !PercorsoNellaCartella(percorso, m_cartella)) {
        fallito(Errore::Tipo::Percorso, {});
        return false;
    }
    const QByteArray nome = QFile::encodeName(percorso);
    // Never through a link: the name was checked, what it points to was not.
    int fd = ::open(nome.constData(), O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC);
    bool nuovo = false;
    if (fd < 0 && errno == ENOENT) {
        fd = ::open(nome.constData(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
        nuovo = true;
    }
    if (fd < 0) {
        fallito(errno == ELOOP ? Errore::Tipo::Percorso : Errore::Tipo::Scrittura, errno_testo(errno));
        return false;
    }
    struct stat info
    {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        fallito(Errore::Tipo::Percorso, {});
        return false;
    }
    const off_t prima = info.st_size;

    QByteArray dati;
    if (nuovo) {
        const QString intestazione =
            rigaNomi() + QStringLiteral("\r\n") + rigaUnita() + QStringLiteral("\r\n");
        dati = Cp1252::codifica(intestazione);
    }
    dati += righe;
    const char *p = dati.constData();
    qsizetype resto = dati.size();
    int codice = 0;
    while (resto > 0) {
        const ssize_t n = ::write(fd, p, static_cast<size_t>(resto));
        if (n < 0) {
            if (errno == EINTR)
                continue;
            codice = errno;
            break;
        }
        p += n;
        resto -= n;
    }
    if (codice == 0 && ::close(fd) != 0)
        codice = errno;
    else if (codice != 0) {
        // A batch cut short goes again, so the file ends on a whole line as before; a file
        // this write made goes altogether, so the next recording writes its headings.
        if (nuovo) {
            ::close(fd);
            ::unlink(nome.constData());
        } else {
            const int r = ::ftruncate(fd, prima);
            Q_UNUSED(r);
            ::close(fd);
        }
    }
    if (codice != 0) {
        fallito(Errore::Tipo::Scrittura, errno_testo(codice));
        return false;
    }
    return true;
}

void AnelloRegistrazione::fallito(Errore::Tipo tipo, const QString &dettaglio)
{
    m_errore = Errore{tipo, FileRegistrazione, dettaglio};
    azzera();
    StatoRegistrazione = Fermo;
    ContaRegistrazione = -1;
}

std::optional<AnelloRegistrazione::Errore> AnelloRegistrazione::prendiErrore()
{
    auto e = std::move(m_errore);
    m_errore.reset();
    return e;
}

AnelloRegistrazione::Esito AnelloRegistrazione::Inizio()
{
    if (FileRegistrazione.isEmpty() || StatoRegistrazione == InRegistrazione)
        return Esito::SenzaFile;
    if (StatoRegistrazione == Fermo) {
        StatoRegistrazione = InRegistrazione;
        ScriviRegistrazione(true);
    } else {
        // What was sampled during the pause is dropped.
        azzera();
        StatoRegistrazione = InRegistrazione;
    }
    return Esito::Fatto;
}

AnelloRegistrazione::Esito AnelloRegistrazione::Pausa()
{
    if (StatoRegistrazione != InRegistrazione)
        return Esito::Ignorato;
    ScriviRegistrazione(false);
    azzera();
    if (StatoRegistrazione == InRegistrazione)
        StatoRegistrazione = InPausa;
    return Esito::Fatto;
}

AnelloRegistrazione::Esito AnelloRegistrazione::Fine()
{
    if (StatoRegistrazione != InRegistrazione && StatoRegistrazione != InPausa)
        return Esito::Ignorato;
    if (StatoRegistrazione == InRegistrazione)
        ScriviRegistrazione(false);
    azzera();
    StatoRegistrazione = Fermo;
    ContaRegistrazione = -1;
    return Esito::Fatto;
}

void AnelloRegistrazione::chiudiFinestra()
{
    ScriviRegistrazione(false);
    azzera();
}

QString AnelloRegistrazione::LeggiFileRegistrazione() const
{
    const QString nome =
        FileIni::leggi(PercorsoIni(m_cartella), QStringLiteral("MEMORIZZAZIONE"), QStringLiteral("FileMemor"))
            .trimmed();
    if (nome.isEmpty() || !PercorsoNellaCartella(nome, m_cartella))
        return {};
    QFile f(nome);
    // Only the file may be missing: a card whose folder has gone is no choice any more.
    if (!f.exists())
        return QFileInfo(QFileInfo(nome).path()).isDir() ? nome : QString();
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return nome;
}

bool AnelloRegistrazione::fileConDati() const
{
    const QFileInfo info(FileRegistrazione);
    return !FileRegistrazione.isEmpty() && info.isFile() && info.size() > 0;
}

bool AnelloRegistrazione::impostaFileRegistrazione(const QString &percorso)
{
    const QString nome = percorso.trimmed();
    if (!nome.isEmpty() && !PercorsoNellaCartella(nome, m_cartella)) {
        FileRegistrazione.clear();
        return false;
    }
    FileRegistrazione = nome;
    return true;
}

ComandiRegistrazione AggiornaMenuRegistrazione(int stato)
{
    constexpr StatoComando nascosto{false, false, false};
    constexpr StatoComando attivo{true, true, false};
    constexpr StatoComando spento{true, false, false};
    switch (stato) {
    case AnelloRegistrazione::InRegistrazione:
        return {nascosto, attivo, attivo, attivo, spento};
    case AnelloRegistrazione::InPausa:
        return {attivo, nascosto, attivo, attivo, spento};
    default:
        // Stopped: the stop key stands pressed in, and its menu entry has nothing to do.
        return {attivo, nascosto, {true, true, true}, spento, attivo};
    }
}

bool PercorsoNellaCartella(const QString &percorso, const QString &cartella)
{
    if (percorso.trimmed().isEmpty() || cartella.isEmpty())
        return false;
    QString radice = QFileInfo(cartella).canonicalFilePath();
    if (radice.isEmpty())
        return false;
    if (!radice.endsWith(u'/'))
        radice += u'/';
    const QString assoluto =
        QDir::cleanPath(QDir::isAbsolutePath(percorso) ? percorso : QDir(cartella).filePath(percorso));
    const QFileInfo info(assoluto);
    if (info.isSymLink() || (info.exists() && !info.isFile()))
        return false;
    // The nearest folder that exists, with its links resolved, and the rest of the name.
    QString antenato = info.absolutePath();
    QString resto = info.fileName();
    while (!QFileInfo::exists(antenato)) {
        const QFileInfo a(antenato);
        if (a.absolutePath() == antenato)
            return false;
        resto = a.fileName() + u'/' + resto;
        antenato = a.absolutePath();
    }
    const QString reale = QFileInfo(antenato).canonicalFilePath();
    if (reale.isEmpty())
        return false;
    return QDir::cleanPath(reale + u'/' + resto).startsWith(radice);
}

} // namespace kv
