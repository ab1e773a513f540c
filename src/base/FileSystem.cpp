#include "base/FileSystem.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTime>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace kv {

namespace {

QString cartellaDaElencare(const QString &cartella)
{
    return cartella.isEmpty() ? QStringLiteral("/") : cartella;
}

bool haJolly(const QString &testo)
{
    return testo.contains(u'*') || testo.contains(u'?');
}

// '*' any run, '?' one character, case-blind; linear with one point of backtracking.
bool corrisponde(QStringView modello, QStringView nome)
{
    qsizetype m = 0, n = 0, stella = -1, ripresa = 0;
    while (n < nome.size()) {
        if (m < modello.size()
            && (modello[m] == u'?'
                || QChar::toCaseFolded(modello[m].unicode()) == QChar::toCaseFolded(nome[n].unicode()))) {
            ++m;
            ++n;
        } else if (m < modello.size() && modello[m] == u'*') {
            stella = m++;
            ripresa = n;
        } else if (stella >= 0) {
            m = stella + 1;
            n = ++ripresa;
        } else {
            return false;
        }
    }
    while (m < modello.size() && modello[m] == u'*')
        ++m;
    return m == modello.size();
}

bool corrispondeDos(const QString &modello, const QString &nome)
{
    if (corrisponde(modello, nome))
        return true;
    // "*." is the directory search's way of asking for names without extension.
    return modello.endsWith(u'.') && !nome.contains(u'.') && corrisponde(modello.chopped(1), nome);
}

} // namespace

qint16 CreaCartella(const QString &percorso)
{
    QString p = percorso.trimmed();
    if (p.isEmpty())
        return 0;
    while (p.size() > 1 && p.endsWith(u'/'))
        p.chop(1);
    if (QFileInfo(p).isDir())
        return -1;
    return QDir().mkpath(p) ? -1 : 0;
}

qint16 EsisteFile(const QString &percorso, int attributi)
{
    if (percorso.isEmpty())
        return 0;
    const bool cartelle = (attributi & 16) != 0;
    const qsizetype barra = percorso.lastIndexOf(u'/');
    const QString cartella = barra < 0 ? QStringLiteral(".") : percorso.left(barra);
    const QString modello = percorso.mid(barra + 1);

    if (modello.isEmpty())
        return cartelle && QFileInfo(cartellaDaElencare(cartella)).isDir() ? -1 : 0;

    if (!haJolly(modello)) {
        const QString trovato = TrovaFile(cartella, modello);
        if (trovato.isEmpty())
            return 0;
        const QFileInfo info(trovato);
        return (cartelle ? info.isDir() : info.isFile()) ? -1 : 0;
    }

    QDir dir(cartellaDaElencare(cartella));
    if (!dir.exists())
        return 0;
    QDir::Filters filtri = QDir::Hidden | QDir::System;
    filtri |= cartelle ? QDir::Dirs : QDir::Files;
    const QStringList nomi = dir.entryList(filtri);
    for (const QString &nome : nomi) {
        if (corrispondeDos(modello, nome))
            return -1;
    }
    return 0;
}

void AttesaSecondi(double secondi, const std::function<int()> &millisecondiDelGiorno)
{
    if (!(secondi > 0) || !millisecondiDelGiorno)
        return;
    constexpr qint64 Giorno = 86400 * 1000;
    // Summed step by step, so that a wait longer than a day or across midnight still ends.
    const double attesa = std::min(secondi * 1000.0, 1e15);
    qint64 precedente = millisecondiDelGiorno();
    double trascorso = 0;
    while (trascorso < attesa) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        const qint64 adesso = millisecondiDelGiorno();
        qint64 passo = adesso - precedente;
        if (passo < 0)
            passo += Giorno;
        trascorso += static_cast<double>(passo);
        precedente = adesso;
    }
}

void AttesaSecondi(double secondi)
{
    AttesaSecondi(secondi, [] { return QTime::currentTime().msecsSinceStartOfDay(); });
}

QString TrovaFile(const QString &cartella, const QString &nome)
{
    if (nome.isEmpty())
        return {};
    const QString esatto = cartella + u'/' + nome;
    const QFileInfo info(esatto);
    if (info.exists() || info.isSymLink())
        return esatto;
    if (nome.contains(u'/'))
        return {};
    QDir dir(cartellaDaElencare(cartella));
    const QStringList nomi =
        dir.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
    for (const QString &candidato : nomi) {
        if (candidato.compare(nome, Qt::CaseInsensitive) == 0)
            return cartella + u'/' + candidato;
    }
    return {};
}

QString PercorsoFile(const QString &cartella, const QString &nome)
{
    const QString trovato = TrovaFile(cartella, nome);
    return trovato.isEmpty() ? cartella + u'/' + nome : trovato;
}

bool ScriviFileIntero(const QString &percorso, QByteArrayView byte)
{
    QSaveFile f(percorso);
    f.setDirectWriteFallback(false);
    if (!f.open(QIODevice::WriteOnly) || f.write(byte.data(), byte.size()) != byte.size())
        return false;
    // commit() closes the file without looking at the flush that a buffered write leaves for
    // the close: a full disk there would still commit a cut file. The flush is done first.
    if (!f.flush()) {
        f.cancelWriting();
        return false;
    }
    return f.commit();
}

bool NomeRiservato(const QString &nome)
{
    // Windows drops blanks before the extension too: "con .txt" is CON.
    const QString base = nome.section(u'.', 0, 0).trimmed().toUpper();
    if (base == u"CON" || base == u"PRN" || base == u"AUX" || base == u"NUL")
        return true;
    return base.size() == 4 && (base.startsWith(u"COM") || base.startsWith(u"LPT")) && base.at(3) >= u'1'
           && base.at(3) <= u'9';
}

} // namespace kv
