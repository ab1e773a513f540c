#include "monitoring/EsportaCsv.h"

#include "monitoring/Canali.h"
#include "monitoring/RegistrazioneAcq.h"

#include <QFileInfo>
#include <QSaveFile>

#include <charconv>
#include <cmath>

namespace kv {

namespace {

constexpr qsizetype Scarico = qsizetype(1) << 20;

// A heading cell quoted when it holds what would split or end it.
QByteArray cella(const QString &testo)
{
    QByteArray b = testo.toUtf8();
    if (!b.contains(',') && !b.contains('"') && !b.contains('\n') && !b.contains('\r'))
        return b;
    b.replace("\"", "\"\"");
    return '"' + b + '"';
}

void numero(QByteArray &riga, double v)
{
    char testo[32];
    std::to_chars_result r{};
    // Whole numbers, as the recorder writes them, without a decimal point.
    if (v == std::trunc(v) && std::fabs(v) < 1e15)
        r = std::to_chars(testo, testo + sizeof testo, static_cast<long long>(v));
    else
        r = std::to_chars(testo, testo + sizeof testo, v);
    riga.append(testo, r.ptr - testo);
}

} // namespace

bool ScriviCsv(const RegistrazioneAcq &registrazione, const TabellaCanali &canali, qsizetype da, qsizetype a,
               QIODevice &destinazione)
{
    const auto colonna = [](int k) {
        return k == 0 ? int(Canale::Campioni) : CanaliRegistrati[std::size_t(k - 1)];
    };
    QByteArray testo;
    testo.reserve(Scarico + 512);
    for (int k = 0; k < RegistrazioneAcq::Campi; ++k) {
        const Canale &c = canali.Canali[std::size_t(colonna(k))];
        const QString nome = registrazione.nomi().isEmpty() ? c.Nome.trimmed() : registrazione.nomi().at(k);
        const QString unita = registrazione.unita().isEmpty() ? c.UM.trimmed() : registrazione.unita().at(k);
        if (k > 0)
            testo += ',';
        testo += cella(unita.isEmpty() ? nome : nome + QStringLiteral(" [") + unita + u']');
    }
    testo += "\r\n";

    da = std::clamp<qsizetype>(da, 0, registrazione.campioni());
    a = std::clamp<qsizetype>(a, da, registrazione.campioni());
    std::array<const ColonnaAcq *, RegistrazioneAcq::Campi - 1> colonne{};
    for (std::size_t k = 0; k < colonne.size(); ++k)
        colonne[k] = registrazione.colonna(CanaliRegistrati[k]);
    for (qsizetype i = da; i < a; ++i) {
        numero(testo, registrazione.progressivo(i));
        for (const ColonnaAcq *c : colonne) {
            testo += ',';
            numero(testo, (*c)[std::size_t(i)]);
        }
        testo += "\r\n";
        if (testo.size() >= Scarico) {
            if (destinazione.write(testo) != testo.size())
                return false;
            testo.clear();
        }
    }
    return destinazione.write(testo) == testo.size();
}

EsitoEsportazione ScriviEsportazione(const QString &percorso, const QString &sorgente,
                                     const std::function<bool(QIODevice &)> &scrivi)
{
    const QFileInfo info(percorso);
    if (percorso.trimmed().isEmpty() || info.isSymLink() || (info.exists() && !info.isFile()))
        return {EsitoEsportazione::Tipo::Collegamento, {}};
    if (!sorgente.isEmpty() && info.exists()
        && info.canonicalFilePath() == QFileInfo(sorgente).canonicalFilePath())
        return {EsitoEsportazione::Tipo::Sorgente, {}};
    QSaveFile file(percorso);
    if (!file.open(QIODevice::WriteOnly))
        return {EsitoEsportazione::Tipo::Scrittura, file.errorString()};
    if (!scrivi(file)) {
        const QString motivo = file.errorString();
        file.cancelWriting();
        return {EsitoEsportazione::Tipo::Scrittura, motivo};
    }
    if (!file.commit())
        return {EsitoEsportazione::Tipo::Scrittura, file.errorString()};
    return {};
}

} // namespace kv
