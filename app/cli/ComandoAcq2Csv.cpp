#include "Comandi.h"

#include "base/Lingua.h"
#include "base/PercorsoApp.h"
#include "monitoring/Canali.h"
#include "monitoring/EsportaCsv.h"
#include "monitoring/RegistrazioneAcq.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

namespace kv::cli {

int acq2csv(const QStringList &argomenti)
{
    QCommandLineParser p;
    p.addPositionalArgument(QStringLiteral("FILE.ACQ"), QStringLiteral("The recording to read."));
    p.addPositionalArgument(QStringLiteral("OUT.csv"),
                            QStringLiteral("Where the CSV goes; standard output when left out."),
                            QStringLiteral("[OUT.csv]"));
    int uscita = Fatto;
    if (!analizza(p, argomenti,
                  QStringLiteral("Write a recording as CSV, as the viewer exports it whole: UTF-8, a heading "
                                 "row of names and units, one row a sample, ',' between fields, '.' as "
                                 "decimal point. Lines of the recording that cannot be read are skipped and "
                                 "counted."),
                  1, 2, uscita))
        return uscita;
    const QStringList posizionali = p.positionalArguments();
    const QString sorgente = posizionali.at(0);
    const QString destinazione = posizionali.value(1);
    const bool json = p.isSet(QStringLiteral("json"));
    if (json && destinazione.isEmpty()) {
        err() << argomenti.at(0) << ": --json needs OUT.csv, since standard output carries the CSV\n";
        return Uso;
    }

    RegistrazioneAcq registrazione;
    switch (registrazione.leggi(sorgente)) {
    case RegistrazioneAcq::Esito::Letta:
        break;
    case RegistrazioneAcq::Esito::NonApribile:
        err() << argomenti.at(0) << ": cannot open " << sorgente << '\n';
        return FileCattivo;
    case RegistrazioneAcq::Esito::NonRegistrazione:
        err() << argomenti.at(0) << ": " << sorgente << " is not a recording\n";
        return FileCattivo;
    }

    // A file that lost its heading lines gets the program's names, in its language; nothing
    // is written to the program's folder for that.
    const QString eseguibile = QCoreApplication::applicationDirPath();
    const Lingua lingua =
        Lingua::DellaCartella(RisolviPercorsoApp({}, eseguibile, CartellaDatiUtente()), eseguibile);
    TabellaCanali canali;
    canali.InizializzaCanali(lingua.Cerca());

    const auto scrivi = [&](QIODevice &d) {
        return ScriviCsv(registrazione, canali, 0, registrazione.campioni(), d);
    };
    if (destinazione.isEmpty()) {
        out().flush();
        QFile uscitaStandard;
        if (!uscitaStandard.open(stdout, QIODevice::WriteOnly) || !scrivi(uscitaStandard)
            || !uscitaStandard.flush()) {
            err() << argomenti.at(0) << ": cannot write to standard output\n";
            return FileNonScritto;
        }
    } else {
        const EsitoEsportazione e = ScriviEsportazione(destinazione, sorgente, scrivi);
        switch (e.tipo) {
        case EsitoEsportazione::Tipo::Fatto:
            break;
        case EsitoEsportazione::Tipo::Collegamento:
            err() << argomenti.at(0) << ": " << destinazione
                  << " is a link or not a plain file; nothing written\n";
            return FileNonScritto;
        case EsitoEsportazione::Tipo::Sorgente:
            err() << argomenti.at(0) << ": " << destinazione << " is the recording itself\n";
            return Uso;
        case EsitoEsportazione::Tipo::Scrittura:
            err() << argomenti.at(0) << ": cannot write " << destinazione << ": " << e.dettaglio << '\n';
            return FileNonScritto;
        }
    }

    const int scartate = registrazione.righeScartate();
    if (json) {
        QJsonObject o{{QStringLiteral("samples"), registrazione.campioni()},
                      {QStringLiteral("skipped_lines"), scartate},
                      {QStringLiteral("output"), destinazione}};
        out() << QJsonDocument(o).toJson(QJsonDocument::Compact) << '\n';
    } else if (!p.isSet(QStringLiteral("quiet")) && scartate > 0) {
        err() << argomenti.at(0) << ": " << scartate << (scartate == 1 ? " line" : " lines")
              << " could not be read and were skipped (the first is line "
              << registrazione.primeScartate().front() << ")\n";
    }
    return Fatto;
}

} // namespace kv::cli
