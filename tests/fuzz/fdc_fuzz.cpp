// Any image and any port script: the leading bytes script accesses to ports
// 0x0C-0x14 (a count, then two bytes an access), the rest is the disk image
// for DiskLoad and DiskBootRead. Reads stay inside the image and the log
// inside its bound.
#include <cstdio>

#include "hw/Ports.h"
#include "media/Disk.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    tvc::FdcInit(m);
    m.fdc.List4.Clear();
    m.disk = tvc::Disk{};

    const size_t ops = size ? data[0] : 0;
    const size_t script = std::min(size, 1 + 2 * ops);
    if (FILE* f = std::fopen("fuzz.dsk", "wb")) {
        std::fwrite(data + script, 1, size - script, f);
        std::fclose(f);
    }
    tvc::DiskLoad(m, "fuzz.dsk");
    for (int d = 0; d < tvc::kFdcDrives; ++d)
        tvc::DiskBootRead(m, d);

    for (size_t i = 1; i + 1 < script; i += 2) {
        const uint8_t op = data[i];
        int32_t value = data[i + 1];
        const int32_t port = 0x0C + (op & 0x0F) % 9;
        // Bit 6 repeats the access past a sector's end.
        const int repeat = op & 0x40 ? 600 : 1;
        for (int r = 0; r < repeat; ++r) {
            if (op & 0x80) {
                tvc::PortIn(m, port);
            } else {
                int32_t v = value;
                tvc::PortOut(m, port, v);
            }
        }
    }
    if (m.fdc.List4.size() > tvc::kFdcLogLimit) __builtin_trap();
    if (m.fdc.List4.size()) (void)tvc::FdcLogText(m.fdc.List4[m.fdc.List4.size() - 1]);
    return 0;
}
