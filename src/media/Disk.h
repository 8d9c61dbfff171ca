// Disk images: raw 360 KB floppies (".dsk", no header), held for five drives
// interleaved in one array, and the boot record the hardware monitor shows.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tvc {

class Machine;

inline constexpr int32_t kDiskImageBytes = 0x5A000; // 368,640
inline constexpr const char* kDefaultDisk = "default.dsk";

struct BootRecord {
    int32_t Valid = 0;
    std::string Creator; // raw bytes, one character each
    int32_t SectorSize = 0, SecPerCluster = 0, Reserved = 0, Fats = 0, RootEntries = 0;
    int32_t TotalSector = 0;
    int32_t Media = 0, SecPerFat = 0, SecPerTrack = 0, Heads = 0, LastField = 0;
};

struct Disk {
    // Byte f of drive d at f * 5 + d; empty until an image is loaded, and an
    // empty array reads 0 everywhere.
    std::vector<uint8_t> DiskData;
    std::string DiskName;
    BootRecord Boot;
};

// The byte at image offset f of drive d; 0 outside the image or with none.
uint8_t DiskByte(const Disk& disk, int64_t f, int drive);

enum class DiskLoadResult { Loaded, Empty, Unreadable };

// Loads the first kDiskImageBytes of a file into drive 0 (the rest zero),
// sets FdcStatus to 128 and reads the boot record. A file that cannot be
// read or is empty leaves everything as it was; the caller decides whether
// to tell anyone.
DiskLoadResult DiskLoad(Machine& m, const std::string& path);

// Fills m.disk.Boot from drive d's image, with the record's own quirks.
void DiskBootRead(Machine& m, int drive = 0);

} // namespace tvc
