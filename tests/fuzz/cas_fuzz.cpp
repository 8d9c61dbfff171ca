// Any CAS file, with any claimed length from its first bytes, then a save of
// what BASIC's pointers propose.
#include <cstring>

#include "media/MediaFiles.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    uint32_t extra = 0;
    if (size >= 4) std::memcpy(&extra, data, 4);
    const uint64_t length = size + (extra & 0x3FFFF) * (size & 1);
    tvc::LoadCasBytes(m, {data, size}, length);
    tvc::xSaveCAS(m);
    tvc::SaveCasBytes(m);
    return 0;
}
