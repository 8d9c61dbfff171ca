// The runner's link options: serial bytes in and out of a program, the
// printer's bytes, the error simulator's settings, and a bridge that is gone
// with the run.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

namespace fs = std::filesystem;

// Echoes the serial input to the serial port and the printer, then halts:
//   0000 IN A,(21h) / AND 2 / JR Z,done / IN A,(20h) / OUT (20h),A /
//        OUT (1),A / LD A,0 / OUT (6),A / JR 0000 / done: HALT
const std::vector<uint8_t> kCopy = {0xDB, 0x21, 0xE6, 0x02, 0x28, 0x0C, 0xDB, 0x20, 0xD3, 0x20,
                                    0xD3, 0x01, 0x3E, 0x00, 0xD3, 0x06, 0x18, 0xEE, 0x76};

TEST(HeadlessLinks, SerialInOutAndPrinterOut) {
    ScratchDir dir;
    WriteRomSet(dir);
    dir.Write("prog.bin", kCopy);
    std::vector<uint8_t> in;
    for (int i = 0; i < 256; ++i)
        in.push_back(static_cast<uint8_t>(i));
    dir.Write("in.bin", in);
    const std::string d = dir.path().string();
    const RunResult r = RunHeadless("--dir " + d +
                                    " --port 2=0xB0 --load-bin prog.bin --serial-in in.bin "
                                    "--serial-out out.bin --printer-out print.bin --steps 5000");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(Slurp(dir.path() / "out.bin"), std::string(in.begin(), in.end()));
    std::string printed;
    for (uint8_t b : in)
        printed.push_back(static_cast<char>(PrinterCode(b)));
    EXPECT_EQ(Slurp(dir.path() / "print.bin"), printed);
}

TEST(HeadlessLinks, ErrorSimSettingsAndTheirMistakes) {
    ScratchDir dir;
    WriteRomSet(dir);
    const std::string d = "--dir " + dir.path().string();
    // Bank 0x4000 is filled at each picture; the monitor reads it back.
    const RunResult ok = RunHeadless(
        d +
        " --errorsim banks=0100,option=1,bits=3,video=0 --frames 5 --dump-mem 0x4000:4:bank.bin");
    ASSERT_EQ(ok.status, 0) << ok.out;
    EXPECT_EQ(Slurp(dir.path() / "bank.bin"), std::string(4, '\xAA'));
    for (const char* bad : {"video=2", "option=3", "bits=256", "banks=012", "banks=00100",
                            "speed=1", "", "video=1,"}) {
        const RunResult r = RunHeadless(d + " --errorsim '" + std::string(bad) + "' --steps 1");
        EXPECT_EQ(r.status, 2) << bad;
        EXPECT_NE(r.out.find("--errorsim takes"), std::string::npos) << bad << r.out;
    }
}

TEST(HeadlessLinks, ABridgeLeavesNothingBehind) {
    setenv("TVC_SHM_TAG", ("hl-" + std::to_string(getpid())).c_str(), 1);
    ScratchDir dir;
    WriteRomSet(dir);
    const RunResult r =
        RunHeadless("--dir " + dir.path().string() + " --serial-bridge my.pty --frames 100");
    EXPECT_EQ(r.status, 0) << r.out;
    EXPECT_FALSE(fs::exists(fs::symlink_status(dir.path() / "my.pty")));
    EXPECT_FALSE(fs::exists(SerialBridge::LockPath()));
    MMapper map;
    EXPECT_FALSE(map.OpenMap(kSerialMapName, kSerialRecordSize));
}

} // namespace
} // namespace tvc::test
