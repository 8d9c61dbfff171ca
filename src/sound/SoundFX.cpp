#include "sound/SoundFX.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr double kToneClock = 195312.5; // CPU clock / 16
constexpr int32_t kToneMaxHz = 11000;
constexpr int32_t kTonePitchLimit = 4080; // above this the tone is off whatever port 5 says
constexpr int kRecordDataOffset = 44;     // just behind the wave header
constexpr int kRecordingColor = 255, kIdleColor = 0xFFFFFF;

void Put16(std::vector<uint8_t>& v, size_t at, uint32_t x) {
    v[at] = static_cast<uint8_t>(x), v[at + 1] = static_cast<uint8_t>(x >> 8);
}
void Put32(std::vector<uint8_t>& v, size_t at, uint32_t x) {
    Put16(v, at, x & 0xFFFF), Put16(v, at + 2, x >> 16);
}

void CloseFile(std::FILE*& f) {
    if (f) std::fclose(f);
    f = nullptr;
}

} // namespace

std::vector<uint8_t> WaveHeader(int16_t channels, int32_t sampleRate, uint32_t dataBytes) {
    std::vector<uint8_t> h(44);
    std::memcpy(&h[0], "RIFF", 4);
    Put32(h, 4, dataBytes + 36);
    std::memcpy(&h[8], "WAVEfmt ", 8);
    Put32(h, 16, 16);
    Put16(h, 20, 1);
    Put16(h, 22, static_cast<uint32_t>(channels));
    Put32(h, 24, static_cast<uint32_t>(sampleRate));
    Put32(h, 28, static_cast<uint32_t>(channels * 8 * sampleRate / 8));
    Put16(h, 32, 2);
    Put16(h, 34, 8);
    std::memcpy(&h[36], "data", 4);
    Put32(h, 40, dataBytes);
    return h;
}

void BuildWaveImage(Machine& m, int16_t channels, int32_t sampleRate, float seconds) {
    const auto n = static_cast<uint32_t>(RoundHalfEven(double(seconds) * sampleRate * channels));
    m.sound.WaveImage = WaveHeader(channels, sampleRate, n);
    m.sound.WaveImage.resize(44 + size_t(n), 128);
}

void SoundInit(Machine& m) {
    BuildWaveImage(m, 1, kAudioSampleRate, 1.0f);
    m.sound.MonitorFrame = 0;
    std::fill(std::begin(m.sound.ToneSlots), std::end(m.sound.ToneSlots), 0);
}

bool SoundMapsCreate(Machine& m) {
    return m.sound.MMDemo.CreateMap(kSampleMapName, kAudioUnitBytes) &&
           m.sound.MMDemo2.CreateMap(kHandshakeMapName, 1);
}

void TvcToneBlock(Machine& m) {
    SoundFX& s = m.sound;
    const uint8_t* latch = m.bus.PortLatch;
    const int32_t pitch = latch[4] + (latch[5] & 0x0F) * 256;
    const bool enabled = (latch[5] & 0x10) && pitch <= kTonePitchLimit;
    const int32_t volume = (latch[6] >> 2) & 0x0F;
    if (enabled) {
        const int32_t hz = static_cast<int32_t>(
            std::min<int64_t>(RoundHalfEven(kToneClock / (4096 - pitch)), kToneMaxHz));
        const double step = hz / 11025.0;
        for (int i = 0; i < kBlockSamples; ++i) {
            s.Tone.Phase = static_cast<float>(s.Tone.Phase + step);
            if (s.Tone.Phase >= 1) {
                s.Tone.Phase -= 1;
                s.Tone.Level ^= 1;
            }
            s.TvcToneOut[i] = static_cast<int16_t>(s.Tone.Level ? volume * 7 : -(volume * 7));
        }
    } else {
        // The volume latch drives the line directly: each level event holds
        // until the next one.
        for (int i = 0; i < kBlockSamples; ++i) {
            if (s.ToneSlots[i] >= 16) s.Tone.LastDacLevel = (s.ToneSlots[i] - 16) * 5;
            s.TvcToneOut[i] = static_cast<int16_t>(s.Tone.LastDacLevel);
        }
    }
    // Level events of a block with the tone on are lost without trace.
    std::fill(std::begin(s.ToneSlots), std::end(s.ToneSlots), 0);

    if (m.forms.TVCmon.Check1 && s.ToneRecordFile)
        std::fwrite(s.TvcToneOut, sizeof(int16_t), kBlockSamples, s.ToneRecordFile);
}

