// The SID's dump player: the panel's option buttons and file list, and the
// readers of SIDX text dumps and DMP register images, one frame per block.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/Machine.h"
#include "sound/Sid.h"

namespace tvc {

namespace {

constexpr int kFrameBytes = 25;
constexpr size_t kMaxLine = 4096; // the rest of a longer line is skipped
const char* const kExtensions[3] = {nullptr, ".sidx", ".dmp"};

void CloseFile(Sid& s) {
    if (s.PlayFile) std::fclose(s.PlayFile);
    s.PlayFile = nullptr;
}

bool HasExtension(const std::string& name, const char* ext) {
    const size_t n = std::strlen(ext);
    if (name.size() < n) return false;
    return std::equal(ext, ext + n, name.end() - std::ptrdiff_t(n),
                      [](char a, char b) { return a == std::tolower(uint8_t(b)); });
}

// Regular files of the working directory whose extension matches without
// regard to case, sorted by name.
std::vector<std::string> ListFiles(int32_t option) {
    std::vector<std::string> names;
    if (option != 1 && option != 2) return names;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(".", ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (it->is_regular_file(ec) && HasExtension(name, kExtensions[option]))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

// Reads one line without its end; false at the end of the file.
bool ReadLine(std::FILE* f, std::string& line) {
    line.clear();
    int c = std::fgetc(f);
    if (c == EOF) return false;
    for (; c != EOF && c != '\n'; c = std::fgetc(f))
        if (line.size() < kMaxLine) line.push_back(static_cast<char>(c));
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return true;
}

// The option's open step: SIDX is text with seven lines of heading.
void OpenSelected(Machine& m) {
    Sid& s = m.sid;
    const FSIDControls& f = m.forms.FSID;
    CloseFile(s);
    s.SidxErrorShown = false;
    if (f.File1.empty() || (f.Option != 1 && f.Option != 2)) return;
    s.PlayFile = std::fopen(f.File1.c_str(), f.Option == 1 ? "r" : "rb");
    std::string skipped;
    for (int n = 0; f.Option == 1 && s.PlayFile && n < 7; ++n)
        if (!ReadLine(s.PlayFile, skipped)) break;
}

// A field by its 1-based columns, padded with spaces where the line ends.
std::string Field(std::string_view line, size_t first, size_t count) {
    std::string f(first - 1 < line.size() ? line.substr(first - 1, count) : std::string_view());
    f.resize(count, ' ');
    return f;
}

bool Dots(const std::string& field) {
    return field.find_first_not_of('.') == std::string::npos;
}

// A field (or part of one) that is not wholly hexadecimal counts as 0.
int32_t Hex(std::string_view field) {
    int32_t v = 0;
    for (char c : field) {
        if (!std::isxdigit(uint8_t(c))) return 0;
        v = v * 16 + (std::isdigit(uint8_t(c)) ? c - '0' : std::tolower(uint8_t(c)) - 'a' + 10);
    }
    return v;
}

int32_t TypeWord(Machine& m, const std::string& word) {
    static constexpr std::pair<const char*, int32_t> kWords[] = {
        {"Off", 0},   {"Low", 16}, {"Bnd", 32}, {"L+H", 80}, {"B+H", 96}, {"L+B", 48},
        {"LBH", 112}, {"Hi ", 0},  {"Typ", 0},  {"---", 0},  {"...", 0},  {"   ", 0}};
    for (const auto& [name, value] : kWords)
        if (word == name) return value;
    if (!m.sid.SidxErrorShown) {
        m.sid.SidxErrorShown = true;
        m.host->MessageBox("hiba", word, MsgKind::Plain);
    }
    return 0;
}

} // namespace

void SidChooseOption(Machine& m, int32_t option) {
    FSIDControls& f = m.forms.FSID;
    f.Option = std::clamp(option, 0, 2);
    f.File1List = ListFiles(f.Option);
    // A selection stays when the new list holds it; otherwise the first entry.
    if (std::find(f.File1List.begin(), f.File1List.end(), f.File1) == f.File1List.end())
        f.File1 = f.File1List.empty() ? std::string() : f.File1List.front();
    OpenSelected(m);
}

void SidSelectFile(Machine& m, const std::string& name) {
    FSIDControls& f = m.forms.FSID;
    f.File1 = name;
    f.Label25 = f.Label26 = 0;
    SidReset(m);
    SidDecode(m);
    OpenSelected(m);
}

bool SidPlayFile(Machine& m, const std::string& name, std::string& error) {
    const int32_t option = HasExtension(name, ".sidx") ? 1 : HasExtension(name, ".dmp") ? 2 : 0;
    if (option == 0) {
        error = name + ": not a .sidx or .dmp file";
        return false;
    }
    SidChooseOption(m, option);
    const std::vector<std::string>& list = m.forms.FSID.File1List;
    if (std::find(list.begin(), list.end(), name) == list.end()) {
        error = name + ": not in the working directory";
        return false;
    }
    SidSelectFile(m, name);
    return true;
}

void SidPlayDmp(Machine& m) {
    Sid& s = m.sid;
    if (!s.PlayFile) return;
    uint8_t frame[kFrameBytes];
    // A short last frame is dropped.
    if (std::fread(frame, 1, kFrameBytes, s.PlayFile) != kFrameBytes) return;
    std::copy(std::begin(frame), std::end(frame), s.SidRegs);
}

void SidPlaySidx(Machine& m) {
    Sid& s = m.sid;
    std::string line;
    if (s.PlayFile && ReadLine(s.PlayFile, line)) SidApplySidxLine(m, line);
}

void SidApplySidxLine(Machine& m, std::string_view line) {
    int32_t* r = m.sid.SidRegs;
    for (int v = 0; v < Sid::kVoices; ++v) {
        const size_t col = size_t(v) * 28;
        int32_t* g = r + v * 7;
        if (const std::string f = Field(line, 11 + col, 4); !Dots(f))
            g[1] = Hex(f.substr(0, 2)), g[0] = Hex(f.substr(2));
        if (const std::string f = Field(line, 25 + col, 2); !Dots(f)) g[4] = Hex(f);
        if (const std::string f = Field(line, 28 + col, 4); f[0] != '.') {
            g[5] = Hex(f.substr(0, 1)) * 16 + Hex(f.substr(1, 1));
            g[6] = Hex(f.substr(2, 1)) * 16 + Hex(f.substr(3, 1));
        }
        if (const std::string f = Field(line, 33 + col, 3); !Dots(f))
            g[3] = Hex(f.substr(0, 1)), g[2] = Hex(f.substr(1));
    }
    if (const std::string f = Field(line, 95, 4); !Dots(f))
        r[22] = Hex(f.substr(0, 2)), r[21] = Hex(f.substr(2));
    if (const std::string f = Field(line, 100, 2); !Dots(f)) r[23] = Hex(f);
    const int32_t type = TypeWord(m, Field(line, 103, 3));
    if (const std::string f = Field(line, 107, 1); !Dots(f)) r[24] = Hex(f) + type;
}

} // namespace tvc
