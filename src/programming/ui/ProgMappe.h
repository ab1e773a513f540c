#pragma once

#include "programming/DialogoMappe.h"
#include "programming/ui/TelaioMappe.h"

class QCheckBox;
class QLabel;

namespace kv {

// Writes a map of the archive into the connected ECU: the model chosen in the tree, the map
// in the list, its note shown. Verifica, on by default, has the map read back and compared
// once written. Its dialogue states are 171 to 180.
class ProgMappe : public TelaioMappe
{
    Q_OBJECT
public:
    explicit ProgMappe(const ContestoProgrammazione &contesto, QWidget *parent = nullptr);

    QLabel *Note() const { return m_note; }
    QCheckBox *Verifica() const { return m_verifica; }
    ScritturaMappe &scrittura() { return m_scrittura; }

    // The button Programma, as a click or F2 presses it.
    void Programmazione();

protected:
    void nodoCliccato(int nodo) override;
    void mappaCliccata(int nodo) override;
    void Comando() override { Programmazione(); }
    void Esci() override { m_scrittura.Esci(); }
    void caricaTestiAltrove() override;
    QList<QWidget *> ordineCampi() const override;
    void offriRiscrittura(const Messaggio &testo) override;

private:
    QLabel *m_labNote;
    QLabel *m_note;
    QCheckBox *m_verifica;
    ScritturaMappe m_scrittura;
};

} // namespace kv
