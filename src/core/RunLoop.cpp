#include "core/RunLoop.h"

#include <string>

#include "core/Machine.h"
#include "core/RunPassInline.h"
#include "core/MonitorText.h"
#include "core/Numbers.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "video/Screen.h"

namespace tvc {

namespace {

// Cursor interrupt timing: fixed working values whatever the CRTC holds.
constexpr int32_t kCursorStartT = 392; // T-states before the first character
constexpr int32_t kCharRowT = 1360;    // one character row
// One character position is 13.6 T-states: pos = FrameT * 100 / 1360.

} // namespace

void SampleInterrupts(Machine& m) {
    Z80& cpu = m.cpu;
    if (cpu.ResetRequest || cpu.NmiRequest) {
        if (cpu.Halted) {
            cpu.RegPC = WrapAdd(cpu.RegPC, 1);
            cpu.Halted = 0;
        }
        if (cpu.ResetRequest)
            MachineReset(m);
        else
            cpu.AcceptNmi();
    } else if (cpu.IFF1 & cpu.IrqRequest) {
        if (cpu.Halted) {
            cpu.RegPC = WrapAdd(cpu.RegPC, 1);
            cpu.Halted = 0;
        }
        cpu.AcceptIrq();
    }
}

void FrameBoundary(Machine& m) {
    RunState& r = m.run;
    r.FrameT -= kFrameT;
    r.LastCursorIrqT = r.FrameT;
    r.FrameCount += 1;

    const int32_t load = TimingRead(m);
    m.host->SetStatus(StatusField::Text1, std::to_string(load));
    m.host->SetLoadBar(load);
    TimingStart(m);

    r.TotalT += int64_t(kFrameT) * kTotalTScale;
    LPENRefresh(m);
    m.host->DoEvents();
    if (m.sound.BlockIndex == 1 || m.sound.BlockIndex == 3) {
        ScreenRedraw(m);
        PALchNull(m);
    }
    m.host->DoEvents();
    if (m.sound.BlockIndex < kBlocksPerDelivery) SoundMix(m);
    if (m.sound.BlockIndex == kBlocksPerDelivery) {
        SoundFrame(m);
        m.sound.BlockIndex = 0;
    }
}

void ExecutePrefixStages(Machine& m) {
    Z80& cpu = m.cpu;
    for (;;) {
        cpu.CurOpcode = MemRead(m, cpu.RegPC);
        switch (cpu.PrefixState) {
        case kPrefixNone: cpu.xx(); break;
        case kPrefixCB: cpu.xxCB(); break;
        case kPrefixED: cpu.xxED(); break;
        case kPrefixDD: cpu.xxDD(); break;
        case kPrefixFD: cpu.xxFD(); break;
        // The two offsets differ on purpose: xxDD has already stepped over one
        // more byte than xxFD. Both land on the byte after the displacement.
        case kPrefixFDCB:
            cpu.CurOpcode = MemRead(m, cpu.RegPC + 2);
            cpu.xxFDCB();
            break;
        case kPrefixDDCB:
            cpu.CurOpcode = MemRead(m, cpu.RegPC + 1);
            cpu.xxDDCB();
            break;
        default: {
            const int32_t bad = cpu.PrefixState;
            cpu.PrefixState = 0;
            m.Fatal(std::to_string(bad) + "=Unknown prefix", "CPU ERROR!");
            return;
        }
        }
        if (cpu.PrefixState <= 0) return;
    }
}

void ExecuteInstruction(Machine& m) {
    ExecuteInstructionInline(m);
}

void ToneTimerExpired(Machine& m) {
    m.run.SoundTimer = ToneReload(m);
    if (m.forms.TVCmon.Check3 && (m.bus.PortLatch[5] & 0x20)) m.bus.PortLatch[0x59] &= ~0x10;
}

void CursorInterrupt(Machine& m) {
    RunState& r = m.run;
    const int32_t* reg = m.crtc.CrtcReg;
    const int32_t pos = r.FrameT * 100 / kCharRowT;
    // 64 bits: a snapshot can load any 32-bit value into a register.
    const int64_t cur = (reg[14] & 15) * 256 + int64_t(reg[15]) + kCursorStartT;
    const int64_t diff = pos - cur;
    if (r.FrameT > kCursorStartT && static_cast<int64_t>(r.FrameT) < int64_t(reg[6]) * kCharRowT &&
        r.FrameT > r.LastCursorIrqT && (diff == 0 || diff == 1)) {
        m.bus.PortLatch[0x59] &= ~0x10;
        r.LastCursorIrqT = r.FrameT;
    }
}

void BreakpointTest(Machine& m) {
    if (m.forms.CPUmon.Check2 && m.cpu.RegPC == DecimalValue(m.forms.CPUmon.Text5)) {
        m.run.RunFlag = 0;
        m.host->MonitorRedraw();
    }
}

void RunPass(Machine& m) {
    RunPassInline(m);
}

void LeaveRunLoop(Machine& m) {
    m.forms.CPUmon.Command6Color = 255;
    m.host->MonitorRedraw();
}

void RunLoop(Machine& m) {
    // A handler called from a yield point must not start a second loop on
    // top of the running one: the running one goes on, or stops at its test.
    if (m.FatalStop || m.run.Running) return;
    m.run.Running = true;
    do {
        RunPassInline(m);
    } while (m.run.RunFlag == 1);
    m.run.Running = false;
    LeaveRunLoop(m);
}

void TimingStart(Machine& m) {
    m.run.timingStart = std::chrono::steady_clock::now();
}

int32_t TimingRead(const Machine& m) {
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(
                        std::chrono::steady_clock::now() - m.run.timingStart)
                        .count();
    return static_cast<int32_t>(RoundHalfEven(static_cast<double>(ns) / 10000.0));
}

} // namespace tvc
