#include "base/Configurazione.h"

#include "base/FileIni.h"
#include "base/FileSystem.h"

#include <QFile>
#include <QSerialPortInfo>

#include <algorithm>
#include <cerrno>
#include <cmath>

#include <sys/stat.h>

namespace kv {

namespace {

bool cifra(QChar c)
{
    return c >= u'0' && c <= u'9';
}

// The longest numeric prefix (blanks before it skipped, sign, decimals, exponent), 0 when
// there is none: how the INI values have always been read.
double numeroIniziale(QStringView testo)
{
    qsizetype i = 0;
    while (i < testo.size() && (testo[i] == u' ' || testo[i] == u'\t'))
        ++i;
    const qsizetype inizio = i;
    if (i < testo.size() && (testo[i] == u'+' || testo[i] == u'-'))
        ++i;
    qsizetype cifre = 0;
    while (i < testo.size() && cifra(testo[i])) {
        ++i;
        ++cifre;
    }
    if (i < testo.size() && testo[i] == u'.') {
        ++i;
        while (i < testo.size() && cifra(testo[i])) {
            ++i;
            ++cifre;
        }
    }
    if (cifre == 0)
        return 0;
    qsizetype fine = i;
    if (i < testo.size() && (testo[i] == u'e' || testo[i] == u'E')) {
        qsizetype j = i + 1;
        if (j < testo.size() && (testo[j] == u'+' || testo[j] == u'-'))
            ++j;
        if (j < testo.size() && cifra(testo[j])) {
            while (j < testo.size() && cifra(testo[j]))
                ++j;
            fine = j;
        }
    }
    bool ok = false;
    const double v = testo.sliced(inizio, fine - inizio).toDouble(&ok);
    return ok && std::isfinite(v) ? v : 0;
}

// Digit runs compare by value, so ttyS2 comes before ttyS10.
bool primaNaturale(const QString &a, const QString &b)
{
    qsizetype i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (cifra(a[i]) && cifra(b[j])) {
            qsizetype fa = i, fb = j;
            while (fa < a.size() && cifra(a[fa]))
                ++fa;
            while (fb < b.size() && cifra(b[fb]))
                ++fb;
            QStringView na = QStringView(a).sliced(i, fa - i);
            QStringView nb = QStringView(b).sliced(j, fb - j);
            while (na.size() > 1 && na.front() == u'0')
                na = na.sliced(1);
            while (nb.size() > 1 && nb.front() == u'0')
                nb = nb.sliced(1);
            if (na.size() != nb.size())
                return na.size() < nb.size();
            if (const int c = na.compare(nb); c != 0)
                return c < 0;
            i = fa;
            j = fb;
        } else {
            if (a[i] != b[j])
                return a[i] < b[j];
            ++i;
            ++j;
        }
    }
    if ((a.size() - i) != (b.size() - j))
        return (a.size() - i) < (b.size() - j);
    return a < b;
}

} // namespace

QString PercorsoIni(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, QStringLiteral("KORVANTINE.INI"));
}

QString NomeDispositivo(const QString &porta, int portaCom, const QStringList &porti)
{
    if (porta.startsWith(u'/'))
        return porta;
    QStringList ordinati = porti;
    std::stable_sort(ordinati.begin(), ordinati.end(), primaNaturale);
    return portaCom >= 1 && portaCom <= ordinati.size() ? ordinati.at(portaCom - 1) : QString();
}

ImpSeriale ImpSerialeDaTesti(const QString &porta, const QString &baudRate, const QStringList &porti)
{
    ImpSeriale imp;
    imp.Porta = porta;
    if (!porta.startsWith(u'/')) {
        // Rounded half to even, as the 16-bit conversion always did; the range test comes
        // first so that no huge number is ever converted.
        const double numero = std::nearbyint(numeroIniziale(QStringView(porta).mid(3)));
        imp.PortaCom = (numero >= 1 && numero <= 10) ? static_cast<int>(numero) : 1;
    }
    const double velocita = numeroIniziale(baudRate);
    for (const qint32 ammessa : {4800, 9600, 19200, 38400}) {
        if (velocita == ammessa)
            imp.VelocitaCom = ammessa;
    }
    imp.nomeDispositivo = NomeDispositivo(porta, imp.PortaCom, porti);
    return imp;
}

