// The printer: the code table over every byte, the strobe on port 6, and
// the bound on the text it holds.
#include <gtest/gtest.h>

#include <map>

#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

TEST(Printer, CodeTableOverAllBytes) {
    const std::map<int, int> upper = {
        {127, 219}, {128, 181}, {129, 144}, {130, 146}, {131, 224}, {132, 153}, {133, 138},
        {134, 233}, {135, 154}, {136, 235}, {137, 218}, {138, 192}, {139, 179}, {140, 195},
        {141, 194}, {142, 197}, {143, 198}, {144, 160}, {145, 130}, {146, 140}, {147, 162},
        {148, 148}, {149, 139}, {150, 163}, {151, 129}, {152, 251}, {153, 191}, {154, 217},
        {155, 196}, {156, 180}, {157, 193}, {158, 172}, {159, 230}};
    for (int b = 0; b < 256; ++b) {
        const int want = b < 127 ? b : b >= 160 ? '.' : upper.at(b);
        EXPECT_EQ(PrinterCode(static_cast<uint8_t>(b)), want) << b;
    }
}

TEST(Printer, StrobeOnPort6BitSevenClear) {
    TestMachine tm;
    Machine& m = tm.m();
    std::string tap;
    m.printer.Tap = &tap;
    const struct {
        int data, port6;
        const char* text;
    } rows[] = {
        {'H', 0x00, "H"},
        {'i', 0x80, "H"},  // bit 7 set: no strobe
        {200, 0x3C, "H."}, // any value with bit 7 clear strobes
        {148, 0x00, "H.\x94"},
    };
    for (const auto& r : rows) {
        int32_t d = r.data, s = r.port6;
        m.bus.PortLatch[0x59] |= 0x80;
        PortOut(m, 0x01, d);
        PortOut(m, 0x06, s);
        EXPECT_EQ(m.printer.Text1, r.text);
        EXPECT_EQ(m.bus.PortLatch[0x59] & 0x80, r.port6 & 0x80) << r.data; // busy after a strobe
    }
    EXPECT_EQ(tap, m.printer.Text1);
}

TEST(Printer, HoldsAtMost16MiBDroppingTheOldest) {
    TestMachine tm;
    Machine& m = tm.m();
    m.printer.Text1.assign(kPrinterHold, 'a');
    Senddata(m, 'z');
    EXPECT_LE(m.printer.Text1.size(), kPrinterHold);
    EXPECT_EQ(m.printer.Text1.size() + m.printer.Dropped, kPrinterHold + 1);
    EXPECT_EQ(m.printer.Text1.back(), 'z');
}

} // namespace
} // namespace tvc::test
