#include "links/MMapper.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace tvc {

namespace {

// Where glibc keeps the objects shm_open names: "/x" is "/dev/shm/x".
constexpr const char* kShmDir = "/dev/shm";

std::string ShmPath(const std::string& posixName) {
    return kShmDir + posixName;
}

// The objects this process created, for the signal handler: fixed slots so
// that the handler only reads plain memory and calls unlink.
struct CreatedSlot {
    volatile sig_atomic_t used = 0;
    char path[128] = {};
};
CreatedSlot createdSlots[64];

void UnlinkCreatedAndDie(int sig) {
    for (CreatedSlot& slot : createdSlots)
        if (slot.used) ::unlink(slot.path);
    ::signal(sig, SIG_DFL);
    ::raise(sig);
}

// A process that handles SIGTERM and SIGINT itself (the application closes
// its window) unlinks through its own close path; any other one, a test or
// a tool, gets a handler that unlinks what it created before it dies.
void CoverSignals() {
    static bool done = false;
    if (done) return;
    done = true;
    for (int sig : {SIGTERM, SIGINT}) {
        struct sigaction old = {};
        if (::sigaction(sig, nullptr, &old) != 0 || old.sa_handler != SIG_DFL) continue;
        struct sigaction sa = {};
        sa.sa_handler = UnlinkCreatedAndDie;
        sigemptyset(&sa.sa_mask);
        ::sigaction(sig, &sa, nullptr);
    }
}

void Register(const std::string& path) {
    if (path.size() >= sizeof createdSlots[0].path) return;
    for (CreatedSlot& slot : createdSlots) {
        if (slot.used) continue;
        std::memcpy(slot.path, path.c_str(), path.size() + 1);
        slot.used = 1;
        return;
    }
}

void Unregister(const std::string& path) {
    for (CreatedSlot& slot : createdSlots)
        if (slot.used && path == slot.path) {
            slot.used = 0;
            return;
        }
}

bool SameObject(int fd, const std::string& path) {
    struct stat held = {}, named = {};
    return ::fstat(fd, &held) == 0 && ::stat(path.c_str(), &named) == 0 &&
           held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

} // namespace

int MMapper::RemoveStale(int minAgeSeconds, const std::string& part) {
    const std::string prefix = "tvc-" + std::to_string(::getuid()) + "-";
    DIR* dir = ::opendir(kShmDir);
    if (!dir) return 0;
    int removed = 0;
    const time_t now = std::time(nullptr);
    while (const dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0) continue;
        if (!part.empty() && name.find(part) == std::string::npos) continue;
        const std::string path = ShmPath("/" + name);
        const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) continue;
        struct stat st = {};
        // Nobody holds the creator's lock: the creator is gone.
        if (::fstat(fd, &st) == 0 && st.st_uid == ::getuid() &&
            now - st.st_ctime >= minAgeSeconds && ::flock(fd, LOCK_EX | LOCK_NB) == 0 &&
            SameObject(fd, path) && ::unlink(path.c_str()) == 0)
            ++removed;
        ::close(fd);
    }
    ::closedir(dir);
    return removed;
}

std::string MMapper::PosixName(const std::string& name) {
    std::string posix = "/tvc-" + std::to_string(::getuid()) + "-" + name;
    if (const char* tag = std::getenv("TVC_SHM_TAG"); tag && *tag) posix += std::string("-") + tag;
    return posix;
}

bool MMapper::Fail(const std::string& text) {
    error_ = {5, "MMapper", text};
    return false;
}

bool MMapper::Map(int fd, const std::string& errorPrefix) {
    void* view =
        ::mmap(nullptr, static_cast<size_t>(size_), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    const int err = errno;
    ::close(fd);
    if (view == MAP_FAILED) {
        size_ = 0;
        return Fail(errorPrefix + std::to_string(err));
    }
    view_ = static_cast<uint8_t*>(view);
    open_ = true;
    return true;
}

bool MMapper::CreateMap(const std::string& name, int32_t size) {
    if (size < 1) return Fail("Size must be at least 1 byte");
    CloseMap();
    static const bool swept = (RemoveStale(), true);
    (void)swept;
    CoverSignals();
    const std::string posix = PosixName(name);
    ::shm_unlink(posix.c_str());
    const int fd = ::shm_open(posix.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    if (fd < 0 || ::flock(fd, LOCK_SH) != 0 || ::ftruncate(fd, size) != 0) {
        const int err = errno;
        if (fd >= 0) {
            ::close(fd);
            ::shm_unlink(posix.c_str());
        }
        return Fail("CreateFileMapping system error " + std::to_string(err));
    }
    // The handle stays open: its lock tells RemoveStale that we live.
    lockFd_ = ::dup(fd);
    if (lockFd_ >= 0) ::fcntl(lockFd_, F_SETFD, FD_CLOEXEC);
    created_ = posix;
    Register(ShmPath(posix));
    size_ = size;
    return Map(fd, "MapViewOfFile system error ");
}

bool MMapper::OpenMap(const std::string& name, int32_t size) {
    if (size < 1) return Fail("Size must be at least 1 byte");
    CloseMap();
    const int fd = ::shm_open(PosixName(name).c_str(), O_RDWR, 0);
    if (fd < 0) return Fail("OpenFileMapping system error " + std::to_string(errno));
    // A map smaller than asked for would fault on access: refuse it here.
    if (::lseek(fd, 0, SEEK_END) < size) {
        ::close(fd);
        return Fail("MapViewOfFile system error " + std::to_string(EINVAL));
    }
    size_ = size;
    return Map(fd, "MapViewOfFile system error ");
}

bool MMapper::ReadMap(void* dest, int32_t size) {
    if (size > size_) return Fail("Size must not exceed mapped size");
    if (!open_) return Fail("ReadMap: Map not open");
    if (size > 0) std::memcpy(dest, view_, static_cast<size_t>(size));
    return true;
}

bool MMapper::WriteMap(const void* src, int32_t size) {
    if (size > size_) return Fail("Size must not exceed mapped size");
    if (!open_) return Fail("WriteMap: Map not open");
    if (size > 0) std::memcpy(view_, src, static_cast<size_t>(size));
    return true;
}

bool MMapper::WriteMapAt(int32_t offset, const void* src, int32_t size) {
    if (offset < 0 || size < 0 || int64_t(offset) + size > size_)
        return Fail("Size must not exceed mapped size");
    if (!open_) return Fail("WriteMap: Map not open");
    if (size > 0) std::memcpy(view_ + offset, src, static_cast<size_t>(size));
    return true;
}

void MMapper::CloseMap() {
    if (!created_.empty()) {
        // Unlink only our own object: another creator may have replaced it.
        const std::string path = ShmPath(created_);
        Unregister(path);
        if (lockFd_ >= 0 && SameObject(lockFd_, path)) ::shm_unlink(created_.c_str());
        created_.clear();
    }
    if (lockFd_ >= 0) ::close(lockFd_);
    lockFd_ = -1;
    if (view_) ::munmap(view_, static_cast<size_t>(size_));
    view_ = nullptr;
    size_ = 0;
    open_ = false;
}

} // namespace tvc
