#pragma once

#include "base/Configurazione.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace kv {

class Korvantine;
class Lingua;

// The port page: the port (chosen in the list, or a device path typed) and the speed,
// written to KORVANTINE.INI by Salva, which then reopens the port.
class Comunicazione : public QWidget
{
    Q_OBJECT
public:
    Comunicazione(Korvantine &frame, const Lingua &lingua, const QString &percorsoApp, ImpSeriale &seriale,
                  std::function<bool()> apriPorta, const QList<PortaDisponibile> &porte,
                  QWidget *parent = nullptr);

    void Salva();
    void Esci();

private:
    void segnalaMancante(QListWidget *elenco);
    void leggiImpSeriale();

    Korvantine &m_frame;
    const Lingua &m_lingua;
    QString m_percorsoIni;
    QStringList m_percorsi; // the ports the list shows, which "COMn" counts
    ImpSeriale &m_seriale;
    std::function<bool()> m_apriPorta;
    QListWidget *m_seriali;
    QListWidget *m_baud;
    QLineEdit *m_dispositivo; // a device typed, for one the system does not list
    QPushButton *m_salva;
    QPushButton *m_esci;
    bool m_inSalvataggio = false;
};

} // namespace kv
