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
//
// Unlike a Windows mapping, a POSIX object outlives its last handle, so the
// creator unlinks it when it closes the map, and on SIGTERM or SIGINT when the
// process has no handler of its own. The creator holds a shared lock on the
// object while it lives; the first CreateMap of a process removes every
// object of this user that nobody holds, which is what a dead process left.
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

    // Removes the objects of this user that no live creator holds and that
    // are older than `minAgeSeconds` (so that one being made is spared),
    // only those whose name contains `part` if given. Returns how many it
    // removed.
    static int RemoveStale(int minAgeSeconds = 2, const std::string& part = {});

  private:
    bool Fail(const std::string& text);
    bool Map(int fd, const std::string& errorPrefix);

    uint8_t* view_ = nullptr;
    int lockFd_ = -1; // the creator's handle, locked shared while the map lives
    std::string created_;
    int32_t size_ = 0;
    bool open_ = false;
    MapError error_;
};

} // namespace tvc
