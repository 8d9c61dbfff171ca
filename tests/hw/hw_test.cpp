// The hardware around the processor: the port decoder (what each write
// latches or sets off, what each read returns, the log of ports without a
// device), key codes to matrix bits with the Alt rule, the function keys, the
// keypad's paging calculator and both key queues; the memory map through the
// page table for every page register setting; building the machine from its
// ROM files and the menu, and the warm reset.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <set>

#include "hw/KeyQueue.h"
#include "hw/Keyboard.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

int32_t Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
    return value;
}

// Ports with a latch, ports of a device or status (not latched) and ports
// without a device (latched and logged as "<port>W").
TEST(PortWrites, LatchedDeviceSlotAndUnknownPorts) {
    const struct {
        bool latched, logged;
        std::vector<int> ports;
    } kinds[] = {
        {true, false, {0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0F, 0x18, 0x21, 0x60, 0xA0}},
        {false, false, {0x07, 0x0C, 0x0D, 0x0E, 0x10, 0x11, 0x12, 0x13, 0x14, 0x20, 0x30,
                        0x32, 0x33, 0x34, 0x35, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D, 0x50,
                        0x57, 0x58, 0x5F, 0x71, 0xE0, 0xF8, 0xFD, 0xFE, 0xFF}},
        {true,
         true,
         {0x08, 0x0B, 0x15, 0x17, 0x19, 0x1F, 0x22, 0x2F, 0x31, 0x3E, 0x4F, 0x78, 0x9F, 0xA1, 0xDF,
          0xF9, 0xFC}},
    };
    for (const auto& k : kinds)
        for (int port : k.ports) {
            TestMachine t;
            Out(t.m(), port, 0x81);
            EXPECT_EQ(t.m().bus.PortLatch[port], k.latched ? 0x81 : 0) << port;
            const auto& log = t.m().forms.TScreen.List1;
            EXPECT_EQ(log, k.logged ? std::vector<std::string>{std::to_string(port) + "W"}
                                    : std::vector<std::string>{})
                << port;
        }
    TestMachine t; // numbers above 255 take the default branch
    Out(t.m(), 0x1FE, 0x15);
    EXPECT_EQ(t.m().bus.PortLatch[0], 0x15);
    EXPECT_EQ(t.m().bus.PortLatch[0xFE], 0);

    // The slot lines and port 7 acknowledge: each sets its status bit.
    uint8_t& status = t.m().bus.PortLatch[0x59];
    status = 0x00;
    const struct {
        int port, bit;
    } rows[] = {{0x58, 0}, {0x5D, 1}, {0x5A, 2}, {0x5F, 3}, {0x07, 4}};
    for (const auto& r : rows) {
        Out(t.m(), r.port, 0);
        EXPECT_EQ(status, (2 << r.bit) - 1) << r.port;
    }

    // Ports 0x36 and 0x37 bring in an 8 KB page of sndmx.rom, unlatched.
    std::vector<uint8_t> rom(32768);
    for (size_t i = 0; i < rom.size(); ++i)
        rom[i] = static_cast<uint8_t>(i / 8192 + 1);
    t.dir->Write("sndmx.rom", rom);
    for (int value : {0, 1, 6, 0x37}) {
        Out(t.m(), 0x36 + (value & 1), value);
        EXPECT_EQ(t.m().bus.Mem[0x30000], (value & 3) + 1) << value;
        EXPECT_EQ(t.m().bus.Mem[0x31FFF], (value & 3) + 1) << value;
    }
    EXPECT_EQ(t.m().bus.PortLatch[0x36], 0);
}

