#pragma once
#include "playback/engine/decoder.h"
#include "playback/engine/handle.h"
#include "playback/engine/ringBuffer.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

// A volume that moves linearly from `from` to `to` over `frames` played frames, starting when the
// channel had played `start` frames. A plain set is a slide of no frames.
struct VolumeRamp {
    float from = 1.0f;
    float to = 1.0f;
    std::uint64_t start = 0;
    std::uint64_t frames = 0;

    float at(std::uint64_t played) const {
        if (played >= start + frames)
            return to;
        if (played <= start)
            return from;
        double t = static_cast<double>(played - start) / static_cast<double>(frames);
        return static_cast<float>(from + (to - from) * t);
    }
};

// The ramp as the mixer reads it while the user-interface thread may replace it: a sequence lock,
// so the reader never waits and never sees half of a ramp.
class SharedRamp {
  public:
    void store(const VolumeRamp& ramp); // writers are serialised by the channel's control lock
    VolumeRamp load() const;

  private:
    std::atomic<std::uint32_t> sequence_{0};
    std::atomic<float> from_{1.0f};
    std::atomic<float> to_{1.0f};
    std::atomic<std::uint64_t> start_{0};
    std::atomic<std::uint64_t> frames_{0};
};

// Where the source position jumps when the mixer reaches a frame of the ring: a looping file
// wraps to 0 there.
struct PositionMark {
    std::uint64_t ringIndex = 0;
    std::uint64_t position = 0;
};

// Decoded audio a channel holds before the mixer starts it (about 90 ms), so that a start never
// begins with a gap.
constexpr std::size_t prefillFrames = 4096;
// Frames a decode thread renders at a time: small enough to take requests often, large enough
// that the decoders work in efficient blocks.
constexpr std::size_t chunkFrames = 1024;

// The engine's threads still running: the decode threads, and the warm-up of a decoder library at
// init. A freed channel's thread ends by itself, after whatever open or chunk it is in, so that a
// free never waits for a decoder; the engine waits for them all when it shuts down.
class DecodeThreads {
  public:
    void started();
    void finished();
    void waitForAll();

  private:
    std::mutex lock_;
    std::condition_variable allDone_;
    int running_ = 0;
};

// One playing thing: the facts of its file at once, its decoder opened and run on a decode thread
// of its own, the ring the mixer reads, and the figures the three sides share. The decoder is the
// decode thread's alone: seeks and fonts reach it as requests.
struct Channel {
    // midi: the stream takes fonts, starting with these.
    Channel(ProbedFile probed, bool loops, std::string path, bool midi,
            std::vector<SoundFontRef> fonts);
    Channel(const Channel&) = delete;
    Channel& operator=(const Channel&) = delete;

    // Starts the decode thread, which keeps the channel alive until stop() and its current work
    // are done.
    static std::shared_ptr<Channel> start(ProbedFile probed, bool loops, std::string path,
                                          bool midi, std::vector<SoundFontRef> fonts,
                                          DecodeThreads& threads);
    void stop();
    bool stopping() const { return quit_.load(std::memory_order_acquire); }

    // --- The control side (any thread, under the slot's lock).
    // The decoder moves to frame; the mixer stays silent on this channel from now until the
    // decoder is there. Call with the output locked.
    void requestSeekLocked(std::uint64_t frame);
    void requestFonts(std::vector<SoundFontRef> fonts);
    // The source position heard, or where a seek not yet heard goes.
    std::uint64_t heardPosition() const;

    // Set by the control side, read by the mixer; the mixer itself moves Playing to Stopped when a
    // channel has played its last frame.
    std::atomic<int> state{0};
    SharedRamp volume;
    // The loudness levelling's factor, in front of the volume and apart from it, so that what the
    // user set is still what every reader of the volume sees.
    SharedRamp gain;
    const bool loops;
    const bool midi;
    const std::uint64_t lengthFrames;
    const int sourceRate;
    const int sourceChannels;
    const std::string path;
    // An internet stream's reader: its tags, and its wait for bytes that a stop must end.
    const std::shared_ptr<CurlReader> reader;
    std::vector<FontHandle> fonts; // as set through the engine, for get-fonts
    std::string fontPath;          // the file of the first of them, for the loudness levelling

