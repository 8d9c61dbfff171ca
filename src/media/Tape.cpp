#include "media/Tape.h"

#include <algorithm>
#include <filesystem>

#include "core/Machine.h"
#include "core/Numbers.h"

namespace tvc {

namespace {

constexpr int32_t kSlotT = 142, kLastSlot = 440;
constexpr long kWaveDataAt = 44;

int32_t SlotOf(int32_t t) {
    return std::clamp(t / kSlotT, 0, kLastSlot);
}

// Brings a finished file's two size fields up to date and closes it.
void FinishWave(std::FILE*& f) {
    if (!f) return;
    std::fseek(f, 0, SEEK_END);
    const long length = std::ftell(f);
    const uint32_t whole = static_cast<uint32_t>(std::max(length, 0L));
    const uint32_t data = static_cast<uint32_t>(std::max(length - kWaveDataAt, 0L));
    uint8_t field[4];
    for (uint32_t value : {whole, data}) {
        for (int i = 0; i < 4; ++i)
            field[i] = static_cast<uint8_t>(value >> (8 * i));
        std::fseek(f, value == whole ? 4 : 40, SEEK_SET);
        std::fwrite(field, 1, 4, f);
    }
    std::fclose(f);
    f = nullptr;
}

bool WriteHeader(std::FILE* f, int channels, int32_t rate, int bits) {
    const auto h = TapeWaveHeader(channels, rate, bits, 0, kWaveDataAt);
    return std::fwrite(h.data(), 1, h.size(), f) == h.size();
}

} // namespace

Tape::~Tape() {
    if (Out) std::fclose(Out);
    if (Record) std::fclose(Record);
}

int TapeSample(Machine& m) {
    const int byte = std::max(m.tape.In.Next(), 0);
    // byte / 180 rounded half to even: 90 is exactly one half and goes to 0.
    const int bit = byte > 90 ? 1 : 0;
    m.sound.ToneSlots[SlotOf(m.cpu.TStates)] = static_cast<uint8_t>(16 + bit);
    return bit;
}

void TapeEdge(Machine& m) {
    Tape& t = m.tape;
    const int32_t now = m.cpu.TStates;
    const int32_t d = t.TapeLastT > now ? kFrameT - t.TapeLastT + now : now - t.TapeLastT;
    if (d >= kTapePauseT) {
        t.TapeLastT = now;
        return;
    }
    const int32_t n = static_cast<int32_t>(RoundHalfEven(double(d) / kTapeGrainT));
    t.TapeLevel = t.TapeLevel == kTapeLow ? kTapeHigh : kTapeLow;
    if (t.Out) {
        uint8_t run[kTapePauseT / kTapeGrainT + 2];
        std::fill_n(run, n + 1, t.TapeLevel);
        std::fwrite(run, 1, size_t(n) + 1, t.Out);
    }
    t.TapePos += n + 1;
    t.TapeLastT = now;
    int32_t slot = now / kSlotT;
    if (slot > kLastSlot) {
        slot = kLastSlot;
        m.host->MessageBox("hiba hang", kAppTitle, MsgKind::Plain);
    }
    m.sound.ToneSlots[std::max(slot, 0)] = t.TapeLevel != kTapeLow ? 17 : 16;
}

void TapeRewind(Machine& m) {
    Tape& t = m.tape;
    if (!t.In.IsOpen()) return;
    t.In.Seek(kWaveDataAt - 1);
    const int level = t.In.Next();
    t.TapeLevel = static_cast<uint8_t>(std::max(level, 0));
    if (level < 0) t.In.Seek(kWaveDataAt);
}

bool TapeOpenInput(Machine& m, const std::string& name) {
    Tape& t = m.tape;
    t.InName = name;
    if (!t.In.Open(name)) return false;
    TapeRewind(m);
    return true;
}

void TapeRecord(Machine& m, bool on) {
    Tape& t = m.tape;
    m.forms.TVCmon.Check1 = on;
    if (!on) {
        m.sound.ToneRecordFile = nullptr;
        FinishWave(t.Record);
        FinishWave(t.Out);
        return;
    }
    if (t.Out || t.Record) return; // already recording
    std::error_code ec;
    std::filesystem::remove("record.wav", ec);
    std::filesystem::remove("save.wav", ec);
    auto fail = [&] { m.host->MessageBox("Wav File create error", kAppTitle, MsgKind::Plain); };
    t.Record = std::fopen("record.wav", "w+b");
    if (!t.Record) return fail();
    std::fseek(t.Record, kWaveDataAt, SEEK_SET);
    t.Out = std::fopen("save.wav", "w+b");
    if (!t.Out) return fail();
    if (!WriteHeader(t.Out, 1, kTapeSaveRate, 8)) return fail();
    t.TapePos = kWaveDataAt + 1;
    std::fseek(t.Record, 0, SEEK_SET);
    if (!WriteHeader(t.Record, 1, kToneRecordRate, 16)) return fail();
    m.sound.ToneRecordFile = t.Record;
}

} // namespace tvc
