#include "asm/AsmLines.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>

#include "asm/AsmText.h"
#include "asm/OpcodeTables.h"
#include "asm/TextLib.h"
#include "core/Machine.h"
#include "hw/Memory.h"

namespace tvc {

namespace {

namespace fs = std::filesystem;

// A failure the line routines' handler turns into kInternalError: a number
// beyond 32 bits, a text cut outside its bounds, a file that cannot be read,
// an address that leaves 32 bits. It never leaves this file.
struct RuntimeFailure {};

[[noreturn]] void Fail() {
    throw RuntimeFailure{};
}

constexpr int64_t kInt32Max = std::numeric_limits<int32_t>::max();
constexpr int32_t kMaxIncbin = 65536;

bool Starts(std::string_view s, std::string_view prefix) {
    return s.substr(0, prefix.size()) == prefix;
}

bool Holds(std::string_view s, std::string_view part) {
    return s.find(part) != std::string_view::npos;
}

int32_t Number(std::string_view s) {
    const auto v = LeadingNumber(s);
    if (!v) Fail();
    return *v;
}

// A directive operand: "$" and up to `digits` hexadecimal digits, else the number rule.
int32_t DirectiveValue(std::string_view item, size_t digits) {
    if (!item.empty() && item[0] == '$') return HexToLong(item.substr(1, digits));
    return Number(item);
}

void Put(Machine& m, int64_t address, int32_t value) {
    if (address >= 0 && address < kMemSize) MemWrite(m, static_cast<int32_t>(address), value);
}

void Advance(int32_t& address, int64_t by) {
    if (address + by > kInt32Max) Fail();
    address = static_cast<int32_t>(address + by);
}

std::string Lower(std::string s) {
    for (char& c : s)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return s;
}

// The INCBIN file: the name as written if it is there, else each part of the
// path matched without regard to case. Only a regular file is taken; other
// kinds (directories, devices, pipes) are refused before anything opens them.
std::optional<fs::path> ResolveIncbin(std::string_view name1250) {
    const fs::path asked(Cp1250ToUtf8(name1250));
    std::error_code ec;
    fs::path found;
    if (fs::exists(asked, ec)) {
        found = asked;
    } else {
        found = asked.is_absolute() ? asked.root_path() : fs::path(".");
        for (const fs::path& part : asked.relative_path()) {
            fs::path next = found / part;
            if (!fs::exists(next, ec)) {
                const std::string want = Lower(part.string());
                std::string best;
                for (fs::directory_iterator it(found, ec), end; !ec && it != end;
                     it.increment(ec)) {
                    const std::string have = it->path().filename().string();
                    if (Lower(have) == want && (best.empty() || have < best)) best = have;
                }
                if (best.empty()) return std::nullopt;
                next = found / best;
            }
            found = next;
        }
    }
    struct stat st {};
    if (stat(found.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) return std::nullopt;
    return found;
}

// The bytes of the INCBIN file, at most one more than the limit so that an
// over-long file is seen as such whatever it is doing meanwhile.
std::string ReadIncbin(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) Fail();
    std::string data(kMaxIncbin + 1, '\0');
    in.read(data.data(), static_cast<std::streamsize>(data.size()));
    data.resize(static_cast<size_t>(in.gcount()));
    return data;
}

// Steps 3 and 4 of both passes: the comment cut and EX AF,AF' restored.
void CutComment(std::string& line) {
    const size_t p = line.find('\'', 1);
    if (p != std::string::npos) line = std::string(TrimBlanks(std::string_view(line).substr(0, p)));
    if (line == "EX AF,AF") line = "EX AF,AF'";
}

// 0-based column where the operand's digits are looked for.
size_t StartColumn(std::string_view line) {
    auto bitOp = [](std::string_view s) { return s == "BIT " || s == "SET " || s == "RES "; };
    if (bitOp(line.substr(0, 4))) return 5;
    if (Starts(line, "LD ") && line.size() >= 9 && bitOp(line.substr(5, 4))) return 15;
    return 3;
}

// One round of the hexadecimal replacement: the first "$", the first run of
// hexadecimal digits behind it, and every "$" with those digits made decimal.
bool ReplaceHex(std::string& line) {
    const size_t dollar = line.find('$');
    if (dollar == std::string::npos) return true;
    auto hex = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
    size_t i = dollar;
    while (i < line.size() && !hex(line[i]))
        ++i;
    if (i == line.size()) return false;
    size_t e = i;
    while (e < line.size() && hex(line[e]))
        ++e;
    const std::string digits = line.substr(i, e - i);
    line = ReplaceText(line, "$" + digits, std::to_string(HexToLong(digits)));
    return true;
}

// The first run of digits from `start`, taken out of the line.
void TakeDecimal(std::string& line, size_t start, int32_t& operand) {
    size_t i = start;
    while (i < line.size() && !(line[i] >= '0' && line[i] <= '9'))
        ++i;
    if (i >= line.size()) return;
    size_t e = i;
    int64_t v = 0;
    for (; e < line.size() && line[e] >= '0' && line[e] <= '9'; ++e) {
        v = v * 10 + (line[e] - '0');
        if (v > kInt32Max) Fail();
    }
    operand = static_cast<int32_t>(v);
    line.erase(i, e - i);
}

struct Row {
    std::string hex; // H, trimmed
    char type = ' ';
};

Row RowAt(size_t hit, size_t lineLength) {
    const std::string& table = OpcodeAsmText();
    if (hit < 10) Fail();
    const std::string_view row = std::string_view(table).substr(hit - 10, lineLength + 12);
    if (row.size() < 8) Fail();
    return {std::string(TrimBlanks(row.substr(0, 6))), row[7]};
}

// Placeholder width by how the line starts, for a label operand in pass 1.
char SizeClass(std::string_view line) {
    static constexpr std::pair<std::string_view, char> kClasses[] = {
        {"CALL ", 'W'},   {"JP ", 'W'},    {"DJNZ ", 'B'},  {"JR ", 'B'},    {"SUB ", 'B'},
        {"SBC ", 'B'},    {"ADC ", 'B'},   {"ADD ", 'B'},   {"AND ", 'B'},   {"BIT ", 'B'},
        {"CP ", 'B'},     {"DEC ", 'B'},   {"IM ", 'B'},    {"IN ", 'B'},    {"INC ", 'B'},
        {"LD A,(I", 'B'}, {"LD A,(", 'W'}, {"LD A,", 'B'},  {"LD (", 'B'},   {"LD BC,", 'W'},
        {"LD DE,", 'W'},  {"LD HL,", 'W'}, {"LD IX,", 'W'}, {"LD IY,", 'W'}, {"LD SP,", 'W'},
        {"OR ", 'B'},     {"OUT ", 'B'},   {"RL ", 'B'},    {"RLC ", 'B'},   {"RR ", 'B'},
        {"RRC ", 'B'},    {"SET ", 'B'},   {"SLA ", 'B'},   {"SRA ", 'B'},   {"SRL ", 'B'},
        {"XOR ", 'W'},    {"LD B,", 'B'},
        // "RES " is compared with six characters of the line and so never fits.
    };
    for (const auto& [prefix, cls] : kClasses)
        if (Starts(line, prefix)) return cls;
    return 0;
}

std::string PlaceholderTail(std::string_view line) {
    for (std::string_view p : {"IN A,(", "LD A,(", "LD HL,(", "LD BC,(", "LD DE,("})
        if (Starts(line, p)) return ")";
    for (std::string_view p :
         {"LD (HL),", "LD (BC),", "LD (DE),", "LD A,", "LD B,", "LD C,", "LD D,", "LD HL,"})
        if (Starts(line, p)) return "";
    if (Starts(line, "LD (") || Starts(line, "OUT (")) return "),A";
    return "";
}

bool IndexStore(std::string_view line) {
    return Starts(line, "LD (IX+),") || Starts(line, "LD (IY+),");
}

// Step 15, instructions, for either pass.
int32_t Instruction(Machine& m, std::string line, int pass) {
    AsseControls& asse = m.forms.asse;
    const int32_t at0 = asse.AsmAddress;
    static constexpr std::pair<std::string_view, std::string_view> kRst[] = {
        {"RST $0", "RST 0H"},   {"RST $8", "RST 8H"},   {"RST $10", "RST 10H"},
        {"RST $18", "RST 18H"}, {"RST $20", "RST 20H"}, {"RST $28", "RST 28H"},
        {"RST $30", "RST 30H"}, {"RST $38", "RST 38H"}};
    if (Starts(line, "RST $"))
        for (const auto& [from, to] : kRst)
            if (line == from) {
                line = to;
                break;
            }
    int32_t operand = 0;
    // A label operand is put in as a number and the line looked up again;
    // after that the line holds no "@", so a third round never comes.
    for (int round = 0; round < 3; ++round) {
        size_t hit = FindAsmKey(line);
        if (hit != std::string::npos) {
            const Row row = RowAt(hit, line.size());
            if (row.type != ' ') return kSyntaxError;
            const auto size = static_cast<int32_t>(row.hex.size() / 2);
            if (pass == 2) {
                Put(m, at0, HexToLong(row.hex.substr(0, 2)));
                if (size == 2) Put(m, int64_t(at0) + 1, HexToLong(row.hex.substr(2, 2)));
            }
            return size;
        }
        size_t at = line.find('@');
        const bool jump = Starts(line, "CALL ") || Starts(line, "DJNZ ") || Starts(line, "JP ") ||
                          Starts(line, "JR ");
        if (pass == 2 && !jump && at != std::string::npos) {
            size_t end = line.find_last_of(" )");
            if (end == std::string::npos || end < at) end = line.size();
            const std::string name = line.substr(at + 1, end - at - 1);
            const int32_t v = cimh(asse, name);
            if (v == -1) return kSyntaxError;
            line = ReplaceText(line, "@" + name, std::to_string(v));
        }
        const size_t start = StartColumn(line);
        if (line.find('@') == std::string::npos) {
            for (int r = 0; r < pass; ++r) // pass 1 converts one "$" number, pass 2 two
                if (!ReplaceHex(line)) return kSyntaxError;
            TakeDecimal(line, start, operand);
        }
        hit = FindAsmKey(line);
        if (hit != std::string::npos) {
            const Row row = RowAt(hit, line.size());
            const std::string& h = row.hex;
            const std::string prefix = h.size() == 6   ? h.substr(0, 4)
                                       : h.size() == 4 ? h.substr(0, 2)
                                                       : "";
            const auto n = static_cast<int32_t>(prefix.size() / 2);
            const int32_t last = h.size() >= 2 ? HexToLong(h.substr(h.size() - 2)) : 0;
            const int64_t a = at0;
            if (pass == 2) {
                if (n == 1) Put(m, a, HexToLong(prefix));
                Put(m, a + n, last);
            }
            switch (row.type) {
            case 'n':
            case 'e':
                if (operand < 0 || operand > 255) return kOverflowError;
                if (pass == 2) Put(m, a + n + 1, operand);
                return n + 2;
            case 'd': {
                if (operand < 0 || operand > 255) return kOverflowError;
                const bool bits = prefix == "DDCB" || prefix == "FDCB";
                if (pass == 2) {
                    if (prefix.empty()) {
                        Put(m, a + n + 1, operand);
                    } else if (bits) {
                        Put(m, a, prefix == "FDCB" ? 0xFD : 0xDD);
                        Put(m, a + 1, 0xCB);
                        Put(m, a + 3, last);
                        Put(m, a + 2, operand);
                    } else {
                        Put(m, a + 2, operand);
                    }
                }
                return prefix.empty() ? 2 : bits ? 4 : 3;
            }
            case 'm':
                if (operand < 0 || operand > 65535) return kOverflowError;
                if (pass == 2) {
                    Put(m, a + n + 2, operand >> 8);
                    Put(m, a + n + 1, operand & 255);
                }
                return n + 3;
            default: return 0;
            }
        }
        if (pass == 1) {
            if (IndexStore(line) || Starts(line, "LD IXH,") || Starts(line, "LD IXL,") ||
                Starts(line, "LD IYH,") || Starts(line, "LD IYL,") || StartColumn(line) == 15)
                return 4;
            at = line.find('@');
            if (at == std::string::npos) return kInternalError;
            const char cls = SizeClass(line);
            if (cls == 0) return kInternalError;
            line = line.substr(0, at) + (cls == 'W' ? "1111" : "11") + PlaceholderTail(line);
            continue;
        }
        if (IndexStore(line)) {
            if (operand < 0 || operand > 255) return kOverflowError;
            const size_t comma = line.find(',');
            if (comma == std::string::npos) return kInternalError;
            const int32_t value = Number(std::string_view(line).substr(comma + 1, 4));
            if (value < 0 || value > 255) return kOverflowError;
            Put(m, at0, line[5] == 'X' ? 0xDD : 0xFD);
            Put(m, int64_t(at0) + 1, 0x36);
            Put(m, int64_t(at0) + 2, operand);
            Put(m, int64_t(at0) + 3, value);
            return 4;
        }
        at = line.find('@');
        if (at == std::string::npos) return kInternalError;
        const int cls = Starts(line, "CALL ") || Starts(line, "JP ")   ? 1
                        : Starts(line, "DJNZ ") || Starts(line, "JR ") ? 2
                                                                       : 0;
        if (cls == 0) return kInternalError;
        int64_t v = cimh(asse, std::string_view(line).substr(at + 1, 40));
        if (v == -1) return kSyntaxError;
        if (cls == 2) {
            v = v - at0 - 2;
            if (v > 127 || v < -128) return kOverflowError;
            if (v < 0) v += 256;
        }
        line = line.substr(0, at) + std::to_string(v);
    }
    return kInternalError;
}

int32_t Label(AsseControls& asse, const std::string& line) {
    if (Holds(line, " ") || line.size() > kMaxNameLength) return kSyntaxError;
    SymbolIndexUpdate(asse);
    const bool existing = asse.symbols.byName.count(line) != 0;
    AddSymbol(asse, std::to_string(asse.AsmAddress), line);
    return existing ? kExistingName : 0;
}

int32_t Constant(AsseControls& asse, const std::string& line, size_t p) {
    std::string value = line.substr(p + 6, 5);
    if (!value.empty() && value[0] == '$') value = std::to_string(HexToLong(value.substr(1, 4)));
    const std::string name = line.substr(0, p + 1);
    if (Holds(name, " ") || name.size() > kMaxNameLength) return kSyntaxError;
    if (value.find_first_of("+-*/ ") != std::string::npos) return kSyntaxError;
    if (value.empty() || value[0] < '0' || value[0] > '9') return kSyntaxError;
    AddSymbol(asse, value, name);
    return 0;
}

int32_t Org(AsseControls& asse, const std::string& line) {
    std::string operand(TrimBlanks(std::string_view(line).substr(4)));
    if (!operand.empty() && operand[0] == '$')
        operand = std::to_string(HexToLong(operand.substr(1, 4)));
    asse.AsmAddress = Number(operand);
    return asse.AsmAddress > 65535 || asse.AsmAddress < 0 ? kOverflowError : 0;
}

int32_t Db(Machine& m, const std::string& line, const std::string& raw, int pass) {
    const int64_t a = m.forms.asse.AsmAddress;
    // Pass 1 drops the first three characters of the line as typed, so a
    // string is only read right when "DB" stands in the first column.
    std::string_view typed = raw;
    if (pass == 2) typed = TrimBlanks(typed);
    const std::string_view rest = TrimBlanks(typed.substr(std::min<size_t>(3, typed.size())));
    if (!rest.empty() && rest[0] == '"') {
        if (rest.back() != '"') return kSyntaxError;
        if (rest.size() < 2) Fail();
        for (size_t i = 1; i + 1 < rest.size(); ++i) {
            const int32_t code = static_cast<uint8_t>(rest[i]);
            Put(m, a + int64_t(i) - 1, pass == 2 ? TVCASC(code) : code);
        }
        return static_cast<int32_t>(rest.size() - 2);
    }
    int32_t size = 0;
    for (const std::string& item : SplitText(std::string_view(line).substr(3), ",")) {
        const int32_t v = DirectiveValue(item, 2);
        if (v > 255 || v < 0) return kOverflowError;
        Put(m, a + size, v & 255);
        ++size;
    }
    return size;
}

int32_t Dw(Machine& m, const std::string& line, int pass) {
    const int64_t a = m.forms.asse.AsmAddress;
    int32_t index = 0;
    for (const std::string& item : SplitText(std::string_view(line).substr(3), ",")) {
        const int32_t v = DirectiveValue(item, 4);
        if (v > 65535 || v < 0) return kOverflowError;
        // Pass 1 steps its writes by one; pass 2 writes the words where they stay.
        const int64_t at = a + (pass == 2 ? 2 * index : index);
        Put(m, at, v >> 8);
        Put(m, at + 1, v & 255);
        ++index;
    }
    return 2 * index;
}

int32_t Ds(Machine& m, const std::string& line, const std::string& raw) {
    const size_t comma = raw.find(',');
    if (comma == std::string::npos || comma < 3) Fail();
    // The comma is found in the line as typed and used on the normal form.
    const int32_t count = Number(std::string_view(raw).substr(3, comma - 3));
    std::string fill = comma + 1 <= line.size() ? line.substr(comma + 1) : "";
    if (!fill.empty() && fill[0] == '$') fill = std::to_string(HexToLong(fill.substr(1, 3)));
    const int32_t value = Number(fill);
    if (count < 1) return kSyntaxError;
    if (value > 255 || value < 0) return kOverflowError;
    const int64_t a = m.forms.asse.AsmAddress;
    // Only writes that can land in memory are made.
    for (int64_t i = 0; i < count && a + i < kMemSize; ++i)
        Put(m, a + i, value);
    return count;
}

int32_t Debug(Machine& m, const std::string& line, int pass) {
    AsseControls& asse = m.forms.asse;
    if (pass == 1) {
        Advance(asse.AsmAddress, 2);
        return 0;
    }
    static constexpr std::pair<std::string_view, int32_t> kWords[] = {
        {"*INT", 0xF0}, {"*NMI", 0xF1}, {"*RESET", 0xF2}, {"*BREAK", 0xF3}};
    for (const auto& [word, code] : kWords)
        if (line == word) {
            Put(m, asse.AsmAddress, 0xFD);
            Put(m, int64_t(asse.AsmAddress) + 1, code);
            Advance(asse.AsmAddress, 2);
        }
    return 0;
}

int32_t Incbin(Machine& m, const std::string& line, int pass) {
    AsseControls& asse = m.forms.asse;
    if (line.size() < 8 || line[7] != '"' || line.back() != '"') return kSyntaxError;
    if (line.size() < 9) Fail();
    const auto file = ResolveIncbin(std::string_view(line).substr(8, line.size() - 9));
    if (!file) Fail();
    if (pass == 1) {
        std::error_code ec;
        const auto length = fs::file_size(*file, ec);
        if (ec) Fail();
        if (length > kMaxIncbin) return kOverflowError;
        Advance(asse.AsmAddress, static_cast<int64_t>(length));
        return 0;
    }
    const std::string data = ReadIncbin(*file);
    if (data.size() > kMaxIncbin) return kOverflowError;
    for (size_t i = 0; i < data.size(); ++i)
        Put(m, int64_t(asse.AsmAddress) + int64_t(i), static_cast<uint8_t>(data[i]));
    Advance(asse.AsmAddress, static_cast<int64_t>(data.size()));
    return 0;
}

int32_t PassLine(Machine& m, std::string line, const std::string& raw, int pass) {
    AsseControls& asse = m.forms.asse;
    if (line.empty() || line[0] == '\'') return 0;
    CutComment(line);
    if (line.empty()) return 0;
    const size_t equ = line.find(": EQU ");
    if (pass == 2) {
        if (line.back() == ':' || equ != std::string::npos) return 0;
    } else {
        if (line.back() == ':') return Label(asse, line);
        if (equ != std::string::npos) return Constant(asse, line, equ);
        if (Starts(line, "ORG .")) return kSyntaxError;
        if (Starts(line, "PMEM=")) return 0;
    }
    if (Starts(line, "ORG ")) return Org(asse, line);
    if (pass == 2 && Starts(line, "PMEM=")) {
        std::string operand(TrimBlanks(std::string_view(line).substr(5)));
        if (!operand.empty() && operand[0] == '$')
            operand = std::to_string(HexToLong(operand.substr(1, 4)));
        const int32_t v = Number(operand);
        if (v < 0 || v > 255) Fail();
        m.bus.PortLatch[2] = static_cast<uint8_t>(v);
        MemoryMapChanged(m);
        return 0;
    }
    if (Starts(line, "DB ")) return Db(m, line, raw, pass);
    if (Starts(line, "DW ")) return Dw(m, line, pass);
    if (Starts(line, "DS ")) return Ds(m, line, raw);
    if (line[0] == '*') return Debug(m, line, pass);
    if (Starts(line, "INCBIN ")) return Incbin(m, line, pass);
    return Instruction(m, std::move(line), pass);
}

int32_t Guarded(Machine& m, std::string line, const std::string& raw, int pass) {
    try {
        return PassLine(m, std::move(line), raw, pass);
    } catch (const RuntimeFailure&) { return kInternalError; } catch (const std::bad_alloc&) {
        return kInternalError;
    }
}

} // namespace

std::string AsmMessage(int32_t code, int pass) {
    switch (code) {
    case kSyntaxError: return "Syntax Error!";
    case kOverflowError: return "OverFlow Error!";
    case kJumpTooBig: return "Jump too Big!";
    case kExistingName: return pass == 1 ? "Existing name!" : "";
    case kInternalError: return pass == 1 ? "Internal Error P1!" : "Internal Error P2!";
    default: return "";
    }
}

void SymbolIndexUpdate(AsseControls& asse) {
    SymbolIndex& ix = asse.symbols;
    if (ix.entries > asse.List1.size()) ix = SymbolIndex{};
    for (; ix.entries < asse.List1.size(); ++ix.entries) {
        const std::string& e = asse.List1[ix.entries];
        const std::string tail = e.size() > 7 ? e.substr(7) : "";
        ix.byName.emplace(tail, ix.entries);
        ix.byKey25.emplace(tail.substr(0, 25), ix.entries);
    }
}

void AddSymbol(AsseControls& asse, std::string_view value, std::string_view name) {
    asse.List1.push_back(PadRight(std::string(value), 7).append(name));
}

int32_t cimh(AsseControls& asse, std::string_view name) {
    std::string key(name);
    key += ':';
    if (key.size() > 25) return -1;
    SymbolIndexUpdate(asse);
    const auto it = asse.symbols.byKey25.find(key);
    if (it == asse.symbols.byKey25.end()) return -1;
    return LeadingNumber(std::string_view(asse.List1[it->second]).substr(0, 5)).value_or(0);
}

int32_t AsmPass1Line(Machine& m, std::string line, const std::string& raw) {
    return Guarded(m, std::move(line), raw, 1);
}

int32_t AsmPass2Line(Machine& m, std::string line, const std::string& raw) {
    return Guarded(m, std::move(line), raw, 2);
}

} // namespace tvc
