#pragma once

#include "archives/StoricoEcu.h"
#include "programming/ContestoProgrammazione.h"
#include "programming/DialogoMappe.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QTreeWidget;

namespace kv {

// The history of the connected ECU: what its map area held before each run first changed it,
// newest first, with what was about to happen. An entry is compared with the ECU now (F3, on
// the compare page) or written back into it (F2) as a map write does, after its question and,
// with Verifica, read back. Entries are only ever added here, never deleted. Its dialogue
// states are those of the map write, 171 to 180.
class PaginaStorico : public QWidget, protected VistaMappe
{
    Q_OBJECT
public:
    using Domanda = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    explicit PaginaStorico(const ContestoProgrammazione &contesto, QWidget *parent = nullptr);

    void impostaDomanda(Domanda domanda) { m_domanda = std::move(domanda); }
    // Captions and the entries of the ECU as it is known now.
    void carica();

    void Confronta();
    void Scrivi();
    void Esci();

    QTreeWidget *Voci() const { return m_voci; }
    QCheckBox *Verifica() const { return m_verifica; }
    const QList<VoceStorico> &voci() const { return m_elenco; }
    QString segnalazione() const;

signals:
    void chiusa();
    // The entry to set against the ECU now, on the compare page.
    void confronta(const kv::VoceStorico &voce);

protected:
    // VistaMappe
    void mostraSegnalazione(const Messaggio &m) override;
    void abilitaPagina(bool abilitata) override;
    void mostraAvanzamento(int valore, int massimo) override;
    void nascondiAvanzamento() override;
    void beep() override;
    int domanda(const Messaggio &testo, int flags, const Messaggio &titolo) override;
    void chiudiPagina() override;

private:
    void mostraTesto(const QString &testo);
    QString testo(const QString &chiave) const;
    void riempi();
    const VoceStorico *scelta();

    ContestoProgrammazione m_contesto;
    Domanda m_domanda;
    QList<VoceStorico> m_elenco;
    QLabel *m_ecu;
    QLabel *m_labVoci;
    QTreeWidget *m_voci;
    QCheckBox *m_verifica;
    QPushButton *m_confronta;
    QPushButton *m_scrivi;
    QPushButton *m_esci;
    QProgressBar *m_barra;
    QLabel *m_segnalazione;
    ScritturaMappe m_scrittura;
};

} // namespace kv
