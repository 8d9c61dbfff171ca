#include "hw/FirmwareKeys.h"

namespace tvc {

std::optional<FirmwareKey> FirmwareKeyFor(char ch) {
    if (ch == '\n') ch = '\r';
    for (int i = 0; i < kFirmwareKeyCount; ++i)
        if (kFirmwareKeys[i].ch == ch) return kFirmwareKeys[i];
    return std::nullopt;
}

} // namespace tvc
