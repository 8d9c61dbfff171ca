// The hardware monitor's fields over any state: the input fills the port
// latches, the CRTC registers (32-bit, beyond a byte) and the first 64 KB of
// memory, then every field and both plots are built.
#include <cstring>

#include "core/HwMonitor.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    size_t at = 0;
    auto take = [&](void* dst, size_t n) {
        std::memset(dst, 0, n);
        const size_t k = std::min(n, size - at);
        std::memcpy(dst, data + at, k);
        at += k;
    };
    take(m.bus.PortLatch, sizeof m.bus.PortLatch);
    take(m.crtc.CrtcReg, sizeof m.crtc.CrtcReg);
    take(&m.run.SoundTimer, sizeof m.run.SoundTimer);
    take(m.bus.Mem.data(), 0x10000);
    (void)tvc::HwMonitorFields(m);
    (void)tvc::HwMonitorPlots(m);
    (void)tvc::HwMonitorJson(m);
    return 0;
}
