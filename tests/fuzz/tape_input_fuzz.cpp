// Any file as tape input: the header test, a conversion where libsndfile
// takes it, then samples until the end and a rewind.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "media/Tape.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    const std::string name = "fuzz_in_" + std::to_string(getpid()) + ".wav";
    if (std::FILE* f = std::fopen(name.c_str(), "wb")) {
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    if (tvc::TapeOpenInput(m, name)) {
        for (int i = 0; i < 200000 && m.tape.In.Next() >= 0; ++i) {}
        tvc::TapeRewind(m);
        for (int i = 0; i < 64; ++i) {
            m.cpu.TStates = i * 1013;
            tvc::TapeSample(m);
        }
    }
    m.tape.In.Close();
    std::remove(name.c_str());
    return 0;
}
