#include "pages/DecodificaMappa.h"

#include "pages/GriglieMessaPunto.h"
#include "variables/Conversioni.h"

#include <algorithm>

namespace kv {

using namespace Par;

namespace {

struct NomeCatalogo
{
    int base;
    const char *nome;
    int elementi;
};

#define KV_VOCE(nome)                                                                                        \
    {                                                                                                        \
        nome, #nome, 1                                                                                       \
    }
#define KV_SERIE(nome, elementi)                                                                             \
    {                                                                                                        \
        nome, #nome, elementi                                                                                \
    }
constexpr NomeCatalogo Nomi[] = {
    KV_VOCE(CostanteGiri),
    KV_VOCE(SogliaGiriEntrataMinimo),
    KV_VOCE(SogliaGiriUscitaMinimo),
    KV_VOCE(SogliaGiriEntrataCutOff),
    KV_VOCE(SogliaGiriUscitaCutOff),
    KV_VOCE(SogliaGiriEntrataPC),
    KV_VOCE(SogliaGiriUscitaPC),
    KV_SERIE(GiriPompata, ElementiGiriPompata),
    KV_VOCE(SogliaTpsEntrataMinimo),
    KV_VOCE(SogliaTpsUscitaMinimo),
    KV_VOCE(SogliaTpsEntrataPC),
    KV_VOCE(SogliaTpsUscitaPC),
    KV_VOCE(SogliaTpsEntrataCutOff),
    KV_VOCE(SogliaTpsUscitaCutOff),
    KV_VOCE(TpsTaratoMinimo),
    KV_VOCE(TpsTaratoMassimo),
    KV_VOCE(SogliaLambdaRiccoMinimo),
    KV_VOCE(SogliaLambdaMagroMinimo),
    KV_VOCE(SogliaLambdaRiccoPC),
    KV_VOCE(SogliaLambdaMagroPC),
    KV_VOCE(SogliaLambdaMagroNormale),
    KV_VOCE(SogliaLambdaRiccoNormale),
    KV_VOCE(ScalaLambda),
    KV_VOCE(TipoNOR),
    KV_VOCE(BaseEmulazione),
    KV_VOCE(ValoreEmulazione),
    KV_VOCE(TempoDisabilitazioneControllo),
    KV_VOCE(TempoAnomaliaLambda),
    KV_VOCE(PercentualeEmulazione),
    KV_VOCE(PassiControlloMinimo),
    KV_VOCE(PassiRaddoppioNormale),
    KV_VOCE(PassiControlloNormale),
    KV_VOCE(PosizioneMotorinoNormale),
    KV_VOCE(ResetPC),
    KV_VOCE(PcConf),
    KV_VOCE(TipoPC),
    KV_VOCE(PosizioneMotorinoCutOff),
    KV_VOCE(TipoCO),
    KV_SERIE(PercentualePompata, ElementiPercentualePompata),
    KV_VOCE(FrequenzaControlloMinimo),
    KV_VOCE(PrimaFrequenzaNormale),
    KV_VOCE(SecondaFrequenzaNormale),
    KV_SERIE(AsseTpsMappa, ElementiAsseTps),
    KV_SERIE(AsseGiriMappa, ElementiAsseGiri),
    KV_SERIE(SogliaMagroMappa, CelleMappa),
    KV_SERIE(SogliaRiccoMappa, CelleMappa),
    KV_VOCE(IncrementoTps),
    KV_VOCE(TempoIncrementoTps),
    KV_VOCE(TempoInibizionePompata),
    KV_VOCE(CampioniStechiometrici),
    KV_VOCE(CampioniMagro),
    KV_VOCE(CampioniRicco),
    KV_VOCE(InizioInibizionePC),
    KV_VOCE(DurataInibizionePC),
    KV_VOCE(TipoRIENTRO),
    KV_VOCE(TipoTps),
    KV_VOCE(TpsAutoadattante),
    KV_SERIE(GiriRTS, ElementiGiriRTS),
    KV_SERIE(TpsRTS, ElementiTpsRTS),
    KV_SERIE(PosizioneRTS, ElementiPosizioneRTS),
};
#undef KV_VOCE
#undef KV_SERIE

// The tuning entries of the service menu, in its order; the quick page last, since every
// value it shows is another page's too.
constexpr IdPagina OrdinePagine[] = {IdPagina::MP_Minimo,   IdPagina::MP_Normale,   IdPagina::MP_PienoCarico,
                                     IdPagina::MP_CutOff,   IdPagina::MP_Pompata,   IdPagina::MP_Stechio,
                                     IdPagina::MP_InibizPC, IdPagina::MP_RientroCO, IdPagina::MP_TPS,
                                     IdPagina::MP_Lavoro};

} // namespace

ScalaLambdaMappa ScalaDa(std::optional<double> tenuta, OrigineScala origine)
{
    if (!tenuta)
        return {};
    return {*tenuta != 0 ? 255.0 : 0.0, origine};
}

QString NomeVoce(int parametro)
{
    for (const NomeCatalogo &n : Nomi) {
        if (parametro < n.base || parametro >= n.base + n.elementi)
            continue;
        const QString nome = QString::fromLatin1(n.nome);
        return n.elementi == 1 ? nome : QStringLiteral("%1(%2)").arg(nome).arg(parametro - n.base);
    }
    return {};
}

std::vector<GruppoMappa> GruppiMappa(const Catalogo &catalogo,
                                     const std::vector<const DescrizionePagina *> &altre)
{
    std::vector<const DescrizionePagina *> pagine;
    for (IdPagina id : OrdinePagine)
        if (const DescrizionePagina *d = DescrizioneDi(id))
            pagine.push_back(d);
    pagine.insert(pagine.end(), altre.begin(), altre.end());

    std::array<bool, Numero> presa{};
    const auto aggiungi = [&](GruppoMappa &g, const DescrizionePagina *d, int p, const RigaPagina *r) {
        if (!Catalogo::indiceValido(p) || presa[size_t(p)]
            || !AreaMappa::Contiene(catalogo.Parametri[size_t(p)]))
            return;
        presa[size_t(p)] = true;
        VocePiano v;
        v.parametro = p;
        if (r) {
            v.riga = r->indice;
            v.lista = r->lista;
            v.binaria = r->binaria;
        }
        v.segnoModulo =
            d && std::find(d->segnoModulo.begin(), d->segnoModulo.end(), p) != d->segnoModulo.end();
        g.voci.push_back(v);
    };

    std::vector<GruppoMappa> gruppi;
    for (const DescrizionePagina *d : pagine) {
        GruppoMappa g{d->id, d->sezione, {}};
        for (const BoxParametri &b : d->box)
            for (const RigaPagina &r : b.righe)
                aggiungi(g, d, r.parametro, &r);
        for (int p : d->voci)
            aggiungi(g, d, p, d->riga(p));
        if (!g.voci.empty())
            gruppi.push_back(std::move(g));
    }
    GruppoMappa resto{IdPagina::Nessuna, QString::fromLatin1(SezioneMappe), {}};
    for (int p = 0; p < Numero; ++p)
        aggiungi(resto, nullptr, p, nullptr);
    if (!resto.voci.empty())
        gruppi.push_back(std::move(resto));
    return gruppi;
}

const VoceMappa *MappaDecodificata::voce(int parametro) const
{
    if (!Catalogo::indiceValido(parametro) || posizione[size_t(parametro)] < 0)
        return nullptr;
    return &voci[size_t(posizione[size_t(parametro)])];
}

MappaDecodificata DecodificaMappa(const QByteArray &immagine, const Catalogo &catalogo,
                                  ScalaLambdaMappa scala, const std::vector<const DescrizionePagina *> &altre)
{
    MappaDecodificata m;
    m.posizione.fill(-1);
    m.scala = scala;
    if (immagine.size() != AreaMappa::Dimensione)
        return m;
    // The flag where rule L looks for it, in a copy: the program's own table stays as it is.
    Catalogo c = catalogo;
    c.Valori[ScalaLambda].Letto = scala.valore;
    m.gruppi = GruppiMappa(c, altre);
    for (size_t g = 0; g < m.gruppi.size(); ++g) {
        for (const VocePiano &piano : m.gruppi[g].voci) {
            const Parametro &p = c.Parametri[size_t(piano.parametro)];
            VoceMappa v;
            v.piano = piano;
            v.gruppo = int(g);
            v.grezzo = NumeroBE(AreaMappa::Cella(immagine, p));
            v.valore = piano.segnoModulo ? SegnoModulo(v.grezzo) : c.daGrezzo(piano.parametro, v.grezzo);
            v.testo = c.formatta(piano.parametro, v.valore);
            // A list shows its item by the value, as the pages' lists do.
            if (piano.binaria)
                v.scelta = v.valore != 0 ? 1 : 0;
            else if (!piano.lista.isEmpty() && v.valore >= 0 && v.valore == double(int(v.valore)))
                v.scelta = int(v.valore);
            m.posizione[size_t(piano.parametro)] = int(m.voci.size());
            m.voci.push_back(std::move(v));
        }
    }
    m.ok = true;
    return m;
}

} // namespace kv
