// Command line of tvc-headless.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tvc::headless {

struct MemDump {
    int32_t address;
    int32_t length;
    std::string file;
};

// --errorsim: the error simulator's controls; unset fields keep the form's defaults.
struct ErrorSimSetting {
    std::optional<bool> video;
    std::optional<int32_t> option;
    std::optional<uint8_t> bits;
    std::optional<std::string> banks; // four 0/1 characters, Check2..Check5
};

struct Options {
    std::string dir;
    std::vector<std::pair<std::string, bool>> sets;    // menu check marks
    std::vector<std::pair<int32_t, int32_t>> ports;    // PortLatch entries
    std::vector<std::pair<std::string, int32_t>> regs; // registers by name
    std::vector<std::string> loadBins;
    std::vector<std::pair<int32_t, int32_t>> pokes;
    std::optional<int64_t> steps;
    std::optional<int64_t> frames;
    std::optional<std::string> dumpRegs;
    std::vector<MemDump> dumpMems;
    std::optional<std::string> screenshot;             // PNG of the window's picture
    std::string cart;                                  // cartridge image, loaded by MachineInit
    std::optional<std::string> type;                   // keys to type, through the monitor's layout
    int64_t typeAfter = 100;                           // frame at which typing begins
    std::optional<std::pair<int32_t, int32_t>> disasm; // address, lines
    std::optional<std::string> audio;                  // WAV file of the machine's sound
    std::vector<std::pair<std::string, int32_t>> controls; // panel controls by FORM.NAME[(i)]
    std::optional<std::string> tapeIn, loadSnap, loadCas;  // media loaded before the run
    std::optional<std::string> tapeOut;                    // "save.wav" of the run, copied here
    std::optional<std::string> saveCas, saveSnap, saveMex; // media saved after the run
    std::optional<std::pair<int32_t, int32_t>> casRange;   // Text6/Text7 of the CAS save
    std::optional<std::string> asmFile;                // source to assemble, as the workbench does
    std::optional<int64_t> asmAfter;                   // frame at which to assemble
    bool asmRun = false;                   // the workbench's RUN button after assembling
    std::optional<std::string> asmListing; // per source line its address and normal form
    std::optional<std::string> asmSymbols; // the symbol list List3
    std::optional<std::string> disk;                   // disk image, loaded after "default.dsk"
    std::optional<std::string> dumpHw;                 // the hardware monitor's fields as JSON
    std::optional<std::string> dumpFdcLog;             // the floppy command log, a line an entry
    std::optional<std::string> serialIn;               // bytes put into SerialRx before the run
    std::optional<std::string> serialOut;              // every byte written to port 0x20
    std::optional<std::string> serialBridge;           // link of the bridge started for the run
    std::optional<std::string> printerOut;             // the printer's bytes
    std::optional<ErrorSimSetting> errorsim;
    std::optional<std::string> ymDirect; // log of the YM3812's direct output
    std::optional<std::string> sidFile;  // SIDX or DMP dump the SID plays
    bool help = false;
};

// Parses argv; on a usage error returns no value and sets `error`.
std::optional<Options> ParseOptions(const std::vector<std::string>& args, std::string& error);

// A number in decimal (optionally negative) or 0x hexadecimal, the whole text.
std::optional<int64_t> ParseNumber(const std::string& text);

extern const char* const kUsage;

} // namespace tvc::headless
