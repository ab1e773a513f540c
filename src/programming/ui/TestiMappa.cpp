#include "programming/ui/TestiMappa.h"

#include "base/Lingua.h"
#include "pages/GriglieMessaPunto.h"

namespace kv {

QString TitoloGruppo(const Lingua &lingua, const GruppoMappa &gruppo)
{
    if (gruppo.id == IdPagina::Nessuna)
        return lingua.LeggiTesto(QString::fromLatin1(SezioneMappe), QStringLiteral("GRUPPO.ALTRO")).trimmed();
    // A tuning page has one title, a calibration page one for each way it is opened.
    const QString titolo = lingua.LeggiTesto(gruppo.sezione, QStringLiteral("CAPTION")).trimmed();
    return titolo.isEmpty() ? lingua.LeggiTesto(gruppo.sezione, QStringLiteral("CAPTION.0")).trimmed()
                            : titolo;
}

QString EtichettaVoce(const Lingua &lingua, const MappaDecodificata &mappa, const VoceMappa &voce)
{
    if (voce.piano.riga >= 0 && voce.gruppo >= 0 && size_t(voce.gruppo) < mappa.gruppi.size()) {
        const QString &sezione = mappa.gruppi[size_t(voce.gruppo)].sezione;
        const QString n = QString::number(voce.piano.riga);
        const QString etichetta = lingua.LeggiTesto(sezione, QStringLiteral("LABPARAMETRO.") + n).trimmed();
        const QString misura = lingua.LeggiTesto(sezione, QStringLiteral("MISURA.") + n).trimmed();
        return misura.isEmpty() ? etichetta : etichetta + QStringLiteral(" [") + misura + u']';
    }
    // An element is numbered from 1; a lambda map cell by its RPM and its TPS zone.
    const QString nome = NomeVoce(voce.parametro());
    const qsizetype aperta = nome.indexOf(u'(');
    const int i = aperta < 0 ? 0 : nome.mid(aperta + 1).chopped(1).toInt();
    QString t = lingua
                    .LeggiTesto(QString::fromLatin1(SezioneMappe),
                                QStringLiteral("VOCE.") + nome.left(aperta < 0 ? nome.size() : aperta))
                    .trimmed();
    if (t.isEmpty())
        return nome;
    return t.replace(QLatin1String("XXX"), QString::number(i + 1))
        .replace(QLatin1String("YYY"), QString::number(i / MappaLambda::ZoneTps + 1))
        .replace(QLatin1String("ZZZ"), QString::number(i % MappaLambda::ZoneTps + 1));
}

QString TestoMostrato(const Lingua &lingua, const VoceMappa &voce)
{
    if (voce.scelta >= 0 && !voce.piano.lista.isEmpty()) {
        const QString t =
            lingua.LeggiTesto(voce.piano.lista, voce.piano.lista + u'.' + QString::number(voce.scelta))
                .trimmed();
        if (!t.isEmpty())
            return t;
    }
    return voce.testo;
}

} // namespace kv
