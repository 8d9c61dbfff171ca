#include "links/SerialBridge.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

extern char** environ;

namespace tvc {

std::string SerialBridge::LockPath() {
    std::string tag;
    if (const char* t = std::getenv("TVC_SHM_TAG"); t && *t) tag = std::string("-") + t;
    if (const char* dir = std::getenv("XDG_RUNTIME_DIR"); dir && *dir)
        return std::string(dir) + "/tvc-LUMEKUART" + tag + ".lock";
    return "/tmp/tvc-" + std::to_string(::getuid()) + "-LUMEKUART" + tag + ".lock";
}

bool SerialBridge::Serving() {
    const std::string path = LockPath();
    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0) return false;
    const bool held = ::flock(fd, LOCK_EX | LOCK_NB) != 0;
    if (!held) ::unlink(path.c_str());
    ::close(fd);
    return held;
}

bool SerialBridge::Start(const std::string& program, const std::vector<std::string>& args) {
    Stop();
    std::vector<std::string> all{program};
    all.insert(all.end(), args.begin(), args.end());
    std::vector<char*> argv;
    for (std::string& a : all)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    // The bridge names its pty on its stdout; here that goes to stderr, so
    // the emulator's own output (the runner's dumps) stays clean.
    posix_spawn_file_actions_t fa;
    posix_spawn_file_actions_init(&fa);
    posix_spawn_file_actions_adddup2(&fa, 2, 1);
    pid_t pid;
    const bool ok = ::access(program.c_str(), X_OK) == 0 &&
                    posix_spawn(&pid, program.c_str(), &fa, nullptr, argv.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&fa);
    if (ok) pid_ = pid;
    return ok;
}

bool SerialBridge::Alive() {
    if (pid_ <= 0) return false;
    if (::waitpid(pid_, nullptr, WNOHANG) == pid_) pid_ = -1;
    return pid_ > 0;
}

void SerialBridge::Stop() {
    if (pid_ <= 0) return;
    ::kill(pid_, SIGTERM);
    ::waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

} // namespace tvc
