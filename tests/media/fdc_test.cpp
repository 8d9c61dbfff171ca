// The floppy controller through its ports, and disk images with their boot record.
#include <gtest/gtest.h>

#include "asm/TextLib.h"
#include "core/MonitorText.h"
#include "hw/Ports.h"
#include "media/Disk.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

void Out(Machine& m, int32_t port, int32_t value) {
    PortOut(m, port, value);
}

std::string LastLog(const Machine& m) {
    const FdcLog& log = m.fdc.List4;
    return log.size() ? FdcLogText(log[log.size() - 1]) : "";
}

// An image whose byte f is a function of f, so any read names its offset.
std::vector<uint8_t> Pattern(size_t n) {
    std::vector<uint8_t> v(n);
    for (size_t f = 0; f < n; ++f)
        v[f] = static_cast<uint8_t>(f * 7 + (f >> 9));
    return v;
}

void Mount(TestMachine& t, const std::vector<uint8_t>& image, const char* name = "a.dsk") {
    t.dir->Write(name, image);
    ASSERT_EQ(DiskLoad(t.m(), name), DiskLoadResult::Loaded);
}

TEST(FdcCommand, RangesAtTheirEdges) {
    struct Case {
        int c;
        const char* text;
        int status, hw; // -1: unchanged from the 0x55 the test puts there
    };
    const Case cases[] = {
        {0x0F, "CMD Restore: 07", 128, 128},
        {0x10, "CMD Seek: 07", 0, 128},
        {0x1F, "CMD Seek: 07", 0, 128},
        {0x20, "CMD Step", -1, -1},
        {0x5F, "CMD Step-in", -1, -1},
        {0x60, "CMD Step-out", -1, -1},
        {0x80, "CMD Read Sector", 2, 128},
        {0x9F, "CMD Read Sector", 2, 128},
        {0xBF, "CMD Write Sector", -1, -1},
        {0xC0, "CMD Read Address", 0, 129},
        {0xCF, "CMD Read Address", 0, 129},
        {0xD0, "CMD Force Interrupt", -1, -1},
        {0xE0, "CMD Read Track", -1, -1},
        {0xF0, "CMD Write Track", -1, -1},
    };
    for (const Case& k : cases)
        for (int port : {0x0C, 0x0E, 0x10}) {
            TestMachine t;
            Fdc& f = t.m().fdc;
            Out(t.m(), 0x14, 0x02); // drive 1
            Out(t.m(), 0x11, 0x07);
            f.FdcStatus = f.FdcHwStatus = 0x55;
            f.DriveTrack[1] = 9;
            Out(t.m(), port, k.c);
            SCOPED_TRACE(std::to_string(k.c) + " port " + std::to_string(port));
            EXPECT_EQ(LastLog(t.m()), k.text);
            EXPECT_EQ(f.FdcStatus, k.status < 0 ? 0x55 : k.status);
            EXPECT_EQ(f.FdcHwStatus, k.hw < 0 ? 0x55 : k.hw);
            const bool restore = k.c < 0x10, seek = k.c >= 0x10 && k.c < 0x20;
            EXPECT_EQ(f.FdcTrack, restore ? 0 : 7);
            EXPECT_EQ(f.DriveTrack[1], restore ? 0 : seek ? 7 : 9);
            EXPECT_EQ(f.DriveRate[1], restore || seek ? (k.c & 3) : 0);
            EXPECT_EQ(f.DriveHeadLoad[1], restore || seek ? (k.c & 8) : 0);
            EXPECT_EQ(f.FdcCommand, k.c);
        }
}

TEST(FdcParameter, HighestDriveBitWinsAndFlagsGoToThatDrive) {
    for (int v : {0x00, 0x05, 0x0F, 0xF1, 0x10, 0xA8}) {
        TestMachine t;
        Out(t.m(), 0x14, v);
        const Fdc& f = t.m().fdc;
        int drive = 4;
        for (int bit = 3; bit >= 0 && drive == 4; --bit)
            if (v >> bit & 1) drive = bit;
        SCOPED_TRACE(v);
        EXPECT_EQ(f.FdcDrive, drive);
        EXPECT_EQ(f.DriveHeadLoad[drive], v >> 4 & 1);
        EXPECT_EQ(f.DriveParam5[drive], v >> 5 & 1);
        EXPECT_EQ(f.DriveParam6[drive], v >> 6 & 1);
        EXPECT_EQ(f.DriveParam7[drive], v >> 7 & 1);
        for (int d = 0; d < kFdcDrives; ++d)
            if (d != drive) {
                EXPECT_EQ(f.DriveParam5[d] + f.DriveParam6[d] + f.DriveParam7[d], 0);
            }
        EXPECT_EQ(LastLog(t.m()), "Write Parameter REG: " + Hex2(v));
    }
}

