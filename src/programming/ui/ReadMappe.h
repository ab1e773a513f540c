#pragma once

#include "programming/DialogoMappe.h"
#include "programming/ui/TelaioMappe.h"

#include <array>

class QLabel;
class QLineEdit;

namespace kv {

// Reads the map out of the connected ECU and files it under a plant (the branch chosen in
// the tree), a make, a model and a name typed by the fitter, with a note. Its dialogue
// states are 161 to 170.
class ReadMappe : public TelaioMappe
{
    Q_OBJECT
public:
    // catalogo: where the lambda scale lies in RAM; it is read with the map and filed with it.
    ReadMappe(const ContestoProgrammazione &contesto, const Catalogo &catalogo, QWidget *parent = nullptr);

    QLabel *Impianto() const { return m_impianto; }
    QLineEdit *NomeMarca() const { return m_campi[0]; }
    QLineEdit *NomeModello() const { return m_campi[1]; }
    QLineEdit *NomeFlyMod() const { return m_campi[2]; }
    QLineEdit *Note() const { return m_campi[3]; }
    LetturaMappe &lettura() { return m_lettura; }

    // Leggi, as the button and F2 press it.
    void Leggi();

protected:
    void nodoCliccato(int nodo) override;
    void mappaCliccata(int nodo) override;
    void Comando() override { Leggi(); }
    void Esci() override { chiudiPagina(); }
    void caricaTestiAltrove() override;
    QList<QWidget *> ordineCampi() const override;
    void mappaArchiviata(const ChiaveMappa &chiave) override;
    void fuocoNomeFile() override;
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    void entrato(QLineEdit *campo);
    void lasciato(QLineEdit *campo);
    void imposta(QLineEdit *campo, const QString &testo);

    QLabel *m_impianto;
    std::array<QLineEdit *, 4> m_campi{};
    std::array<QLabel *, 5> m_etichette{};
    QString m_testoEntrata;
    LetturaMappe m_lettura;
};

} // namespace kv
