#include "asm/TextLib.h"

#include <gtest/gtest.h>

#include "support/Codepage.h"

namespace tvc {
namespace {

constexpr auto kBin = TextCompare::Binary;
constexpr auto kText = TextCompare::IgnoreCase;

// clang-format off
TEST(TextLib, HexIsZeroFilledAndNeverCut) {
    const struct { int32_t value; const char *two, *four; } cases[] = {
        {0x0A, "0A", "000A"}, {0x100, "100", "0100"}, {0x10080, "10080", "10080"},
        {-126, "FFFFFF82", "FFFFFF82"}};
    for (const auto& c : cases) {
        EXPECT_EQ(Hex2(c.value), c.two) << c.value;
        EXPECT_EQ(Hex4(c.value), c.four) << c.value;
    }
}

TEST(TextLib, SignedByteTakes256FromHalfwayOn) {
    const std::pair<int32_t, int32_t> cases[] = {
        {127, 127}, {128, -128}, {-5, -5}, {300, 44}};
    for (auto [in, out] : cases) EXPECT_EQ(SignedByte(in), out) << in;
}

TEST(TextLib, HexToLongGivesZeroForAnythingBad) {
    const std::pair<const char*, int32_t> cases[] = {
        {"ff", 255}, {"7FFFFFFF", 0x7FFFFFFF}, {"FFFFFFFF", -1}, {"000000012", 0x12},
        {" 1A ", 0x1A}, {"", 0}, {"G1", 0}, {"1 2", 0}, {"-1", 0}, {"100000000", 0}, {"\t12", 0}};
    for (auto [in, out] : cases) EXPECT_EQ(HexToLong(in), out) << '"' << in << '"';
}

TEST(TextLib, SplitTextCutsAtEverySeparator) {
    const struct { const char *text, *sep; int32_t count; TextCompare how;
                   std::vector<std::string> out; } cases[] = {
        {"1,2,3", ",", 2, kBin, {"1", "2,3"}},     {"1,2,3", ",", 0, kBin, {}},
        {",a,", ",", -1, kBin, {"", "a", ""}},     {"", ",", -1, kBin, {}},
        {"abc", "", -1, kBin, {"abc"}},            {"aXbxc", "x", -1, kText, {"a", "b", "c"}},
        {"a::b", "::", -1, kBin, {"a", "b"}}};
    for (const auto& c : cases)
        EXPECT_EQ(SplitText(c.text, c.sep, c.count, c.how), c.out) << c.text << " " << c.count;
}

TEST(TextLib, ReplaceTextReturnsTheTextFromStartOn) {
    const struct { const char *text, *find, *with; int32_t start, count; TextCompare how;
                   const char* out; } cases[] = {
        {"aaa", "a", "b", 1, 2, kBin, "bba"},     {"abcabc", "a", "x", 2, -1, kBin, "bcxbc"},
        {"abc", "a", "x", 0, -1, kBin, "xbc"},    {"abc", "a", "x", 4, -1, kBin, ""},
        {"abc", "", "x", 1, -1, kBin, "abc"},     {"AbA", "a", "-", 1, -1, kBin, "AbA"},
        {"AbA", "a", "-", 1, -1, kText, "-b-"},   {"aa", "a", "aa", 1, -1, kBin, "aaaa"}};
    for (const auto& c : cases)
        EXPECT_EQ(ReplaceText(c.text, c.find, c.with, c.start, c.count, c.how), c.out)
            << c.text << " " << c.find << " " << c.start;
}
// clang-format on

// Every byte as code page 1252 has it; its five unassigned bytes keep their
// own value.
TEST(TextLib, WidenTextTurnsWindows1252IntoUtf8) {
    for (int b = 0; b < 256; ++b) {
        std::string want = test::CodepageUtf8("CP1252", uint8_t(b));
        if (want.empty()) want = {char(0xC2), char(b)};
        EXPECT_EQ(WidenText(std::string(1, char(b))), want) << b;
    }
    EXPECT_EQ(WidenText("EX AF,AF\x92"), "EX AF,AF\u2019");
}

} // namespace
} // namespace tvc
