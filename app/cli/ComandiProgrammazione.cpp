// The commands that move maps and software over the line, each through the dialogue of its
// page: read-map (ReadMappe), write-map (ProgMappe), flash (ProgSW).

#include "Comandi.h"
#include "SessioneCli.h"
#include "base/Lingua.h"

#include "base/FileSystem.h"
#include "programming/ControlloMappa.h"
#include "programming/ControlloS19.h"
#include "programming/DialogoMappe.h"
#include "programming/DialogoProgSW.h"
#include "programming/FileBlocchi.h"
#include "programming/ImmagineS19.h"
#include "programming/MappaArchiviata.h"
#include "shell/Programma.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

#include <unistd.h>

namespace kv::cli {

namespace {

// The place of a file given on the command line inside the command's own tree, for a page
// that takes its maps from the archive: LPG/CLI/CLI/<name>.
const QString Impianto = QStringLiteral("LPG");
const QString Sigla = QStringLiteral("CLI");

// A map's 512 bytes as its file holds them.
QByteArray comeFile(const QByteArray &immagine)
{
    QByteArray testo;
    for (qsizetype i = 0; i + LunBlocco <= immagine.size(); i += LunBlocco)
        testo += RecordBlocco(QByteArrayView(immagine).sliced(i, LunBlocco));
    return testo;
}

// An 'e' reply's line begins with its code: "05H ".
bool erroreEcu(const QString &testo)
{
    static const QRegularExpression codice(QStringLiteral("^[0-9A-F]{2}H "));
    return codice.match(testo).hasMatch();
}

// A name for a file's copy: its own when it is a plain one.
QString nomeDi(const QString &file, const QString &riserva)
{
    const QString nome = QFileInfo(file).completeBaseName();
    return !nome.isEmpty() && nome == nome.trimmed()
                   && ControllaNome(nome, ChiaveMappa::File) == ErroreNome::Nessuno
               ? nome
               : riserva;
}

// How a transfer that did not end well ends the command: no answer, or the ECU's refusal.
int fallita(SessioneCli &s, const QString &ultima)
{
    if (s.senzaRisposta())
        return s.fallisci(NessunaRisposta, ultima);
    return s.fallisci(erroreEcu(ultima) ? RifiutoEcu : NessunaRisposta, ultima);
}

// The map pages' side of their dialogues, for a command: progress on stderr by phase, the
// last line kept for the end, every question answered as the command was told.
class VistaMappeCli : public VistaMappe
{
public:
    VistaMappeCli(const Lingua &lingua, Avanzamento &avanzamento, QStringList fasi, bool sostituire)
        : m_lingua(lingua)
        , m_avanzamento(avanzamento)
        , m_fasi(std::move(fasi))
        , m_sostituire(sostituire)
    {}

    void mostraSegnalazione(const Messaggio &m) override
    {
        const QString testo = m_lingua.testo(m);
        if (!testo.isEmpty())
            ultima = testo;
    }
    void abilitaPagina(bool) override {}
    void mostraAvanzamento(int valore, int massimo) override
    {
        if (!m_avanzamento.aperta())
            m_avanzamento.inizia(m_fasi.value(m_fase, m_fasi.last()), massimo);
        m_avanzamento.aggiorna(valore);
    }
    void nascondiAvanzamento() override
    {
        if (m_avanzamento.aperta())
            ++m_fase;
        m_avanzamento.chiudi();
    }
    void beep() override {}
    int domanda(const Messaggio &, int, const Messaggio &) override
    {
        domandaRifiutata = !m_sostituire;
        return m_sostituire ? RispostaSiMappe : 0;
    }
    void chiudiPagina() override {}

    QString ultima;
    bool domandaRifiutata = false;

private:
    const Lingua &m_lingua;
    Avanzamento &m_avanzamento;
    QStringList m_fasi;
    int m_fase = 0;
    bool m_sostituire;
};

class VistaProgSWCli : public VistaProgSW
{
public:
    VistaProgSWCli(SessioneCli &s) : m_s(s) {}

