#pragma once

#include <QCommandLineParser>
#include <QStringList>
#include <QTextStream>

#include <span>

namespace kv::cli {

// What a script sees of a command's end: the same number for the same kind of failure,
// whatever the command.
enum Uscita : int {
    Fatto = 0,
    Uso = 1,                 // a wrong or missing argument
    NessunaRisposta = 2,     // no ECU answered, or it stopped answering
    RifiutoEcu = 3,          // the ECU answered with an error
    FileCattivo = 4,         // an input file that is not what it must be
    PortaNonDisponibile = 5, // missing, busy, or not ours to open
    FileNonScritto = 6       // an output that could not be written; what was there stays
};

struct Comando
{
    const char *nome;
    const char *sintesi; // one line, for the list of commands
    // argomenti[0] is "korvantine-cli NAME", so that a parser's messages name the command.
    int (*esegui)(const QStringList &argomenti);
};

// The commands, each in a file of its own.
int acq2csv(const QStringList &argomenti);
// On the line (ComandiLinea.cpp, ComandiProgrammazione.cpp).
int porte(const QStringList &argomenti);
int identifica(const QStringList &argomenti);
int leggiMappa(const QStringList &argomenti);
int scriviMappa(const QStringList &argomenti);
int flash(const QStringList &argomenti);
int registra(const QStringList &argomenti);

// Every command, in the order the help lists them.
std::span<const Comando> comandi();

// Standard output and error as UTF-8 text.
QTextStream &out();
QTextStream &err();

// The options every command takes (--help, --json, --quiet) added to p, then the arguments
// parsed. False when the command must end now: --help printed (uscita Fatto), or a wrong
// option or count of positional arguments, told on stderr (uscita Uso).
bool analizza(QCommandLineParser &p, const QStringList &argomenti, const QString &descrizione,
              int minimiPosizionali, int massimiPosizionali, int &uscita);

} // namespace kv::cli
