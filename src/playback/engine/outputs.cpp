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
#include <utility>

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
// SDL, only notes that it mixed silence, and a thread of the output's own, the keeper, pauses the
// device unless a play came meanwhile. SDL's thread still wakes for every buffer of a paused
// device, so after a while of silence the keeper closes the device, and opens it again when the
// next play asks: a play never waits for a device to open, its sound starts once it is there.
// A lost device (a sound server restarted, a headset unplugged) goes on calling back into a buffer
// of SDL's own, so only its status tells: the keeper looks while it plays, closes it and opens the
// default device again. Channels stay as they are, and rest while no device is open.
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
                idle_.store(false); // the callback does not run while paused
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
    using Lock = std::unique_lock<std::mutex>;

    // How long a paused device stays open for the next play.
    static constexpr auto closeAfter = std::chrono::seconds(5);
    // How often the keeper looks at a playing device: for silence and for a loss.
    static constexpr auto watchEvery = std::chrono::milliseconds(250);
    // How often a device that does not open is tried again while a channel plays.
    static constexpr auto reopenEvery = std::chrono::seconds(3);

    SDL_AudioDeviceID openDevice() {
        SDL_AudioSpec want{};
        want.freq = engineRate;
        want.format = AUDIO_F32SYS;
        want.channels = 2;
        // 46 ms a buffer: half the wake-ups of SDL's audio thread that 1024 frames cost, and
        // still less than anyone hears after a pause or a volume step.
        want.samples = 2048;
        want.callback = &DeviceOutput::callback;
        want.userdata = this;
        SDL_AudioSpec have{};
        return SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
    }

    static void callback(void* self, Uint8* stream, int bytes) {
        auto* output = static_cast<DeviceOutput*>(self);
        bool playing = mixBlock(output->table_, reinterpret_cast<float*>(stream),
                                static_cast<std::size_t>(bytes) / (2 * sizeof(float)));
        output->idle_.store(!playing, std::memory_order_relaxed);
    }

    bool nothingPlays() {
        OutputLock outputLock(*this);
        return !anyPlaying(table_);
    }

    void closeDeviceLocked() {
        std::lock_guard deviceLock(deviceLock_);
        SDL_CloseAudioDevice(device_);
        device_ = 0;
        state_ = State::Closed;
    }

    // A play sets its channel Playing before it wakes the device under keeperLock_, so either the
    // check here sees that channel, or the wake comes after this pause.
    void watchWhilePlaying(Lock& lock) {
        while (!quit_.load() && state_ == State::Playing) {
            if (SDL_GetAudioDeviceStatus(device_) == SDL_AUDIO_STOPPED) {
                logOut("The audio device was lost: the default device is opened again, every %d "
                       "s until one opens\n",
                       static_cast<int>(reopenEvery.count()));
                closeDeviceLocked();
                reopenAsked_ = true;
                openFailing_ = true; // that line says it all until a device opens
                return;
            }
            if (idle_.load(std::memory_order_relaxed) && nothingPlays()) {
                SDL_PauseAudioDevice(device_, 1);
                state_ = State::Paused;
                return;
            }
            keeperWake_.wait_for(lock, watchEvery, [this] { return quit_.load(); });
        }
    }

    void closeWhenStillPaused(Lock& lock) {
        if (!keeperWake_.wait_for(lock, closeAfter,
                                  [this] { return quit_.load() || state_ != State::Paused; }))
            closeDeviceLocked();
    }

    void reopenWhenAsked(Lock& lock) {
        keeperWake_.wait(lock, [this] { return quit_.load() || reopenAsked_; });
        if (quit_.load())
            return;
        reopenAsked_ = false;
        lock.unlock();
        SDL_AudioDeviceID device = openDevice(); // slow: no lock held
        lock.lock();
        if (device == 0) {
            if (!std::exchange(openFailing_, true))
                logOut("No audio device could be opened: %s\n", SDL_GetError());
            // A device may come back (a sound server restarts, a headset is plugged in): while a
            // channel plays it is tried again, and a play meanwhile tries at once.
            keeperWake_.wait_for(lock, reopenEvery,
                                 [this] { return quit_.load() || reopenAsked_; });
            reopenAsked_ = reopenAsked_ || !nothingPlays();
            return;
        }
        openFailing_ = false;
        {
            std::lock_guard deviceLock(deviceLock_);
            device_ = device;
        }
        idle_.store(false);
        SDL_PauseAudioDevice(device_, 0);
        state_ = State::Playing;
    }

    void keepDevice() {
        Lock lock(keeperLock_);
        while (!quit_.load()) {
            if (state_ == State::Playing)
                watchWhilePlaying(lock);
            else if (state_ == State::Paused)
                closeWhenStillPaused(lock);
            else
                reopenWhenAsked(lock);
        }
    }

    MixerTable& table_;
    std::mutex deviceLock_; // keeps device_ while a caller holds the output
    SDL_AudioDeviceID device_ = 0;
    bool subsystemUp_ = false;
    std::atomic<bool> idle_{false}; // the callback's last block mixed no channel
    std::atomic<bool> quit_{false};
    std::mutex keeperLock_;
    std::condition_variable keeperWake_;
    State state_ = State::Paused;
    bool reopenAsked_ = false; // under keeperLock_
    bool openFailing_ = false; // under keeperLock_: the failure has had its line
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
