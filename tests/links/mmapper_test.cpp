// The shared maps: their error texts in the order the tests are made, and
// data crossing between two views of one map.
#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>

#include "links/MMapper.h"

namespace tvc {
namespace {

struct Tagged : ::testing::Test {
    void SetUp() override { setenv("TVC_SHM_TAG", ("mm-" + std::to_string(getpid())).c_str(), 1); }
};

TEST_F(Tagged, ErrorTextsInTheirOrder) {
    MMapper m;
    uint8_t buf[8] = {};
    const struct {
        std::function<bool()> call;
        const char* text;
    } expect[] = {
        {[&] { return m.CreateMap("Zero", 0); }, "Size must be at least 1 byte"},
        {[&] { return m.OpenMap("Zero", 0); }, "Size must be at least 1 byte"},
        {[&] { return m.ReadMap(buf, 5); },
         "Size must not exceed mapped size"}, // before the open test
        {[&] { return m.ReadMap(buf, 0); }, "ReadMap: Map not open"},
        {[&] { return m.WriteMap(buf, 1); }, "Size must not exceed mapped size"},
        {[&] { return m.WriteMap(buf, 0); }, "WriteMap: Map not open"},
        {[&] { return m.OpenMap("NoSuchMap", 4); }, "OpenFileMapping system error 2"},
    };
    for (const auto& e : expect) {
        EXPECT_FALSE(e.call());
        EXPECT_EQ(m.LastError().Description, e.text);
        EXPECT_EQ(m.LastError().Number, 5);
        EXPECT_EQ(m.LastError().Source, "MMapper");
    }
}

TEST_F(Tagged, TwoViewsShareTheBytesUpToTheMappedSize) {
    MMapper creator, opener;
    ASSERT_TRUE(creator.CreateMap("Pair", 8));
    ASSERT_TRUE(opener.OpenMap("Pair", 8));
    const uint8_t out[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    uint8_t in[9] = {};
    ASSERT_TRUE(creator.WriteMap(out, 8));
    ASSERT_TRUE(opener.ReadMap(in, 8));
    EXPECT_EQ(std::vector<uint8_t>(in, in + 8), std::vector<uint8_t>(out, out + 8));
    EXPECT_FALSE(opener.ReadMap(in, 9));
    EXPECT_EQ(opener.LastError().Description, "Size must not exceed mapped size");
    EXPECT_FALSE(opener.OpenMap("Pair", 9)); // larger than the map
    opener.CloseMap();
    EXPECT_FALSE(opener.ReadMap(in, 1));
}

TEST_F(Tagged, CreatingAgainStartsFromAFreshMap) {
    MMapper old, fresh, reader;
    ASSERT_TRUE(old.CreateMap("Stale", 1));
    const uint8_t two = 2;
    old.WriteMap(&two, 1);
    ASSERT_TRUE(fresh.CreateMap("Stale", 1));
    ASSERT_TRUE(reader.OpenMap("Stale", 1));
    uint8_t b = 9;
    reader.ReadMap(&b, 1);
    EXPECT_EQ(b, 0); // the new emulator's handshake starts at 0
}

} // namespace
} // namespace tvc
