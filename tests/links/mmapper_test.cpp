// The shared maps.
#include <gtest/gtest.h>

#include <unistd.h>

#include <signal.h>
#include <sys/wait.h>

#include <filesystem>
#include <functional>

#include "links/MMapper.h"
#include "support/TestMachine.h"

namespace tvc {
namespace {

struct Tagged : ::testing::Test {
    std::string tag;
    void SetUp() override { tag = test::TagSharedMemory("mm"); }
};

TEST_F(Tagged, ErrorTextsAndTwoViews) {
    MMapper m;
    uint8_t buf[8] = {};
    const struct {
        std::function<bool()> call;
        const char* text;
    } expect[] = {
        {[&] { return m.CreateMap("Zero", 0); }, "Size must be at least 1 byte"},
        {[&] { return m.ReadMap(buf, 5); },
         "Size must not exceed mapped size"}, // before the open test
        {[&] { return m.ReadMap(buf, 0); }, "ReadMap: Map not open"},
        {[&] { return m.WriteMap(buf, 0); }, "WriteMap: Map not open"},
        {[&] { return m.OpenMap("NoSuchMap", 4); }, "OpenFileMapping system error 2"},
    };
    for (const auto& e : expect) {
        EXPECT_FALSE(e.call());
        EXPECT_EQ(m.LastError().Description, e.text);
    }

    // Two views share the bytes up to the mapped size; creating a name again
    // starts from a fresh map, so a new emulator's handshake starts at 0.
    MMapper creator, opener, fresh;
    ASSERT_TRUE(creator.CreateMap("Pair", 8));
    ASSERT_TRUE(opener.OpenMap("Pair", 8));
    const uint8_t out[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    uint8_t in[8] = {};
    ASSERT_TRUE(creator.WriteMap(out, 8));
    ASSERT_TRUE(opener.ReadMap(in, 8));
    EXPECT_EQ(std::vector<uint8_t>(in, in + 8), std::vector<uint8_t>(out, out + 8));
    EXPECT_FALSE(opener.OpenMap("Pair", 9)); // larger than the map
    opener.CloseMap();
    EXPECT_FALSE(opener.ReadMap(in, 1));
    ASSERT_TRUE(fresh.CreateMap("Pair", 8));
    ASSERT_TRUE(opener.OpenMap("Pair", 8));
    ASSERT_TRUE(opener.ReadMap(in, 8));
    EXPECT_EQ(std::vector<uint8_t>(in, in + 8), std::vector<uint8_t>(8, 0));
}

bool Exists(const std::string& name) {
    return std::filesystem::exists("/dev/shm" + MMapper::PosixName(name));
}

// Who removes an object, and when: its creator on close, on SIGTERM and on
// SIGINT; a sweep only what no live creator holds.
TEST_F(Tagged, ObjectsEndWithTheirCreator) {
    {
        MMapper creator, opener;
        ASSERT_TRUE(creator.CreateMap("Life", 4));
        ASSERT_TRUE(opener.OpenMap("Life", 4));
        opener.CloseMap();
        EXPECT_TRUE(Exists("Life"));                // an opener does not unlink
        EXPECT_EQ(MMapper::RemoveStale(0, tag), 0); // a live creator holds it
        EXPECT_TRUE(Exists("Life"));
        // A second creator of the name replaces the object; the first one's
        // close must leave the new object alone.
        MMapper second;
        ASSERT_TRUE(second.CreateMap("Life", 4));
        creator.CloseMap();
        EXPECT_TRUE(Exists("Life"));
    }
    EXPECT_FALSE(Exists("Life"));

    for (int sig : {SIGTERM, SIGINT}) {
        // A shell's background job inherits SIGINT ignored: nothing dies of it there.
        struct sigaction now = {};
        if (sigaction(sig, nullptr, &now) == 0 && now.sa_handler == SIG_IGN) continue;
        const pid_t child = fork();
        if (child == 0) {
            MMapper m;
            if (!m.CreateMap("Killed", 4)) _exit(1);
            raise(sig);
            _exit(2);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == sig) << sig;
        EXPECT_FALSE(Exists("Killed")) << sig;
    }

    // A creator that died without a word (SIGKILL) leaves the object to the
    // next sweep.
    const pid_t child = fork();
    if (child == 0) {
        MMapper m;
        if (!m.CreateMap("Crashed", 4)) _exit(1);
        raise(SIGKILL);
    }
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(Exists("Crashed"));
    EXPECT_EQ(MMapper::RemoveStale(3600, tag), 0); // too young to be sure
    EXPECT_EQ(MMapper::RemoveStale(0, tag), 1);
    EXPECT_FALSE(Exists("Crashed"));
}

} // namespace
} // namespace tvc
