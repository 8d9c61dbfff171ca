#include "hw/KeyQueue.h"

namespace tvc {

bool KeyQueue::PushText(const std::string& text, std::string& error) {
    std::vector<FirmwareKey> keys;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            const char next = text[++i];
            c = next == 'n' ? '\r' : next == 'b' ? '\b' : next;
        }
        const auto key = FirmwareKeyFor(c);
        if (!key) {
            error = "no key types '" + std::string(1, c) + "'";
            return false;
        }
        keys.push_back(*key);
    }
    keys_.insert(keys_.end(), keys.begin(), keys.end());
    return true;
}

void KeyQueue::Set(uint8_t* matrix, const FirmwareKey& key, bool down) {
    const auto set = [&](int row, int bit) {
        if (down)
            matrix[row] |= uint8_t(1 << bit);
        else
            matrix[row] &= uint8_t(~(1 << bit));
    };
    set(key.row, key.bit);
    if (key.shift) set(kFirmwareShiftKey.row, kFirmwareShiftKey.bit);
}

void KeyQueue::OnFrame(uint64_t frame, uint8_t* keyMatrix) {
    std::optional<size_t> want;
    if (frame >= start_) {
        const uint64_t n = (frame - start_) / kFramesPerKey;
        if (n < keys_.size() && (frame - start_) % kFramesPerKey < uint64_t(kHoldFrames))
            want = size_t(n);
    }
    if (want == down_) return;
    if (down_) Set(keyMatrix, keys_[*down_], false);
    if (want) Set(keyMatrix, keys_[*want], true);
    down_ = want;
}

} // namespace tvc
