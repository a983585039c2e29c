#include "playback/engine/outputs.h"

#include "playback/engine/decoder.h"
#include "playback/engine/mixer.h"
#include "util/log.h"

#include <SDL.h>
#include <atomic>
#include <chrono>
#include <condition_variable>
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
// SDL, tells a resting thread of its own, the keeper, which pauses the device unless a play came
// meanwhile. SDL's thread still wakes for every buffer of a paused device, so after a while of
// silence the keeper closes the device, and opens it again when the next play asks: a play never
// waits for a device to open, its sound starts once it is there.
class DeviceOutput : public Output {
  public:
    explicit DeviceOutput(MixerTable& table) : table_(table) {}
    ~DeviceOutput() override {
        if (keeper_.joinable()) {
            {
                std::lock_guard lock(keeperLock_);
                quit_.store(true);
            }
            keeperWake_.notify_all();
            idleReports_.fetch_add(1);
            idleReports_.notify_one();
            keeper_.join();
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
        device_ = openDevice();
        if (device_ == 0) {
            logOut("No audio device could be opened: %s\n", SDL_GetError());
            error = EngineError::Driver;
            return false;
        }
        keeper_ = std::thread([this] { keepDevice(); }); // the device starts paused
        return true;
    }

    void lock() override {
        deviceLock_.lock();
        if (device_ != 0)
            SDL_LockAudioDevice(device_);
    }
    void unlock() override {
        if (device_ != 0)
            SDL_UnlockAudioDevice(device_);
        deviceLock_.unlock();
    }
    bool pullable() const override { return false; }
    void wake() override {
        {
            std::lock_guard lock(keeperLock_);
            if (state_ == State::Playing)
                return;
            if (state_ == State::Paused) {
                idleReported_.store(false); // the callback does not run while paused
                SDL_PauseAudioDevice(device_, 0);
                state_ = State::Playing;
            } else {
                reopenAsked_ = true;
            }
        }
        keeperWake_.notify_all();
    }

  private:
    enum class State { Playing, Paused, Closed }; // under keeperLock_

    // How long a paused device stays open for the next play.
    static constexpr auto closeAfter = std::chrono::seconds(5);

    SDL_AudioDeviceID openDevice() {
        SDL_AudioSpec want{};
        want.freq = engineRate;
        want.format = AUDIO_F32SYS;
        want.channels = 2;
        want.samples = 1024;
        want.callback = &DeviceOutput::callback;
        want.userdata = this;
        SDL_AudioSpec have{};
        return SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
    }

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

    bool nothingPlays() {
        OutputLock outputLock(*this);
        return !anyPlaying(table_);
    }

    // A play sets its channel Playing before it wakes the device under keeperLock_, so either the
    // check here sees that channel, or the wake comes after this pause.
    void pauseWhenSilent() {
        std::uint32_t seen = idleReports_.load();
        while (!quit_.load()) {
            {
                std::lock_guard lock(keeperLock_);
                if (state_ != State::Playing)
                    return;
                if (nothingPlays()) {
                    SDL_PauseAudioDevice(device_, 1);
                    state_ = State::Paused;
                    return;
                }
            }
            idleReports_.wait(seen);
            seen = idleReports_.load();
        }
    }

    void closeWhenStillPaused() {
        std::unique_lock lock(keeperLock_);
        if (keeperWake_.wait_for(lock, closeAfter,
                                 [this] { return quit_.load() || state_ != State::Paused; }))
            return;
        std::lock_guard deviceLock(deviceLock_);
        SDL_CloseAudioDevice(device_);
        device_ = 0;
        state_ = State::Closed;
    }

    void reopenWhenAsked() {
        {
            std::unique_lock lock(keeperLock_);
            keeperWake_.wait(lock, [this] { return quit_.load() || reopenAsked_; });
            if (quit_.load())
                return;
            reopenAsked_ = false;
        }
        SDL_AudioDeviceID device = openDevice(); // slow: no lock held
        std::lock_guard lock(keeperLock_);
        if (device == 0) {
            logOut("No audio device could be opened: %s\n", SDL_GetError());
            return; // the next play asks again
        }
        {
            std::lock_guard deviceLock(deviceLock_);
            device_ = device;
        }
        idleReported_.store(false);
        SDL_PauseAudioDevice(device_, 0);
        state_ = State::Playing;
    }

    void keepDevice() {
        while (!quit_.load()) {
            State state;
            {
                std::lock_guard lock(keeperLock_);
                state = state_;
            }
            if (state == State::Playing)
                pauseWhenSilent();
            else if (state == State::Paused)
                closeWhenStillPaused();
            else
                reopenWhenAsked();
        }
    }

    MixerTable& table_;
    std::mutex deviceLock_; // keeps device_ while a caller holds the output
    SDL_AudioDeviceID device_ = 0;
    bool subsystemUp_ = false;
    std::atomic<bool> idleReported_{false};
    std::atomic<std::uint32_t> idleReports_{0};
    std::atomic<bool> quit_{false};
    std::mutex keeperLock_;
    std::condition_variable keeperWake_;
    State state_ = State::Paused;
    bool reopenAsked_ = false; // under keeperLock_
    std::thread keeper_;
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
