// LUMEKserial: the serial bridge. It carries the bytes of the emulator's
// serial card between the shared record "MMRS232" and a pseudo-terminal, so
// that a terminal program (or socat towards a real port) on the slave side
// talks to the emulated machine.
//
//   LUMEKserial [--link PATH] [--exit-with-parent]
//     --link PATH          the symbolic link to the slave (default serial.pty)
//     --exit-with-parent   end when the process that started it ends
//
// It fills the receive buffer only while its count is 0, at most 255 bytes,
// and reads no more from the pty meanwhile, so a flooding peer is held back
// by the kernel. It drains the transmit buffer and clears the count once the
// bytes are written; with no peer on the pty they are dropped, as on a line
// with nothing attached. A lock file held while it runs tells the emulator
// that a bridge serves. It waits for the map, follows a map made anew by a
// new emulator, and on SIGTERM or SIGINT removes its link and lock and ends.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "links/SerialPort.h"

using namespace tvc;
using Clock = std::chrono::steady_clock;

namespace {

volatile sig_atomic_t stopRequested = 0;
void OnSignal(int) {
    stopRequested = 1;
}

constexpr int kPollMs = 2;
constexpr auto kMapCheckEvery = std::chrono::milliseconds(250);

// The lock that says a bridge serves. The path is checked again after the
// lock is taken: an emulator that found the file unheld may have removed it.
int TakeLock(const std::string& path) {
    for (int tries = 0; tries < 5; ++tries) {
        const int fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        if (fd < 0) return -1;
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            ::close(fd);
            return -2;
        }
        struct stat held {
        }, named{};
        if (::fstat(fd, &held) == 0 && ::stat(path.c_str(), &named) == 0 &&
            held.st_ino == named.st_ino && held.st_dev == named.st_dev)
            return fd;
        ::close(fd);
    }
    return -1;
}

// Opens a pseudo-terminal and sets its line raw: no echo, no CR/LF change,
// no signal characters, no flow control, 8 bits.
int OpenPty(std::string& slaveName) {
    const int master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || ::grantpt(master) != 0 || ::unlockpt(master) != 0) return -1;
    const char* name = ::ptsname(master);
    if (!name) return -1;
    slaveName = name;
    const int slave = ::open(name, O_RDWR | O_NOCTTY);
    if (slave < 0) return -1;
    termios t{};
    ::tcgetattr(slave, &t);
    ::cfmakeraw(&t);
    t.c_cc[VMIN] = 1;
    t.c_cc[VTIME] = 0;
    ::tcsetattr(slave, TCSANOW, &t);
    ::close(slave); // from here the line has no peer until a terminal opens it
    ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
    ::fcntl(master, F_SETFD, FD_CLOEXEC);
    return master;
}

// Points the link at the slave, replacing a stale link in one step.
bool PublishLink(const std::string& link, const std::string& target) {
    struct stat st {};
    if (::lstat(link.c_str(), &st) == 0 && !S_ISLNK(st.st_mode)) {
        std::fprintf(stderr, "LUMEKserial: %s exists and is not a link\n", link.c_str());
        return false;
    }
    const std::string tmp = link + ".new" + std::to_string(::getpid());
    ::unlink(tmp.c_str());
    if (::symlink(target.c_str(), tmp.c_str()) != 0 || ::rename(tmp.c_str(), link.c_str()) != 0) {
        ::unlink(tmp.c_str());
        std::fprintf(stderr, "LUMEKserial: cannot make the link %s: %s\n", link.c_str(),
                     std::strerror(errno));
        return false;
    }
    return true;
}

void RemoveLink(const std::string& link, const std::string& target) {
    char buf[256];
    const ssize_t n = ::readlink(link.c_str(), buf, sizeof buf - 1);
    if (n > 0 && std::string(buf, static_cast<size_t>(n)) == target) ::unlink(link.c_str());
}

// The identity of the map of that name now, or 0 when there is none.
ino_t MapInode() {
    const int fd = ::shm_open(MMapper::PosixName(kSerialMapName).c_str(), O_RDONLY, 0);
    if (fd < 0) return 0;
    struct stat st {};
    const ino_t ino = ::fstat(fd, &st) == 0 ? st.st_ino : 0;
    ::close(fd);
    return ino;
}

class Bridge {
  public:
    Bridge(int master, std::string slave) : master_(master), slave_(std::move(slave)) {}

    // Joins the emulator's record, or drops a record that is no longer the
    // one of that name (the emulator ended or a new one made it anew).
    void FollowMap(Clock::time_point now) {
        if (map_.IsOpen() && now - lastCheck_ < kMapCheckEvery) return;
        lastCheck_ = now;
        const ino_t ino = MapInode();
        if (map_.IsOpen() && ino == inode_) return;
        map_.CloseMap();
        pending_.clear();
        taken_ = false;
        if (ino == 0 || !map_.OpenMap(kSerialMapName, kSerialRecordSize)) return;
        inode_ = MapInode();
        char name[kSerialPtyNameSize] = {};
        std::strncpy(name, slave_.c_str(), sizeof name - 1);
        map_.WriteMapAt(kSerialPtyName, name, sizeof name);
    }

