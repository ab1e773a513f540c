#pragma once

#include "archives/Archivio.h"
#include "base/Messaggio.h"
#include "variables/AreaMappa.h"

#include <QLatin1String>
#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <optional>

namespace kv {

// A map: the 512 bytes of ECU memory from 0xC100, kept as a block file of 8 records
// (<name>.LKV) below MAPPATURE/<plant>/<make>/<model>/, with its row in ARCHMAPPE.MDB. The
// program gives the bytes no meaning, but uses a file only when it is exactly a map
// (ControllaMappa).
namespace FileMappa {
inline constexpr quint32 PrimoIndirizzo = AreaMappa::Inizio;
inline constexpr quint32 UltimoIndirizzo = AreaMappa::Fine;
inline constexpr int Dimensione = AreaMappa::Dimensione;
inline constexpr int Blocchi = AreaMappa::Blocchi;
inline constexpr qint64 DimensioneFile = qint64(Blocchi) * 130;
inline constexpr QLatin1String Estensione(".LKV");
// Built a record at a time in the program's folder while a read goes on.
inline constexpr QLatin1String Temporaneo("KVMAPPA.TMP");
inline constexpr QLatin1String Impianti[] = {QLatin1String("LPG"), QLatin1String("CNG")};
} // namespace FileMappa

// The four names that place a map: its folders, its file, and the key of its row.
struct ChiaveMappa
{
    enum Campo {
        Impianto,
        Marca,
        Modello,
        File
    };
    static constexpr int Campi = 4;

    QString impianto;
    QString marca;
    QString modello;
    QString file;

    QString campo(int n) const;
    void impostaCampo(int n, const QString &testo);
    // In the order of the index PER_NOME.
    QStringList elenco() const { return {impianto, marca, modello, file}; }
    // Every field with text once trimmed.
    bool completa() const;
    ChiaveMappa pulita() const; // each field trimmed
};

// ---- names

enum class ErroreNome {
    Nessuno,
    Vuoto,
    CarattereVietato, // a separator, a character no file system takes, or a control character
    TroppoLungo,      // longer than its field in the catalogue
    Punto,            // begins or ends with a point: ".", "..", hidden, or cut by Windows
    Riservato,        // a device name of Windows (NomeRiservato): no medium could carry it
};

// The keys a name field drops: the "\\" and "," the fitter could never type, and what no file
// name may hold here or on an exchange medium: "/", ":", "*", "?", '"', "<", ">", "|" and the
// control characters. A point inside a name is taken ("Punto 1.2"), as the record card takes
// it; one at either end is refused by ControllaNome.
bool CarattereVietatoNome(QChar c);
// The text with those characters taken out, as the key filter leaves it after a paste.
QString FiltraNome(const QString &testo);
// The longest text the catalogue takes for that field (3, 50, 50, 20).
int LunghezzaMassimaNome(int campo);
// The check of one trimmed name: what the key filter keeps out, a point at either end, a
// device name, and the field's size.
ErroreNome ControllaNome(const QString &nome, int campo);

struct EsitoNomi
{
    ErroreNome errore = ErroreNome::Nessuno;
    int campo = -1; // the first field at fault
    bool ok() const { return errore == ErroreNome::Nessuno; }
};
// The four trimmed names in order; the first fault wins.
EsitoNomi ControllaNomi(const ChiaveMappa &chiave);

// ---- places

// MAPPATURE below the program's folder, as it is spelt there.
QString CartellaMappe(const QString &percorsoApp);
// KVMAPPA.TMP in the program's folder.
QString PercorsoTemporaneoMappa(const QString &percorsoApp);

struct PercorsoMappa
{
    enum class Errore {
        Nessuno,
        Nome,       // a name breaks the rules: see nomi
        FuoriRadice // the place leaves MAPPATURE or passes through a link
    };
    Errore errore = Errore::Nessuno;
    EsitoNomi nomi;
    // The names as the disk spells them where folders or the file exist already (matched
    // without regard to case, as the catalogue matches its keys), as given elsewhere.
    ChiaveMappa chiave;
    QString cartella; // the model's folder
    QString file;     // the .LKV file: NomeFileMappa
    bool ok() const { return errore == Errore::Nessuno; }
};

// Which names a place is built from: new ones, typed by the fitter, which must keep the rules
// above; or names that are there already (the tree's), of which only the place is checked,
// since a file brought from elsewhere may be called anything.
enum class NomiMappa {
    Nuovi,
    Esistenti
};

// Where the map of those names lies, whether or not it exists yet. Each level is looked up
// without regard to case; the result is inside MAPPATURE, exactly four levels down, and
// passes no symbolic link on the way, or it is refused.
PercorsoMappa PercorsoFileMappa(const QString &percorsoApp, const ChiaveMappa &chiave,
                                NomiMappa nomi = NomiMappa::Nuovi);

// Why a place was refused, naming the field at fault when it is a name.
Messaggio MessaggioPercorso(const PercorsoMappa &percorso);

// True when a map file is at the place (a plain file, not a link).
bool EsisteMappa(const PercorsoMappa &percorso);

// Makes the model's folder of a place that passed the checks, and checks it again once made.
bool CreaCartellaMappa(const QString &percorsoApp, const PercorsoMappa &percorso);

// Puts the finished temporary file in place of the map file in one step, once it has been
// found to be a whole map: until the rename, a map of the same name stays whole, and nothing
// else is ever there. False, with the old map as it was, on any failure.
bool PosaMappa(const QString &temporaneo, const QString &percorsoApp, const PercorsoMappa &percorso);

// ---- catalogue

// Writes the row of the map: the row of the same key is edited, or a new one is added. A
// note of blanks only is NULL. scalaLambda is the ECU's flag when the map was read from it
// (any non-zero is kept as 255), NULL when nobody knows. The archive is opened and closed again.
EsitoArchivio RegistraMappa(const QString &percorsoApp, const ChiaveMappa &chiave, const QString &nota,
                            std::optional<double> scalaLambda = std::nullopt);

} // namespace kv
