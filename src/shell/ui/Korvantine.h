#pragma once

#include "shell/FaseTaratura.h"
#include "shell/IdPagina.h"

#include <QList>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <map>
#include <utility>
#include <vector>

class QDialog;
class QLabel;
class QTimer;

namespace kv {

class Comunicazione;
class MainLambda;
class MsgBox1;
class Programma;
struct PortaDisponibile;

// The main frame: one page at a time inside it, the message strip under it. It follows the
// link (menu refresh, wait cursor, the watchdog's return to the menu) and opens the pages
// through a registry, so that each page is one unit that the frame does not know.
//
// How a page lives:
// - It is made by its factory when opened. The factory hands it the pieces of programma()
//   it works with; the frame is its way to the rest (MostraMsg(), ChiudiPagina()). It sets
//   its title with setWindowTitle().
// - It leaves with ChiudiPagina(this). The frame hides it at once and deletes it later,
//   never while a message box is running, so a handler that is still on the stack may
//   return through the page safely. Such a handler asks paginaAperta(this) before going on.
// - When a page is closed under an open message box of its own (the watchdog on a tuning
//   page), that box closes as if without a button and returns 99.
class Korvantine : public QWidget
{
    Q_OBJECT
public:
    using FabbricaPagina = std::function<QWidget *(Korvantine &frame)>;

    // The calibration as the frame sees it, plugged in by the calibration's unit.
    class Taratura
    {
    public:
        virtual ~Taratura() = default;
        // Step 0 the warning page, 1 the ECU asked in, 2 to 5 the page of that step.
        virtual void avvia(FaseTaratura passo) = 0;
        // The menu's entry.
        virtual void avviaSequenza() = 0;
        // A calibration page has closed to go on: the step the calibration holds now.
        virtual void prosegui() = 0;
        // A calibration runs, in the sequence or alone.
        [[nodiscard]] virtual bool inCorso() const = 0;
        // Its pages have gone: the calibration is over.
        virtual void terminata() = 0;
    };

    enum class Apertura {
        AlPostoDelMenu, // replaces the main menu inside the frame
        SopraIlMenu     // a box over the menu, which stays loaded and disabled; best a QDialog
    };

    explicit Korvantine(Programma &programma, QWidget *parent = nullptr);
    ~Korvantine() override;

    // For the page factories, which hand each page its pieces of the program.
    Programma &programma() { return m_programma; }

    // Shows the frame with the main menu, selection cleared; then the messages held so far.
    void avvia();

    // ---- pages
    // A later registration of the same page replaces the earlier one.
    void registraPagina(IdPagina id, FabbricaPagina fabbrica, Apertura apertura = Apertura::AlPostoDelMenu);
    bool paginaRegistrata(IdPagina id) const;
    // The page made and shown; nullptr when none is registered or its factory gave none,
    // and then nothing has changed.
    QWidget *apriPagina(IdPagina id);
    // prossima -1 goes on with the calibration's present step; anything else shows the main
    // menu. A page that is not open is left alone.
    void ChiudiPagina(QWidget *pagina, int prossima = 0);
    bool paginaAperta(const QWidget *pagina) const;
    // The page inside the frame (the menu included) and the box over the menu, if any.
    QWidget *paginaAttiva() const { return m_pagina; }
    IdPagina idPaginaAttiva() const { return m_idPagina; }
    QWidget *paginaSopra() const { return m_sopra; }
    IdPagina idPaginaSopra() const { return m_idSopra; }
    // The menu when it is the page inside the frame.
    MainLambda *menu() const;
    // The last option chosen on the menu, and the function it was in: the menu that comes
    // back after the page puts the keyboard there again.
    void ricordaVoce(int funzione, int opzione) { m_voceScelta = {funzione, opzione}; }
    std::pair<int, int> voceScelta() const { return m_voceScelta; }

