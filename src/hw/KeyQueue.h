// Typing for scripts: a queue of key strokes played into KeyMatrix one
// frame boundary at a time, as a person would type them. Each key goes down
// (with Shift if it needs it) for kHoldFrames frames and up for kGapFrames,
// so a program that scans the keyboard once a frame sees every press once
// and the gap between two presses of the same key.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hw/FirmwareKeys.h"

namespace tvc {

class KeyQueue {
  public:
    static constexpr int kHoldFrames = 3, kGapFrames = 3;
    static constexpr int kFramesPerKey = kHoldFrames + kGapFrames;

    // Typing begins at frame `startFrame` (counted as RunState::FrameCount).
    explicit KeyQueue(uint64_t startFrame) : start_(startFrame) {}

    void Push(const FirmwareKey& key) { keys_.push_back(key); }

    // Queues the text through the monitor's layout. "\n" and a line break
    // are Enter, "\b" Backspace, "\\" a backslash. On a character that no
    // key types, returns false and names it in `error`; nothing is queued.
    bool PushText(const std::string& text, std::string& error);

    // Presses or releases keys for the frame that begins now.
    void OnFrame(uint64_t frame, uint8_t* keyMatrix);

    // The frame from which every key is up again.
    uint64_t DoneFrame() const { return start_ + keys_.size() * uint64_t(kFramesPerKey); }
    size_t size() const { return keys_.size(); }

  private:
    static void Set(uint8_t* matrix, const FirmwareKey& key, bool down);

    uint64_t start_;
    std::vector<FirmwareKey> keys_;
    std::optional<size_t> down_; // the key now held
};

} // namespace tvc