    void mostraSegnalazione(const Messaggio &m) override
    {
        const QString testo = m_s.lingua().testo(m);
        if (!testo.isEmpty())
            ultima = testo;
    }
    void abilitaPagina(bool abilitata) override
    {
        if (!abilitata) {
            avviata = true;
        } else if (avviata) {
            // The flash is over: nothing more goes out, not even the identification that the
            // ECU's first frame with its new software would start.
            finita = true;
            m_s.chiudiPorta();
        }
    }
    void mostraBarra(bool visibile) override
    {
        if (visibile)
            m_s.avanzamento().inizia(QStringLiteral("flashing"), ImmagineSW::Blocchi);
        else
            m_s.avanzamento().chiudi();
    }
    void impostaBarra(int valore) override { m_s.avanzamento().aggiorna(valore); }
    void mostraMsg(const Messaggio &m, int, const Messaggio &) override { ultima = m_s.lingua().testo(m); }
    bool chiedi(const Messaggio &, const Messaggio &) override { return true; }

    QString ultima;
    bool avviata = false;
    bool finita = false;

private:
    SessioneCli &m_s;
};

// Why a map file is refused, as the map pages say it.
QString motivoMappa(const SessioneCli &s, const QString &file, const EsitoMappa &e)
{
    return file + QStringLiteral(": ") + s.lingua().testo(MessaggioEsitoMappa(e)).trimmed();
}

bool soloBootLoader(SessioneCli &s)
{
    if (s.programma().linea.ecu().EcuNormale)
        return false;
    s.fallisci(RifiutoEcu, QStringLiteral("the ECU runs only its boot loader: flash its software first"));
    return true;
}

} // namespace

int leggiMappa(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti);
    p.addOption(
        {QStringLiteral("archive"),
         QStringLiteral("File the map in the program's archive instead, as the map reading page does: "
                        "PLANT is LPG or CNG; the names follow the map tree's rules."),
         QStringLiteral("PLANT/MAKE/MODEL/NAME")});
    p.addOption({QStringLiteral("note"), QStringLiteral("The note of the map's row in the archive."),
                 QStringLiteral("TEXT")});
    p.addOption({QStringLiteral("yes"), QStringLiteral("Replace a map of the same names in the archive.")});
    p.addPositionalArgument(QStringLiteral("OUT.LKV"), QStringLiteral("The map file to write."),
                            QStringLiteral("[OUT.LKV]"));
    if (!s.prepara(QStringLiteral("Read the ECU's map (512 bytes from 0xC100) into a map file, written only "
                                  "once every block is in, as the program does."),
                   0, 1))
        return s.uscita();
    const bool archivio = p.isSet(QStringLiteral("archive"));
    if (archivio == (p.positionalArguments().size() == 1))
        return s.fallisci(Uso, QStringLiteral("give either OUT.LKV or --archive PLANT/MAKE/MODEL/NAME"));

    ChiaveMappa chiave{Impianto, Sigla, Sigla, QStringLiteral("MAP")};
    QString uscitaFile;
    if (archivio) {
        const QStringList nomi = p.value(QStringLiteral("archive")).split(u'/');
        if (nomi.size() != ChiaveMappa::Campi)
            return s.fallisci(Uso, QStringLiteral("--archive takes PLANT/MAKE/MODEL/NAME"));
        for (int n = 0; n < ChiaveMappa::Campi; ++n)
            chiave.impostaCampo(n, nomi.at(n));
        chiave.impianto = chiave.impianto.trimmed().toUpper();
        if (!std::count(std::begin(FileMappa::Impianti), std::end(FileMappa::Impianti), chiave.impianto))
            return s.fallisci(Uso, QStringLiteral("the plant is LPG or CNG"));
    } else {
        uscitaFile = QFileInfo(p.positionalArguments().first()).absoluteFilePath();
        if (!s.uscitaScrivibile(uscitaFile))
            return s.uscita();
    }

