// CAS files, snapshots, cartridges and the tape files.
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cmath>
#include <cstring>

#include "core/Numbers.h"
#include "hw/Memory.h"
#include "media/MediaFiles.h"
#include "media/Tape.h"
#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

int32_t MemWord(Machine& m, int32_t a) {
    return m.bus.Mem[size_t(a)] | m.bus.Mem[size_t(a) + 1] << 8;
}

TEST(CasLoad, BodyAndPointersByFileLength) {
    const size_t lengths[] = {0, 143, 144, 145, 1000, size_t(144 + kMemSize - 0x19EF + 50)};
    for (size_t length : lengths) {
        TestMachine t;
        std::vector<uint8_t> file(length);
        for (size_t i = 0; i < length; ++i)
            file[i] = uint8_t(i * 7 + 1);
        LoadCasBytes(t.m(), file, length);
        const int64_t n = int64_t(length) - 144;
        EXPECT_EQ(MemWord(t.m(), 0x1722), 0x19EF);
        EXPECT_EQ(MemWord(t.m(), 0x1726), (n + 0x19EF) & 0xFFFF) << length;
        for (int64_t i = 0; i < n && 0x19EF + i < kMemSize; i += 97)
            ASSERT_EQ(t.m().bus.Mem[size_t(0x19EF + i)], file[size_t(144 + i)]);
        if (n > 0 && 0x19EF + n < kMemSize) { EXPECT_EQ(t.m().bus.Mem[size_t(0x19EF + n)], 0); }
    }
}

TEST(CasSave, HeaderClampsAndBody) {
    struct Case {
        std::string start, end;
        int64_t savedStart, savedEnd;
    };
    const Case cases[] = {{"junk", "7001.5", 6639, 7002},
                          {"100", "7000.5", 6639, 7000},
                          {"6639", "39408", 6639, 39408},
                          {"70000", "99999", 65535, 65535},
                          {"9000", "8000", 9000, 8000}};
    for (const Case& c : cases) {
        TestMachine t;
        for (int32_t a = 0; a < 0x10000; ++a)
            t.m().bus.Mem[size_t(a)] = uint8_t(a ^ (a >> 8));
        t.m().forms.Media.Text6 = c.start;
        t.m().forms.Media.Text7 = c.end;
        const auto f = SaveCasBytes(t.m());
        EXPECT_EQ(t.m().forms.Media.Text6, std::to_string(c.savedStart));
        EXPECT_EQ(t.m().forms.Media.Text7, std::to_string(c.savedEnd));
        const int64_t size = c.savedEnd - c.savedStart, total = size + 144;
        const int64_t blocks = total / 128, hi = blocks / 256, lo = blocks - hi * 256;
        ASSERT_EQ(f.size(), size_t(144 + std::max<int64_t>(size, 0))) << c.start << ":" << c.end;
        EXPECT_EQ(f[0], 0x11);
        EXPECT_EQ(f[2], uint8_t(lo));
        EXPECT_EQ(f[3], uint8_t(hi));
        EXPECT_EQ(f[4], uint8_t(total - (lo & 255) * 128 - (hi & 255)));
        EXPECT_EQ(f[129], 1);
        EXPECT_EQ(f[130], uint8_t(size - size / 256 * 256));
        EXPECT_EQ(f[131], uint8_t(size / 256));
        for (int64_t i = 0; i < size; ++i)
            ASSERT_EQ(f[size_t(144 + i)], t.m().bus.Mem[size_t(c.savedStart + i)]);
    }
}

TEST(CasSave, ProposesBasicPointersThroughPaging) {
    TestMachine t;
    t.m().bus.Mem[0x1720] = 0x34, t.m().bus.Mem[0x1721] = 0x12;
    std::vector<uint8_t> file(144 + 300, 0x5A);
    LoadCasBytes(t.m(), file, file.size());
    xSaveCAS(t.m());
    EXPECT_EQ(t.m().forms.Media.Text6, "6639");
    EXPECT_EQ(t.m().forms.Media.Text7, std::to_string(6639 + 300));
    EXPECT_EQ(t.m().forms.Media.Text8, std::to_string(0x1234));
    const auto saved = SaveCasBytes(t.m());
    EXPECT_TRUE(std::equal(saved.begin() + 144, saved.end(), file.begin() + 144, file.end()));
}

