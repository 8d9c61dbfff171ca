#include "core/StateFields.h"

#include "core/Machine.h"

namespace tvc {

std::vector<StateField> StateFields(Machine& m) {
    Z80& c = m.cpu;
    return {
        {"RegA", &c.RegA},
        {"RegB", &c.RegB},
        {"RegC", &c.RegC},
        {"RegD", &c.RegD},
        {"RegE", &c.RegE},
        {"RegH", &c.RegH},
        {"RegL", &c.RegL},
        {"RegA2", &c.RegA2},
        {"RegB2", &c.RegB2},
        {"RegC2", &c.RegC2},
        {"RegD2", &c.RegD2},
        {"RegE2", &c.RegE2},
        {"RegH2", &c.RegH2},
        {"RegL2", &c.RegL2},
        {"FlagS", &c.FlagS},
        {"FlagZ", &c.FlagZ},
        {"FlagY", &c.FlagY},
        {"FlagH", &c.FlagH},
        {"FlagX", &c.FlagX},
        {"FlagP", &c.FlagP},
        {"FlagN", &c.FlagN},
        {"FlagC", &c.FlagC},
        {"FlagS2", &c.FlagS2},
        {"FlagZ2", &c.FlagZ2},
        {"FlagY2", &c.FlagY2},
        {"FlagH2", &c.FlagH2},
        {"FlagX2", &c.FlagX2},
        {"FlagP2", &c.FlagP2},
        {"FlagN2", &c.FlagN2},
        {"FlagC2", &c.FlagC2},
        {"RegIX", &c.RegIX},
        {"RegIY", &c.RegIY},
        {"RegSP", &c.RegSP},
        {"RegPC", &c.RegPC},
        {"RegI", &c.RegI},
        {"RegR", &c.RegR},
        {"IFF1", &c.IFF1},
        {"IFF2", &c.IFF2},
        {"IntMode", &c.IntMode},
        {"Halted", &c.Halted},
        {"ResetRequest", &c.ResetRequest},
        {"NmiRequest", &c.NmiRequest},
        {"IrqRequest", &c.IrqRequest},
        {"UndocEnabled", &c.UndocEnabled},
        {"TStates", &c.TStates},
        {"FrameT", &m.run.FrameT},
        {"InstCount", &m.run.InstCount},
        {"PrefixState", &c.PrefixState},
        {"SoundTimer", &m.run.SoundTimer},
    };
}

} // namespace tvc
