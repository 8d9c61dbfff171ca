// The file commands of the main window's dialog: CAS files, snapshots and
// cartridges. Each has a byte-level half, which works on a span that one
// bounded reader filled (and which the fuzz targets call), and a file half,
// which reports a file that cannot be read or written with a message box and
// returns false.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace tvc {

class Machine;

constexpr int32_t kCasHeaderBytes = 144;
constexpr int32_t kCasBodyAt = 0x19EF; // BASIC's program area
constexpr size_t kSnapshotBytes = 246360;
constexpr size_t kSnapshotMemAt = 599;
constexpr const char* kSnapshotMagic = "LUMEKTVC02";
constexpr size_t kCartBytes = 16384;

// Reads at most `limit` bytes of a file; `length` gets its whole length.
// False when it cannot be opened or read.
bool ReadFileBounded(const std::string& name, size_t limit, std::vector<uint8_t>& bytes,
                     uint64_t& length);

// CAS: `bytes` are the file's first bytes, `length` its whole length.
void LoadCasBytes(Machine& m, std::span<const uint8_t> bytes, uint64_t length);
// The dialog's Text6/7/8 from BASIC's pointers, read through the memory map.
void xSaveCAS(Machine& m);
// The file image for Text6/Text7 (clamped, and the clamped values written back).
std::vector<uint8_t> SaveCasBytes(Machine& m);

// Snapshots. LoadSnapshotBytes is false, and changes nothing, on a wrong magic.
std::vector<uint8_t> SaveSnapshotBytes(Machine& m);
bool LoadSnapshotBytes(Machine& m, std::span<const uint8_t> bytes);
// The second, unused format.
std::vector<uint8_t> SaveSnapshotwwwBytes(Machine& m);

// Cartridge: fills the cartridge space, or MexMem for the expansion.
void PlaceCartridge(Machine& m, std::span<const uint8_t> bytes);

// The dialog's commands. `pattern` is the dialog's pattern ("*.cas", "*.tvs"),
// whose extension a save appends to `name`.
bool LoadCAS(Machine& m, const std::string& name);
bool SaveCAS(Machine& m, const std::string& name, const std::string& pattern = "*.cas");
bool LoadSnapShot(Machine& m, const std::string& name);
bool SaveSnapshot(Machine& m, const std::string& name, const std::string& pattern = "*.tvs");
bool SaveSnapshotwww(Machine& m, const std::string& name);
bool LoadCRT(Machine& m, const std::string& name);
void UnloadCRT(Machine& m);
// "Save MEX4MB": the whole expansion into `name` ("mex4mb.bin").
bool SaveMex4(Machine& m, const std::string& name = "mex4mb.bin");

// The run-time error of a file that cannot be opened; the command ends.
void ReportFileError(Machine& m, const std::string& name);
// Likewise for a file that cannot be written.
void ReportWriteError(Machine& m, const std::string& name);

} // namespace tvc
