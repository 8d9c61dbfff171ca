// The tone generator, the mix, and delivery to the player over real shared
// maps, the test playing the player's side from inside the emulator's waits.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <unistd.h>

#include "sound/SoundFX.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void SetTone(Machine& m, int pitch, bool on, int volume) {
    m.bus.PortLatch[4] = static_cast<uint8_t>(pitch & 0xFF);
    m.bus.PortLatch[5] = static_cast<uint8_t>((pitch >> 8) | (on ? 0x10 : 0));
    m.bus.PortLatch[6] = static_cast<uint8_t>(volume << 2);
}

// Level events from the slots: held between events and across blocks, at
// five per step; the level path takes pitches above 4,080.
TEST(ToneGenerator, LevelLineHoldsBetweenEventsAndAcrossBlocks) {
    TestMachine t;
    SetTone(t.m(), 0, false, 0);
    auto& slots = t.m().sound.ToneSlots;
    slots[10] = 16 + 15, slots[20] = 16, slots[30] = 16 + 3;
    TvcToneBlock(t.m());
    const int16_t* out = t.m().sound.TvcToneOut;
    const std::pair<int, int> held[] = {{9, 0}, {10, 75}, {19, 75}, {20, 0}, {30, 15}, {440, 15}};
    for (auto [at, level] : held)
        EXPECT_EQ(out[at], level) << at;
    EXPECT_EQ(slots[30], 0); // consumed
    TvcToneBlock(t.m());
    EXPECT_EQ(out[0], 15); // LastDacLevel carries on

    SetTone(t.m(), 4081, true, 15);
    slots[100] = 16 + 9;
    TvcToneBlock(t.m());
    EXPECT_EQ(out[99] * 100 + out[100], 1545);
}

TEST(Mix, WeightsAndEightBitWrap) {
    struct Case {
        int16_t tone, saaL, saaR, sn, ym, ym2, sid, ay;
        uint8_t left, right;
    } cases[] = {
        {100, 0, 0, 0, 0, 0, 0, 0, 178, 178},       // tone at half weight
        {0, 20, -20, 0, 0, 0, 0, 0, 148, 108},      // only the SAA1099 is stereo
        {0, 0, 0, 100, 0, 0, 0, 0, 138, 138},       // SN76489 at a tenth
        {0, 0, 0, 0, 40, 40, 0, 0, 168, 168},       // both FM chips at half
        {0, 0, 0, 0, 0, 0, 35, 0, 132, 132},        // SID 3.5 rounds to even
        {0, 0, 0, 0, 0, 0, 0, 200, 72, 72},         // 328 wraps to 72, no clip
        {105, 120, 120, 0, 0, 0, 0, 100, 144, 144}, // 52.5 + 120 + 100 + 128 = 400.5 -> 400 -> 144
        {0, -200, 0, 0, 0, 0, 0, 0, 184, 128},      // -72 wraps to 184
    };
    for (const Case& k : cases) {
        TestMachine t;
        Machine& m = t.m();
        std::fill(std::begin(m.sound.TvcToneOut), std::end(m.sound.TvcToneOut), k.tone);
        std::fill(std::begin(m.saa.SaaLeft), std::end(m.saa.SaaLeft), k.saaL);
        std::fill(std::begin(m.saa.SaaRight), std::end(m.saa.SaaRight), k.saaR);
        std::fill(std::begin(m.sn.Sn76489Out), std::end(m.sn.Sn76489Out), k.sn);
        std::fill(std::begin(m.ym.Ym3812Out), std::end(m.ym.Ym3812Out), k.ym);
        std::fill(std::begin(m.ym2.Ym2413Out), std::end(m.ym2.Ym2413Out), k.ym2);
        std::fill(std::begin(m.sid.SidOut), std::end(m.sid.SidOut), k.sid);
        std::fill(std::begin(m.ay.AyOut), std::end(m.ay.AyOut), k.ay);
        m.sound.BlockIndex = 3;
        MixBlock(m);
        const size_t at = 3 * 441 * 2 + 440 * 2;
        EXPECT_EQ(m.sound.OutBuffer[at], k.left);
        EXPECT_EQ(m.sound.OutBuffer[at + 1], k.right);
        EXPECT_EQ(m.sound.OutBuffer[0], 0); // other blocks untouched
    }
}

TEST(Mix, SoundMixAdvancesTheBlockWhateverTheCard) {
    for (bool card : {true, false}) {
        TestMachine t;
        t.m().menu.xio2 = card;
        SoundMix(t.m());
        SoundMix(t.m());
        EXPECT_EQ(t.m().sound.BlockIndex, 2);
        EXPECT_EQ(t.m().sound.OutBuffer[441 * 2], 128);
    }
}

// Mono 8-bit at 22,050 Hz as a reader takes it; the block align is always
// written as 2.
TEST(WaveImage, OneSecondOfSilenceWithItsHeader) {
    TestMachine t;
    SoundInit(t.m());
    const auto& w = t.m().sound.WaveImage;
    t.dir->Write("silence.wav", w);
    SF_INFO info{};
    SNDFILE* f = sf_open("silence.wav", SFM_READ, &info);
    ASSERT_NE(f, nullptr) << sf_strerror(nullptr);
    sf_close(f);
    EXPECT_EQ(info.format, SF_FORMAT_WAV | SF_FORMAT_PCM_U8);
    EXPECT_EQ(info.samplerate * 100 + info.channels, 2205001);
    EXPECT_EQ(info.frames, 22050);
    EXPECT_EQ(w[32], 2);
    EXPECT_EQ(w[44], 128);
    EXPECT_EQ(w.back(), 128);
}

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
            if (player.Handshake() == kHandshakeDelivered) {
                ASSERT_TRUE(player.Take(nullptr));
            }
            player.Ask();
        };
        SoundFrame(*m);
        EXPECT_EQ(host.sleeps, r.sleeps) << int(r.before);
        EXPECT_EQ(player.Handshake(), r.after) << int(r.before);
        EXPECT_EQ(m->sound.BlockIndex, r.after == kHandshakeDelivered ? 0 : r.blocks);
    }
}

// Without its template the button stays idle; with it the latest unit is kept.
TEST_F(Link, RecordButtonKeepsTheLatestUnitBehindTheTemplatesHeader) {
    SaaRecordButton(*m);
    EXPECT_EQ(m->forms.Fsaa.Command1Color, 0xFFFFFF);
    ASSERT_EQ(host.messages.size(), 1u);
    EXPECT_EQ(host.messages[0].text, "File not found: techno.wav");
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

} // namespace
} // namespace tvc::test
