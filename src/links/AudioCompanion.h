// The audio player process as the emulator sees it: started beside the
// emulator's own program, watched, and stood in for. Whenever the player is
// not there (it could not start, or it died), the emulator's waits for it
// play the player's part without sound, one unit every 100 ms, so a delivery
// never waits for ever.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "links/AudioLink.h"

namespace tvc {

class AudioCompanion {
  public:
    ~AudioCompanion() { Stop(); }

    // Starts the player; false when it cannot be started.
    bool Start(const std::string& program);
    bool Alive();
    void Stop();

    // Called by every wait for the player: stands in while it is absent,
    // on the emulator's own maps.
    void ServeWait(MMapper& samples, MMapper& handshake);

  private:
    pid_t pid_ = -1;
    bool reported_ = false;
    AudioConsumer standInLink_;
    std::unique_ptr<SilentSink> standIn_;
};

} // namespace tvc