TEST(FdcRegisters, WritesAndReadsAreLogged) {
    struct Case {
        int port, value;
        const char* text;
    };
    TestMachine t;
    Machine& m = t.m();
    for (const Case& k : {Case{0x11, 0x2A, "Write Track REG 2A"},
                          {0x12, 0x03, "Write Sector REG: 03"},
                          {0x13, 0xC4, "Write Data: C4"}}) {
        Out(m, k.port, k.value);
        EXPECT_EQ(LastLog(m), k.text);
    }
    m.fdc.FdcStatus = 0x81;
    m.fdc.FdcHwStatus = 0x80;
    const size_t before = m.fdc.List4.size();
    EXPECT_EQ(PortIn(m, 0x10), 0x2A); // the status read is made, the track comes back
    EXPECT_EQ(FdcLogText(m.fdc.List4[before]), "Read Status REG: 81");
    EXPECT_EQ(FdcLogText(m.fdc.List4[before + 1]), "Read Track:2A");
    EXPECT_EQ(PortIn(m, 0x11), 0x2A);
    EXPECT_EQ(LastLog(m), "Read Track:2A");
    EXPECT_EQ(PortIn(m, 0x12), 0x03);
    EXPECT_EQ(LastLog(m), "Read Sector:03");
    EXPECT_EQ(PortIn(m, 0x14), 0x80);
    EXPECT_EQ(LastLog(m), "Read HW status REG:80");

    // The log keeps the newest records.
    const size_t total = kFdcLogLimit + 1234;
    for (size_t i = 0; i < total; ++i)
        Out(m, 0x13, int(i & 255));
    ASSERT_EQ(m.fdc.List4.size(), kFdcLogLimit);
    EXPECT_EQ(FdcLogText(m.fdc.List4[0]), "Write Data: " + Hex2(int((total - kFdcLogLimit) & 255)));
    EXPECT_EQ(LastLog(m), "Write Data: " + Hex2(int((total - 1) & 255)));
    m.fdc.List4.Clear();
    EXPECT_EQ(FdcLogListing(m.fdc), std::string(kFdcLogTitle) + "\n");
}

TEST(FdcData, ReadsTheTrackFourSectorsAtATime) {
    const auto image = Pattern(kDiskImageBytes);
    for (int track : {0, 3, 15, 16, 200}) {
        TestMachine t;
        Machine& m = t.m();
        Mount(t, image);
        Out(m, 0x11, track);
        Out(m, 0x10, 0x10); // seek
        Out(m, 0x12, 2);    // the sector register plays no part
        for (int i = 0; i < 513; ++i) {
            const int pos = i % 512;
            const int32_t offset = int16_t(uint16_t(track * 4 * 512 + pos));
            const int expect = offset < 0 ? 0 : image[size_t(offset)];
            ASSERT_EQ(PortIn(m, 0x13), expect) << track << " byte " << i;
            const int after = (pos + 1) % 512;
            EXPECT_EQ(LastLog(m), "Read Data: " + Hex2(expect) + "-" + std::to_string(after) +
                                      " : " + MonitorChar(expect));
            if (i == 511) {
                EXPECT_EQ(m.fdc.FdcStatus, 0);
                EXPECT_EQ(m.fdc.FdcHwStatus, 1);
            }
        }
        EXPECT_EQ(m.fdc.FdcBytePos, 1);
    }
}

TEST(FdcData, WritesChangeNoDataAndEmptyDrivesReadZero) {
    TestMachine t;
    Machine& m = t.m();
    EXPECT_EQ(PortIn(m, 0x13), 0); // no image at all
    Mount(t, Pattern(4096));
    const auto before = m.disk.DiskData;
    Out(m, 0x10, 0xA0);
    for (int i = 0; i < 600; ++i)
        Out(m, 0x13, i);
    EXPECT_EQ(m.disk.DiskData, before);
    EXPECT_EQ(m.fdc.FdcData, 599 & 255);
    Out(m, 0x14, 0x04); // drive 2: never loaded
    EXPECT_EQ(PortIn(m, 0x13), 0);

    // FdcInit clears the registers and keeps the image.
    Out(m, 0x14, 0xF2);
    Out(m, 0x11, 5);
    Out(m, 0x10, 0x1B);
    PortIn(m, 0x13);
    FdcInit(m);
    const Fdc& f = m.fdc;
    EXPECT_EQ(f.FdcTrack + f.FdcStatus + f.FdcHwStatus + f.FdcDrive + f.FdcBytePos, 0);
    EXPECT_EQ(f.DriveTrack[1] + f.DriveRate[1] + f.DriveHeadLoad[1] + f.DriveParam7[1], 0);
    EXPECT_EQ(PortIn(m, 0x13), Pattern(1)[0]);
}

