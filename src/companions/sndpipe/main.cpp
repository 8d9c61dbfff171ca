// sndpipe: the emulator's audio player. It takes the 4,410-byte units the
// emulator hands over on the shared maps and plays them as 22,050 Hz stereo
// unsigned 8-bit sound through SDL. It asks for a unit only while fewer than
// two are queued and never faster than real time, so the emulator, which
// waits for each request, runs at the machine's own pace. Without a usable
// audio device it goes on as a silent player that still takes one unit every
// 100 ms. It ends with the emulator that started it.
//
//   sndpipe [--wav FILE] [--stats]
//     --wav FILE   also write what it plays to FILE
//     --stats      at the end, print the units taken and the average time a
//                  unit waited in the queue before the device played it
#include <SDL.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>

#include "links/AudioLink.h"
#include "sound/WavRecorder.h"

using namespace tvc;
using Clock = std::chrono::steady_clock;

namespace {

volatile sig_atomic_t stopRequested = 0;
void OnSignal(int) {
    stopRequested = 1;
}

constexpr uint32_t kQueueUnits = 2;
constexpr auto kUnitTime = std::chrono::milliseconds(100);

bool OpenLink(AudioConsumer& link) {
    // The emulator makes the maps before it starts the player; allow a moment.
    for (int tries = 0; tries < 100 && !stopRequested; ++tries) {
        if (link.Open()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

SDL_AudioDeviceID OpenDevice() {
    if (SDL_Init(SDL_INIT_AUDIO) != 0) {
        std::fprintf(stderr, "sndpipe: no audio (%s); playing silently\n", SDL_GetError());
        return 0;
    }
    SDL_AudioSpec want{}, have{};
    want.freq = kAudioSampleRate;
    want.format = AUDIO_U8;
    want.channels = 2;
    want.samples = 512;
    const SDL_AudioDeviceID dev = SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
    if (dev == 0) {
        std::fprintf(stderr, "sndpipe: no audio device (%s); playing silently\n", SDL_GetError());
        return 0;
    }
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

    const SDL_AudioDeviceID dev = OpenDevice();
    SilentSink silent(link);
    uint8_t unit[kAudioUnitBytes];
    bool asked = false, stallReported = false;
    uint64_t taken = 0, queuedAtTake = 0;
    Clock::time_point start = Clock::now(), lastDrain = start;
    uint32_t lastQueued = 0;

    while (!stopRequested && getppid() == parent) {
        const Clock::time_point now = Clock::now();
        if (dev == 0) {
            if (silent.Step(now, unit)) wav.Add(unit, sizeof unit);
        } else {
            // A device that stops draining (a suspended sound server) must
            // not stop the emulator: after a second without progress the
            // queued sound is dropped and the pace goes on.
            const uint32_t queued = SDL_GetQueuedAudioSize(dev);
            if (queued == 0 || queued < lastQueued) lastDrain = now;
            lastQueued = queued;
            if (queued > 0 && now - lastDrain > std::chrono::seconds(1)) {
                SDL_ClearQueuedAudio(dev);
                if (!stallReported) std::fprintf(stderr, "sndpipe: the audio device stalled; dropping sound\n");
                stallReported = true;
                lastDrain = now;
            }
            if (asked && link.Take(unit)) {
                asked = false;
                ++taken;
                queuedAtTake += SDL_GetQueuedAudioSize(dev);
                SDL_QueueAudio(dev, unit, sizeof unit);
                lastQueued = SDL_GetQueuedAudioSize(dev);
                wav.Add(unit, sizeof unit);
            }
            // Ask while the queue is short, and never ahead of the wall clock
            // by more than the queue, whatever the device does. An emulator
            // that fell behind (paused, busy) starts the clock afresh.
            auto due = static_cast<uint64_t>((now - start) / kUnitTime) + kQueueUnits;
            if (taken + kQueueUnits < due) {
                start = now - taken * kUnitTime;
                due = taken + kQueueUnits;
            }
            if (!asked && SDL_GetQueuedAudioSize(dev) < kQueueUnits * kAudioUnitBytes &&
                taken < due) {
                link.Ask();
                asked = true;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    wav.Close();
    if (stats && taken > 0)
        std::fprintf(stderr, "sndpipe: %llu units taken, %.1f ms queued ahead of each on average\n",
                     static_cast<unsigned long long>(taken),
                     double(queuedAtTake) / double(taken) / (2.0 * kAudioSampleRate) * 1000.0);
    if (dev) SDL_CloseAudioDevice(dev);
    SDL_Quit();
    return 0;
}
