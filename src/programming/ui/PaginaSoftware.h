#pragma once

#include "archives/ScambioSoftware.h"
#include "programming/ui/TelaioScambio.h"

#include <array>

class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;

namespace kv {

// The three software pages of the utilities, one frame: CreaDiscoSW (copy to a medium),
// RipriDiscoSW (restore from one) and CancelSW (delete from the archive). The list of
// software (LSoftware) with the version and the note of the current one beside it, and the
// medium's folder below for the first two.
//
// CreaDiscoSW copies every software chosen in the list (Shift or Ctrl with the arrows, and
// Ctrl+Space, choose several); RipriDiscoSW restores all the medium lists, asking before each
// one that is here already; CancelSW deletes the current one (F2, or Delete in the list)
// after a question that names it.
class PaginaSoftware : public TelaioScambio
{
    Q_OBJECT
public:
    enum class Funzione {
        CreaDisco,
        Ripristino,
        Cancellazione
    };

    PaginaSoftware(const Lingua &lingua, QString percorsoApp, Funzione funzione, QWidget *parent = nullptr);

    // Captions, and the archive's software in the list (for the copy and the deletion).
    void carica();

    QListWidget *LSoftware() const { return m_lista; }
    QLineEdit *Versione() const { return m_versione; }
    QLabel *Note() const { return m_note; }

    // CreaAgg, RipristinaAgg or Cancella.
    void Comando() override;
    // The medium's software listed (RipriDiscoSW).
    void ScegliSorgente(const QString &sorgente);

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;

private:
    void riempi(const QList<VoceSoftware> &voci);
    void ricaricaArchivio();
    void voceCorrente();
    QStringList nomi(bool soloScelti) const;

    Funzione m_funzione;
    QGroupBox *m_box;
    QGroupBox *m_boxCartella = nullptr;
    QListWidget *m_lista;
    std::array<QLabel *, 2> m_etichette{};
    QLineEdit *m_versione;
    // A release's note may be long: it wraps rather than being cut at the field's edge.
    QLabel *m_note;
    QString m_sorgente; // the medium listed (RipriDiscoSW)
};

} // namespace kv
