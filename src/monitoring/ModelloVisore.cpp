#include "monitoring/ModelloVisore.h"

#include <algorithm>

namespace kv {

void ModelloVisore::imposta(RegistrazioneAcq registrazione, QString percorso)
{
    m_registrazione = std::move(registrazione);
    m_percorso = std::move(percorso);
    m_cursore = 0;
    m_secondo.reset();
    tutto();
}

bool ModelloVisore::mostrato(int canale) const
{
    return std::find(m_mostrati.begin(), m_mostrati.end(), canale) != m_mostrati.end();
}

void ModelloVisore::mostra(int canale, bool si)
{
    if (!RegistrazioneAcq::registrato(canale) || mostrato(canale) == si)
        return;
    if (!si) {
        std::erase(m_mostrati, canale);
        return;
    }
    m_mostrati.push_back(canale);
    // In the file's order, whatever the order of the clicks.
    const auto posto = [](int c) { return std::find(Canali.begin(), Canali.end(), c) - Canali.begin(); };
    std::sort(m_mostrati.begin(), m_mostrati.end(), [&](int a, int b) { return posto(a) < posto(b); });
}

double ModelloVisore::inizioAsse() const
{
    return vuoto() ? 0.0 : double(m_registrazione.posizione(0));
}

double ModelloVisore::fineAsse() const
{
    return vuoto() ? FinestraMinima : double(m_registrazione.posizione(m_registrazione.campioni() - 1)) + 1;
}

void ModelloVisore::finestra(double xMin, double xMax)
{
    const double inizio = inizioAsse();
    const double fine = fineAsse();
    const double larghezza = std::clamp(xMax - xMin, FinestraMinima, std::max(fine - inizio, FinestraMinima));
    xMin = std::max(std::min(xMin, fine - larghezza), inizio);
    m_xMin = xMin;
    m_xMax = xMin + larghezza;
    // The cursor comes along to the nearest sample in view.
    if (vuoto())
        return;
    const auto [da, a] = visibili();
    if (a > da)
        m_cursore = std::clamp(m_cursore, da, a - 1);
}

void ModelloVisore::zoom(double fattore, double centro)
{
    if (!(fattore > 0))
        return;
    const double larghezza = (m_xMax - m_xMin) / fattore;
    const double xMin = centro - (centro - m_xMin) / fattore;
    finestra(xMin, xMin + larghezza);
}

void ModelloVisore::zoomSulCursore(double fattore)
{
    zoom(fattore, vuoto() ? (m_xMin + m_xMax) / 2 : double(m_registrazione.posizione(m_cursore)));
}

void ModelloVisore::sposta(double dx)
{
    finestra(m_xMin + dx, m_xMax + dx);
}

void ModelloVisore::tutto()
{
    finestra(inizioAsse(), fineAsse());
}

std::pair<qsizetype, qsizetype> ModelloVisore::visibili() const
{
    return {m_registrazione.indiceDa(m_xMin), m_registrazione.indiceDa(m_xMax)};
}

void ModelloVisore::impostaCursore(qsizetype indice)
{
    if (vuoto())
        return;
    m_cursore = std::clamp<qsizetype>(indice, 0, m_registrazione.campioni() - 1);
    seguiCursore();
}

void ModelloVisore::seguiCursore()
{
    const double x = double(m_registrazione.posizione(m_cursore));
    const double larghezza = m_xMax - m_xMin;
    if (x < m_xMin)
        finestra(x, x + larghezza);
    else if (x >= m_xMax)
        finestra(x + 1 - larghezza, x + 1);
}

void ModelloVisore::muovi(qsizetype passi)
{
    impostaCursore(m_cursore + passi);
}

void ModelloVisore::pagina(int verso)
{
    if (vuoto())
        return;
    const double larghezza = m_xMax - m_xMin;
    const double meta = double(m_registrazione.posizione(m_cursore)) + verso * larghezza;
    sposta(verso * larghezza);
    impostaCursore(m_registrazione.indiceVicino(meta));
}

void ModelloVisore::segnaSecondo()
{
    if (vuoto())
        return;
    if (m_secondo == m_cursore)
        m_secondo.reset();
    else
        m_secondo = m_cursore;
}

std::pair<qsizetype, qsizetype> ModelloVisore::tratto() const
{
    if (!m_secondo || vuoto())
        return {0, m_registrazione.campioni()};
    return {std::min(m_cursore, *m_secondo), std::max(m_cursore, *m_secondo) + 1};
}

double ModelloVisore::differenzaCampioni() const
{
    if (!m_secondo || vuoto())
        return 0;
    return double(m_registrazione.posizione(m_cursore) - m_registrazione.posizione(*m_secondo));
}

RegistrazioneAcq::Statistiche ModelloVisore::statistiche(int canale) const
{
    const auto [da, a] = visibili();
    return m_registrazione.statistiche(canale, da, a);
}

} // namespace kv
