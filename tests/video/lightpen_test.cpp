#include <gtest/gtest.h>

#include "support/TestMachine.h"
#include "video/LightPen.h"

namespace tvc::test {
namespace {

TEST(LightPen, AddressReachesTheCrtcOnlyAtTheFrameEnd) {
    const struct {
        double x, y;
        int high, low;
    } cases[] = {{0, 0, 0, 0},        {7.4, 19.4, 0, 0},     {8, 20, 0, 65}, {511, 0, 0, 63},
                 {0, 40, 0, 128},     {100.5, 500.5, 6, 76}, // 100 and 500 (halves to even)
                 {511, 1279, 15, 255}, {0, 20 * 1100, 275, 0}}; // row 1100: high byte not masked
    for (const auto& k : cases) {
        TestMachine t;
        PicdMouseMove(t.m(), k.x, k.y);
        EXPECT_EQ(t.m().crtc.CrtcReg[16], 0);
        LPENRefresh(t.m());
        EXPECT_EQ(t.m().crtc.CrtcReg[16], k.high) << k.x << "," << k.y;
        EXPECT_EQ(t.m().crtc.CrtcReg[17], k.low) << k.x << "," << k.y;
    }
}

} // namespace
} // namespace tvc::test
