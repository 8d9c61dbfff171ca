// The assembler's passes over the whole source, the compile with its status
// display, the listing search, and the workbench's run buttons. Everything
// the workbench shows is in Machine::forms.asse (asm/AsseState.h).
#pragma once

#include <cstdint>
#include <string_view>

namespace tvc {

class Machine;

// The passes read lines up to this character and no further.
inline constexpr int32_t kSourceStop = 100000;

// Pass 1 over forms.asse.Source: the symbol table List1 and the sizes.
// 0, or -1 after a bad line (its message in Text13, the line selected).
int32_t PreComp0(Machine& m);

// Pass 2: the bytes through MemWrite and the colour listing RText2.
int32_t PreComp1(Machine& m);

// Both passes over RText1 (normalised into Source first), List3, and the
// status boxes Text13, Text14, Label2 with their colours. 0 or -1.
int32_t Compile(Machine& m);

// Selects the first listing text equal to `text` without regard to case,
// six characters long (fewer at the end); false when there is none.
bool Dline(Machine& m, std::string_view text);

namespace asse {

// "Compile": runs Compile with the paging latch PortLatch[2] at 0xB0, and
// gives the latch back its value afterwards.
int32_t Command1_Click(Machine& m);
// "RUN": RegPC = 10000, whatever ORG said; the processor is not started.
void Command6_Click(Machine& m);
// "RESET": Mem[0x0B22] = 0xFF, then the processor and machine reset.
void Command7_Click(Machine& m);
// "STOP CPU" and "RUN CPU".
void Command12_Click(Machine& m);
void Command13_Click(Machine& m);

} // namespace asse

} // namespace tvc
