// The audio player: its pace and the stand-in on a clock the test turns,
// then the real sndpipe against an emulator side played by the test.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fcntl.h>
#include <fstream>
#include <signal.h>
#include <thread>
#include <unistd.h>

#include "links/AudioCompanion.h"
#include "links/AudioPlayer.h"
#include "sound/SoundFX.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

// Takes what it plays in periods of `chunk` bytes, as SDL's callback does,
// at `rate` times the nominal speed.
struct FakeDevice final : PlayerDevice {
    double rate = 1.0, owed = 0;
    uint32_t queued = 0, chunk = 1024;
    uint64_t played = 0;
    uint32_t QueuedBytes() override { return queued; }
    uint32_t PeriodBytes() override { return chunk; }
    void Queue(const uint8_t*, uint32_t size) override { queued += size; }
    void Clear() override { queued = 0; }
    void Advance(milliseconds dt) {
        owed += rate * kAudioBytesPerSecond * dt.count() / 1000.0;
        while (owed >= chunk) {
            owed -= chunk;
            const uint32_t take = std::min(queued, chunk);
            queued -= take;
            played += take;
        }
    }
};

struct Maps : ::testing::Test {
    MMapper samples, handshake;
    uint32_t deliveries = 0;
    void SetUp() override {
        TagSharedMemory("pace");
        ASSERT_TRUE(samples.CreateMap(kSampleMapName, kAudioUnitBytes));
        ASSERT_TRUE(handshake.CreateMap(kHandshakeMapName, 1));
    }
    uint8_t Byte() {
        uint8_t b = 0;
        handshake.ReadMap(&b, 1);
        return b;
    }
    void Set(uint8_t b) { handshake.WriteMap(&b, 1); }
    // The emulator: a request is answered at once.
    void Answer() {
        if (Byte() != kHandshakeAsk) return;
        Set(kHandshakeDelivered);
        ++deliveries;
    }
};

// A minute of play against devices with fast, slow and true clocks: the
// player follows the device, never lets it run dry, and keeps each unit's
// latency within the unit, the margin and one poll.
TEST_F(Maps, PaceFollowsTheDevice) {
    const double marginMs = std::chrono::duration<double, std::milli>(kAskMargin).count();
    for (double rate : {1.0, 1.05, 0.95}) {
        AudioConsumer link;
        ASSERT_TRUE(link.Open());
        FakeDevice device;
        device.rate = rate;
        AudioPlayer player(link, &device);
        uint8_t unit[kAudioUnitBytes];
        AudioClock::time_point now{};
        const uint64_t firstDelivery = deliveries;
        for (int ms = 0; ms < 60000; ++ms) {
            player.Step(now, unit);
            Answer();
            device.Advance(1ms);
            now += 1ms;
        }
        const PlayerStats& st = player.Stats();
        EXPECT_EQ(st.underruns, 0u) << rate;
        const double periodMs = BytesToMs(device.chunk);
        EXPECT_LT(st.queueMaxMs, marginMs + periodMs) << rate;
        EXPECT_GE(st.queueMinMs, marginMs - 1.0) << rate; // the device took a period
        EXPECT_LE(st.latencyMaxMs, 100.0 + marginMs + periodMs + 1.0) << rate;
        // No drift: every unit taken was played but what is still queued.
        const uint64_t taken = st.units;
        EXPECT_LE(deliveries - firstDelivery - taken, 1u) << rate; // the last one may wait
        EXPECT_NEAR(double(taken), 600.0 * rate, 2.0) << rate;
        EXPECT_EQ(device.played + device.queued, taken * kAudioUnitBytes) << rate;
        Set(kHandshakeIdle);
    }
}

