#include "sound/WavRecorder.h"

#include "links/AudioLink.h"
#include "sound/SoundFX.h"

namespace tvc {

bool WavRecorder::Open(const std::string& path) {
    Close();
    file_ = std::fopen(path.c_str(), "wb");
    data_ = 0;
    if (file_) WriteHeader();
    return file_ != nullptr;
}

void WavRecorder::WriteHeader() {
    const auto header = WaveHeader(2, kAudioSampleRate, data_);
    std::fseek(file_, 0, SEEK_SET);
    std::fwrite(header.data(), 1, header.size(), file_);
    std::fseek(file_, 0, SEEK_END);
}

void WavRecorder::Add(const uint8_t* data, size_t bytes) {
    if (!file_) return;
    std::fwrite(data, 1, bytes, file_);
    data_ += static_cast<uint32_t>(bytes);
    WriteHeader();
    std::fflush(file_);
}

void WavRecorder::Close() {
    if (!file_) return;
    WriteHeader();
    std::fclose(file_);
    file_ = nullptr;
}

} // namespace tvc
