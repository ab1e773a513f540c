#pragma once

#include "link/DatiLive.h"
#include "pages/DescrizioniPagine.h"
#include "pages/VistaPagina.h"

#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <vector>

class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kv {

class CampoDato;
class DialogoPagina;
class Programma;

// The frame every tuning page is built on: numbered parameter rows with label, unit and
// range, the key filter and colours of the fields, the four commands and the emergency
// exit, the message line, and the small live panel with the working zone.
//
// A page derives from it, builds its rows in its constructor (creaBoxParametri, then
// aggiungiRiga or aggiungiLista for each index), names its TPS rows, and is then loaded
// with carica(), which sets the captions and starts the opening read. Pages with grids
// add their own widgets to areaPagina() and take part through the virtual hooks.
class TelaioMessaPunto : public QWidget, protected VistaPagina, protected AscoltatoreDati
{
    Q_OBJECT
public:
    // The question at Esci; returns the code of the key (6 Yes, 7 No, 2 Cancel, 99 none).
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    // sezione: the page's section of the language file, its form name ("MP_Minimo").
    TelaioMessaPunto(Programma &programma, DescrizionePagina descrizione, QString sezione,
                     QWidget *parent = nullptr);
    ~TelaioMessaPunto() override;

    // Who asks at Esci; without one, the program's message box over this page.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }

    // Captions from the language file, the live panel hooked to the stream, then the
    // opening read if the port is open.
    void carica();

    // The commands, as the buttons and F2, F5, F8 and Esc click them.
    void Applica();
    void Memorizza();
    void Ripristina();
    void Esci();
    void Esci_Out();
    // All fields numeric and within limits; the bad ones red, the first gets the focus.
    bool ControlloValori();

    // Mask of field i (FormatoMinimo and its kin): the Formato of its entry, empty for an
    // index the page does not have.
    QString formato(int indice) const;
    // The edit field of row i, null if row i is not a field.
    CampoDato *campo(int indice) const;
    QComboBox *lista(int indice) const;

    DialogoPagina &dialogo() { return *m_dialogo; }
    const QString &sezione() const { return m_sezione; }
    Programma &programma() { return m_programma; }

signals:
    // The page has ended (Esci, Esci_Out, or the last reply of a save on leaving).
    void chiusa();

protected:
    // The box of parameter rows, captioned by the key nome + ".CAPTION" ("BOXMINIMO").
    QGroupBox *creaBoxParametri(const QString &nome);
    // Row i of the box: LabParametro(i), DuePunti(i), the field, Misura(i) and the range.
    CampoDato *aggiungiRiga(int indice, int parametro);
    // A row whose value is the selection index of a list; the items are the keys
    // sezioneVoci + "." + n of that section, for as long as there is text.
    QComboBox *aggiungiLista(int indice, int parametro, const QString &sezioneVoci);
    // Rows hidden when no TPS is fitted.
    void impostaRigheTps(std::vector<int> indici) { m_righeTps = std::move(indici); }
    // Where a page puts widgets of its own (grids), under the parameter box.
    QVBoxLayout *areaPagina() const { return m_area; }

    // Hooks for entries that no row shows (grid cells and the like).
    virtual void mostraValoreAltrove(int parametro, double valore);
    virtual void mostraSuggerimentoAltrove(int parametro, const QString &testo);
    // Checked after the rows; the first bad widget goes in primo if none is there yet.
    virtual bool controlloValoriAltrove(QWidget *&primo);
    // Called by Applica after the rows have gone into Corrente.
    virtual void prendiValoriAltrove();
    // The page's own captions, after those of the frame.
    virtual void caricaTestiAltrove();

    // VistaPagina
    void mostraValore(int parametro, double valore) override;
    void mostraSuggerimento(int parametro, const QString &testo) override;
    void nascondiRigheTps() override;
    void bloccaCampoTps(int parametro) override;
    void mostraSegnalazione(const QString &testo) override;
    void mostraZonaLavoro(const QString &testo) override;
    void abilitaPagina(bool abilitata) override;
    void uscitaEmergenza() override;
    void chiudiPagina() override;

    // AscoltatoreDati
    void frameNormale(const RecordDati &record) override;

private:
    struct Riga
    {
        int indice = -1;
        int parametro = -1;
        QLabel *etichetta = nullptr;
        QLabel *duePunti = nullptr;
        CampoDato *campo = nullptr;
        QComboBox *lista = nullptr;
        QLabel *misura = nullptr;
        QLabel *intervallo = nullptr;
    };

    Riga *rigaIndice(int indice);
    const Riga *rigaIndice(int indice) const;
    Riga *rigaParametro(int parametro);
    QLabel *nuovaEtichetta(const QString &nome, int indice);
    void costruisciComandi();
    void costruisciPannelloLive();
    void caricaTesti();
    QString testo(const QString &chiave) const;

    Programma &m_programma;
    QString m_sezione;
    std::unique_ptr<DialogoPagina> m_dialogo;
    Domanda m_domanda;

    std::vector<Riga> m_righe;
    std::vector<int> m_righeTps;
    QString m_nomeBox;
    QGroupBox *m_box = nullptr;
    QGridLayout *m_griglia = nullptr;
    QVBoxLayout *m_area = nullptr;

    QGroupBox *m_boxZona = nullptr;
    QLabel *m_zonaLavoro = nullptr;
    QGroupBox *m_boxDati = nullptr;
    std::array<QLabel *, 4> m_labDati{};
    std::array<QLabel *, 4> m_dato{};
    QLabel *m_segnalazione = nullptr;
    QPushButton *m_applica = nullptr;
    QPushButton *m_memorizza = nullptr;
    QPushButton *m_ripristina = nullptr;
    QPushButton *m_esci = nullptr;
    QPushButton *m_esciOut = nullptr;
    QPointer<QWidget> m_fuoco;
    bool m_ascolta = false;
};

} // namespace kv
