#pragma once

// Payloads as the ECU sends them, for tests that play the ECU's part on a scripted port.

#include <QByteArray>
#include <QtGlobal>

namespace kv {

inline QByteArray parola(quint16 v)
{
    return QByteArray(1, char(v >> 8)) + char(v & 0xFF);
}

// A live frame: stepper 90, rich, no pump, TPS type 1, supply 2.
inline QByteArray datiLive(quint8 stato, quint16 giri = 800, quint16 tps = 100, quint16 lambda = 500,
                           quint8 zona = 2, quint8 tipoLambda = 0)
{
    return 'd' + QByteArray(1, char(stato)) + parola(giri) + parola(tps) + parola(lambda)
           + QByteArray::fromHex("5A01") + char(zona) + QByteArray::fromHex("000102") + char(tipoLambda);
}

// The version reply: vehicle, date, code, two data fields.
inline QByteArray rispostaVersione()
{
    return "vVEICOLO-012026-11-01KV-CODE-000042DATO-A-123B-77";
}

} // namespace kv
