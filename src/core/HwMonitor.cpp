#include "core/HwMonitor.h"

#include <cstdio>

#include "asm/TextLib.h"
#include "core/Machine.h"
#include "core/MonitorText.h"
#include "hw/Memory.h"
#include "hw/Ports.h"

namespace tvc {

namespace {

class Fields {
  public:
    explicit Fields(std::vector<HwField>& out) : out_(out) {}
    void Group(const char* g) { group_ = g; }
    void Text(std::string caption, std::string text) {
        out_.push_back({group_, std::move(caption), std::move(text)});
    }
    void Num(std::string caption, int64_t v) { Text(std::move(caption), std::to_string(v)); }
    void Hex(std::string caption, int32_t v) { Text(std::move(caption), Hex2(v)); }
    void Light(std::string caption, bool lit, int32_t off = kButtonFace) {
        out_.push_back({group_, std::move(caption), lit ? "1" : "0", true, lit, off});
    }

  private:
    std::vector<HwField>& out_;
    std::string group_;
};

// A colour byte's four bits (blue, red, green, intensity) from bit `first`
// on, every second bit, as the colour number 0-15.
int32_t Colour4(int32_t v, int first) {
    int32_t c = 0;
    for (int i = 0; i < 4; ++i)
        c |= ((v >> (first + 2 * i)) & 1) << i;
    return c;
}

std::string Named(const char* text, int i, const char* tail = "") {
    std::string s(text);
    s += std::to_string(i);
    s += tail;
    return s;
}

std::string Chars(const uint8_t* bytes, int n) {
    std::string s;
    for (int i = 0; i < n; ++i)
        s += MonitorChar(bytes[i]);
    return s;
}

const char* Pick(const char* const* names, size_t count, int64_t i) {
    return i >= 0 && size_t(i) < count ? names[i] : "?";
}

void AddPorts(Fields& f, Machine& m) {
    const uint8_t* p = m.bus.PortLatch;
    f.Group("PORT 0");
    f.Hex("P0", p[0]);
    f.Group("Border");
    f.Num("Border", Colour4(p[0], 1));
    f.Group("PORT 2");
    f.Hex("P2", p[2]);
    f.Group("PORT 3");
    f.Hex("P3", p[3]);
    f.Num("Card", (p[3] >> 6) & 3);
    f.Group("PORT 4,5");
    f.Hex("P4", p[4]);
    f.Num("Pitch", p[4] | (p[5] & 15) << 8);
    f.Group("PORT 5");
    f.Hex("P5", p[5]);
    f.Light("Tone on", p[5] & 0x10);
    f.Light("IT enable", p[5] & 0x20);
    f.Group("PORT 6");
    f.Hex("P6", p[6]);
    f.Num("Level", (p[6] >> 2) & 15);
    f.Light("Strobe", p[6] & 0x80);
    f.Group("Port 3");
    f.Num("Key row", p[3] & 15);
    f.Group("Palette");
    for (int i = 0; i < 4; ++i)
        f.Num(Named("Pal", i), Colour4(p[0x60 + i], 0));
    f.Group("Mode");
    static const char* const kModes[] = {"2", "4", "16", "16"};
    f.Text("Mode", kModes[p[6] & 3]);
}

// One light per row of the paging tables, by the tests MemRead makes.
void AddMemoryBank(Fields& f, Machine& m) {
    const uint8_t* p = m.bus.PortLatch;
    const int p2 = p[2], p3 = p[3], p15 = p[0x0F], p24 = p[0x18];
    f.Group("Memory Bank");
    static const char* const k0[] = {"0000 SYS", "0000 CART", "0000 U0", "0000 U3"};
    for (int i = 0; i < 4; ++i)
        f.Light(k0[i], (p2 & 0x18) == i * 8);
    f.Light("4000 U1", !(p2 & 4));
    f.Light("4000 VID", p2 & 4);
    f.Light("8000 U2", p2 & 0x20);
    f.Light("8000 VID*", !(p2 & 0x20));
    static const char* const kC[] = {"C000 CART", "C000 SYS", "C000 U3**", "C000 EXT"};
    for (int i = 0; i < 4; ++i)
        f.Light(kC[i], (p2 & 0xC0) == i * 0x40);
    for (int i = 0; i < 4; ++i)
        f.Light(Named("IOM", i), (p3 & 0xC0) == i * 0x40);
    for (int i = 0; i < 4; ++i)
        f.Light(Named("ROM page ", i), (p24 & 0x30) == i * 0x10);
    for (int i = 0; i < 4; ++i)
        f.Light(Named("VID", i), (p15 & 3) == i);
    for (int i = 0; i < 4; ++i)
        f.Light(Named("VID", i, "*"), ((p15 >> 2) & 3) == i);
    f.Text("Card 0 ROM", Chars(&m.bus.Mem[0x38000], 4));
    std::string c000;
    if ((p2 & 0xC0) == 0xC0) {
        uint8_t b[4];
        for (int i = 0; i < 4; ++i)
            b[i] = static_cast<uint8_t>(MemRead(m, 0xC000 + i));
        c000 = Chars(b, 4);
    }
    f.Text("C000", c000);
}

void AddSound(Fields& f, Machine& m) {
    const uint8_t* p = m.bus.PortLatch;
    const int32_t pitch = p[4] | (p[5] & 15) << 8;
    f.Group("SOUND");
    f.Num("SoundTimer", m.run.SoundTimer);
    f.Num("Pitch", pitch);
    char hz[32];
    std::snprintf(hz, sizeof hz, "%.1f", 195312.5 / (4096 - pitch));
    f.Text("Freq", hz);
    f.Group("Volume");
    f.Num("Volume", (p[6] >> 2) & 15);
    f.Group("Sound IT");
    f.Light("Int enable", p[5] & 0x20);
}

void AddCrtc(Fields& f, Machine& m) {
    const int32_t* r = m.crtc.CrtcReg;
    f.Group("CRTC");
    static const char* const kNames[] = {"char\\col-1",  "char\\col*", "H sync-1",     "HV width",
                                         "rows\\screen", "R5",         "row\\screen*", "V sync-1",
                                         "interlace",    "row\\chrow"};
    for (int i = 0; i < 10; ++i)
        f.Num(kNames[i], r[i]);
    for (int i = 0; i < 4; ++i)
        f.Light(Named("CSTL", i), (r[8] >> (4 + i)) & 1);
    f.Num("cursor start", r[10] & 31);
    f.Num("CU/SO", (r[10] >> 5) & 3);
    f.Num("R11", r[11]);
    static const char* const kHigh[] = {"H memory", "L memory", "H cursor",
                                        "L cursor", "H pen",    "L pen"};
    for (int i = 0; i < 6; ++i)
        f.Num(kHigh[i], r[12 + i]);
    f.Num("Selected", r[18]);
}

void AddInterrupts(Fields& f, Machine& m) {
    const int s = m.bus.PortLatch[0x59];
    f.Group("INT (Port 89)");
    for (int i = 0; i < 4; ++i)
        f.Light(Named("Slot ", i), (s >> i) & 1);
    f.Light("Cu/ha IT", (s >> 4) & 1);
    f.Light("IRQ", m.cpu.IrqRequest != 0);
    f.Light("Cursor IT", m.crtc.CrtcReg[10] < 4);
    f.Light("Int enable", m.cpu.IFF1 != 0);
    f.Light("Int enabled", m.forms.TVCmon.Check3);
    f.Light("ACTIVE", m.run.RunFlag == 1);

    f.Group("Slot ID (Port 90)");
    static const char* const kCards[] = {"RS232", "?", "Floppy", "Empty"};
    const int32_t id = PortIn(m, 0x5A);
    for (int i = 0; i < 4; ++i)
        f.Text(Named("Slot ", i), kCards[(id >> (2 * i)) & 3]);
}

void AddFloppy(Fields& f, Machine& m) {
    const Fdc& c = m.fdc;
    f.Group("FD1793");
    f.Hex("Status", c.FdcStatus);
    f.Hex("Track", c.FdcTrack);
    f.Hex("Sector", c.FdcSector);
    f.Hex("Data", c.FdcData);
    f.Hex("HWStat", c.FdcHwStatus);
    f.Hex("Command", c.FdcCommand);
    f.Hex("Parameterf", c.FdcParam);
    f.Num("Drive", c.FdcDrive);
    f.Num("Position", c.FdcBytePos);
    for (int d = 0; d < kFdcDrives; ++d) {
        const std::string n = Named(" ", d);
        f.Num(std::string("Track").append(n), c.DriveTrack[d]);
        f.Num(std::string("Sector").append(n), c.DriveSector[d]);
        f.Num(std::string("Rate").append(n), c.DriveRate[d]);
        f.Light(std::string("Head").append(n), c.DriveHeadLoad[d]);
        f.Light(std::string("P5").append(n), c.DriveParam5[d]);
        f.Light(std::string("P6").append(n), c.DriveParam6[d]);
        f.Light(std::string("P7").append(n), c.DriveParam7[d]);
    }

    const BootRecord& b = m.disk.Boot;
    f.Group("Disk info");
    f.Text("Disk", m.disk.DiskName);
    f.Light("Valid", b.Valid != 0);
    std::string creator;
    for (char ch : b.Creator)
        creator += MonitorChar(static_cast<uint8_t>(ch));
    f.Text("Creator", creator);
    f.Num("Sector Size", b.SectorSize);
    f.Num("SecPerCluster", b.SecPerCluster);
    f.Num("Reserved", b.Reserved);
    f.Num("FATs", b.Fats);
    f.Num("RootEntries", b.RootEntries);
    f.Num("TotalSector", b.TotalSector);
    f.Num("Media", b.Media);
    f.Num("SecPerFAT", b.SecPerFat);
    f.Num("SecPerTrack", b.SecPerTrack);
    f.Num("Heads", b.Heads);
    f.Num("Last", b.LastField);
    f.Num("Log lines", int64_t(c.List4.size()));
}

void AddSerial(Fields& f, Machine& m) {
    const uint8_t* mem = m.bus.Mem.data();
    const int flags = mem[0x0B6A];
    f.Group("Serial");
    static const char* const kBaud[] = {"110",  "150",  "300",  "600",  "1200",
                                        "2400", "4800", "9600", "19200"};
    f.Text("baud", Pick(kBaud, std::size(kBaud), mem[0x0B69]));
    f.Text("data bit", flags & 0x04 ? "8" : "7");
    f.Text("stop bit", flags & 0x10 ? "2" : "1");
    f.Text("parity check", flags & 0x20 ? "on" : "off");
    f.Text("parity", flags & 0x80 ? "odd" : "even");
    f.Light("SER_OK", mem[0x0B71] == 0, kLightAlarm);
}

std::string JsonString(const std::string& s) {
    std::string out = "\"";
    for (unsigned char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            char esc[8];
            std::snprintf(esc, sizeof esc, "\\u%04x", c);
            out += esc;
        } else {
            out += static_cast<char>(c);
        }
    }
    return out + "\"";
}

void Key(std::string& out, const char* name) {
    out += "  \"";
    out += name;
    out += "\": ";
}

std::string JsonArray(const uint8_t* v, int n) {
    std::string out = "[";
    for (int i = 0; i < n; ++i) {
        if (i) out += ',';
        out += std::to_string(v[i]);
    }
    out += ']';
    return out;
}

} // namespace

