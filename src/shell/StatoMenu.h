#pragma once

#include <QObject>
#include <QString>

#include <utility>

namespace kv {

struct StatoEcu;

// The functions of the main menu, by the index of their button.
enum class Funzione : qint16 {
    Nessuna = -1,
    Programmazione = 0,
    VisualizzaDati = 1,
    MessaPunto = 2,
    Taratura = 3,
    Utilita = 4
};

// What the main menu holds between pages: the function chosen and whether service mode is on.
// It is the only writer of both; the ECU's changes reach it as calls from the frame that
// follows the link.
class StatoMenu : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] Funzione FunzioneScelta() const { return m_funzione; }
    [[nodiscard]] bool ModoAssistenza() const { return m_assistenza; }

    void scegli(Funzione f) { m_funzione = f; }
    // The access page's word: on for the access word, off for any other while on.
    void impostaAssistenza(bool attiva)
    {
        if (std::exchange(m_assistenza, attiva) != attiva)
            emit assistenzaCambiata(attiva);
    }

    // An ECU without application leaves no function chosen; one that leaves normal running
    // takes the tuning function away.
    void ecuCambiata(const StatoEcu &ecu);

    // The start of a run: nothing chosen, normal mode.
    void IniDialogo()
    {
        m_funzione = Funzione::Nessuna;
        impostaAssistenza(false);
    }

signals:
    void assistenzaCambiata(bool attiva);

private:
    Funzione m_funzione = Funzione::Nessuna;
    bool m_assistenza = false;
};

} // namespace kv
