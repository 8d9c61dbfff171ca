#include "app/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>

namespace tvc::app {

SingleInstance::SingleInstance(const std::string& lockPath) {
    fd_ = ::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (fd_ < 0) return;
    if (::flock(fd_, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

SingleInstance::~SingleInstance() {
    if (fd_ >= 0) ::close(fd_);
}

std::string SingleInstance::DefaultLockPath() {
    if (const char* dir = std::getenv("XDG_RUNTIME_DIR"); dir && *dir)
        return std::string(dir) + "/tvc.lock";
    return "/tmp/tvc-" + std::to_string(::getuid()) + ".lock";
}

} // namespace tvc::app
