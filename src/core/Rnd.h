// The machine's one source of random numbers, for the picture noise and the
// memory error simulator. Cheap and allocation-free; seeded once per machine.
#pragma once

#include <cstdint>

namespace tvc {

class Rnd {
  public:
    explicit Rnd(uint64_t seed = 0x9E3779B97F4A7C15ull) : state_(seed ? seed : 1) {}

    // A number from 0 up to, not including, 1.
    double Next() {
        state_ ^= state_ >> 12;
        state_ ^= state_ << 25;
        state_ ^= state_ >> 27;
        return static_cast<double>((state_ * 0x2545F4914F6CDD1Dull) >> 11) * 0x1.0p-53;
    }

  private:
    uint64_t state_;
};

} // namespace tvc
