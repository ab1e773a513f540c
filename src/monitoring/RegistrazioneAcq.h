#pragma once

#include "monitoring/AnelloRegistrazione.h"

#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <vector>

class QIODevice;

namespace kv {

// One channel's samples in the narrowest type that holds them all. The recorder writes
// whole numbers of a few digits, so two bytes a sample is the rule; a wider number widens
// the whole column once, and one with decimals (a file edited by hand) makes it double.
class ColonnaAcq
{
public:
    enum class Tipo {
        Int16,
        Int32,
        Double
    };

    void riserva(std::size_t n);
    void aggiungi(double v, bool intero);
    double operator[](std::size_t i) const
    {
        switch (m_tipo) {
        case Tipo::Int16:
            return m_16[i];
        case Tipo::Int32:
            return m_32[i];
        case Tipo::Double:
            break;
        }
        return m_d[i];
    }
    std::size_t size() const;
    Tipo tipo() const { return m_tipo; }
    std::size_t byte() const;
    void compatta();

    // f called with the vector that holds the samples, for loops that must not switch on
    // the type at every sample.
    template <typename F>
    auto visita(F &&f) const
    {
        switch (m_tipo) {
        case Tipo::Int16:
            return f(m_16);
        case Tipo::Int32:
            return f(m_32);
        case Tipo::Double:
            break;
        }
        return f(m_d);
    }

private:
    void allarga(Tipo tipo);

    Tipo m_tipo = Tipo::Int16;
    std::vector<qint16> m_16;
    std::vector<qint32> m_32;
    std::vector<double> m_d;
};

// A recording read back from its .ACQ file, kept by column for the viewer and the export.
//
// Reading is tolerant: a line that is not twelve numbers (one cut short by a crash, one
// garbled by a write that broke off and was appended to) is skipped and counted, a missing
// line of names or of units is noted; only a file that holds nothing like a recording is
// refused as a whole.
//
// The time axis: each sample stands at its sample number, so a pause shows as the gap it
// was. Numbers that go back (a recording started again on the same file counts from 0)
// carry on right after the last sample before them, with a gap of one, so the axis always
// rises and every sample keeps its place.
class RegistrazioneAcq
{
public:
    // The sample number and the 11 channels, in the file's order.
    static constexpr int Campi = 1 + int(CanaliRegistrati.size());
    // The stream's nominal rate, for an axis in seconds.
    static constexpr double CampioniAlSecondo = 25.0;

    enum class Esito {
        Letta,
        NonApribile,     // missing, unreadable, or not a plain file
        NonRegistrazione // nothing in it reads as a recording
    };

    // The file read whole; a failure leaves this recording empty.
    Esito leggi(const QString &percorso);
    // From any device, for tests and standard input; dimensione, if known, sizes the columns.
    Esito leggi(QIODevice &sorgente, qint64 dimensione = -1);

    qsizetype campioni() const { return qsizetype(m_progressivi.size()); }
    bool vuota() const { return m_progressivi.empty(); }
    // The sample number as the file has it.
    qint32 progressivo(qsizetype i) const { return m_progressivi[std::size_t(i)]; }
    // Where the sample stands on the time axis.
    qint64 posizione(qsizetype i) const { return m_posizioni[std::size_t(i)]; }
    // True when sample i follows i - 1 with no sample missing between them.
    bool segue(qsizetype i) const
    {
        return i > 0
               && qint64(m_progressivi[std::size_t(i)]) == qint64(m_progressivi[std::size_t(i - 1)]) + 1;
    }
    // Channels 1 to 11 (Canale::Indice); 0 for any other.
    double valore(int canale, qsizetype i) const;
    static bool registrato(int canale);
    const ColonnaAcq *colonna(int canale) const;

    // The first sample standing at or after x; campioni() when none does.
    qsizetype indiceDa(double x) const;
    // The sample nearest to x.
    qsizetype indiceVicino(double x) const;

    // The heading lines as the file has them, 12 fields each; empty when missing.
    const QStringList &nomi() const { return m_nomi; }
    const QStringList &unita() const { return m_unita; }
    // Lines skipped, and the file line number of the first few of them.
    int righeScartate() const { return m_scartate; }
    const std::vector<qint64> &primeScartate() const { return m_primeScartate; }

    struct Statistiche
    {
        double minimo = 0;
        double massimo = 0;
        double media = 0;
        qsizetype campioni = 0;
    };
    // Over samples da..a - 1.
    Statistiche statistiche(int canale, qsizetype da, qsizetype a) const;

    // A column of pixels of a chart: the range of the samples that fall in it, the first and
    // last of them, and whether the first follows the last of the column before with no
    // sample missing (so the line runs on).
    struct ColonnaPixel
    {
        float minimo = 0;
        float massimo = 0;
        float primo = 0;
        float ultimo = 0;
        bool vuota = true;
        bool unita = false;
    };
    // The stretch x0..x1 of the axis cut into n equal columns.
    void decima(int canale, double x0, double x1, int n, std::vector<ColonnaPixel> &colonne) const;

    // What the samples take in memory.
    std::size_t byteInMemoria() const;

private:
    // Two levels of summaries: the range of each run of 16 samples, and range and sum of
    // each run of 256, so that the range of any stretch takes a few dozen steps.
    static constexpr std::size_t Piccolo = 16;
    static constexpr std::size_t Grande = 256;
    struct Riassunto
    {
        std::vector<float> minimo16;
        std::vector<float> massimo16;
        std::vector<double> minimo;
        std::vector<double> massimo;
        std::vector<double> somma;
    };

    void azzera();
    bool riga(const char *inizio, const char *fine);
    void riassumi();
    void estremi(std::size_t colonna, std::size_t da, std::size_t a, double &minimo, double &massimo) const;

    std::vector<qint32> m_progressivi;
    std::vector<qint64> m_posizioni;
    std::array<ColonnaAcq, Campi - 1> m_colonne;
    std::array<Riassunto, Campi - 1> m_riassunti;
    QStringList m_nomi;
    QStringList m_unita;
    int m_scartate = 0;
    std::vector<qint64> m_primeScartate;
    bool m_utf8 = false;
};

} // namespace kv
