#include "link/TabellaStati.h"

namespace kv {

namespace TabellaStati {

char rispostaAttesa(int stato)
{
    switch (stato) {
    case 101: // instruments: the set points
    case 112: // identification: the four reads
    case 135: // RPM calibration: read back
    case 161: // map reading
    case 332: // single RPM calibration: read back
        return 'r';
    case 111:
        return 'v';
    case 121: // the sequence waits for the status byte of the stream
        return 'd';
    case 122:
    case 131:
    case 132:
    case 133:
    case 151:
    case 152:
    case 153:
    case 171:
        return 'e';
    case 172: // the read-back of a map just written
        return 'r';
    case 331:
    case 333:
    case 334:
    case 341:
    case 342:
    case 351:
    case 352:
        return 'e';
    default:
        return 0;
    }
}

} // namespace TabellaStati

} // namespace kv
