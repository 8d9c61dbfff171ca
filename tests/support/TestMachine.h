// Test support: a machine built the way the application builds one, over a
// scratch working directory holding ROM files, and a host that records what
// the core tells the user.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "core/Machine.h"

namespace tvc::test {

class RecordingHost : public Host {
  public:
    struct Message {
        std::string text, title;
    };
    std::vector<Message> messages, fatals;
    std::vector<std::string> label1;
    int doEvents = 0, monitorRedraws = 0, pictures = 0;
    std::vector<std::pair<int, int>> beeps;

    void DoEvents() override { ++doEvents; }
    void MessageBox(std::string_view text, std::string_view title, MsgKind) override {
        messages.push_back({std::string(text), std::string(title)});
    }
    void Fatal(std::string_view text, std::string_view title) override {
        fatals.push_back({std::string(text), std::string(title)});
    }
    void SetStatus(StatusField f, std::string_view text) override {
        if (f == StatusField::Label1) label1.emplace_back(text);
    }
    void MonitorRedraw() override { ++monitorRedraws; }
    void Beep(int hz, int ms) override { beeps.emplace_back(hz, ms); }
    void PictureReady() override { ++pictures; }
};

// A fresh scratch directory that is removed with the object. While it lives
// it is the process's working directory.
class ScratchDir {
  public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::filesystem::path& path() const { return dir_; }
    // Writes a file of these bytes into the directory.
    void Write(const std::string& name, const std::vector<uint8_t>& bytes) const;

  private:
    std::filesystem::path dir_, previous_;
};

// Writes every ROM file the loader may ask for, each filled with `fill`
// (so a test can tell where a byte came from), into the current directory.
void WriteRomSet(const ScratchDir& dir, uint8_t fill = 0);

// Gives this process's shared maps their own names, "<kind>-<pid>", and
// the ctest run's mark (TVC_TEST_RUN) behind, by which the run's check finds
// anything a test left in /dev/shm.
std::string TagSharedMemory(const std::string& kind);

// A machine after MachineInit and MachineReset, built in its own scratch
// directory with a full ROM set. The RAM pages are mapped in (P2 = 0xB0:
// U0 at 0, U1 at 0x4000, U2 at 0x8000, U3 at 0xC000) unless romPaging is set.
struct TestMachine {
    explicit TestMachine(bool romPaging = false);
    std::unique_ptr<ScratchDir> dir;
    RecordingHost host;
    std::unique_ptr<Machine> machine;
    Machine& m() { return *machine; }
    Z80& cpu() { return machine->cpu; }

    // Puts bytes into RAM through MemWrite and points RegPC at them.
    void Load(int32_t address, const std::vector<uint8_t>& bytes, bool setPc = true);
    // Runs whole passes of the run loop (one instruction each).
    void Step(int count = 1);
};

} // namespace tvc::test
