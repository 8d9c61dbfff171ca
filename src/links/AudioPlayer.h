// The audio player's pace, apart from its sound device so that it can be run
// against a device and a clock of a test's making.
//
// With a device, the player asks for the next unit as soon as what the
// device still has queued falls below kAskMargin beyond the one period the
// device takes at a time: just enough for the host's scheduling jitter, so a
// unit reaches the device about 140 ms after the emulator made its first
// sample (the 100 ms unit, the margin and part of a period). The pace
// is the device's own consumption, so a sound card whose clock runs fast or
// slow never drifts into underruns or a growing delay. Without a device the
// wall clock stands in (SilentSink): one unit every 100 ms.
#pragma once

#include <chrono>
#include <cstdint>
#include <limits>
#include <string>

#include "links/AudioLink.h"

namespace tvc {

using AudioClock = std::chrono::steady_clock;

constexpr int kAudioBytesPerSecond = 2 * kAudioSampleRate;
constexpr auto kAudioUnitTime = std::chrono::milliseconds(100);
constexpr auto kAskMargin = std::chrono::milliseconds(30);
// A device that takes nothing for this long has stalled (a suspended sound
// server); its queue is dropped so the emulator is not held up.
constexpr auto kDeviceStall = std::chrono::seconds(1);

inline double BytesToMs(uint64_t bytes) {
    return double(bytes) * 1000.0 / kAudioBytesPerSecond;
}

// What the player needs of its sound device.
class PlayerDevice {
  public:
    virtual ~PlayerDevice() = default;
    virtual uint32_t QueuedBytes() = 0;
    // What the device takes from the queue at a time.
    virtual uint32_t PeriodBytes() = 0;
    virtual void Queue(const uint8_t* bytes, uint32_t size) = 0;
    virtual void Clear() = 0;
};

// Figures of one run, for `sndpipe --stats`. Latency of a unit: the 100 ms
// the emulator spends making it, the time from the ask until the unit is
// taken, and what the device still had queued ahead of it.
struct PlayerStats {
    uint64_t units = 0, asks = 0, underruns = 0, stalls = 0;
    double queueMinMs = std::numeric_limits<double>::infinity(), queueMaxMs = 0, queueSumMs = 0;
    double latencySumMs = 0, latencyMaxMs = 0;

    void Ask(double queuedMs);
    void Take(double latencyMs);
    std::string Report() const;
};

class AudioPlayer {
  public:
    // Without a device (nullptr) the wall clock paces the player.
    AudioPlayer(AudioConsumer& link, PlayerDevice* device);
    // One poll. Returns true when a unit was taken; it is then in `unit`.
    bool Step(AudioClock::time_point now, uint8_t* unit);
    const PlayerStats& Stats() const { return stats_; }
    // True once the device stalled and its queue was dropped.
    bool Stalled() const { return stats_.stalls > 0; }

  private:
    AudioConsumer& link_;
    PlayerDevice* device_;
    SilentSink silent_;
    PlayerStats stats_;
    bool asked_ = false, playing_ = false, dry_ = false;
    uint32_t lastQueued_ = 0;
    AudioClock::time_point askedAt_{}, lastDrain_{};
};

} // namespace tvc
