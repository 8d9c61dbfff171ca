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
    if (frac > 0.5 || (frac == 0.5 && f != 2.0 * std::floor(f * 0.5))) f += 1.0; // odd: up
    return static_cast<int64_t>(f);
}

// RoundHalfEven held to lo..hi: a value out of range (infinities too) takes
// the nearer bound and NaN gives 0, so no conversion can overflow.
inline int32_t RoundClamp(double v, int32_t lo, int32_t hi) {
    if (v != v) return 0;
    if (v <= lo) return lo;
    if (v >= hi) return hi;
    return static_cast<int32_t>(RoundHalfEven(v));
}

} // namespace tvc
