// The YM3812 of the sound card: a plain two-operator sine FM model of the
// nine melodic channels, with no envelopes, timers or rhythm section. The
// register writes can also go out to a real chip on the host through a port
// sink (the "Direct I/O port:" box of the panel).
#pragma once

#include <cstdint>
#include <string>

namespace tvc {

class Machine;

// Where the direct output's (port, value) pairs go. Out returns false with a
// message naming the fault when the pair could not be sent.
class PortSink {
  public:
    virtual ~PortSink() = default;
    virtual bool Out(uint16_t port, uint8_t value, std::string& error) = 0;
};

struct YmChannelState {
    uint8_t Key = 0; // 0 or 0x20
    float Freq = 0;  // Hz
};

// One operator's copies of register groups 0x20, 0x40, 0x60, 0x80 and 0xE0.
struct YmOperator {
    uint8_t Reg20 = 0, Reg40 = 0, Reg60 = 0, Reg80 = 0, RegE0 = 0;
};

struct Ym3812 {
    static constexpr int kChannels = 9, kBlock = 441;

    int16_t Ym3812Out[kBlock] = {}; // this block's output, within +-126

    uint8_t YmRegs[256] = {};
    uint8_t YmLatch = 0;
    float YmMult[16] = {};
    float YmFeedback[8] = {};
    YmChannelState YmChannel[kChannels];
    YmOperator YmMod[kChannels], YmCar[kChannels];
    float YmModPhase[kChannels] = {}; // cycles; they run on from block to block
    float YmCarPhase[kChannels] = {};
    float ModColumn[kChannels][kBlock] = {};
    float CarColumn[kChannels][kBlock] = {};

    // The direct output: not owned; the application, the headless runner or
    // a test sets it. A bad port text is reported once until it changes.
    PortSink* DirectSink = nullptr;
    bool DirectBadShown = false;
    std::string DirectBadText;
};

void YmInit(Machine& m);
void YmReset(Machine& m);
void YmWrite(Machine& m, uint8_t port, uint8_t value);
void YmDecode(Ym3812& y);
void YmRender(Machine& m);
// The port decoder's direct output after YmWrite at port 0x34 or 0x35.
void YmDirect(Machine& m, uint8_t port, uint8_t value);

} // namespace tvc
