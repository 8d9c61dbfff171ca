// The hot path of one pass of the run loop, inline so that RunLoop and the
// tight loops of the benchmarks run it without a call per instruction. Rare
// events (prefix stages, interrupt requests, the tone timer's reload, the
// cursor interrupt test while the cursor is on, the frame boundary, the
// breakpoint) stay out of line: the hot path then needs few registers and no
// saving of them on entry.
#pragma once

#include "core/Machine.h"
#include "hw/Memory.h"
#include "z80/ExecBaseBody.h"

namespace tvc {

[[gnu::noinline]] void ExecutePrefixStages(Machine& m);
[[gnu::noinline]] void SampleInterrupts(Machine& m);
[[gnu::noinline]] void ToneTimerExpired(Machine& m);
[[gnu::noinline]] void CursorInterrupt(Machine& m);
[[gnu::noinline]] void FrameBoundary(Machine& m);
[[gnu::noinline]] void BreakpointTest(Machine& m);

[[gnu::always_inline]] inline void ExecuteInstructionInline(Machine& m) {
    Z80& cpu = m.cpu;
    // Most instructions have no prefix: their one stage needs no dispatch on
    // PrefixState.
    if (cpu.PrefixState == kPrefixNone) {
        cpu.CurOpcode = MemRead(m, cpu.RegPC);
        cpu.xxBody();
        if (cpu.PrefixState <= 0) return;
    }
    ExecutePrefixStages(m);
}

[[gnu::always_inline]] inline void RunPassInline(Machine& m) {
    Z80& cpu = m.cpu;
    RunState& r = m.run;

    r.InstCount = WrapAdd(r.InstCount, 1);
    const int32_t start = cpu.TStates;
    r.LastPC = cpu.RegPC;

    ExecuteInstructionInline(m);
    cpu.RegR &= 255;
    if (cpu.ResetRequest | cpu.NmiRequest | (cpu.IFF1 & cpu.IrqRequest)) SampleInterrupts(m);

    // Interrupt acceptance counts in the T-states of the pass.
    const int32_t spent = cpu.TStates - start;
    r.SoundTimer -= spent;
    if (r.SoundTimer < 1) ToneTimerExpired(m);
    r.FrameT += spent;

    // The cursor interrupt fires only while the cursor is on (R10 below 4).
    if (m.crtc.CrtcReg[10] < 4) CursorInterrupt(m);
    if ((m.bus.PortLatch[0x59] & 0x1F) != 0x1F && cpu.IFF1 == 1) cpu.IrqRequest = 1;

    if (r.FrameT > kFrameT) FrameBoundary(m);
    if (cpu.TStates > kFrameT) cpu.TStates -= kFrameT;

    if (r.BreakpointArmed) BreakpointTest(m);
    r.PushLastPc(r.LastPC);
}

} // namespace tvc