// The weighted sum of all sources; only the low eight bits are kept, so a
// loud mix wraps around rather than clipping.
void MixBlock(Machine& m) {
    SoundFX& s = m.sound;
    const size_t base =
        size_t(std::clamp(s.BlockIndex, 0, kBlocksPerDelivery - 1)) * kBlockSamples * 2;
    for (int i = 0; i < kBlockSamples; ++i) {
        const double common = 0.5 * m.ym.Ym3812Out[i] + 0.5 * m.ym2.Ym2413Out[i] +
                              0.1 * m.sn.Sn76489Out[i] + 0.5 * s.TvcToneOut[i] +
                              0.1 * m.sid.SidOut[i] + m.ay.AyOut[i] + 128;
        const int64_t left = RoundHalfEven(common + m.saa.SaaLeft[i]);
        const int64_t right = RoundHalfEven(common + m.saa.SaaRight[i]);
        s.OutBuffer[base + size_t(i) * 2] = static_cast<uint8_t>(left & 0xFF);
        s.OutBuffer[base + size_t(i) * 2 + 1] = static_cast<uint8_t>(right & 0xFF);
    }
}

void SoundMix(Machine& m) {
    TvcToneBlock(m);
    if (m.menu.xio2) {
        SaaRender(m);
        SnRender(m);
        YmRender(m);
        SidRender(m);
        Ym2Render(m);
        AyRender(m);
    }
    MixBlock(m);
    m.sound.BlockIndex += 1;
}

void SoundFrame(Machine& m) {
    SoundFX& s = m.sound;
    if (s.DeliveryTap) s.DeliveryTap(s.OutBuffer, sizeof s.OutBuffer);
    if (m.menu.xS6) return;

    for (;;) {
        uint8_t handshake = 0;
        // A map that cannot be read gives the delivery up, like an unknown byte.
        if (!s.MMDemo2.ReadMap(&handshake, 1)) return;
        if (handshake == kHandshakeIdle) {
            if (s.BlockIndex <= 4) return;
            m.host->Sleep(1);
        } else if (handshake == kHandshakeDelivered) {
            m.host->Sleep(1);
        } else if (handshake == kHandshakeAsk) {
            break;
        } else {
            return;
        }
    }
    m.forms.Fsaa.Label11 = std::to_string(s.BlockIndex);
    for (int i = 0; i < kBlocksPerDelivery && s.BlockIndex < kBlocksPerDelivery; ++i)
        SoundMix(m);
    s.MMDemo.WriteMap(s.OutBuffer, kAudioUnitBytes);
    s.BlockIndex = 0;
    // Every delivery lands on the same place behind the header: the file
    // keeps only the latest tenth of a second.
    if (m.forms.Fsaa.Command1Color == kRecordingColor && s.RecordFile) {
        std::fseek(s.RecordFile, kRecordDataOffset, SEEK_SET);
        std::fwrite(s.OutBuffer, 1, kAudioUnitBytes, s.RecordFile);
        std::fflush(s.RecordFile);
    }
    const uint8_t delivered = kHandshakeDelivered;
    s.MMDemo2.WriteMap(&delivered, 1);
    ++s.Deliveries;
}

void PrinterLineSound(Machine&) {}

void SaaRecordButton(Machine& m) {
    SoundFX& s = m.sound;
    int& color = m.forms.Fsaa.Command1Color;
    if (color == kRecordingColor) {
        color = kIdleColor;
        CloseFile(s.RecordFile);
        CloseFile(s.SaaDataFile);
        return;
    }
    // "Record.wav" and "record.wav" are one file here, as on the machine's
    // original case-blind file system.
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::remove("record.wav", ec);
    fs::remove("saa.dat", ec);
    if (!fs::copy_file("techno.wav", "record.wav", fs::copy_options::overwrite_existing, ec)) {
        m.host->MessageBox("File not found: techno.wav", kAppTitle, MsgKind::Critical);
        return;
    }
    color = kRecordingColor;
    s.RecordFile = std::fopen("record.wav", "r+b");
    s.SaaDataFile = std::fopen("saa.dat", "w+b");
}

} // namespace tvc