    // ---- messages
    // The common message box over the active page; returns the code of the key.
    int MostraMsg(const QString &testo, int flags, const QString &titolo, int predefinito = 0);
    // Any other modal box a page runs goes through here, so pages outlive it.
    int eseguiModale(QDialog &box);
    // A message that nobody waits for: held until the frame is on screen.
    void avvisa(const QString &testo, const QString &titolo, int flags);
    // The message line of the strip: set by a page as it loads, emptied by every write the
    // ECU acknowledges.
    void impostaSegnalazione1(const QString &testo);

    // ---- menu and link
    void AggiornaMenu();
    // The watchdog: a tuning page goes, the menu comes back.
    void RitornoMenu();
    void ChiudiPagineTaratura();
    // The calibration is driven from outside; without it the menu entry says so.
    void impostaTaratura(Taratura *taratura) { m_taratura = taratura; }
    bool sequenzaTaraturaDisponibile() const { return m_taratura != nullptr; }
    bool AvviaTaratura(FaseTaratura passo);
    void avviaSequenzaTaratura();
    // Port, stream and identification, in the strip: a lost port that is being opened
    // again, a port with nothing like an ECU on it, and the ECU's state.
    void aggiornaStatoCollegamento();
    // Keys reach the widget with the focus: after anything that may have taken it away
    // (a disabled page, a closed box), the page on view gets it back.
    void riportaFuoco();
    // The pages' area, menu included, while a dialogue of the frame's own holds the link
    // (identification, the calibration handshake); the strip stays usable.
    void abilitaArea(bool abilitata);

    // The end of the program: the frame closes and uscita() is emitted.
    void Uscita();

signals:
    void uscita();

protected:
    void closeEvent(QCloseEvent *evento) override;
    bool event(QEvent *evento) override;

private:
    struct Registrazione
    {
        FabbricaPagina fabbrica;
        Apertura apertura = Apertura::AlPostoDelMenu;
    };
    struct Avviso
    {
        QString testo;
        QString titolo;
        int flags = 0;
    };
    struct BoxAperto
    {
        QPointer<MsgBox1> box;
        QPointer<QWidget> proprietario;
    };

    void mostraMenu();
    void mettiInArea(QWidget *pagina, IdPagina id);
    void togliPagina(QWidget *pagina);
    void eliminaPiuTardi(QWidget *pagina);
    void eliminaSospese();
    void cursoreAttesa(bool attesa);
    void ripartisciStriscia();
    void mostraModo();
    void riprendiTastiera(QWidget *finestra);
    void mostraAvvisi();
    int mostraMsg(const QString &testo, int flags, const QString &titolo, int predefinito,
                  QWidget *proprietario);

    Programma &m_programma;
    std::map<IdPagina, Registrazione> m_registro;
    Taratura *m_taratura = nullptr;

    QWidget *m_area;
    QLabel *m_segnalazione;
    QLabel *m_segnalazione1;
    QLabel *m_statoCollegamento;
    QLabel *m_modo;
    QTimer *m_timerEliminazione;

    QPointer<QWidget> m_pagina;
    IdPagina m_idPagina = IdPagina::Nessuna;
    QPointer<QWidget> m_sopra;
    IdPagina m_idSopra = IdPagina::Nessuna;
    // Where the focus was when identification took the pages' area away.
    QPointer<QWidget> m_fuocoArea;
    std::pair<int, int> m_voceScelta{-1, -1};

    int m_profonditaModale = 0;
    std::vector<QPointer<QWidget>> m_daEliminare;
    std::vector<BoxAperto> m_box;
    std::vector<Avviso> m_avvisi;

    bool m_inAttesa = false;
    bool m_avviato = false;
    bool m_chiusuraConsentita = false;
};

// The port page on the program's serial settings, with porte in its list: the system's in
// the frame, a test's own in a test.
Comunicazione *NuovaComunicazione(Korvantine &frame, const QList<PortaDisponibile> &porte);

} // namespace kv
