#pragma once

#include "calibration/LogicaTaratura.h"

#include <QString>

#include <optional>

namespace kv {

// What the RPM page's logic asks of its fields.
class VistaGiri : public VistaTaratura
{
public:
    // GiriReali: what the ECU measures now.
    virtual void mostraGiriReali(const QString &testo) = 0;
    // GiriTeo holds the focus, so it may follow the measurement.
    virtual bool giriTeoAttivo() const = 0;
    virtual void mostraGiriTeo(const QString &testo) = 0;
    // BoxGiri, hidden while the ECU is not ready.
    virtual void mostraBoxGiri(bool mostra) = 0;
    virtual void abilitaConferma(bool abilitata) = 0;
    virtual void fuocoConferma() = 0;
    // AvantiTar enabled takes the focus.
    virtual void abilitaAvanti(bool abilitata) = 0;
    // GiriTeo holds no number: beep, red, the focus back in it.
    virtual void giriTeoNonValido() = 0;
};

// T_Giri and T_Giri_Single: the fitter types the true engine speed read from an outside
// instrument, and the ECU's RPM coefficient is corrected in proportion to its error.
class TaraturaGiri : public LogicaTaratura
{
    Q_OBJECT
public:
    static constexpr quint8 StatoAttesaMotore = 239;
    static constexpr quint8 StatoMotoreVisto = 234;
    static constexpr int StatoLettura = 135;
    static constexpr int StatoScrittura = 133;
    static constexpr int StatoLetturaSingola = 332;
    static constexpr int StatoScritturaSingola = 333;

    TaraturaGiri(SequenzaTaratura &sequenza, bool singola, VistaGiri &vista, QObject *parent = nullptr);

    void frame(int stato, const RecordDati &attuale) override;

    // The first key typed into GiriTeo: from now on it keeps what the fitter types.
    void tastoGiriTeo()
    {
        m_giriTeoInserito = true;
        m_giriTeoDigitato = true;
    }
    // GiriTeo left holding testo: the text to show instead when it is a number.
    std::optional<QString> uscitaGiriTeo(const QString &testo);
    // Refused, with a word, until the fitter has typed a speed of his own: what the field
    // shows until then is the ECU's reading, against which nothing can be corrected.
    void Conferma(const QString &giriTeo);
    // Also Page Up, with the sequence running.
    void AvantiTar();
    void EsciTar() override;

    bool giriTeoInserito() const { return m_giriTeoInserito; }

    // The seven writes of one confirmation, in the order they go: the new coefficient, then
    // the six speed thresholds back to their fixed values.
    static QList<QByteArray> ScrittureConferma(double costanteGiri);

protected:
    void caricaTesti() override;
    bool rispostaPropria(char lettera, int stato, const QByteArray &payload) override;
    char rispostaAttesa(int stato) const override
    {
        return stato == StatoLettura || stato == StatoLetturaSingola ? 'r'
                                                                     : LogicaTaratura::rispostaAttesa(stato);
    }
    void fineComando(int stato) override;

private:
    QString formattaGiri(double giri) const;
    void mostraGiri(const RecordDati &attuale);
    void fineLettura();

    VistaGiri &m_vistaGiri;
    QString m_giriReali;
    bool m_giriTeoInserito = false;
    bool m_giriTeoDigitato = false;
};

} // namespace kv
