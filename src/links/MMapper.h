// MMapper: one named block of memory shared with a companion process, on
// POSIX shared memory. The emulator's maps are "MMDemo" (4,410 bytes of
// audio), "MMDemo2" (the audio handshake byte) and "MMRS232" (serial
// buffers); PosixName is the one place that turns such a name into the
// system's object name.
//
// A failing operation returns false and leaves the error in LastError():
// number 5 (invalid call), source "MMapper", and the text of the failure.
// The tests of each operation run in a fixed order (size before open state),
// so the first failing test decides the text.
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

struct MapError {
    int Number = 0;
    std::string Source;
    std::string Description;
};

class MMapper {
  public:
    MMapper() = default;
    ~MMapper() { CloseMap(); }
    MMapper(const MMapper&) = delete;
    MMapper& operator=(const MMapper&) = delete;

    // Creates the map. A map of that name left behind by an earlier run is
    // dropped first, so a new emulator never joins a stale handshake.
    bool CreateMap(const std::string& name, int32_t size);
    // Opens a map another process created.
    bool OpenMap(const std::string& name, int32_t size);
    bool ReadMap(void* dest, int32_t size);
    bool WriteMap(const void* src, int32_t size);
    // Copies size bytes from src into the map from offset on, so that a side
    // can write back only the fields it owns.
    bool WriteMapAt(int32_t offset, const void* src, int32_t size);
    void CloseMap();

    bool IsOpen() const { return open_; }
    int32_t MappedSize() const { return size_; }
    const MapError& LastError() const { return error_; }

    // "/tvc-<uid>-<name>", with the value of TVC_SHM_TAG appended when it is
    // set, so that test runs keep apart from a running emulator.
    static std::string PosixName(const std::string& name);

  private:
    bool Fail(const std::string& text);
    bool Map(int fd, const std::string& errorPrefix);

    uint8_t* view_ = nullptr;
    int32_t size_ = 0;
    bool open_ = false;
    MapError error_;
};

} // namespace tvc
