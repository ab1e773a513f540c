#include "pages/ConfrontoMappe.h"

#include "link/Frame.h"
#include "pages/GriglieMessaPunto.h"
#include "variables/Conversioni.h"
#include "variables/Formato.h"

#include <algorithm>

namespace kv {

using namespace Par;

bool VociDiverse(const VoceMappa &a, const VoceMappa &b)
{
    if (a.scelta != b.scelta)
        return true;
    return a.scelta < 0 && a.testo != b.testo;
}

const RigaConfronto *Confronto::riga(int parametro) const
{
    // No rows while either side is missing: one map alone has nothing to differ from.
    const VoceMappa *v = a.voce(parametro);
    const size_t r = v ? size_t(a.posizione[size_t(parametro)]) : righe.size();
    return r < righe.size() ? &righe[r] : nullptr;
}

bool Confronto::diversa(int parametro) const
{
    const RigaConfronto *r = riga(parametro);
    return r && r->diversa;
}

std::vector<int> Confronto::parametriDiversi() const
{
    std::vector<int> d;
    for (const RigaConfronto &r : righe)
        if (r.diversa)
            d.push_back(a.voci[size_t(r.posizione)].parametro());
    return d;
}

std::vector<int> Confronto::parametriDiversi(const std::vector<int> &fra) const
{
    std::vector<int> d;
    std::copy_if(fra.begin(), fra.end(), std::back_inserter(d), [this](int p) { return diversa(p); });
    return d;
}

Confronto ConfrontaMappe(MappaDecodificata a, MappaDecodificata b)
{
    Confronto c;
    c.a = std::move(a);
    c.b = std::move(b);
    if (!c.a.ok || !c.b.ok)
        return c;
    c.righe.reserve(c.a.voci.size());
    for (size_t i = 0; i < c.a.voci.size(); ++i) {
        const VoceMappa &va = c.a.voci[i];
        RigaConfronto r;
        r.posizione = int(i);
        const VoceMappa *vb = c.b.voce(va.parametro());
        r.diversa = !vb || VociDiverse(va, *vb);
        // The difference of what the fields show, so it reads off the two columns.
        if (r.diversa && vb && va.piano.lista.isEmpty()) {
            const double d = ValNumero(vb->testo) - ValNumero(va.testo);
            r.differenza = (d > 0 ? QStringLiteral("+") : QString()) + FormattaNumero(d, {});
        }
        c.diverse += r.diversa ? 1 : 0;
        c.righe.push_back(std::move(r));
    }
    return c;
}

QByteArray CopiaValori(const QByteArray &immagineA, ScalaLambdaMappa scalaA, const QByteArray &immagineB,
                       ScalaLambdaMappa scalaB, const std::vector<int> &parametri, const Catalogo &catalogo)
{
    QByteArray a = immagineA;
    if (a.size() != AreaMappa::Dimensione || immagineB.size() != AreaMappa::Dimensione)
        return a;
    Catalogo regolaA = catalogo;
    Catalogo regolaB = catalogo;
    regolaA.Valori[ScalaLambda].Letto = scalaA.valore;
    regolaB.Valori[ScalaLambda].Letto = scalaB.valore;
    const bool stessaScala = (scalaA.valore != 0) == (scalaB.valore != 0);
    for (int p : parametri) {
        if (!Catalogo::indiceValido(p))
            continue;
        const Parametro &x = catalogo.Parametri[size_t(p)];
        if (!AreaMappa::Contiene(x))
            continue;
        const int dove = x.IndirizzoEE - AreaMappa::Inizio;
        QByteArray byte = immagineB.mid(dove, x.Dimensione);
        if (x.Conv == Conversione::L && !stessaScala)
            byte = ByteBE(regolaA.aGrezzo(p, regolaB.daGrezzo(p, NumeroBE(byte))), x.Dimensione);
        a.replace(dove, x.Dimensione, byte);
    }
    return a;
}

std::vector<int> GrigliaMappa::parametri() const
{
    std::vector<int> p;
    for (const CellaGriglia &c : celle)
        if (c.parametro >= 0 && !c.intestazione && std::find(p.begin(), p.end(), c.parametro) == p.end())
            p.push_back(c.parametro);
    return p;
}

namespace {

GrigliaMappa griglia(IdPagina pagina, const char *sezione, int titolo, int righe, int colonne)
{
    GrigliaMappa g;
    g.pagina = pagina;
    g.sezione = QString::fromLatin1(sezione);
    g.titolo = titolo;
    g.righe = righe;
    g.colonne = colonne;
    g.celle.resize(size_t(righe * colonne));
    return g;
}

CellaGriglia voce(int parametro)
{
    return {parametro, false, {}};
}

CellaGriglia intestazione(int parametro)
{
    return {parametro, true, {}};
}

CellaGriglia didascalia(const char *chiave)
{
    return {-1, false, QString::fromLatin1(chiave)};
}

// As the normal page lays it out: RPM breakpoints along row 1, TPS ones down column 0, each
// zone's rich threshold above its lean one, the lowest TPS zone at the bottom.
GrigliaMappa mappaLambda()
{
    using namespace MappaLambda;
    GrigliaMappa g = griglia(IdPagina::MP_Normale, "MP_Normale", 0, Righe, Colonne);
    g.cella(0, 0) = didascalia("MAPPA.ASSI");
    g.unioni.push_back({0, 0, 2, 2});
    for (int c = 2; c < Colonne; ++c) {
        if (c > 2)
            g.cella(0, c) = intestazione(AsseGiriMappa + c - 3);
        if (puntoGiri(c) >= 0)
            g.cella(1, c) = voce(AsseGiriMappa + puntoGiri(c));
    }
    for (int t = 0; t < ZoneTps; ++t) {
        const int ricco = rigaRicco(t);
        g.unioni.push_back({ricco, 0, 2, 1});
        g.unioni.push_back({ricco, 1, 2, 1});
        if (puntoTps(ricco) >= 0)
            g.cella(ricco, 0) = voce(AsseTpsMappa + puntoTps(ricco));
        if (t > 0)
            g.cella(ricco, 1) = intestazione(AsseTpsMappa + t - 1);
        for (int c = 2; c < Colonne; ++c) {
            g.cella(ricco, c) = voce(SogliaRiccoMappa + zona(ricco, c));
            g.cella(ricco + 1, c) = voce(SogliaMagroMappa + zona(ricco + 1, c));
        }
    }
    return g;
}

// GrigliaRTS: a header row, then the eight RPM zones with their upper breakpoint, their TPS
// threshold and their stepper position.
GrigliaMappa grigliaRTS()
{
    GrigliaMappa g = griglia(IdPagina::MP_PienoCarico, "MP_PienoCarico", 1, 9, 3);
    g.cella(0, 0) = didascalia("GRIGLIA.0");
    g.cella(0, 1) = didascalia("GRIGLIA.1");
    g.cella(0, 2) = didascalia("GRIGLIA.2");
    for (int z = 0; z < ElementiTpsRTS; ++z) {
        g.cella(z + 1, 0) = z < ElementiGiriRTS ? voce(GiriRTS + z) : intestazione(GiriRTS + z - 1);
        g.cella(z + 1, 1) = voce(TpsRTS + z);
        g.cella(z + 1, 2) = voce(PosizioneRTS + z);
    }
    return g;
}

// GrigliaPompata: four RPM breakpoints above the five zones and the enrichment of each.
GrigliaMappa grigliaPompata()
{
    GrigliaMappa g = griglia(IdPagina::MP_Pompata, "MP_Pompata", 2, 2, 6);
    g.cella(0, 0) = didascalia("GRIGLIA.0");
    g.cella(1, 0) = didascalia("GRIGLIA.1");
    for (int z = 0; z < ElementiPercentualePompata; ++z) {
        g.cella(0, z + 1) =
            z < ElementiGiriPompata ? voce(GiriPompata + z) : intestazione(GiriPompata + z - 1);
        g.cella(1, z + 1) = voce(PercentualePompata + z);
    }
    return g;
}

} // namespace

const std::vector<GrigliaMappa> &GriglieMappa()
{
    static const std::vector<GrigliaMappa> griglie = {mappaLambda(), grigliaRTS(), grigliaPompata()};
    return griglie;
}

std::vector<int> VociCambiate(const QByteArray &prima, const QByteArray &dopo, const Catalogo &catalogo)
{
    std::vector<int> voci;
    for (int p = 0; p < Par::Numero; ++p) {
        const Parametro &par = catalogo.Parametri[size_t(p)];
        if (AreaMappa::Contiene(par) && AreaMappa::Cella(prima, par) != AreaMappa::Cella(dopo, par))
            voci.push_back(p);
    }
    return voci;
}

QList<QByteArray> ScrittureVoci(const QByteArray &immagine, const std::vector<int> &voci, bool ram,
                                bool eeprom, const Catalogo &catalogo)
{
    QList<QByteArray> richieste;
    for (int p : voci) {
        const Parametro &par = catalogo.Parametri[size_t(p)];
        const QByteArray dati = char(par.Dimensione) + AreaMappa::Cella(immagine, par);
        if (ram && par.IndirizzoRAM != -1)
            richieste.append('W' + ParolaInByte(quint32(par.IndirizzoRAM)) + dati);
        if (eeprom && par.IndirizzoEE != -1)
            richieste.append('W' + ParolaInByte(quint32(par.IndirizzoEE)) + dati);
    }
    return richieste;
}

} // namespace kv
