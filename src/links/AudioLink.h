// The audio link between the emulator and its player over two shared maps:
// "MMDemo" holds one unit of 4,410 bytes (100 ms of 22,050 Hz stereo
// unsigned 8-bit sound), "MMDemo2" the handshake byte:
//   0  as created: the player has not asked yet
//   1  the player asks for the next unit
//   2  the emulator has delivered a unit; the player copies it out, then asks
//      again by writing 1
#pragma once

#include <chrono>
#include <cstdint>

#include "links/MMapper.h"

namespace tvc {

constexpr int32_t kAudioUnitBytes = 4410;
constexpr int kAudioSampleRate = 22050;
constexpr const char* kSampleMapName = "MMDemo";
constexpr const char* kHandshakeMapName = "MMDemo2";

enum : uint8_t { kHandshakeIdle = 0, kHandshakeAsk = 1, kHandshakeDelivered = 2 };

// The player's side: opens the maps the emulator made, asks, takes units.
class AudioConsumer {
  public:
    // Opens the maps by name, as the player process does.
    bool Open();
    // Works on maps this process already holds: the emulator's own stand-in
    // uses the very maps it delivers to, whatever else has the same names.
    void Attach(MMapper& samples, MMapper& handshake);
    bool IsOpen() const { return samples_->IsOpen() && handshake_->IsOpen(); }
    uint8_t Handshake();
    void Ask();
    // Copies out a delivered unit; false while none stands. Does not ask again.
    bool Take(uint8_t* unit);

  private:
    MMapper ownSamples_, ownHandshake_;
    MMapper* samples_ = &ownSamples_;
    MMapper* handshake_ = &ownHandshake_;
};

// A player that plays nothing: it takes one unit every 100 ms, the pace of a
// real one, so the emulator never waits for ever. Step() is called often.
class SilentSink {
  public:
    explicit SilentSink(AudioConsumer& link) : link_(link) {}
    // Returns true when a unit was taken (copied into unit, if given).
    bool Step(std::chrono::steady_clock::time_point now, uint8_t* unit = nullptr);
    // It has asked and not yet taken the unit.
    bool Asked() const { return asked_; }

  private:
    AudioConsumer& link_;
    bool asked_ = false;
    std::chrono::steady_clock::time_point lastAsk_{}, nextAsk_{};
};

} // namespace tvc