    // One look at both directions; returns the poll events to wait for.
    short Step(bool peer, bool readable) {
        if (!map_.IsOpen()) return 0;
        uint8_t rec[kSerialRecordSize];
        map_.ReadMap(rec, kSerialRecordSize);
        std::atomic_thread_fence(std::memory_order_acquire);
        if (rec[kSerialTxCount] != 0 && !taken_) {
            map_.ReadMap(rec, kSerialRecordSize);
            pending_.assign(rec + kSerialTxBuf, rec + kSerialTxBuf + rec[kSerialTxCount]);
            taken_ = true;
        }
        if (taken_) {
            if (!peer) pending_.clear();
            while (!pending_.empty()) {
                const ssize_t n = ::write(master_, pending_.data(), pending_.size());
                if (n <= 0) break;
                pending_.erase(0, static_cast<size_t>(n));
            }
            if (pending_.empty()) {
                std::atomic_thread_fence(std::memory_order_release);
                const uint8_t zero = 0;
                map_.WriteMapAt(kSerialTxCount, &zero, 1);
                taken_ = false;
            }
        }
        const bool room = rec[kSerialRxCount] == 0;
        if (room && peer && readable) {
            uint8_t buf[kSerialChunk];
            const ssize_t n = ::read(master_, buf, sizeof buf);
            if (n > 0) {
                map_.WriteMapAt(kSerialRxBuf, buf, static_cast<int32_t>(n));
                std::atomic_thread_fence(std::memory_order_release);
                const uint8_t count = static_cast<uint8_t>(n);
                map_.WriteMapAt(kSerialRxCount, &count, 1);
            }
        }
        return static_cast<short>((room ? POLLIN : 0) | (taken_ ? POLLOUT : 0));
    }

  private:
    int master_;
    std::string slave_;
    MMapper map_;
    ino_t inode_ = 0;
    std::string pending_; // taken from the transmit buffer, not yet written
    bool taken_ = false;
    Clock::time_point lastCheck_{};
};

} // namespace

int main(int argc, char** argv) {
    std::string link = "serial.pty";
    bool withParent = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--link") == 0 && i + 1 < argc) {
            link = argv[++i];
        } else if (std::strcmp(argv[i], "--exit-with-parent") == 0) {
            withParent = true;
        } else {
            std::fprintf(stderr, "usage: LUMEKserial [--link PATH] [--exit-with-parent]\n");
            return 2;
        }
    }
    const pid_t parent = ::getppid();
    if (withParent) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() == 1) return 0; // the emulator ended before the bridge got going
    }
    struct sigaction sa = {};
    sa.sa_handler = OnSignal;
    sigemptyset(&sa.sa_mask);
    for (int sig : {SIGTERM, SIGINT, SIGHUP})
        sigaction(sig, &sa, nullptr);
    signal(SIGPIPE, SIG_IGN);

    const std::string lockPath = SerialBridge::LockPath();
    const int lock = TakeLock(lockPath);
    if (lock == -2) {
        std::fprintf(stderr, "LUMEKserial: a bridge is already serving\n");
        return 1;
    }
    if (lock < 0) {
        std::fprintf(stderr, "LUMEKserial: cannot take %s\n", lockPath.c_str());
        return 1;
    }
    std::string slave;
    const int master = OpenPty(slave);
    if (master < 0 || !PublishLink(link, slave)) {
        if (master < 0) std::fprintf(stderr, "LUMEKserial: no pseudo-terminal\n");
        ::unlink(lockPath.c_str());
        return 1;
    }
    std::printf("%s\n", slave.c_str());
    std::fflush(stdout);

    Bridge bridge(master, slave);
    short want = 0;
    bool hadPeer = false;
    while (!stopRequested && (!withParent || ::getppid() == parent)) {
        bridge.FollowMap(Clock::now());
        pollfd p{master, want, 0};
        ::poll(&p, 1, kPollMs);
        // POLLHUP: no terminal has the slave open. Poll reports it at once,
        // so the loop waits by itself then.
        const bool peer = !(p.revents & POLLHUP);
        if (!peer) {
            // What the last peer left unread goes with it, once, when it
            // leaves: draining on every idle turn would also swallow the
            // first bytes of a terminal that opens the slave between the
            // poll and the read.
            if (hadPeer) {
                char junk[256];
                while (::read(master, junk, sizeof junk) > 0) {}
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(kPollMs));
        }
        hadPeer = peer;
        want = bridge.Step(peer, p.revents & POLLIN);
    }
    RemoveLink(link, slave);
    ::unlink(lockPath.c_str());
    ::close(lock);
    ::close(master);
    return 0;
}
