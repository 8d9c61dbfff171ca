// The built-in monitor ROM, run end to end through tvc-headless over the
// built ROMs: start-up, the commands, bad input, the test pictures and the
// cartridge start. The text screen is read back out of a screenshot by
// matching each cell against the glyphs of firmware/font.txt.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "FirmwareText.h"
#include "support/Headless.h"
#include "support/WavProbe.h"

namespace tvc::test {
namespace {

// Runs tvc-headless in the directory of the built ROMs with these options.
RunResult RunMonitor(const std::string& args) {
    return RunHeadless(std::string("--dir ") + TVC_FIRMWARE_DIR + " " + args);
}

const firmware::Font& MonitorFont() {
    static const firmware::Font font = [] {
        std::ifstream in(std::string(TVC_FIRMWARE_SRC) + "/font.txt");
        std::string error;
        auto f = firmware::ParseFont(in, error);
        return f ? *f : firmware::Font{};
    }();
    return font;
}

// Where the monitor's picture stands in the 640 x 576 window: 512 x 480 at
// (64, 48), each video line painted on two window lines.
constexpr int kPicLeft = 64, kPicTop = 48, kCols = 64, kRows = 24;

// The character in a cell: the glyph whose pixels it shows exactly, drawn
// plain or inverted (the cursor); '\0' for none.
char CellChar(const Shot& s, int row, int col) {
    const firmware::Font& font = MonitorFont();
    for (int inverted = 0; inverted < 2; ++inverted)
        for (int code = 0x20; code < 0x7F; ++code) {
            const firmware::Glyph& g = font.Of(code);
            bool same = true;
            for (int line = 0; line < firmware::kGlyphLines && same; ++line)
                for (int px = 0; px < 8 && same; ++px) {
                    const bool want = ((g[line] >> (7 - px)) & 1) != inverted;
                    const int y = row * firmware::kGlyphLines + line; // in video lines
                    same = s.Lit(kPicLeft + col * 8 + px, kPicTop + 2 * y) == want;
                }
            if (same) return char(code);
        }
    return '\0';
}

// The text screen, rows with trailing blanks removed; cells that match no
// glyph read as '?'.
std::vector<std::string> ScreenText(const Shot& s) {
    std::vector<std::string> rows;
    for (int r = 0; r < kRows; ++r) {
        std::string text;
        for (int c = 0; c < kCols; ++c) {
            const char ch = CellChar(s, r, c);
            text += ch ? ch : '?';
        }
        text.erase(text.find_last_not_of(' ') + 1);
        rows.push_back(text);
    }
    return rows;
}

// Runs the monitor with these options and returns its screenshot.
Shot Picture(const ScratchDir& dir, const std::string& args) {
    const std::string shot = (dir.path() / "shot.png").string();
    const RunResult r = RunMonitor(args + " --screenshot " + shot);
    EXPECT_EQ(r.status, 0) << r.out;
    Shot s(shot);
    EXPECT_TRUE(s.ok && s.width == 640 && s.height == 576);
    return s;
}

// The same as its text screen.
std::vector<std::string> Screen(const ScratchDir& dir, const std::string& args) {
    const Shot s = Picture(dir, args);
    return s.ok ? ScreenText(s) : std::vector<std::string>(kRows);
}

// The start-up screen within 2 emulated seconds, every cell exactly a glyph
// of the monitor's font (the cursor's, which blinks, plain or inverted),
// with the RAM found in either ROM set.
TEST(Monitor, BootsToThePromptWithinTwoSeconds) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "64K"}, {"--set x32KB=1", "32K"}, {"--set xBasic=1", "64K"}}; // the other ROM set
    for (auto [sets, ram] : cases) {
        ScratchDir dir;
        std::vector<std::string> want(kRows);
        want[0] = "TVMON 1.0 system monitor, " + std::string(ram) + " RAM";
        want[1] = "Type HELP for the list of commands.";
        want[2] = ">"; // rows are read without trailing blanks
        EXPECT_EQ(Screen(dir, std::string("--frames 100 ") + sets), want) << sets;
    }
}

