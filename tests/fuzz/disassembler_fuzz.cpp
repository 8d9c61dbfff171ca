// Any memory contents disassemble without reading outside the tables or the
// memory array: the input fills the first 64 KB, then a listing is taken from
// an address the input chooses, in both formats.
#include <cstring>

#include "asm/Disassembler.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    for (int32_t a = 0; a < 0x10000; ++a) m.bus.Mem[a] = 0;
    for (size_t i = 2; i < size && i - 2 < 0x10000; ++i) m.bus.Mem[i - 2] = data[i];
    const int32_t start = size >= 2 ? (data[0] | data[1] << 8) : 0;
    for (int32_t format = 0; format < 2; ++format) {
        int32_t address = start;
        tvc::Disassemble(m, address, 64, format);
    }
    return 0;
}
