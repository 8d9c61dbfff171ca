// The run loop: the whole emulation, one instruction at a time, on the one
// thread, handing control to the window system twice per 62,500-T-state frame.
#pragma once

#include <cstdint>

namespace tvc {

class Machine;

// Runs while RunFlag is exactly 1; with RunFlag 0 it performs one pass.
// Called while a loop is already running (from a handler at one of its
// yield points) it returns at once and leaves that loop to its own test.
void RunLoop(Machine& m);

// One pass of the loop: one whole instruction (all its prefix stages), the
// interrupt sampling, the tone timer, the cursor interrupt, the frame work at
// a frame boundary, and the breakpoint test.
void RunPass(Machine& m);

// The instruction stage of a pass: fetches and dispatches on PrefixState
// until the instruction is complete, without the masking of RegR, the
// interrupt sampling or any of the timers. Tools that drive the processor in
// a tight loop (instruction exercisers) call it directly.
void ExecuteInstruction(Machine& m);

// What the loop does on leaving: the CPU monitor's Stop button turns red.
void LeaveRunLoop(Machine& m);

// The host clock for the load display: TimingRead is the time since
// TimingStart in units of 10 microseconds, rounded half to even.
void TimingStart(Machine& m);
int32_t TimingRead(const Machine& m);

} // namespace tvc
