#pragma once

#include "calibration/TaraturaGiri.h"

#include <QLineEdit>
#include <QWidget>

#include <array>
#include <memory>

class QGroupBox;
class QLabel;
class QPushButton;

namespace kv {

class Lingua;

// GiriTeo: digits only. A blank empties it, Enter moves on as Tab does, and every other key
// is dropped; blue while it has the focus, which selects its text.
class CampoGiri : public QLineEdit
{
    Q_OBJECT
public:
    explicit CampoGiri(QWidget *parent = nullptr);
    // Marked red by Conferma until it is left again.
    void segnaErrato();
    // The measurement shown while the fitter has typed nothing: his first key replaces it.
    void segui(const QString &misura);

signals:
    // A key that changes the text: the fitter is typing into it.
    void digitato();
    void lasciato();

protected:
    void keyPressEvent(QKeyEvent *evento) override;
    void focusInEvent(QFocusEvent *evento) override;
    void focusOutEvent(QFocusEvent *evento) override;
    void mouseReleaseEvent(QMouseEvent *evento) override;

private:
    void colora(const QColor &sfondo, const QColor &testo);
    bool m_segue = false;
    bool m_selezionaAlRilascio = false;
};

// T_Giri (step 2 of the sequence) and T_Giri_Single.
class T_Giri : public QWidget, protected VistaGiri
{
    Q_OBJECT
public:
    T_Giri(SequenzaTaratura &sequenza, const Lingua &lingua, bool singola, QWidget *parent = nullptr);
    ~T_Giri() override;

    void carica();
    TaraturaGiri &logica() { return *m_logica; }
    CampoGiri *GiriTeo() const { return m_giriTeo; }

protected:
    void hideEvent(QHideEvent *evento) override;

    // VistaGiri
    void mostraTitolo(const Messaggio &testo) override;
    void mostraIstruzione(const Messaggio &testo) override;
    void mostraSegnalazione1(const Messaggio &testo) override;
    void abilitaPagina(bool abilitata) override;
    void uscitaEmergenza() override;
    void mostraGiriReali(const QString &testo) override;
    bool giriTeoAttivo() const override;
    void mostraGiriTeo(const QString &testo) override;
    void mostraBoxGiri(bool mostra) override;
    void abilitaConferma(bool abilitata) override;
    void fuocoConferma() override;
    void abilitaAvanti(bool abilitata) override;
    void giriTeoNonValido() override;

private:
    QString testo(const QString &chiave) const;

    SequenzaTaratura &m_sequenza;
    const Lingua &m_lingua;
    std::unique_ptr<TaraturaGiri> m_logica;
    QLabel *m_segnalazione;
    QGroupBox *m_boxGiri;
    CampoGiri *m_giriTeo;
    QLabel *m_giriReali;
    std::array<QLabel *, 2> m_labParametro{};
    std::array<QLabel *, 2> m_misura{};
    QLabel *m_segnalazione1;
    QPushButton *m_conferma;
    QPushButton *m_avanti;
    QPushButton *m_esciTar;
    QPushButton *m_esci;
};

} // namespace kv
