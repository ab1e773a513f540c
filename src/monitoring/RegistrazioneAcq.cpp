#include "monitoring/RegistrazioneAcq.h"

#include "base/Cp1252.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace kv {

namespace {

// A recorder's line is 107 characters and its line end; anything far longer is no line of a
// recording, and is skipped without being kept whole in memory.
constexpr std::size_t LungaRiga = 1024;
constexpr std::size_t Pezzo = std::size_t(1) << 20;
constexpr std::size_t LarghezzaRiga = 107;
constexpr std::size_t PrimeScartate = 5;
// A file with this many lines and not one sample among them is no recording: it is not
// read to its end.
constexpr qint64 RigheSenzaCampioni = 200;

// The column of a channel in the file, after the sample number; -1 for one not recorded.
constexpr std::array<int, NumeroCanali> ColonnaDi = [] {
    std::array<int, NumeroCanali> c{};
    c.fill(-1);
    for (std::size_t k = 0; k < CanaliRegistrati.size(); ++k)
        c[std::size_t(CanaliRegistrati[k])] = int(k);
    return c;
}();

bool spazio(char c)
{
    return c == ' ' || c == '\t';
}

// One field: blanks, a sign, digits, a decimal point (or comma) and digits, blanks.
bool numero(const char *b, const char *e, double &v, bool &intero)
{
    while (b < e && spazio(*b))
        ++b;
    while (e > b && spazio(e[-1]))
        --e;
    if (b == e)
        return false;
    const char *inizio = b;
    const bool meno = *b == '-';
    if (*b == '-' || *b == '+')
        ++b;
    std::int64_t n = 0;
    int cifre = 0;
    for (; b < e && *b >= '0' && *b <= '9'; ++b, ++cifre) {
        if (cifre == 15)
            return false; // past what a double holds exactly; no recorder wrote it
        n = n * 10 + (*b - '0');
    }
    intero = true;
    if (b == e) {
        if (cifre == 0)
            return false;
        v = double(meno ? -n : n);
        return true;
    }
    if (*b != '.' && *b != ',')
        return false;
    // Decimals: a file edited by hand. Read exactly, with a point whatever was typed.
    char copia[40];
    const std::size_t lunghezza = std::size_t(e - inizio);
    if (lunghezza >= sizeof copia)
        return false;
    std::memcpy(copia, inizio, lunghezza);
    copia[b - inizio] = '.';
    const char *da = copia[0] == '+' ? copia + 1 : copia;
    const auto [fine, errore] = std::from_chars(da, copia + lunghezza, v);
    if (errore != std::errc() || fine != copia + lunghezza || !std::isfinite(v))
        return false;
    intero = v == std::trunc(v);
    return true;
}

bool tuttiNumeri(const QStringList &campi)
{
    double v = 0;
    bool intero = false;
    for (const QString &c : campi) {
        const QByteArray b = c.toLatin1();
        if (!numero(b.constData(), b.constData() + b.size(), v, intero))
            return false;
    }
    return true;
}

template <typename V>
void scorri(const V &v, std::size_t da, std::size_t a, double &minimo, double &massimo)
{
    for (std::size_t i = da; i < a; ++i) {
        const double x = v[i];
        minimo = std::min(minimo, x);
        massimo = std::max(massimo, x);
    }
}

} // namespace

// ---- ColonnaAcq

void ColonnaAcq::riserva(std::size_t n)
{
    m_16.reserve(n);
}

std::size_t ColonnaAcq::size() const
{
    return visita([](const auto &v) { return v.size(); });
}

std::size_t ColonnaAcq::byte() const
{
    return m_16.capacity() * sizeof(qint16) + m_32.capacity() * sizeof(qint32)
           + m_d.capacity() * sizeof(double);
}

namespace {

// Only when much was reserved in vain: a copy of the whole column is the price.
template <typename V>
void compattaVettore(V &v)
{
    if (v.capacity() > v.size() + v.size() / 8 + 64)
        v.shrink_to_fit();
}

} // namespace

void ColonnaAcq::compatta()
{
    compattaVettore(m_16);
    compattaVettore(m_32);
    compattaVettore(m_d);
}

