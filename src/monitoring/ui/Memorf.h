#pragma once

#include "monitoring/SchedaRegistrazione.h"

#include <QDialog>

#include <array>
#include <functional>

class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kv {

class AnelloRegistrazione;
class Lingua;

// The record card of a recording: make, model, file name and notes, with the cards already
// in the archive whose make and model begin with what is typed. Memorizza stores the card
// and makes its file the recording file; Esc leaves, F2 stores. Shown modally over the
// monitor window that opened it.
class Memorf : public QDialog
{
    Q_OBJECT
public:
    // A message box: text, flags, title; returns the key pressed.
    using Messaggio = std::function<int(const QString &testo, int flags, const QString &titolo)>;

    // Loads the card: captions, the archive opened and the list filled; a failed archive
    // leaves the list and the card out of use and says why. The archive and the recordings
    // are in the program's folder; a card stored sets the recorder's file.
    Memorf(const QString &percorsoApp, const Lingua &lingua, AnelloRegistrazione &anello,
           QWidget *parent = nullptr);
    ~Memorf() override;

    void impostaMessaggio(Messaggio messaggio) { m_messaggio = std::move(messaggio); }

    void Memorizza();
    void Esci();

    QLineEdit *casella(int indice) const { return m_caselle[static_cast<std::size_t>(indice)]; }
    QListWidget *elencoEsi() const { return m_elenco; }
    // NomeEsi: the FILE of each entry of the list.
    const QStringList &nomeEsi() const { return m_nomeEsi; }
    QGroupBox *scheda() const { return m_scheda; }
    QPushButton *tastoMemorizza() const { return m_memorizza; }
    QLabel *segnalazione() const { return m_segnalazione; }

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;
    void done(int esito) override;

private:
    void riempiElenco();
    void sceltaVoce(int riga);
    void titoloScheda();

    const Lingua &m_lingua;
    SchedaRegistrazione m_logica;
    Messaggio m_messaggio;
    QGroupBox *m_scheda;
    std::array<QLineEdit *, SchedaRegistrazione::NumeroCaselle> m_caselle{};
    QListWidget *m_elenco;
    QStringList m_nomeEsi;
    QLabel *m_segnalazione;
    QPushButton *m_memorizza;
    QPushButton *m_esci;
    bool m_riempiendo = false;
    bool m_inMemorizza = false;
};

} // namespace kv