    // Into the archive the page's own way, in the program's folder; into a file through a map
    // of the command's own folder, copied out once it is whole.
    Programma &programma = s.crea(archivio);
    if (!s.apri() || !s.attendiEcu() || soloBootLoader(s))
        return s.uscita();
    VistaMappeCli vista(s.lingua(), s.avanzamento(), {QStringLiteral("reading")},
                        p.isSet(QStringLiteral("yes")));
    LetturaMappe lettura(programma.linea, programma.PercorsoApp, programma.catalogo, vista);
    lettura.Leggi(chiave, p.value(QStringLiteral("note")));
    if (!lettura.inCorso()) {
        s.chiudiPorta();
        return s.fallisci(Uso, vista.domandaRifiutata
                                   ? QStringLiteral("%1 is in the archive already; --yes replaces it")
                                         .arg(chiave.elenco().join(u'/'))
                                   : vista.ultima);
    }
    s.attendi([&] { return !lettura.inCorso(); });
    s.chiudiPorta();
    if (lettura.NumBloccoMappa() < lettura.TotBlocchiMappa())
        return fallita(s, vista.ultima);
    // Filed whole: the file the page put in place, checked strictly once more, and its row.
    const MappaArchiviata mappa = CaricaMappaArchiviata(programma.PercorsoApp, chiave);
    if (!mappa.mappa.ok()
        || (archivio
            && vista.ultima
                   != s.lingua().LeggiTesto(QStringLiteral("ReadMappe"), QStringLiteral("SEGNALAZIONE1.4"))))
        return s.fallisci(FileNonScritto, vista.ultima);
    if (!archivio && !ScriviFileIntero(uscitaFile, comeFile(mappa.mappa.immagine)))
        return s.fallisci(FileNonScritto, QStringLiteral("cannot write ") + uscitaFile);

    QJsonObject o{{QStringLiteral("blocks"), lettura.NumBloccoMappa()}};
    if (archivio)
        o.insert(QStringLiteral("archive"), mappa.percorso.chiave.elenco().join(u'/'));
    else
        o.insert(QStringLiteral("file"), uscitaFile);
    // The flag the 512 bytes do not hold, for show-map and diff to decode the map as the pages did.
    if (mappa.scalaLambda) {
        o.insert(QStringLiteral("scala_lambda"), *mappa.scalaLambda);
        s.dici(
            QStringLiteral("the ECU's ScalaLambda is %1: 'show-map --scala-lambda %1' shows the map as the "
                           "pages do")
                .arg(*mappa.scalaLambda));
    }
    return s.riuscito(o);
}

int scriviMappa(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti);
    p.addOption({QStringLiteral("verify"), QStringLiteral("Read the map back and compare it.")});
    p.addPositionalArgument(QStringLiteral("IN.LKV"), QStringLiteral("The map file to write."));
    if (!s.prepara(QStringLiteral("Write a map file into the ECU as the map programming page does: the whole "
                                  "file checked first, then its 8 blocks from 0xC100."),
                   1, 1))
        return s.uscita();
    const QString ingresso = p.positionalArguments().first();
    const EsitoMappa controllo = LeggiMappa(ingresso);
    if (!controllo.ok())
        return s.fallisci(FileCattivo, motivoMappa(s, ingresso, controllo));

    // The page takes its maps from the archive: the file goes into the command's own.
    Programma &programma = s.crea();
    const ChiaveMappa chiave{Impianto, Sigla, Sigla, nomeDi(ingresso, QStringLiteral("MAP"))};
    const PercorsoMappa posto = PercorsoFileMappa(programma.PercorsoApp, chiave);
    if (!posto.ok() || !CreaCartellaMappa(programma.PercorsoApp, posto)
        || !ScriviFileIntero(posto.file, comeFile(controllo.immagine)))
        return s.fallisci(FileNonScritto, QStringLiteral("cannot copy the map into ") + s.cartellaPropria());

    if (!s.apri() || !s.attendiEcu() || soloBootLoader(s))
        return s.uscita();
    const bool verifica = p.isSet(QStringLiteral("verify"));
    VistaMappeCli vista(s.lingua(), s.avanzamento(), {QStringLiteral("writing"), QStringLiteral("verifying")},
                        true);
    ScritturaMappe scrittura(programma.linea, programma.PercorsoApp, vista);
    const MotoreDialogo &motore = programma.linea.motore();
    const auto inCorso = [&] {
        const int stato = motore.StatoDialogo();
        return stato >= ScritturaMappe::Stato && stato < ScritturaMappe::Stato + 10;
    };
    scrittura.ProgrammaMappa(chiave, verifica);
    if (!inCorso()) {
        s.chiudiPorta();
        return s.fallisci(FileCattivo, vista.ultima);
    }
    s.attendi([&] { return !inCorso(); });
    s.chiudiPorta();
    if (!scrittura.MappaScritta())
        return fallita(s, vista.ultima);
    if (scrittura.PrimaDifferenza() >= 0)
        return s.fallisci(RifiutoEcu, vista.ultima);
    if (verifica
        && vista.ultima
               != s.lingua().LeggiTesto(QStringLiteral("ProgMappe"), QStringLiteral("SEGNALAZIONE1.6")))
        return fallita(s, vista.ultima);
    return s.riuscito({{QStringLiteral("file"), ingresso},
                       {QStringLiteral("blocks"), scrittura.NumBloccoMappa()},
                       {QStringLiteral("verified"), verifica},
                       {QStringLiteral("seconds"), s.secondi()}});
}

