#include "pages/GriglieMessaPunto.h"

#include "variables/Catalogo.h"

namespace kv {

namespace MappaLambda {

int zona(int riga, int colonna)
{
    if (riga < 2 || riga >= Righe || colonna < 2 || colonna >= Colonne)
        return -1;
    return (colonna - 2) * ZoneTps + (Righe - 1 - riga) / 2;
}

int puntoTps(int riga, int righe)
{
    const int punto = (righe - 1 - riga) / 2;
    return riga >= 1 && riga < righe && punto >= 0 && punto < Par::ElementiAsseTps ? punto : -1;
}

int puntoGiri(int colonna)
{
    const int punto = colonna - 2;
    return punto >= 0 && punto < Par::ElementiAsseGiri ? punto : -1;
}

bool modificabile(int riga, int colonna)
{
    if (riga <= 0 || riga >= Righe || colonna < 0 || colonna >= Colonne || colonna == 1)
        return false;
    if (colonna == 0)
        return puntoTps(riga) >= 0;
    if (riga == 1)
        return puntoGiri(colonna) >= 0;
    return true;
}

} // namespace MappaLambda

using namespace MappaLambda;

ModelloMappaLambda::ModelloMappaLambda(DialogoPagina &dialogo, const Catalogo &catalogo, QObject *parent)
    : ModelloGriglia(Righe, Colonne, dialogo, catalogo, parent)
{
    // The corner names the two axes.
    unisci(0, 0, 2, 2);
    cellaDa(0, 0).tipo = TipoCella::Intestazione;
    for (int c = 2; c < Colonne; ++c) {
        // Row 0: where the zone of the column starts; row 1: where it ends.
        if (c > 2)
            cellaDa(0, c) = {
                TipoCella::Intestazione, Par::AsseGiriMappa + c - 3, {}, QStringLiteral("> "), false};
        if (puntoGiri(c) >= 0)
            cellaDa(1, c) = {TipoCella::Asse, Par::AsseGiriMappa + puntoGiri(c), {}, {}, true};
    }
    for (int t = 0; t < ZoneTps; ++t) {
        const int ricco = rigaRicco(t);
        // Both rows of a TPS zone edit its breakpoint: one cell on screen.
        unisci(ricco, 0, 2, 1);
        unisci(ricco, 1, 2, 1);
        for (int r : {ricco, ricco + 1}) {
            if (puntoTps(r) >= 0)
                cellaDa(r, 0) = {TipoCella::Asse, Par::AsseTpsMappa + puntoTps(r), {}, {}, true};
            if (t > 0)
                cellaDa(r, 1) = {
                    TipoCella::Intestazione, Par::AsseTpsMappa + t - 1, {}, QStringLiteral("> "), false};
            for (int c = 2; c < Colonne; ++c) {
                const int i = zona(r, c);
                cellaDa(r, c) = r == ricco ? Cella{TipoCella::Ricco, Par::SogliaRiccoMappa + i, {}, {}, true}
                                           : Cella{TipoCella::Magro, Par::SogliaMagroMappa + i, {}, {}, true};
            }
        }
    }
}

std::vector<QModelIndex> ModelloMappaLambda::daControllare(const QModelIndex &modificata) const
{
    const int r = modificata.row();
    if (zona(r, modificata.column()) < 0)
        return {modificata};
    // The lean row lies under the rich one; the lean cell is checked first.
    const int magro = (Righe - 1 - r) % 2 == 0 ? r : r + 1;
    return {index(magro, modificata.column()), index(magro - 1, modificata.column())};
}

std::vector<QModelIndex> ModelloMappaLambda::celleVive(double giri, double tps) const
{
    if (!letto(Par::AsseGiriMappa) || !letto(Par::AsseTpsMappa))
        return {};
    const int colonna = 2 + banda(giri, Par::AsseGiriMappa, Par::ElementiAsseGiri);
    const int t = banda(tps, Par::AsseTpsMappa, Par::ElementiAsseTps);
    return {index(rigaRicco(t), colonna), index(rigaMagro(t), colonna)};
}

ModelloGrigliaRTS::ModelloGrigliaRTS(DialogoPagina &dialogo, const Catalogo &catalogo, QObject *parent)
    : ModelloGriglia(Righe, Colonne, dialogo, catalogo, parent)
{
    for (int c = 0; c < Colonne; ++c)
        cellaDa(0, c).tipo = TipoCella::Intestazione;
    for (int r = 1; r < Righe; ++r) {
        const int z = r - 1;
        // The last zone has no upper breakpoint of its own: it is everything above the last one.
        cellaDa(r, 0) =
            z < Par::ElementiGiriRTS
                ? Cella{TipoCella::Asse, Par::GiriRTS + z, {}, {}, true}
                : Cella{TipoCella::Intestazione, Par::GiriRTS + z - 1, {}, QStringLiteral("> "), false};
        cellaDa(r, ColonnaTps) = {TipoCella::Valore, Par::TpsRTS + z, {}, {}, true};
        cellaDa(r, ColonnaPosizione) = {TipoCella::Valore, Par::PosizioneRTS + z, {}, {}, true};
    }
}

std::vector<QModelIndex> ModelloGrigliaRTS::celleVive(double giri, double) const
{
    if (!letto(Par::GiriRTS))
        return {};
    // A zone ends at its breakpoint, the last one reaches beyond.
    int z = 0;
    while (z < Par::ElementiGiriRTS && giri > corrente(Par::GiriRTS + z))
        ++z;
    return {index(1 + z, 0), index(1 + z, ColonnaTps), index(1 + z, ColonnaPosizione)};
}

ModelloGrigliaPompata::ModelloGrigliaPompata(DialogoPagina &dialogo, const Catalogo &catalogo,
                                             QObject *parent)
    : ModelloGriglia(Righe, Colonne, dialogo, catalogo, parent)
{
    cellaDa(0, 0).tipo = TipoCella::Intestazione;
    cellaDa(1, 0).tipo = TipoCella::Intestazione;
    for (int c = 1; c < Colonne; ++c) {
        const int z = c - 1;
        cellaDa(0, c) =
            z < Par::ElementiGiriPompata
                ? Cella{TipoCella::Asse, Par::GiriPompata + z, {}, {}, true}
                : Cella{TipoCella::Intestazione, Par::GiriPompata + z - 1, {}, QStringLiteral("> "), false};
        cellaDa(1, c) = {TipoCella::Valore, Par::PercentualePompata + z, {}, {}, true};
    }
}

std::optional<AspettoPienoCarico> AspettoPerListe(int tipoPC, int pcConf, bool tpsPresente)
{
    if (tipoPC < 0 || tipoPC > 2 || pcConf < 0 || pcConf > 1)
        return std::nullopt;
    AspettoPienoCarico a;
    a.soglieLambda = tipoPC != 0;
    a.soglieTps = pcConf == 1 && tpsPresente;
    a.griglia = !(tipoPC != 0 && pcConf == 1);
    a.colonnaPosizione = tipoPC == 0;
    a.colonnaTps = pcConf == 0 && tpsPresente;
    return a;
}

} // namespace kv
