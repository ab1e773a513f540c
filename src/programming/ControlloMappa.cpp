#include "programming/ControlloMappa.h"

#include "programming/FileBlocchi.h"
#include "programming/FileMappa.h"

#include <QFile>

namespace kv {

namespace {

bool cifraEsadecimale(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
}

EsitoMappa errore(EsitoMappa::Errore e, int record, int colonna = 0)
{
    EsitoMappa esito;
    esito.errore = e;
    esito.record = record;
    esito.colonna = colonna;
    return esito;
}

} // namespace

EsitoMappa ControllaMappa(const QByteArray &contenuto)
{
    constexpr int cifre = LunghezzaRecord - 2;
    QByteArray immagine;
    immagine.reserve(FileMappa::Dimensione);
    for (int n = 0; n < FileMappa::Blocchi; ++n) {
        const qsizetype inizio = qsizetype(n) * LunghezzaRecord;
        const QByteArray record = contenuto.mid(inizio, LunghezzaRecord);
        // Characters are looked at before the length, so a short record full of text still
        // says where its text goes wrong.
        for (int i = 0; i < qMin<qsizetype>(record.size(), cifre); ++i) {
            if (!cifraEsadecimale(record.at(i)))
                return errore(EsitoMappa::Errore::NonEsadecimale, n + 1, i + 1);
        }
        if (record.size() < LunghezzaRecord)
            return errore(EsitoMappa::Errore::Corto, n + 1);
        if (record.at(cifre) != '\r' || record.at(cifre + 1) != '\n')
            return errore(EsitoMappa::Errore::FineRiga, n + 1);
        immagine.append(DecodificaRecord(record));
    }
    if (contenuto.size() > FileMappa::DimensioneFile)
        return errore(EsitoMappa::Errore::Lungo, 0);
    EsitoMappa esito;
    esito.immagine = immagine;
    return esito;
}

EsitoMappa LeggiMappa(const QString &percorso)
{
    QFile f(percorso);
    if (!f.open(QIODevice::ReadOnly))
        return errore(EsitoMappa::Errore::Illeggibile, 0);
    const QByteArray contenuto = f.read(FileMappa::DimensioneFile + 1);
    if (f.error() != QFileDevice::NoError)
        return errore(EsitoMappa::Errore::Illeggibile, 0);
    return ControllaMappa(contenuto);
}

Messaggio MessaggioEsitoMappa(const EsitoMappa &esito)
{
    return Messaggio("ProgMappe", "MAPPA." + QString::number(int(esito.errore)))
        .ritaglia()
        .con(QStringLiteral("XXX"), QString::number(esito.record))
        .con(QStringLiteral("YYY"), QString::number(esito.colonna));
}

} // namespace kv
