#include "programming/FileMappa.h"

#include "archives/Cartelle.h"
#include "archives/SchemaArchivi.h"
#include "base/FileSystem.h"
#include "programming/ControlloMappa.h"
#include "programming/FileBlocchi.h"

#include <QFile>
#include <QFileInfo>

namespace kv {

QString ChiaveMappa::campo(int n) const
{
    switch (n) {
    case Impianto:
        return impianto;
    case Marca:
        return marca;
    case Modello:
        return modello;
    case File:
        return file;
    default:
        return {};
    }
}

void ChiaveMappa::impostaCampo(int n, const QString &testo)
{
    switch (n) {
    case Impianto:
        impianto = testo;
        break;
    case Marca:
        marca = testo;
        break;
    case Modello:
        modello = testo;
        break;
    case File:
        file = testo;
        break;
    default:
        break;
    }
}

bool ChiaveMappa::completa() const
{
    for (int n = 0; n < Campi; ++n)
        if (campo(n).trimmed().isEmpty())
            return false;
    return true;
}

ChiaveMappa ChiaveMappa::pulita() const
{
    return {impianto.trimmed(), marca.trimmed(), modello.trimmed(), file.trimmed()};
}

bool CarattereVietatoNome(QChar c)
{
    static constexpr char16_t Vietati[] = u"\\,/:*?\"<>|";
    if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format
        || c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph)
        return true;
    for (char16_t v : Vietati)
        if (v != 0 && c == QChar(v))
            return true;
    return false;
}

QString FiltraNome(const QString &testo)
{
    QString filtrato;
    filtrato.reserve(testo.size());
    for (QChar c : testo)
        if (!CarattereVietatoNome(c))
            filtrato.append(c);
    return filtrato;
}

int LunghezzaMassimaNome(int campo)
{
    static constexpr const char16_t *Nomi[] = {u"TipoImpianto", u"Marca", u"Modello", u"File"};
    if (campo < 0 || campo >= ChiaveMappa::Campi)
        return 0;
    const SchemaArchivio &s = SchemaMappe();
    const int i = s.campo(QStringView(Nomi[campo]));
    return i < 0 ? 0 : s.campi.at(i).dimensione;
}

ErroreNome ControllaNome(const QString &nome, int campo)
{
    if (nome.trimmed().isEmpty())
        return ErroreNome::Vuoto;
    if (FiltraNome(nome) != nome)
        return ErroreNome::CarattereVietato;
    if (nome.startsWith(u'.') || nome.endsWith(u'.'))
        return ErroreNome::Punto;
    if (NomeRiservato(nome))
        return ErroreNome::Riservato;
    const int massimo = LunghezzaMassimaNome(campo);
    if (massimo > 0 && nome.size() > massimo)
        return ErroreNome::TroppoLungo;
    return ErroreNome::Nessuno;
}

EsitoNomi ControllaNomi(const ChiaveMappa &chiave)
{
    for (int n = 0; n < ChiaveMappa::Campi; ++n) {
        const ErroreNome e = ControllaNome(chiave.campo(n).trimmed(), n);
        if (e != ErroreNome::Nessuno)
            return {e, n};
    }
    return {};
}

QString CartellaMappe(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, FileArchivi::CartellaMappe);
}

QString PercorsoTemporaneoMappa(const QString &percorsoApp)
{
    return PercorsoFile(percorsoApp, FileMappa::Temporaneo);
}

