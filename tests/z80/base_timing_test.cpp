// The cost and RegR step of every unprefixed opcode, both ways for the
// conditional ones, against the published Z80 timing with this machine's
// stated differences.
#include <gtest/gtest.h>

#include "z80/CpuTest.h"

namespace tvc::test {
namespace {

// Published T-states; for a conditional row the time when the condition holds.
// clang-format off
constexpr int kPublished[256] = {
//   0   1   2   3   4   5   6   7   8   9   A   B   C   D   E   F
     4, 10,  7,  6,  4,  4,  7,  4,  4, 11,  7,  6,  4,  4,  7,  4, // 0
    13, 10,  7,  6,  4,  4,  7,  4, 12, 11,  7,  6,  4,  4,  7,  4, // 1
    12, 10, 16,  6,  4,  4,  7,  4, 12, 11, 16,  6,  4,  4,  7,  4, // 2
    12, 10, 13,  6, 11, 11, 10,  4, 12, 11, 13,  6,  4,  4,  7,  4, // 3
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // 4
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // 5
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // 6
     7,  7,  7,  7,  7,  7,  4,  7,  4,  4,  4,  4,  4,  4,  7,  4, // 7
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // 8
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // 9
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // A
     4,  4,  4,  4,  4,  4,  7,  4,  4,  4,  4,  4,  4,  4,  7,  4, // B
    11, 10, 10, 10, 17, 11,  7, 11, 11, 10, 10,  0, 17, 17,  7, 11, // C
    11, 10, 10, 11, 17, 11,  7, 11, 11,  4, 10, 11, 17,  0,  7, 11, // D
    11, 10, 10, 19, 17, 11,  7, 11, 11,  4, 10,  4, 17,  0,  7, 11, // E
    11, 10, 10,  4, 17, 11,  7, 11, 11,  6, 10,  4, 17,  0,  7, 11, // F
};
// clang-format on

bool IsPrefix(int op) {
    return op == 0xCB || op == 0xDD || op == 0xED || op == 0xFD;
}

// Published cost when the condition fails, or -1 for an unconditional row.
int PublishedNotTaken(int op) {
    if (op == 0x10) return 8;                                // DJNZ
    if (op >= 0x20 && op <= 0x38 && (op & 7) == 0) return 7; // JR cc
    if (op >= 0xC0 && (op & 7) == 0) return 5;               // RET cc
    if (op >= 0xC0 && (op & 7) == 2) return 10;              // JP cc
    if (op >= 0xC0 && (op & 7) == 4) return 10;              // CALL cc
    return -1;
}

// The rows where this machine's processor differs from the published one.
int Expected(int op, bool taken) {
    const bool conditional = PublishedNotTaken(op) >= 0;
    int t = conditional && !taken ? PublishedNotTaken(op) : kPublished[op];
    if (op == 0x27) t = 7;                                          // DAA
    if (op >= 0xC0 && (op & 7) == 0 && taken) t = 10;               // RET cc
    if (op >= 0xC0 && (op & 7) == 2 && op != 0xC2 && !taken) t = 6; // JP cc
    if (op == 0xDA && taken) t = 0;                                 // JP C
    if (op == 0xDE) t = 4;                                          // SBC A,n
    if (op == 0xEE || op == 0xF6) t = 2;                            // XOR n, OR n
    if (op == 0xF9) t = 10;                                         // LD SP,HL
    return t;
}

// RegR steps by 1 for every base instruction but these: RET cc taken or not
// 2, RST 2 (RST 38H 1), IN A,(n) 3, EX (SP),HL 2, JP NZ taken 0.
int RStep(int op, bool zero) {
    if ((op & 0xC7) == 0xC0 || ((op & 0xC7) == 0xC7 && op != 0xFF) || op == 0xE3) return 2;
    if (op == 0xDB) return 3;
    return op == 0xC2 && !zero ? 0 : 1;
}

// Whether the condition of a conditional row holds with all flags clear.
bool TakenWithFlagsClear(int op) {
    if (op == 0x10) return true; // DJNZ, with RegB 5 here and 1 with the flags set
    const int cc = op < 0x40 ? ((op >> 3) & 3) : ((op >> 3) & 7);
    return (cc & 1) == 0; // NZ, NC, PO, P
}

class BaseTiming : public CpuTest {};

TEST_F(BaseTiming, EveryOpcodeBothWays) {
    for (int op = 0; op < 256; ++op) {
        if (IsPrefix(op)) continue;
        for (int flags : {0x00, 0xFF}) {
            cpu.SetFlagsByte(flags);
            cpu.RegB = flags ? 1 : 5;
            cpu.RegSP = 0xE000;
            cpu.IFF1 = cpu.IFF2 = 0;
            cpu.Halted = 0;
            cpu.TStates = 0;
            const bool taken = TakenWithFlagsClear(op) == (flags == 0);
            const Cost c = Run({static_cast<uint8_t>(op), 0x00, 0x90});
            EXPECT_EQ(c.t, Expected(op, taken))
                << "opcode " << Hex({static_cast<uint8_t>(op)}) << (taken ? " taken" : "");
            EXPECT_EQ(c.r, RStep(op, flags & fZ)) << "opcode " << Hex({static_cast<uint8_t>(op)});
        }
    }
}

// The DD and FD rows cost the published base row on HL plus 4 for the
// prefix, and 8 more where (HL) becomes (IX+d) (5 for LD (IX+d),n). This
// machine departs on LD IX,nn (19), INC IX (6), DEC IX (6; DEC IY 10), POP IX
// (10) and LD (IY+d),r (20), and steps RegR by 1 but on the rows of rStep.
TEST_F(BaseTiming, IndexRowsAddThePrefixAndTheDisplacement) {
    const int rows[] = {0x09, 0x19, 0x29, 0x39, 0x21, 0x22, 0x23, 0x2A, 0x2B, 0x34,
                        0x35, 0x36, 0x46, 0x4E, 0x56, 0x5E, 0x66, 0x6E, 0x7E, 0x70,
                        0x71, 0x72, 0x73, 0x74, 0x75, 0x77, 0x86, 0x8E, 0x96, 0x9E,
                        0xA6, 0xAE, 0xB6, 0xBE, 0xE1, 0xE3, 0xE5, 0xE9, 0xF9};
    auto rStep = [](bool fd, int op) {
        if (op == 0x22 || op == 0x66 || op == 0x7E || op == 0xE3 || op == 0xF9) return 2;
        if (!fd) return 1;
        if (op == 0x29 || op == 0x39 || op == 0x8E) return 4;
        if (op == 0x9E) return 5;
        return op == 0x2B || op == 0x34 || op == 0x35 || (op & 0xC7) == 0x46 ? 2 : 1;
    };
    for (int fd : {0, 1}) {
        for (int op : rows) {
            const bool d = (op >= 0x34 && op <= 0x36) ||
                           (op >= 0x46 && op < 0xC0 && ((op & 7) == 6 || op >> 3 == 0x0E));
            int t = kPublished[op] + 4 + (op == 0x36 ? 5 : d ? 8 : 0);
            if (op == 0x21) t = 19;
            if (op == 0x23 || (op == 0x2B && !fd)) t = 6;
            if (op == 0xE1 || (op == 0x2B && fd)) t = 10;
            if (fd && op >> 3 == 0x0E) t = 20;
            cpu.RegIX = 0x2000;
            cpu.RegIY = 0x2100;
            cpu.RegSP = 0xE000;
            const std::vector<uint8_t> bytes{uint8_t(fd ? 0xFD : 0xDD), uint8_t(op), 0x05, 0x40};
            const Cost c = Run(bytes);
            EXPECT_EQ(c.t, t) << Hex(bytes);
            EXPECT_EQ(c.r, rStep(fd, op)) << Hex(bytes);
            const int nn = op == 0x21 || op == 0x22 || op == 0x2A;
            EXPECT_EQ(c.len,
                      op == 0xE9 ? (fd ? 0x2100 : 0x2000) - kOrg : 2 + d + (op == 0x36) + 2 * nn)
                << Hex(bytes);
        }
    }
    EXPECT_EQ(UnknownOpcodes(), 0u);
}

} // namespace
} // namespace tvc::test
