// What the assembler workbench (form `asse`) shows and keeps between
// compiles. The window is a view over these fields: it copies its editor
// text into RText1 before a compile and draws the rest afterwards.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace tvc {

// One piece of the listing RText2, in the colour it was appended with
// (24-bit, red in the low byte).
struct ListingRun {
    std::string text;
    int32_t colour = 0;
};

// A source line as pass 2 handled it: the address it started at and its
// normal form (upper case, blanks reduced).
struct ListingLine {
    int32_t address = 0;
    std::string line;
};

// The symbol table's lookups, kept beside List1 so that a name is found in
// one step: each gives the entry the walk over List1 from the top would find.
struct SymbolIndex {
    size_t entries = 0;                              // List1 entries indexed
    std::unordered_map<std::string, size_t> byName;  // text from column 8, first entry
    std::unordered_map<std::string, size_t> byKey25; // 25 characters from column 8, first entry
};

struct AsseControls {
    // The editor RText1: the source as the user typed it (UTF-8, or
    // Windows-1250 bytes), its back colour and the selection that marks a bad
    // line. Positions count in Source, the text the passes read.
    std::string RText1;
    int32_t RText1BackColor = 0xFFFFFF;
    int32_t RText1SelStart = 0, RText1SelLength = 0;
    bool RText1Focus = false;

    // The source as the passes read it: Windows-1250 bytes, CR LF line ends.
    std::string Source;
    // The source reached past its 100000th character and the rest was left out.
    bool Truncated = false;

    std::vector<std::string> List1; // symbol table: value in 7 columns, then "NAME:"
    std::vector<std::string> List3; // its visible copy: name in 22 columns, then value
    SymbolIndex symbols;

    std::string Text13, Text14; // message and pass, "Pass1", "Pass2"
    int32_t Text13BackColor = 0xFFFFFF;
    int32_t Text14BackColor = 0xFFFFFF;
    std::string Label2; // the final AsmAddress after a good compile

    // The listing RText2: its runs, their plain text, and the selection Dline sets.
    std::vector<ListingRun> RText2;
    std::string RText2Text;
    int32_t RText2SelStart = 0, RText2SelLength = 0;
    int32_t RText2SelColor = 0;
    std::vector<ListingLine> Lines; // one per source line pass 2 reached

    // The bad line of the last compile: 1-based number (0: none), its pass
    // and its code.
    int32_t ErrorLine = 0, ErrorPass = 0, ErrorCode = 0;

    bool Frame2Visible = false; // the file panel, hidden by Compile
    bool Check2 = false;        // "Debug": the listing is shown

    int32_t AsmAddress = 0;
};

} // namespace tvc