    // --- The mixer's side (the audio callback, or the null output under its lock).
    FrameRing ring{32768};
    std::atomic<std::uint64_t> played{0};   // frames mixed since creation: the clock of slides
    std::atomic<std::uint64_t> position{0}; // source position heard, in 44100 Hz frames
    std::atomic<int> underruns{0};
    std::atomic<bool> primed{false}; // prefilled since the last seek, so mixed
    std::atomic<std::uint32_t> marksRead{0};
    std::atomic<std::uint32_t> seeksHeard{0};
    // Wakes the decode thread once there is room for a refill. Lock-free: an atomic add, and a
    // futex wake only when the decode thread sleeps.
    void noteFramesTaken();

    // --- Written by the decode thread, read by the mixer.
    std::array<PositionMark, 8> marks{};
    std::atomic<std::uint32_t> marksWritten{0};
    std::atomic<bool> ended{false}; // the decoder wrote its last frame at endIndex
    std::atomic<std::uint64_t> endIndex{0};
    std::atomic<bool> failed{false}; // ended for good: the file cannot be played (any more)
    // The control side counts seeks asked for, the decode thread those done, each with the ring
    // frame where its audio starts and the marks written before it.
    std::atomic<std::uint32_t> seeksAsked{0};
    std::atomic<std::uint32_t> seeksDone{0};
    std::atomic<std::uint64_t> seekRingIndex{0};
    std::atomic<std::uint32_t> seekMarks{0};
    std::atomic<std::uint64_t> seekFrame{0};

    // Decoded frames ready to mix, including the end of a module.
    bool hasPrefill(std::size_t frames) const;
    // Any thread but the mixer, holding no lock that the decode thread needs: waits until ready()
    // holds (it is tested under the wait's own lock) or the deadline passes.
    template <typename Ready>
    bool waitFor(std::chrono::steady_clock::time_point deadline, Ready ready) {
        std::unique_lock lock(progressLock_);
        return progress_.wait_until(lock, deadline, ready);
    }

  private:
    struct Requests {
        bool seek = false;
        std::uint32_t seekNumber = 0;
        std::uint64_t seekTo = 0;
        std::optional<std::vector<SoundFontRef>> fonts;
    };

    // The decode thread (channelDecoding.cpp).
    void run();
    void open();
    bool work(); // false when there was nothing to do
    Requests takeRequests();
    void seekTo(std::uint32_t number, std::uint64_t frame);
    bool fill();
    void loop();
    void end();
    void fail();
    void signalProgress();
    void wakeDecoder();

    std::unique_ptr<SourceOpener> opener_;
    std::unique_ptr<Decoder> decoder_;
    MidiDecoder* midiDecoder_ = nullptr;
    std::vector<float> scratch_;
    // Where the decoder's current pass began and the frames it gave since, so that a pass from the
    // beginning that gives nothing ends the stream instead of spinning.
    std::uint64_t passStart_ = 0;
    std::uint64_t passFrames_ = 0;

    // The control side's requests, taken by the decode thread before each chunk.
    std::mutex requestLock_;
    std::uint64_t askedFrame_ = 0;  // where the last seek asked for goes
    std::uint32_t seeksServed_ = 0; // the decode thread's: seeks taken
    std::optional<std::vector<SoundFontRef>> askedFonts_;
    std::atomic<std::uint64_t> heardTarget_{0}; // askedFrame_ for readers without the lock

    std::atomic<bool> quit_{false};
    // The decode thread sleeps on wake_ (std::atomic::wait), so that the mixer can wake it
    // without a lock; asleep_ spares the mixer the wake-up call while it works.
    std::atomic<std::uint32_t> wake_{0};
    std::atomic<bool> asleep_{false};
    // Waiters for decoded audio (the null output) sleep here; the decode thread signals after
    // every chunk, seek, open and failure.
    std::mutex progressLock_;
    std::condition_variable progress_;
};