// POKE a program that stores a byte, GO runs it, MEM shows the byte; the
// memory dump confirms it. Small letters work as well as capitals.
TEST(Monitor, PokeGoAndMemRoundTrip) {
    ScratchDir dir;
    const std::string mem = (dir.path() / "mem.bin").string();
    // LD A,0x5A; LD (0x5000),A; LD HL,0x5001; INC (HL); RET
    const auto rows = Screen(dir, "--frames 1 --type 'poke 4000 3E 5A 32 00 50 21 01 50 34 c9\\n"
                                  "GO 4000\\nMEM 5000\\nmem\\n' --dump-mem 0x5000:2:" +
                                      mem);
    EXPECT_EQ(Slurp(mem), std::string("\x5A\x01", 2));
    EXPECT_EQ(rows[5], "5000  5A 01 00 00 00 00 00 00  Z.......");
    EXPECT_EQ(rows[14], "5040  00 00 00 00 00 00 00 00  ........") << "MEM goes on";
}

TEST(Monitor, BadInputPrintsAnErrorAndReturnsToThePrompt) {
    const struct {
        const char* line;
        const char* error;
    } cases[] = {
        {"FROB", "? Unknown command"},
        {"MEM 12345", "? Bad number"},
        {"POKE 4000 1 100", "? Bad number"},
        {"GO", "? Missing argument"},
        {"CLS 1", "? Too many arguments"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJKLMNOP", "? Line too long"},
    };
    std::string typed;
    for (const auto& k : cases)
        typed += std::string(k.line) + "\\n";
    ScratchDir dir;
    const std::string mem = (dir.path() / "mem.bin").string();
    const auto rows = Screen(dir, "--frames 1 --type '" + typed + "' --dump-mem 0x4000:1:" + mem);
    // Under the banner each command, its error, and the prompt again.
    const int n = int(std::size(cases));
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(rows[3 + 2 * i], cases[i].error) << cases[i].line;
    EXPECT_EQ(rows[2 + 2 * n], ">");
    EXPECT_EQ(Slurp(mem), std::string(1, '\0')) << "a refused POKE stores nothing";
}

// HELP lists the commands. Backspace takes back the last character, and
// characters typed past the end of the line first of all.
TEST(Monitor, HelpAndBackspace) {
    ScratchDir dir;
    const std::string tooLong(64, 'X');
    const auto rows = Screen(dir, "--frames 1 --type 'HELX\\bP\\n" + tooLong + "\\b\\b\\b\\n'");
    EXPECT_EQ(rows[2], "> HELP");
    EXPECT_EQ(rows[3], "Commands (numbers are hexadecimal):");
    std::string listed;
    for (int r = 4; r < 14; ++r)
        listed += rows[r].substr(0, 8) + "|";
    EXPECT_EQ(listed, "  HELP  |  CLS   |  MEM [a|  POKE a|  GO add|  BEEP  |  COLOR |  MODE 2|"
                      "  TSAVE |  TLOAD |");
    EXPECT_EQ(rows[14], "> " + std::string(61, 'X'));
    EXPECT_EQ(rows[15], "? Unknown command") << "the hidden characters taken back, the line is run";
}

// Every character of the layout, typed through --type, comes out on the
// screen: the runner and the ROM read the same key table.
TEST(Monitor, EveryPrintableCharacterCanBeTyped) {
    std::string all;
    for (char c = 0x21; c < 0x7F; ++c)
        all += c;
    const std::string first = all.substr(0, 47), second = all.substr(47);
    std::string typed;
    for (const std::string& part : {first, second}) {
        for (char c : part) {
            if (c == '\'')
                typed += "'\\''"; // through the shell's single quotes
            else if (c == '\\')
                typed += "\\\\";
            else
                typed += c;
        }
        typed += "\\n";
    }
    ScratchDir dir;
    const auto rows = Screen(dir, "--frames 1 --type '" + typed + "'");
    EXPECT_EQ(rows[2], "> " + first);
    EXPECT_EQ(rows[4], "> " + second);
}

TEST(Monitor, ColorSetsTextPaperAndBorder) {
    ScratchDir dir;
    // Colour numbers: 1 blue, 2 red, 4 green, 8 bright.
    const Shot s = Picture(dir, "--frames 1 --type 'COLOR E 0 A\\n'");
    ASSERT_TRUE(s.ok);
    EXPECT_EQ(s.At(10, 10), 0xFF0000u) << "border: bright red";
    EXPECT_EQ(s.At(kPicLeft + 300, kPicTop + 400), 0x000000u) << "paper: black";
    // The 'T' of the banner: its top bar, in bright yellow (two-colour levels).
    EXPECT_EQ(s.At(kPicLeft + 2, kPicTop + 2), 0xF8E000u);
}

// MODE shows its test picture until a key is pressed, then the text screen
// comes back cleared (one way out for every mode).
TEST(Monitor, ModeShowsATestPictureInEachMode) {
    struct Probe {
        int x, y; // window pixels
        uint32_t rgb;
    };
    const struct {
        const char* mode;
        std::vector<Probe> probes;
    } cases[] = {
        {"2", {{64, 48, 0xF8E0FE}, {64 + 16, 48, 0x00007F}}},
        {"4", {{64 + 64, 200, 0x000000}, {64 + 448, 200, 0x0000FE}}},
        {"16", {{64 + 144, 200, 0x008000}, {64 + 496, 200, 0xFFFFFF}}},
    };
    ScratchDir dir;
    for (const auto& k : cases) {
        const Shot s = Picture(dir, std::string("--frames 1 --type 'MODE ") + k.mode + "\\n'");
        ASSERT_TRUE(s.ok);
        for (const Probe& p : k.probes)
            EXPECT_EQ(s.At(p.x, p.y), p.rgb) << "MODE " << k.mode << " at " << p.x << "," << p.y;
    }
    EXPECT_EQ(Screen(dir, "--frames 1 --type 'MODE 16\\n '")[0], ">");
}

// BEEP sounds the tone generator at pitch 0xF3D: 195312.5 / 195 = 1002 Hz,
// for 15 frames, and is silent again afterwards.
TEST(Monitor, BeepSoundsAOneKilohertzTone) {
    ScratchDir dir;
    const RunResult r =
        RunMonitor("--frames 1 --type 'BEEP\\n' --audio " + (dir.path() / "beep.wav").string());
    ASSERT_EQ(r.status, 0) << r.out;
    const WavProbe wav(dir.path() / "beep.wav");
    const auto loud = [](uint8_t s) { return std::abs(s - 128) > 20; };
    const auto first = std::find_if(wav.samples.begin(), wav.samples.end(), loud);
    const auto last = std::find_if(wav.samples.rbegin(), wav.samples.rend(), loud).base();
    ASSERT_LT(first, last) << "no tone in the recording";
    const double from = double(first - wav.samples.begin()) / WavProbe::kRate;
    const double length = double(last - first) / WavProbe::kRate;
    EXPECT_NEAR(length, 0.3, 0.03) << "15 frames";
    EXPECT_NEAR(wav.Window(from, length).Frequency(), 1002.0, 10.0);
    EXPECT_LT(std::abs(wav.samples.back() - 128), 20);
}

// A cartridge that starts with "TVMC" runs from 0xC004 instead of the
// prompt; one that returns gets the monitor; one without the signature
// is left alone.
TEST(Monitor, StartsASignedCartridge) {
    // LD A,0x42; LD (0x5000),A, then: LD HL,0xC010; RST 18h; HALT; JR -3 with
    // "CART OK" at 0xC010, or RET.
    const std::vector<uint8_t> store = {0x3E, 0x42, 0x32, 0x00, 0x50};
    const std::vector<uint8_t> prints = {0x21, 0x10, 0xC0, 0xDF, 0x76, 0x18, 0xFD, 'C',
                                         'A',  'R',  'T',  ' ',  'O',  'K',  0};
    const struct {
        const char *signature, *row0;
        std::vector<uint8_t> then;
        char marker;
    } cases[] = {
        {"TVMC", "CART OK", prints, 0x42},
        {"TVMC", "TVMON 1.0 system monitor, 64K RAM", {0xC9}, 0x42},
        {"TVMX", "TVMON 1.0 system monitor, 64K RAM", {0x76}, 0},
    };
    for (const auto& k : cases) {
        ScratchDir dir;
        std::vector<uint8_t> image(16384, 0xFF);
        std::copy(k.signature, k.signature + 4, image.begin());
        std::copy(store.begin(), store.end(), image.begin() + 4);
        std::copy(k.then.begin(), k.then.end(), image.begin() + 4 + long(store.size()));
        dir.Write("cart.bin", image);
        const std::string mem = (dir.path() / "mem.bin").string();
        const auto rows = Screen(dir, "--frames 100 --cart " + (dir.path() / "cart.bin").string() +
                                          " --dump-mem 0x5000:1:" + mem);
        EXPECT_EQ(rows[0], k.row0) << k.signature;
        EXPECT_EQ(Slurp(mem), std::string(1, k.marker)) << k.signature;
    }
}

} // namespace
} // namespace tvc::test
