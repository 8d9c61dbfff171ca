// The serial bridge end to end: a real LUMEKserial between the machine's
// record and a pseudo-terminal the test opens through the published link,
// with an echo program running on the emulated Z80.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "support/TestMachine.h"

extern char** environ;

namespace tvc::test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// IN A,(21h) / AND 2 / JR Z,-6 / IN A,(20h) / OUT (20h),A / JR -12
const std::vector<uint8_t> kEcho = {0xDB, 0x21, 0xE6, 0x02, 0x28, 0xFA,
                                    0xDB, 0x20, 0xD3, 0x20, 0x18, 0xF4};

struct Bridge : ::testing::Test {
    std::unique_ptr<TestMachine> tm;
    fs::path link;
    int peer = -1;

    void SetUp() override {
        setenv("TVC_SHM_TAG", ("lb-" + std::to_string(getpid())).c_str(), 1);
        tm = std::make_unique<TestMachine>();
        link = tm->dir->path() / "serial.pty";
        tm->Load(0x4000, kEcho);
        ASSERT_TRUE(SerialOpen(m()));
        ASSERT_TRUE(m().serial.bridge.Start(TVC_LUMEKSERIAL_BIN, {"--link", link.string()}));
        ASSERT_TRUE(WaitFor([&] { return fs::is_symlink(link) && !SerialPtyName(m()).empty(); }));
    }
    void TearDown() override {
        if (peer >= 0) close(peer);
        tm.reset(); // stops the bridge and removes the map
    }
    Machine& m() { return tm->m(); }

    // Waits for a condition, serving the machine meanwhile; false after 60 s (a stalled link).
    // The program runs only while what it sent fits one record: a bridge held up by a loaded
    // host would otherwise see the card drop the excess.
    template <class F> bool WaitFor(F done) {
        const auto end = Clock::now() + std::chrono::seconds(60);
        while (!done()) {
            if (Clock::now() > end) return false;
            if (m().serial.map.IsOpen()) {
                if (m().serial.SerialTx.size() < kSerialChunk / 2) tm->Step(200);
                SerialPump(m());
            }
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        return true;
    }
    void Connect() {
        peer = open(link.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        ASSERT_GE(peer, 0);
    }
    // Sends the bytes and collects as many back.
    std::string Echo(const std::string& out) {
        size_t sent = 0;
        std::string back;
        WaitFor([&] {
            if (sent < out.size()) {
                const ssize_t n = write(peer, out.data() + sent, out.size() - sent);
                if (n > 0) sent += size_t(n);
            }
            char buf[4096];
            ssize_t n;
            while ((n = read(peer, buf, sizeof buf)) > 0)
                back.append(buf, size_t(n));
            return back.size() >= out.size();
        });
        return back;
    }
};

std::string AllBytes() {
    std::string s;
    for (int i = 0; i < 256; ++i)
        s.push_back(static_cast<char>(i));
    return s;
}

TEST_F(Bridge, EchoesEveryByteValueAcrossAReconnectAndCleansUp) {
    EXPECT_EQ(fs::read_symlink(link).string(), SerialPtyName(m()));
    Connect();
    EXPECT_EQ(Echo(AllBytes()), AllBytes());
    close(peer);
    peer = -1;
    // Sent with no terminal attached: dropped, not kept for the next one.
    m().serial.SerialTx = "nobody hears this";
    ASSERT_TRUE(WaitFor([&] {
        uint8_t rec[kSerialRecordSize];
        m().serial.map.ReadMap(rec, kSerialRecordSize);
        return m().serial.SerialTx.empty() && rec[kSerialTxCount] == 0;
    }));
    Connect();
    const std::string back = Echo(AllBytes() + AllBytes());
    EXPECT_EQ(back, AllBytes() + AllBytes());

    // A second bridge does not start, and the first one cleans up after itself.
    EXPECT_TRUE(SerialBridge::Serving());
    pid_t pid;
    std::string prog = TVC_LUMEKSERIAL_BIN, other = (tm->dir->path() / "other.pty").string();
    char* argv[] = {prog.data(), const_cast<char*>("--link"), other.data(), nullptr};
    ASSERT_EQ(posix_spawn(&pid, prog.c_str(), nullptr, nullptr, argv, environ), 0);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_FALSE(fs::exists(fs::symlink_status(other)));

    m().serial.bridge.Stop();
    EXPECT_FALSE(fs::exists(fs::symlink_status(link)));
    EXPECT_FALSE(fs::exists(SerialBridge::LockPath()));
    EXPECT_FALSE(SerialBridge::Serving());
}

} // namespace
} // namespace tvc::test
