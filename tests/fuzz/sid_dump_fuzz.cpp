// Any SIDX or DMP dump played by the SID, block by block to its end, with the
// panel's filters and scroll bars set from the first bytes.
#include <cstdio>
#include <vector>

#include "support/TestMachine.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static tvc::test::TestMachine t;
    tvc::Machine& m = t.m();
    if (size < 3) return 0;
    tvc::FSIDControls& f = m.forms.FSID;
    f.Check1 = data[0] & 2, f.Check2 = data[0] & 4, f.Check3 = data[0] & 8;
    f.Check4 = data[0] & 16, f.Check6 = data[0] & 32, f.Check10 = data[0] & 64;
    f.HScroll1 = int8_t(data[1]), f.HScroll2 = data[1] >> 1, f.HScroll3 = 100 - data[2];
    f.HScroll4 = data[2] * 5 - 10, f.HScroll5 = int8_t(data[2]) * 9;
    f.Text1 = std::string(reinterpret_cast<const char*>(data + 1), 2);
    std::vector<uint8_t> file(data + 3, data + size);
    tvc::SidReset(m);
    tvc::Sid& s = m.sid;
    if (s.PlayFile) std::fclose(s.PlayFile);
    s.PlayFile = file.empty() ? nullptr : fmemopen(file.data(), file.size(), "r");
    s.SidxErrorShown = false;
    f.Option = (data[0] & 1) ? 1 : 2;
    f.File1 = "fuzz";
    for (int block = 0; block < 64 && s.PlayFile && !std::feof(s.PlayFile); ++block) {
        m.sound.BlockIndex = block % 5;
        tvc::SidRender(m);
    }
    if (s.PlayFile) std::fclose(s.PlayFile);
    s.PlayFile = nullptr;
    f.File1.clear();
    t.host.messages.clear();
    return 0;
}
