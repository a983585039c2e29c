// A race of our own on purpose, reached from SDL's audio thread: the device callback and the main
// thread both write one plain int. Built only in the ThreadSanitizer build, whose script fails
// unless TSAN reports it: a suppression broad enough to hide this would hide the real callback's
// races too.
#include <SDL.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

int shared = 0;

void callback(void*, Uint8* stream, int len) {
    ++shared;
    SDL_memset(stream, 0, static_cast<size_t>(len));
}

} // namespace

int main() {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    if (SDL_Init(SDL_INIT_AUDIO) != 0) {
        std::fprintf(stderr, "SDL_Init: %s\n", SDL_GetError());
        return 2;
    }
    SDL_AudioSpec want{};
    want.freq = 44100;
    want.format = AUDIO_F32SYS;
    want.channels = 2;
    want.samples = 256;
    want.callback = callback;
    const SDL_AudioDeviceID device = SDL_OpenAudioDevice(nullptr, 0, &want, nullptr, 0);
    if (device == 0) {
        std::fprintf(stderr, "SDL_OpenAudioDevice: %s\n", SDL_GetError());
        return 2;
    }
    SDL_PauseAudioDevice(device, 0);
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(500);
    while (std::chrono::steady_clock::now() < end) {
        ++shared;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    SDL_CloseAudioDevice(device);
    SDL_Quit();
    std::printf("%d\n", shared);
    return 0;
}
