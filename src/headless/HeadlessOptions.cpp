#include "headless/HeadlessOptions.h"

#include <algorithm>
#include <string_view>

#include "asm/PicImport.h"
#include "core/ControlItems.h"
#include "core/MenuState.h"

namespace tvc::headless {

const char* const kUsage = R"(Usage: tvc-headless [options]

Runs the TV Computer without a window, at "Max" pace, and reports its state.

Machine set-up (applied in this order):
  --dir DIR              working directory; ROM files are read from it
  --set NAME=0|1         set a menu check mark before the machine is built
                         (xBasic, x32KB, xio0..xio3, xUnDoc, xS6, xScreenBW, ...);
                         xUnDoc takes effect as its menu command does, after start
  --cart FILE            load a 16 KB cartridge image (a path relative to --dir)
  --control FORM.NAME[(i)]=V
                         set a chip panel's control before the run, element i
                         of a control array (Fsaa.Check2=1 "Manual",
                         Fsaa.Check11=0 "patch", FSN76489.Check3=1, ...);
                         with "Manual" set the SAA1099 and SN76489 panels'
                         timers write their controls into the chip every
                         fifth frame (Fsaa.HScroll4(0)=33, FSN76489.HScroll4(0)=15)
  --sid-file FILE        the SID plays FILE, a dump in the working directory,
                         as the panel's option ("SIDX" for .sidx, "DMP" for
                         .dmp) and a click on the file in its list do
  --ym-direct FILE       tick the YM3812's "Direct I/O port:" box and log its
                         writes to FILE, one line each: frame, T-state in the
                         frame, port, value (decimal; ports Text2 and Text2 + 1)
  --tape-in FILE         open FILE as the tape input, as the deck's file list
                         does ("load.wav" is opened before it in any case);
                         a wave that is not 8-bit mono is converted on opening
  --load-snap FILE       load a snapshot (.tvs)
  --port N=V             set PortLatch[N] after reset
  --load-bin FILE        load a file into memory from index 0 (at most 65536 bytes)
  --load-cas FILE        load a CAS file into BASIC's program area
  --poke ADDR=VAL        write a byte through the memory map
  --asm FILE             assemble FILE as the workbench's "Compile" button does
                         (paging latch 0xB0 during the passes, then restored);
                         the bytes go into memory through the memory map
  --asm-after N          assemble at frame N instead (after --reg), so that a
                         booting ROM cannot overwrite the code; --steps and
                         --frames count from there
  --asm-run              then press the workbench's RUN button: RegPC = 10000
  --asm-listing FILE|-   per source line its address (hex) and normal form
  --asm-symbols FILE|-   the symbol list: name in 22 columns, then its value
  --import-pic BUTTON:FILE[:H]
                         import a picture (.bmp, .jpg, .gif, .png) as the
                         workbench's button CommandBUTTON does (9 "LOAD PIC 2",
                         10 and 16 the 4- and 16-colour with the mode set,
                         17 to 20 without), threshold offset H in -128..127
                         (default 0); a file that cannot be decoded gives
                         "File Open error!" and exit status 1
  --import-after N       import the pictures at frame N instead, once the ROM
                         has set up its screen; --steps and --frames count
                         from there
  --reg NAME=V           set a register, flag or line by its --dump-regs name
                         (RegPC=0x100, FlagC=1, IFF1=1, ...)
  --disk FILE            load a disk image into drive 0, after "default.dsk"
                         (--set xio0=1 adds the floppy card's ROM)
Running:
  --steps N              run exactly N instructions
  --frames N             run N frames (62,500 T-states each)
                         A run also ends when the program stops the machine.
  --type TEXT            type TEXT on the keyboard, keys as the built-in monitor
                         lays them out: \n is Enter, \b Backspace, \\ a
                         backslash; Shift is held where a character needs it.
                         Each key is held down for 3 frames and then released
                         for 3 (6 frames, 0.12 s, a key). The run lasts --frames
                         N frames or until the text is typed and 50 frames more
                         have passed, whichever is later.
  --type-after N         frame at which typing begins (default 100, 2 s: time
                         for the monitor to start)
  --tape-out FILE.wav    tick the tape's Record box for the run and copy the
                         tape output "save.wav" to FILE.wav after it
Output, after the run:
  --save-cas FILE        save a CAS file of BASIC's program, as "Save cas"
  --cas-range START:END  the range --save-cas saves (default: BASIC's pointers)
  --save-snap FILE       save a snapshot
  --save-mex FILE        save the MEX4MB expansion's 4 MB
  --dump-regs FILE|-     the processor state, clocks and tape state as a JSON object
  --dump-mem ADDR:LEN:FILE
                         LEN bytes from ADDR, read through the memory map
  --screenshot FILE.png  the main window's picture as last painted: the
                         border with the TVC picture at its place, 640 x 576
                         pixels (pictures are painted at two frame ends in five)
  --audio FILE.wav       record the machine's sound as it would reach the audio
                         player: 22,050 Hz stereo 8-bit, 100 ms per 5 frames
  --disasm ADDR:LINES    the disassembly of LINES instructions from ADDR, on stdout
  --dump-hw FILE|-       the hardware monitor's fields by group and caption, the
                         floppy controller's registers and drives and the disk's
                         boot record, as a JSON object
  --dump-fdc-log FILE|-  the floppy command log, its title and one line an entry
  --serial-out FILE      every byte the program wrote to the serial port (0x20)
  --printer-out FILE     the printer's text as printed (upper codes translated
                         to code page 852, codes from 160 as '.')
Links:
  --serial-in FILE       put the file's bytes into the serial card's receive
                         queue before the run (read through port 0x20)
  --serial-bridge [LINK] start the serial bridge LUMEKserial for the run, its
                         pty linked as LINK (default serial.pty), and serve
                         the serial link once a frame
  --errorsim video=0|1,option=N,bits=B,banks=XXXX
                         the error simulator's controls, each part optional:
                         video fault enabled, option 0 bit=0, 1 bit=1,
                         2 bit=Random, the bits hit (0..255), and four 0/1
                         for the banks 0000, 4000, 8000, C000 filled with 0xAA
Workbench tools (no machine needed, but it runs as usual):
  --convert-tvcasm IN:OUT
                         convert the .tvcasm source IN as "Convert tvcasm"
                         does and save the result to OUT (UTF-8, CR LF)
  --opcode-help TEXT[:undoc]
                         the opcode help's rows for a line typed as TEXT with
                         the cursor at its end, on stdout; with exactly one
                         row also the panel: flags, size, cycles, description
                         and the six flag captions. ":undoc" ticks
                         "Undocumented*"
  --help                 this text

Numbers are decimal or 0x hexadecimal.
Exit status: 0 normal end, 1 a file could not be read or written, 2 bad usage,
3 the machine hit a fatal stop, 4 the assembly failed: "FILE:LINE: pass N:
MESSAGE" on stderr, and the machine is not run.
)";