// Selecting keeps five bits, data is masked to the register's width, both
// in the caller's value too; reads give the value from R12 up. Numbers 19
// to 31 reach spare entries behind the register file.
TEST(PortWrites, CrtcSelectAndMaskedDataChangeTheCallersValue) {
    TestMachine t;
    EXPECT_EQ(Out(t.m(), 0x70, 0xEC), 0x0C);
    EXPECT_EQ(t.m().bus.PortLatch[0x70], 0x0C);
    EXPECT_EQ(t.m().crtc.CrtcReg[18], 0x0C);

    const int masks[18] = {0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0x1F, 0x7F, 0x7F, 0xF3,
                           0x1F, 0x7F, 0x1F, 0x3F, 0xFF, 0x3F, 0xFF, 0x3F, 0xFF};
    for (int reg = 0; reg < 32; ++reg) {
        if (reg == 18) continue; // the selection itself
        const int mask = reg < 18 ? masks[reg] : 0xFF;
        Out(t.m(), 0x74, reg);
        EXPECT_EQ(Out(t.m(), 0x77, 0xFF), mask) << reg;
        EXPECT_EQ(t.m().crtc.CrtcReg[reg], mask) << reg;
        EXPECT_EQ(PortIn(t.m(), 0x75), reg >= 12 ? mask : 255) << reg;
    }
    EXPECT_EQ(t.m().bus.PortLatch[0x71], 0); // data writes are not latched
    EXPECT_EQ(PortIn(t.m(), 0x70), 255);     // the selection port reads nothing back

    t.Load(0x8000, {0xD3, 0x70}); // OUT (0x70),A: the register itself is masked
    t.cpu().RegA = 0x2E;
    t.Step();
    EXPECT_EQ(t.cpu().RegA, 0x0E);
}

TEST(PortWrites, Port6StampsTheLevelIntoThisMomentsSlotOrStrobesThePrinter) {
    struct Case {
        int32_t frameT;
        int value, slot, stamp;
    } cases[] = {{141, 0xBC, 0, 31}, {142 * 10 + 5, 0x84, 10, 17}, {62600, 0x88, 440, 18}};
    for (const Case& k : cases) {
        TestMachine t;
        t.m().run.FrameT = k.frameT;
        Out(t.m(), 0x06, k.value);
        EXPECT_EQ(t.m().sound.ToneSlots[k.slot], k.stamp) << k.frameT;
        EXPECT_EQ(t.m().bus.PortLatch[0x59] & 0x80, 0x80); // bit 7 set: no strobe
    }
    // Bit 7 clear is the printer strobe: the status shows the printer busy.
    TestMachine t;
    t.m().bus.PortLatch[0x59] = 0xFF;
    Out(t.m(), 0x06, 0x00);
    EXPECT_EQ(t.m().bus.PortLatch[0x59], 0x7F);
    EXPECT_EQ(t.m().bus.PortLatch[6], 0x00);
}

// Each read port at both its numbers: the keyboard row that P3's low bits
// pick (255 past row 10), the status byte with the colour-mode and
// printer-ready bits, the cards' identification, and the tone timer, which
// reads 255 and restarts at the reload of P4 and P5's low bits.
TEST(PortReads, KeyboardStatusCardsToneTimerAndTheLog) {
    TestMachine t;
    Machine& m = t.m();
    m.bus.KeyMatrix[3] = 0x21;
    m.bus.KeyMatrix[10] = 0x80;
    const struct {
        int p3, expect;
    } rows[] = {{0x03, 255 - 0x21}, {0xF3, 255 - 0x21}, {0x0A, 0x7F}, {0x0B, 255}, {0x0F, 255}};
    for (const auto& r : rows) {
        m.bus.PortLatch[3] = static_cast<uint8_t>(r.p3);
        EXPECT_EQ(PortIn(m, 0x58), r.expect) << r.p3;
        EXPECT_EQ(PortIn(m, 0x5C), r.expect) << r.p3;
    }

    m.bus.PortLatch[0x59] = 0x0F;
    EXPECT_EQ(PortIn(m, 0x59), 0x0F | 0x40 | 0x80);
    EXPECT_EQ(m.bus.PortLatch[0x59], 0xCF);
    m.menu.xScreenBW = true;
    EXPECT_EQ(PortIn(m, 0x5D), 0x0F | 0x80);

    const int ids[4] = {255, 254, 243, 242}; // by the cards in slots 0 and 1
    for (int cards = 0; cards < 4; ++cards) {
        m.menu.xio0 = cards & 1;
        m.menu.xio1 = cards & 2;
        EXPECT_EQ(PortIn(m, 0x5A), ids[cards]);
        EXPECT_EQ(PortIn(m, 0x5E), ids[cards]);
    }

    const struct {
        int p4, p5;
        int32_t reload;
    } tones[] = {{0, 0x00, 65536}, {255, 0x0F, 16}, {0x34, 0xF2, (14 * 256 - 0x34) * 16}};
    for (const auto& k : tones) {
        m.bus.PortLatch[4] = static_cast<uint8_t>(k.p4);
        m.bus.PortLatch[5] = static_cast<uint8_t>(k.p5);
        m.run.SoundTimer = 7;
        EXPECT_EQ(PortIn(m, 0x5B), 255);
        EXPECT_EQ(m.run.SoundTimer, k.reload);
    }

    // None of those is logged. Reads of ports without a device answer 255
    // and are logged as "<port>R"; the log clears at 101 read entries, or
    // after 35 on a write.
    auto& list = m.forms.TScreen.List1;
    EXPECT_EQ(PortIn(m, 0x31), 255);
    EXPECT_EQ(PortIn(m, 0x00), 255);
    EXPECT_EQ(list, (std::vector<std::string>{"49R", "0R"}));
    for (int i = 2; i < 101; ++i)
        PortIn(m, 0x31);
    EXPECT_EQ(list.size(), 101u);
    PortIn(m, 0x31);
    EXPECT_EQ(list.size(), 1u);

    list.assign(35, "x");
    Out(m, 0x31, 0);
    EXPECT_EQ(list.size(), 36u);
    Out(m, 0x31, 0);
    EXPECT_EQ(list.size(), 1u);
}

