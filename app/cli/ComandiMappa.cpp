#include "ComandiMappa.h"

#include "Comandi.h"

#include "calibration/TaraturaParametri.h"
#include "pages/ConfrontoMappe.h"
#include "programming/ControlloMappa.h"
#include "variables/Catalogo.h"

#include <optional>

namespace kv::cli {

namespace {

const QString OpzioneScala = QStringLiteral("scala-lambda");

void aggiungiOpzioni(QCommandLineParser &p)
{
    p.addOption(
        {OpzioneScala,
         QStringLiteral("ScalaLambda of the ECU the map was read from: 0 shows the lambda thresholds by "
                        "rule A (the default, as a map alone does not say), any other value as they stand."),
         QStringLiteral("N")});
}

// Why a file is no map, naming the first bad record.
QString motivo(const EsitoMappa &e)
{
    using Errore = EsitoMappa::Errore;
    switch (e.errore) {
    case Errore::Nessuno:
        return {};
    case Errore::Illeggibile:
        return QStringLiteral("it cannot be read");
    case Errore::Corto:
        return QStringLiteral("record %1 is missing or cut short (a map is 8 records of 128 hexadecimal "
                              "characters and CR LF)")
            .arg(e.record);
    case Errore::Lungo:
        return QStringLiteral("it goes on after record 8 (a map is 8 records, 1040 bytes)");
    case Errore::NonEsadecimale:
        return QStringLiteral("record %1, character %2 is not a hexadecimal digit")
            .arg(e.record)
            .arg(e.colonna);
    case Errore::FineRiga:
        return QStringLiteral("record %1 does not end with CR LF after its 128 characters").arg(e.record);
    }
    return {};
}

// The file checked and decoded; nothing when it is no map, told on stderr.
std::optional<MappaDecodificata> decodifica(const QString &comando, const QString &file,
                                            ScalaLambdaMappa scala)
{
    const EsitoMappa e = LeggiMappa(file);
    if (!e.ok()) {
        err() << comando << ": " << file << " is not a map: " << motivo(e) << '\n';
        return std::nullopt;
    }
    return DecodificaMappa(e.immagine, Catalogo(), scala, {&DescrizioneParametri()});
}

// The option, or 0 by rule A; false for a value that is no byte.
bool scala(const QCommandLineParser &p, const QString &comando, ScalaLambdaMappa &s)
{
    if (!p.isSet(OpzioneScala)) {
        if (!p.isSet(QStringLiteral("quiet")))
            err() << comando
                  << ": ScalaLambda 0 taken (lambda thresholds by rule A): a map alone does not "
                     "carry it; --scala-lambda N gives the ECU's\n";
        return true;
    }
    bool ok = false;
    const int n = p.value(OpzioneScala).toInt(&ok);
    if (!ok || n < 0 || n > 255) {
        err() << comando << ": --scala-lambda takes a number from 0 to 255\n";
        return false;
    }
    s = ScalaDa(n, OrigineScala::Comando);
    return true;
}

// Entries in catalogue order: what a script finds by name.
template <typename F>
void perVoce(const MappaDecodificata &m, F &&f)
{
    for (int p = 0; p < Par::Numero; ++p)
        if (const VoceMappa *v = m.voce(p))
            f(p, *v);
}

QString numeroJson(const QString &testo)
{
    return testo.isEmpty() ? QStringLiteral("null") : testo;
}

} // namespace

int mostraMappa(const QStringList &argomenti)
{
    QCommandLineParser p;
    aggiungiOpzioni(p);
    p.addPositionalArgument(QStringLiteral("FILE.LKV"), QStringLiteral("the map file"));
    int uscita = Fatto;
    if (!analizza(
            p, argomenti,
            QStringLiteral("Print a map decoded: every parameter it holds, as the tuning pages show it."), 1,
            1, uscita))
        return uscita;
    const QString &comando = argomenti.first();
    ScalaLambdaMappa s;
    if (!scala(p, comando, s))
        return Uso;
    const std::optional<MappaDecodificata> m = decodifica(comando, p.positionalArguments().first(), s);
    if (!m)
        return FileCattivo;
    if (p.isSet(QStringLiteral("json"))) {
        QStringList voci;
        perVoce(*m, [&](int n, const VoceMappa &v) {
            voci << QStringLiteral("\"%1\": %2").arg(NomeVoce(n), numeroJson(v.testo));
        });
        out() << "{\"parameters\": {" << voci.join(QLatin1String(", ")) << "}}\n";
    } else if (!p.isSet(QStringLiteral("quiet"))) {
        perVoce(*m, [](int n, const VoceMappa &v) {
            out() << NomeVoce(n).leftJustified(30) << ' ' << v.testo << '\n';
        });
    }
    return Fatto;
}

int differenzeMappe(const QStringList &argomenti)
{
    QCommandLineParser p;
    aggiungiOpzioni(p);
    p.addPositionalArgument(QStringLiteral("A.LKV"), QStringLiteral("the first map"));
    p.addPositionalArgument(QStringLiteral("B.LKV"), QStringLiteral("the second map"));
    int uscita = Fatto;
    if (!analizza(
            p, argomenti,
            QStringLiteral("Print the parameters that two maps hold otherwise, as the tuning pages show "
                           "them: the value in A, then in B."),
            2, 2, uscita))
        return uscita;
    const QString &comando = argomenti.first();
    ScalaLambdaMappa s;
    if (!scala(p, comando, s))
        return Uso;
    const QStringList file = p.positionalArguments();
    std::optional<MappaDecodificata> a = decodifica(comando, file.at(0), s);
    std::optional<MappaDecodificata> b = decodifica(comando, file.at(1), s);
    if (!a || !b)
        return FileCattivo;
    const Confronto c = ConfrontaMappe(std::move(*a), std::move(*b));
    const bool json = p.isSet(QStringLiteral("json"));
    const bool quiet = p.isSet(QStringLiteral("quiet"));
    QStringList voci;
    perVoce(c.a, [&](int n, const VoceMappa &va) {
        if (!c.diversa(n))
            return;
        const VoceMappa &vb = *c.b.voce(n);
        if (json)
            voci << QStringLiteral("\"%1\": [%2, %3]")
                        .arg(NomeVoce(n), numeroJson(va.testo), numeroJson(vb.testo));
        else if (!quiet)
            out() << NomeVoce(n).leftJustified(30) << ' ' << va.testo << ' ' << vb.testo << '\n';
    });
    if (json)
        out() << "{\"differences\": {" << voci.join(QLatin1String(", ")) << "}}\n";
    return Fatto;
}

} // namespace kv::cli
