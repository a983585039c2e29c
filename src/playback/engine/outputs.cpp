#include "playback/engine/outputs.h"

#include "playback/engine/decoder.h"
#include "playback/engine/mixer.h"
#include "util/log.h"

#include <SDL.h>
#include <mutex>

namespace {

class NullOutput : public Output {
  public:
    void lock() override { mutex_.lock(); }
    void unlock() override { mutex_.unlock(); }
    bool pullable() const override { return true; }

  private:
    std::mutex mutex_;
};

// SDL's audio thread calls mix() for each buffer the device wants.
class DeviceOutput : public Output {
  public:
    explicit DeviceOutput(MixerTable& table) : table_(table) {}
    ~DeviceOutput() override {
        if (device_ != 0)
            SDL_CloseAudioDevice(device_);
        if (subsystemUp_)
            SDL_QuitSubSystem(SDL_INIT_AUDIO);
    }
    DeviceOutput(const DeviceOutput&) = delete;
    DeviceOutput& operator=(const DeviceOutput&) = delete;

    bool open(EngineError& error) {
        // SDL would otherwise take over SIGINT and SIGTERM from the player.
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
            logOut("Audio could not start: %s\n", SDL_GetError());
            error = EngineError::Driver;
            return false;
        }
        subsystemUp_ = true;
        SDL_AudioSpec want{};
        want.freq = engineRate;
        want.format = AUDIO_F32SYS;
        want.channels = 2;
        want.samples = 1024;
        want.callback = &DeviceOutput::callback;
        want.userdata = this;
        SDL_AudioSpec have{};
        device_ = SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
        if (device_ == 0) {
            logOut("No audio device could be opened: %s\n", SDL_GetError());
            error = EngineError::Driver;
            return false;
        }
        SDL_PauseAudioDevice(device_, 0);
        return true;
    }

    void lock() override { SDL_LockAudioDevice(device_); }
    void unlock() override { SDL_UnlockAudioDevice(device_); }
    bool pullable() const override { return false; }

  private:
    static void callback(void* self, Uint8* stream, int bytes) {
        auto* output = static_cast<DeviceOutput*>(self);
        mixBlock(output->table_, reinterpret_cast<float*>(stream),
                 static_cast<std::size_t>(bytes) / (2 * sizeof(float)));
    }

    MixerTable& table_;
    SDL_AudioDeviceID device_ = 0;
    bool subsystemUp_ = false;
};

} // namespace

std::unique_ptr<Output> openNullOutput() {
    return std::make_unique<NullOutput>();
}

std::unique_ptr<Output> openDeviceOutput(MixerTable& table, EngineError& error) {
    auto output = std::make_unique<DeviceOutput>(table);
    if (!output->open(error))
        return nullptr;
    return output;
}
