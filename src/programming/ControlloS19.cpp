#include "programming/ControlloS19.h"

#include "programming/ImmagineS19.h"

#include <QFile>

namespace kv {

namespace {

// A release is a few tens of kilobytes; a file far beyond is no S19 file, and is not read.
constexpr qint64 DimensioneMassima = 16 * 1024 * 1024;

int cifra(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

bool vuota(QByteArrayView riga)
{
    for (const char c : riga)
        if (c != ' ' && c != '\t')
            return false;
    return true;
}

EsitoS19 errore(EsitoS19::Errore e, int riga, int colonna = 0)
{
    EsitoS19 esito;
    esito.errore = e;
    esito.riga = riga;
    esito.colonna = colonna;
    return esito;
}

} // namespace

EsitoS19 ControllaS19(QByteArrayView testo)
{
    using E = EsitoS19::Errore;
    int numero = 0;
    int ultimaPiena = 0;
    int recordS1 = 0;
    int fine = 0; // the line of the end record
    bool nellArea = false;
    for (qsizetype inizio = 0; inizio < testo.size();) {
        qsizetype f = inizio;
        while (f < testo.size() && testo[f] != '\n' && testo[f] != '\r')
            ++f;
        const QByteArrayView riga = testo.sliced(inizio, f - inizio);
        inizio = f + (f + 1 < testo.size() && testo[f] == '\r' && testo[f + 1] == '\n' ? 2 : 1);
        ++numero;
        if (vuota(riga))
            continue;
        if (fine)
            return errore(E::DopoFine, numero);
        ultimaPiena = numero;
        // The conversion takes only lines that start "S1" exactly: anything else it would drop
        // without a word, and the ECU would get 0xFF in its place.
        if (riga.size() < 2 || riga[0] != 'S' || riga[1] < '0' || riga[1] > '9')
            return errore(E::NonRecord, numero);
        const char tipo = riga[1];
        if (tipo != '0' && tipo != '1' && tipo != '5' && tipo != '9')
            return errore(E::Tipo, numero);
        for (qsizetype c = 2; c < riga.size(); ++c)
            if (cifra(riga[c]) < 0)
                return errore(E::NonEsadecimale, numero, int(c + 1));
        // Count, two address bytes and the checksum at the least; the count covers all but itself.
        const qsizetype byte = (riga.size() - 2) / 2;
        const int conteggio = riga.size() >= 4 ? cifra(riga[2]) * 16 + cifra(riga[3]) : -1;
        if ((riga.size() - 2) % 2 != 0 || byte < 4 || conteggio != byte - 1)
            return errore(E::Lunghezza, numero);
        quint32 somma = 0;
        for (qsizetype b = 0; b < byte; ++b)
            somma += quint32(cifra(riga[2 + 2 * b]) * 16 + cifra(riga[3 + 2 * b]));
        if ((somma & 0xFF) != 0xFF)
            return errore(E::Somma, numero);
        const quint32 indirizzo =
            quint32(cifra(riga[4]) << 12 | cifra(riga[5]) << 8 | cifra(riga[6]) << 4 | cifra(riga[7]));
        const qsizetype dati = byte - 4;
        switch (tipo) {
        case '1':
            ++recordS1;
            nellArea =
                nellArea
                || (dati > 0 && indirizzo <= ImmagineSW::Fine && indirizzo + dati - 1 >= ImmagineSW::Inizio);
            break;
        case '5':
            if (indirizzo != quint32(recordS1))
                return errore(E::Conteggio, numero);
            break;
        case '9':
            fine = numero;
            break;
        default:
            break;
        }
    }
    if (ultimaPiena == 0)
        return errore(E::NessunDato, 0);
    if (!fine)
        return errore(E::FineMancante, ultimaPiena);
    if (!nellArea)
        return errore(E::NessunDato, 0);
    return {};
}

EsitoS19 LeggiS19(const QString &percorso, QByteArray *contenuto)
{
    QFile f(percorso);
    if (!f.open(QIODevice::ReadOnly))
        return errore(EsitoS19::Errore::Illeggibile, 0);
    const QByteArray testo = f.read(DimensioneMassima + 1);
    if (f.error() != QFileDevice::NoError || testo.size() > DimensioneMassima)
        return errore(EsitoS19::Errore::Illeggibile, 0);
    if (contenuto)
        *contenuto = testo;
    return ControllaS19(testo);
}

} // namespace kv
