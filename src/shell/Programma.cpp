#include "shell/Programma.h"

namespace kv {

Programma::Programma(const QString &percorsoApp, Lingua &linguaPrestata, std::unique_ptr<Porta> porta,
                     std::unique_ptr<Temporizzatore> timeOutReq, std::unique_ptr<Temporizzatore> timeOutDati,
                     std::unique_ptr<Temporizzatore> riapertura, std::unique_ptr<Temporizzatore> silenzio,
                     QObject *parent)
    : QObject(parent)
    , PercorsoApp(percorsoApp)
    , lingua(linguaPrestata)
    , linea(percorsoApp + QStringLiteral("/MESSAGGI.TXT"), catalogo, std::move(porta), std::move(timeOutReq),
            std::move(timeOutDati), std::move(riapertura), std::move(silenzio))
    , storico(percorsoApp, linea, catalogo)
{
    anello.collega(&canali, percorsoApp);
    // While a monitor window records, every live record goes into the ring first.
    connect(&linea.datiLive(), &DatiLive::nuovoRecord, this, [this](const RecordDati &r) {
        if (anello.RegistrazioneAttiva)
            anello.MemorizzaCampione(r);
    });
    connect(&linea.datiLive(), &DatiLive::inMarciaCambiata, this, [this] { menu.ecuCambiata(linea.ecu()); });
}

Programma::~Programma() = default;

void Programma::IniDialogo()
{
    linea.IniDialogo();
    menu.IniDialogo();
    anello.RegistrazioneAttiva = false;
}

void Programma::LeggiImpSeriale()
{
    seriale = kv::LeggiImpSeriale(percorsoIni(), PortiSeriali());
}

bool Programma::ApriPorta()
{
    ImpostazioniPorta imp;
    imp.dispositivo = dispositivoForzato.isEmpty() ? seriale.nomeDispositivo : dispositivoForzato;
    imp.velocita = seriale.VelocitaCom;
    if (linea.apri(imp))
        return true;
    emit portaNonAperta(imp.dispositivo, linea.gruppoMancante());
    return false;
}

} // namespace kv
