// The serial card: ports 0x20 (data) and 0x21 (status), and the shared
// record "MMRS232" through which the bridge LUMEKserial carries its bytes to
// a pseudo-terminal. The record (535 bytes):
//
//   0..255   receive buffer, bytes from the peer      (written by the bridge)
//   256..511 transmit buffer, bytes for the peer      (written by the emulator)
//   512      receive count, set by the bridge, cleared by the emulator
//   513      transmit count, set by the emulator, cleared by the bridge
//   514..534 the bridge's pseudo-terminal name, zero-terminated
//
// Each count byte is the flag of its buffer: the producer fills the buffer
// and sets the count last, the consumer copies the buffer out and clears the
// count. Each side writes back only the bytes it owns, so nothing one side
// changes between its read and its write is lost.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

#include "links/MMapper.h"
#include "links/SerialBridge.h"

namespace tvc {

class Machine;

constexpr const char* kSerialMapName = "MMRS232";
constexpr int32_t kSerialRecordSize = 535;
constexpr int32_t kSerialRxBuf = 0, kSerialTxBuf = 256, kSerialRxCount = 512, kSerialTxCount = 513,
                  kSerialPtyName = 514;
constexpr int32_t kSerialPtyNameSize = kSerialRecordSize - kSerialPtyName;
constexpr size_t kSerialChunk = 255;             // a count byte's most
constexpr size_t kSerialHold = size_t(16) << 20; // SerialRx/SerialTx bound
constexpr size_t kSerialViewBytes = 64 * 1024;   // TSerial.Text1 keeps this much

// The controls of TSerial that the pump writes to.
struct TSerialControls {
    std::string Text1; // received text, the last kSerialViewBytes bytes
    uint64_t Text1Total = 0; // bytes ever added to Text1
    std::string Text2; // outgoing text of the terminal buttons
};

struct SerialPort {
    SerialPort() = default;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;
    // Nothing outlives the machine: the bridge it started and its map go.
    ~SerialPort() { Close(); }
    void Close();

    std::deque<uint8_t> SerialRx; // bytes on their way in, read by port 0x20
    std::string SerialTx;         // bytes on their way out
    MMapper map;
    std::string mapName;
    SerialBridge bridge;
    std::string* OutTap = nullptr; // every byte written to port 0x20, when set
    std::chrono::steady_clock::time_point lastUnderrun{};
    bool underrunShown = false;
    bool standInNoted = false;
    size_t txDropped = 0; // bytes a full SerialTx refused
};

uint8_t SerialIn(Machine& m, int32_t port);
void SerialOut(Machine& m, int32_t port, uint8_t value);

// Creates the record's map; false with the map's error left in LastError().
bool SerialOpen(Machine& m, const std::string& name = kSerialMapName);
// Stops a bridge this program started and closes and removes the map.
void SerialClose(Machine& m);
// One tick of the TSerial timer: hands SerialTx to the bridge, takes what it
// received. Without a serving bridge the transmit buffer is emptied here.
void SerialPump(Machine& m);
// The pseudo-terminal name the bridge put in the record ("" when none).
std::string SerialPtyName(Machine& m);

} // namespace tvc