void ColonnaAcq::allarga(Tipo tipo)
{
    const std::size_t riservati = std::max(m_16.capacity(), m_32.capacity());
    if (tipo == Tipo::Int32) {
        m_32.reserve(riservati);
        m_32.assign(m_16.begin(), m_16.end());
        std::vector<qint16>().swap(m_16);
    } else {
        m_d.reserve(riservati);
        if (m_tipo == Tipo::Int16)
            m_d.assign(m_16.begin(), m_16.end());
        else
            m_d.assign(m_32.begin(), m_32.end());
        std::vector<qint16>().swap(m_16);
        std::vector<qint32>().swap(m_32);
    }
    m_tipo = tipo;
}

void ColonnaAcq::aggiungi(double v, bool intero)
{
    constexpr double min16 = std::numeric_limits<qint16>::min(), max16 = std::numeric_limits<qint16>::max();
    constexpr double min32 = std::numeric_limits<qint32>::min(), max32 = std::numeric_limits<qint32>::max();
    if (m_tipo == Tipo::Int16) {
        if (intero && v >= min16 && v <= max16) {
            m_16.push_back(qint16(v));
            return;
        }
        allarga(intero && v >= min32 && v <= max32 ? Tipo::Int32 : Tipo::Double);
    }
    if (m_tipo == Tipo::Int32) {
        if (intero && v >= min32 && v <= max32) {
            m_32.push_back(qint32(v));
            return;
        }
        allarga(Tipo::Double);
    }
    m_d.push_back(v);
}

// ---- RegistrazioneAcq

bool RegistrazioneAcq::registrato(int canale)
{
    return canale >= 0 && canale < NumeroCanali && ColonnaDi[std::size_t(canale)] >= 0;
}

const ColonnaAcq *RegistrazioneAcq::colonna(int canale) const
{
    return registrato(canale) ? &m_colonne[std::size_t(ColonnaDi[std::size_t(canale)])] : nullptr;
}

double RegistrazioneAcq::valore(int canale, qsizetype i) const
{
    const ColonnaAcq *c = colonna(canale);
    return c ? (*c)[std::size_t(i)] : 0.0;
}

void RegistrazioneAcq::azzera()
{
    std::vector<qint32>().swap(m_progressivi);
    std::vector<qint64>().swap(m_posizioni);
    m_colonne = {};
    m_riassunti = {};
    m_nomi.clear();
    m_unita.clear();
    m_scartate = 0;
    m_primeScartate.clear();
    m_utf8 = false;
}

RegistrazioneAcq::Esito RegistrazioneAcq::leggi(const QString &percorso)
{
    azzera();
    // A folder, a pipe or a device would never end or never start.
    if (!QFileInfo(percorso).isFile())
        return Esito::NonApribile;
    QFile f(percorso);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return Esito::NonApribile;
    return leggi(f, f.size());
}

