#include "media/Disk.h"

#include <fstream>

#include "core/Machine.h"

namespace tvc {

uint8_t DiskByte(const Disk& disk, int64_t f, int drive) {
    if (f < 0 || f >= kDiskImageBytes || drive < 0 || drive >= kFdcDrives) return 0;
    const size_t at = static_cast<size_t>(f) * kFdcDrives + static_cast<size_t>(drive);
    return at < disk.DiskData.size() ? disk.DiskData[at] : 0;
}

DiskLoadResult DiskLoad(Machine& m, const std::string& path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    if (!in) return DiskLoadResult::Unreadable;
    const std::streamoff length = in.tellg();
    if (length < 0) return DiskLoadResult::Unreadable;
    if (length == 0) return DiskLoadResult::Empty;
    // Only the image's size is ever read, however large the file.
    std::vector<uint8_t> image(kDiskImageBytes, 0);
    in.seekg(0);
    in.read(reinterpret_cast<char*>(image.data()), kDiskImageBytes);
    if (in.bad()) return DiskLoadResult::Unreadable;

    Disk& d = m.disk;
    d.DiskName = path;
    d.DiskData.assign(size_t(kDiskImageBytes) * kFdcDrives, 0);
    for (int32_t f = 0; f < kDiskImageBytes; ++f)
        d.DiskData[size_t(f) * kFdcDrives] = image[size_t(f)];
    m.fdc.FdcStatus = 128;
    DiskBootRead(m, 0);
    return DiskLoadResult::Loaded;
}

void DiskBootRead(Machine& m, int drive) {
    const Disk& d = m.disk;
    auto byte = [&](int32_t f) { return int32_t(DiskByte(d, f, drive)); };
    auto word = [&](int32_t f) { return byte(f) | byte(f + 1) << 8; };
    BootRecord r;
    r.Valid = (byte(0) == 0xEB && byte(2) != 0x5A) ? 1 : 0;
    // Raw array positions, not image offsets: the interleaving mixes drives.
    for (int32_t p = 3; p <= 9; ++p) {
        const size_t at = size_t(p + drive);
        r.Creator += static_cast<char>(at < d.DiskData.size() ? d.DiskData[at] : 0);
    }
    r.SectorSize = word(11);
    r.SecPerCluster = byte(13);
    r.Reserved = word(14);
    r.Fats = byte(16);
    r.RootEntries = byte(17) | byte(28) << 8; // the high byte comes from 28, not 18
    r.TotalSector = word(19);
    r.Media = byte(21);
    r.SecPerFat = word(22);
    r.SecPerTrack = word(24);
    r.Heads = word(26);
    // The 32-bit count at 32: low half sign-extended, high half added shifted.
    const int32_t low = static_cast<int16_t>(word(32));
    r.TotalSector =
        static_cast<int32_t>(static_cast<uint32_t>(low) + (static_cast<uint32_t>(word(34)) << 16));
    r.LastField = byte(36);
    m.disk.Boot = r;
}

} // namespace tvc
