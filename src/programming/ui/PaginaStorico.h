#pragma once

#include "archives/StoricoEcu.h"
#include "programming/ui/PaginaVistaMappe.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QTreeWidget;

namespace kv {

// The history of the connected ECU: what its map area held before each run first changed it,
// newest first, with what was about to happen. An entry is compared with the ECU now (F3, on
// the compare page) or written back into it (F2) as a map write does, after its question and,
// with Verifica, read back. Entries are only ever added here, never deleted. Its dialogue
// states are those of the map write, 171 to 180.
class PaginaStorico : public PaginaVistaMappe
{
    Q_OBJECT
public:
    explicit PaginaStorico(const ContestoProgrammazione &contesto, QWidget *parent = nullptr);

    // Captions and the entries of the ECU as it is known now.
    void carica();

    void Confronta();
    void Scrivi();
    void Esci();

    QTreeWidget *Voci() const { return m_voci; }
    QCheckBox *Verifica() const { return m_verifica; }
    const QList<VoceStorico> &voci() const { return m_elenco; }

signals:
    // The entry to set against the ECU now, on the compare page.
    void confronta(const kv::VoceStorico &voce);

protected:
    // VistaMappe
    void abilitaPagina(bool abilitata) override;

private:
    void riempi();
    const VoceStorico *scelta();

    QList<VoceStorico> m_elenco;
    QLabel *m_ecu;
    QLabel *m_labVoci;
    QTreeWidget *m_voci;
    QCheckBox *m_verifica;
    QPushButton *m_confronta;
    QPushButton *m_scrivi;
    QPushButton *m_esci;
    ScritturaMappe m_scrittura;
};

} // namespace kv
