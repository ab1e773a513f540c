#pragma once

#include "monitoring/ModelloGrafici.h"
#include "monitoring/ui/ContestoMonitor.h"

#include <QAbstractButton>
#include <QWidget>

#include <array>
#include <optional>
#include <vector>

class QLabel;
class QShortcut;
class QTimer;

namespace kv {

class BarraRegistrazione;
class GraficoStriscia;

// One row of the data panel: the channel's caption and its value, large. A click, Space
// or Enter adds or removes the channel's chart; Up and Down move along the rows. A row
// whose channel is on show carries the colour of its curve.
class RigaDatoGrafico : public QAbstractButton
{
    Q_OBJECT
public:
    explicit RigaDatoGrafico(QWidget *parent = nullptr);

    void impostaTitolo(const QString &titolo);
    // The value's text, and for a state value its background (none: the panel's own).
    void impostaValore(const QString &testo, std::optional<QColor> sfondo = std::nullopt);
    QString valore() const { return m_valore; }
    // The colour of the curve that shows this channel; none when it has no chart.
    void impostaColoreGrafico(std::optional<QColor> colore);
    std::optional<QColor> coloreGrafico() const { return m_coloreGrafico; }

    QSize sizeHint() const override;

    // Where and how the value is drawn in the row as it is now.
    struct DisposizioneValore
    {
        QFont font;
        int allineamento = Qt::AlignCenter;
        QRect riquadro;
        QString testo; // the value, or its cut form when nothing holds it whole
    };
    DisposizioneValore disposizioneValore() const;

protected:
    void paintEvent(QPaintEvent *evento) override;
    void keyPressEvent(QKeyEvent *evento) override;

private:
    QFont fontTitolo() const;
    QFont fontValore() const;

    QString m_valore;
    std::optional<QColor> m_sfondo;
    std::optional<QColor> m_coloreGrafico;
};

// The chart window: the panel of current values at the left, up to four strip charts of
// the live stream against the sample number, the recorder's toolbar and menus. The charts
// are chosen by clicking the values, and the choice is kept in the settings.
class Grafici : public QWidget
{
    Q_OBJECT
public:
    // Period of the display tick (VisDati), in ms.
    static constexpr int PeriodoVisDati = 100;

    explicit Grafici(const ContestoMonitor &contesto, QWidget *parent = nullptr);
    ~Grafici() override;

    // Captions, the recorder reset, the saved charts, the display tick started.
    void carica();
    // The closing procedure, also by Esc: the ring written if recording, then emptied.
    void Esci();
    // The display tick; does nothing unless a new record has come.
    void VisDati();

    // A click on the row of a channel.
    void cliccaCanale(int canale);

    ModelloGrafici &modello() { return m_modello; }
    BarraRegistrazione &barra() { return *m_barra; }
    GraficoStriscia *grafico(int slot) const { return m_grafici[static_cast<std::size_t>(slot)]; }
    RigaDatoGrafico *riga(int indice) const { return m_righe[static_cast<std::size_t>(indice)]; }

    // The colour of each slot's curve.
    static QColor coloreSlot(int slot);

signals:
    void chiusa();

protected:
    bool eventFilter(QObject *oggetto, QEvent *evento) override;
    void focusInEvent(QFocusEvent *evento) override;

private:
    void caricaTesti();
    // Layout, captions, axes and curves of every slot: after a chart came or went.
    void ridisegnoLayout();
    void PreparaAssi(GraficoStriscia *g, double yMin, double yMax, double xMin, double xMax, int canale);
    void impagina();
    void coloraRighe();
    void blocca();
    void sblocca();
    // Frozen charts: the window moved by so many samples, or to an end of what is held.
    void scorri(double campioni);
    void scorriAlBordo(int verso);
    // Axes and curves of every slot in use, again from the ring.
    void ridisegnaTracce();

    ContestoMonitor m_contesto;
    ModelloGrafici m_modello;
    BarraRegistrazione *m_barra;
    QTimer *m_visDati;
    QWidget *m_area;
    QWidget *m_boxDati;
    QLabel *m_titoloDati;
    std::array<RigaDatoGrafico *, NumeroCanali> m_righe{};
    std::array<GraficoStriscia *, NumeroGrafici> m_grafici{};
    QLabel *m_labRegistro;
    std::vector<QShortcut *> m_tastiScorrimento; // live only while frozen
    bool m_chiusa = false;
    // The newest live record not shown yet.
    std::optional<RecordDati> m_datoNuovo;
};

} // namespace kv