// Every field from a distinct value: the layout, the write order that loses
// A', B', C' and the first three alternate flags, and a load that reads back.
TEST(Snapshot, LayoutAndRoundTrip) {
    TestMachine t;
    Z80& c = t.cpu();
    int32_t Z80::*bytes[] = {&Z80::RegA,  &Z80::RegB,  &Z80::RegC,  &Z80::RegD,  &Z80::RegE,
                             &Z80::RegH,  &Z80::RegL,  &Z80::RegA2, &Z80::RegB2, &Z80::RegC2,
                             &Z80::RegD2, &Z80::RegE2, &Z80::RegH2, &Z80::RegL2};
    for (size_t i = 0; i < std::size(bytes); ++i)
        c.*bytes[i] = int32_t(0x10 + i);
    c.FlagC = c.FlagN = c.FlagP = c.FlagX = c.FlagH = c.FlagY = c.FlagZ = c.FlagS = 1;
    c.FlagC2 = c.FlagN2 = c.FlagP2 = c.FlagX2 = c.FlagH2 = c.FlagY2 = c.FlagZ2 = c.FlagS2 = 1;
    c.RegIX = 0x1234, c.RegIY = 0x5678, c.RegSP = 0x9ABC, c.RegPC = 0xDEF0;
    c.RegI = 0x21, c.RegR = 0x43, c.IFF1 = 1, c.IFF2 = 0, c.IntMode = 2, c.IrqRequest = 1;
    c.Halted = 1;
    for (int i = 0; i < 256; ++i)
        t.m().bus.PortLatch[i] = uint8_t(255 - i);
    for (int i = 0; i < 19; ++i)
        t.m().crtc.CrtcReg[i] = i < 18 ? i * 3 : 22;
    t.m().bus.Mem[kMemSize - 1] = 0xEE;
    t.m().run.RunFlag = 1;

    const auto f = SaveSnapshotBytes(t.m());
    ASSERT_EQ(f.size(), 246360u);
    EXPECT_EQ(std::string(f.begin(), f.begin() + 10), "LUMEKTVC02");
    const size_t lost[] = {26, 27, 28, 41, 42, 43};
    for (size_t at : lost)
        EXPECT_EQ(f[at], 0) << at;
    // A, the last alternate, PC, the mode, a latch, the flags, the CRTC, the memory.
    const std::pair<size_t, int> at[] = {{19, 0x10},
                                         {32, 0x10 + 13},
                                         {61, 0xF0},
                                         {62, 0xDE},
                                         {81, 2},
                                         {99 + 2, 253},
                                         {407, 1},
                                         {415, 1},
                                         {499 + 4 * 17, 51},
                                         {499 + 4 * 18, 22},
                                         {599 + kMemSize - 1, 0xEE}};
    for (auto [offset, value] : at)
        EXPECT_EQ(f[offset], value) << offset;

    TestMachine u;
    ASSERT_TRUE(LoadSnapshotBytes(u.m(), f));
    Z80& d = u.cpu();
    EXPECT_EQ(std::vector<int>({d.RegA2, d.RegB2, d.RegC2, d.RegD2, d.FlagC2, d.FlagN2, d.FlagP2,
                                d.FlagS2, d.RegPC, d.Halted, u.m().crtc.CrtcReg[17]}),
              std::vector<int>({0, 0, 0, c.RegD2, 0, 0, 0, 1, 0xDEF0, 0, 51}));
    EXPECT_EQ(SaveSnapshotBytes(u.m()), f); // save -> load -> save
}

TEST(Snapshot, BadInput) {
    TestMachine t;
    std::vector<uint8_t> random(5000, 0x5A); // anything but the magic
    const int32_t pc = t.cpu().RegPC;
    EXPECT_FALSE(LoadSnapshotBytes(t.m(), random));
    EXPECT_FALSE(LoadSnapshotBytes(t.m(), std::vector<uint8_t>{'L', 'U', 'M'}));
    EXPECT_EQ(t.cpu().RegPC, pc);

    std::vector<uint8_t> shortFile(random);
    std::memcpy(shortFile.data(), "LUMEKTVC02", 10);
    t.m().bus.Mem[0x3000] = 9;
    ASSERT_TRUE(LoadSnapshotBytes(t.m(), shortFile));
    EXPECT_EQ(t.m().bus.Mem[0x3000], 0); // past the end reads as zero
    EXPECT_LE(t.cpu().FlagC, 1);
    EXPECT_LE(t.cpu().RegPC, 0xFFFF);
    std::vector<uint8_t> longFile(300000, 0xFF);
    std::memcpy(longFile.data(), "LUMEKTVC02", 10);
    EXPECT_TRUE(LoadSnapshotBytes(t.m(), longFile));
    EXPECT_EQ(t.m().crtc.CrtcReg[18], 31);

    t.dir->Write("bad.tvs", random);
    EXPECT_FALSE(LoadSnapShot(t.m(), "bad.tvs"));
    ASSERT_FALSE(t.host.messages.empty());
    EXPECT_EQ(t.host.messages.back().text, "Snapshot not valid!");
    EXPECT_EQ(t.host.messages.back().title, "Error");
    EXPECT_FALSE(LoadSnapShot(t.m(), "none.tvs"));
}

