// Any bytes as each archive database of the program, opened as its page opens it and asked
// the page's first question: the map tree, a map of the archive, the software list and a
// software's card, the record cards, the ECU history, and the catalogues of both kinds of
// exchange medium. A damaged file, a file that is not SQLite and a schema from elsewhere
// must each end in a refusal or an answer, never a crash or a hang; a refused file and a
// medium's catalogue are left byte for byte as they were, and an archive once opened is not
// changed by the next open.
#include "archives/Archivio.h"
#include "archives/ScambioSoftware.h"
#include "archives/SchemaArchivi.h"
#include "archives/StoricoEcu.h"
#include "monitoring/AnelloRegistrazione.h"
#include "monitoring/SchedaRegistrazione.h"
#include "programming/AlberoMappe.h"
#include "programming/DialogoProgSW.h"
#include "programming/MappaArchiviata.h"
#include "programming/ScambioMappe.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>

using namespace kv;

namespace {

QTemporaryDir *cartella = nullptr;

QString app()
{
    return cartella->filePath(QStringLiteral("app"));
}

QString medium()
{
    return cartella->filePath(QStringLiteral("medium"));
}

QByteArray contenuto(const QString &file)
{
    QFile f(file);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void scrivi(const QString &file, const QByteArray &byte)
{
    for (const char *resto : {"", "-journal", "-wal", "-shm"})
        QFile::remove(file + QLatin1String(resto));
    QFile f(file);
    if (!f.open(QIODevice::WriteOnly) || f.write(byte) != byte.size())
        std::abort();
}

// One archive: where its file lies, and the page's first question, which tells whether the
// archive was refused.
struct Caso
{
    QString file;
    std::function<EsitoArchivio()> domanda;
};

const ChiaveMappa Mappa{QStringLiteral("LPG"), QStringLiteral("FIAT"), QStringLiteral("PUNTO"),
                        QStringLiteral("BASE")};
const IdentitaEcu Ecu{QStringLiteral("KV2ABC12345678"), QStringLiteral("LPG-SEQ-02"), QStringLiteral("R2")};

QList<Caso> casi()
{
    const QString a = app();
    const auto mappe = [a] {
        EsitoArchivio esito;
        const AlberoMappe albero = AlberoMappe::Carica(a, &esito);
        if (!esito.ok())
            return esito;
        return CaricaMappaArchiviata(a, Mappa).archivio;
    };
    const auto software = [a] {
        EsitoArchivio esito;
        const QList<VoceSoftware> voci = ElencoSoftware(a, &esito);
        if (esito.ok() && !voci.isEmpty())
            LeggiSchedaSoftware(a, voci.first().nome);
        return esito;
    };
    const auto schede = [a] {
        static AnelloRegistrazione anello;
        SchedaRegistrazione scheda(a, anello);
        if (!scheda.Apri())
            return scheda.esitoArchivio();
        const QList<SchedaRegistrazione::Voce> voci = scheda.ElencoEsi({}, {});
        if (!voci.isEmpty())
            scheda.LeggiScheda(voci.first());
        return scheda.esitoArchivio();
    };
    const auto storico = [a] {
        EsitoArchivio esito;
        const QList<VoceStorico> voci = ElencaStorico(a, Ecu, &esito);
        if (esito.ok() && !voci.isEmpty())
            LeggiStorico(a, Ecu, voci.first().quando, &esito);
        return esito;
    };
    const QString m = medium();
    const auto discoMappe = [a, m] {
        const SorgenteMappe s = LeggiDiscoMappe(a, m);
        return EsitoArchivio{s.esito.fatto ? ErroreArchivio::Nessuno : ErroreArchivio::FileEstraneo, {}, {}};
    };
    const auto discoSoftware = [a, m] {
        const SorgenteSoftware s = LeggiDiscoSoftware(a, m);
        return EsitoArchivio{s.esito.fatto ? ErroreArchivio::Nessuno : ErroreArchivio::FileEstraneo, {}, {}};
    };
    const auto in = [](const QString &radice, QLatin1String sotto, QLatin1String file) {
        return QDir(radice).filePath(sotto + u'/' + file);
    };
    return {
        {in(a, FileArchivi::CartellaMappe, FileArchivi::FileMappe), mappe},
        {in(a, FileArchivi::CartellaSoftware, FileArchivi::FileSoftware), software},
        {in(a, FileArchivi::CartellaDati, FileArchivi::FileDati), schede},
        {in(a, FileStorico::Cartella, FileStorico::File), storico},
        {QDir(m).filePath(FileArchivi::FileTempMappe), discoMappe},
        {QDir(m).filePath(FileArchivi::FileTempSoftware), discoSoftware},
    };
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // QSqlDatabase needs an application object; one for the whole run.
    new QCoreApplication(*argc, *argv);
    // In memory where there is such a folder: every open commits, and a commit waits for the disk.
    const QString base = QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm/kv-fuzz-XXXXXX")
                                                                   : QDir::tempPath() + "/kv-fuzz-XXXXXX";
    cartella = new QTemporaryDir(base);
    if (!cartella->isValid())
        std::abort();
    // A map and a software on disk, so that the pages go on from the list to the entry.
    QDir().mkpath(app() + "/MAPPATURE/LPG/FIAT/PUNTO");
    QDir().mkpath(app() + "/SOFTWARE/FILES19");
    QDir().mkpath(medium() + "/LPG/FIAT/PUNTO");
    QDir().mkpath(medium() + "/FILES19");
    QDir().mkpath(app() + "/DATI");
    QDir().mkpath(app() + "/STORICO");
    const QByteArray mappa = QByteArray(128, 'F') + "\r\n";
    scrivi(app() + "/MAPPATURE/LPG/FIAT/PUNTO/BASE.LKV", mappa.repeated(8));
    scrivi(medium() + "/LPG/FIAT/PUNTO/BASE.LKV", mappa.repeated(8));
    scrivi(app() + "/SOFTWARE/FILES19/KV2.S19", "S9030000FC\r\n");
    scrivi(medium() + "/FILES19/KV2.S19", "S9030000FC\r\n");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *dati, size_t dimensione)
{
    static const QList<Caso> tutti = casi();
    const QByteArray byte(reinterpret_cast<const char *>(dati), static_cast<qsizetype>(dimensione));
    for (const Caso &c : tutti) {
        scrivi(c.file, byte);
        const bool suMedium = c.file.startsWith(medium());
        if (!c.domanda().ok()) {
            if (contenuto(c.file) != byte)
                std::abort();
            continue;
        }
        const QByteArray aperto = contenuto(c.file);
        if (suMedium ? aperto != byte : !c.domanda().ok() || contenuto(c.file) != aperto)
            std::abort();
    }
    return 0;
}
