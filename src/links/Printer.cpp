#include "links/Printer.h"

#include "core/Machine.h"

namespace tvc {

namespace {

// Codes 127 to 159; 148 stays as it is.
constexpr uint8_t kUpper[33] = {219, 181, 144, 146, 224, 153, 138, 233, 154, 235, 218,
                                192, 179, 195, 194, 197, 198, 160, 130, 140, 162, 148,
                                139, 163, 129, 251, 191, 217, 196, 180, 193, 172, 230};

} // namespace

uint8_t PrinterCode(uint8_t byte) {
    if (byte < 127) return byte;
    if (byte < 160) return kUpper[byte - 127];
    return '.';
}

void Senddata(Machine& m, uint8_t byte) {
    Printer& p = m.printer;
    const char c = static_cast<char>(PrinterCode(byte));
    if (p.Tap) p.Tap->push_back(c);
    if (p.Text1.size() >= kPrinterHold) {
        p.Text1.erase(0, kPrinterDrop);
        p.Dropped += kPrinterDrop;
    }
    p.Text1.push_back(c);
}

} // namespace tvc
