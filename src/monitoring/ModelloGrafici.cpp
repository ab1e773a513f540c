#include "monitoring/ModelloGrafici.h"

#include "base/FileIni.h"
#include "variables/Formato.h"

#include <algorithm>
#include <cmath>

namespace kv {

namespace {

const QString SezioneGrafici = QStringLiteral("GRAFICI");

QString chiaveSlot(int slot)
{
    return QStringLiteral("Grafico_") + QString::number(slot + 1);
}

QString intero(double v)
{
    return FormattaNumero(v, QStringLiteral("#0"));
}

bool canaleValido(int canale)
{
    return canale >= 0 && canale < NumeroCanali;
}

// The sample number as the ring keeps it; see AnelloRegistrazione for the wrap.
qint32 progressivo(double conta)
{
    if (!std::isfinite(conta) || std::fabs(conta) > 9.0e15)
        return -1;
    return static_cast<qint32>(static_cast<quint32>(std::llround(conta)));
}

} // namespace

// ---- the ring

void AnelloGrafici::azzera()
{
    IndiceGrafici = -1;
    ContaGrafici = -1;
    for (RecordDati &r : BufferGrafici)
        r.Progressivo = -1;
}

void AnelloGrafici::aggiungi(const RecordDati &campione, const RigheDati &righe)
{
    ContaGrafici += 1;
    IndiceGrafici = IndiceGrafici < LimiteSuperiore ? qint16(IndiceGrafici + 1) : qint16(0);
    RecordDati &r = BufferGrafici[static_cast<std::size_t>(IndiceGrafici)];
    r.Progressivo = progressivo(ContaGrafici);
    for (const RigaDati &riga : righe) {
        if (riga.Canale < 0)
            break;
        r.Valore[static_cast<std::size_t>(riga.Canale)] =
            campione.Valore[static_cast<std::size_t>(riga.Canale)];
    }
}

const RecordDati *AnelloGrafici::ultimo() const
{
    return IndiceGrafici < 0 ? nullptr : &BufferGrafici[static_cast<std::size_t>(IndiceGrafici)];
}

std::optional<std::pair<qint32, qint32>> AnelloGrafici::intervallo() const
{
    const RecordDati *nuovo = ultimo();
    if (!nuovo)
        return std::nullopt;
    // Behind the newest comes the oldest, or a free element before the ring has gone round.
    const int dopo = IndiceGrafici < LimiteSuperiore ? IndiceGrafici + 1 : 0;
    const RecordDati &r = BufferGrafici[static_cast<std::size_t>(dopo)];
    return std::pair{r.Progressivo == -1 ? BufferGrafici[0].Progressivo : r.Progressivo, nuovo->Progressivo};
}

std::optional<std::pair<double, double>> AnelloGrafici::estremi(int canale, double xMin, double xMax) const
{
    if (!canaleValido(canale))
        return std::nullopt;
    std::optional<std::pair<double, double>> e;
    for (const RecordDati &r : BufferGrafici) {
        if (r.Progressivo == -1 || r.Progressivo < xMin || r.Progressivo > xMax)
            continue;
        const double v = r.Valore[static_cast<std::size_t>(canale)];
        if (!e)
            e = std::pair{v, v};
        else if (v < e->first)
            e->first = v;
        else if (v > e->second)
            e->second = v;
    }
    return e;
}

std::vector<QPointF> AnelloGrafici::punti(int canale, double xMin, double xMax) const
{
    std::vector<QPointF> p;
    if (IndiceGrafici < 0 || !canaleValido(canale))
        return p;
    p.reserve(Dimensione);
    // From the element behind the newest round to the newest.
    int i = IndiceGrafici;
    for (int n = 0; n < Dimensione; ++n) {
        i = i < LimiteSuperiore ? i + 1 : 0;
        const RecordDati &r = BufferGrafici[static_cast<std::size_t>(i)];
        if (r.Progressivo == -1 || r.Progressivo < xMin || r.Progressivo > xMax)
            continue;
        p.emplace_back(r.Progressivo, r.Valore[static_cast<std::size_t>(canale)]);
    }
    return p;
}

// ---- the window

ModelloGrafici::ModelloGrafici(TabellaCanali &canali, QString percorsoIni)
    : m_canali(canali)
    , m_percorsoIni(std::move(percorsoIni))
{
    righe = RigheDatiIniziali();
}

void ModelloGrafici::ripartiDaZero()
{
    m_canali.AzzeraScale();
    anello.azzera();
}

void ModelloGrafici::carica()
{
    righe = RigheDatiIniziali();
    ripartiDaZero();
    GraficoBloccato = 0;
    slot.fill(SlotGrafico{});
    for (int n = 0; n < NumeroGrafici; ++n) {
        bool numero = false;
        const double c = FileIni::leggi(m_percorsoIni, SezioneGrafici, chiaveSlot(n), QStringLiteral("-1"))
                             .trimmed()
                             .toDouble(&numero);
        if (numero && std::isfinite(c) && std::nearbyint(c) != -1)
            RidisegnoGrafici(int(std::nearbyint(std::clamp(c, -2.0, double(NumeroCanali)))));
    }
}

bool ModelloGrafici::RidisegnoGrafici(int c)
{
    if (!canaleValido(c))
        return false;
    Canale &k = m_canali.Canali[static_cast<std::size_t>(c)];
    int cambiato = -1;
    if (k.InGrafico != 0) {
        cambiato = slotDi(c);
        if (cambiato >= 0)
            slot[static_cast<std::size_t>(cambiato)].Canale = -1;
        k.InGrafico = 0;
    } else if (puoAndareInGrafico(c)) {
        for (int s = 0; s < NumeroGrafici && cambiato < 0; ++s) {
            if (slot[static_cast<std::size_t>(s)].Canale == -1) {
                slot[static_cast<std::size_t>(s)].Canale = qint16(c);
                k.InGrafico = -1;
                cambiato = s;
            }
        }
    }
    if (cambiato < 0)
        return false;
    // A settings file that cannot be written costs the choice at the next start, nothing more.
    FileIni::scrivi(m_percorsoIni, SezioneGrafici, chiaveSlot(cambiato),
                    QString::number(slot[static_cast<std::size_t>(cambiato)].Canale));
    aggiornaRigheSlot();
    for (SlotGrafico &s : slot)
        s.CanalePrecedente = s.Canale;
    return true;
}

void ModelloGrafici::aggiornaRigheSlot()
{
    for (SlotGrafico &s : slot)
        s.RigaDati = -1;
    for (std::size_t r = 0; r < righe.size() && righe[r].Canale > -1; ++r)
        for (SlotGrafico &s : slot)
            if (s.Canale == righe[r].Canale)
                s.RigaDati = qint16(r);
}

int ModelloGrafici::slotInUso() const
{
    int n = 0;
    for (const SlotGrafico &s : slot)
        n += s.Canale != -1 ? 1 : 0;
    return n;
}

int ModelloGrafici::posizioneSlot(int s) const
{
    if (s < 0 || s >= NumeroGrafici || slot[static_cast<std::size_t>(s)].Canale == -1)
        return -1;
    int k = 0;
    for (int i = 0; i < s; ++i)
        k += slot[static_cast<std::size_t>(i)].Canale != -1 ? 1 : 0;
    return k;
}

int ModelloGrafici::slotDi(int c) const
{
    for (int s = 0; s < NumeroGrafici; ++s)
        if (slot[static_cast<std::size_t>(s)].Canale == c)
            return s;
    return -1;
}

void ModelloGrafici::ScalaFinestra(int c, double xMin, double xMax)
{
    if (!canaleValido(c))
        return;
    Canale &k = m_canali.Canali[static_cast<std::size_t>(c)];
    if (const auto e = anello.estremi(c, xMin, xMax)) {
        k.MinMisurato = e->first;
        k.MaxMisurato = e->second;
    }
    ScalaCanale(k.MinMisurato, k.MaxMisurato, k.Margine, k.DivMaggiori, k.MinAsse, k.MaxAsse);
}

std::vector<QPointF> ModelloGrafici::RidisegnoTraccia(int s) const
{
    if (s < 0 || s >= NumeroGrafici)
        return {};
    const Canale &tempo = m_canali.Canali[0];
    return anello.punti(slot[static_cast<std::size_t>(s)].Canale, tempo.MinAsse, tempo.MaxAsse);
}

std::array<AggiornamentoSlot, NumeroGrafici> ModelloGrafici::tick(const RecordDati &nuovo)
{
    std::array<AggiornamentoSlot, NumeroGrafici> esito{};
    if (GraficoBloccato != 0)
        return esito;
    anello.aggiungi(nuovo, righe);
    const double conta = anello.ContaGrafici;

    Canale &tempo = m_canali.Canali[0];
    if (SaltoFinestra(conta, tempo.Margine, tempo.MinAsse, tempo.MaxAsse)) {
        for (const RigaDati &r : righe) {
            if (r.Canale < 0)
                break;
            ScalaFinestra(r.Canale, tempo.MinAsse, tempo.MaxAsse);
        }
    }

    for (const RigaDati &r : righe) {
        if (r.Canale < 0)
            break;
        Canale &k = m_canali.Canali[static_cast<std::size_t>(r.Canale)];
        const double v = nuovo.Valore[static_cast<std::size_t>(r.Canale)];
        bool cambiato = true;
        if (conta == 0)
            k.MinMisurato = k.MaxMisurato = v;
        else if (v < k.MinMisurato)
            k.MinMisurato = v;
        else if (v > k.MaxMisurato)
            k.MaxMisurato = v;
        else
            cambiato = false;
        if (cambiato)
            ScalaCanale(k.MinMisurato, k.MaxMisurato, k.Margine, k.DivMaggiori, k.MinAsse, k.MaxAsse);
    }

    const bool asseX = tempo.MinAsse != tempo.MinDisegnato || tempo.MaxAsse != tempo.MaxDisegnato;
    // Found once for each channel, so that a channel standing in two slots rescales both.
    std::array<bool, NumeroCanali> asseY{};
    for (const SlotGrafico &s : slot) {
        if (s.Canale < 0)
            continue;
        const Canale &k = m_canali.Canali[static_cast<std::size_t>(s.Canale)];
        asseY[static_cast<std::size_t>(s.Canale)] =
            k.MinAsse != k.MinDisegnato || k.MaxAsse != k.MaxDisegnato;
    }
    const RecordDati &ultimo = *anello.ultimo();
    for (int i = 0; i < NumeroGrafici; ++i) {
        const SlotGrafico &s = slot[static_cast<std::size_t>(i)];
        if (s.Canale < 0)
            continue;
        AggiornamentoSlot &a = esito[static_cast<std::size_t>(i)];
        a.asseX = asseX;
        a.asseY = asseY[static_cast<std::size_t>(s.Canale)];
        a.punto = true;
        a.nuovo = QPointF(ultimo.Progressivo, ultimo.Valore[static_cast<std::size_t>(s.Canale)]);
    }
    for (int c = 0; c < NumeroCanali; ++c) {
        if (!asseY[static_cast<std::size_t>(c)])
            continue;
        Canale &k = m_canali.Canali[static_cast<std::size_t>(c)];
        k.MinDisegnato = k.MinAsse;
        k.MaxDisegnato = k.MaxAsse;
    }
    tempo.MinDisegnato = tempo.MinAsse;
    tempo.MaxDisegnato = tempo.MaxAsse;
    return esito;
}

void ModelloGrafici::Blocca()
{
    GraficoBloccato = -1;
    m_maxBloccato = m_canali.Canali[0].MaxAsse;
}

bool ModelloGrafici::scorri(double campioni)
{
    const auto tenuti = anello.intervallo();
    if (!bloccato() || !tenuti || !std::isfinite(campioni))
        return false;
    Canale &tempo = m_canali.Canali[0];
    const qint64 ampiezza = qint64(tempo.MaxAsse) - tempo.MinAsse;
    const qint64 basso = std::min<qint64>(tenuti->first, tempo.MinAsse);
    const qint64 alto = std::max<qint64>(qint64(std::max(tenuti->second, m_maxBloccato)) - ampiezza, basso);
    const qint64 minimo =
        std::clamp<qint64>(tempo.MinAsse + std::llround(std::clamp(campioni, -1e9, 1e9)), basso, alto);
    if (minimo == tempo.MinAsse)
        return false;
    tempo.MinAsse = qint32(minimo);
    tempo.MaxAsse = qint32(minimo + ampiezza);
    for (const RigaDati &r : righe) {
        if (r.Canale < 0)
            break;
        ScalaFinestra(r.Canale, tempo.MinAsse, tempo.MaxAsse);
    }
    return true;
}

bool ModelloGrafici::scorriAlBordo(int verso)
{
    return scorri(verso < 0 ? -1e9 : 1e9);
}

void ModelloGrafici::Sblocca()
{
    GraficoBloccato = 0;
    // As at load; the slots keep their channels though their flags are cleared, so a click
    // on one of them adds it a second time. That is how the window has always behaved.
    ripartiDaZero();
}

ModelloGrafici::TestoDato ModelloGrafici::testoDato(int canale, double v) const
{
    switch (canale) {
    case 6: {
        const QString n = v == 0     ? QStringLiteral("0")
                          : v == 85  ? QStringLiteral("1")
                          : v == 255 ? QStringLiteral("2")
                                     : QStringLiteral("99");
        return {Messaggio(QStringLiteral("CARBURAZIONE"), QStringLiteral("CARBURAZIONE.") + n), {}};
    }
    case 7:
        if (v >= 1 && v <= 5)
            return {Messaggio("ZONE", "ZONA." + intero(v)), {}};
        return {Messaggio("ZONE", "ZONA.99"), {}};
    case 8:
        if (v == 0 || v == 1)
            return {Messaggio("POMPATA", "POMPATA." + intero(v)), {}};
        return {Messaggio("POMPATA", "POMPATA.99"), {}};
    case 10:
        if (v == 0 || v == 1)
            return {Messaggio("ALIMENTAZIONE", "TIPO." + intero(v)), v == 0 ? ColoreBenzina : ColoreGas};
        return {Messaggio("ALIMENTAZIONE", "TIPO.99"), ColoreIgnoto};
    default:
        return {Letterale(intero(v)), {}};
    }
}

std::vector<int> ModelloGrafici::righeVisibili() const
{
    std::vector<int> v;
    for (std::size_t r = 0; r < righe.size() && righe[r].Canale > -1; ++r)
        if (righe[r].Visibile == 1)
            v.push_back(int(r));
    return v;
}

} // namespace kv