// Each code with a place sets exactly its own bit as port 0x58 reads it,
// no two codes share a place, and every other code is swallowed. Which
// code goes where is checked through the window's key map.
TEST(Keyboard, EachCodeAtItsOwnPlaceTheAltRuleAndFunctionKeys) {
    TestMachine t;
    Machine& m = t.m();
    std::set<std::pair<int, int>> places;
    for (int code = 0; code <= 300; ++code) {
        if (code == 112 || code == 113) continue; // F1 and F2 are commands
        int c = code;
        EXPECT_EQ(PicdKeyDown(m, c, 0), KeyCommand::None);
        const auto at = MatrixPosition(code);
        if (!at) {
            EXPECT_EQ(c, 0) << code;
            continue;
        }
        EXPECT_EQ(c, code);
        EXPECT_TRUE(places.insert({at->row, at->bit}).second) << code;
        m.bus.PortLatch[3] = static_cast<uint8_t>(0x40 | at->row);
        EXPECT_EQ(PortIn(m, 0x58), 255 - (1 << at->bit)) << code;
        PicdKeyUp(m, code, 0);
        EXPECT_EQ(PortIn(m, 0x58), 255) << code;
    }
    EXPECT_EQ(places.size(), 71u); // all of rows 0 to 7, row 8 but bit 7
    for (uint8_t row : m.bus.KeyMatrix)
        EXPECT_EQ(row, 0);

    // Alt alone never reaches the matrix and leaves the code alone; AltGr
    // (Alt with Ctrl) does reach it. F1 and F2 reset unless Alt is held.
    int code = 'A';
    PicdKeyDown(m, code, kAltMask);
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    EXPECT_EQ(code, 'A');
    code = 18;
    PicdKeyDown(m, code, kAltMask | kCtrlMask);
    EXPECT_EQ(m.bus.KeyMatrix[7], 0x01);
    PicdKeyUp(m, 18, kAltMask);
    EXPECT_EQ(m.bus.KeyMatrix[7], 0);

    int f1 = 112, f2 = 113;
    EXPECT_EQ(PicdKeyDown(m, f1, 0), KeyCommand::Reset);
    EXPECT_EQ(PicdKeyDown(m, f2, kShiftMask), KeyCommand::Reset2);
    EXPECT_EQ(f1, 112);
    EXPECT_EQ(PicdKeyDown(m, f1, kAltMask), KeyCommand::None);
    EXPECT_EQ(m.forms.TTools.Label2, 112);
}

