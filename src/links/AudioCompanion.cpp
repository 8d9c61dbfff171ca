#include "links/AudioCompanion.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

extern char** environ;

namespace tvc {

bool AudioCompanion::Start(const std::string& program, const std::vector<std::string>& args) {
    std::vector<char*> argv = {const_cast<char*>(program.c_str())};
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid;
    if (posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv.data(), environ) != 0)
        return false;
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
    // A stopped player only sees SIGTERM once it runs again; one stuck in its
    // device gets SIGKILL after a short grace.
    kill(pid_, SIGTERM);
    kill(pid_, SIGCONT);
    for (int i = 0; i < 300; ++i) {
        if (waitpid(pid_, nullptr, WNOHANG) == pid_) {
            pid_ = -1;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

void AudioCompanion::StandIn(MMapper& samples, MMapper& handshake, Clock::time_point now) {
    if (!standIn_) {
        standInLink_.Attach(samples, handshake);
        if (!standInLink_.IsOpen()) return;
        standIn_ = std::make_unique<SilentSink>(standInLink_);
        if (!reported_) {
            std::fprintf(stderr, "tvc: the audio player does not answer; going on without sound\n");
            reported_ = true;
        }
    }
    standIn_->Step(now);
}

void AudioCompanion::ServeWait(MMapper& samples, MMapper& handshake, uint32_t deliveries,
                               Clock::time_point now) {
    if (releaseWaits_) {
        // Closing: answer at once, whoever else is there.
        AudioConsumer link;
        link.Attach(samples, handshake);
        if (link.IsOpen() && link.Handshake() != kHandshakeAsk) link.Ask();
        return;
    }
    if (!Alive()) {
        StandIn(samples, handshake, now);
        return;
    }
    // A delivery since the last wait means the player asked in between.
    if (deliveries != deliveries_ || !heard_) {
        deliveries_ = deliveries;
        heard_ = true;
        lastHeard_ = now;
    }
    if (standIn_) {
        // The stand-in asks only on its beat; a request while it has not
        // asked is the player's own: the player is back.
        uint8_t byte = 0;
        handshake.ReadMap(&byte, 1);
        if (byte == kHandshakeAsk && !standIn_->Asked()) {
            standIn_.reset();
            lastHeard_ = now;
            return;
        }
        standIn_->Step(now);
        return;
    }
    if (now - lastHeard_ >= kPlayerSilence) StandIn(samples, handshake, now);
}

} // namespace tvc