std::vector<HwField> HwMonitorFields(Machine& m) {
    std::vector<HwField> out;
    out.reserve(200);
    Fields f(out);
    AddPorts(f, m);
    AddMemoryBank(f, m);
    AddSound(f, m);
    AddCrtc(f, m);
    AddInterrupts(f, m);
    AddFloppy(f, m);
    AddSerial(f, m);
    return out;
}

HwPlots HwMonitorPlots(const Machine& m) {
    HwPlots p;
    for (int i = 0; i < kHwPlotPoints; ++i) {
        p.tone[i] = m.sound.ToneSlots[i];
        const size_t at = 44 + size_t(i); // past the wave header
        p.wave[i] = at < m.sound.WaveImage.size() ? m.sound.WaveImage[at] : 0;
    }
    return p;
}

std::string HwMonitorJson(Machine& m) {
    std::string out = "{\n  \"fields\": {";
    std::string group;
    for (const HwField& f : HwMonitorFields(m)) {
        if (f.group != group) {
            out += group.empty() ? "\n    " : "\n    },\n    ";
            out += JsonString(f.group);
            out += ": {";
            group = f.group;
        } else {
            out += ",";
        }
        out += "\n      ";
        out += JsonString(f.caption);
        out += ": ";
        out += f.isLight ? (f.lit ? "true" : "false") : JsonString(f.text);
    }
    out += "\n    }\n  },\n";
    const Fdc& c = m.fdc;
    auto num = [&](const char* name, int64_t v) {
        Key(out, name);
        out += std::to_string(v);
        out += ",\n";
    };
    num("FdcStatus", c.FdcStatus);
    num("FdcHwStatus", c.FdcHwStatus);
    num("FdcTrack", c.FdcTrack);
    num("FdcSector", c.FdcSector);
    num("FdcData", c.FdcData);
    num("FdcDrive", c.FdcDrive);
    num("FdcBytePos", c.FdcBytePos);
    const std::pair<const char*, const uint8_t*> drives[] = {
        {"DriveRate", c.DriveRate},     {"DriveHeadLoad", c.DriveHeadLoad},
        {"DriveTrack", c.DriveTrack},   {"DriveSector", c.DriveSector},
        {"DriveParam5", c.DriveParam5}, {"DriveParam6", c.DriveParam6},
        {"DriveParam7", c.DriveParam7}};
    for (const auto& [name, v] : drives) {
        Key(out, name);
        out += JsonArray(v, kFdcDrives);
        out += ",\n";
    }
    const BootRecord& b = m.disk.Boot;
    Key(out, "DiskName");
    out += JsonString(m.disk.DiskName);
    out += ",\n";
    out += "  \"Boot\": {\"Valid\": ";
    out += std::to_string(b.Valid);
    out += ", \"Creator\": ";
    out += JsonArray(reinterpret_cast<const uint8_t*>(b.Creator.data()), int(b.Creator.size()));
    const std::pair<const char*, int32_t> rec[] = {{"SectorSize", b.SectorSize},
                                                   {"SecPerCluster", b.SecPerCluster},
                                                   {"Reserved", b.Reserved},
                                                   {"Fats", b.Fats},
                                                   {"RootEntries", b.RootEntries},
                                                   {"TotalSector", b.TotalSector},
                                                   {"Media", b.Media},
                                                   {"SecPerFat", b.SecPerFat},
                                                   {"SecPerTrack", b.SecPerTrack},
                                                   {"Heads", b.Heads},
                                                   {"LastField", b.LastField}};
    for (const auto& [name, v] : rec) {
        out += ", \"";
        out += name;
        out += "\": ";
        out += std::to_string(v);
    }
    out += "}\n}\n";
    return out;
}

} // namespace tvc
