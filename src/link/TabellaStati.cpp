#include "link/TabellaStati.h"

namespace kv {

namespace TabellaStati {

char rispostaAttesa(int stato)
{
    // The tuning pages share one pattern: read, save, save and leave.
    switch (stato) {
    case 1:
    case 11:
    case 21:
    case 31:
    case 41:
    case 51:
    case 181:
    case 191:
    case 201:
    case 211:
        return 'r';
    case 2:
    case 3:
    case 12:
    case 13:
    case 22:
    case 23:
    case 32:
    case 33:
    case 42:
    case 43:
    case 52:
    case 53:
    case 182:
    case 183:
    case 192:
    case 193:
    case 202:
    case 203:
    case 212:
    case 213:
        return 'e';
    case 101:
        return 'r';
    case 111:
        return 'v';
    case 112:
        return 'r';
    case 121:
        return 'd';
    case 122:
        return 'e';
    case 131:
    case 132:
    case 133:
        return 'e';
    case 135:
        return 'r';
    case 151:
    case 152:
    case 153:
        return 'e';
    case 161:
        return 'r';
    case 171:
        return 'e';
    case 172: // the read-back of a map just written
        return 'r';
    case 331:
        return 'e';
    case 332:
        return 'r';
    case 333:
    case 334:
        return 'e';
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
