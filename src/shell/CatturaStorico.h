#pragma once

#include "archives/StoricoEcu.h"
#include "link/MotoreDialogo.h"
#include "link/SequenzaRichieste.h"

#include <QObject>
#include <QSet>

namespace kv {

class Catalogo;
class SessioneLinea;

// The ECUs' history kept as the program goes: before the first dialogue of this run that
// would change an ECU's EEPROM (a 'W' to 0xC000 or above, an 'I'), whoever starts it, the map
// area is read and filed as an entry of that ECU, with what was about to happen; then that
// dialogue runs as it was asked. At most one read per run and ECU: an ECU not yet identified
// is passed over, and one that would not give its map is not asked again. It watches only once
// switched on: the program does at start, a test of some other part of the line need not.
class CatturaStorico : public QObject, public GuardiaDialogo
{
    Q_OBJECT
public:
    static constexpr int Stato = 221;

    CatturaStorico(QString percorsoApp, SessioneLinea &linea, const Catalogo &catalogo,
                   QObject *parent = nullptr);
    ~CatturaStorico() override;

    void attiva(bool si);
    bool prima(int stato, const QByteArray &coda) override;

    // What a history entry's event names: the form that owns a dialogue state (its section of
    // the language file); empty for a state of none.
    static QString Evento(int stato);

signals:
    // An entry has been filed, or could not be (esito says why).
    void archiviata(const kv::VoceStorico &voce, const kv::EsitoArchivio &esito);

private:
    void letta(const SequenzaRichieste::Esito &esito);

    QString m_percorsoApp;
    SessioneLinea &m_linea;
    const Catalogo &m_catalogo;
    SequenzaRichieste m_lettura;
    QSet<QString> m_fatte;
    VoceStorico m_voce;
};

} // namespace kv
