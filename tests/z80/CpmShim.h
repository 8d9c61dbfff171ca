// A small CP/M shim for the Z80 exercisers (zexdoc.com), shared by the slow
// test and the whole-machine benchmark: it loads the program at 0x100 over a
// flat 64 KB bus (P2 = 0xB0 puts RAM at all four 16 KB ranges), serves BDOS
// functions 2 and 9 at address 5, keeps the top of memory in the word at 6
// and ends the run when RegPC reaches address 0.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/Machine.h"

namespace tvc {

// The program's text output, echoed to stdout and split into the groups'
// result lines.
struct ExerciserConsole {
    std::string line;
    std::vector<std::pair<std::string, bool>> results; // group, OK
    bool complete = false;

    void Put(char ch);
    void EndLine();
};

class CpmShim {
  public:
    // Reads the program; an empty text means success, otherwise the reason
    // (a missing file gives kMissing).
    static constexpr const char* kMissing = "not found";
    std::string Load(Machine& m, const char* path);

    // The address of that table: a run of words pointing at descriptors.
    int32_t Table() const { return table_; }

    // Called before each instruction: serves BDOS at address 5. Returns false
    // when the run is to stop: RegPC reached 0 (Ended() is then true) or
    // maxGroups results (when not negative) have been reported.
    bool Step(Machine& m, int maxGroups) {
        const int32_t pc = m.cpu.RegPC;
        return static_cast<uint32_t>(pc) > 5 || Serve(m, pc, maxGroups);
    }
    bool Ended() const { return ended_; }

    ExerciserConsole console;

  private:
    bool Serve(Machine& m, int32_t pc, int maxGroups);
    int32_t table_ = -1;
    bool ended_ = false;
};

} // namespace tvc