RegistrazioneAcq::Esito RegistrazioneAcq::leggi(QIODevice &sorgente, qint64 dimensione)
{
    azzera();
    if (dimensione > 0) {
        const std::size_t attesi = std::size_t(dimensione) / LarghezzaRiga + 16;
        m_progressivi.reserve(attesi);
        m_posizioni.reserve(attesi);
        for (ColonnaAcq &c : m_colonne)
            c.riserva(attesi);
    }

    enum class Attesa {
        Nomi,
        Unita,
        Campioni
    } attesa = Attesa::Nomi;
    qint64 numeroRiga = 0;
    const auto scarta = [this](qint64 n) {
        ++m_scartate;
        if (m_primeScartate.size() < PrimeScartate)
            m_primeScartate.push_back(n);
    };
    const auto testo = [this](const char *b, const char *e) {
        const QByteArrayView byte(b, e - b);
        return m_utf8 ? QString::fromUtf8(byte) : Cp1252::decodifica(byte);
    };
    const auto campiTesto = [&](const char *b, const char *e) {
        QStringList campi = testo(b, e).split(u';');
        for (QString &c : campi)
            c = c.trimmed();
        return campi;
    };
    const auto continua = [&] { return campioni() > 0 || numeroRiga < RigheSenzaCampioni; };
    // false: the file is no recording, and reading stops.
    const auto prendi = [&](const char *b, const char *e) {
        ++numeroRiga;
        if (e > b && e[-1] == '\r')
            --e;
        if (attesa == Attesa::Nomi) {
            if (e - b >= 3 && std::memcmp(b, "\xEF\xBB\xBF", 3) == 0) {
                m_utf8 = true;
                b += 3;
            }
            if (std::memchr(b, '\0', std::size_t(e - b)))
                return false;
        }
        if (b == e)
            return true; // an empty line holds nothing to lose
        if (attesa != Attesa::Campioni) {
            const QStringList campi = campiTesto(b, e);
            const bool intestazione = campi.size() == Campi && !tuttiNumeri(campi);
            if (intestazione) {
                (attesa == Attesa::Nomi ? m_nomi : m_unita) = campi;
                attesa = attesa == Attesa::Nomi ? Attesa::Unita : Attesa::Campioni;
                return true;
            }
            attesa = Attesa::Campioni;
        }
        if (!riga(b, e))
            scarta(numeroRiga);
        return continua();
    };

    std::vector<char> buffer(Pezzo + LungaRiga + 1);
    std::size_t tenuti = 0;
    bool troppoLunga = false;
    bool avanti = true;
    while (avanti) {
        const qint64 letti = sorgente.read(buffer.data() + tenuti, qint64(Pezzo));
        const bool fineFile = letti <= 0;
        const char *p = buffer.data();
        const char *fine = p + tenuti + std::size_t(std::max<qint64>(letti, 0));
        while (avanti) {
            const auto *a = static_cast<const char *>(std::memchr(p, '\n', std::size_t(fine - p)));
            if (!a)
                break;
            if (troppoLunga) {
                troppoLunga = false;
                scarta(++numeroRiga);
                avanti = continua();
            } else {
                avanti = prendi(p, a);
            }
            p = a + 1;
        }
        tenuti = std::size_t(fine - p);
        if (tenuti > LungaRiga) {
            troppoLunga = true;
            tenuti = 0;
        } else if (tenuti > 0) {
            std::memmove(buffer.data(), p, tenuti);
        }
        if (fineFile)
            break;
    }
    // A last line with no line end was cut short by a crash; a lone CR is a whole line.
    if (avanti && (troppoLunga || tenuti > 0)) {
        if (!troppoLunga && buffer[tenuti - 1] == '\r')
            avanti = prendi(buffer.data(), buffer.data() + tenuti);
        else
            scarta(++numeroRiga);
    }

    const bool registrazione =
        avanti && (!m_nomi.isEmpty() || (campioni() > 0 && campioni() >= qsizetype(m_scartate)));
    if (!registrazione) {
        azzera();
        return Esito::NonRegistrazione;
    }
    compattaVettore(m_progressivi);
    compattaVettore(m_posizioni);
    for (ColonnaAcq &c : m_colonne)
        c.compatta();
    riassumi();
    return Esito::Letta;
}

bool RegistrazioneAcq::riga(const char *b, const char *e)
{
    std::array<double, Campi> v{};
    std::array<bool, Campi> interi{};
    int k = 0;
    const char *campo = b;
    for (;;) {
        const auto *sep = static_cast<const char *>(std::memchr(campo, ';', std::size_t(e - campo)));
        const char *fineCampo = sep ? sep : e;
        if (k == Campi || !numero(campo, fineCampo, v[std::size_t(k)], interi[std::size_t(k)]))
            return false;
        ++k;
        if (!sep)
            break;
        campo = sep + 1;
    }
    if (k != Campi || !interi[0] || v[0] < std::numeric_limits<qint32>::min()
        || v[0] > std::numeric_limits<qint32>::max())
        return false;

    const auto progressivo = qint32(v[0]);
    qint64 posizione = progressivo;
    if (!m_progressivi.empty()) {
        const qint32 prima = m_progressivi.back();
        posizione = m_posizioni.back() + (progressivo > prima ? qint64(progressivo) - prima : 1);
    }
    m_progressivi.push_back(progressivo);
    m_posizioni.push_back(posizione);
    for (std::size_t c = 0; c < m_colonne.size(); ++c)
        m_colonne[c].aggiungi(v[c + 1], interi[c + 1]);
    return true;
}

