#include "support/TestMachine.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <random>

#include "core/RunLoop.h"
#include "hw/MachineSetup.h"
#include "hw/Memory.h"

namespace tvc::test {

namespace fs = std::filesystem;

std::string TagSharedMemory(const std::string& kind) {
    std::string tag = kind + "-" + std::to_string(::getpid());
    if (const char* run = std::getenv("TVC_TEST_RUN"); run && *run) tag += std::string("-") + run;
    ::setenv("TVC_SHM_TAG", tag.c_str(), 1);
    return tag;
}

ScratchDir::ScratchDir() {
    static std::mt19937_64 rng{std::random_device{}()};
    previous_ = fs::current_path();
    dir_ = fs::temp_directory_path() /
           ("tvc-test-" + std::to_string(getpid()) + "-" + std::to_string(rng()));
    fs::create_directories(dir_);
    fs::current_path(dir_);
}

ScratchDir::~ScratchDir() {
    std::error_code ec;
    fs::current_path(previous_, ec);
    fs::remove_all(dir_, ec);
}

void ScratchDir::Write(const std::string& name, const std::vector<uint8_t>& bytes) const {
    std::ofstream out(dir_ / name, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

void WriteRomSet(const ScratchDir& dir, uint8_t fill) {
    for (const RomFile& rom : kRomFiles)
        dir.Write(rom.name, std::vector<uint8_t>(static_cast<size_t>(rom.bytesRead), fill));
}

TestMachine::TestMachine(bool romPaging)
    : dir(std::make_unique<ScratchDir>()), machine(std::make_unique<Machine>(host)) {
    WriteRomSet(*dir);
    MachineInit(*machine);
    MachineReset(*machine);
    if (!romPaging) machine->bus.PortLatch[2] = 0xB0;
    machine->run.RunFlag = 1;
}

void TestMachine::Load(int32_t address, const std::vector<uint8_t>& bytes, bool setPc) {
    for (size_t i = 0; i < bytes.size(); ++i)
        MemWrite(*machine, address + static_cast<int32_t>(i), bytes[i]);
    if (setPc) machine->cpu.RegPC = address;
}

void TestMachine::Step(int count) {
    for (int i = 0; i < count; ++i)
        RunPass(*machine);
}

} // namespace tvc::test
