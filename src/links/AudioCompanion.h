// The audio player process as the emulator sees it: started beside the
// emulator's own program, watched, and stood in for. Whenever the player is
// not there (it could not start, or it died) or has not asked for a unit for
// kPlayerSilence (stopped, or stuck opening its device), the emulator's
// waits for it play the player's part without sound, one unit every 100 ms,
// so a delivery never waits for ever; a player that asks again gets its
// part back.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "links/AudioLink.h"

namespace tvc {

constexpr auto kPlayerSilence = std::chrono::seconds(1);

class AudioCompanion {
  public:
    using Clock = std::chrono::steady_clock;
    ~AudioCompanion() { Stop(); }

    // Starts the player; false when it cannot be started.
    bool Start(const std::string& program, const std::vector<std::string>& args = {});
    bool Alive();
    // Ends the player, also a stopped one, within a fraction of a second.
    void Stop();

    // Called by every wait for the player, on the emulator's own maps;
    // `deliveries` counts the units handed over so far.
    void ServeWait(MMapper& samples, MMapper& handshake, uint32_t deliveries,
                   Clock::time_point now = Clock::now());
    bool StandingIn() const { return standIn_ != nullptr; }
    pid_t Pid() const { return pid_; }

    // Async-signal-safe: from now on no wait holds the emulator up, so a
    // close that was asked for is reached at the next frame.
    static void ReleaseWaits(bool on = true) { releaseWaits_ = on; }

  private:
    void StandIn(MMapper& samples, MMapper& handshake, Clock::time_point now);

    pid_t pid_ = -1;
    bool reported_ = false;
    AudioConsumer standInLink_;
    std::unique_ptr<SilentSink> standIn_;
    uint32_t deliveries_ = 0;
    bool heard_ = false; // a request of the player, or a wait, seen since lastHeard_
    Clock::time_point lastHeard_{};
    static inline volatile std::sig_atomic_t releaseWaits_ = 0;
};

} // namespace tvc
