#include "hw/ErrorSim.h"

#include <algorithm>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr int32_t kVideoErrFirst = 0x10000;
constexpr int32_t kVideoErrLast = 0x13FAC; // the last 83 bytes of the page escape
constexpr uint8_t kBankFill = 0xAA;

} // namespace

uint8_t VidErr(Machine& m, uint8_t b) {
    const ErrorSimControls& e = m.forms.ErrorSim;
    switch (e.Option1) {
    case 0: return static_cast<uint8_t>(b & ~e.ErrorBits);
    case 1: return static_cast<uint8_t>(b | e.ErrorBits);
    case 2:
        for (int bit = 0; bit < 8; ++bit)
            if (e.ErrorBits & (1 << bit)) b = bitr(m, b, static_cast<uint8_t>(1 << bit));
        return b;
    default: return 0;
    }
}

uint8_t bitr(Machine& m, uint8_t b, uint8_t mask) {
    // 0 or 1 with rounding to even: a draw above one half clears the bit.
    const int64_t r = RoundHalfEven(m.rnd.Next());
    return static_cast<uint8_t>(r != 0 ? b & ~mask : b | mask);
}

void ApplyMemoryErrors(Machine& m) {
    std::vector<uint8_t>& mem = m.bus.Mem;
    if (m.bus.VideoErrorEnabled)
        for (int32_t a = kVideoErrFirst; a <= kVideoErrLast; ++a)
            mem[a] = VidErr(m, mem[a]);
    const ErrorSimControls& e = m.forms.ErrorSim;
    const bool banks[4] = {e.Check2, e.Check3, e.Check4, e.Check5};
    for (int i = 0; i < 4; ++i)
        if (banks[i]) std::fill_n(mem.begin() + i * 0x4000, 0x4000, kBankFill);
}

} // namespace tvc
