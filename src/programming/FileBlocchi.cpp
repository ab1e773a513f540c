#include "programming/FileBlocchi.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

quint32 ValoreEsadecimale(QByteArrayView testo)
{
    quint32 valore = 0;
    for (const char c : testo) {
        int cifra;
        if (c >= '0' && c <= '9')
            cifra = c - '0';
        else if (c >= 'A' && c <= 'F')
            cifra = c - 'A' + 10;
        else if (c >= 'a' && c <= 'f')
            cifra = c - 'a' + 10;
        else
            break;
        valore = valore << 4 | quint32(cifra);
    }
    return valore;
}

QByteArray RecordBlocco(QByteArrayView dati)
{
    return QByteArray(dati.data(), dati.size()).toHex().toUpper() + "\r\n";
}

QByteArray DecodificaRecord(QByteArrayView record)
{
    const QByteArrayView corpo = record.first(qMax<qsizetype>(0, record.size() - 2));
    QByteArray byte;
    byte.reserve(corpo.size() / 2);
    for (qsizetype i = 0; i + 1 < corpo.size(); i += 2)
        byte.append(char(ValoreEsadecimale(corpo.sliced(i, 2))));
    return byte;
}

QByteArray LeggiBlocco(const QString &percorso, qint64 numero)
{
    if (numero < 1)
        return {};
    QFile f(percorso);
    if (!f.open(QIODevice::ReadOnly) || !f.seek((numero - 1) * LunghezzaRecord))
        return {};
    QByteArray record = f.read(LunghezzaRecord);
    if (record.isEmpty())
        return {};
    record.append(QByteArray(LunghezzaRecord - record.size(), '\0'));
    return DecodificaRecord(record);
}

double NumeroBlocchi(const QString &percorso)
{
    return double(QFileInfo(percorso).size()) / LunghezzaRecord;
}

bool AggiungiRecord(const QString &percorso, QByteArrayView dati)
{
    QFile f(percorso);
    const QByteArray record = RecordBlocco(dati);
    if (QFileInfo(percorso).isSymLink() || !f.open(QIODevice::Append) || f.write(record) != record.size())
        return false;
    // The write only fills Qt's buffer: a full disk shows at the flush, or at the close.
    if (!f.flush())
        return false;
    f.close();
    return f.error() == QFileDevice::NoError;
}

} // namespace kv