TEST(DiskImages, SizesAndReloads) {
    struct Case {
        size_t size;
        DiskLoadResult result;
    };
    for (const Case& k : {Case{0, DiskLoadResult::Empty},
                          {1000, DiskLoadResult::Loaded},
                          {400000, DiskLoadResult::Loaded}}) {
        TestMachine t;
        Machine& m = t.m();
        const auto image = Pattern(k.size);
        t.dir->Write("d.dsk", image);
        EXPECT_EQ(DiskLoad(m, "d.dsk"), k.result) << k.size;
        if (k.result != DiskLoadResult::Loaded) {
            EXPECT_TRUE(m.disk.DiskData.empty());
            EXPECT_EQ(m.fdc.FdcStatus, 0);
            continue;
        }
        EXPECT_EQ(m.fdc.FdcStatus, 128);
        EXPECT_EQ(m.disk.DiskName, "d.dsk");
        for (int64_t f : {int64_t(0), int64_t(999), int64_t(1000), int64_t(kDiskImageBytes - 1),
                          int64_t(kDiskImageBytes)}) {
            const int expect = f < kDiskImageBytes && size_t(f) < k.size ? image[size_t(f)] : 0;
            EXPECT_EQ(DiskByte(m.disk, f, 0), expect) << k.size << " at " << f;
            EXPECT_EQ(m.disk.DiskData.size() > size_t(f) * 5 + 1 ? m.disk.DiskData[f * 5 + 1] : 0,
                      0);
        }
    }
    TestMachine t;
    Mount(t, std::vector<uint8_t>(kDiskImageBytes, 0xEE), "long.dsk");
    Mount(t, {1, 2, 3}, "short.dsk"); // the tail of the long one is gone
    EXPECT_EQ(DiskByte(t.m().disk, 3, 0), 0);
    EXPECT_EQ(DiskLoad(t.m(), "missing.dsk"), DiskLoadResult::Unreadable);
    EXPECT_EQ(t.m().disk.DiskName, "short.dsk");
}

TEST(DiskBootRecord, FieldsAndQuirks) {
    struct Case {
        uint8_t b0, b2;
        uint8_t total[4];
        int32_t totalSector; // low half sign-extended, high half added shifted by 16
    };
    const Case cases[] = {
        {0xEB, 0x90, {0x00, 0x80, 0x00, 0x00}, -32768},
        {0xEB, 0x5A, {0x00, 0x80, 0x01, 0x00}, 32768},
        {0xE9, 0x90, {0xFF, 0xFF, 0xFF, 0xFF}, -65537},
        {0x00, 0x5A, {0x10, 0x20, 0x30, 0x40}, 0x40302010},
    };
    for (const Case& k : cases) {
        std::vector<uint8_t> img(512);
        for (size_t i = 0; i < img.size(); ++i)
            img[i] = uint8_t(0x40 + i);
        img[0] = k.b0;
        img[2] = k.b2;
        std::copy(k.total, k.total + 4, img.begin() + 32);
        TestMachine t;
        Mount(t, img);
        const BootRecord& b = t.m().disk.Boot;
        auto w = [&](int f) { return img[f] | img[f + 1] << 8; };
        EXPECT_EQ(b.Valid, k.b0 == 0xEB && k.b2 != 0x5A);
        // Raw positions 3..9 of the interleaved array: only 5 is drive 0's byte 1.
        std::string creator(7, '\0');
        creator[2] = char(img[1]);
        EXPECT_EQ(b.Creator, creator);
        EXPECT_EQ(std::vector<int64_t>({b.SectorSize, b.SecPerCluster, b.Reserved, b.Fats,
                                        b.RootEntries, b.TotalSector, b.Media, b.SecPerFat,
                                        b.SecPerTrack, b.Heads, b.LastField}),
                  std::vector<int64_t>({w(11), img[13], w(14), img[16], img[17] | img[28] << 8,
                                        k.totalSector, img[21], w(22), w(24), w(26), img[36]}));
    }
}

} // namespace
} // namespace tvc::test
