// The printer port: a byte strobed out through port 6 goes to the printer
// form's text, translated from the machine's upper code range to the PC code
// page (852) the form shows. The text is held here, so a strobe works with
// the form closed.
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

class Machine;

constexpr size_t kPrinterHold = size_t(16) << 20; // the most text held
constexpr size_t kPrinterDrop = size_t(1) << 20;  // dropped from the front when full

struct Printer {
    std::string Text1;          // the collected text, code page 852 bytes
    uint64_t Dropped = 0;       // bytes dropped from the front of Text1 so far
    std::string* Tap = nullptr; // every byte as printed, when set
};

// The byte as it shows in the printer's text.
uint8_t PrinterCode(uint8_t byte);
void Senddata(Machine& m, uint8_t byte);

} // namespace tvc
