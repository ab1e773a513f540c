#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace kv {

// A sections-and-keys text file read and written the way the Windows profile API does it:
// section and key matched without regard to case, blanks around key and value dropped, one
// pair of double quotes round a value dropped, ';' lines are comments. A write changes one
// line (or adds one) and leaves every other byte of the file as it was.
//
// Encoding: Windows-1252 as a rule; UTF-8 when the file starts with a BOM or is valid UTF-8
// holding at least one multi-byte sequence. Line ends CR LF or LF; new lines take the style
// of the file's first line end (CR LF for a new file).
class FileIni
{
public:
    enum class Codifica {
        Windows1252,
        Utf8,
        Utf8ConBom
    };
    enum class StatoLettura {
        Letto,
        Assente,
        Errore
    };

    // An empty file: Windows-1252, CR LF.
    FileIni();

    // Never fails: any byte soup gives some sections and keys, possibly none.
    static FileIni daByte(const QByteArray &byte);
    // A missing file reads as empty (Assente); one that exists but cannot be read as a
    // regular file of sane size is Errore, and is empty too.
    static FileIni daFile(const QString &percorso, StatoLettura *stato = nullptr);

    QString valore(const QString &sezione, const QString &chiave, const QString &predefinito = {}) const;
    bool contiene(const QString &sezione, const QString &chiave) const;
    // Names as first spelt in the file, in file order, each once.
    QStringList sezioni() const;
    QStringList chiavi(const QString &sezione) const;

    // Sets a key in memory. False, and nothing changed, for a name or value that the file
    // could not hold: an empty or blank-edged section or key, a line break anywhere, ']' in
    // a section, '=' in a key, a key starting with '[' or ';'.
    bool imposta(const QString &sezione, const QString &chiave, const QString &valore);

    // Replaces the file in one step: a crash or a full disk leaves the old file or the new
    // one, never half.
    bool salva(const QString &percorso) const;

    const QByteArray &byte() const { return m_byte; }
    Codifica codifica() const { return m_codifica; }
    bool fineRigaCrLf() const { return m_crlf; }

    // One look-up from the file: default when the file, the section or the key is absent.
    static QString leggi(const QString &percorso, const QString &sezione, const QString &chiave,
                         const QString &predefinito = {});
    // One key written to the file, which is made when missing. False when the file exists but
    // cannot be read (it is then left alone), when the name or value is refused, or when the
    // file cannot be written.
    static bool scrivi(const QString &percorso, const QString &sezione, const QString &chiave,
                       const QString &valore);

private:
    enum class TipoRiga : quint8 {
        Vuota,
        Commento,
        Sezione,
        Chiave,
        Altro
    };

    struct Riga
    {
        qsizetype inizio = 0;    // first byte of the content
        qsizetype lunghezza = 0; // content, without the line end
        qsizetype valore = 0;    // key lines: first byte after '=' and its blanks
        quint8 fine = 0;         // bytes of the line end: 0, 1 (LF) or 2 (CR LF)
        TipoRiga tipo = TipoRiga::Vuota;
    };

    struct Sezione
    {
        QString nome;
        int riga = 0;               // the header line
        int ultimaPiena = 0;        // last line that is neither blank nor a comment
        QHash<QString, int> chiavi; // folded key -> line of its first occurrence
        QStringList ordine;         // keys as first spelt
    };

    static FileIni analizza(const QByteArray &byte, const Codifica *forzata);
    QString testo(qsizetype inizio, qsizetype fine) const;
    QByteArray inCodifica(const QString &testo) const;
    const Sezione *trovaSezione(const QString &nome) const;

    QByteArray m_byte;
    QList<Riga> m_righe;
    QList<Sezione> m_sezioni;
    QHash<QString, int> m_indice; // folded section -> its first occurrence
    Codifica m_codifica = Codifica::Windows1252;
    bool m_crlf = true;
};

} // namespace kv
