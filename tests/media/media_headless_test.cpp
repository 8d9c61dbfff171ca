// One headless round trip per medium, with the built-in monitor's ROMs.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/Headless.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

namespace fs = std::filesystem;

// A scratch directory holding the built ROMs; --dir points at it.
struct RomDir {
    ScratchDir dir;
    RomDir() {
        for (const auto& e : fs::directory_iterator(TVC_FIRMWARE_DIR))
            fs::copy_file(e.path(), dir.path() / e.path().filename());
    }
    RunResult Run(const std::string& args) const {
        return RunHeadless("--dir " + dir.path().string() + " " + args);
    }
    std::string Read(const std::string& name) const { return Slurp(dir.path() / name); }
};

TEST(MediaHeadless, CasLoadThenSaveKeepsTheBody) {
    RomDir d;
    std::vector<uint8_t> cas(144 + 500);
    for (size_t i = 144; i < cas.size(); ++i)
        cas[i] = uint8_t(i * 13);
    d.dir.Write("t.cas", cas);
    const RunResult r = d.Run("--load-cas t.cas --port 2=0x10 --save-cas u.cas");
    ASSERT_EQ(r.status, 0) << r.out;
    const std::string u = d.Read("u.cas");
    ASSERT_EQ(u.size(), cas.size());
    EXPECT_TRUE(std::equal(u.begin() + 144, u.end(), cas.begin() + 144,
                           [](char a, uint8_t b) { return uint8_t(a) == b; }));
}

TEST(MediaHeadless, SnapshotSaveLoadSave) {
    RomDir d;
    ASSERT_EQ(d.Run("--frames 50 --save-snap a.tvs").status, 0);
    const RunResult r = d.Run("--load-snap a.tvs --save-snap b.tvs");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(d.Read("a.tvs").size(), 246360u);
    EXPECT_EQ(d.Read("a.tvs"), d.Read("b.tvs"));
}

TEST(MediaHeadless, MonitorTapeRoundTrip) {
    RomDir d;
    RunResult r = d.Run("--type 'POKE 4000 11 22 33\\nTSAVE 4000 4002\\n' --tape-out t.wav");
    ASSERT_EQ(r.status, 0) << r.out;
    r = d.Run("--tape-in t.wav --type 'TLOAD\\n' --dump-mem 0x4000:3:-");
    ASSERT_EQ(r.status, 0) << r.out;
    EXPECT_EQ(r.out, std::string("\x11\x22\x33"));
}

TEST(MediaHeadless, FilesThatCannotBeReadOrWritten) {
    RomDir d;
    d.dir.Write("bad.tvs", std::vector<uint8_t>(100, 1));
    const struct {
        std::string args;
        const char* says;
    } cases[] = {
        {"--load-cas none.cas", "File not found: none.cas"},
        {"--load-snap none.tvs", "File not found: none.tvs"},
        {"--load-snap bad.tvs", "Snapshot not valid!"},
        {"--tape-in none.wav", "cannot read none.wav"},
        {"--cart none.crt", "cannot read none.crt"},
        {"--save-snap no/dir/x.tvs", "no/dir/x.tvs"},
        {"--save-cas no/dir/x.cas", "no/dir/x.cas"},
        {"--save-mex no/dir/x.bin", "no/dir/x.bin"},
    };
    for (const auto& c : cases) {
        const RunResult r = d.Run(c.args);
        EXPECT_EQ(r.status, 1) << c.args << "\n" << r.out;
        EXPECT_NE(r.out.find(c.says), std::string::npos) << c.args << "\n" << r.out;
    }
}

} // namespace
} // namespace tvc::test