PercorsoMappa PercorsoFileMappa(const QString &percorsoApp, const ChiaveMappa &chiave, NomiMappa nomi)
{
    PercorsoMappa r;
    r.chiave = chiave.pulita();
    if (nomi == NomiMappa::Nuovi)
        r.nomi = ControllaNomi(r.chiave);
    else if (!r.chiave.completa())
        r.nomi = {ErroreNome::Vuoto, 0};
    if (!r.nomi.ok()) {
        r.errore = PercorsoMappa::Errore::Nome;
        return r;
    }
    for (int n = 0; n < ChiaveMappa::Campi; ++n) {
        if (r.chiave.campo(n).contains(u'/')) {
            r.errore = PercorsoMappa::Errore::FuoriRadice;
            return r;
        }
    }
    const QString radice = CartellaMappe(percorsoApp);
    QString cartella = radice;
    for (int n = ChiaveMappa::Impianto; n <= ChiaveMappa::Modello; ++n) {
        const QString trovato = TrovaFile(cartella, r.chiave.campo(n));
        if (!trovato.isEmpty())
            r.chiave.impostaCampo(n, QFileInfo(trovato).fileName());
        cartella += u'/' + r.chiave.campo(n);
    }
    // A file brought from elsewhere may spell its extension otherwise: it is the same map.
    QString nomeFile = r.chiave.file + FileMappa::Estensione;
    const QString trovato = TrovaFile(cartella, nomeFile);
    if (!trovato.isEmpty()) {
        nomeFile = QFileInfo(trovato).fileName();
        r.chiave.file = nomeFile.chopped(FileMappa::Estensione.size());
    }
    r.cartella = cartella;
    r.file = cartella + u'/' + nomeFile;

    // The names have passed the rules; what the disk adds must not take the path elsewhere.
    const QStringList parti = r.file.mid(radice.size() + 1).split(u'/');
    bool forma = parti.size() == ChiaveMappa::Campi;
    for (const QString &parte : parti)
        forma = forma && !parte.trimmed().isEmpty() && parte != u"." && parte != u"..";
    // MAPPATURE itself may be no link out of the program's folder either.
    if (!forma || !DentroRadice(radice, percorsoApp) || !DentroRadice(r.file, radice))
        r.errore = PercorsoMappa::Errore::FuoriRadice;
    return r;
}

Messaggio MessaggioPercorso(const PercorsoMappa &percorso)
{
    if (percorso.errore == PercorsoMappa::Errore::Nome)
        return Messaggio("ReadMappe", "LABCAMPO." + QString::number(percorso.nomi.campo))
            .ritaglia()
            .poi(Messaggio("ReadMappe", "NOME." + QString::number(int(percorso.nomi.errore)))
                     .con(QStringLiteral("XXX"), QString::number(LunghezzaMassimaNome(percorso.nomi.campo))),
                 QStringLiteral(": "));
    return Messaggio("ReadMappe", "NOME.9");
}

bool EsisteMappa(const PercorsoMappa &percorso)
{
    const QFileInfo info(percorso.file);
    return percorso.ok() && info.isFile() && !info.isSymLink();
}

bool CreaCartellaMappa(const QString &percorsoApp, const PercorsoMappa &percorso)
{
    const QString radice = CartellaMappe(percorsoApp);
    if (!percorso.ok() || !DentroRadice(radice, percorsoApp) || !DentroRadice(percorso.cartella, radice))
        return false;
    return CreaCartella(percorso.cartella) == -1 && DentroRadice(percorso.cartella, radice)
           && QFileInfo(percorso.cartella).isDir();
}

bool PosaMappa(const QString &temporaneo, const QString &percorsoApp, const PercorsoMappa &percorso)
{
    const QString radice = CartellaMappe(percorsoApp);
    if (!percorso.ok() || !DentroRadice(radice, percorsoApp) || !DentroRadice(percorso.file, radice)
        || QFileInfo(temporaneo).isSymLink())
        return false;
    // Only a whole map goes in: a temporary file that a full disk cut short is no successor.
    const EsitoMappa finita = LeggiMappa(temporaneo);
    if (!finita.ok())
        return false;
    QByteArray byte;
    for (int n = 0; n < FileMappa::Blocchi; ++n)
        byte += RecordBlocco(QByteArrayView(finita.immagine).sliced(n * LunBlocco, LunBlocco));
    return ScriviFileIntero(percorso.file, byte);
}

EsitoArchivio RegistraMappa(const QString &percorsoApp, const ChiaveMappa &chiave, const QString &nota,
                            std::optional<double> scalaLambda)
{
    Archivio db;
    if (!DentroRadice(CartellaMappe(percorsoApp), percorsoApp))
        return {ErroreArchivio::FileEstraneo, CartellaMappe(percorsoApp), {}};
    if (!ApriArchivioMappe(CartellaMappe(percorsoApp), FileArchivi::FileMappe, db))
        return db.Esito();
    const ChiaveMappa k = chiave.pulita();
    RigaArchivio riga = db.NuovaRiga();
    riga.Imposta(u"TipoImpianto", k.impianto);
    riga.Imposta(u"Marca", k.marca);
    riga.Imposta(u"Modello", k.modello);
    riga.Imposta(u"File", k.file);
    const QString n = nota.trimmed();
    riga.Imposta(u"Note", n.isEmpty() ? std::nullopt : std::optional<QString>(n));
    if (scalaLambda)
        riga.Imposta(u"ScalaLambda", QString::number(*scalaLambda != 0 ? 255 : 0));
    db.Salva(riga);
    const EsitoArchivio esito = db.Esito();
    ChiudiArchivioMappe(db);
    return esito;
}

} // namespace kv