TEST(Cartridge, ImagesAndTheExpansion) {
    struct Case {
        std::string name;
        size_t size;
        bool mex;
    };
    const Case cases[] = {{"a8.crt", 8192, false},
                          {"a20.crt", 20480, false},
                          {"MEX4MB.CRT", 20000, false},
                          {"mex4mb.crt", 3 * 16384 + 5, true}};
    for (const Case& c : cases) {
        TestMachine t;
        std::vector<uint8_t> img(c.size);
        for (size_t i = 0; i < c.size; ++i)
            img[i] = uint8_t(i / 16384 * 16 + i % 13 + 1);
        t.dir->Write(c.name, img);
        t.m().run.InstCount = 99;
        ASSERT_TRUE(LoadCRT(t.m(), c.name));
        EXPECT_EQ(t.m().run.InstCount, 0);
        EXPECT_EQ(t.m().forms.Media.UnloadCaption, "Unload: " + c.name);
        EXPECT_EQ(t.m().bus.MexActive, c.mex);
        auto expect = [&](size_t i) { return i < img.size() ? img[i] : 0; };
        if (!c.mex) {
            for (size_t i = 0; i < 16384; i += 511)
                ASSERT_EQ(t.m().bus.Mem[0x14000 + i], expect(i)) << c.name << i;
            continue;
        }
        // The expansion at both windows: P2 bits 3-4 = 1 puts the cartridge
        // at 0x4000... as the memory map says; here read through MexMem.
        for (int page : {0, 1, 2, 3, 200}) {
            t.m().bus.PortLatch[0xA0] = uint8_t(page);
            for (size_t o : {size_t(0), size_t(4), size_t(5), size_t(16383)})
                EXPECT_EQ(detail::CartRead(t.m(), int32_t(o)), expect(size_t(page) * 16384 + o));
        }
        detail::CartWrite(t.m(), 7, 0x99);
        EXPECT_EQ(t.m().bus.MexMem[200 * 16384 + 7], 0x99);
        UnloadCRT(t.m());
        EXPECT_EQ(t.m().forms.Media.UnloadCaption, "Unload");
        EXPECT_FALSE(t.m().bus.MexActive);
        EXPECT_EQ(t.m().bus.MexMem.size(), 4194304u); // kept, no longer used
        ASSERT_TRUE(SaveMex4(t.m()));
        EXPECT_EQ(Slurp("mex4mb.bin").size(), 4194304u);
    }
    TestMachine t;
    EXPECT_FALSE(LoadCRT(t.m(), "missing.crt"));
    EXPECT_FALSE(t.m().FatalStop);
    EXPECT_TRUE(t.m().bus.CartName.empty());
}

std::vector<uint8_t> Wave(std::vector<uint8_t> samples, uint8_t levelByte = 0) {
    samples.insert(samples.begin(), 44, 0); // the header, its last byte the level
    samples[43] = levelByte;
    return samples;
}

uint32_t Le32(const std::string& s, size_t at) {
    uint32_t v = 0;
    for (int i = 3; i >= 0; --i)
        v = v << 8 | uint8_t(s[at + size_t(i)]);
    return v;
}

