// Runs the Z80 exerciser zexdoc.com on the executors over the CP/M shim,
// with UndocEnabled 1 (it uses SLL and the index halves).
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <set>
#include <string>

#include "core/RunLoop.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"
#include "z80/CpmShim.h"

namespace tvc::test {

struct ExerciserRun {
    RecordingHost host;
    CpmShim shim;
    std::vector<std::string> groups; // in table order, as the program prints them
};

// Runs every group whose name is not in `skip` (the table is shortened in
// place, still ended by 0); null when zexdoc.com is not there.
inline std::unique_ptr<ExerciserRun> RunExerciser(const std::set<std::string>& skip) {
    if (!std::filesystem::exists(TVC_ZEXDOC)) return nullptr;
    auto run = std::make_unique<ExerciserRun>();
    auto machine = std::make_unique<Machine>(run->host);
    Machine& m = *machine;
    m.cpu.Z80Init();
    m.cpu.UndocEnabled = 1;
    EXPECT_EQ(run->shim.Load(m, TVC_ZEXDOC), "");
    auto word = [&m](int32_t a) { return MemRead(m, a) | MemRead(m, a + 1) << 8; };
    int32_t out = run->shim.Table();
    for (int32_t in = out; word(in); in += 2) {
        const int32_t d = word(in);
        std::string name; // the message behind the three vectors and the CRC
        for (int32_t a = d + 65; MemRead(m, a) != '.' && MemRead(m, a) != '$'; ++a)
            name += char(MemRead(m, a));
        if (skip.count(name)) continue;
        run->groups.push_back(name);
        MemWrite(m, out++, d & 255);
        MemWrite(m, out++, d >> 8);
    }
    MemWrite(m, out, 0);
    MemWrite(m, out + 1, 0);
    for (int64_t n = 0; run->shim.Step(m, -1) && n < 8'000'000'000 && !m.FatalStop; ++n) {
        ExecuteInstruction(m);
        m.cpu.RegR &= 255;
        if (m.cpu.TStates > kFrameT) m.cpu.TStates -= kFrameT;
    }
    run->shim.console.EndLine();
    return run;
}

} // namespace tvc::test
