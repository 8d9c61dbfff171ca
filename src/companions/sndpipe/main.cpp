// sndpipe: the emulator's audio player. It takes the 4,410-byte units the
// emulator hands over on the shared maps and plays them as 22,050 Hz stereo
// unsigned 8-bit sound through SDL. It asks for the next unit when what the
// device still has queued falls below a small margin (AudioPlayer), so the
// emulator, which waits for each request, runs at the device's own pace.
// Without a usable audio device it goes on as a silent player that still
// takes one unit every 100 ms. It ends with the emulator that started it.
//
//   sndpipe [--wav FILE] [--stats]
//     --wav FILE   also write what it plays to FILE
//     --stats      at the end, print the units taken, the underruns, the
//                  device's queue at each ask (min/mean/max) and the mean and
//                  worst latency of a unit
#include <SDL.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "links/AudioPlayer.h"
#include "sound/WavRecorder.h"

using namespace tvc;
using Clock = std::chrono::steady_clock;

namespace {

volatile sig_atomic_t stopRequested = 0;
void OnSignal(int) {
    stopRequested = 1;
}

class SdlDevice final : public PlayerDevice {
  public:
    SdlDevice(SDL_AudioDeviceID dev, uint32_t period) : dev_(dev), period_(period) {}
    uint32_t QueuedBytes() override { return SDL_GetQueuedAudioSize(dev_); }
    uint32_t PeriodBytes() override { return period_; }
    void Queue(const uint8_t* bytes, uint32_t size) override { SDL_QueueAudio(dev_, bytes, size); }
    void Clear() override {
        SDL_ClearQueuedAudio(dev_);
        if (!reported_) std::fprintf(stderr, "sndpipe: the audio device stalled; dropping sound\n");
        reported_ = true;
    }

  private:
    SDL_AudioDeviceID dev_;
    uint32_t period_;
    bool reported_ = false;
};

bool OpenLink(AudioConsumer& link) {
    // The emulator makes the maps before it starts the player; allow a moment.
    for (int tries = 0; tries < 100 && !stopRequested; ++tries) {
        if (link.Open()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

SDL_AudioDeviceID OpenDevice(uint32_t& periodBytes) {
    if (SDL_Init(SDL_INIT_AUDIO) != 0) {
        std::fprintf(stderr, "sndpipe: no audio (%s); playing silently\n", SDL_GetError());
        return 0;
    }
    SDL_AudioSpec want{}, have{};
    want.freq = kAudioSampleRate;
    want.format = AUDIO_U8;
    want.channels = 2;
    want.samples = 256; // a short period: the queue needs less in reserve
    const SDL_AudioDeviceID dev = SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
    if (dev == 0) {
        std::fprintf(stderr, "sndpipe: no audio device (%s); playing silently\n", SDL_GetError());
        return 0;
    }
    periodBytes = have.size ? have.size : uint32_t(have.samples) * 2;
    SDL_PauseAudioDevice(dev, 0);
    return dev;
}

} // namespace

int main(int argc, char** argv) {
    std::string wavPath;
    bool stats = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--wav") == 0 && i + 1 < argc) {
            wavPath = argv[++i];
        } else if (std::strcmp(argv[i], "--stats") == 0) {
            stats = true;
        } else {
            std::fprintf(stderr, "usage: sndpipe [--wav FILE] [--stats]\n");
            return 2;
        }
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    const pid_t parent = getppid();
    if (parent == 1) return 0; // the emulator ended before the player got going
    signal(SIGTERM, OnSignal);
    signal(SIGINT, OnSignal);

    AudioConsumer link;
    if (!OpenLink(link)) {
        std::fprintf(stderr, "sndpipe: the emulator's audio maps are not there\n");
        return 1;
    }
    WavRecorder wav;
    if (!wavPath.empty() && !wav.Open(wavPath))
        std::fprintf(stderr, "sndpipe: cannot write %s\n", wavPath.c_str());

    uint32_t period = 0;
    const SDL_AudioDeviceID dev = OpenDevice(period);
    SdlDevice device(dev, period);
    AudioPlayer player(link, dev ? &device : nullptr);
    uint8_t unit[kAudioUnitBytes];
    while (!stopRequested && getppid() == parent) {
        if (player.Step(Clock::now(), unit)) wav.Add(unit, sizeof unit);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    wav.Close();
    if (stats) std::fprintf(stderr, "sndpipe: %s", player.Stats().Report().c_str());
    if (dev) SDL_CloseAudioDevice(dev);
    SDL_Quit();
    return 0;
}