ImpSeriale LeggiImpSeriale(const QString &percorsoIni, const QStringList &porti)
{
    const FileIni ini = FileIni::daFile(percorsoIni);
    return ImpSerialeDaTesti(
        ini.valore(QStringLiteral("SERIALE"), QStringLiteral("Porta"), QStringLiteral("COM1")),
        ini.valore(QStringLiteral("SERIALE"), QStringLiteral("BaudRate"), QStringLiteral("9600")), porti);
}

QStringList PortiSeriali()
{
    return PercorsiDi(PorteDisponibili());
}

QList<PortaDisponibile> PorteDisponibili()
{
    // The system is asked once: each question walks every device it has.
    QList<PortaDisponibile> porte;
    for (const QSerialPortInfo &i : QSerialPortInfo::availablePorts()) {
        QStringList parti;
        if (!i.description().isEmpty())
            parti << i.description();
        if (!i.manufacturer().isEmpty() && !i.description().contains(i.manufacturer()))
            parti << i.manufacturer();
        porte.append({i.systemLocation(), parti.join(QStringLiteral(", "))});
    }
    std::stable_sort(porte.begin(), porte.end(), [](const PortaDisponibile &a, const PortaDisponibile &b) {
        return primaNaturale(a.percorso, b.percorso);
    });
    return porte;
}

QStringList PercorsiDi(const QList<PortaDisponibile> &porte)
{
    QStringList percorsi;
    for (const PortaDisponibile &porta : porte)
        percorsi << porta.percorso;
    return percorsi;
}

QList<VocePorta> ElencoPorte(const QList<PortaDisponibile> &porte)
{
    const auto descrizioneDi = [](const PortaDisponibile &porta) {
        return porta.descrizione.isEmpty()
                   ? porta.percorso
                   : QStringLiteral("%1  \u2013  %2").arg(porta.percorso, porta.descrizione);
    };
    const QStringList percorsi = PercorsiDi(porte);
    QList<VocePorta> voci;
    for (int n = 1; n <= PorteCom; ++n) {
        const QString com = QStringLiteral("COM%1").arg(n);
        VocePorta voce{com, com, NomeDispositivo(com, n, percorsi), {}};
        for (const PortaDisponibile &porta : porte) {
            if (porta.percorso == voce.dispositivo && !voce.dispositivo.isEmpty()) {
                voce.testo = QStringLiteral("%1   (%2)").arg(com, descrizioneDi(porta));
                voce.descrizione = porta.descrizione;
            }
        }
        voci.append(voce);
    }
    for (const PortaDisponibile &porta : porte)
        voci.append({descrizioneDi(porta), porta.percorso, porta.percorso, porta.descrizione});
    return voci;
}

EsitoDispositivo ControllaDispositivo(const QString &testo)
{
    const QString t = testo.trimmed();
    if (!t.startsWith(u'/') || t.size() < 2)
        return EsitoDispositivo::NonPercorso;
    for (QChar c : t)
        if (c.category() == QChar::Other_Control)
            return EsitoDispositivo::NonPercorso;
    struct stat info
    {};
    if (::stat(QFile::encodeName(t).constData(), &info) != 0)
        return errno == ENOENT ? EsitoDispositivo::Valido : EsitoDispositivo::NonDispositivo;
    return S_ISCHR(info.st_mode) ? EsitoDispositivo::Valido : EsitoDispositivo::NonDispositivo;
}

bool scriviImpSeriale(const QString &percorsoIni, const QString &porta, qint32 baud)
{
    FileIni::StatoLettura stato;
    FileIni ini = FileIni::daFile(percorsoIni, &stato);
    if (stato == FileIni::StatoLettura::Errore)
        return false;
    return ini.imposta(QStringLiteral("SERIALE"), QStringLiteral("Porta"), porta)
           && ini.imposta(QStringLiteral("SERIALE"), QStringLiteral("Baudrate"), QString::number(baud))
           && ini.salva(percorsoIni);
}

} // namespace kv
