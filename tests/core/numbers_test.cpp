#include "core/Numbers.h"

#include <gtest/gtest.h>

namespace tvc {
namespace {

TEST(RoundHalfEven, HalvesGoToTheEvenNeighbour) {
    const struct {
        double in;
        int64_t out;
    } cases[] = {{0.5, 0},    {1.5, 2},    {2.5, 2}, {-0.5, 0},  {-1.5, -2},
                 {2.4999, 2}, {2.5001, 3}, {7.0, 7}, {-2.5, -2}, {12345.5, 12346}};
    for (const auto& c : cases)
        EXPECT_EQ(RoundHalfEven(c.in), c.out) << c.in;
}

} // namespace
} // namespace tvc
