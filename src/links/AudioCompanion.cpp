#include "links/AudioCompanion.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>

extern char** environ;

namespace tvc {

bool AudioCompanion::Start(const std::string& program) {
    char* argv[] = {const_cast<char*>(program.c_str()), nullptr};
    pid_t pid;
    if (posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv, environ) != 0) return false;
    pid_ = pid;
    return true;
}

bool AudioCompanion::Alive() {
    if (pid_ <= 0) return false;
    int status;
    if (waitpid(pid_, &status, WNOHANG) == pid_) pid_ = -1;
    return pid_ > 0;
}

void AudioCompanion::Stop() {
    if (pid_ <= 0) return;
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void AudioCompanion::ServeWait(MMapper& samples, MMapper& handshake) {
    if (Alive()) return;
    if (!standIn_) {
        standInLink_.Attach(samples, handshake);
        if (!standInLink_.IsOpen()) return;
        standIn_ = std::make_unique<SilentSink>(standInLink_);
        if (!reported_) {
            std::fprintf(stderr, "tvc: no audio player is running; going on without sound\n");
            reported_ = true;
        }
    }
    standIn_->Step(std::chrono::steady_clock::now());
}

} // namespace tvc
