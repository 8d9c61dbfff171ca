// Any cartridge image, plain and as the MEX4MB expansion, then a sweep of
// reads and writes through both cartridge windows at every expansion page.
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "media/MediaFiles.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    for (const char* name : {"game.crt", tvc::kMexCartName}) {
        m.bus.SetCartName(name);
        tvc::PlaceCartridge(m, {data, size});
        // P2 0x08 maps the cartridge at 0x0000-0x3FFF; bits 6-7 clear put it at 0xC000.
        for (int32_t page = 0; page < 256; page += 1 + (size % 7)) {
            int32_t value = page;
            tvc::PortOut(m, 0xA0, value);
            for (int32_t p2 : {0x08, 0x00, 0xB0}) {
                int32_t v = p2;
                tvc::PortOut(m, 2, v);
                for (int32_t a : {0x0000, 0x3FFF, 0xC000, 0xFFFF}) {
                    const int32_t b = tvc::MemRead(m, a);
                    tvc::MemWrite(m, a, b ^ 0x5A);
                }
            }
        }
    }
    m.bus.SetCartName("");
    return 0;
}
