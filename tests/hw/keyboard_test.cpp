// Key codes to matrix bits, the Alt rule, the emulator's function keys, the
// paging calculator of the keypad, and the window's and tvc-headless's key
// queues.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "hw/KeyQueue.h"
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

// Alt alone never reaches the matrix and leaves the code alone; AltGr (Alt
// with Ctrl) does reach it. F1 and F2 reset unless Alt is held.
TEST(Keyboard, AltRuleAndFunctionKeys) {
    TestMachine t;
    int code = 'A';
    PicdKeyDown(t.m(), code, kAltMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[4], 0);
    EXPECT_EQ(code, 'A');
    code = 18;
    PicdKeyDown(t.m(), code, kAltMask | kCtrlMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[7], 0x01);
    PicdKeyUp(t.m(), 18, kAltMask);
    EXPECT_EQ(t.m().bus.KeyMatrix[7], 0);

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

// The key queue that types for tvc-headless --type.
TEST(KeyQueue, EachKeyIsHeldThenReleasedWithShiftWhereNeeded) {
    KeyQueue q(10);
    std::string error;
    ASSERT_TRUE(q.PushText("aA", error)) << error; // one key twice: seen up in between
    const FirmwareKey a = *FirmwareKeyFor('a');
    const uint8_t aBit = uint8_t(1 << a.bit), shiftBit = uint8_t(1 << kFirmwareShiftKey.bit);
    ASSERT_EQ(FirmwareKeyFor('A')->row, a.row);

    uint8_t matrix[11] = {};
    const struct {
        uint64_t frame;
        bool aDown, shiftDown;
    } steps[] = {
        {0, false, false},  {9, false, false},  {10, true, false}, {12, true, false},
        {13, false, false}, {15, false, false}, {16, true, true},  {18, true, true},
        {19, false, false}, {40, false, false},
    };
    for (const auto& s : steps) {
        q.OnFrame(s.frame, matrix);
        EXPECT_EQ((matrix[a.row] & aBit) != 0, s.aDown) << "frame " << s.frame;
        EXPECT_EQ((matrix[kFirmwareShiftKey.row] & shiftBit) != 0, s.shiftDown)
            << "frame " << s.frame;
    }
    EXPECT_EQ(q.DoneFrame(), 10u + 2 * KeyQueue::kFramesPerKey);
}

TEST(KeyQueue, EscapesAndUnknownCharacters) {
    const struct {
        const char* text;
        bool ok;
        size_t keys;
    } cases[] = {
        {"a\\nb", true, 3}, {"\\b", true, 1}, {"\\\\", true, 1},
        {"x\n", true, 2},   {"\t", false, 0}, {"ok\x01", false, 0},
    };
    for (const auto& k : cases) {
        KeyQueue q(0);
        std::string error;
        EXPECT_EQ(q.PushText(k.text, error), k.ok) << k.text;
        EXPECT_EQ(q.size(), k.keys) << k.text;
        if (!k.ok) { EXPECT_NE(error.find("no key types"), std::string::npos); }
    }
    EXPECT_EQ(FirmwareKeyFor('\n')->ch, '\r');
    EXPECT_EQ(FirmwareKeyFor('\\')->ch, '\\');
}

} // namespace
} // namespace tvc::test
