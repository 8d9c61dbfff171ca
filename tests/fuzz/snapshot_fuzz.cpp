// Any snapshot (given the magic), then 2,000 instructions from its state.
#include <cstring>
#include <vector>

#include "media/MediaFiles.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    std::vector<uint8_t> file(10 + size);
    std::memcpy(file.data(), tvc::kSnapshotMagic, 10);
    if (size) std::memcpy(file.data() + 10, data, size);
    if (!tvc::LoadSnapshotBytes(m, file)) return 0;
    m.run.RunFlag = 1;
    t.Step(2000);
    m.FatalStop = false;
    return 0;
}
