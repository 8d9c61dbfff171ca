// A fixture for the opcode groups: a machine with RAM everywhere, the tone
// generator's interrupt off, and a way to run a byte sequence and see what a
// program can observe of it: T-states, the RegR step and how far RegPC moved.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "core/Machine.h"
#include "hw/Memory.h"
#include "support/TestMachine.h"

namespace tvc::test {

struct Cost {
    int32_t t, r, len; // T-states, RegR step, RegPC moved from the first byte
};

inline std::string Hex(const std::vector<uint8_t>& bytes) {
    std::string s;
    for (uint8_t b : bytes)
        s += "0123456789ABCDEF"[b >> 4] + std::string(1, "0123456789ABCDEF"[b & 15]) + " ";
    return s;
}

class CpuTest : public ::testing::Test {
  protected:
    static constexpr int32_t kOrg = 0x1000;

    TestMachine tm;
    Machine& m = tm.m();
    Z80& cpu = tm.cpu();

    void SetUp() override {
        m.forms.TVCmon.Check3 = false; // no tone interrupt unless a test asks
        cpu.RegSP = 0xE000;
    }

    // Loads `bytes` at kOrg and runs `passes` passes of the run loop.
    Cost Run(const std::vector<uint8_t>& bytes, int passes = 1) {
        tm.Load(kOrg, bytes);
        return Continue(passes);
    }
    // Further passes from where RegPC stands; len is counted from kOrg.
    Cost Continue(int passes = 1) {
        const int32_t t0 = cpu.TStates;
        cpu.RegR = 0;
        tm.Step(passes);
        return {cpu.TStates - t0, cpu.RegR, cpu.RegPC - kOrg};
    }
    int32_t Peek(int32_t a) { return MemRead(m, a); }
    void Poke(int32_t a, int32_t v) { MemWrite(m, a, v); }
    int32_t Flags() const { return cpu.FlagsByte(); }
    size_t UnknownOpcodes() const { return tm.host.label1.size(); }
};

// Flag bits of the byte PUSH AF stores.
enum : int32_t {
    fS = 0x80,
    fZ = 0x40,
    fY = 0x20,
    fH = 0x10,
    fX = 0x08,
    fP = 0x04,
    fN = 0x02,
    fC = 0x01
};

} // namespace tvc::test
