// The real audio player against an emulator side played by the test: it
// asks for units with the dummy audio driver, falls back to a silent sink
// when no device opens, records with --wav, and ends with its emulator.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

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
// takes units, writes what it plays with --wav, and --stats reports its
// figures when it ends.
TEST_F(Player, PlaysWithOrWithoutADeviceRecordsAndReports) {
    const std::string wav = (dir->path() / "played.wav").string();
    for (const char* driver : {"dummy", "no-such-driver"}) {
        const uint8_t idle = kHandshakeIdle;
        handshake.WriteMap(&idle, 1);
        served = 10;
        Start(driver, {"--stats", "--wav", wav});
        int units = 0;
        for (int i = 0; i < 200 && units < 3; ++i) // however slowly the player starts
            units += Serve(std::chrono::milliseconds(50));
        EXPECT_EQ(units, 3) << driver;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        Stop();
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

} // namespace
} // namespace tvc::test