int flash(const QStringList &argomenti)
{
    QCommandLineParser p;
    SessioneCli s(p, argomenti);
    p.addOption({QStringLiteral("yes"),
                 QStringLiteral("Replace the software of an ECU that runs its application without asking; "
                                "needed when standard input is a terminal.")});
    p.addPositionalArgument(QStringLiteral("IN.S19"), QStringLiteral("The software release."));
    if (!s.prepara(
            QStringLiteral("Program the ECU's software as the Programming page does: the S19 file checked "
                           "whole, turned into the image with the ECU's identification strings, then "
                           "'I', the 220 blocks and 'F'."),
            1, 1))
        return s.uscita();
    const QString ingresso = p.positionalArguments().first();
    QByteArray contenuto;
    const EsitoS19 controllo = LeggiS19(ingresso, &contenuto);
    if (!controllo.ok()) {
        // The reasons of the Programming page, naming the first bad line.
        const QString motivo =
            s.lingua()
                .LeggiTesto(QStringLiteral("ProgSW"),
                            QStringLiteral("S19.") + QString::number(int(controllo.errore)))
                .trimmed()
                .replace(QLatin1String("XXX"), QString::number(controllo.riga))
                .replace(QLatin1String("YYY"), QString::number(controllo.colonna));
        return s.fallisci(FileCattivo, ingresso + QStringLiteral(": ") + motivo);
    }
    // The page flashes a release of its software folder: the file goes into the command's own.
    const QString nome = nomeDi(ingresso, QStringLiteral("RELEASE"));
    const QString cartella = CartellaFileS19(s.cartellaPropria());
    if (!QDir().mkpath(cartella)
        || !ScriviFileIntero(cartella + u'/' + nome + QStringLiteral(".S19"), contenuto))
        return s.fallisci(FileNonScritto,
                          QStringLiteral("cannot copy the release into ") + s.cartellaPropria());

    Programma &programma = s.crea();
    if (!s.apri() || !s.attendiEcu())
        return s.uscita();
    const StatoEcu &ecu = programma.linea.ecu();
    if (ecu.EcuNormale && !p.isSet(QStringLiteral("yes")) && ::isatty(STDIN_FILENO) == 1) {
        s.chiudiPorta();
        return s.fallisci(Uso, QStringLiteral("the ECU runs its application (%1, %2): flashing replaces it; "
                                              "--yes goes on")
                                   .arg(ecu.InfVeicolo.trimmed(), ecu.InfCodice.trimmed()));
    }
    VistaProgSWCli vista(s);
    DialogoProgSW dialogo(programma.linea, s.cartellaPropria(), vista);
    dialogo.scegli(nome);
    dialogo.avviaProgrammazione();
    if (!vista.avviata) {
        s.chiudiPorta();
        return s.fallisci(FileNonScritto, vista.ultima);
    }
    s.attendi([&] { return vista.finita || !dialogo.inCorso(); });
    s.chiudiPorta();
    if (vista.ultima
        != s.lingua().LeggiTesto(QStringLiteral("SEGNALAZIONI"), QStringLiteral("SEGNALAZIONE_12")))
        return fallita(s, vista.ultima);
    return s.riuscito({{QStringLiteral("file"), ingresso},
                       {QStringLiteral("blocks"), dialogo.NumBloccoSW()},
                       {QStringLiteral("seconds"), s.secondi()}});
}

} // namespace kv::cli
