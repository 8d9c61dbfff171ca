// One running emulator per user: an advisory lock on a file in the user's
// runtime directory. The kernel drops the lock when the process ends, however
// it ends, so a crash leaves nothing stale behind.
#pragma once

#include <string>

namespace tvc::app {

class SingleInstance {
  public:
    explicit SingleInstance(const std::string& lockPath);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    // False when another process holds the lock.
    bool Acquired() const { return fd_ >= 0; }

    // $XDG_RUNTIME_DIR/tvc.lock, or /tmp/tvc-<uid>.lock without one.
    static std::string DefaultLockPath();

  private:
    int fd_ = -1;
};

} // namespace tvc::app
