// The processor's registers, flags and lines and the run loop's clocks by
// name, as monitors, scripts and dumps address them.
#pragma once

#include <cstdint>
#include <vector>

namespace tvc {

class Machine;

struct StateField {
    const char* name;
    int32_t* value;
};

// In a fixed order: RegA .. RegL, the alternates, the flags and their
// alternates, RegIX RegIY RegSP RegPC RegI RegR, IFF1 IFF2 IntMode, the lines,
// then the clocks TStates FrameT InstCount PrefixState SoundTimer.
std::vector<StateField> StateFields(Machine& m);

} // namespace tvc
