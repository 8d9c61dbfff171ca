// Delivery of the units to the player over real shared maps. The test plays
// the player's side from inside the emulator's waits (the host's Sleep).
#include <gtest/gtest.h>

#include <unistd.h>

#include <fstream>
#include <functional>

#include "sound/SoundFX.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

class PlayerHost : public RecordingHost {
  public:
    std::function<void(int)> onSleep;
    int sleeps = 0;
    void Sleep(int) override {
        ++sleeps;
        if (onSleep) onSleep(sleeps);
    }
};

struct Link : ::testing::Test {
    std::unique_ptr<ScratchDir> dir;
    PlayerHost host;
    std::unique_ptr<Machine> m;
    AudioConsumer player;

    void SetUp() override {
        TagSharedMemory("dl");
        dir = std::make_unique<ScratchDir>();
        m = std::make_unique<Machine>(host);
        ASSERT_TRUE(SoundMapsCreate(*m));
        ASSERT_TRUE(player.Open());
        for (size_t i = 0; i < sizeof m->sound.OutBuffer; ++i)
            m->sound.OutBuffer[i] = static_cast<uint8_t>(i * 7);
        m->sound.BlockIndex = 5;
    }
    void SetHandshake(uint8_t b) { m->sound.MMDemo2.WriteMap(&b, 1); }
};

TEST_F(Link, AskingPlayerGetsTheUnitAtOnce) {
    player.Ask();
    SoundFrame(*m);
    EXPECT_EQ(host.sleeps, 0);
    EXPECT_EQ(player.Handshake(), kHandshakeDelivered);
    uint8_t unit[kAudioUnitBytes];
    ASSERT_TRUE(player.Take(unit));
    EXPECT_EQ(unit[1], 7);
    EXPECT_EQ(unit[4409], static_cast<uint8_t>(4409 * 7));
    EXPECT_EQ(m->sound.BlockIndex, 0);
    EXPECT_EQ(m->forms.Fsaa.Label11, "5");
}

// The frame waits while the player has not asked or not taken the last
// unit; it returns with blocks missing and gives up on a byte it does not know.
TEST_F(Link, WaitsByHandshakeAndBlocks) {
    const struct {
        uint8_t before;
        int blocks, actAt, sleeps;
        uint8_t after;
    } rows[] = {
        {kHandshakeIdle, 5, 3, 3, kHandshakeDelivered},
        {kHandshakeDelivered, 5, 5, 5, kHandshakeDelivered},
        {kHandshakeIdle, 4, 1, 0, kHandshakeIdle},
        {7, 5, 1, 0, 7},
    };
    for (const auto& r : rows) {
        SetHandshake(r.before);
        m->sound.BlockIndex = r.blocks;
        host.sleeps = 0;
        host.onSleep = [&](int n) {
            if (n != r.actAt) return;
            if (player.Handshake() == kHandshakeDelivered) ASSERT_TRUE(player.Take(nullptr));
            player.Ask();
        };
        SoundFrame(*m);
        EXPECT_EQ(host.sleeps, r.sleeps) << int(r.before);
        EXPECT_EQ(player.Handshake(), r.after) << int(r.before);
        EXPECT_EQ(m->sound.BlockIndex, r.after == kHandshakeDelivered ? 0 : r.blocks);
    }
}

TEST_F(Link, MaxPaceNeitherWaitsNorDelivers) {
    m->menu.xS6 = true;
    int tapped = 0;
    m->sound.DeliveryTap = [&](const uint8_t*, size_t bytes) { tapped += static_cast<int>(bytes); };
    SoundFrame(*m);
    EXPECT_EQ(host.sleeps, 0);
    EXPECT_EQ(player.Handshake(), kHandshakeIdle);
    EXPECT_EQ(tapped, kAudioUnitBytes);
}

TEST_F(Link, SilentSinkTakesOneUnitEvery100Ms) {
    SilentSink sink(player);
    auto now = std::chrono::steady_clock::time_point{} + std::chrono::hours(1);
    int taken = 0;
    for (int ms = 0; ms < 1000; ++ms) {
        if (sink.Step(now + std::chrono::milliseconds(ms))) ++taken;
        if (player.Handshake() == kHandshakeAsk) { // the emulator answers at once
            m->sound.BlockIndex = 5;
            SoundFrame(*m);
        }
    }
    EXPECT_GE(taken, 9);
    EXPECT_LE(taken, 10);
}

TEST_F(Link, RecordButtonKeepsTheLatestUnitBehindTheTemplatesHeader) {
    std::vector<uint8_t> techno(44 + 10000, 0x55);
    dir->Write("techno.wav", techno);
    SaaRecordButton(*m);
    EXPECT_EQ(m->forms.Fsaa.Command1Color, 255);
    for (int i = 0; i < 2; ++i) {
        player.Ask();
        m->sound.OutBuffer[0] = static_cast<uint8_t>(0xA0 + i);
        m->sound.BlockIndex = 5;
        SoundFrame(*m);
        player.Take(nullptr);
    }
    SaaRecordButton(*m);
    EXPECT_EQ(m->forms.Fsaa.Command1Color, 0xFFFFFF);
    std::ifstream in(dir->path() / "record.wav", std::ios::binary);
    std::vector<uint8_t> rec((std::istreambuf_iterator<char>(in)), {});
    ASSERT_EQ(rec.size(), techno.size());
    EXPECT_EQ(rec[43], 0x55);
    EXPECT_EQ(rec[44], 0xA1);
    EXPECT_EQ(rec[44 + 4410], 0x55);
    EXPECT_TRUE(std::filesystem::exists(dir->path() / "saa.dat"));
    EXPECT_EQ(std::filesystem::file_size(dir->path() / "saa.dat"), 0u);
}

TEST_F(Link, RecordButtonWithoutTemplateStaysIdle) {
    SaaRecordButton(*m);
    EXPECT_EQ(m->forms.Fsaa.Command1Color, 0xFFFFFF);
    ASSERT_EQ(host.messages.size(), 1u);
    EXPECT_EQ(host.messages[0].text, "File not found: techno.wav");
}

} // namespace
} // namespace tvc::test
