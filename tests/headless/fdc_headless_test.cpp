// The floppy card from the command line: an image mounted by --disk read by a
// program, the boot record in --dump-hw, and the log in --dump-fdc-log.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(HeadlessDisk, ProgramSeeksTrack3AndReadsASector) {
    ScratchDir dir;
    WriteRomSet(dir);
    std::vector<uint8_t> img(8192);
    for (size_t f = 0; f < img.size(); ++f)
        img[f] = uint8_t(f ^ (f >> 8));
    img[0] = 0xEB, img[2] = 0x90;
    img[32] = 0x00, img[33] = 0x80, img[34] = 0x01, img[35] = 0x00; // TotalSector 32768
    dir.Write("mine.dsk", img);
    dir.Write("default.dsk", std::vector<uint8_t>(100, 0x11));
    // LD A,3; OUT (11h),A; LD A,10h; OUT (10h),A; LD HL,1000h; LD BC,512;
    // loop: IN A,(13h); LD (HL),A; INC HL; DEC BC; LD A,B; OR C; JR NZ,loop; HALT
    dir.Write("prog.bin", {0x3E, 0x03, 0xD3, 0x11, 0x3E, 0x10, 0xD3, 0x10, 0x21, 0x00, 0x10, 0x01,
                           0x00, 0x02, 0xDB, 0x13, 0x77, 0x23, 0x0B, 0x78, 0xB1, 0x20, 0xF7, 0x76});
    const std::string d = dir.path().string();
    const RunResult r = RunHeadless("--dir " + d +
                                    " --disk mine.dsk --port 2=0xB0 --load-bin prog.bin --reg "
                                    "RegPC=0 --frames 1 --dump-mem 0x1000:512:sector.bin "
                                    "--dump-hw hw.json --dump-fdc-log fdc.txt");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string sector = Slurp(dir.path() / "sector.bin");
    EXPECT_EQ(sector, std::string(img.begin() + 3 * 4 * 512, img.begin() + 3 * 4 * 512 + 512));
    const std::string hw = Slurp(dir.path() / "hw.json");
    EXPECT_NE(hw.find("\"TotalSector\": 32768"), std::string::npos) << hw;
    EXPECT_NE(hw.find("\"Valid\": 1"), std::string::npos);
    EXPECT_NE(hw.find("\"DiskName\": \"mine.dsk\""), std::string::npos);
    const std::string log = Slurp(dir.path() / "fdc.txt");
    EXPECT_EQ(log.rfind("*** FDD command log ***!\nWrite Track REG 03\nCMD Seek: 03\n", 0), 0u)
        << log.substr(0, 200);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1 + 2 + 512);

    EXPECT_EQ(RunHeadless("--dir " + d + " --disk none.dsk").status, 1);
    EXPECT_EQ(RunHeadless("--dir " + d + " --dump-hw no/such/x.json").status, 1);
    EXPECT_EQ(RunHeadless("--dir " + d + " --dump-fdc-log no/such/x.txt").status, 1);
}

} // namespace
} // namespace tvc::test