// The calculator sets one field of the page register: bits 7-6 (four
// choices), bit 5, bits 4-3 (four choices) or bit 2, leaving the others;
// a choice out of range is held at its ends, a field out of range does nothing.
TEST(Keyboard, PagingCalculatorFields) {
    const struct { int step, choices; } fields[4] = {{64, 4}, {32, 2}, {8, 4}, {4, 2}};
    for (int byte = 0; byte < 256; ++byte)
        for (int field = -1; field <= 4; ++field)
            for (int choice = -1; choice <= 4; ++choice) {
                int want = byte;
                if (field >= 0 && field < 4) {
                    const auto [step, choices] = fields[field];
                    want = (byte & ~((choices - 1) * step)) +
                           std::clamp(choice, 0, choices - 1) * step;
                }
                ASSERT_EQ(PagingCalculator(byte, field, choice), want)
                    << byte << " " << field << " " << choice;
            }
}

// "HE" typed quickly: all four events arrive while the machine waits, and
// each key down waits for the next frame. A command comes back at once;
// clearing drops everything, after which a release passes: no key is held.
TEST(KeyEventQueue, KeysOneFrameApartCommandsAndClearing) {
    TestMachine t;
    Machine& m = t.m();
    KeyEventQueue q;
    q.Push(true, 'H', 0);
    q.Push(false, 'H', 0);
    q.Push(true, 'E', 0);
    q.Push(false, 'E', 0);
    std::vector<std::pair<uint8_t, uint8_t>> seen; // rows 4 (H) and 2 (E) at each frame
    for (int frame = 0; frame < 6; ++frame) {
        m.run.FrameCount = static_cast<uint64_t>(frame);
        q.Pump(m);
        seen.emplace_back(m.bus.KeyMatrix[4] & 0x10, m.bus.KeyMatrix[2] & 0x02);
    }
    const std::vector<std::pair<uint8_t, uint8_t>> expect = {{0x10, 0}, {0x10, 0}, {0, 0},
                                                             {0, 0x02}, {0, 0x02}, {0, 0}};
    EXPECT_EQ(seen, expect);
    EXPECT_TRUE(q.Empty());

    m.run.FrameCount = 10;
    q.Push(true, 112, 0); // F1
    q.Push(true, 'A', 0);
    EXPECT_EQ(q.Pump(m), std::vector<KeyCommand>{KeyCommand::Reset});
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    m.run.FrameCount = 11;
    q.Pump(m);
    EXPECT_EQ(m.bus.KeyMatrix[4], 0x40);
    q.Push(false, 'A', 0);
    q.Clear(m);
    EXPECT_TRUE(q.Empty());
    EXPECT_EQ(m.bus.KeyMatrix[4], 0);
    q.Push(false, 'A', 0);
    q.Pump(m);
    EXPECT_TRUE(q.Empty());
}

// The key queue that types for tvc-headless --type.
TEST(KeyQueue, EachKeyIsHeldThenReleasedWithShiftWhereNeeded) {
    KeyQueue q(10);
    std::string error;
    ASSERT_TRUE(q.PushText("aA", error)) << error; // one key twice: seen up in between
    const FirmwareKey a = *FirmwareKeyFor('a');
    const uint8_t aBit = uint8_t(1 << a.bit), shiftBit = uint8_t(1 << kFirmwareShiftKey.bit);
    ASSERT_EQ(FirmwareKeyFor('A')->row, a.row);

    uint8_t matrix[11] = {};
    const struct {
        uint64_t frame;
        bool aDown, shiftDown;
    } steps[] = {
        {0, false, false},  {9, false, false},  {10, true, false}, {12, true, false},
        {13, false, false}, {15, false, false}, {16, true, true},  {18, true, true},
        {19, false, false}, {40, false, false},
    };
    for (const auto& s : steps) {
        q.OnFrame(s.frame, matrix);
        EXPECT_EQ((matrix[a.row] & aBit) != 0, s.aDown) << "frame " << s.frame;
        EXPECT_EQ((matrix[kFirmwareShiftKey.row] & shiftBit) != 0, s.shiftDown)
            << "frame " << s.frame;
    }
    EXPECT_EQ(q.DoneFrame(), 10u + 2 * KeyQueue::kFramesPerKey);
}

