// The serial card and its pump, the test playing the bridge's side of the
// record; the printer (its strobe is in the port tests).
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "core/MonitorText.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(SerialPorts, DataAndStatusRows) {
    const struct {
        std::string rx;
        int status, data;
        std::string left;
    } rows[] = {
        {"", 133, 0, ""},
        {"\xFF\x01", 135, 0xFF, "\x01"},
    };
    for (const auto& r : rows) {
        TestMachine tm;
        tm.m().serial.SerialRx.assign(r.rx.begin(), r.rx.end());
        EXPECT_EQ(PortIn(tm.m(), 0x21), r.status) << r.rx;
        EXPECT_EQ(PortIn(tm.m(), 0x20), r.data) << r.rx;
        EXPECT_EQ(std::string(tm.m().serial.SerialRx.begin(), tm.m().serial.SerialRx.end()),
                  r.left);
    }
    TestMachine tm; // sent bytes queue up to the bound, the rest counted as dropped
    tm.m().serial.SerialTx.assign(kSerialHold - 2, 'x');
    for (int v : {0x00, 0xFF, 0x41}) {
        int32_t value = v;
        PortOut(tm.m(), 0x20, value);
    }
    EXPECT_EQ(tm.m().serial.SerialTx.substr(kSerialHold - 2), std::string("\x00\xFF", 2));
    EXPECT_EQ(tm.m().serial.txDropped, 1u);
}

// The record under a tag of this test, and the bridge's side of it: the
// test holds the bridge's lock, so the pump does not stand in.
struct Pump : ::testing::Test {
    std::unique_ptr<TestMachine> tm;
    MMapper bridge;
    int lock = -1;
    uint8_t rec[kSerialRecordSize];

    void SetUp() override {
        setenv("TVC_SHM_TAG", ("sr-" + std::to_string(getpid())).c_str(), 1);
        tm = std::make_unique<TestMachine>();
        ASSERT_TRUE(SerialOpen(tm->m()));
        ASSERT_TRUE(bridge.OpenMap(kSerialMapName, kSerialRecordSize));
        lock = open(SerialBridge::LockPath().c_str(), O_RDWR | O_CREAT, 0600);
        ASSERT_EQ(flock(lock, LOCK_EX | LOCK_NB), 0);
    }
    void TearDown() override {
        bridge.CloseMap();
        tm.reset();
        unlink(SerialBridge::LockPath().c_str());
        close(lock);
    }
    Machine& m() { return tm->m(); }
    void Read() { bridge.ReadMap(rec, kSerialRecordSize); }
    void Put(int32_t at, const std::string& bytes) {
        bridge.WriteMapAt(at, bytes.data(), int32_t(bytes.size()));
    }
    void Count(int32_t at, uint8_t n) { bridge.WriteMapAt(at, &n, 1); }
};

TEST_F(Pump, HandsOverAtMost255BytesWhenTheTransmitCountIsClear) {
    const struct {
        size_t length;
        uint8_t countBefore;
        size_t sent; // 0: nothing handed over
        size_t kept; // left in SerialTx
        size_t messages;
    } rows[] = {
        {255, 0, 255, 0, 0},
        {256, 0, 255, 0, 1}, // the cut, with the message
        {5, 9, 0, 5, 0},     // the bridge has not drained the last lot
    };
    for (const auto& r : rows) {
        std::string tx;
        for (size_t i = 0; i < r.length; ++i)
            tx.push_back(static_cast<char>(i * 7 + 1));
        m().serial.SerialTx = tx;
        m().serial.underrunShown = false;
        tm->host.messages.clear();
        Count(kSerialTxCount, r.countBefore);
        SerialPump(m());
        Read();
        EXPECT_EQ(rec[kSerialTxCount], r.sent ? r.sent : r.countBefore) << r.length;
        if (r.sent) {
            EXPECT_EQ(std::string(rec + kSerialTxBuf, rec + kSerialTxBuf + r.sent),
                      tx.substr(0, r.sent));
        }
        EXPECT_EQ(m().serial.SerialTx.size(), r.kept) << r.length;
        ASSERT_EQ(tm->host.messages.size(), r.messages) << r.length;
        if (r.messages) { EXPECT_EQ(tm->host.messages[0].text, "Buffer underrun TX!"); }
    }
}

TEST_F(Pump, TakesReceivedBytesUnlessFullAndLeavesTheRest) {
    Put(kSerialRxBuf, "hello");
    Count(kSerialRxCount, 5);
    m().serial.SerialRx.assign(3, 'a');
    SerialPump(m());
    Read();
    EXPECT_EQ(rec[kSerialRxCount], 0);
    EXPECT_EQ(std::string(m().serial.SerialRx.begin(), m().serial.SerialRx.end()), "aaahello");
    EXPECT_EQ(m().forms.TSerial.Text1, "hello");

    m().serial.SerialRx.assign(kSerialHold, 'a');
    Count(kSerialRxCount, 5);
    SerialPump(m());
    Read();
    EXPECT_EQ(rec[kSerialRxCount], 5); // held back until the program reads
    EXPECT_EQ(m().serial.SerialRx.size(), kSerialHold);
    PortIn(m(), 0x20);
    SerialPump(m());
    Read();
    EXPECT_EQ(rec[kSerialRxCount], 0);
    EXPECT_EQ(m().serial.SerialRx.size(), kSerialHold + 4);

    // With nothing counted, the bridge's bytes are left alone.
    Put(kSerialRxBuf, "bridge");
    Put(kSerialPtyName, std::string("/dev/pts/7\0", 11));
    m().serial.SerialTx = "out";
    SerialPump(m());
    Read();
    EXPECT_EQ(std::string(rec, rec + 6), "bridge");
    EXPECT_EQ(SerialPtyName(m()), "/dev/pts/7");

    // Without a bridge the line drops what is sent.
    flock(lock, LOCK_UN);
    Count(kSerialTxCount, 0);
    m().serial.SerialTx = "lost";
    SerialPump(m());
    Read();
    EXPECT_EQ(rec[kSerialTxCount], 0);
    EXPECT_TRUE(m().serial.SerialTx.empty());
    EXPECT_TRUE(m().serial.standInNoted);
}

TEST(Printer, CodeTableAndBound) {
    for (int b = 0; b < 256; ++b) {
        const int want = b < 127 ? b : b >= 160 ? '.' : MonitorFontCode(b);
        EXPECT_EQ(PrinterCode(static_cast<uint8_t>(b)), want) << b;
    }
}

} // namespace
} // namespace tvc::test
