#include "links/MMapper.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace tvc {

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
    const std::string posix = PosixName(name);
    ::shm_unlink(posix.c_str());
    const int fd = ::shm_open(posix.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
    if (fd < 0 || ::ftruncate(fd, size) != 0) {
        const int err = errno;
        if (fd >= 0) ::close(fd);
        return Fail("CreateFileMapping system error " + std::to_string(err));
    }
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
    if (view_) ::munmap(view_, static_cast<size_t>(size_));
    view_ = nullptr;
    size_ = 0;
    open_ = false;
}

} // namespace tvc
