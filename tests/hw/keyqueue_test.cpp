// The key queue that types for tvc-headless --type.
#include <gtest/gtest.h>

#include "hw/KeyQueue.h"

namespace tvc {
namespace {

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
} // namespace tvc
