#pragma once

#include "link/DatiLive.h"
#include "pages/ContestoPagina.h"
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
class QHBoxLayout;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace kv {

class CampoDato;
class DialogoPagina;
class GrigliaMessaPunto;

// The frame every tuning page is built on: the boxes of numbered rows of its description
// (label, field or list, unit and range), the key filter and colours of the fields, the
// grids a page adds, the four commands and the emergency exit, the message line, and the
// small live panel with the working zone.
//
// A page of the usual kind is this frame over its description, and needs no class of its
// own. A page with grids derives from it, makes its grids in its constructor and hands
// them to aggiungiGriglia(); the frame then shows, checks and follows them with the rows.
// Either is loaded with carica(), which sets the captions and starts the opening read.
class TelaioMessaPunto : public QWidget, protected VistaPagina, protected AscoltatoreDati
{
    Q_OBJECT
    // What the main frame asks of a page it closes for the ECU's silence.
    Q_PROPERTY(bool modificheNonApplicate READ modificheNonApplicate)
public:
    // The question at Esci; returns the code of the key (6 Yes, 7 No, 2 Cancel, 99 none).
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    TelaioMessaPunto(const ContestoPagina &contesto, const DescrizionePagina &descrizione,
                     QWidget *parent = nullptr);
    ~TelaioMessaPunto() override;

    // Who asks at Esci; without one, the program's message box over this page.
    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }

    // Captions from the language file, the live panel hooked to the stream, then the
    // opening read if the port is open.
    void carica();

    // The commands, as the buttons and F2, F5, F8 and Esc click them.
    virtual void Applica();
    void Memorizza();
    void Ripristina();
    void Esci();
    void Esci_Out();
    // Every list on one of its items, then all fields and grid cells numeric and within
    // limits; the bad ones red, the first gets the focus. A bad list stops the check there.
    bool ControlloValori();
    // ControlloValori, and when it passes every field's number and list's item taken into
    // Corrente, as Applica takes them.
    bool prendiValori();

    // Why the first field or grid cell that fails its limits may not be sent, named by its
    // caption, and that field or grid; empty when every one may. modificati: only those the
    // fitter has changed from what the page showed.
    QString primoRespinto(bool modificati, QWidget **dove = nullptr);
    // Something typed, chosen or edited on the page that Applica has not taken.
    bool modificheNonApplicate() const;

    // Mask of field i (FormatoMinimo and its kin): the Formato of its entry, empty for an
    // index the page does not have.
    QString formato(int indice) const;
    // The edit field of row i, null if row i is not a field.
    CampoDato *campo(int indice) const;
    QComboBox *lista(int indice) const;
    // What the page shows for an entry: a field's text, a list's selection index, a grid
    // cell's text; empty when nothing on the page shows it.
    QString testoMostrato(int parametro) const;

    DialogoPagina &dialogo() { return *m_dialogo; }
    const QString &sezione() const { return m_sezione; }
    const ContestoPagina &contesto() const { return m_contesto; }

signals:
    // The page has ended (Esci, Esci_Out, or the last reply of a save on leaving).
    void chiusa();
    // For the main frame's message line.
    void segnalazione1(const QString &testo);

protected:
    // A grid of the page, placed by the page itself; the frame fills it, checks it with the
    // rows and follows the engine on it.
    void aggiungiGriglia(GrigliaMessaPunto *griglia);
    // Where a page puts widgets of its own (grids), under the boxes of rows.
    QVBoxLayout *areaPagina() const { return m_area; }
    // Row i shown or hidden with its label, colon, unit and range; hidden rows are checked
    // and sent all the same.
    void mostraRiga(int indice, bool visibile);
    QPushButton *tastoApplica() const { return m_applica; }
    QPushButton *tastoMemorizza() const { return m_memorizza; }
    QPushButton *tastoRipristina() const { return m_ripristina; }
    QPushButton *tastoEsci() const { return m_esci; }
    QPushButton *tastoEsciOut() const { return m_esciOut; }
    // The live panel on the right, for a page that has no use for it.
    QGroupBox *pannelloLive() const { return m_boxDati; }
    // A command of the page's own, at the end of the row and of the Tab order.
    void aggiungiComando(QPushButton *tasto);
    // What Esc presses: the first of these that is enabled and in view. Esci alone unless
    // a page says otherwise.
    void tastiEsc(std::initializer_list<QPushButton *> tasti);
    void mostraMessaggio(const QString &testo);
    QString testo(const QString &chiave) const;
    // A command's caption with its Alt key and its function key: "&Apply  (F2)".
    static QString testoComando(const QString &caption, const QString &tasto);

    // The page's own captions, after those of the frame.
    virtual void caricaTestiAltrove();

    // VistaPagina
    void mostraValore(int parametro, double valore) override;
    void mostraSuggerimento(int parametro, const QString &testo) override;
    void nascondiRigheTps() override;
    void mostraRigheTps() override;
    void bloccaCampoTps(int parametro) override;
    void mostraSegnalazione(const Messaggio &testo) override;
    void mostraZonaLavoro(const Messaggio &zona) override;
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
        QGroupBox *box = nullptr;
        bool inUso = true; // false in a box the mode hides: not checked, not taken
        QLabel *etichetta = nullptr;
        QLabel *duePunti = nullptr;
        CampoDato *campo = nullptr;
        QComboBox *lista = nullptr;
        int indiceMostrato = -1; // the list's item as last shown or taken
        bool binaria = false;
        QLabel *misura = nullptr;
        QLabel *intervallo = nullptr;
        QWidget *editore() const;
    };
    struct Box
    {
        QString nome;
        QGroupBox *widget = nullptr;
    };

    void costruisciBox(const BoxParametri &descrizione, QGridLayout *dove, int posizione);
    Riga &nuovaRiga(QGroupBox *box, QGridLayout *griglia, const RigaPagina &descrizione, bool inUso);
    Riga *rigaIndice(int indice);
    const Riga *rigaIndice(int indice) const;
    Riga *rigaParametro(int parametro);
    const Riga *rigaParametro(int parametro) const;
    QLabel *nuovaEtichetta(QWidget *box, const QString &nome, int indice);
    void costruisciComandi();
    void costruisciPannelloLive();
    void caricaTesti();
    void confermaGriglie();
    // Esc with a value that may not be sent: the fitter is told which and why, and stays to
    // mend it unless he leaves without it. False when he stays.
    bool lasciaRespinti();

    ContestoPagina m_contesto;
    QString m_sezione;
    std::unique_ptr<DialogoPagina> m_dialogo;
    Domanda m_domanda;

    std::vector<Riga> m_righe; // in the order of the description, box by box
    std::vector<Box> m_box;
    std::vector<GrigliaMessaPunto *> m_griglie;
    std::vector<int> m_righeTps;
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
    QHBoxLayout *m_comandi = nullptr;
    std::vector<QPushButton *> m_comandiPagina;
    std::vector<QPointer<QPushButton>> m_tastiEsc;
    QPointer<QWidget> m_fuoco;
    bool m_ascolta = false;
};

} // namespace kv
