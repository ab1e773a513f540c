#pragma once

#include <QtGlobal>

namespace kv {

// Where the calibration sequence stands; a single calibration page takes its own step.
enum class FaseTaratura : qint16 {
    Nessuna = -1,
    Avviso = 0,    // the warning page
    AttesaEcu = 1, // waiting for the ECU to enter calibration
    Giri = 2,
    Tps = 3,
    Lambda = 4,
    Parametri = 5
};

} // namespace kv
