#include "sound/PortSinks.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "core/Machine.h"

namespace tvc {

DevPortSink::~DevPortSink() {
    if (fd_ >= 0) close(fd_);
}

bool DevPortSink::Out(uint16_t port, uint8_t value, std::string& error) {
    if (fd_ < 0) fd_ = open(device_.c_str(), O_WRONLY | O_CLOEXEC);
    if (fd_ < 0) {
        error = "cannot open " + device_ + ": " + std::strerror(errno);
        return false;
    }
    // The file offset of /dev/port is the port number.
    if (pwrite(fd_, &value, 1, off_t(port)) != 1) {
        error = "cannot write port " + std::to_string(port) + " through " + device_ + ": " +
                std::strerror(errno);
        return false;
    }
    return true;
}

bool LogPortSink::Out(uint16_t port, uint8_t value, std::string& error) {
    if (std::fprintf(file_, "%llu %d %u %u\n", static_cast<unsigned long long>(m_.run.FrameCount),
                     m_.run.FrameT, unsigned(port), unsigned(value)) < 0) {
        error = std::string("cannot write the log: ") + std::strerror(errno);
        return false;
    }
    return true;
}

} // namespace tvc
