// Any bytes opened as a source go through the text tools without reading
// outside a buffer: OPEN's decoding, the tvcasm converter, Format, the
// listing's rich text and the opcode help at a cursor the input chooses.
#include "asm/Converter.h"
#include "asm/OpcodeHelp.h"
#include "asm/SourceFiles.h"
#include "asm/SourceFormat.h"
#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t; // loads the opcode tables once
    const size_t cursor = size >= 2 ? (data[0] | data[1] << 8) : 0;
    const std::string text = tvc::SourceText(
        std::string_view(reinterpret_cast<const char*>(data), size).substr(size >= 2 ? 2 : 0));
    const std::string converted = tvc::ConvertTvcasm(text);
    tvc::ListingRtf(tvc::Format(converted));
    for (const bool undoc : {false, true})
        if (const auto help = tvc::OpcodeHelp(text, cursor, undoc))
            for (const std::string& row : help->List2)
                tvc::OpcodeInfo(row);
    return 0;
}
