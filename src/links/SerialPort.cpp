#include "links/SerialPort.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "core/Machine.h"

namespace tvc {

namespace {

constexpr uint8_t kStatusIdle = 133, kStatusReceived = 135;
constexpr auto kUnderrunEvery = std::chrono::seconds(1);

void AppendView(TSerialControls& form, const uint8_t* bytes, size_t n) {
    std::string& view = form.Text1;
    form.Text1Total += n;
    view.append(reinterpret_cast<const char*>(bytes), n);
    // Trim in steps of a sixteenth, so a busy line does not move the whole
    // view for every byte.
    if (view.size() > kSerialViewBytes + kSerialViewBytes / 16)
        view.erase(0, view.size() - kSerialViewBytes);
}

// The "Buffer underrun TX!" box at most once a second.
void ReportUnderrun(Machine& m) {
    SerialPort& s = m.serial;
    const auto now = std::chrono::steady_clock::now();
    if (s.underrunShown && now - s.lastUnderrun < kUnderrunEvery) return;
    s.underrunShown = true;
    s.lastUnderrun = now;
    m.host->MessageBox("Buffer underrun TX!", kAppTitle, MsgKind::Plain);
}

} // namespace

uint8_t SerialIn(Machine& m, int32_t port) {
    std::deque<uint8_t>& rx = m.serial.SerialRx;
    if (port == 0x21) return rx.empty() ? kStatusIdle : kStatusReceived;
    if (rx.empty()) return 0;
    const uint8_t b = rx.front();
    rx.pop_front();
    return b;
}

void SerialOut(Machine& m, int32_t, uint8_t value) {
    SerialPort& s = m.serial;
    if (s.OutTap) s.OutTap->push_back(static_cast<char>(value));
    if (s.SerialTx.size() >= kSerialHold) {
        ++s.txDropped;
        return;
    }
    s.SerialTx.push_back(static_cast<char>(value));
}

bool SerialOpen(Machine& m, const std::string& name) {
    m.serial.mapName = name;
    return m.serial.map.CreateMap(name, kSerialRecordSize);
}

void SerialPort::Close() {
    bridge.Stop();
    if (!map.IsOpen()) return;
    map.CloseMap(); // the creator's close removes the map
}

void SerialClose(Machine& m) {
    m.serial.Close();
}

void SerialPump(Machine& m) {
    SerialPort& s = m.serial;
    uint8_t rec[kSerialRecordSize];
    if (!s.map.ReadMap(rec, kSerialRecordSize)) return;
    std::atomic_thread_fence(std::memory_order_acquire);

    if (!s.SerialTx.empty() && rec[kSerialTxCount] == 0) {
        if (s.SerialTx.size() > kSerialChunk) ReportUnderrun(m);
        const size_t n = std::min(s.SerialTx.size(), kSerialChunk);
        s.map.WriteMapAt(kSerialTxBuf, s.SerialTx.data(), static_cast<int32_t>(n));
        std::atomic_thread_fence(std::memory_order_release);
        const uint8_t count = static_cast<uint8_t>(n);
        s.map.WriteMapAt(kSerialTxCount, &count, 1);
        rec[kSerialTxCount] = count;
        s.SerialTx.clear();
    }
    // No bridge: the line has nothing attached, and what was sent is gone.
    if (rec[kSerialTxCount] != 0 && !s.bridge.Alive() && !SerialBridge::Serving()) {
        if (!s.standInNoted)
            std::fprintf(stderr, "tvc: no serial bridge is running; serial output is dropped\n");
        s.standInNoted = true;
        const uint8_t zero = 0;
        s.map.WriteMapAt(kSerialTxCount, &zero, 1);
    }

    // While SerialRx is full the count stays set: the bridge reads no more
    // from the peer, and the kernel holds the peer back.
    const uint8_t got = rec[kSerialRxCount];
    if (got != 0 && s.SerialRx.size() < kSerialHold) {
        // The buffer stood complete before its count was set; read it again
        // now that the count is seen.
        s.map.ReadMap(rec, kSerialRxCount);
        s.SerialRx.insert(s.SerialRx.end(), rec + kSerialRxBuf, rec + kSerialRxBuf + got);
        AppendView(m.forms.TSerial, rec + kSerialRxBuf, got);
        std::atomic_thread_fence(std::memory_order_release);
        const uint8_t zero = 0;
        s.map.WriteMapAt(kSerialRxCount, &zero, 1);
    }
}

std::string SerialPtyName(Machine& m) {
    uint8_t rec[kSerialRecordSize];
    if (!m.serial.map.ReadMap(rec, kSerialRecordSize)) return {};
    std::string name;
    for (int32_t i = kSerialPtyName; i < kSerialRecordSize && rec[i]; ++i)
        name.push_back(static_cast<char>(rec[i]));
    return name;
}

} // namespace tvc