void RegistrazioneAcq::riassumi()
{
    const std::size_t n = m_progressivi.size();
    for (std::size_t c = 0; c < m_colonne.size(); ++c) {
        Riassunto &r = m_riassunti[c];
        r.minimo16.resize(n / Piccolo);
        r.massimo16.resize(n / Piccolo);
        r.minimo.resize(n / Grande);
        r.massimo.resize(n / Grande);
        r.somma.resize(n / Grande);
        m_colonne[c].visita([&](const auto &v) {
            for (std::size_t b = 0; b < n / Piccolo; ++b) {
                double minimo = v[b * Piccolo], massimo = minimo;
                scorri(v, b * Piccolo, (b + 1) * Piccolo, minimo, massimo);
                r.minimo16[b] = float(minimo);
                r.massimo16[b] = float(massimo);
            }
            for (std::size_t b = 0; b < n / Grande; ++b) {
                double minimo = v[b * Grande], massimo = minimo, somma = 0;
                for (std::size_t i = b * Grande; i < (b + 1) * Grande; ++i) {
                    const double x = v[i];
                    minimo = std::min(minimo, x);
                    massimo = std::max(massimo, x);
                    somma += x;
                }
                r.minimo[b] = minimo;
                r.massimo[b] = massimo;
                r.somma[b] = somma;
            }
            return 0;
        });
    }
}

qsizetype RegistrazioneAcq::indiceDa(double x) const
{
    const auto i = std::lower_bound(m_posizioni.begin(), m_posizioni.end(), x,
                                    [](qint64 p, double v) { return double(p) < v; });
    return qsizetype(i - m_posizioni.begin());
}

qsizetype RegistrazioneAcq::indiceVicino(double x) const
{
    if (m_posizioni.empty())
        return 0;
    const qsizetype i = std::min(indiceDa(x), campioni() - 1);
    if (i > 0 && std::abs(double(posizione(i - 1)) - x) <= std::abs(double(posizione(i)) - x))
        return i - 1;
    return i;
}

void RegistrazioneAcq::estremi(std::size_t colonna, std::size_t da, std::size_t a, double &minimo,
                               double &massimo) const
{
    const Riassunto &r = m_riassunti[colonna];
    const auto su = [](std::size_t i, std::size_t passo) { return (i + passo - 1) / passo * passo; };
    const auto blocchi = [&](const auto &basso, const auto &alto, std::size_t i0, std::size_t i1,
                             std::size_t passo) {
        for (std::size_t b = i0 / passo; b < i1 / passo; ++b) {
            minimo = std::min<double>(minimo, basso[b]);
            massimo = std::max<double>(massimo, alto[b]);
        }
    };
    m_colonne[colonna].visita([&](const auto &v) {
        // Samples up to a run of 16, runs of 16 up to one of 256, runs of 256, and back down.
        const std::size_t da16 = su(da, Piccolo), a16 = a / Piccolo * Piccolo;
        if (da16 >= a16) {
            scorri(v, da, a, minimo, massimo);
            return 0;
        }
        scorri(v, da, da16, minimo, massimo);
        const std::size_t da256 = su(da16, Grande), a256 = a16 / Grande * Grande;
        if (da256 >= a256) {
            blocchi(r.minimo16, r.massimo16, da16, a16, Piccolo);
        } else {
            blocchi(r.minimo16, r.massimo16, da16, da256, Piccolo);
            blocchi(r.minimo, r.massimo, da256, a256, Grande);
            blocchi(r.minimo16, r.massimo16, a256, a16, Piccolo);
        }
        scorri(v, a16, a, minimo, massimo);
        return 0;
    });
}

