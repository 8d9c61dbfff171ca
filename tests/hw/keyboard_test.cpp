// Key codes to matrix bits, the Alt rule, the emulator's function keys and
// the paging calculator of the keypad.
#include <gtest/gtest.h>

#include <algorithm>

#include "hw/Keyboard.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(Keyboard, EveryMatrixPositionReadsBackThroughPort58) {
    // row, bit, key code — written out from the keyboard's layout table.
    const struct {
        int row, bit, code;
    } keys[] = {
        {0, 7, '4'}, {0, 6, '1'}, {0, 5, 226}, {0, 4, '6'}, {0, 3, '0'}, {0, 2, '2'}, {0, 1, '3'},
        {0, 0, '5'}, {1, 7, '7'}, {1, 6, 192}, {1, 5, 187}, {1, 4, 106}, {1, 3, 191}, {1, 2, '9'},
        {1, 1, '8'}, {1, 0, 109}, {2, 7, 'R'}, {2, 6, 'Q'}, {2, 5, 117}, {2, 4, 'Z'}, {2, 3, 116},
        {2, 2, 'W'}, {2, 1, 'E'}, {2, 0, 'T'}, {3, 7, 'U'}, {3, 6, 'P'}, {3, 5, 221}, {3, 4, 118},
        {3, 3, 219}, {3, 2, 'O'}, {3, 1, 'I'}, {3, 0, 119}, {4, 7, 'F'}, {4, 6, 'A'}, {4, 5, 107},
        {4, 4, 'H'}, {4, 3, 111}, {4, 2, 'S'}, {4, 1, 'D'}, {4, 0, 'G'}, {5, 7, 'J'}, {5, 6, 186},
        {5, 5, 220}, {5, 4, 13},  {5, 3, 222}, {5, 2, 'L'}, {5, 1, 'K'}, {5, 0, 8},   {6, 7, 'V'},
        {6, 6, 'Y'}, {6, 5, 20},  {6, 4, 'N'}, {6, 3, 16},  {6, 2, 'X'}, {6, 1, 'C'}, {6, 0, 'B'},
        {7, 7, 'M'}, {7, 6, 189}, {7, 5, 32},  {7, 4, 17},  {7, 3, 35},  {7, 2, 190}, {7, 1, 188},
        {7, 0, 18},  {8, 6, 37},  {8, 5, 39},  {8, 4, 121}, {8, 3, 120}, {8, 2, 40},  {8, 1, 38},
        {8, 0, 45},
    };
    TestMachine t;
    Machine& m = t.m();
    for (const auto& k : keys) {
        int code = k.code;
        EXPECT_EQ(PicdKeyDown(m, code, 0), KeyCommand::None);
        EXPECT_EQ(code, k.code); // kept: the key has a place
        m.bus.PortLatch[3] = static_cast<uint8_t>(0x40 | k.row);
        EXPECT_EQ(PortIn(m, 0x58), 255 - (1 << k.bit)) << k.code;
        PicdKeyUp(m, k.code, 0);
        EXPECT_EQ(PortIn(m, 0x58), 255) << k.code;
    }
}

TEST(Keyboard, KeysWithoutAPlaceAreSwallowed) {
    TestMachine t;
    for (int code : {27, 9, 96, 105, 112 + 2, 122, 123, 46, 0, 300}) {
        int c = code;
        EXPECT_EQ(PicdKeyDown(t.m(), c, 0), KeyCommand::None);
        EXPECT_EQ(c, 0) << code;
    }
    for (uint8_t row : t.m().bus.KeyMatrix)
        EXPECT_EQ(row, 0);
}

TEST(Keyboard, AltAloneNeverReachesTheMatrixButAltGrDoes) {
    TestMachine t;
    int code = 'A';
    PicdKeyDown(t.m(), code, kAltMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[4], 0);
    EXPECT_EQ(code, 'A'); // left untouched
    code = 18;
    PicdKeyDown(t.m(), code, kAltMask | kCtrlMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[7], 0x01);
    PicdKeyUp(t.m(), 18, kAltMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[7], 0);
}

TEST(Keyboard, FunctionKeysOneAndTwoResetUnlessAltIsHeld) {
    TestMachine t;
    int f1 = 112, f2 = 113;
    EXPECT_EQ(PicdKeyDown(t.m(), f1, 0), KeyCommand::Reset);
    EXPECT_EQ(PicdKeyDown(t.m(), f2, kShiftMask), KeyCommand::Reset2);
    EXPECT_EQ(f1, 112);
    EXPECT_EQ(PicdKeyDown(t.m(), f1, kAltMask), KeyCommand::None);
    EXPECT_EQ(t.m().forms.TTools.Label2, 112);
}

