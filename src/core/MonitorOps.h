// What the CPU monitor does to the machine apart from its text: the edit
// boxes' registers by control index, their storing rules, and "Load Bin".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tvc {

class Machine;
class Z80;

// The register edit boxes, each a control array.
enum class RegBox {
    Text1, // 0..13: A B C D E H L, then the alternates; Hex2
    Text2, // 0..15: S Z Y H X P N C, then the alternates; 0 or 1
    Text3, // 0..5: IX SP IY PC (Hex4), I R (Hex2)
    Text4, // 0..2: IFF1 IFF2 IntMode; decimal
};

inline constexpr int RegBoxCount(RegBox box) {
    switch (box) {
    case RegBox::Text1: return 14;
    case RegBox::Text2: return 16;
    case RegBox::Text3: return 6;
    case RegBox::Text4: return 3;
    }
    return 0;
}

// The variable a box shows; nullptr for an index outside the array.
int32_t* RegBoxField(Z80& cpu, RegBox box, int index);

// Enter in a box: the text is read as hexadecimal (0 on bad input) and
// stored by the box's rule: Text1 held in 0..255, Text2 in 0..1, Text3 in
// 0..65535, Text4 masked (IFF1 and IFF2 with 1, IntMode with 3). Text2's
// copies of Y and X (indices 2, 4, 10, 12) are shown but never stored.
void RegBoxEnter(Z80& cpu, RegBox box, int index, std::string_view text);

// "Load Bin": the file's bytes, at most 65536, into Mem from index 0 as it
// stands, past the memory map. A file that cannot be opened is reported and
// changes nothing; the result says whether it was read.
bool LoadBin(Machine& m, const std::string& name);

} // namespace tvc
