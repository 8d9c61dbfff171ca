// The serial bridge process as the emulator sees it. A serving bridge holds
// an exclusive lock on its lock file for as long as it runs, so "is a bridge
// already running" is one look at that lock; the emulator starts one only
// when the lock is free.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace tvc {

constexpr const char* kSerialBridgeName = "LUMEKserial";

class SerialBridge {
  public:
    ~SerialBridge() { Stop(); }

    // "$XDG_RUNTIME_DIR/tvc-LUMEKUART[-tag].lock", or the same name in /tmp
    // with the user id; the tag is TVC_SHM_TAG, as for the maps.
    static std::string LockPath();
    // True while some bridge holds the lock. A lock file nobody holds is
    // left over from a bridge that was killed: it is removed.
    static bool Serving();

    // Starts the bridge program with these arguments; false when it cannot
    // be started.
    bool Start(const std::string& program, const std::vector<std::string>& args);
    // True while the bridge this object started runs.
    bool Alive();
    // Ends the bridge this object started and waits for it.
    void Stop();

  private:
    pid_t pid_ = -1;
};

} // namespace tvc