std::optional<int64_t> ParseNumber(const std::string& text) {
    if (text.empty()) return std::nullopt;
    size_t i = 0;
    int base = 10;
    bool neg = false;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        i = 2;
    } else if (text[0] == '-') {
        neg = true;
        i = 1;
        if (text.size() == 1) return std::nullopt;
    }
    int64_t v = 0;
    for (; i < text.size(); ++i) {
        const char c = text[i];
        int d;
        if (c >= '0' && c <= '9')
            d = c - '0';
        else if (base == 16 && c >= 'a' && c <= 'f')
            d = c - 'a' + 10;
        else if (base == 16 && c >= 'A' && c <= 'F')
            d = c - 'A' + 10;
        else
            return std::nullopt;
        v = v * base + d;
        if (v > (int64_t(1) << 40)) return std::nullopt;
    }
    return neg ? -v : v;
}

namespace {

bool SplitPair(const std::string& text, char sep, std::string& left, std::string& right) {
    const size_t at = text.find(sep);
    if (at == std::string::npos) return false;
    left = text.substr(0, at);
    right = text.substr(at + 1);
    return true;
}

std::optional<int32_t> InRange(const std::string& text, int64_t lo, int64_t hi) {
    auto v = ParseNumber(text);
    if (!v || *v < lo || *v > hi) return std::nullopt;
    return static_cast<int32_t>(*v);
}

constexpr std::string_view kValueOptions[] = {
    "--dir", "--set", "--port", "--reg", "--load-bin", "--poke", "--steps", "--frames",
    "--dump-regs", "--dump-mem", "--screenshot", "--disasm", "--audio", "--cart", "--type",
    "--type-after", "--tape-in", "--load-snap", "--load-cas", "--tape-out", "--save-cas",
    "--cas-range", "--save-snap", "--save-mex", "--control", "--asm", "--asm-after",
    "--asm-listing", "--asm-symbols", "--disk", "--dump-hw", "--dump-fdc-log",
    "--convert-tvcasm", "--import-pic", "--opcode-help", "--import-after",
};
constexpr std::string_view kLinkValueOptions[] = {"--serial-in", "--serial-out", "--printer-out",
                                                  "--errorsim"};
constexpr std::string_view kSoundValueOptions[] = {"--ym-direct", "--sid-file"};

bool KnownMenuItem(const std::string& name) {
    for (const MenuItem& item : kMenuItems)
        if (name == item.name) return true;
    return false;
}

std::optional<ErrorSimSetting> ParseErrorSim(const std::string& text) {
    ErrorSimSetting e;
    size_t at = 0;
    while (at <= text.size()) {
        size_t end = text.find(',', at);
        if (end == std::string::npos) end = text.size();
        std::string key, value;
        if (!SplitPair(text.substr(at, end - at), '=', key, value)) return std::nullopt;
        if (key == "video" && (value == "0" || value == "1")) {
            e.video = value == "1";
        } else if (key == "option") {
            if (!(e.option = InRange(value, 0, 2))) return std::nullopt;
        } else if (key == "bits") {
            auto v = InRange(value, 0, 255);
            if (!v) return std::nullopt;
            e.bits = static_cast<uint8_t>(*v);
        } else if (key == "banks" && value.size() == 4 &&
                   value.find_first_not_of("01") == std::string::npos) {
            e.banks = value;
        } else {
            return std::nullopt;
        }
        at = end + 1;
    }
    return e;
}

} // namespace

