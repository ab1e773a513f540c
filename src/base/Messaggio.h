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
    // A key tried before chiave: when the language file gives it text, that text stands in
    // its place (the word for a count of one).
    QString chiavePreferita;
    struct Valore
    {
        QString segnaposto;
        QString testo;
        bool soloPrimo = false; // the first place only ("Step xx of yy, xx")
        // A message looked up to go in place of testo (one at most): why a file was refused.
        std::vector<Messaggio> messaggio;
        bool operator==(const Valore &) const = default;
    };
    // Each placeholder of the looked-up text ("XXX") and the value that replaces it, in order.
    std::vector<Valore> valori;
    // The looked-up text trimmed before its places are filled.
    bool ritagliato = false;
    // Text that stands before the looked-up one as it is (an error code: "05H ").
    QString prima;
    // What stands between the text before and this one when it follows another (poi).
    QString giunta = QStringLiteral("\n\n");
    // Further texts, each after its joint.
    std::vector<Messaggio> seguito;

    Messaggio() = default;
    Messaggio(QString s, QString c) : sezione(std::move(s)), chiave(std::move(c)) {}

    [[nodiscard]] bool vuoto() const { return chiave.isEmpty() && prima.isEmpty(); }
    Messaggio &con(const QString &segnaposto, const QString &valore)
    {
        valori.push_back({segnaposto, valore, false, {}});
        return *this;
    }
    Messaggio &con(const QString &segnaposto, Messaggio valore)
    {
        valori.push_back({segnaposto, {}, false, {std::move(valore)}});
        return *this;
    }
    Messaggio &conPrimo(const QString &segnaposto, const QString &valore)
    {
        valori.push_back({segnaposto, valore, true, {}});
        return *this;
    }
    Messaggio &ritaglia()
    {
        ritagliato = true;
        return *this;
    }
    Messaggio &preceduto(const QString &testo)
    {
        prima = testo;
        return *this;
    }
    // altro after this one, the two texts joined by giuntura when both have any.
    Messaggio &poi(Messaggio altro, const QString &giuntura = QStringLiteral("\n\n"))
    {
        altro.giunta = giuntura;
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

// A text of no key, shown as it stands (a number after a looked-up word).
inline Messaggio Letterale(const QString &testo)
{
    Messaggio m;
    m.prima = testo;
    return m;
}

} // namespace kv
