// Sinks of the YM3812's direct output.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "sound/Ym3812.h"

namespace tvc {

// Real port I/O through /dev/port, for an OPL2 card on an x86 host. Needs
// root or CAP_SYS_RAWIO; the device is opened at the first write.
class DevPortSink final : public PortSink {
  public:
    explicit DevPortSink(std::string device = "/dev/port") : device_(std::move(device)) {}
    ~DevPortSink() override;
    DevPortSink(const DevPortSink&) = delete;
    DevPortSink& operator=(const DevPortSink&) = delete;
    bool Out(uint16_t port, uint8_t value, std::string& error) override;

  private:
    std::string device_;
    int fd_ = -1;
};

// One line per write: frame, T-state in the frame, port, value, in decimal.
class LogPortSink final : public PortSink {
  public:
    LogPortSink(const Machine& m, std::FILE* file) : m_(m), file_(file) {}
    bool Out(uint16_t port, uint8_t value, std::string& error) override;

  private:
    const Machine& m_;
    std::FILE* file_;
};

} // namespace tvc
