// tvc-headless: the emulator without a window, for scripts and tests.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>

#include "asm/AsmText.h"
#include "asm/Assembler.h"
#include "asm/Disassembler.h"
#include "asm/OpcodeHelp.h"
#include "asm/PicImport.h"
#include "asm/Converter.h"
#include "asm/SourceFiles.h"
#include "core/ControlItems.h"
#include "asm/TextLib.h"
#include "core/HwMonitor.h"
#include "core/Machine.h"
#include "core/RunLoop.h"
#include "core/StateFields.h"
#include "headless/HeadlessHost.h"
#include "headless/HeadlessOptions.h"
#include "headless/PngWriter.h"
#include "hw/KeyQueue.h"
#include "hw/MachineSetup.h"
#include "links/SerialPort.h"
#include "hw/Memory.h"
#include "media/MediaFiles.h"
#include "media/Tape.h"
#include "media/Disk.h"
#include "sound/PortSinks.h"
#include "sound/SoundFX.h"
#include "sound/WavRecorder.h"
#ifdef TVC_PICTURE_DECODER
#include "ui/decode/PictureDecode.h"
#endif

namespace tvc::headless {
namespace {

constexpr int kExitOk = 0, kExitUsage = 2, kExitFatal = 3, kExitIo = 1, kExitAsm = 4;
// A typed line's effect shows within this many frames of its last key.
constexpr uint64_t kFramesAfterTyping = 50;

int Usage(const std::string& why) {
    std::cerr << "tvc-headless: " << why << "\nTry 'tvc-headless --help'.\n";
    return kExitUsage;
}

int CannotRead(const std::string& file) {
    std::cerr << "tvc-headless: cannot read " << file << '\n';
    return kExitIo;
}
int CannotWrite(const std::string& file) {
    std::cerr << "tvc-headless: cannot write " << file << '\n';
    return kExitIo;
}

bool SetMenu(Machine& m, const std::string& name, bool value) {
    for (const MenuItem& item : kMenuItems)
        if (name == item.name) {
            m.menu.*item.field = value;
            return true;
        }
    return false;
}

std::string RegsJson(Machine& m) {
    std::ostringstream out;
    out << "{\n";
    for (const StateField& f : StateFields(m))
        out << "  \"" << f.name << "\": " << *f.value << ",\n";
    out << "  \"TotalT\": " << m.run.TotalT << ",\n";
    out << "  \"RunFlag\": " << int(m.run.RunFlag) << ",\n";
    out << "  \"FrameCount\": " << m.run.FrameCount << ",\n";
    out << "  \"TapePos\": " << m.tape.TapePos << ",\n";
    out << "  \"TapeLevel\": " << int(m.tape.TapeLevel) << ",\n";
    out << "  \"TapeLastT\": " << m.tape.TapeLastT << ",\n";
    out << "  \"PortLatch\": [";
    for (int i = 0; i < 256; ++i)
        out << (i ? "," : "") << int(m.bus.PortLatch[i]);
    out << "]\n}\n";
    return out.str();
}

bool WriteOut(const std::string& file, const std::string& data) {
    if (file == "-") {
        std::cout << data << std::flush;
        return true;
    }
    std::ofstream out(file, std::ios::binary);
    out << data;
    return static_cast<bool>(out);
}

// Loads a binary into Mem from index 0, as the CPU monitor's "Load Bin" does.
bool LoadBin(Machine& m, const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return false;
    std::vector<char> buf(65536);
    in.read(buf.data(), static_cast<std::streamsize>(buf.size()));
    std::copy_n(buf.begin(), in.gcount(), m.bus.Mem.begin());
    return true;
}

// Assembles the --asm source as the workbench's "Compile" button does and
// writes the listing and symbols asked for. Returns an exit status to stop
// with, or -1 to go on.
int Assemble(Machine& m, const Options& o) {
    const std::string& file = *o.asmFile;
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::cerr << "tvc-headless: cannot read " << file << '\n';
        return kExitIo;
    }
    AsseControls& a = m.forms.asse;
    a.RText1.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    const int32_t r = asse::Command1_Click(m);
    if (a.Truncated)
        std::cerr << "tvc-headless: warning: " << file << ": the source is read up to character "
                  << kSourceStop << "; the rest is left out\n";
    if (o.asmListing) {
        std::string text;
        for (const ListingLine& l : a.Lines)
            text += Hex4(l.address) + "  " + Cp1250ToUtf8(l.line) + "\n";
        if (!WriteOut(*o.asmListing, text)) {
            std::cerr << "tvc-headless: cannot write " << *o.asmListing << '\n';
            return kExitIo;
        }
    }
    if (o.asmSymbols) {
        std::string text;
        for (const std::string& s : a.List3)
            text += Cp1250ToUtf8(s) + "\n";
        if (!WriteOut(*o.asmSymbols, text)) {
            std::cerr << "tvc-headless: cannot write " << *o.asmSymbols << '\n';
            return kExitIo;
        }
    }
    if (r != 0) {
        std::cerr << file << ":" << a.ErrorLine << ": pass " << a.ErrorPass << ": " << a.Text13
                  << '\n';
        return kExitAsm;
    }
    if (o.asmRun) asse::Command6_Click(m);
    return -1;
}

// Runs until the frame count reaches `end`, typing from the queue at each
// frame boundary.
void RunFrames(Machine& m, uint64_t end, KeyQueue* keys) {
    uint64_t seen = m.run.FrameCount;
    if (keys) keys->OnFrame(seen, m.bus.KeyMatrix);
    while (m.run.FrameCount < end && m.run.RunFlag == 1) {
        RunPass(m);
        if (keys && m.run.FrameCount != seen) {
            seen = m.run.FrameCount;
            keys->OnFrame(seen, m.bus.KeyMatrix);
        }
    }
}

void Run(Machine& m, const Options& o, KeyQueue* keys) {
    m.run.RunFlag = 1;
    if (o.steps) {
        for (int64_t i = 0; i < *o.steps && m.run.RunFlag == 1; ++i)
            RunPass(m);
    } else if (o.frames || keys) {
        uint64_t end = m.run.FrameCount + static_cast<uint64_t>(o.frames.value_or(0));
        if (keys) end = std::max(end, keys->DoneFrame() + kFramesAfterTyping);
        RunFrames(m, end, keys);
    } else {
        return;
    }
    LeaveRunLoop(m);
}

void ApplyErrorSim(Machine& m, const ErrorSimSetting& e) {
    if (e.video) m.bus.VideoErrorEnabled = *e.video ? 1 : 0;
    if (e.option) m.forms.ErrorSim.Option1 = *e.option;
    if (e.bits) m.forms.ErrorSim.ErrorBits = *e.bits;
    if (e.banks) {
        bool* boxes[4] = {&m.forms.ErrorSim.Check2, &m.forms.ErrorSim.Check3,
                          &m.forms.ErrorSim.Check4, &m.forms.ErrorSim.Check5};
        for (int i = 0; i < 4; ++i)
            *boxes[i] = (*e.banks)[i] == '1';
    }
}

// The bridge program: beside this one, or in the build's bin/ folder.
std::string BridgeProgram() {
    char self[4096];
    const ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
    if (n > 0) {
        std::string beside = std::string(self, static_cast<size_t>(n));
        beside = beside.substr(0, beside.rfind('/') + 1) + kSerialBridgeName;
        if (access(beside.c_str(), X_OK) == 0) return beside;
    }
    return std::string(TVC_BIN_DIR) + "/" + kSerialBridgeName;
}

// --opcode-help: the rows as List2 shows them, then the panel of a single row.
std::string OpcodeHelpText(const std::string& line, bool undoc) {
    std::string out;
    const auto help = OpcodeHelp(line, line.size(), undoc);
    if (!help) return out;
    for (const std::string& row : help->List2)
        out += row + "\n";
    if (help->selected < 0) return out;
    const auto panel = OpcodeInfo(help->List2[static_cast<size_t>(help->selected)]);
    if (!panel) return out;
    out += "Opcode: " + panel->Text8 + "\nSize (byte): " + panel->Text7 +
           "\nColock cycles: " + panel->Text10 + "\n" + panel->Text11 + "\n";
    static const char* const kFlags[] = {"C:", "N:", "P/V:", "H:", "Z:", "S:"};
    for (size_t i = 0; i < 6; ++i)
        out += std::string(kFlags[i]) + " " + panel->Label7[i].caption + "\n";
    return out;
}

// --import-pic: the picture through Qt's reader, then the button's walk.
bool ImportPictures(Machine& m, const Options& o) {
    for (const PictureImport& p : o.importPics) {
#ifdef TVC_PICTURE_DECODER
        const auto grid = DecodePicture(p.file);
#else
        const std::optional<PixelGrid> grid;
#endif
        if (!grid) {
            std::cerr << "tvc-headless: " << kFileOpenError << " " << p.file << '\n';
            return false;
        }
        ImportPicture(m, *FindImportButton(p.button), *grid, p.h);
    }
    return true;
}

// Starts the serial link for the run: the record, a bridge unless one
// serves already, and the pump once a frame.
bool StartSerialBridge(Machine& m, HeadlessHost& host, const std::string& link) {
    if (!SerialOpen(m)) {
        std::cerr << "tvc-headless: " << m.serial.map.LastError().Description << '\n';
        return false;
    }
    if (!SerialBridge::Serving() &&
        !m.serial.bridge.Start(BridgeProgram(), {"--link", link, "--exit-with-parent"}))
        std::cerr << "tvc-headless: Not Found : " << kSerialBridgeName << '\n';
    host.onYield = [&m, yields = 0]() mutable {
        if (++yields % 2 == 0) SerialPump(m);
    };
    return true;
}

int Main(const std::vector<std::string>& args) {
    std::string error;
    auto parsed = ParseOptions(args, error);
    if (!parsed) return Usage(error);
    const Options& o = *parsed;
    if (o.help) {
        std::cout << kUsage;
        return kExitOk;
    }
    if (!o.dir.empty() && chdir(o.dir.c_str()) != 0) {
        std::cerr << "tvc-headless: cannot enter " << o.dir << ": " << std::strerror(errno) << '\n';
        return kExitUsage;
    }

    if (o.convertTvcasm) {
        const auto text = ReadSourceFile(o.convertTvcasm->first);
        if (!text) {
            std::cerr << "tvc-headless: " << kFileOpenError << " " << o.convertTvcasm->first
                      << '\n';
            return kExitIo;
        }
        if (!WriteSourceFile(o.convertTvcasm->second, ConvertTvcasm(*text)))
            return CannotWrite(o.convertTvcasm->second);
    }

    HeadlessHost host;
    auto machine = std::make_unique<Machine>(host);
    Machine& m = *machine;
    bool undoc = m.menu.xUnDoc;
    for (const auto& [name, value] : o.sets) {
        SetMenu(m, name, value);
        if (name == "xUnDoc") undoc = value;
    }
    m.menu.xS6 = true; // the runner always runs at "Max" pace
    host.panels = &m;
    for (const auto& [name, value] : o.controls)
        SetControl(m.forms, name, value, error);
    if (!o.cart.empty()) {
        std::vector<uint8_t> probe;
        uint64_t length = 0;
        if (!ReadFileBounded(o.cart, 1, probe, length)) return CannotRead(o.cart);
        m.bus.SetCartName(o.cart);
    }

    std::optional<KeyQueue> keys;
    if (o.type) {
        keys.emplace(static_cast<uint64_t>(o.typeAfter));
        if (!keys->PushText(*o.type, error)) return Usage("--type: " + error);
    }

    MachineInit(m);
    if (!m.FatalStop) MachineReset(m);
    if (m.FatalStop) return kExitFatal;
    DiskLoad(m, kDefaultDisk); // silent when missing or empty
    if (o.disk && DiskLoad(m, *o.disk) == DiskLoadResult::Unreadable) {
        std::cerr << "tvc-headless: cannot read " << *o.disk << '\n';
        return kExitIo;
    }
    SoundInit(m);
    m.cpu.UndocEnabled = undoc ? 1 : 0;

    TapeOpenInput(m, "load.wav"); // as at start-up: a missing file is not reported
    if (o.tapeIn && !TapeOpenInput(m, *o.tapeIn)) return CannotRead(*o.tapeIn);
    if (o.loadSnap && !LoadSnapShot(m, *o.loadSnap)) return kExitIo;

    for (const auto& [port, value] : o.ports)
        m.bus.PortLatch[port] = static_cast<uint8_t>(value);
    MemoryMapChanged(m);
    for (const std::string& file : o.loadBins)
        if (!LoadBin(m, file)) {
            std::cerr << "tvc-headless: cannot read " << file << '\n';
            return kExitIo;
        }
    if (o.loadCas && !LoadCAS(m, *o.loadCas)) return kExitIo;
    for (const auto& [addr, value] : o.pokes)
        MemWrite(m, addr, value);
    if (!o.importAfter && !ImportPictures(m, o)) return kExitIo;
    if (o.opcodeHelp) std::cout << OpcodeHelpText(*o.opcodeHelp, o.opcodeHelpUndoc) << std::flush;
    if (o.asmFile && !o.asmAfter) {
        if (const int status = Assemble(m, o); status >= 0) return status;
    }
    const auto fields = StateFields(m);
    for (const auto& [name, value] : o.regs) {
        auto it = std::find_if(fields.begin(), fields.end(),
                               [&](const StateField& f) { return name == f.name; });
        if (it == fields.end()) return Usage("unknown register '" + name + "'");
        *it->value = value;
    }

    if (o.errorsim) ApplyErrorSim(m, *o.errorsim);
    if (o.serialIn) {
        std::ifstream in(*o.serialIn, std::ios::binary);
        if (!in) {
            std::cerr << "tvc-headless: cannot read " << *o.serialIn << '\n';
            return kExitIo;
        }
        m.serial.SerialRx.assign(std::istreambuf_iterator<char>(in),
                                 std::istreambuf_iterator<char>());
    }
    std::string serialOut, printerOut;
    if (o.serialOut) m.serial.OutTap = &serialOut;
    if (o.printerOut) m.printer.Tap = &printerOut;
    if (o.serialBridge && !StartSerialBridge(m, host, *o.serialBridge)) return kExitIo;

    WavRecorder audio;
    if (o.audio) {
        if (!audio.Open(*o.audio)) {
            std::cerr << "tvc-headless: cannot write " << *o.audio << '\n';
            return kExitIo;
        }
        m.sound.DeliveryTap = [&audio](const uint8_t* unit, size_t bytes) {
            audio.Add(unit, bytes);
        };
    }
    if (o.sidFile && !SidPlayFile(m, *o.sidFile, error)) {
        std::cerr << "tvc-headless: --sid-file: " << error << '\n';
        return kExitIo;
    }
    std::FILE* ymLog = nullptr;
    std::optional<LogPortSink> ymSink;
    if (o.ymDirect) {
        if (!(ymLog = std::fopen(o.ymDirect->c_str(), "w"))) {
            std::cerr << "tvc-headless: cannot write " << *o.ymDirect << '\n';
            return kExitIo;
        }
        ymSink.emplace(m, ymLog);
        m.ym.DirectSink = &*ymSink;
        m.forms.FYM3812.Check3 = true;
    }
    if (o.tapeOut) TapeRecord(m, true);
    if (o.asmFile && o.asmAfter) {
        m.run.RunFlag = 1;
        RunFrames(m, static_cast<uint64_t>(*o.asmAfter), keys ? &*keys : nullptr);
        if (const int status = Assemble(m, o); status >= 0) return status;
    }
    if (o.importAfter) {
        m.run.RunFlag = 1;
        RunFrames(m, static_cast<uint64_t>(*o.importAfter), keys ? &*keys : nullptr);
        if (!ImportPictures(m, o)) return kExitIo;
    }
    Run(m, o, keys ? &*keys : nullptr);
    m.sound.DeliveryTap = nullptr;
    audio.Close();
    m.ym.DirectSink = nullptr;
    if (ymLog && std::fclose(ymLog) != 0) {
        std::cerr << "tvc-headless: cannot write " << *o.ymDirect << '\n';
        return kExitIo;
    }
    if (o.tapeOut) {
        TapeRecord(m, false);
        std::error_code ec;
        std::filesystem::copy_file("save.wav", *o.tapeOut,
                                   std::filesystem::copy_options::overwrite_existing, ec);
        if (ec) return CannotWrite(*o.tapeOut);
    }
    if (o.saveCas) {
        xSaveCAS(m);
        if (o.casRange) {
            m.forms.Media.Text6 = std::to_string(o.casRange->first);
            m.forms.Media.Text7 = std::to_string(o.casRange->second);
        }
        if (!SaveCAS(m, *o.saveCas, "")) return kExitIo;
    }
    if (o.saveSnap && !SaveSnapshot(m, *o.saveSnap, "")) return kExitIo;
    if (o.saveMex && !SaveMex4(m, *o.saveMex)) return kExitIo;
    host.onYield = nullptr;
    host.panels = nullptr;
    SerialClose(m);
    m.serial.OutTap = nullptr;
    m.printer.Tap = nullptr;
    for (const auto& [file, data] :
         {std::pair{o.serialOut, &serialOut}, {o.printerOut, &printerOut}})
        if (file && !WriteOut(*file, *data)) {
            std::cerr << "tvc-headless: cannot write " << *file << '\n';
            return kExitIo;
        }

    if (o.dumpRegs && !WriteOut(*o.dumpRegs, RegsJson(m))) {
        std::cerr << "tvc-headless: cannot write " << *o.dumpRegs << '\n';
        return kExitIo;
    }
    if (o.dumpHw && !WriteOut(*o.dumpHw, HwMonitorJson(m))) {
        std::cerr << "tvc-headless: cannot write " << *o.dumpHw << '\n';
        return kExitIo;
    }
    if (o.dumpFdcLog && !WriteOut(*o.dumpFdcLog, FdcLogListing(m.fdc))) {
        std::cerr << "tvc-headless: cannot write " << *o.dumpFdcLog << '\n';
        return kExitIo;
    }
    if (o.disasm) {
        int32_t address = o.disasm->first;
        std::string text = Disassemble(m, address, o.disasm->second, 1);
        std::erase(text, '\r'); // the listing's CR LF line ends become plain lines
        std::cout << text << '\n' << std::flush;
    }
    for (const MemDump& d : o.dumpMems) {
        std::string bytes(static_cast<size_t>(d.length), '\0');
        for (int32_t i = 0; i < d.length; ++i)
            bytes[i] = static_cast<char>(MemRead(m, d.address + i));
        if (!WriteOut(d.file, bytes)) {
            std::cerr << "tvc-headless: cannot write " << d.file << '\n';
            return kExitIo;
        }
    }
    if (o.screenshot) {
        std::string why;
        if (!WritePng(*o.screenshot, ComposeFrame(m), why)) {
            std::cerr << "tvc-headless: cannot write " << *o.screenshot << ": " << why << '\n';
            return kExitIo;
        }
    }
    return m.FatalStop ? kExitFatal : kExitOk;
}

} // namespace
} // namespace tvc::headless

int main(int argc, char** argv) {
    return tvc::headless::Main(std::vector<std::string>(argv + 1, argv + argc));
}