TEST(TapeInput, SamplesAreByteOver180RoundedHalfToEven) {
    TestMachine t;
    std::vector<uint8_t> bytes;
    for (int b = 0; b < 256; ++b)
        bytes.push_back(uint8_t(b));
    t.dir->Write("in.wav", Wave(bytes, 77));
    ASSERT_TRUE(TapeOpenInput(t.m(), "in.wav"));
    EXPECT_EQ(t.m().tape.TapeLevel, 77); // the rewind's level byte
    for (int b = 0; b < 256; ++b) {
        t.cpu().TStates = b * 300;
        ASSERT_EQ(TapeSample(t.m()), RoundHalfEven(b / 180.0)) << b;
        EXPECT_EQ(t.m().sound.ToneSlots[std::min(b * 300 / 142, 440)],
                  16 + RoundHalfEven(b / 180.0));
    }
    EXPECT_EQ(TapeSample(t.m()), 0); // past the end
    TapeRewind(t.m());
    for (int b = 0; b < 92; ++b)
        TapeSample(t.m());
    EXPECT_EQ(TapeSample(t.m()), 1); // 92 after a rewind: samples begin again at 44
    EXPECT_FALSE(TapeOpenInput(t.m(), "missing.wav"));
    EXPECT_EQ(TapeSample(t.m()), 0);
}

TEST(TapeInput, SixteenBitStereoIsConvertedToEightBitMono) {
    TestMachine t;
    SF_INFO info{};
    info.samplerate = 44100;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* f = sf_open("st.wav", SFM_WRITE, &info);
    ASSERT_NE(f, nullptr);
    // Left and right differ; their mean decides: +20000 is high, -20000 low.
    const short frames[] = {30000, 10000, -30000, -10000, 30000, 10000, -20000, -20000};
    sf_writef_short(f, frames, 4);
    sf_close(f);
    ASSERT_TRUE(TapeOpenInput(t.m(), "st.wav"));
    EXPECT_TRUE(t.m().tape.In.Converted());
    const int expected[] = {1, 0, 1, 0};
    for (int e : expected)
        EXPECT_EQ(TapeSample(t.m()), e);
    EXPECT_EQ(TapeSample(t.m()), 0);
}

TEST(TapeOutput, RunLengthsAndWrap) {
    struct Case {
        int32_t last, now, samples; // samples 0: a pause, nothing written
    };
    const auto runOf = [](int32_t d) { return int32_t(RoundHalfEven(d / 80.0)) + 1; };
    const Case cases[] = {{1000, 1120, runOf(120)},
                          {0, 62000, runOf(62000)},
                          {0, 62001, 0},
                          {62000, 100, runOf(600)},
                          {40000, 39999, 0}};
    for (const Case& c : cases) {
        TestMachine t;
        TapeRecord(t.m(), true);
        ASSERT_TRUE(t.m().tape.Out);
        t.m().tape.TapeLastT = c.last;
        t.m().tape.TapeLevel = kTapeLow;
        t.cpu().TStates = c.now;
        TapeEdge(t.m());
        EXPECT_EQ(t.m().tape.TapeLastT, c.now);
        EXPECT_EQ(t.m().tape.TapePos, 45 + c.samples) << c.last << "->" << c.now;
        TapeRecord(t.m(), false);
        const std::string save = Slurp("save.wav");
        ASSERT_EQ(save.size(), 44u + size_t(c.samples));
        EXPECT_EQ(Le32(save, 4), save.size());
        EXPECT_EQ(Le32(save, 40), save.size() - 44);
        EXPECT_EQ(Le32(save, 24), uint32_t(kTapeSaveRate));
        EXPECT_EQ(std::count(save.begin() + 44, save.end(), char(kTapeHigh)), c.samples);
        const std::string rec = Slurp("record.wav");
        EXPECT_EQ(rec.substr(0, 4), "RIFF");
        EXPECT_EQ(uint8_t(rec[34]), 16); // 16-bit tone blocks
    }
}

TEST(TapeOutput, LevelsAlternateAndMarkTheToneSlot) {
    TestMachine t;
    t.m().tape.TapeLevel = kTapeLow;
    const uint8_t levels[] = {kTapeHigh, kTapeLow, kTapeHigh};
    for (int i = 0; i < 3; ++i) {
        t.cpu().TStates = 1000 * (i + 1);
        TapeEdge(t.m());
        EXPECT_EQ(t.m().tape.TapeLevel, levels[i]);
        EXPECT_EQ(t.m().sound.ToneSlots[1000 * (i + 1) / 142], levels[i] == kTapeHigh ? 17 : 16);
    }
    t.cpu().TStates = 62700; // an overrunning frame: the last slot, and a message
    TapeEdge(t.m());
    EXPECT_EQ(t.m().sound.ToneSlots[440], 16);
    ASSERT_EQ(t.host.messages.size(), 1u);
    EXPECT_EQ(t.host.messages[0].text, "hiba hang");
}

} // namespace
} // namespace tvc::test
