#include "variables/Formato.h"

#include <QLocale>

#include <cmath>

namespace kv {

namespace {

struct Maschera
{
    int cifreIntereMinime = 0;
    int decimaliMinimi = 0;
    int decimaliMassimi = 0;
};

Maschera leggiMaschera(const QString &mask)
{
    Maschera m;
    const qsizetype punto = mask.indexOf(QLatin1Char('.'));
    const QStringView intera = punto < 0 ? QStringView(mask) : QStringView(mask).left(punto);
    for (QChar c : intera) {
        if (c == QLatin1Char('0'))
            ++m.cifreIntereMinime;
    }
    if (punto >= 0) {
        for (QChar c : QStringView(mask).mid(punto + 1)) {
            if (c == QLatin1Char('#')) {
                ++m.decimaliMassimi;
            } else if (c == QLatin1Char('0')) {
                ++m.decimaliMassimi;
                m.decimaliMinimi = m.decimaliMassimi;
            }
        }
    }
    return m;
}

// Adds one unit in the last place of a string of decimal digits; a carry out of the top
// digit makes the string one longer.
void aggiungiUnita(QString &cifre)
{
    for (qsizetype i = cifre.size() - 1; i >= 0; --i) {
        if (cifre[i] == QLatin1Char('9')) {
            cifre[i] = QLatin1Char('0');
        } else {
            cifre[i] = QChar(cifre[i].unicode() + 1);
            return;
        }
    }
    cifre.prepend(QLatin1Char('1'));
}

bool soloZeri(const QString &cifre)
{
    for (QChar c : cifre) {
        if (c != QLatin1Char('0'))
            return false;
    }
    return true;
}

} // namespace

QString FormattaNumero(double v, const QString &mask)
{
    if (!std::isfinite(v))
        return {};
    if (v == 0)
        v = 0; // no "-0"

    // Rounding works on the shortest decimal text of the value, so 2.675 rounds like the
    // number the user sees and not like its binary neighbour 2.67499...
    const QString esatto = QString::number(std::fabs(v), 'f', QLocale::FloatingPointShortest);
    if (mask.isEmpty())
        return v < 0 ? QLatin1Char('-') + esatto : esatto;

    const Maschera m = leggiMaschera(mask);
    const qsizetype punto = esatto.indexOf(QLatin1Char('.'));
    QString intera = punto < 0 ? esatto : esatto.left(punto);
    QString decimali = punto < 0 ? QString() : esatto.mid(punto + 1);

    if (decimali.size() > m.decimaliMassimi) {
        const bool perEccesso = decimali[m.decimaliMassimi] >= QLatin1Char('5');
        decimali.truncate(m.decimaliMassimi);
        if (perEccesso) {
            QString tutte = intera + decimali;
            aggiungiUnita(tutte);
            intera = tutte.left(tutte.size() - decimali.size());
            decimali = tutte.right(decimali.size());
        }
    }
    while (decimali.size() > m.decimaliMinimi && decimali.endsWith(QLatin1Char('0')))
        decimali.chop(1);
    while (decimali.size() < m.decimaliMinimi)
        decimali.append(QLatin1Char('0'));

    qsizetype zeri = 0;
    while (zeri < intera.size() && intera[zeri] == QLatin1Char('0'))
        ++zeri;
    intera.remove(0, zeri);
    if (intera.size() < m.cifreIntereMinime)
        intera.prepend(QString(m.cifreIntereMinime - intera.size(), QLatin1Char('0')));

    QString testo = intera;
    if (!decimali.isEmpty())
        testo += QLatin1Char('.') + decimali;
    if (v < 0 && !(soloZeri(intera) && soloZeri(decimali)))
        testo.prepend(QLatin1Char('-'));
    return testo;
}

double ValNumero(const QString &testo)
{
    QString s = testo;
    const qsizetype virgola = s.indexOf(QLatin1Char(','));
    if (virgola >= 0)
        s[virgola] = QLatin1Char('.');

    const qsizetype n = s.size();
    qsizetype i = 0;
    while (i < n && (s[i] == QLatin1Char(' ') || s[i] == QLatin1Char('\t')))
        ++i;
    const qsizetype inizio = i;
    if (i < n && (s[i] == QLatin1Char('+') || s[i] == QLatin1Char('-')))
        ++i;

    qsizetype cifre = 0;
    while (i < n && s[i].isDigit() && s[i].unicode() < 128) {
        ++i;
        ++cifre;
    }
    if (i < n && s[i] == QLatin1Char('.')) {
        ++i;
        while (i < n && s[i].isDigit() && s[i].unicode() < 128) {
            ++i;
            ++cifre;
        }
    }
    if (cifre == 0)
        return 0;

    qsizetype fine = i;
    if (i < n && (s[i] == QLatin1Char('e') || s[i] == QLatin1Char('E'))) {
        qsizetype j = i + 1;
        if (j < n && (s[j] == QLatin1Char('+') || s[j] == QLatin1Char('-')))
            ++j;
        const qsizetype inizioEsponente = j;
        while (j < n && s[j].isDigit() && s[j].unicode() < 128)
            ++j;
        if (j > inizioEsponente)
            fine = j;
    }

    bool ok = false;
    const double valore = QStringView(s).mid(inizio, fine - inizio).toDouble(&ok);
    if (!ok || !std::isfinite(valore))
        return 0;
    return valore;
}

} // namespace kv
