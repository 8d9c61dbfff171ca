// The real audio player against an emulator side played by the test: it
// asks for units at the machine's pace with the dummy audio driver, falls
// back to a silent sink when no device opens, records with --wav, and a
// missing player is stood in for so that deliveries still go on.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

#include "links/AudioCompanion.h"
#include "sound/SoundFX.h"
#include "support/TestMachine.h"

extern char** environ;

namespace tvc::test {
namespace {

using Clock = std::chrono::steady_clock;

struct Player : ::testing::Test {
    std::unique_ptr<ScratchDir> dir;
    MMapper samples, handshake;
    pid_t pid = -1;
    uint8_t served = 0; // the fill of the next unit

    void SetUp() override {
        TagSharedMemory("sp");
        dir = std::make_unique<ScratchDir>();
        ASSERT_TRUE(samples.CreateMap(kSampleMapName, kAudioUnitBytes));
        ASSERT_TRUE(handshake.CreateMap(kHandshakeMapName, 1));
    }
    void TearDown() override { Stop(); }

    void Start(const std::string& driver, std::vector<std::string> args = {}) {
        setenv("SDL_AUDIODRIVER", driver.c_str(), 1);
        std::vector<std::string> all = {TVC_SNDPIPE_BIN};
        all.insert(all.end(), args.begin(), args.end());
        std::vector<char*> argv;
        for (auto& a : all)
            argv.push_back(a.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t fa;
        posix_spawn_file_actions_init(&fa);
        const std::string log = (dir->path() / "stderr.txt").string();
        posix_spawn_file_actions_addopen(&fa, 2, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ASSERT_EQ(posix_spawn(&pid, TVC_SNDPIPE_BIN, &fa, nullptr, argv.data(), environ), 0);
        posix_spawn_file_actions_destroy(&fa);
        unsetenv("SDL_AUDIODRIVER");
    }
    void Stop() {
        if (pid > 0) {
            kill(pid, SIGTERM);
            waitpid(pid, nullptr, 0);
            pid = -1;
        }
    }
    // Plays the emulator: delivers a unit whenever the player asks.
    int Serve(std::chrono::milliseconds span, uint8_t fill = 128) {
        int delivered = 0;
        const auto end = Clock::now() + span;
        if (served == 0) served = fill;
        std::vector<uint8_t> unit(kAudioUnitBytes);
        while (Clock::now() < end) {
            uint8_t b = 0;
            handshake.ReadMap(&b, 1);
            if (b == kHandshakeAsk) {
                std::fill(unit.begin(), unit.end(), served++);
                samples.WriteMap(unit.data(), kAudioUnitBytes);
                const uint8_t two = kHandshakeDelivered;
                handshake.WriteMap(&two, 1);
                ++delivered;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return delivered;
    }
    std::string Stderr() {
        std::ifstream in(dir->path() / "stderr.txt");
        return std::string((std::istreambuf_iterator<char>(in)), {});
    }
};

// The real player with the dummy driver and without any device: it asks and
// takes units, and --stats reports its figures when it ends.
TEST_F(Player, PlaysWithOrWithoutADeviceAndReports) {
    for (const char* driver : {"dummy", "no-such-driver"}) {
        const uint8_t idle = kHandshakeIdle;
        handshake.WriteMap(&idle, 1);
        Start(driver, {"--stats"});
        int units = 0;
        for (int i = 0; i < 100 && units < 3; ++i)
            units += Serve(std::chrono::milliseconds(50));
        EXPECT_EQ(units, 3) << driver;
        Stop();
        EXPECT_NE(Stderr().find("sndpipe: units "), std::string::npos) << Stderr();
    }
    EXPECT_NE(Stderr().find("playing silently"), std::string::npos) << Stderr();
}

TEST_F(Player, WritesWhatItPlaysToAWaveFile) {
    const std::string wav = (dir->path() / "played.wav").string();
    Start("dummy", {"--wav", wav});
    int units = Serve(std::chrono::milliseconds(1), 10);
    for (int i = 0; i < 200 && units < 2; ++i) // however slowly the player starts
        units += Serve(std::chrono::milliseconds(50), 10);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    Stop();
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

TEST_F(Player, EndsWithItsEmulator) {
    // A middle process starts the player, tells its pid and ends at once.
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    const pid_t middle = fork();
    if (middle == 0) {
        Start("dummy");
        [[maybe_unused]] ssize_t n = write(fds[1], &pid, sizeof pid);
        _exit(0);
    }
    pid_t player = -1;
    ASSERT_EQ(read(fds[0], &player, sizeof player), ssize_t(sizeof player));
    waitpid(middle, nullptr, 0);
    bool gone = false;
    for (int i = 0; i < 150 && !gone; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        gone = kill(player, 0) != 0;
    }
    EXPECT_TRUE(gone);
    close(fds[0]);
    close(fds[1]);
}

// The emulator's own stand-in when the player cannot be started.
class CompanionHost : public RecordingHost {
  public:
    AudioCompanion* audio = nullptr;
    Machine* machine = nullptr;
    void Sleep(int ms) override {
        audio->ServeWait(machine->sound.MMDemo, machine->sound.MMDemo2, machine->sound.Deliveries);
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    }
};

TEST(AudioCompanion, MissingPlayerIsStoodInForAtTheSamePace) {
    TagSharedMemory("ac");
    ScratchDir dir;
    CompanionHost host;
    AudioCompanion companion;
    host.audio = &companion;
    EXPECT_FALSE(companion.Start((dir.path() / "no-such-player").string()));
    auto m = std::make_unique<Machine>(host);
    host.machine = m.get();
    ASSERT_TRUE(SoundMapsCreate(*m));
    // Another map of the same names must not confuse the stand-in.
    MMapper intruder;
    ASSERT_TRUE(intruder.CreateMap(kHandshakeMapName, 1));
    const auto start = Clock::now();
    for (int i = 0; i < 5; ++i) {
        m->sound.BlockIndex = 5;
        SoundFrame(*m);
    }
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
    EXPECT_GE(ms, 350); // five deliveries at one every 100 ms
    EXPECT_LE(ms, 2000);
}

} // namespace
} // namespace tvc::test
