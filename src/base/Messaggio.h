#pragma once

#include <QString>

#include <vector>

namespace kv {

// A text for the fitter as the code below the windows says it: the section and key of the
// language file, the values that go into its places, and what stands before it. Only the
// windows look it up (Lingua::testo), so the logic never holds a language of its own.
struct Messaggio
{
    QString sezione;
    QString chiave;
    struct Valore
    {
        QString segnaposto;
        QString testo;
        bool soloPrimo = false; // the first place only ("Step xx of yy, xx")
        bool operator==(const Valore &) const = default;
    };
    // Each placeholder of the looked-up text ("XXX") and the value that replaces it, in order.
    std::vector<Valore> valori;
    // Text that stands before the looked-up one as it is (an error code: "05H ").
    QString prima;
    // Further texts, each after a blank line.
    std::vector<Messaggio> seguito;

    Messaggio() = default;
    Messaggio(QString s, QString c) : sezione(std::move(s)), chiave(std::move(c)) {}

    [[nodiscard]] bool vuoto() const { return chiave.isEmpty() && prima.isEmpty(); }
    Messaggio &con(const QString &segnaposto, const QString &valore)
    {
        valori.push_back({segnaposto, valore});
        return *this;
    }
    Messaggio &conPrimo(const QString &segnaposto, const QString &valore)
    {
        valori.push_back({segnaposto, valore, true});
        return *this;
    }
    Messaggio &poi(Messaggio altro)
    {
        seguito.push_back(std::move(altro));
        return *this;
    }
    // "SEZIONE/CHIAVE", for logs and tests.
    [[nodiscard]] QString nome() const { return sezione + QLatin1Char('/') + chiave; }
    bool operator==(const Messaggio &) const = default;
};

// One of the common messages, of section SEGNALAZIONI.
inline Messaggio Segnalazione(const QString &chiave)
{
    return {QStringLiteral("SEGNALAZIONI"), chiave};
}

} // namespace kv
