#include "links/AudioLink.h"

namespace tvc {

bool AudioConsumer::Open() {
    samples_ = &ownSamples_;
    handshake_ = &ownHandshake_;
    return samples_->OpenMap(kSampleMapName, kAudioUnitBytes) &&
           handshake_->OpenMap(kHandshakeMapName, 1);
}

void AudioConsumer::Attach(MMapper& samples, MMapper& handshake) {
    samples_ = &samples;
    handshake_ = &handshake;
}

uint8_t AudioConsumer::Handshake() {
    uint8_t b = 0;
    handshake_->ReadMap(&b, 1);
    return b;
}

void AudioConsumer::Ask() {
    const uint8_t ask = kHandshakeAsk;
    handshake_->WriteMap(&ask, 1);
}

bool AudioConsumer::Take(uint8_t* unit) {
    if (Handshake() != kHandshakeDelivered) return false;
    uint8_t scratch[kAudioUnitBytes];
    samples_->ReadMap(unit ? unit : scratch, kAudioUnitBytes);
    return true;
}

bool SilentSink::Step(std::chrono::steady_clock::time_point now, uint8_t* unit) {
    using namespace std::chrono_literals;
    bool took = false;
    if (asked_ && link_.Take(unit)) {
        took = true;
        asked_ = false;
        // Keep the 100 ms beat from ask to ask; after a long stall start afresh.
        nextAsk_ = lastAsk_ + 100ms;
        if (nextAsk_ + 100ms < now) nextAsk_ = now;
    }
    if (!asked_ && now >= nextAsk_) {
        link_.Ask();
        asked_ = true;
        lastAsk_ = now;
    }
    return took;
}

} // namespace tvc
