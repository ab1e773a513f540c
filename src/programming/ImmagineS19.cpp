#include "programming/ImmagineS19.h"

#include "base/Cp1252.h"
#include "base/FileSystem.h"
#include "link/StatoEcu.h"
#include "programming/FileBlocchi.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

namespace {

// A release is a few tens of kilobytes; anything far beyond is no S19 file.
constexpr qint64 DimensioneMassimaS19 = 16 * 1024 * 1024;

struct Stringa
{
    qint64 inizio;
    QByteArrayView testo;
};

QByteArray lunghezzaFissa(const QString &testo, int lunghezza)
{
    return Cp1252::codifica(testo).left(lunghezza).leftJustified(lunghezza, ' ');
}

// Mid(testo, posizione, n) of the 1-based world: as much as there is.
QByteArrayView mid(QByteArrayView testo, qsizetype posizione, qsizetype n)
{
    const qsizetype da = qMin(posizione - 1, testo.size());
    return testo.sliced(da, qMin(n, testo.size() - da));
}

// Puts the identification over the line's data text. False when a character would fall
// outside it.
bool sovrapponiIdentificazione(QByteArray &dati, qint64 indirizzo, qint64 ultimo,
                               const TestiIdentificazione &t)
{
    const Stringa stringhe[] = {{0xC040, t.codice}, {0xC04E, t.datoA}, {0xC058, t.datoB}};
    for (const Stringa &s : stringhe) {
        const qint64 d = s.inizio - indirizzo;
        for (qint64 i = 1; i <= s.testo.size(); ++i) {
            // The tool's own test, minus sign and all: once the line reaches the string's
            // first address, the end of the string is no longer checked against the line.
            if (ultimo < s.inizio - (i - 1))
                continue;
            const qint64 posizione = (i + d - 1) * 2 + 1;
            if (posizione < 1 || posizione > dati.size())
                return false;
            const QByteArray cifre =
                QByteArray::number(quint8(s.testo[i - 1]), 16).toUpper().rightJustified(2, '0');
            const qsizetype n = qMin<qsizetype>(2, dati.size() - posizione + 1);
            dati.replace(posizione - 1, n, cifre.left(n));
        }
    }
    return true;
}

} // namespace

QString PercorsoFileSW(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, QLatin1String(ImmagineSW::NomeFile));
}

TestiIdentificazione TestiIdentificazioneDi(const StatoEcu &stato)
{
    return {lunghezzaFissa(stato.InfCodice, 14), lunghezzaFissa(stato.InfDatoA, 10),
            lunghezzaFissa(stato.InfDatoB, 4)};
}

QByteArray FileSWVuoto()
{
    return (QByteArray(128, 'F') + "\r\n").repeated(ImmagineSW::Blocchi);
}

bool PreparaFileSW(const QString &percorso)
{
    if (QFileInfo(percorso).isSymLink())
        return false;
    QFile f(percorso);
    const QByteArray vuoto = FileSWVuoto();
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(vuoto) == vuoto.size();
}

bool SovrapponiS19(QByteArrayView s19, QByteArray &blocchi, const TestiIdentificazione &testi)
{
    if (blocchi.size() < ImmagineSW::DimensioneFile)
        return false;
    qsizetype inizioRiga = 0;
    while (inizioRiga < s19.size()) {
        qsizetype fine = inizioRiga;
        while (fine < s19.size() && s19[fine] != '\n' && s19[fine] != '\r')
            ++fine;
        const QByteArrayView riga = s19.sliced(inizioRiga, fine - inizioRiga);
        inizioRiga = fine + (fine + 1 < s19.size() && s19[fine] == '\r' && s19[fine + 1] == '\n' ? 2 : 1);

        if (!riga.startsWith("S1"))
            continue;
        const qint64 indirizzo =
            qint64(ValoreEsadecimale(mid(riga, 5, 2))) * 256 + ValoreEsadecimale(mid(riga, 7, 2));
        QByteArray dati = riga.size() > 10 ? riga.sliced(8, riga.size() - 10).toByteArray() : QByteArray();
        const qint64 ultimo = indirizzo + dati.size() / 2 - 1;

        const bool tieneCodice = !(ultimo < 0xC040 || indirizzo > 0xC040);
        const bool tieneFine = !(ultimo < 0xC05B || indirizzo > 0xC05B);
        if ((tieneCodice || tieneFine) && !sovrapponiIdentificazione(dati, indirizzo, ultimo, testi))
            return false;

        for (qsizetype i = 0; i < dati.size(); i += 2) {
            const qint64 a = indirizzo + i / 2;
            if (a < ImmagineSW::Inizio || a > ImmagineSW::Fine)
                continue;
            const qint64 scarto = a - ImmagineSW::Inizio;
            const qsizetype posizione =
                qsizetype(scarto / LunBlocco * LunghezzaRecord + scarto % LunBlocco * 2);
            const qsizetype n = qMin<qsizetype>(2, dati.size() - i);
            blocchi.replace(posizione, n, dati.constData() + i, n);
        }
    }
    return true;
}

bool ConvertiS19(const QString &fileS19, const QString &fileBlocchi, const StatoEcu &stato)
{
    QFile s19(fileS19);
    if (!s19.open(QIODevice::ReadOnly) || s19.size() > DimensioneMassimaS19)
        return false;
    const QByteArray testo = s19.read(DimensioneMassimaS19 + 1);
    if (testo.size() > DimensioneMassimaS19 || s19.error() != QFileDevice::NoError)
        return false;
    s19.close();

    if (QFileInfo(fileBlocchi).isSymLink())
        return false;
    QFile blocchi(fileBlocchi);
    if (!blocchi.open(QIODevice::ReadWrite | QIODevice::ExistingOnly))
        return false;
    QByteArray immagine = blocchi.readAll();
    if (immagine.size() < ImmagineSW::DimensioneFile)
        return false;
    const bool ok = SovrapponiS19(testo, immagine, TestiIdentificazioneDi(stato));
    const bool scritto = blocchi.seek(0) && blocchi.write(immagine) == immagine.size() && blocchi.flush();
    return ok && scritto;
}

QByteArray LeggiBloccoSW(const QString &percorsoApp, qint32 numero)
{
    return LeggiBlocco(PercorsoFileSW(percorsoApp), numero);
}

} // namespace kv
