// Records 22,050 Hz stereo unsigned 8-bit units into a wave file; the
// header's sizes are brought up to date at each unit, so the file is whole
// even if the recording process is killed.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

namespace tvc {

class WavRecorder {
  public:
    WavRecorder() = default;
    ~WavRecorder() { Close(); }
    WavRecorder(const WavRecorder&) = delete;
    WavRecorder& operator=(const WavRecorder&) = delete;

    bool Open(const std::string& path);
    void Add(const uint8_t* data, size_t bytes);
    void Close();
    bool IsOpen() const { return file_ != nullptr; }
    uint32_t DataBytes() const { return data_; }

  private:
    void WriteHeader();
    std::FILE* file_ = nullptr;
    uint32_t data_ = 0;
};

} // namespace tvc
