#include "media/WaveInput.h"

#include <sndfile.h>

#include <algorithm>
#include <cstring>

namespace tvc {

namespace {

uint32_t Le32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
uint16_t Le16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}
void Put32(uint8_t* p, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(v >> (8 * i));
}
void Put16(uint8_t* p, uint32_t v) {
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}

constexpr size_t kHeadBytes = 4096; // where the "fmt " chunk is looked for

// Converts what libsndfile can read of `path` into a temporary file of
// unsigned 8-bit mono samples behind a 44-byte header. Null if it cannot.
std::FILE* ConvertToPcm8(const std::string& path) {
    SF_INFO info{};
    SNDFILE* in = sf_open(path.c_str(), SFM_READ, &info);
    if (!in) return nullptr;
    std::FILE* out = std::tmpfile();
    if (!out || info.channels < 1) {
        if (out) std::fclose(out);
        sf_close(in);
        return nullptr;
    }
    std::vector<uint8_t> header = TapeWaveHeader(1, info.samplerate, 8, 0, 44);
    std::fwrite(header.data(), 1, header.size(), out);
    const int channels = info.channels;
    constexpr sf_count_t kFrames = 4096;
    std::vector<short> frames(size_t(kFrames) * size_t(channels));
    std::vector<uint8_t> mono(kFrames);
    uint64_t total = 0;
    for (;;) {
        const sf_count_t got = sf_readf_short(in, frames.data(), kFrames);
        if (got <= 0) break;
        for (sf_count_t i = 0; i < got; ++i) {
            int32_t sum = 0;
            for (int c = 0; c < channels; ++c)
                sum += frames[size_t(i) * size_t(channels) + size_t(c)];
            mono[size_t(i)] = static_cast<uint8_t>((sum / channels + 32768) >> 8);
        }
        std::fwrite(mono.data(), 1, size_t(got), out);
        total += uint64_t(got);
    }
    sf_close(in);
    const uint32_t data = static_cast<uint32_t>(std::min<uint64_t>(total, 0xFFFFFFD3u));
    header = TapeWaveHeader(1, info.samplerate, 8, data, data + 44);
    std::fseek(out, 0, SEEK_SET);
    std::fwrite(header.data(), 1, header.size(), out);
    std::fflush(out);
    return out;
}

} // namespace

bool WaveNeedsConversion(std::span<const uint8_t> head) {
    if (head.size() < 12 || std::memcmp(head.data(), "RIFF", 4) != 0 ||
        std::memcmp(head.data() + 8, "WAVE", 4) != 0)
        return false;
    size_t at = 12;
    while (at + 8 <= head.size()) {
        const uint32_t size = Le32(head.data() + at + 4);
        if (std::memcmp(head.data() + at, "fmt ", 4) == 0) {
            if (size < 16 || at + 24 > head.size()) return false;
            const uint8_t* f = head.data() + at + 8;
            return !(Le16(f) == 1 && Le16(f + 2) == 1 && Le16(f + 14) == 8);
        }
        if (size > head.size()) return false;
        at += 8 + size + (size & 1);
    }
    return false;
}

std::vector<uint8_t> TapeWaveHeader(int channels, int32_t rate, int bits, uint32_t dataBytes,
                                    uint32_t riffLength) {
    std::vector<uint8_t> h(44, 0);
    std::memcpy(&h[0], "RIFF", 4);
    Put32(&h[4], riffLength);
    std::memcpy(&h[8], "WAVEfmt ", 8);
    Put32(&h[16], 16);
    Put16(&h[20], 1);
    Put16(&h[22], uint32_t(channels));
    Put32(&h[24], uint32_t(rate));
    const uint32_t align = uint32_t(channels) * uint32_t(bits / 8);
    Put32(&h[28], uint32_t(rate) * align);
    Put16(&h[32], align);
    Put16(&h[34], uint32_t(bits));
    std::memcpy(&h[36], "data", 4);
    Put32(&h[40], dataBytes);
    return h;
}

bool WaveInput::Open(const std::string& path) {
    Close();
    std::FILE* f = std::fopen(path.c_str(), "rb");
    if (!f) return false;
    uint8_t head[kHeadBytes];
    const size_t n = std::fread(head, 1, sizeof head, f);
    if (WaveNeedsConversion({head, n})) {
        if (std::FILE* converted = ConvertToPcm8(path)) {
            std::fclose(f);
            f = converted;
            converted_ = true;
        }
    }
    file_ = f;
    Seek(0);
    return true;
}

void WaveInput::Close() {
    if (file_) std::fclose(file_);
    file_ = nullptr;
    converted_ = false;
    pos_ = len_ = 0;
}

void WaveInput::Seek(uint64_t offset) {
    pos_ = len_ = 0;
    if (file_) std::fseek(file_, static_cast<long>(offset), SEEK_SET);
}

bool WaveInput::Fill() {
    if (!file_) return false;
    len_ = std::fread(buf_.data(), 1, buf_.size(), file_);
    pos_ = 0;
    return len_ > 0;
}

} // namespace tvc
