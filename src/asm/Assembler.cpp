#include "asm/Assembler.h"

#include <chrono>
#include <limits>

#include "asm/AsmLines.h"
#include "asm/AsmText.h"
#include "asm/TextLib.h"
#include "core/Machine.h"
#include "hw/Memory.h"
#include "core/RunLoop.h"
#include "hw/MachineSetup.h"

namespace tvc {

namespace {

constexpr int32_t kWhite = 0xFFFFFF;
constexpr int32_t kWorking = 0xC0FFC0, kFailed = 0x8080FF, kEditorBusy = 0x535353;
// Listing colours, red in the low byte.
constexpr int32_t kNoBytes = 0xFF0000, kComment = 0x379B37, kDebug = 0x1919DE;
constexpr int32_t kAddress = 0x6E1478, kText = 0x000000, kSelection = 0x373737;

void Append(AsseControls& a, std::string_view text) {
    if (a.RText2.empty() || a.RText2.back().colour != a.RText2SelColor)
        a.RText2.push_back({std::string(), a.RText2SelColor});
    a.RText2.back().text.append(text);
    a.RText2Text.append(text);
}

void Listing(AsseControls& a, const std::string& line, int32_t r) {
    if (r == 0) {
        a.RText2SelColor = kNoBytes;
        if (!line.empty() && line[0] == '\'') a.RText2SelColor = kComment;
        if (!line.empty() && line[0] == '*') a.RText2SelColor = kDebug;
        Append(a, line);
        Append(a, "\n");
        return;
    }
    a.RText2SelColor = kAddress;
    Append(a, "0x" + Hex4(a.AsmAddress - r));
    a.RText2SelColor = kText;
    Append(a, "\t" + line + "\n");
}

int32_t Pass(Machine& m, int pass) {
    AsseControls& a = m.forms.asse;
    RefreshAsmIndex();
    if (pass == 1) {
        a.List1.clear();
        a.List3.clear();
        a.symbols = SymbolIndex{};
    } else {
        a.RText2.clear();
        a.RText2Text.clear();
        a.Lines.clear();
        a.RText2SelColor = kSelection;
    }
    a.AsmAddress = 0;
    a.Truncated = false;
    const std::string& text = a.Source;
    constexpr size_t kStop = kSourceStop;
    size_t pos = 0;
    for (int32_t number = 1;; ++number) {
        const size_t eol = pos <= text.size() ? text.find("\r\n", pos) : std::string::npos;
        // A line ending at or past the stop is the last; without a line end the
        // text is read up to the character before the stop.
        const bool last = eol == std::string::npos || eol + 1 >= kStop;
        size_t length = 0;
        if (eol != std::string::npos)
            length = eol - pos;
        else if (pos < kStop - 1)
            length = kStop - 1 - pos;
        const std::string raw = pos < text.size() ? text.substr(pos, length) : std::string();
        const std::string line = Strim(TabTrim(raw));
        const int32_t start = a.AsmAddress;
        int32_t r = pass == 1 ? AsmPass1Line(m, line, raw) : AsmPass2Line(m, line, raw);
        if (r > 0 && int64_t(a.AsmAddress) + r > std::numeric_limits<int32_t>::max())
            r = kInternalError; // the address would leave 32 bits
        a.AsmAddress += r;
        if (r < 0) {
            a.Text13 = AsmMessage(r, pass);
            a.RText1SelStart = static_cast<int32_t>(pos);
            a.RText1SelLength = static_cast<int32_t>(raw.size());
            a.RText1Focus = pass == 1;
            a.ErrorLine = number;
            a.ErrorPass = pass;
            a.ErrorCode = r;
            return -1;
        }
        if (pass == 2) {
            Listing(a, line, r);
            a.Lines.push_back({start, line});
        }
        if (last) {
            a.Truncated =
                eol == std::string::npos ? text.size() > kStop - 1 : text.size() > eol + 2;
            return 0;
        }
        pos = eol + 2;
    }
}

void Failed(AsseControls& a) {
    a.Text13BackColor = a.Text14BackColor = kFailed;
    a.RText1BackColor = kWhite;
}

} // namespace

int32_t PreComp0(Machine& m) {
    return Pass(m, 1);
}

int32_t PreComp1(Machine& m) {
    return Pass(m, 2);
}

int32_t Compile(Machine& m) {
    AsseControls& a = m.forms.asse;
    a.Text13.clear();
    a.Text14.clear();
    a.Text13BackColor = a.Text14BackColor = kWorking;
    a.RText1BackColor = kEditorBusy;
    a.RText1Focus = false;
    a.ErrorLine = a.ErrorPass = a.ErrorCode = 0;
    a.Source = NormaliseSource(a.RText1);
    const auto start = std::chrono::steady_clock::now();
    a.Text14 = "Pass1";
    const int32_t r = PreComp0(m);
    for (const std::string& e : a.List1) {
        const std::string name = e.size() > 7 ? e.substr(7, 60) : "";
        a.List3.push_back(PadRight(name, 22) + e.substr(0, 5));
    }
    if (r == -1) {
        Failed(a);
        return -1;
    }
    a.Text14 = "Pass2";
    if (PreComp1(m) == -1) {
        Failed(a);
        return -1;
    }
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::steady_clock::now() - start)
                        .count();
    a.Text13 = "Completed: " + std::to_string(ms) + " msec";
    a.Label2 = std::to_string(a.AsmAddress);
    a.RText1BackColor = kWhite;
    return 0;
}

bool Dline(Machine& m, std::string_view text) {
    AsseControls& a = m.forms.asse;
    const std::string& list = a.RText2Text;
    if (text.empty() || text.size() > list.size()) return false;
    auto fold = [](char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c; };
    for (size_t i = 0; i + text.size() <= list.size(); ++i) {
        size_t k = 0;
        while (k < text.size() && fold(list[i + k]) == fold(text[k]))
            ++k;
        if (k == text.size()) {
            a.RText2SelStart = static_cast<int32_t>(i);
            a.RText2SelLength = static_cast<int32_t>(std::min<size_t>(6, list.size() - i));
            return true;
        }
    }
    return false;
}

namespace asse {

int32_t Command1_Click(Machine& m) {
    const uint8_t saved = m.bus.PortLatch[2];
    m.bus.PortLatch[2] = 0xB0;
    MemoryMapChanged(m);
    m.forms.asse.Frame2Visible = false;
    const int32_t r = Compile(m);
    m.bus.PortLatch[2] = saved;
    MemoryMapChanged(m);
    return r;
}

void Command6_Click(Machine& m) {
    m.cpu.RegPC = 10000;
}

void Command7_Click(Machine& m) {
    m.bus.Mem[0x0B22] = 0xFF;
    m.cpu.CpuReset();
    MachineReset(m);
}

void Command12_Click(Machine& m) {
    m.run.RunFlag = 0;
}

void Command13_Click(Machine& m) {
    m.run.RunFlag = 1;
    RunLoop(m);
}

} // namespace asse

} // namespace tvc
