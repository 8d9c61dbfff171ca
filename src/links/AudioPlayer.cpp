#include "links/AudioPlayer.h"

#include <algorithm>
#include <cstdio>

namespace tvc {

namespace {

constexpr uint32_t kAskMarginBytes =
    uint32_t(kAudioBytesPerSecond * std::chrono::duration<double>(kAskMargin).count());

double Ms(AudioClock::duration d) {
    return std::chrono::duration<double, std::milli>(d).count();
}

} // namespace

void PlayerStats::Ask(double queuedMs) {
    ++asks;
    queueMinMs = std::min(queueMinMs, queuedMs);
    queueMaxMs = std::max(queueMaxMs, queuedMs);
    queueSumMs += queuedMs;
}

void PlayerStats::Take(double latencyMs) {
    ++units;
    latencySumMs += latencyMs;
    latencyMaxMs = std::max(latencyMaxMs, latencyMs);
}

std::string PlayerStats::Report() const {
    char text[320];
    if (asks == 0 || units == 0) {
        std::snprintf(text, sizeof text, "units %llu, underruns %llu\n",
                      static_cast<unsigned long long>(units),
                      static_cast<unsigned long long>(underruns));
    } else {
        std::snprintf(
            text, sizeof text,
            "units %llu, underruns %llu, device stalls %llu\n"
            "queued at each ask: min %.1f ms, mean %.1f ms, max %.1f ms\n"
            "latency: mean %.1f ms, worst %.1f ms\n",
            static_cast<unsigned long long>(units), static_cast<unsigned long long>(underruns),
            static_cast<unsigned long long>(stalls), queueMinMs, queueSumMs / double(asks),
            queueMaxMs, latencySumMs / double(units), latencyMaxMs);
    }
    return text;
}

AudioPlayer::AudioPlayer(AudioConsumer& link, PlayerDevice* device)
    : link_(link), device_(device), silent_(link) {}

bool AudioPlayer::Step(AudioClock::time_point now, uint8_t* unit) {
    if (!device_) {
        if (!silent_.Step(now, unit)) return false;
        stats_.Take(Ms(kAudioUnitTime));
        return true;
    }
    uint32_t queued = device_->QueuedBytes();
    if (queued < lastQueued_ || queued == 0) lastDrain_ = now;
    if (queued > 0 && now - lastDrain_ > kDeviceStall) {
        device_->Clear();
        ++stats_.stalls;
        dry_ = true; // counted as a stall, not as an underrun
        queued = 0;
        lastDrain_ = now;
    }
    lastQueued_ = queued;
    // Once playing, an empty queue means the device ran dry; count each time.
    if (playing_ && queued == 0 && !dry_) {
        ++stats_.underruns;
        dry_ = true;
    }
    bool took = false;
    if (asked_ && link_.Take(unit)) {
        asked_ = false;
        stats_.Take(Ms(kAudioUnitTime) + Ms(now - askedAt_) + BytesToMs(queued));
        device_->Queue(unit, kAudioUnitBytes);
        queued = lastQueued_ = device_->QueuedBytes();
        playing_ = true;
        dry_ = false;
        took = true;
    }
    if (!asked_ && queued < kAskMarginBytes + device_->PeriodBytes()) {
        link_.Ask();
        asked_ = true;
        askedAt_ = now;
        if (playing_) stats_.Ask(BytesToMs(queued)); // the first ask finds nothing queued
    }
    return took;
}

} // namespace tvc
