// Key codes to matrix bits, the Alt rule, the emulator's function keys and
// the paging calculator of the keypad.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "hw/Keyboard.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

// Each code with a place sets exactly its own bit as port 0x58 reads it,
// no two codes share a place, and every other code is swallowed. Which
// code goes where is checked through the window's key map.
TEST(Keyboard, EachCodeReadsBackAtItsOwnPlaceAndTheRestAreSwallowed) {
    TestMachine t;
    Machine& m = t.m();
    std::set<std::pair<int, int>> places;
    for (int code = 0; code <= 300; ++code) {
        if (code == 112 || code == 113) continue; // F1 and F2 are commands
        int c = code;
        EXPECT_EQ(PicdKeyDown(m, c, 0), KeyCommand::None);
        const auto at = MatrixPosition(code);
        if (!at) {
            EXPECT_EQ(c, 0) << code;
            continue;
        }
        EXPECT_EQ(c, code);
        EXPECT_TRUE(places.insert({at->row, at->bit}).second) << code;
        m.bus.PortLatch[3] = static_cast<uint8_t>(0x40 | at->row);
        EXPECT_EQ(PortIn(m, 0x58), 255 - (1 << at->bit)) << code;
        PicdKeyUp(m, code, 0);
        EXPECT_EQ(PortIn(m, 0x58), 255) << code;
    }
    EXPECT_EQ(places.size(), 71u); // all of rows 0 to 7, row 8 but bit 7
    for (uint8_t row : m.bus.KeyMatrix)
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

// "HE" typed quickly: all four events arrive while the machine waits, and
// each key down waits for the next frame. A command comes back at once;
// clearing drops everything, after which a release passes: no key is held.
TEST(KeyEventQueue, KeysOneFrameApartCommandsAndClearing) {
    TestMachine t;
    Machine& m = t.m();
    KeyEventQueue q;
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

    m.run.FrameCount = 10;
    q.Push(true, 112, 0); // F1
    q.Push(true, 'A', 0);
    EXPECT_EQ(q.Pump(m), std::vector<KeyCommand>{KeyCommand::Reset});
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    m.run.FrameCount = 11;
    q.Pump(m);
    EXPECT_EQ(m.bus.KeyMatrix[4], 0x40);
    q.Push(false, 'A', 0);
    q.Clear(m);
    EXPECT_TRUE(q.Empty());
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    q.Push(false, 'A', 0);
    q.Pump(m);
    EXPECT_TRUE(q.Empty());
}

} // namespace
} // namespace tvc::test
