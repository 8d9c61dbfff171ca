// The memory and latch arrays of the machine, as the page registers and the
// devices see them.
//
// Mem layout (offsets into one flat array):
//   0x00000 U0  0x04000 U1  0x08000 U2  0x0C000 U3   (16 KB RAM each)
//   0x10000 video page 0    0x14000 cartridge image  0x18000 system ROM (2 x 8 KB)
//   0x1E000 extension ROM (8 KB)
//   0x20000, 0x24000, 0x28000 video pages 1 to 3
//   0x2E000 I/O card 1 window (its first 4 KB are card 0's RAM)
//   0x30000 I/O card 2 window (sound card)  0x32000 I/O card 3 window
//   0x38000 I/O card 0 ROM, four 4 KB pages
#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

namespace tvc {

constexpr int32_t kMemSize = 0x3C001; // indexes 0 to 0x3C000
constexpr int32_t kMexPageSize = 16384;
constexpr int32_t kMexPages = 256;
constexpr int32_t kKeyRows = 11;
constexpr const char* kMexCartName = "mex4mb.crt";

struct Bus {
    std::vector<uint8_t> Mem = std::vector<uint8_t>(kMemSize);
    std::vector<uint8_t> MexMem; // 256 pages of 16 KB while the MEX4MB cartridge is loaded
    uint8_t PortLatch[256] = {};
    uint8_t KeyMatrix[kKeyRows] = {}; // a set bit is a key held down
    std::string CartName;             // the loaded cartridge file; empty for none
    bool MexActive = false;           // CartName is the MEX4MB cartridge
    int32_t VideoErrorEnabled = 0;    // the memory error simulator's video fault

    // The fast path of MemRead and MemWrite, kept by MemoryMapChanged
    // (hw/Memory.h): for each 16 KB range of 0 to 0xFFFF the offset in Mem it
    // reaches, or -1 where the range takes the chain of tests. All -1 is
    // always correct, only slower.
    int32_t ReadPage[4] = {-1, -1, -1, -1};
    int32_t WritePage[4] = {-1, -1, -1, -1};

    void SetCartName(std::string name) {
        CartName = std::move(name);
        MexActive = CartName == kMexCartName;
        std::fill(std::begin(ReadPage), std::end(ReadPage), -1);
        std::fill(std::begin(WritePage), std::end(WritePage), -1);
    }
};

} // namespace tvc
