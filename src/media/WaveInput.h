// The tape's input file, read one byte at a time through a buffer of our own
// so that a program polling the tape port costs no system call per sample.
//
// Files are taken as raw samples from offset 44, whatever their header says,
// except one case: a file with a RIFF/WAVE header whose format is not 8-bit
// mono PCM (16-bit, stereo, float, ...) is converted when opened, through
// libsndfile, into an anonymous temporary file of unsigned 8-bit mono samples
// at its own rate behind a 44-byte header; the temporary file disappears
// when it is closed or the program ends.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

namespace tvc {

// True when `head` (the file's first bytes) is a RIFF/WAVE header whose
// "fmt " chunk describes anything other than 8-bit mono PCM.
bool WaveNeedsConversion(std::span<const uint8_t> head);

class WaveInput {
  public:
    WaveInput() = default;
    ~WaveInput() { Close(); }
    WaveInput(const WaveInput&) = delete;
    WaveInput& operator=(const WaveInput&) = delete;

    // Opens `path` (converting it if need be); false if it cannot be read.
    bool Open(const std::string& path);
    void Close();
    bool IsOpen() const { return file_ != nullptr; }
    bool Converted() const { return converted_; }

    // Positions the next read at `offset` from the start of the file.
    void Seek(uint64_t offset);
    // The next byte, or -1 past the end of the file.
    int Next() {
        if (pos_ == len_ && !Fill()) return -1;
        return buf_[pos_++];
    }

  private:
    bool Fill();
    std::FILE* file_ = nullptr;
    bool converted_ = false;
    std::vector<uint8_t> buf_ = std::vector<uint8_t>(65536);
    size_t pos_ = 0, len_ = 0;
};

// The 44-byte header of a PCM wave file as the tape writes it: one format
// chunk, then the data chunk of `dataBytes`. The length field at offset 4
// holds `riffLength`.
std::vector<uint8_t> TapeWaveHeader(int channels, int32_t rate, int bits, uint32_t dataBytes,
                                    uint32_t riffLength);

} // namespace tvc
