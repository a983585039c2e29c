#include "playback/engine/outputs.h"

#include "playback/engine/decoder.h"
#include "playback/engine/mixer.h"
#include "util/log.h"

#include <SDL.h>
#include <atomic>
#include <mutex>
#include <thread>

namespace {

class NullOutput : public Output {
  public:
    void lock() override { mutex_.lock(); }
    void unlock() override { mutex_.unlock(); }
    bool pullable() const override { return true; }
    void wake() override {} // nothing runs by itself

  private:
    std::mutex mutex_;
};

// SDL's audio thread calls mix() for each buffer the device wants. While no channel plays, the
// device is paused, so that the mixer does not run on nothing: the callback, which must not call
// SDL, tells a resting thread of its own, which pauses the device unless a play came meanwhile.
class DeviceOutput : public Output {
  public:
    explicit DeviceOutput(MixerTable& table) : table_(table) {}
    ~DeviceOutput() override {
        if (pauser_.joinable()) {
            quit_.store(true);
            idleReports_.fetch_add(1);
            idleReports_.notify_one();
            pauser_.join();
        }
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
        pauser_ = std::thread([this] { pauseWhenIdle(); }); // the device starts paused
        return true;
    }

    void lock() override { SDL_LockAudioDevice(device_); }
    void unlock() override { SDL_UnlockAudioDevice(device_); }
    bool pullable() const override { return false; }
    void wake() override {
        std::lock_guard lock(pauseLock_);
        if (paused_) {
            idleReported_.store(false); // the callback does not run while paused
            SDL_PauseAudioDevice(device_, 0);
            paused_ = false;
        }
    }

  private:
    static void callback(void* self, Uint8* stream, int bytes) {
        auto* output = static_cast<DeviceOutput*>(self);
        bool playing = mixBlock(output->table_, reinterpret_cast<float*>(stream),
                                static_cast<std::size_t>(bytes) / (2 * sizeof(float)));
        if (playing) {
            output->idleReported_.store(false, std::memory_order_relaxed);
        } else if (!output->idleReported_.exchange(true, std::memory_order_relaxed)) {
            output->idleReports_.fetch_add(1); // once per stretch of silence; never blocks
            output->idleReports_.notify_one();
        }
    }

    // A play sets its channel Playing before it wakes the device under pauseLock_, so either the
    // check here sees that channel, or the wake comes after this pause.
    void pauseWhenIdle() {
        std::uint32_t seen = idleReports_.load();
        while (!quit_.load()) {
            idleReports_.wait(seen);
            seen = idleReports_.load();
            std::lock_guard lock(pauseLock_);
            bool idle = false;
            {
                OutputLock outputLock(*this);
                idle = !anyPlaying(table_);
            }
            if (idle && !paused_ && !quit_.load()) {
                SDL_PauseAudioDevice(device_, 1);
                paused_ = true;
            }
        }
    }

    MixerTable& table_;
    SDL_AudioDeviceID device_ = 0;
    bool subsystemUp_ = false;
    std::atomic<bool> idleReported_{false};
    std::atomic<std::uint32_t> idleReports_{0};
    std::atomic<bool> quit_{false};
    std::mutex pauseLock_;
    bool paused_ = true; // under pauseLock_
    std::thread pauser_;
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
