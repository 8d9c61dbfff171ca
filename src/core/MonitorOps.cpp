#include "core/MonitorOps.h"

#include <fstream>
#include <vector>

#include "asm/TextLib.h"
#include "core/Machine.h"
#include "core/MonitorText.h"
#include "media/MediaFiles.h"

namespace tvc {

int32_t* RegBoxField(Z80& c, RegBox box, int index) {
    if (index < 0 || index >= RegBoxCount(box)) return nullptr;
    switch (box) {
    case RegBox::Text1: {
        int32_t* regs[] = {&c.RegA,  &c.RegB,  &c.RegC,  &c.RegD,  &c.RegE,  &c.RegH,  &c.RegL,
                           &c.RegA2, &c.RegB2, &c.RegC2, &c.RegD2, &c.RegE2, &c.RegH2, &c.RegL2};
        return regs[index];
    }
    case RegBox::Text2: {
        int32_t* flags[] = {&c.FlagS,  &c.FlagZ,  &c.FlagY,  &c.FlagH,  &c.FlagX,  &c.FlagP,
                            &c.FlagN,  &c.FlagC,  &c.FlagS2, &c.FlagZ2, &c.FlagY2, &c.FlagH2,
                            &c.FlagX2, &c.FlagP2, &c.FlagN2, &c.FlagC2};
        return flags[index];
    }
    case RegBox::Text3: {
        int32_t* regs[] = {&c.RegIX, &c.RegSP, &c.RegIY, &c.RegPC, &c.RegI, &c.RegR};
        return regs[index];
    }
    case RegBox::Text4: {
        int32_t* lines[] = {&c.IFF1, &c.IFF2, &c.IntMode};
        return lines[index];
    }
    }
    return nullptr;
}

void RegBoxEnter(Z80& cpu, RegBox box, int index, std::string_view text) {
    int32_t* field = RegBoxField(cpu, box, index);
    if (!field) return;
    switch (box) {
    case RegBox::Text1: *field = HexClamped(text, 0, 255); break;
    case RegBox::Text2:
        // Y and X are copies the executors make; the monitor leaves them be.
        if (index % 8 != 2 && index % 8 != 4) *field = HexClamped(text, 0, 1);
        break;
    case RegBox::Text3: *field = HexClamped(text, 0, 65535); break;
    case RegBox::Text4: *field = HexToLong(text) & (index == 2 ? 3 : 1); break;
    }
}

bool LoadBin(Machine& m, const std::string& name) {
    std::ifstream in(name, std::ios::binary);
    if (name.empty() || !in) {
        ReportFileError(m, name);
        return false;
    }
    std::vector<char> bytes(65536);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const auto got = static_cast<size_t>(in.gcount());
    for (size_t i = 0; i < got; ++i)
        m.bus.Mem[i] = static_cast<uint8_t>(bytes[i]);
    return true;
}

} // namespace tvc