std::optional<Options> ParseOptions(const std::vector<std::string>& args, std::string& error) {
    Options o;
    auto fail = [&](const std::string& why) -> std::optional<Options> {
        error = why;
        return std::nullopt;
    };
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--help" || a == "-h") {
            o.help = true;
            continue;
        }
        if (a == "--asm-run") {
            o.asmRun = true;
            continue;
        }
        if (a.rfind("--", 0) != 0) return fail("unexpected argument '" + a + "'");
        if (a == "--serial-bridge" || a.rfind("--serial-bridge=", 0) == 0) {
            // The link is optional: a following option is not taken for it.
            o.serialBridge = "serial.pty";
            if (a.size() > 16)
                o.serialBridge = a.substr(16);
            else if (i + 1 < args.size() && args[i + 1].rfind("--", 0) != 0)
                o.serialBridge = args[++i];
            if (o.serialBridge->empty()) return fail("--serial-bridge takes a link name");
            continue;
        }
        std::string name = a, value;
        const size_t eq = a.find('=');
        if (eq != std::string::npos) name = a.substr(0, eq); // --opt=value as well as --opt value
        if (std::find(std::begin(kValueOptions), std::end(kValueOptions), name) ==
                std::end(kValueOptions) &&
            std::find(std::begin(kLinkValueOptions), std::end(kLinkValueOptions), name) ==
                std::end(kLinkValueOptions) &&
            std::find(std::begin(kSoundValueOptions), std::end(kSoundValueOptions), name) ==
                std::end(kSoundValueOptions))
            return fail("unknown option " + name);
        if (eq != std::string::npos) {
            value = a.substr(eq + 1);
        } else {
            if (i + 1 >= args.size()) return fail("option " + a + " needs a value");
            value = args[++i];
        }
        std::string l, r;
        if (name == "--dir") {
            o.dir = value;
        } else if (name == "--set") {
            if (!SplitPair(value, '=', l, r) || !KnownMenuItem(l) || (r != "0" && r != "1"))
                return fail("--set takes NAME=0|1 with a known menu item, not '" + value + "'");
            o.sets.emplace_back(l, r == "1");
        } else if (name == "--port") {
            std::optional<int32_t> n, v;
            if (!SplitPair(value, '=', l, r) || !(n = InRange(l, 0, 255)) ||
                !(v = InRange(r, 0, 255)))
                return fail("--port takes N=V with both in 0..255, not '" + value + "'");
            o.ports.emplace_back(*n, *v);
        } else if (name == "--reg") {
            std::optional<int32_t> v;
            if (!SplitPair(value, '=', l, r) || !(v = InRange(r, INT32_MIN, INT32_MAX)))
                return fail("--reg takes NAME=V, not '" + value + "'");
            o.regs.emplace_back(l, *v);
        } else if (name == "--load-bin") {
            o.loadBins.push_back(value);
        } else if (name == "--poke") {
            std::optional<int32_t> ad, v;
            if (!SplitPair(value, '=', l, r) || !(ad = InRange(l, 0, 65535)) ||
                !(v = InRange(r, 0, 255)))
                return fail("--poke takes ADDR=VAL (0..65535, 0..255), not '" + value + "'");
            o.pokes.emplace_back(*ad, *v);
        } else if (name == "--control") {
            std::optional<int32_t> v;
            std::optional<ControlRef> ref;
            if (!SplitPair(value, '=', l, r) || !(ref = FindControl(l)) ||
                !(v = InRange(r, ref->item->lo, ref->item->hi)))
                return fail("--control takes FORM.NAME[(i)]=V with a known control and a value "
                            "in its range, not '" +
                            value + "'");
            o.controls.emplace_back(l, *v);
        } else if (name == "--ym-direct" || name == "--sid-file") {
            if (value.empty()) return fail(name + " takes a file name");
            (name == "--ym-direct" ? o.ymDirect : o.sidFile) = value;
        } else if (name == "--cart") {
            if (value.empty()) return fail("--cart takes a file name");
            o.cart = value;
        } else if (name == "--type") {
            o.type = value;
        } else if (name == "--type-after") {
            auto v = ParseNumber(value);
            if (!v || *v < 0) return fail("--type-after takes a frame count, not '" + value + "'");
            o.typeAfter = *v;
        } else if (name == "--steps" || name == "--frames") {
            auto v = ParseNumber(value);
            if (!v || *v < 0) return fail(name + " takes a count, not '" + value + "'");
            (name == "--steps" ? o.steps : o.frames) = *v;
        } else if (name == "--tape-in" || name == "--load-snap" || name == "--load-cas" ||
                   name == "--tape-out" || name == "--save-cas" || name == "--save-snap" ||
                   name == "--save-mex") {
            if (value.empty()) return fail(name + " takes a file name");
            auto& slot = name == "--tape-in"     ? o.tapeIn
                         : name == "--load-snap" ? o.loadSnap
                         : name == "--load-cas"  ? o.loadCas
                         : name == "--tape-out"  ? o.tapeOut
                         : name == "--save-cas"  ? o.saveCas
                         : name == "--save-snap" ? o.saveSnap
                                                 : o.saveMex;
            slot = value;
        } else if (name == "--cas-range") {
            std::optional<int32_t> from, to;
            if (!SplitPair(value, ':', l, r) || !(from = InRange(l, 0, 65535)) ||
                !(to = InRange(r, 0, 65535)))
                return fail("--cas-range takes START:END, not '" + value + "'");
            o.casRange = std::make_pair(*from, *to);
        } else if (name == "--asm") {
            if (value.empty()) return fail("--asm takes a file name");
            o.asmFile = value;
        } else if (name == "--asm-after") {
            auto v = ParseNumber(value);
            if (!v || *v < 0) return fail("--asm-after takes a frame count, not '" + value + "'");
            o.asmAfter = *v;
        } else if (name == "--asm-listing") {
            o.asmListing = value;
        } else if (name == "--asm-symbols") {
            o.asmSymbols = value;
        } else if (name == "--audio") {
            o.audio = value;
        } else if (name == "--disasm") {
            std::optional<int32_t> ad, lines;
            if (!SplitPair(value, ':', l, r) || !(ad = InRange(l, 0, 65535)) ||
                !(lines = InRange(r, 1, 65536)))
                return fail("--disasm takes ADDR:LINES, not '" + value + "'");
            o.disasm = std::make_pair(*ad, *lines);
        } else if (name == "--serial-in") {
            o.serialIn = value;
        } else if (name == "--serial-out") {
            o.serialOut = value;
        } else if (name == "--printer-out") {
            o.printerOut = value;
        } else if (name == "--errorsim") {
            if (!(o.errorsim = ParseErrorSim(value)))
                return fail("--errorsim takes video=0|1,option=0..2,bits=0..255,banks=XXXX (0/1), "
                            "not '" +
                            value + "'");
        } else if (name == "--dump-regs") {
            o.dumpRegs = value;
        } else if (name == "--disk" || name == "--dump-hw" || name == "--dump-fdc-log") {
            if (value.empty()) return fail(name + " takes a file name");
            (name == "--disk" ? o.disk : name == "--dump-hw" ? o.dumpHw : o.dumpFdcLog) = value;
        } else if (name == "--screenshot") {
            if (value.empty()) return fail("--screenshot takes a file name");
            o.screenshot = value;
        } else if (name == "--convert-tvcasm") {
            const size_t c = value.find(':');
            if (c == std::string::npos || c == 0 || c + 1 == value.size())
                return fail("--convert-tvcasm takes IN:OUT, not '" + value + "'");
            o.convertTvcasm = std::pair{value.substr(0, c), value.substr(c + 1)};
        } else if (name == "--import-pic") {
            const size_t c = value.find(':');
            std::optional<int32_t> button;
            if (c != std::string::npos) button = InRange(value.substr(0, c), 0, 99);
            if (!button || !FindImportButton(*button) || c + 1 == value.size())
                return fail("--import-pic takes BUTTON:FILE[:H] with BUTTON one of 9, 10, 16 "
                            "to 20, not '" +
                            value + "'");
            PictureImport p{*button, value.substr(c + 1), 0};
            if (const size_t last = p.file.rfind(':'); last != std::string::npos) {
                const auto h = InRange(p.file.substr(last + 1), kHScrollMin, kHScrollMax);
                if (!h) return fail("--import-pic: H must be in -128..127, not '" + value + "'");
                p.h = *h;
                p.file.resize(last);
            }
            o.importPics.push_back(p);
        } else if (name == "--import-after") {
            const auto v = ParseNumber(value);
            if (!v || *v < 0)
                return fail("--import-after takes a frame count, not '" + value + "'");
            o.importAfter = *v;
        } else if (name == "--opcode-help") {
            std::string text = value;
            if (text.size() >= 6 && text.compare(text.size() - 6, 6, ":undoc") == 0) {
                o.opcodeHelpUndoc = true;
                text.resize(text.size() - 6);
            }
            o.opcodeHelp = text;
        } else if (name == "--dump-mem") {
            const size_t c1 = value.find(':');
            const size_t c2 = c1 == std::string::npos ? c1 : value.find(':', c1 + 1);
            std::optional<int32_t> ad, len;
            if (c2 == std::string::npos || !(ad = InRange(value.substr(0, c1), 0, 65535)) ||
                !(len = InRange(value.substr(c1 + 1, c2 - c1 - 1), 0, 65536)) ||
                value.size() == c2 + 1)
                return fail("--dump-mem takes ADDR:LEN:FILE, not '" + value + "'");
            o.dumpMems.push_back({*ad, *len, value.substr(c2 + 1)});
        }
    }
    if ((o.asmAfter || o.asmRun || o.asmListing || o.asmSymbols) && !o.asmFile)
        return fail("--asm-after, --asm-run, --asm-listing and --asm-symbols need --asm");
    if (o.importAfter && o.importPics.empty()) return fail("--import-after needs --import-pic");
    if (o.steps && o.frames) return fail("--steps and --frames cannot be combined");
    if (o.steps && o.type) return fail("--type runs by frames and cannot be combined with --steps");
    return o;
}

} // namespace tvc::headless
