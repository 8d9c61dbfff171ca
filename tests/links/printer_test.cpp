// The printer: the code table over every byte and the bound on the text it
// holds (the strobe is in the port tests, the text in the headless ones).
#include <gtest/gtest.h>

#include "core/MonitorText.h"
#include "hw/Ports.h"
#include "support/TestMachine.h"

namespace tvc::test {
namespace {

// The printer gets ASCII as it is and, for 127 to 159, the same code page
// 852 letters the monitors draw; the rest prints as dots.
TEST(Printer, CodeTableOverAllBytes) {
    for (int b = 0; b < 256; ++b) {
        const int want = b < 127 ? b : b >= 160 ? '.' : MonitorFontCode(b);
        EXPECT_EQ(PrinterCode(static_cast<uint8_t>(b)), want) << b;
    }
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
