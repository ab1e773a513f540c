#include "pages/PianiLettura.h"

#include "link/Frame.h"
#include "variables/Catalogo.h"

#include <algorithm>

namespace kv {

RigaLettura rigaValore(int parametro, bool eeprom)
{
    return {TipoRiga::Valore, parametro, eeprom};
}

RigaLettura rigaLimite(int parametro, bool eeprom)
{
    return {TipoRiga::SoloLimite, parametro, eeprom};
}

RigaLettura rigaScalaLambda()
{
    return {TipoRiga::ScalaLambda, Par::ScalaLambda};
}

RigaLettura rigaTpsMinimo()
{
    return {TipoRiga::TpsMinimo, Par::TpsTaratoMinimo, true};
}

RigaLettura rigaBlocco(int base, int elementi, bool eeprom)
{
    return {TipoRiga::Blocco, base, eeprom, elementi};
}

RigaLettura rigaBloccoMappa(int primaCella)
{
    return {TipoRiga::BloccoMappa, Par::SogliaMagroMappa + primaCella, false, 10};
}

std::vector<int> VociRiga(const RigaLettura &riga)
{
    std::vector<int> voci;
    for (int j = 0; j < riga.elementi; ++j) {
        voci.push_back(riga.parametro + j);
        // A map cell is its lean word followed by its rich word.
        if (riga.tipo == TipoRiga::BloccoMappa)
            voci.push_back(Par::SogliaRiccoMappa + (riga.parametro + j - Par::SogliaMagroMappa));
    }
    return voci;
}

namespace {

qint32 indirizzo(const Catalogo &catalogo, int parametro, bool eeprom)
{
    if (!Catalogo::indiceValido(parametro))
        return -1;
    const Parametro &p = catalogo.Parametri[static_cast<size_t>(parametro)];
    return eeprom ? p.IndirizzoEE : p.IndirizzoRAM;
}

} // namespace

qint32 IndirizzoRiga(const Catalogo &catalogo, const RigaLettura &riga)
{
    return indirizzo(catalogo, riga.parametro, riga.eeprom);
}

int ScartoNellaRiga(const Catalogo &catalogo, const RigaLettura &riga, int parametro)
{
    return static_cast<int>(indirizzo(catalogo, parametro, riga.eeprom) - IndirizzoRiga(catalogo, riga));
}

int ConteggioRiga(const Catalogo &catalogo, const RigaLettura &riga)
{
    int fine = 0;
    for (int v : VociRiga(riga)) {
        if (Catalogo::indiceValido(v))
            fine = std::max(fine, ScartoNellaRiga(catalogo, riga, v)
                                      + catalogo.Parametri[static_cast<size_t>(v)].Dimensione);
    }
    return fine;
}

QByteArray RichiestaLettura(const Catalogo &catalogo, const RigaLettura &riga)
{
    const qint32 indirizzo = IndirizzoRiga(catalogo, riga);
    QByteArray dati(1, 'R');
    dati += ParolaInByte(static_cast<quint32>(indirizzo < 0 ? 0 : indirizzo));
    dati += static_cast<char>(ConteggioRiga(catalogo, riga));
    return dati;
}

} // namespace kv