TEST(KeyQueue, EscapesAndUnknownCharacters) {
    const struct {
        const char* text;
        bool ok;
        size_t keys;
    } cases[] = {
        {"a\\nb", true, 3}, {"\\b", true, 1}, {"\\\\", true, 1},
        {"x\n", true, 2},   {"\t", false, 0}, {"ok\x01", false, 0},
    };
    for (const auto& k : cases) {
        KeyQueue q(0);
        std::string error;
        EXPECT_EQ(q.PushText(k.text, error), k.ok) << k.text;
        EXPECT_EQ(q.size(), k.keys) << k.text;
        if (!k.ok) { EXPECT_NE(error.find("no key types"), std::string::npos); }
    }
    EXPECT_EQ(FirmwareKeyFor('\n')->ch, '\r');
    EXPECT_EQ(FirmwareKeyFor('\\')->ch, '\\');
}

// Where a read of `a` comes from, as an offset in Mem: system ROM at
// 0x18000, the cartridge image at 0x14000, video pages 0 to 3 at 0x10000,
// 0x20000, 0x24000 and 0x28000, U0 to U3 at their own addresses (U3 through
// the window at 0 too), the extension ROM at 0x1E000, card 0's ROM pages from
// 0x38000 and RAM from 0x2E000, cards 1 to 3's I/O memory above it.
int32_t ReadsFrom(int p2, int p3, int p15, int p24, int32_t a) {
    const int32_t video[4] = {0x10000, 0x20000, 0x24000, 0x28000};
    if (a < 0x4000) return std::array{0x18000, 0x14000, 0, 0xC000}[p2 >> 3 & 3] + a;
    if (a < 0x8000) return p2 & 0x04 ? video[p15 & 3] + a - 0x4000 : a;
    if (a < 0xC000) return p2 & 0x20 ? a : video[p15 >> 2 & 3] + a - 0x8000;
    switch (p2 >> 6) {
    case 0: return 0x14000 + a - 0xC000;
    case 1: return 0x18000 + a - 0xC000;
    case 2: return a;
    }
    if (a >= 0xE000) return a + 0x10000;
    if (p3 >> 6) return a + 0x20000 + 0x2000 * (p3 >> 6);
    return a >= 0xD000 ? a + 0x21000 : 0x38000 + (p24 >> 4 & 3) * 0x1000 + a - 0xC000;
}

// Every page register value, with and without the 32K option, with each
// video page in each window, card slot and card 0 ROM page (their other bits
// set): a read comes from its place (off the map, 0xFF), and a write changes
// that byte and no other, except into a ROM (dropped) or the I/O memory of
// cards 1 to 3 (a fatal stop).
TEST(MemoryMap, EveryRow) {
    TestMachine t;
    Bus& b = t.m().bus;
    const std::vector<uint8_t> before = b.Mem;
    size_t fatals = 0;
    for (int i = 0; i < 512; ++i) // each page register value without and with 32K
        for (int v = 0; v < 4; ++v) {
            const int p2 = i & 0xFF;
            t.m().menu.x32KB = i > 255; // reads of U2 and U3 give 0, writes still store
            const int p3 = v << 6 | 0x0F, p15 = (3 - v) << 2 | v | 0x30;
            const int p24 = (v + p2) % 4 << 4 | 0x0F; // every page with every slot
            Out(t.m(), 2, p2); // P2 first: each paging port rebuilds the map itself
            Out(t.m(), 3, p3);
            Out(t.m(), 0x0F, p15);
            Out(t.m(), 0x18, p24);
            for (int32_t a : {-1, 0x1234, 0x5678, 0x9ABC, 0xC123, 0xD123, 0xE123, 0x10000}) {
                SCOPED_TRACE(testing::Message() << i << " " << v << " " << std::hex << a);
                const int32_t at = ReadsFrom(p2, p3, p15, p24, a);
                const bool mapped = at >= 0 && at < kMemSize;
                if (mapped) b.Mem[at] = 0xA5;
                const bool cut = i > 255 && ((a >= 0x8000 && a < 0xC000 && (p2 & 0x20)) ||
                                             (a >= 0xC000 && (p2 >> 6) == 2));
                ASSERT_EQ(MemRead(t.m(), a), cut ? 0 : mapped ? 0xA5 : 0xFF);
                const bool io = a >= 0xC000 && (p2 >> 6) == 3;
                const bool rom = (a < 0x4000 && (p2 & 0x18) == 0) ||
                                 (a >= 0xC000 && (p2 >> 6) == 1) ||
                                 (io && (a >= 0xE000 || (v == 0 && a < 0xD000)));
                const bool fatal = io && v != 0 && a < 0xE000;
                MemWrite(t.m(), a, 0x15A); // only the low byte is stored
                if (mapped) {
                    ASSERT_EQ(b.Mem[at], rom || fatal ? 0xA5 : 0x5A);
                    b.Mem[at] = before[at];
                }
                ASSERT_TRUE(b.Mem == before);
                fatals += fatal;
                ASSERT_EQ(t.host.fatals.size(), fatals);
            }
        }
    EXPECT_EQ(t.host.fatals.back().text, " CTL 1-3 IOM write????");
    EXPECT_TRUE(t.m().FatalStop);
    EXPECT_TRUE(t.host.messages.empty());
}

