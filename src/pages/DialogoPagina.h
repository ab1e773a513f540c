#pragma once

#include "link/MotoreDialogo.h"
#include "pages/DescrizioniPagine.h"

#include <QString>

namespace kv {

class Catalogo;
class Lingua;
class VistaPagina;
class SessioneLinea;

// The ECU side of one tuning page: its opening read, its saves, and the commands of the
// page frame that work on values rather than on fields. It owns the page's state group
// on the dialogue engine for as long as it lives.
class DialogoPagina : public GestoreStati
{
public:
    // Codes of the answers to the question at Esci, as the message box returns them.
    static constexpr int RispostaSi = 6;
    static constexpr int RispostaNo = 7;
    // Yes, No and Cancel with the question icon.
    static constexpr int FlagDomandaEsci = 0x23;

    // assistenza: the page opens in service mode, with the entries that mode shows.
    DialogoPagina(DescrizionePagina descrizione, Catalogo &catalogo, SessioneLinea &linea, bool assistenza,
                  const Lingua &lingua, VistaPagina &vista);
    ~DialogoPagina() override;

    DialogoPagina(const DialogoPagina &) = delete;
    DialogoPagina &operator=(const DialogoPagina &) = delete;

    const DescrizionePagina &descrizione() const { return m_descrizione; }
    int primoStato() const { return m_descrizione.primoStato; }
    // The entries the page writes, in order: the description's, less those the mode hides.
    const std::vector<int> &voci() const { return m_voci; }

    // The page's values back to "not read" and its read plan queued and started. False
    // when the port is closed: nothing is sent and the page stays as it is.
    bool avviaLettura();

    // The page's entries to the ECU: Corrente (origine 0) or Letto (any other), to RAM,
    // to EEPROM or both, under dialogue state stato.
    void ApplicaValori(int origine, int stato, bool ram, bool eeprom);

    // True when any entry's Corrente differs from its Letto.
    bool ControlloCambiamenti() const;

    // Text of a field as the page may send it: a number within the entry's limits.
    bool valoreValido(int parametro, const QString &testo) const;
    // Why the page may not send testo for the entry, the field named nome: not a number, or
    // outside its limits, which it names. Empty when it may.
    QString motivoRespinto(int parametro, const QString &nome, const QString &testo) const;

    // The fitter left a field holding valore: the limits hanging on it follow at once.
    void valoreModificato(int parametro, double valore);
    // What Applica takes from a field (or a list's selection index).
    void impostaCorrente(int parametro, double valore);

    // The entries the page works out from others, from their Corrente.
    void calcolaDerivati();

    // The commands. Applica expects Corrente already taken from the fields; it works out the
    // derived entries, then sends.
    void Applica();
    void Memorizza();
    void Ripristina();
    // False when nothing changed: the page has been closed. True when the fitter has to
    // be asked; the answer goes to RispostaEsci.
    bool Esci();
    void RispostaEsci(int risposta);
    void EsciOut();

    void risposta(char lettera, int stato, const QByteArray &payload) override;
    void scadenza(int stato) override;
    char rispostaAttesa(int stato) const override;

private:
    void rispostaLettura(const QByteArray &payload);
    void rispostaScrittura(int stato);
    void erroreEcu(int stato, const QByteArray &payload);
    void gestisciRiga(const RigaLettura &riga, const QByteArray &payload);
    void leggiVoce(int parametro, const QByteArray &byte);
    void derivaLettura(const RigaLettura &riga);
    // Raw ECU number to the value the page keeps, and back, by the page's own rules first.
    double daGrezzo(int parametro, double grezzo) const;
    double aGrezzo(int parametro, double valore) const;
    void aggiornaLimiti(int parametro, double valore, Occasione occasione);
    void mostraSuggerimento(int parametro);
    // The page's side of an ended read or save; the engine has freed the link already.
    void fineLettura();
    void fineScrittura(int stato);

    DescrizionePagina m_descrizione;
    std::vector<int> m_voci;
    Catalogo &m_catalogo;
    MotoreDialogo &m_motore;
    SessioneLinea &m_linea;
    const Lingua &m_lingua;
    VistaPagina &m_vista;
};

// A field's text counts as a number: blanks round it, a sign, digits, one decimal point
// or comma, and at least one digit.
bool TestoNumerico(const QString &testo);

} // namespace kv
