// Clocks and line flags of the run loop.
#pragma once

#include <chrono>
#include <cstdint>

namespace tvc {

constexpr int32_t kFrameT = 62500;      // T-states per 50 Hz frame at 3.125 MHz
constexpr int64_t kTotalTScale = 10000; // TotalT keeps four decimal places

struct RunState {
    int32_t FrameT = 0;         // T-states into the current frame
    int64_t TotalT = 0;         // frames run, as T-states times 10000
    int32_t SoundTimer = 0;     // countdown of the tone generator, in T-states
    int32_t LastCursorIrqT = 0; // FrameT when the cursor interrupt last fired
    int32_t InstCount = 0;      // instructions begun
    int32_t LastPC = 0;         // first byte of the instruction being executed
    uint8_t RunFlag = 0;        // the loop goes on while this is exactly 1
    uint8_t BreakpointArmed = 0;
    bool Running = false;    // a RunLoop is on the stack
    uint64_t FrameCount = 0; // frame boundaries passed since the machine was made

    // The addresses of the last ten instructions; LastPcRing(9) is the latest.
    // The ring holds sixteen so that stepping it is a mask, not a test.
    int32_t LastPcRing(int i) const { return ring[(ringHead - 9 + i) & 15]; }
    void PushLastPc(int32_t pc) {
        ringHead = (ringHead + 1) & 15;
        ring[ringHead] = pc;
    }

    std::chrono::steady_clock::time_point timingStart = std::chrono::steady_clock::now();

  private:
    int32_t ring[16] = {};
    int ringHead = 15;
};

} // namespace tvc