// A player that is alive but does not ask: the stand-in takes over after
// a second without a request, asks on its own beat, and hands back when the
// player asks. A stopped player is ended and reaped.
TEST_F(Maps, StandInCoversAStoppedPlayerAndHandsBack) {
    constexpr milliseconds silence = 1000ms;
    AudioCompanion companion;
    ASSERT_TRUE(companion.Start("/bin/sleep", {"60"}));
    AudioCompanion::Clock::time_point t{};
    const auto serve = [&](milliseconds at) {
        companion.ServeWait(samples, handshake, deliveries, t + at);
    };
    Set(kHandshakeDelivered);
    serve(0ms);
    serve(silence - 1ms);
    EXPECT_FALSE(companion.StandingIn());
    EXPECT_EQ(Byte(), kHandshakeDelivered);
    serve(silence);
    EXPECT_TRUE(companion.StandingIn());
    EXPECT_EQ(Byte(), kHandshakeAsk);
    Answer();
    serve(silence + 1ms); // takes the unit
    serve(silence + 99ms);
    EXPECT_EQ(Byte(), kHandshakeDelivered);
    serve(silence + 100ms); // its beat
    EXPECT_EQ(Byte(), kHandshakeAsk);
    Answer();
    serve(silence + 101ms);
    Set(kHandshakeAsk); // the player is back
    serve(silence + 102ms);
    EXPECT_FALSE(companion.StandingIn());
    Answer();
    serve(silence + 103ms);
    serve(2 * silence + 101ms);
    EXPECT_FALSE(companion.StandingIn());
    EXPECT_EQ(Byte(), kHandshakeDelivered);

    // Closing: every wait is answered at once.
    AudioCompanion::ReleaseWaits();
    serve(2 * silence + 102ms);
    AudioCompanion::ReleaseWaits(false);
    EXPECT_EQ(Byte(), kHandshakeAsk);

    const pid_t pid = companion.Pid();
    ASSERT_EQ(kill(pid, SIGSTOP), 0);
    companion.Stop();
    EXPECT_FALSE(companion.Alive());
    EXPECT_NE(kill(pid, 0), 0); // reaped, not a zombie
}

using Clock = std::chrono::steady_clock;

struct Player : Maps {
    std::unique_ptr<ScratchDir> dir;
    AudioCompanion player; // ends the player with the test
    uint8_t served = 0;    // the fill of the next unit

    void SetUp() override {
        Maps::SetUp();
        dir = std::make_unique<ScratchDir>();
    }
    // Starts the player with its stderr in stderr.txt.
    void Start(const std::string& driver, std::vector<std::string> args = {}) {
        setenv("SDL_AUDIODRIVER", driver.c_str(), 1);
        const int saved = dup(2), log = open((dir->path() / "stderr.txt").c_str(),
                                             O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(log, 2);
        const bool started = player.Start(TVC_SNDPIPE_BIN, args);
        dup2(saved, 2);
        close(saved), close(log);
        unsetenv("SDL_AUDIODRIVER");
        ASSERT_TRUE(started);
    }
    // Plays the emulator: delivers a unit whenever the player asks.
    int Serve(milliseconds span) {
        const uint32_t before = deliveries;
        std::vector<uint8_t> unit(kAudioUnitBytes);
        for (const auto end = Clock::now() + span; Clock::now() < end;) {
            if (Byte() == kHandshakeAsk) {
                std::fill(unit.begin(), unit.end(), served++);
                samples.WriteMap(unit.data(), kAudioUnitBytes);
                Answer();
            }
            std::this_thread::sleep_for(1ms);
        }
        return int(deliveries - before);
    }
    std::string Stderr() {
        std::ifstream in(dir->path() / "stderr.txt");
        return std::string((std::istreambuf_iterator<char>(in)), {});
    }
};

// The real player with the dummy driver and without any device: it asks and
// takes units, writes what it plays with --wav, and --stats reports its
// figures when it ends.
TEST_F(Player, PlaysWithOrWithoutADeviceRecordsAndReports) {
    const std::string wav = (dir->path() / "played.wav").string();
    for (const char* driver : {"dummy", "no-such-driver"}) {
        Set(kHandshakeIdle);
        served = 10;
        Start(driver, {"--stats", "--wav", wav});
        int units = 0;
        for (int i = 0; i < 200 && units < 3; ++i) // however slowly the player starts
            units += Serve(50ms);
        EXPECT_EQ(units, 3) << driver;
        std::this_thread::sleep_for(50ms);
        player.Stop();
        EXPECT_NE(Stderr().find("sndpipe: units "), std::string::npos) << Stderr();
        std::ifstream in(wav, std::ios::binary);
        std::vector<uint8_t> data((std::istreambuf_iterator<char>(in)), {});
        ASSERT_GE(data.size(), 44u + kAudioUnitBytes);
        const uint32_t bytes = data[40] | data[41] << 8 | data[42] << 16 | data[43] << 24;
        EXPECT_EQ(bytes, data.size() - 44);
        EXPECT_EQ(data[22], 2);  // stereo
        EXPECT_EQ(data[44], 10); // the first unit
        EXPECT_EQ(data[44 + kAudioUnitBytes], 11);
        EXPECT_LE(bytes / kAudioUnitBytes, static_cast<uint32_t>(units));
    }
    EXPECT_NE(Stderr().find("playing silently"), std::string::npos) << Stderr();
}

} // namespace
} // namespace tvc::test