TEST(MemoryMap, VideoErrorHookAtTheWindowAt8000AndTheMex4mbPage) {
    TestMachine t;
    Bus& b = t.m().bus;
    b.VideoErrorEnabled = 1;
    b.PortLatch[2] = 0x04;    // both windows show video
    b.PortLatch[0x0F] = 0x04; // page 1 at 0x8000, page 0 at 0x4000
    MemoryMapChanged(t.m());
    b.Mem[0x10100] = 0x40;
    b.Mem[0x20100] = 0x01;
    EXPECT_EQ(MemRead(t.m(), 0x4100), 0x40); // no hook
    EXPECT_EQ(b.Mem[0x10100], 0x40);
    EXPECT_EQ(MemRead(t.m(), 0x8100), 0x01); // page 1 read as it was...
    EXPECT_EQ(b.Mem[0x10100], 0x77);         // ...but page 0 took the fault

    // The expansion page that port 0xA0 picks, 16 KB long: 0x10000 falls off it.
    b.SetCartName("mex4mb.crt");
    b.MexMem.assign(size_t(kMexPages) * kMexPageSize, 0);
    b.PortLatch[2] = 0x00; // the cartridge at 0xC000
    b.PortLatch[0xA0] = 7;
    MemoryMapChanged(t.m());
    MemWrite(t.m(), 0xC020, 0x34);
    EXPECT_EQ(b.MexMem[7 * kMexPageSize + 0x20], 0x34);
    EXPECT_EQ(MemRead(t.m(), 0x10000), 0xFF);
}

struct Built {
    ScratchDir dir;
    RecordingHost host;
    std::unique_ptr<Machine> m = std::make_unique<Machine>(host);

    // Each ROM file filled with its own marker byte: index in kRomFiles + 1.
    void WriteMarkedRoms() {
        uint8_t marker = 1;
        for (const RomFile& rom : kRomFiles)
            dir.Write(rom.name, std::vector<uint8_t>(size_t(rom.bytesRead), marker++));
    }
    uint8_t At(int32_t offset) const { return m->bus.Mem[offset]; }
};

// Markers: 1 TVC12_D4, 2 TVC12_D3, 3 TVC12_D7, 6 TVC22_D7, 7 hbf.rom in slot
// 0, 9 in slot 3; sndmx.rom's 8 KB pages 0x10-0x13. The other set's D6 is
// short, filled with zeros, and its D4 long, cut.
TEST(MachineInit, RomSetAndCardRomsFollowTheMenu) {
    for (bool other : {false, true}) {
        Built b;
        b.WriteMarkedRoms();
        b.dir.Write("TVC22_D6.rom", {0xAA, 0xBB});
        b.dir.Write("TVC22_D4.rom", std::vector<uint8_t>(9000, 0xCC));
        std::vector<uint8_t> snd(32768);
        for (size_t i = 0; i < snd.size(); ++i)
            snd[i] = static_cast<uint8_t>(0x10 + i / 8192);
        b.dir.Write("sndmx.rom", snd);
        b.m->menu.xBasic = other;
        b.m->menu.xio0 = b.m->menu.xio2 = b.m->menu.xio3 = other;
        MachineInit(*b.m);
        ASSERT_FALSE(b.m->FatalStop);
        EXPECT_EQ(b.At(0x18000), other ? 0xAA : 1);
        EXPECT_EQ(b.At(0x18002), other ? 0 : 1);
        EXPECT_EQ(b.At(0x1A000), other ? 0xCC : 2);
        EXPECT_EQ(b.At(0x1BFFF), other ? 0xCC : 2);
        EXPECT_EQ(b.At(0x1E000), other ? 6 : 3);
        EXPECT_EQ(b.At(0x1FFFF), other ? 6 : 3);
        EXPECT_EQ(b.At(0x1C000), 0); // the gap between system and extension ROM
        EXPECT_EQ(b.At(0x38000), other ? 7 : 0);
        EXPECT_EQ(b.At(0x3BFFF), other ? 7 : 0);
        EXPECT_EQ(b.At(0x30000), other ? 0x13 : 0); // the fourth 8 KB page of sndmx.rom
        EXPECT_EQ(b.At(0x32000), other ? 9 : 0);
        EXPECT_EQ(b.At(0x14000), 0); // no cartridge
    }
}

