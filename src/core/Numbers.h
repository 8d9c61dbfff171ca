// Number conversions shared by every module.
#pragma once

#include <cmath>
#include <cstdint>

namespace tvc {

// Floating point to integer with halves going to the even neighbour. Every
// float-to-integer conversion of the machine goes through here.
inline int64_t RoundHalfEven(double v) {
    double f = std::floor(v);
    double frac = v - f;
    if (frac > 0.5 || (frac == 0.5 && std::fmod(f, 2.0) != 0.0)) f += 1.0;
    return static_cast<int64_t>(f);
}

} // namespace tvc