RegistrazioneAcq::Statistiche RegistrazioneAcq::statistiche(int canale, qsizetype da, qsizetype a) const
{
    Statistiche s;
    da = std::clamp<qsizetype>(da, 0, campioni());
    a = std::clamp<qsizetype>(a, da, campioni());
    if (!registrato(canale) || a == da)
        return s;
    // Exact whatever the values: samples and runs of 256, none of the runs of 16 kept as float.
    const auto c = std::size_t(ColonnaDi[std::size_t(canale)]);
    const Riassunto &r = m_riassunti[c];
    double minimo = std::numeric_limits<double>::infinity();
    double massimo = -minimo;
    double somma = 0;
    m_colonne[c].visita([&](const auto &v) {
        const auto parte = [&](std::size_t i0, std::size_t i1) {
            for (std::size_t i = i0; i < i1; ++i) {
                const double x = v[i];
                minimo = std::min(minimo, x);
                massimo = std::max(massimo, x);
                somma += x;
            }
        };
        const std::size_t b0 = (std::size_t(da) + Grande - 1) / Grande;
        const std::size_t b1 = std::size_t(a) / Grande;
        if (b0 >= b1) {
            parte(std::size_t(da), std::size_t(a));
            return 0;
        }
        parte(std::size_t(da), b0 * Grande);
        for (std::size_t b = b0; b < b1; ++b) {
            minimo = std::min(minimo, r.minimo[b]);
            massimo = std::max(massimo, r.massimo[b]);
            somma += r.somma[b];
        }
        parte(b1 * Grande, std::size_t(a));
        return 0;
    });
    s.minimo = minimo;
    s.massimo = massimo;
    s.campioni = a - da;
    s.media = somma / double(s.campioni);
    return s;
}

void RegistrazioneAcq::decima(int canale, double x0, double x1, int n,
                              std::vector<ColonnaPixel> &colonne) const
{
    colonne.assign(std::size_t(std::max(n, 0)), ColonnaPixel{});
    if (n <= 0 || !(x1 > x0) || !registrato(canale) || vuota())
        return;
    const auto c = std::size_t(ColonnaDi[std::size_t(canale)]);
    const ColonnaAcq &v = m_colonne[c];
    const double larghezza = (x1 - x0) / n;
    const std::size_t totale = m_posizioni.size();
    const auto prima = [](qint64 p, double x) { return double(p) < x; };
    auto j = std::size_t(indiceDa(x0));
    for (int k = 0; k < n && j < totale; ++k) {
        const double limite = k + 1 == n ? x1 : x0 + larghezza * (k + 1);
        // The column's end, galloping from its start: columns are short against the whole.
        std::size_t basso = j, passo = 1;
        while (basso + passo < totale && double(m_posizioni[basso + passo]) < limite) {
            basso += passo;
            passo *= 2;
        }
        const auto inizio = m_posizioni.begin() + qsizetype(basso);
        const auto fine = std::lower_bound(
            inizio, m_posizioni.begin() + qsizetype(std::min(basso + passo, totale)), limite, prima);
        const auto a = std::size_t(fine - m_posizioni.begin());
        if (a == j)
            continue;
        double minimo = std::numeric_limits<double>::infinity();
        double massimo = -minimo;
        estremi(c, j, a, minimo, massimo);
        ColonnaPixel &p = colonne[std::size_t(k)];
        p.minimo = float(minimo);
        p.massimo = float(massimo);
        p.primo = float(v[j]);
        p.ultimo = float(v[a - 1]);
        p.vuota = false;
        p.unita = segue(qsizetype(j));
        j = a;
    }
}

std::size_t RegistrazioneAcq::byteInMemoria() const
{
    std::size_t n = m_progressivi.capacity() * sizeof(qint32) + m_posizioni.capacity() * sizeof(qint64);
    for (std::size_t c = 0; c < m_colonne.size(); ++c) {
        n += m_colonne[c].byte();
        const Riassunto &r = m_riassunti[c];
        n += (r.minimo16.capacity() + r.massimo16.capacity()) * sizeof(float)
             + (r.minimo.capacity() + r.massimo.capacity() + r.somma.capacity()) * sizeof(double);
    }
    return n;
}

} // namespace kv
