// Any source text assembles to a result or a message with its line, without
// reading or writing outside a buffer: the input is the editor's text, run
// through the "Compile" button with the paging latch as a program left it.
#include "asm/Assembler.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    m.bus.PortLatch[2] = size ? data[0] : 0xB0;
    m.forms.asse.RText1.assign(reinterpret_cast<const char*>(data), size);
    tvc::asse::Command1_Click(m);
    return 0;
}
