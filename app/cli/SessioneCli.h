#pragma once

#include "Avanzamento.h"

#include "base/Lingua.h"
#include "link/Porta.h"

#include <QCommandLineParser>
#include <QJsonObject>
#include <QTemporaryDir>

#include <functional>
#include <memory>

namespace kv {
class Programma;
}

namespace kv::cli {

// What the commands that talk to an ECU share: the program's folder, its language and serial
// settings, the port chosen, the program's own state on the real port and timers, the wait
// for the ECU, progress and the one way to end (a status, a line on stderr, JSON on stdout).
//
// The program's state keeps its transient files (FILESW.TXT, KVMAPPA.TMP, the frame log) in a
// folder of the command's own, unless it must work in the program's folder itself (a map
// filed in the archive): commands on several ports may run at once, and beside the program.
class SessioneCli
{
public:
    // How long an ECU has to make itself known: its first live frame and the answers to the
    // version request and the four reads behind it, or a frame of its boot loader.
    static constexpr int AttesaEcuMs = 10000;

    // --port and --baud (conPorta) and --home go into p at once, ahead of the command's own
    // options, so that --help lists them first. p and argomenti stay the command's, and
    // outlive the session.
    SessioneCli(QCommandLineParser &p, const QStringList &argomenti, bool conPorta = true);
    ~SessioneCli();
    SessioneCli(const SessioneCli &) = delete;
    SessioneCli &operator=(const SessioneCli &) = delete;

    // The arguments parsed as analizza() does, then the common options read: the folder, its
    // language, and (conPorta) the port and speed, from the options or from KORVANTINE.INI.
    // False when the command must end now, with the status in uscita(): --help printed, or a
    // wrong argument or option, told.
    bool prepara(const QString &descrizione, int minimiPosizionali, int massimiPosizionali);

    // The program's state with the real port and timers, in the command's own folder or
    // (nellaCasa) in the program's.
    Programma &crea(bool nellaCasa = false);
    // Opens the port. False (status 5) with the reason: missing, busy, or not ours to open.
    bool apri();
    // Until the ECU is identified, or known to run only its boot loader. False (status 2)
    // when nothing of the kind comes in time.
    bool attendiEcu();
    // Serves events until fatto() holds (checked every few milliseconds) or the time is up;
    // false when the time ran out. A negative time waits for as long as it takes.
    bool attendi(const std::function<bool()> &fatto, int millisecondi = -1);
    // The port is let go: nothing more is sent, and the lock goes with it.
    void chiudiPorta();

    // A file the user named may be written there: not through a link, not over a folder, into
    // a folder that exists. False (status 6), told, otherwise.
    bool uscitaScrivibile(const QString &percorso);

    // The end: the text on stderr (and in the JSON object), the status returned.
    int fallisci(int uscita, const QString &testo);
    // The end of a command that did its job: the JSON object on stdout with --json.
    int riuscito(QJsonObject dati);
    // A line on stderr, unless --quiet.
    void dici(const QString &testo);

    [[nodiscard]] int uscita() const { return m_uscita; }
    // The request timer ran out, or the line went away, since the port was opened.
    [[nodiscard]] bool senzaRisposta() const { return m_senzaRisposta; }
    [[nodiscard]] const QString &casa() const { return m_casa; }
    // The command's own folder, gone when the command ends.
    [[nodiscard]] QString cartellaPropria() const { return m_propria.path(); }
    [[nodiscard]] const ImpostazioniPorta &porta() const { return m_porta; }
    [[nodiscard]] bool json() const { return m_json; }
    Programma &programma() { return *m_programma; }
    const Lingua &lingua() const { return m_lingua; }
    Avanzamento &avanzamento() { return m_avanzamento; }
    // The time since the port was opened, in seconds.
    [[nodiscard]] double secondi() const;

private:
    bool risolviPorta();

    QCommandLineParser &m_parser;
    const QStringList &m_argomenti;
    bool m_conPorta;
    QString m_comando;
    QString m_casa;
    Lingua m_lingua;
    ImpostazioniPorta m_porta;
    QString m_nomePorta; // as it was given: COM2, or the device
    QTemporaryDir m_propria;
    std::unique_ptr<Programma> m_programma;
    Avanzamento m_avanzamento;
    bool m_json = false;
    bool m_quiet = false;
    bool m_senzaRisposta = false;
    int m_uscita = 0;
    qint64 m_aperturaMs = -1;
};

} // namespace kv::cli