TEST(MachineInit, MissingRomOrCartridgeIsFatal) {
    const struct {
        const char* file;
        bool xio0, xio2;
        const char* cart;
        const char* text;
    } cases[] = {{"sndmx.rom", false, true, "", "File not found: sndmx.rom"},
                 {nullptr, false, false, "game.crt", "File not found: game.crt"}};
    for (const auto& k : cases) {
        Built b;
        b.WriteMarkedRoms();
        if (k.file) std::filesystem::remove(b.dir.path() / k.file);
        b.m->menu.xio0 = k.xio0;
        b.m->menu.xio2 = k.xio2;
        b.m->bus.SetCartName(k.cart);
        MachineInit(*b.m);
        EXPECT_TRUE(b.m->FatalStop) << k.text;
        ASSERT_EQ(b.host.fatals.size(), 1u);
        EXPECT_EQ(b.host.fatals[0].text, k.text);
        EXPECT_EQ(b.host.fatals[0].title, "Error");
    }
}

// A power cycle clears RAM and the counters and enables the undocumented
// instructions; a warm reset keeps memory and resets the latches.
TEST(MachineReset, PowerCycleClearsRamWarmResetKeepsIt) {
    TestMachine t;
    Machine& m = t.m();
    MemWrite(m, 0x1000, 0x55);
    t.cpu().UndocEnabled = 0;
    m.run.InstCount = 99;
    MachineInit(m);
    m.bus.Mem[0x19000] = 0x66; // the page table follows: system ROM at 0 again
    EXPECT_EQ(MemRead(m, 0x1000), 0x66);
    EXPECT_EQ(m.bus.Mem[0x1000], 0);
    EXPECT_EQ(t.cpu().UndocEnabled, 1);
    EXPECT_EQ(m.run.InstCount, 0);
    EXPECT_EQ(t.cpu().TStates, 0);

    m.bus.Mem[0x1000] = 0x55;
    for (auto& latch : m.bus.PortLatch)
        latch = 0x33;
    MemoryMapChanged(m); // U0 at 0
    for (auto& row : m.bus.KeyMatrix)
        row = 1;
    for (auto& reg : m.crtc.CrtcReg)
        reg = 0x44;
    m.run.FrameT = 1234;
    m.cpu.RegPC = 0x4321; // the processor's own reset is checked with the Z80
    MachineReset(m);
    EXPECT_EQ(m.bus.Mem[0x1000], 0x55);
    EXPECT_EQ(MemRead(m, 0x1000), 0x66);
    EXPECT_EQ(m.bus.PortLatch[0x59], 191);
    EXPECT_EQ(m.bus.PortLatch[5], 255);
    for (int i = 0; i < 256; ++i)
        if (i != 0x59 && i != 5) { EXPECT_EQ(m.bus.PortLatch[i], 0) << i; }
    for (uint8_t row : m.bus.KeyMatrix)
        EXPECT_EQ(row, 0);
    for (int r = 0; r <= 18; ++r)
        EXPECT_EQ(m.crtc.CrtcReg[r], r == 10 ? 32 : 0) << r;
    EXPECT_EQ(m.run.FrameT, 1234);
    EXPECT_EQ(m.cpu.RegPC, 0);
}

} // namespace
} // namespace tvc::test