TEST(Keyboard, ShiftIsJustAnotherKeyAndClearingReleasesAll) {
    TestMachine t;
    int shift = 16, a = 'A';
    PicdKeyDown(t.m(), shift, kShiftMask);
    PicdKeyDown(t.m(), a, kShiftMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[6], 0x08);
    EXPECT_EQ(t.m().bus.KeyMatrix[4], 0x40);
    ClearKeyMatrix(t.m());
    for (uint8_t row : t.m().bus.KeyMatrix)
        EXPECT_EQ(row, 0);
}

// The calculator sets one field of the page register: bits 7-6 (four
// choices), bit 5, bits 4-3 (four choices) or bit 2, leaving the others;
// a choice out of range is held at its ends, a field out of range does nothing.
TEST(Keyboard, PagingCalculatorFields) {
    const struct { int step, choices; } fields[4] = {{64, 4}, {32, 2}, {8, 4}, {4, 2}};
    for (int byte = 0; byte < 256; ++byte)
        for (int field = -1; field <= 4; ++field)
            for (int choice = -1; choice <= 4; ++choice) {
                int want = byte;
                if (field >= 0 && field < 4) {
                    const auto [step, choices] = fields[field];
                    want = (byte & ~((choices - 1) * step)) +
                           std::clamp(choice, 0, choices - 1) * step;
                }
                ASSERT_EQ(PagingCalculator(byte, field, choice), want)
                    << byte << " " << field << " " << choice;
            }
}

} // namespace
} // namespace tvc::test

namespace tvc::test {
namespace {

TEST(KeyEventQueue, KeysTypedInOnePauseReachTheMatrixOneFrameApart) {
    TestMachine t;
    Machine& m = t.m();
    KeyEventQueue q;
    // "HE" typed quickly: all four events arrive while the machine waits.
    q.Push(true, 'H', 0);
    q.Push(false, 'H', 0);
    q.Push(true, 'E', 0);
    q.Push(false, 'E', 0);
    std::vector<std::pair<uint8_t, uint8_t>> seen; // rows 4 (H) and 2 (E) at each frame
    for (int frame = 0; frame < 6; ++frame) {
        m.run.FrameCount = static_cast<uint64_t>(frame);
        q.Pump(m);
        seen.emplace_back(m.bus.KeyMatrix[4] & 0x10, m.bus.KeyMatrix[2] & 0x02);
    }
    const std::vector<std::pair<uint8_t, uint8_t>> expect = {{0x10, 0}, {0x10, 0}, {0, 0},
                                                             {0, 0x02}, {0, 0x02}, {0, 0}};
    EXPECT_EQ(seen, expect);
    EXPECT_TRUE(q.Empty());
}

TEST(KeyEventQueue, AKeyStruckTwiceIsSeenUpBetweenThePresses) {
    TestMachine t;
    Machine& m = t.m();
    KeyEventQueue q;
    for (int i = 0; i < 2; ++i) {
        q.Push(true, '0', 0);
        q.Push(false, '0', 0);
    }
    std::string seen;
    for (int frame = 0; frame < 8; ++frame) {
        m.run.FrameCount = static_cast<uint64_t>(frame);
        q.Pump(m);
        seen += (m.bus.KeyMatrix[0] & 0x08) ? 'D' : 'u';
    }
    EXPECT_EQ(seen, "DDuDDuuu");
}

TEST(KeyEventQueue, CommandsComeBackAndClearingDropsEverything) {
    TestMachine t;
    Machine& m = t.m();
    KeyEventQueue q;
    q.Push(true, 112, 0); // F1
    EXPECT_EQ(q.Pump(m), std::vector<KeyCommand>{KeyCommand::Reset});
    q.Push(true, 'A', 0);
    EXPECT_TRUE(q.Pump(m).empty()); // a second key down waits for the next frame
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    m.run.FrameCount = 1;
    q.Pump(m);
    EXPECT_EQ(m.bus.KeyMatrix[4], 0x40);
    q.Push(false, 'A', 0);
    q.Clear(m);
    EXPECT_TRUE(q.Empty());
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    q.Push(false, 'Q', 0); // a release of a key never seen going down passes at once
    q.Pump(m);
    EXPECT_TRUE(q.Empty());
}

} // namespace
} // namespace tvc::test
